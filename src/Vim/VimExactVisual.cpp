// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Vim's visual modes.

#include "Vim/VimExact.h"

#include "Text/TextBoundaries.h"
#include "Vim/VimExactObject.h"
#include "Vim/VimNumber.h"

using namespace Qt::StringLiterals;
using VimMotion::Kind;

void VimEngine::Selecting::begin(Mode mode, qsizetype anchor, qsizetype head)
{
    m_width.reset();
    m_engine.m_visualAnchor = anchor;
    m_engine.m_visualHead = head;
    m_engine.setMode(mode);
    select(head);
}

void VimEngine::Selecting::toggle(Mode mode)
{
    if (m_engine.m_pendingOperator) {
        m_exact.operating.force(mode);
        return; // the motion is still to come
    }
    if (m_engine.m_mode == mode) {
        leave();
        finish();
        return;
    }
    if (m_engine.isVisual()) {
        begin(mode, m_engine.m_visualAnchor, m_engine.m_visualHead);
        finish();
        return;
    }
    if (m_engine.hasCount() && m_engine.m_visualExtent) {
        // As much as was selected last, so many times; of characters in several lines the column stays.
        Extent extent = *m_engine.m_visualExtent;
        const bool isInLine = extent.mode == Mode::visual && extent.lines == 1;
        extent.lines *= isInLine ? 1 : m_engine.effectiveCount();
        extent.units *= isInLine || extent.mode == Mode::visualBlock ? m_engine.effectiveCount() : 1;
        selectAgain(extent, m_exact.columnPlace == caret() ? m_exact.column : std::nullopt);
        m_width.reset();
        select(m_engine.m_visualHead);
        finish();
        return;
    }
    const qsizetype place = caret();
    qsizetype head = place;
    if (m_engine.hasCount()) {
        const Sight sight = see();
        const qsizetype more = m_engine.effectiveCount() - 1;
        const qsizetype line = mode == Mode::visualLine ? sight.lines.startNear(place, more) : place;
        head = mode == Mode::visualLine ? sight.lines.placeAt(line, sight.lines.column(place)) : sight.lines.after(place, more);
    }
    const auto column = head == place && m_exact.columnPlace == place ? m_exact.column : std::nullopt;
    begin(mode, place, head);
    setCaret(head, column);
    finish();
}

void VimEngine::Selecting::select(qsizetype head)
{
    m_engine.m_visualHead = head;
    const qsizetype anchor = std::min(m_engine.m_visualAnchor, text().length());
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    const qsizetype low = std::min(anchor, head);
    const qsizetype high = std::max(anchor, head);
    if (m_engine.m_mode == Mode::visualLine) {
        m_engine.m_view.select(lines.lines(low, high), head);
    } else if (m_engine.m_mode == Mode::visualBlock) {
        std::vector<TextRange> ranges;
        size_t primary = 0;
        const VimBlock shown = block();
        for (const VimBlock::Row &row : shown.rows(lines)) {
            primary = row.line == lines.start(head) ? ranges.size() : primary;
            ranges.push_back(row.range);
        }
        m_engine.m_view.selectSeveral(ranges, primary, head);
    } else {
        const qsizetype end = lines.isAtEnd(high) ? (lines.isLast(high) ? high : lines.next(high)) : lines.after(high);
        m_engine.m_view.select(TextRange::between(low, end), head);
    }
}

/// `$` made it go to the ends of its lines.
bool VimEngine::Selecting::isEndless() const
{
    return m_exact.column && *m_exact.column >= VimLines::endless && m_exact.columnPlace == m_engine.m_visualHead;
}

VimBlock VimEngine::Selecting::block() const
{
    const Sight sight = see();
    const bool toEnds = isEndless();
    VimBlock block = VimBlock::between(sight.lines, std::min(m_engine.m_visualAnchor, text().length()), m_engine.caret(), toEnds);
    if (m_width && m_width->head == m_engine.m_visualHead && !toEnds) {
        block.left = sight.lines.cells(std::min(m_engine.m_visualAnchor, text().length())).first;
        block.right = block.left + m_width->cells - 1;
    }
    return block;
}

void VimEngine::Selecting::remember()
{
    if (!m_engine.isVisual() || m_exact.repeating.isReplaying()) {
        return;
    }
    setSelected({m_engine.m_mode, {m_engine.m_visualAnchor}, {m_engine.m_visualHead}, isEndless()});
}

void VimEngine::Selecting::leave()
{
    if (!m_engine.isVisual()) {
        return;
    }
    remember();
    endAt(m_engine.m_visualHead);
}

/// Where the caret is when whole lines were selected: where it was, if that is in a line before the other end, else at their start.
qsizetype VimEngine::Selecting::firstOfLines(const VimLines &lines) const
{
    const qsizetype anchor = m_engine.m_visualAnchor;
    const qsizetype first = m_exact.repeating.isReplaying() ? anchor : lines.start(anchor); // "." begins at the caret
    return std::min(m_engine.m_visualHead, first);
}

void VimEngine::Selecting::leaveAtStart()
{
    const qsizetype place = [&] {
        const Sight sight = see();
        if (m_engine.m_mode == Mode::visualBlock) {
            const VimBlock shown = block();
            return shown.row(sight.lines, shown.firstLine).range.location;
        }
        return m_engine.m_mode == Mode::visualLine ? firstOfLines(sight.lines) : std::min(m_engine.m_visualAnchor, m_engine.m_visualHead);
    }();
    leave();
    setCaret(place);
}

void VimEngine::Selecting::endAt(qsizetype place)
{
    const auto column = m_exact.column;
    const bool isKept = m_exact.columnPlace == m_engine.m_visualHead && place == m_engine.m_visualHead;
    m_engine.setMode(Mode::normal);
    setCaret(place, isKept ? column : std::nullopt);
}

void VimEngine::Selecting::again()
{
    if (!m_last || m_engine.m_pendingOperator) {
        fail();
        return;
    }
    const Selected last = *m_last;
    if (m_engine.isVisual()) {
        remember();
    }
    const auto placeOf = [this](const VimPlace &place) {
        const Sight sight = see();
        const qsizetype offset = std::min(place.offset, text().length());
        const qsizetype open = sight.lines.lastStart();
        return sight.lines.isBehindAll(offset) ? std::min(open + place.column.value_or(0), sight.lines.end(open)) : offset;
    };
    const qsizetype head = placeOf(last.head);
    begin(last.mode, placeOf(last.anchor), head);
    setCaret(head, last.isEndless ? std::optional(VimLines::endless) : std::nullopt);
    finish();
}

void VimEngine::Selecting::otherEnd(bool isInRow)
{
    const qsizetype anchor = m_engine.m_visualAnchor;
    const qsizetype head = m_engine.m_visualHead;
    if (isInRow && m_engine.m_mode == Mode::visualBlock) {
        // The caret goes to the right side, or to the left one if it is there.
        qsizetype newHead = 0;
        qsizetype column = 0;
        {
            const Sight sight = see();
            const VimLines &lines = sight.lines;
            const VimBlock shown = VimBlock::between(lines, anchor, head, false);
            const auto inLine = [&](qsizetype place, qsizetype cell) {
                return std::min(lines.placeAt(lines.start(place), cell), lines.end(place));
            };
            const bool isRight = inLine(head, shown.right) <= head;
            m_engine.m_visualAnchor = inLine(anchor, isRight ? shown.right : shown.left);
            column = isRight ? shown.left : shown.right;
            newHead = inLine(head, column);
        }
        setCaret(newHead, column);
    } else {
        m_engine.m_visualAnchor = head;
        setCaret(anchor);
    }
    finish();
}

VimEngine::Extent VimEngine::Selecting::extent() const
{
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    const qsizetype low = std::min(m_engine.m_visualAnchor, m_engine.m_visualHead);
    const qsizetype high = std::max(m_engine.m_visualAnchor, m_engine.m_visualHead);
    Extent extent{.mode = m_engine.m_mode, .lines = lines.number(high) - lines.number(low) + 1};
    if (m_engine.m_mode == Mode::visualBlock) {
        const VimBlock shown = block();
        extent.isEndless = shown.goesToEnds();
        extent.units = extent.isEndless ? 0 : shown.width();
    } else {
        extent.isEndless = isEndless();
        const qsizetype last = lines.cells(high).first;
        extent.units = extent.lines > 1 ? last : lines.cells(high).last - lines.cells(low).first + 1;
    }
    return extent;
}

void VimEngine::Selecting::selectAgain(const Extent &extent, std::optional<qsizetype> column)
{
    const qsizetype from = caret();
    qsizetype head = from;
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const qsizetype line = lines.startNear(from, extent.lines - 1);
        const qsizetype first = column.value_or(lines.column(from));
        const qsizetype cell = extent.mode == Mode::visualBlock || extent.lines == 1 ? first + extent.units - 1 : extent.units;
        head = extent.isEndless ? lines.end(line)
               : extent.mode == Mode::visualLine
                   ? TextBoundaries::snapped(text(), std::min(line + from - lines.start(from), lines.end(line)))
                   : lines.placeAt(line, std::max<qsizetype>(cell, 0));
    }
    begin(extent.mode, from, head);
    if (extent.mode == Mode::visualBlock && !extent.isEndless) {
        m_width = Width{head, extent.units};
    }
    setCaret(head, extent.isEndless ? std::optional(VimLines::endless) : std::nullopt);
}

// What is done with what is selected

VimEngine::Operating::Region VimEngine::Selecting::region() const
{
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    const qsizetype low = std::min(m_engine.m_visualAnchor, m_engine.m_visualHead);
    const qsizetype high = std::max(m_engine.m_visualAnchor, m_engine.m_visualHead);
    if (m_engine.m_mode == Mode::visualLine) {
        return Operating::Region::ofLines(lines, low, high, firstOfLines(lines));
    }
    const qsizetype end = lines.isAtEnd(high) ? (lines.isLast(high) ? high : lines.next(high)) : lines.after(high);
    const bool isOfLines = lines.start(low) != lines.start(high) || (end > low && isBreak(lines.at(end - 1)));
    return {.range = TextRange::between(low, end),
            .start = low,
            .isOfLines = isOfLines,
            .markEnd = end > low && isBreak(lines.at(end - 1)) ? std::optional(end) : std::nullopt};
}

void VimEngine::Selecting::takeExtent()
{
    m_engine.m_extent = extent();
    m_engine.m_visualExtent = m_engine.m_extent;
}

void VimEngine::Selecting::apply(OperatorKind kind, std::optional<Span> span, bool toEnds)
{
    m_engine.m_extent = extent();
    if (span == Span::lines) {
        m_engine.m_extent->mode = Mode::visualLine;
    }
    m_engine.m_extent->isEndless = m_engine.m_extent->isEndless || toEnds;
    m_engine.m_visualExtent = m_engine.m_extent;
    remember();
    const qsizetype count = m_engine.effectiveCount();
    const bool isLineOperator = kind == OperatorKind::indent || kind == OperatorKind::outdent || kind == OperatorKind::format ||
                                kind == OperatorKind::formatInPlace || kind == OperatorKind::toggleComment || kind == OperatorKind::filter;
    if (m_engine.m_mode == Mode::visualBlock && span != Span::lines &&
        (!isLineOperator || kind == OperatorKind::indent || kind == OperatorKind::outdent)) {
        VimBlock shown = block();
        shown.right = toEnds ? VimLines::endless : shown.right;
        m_engine.setMode(Mode::normal);
        m_exact.operating.applyToBlock(kind, shown);
        return;
    }
    Operating::Region taken = region();
    if (span == Span::lines && taken.span != Span::lines) {
        const Sight sight = see();
        taken = Operating::Region::ofLines(sight.lines, m_engine.m_visualAnchor, m_engine.m_visualHead, firstOfLines(sight.lines));
    }
    if (isLineOperator) {
        const Sight sight = see();
        taken.range = sight.lines.lines(std::min(m_engine.m_visualAnchor, m_engine.m_visualHead),
                                        std::max(m_engine.m_visualAnchor, m_engine.m_visualHead));
        taken.amount = count;
    }
    m_engine.setMode(Mode::normal);
    const bool isFormat = kind == OperatorKind::format || kind == OperatorKind::formatInPlace;
    const qsizetype place = isFormat ? std::min(m_engine.m_visualHead, text().length()) : taken.start;
    m_engine.m_view.select({place, 0}, place);
    m_exact.operating.apply(kind, taken);
}

void VimEngine::Selecting::removeLines(OperatorKind kind)
{
    const bool isBlock = m_engine.m_mode == Mode::visualBlock;
    apply(kind, isBlock ? std::nullopt : std::optional(Span::lines), isBlock);
}

void VimEngine::Selecting::removeAll()
{
    apply(OperatorKind::remove, m_engine.m_mode == Mode::visualBlock ? std::nullopt : std::optional(Span::lines));
}

void VimEngine::Selecting::yankLines()
{
    apply(OperatorKind::yank, m_engine.m_mode == Mode::visualBlock ? std::nullopt : std::optional(Span::lines));
}

namespace {

/// `key` in place of each character but breaks.
TextEdits replacedCharacters(const VimLines &lines, TextRange range, QStringView key)
{
    TextEdits edits;
    for (qsizetype at = range.location; at < range.end(); at = std::max(lines.next(at), at + 1)) {
        const TextRange inLine = TextRange::between(at, std::min(lines.end(at), range.end()));
        QString now;
        for (qsizetype place = inLine.location; place < inLine.end(); place = lines.after(place)) {
            now += key;
        }
        if (lines.text().toString(inLine) != now) {
            edits.add(inLine, Rope(now));
        }
    }
    return edits;
}

/// As often as there are cells; a wide one that does not fit leaves a blank.
TextEdits replacedCells(const VimLines &lines, const VimBlock &block, QStringView key)
{
    const bool isBroken = key == QChar(u'\r');
    const Rope character(key);
    const qsizetype each = isBroken ? 1 : std::max<qsizetype>(VimLines(character).width(0, 0), 1);
    TextEdits edits;
    for (const VimBlock::Row &row : block.rows(lines)) {
        if (row.range.isEmpty()) {
            continue;
        }
        const qsizetype from = lines.cells(row.range.location).first + row.cellsBefore;
        const qsizetype cells = lines.cells(row.range.end()).first - row.cellsBehind - from;
        const QString now = QString(row.cellsBefore, u' ') + (isBroken ? u"\n"_s : key.toString().repeated(cells / each)) +
                            QString(row.cellsBehind + (row.missing > 0 || block.goesToEnds() ? 0 : cells % each), u' ');
        edits.add(row.range, Rope(now));
    }
    return edits;
}

} // namespace

void VimEngine::Selecting::replaceCharacters(QStringView key)
{
    if (key == QChar(VimKey::escape) || key == QChar(VimKey::backspace)) {
        fail();
        return;
    }
    takeExtent();
    remember();
    const bool isBlock = m_engine.m_mode == Mode::visualBlock;
    TextEdits edits;
    qsizetype start = 0;
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        if (isBlock) {
            const VimBlock shown = block();
            start = shown.rows(lines).front().range.location;
            edits = replacedCells(lines, shown, key);
        } else {
            const TextRange taken = region().range;
            start = taken.location;
            const bool endsWithBreak = !taken.isEmpty() && isBreak(lines.at(taken.end() - 1));
            edits = replacedCharacters(lines, {taken.location, taken.length - (endsWithBreak ? 1 : 0)}, key);
        }
    }
    const qsizetype last = std::max(m_engine.m_visualAnchor, m_engine.m_visualHead);
    m_engine.setMode(Mode::normal);
    const TextRange taken = TextRange::between(std::min(start, last), last + 1);
    const bool isInLine = text().lineAt(taken.location) == text().lineAt(last);
    m_exact.changing.beginChange(start, isInLine ? Changing::Reach::line : Changing::Reach::lines, taken);
    m_exact.changing.setChangeMarks(start, last); // of a rectangle in their lines and columns, whatever becomes of those
    edit(edits);
    if (!isBlock && !edits.isEmpty()) {
        m_exact.changing.setChangeMarks(start, edits.newRange(edits.count() - 1).end() - 1);
    }
    m_exact.changing.noteChange(start);
    setCaret(start);
    finish(Repeatable::yes);
}

void VimEngine::Selecting::join(VimFormatting::Glue glue)
{
    takeExtent();
    const qsizetype lines = m_engine.m_extent->lines;
    remember();
    const qsizetype start = [&] {
        const Sight sight = see();
        const VimBlock shown = block();
        return m_engine.m_mode == Mode::visualBlock  ? shown.row(sight.lines, shown.firstLine).range.location
               : m_engine.m_mode == Mode::visualLine ? firstOfLines(sight.lines)
                                                     : std::min(m_engine.m_visualAnchor, m_engine.m_visualHead);
    }();
    m_engine.setMode(Mode::normal);
    setCaret(start);
    if (!m_exact.repeating.isReplaying()) {
        m_exact.repeating.remember();
    }
    m_exact.operating.join(lines, glue);
}

void VimEngine::Selecting::add(qint64 by, bool isProgressive)
{
    const bool isOfLines = m_engine.m_mode == Mode::visualLine;
    takeExtent();
    remember();
    TextEdits edits;
    qsizetype start = 0;
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const qsizetype low = std::min(m_engine.m_visualAnchor, m_engine.m_visualHead);
        const qsizetype high = std::max(m_engine.m_visualAnchor, m_engine.m_visualHead);
        start = m_engine.m_mode == Mode::visualLine ? firstOfLines(lines) : low;
        qint64 sum = by;
        const auto addIn = [&](TextRange range) {
            if (const auto number = VimNumber::added(lines, range.location, range.end(), true, sum)) {
                edits.add(number->range, Rope(number->text));
                sum += isProgressive ? by : 0;
            }
        };
        if (m_engine.m_mode == Mode::visualBlock) {
            const VimBlock shown = block();
            const auto rows = shown.rows(lines);
            start = rows.front().range.location;
            for (const VimBlock::Row &row : rows) {
                addIn(row.range);
            }
        } else {
            for (qsizetype line = lines.start(low);; line = lines.next(line)) {
                const bool isWhole = m_engine.m_mode == Mode::visualLine;
                const qsizetype from = isWhole ? line : std::max(line, low);
                const qsizetype behind =
                    isWhole || lines.start(high) != line ? lines.end(line) : std::min(lines.after(high), lines.end(line));
                addIn(TextRange::between(from, std::max(from, behind)));
                if (lines.start(high) == line || lines.isLast(line)) {
                    break;
                }
            }
        }
    }
    m_engine.setMode(Mode::normal);
    const bool isInLine = text().lineAt(m_engine.m_visualAnchor) == text().lineAt(m_engine.m_visualHead);
    const auto [low, high] = std::minmax(m_engine.m_visualAnchor, m_engine.m_visualHead);
    m_exact.changing.beginChange(start, isInLine ? Changing::Reach::line : Changing::Reach::lines, TextRange::between(low, high + 1));
    edit(edits);
    if (!edits.isEmpty()) {
        m_exact.changing.setChangeMarks(edits.newRange(0).location, edits.newRange(edits.count() - 1).end() - 1);
        m_exact.changing.noteLine(start);
    }
    setCaret(isOfLines ? text().lineStart(text().lineAt(start)) : start);
    finish(Repeatable::yes);
}

/// Of what is no block: at the start of its first line, or behind it; where it was selected backwards Vim has places of its own.
qsizetype VimEngine::Selecting::placeToInsert(const VimLines &lines, Side side) const
{
    const qsizetype anchor = m_engine.m_visualAnchor;
    const qsizetype head = m_engine.m_visualHead;
    const bool isBackward = head < anchor;
    const bool isInLine = lines.start(head) == lines.start(anchor);
    if (side == Side::before) {
        if (m_exact.repeating.isReplaying()) {
            return std::min(anchor, head);
        }
        return isBackward && !isInLine ? head : lines.start(std::min(anchor, head));
    }
    if (isBackward && !isInLine) {
        return lines.start(anchor);
    }
    const qsizetype last = isBackward ? head : std::max(anchor, head);
    if (isEndless()) {
        return lines.last(last);
    }
    return lines.cells(last).last == 0 ? last : lines.after(last); // Vim looks at the column
}

namespace {

/// What is typed at a side of a rectangle goes to `places`, in the text after what makes room for it there.
struct BlockInsertion {
    TextEdits padding;
    std::vector<qsizetype> places;
};

BlockInsertion insertionBefore(const VimLines &lines, const VimBlock &block)
{
    BlockInsertion made;
    for (const VimBlock::Row &row : block.rows(lines)) {
        const qsizetype from = row.range.location;
        const bool isFirst = row.line == block.firstLine;
        const bool isBroken = row.cellsBefore > 0 && !isFirst && lines.at(from) == u'\t';
        if (!row.isShort) {
            made.places.push_back(from + made.padding.growth() + (isBroken ? row.cellsBefore : 0));
        }
        if (isBroken) {
            made.padding.add({from, 1}, Rope(QString(lines.width(from, block.left - row.cellsBefore), u' ')));
        }
        if (isFirst && row.cellsBefore > 0) {
            break; // what would begin within a tab goes before it, and there alone
        }
    }
    return made;
}

/// Short lines are filled up to the rectangle.
BlockInsertion insertionBehind(const VimLines &lines, const VimBlock &block)
{
    BlockInsertion made;
    for (const VimBlock::Row &row : block.rows(lines)) {
        const qsizetype end = lines.end(row.line);
        const qsizetype from = block.goesToEnds() ? end : row.range.end();
        const qsizetype missing = from == end && !block.goesToEnds() ? std::max<qsizetype>(block.right + 1 - lines.cells(end).first, 0) : 0;
        made.padding.add({end, 0}, Rope(QString(missing, u' ')));
        made.places.push_back(from + made.padding.growth());
    }
    return made;
}

} // namespace

void VimEngine::Selecting::insert(Side side, qsizetype count)
{
    const qsizetype low = std::min(m_engine.m_visualAnchor, m_engine.m_visualHead);
    takeExtent();
    if (m_engine.m_mode != Mode::visualBlock) {
        m_engine.m_visualExtent->mode = Mode::visualLine; // it is a command for whole lines
    }
    remember();
    if (m_engine.m_mode != Mode::visualBlock) {
        const qsizetype place = placeToInsert(see().lines, side);
        m_engine.setMode(Mode::normal);
        m_engine.m_view.select({low, 0}, low);
        m_exact.inserting.enter(place, count);
        return;
    }
    const VimBlock shown = block();
    BlockInsertion made;
    TextRange first;
    {
        const Sight sight = see();
        first = shown.row(sight.lines, shown.firstLine).range;
        made = side == Side::before ? insertionBefore(sight.lines, shown) : insertionBehind(sight.lines, shown);
    }
    m_engine.setMode(Mode::normal);
    m_engine.m_view.select({first.location, 0}, first.location);
    m_exact.inserting.begin();
    // The line below goes by itself when there is but one.
    m_exact.changing.keepLine(side == Side::before ? first.location : first.end());
    if (shown.lastLine == text().lineStart(text().lineAt(shown.firstLine) + 1)) {
        m_exact.changing.keepLine(shown.lastLine);
    }
    TextEdits unfilling;
    const TextEdits inverse = made.padding.inverse(text());
    for (size_t index = 0; index < made.padding.count(); ++index) {
        // What fills up the first line stays.
        if (text().lineAt(made.padding[index].range.location) != text().lineAt(first.location)) {
            unfilling.add(inverse[index].range, inverse[index].text);
        }
    }
    edit(made.padding);
    m_exact.inserting.enterBlock(
        {.places = made.places.empty() ? std::vector{low} : made.places, .endsAt = first.location, .count = count, .unfilling = unfilling});
}

void VimEngine::Selecting::takeObject(VimTextObject::Extent extent, char16_t key)
{
    m_exact.going.rememberObject(key);
    std::optional<VimExactObject::Result> object;
    {
        const Sight sight = see();
        object = VimExactObject::range({.lines = sight.lines,
                                        .caret = m_engine.caret(),
                                        .count = m_engine.effectiveCount(),
                                        .extent = extent,
                                        .isVisual = true,
                                        .isOfLines = m_engine.m_mode == Mode::visualLine,
                                        .anchor = m_engine.m_visualAnchor},
                                       key);
    }
    if (!object) {
        fail();
        return;
    }
    using enum VimExactObject::Result::Selects;
    const bool isOfLines = m_engine.m_mode == Mode::visualLine;
    const Mode mode = object->selects == lines                                                     ? Mode::visualLine
                      : object->selects == characters || (object->selects == noLines && isOfLines) ? Mode::visual
                                                                                                   : m_engine.m_mode;
    begin(mode, object->from, object->place);
    setCaret(object->place);
    object->failed ? fail() : finish();
}

void VimEngine::Selecting::selectHit(SearchDirection direction)
{
    if (!m_engine.m_lastSearch) {
        fail();
        return;
    }
    // The hit that the caret is in, or the next one; a selection grows to the next one.
    const qsizetype from = caret();
    const bool isGrowing = m_engine.isVisual() && m_engine.m_visualAnchor != m_engine.m_visualHead;
    const bool isForward = direction == SearchDirection::forward;
    VimSearch search = *m_engine.m_lastSearch;
    search.direction = SearchDirection::backward;
    search.wraps = false;
    auto hit = isGrowing ? std::nullopt : search.hit(text(), TextBoundaries::nextGrapheme(text(), from));
    bool isHere = hit && (hit->end() > from || (hit->isEmpty() && hit->location == from));
    if (const qsizetype end = see().lines.end(from); !isHere && !isGrowing && see().lines.last(from) == from) {
        const auto behind = search.hit(text(), end + 1); // of nothing, behind the last character
        isHere = behind && behind->isEmpty() && behind->location == end;
        hit = isHere ? behind : hit;
    }
    if (!hit || (isForward && !isHere)) {
        search.direction = direction;
        search.wraps = m_engine.m_options.wrapsSearch;
        hit = search.hit(text(), from);
    }
    if (!hit) {
        fail();
        return;
    }
    // Of nothing it takes the character there, if only the break of its line.
    const qsizetype last = hit->isEmpty() ? hit->location : TextBoundaries::previousGrapheme(text(), hit->end());
    if (const auto kind = m_engine.m_pendingOperator) {
        // The last break stays.
        const qsizetype behind = std::max(hit->end(), TextBoundaries::nextGrapheme(text(), last));
        const qsizetype most = see().lines.end(see().lines.lastStart());
        const TextRange range = TextRange::between(hit->location, std::max(std::min(behind, most), hit->location));
        const bool isOfLines = text().lineAt(range.location) != text().lineAt(range.end());
        setSelected({Mode::visual, {hit->location}, {last}, false});
        m_exact.operating.apply(*kind, {.range = range, .start = range.location, .isOfLines = isOfLines, .isInclusive = true});
        return;
    }
    const qsizetype anchor = m_engine.isVisual() ? m_engine.m_visualAnchor : isForward ? hit->location : last;
    begin(Mode::visual, anchor, isForward ? last : hit->location);
    setCaret(isForward ? last : hit->location);
    finish();
}

void VimEngine::Selecting::setSelected(const Selected &selected)
{
    m_last = selected;
    const Sight sight = see();
    const auto [low, high] = std::minmax(selected.anchor.offset, selected.head.offset);
    if (selected.mode == Mode::visualLine) {
        m_exact.marks.set(u'<', sight.lines.start(low));
        m_exact.marks.set(u'>', {.offset = sight.lines.end(high), .column = VimPlace::atLineEnd});
    } else {
        m_exact.marks.set(u'<', low);
        m_exact.marks.set(u'>', high);
    }
}

void VimEngine::Selecting::followChange(const TextChange &change)
{
    if (!m_last) {
        return;
    }
    using enum VimPlace::WithoutLine;
    const qsizetype line = change.before.lineAt(std::min(m_last->anchor.offset, change.before.length()));
    if (!m_last->anchor.after(change, goes) && line >= VimLines(change.after).count()) {
        m_last.reset(); // it went with the last line
        return;
    }
    m_last->anchor = m_last->anchor.after(change, staysThere).value_or(VimPlace{});
    m_last->head = m_last->head.after(change, staysThere).value_or(VimPlace{});
}
