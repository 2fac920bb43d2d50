// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/SaveTransformation.h"

TextEdits saveTransformation(const Rope &text, SaveOptions options)
{
    RopeCursor cursor(text);
    const qsizetype length = text.length();
    // A single line break at the very end belongs to the last line.
    qsizetype lineEnd = length;
    if (lineEnd > 0 && (cursor.at(lineEnd - 1) == u'\n' || cursor.at(lineEnd - 1) == u'\r')) {
        const bool isPair = lineEnd > 1 && cursor.at(lineEnd - 1) == u'\n' && cursor.at(lineEnd - 2) == u'\r';
        lineEnd -= isPair ? 2 : 1;
    }
    qsizetype start = lineEnd;
    while (options.trimsTrailingWhitespace && start > 0 && (cursor.at(start - 1) == u' ' || cursor.at(start - 1) == u'\t')) {
        --start;
    }
    TextEdits edits(TextRange::between(start, lineEnd), Rope());
    const bool endsInLineFeed = lineEnd < length && cursor.at(length - 1) == u'\n';
    if (options.ensuresTrailingNewline && length + edits.growth() > 0 && !endsInLineFeed) {
        // Behind a lone carriage return.
        edits.add({length, 0}, Rope(u"\n"));
    }
    return edits;
}
