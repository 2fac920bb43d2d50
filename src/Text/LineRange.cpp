// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineRange.h"

TextRange lineRange(const Rope &text, TextRange range)
{
    qsizetype from = text.lineStart(text.lineAt(range.location));
    const qsizetype lastLine = text.lineAt(range.end());
    qsizetype to = lastLine + 1 < text.lineCount() ? text.lineStart(lastLine + 1) : text.length();
    text.forEachChunk(TextRange::between(from, range.location), [&](const Rope::Chunk &chunk) {
        for (qsizetype index = chunk.wide ? 0 : chunk.length; index < chunk.length; ++index) {
            if (isLineSeparator(chunk.wide[index])) {
                from = chunk.location + index + 1;
            }
        }
        return true;
    });
    text.forEachChunk(TextRange::between(range.end(), to), [&](const Rope::Chunk &chunk) {
        for (qsizetype index = chunk.wide ? 0 : chunk.length; index < chunk.length; ++index) {
            if (isLineSeparator(chunk.wide[index])) {
                to = chunk.location + index + 1;
                return false;
            }
        }
        return true;
    });
    return TextRange::between(from, to);
}
