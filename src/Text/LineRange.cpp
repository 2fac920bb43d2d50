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

namespace {

bool isBlank(const Rope &text, RopeCursor &cursor, qsizetype line)
{
    for (qsizetype at = text.lineStart(line); at < text.length(); ++at) {
        const char16_t unit = cursor.at(at);
        if (unit != u' ' && unit != u'\t') {
            return unit == u'\n' || unit == u'\r';
        }
    }
    return true;
}

} // namespace

qsizetype blankLineBefore(const Rope &text, qsizetype offset)
{
    RopeCursor cursor(text);
    qsizetype line = text.lineAt(offset);
    while (line > 0 && isBlank(text, cursor, line)) {
        --line;
    }
    while (line > 0 && !isBlank(text, cursor, line)) {
        --line;
    }
    return isBlank(text, cursor, line) ? text.lineStart(line) : 0;
}

qsizetype blankLineBehind(const Rope &text, qsizetype offset)
{
    RopeCursor cursor(text);
    const qsizetype last = text.lineCount() - 1;
    qsizetype line = text.lineAt(offset);
    while (line < last && isBlank(text, cursor, line)) {
        ++line;
    }
    while (line < last && !isBlank(text, cursor, line)) {
        ++line;
    }
    return isBlank(text, cursor, line) && line < last ? text.lineStart(line) : text.length();
}
