// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Print/PrintedText.h"

PrintedLine printedLine(const PrintedText &text, qsizetype line)
{
    const Rope &rope = text.text;
    const qsizetype start = rope.lineStart(line);
    const qsizetype next = line + 1 < rope.lineCount() ? rope.lineStart(line + 1) : rope.length();
    qsizetype end = next;
    if (line + 1 < rope.lineCount()) {
        end -= 1;
        end -= end > start && rope.at(end) == u'\n' && rope.at(end - 1) == u'\r' ? 1 : 0;
    }
    return {TextRange::between(start, end).intersected(text.range), std::min(next, text.range.end())};
}
