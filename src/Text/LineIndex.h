// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineNumber.h"
#include "Text/Rope.h"

#include <vector>

/// Line numbers and UTF-16 offsets of a text. Lines end after LF, CR LF or a lone CR; a break at the end of the text is
/// followed by an empty line. Nothing else breaks lines.
///
/// The answers come from the text's own tree in O(log n), so there is no list that an edit of a large text would have to renew and
/// nothing to invalidate. Any thread that may read the text.
class LineIndex final {
public:
    /// The line that holds `location`; offsets beyond the text are on its last line, those below 0 on its first.
    [[nodiscard]] static LineNumber lineNumber(qsizetype location, const Rope &text) { return numberOfLine(text.lineAt(location)); }
    /// Where line `number` begins; numbers below 1 mean the first line, those past the end the last.
    [[nodiscard]] static qsizetype startOfLine(LineNumber number, const Rope &text) { return text.lineStart(lineOfNumber(number)); }
};

class TextMetrics final {
public:
    TextMetrics() = delete;

    /// Where each line begins, ascending, 0 first. One pass over the text.
    [[nodiscard]] static std::vector<qsizetype> lineStarts(const Rope &text);
};
