// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimBuffer.h"

/// Where motions lead. Pure functions over the text; offsets are UTF-16 units and lie in the text or at its end.
namespace VimMotion {

enum class Kind { exclusive, inclusive, linewise };

struct Result {
    qsizetype position = 0;
    Kind kind = Kind::exclusive;
    /// It did not move or found nothing.
    bool failed = false;
    /// Of `w` and `W`, which do not take an operator on to the next line.
    bool isWordMotion = false;
};

/// From where, and how often.
struct Request {
    VimBuffer &text;
    qsizetype caret = 0;
    qsizetype count = 1;
    /// The caret may stand on a line's break.
    bool mayStandOnBreak = false;
};

/// `f`, `t`, `F` and `T`.
enum class FindKind { forwardTo, forwardBefore, backwardTo, backwardBefore };
[[nodiscard]] FindKind reversed(FindKind kind);

enum class Words {
    /// Runs of one character class.
    small,
    /// Runs of anything but blanks.
    big,
};

[[nodiscard]] qsizetype nextWordStart(VimBuffer &text, qsizetype from, Words words);
[[nodiscard]] qsizetype previousWordStart(VimBuffer &text, qsizetype from, Words words);
/// The last unit of the word.
[[nodiscard]] qsizetype nextWordEnd(VimBuffer &text, qsizetype from, Words words);
/// The last character of the line `count` - 1 below, or of this line where there is none.
[[nodiscard]] qsizetype lastOfLine(VimBuffer &text, qsizetype from, qsizetype count);

enum class Direction { forward, backward };
/// The next empty line; lines of blanks are none. Without one an end of the text.
[[nodiscard]] qsizetype nextParagraphBoundary(VimBuffer &text, qsizetype from, Direction direction);
enum class Dividers { emptyLines, emptyLinesAndFeeds };
/// The same, perhaps with lines that begin with a form feed.
[[nodiscard]] qsizetype nextDivider(VimBuffer &text, qsizetype from, Direction direction, Dividers dividers);
/// The partner of the first bracket at or behind `from` on its line.
[[nodiscard]] Result matchingBracket(VimBuffer &text, qsizetype from);
/// The `count`-th occurrence on the line.
[[nodiscard]] Result find(VimBuffer &text, qsizetype from, char16_t character, FindKind kind, qsizetype count);

/// The last unit of the character at `offset`. What looks for something behind the caret begins here, or it would find the rest of a
/// character that the caret does not leave.
[[nodiscard]] qsizetype lastUnit(const Rope &text, qsizetype offset);

// The motions of the keys, for as often as the request says or as they lead anywhere.

[[nodiscard]] Result left(const Request &request);
[[nodiscard]] Result right(const Request &request);
template<Words words>
[[nodiscard]] Result wordStart(const Request &request);
template<Words words>
[[nodiscard]] Result wordStartBefore(const Request &request);
template<Words words>
[[nodiscard]] Result wordEnd(const Request &request);
[[nodiscard]] Result paragraphBefore(const Request &request);
[[nodiscard]] Result paragraphBehind(const Request &request);
[[nodiscard]] Result lineStart(const Request &request);
[[nodiscard]] Result firstNonBlank(const Request &request);
[[nodiscard]] Result lineEnd(const Request &request);
[[nodiscard]] Result bracketPartner(const Request &request);

} // namespace VimMotion
