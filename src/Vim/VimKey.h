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
/// The tab key with Shift.
constexpr char16_t backtab = 0xF8FF;
/// The first of F1 to F12.
constexpr char16_t functionKey = 0xF704;
constexpr char16_t functionKeys = 12;

[[nodiscard]] constexpr bool isNamed(char16_t key)
{
    return (key >= up && key <= pageDown) || key == backtab;
}
/// It means something only where the user has mapped it, or in a command line.
[[nodiscard]] constexpr bool isForMappings(char16_t key)
{
    return (key >= functionKey && key < functionKey + functionKeys) || key == backtab;
}

/// In keys as text, where each is one unit, a key of ASCII with Alt.
constexpr char16_t withAlt(char16_t key)
{
    return char16_t(0xF600 + key);
}
/// A key as the unit that it is in such a text: Control chords of letters are 0x01 to 0x1A.
[[nodiscard]] constexpr char16_t unit(const VimKeyStroke &stroke)
{
    const char16_t key = stroke.character;
    if (stroke.control && key == u' ') {
        return 0;
    }
    if (stroke.control && key >= 0x40 && key < 0x7F) {
        return key & 0x1F;
    }
    return stroke.option && key < 0x80 ? withAlt(key) : key;
}
/// The key that such a unit is. Tab, Return and Escape are keys of their own rather than chords.
[[nodiscard]] constexpr VimKeyStroke stroke(char16_t unit)
{
    if (unit >= withAlt(0) && unit < withAlt(0x80)) {
        return {.character = char16_t(unit - withAlt(0)), .option = true};
    }
    if (unit < 0x20 && unit != u'\t' && unit != u'\r' && unit != escape) {
        const char16_t letter = unit >= 1 && unit <= 26 ? char16_t(unit + u'a' - 1) : char16_t(unit + 0x40);
        return {.character = letter, .control = true};
    }
    return {.character = unit};
}
} // namespace VimKey
