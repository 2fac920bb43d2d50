// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineRange.h"

/// The spaces and tabs that lines are indented with.
[[nodiscard]] constexpr bool isIndent(char16_t unit)
{
    return unit == u' ' || unit == u'\t';
}

[[nodiscard]] constexpr bool isLineEnd(char16_t unit)
{
    return unit == u'\n' || unit == u'\r' || isLineSeparator(unit);
}

/// Calls `visit` for the lines of `block`, their breaks included.
template<class Visit>
void forEachLine(const Rope &text, TextRange block, Breaks breaks, Visit visit)
{
    RopeCursor cursor(text);
    qsizetype start = block.location;
    for (qsizetype at = start; at < block.end(); ++at) {
        const char16_t unit = cursor.at(at);
        const bool isInPair = unit == u'\r' && at + 1 < text.length() && cursor.at(at + 1) == u'\n';
        if (unit == u'\n' || (breaks == Breaks::all && isLineEnd(unit) && !isInPair)) {
            visit(TextRange::between(start, at + 1));
            start = at + 1;
        }
    }
    if (start < block.end()) {
        visit(TextRange::between(start, block.end()));
    }
}

/// Where the blanks end that the line begins with.
[[nodiscard]] inline qsizetype indentEnd(const Rope &text, TextRange line)
{
    RopeCursor cursor(text);
    qsizetype end = line.location;
    while (end < line.end() && isIndent(cursor.at(end))) {
        ++end;
    }
    return end;
}

/// Where the break of the line begins.
[[nodiscard]] inline qsizetype contentEnd(const Rope &text, TextRange line)
{
    RopeCursor cursor(text);
    qsizetype end = line.end();
    if (end == line.location || !isLineEnd(cursor.at(end - 1))) {
        return end;
    }
    --end;
    const bool isPair = cursor.at(end) == u'\n' && end > line.location && cursor.at(end - 1) == u'\r';
    return isPair ? end - 1 : end;
}
