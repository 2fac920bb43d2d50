// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExactSteps.h"

/// Where Vim's motions lead. Pure functions over the text; offsets are UTF-16 units, columns cells from 0.
namespace VimExactMotion {

using VimMotion::Kind;

/// What waits for the motion.
enum class For {
    caret,
    selection,
    /// An operator; the one that changes treats words in its own way, and both it and the one that removes may go behind a line.
    operation,
    remove,
    change,
    yank,
};

struct Request {
    VimLines lines;
    qsizetype caret = 0;
    qsizetype count = 1;
    bool hasCount = false;
    For purpose = For::caret;
    /// The column that `j` and `k` keep, where that is not the caret's; `VimLines::endless` behind `$`.
    std::optional<qsizetype> column = std::nullopt;
    /// Jumps to lines go to that column rather than to the first character that is no blank.
    bool keepsColumn = false;

    [[nodiscard]] bool isForOperator() const { return purpose != For::caret && purpose != For::selection; }
};

struct Result {
    qsizetype place = 0;
    Kind kind = Kind::exclusive;
    bool failed = false;
    /// What was deleted with it goes to the numbered registers, however little it was.
    bool isLarge = false;
    /// It fails, yet the caret goes to the place.
    bool goesNonetheless = false;
    /// It is remembered where the caret was.
    bool isJump = false;
    /// To be kept for the next `j`, where that is not the column of the place.
    std::optional<qsizetype> column = std::nullopt;
    /// Of `w`, whose operators do not take the next line's indentation.
    bool isWordMotion = false;
    /// An operator that ends where a line begins takes the break before it.
    bool takesBreak = false;

    [[nodiscard]] static Result failure() { return {.failed = true}; }
};

using Motion = Result (*)(const Request &request);

/// The cell that `j` and `k` keep: of a tab the last one, where Vim shows the caret.
[[nodiscard]] qsizetype columnOf(const VimLines &lines, qsizetype place);

[[nodiscard]] Result left(const Request &request);
[[nodiscard]] Result right(const Request &request);
/// Over line ends.
[[nodiscard]] Result characterBefore(const Request &request);
[[nodiscard]] Result characterBehind(const Request &request);
[[nodiscard]] Result down(const Request &request);
[[nodiscard]] Result up(const Request &request);
[[nodiscard]] Result firstOfNextLine(const Request &request);
[[nodiscard]] Result firstOfPreviousLine(const Request &request);
[[nodiscard]] Result firstOfLineBelow(const Request &request);
[[nodiscard]] Result lineStart(const Request &request);
[[nodiscard]] Result firstNonBlank(const Request &request);
[[nodiscard]] Result lineEnd(const Request &request);
[[nodiscard]] Result lastNonBlank(const Request &request);
[[nodiscard]] Result rowEnd(const Request &request);
[[nodiscard]] Result column(const Request &request);
[[nodiscard]] Result middleOfLine(const Request &request);
[[nodiscard]] Result byteOfText(const Request &request);

template<VimMotion::Words words>
[[nodiscard]] Result wordForward(const Request &request);
template<VimMotion::Words words>
[[nodiscard]] Result wordBackward(const Request &request);
template<VimMotion::Words words>
[[nodiscard]] Result wordEndForward(const Request &request);
template<VimMotion::Words words>
[[nodiscard]] Result wordEndBackward(const Request &request);

[[nodiscard]] Result firstLine(const Request &request);
[[nodiscard]] Result lastLine(const Request &request);
[[nodiscard]] Result paragraphForward(const Request &request);
[[nodiscard]] Result paragraphBackward(const Request &request);
[[nodiscard]] Result sentenceForward(const Request &request);
[[nodiscard]] Result sentenceBackward(const Request &request);
/// The next or previous line that begins with `{` or `}`.
template<char16_t first, VimMotion::Direction direction>
[[nodiscard]] Result section(const Request &request);
/// A bracket that has no partner between it and the caret.
template<char16_t wanted>
[[nodiscard]] Result unmatched(const Request &request);
/// With a count so many per cent of the lines.
[[nodiscard]] Result bracketPartner(const Request &request);

/// `f`, `t` and their like; `isRepeated` by `;` goes on from beside a hit.
[[nodiscard]] Result find(const Request &request, char32_t character, VimMotion::FindKind kind, bool isRepeated);

} // namespace VimExactMotion
