// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimLines.h"
#include "Vim/VimMotion.h"

/// What Vim's motions and objects look for: words, sentences, paragraphs, brackets. Pure functions over the text; offsets are UTF-16 units.
namespace VimExactMotion {

/// Of words, where all that is not blank is one class for big ones; blank behind lines.
[[nodiscard]] int classAt(const VimLines &lines, qsizetype place, VimMotion::Words words);
/// Whether a paragraph or section begins or ends at the line.
[[nodiscard]] bool dividesParagraphs(const VimLines &lines, qsizetype line);

/// How far steps over words came, and whether there was a step to be made each time.
struct Walked {
    qsizetype place;
    bool isWhole;
    /// The last step that was made led to the end of the text, and there were more to come.
    bool isCutShort = false;
};
/// `staysInLine`: the last of the words ends where its line does.
[[nodiscard]] Walked wordsForward(const VimLines &lines, qsizetype place, qsizetype count, VimMotion::Words words, bool staysInLine);
/// `mayStay`: at the start of a word that is where it begins.
[[nodiscard]] Walked wordsBackward(const VimLines &lines, qsizetype place, qsizetype count, VimMotion::Words words, bool mayStay);
/// `mayStay`: at the end of a word that is where it ends.
[[nodiscard]] Walked wordEndsForward(const VimLines &lines, qsizetype place, qsizetype count, VimMotion::Words words, bool mayStay,
                                     bool stopsAtEmpty);
[[nodiscard]] Walked wordEndsBackward(const VimLines &lines, qsizetype place, qsizetype count, VimMotion::Words words, bool staysInLine);

/// The start of the sentence so many on; none at the text's end.
[[nodiscard]] std::optional<qsizetype> sentence(const VimLines &lines, qsizetype from, VimMotion::Direction direction, qsizetype count);
/// The bracket that closes or opens the one at `place`, as `%` finds it.
[[nodiscard]] std::optional<qsizetype> partner(const VimLines &lines, qsizetype place);
/// The next bracket `open` before `place`, or `close` behind it, without those that have their partner between.
[[nodiscard]] std::optional<qsizetype> enclosing(const VimLines &lines, qsizetype place, char16_t open, char16_t close,
                                                 VimMotion::Direction direction);

} // namespace VimExactMotion
