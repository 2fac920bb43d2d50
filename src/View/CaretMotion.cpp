// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/CaretMotion.h"

#include "Text/LineRange.h"
#include "Text/TextBoundaries.h"

std::optional<Caret> movedByRows(const Caret &caret, qint64 rows, LayoutManager &layout)
{
    RowPosition row = layout.rowOf(caret.offset, caret.affinity);
    const double x = caret.preferredX.value_or(layout.xOf(row, caret.offset));
    if (layout.step(row, rows) == 0) {
        return std::nullopt;
    }
    const TextRange range = layout.rangeOf(row);
    const qsizetype offset = layout.offsetAt(row, x);
    const bool isAtWrap = offset == range.end() && !layout.endsLine(row);
    return Caret{offset, isAtWrap ? Affinity::upstream : Affinity::downstream, x};
}

namespace {

/// Up in the first row goes to the text's start, down in the last to its end: the way to select all of a last line.
Caret movedOrToEnd(const Caret &caret, qint64 rows, LayoutManager &layout, const Rope &text)
{
    if (const auto there = movedByRows(caret, rows, layout)) {
        return *there;
    }
    const double x = caret.preferredX.value_or(layout.xOf(layout.rowOf(caret.offset, caret.affinity), caret.offset));
    return {rows < 0 ? 0 : text.length(), Affinity::downstream, x};
}

Caret movedToRowStart(const Caret &caret, LayoutManager &layout, const Rope &text)
{
    const RowPosition row = layout.rowOf(caret.offset, caret.affinity);
    const TextRange range = layout.rangeOf(row);
    if (!layout.startsLine(row)) {
        return {range.location, Affinity::downstream, {}};
    }
    RopeCursor cursor(text);
    qsizetype firstLetter = range.location;
    while (firstLetter < range.end() && (cursor.at(firstLetter) == u' ' || cursor.at(firstLetter) == u'\t')) {
        ++firstLetter;
    }
    return {caret.offset == firstLetter ? range.location : firstLetter, Affinity::downstream, {}};
}

Caret movedToRowEnd(const Caret &caret, LayoutManager &layout)
{
    const RowPosition row = layout.rowOf(caret.offset, caret.affinity);
    return {layout.rangeOf(row).end(), layout.endsLine(row) ? Affinity::downstream : Affinity::upstream, {}};
}

} // namespace

Caret moved(const Caret &caret, Motion motion, LayoutManager &layout, const Rope &text, qint64 rowsPerPage)
{
    const auto at = [](qsizetype offset) { return Caret{offset, Affinity::downstream, {}}; };
    switch (motion) {
    case Motion::left:
        return at(TextBoundaries::previousGrapheme(text, caret.offset));
    case Motion::right:
        return at(TextBoundaries::nextGrapheme(text, caret.offset));
    case Motion::wordLeft:
        return at(TextBoundaries::previousWordStart(text, caret.offset));
    case Motion::wordRight:
        return at(TextBoundaries::nextWordStart(text, caret.offset));
    case Motion::up:
        return movedOrToEnd(caret, -1, layout, text);
    case Motion::down:
        return movedOrToEnd(caret, 1, layout, text);
    case Motion::pageUp:
        return movedOrToEnd(caret, -rowsPerPage, layout, text);
    case Motion::pageDown:
        return movedOrToEnd(caret, rowsPerPage, layout, text);
    case Motion::paragraphUp:
        return at(blankLineBefore(text, caret.offset));
    case Motion::paragraphDown:
        return at(blankLineBehind(text, caret.offset));
    case Motion::rowStart:
        return movedToRowStart(caret, layout, text);
    case Motion::rowEnd:
        return movedToRowEnd(caret, layout);
    case Motion::textStart:
        return at(0);
    case Motion::textEnd:
        return at(text.length());
    }
    Q_UNREACHABLE();
}
