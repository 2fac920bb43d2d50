// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>

/// What exact modal editing makes of keys, in the form in which Vim's own answers are kept.
namespace VimAnswers {

/// `question` has a "text", the "caret" in it and the "keys", one UTF-16 unit each: Control chords are U+0001 to U+001A, Return U+000D,
/// Escape U+001B, Backspace U+007F, arrows and their like as in VimKey. The answer has
/// "text", "caret": after the last key,
/// "mode": as Vim's mode() names it,
/// "anchor": in the visual modes, the other end of what is selected; in the one for lines the start of its line,
/// "registers": by their names those that have something, with "text" and "type" (characters, lines, block).
/// Places are UTF-16 units from the text's start.
[[nodiscard]] QJsonObject answer(const QJsonObject &question);

} // namespace VimAnswers
