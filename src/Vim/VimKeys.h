// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimKey.h"

#include <QStringView>

/// Keys as text, in macros, repetitions and mappings: one character a key. Control chords are the control characters, Escape 0x1B, Return
/// "\r", Backspace 0x7F; arrows and their like are those of VimKey, and chords with Alt lie in a private plane above `alt`.
namespace VimKeys {

constexpr char16_t alt = VimKey::withAlt(0);

[[nodiscard]] QString text(const VimKeyEvent &event);
/// The key at `place`, which moves behind it.
[[nodiscard]] VimKeyEvent next(QStringView keys, qsizetype &place);

} // namespace VimKeys
