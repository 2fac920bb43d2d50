// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineRange.h"

namespace {

constexpr bool isSeparator(char16_t unit)
{
    return unit == 0x2028 || unit == 0x2029;
}

} // namespace

TextRange lineRange(const Rope &text, TextRange range)
{
    qsizetype from = text.lineStart(text.lineAt(range.location));
    const qsizetype lastLine = text.lineAt(range.end());
    qsizetype to = lastLine + 1 < text.lineCount() ? text.lineStart(lastLine + 1) : text.length();
    // Separators never stand in a leaf of one byte a unit.
    text.forEachChunk(TextRange::between(from, range.location), [&](const Rope::Chunk &chunk) {
        for (qsizetype index = chunk.wide ? 0 : chunk.length; index < chunk.length; ++index) {
            if (isSeparator(chunk.wide[index])) {
                from = chunk.location + index + 1;
            }
        }
        return true;
    });
    text.forEachChunk(TextRange::between(range.end(), to), [&](const Rope::Chunk &chunk) {
        for (qsizetype index = chunk.wide ? 0 : chunk.length; index < chunk.length; ++index) {
            if (isSeparator(chunk.wide[index])) {
                to = chunk.location + index + 1;
                return false;
            }
        }
        return true;
    });
    return TextRange::between(from, to);
}
