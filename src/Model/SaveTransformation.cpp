// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/SaveTransformation.h"

#include "Text/LineTransformations.h"
#include "Text/LineWalk.h"

namespace {

TextEdits trimmedLastLine(const Rope &text)
{
    RopeCursor cursor(text);
    // A single line break at the very end belongs to the last line.
    qsizetype end = text.length();
    if (end > 0 && (cursor.at(end - 1) == u'\n' || cursor.at(end - 1) == u'\r')) {
        const bool isPair = end > 1 && cursor.at(end - 1) == u'\n' && cursor.at(end - 2) == u'\r';
        end -= isPair ? 2 : 1;
    }
    qsizetype start = end;
    while (start > 0 && isIndent(cursor.at(start - 1))) {
        --start;
    }
    return {TextRange::between(start, end), Rope()};
}

TextEdits trimmed(const Rope &text, SaveOptions::Trimmed what)
{
    switch (what) {
    case SaveOptions::Trimmed::nothing:
        return {};
    case SaveOptions::Trimmed::lastLine:
        return trimmedLastLine(text);
    case SaveOptions::Trimmed::everyLine:
        const auto step = LineTransformations::trimmed(text, {});
        return step ? step->edits : TextEdits();
    }
    Q_UNREACHABLE();
}

} // namespace

TextEdits saveTransformation(const Rope &text, SaveOptions options)
{
    TextEdits edits = trimmed(text, options.trimmed);
    const bool isEndTrimmed = !edits.isEmpty() && edits[edits.count() - 1].range.end() == text.length();
    const qsizetype end = isEndTrimmed ? edits[edits.count() - 1].range.location : text.length();
    if (options.ensuresTrailingNewline && end > 0 && text.at(end - 1) != u'\n') {
        edits.add({text.length(), 0}, Rope(u"\n"));
    }
    return edits;
}
