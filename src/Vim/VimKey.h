// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <compare>

/// One key as key maps know it.
struct VimKeyStroke {
    char16_t character = 0;
    bool control = false;
    bool option = false;

    friend auto operator<=>(const VimKeyStroke &, const VimKeyStroke &) = default;
};

/// A key press as modal editing sees it.
struct VimKeyEvent {
    /// What the key types, modifiers and all; empty for none.
    QString characters;
    /// What it would type without Control and Alt. Arrows and their like have characters of the private use area (VimKey).
    QString charactersIgnoringModifiers;
    bool control = false;
    bool option = false;
    /// Of keys that type nothing; what others type tells of it.
    bool shift = false;
};

/// Keys that type nothing.
namespace VimKey {
constexpr char16_t escape = 0x1B;
constexpr char16_t backspace = 0x7F;
constexpr char16_t up = 0xF700;
constexpr char16_t down = 0xF701;
constexpr char16_t left = 0xF702;
constexpr char16_t right = 0xF703;
constexpr char16_t forwardDelete = 0xF728;
constexpr char16_t home = 0xF729;
constexpr char16_t end = 0xF72B;
constexpr char16_t pageUp = 0xF72C;
constexpr char16_t pageDown = 0xF72D;
/// The tab key with Shift, in a command line.
constexpr char16_t backtab = 0xF8FF;
} // namespace VimKey
