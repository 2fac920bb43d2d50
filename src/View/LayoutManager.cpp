// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/LayoutManager.h"

#include "Text/TextStorage.h"
#include "View/DisplayText.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace {

// Shorter segments make a key press cheaper, but in a wrapped text every cut ends a row before its time.
constexpr qsizetype unwrappedSegment = 384;
constexpr qsizetype wrappedSegment = 4096;
constexpr size_t longLineLimit = 256;
constexpr size_t mostRowChanges = 64;

/// The advances of the units of `text`, each on its own.
std::vector<double> advancesOf(const QFont &font, const QString &text)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(1'000'000);
    layout.endLayout();
    std::vector<double> advances;
    for (int i = 0; i < text.length(); ++i) {
        advances.push_back(line.cursorToX(i + 1) - line.cursorToX(i));
    }
    return advances;
}

} // namespace

LayoutManager::LayoutManager(const TextStorage &storage, Settings settings)
    : m_storage(storage), m_settings(std::move(settings)),
      m_rows([this](qsizetype firstLine, qsizetype count) { return estimateRows(firstLine, count); })
{
    measureFont();
    forgetLayouts();
    m_revision = m_storage.revision();
}

LayoutManager::~LayoutManager() = default;

void LayoutManager::setSettings(Settings settings)
{
    const bool isFontNew = settings.font != m_settings.font || settings.devicePixelRatio != m_settings.devicePixelRatio;
    m_settings = std::move(settings);
    if (isFontNew) {
        measureFont();
    }
    forgetLayouts();
}

void LayoutManager::measureFont()
{
    const QFontMetricsF metrics(m_settings.font);
    const double dpr = m_settings.devicePixelRatio;
    m_rowHeight = std::ceil((metrics.ascent() + metrics.descent() + std::max(0.0, metrics.leading())) * dpr) / dpr;
    m_baseline = std::round(metrics.ascent() * dpr) / dpr;
    const auto advances = advancesOf(m_settings.font, QStringLiteral("0iW. 0"));
    m_cellWidth = advances.front();
    m_blankWidth = advances[4];
    m_isFixedPitch = std::all_of(advances.begin(), advances.end(), [this](double advance) { return advance == m_cellWidth; });
    m_wideWidth = 0;
}

double LayoutManager::snapped(double pixels) const
{
    return std::round(pixels * m_settings.devicePixelRatio) / m_settings.devicePixelRatio;
}

double LayoutManager::wideWidth() const
{
    // Asked only once such a character turns up: it loads a fallback font.
    if (m_wideWidth == 0) {
        m_wideWidth = advancesOf(m_settings.font, QStringLiteral("\u6C34")).front();
    }
    return m_wideWidth;
}

void LayoutManager::forgetLayouts()
{
    m_segmentLength = wraps() ? wrappedSegment : unwrappedSegment;
    m_cache.clear();
    m_longLines.clear();
    m_widest = 0;
    if (wraps()) {
        m_rows.reset(m_storage.text().lineCount());
    }
}

void LayoutManager::findWidest()
{
    m_widest = 0;
    for (const auto &layout : m_cache) {
        m_widest = std::max(m_widest, layout->width());
    }
    for (const LongLine &line : m_longLines) {
        m_widest = std::max(m_widest, line.width());
    }
}

void LayoutManager::textChanged(const TextChange &change)
{
    m_revision = m_storage.revision();
    m_lastLine.reset();
    changeCache(change.edits);
    changeLongLines(change);
    if (wraps()) {
        changeRows(change);
    } else {
        findWidest();
    }
}

void LayoutManager::changeCache(const TextEdits &edits)
{
    std::erase_if(m_cache, [&edits](const auto &layout) { return edits.touches(layout->range()); });
    for (const auto &layout : m_cache) {
        layout->moveBy(edits.shiftAt(layout->range().location));
    }
}

/// A line that is edited in one place keeps its other segments; one that is edited in several is cut anew.
void LayoutManager::changeLongLines(const TextChange &change)
{
    const TextEdits &edits = change.edits;
    const bool isWithinLine = edits.count() == 1 && change.isWithinLines();
    std::erase_if(m_longLines, [&](const LongLine &line) {
        return edits.touches(line.range()) && !(isWithinLine && line.range().contains(edits[0].range));
    });
    for (LongLine &line : m_longLines) {
        if (edits.touches(line.range())) {
            line.replaced(change.after, edits[0].range.location, edits[0].range.length, edits[0].text.length(),
                          [this, indent = indentOfLine(line.range().location)](TextRange range) { return estimate(range, indent); });
        } else {
            line.moveBy(edits.shiftAt(line.range().location));
        }
    }
}

void LayoutManager::changeRows(const TextChange &change)
{
    const TextEdits &edits = change.edits;
    if (edits.count() > mostRowChanges) {
        // Rows between are soon counted anew, and until then nothing on the screen moves.
        const ReplacedStretch hull = edits.hull();
        const qsizetype first = change.after.lineAt(hull.location);
        m_rows.linesChanged(first, change.before.lineAt(hull.location + hull.removed) - change.before.lineAt(hull.location),
                            change.after.lineAt(hull.location + hull.inserted) - first);
    } else {
        for (size_t index = 0; index < edits.count(); ++index) {
            m_rows.linesChanged(change.after.lineAt(edits.newRange(index).location), change.removedLines(index),
                                change.insertedLines(index));
        }
    }
    if (m_rows.lineCount() != change.after.lineCount()) {
        // A pair of CR and LF that was made or broken between two lines moves the count by one; then nothing is known for sure.
        m_rows.reset(change.after.lineCount());
    }
}

void LayoutManager::stylesChanged(const std::vector<TextRange> &ranges)
{
    for (const TextRange range : ranges) {
        const auto first =
            std::ranges::partition_point(m_cache, [range](const auto &other) { return other->range().end() < range.location; });
        auto last = first;
        while (last != m_cache.end() && (*last)->range().location < range.end()) {
            ++last;
        }
        m_cache.erase(first, last);
    }
}

void LayoutManager::setPreedit(Preedit preedit)
{
    const auto forget = [this](qsizetype offset) { stylesChanged({TextRange{offset, 1}}); };
    if (!m_preedit.text.isEmpty()) {
        forget(m_preedit.offset);
    }
    m_preedit = std::move(preedit);
    if (!m_preedit.text.isEmpty()) {
        forget(m_preedit.offset);
    }
}

LayoutManager::Line LayoutManager::lineAt(qsizetype line)
{
    return lineFrom(line, m_storage.text().lineStart(line));
}

LayoutManager::Line LayoutManager::lineFrom(qsizetype line, qsizetype start)
{
    return known(line, start).line;
}

const LayoutManager::KnownLine &LayoutManager::known(qsizetype line, qsizetype start)
{
    Q_ASSERT_X(m_revision == m_storage.revision(), "LayoutManager", "asked before it was notified of a change");
    if (m_lastLine && m_lastLine->number == line && m_lastLine->line.start == start) {
        return *m_lastLine;
    }
    const Rope &text = m_storage.text();
    const qsizetype next = line + 1 < text.lineCount() ? text.lineStart(line + 1) : text.length();
    qsizetype end = next;
    if (line + 1 < text.lineCount()) {
        --end;
        if (end > start && text.at(end) == u'\n' && text.at(end - 1) == u'\r') {
            --end;
        }
    }
    m_lastLine = KnownLine{line, next, {start, end - start}};
    return *m_lastLine;
}

LongLine &LayoutManager::longLine(const Line &line)
{
    auto place = std::partition_point(m_longLines.begin(), m_longLines.end(),
                                      [&](const LongLine &other) { return other.range().location < line.start; });
    if (place != m_longLines.end() && place->range() == TextRange{line.start, line.length}) {
        return *place;
    }
    if (place != m_longLines.end() && place->range().location == line.start) {
        place = m_longLines.erase(place);
    }
    if (m_longLines.size() >= longLineLimit) {
        m_longLines.clear();
        place = m_longLines.end();
    }
    return *m_longLines.emplace(place, m_storage.text(), TextRange{line.start, line.length}, m_segmentLength,
                                [this, indent = indentOfLine(line.start)](TextRange range) { return estimate(range, indent); });
}

double LayoutManager::cellsPerRow() const
{
    return std::max(1.0, std::floor(*m_settings.wrapWidth / m_cellWidth));
}

double LayoutManager::widestIndent() const
{
    return std::floor(cellsPerRow() / 2) * m_cellWidth;
}

double LayoutManager::indentOfLine(qsizetype lineStart) const
{
    if (!wraps() || !m_settings.indentsWrappedRows) {
        return 0;
    }
    const Rope &text = m_storage.text();
    const double widest = widestIndent();
    const double tabStop = m_settings.tabWidth * m_cellWidth;
    double indent = 0;
    text.forEachChunk(TextRange::between(lineStart, text.length()), [&](const Rope::Chunk &chunk) {
        for (qsizetype index = 0; index < chunk.length; ++index) {
            if (chunk.at(index) == u' ') {
                indent += m_blankWidth;
            } else if (chunk.at(index) == u'\t') {
                indent = (std::floor(indent / tabStop + 0.001) + 1) * tabStop;
            } else {
                return false;
            }
            if (indent >= widest) {
                return false;
            }
        }
        return true;
    });
    return std::min(indent, widest);
}

LongLine::Measure LayoutManager::estimate(TextRange range, double indent) const
{
    const CellCount cells = countCells(m_storage.text(), range, m_settings.tabWidth);
    const double width =
        static_cast<double>(cells.narrow) * m_cellWidth + (cells.wide > 0 ? static_cast<double>(cells.wide) * wideWidth() : 0);
    const double rows = wraps() ? std::max(1.0, std::ceil(width / (cellsPerRow() * m_cellWidth - indent))) : 1;
    return {width, static_cast<qint64>(rows), cells.isExact && m_isFixedPitch};
}

qint64 LayoutManager::estimateRows(qsizetype firstLine, qsizetype count) const
{
    const Rope &text = m_storage.text();
    const auto units = static_cast<double>(text.lineStart(firstLine + count) - text.lineStart(firstLine));
    const double unitsPerRow = cellsPerRow();
    const auto lines = static_cast<double>(count);
    return units * 2 <= unitsPerRow * lines ? count : static_cast<qint64>(lines / 2 + units / unitsPerRow);
}

/// At a cut between two segments the preedit text is in the one behind.
bool LayoutManager::holdsPreedit(TextRange range) const
{
    if (m_preedit.text.isEmpty() || m_preedit.offset < range.location || m_preedit.offset > range.end()) {
        return false;
    }
    const Rope &text = m_storage.text();
    return m_preedit.offset < range.end() || range.end() == text.length() || text.at(range.end()) == u'\n' || text.at(range.end()) == u'\r';
}

std::unique_ptr<SegmentLayout> LayoutManager::makeLayout(TextRange range, double firstIndent, double indent)
{
    ++m_counters.layouts;
    m_counters.units += range.length;
    const auto insertion = holdsPreedit(range) ? std::optional(m_preedit) : std::nullopt;
    const SegmentLayout::Style style{.font = m_settings.font,
                                     .tabStop = m_settings.tabWidth * m_cellWidth,
                                     .wrapWidth = m_settings.wrapWidth,
                                     .rowHeight = m_rowHeight,
                                     .baseline = m_baseline,
                                     .firstIndent = firstIndent,
                                     .indent = indent};
    return std::make_unique<SegmentLayout>(range, displayText(m_storage.text(), range), m_formats.formats(m_storage, range), style,
                                           insertion);
}

SegmentLayout &LayoutManager::layout(TextRange range, qsizetype lineStart)
{
    const bool startsLine = range.location == lineStart;
    // What begins a line changes with it; of the others each has to be asked.
    const double later = startsLine ? 0 : indentOfLine(lineStart);
    auto place =
        std::partition_point(m_cache.begin(), m_cache.end(), [&](const auto &other) { return other->range().location < range.location; });
    if (place == m_cache.end() || (*place)->range() != range || (!startsLine && (*place)->indent() != later)) {
        auto fresh = makeLayout(range, later, startsLine ? indentOfLine(lineStart) : later);
        m_widest = std::max(m_widest, fresh->width());
        if (place != m_cache.end() && (*place)->range().location == range.location) {
            *place = std::move(fresh);
        } else {
            place = m_cache.insert(place, std::move(fresh));
        }
    }
    SegmentLayout &found = **place;
    found.lastUse = ++m_clock;
    if (m_cache.size() > m_cacheCapacity) {
        trimCache();
    }
    return found;
}

void LayoutManager::trimCache()
{
    // A quarter at a time, so that scrolling does not search for the oldest one at every row.
    std::vector<quint64> uses;
    uses.reserve(m_cache.size());
    std::transform(m_cache.begin(), m_cache.end(), std::back_inserter(uses), [](const auto &layout) { return layout->lastUse; });
    const auto quarter = uses.begin() + static_cast<qsizetype>(uses.size() / 4);
    std::nth_element(uses.begin(), quarter, uses.end());
    std::erase_if(m_cache, [oldest = *quarter](const auto &layout) { return layout->lastUse < oldest; });
}

SegmentLayout &LayoutManager::layoutShort(qsizetype lineNumber, const Line &line)
{
    SegmentLayout &found = layout({line.start, line.length}, line.start);
    if (wraps()) {
        m_rows.setRows(lineNumber, found.rowCount());
    }
    return found;
}

SegmentLayout &LayoutManager::layoutSegment(LongLine &line, qsizetype lineNumber, int segment)
{
    SegmentLayout &found = layout(line.segment(segment), line.range().location);
    const LongLine::Measure &known = line.measure(segment);
    // What was measured changes with styles and with a preedit text; less than a pixel comes from rounding.
    const bool isStillRight = known.isExact && known.rows == found.rowCount() && std::abs(known.width - found.width()) < 1;
    if (!isStillRight) {
        m_shifts += !wraps() && known.width != found.width() ? 1 : 0;
        line.setMeasure(segment, {found.width(), found.rowCount(), true});
    }
    if (wraps()) {
        m_rows.setRows(lineNumber, line.rowCount());
    } else {
        m_widest = std::max(m_widest, line.width());
    }
    return found;
}

RowPosition LayoutManager::rowOf(qsizetype offset, Affinity affinity)
{
    const Rope &text = m_storage.text();
    const qsizetype lineNumber = text.lineAt(offset);
    const Line line = lineAt(lineNumber);
    RowPosition row{lineNumber, line.start, 0, 0};
    if (!wraps()) {
        return row;
    }
    const bool isUpstream = affinity == Affinity::upstream && offset > line.start;
    const SegmentLayout *shown = nullptr;
    if (isLong(line)) {
        LongLine &cut = longLine(line);
        row.segment = cut.segmentAt(isUpstream ? offset - 1 : offset);
        shown = &layoutSegment(cut, lineNumber, row.segment);
    } else {
        shown = &layoutShort(lineNumber, line);
    }
    row.row = shown->rowAt(offset);
    if (isUpstream && row.row > 0 && shown->rowRange(row.row).location == offset) {
        --row.row;
    }
    return row;
}

std::optional<RowPosition> LayoutManager::next(const RowPosition &row)
{
    if (wraps()) {
        const Line line = lineFrom(row.line, row.lineStart);
        if (isLong(line)) {
            LongLine &cut = longLine(line);
            if (row.row + 1 < layoutSegment(cut, row.line, row.segment).rowCount()) {
                return RowPosition{row.line, row.lineStart, row.segment, row.row + 1};
            }
            if (row.segment + 1 < cut.segmentCount()) {
                return RowPosition{row.line, row.lineStart, row.segment + 1, 0};
            }
        } else if (row.row + 1 < layoutShort(row.line, line).rowCount()) {
            return RowPosition{row.line, row.lineStart, 0, row.row + 1};
        }
    }
    if (row.line + 1 >= m_storage.text().lineCount()) {
        return std::nullopt;
    }
    return RowPosition{row.line + 1, known(row.line, row.lineStart).next, 0, 0};
}

std::optional<RowPosition> LayoutManager::previous(const RowPosition &row)
{
    if (row.row > 0) {
        return RowPosition{row.line, row.lineStart, row.segment, row.row - 1};
    }
    if (row.segment > 0) {
        LongLine &cut = longLine(lineFrom(row.line, row.lineStart));
        return RowPosition{row.line, row.lineStart, row.segment - 1, layoutSegment(cut, row.line, row.segment - 1).rowCount() - 1};
    }
    if (row.line == 0) {
        return std::nullopt;
    }
    const Line line = lineAt(row.line - 1);
    if (!wraps()) {
        return RowPosition{row.line - 1, line.start, 0, 0};
    }
    if (!isLong(line)) {
        return RowPosition{row.line - 1, line.start, 0, layoutShort(row.line - 1, line).rowCount() - 1};
    }
    LongLine &cut = longLine(line);
    const int last = cut.segmentCount() - 1;
    return RowPosition{row.line - 1, line.start, last, layoutSegment(cut, row.line - 1, last).rowCount() - 1};
}

qint64 LayoutManager::step(RowPosition &row, qint64 count)
{
    if (!wraps()) {
        const qsizetype line = std::clamp<qsizetype>(row.line + count, 0, m_storage.text().lineCount() - 1);
        const qint64 went = line - row.line;
        row = {line, m_storage.text().lineStart(line), 0, 0};
        return went;
    }
    qint64 went = 0;
    for (; went != count; went += count > 0 ? 1 : -1) {
        const auto neighbour = count > 0 ? next(row) : previous(row);
        if (!neighbour) {
            break;
        }
        row = *neighbour;
    }
    return went;
}

TextRange LayoutManager::rangeOf(const RowPosition &row)
{
    const Line line = lineFrom(row.line, row.lineStart);
    if (!wraps()) {
        return {line.start, line.length};
    }
    return isLong(line) ? layoutSegment(longLine(line), row.line, row.segment).rowRange(row.row)
                        : layoutShort(row.line, line).rowRange(row.row);
}

bool LayoutManager::endsLine(const RowPosition &row)
{
    const Line line = lineFrom(row.line, row.lineStart);
    if (!wraps()) {
        return true;
    }
    if (isLong(line)) {
        LongLine &cut = longLine(line);
        return row.segment + 1 == cut.segmentCount() && row.row + 1 == layoutSegment(cut, row.line, row.segment).rowCount();
    }
    return row.row + 1 == layoutShort(row.line, line).rowCount();
}

qint64 LayoutManager::rowCount() const
{
    return wraps() ? m_rows.rowCount() : m_storage.text().lineCount();
}

qint64 LayoutManager::numberOf(const RowPosition &row)
{
    if (!wraps()) {
        return row.line;
    }
    const qint64 inLine = row.segment > 0 ? longLine(lineFrom(row.line, row.lineStart)).firstRow(row.segment) + row.row : row.row;
    return m_rows.rowsBefore(row.line) + inLine;
}

qsizetype LayoutManager::offsetNear(double number)
{
    const Rope &text = m_storage.text();
    const auto row = static_cast<qint64>(std::floor(number));
    if (row < 0) {
        return 0;
    }
    if (row >= rowCount()) {
        return text.length();
    }
    if (!wraps()) {
        return text.lineStart(row);
    }
    const RowMap::Place place = m_rows.lineAtRow(row);
    const Line line = lineAt(place.line);
    const qint64 rows = std::max<qint64>(1, m_rows.rowsBefore(place.line + 1) - m_rows.rowsBefore(place.line));
    return line.start + static_cast<qsizetype>(double(line.length) * double(place.row) / double(rows));
}

RowPosition LayoutManager::rowNumber(qint64 number)
{
    number = std::clamp<qint64>(number, 0, rowCount() - 1);
    if (!wraps()) {
        return {number, m_storage.text().lineStart(number), 0, 0};
    }
    const RowMap::Place place = m_rows.lineAtRow(number);
    return rowInLine(place.line, lineAt(place.line), place.row);
}

RowPosition LayoutManager::rowInLine(qsizetype lineNumber, const Line &line, qint64 row)
{
    if (!isLong(line)) {
        const int last = layoutShort(lineNumber, line).rowCount() - 1;
        return {lineNumber, line.start, 0, static_cast<int>(std::min<qint64>(row, last))};
    }
    LongLine &cut = longLine(line);
    const int segment = cut.segmentAtRow(row);
    const qint64 inSegment = row - cut.firstRow(segment);
    const int last = layoutSegment(cut, lineNumber, segment).rowCount() - 1;
    return {lineNumber, line.start, segment, static_cast<int>(std::clamp<qint64>(inSegment, 0, last))};
}

LayoutManager::Placed LayoutManager::placedSegment(LongLine &line, qsizetype lineNumber, int segment)
{
    const SegmentLayout &shown = layoutSegment(line, lineNumber, segment);
    return {shown, 0, line.x(segment)};
}

LayoutManager::Placed LayoutManager::placedAt(const RowPosition &row, qsizetype offset)
{
    const Line line = lineFrom(row.line, row.lineStart);
    if (!isLong(line)) {
        return {layoutShort(row.line, line), row.row, 0};
    }
    LongLine &cut = longLine(line);
    if (wraps()) {
        return {layoutSegment(cut, row.line, row.segment), row.row, 0};
    }
    return placedSegment(cut, row.line, cut.segmentAt(offset));
}

LayoutManager::Placed LayoutManager::placedAtX(const RowPosition &row, double x)
{
    const Line line = lineFrom(row.line, row.lineStart);
    if (wraps() || !isLong(line)) {
        return placedAt(row, row.lineStart);
    }
    LongLine &cut = longLine(line);
    return placedSegment(cut, row.line, cut.segmentAtX(x));
}

double LayoutManager::xOf(const RowPosition &row, qsizetype offset)
{
    const Placed placed = placedAt(row, offset);
    return placed.x + placed.layout.xOf(placed.row, offset);
}

RowPosition LayoutManager::rowInPreedit(qsizetype position)
{
    RowPosition row = rowOf(m_preedit.offset);
    if (wraps()) {
        row.row = placedAt(row, m_preedit.offset).layout.rowInPreedit(position);
    }
    return row;
}

double LayoutManager::xInPreedit(const RowPosition &row, qsizetype position)
{
    const Placed placed = placedAt(row, m_preedit.offset);
    return placed.x + placed.layout.xInPreedit(placed.row, position);
}

qsizetype LayoutManager::offsetAt(const RowPosition &row, double x)
{
    const Placed placed = placedAtX(row, x);
    return placed.layout.offsetAt(placed.row, x - placed.x, QTextLine::CursorBetweenCharacters);
}

qsizetype LayoutManager::graphemeAt(const RowPosition &row, double x)
{
    const Placed placed = placedAtX(row, x);
    return placed.layout.offsetAt(placed.row, x - placed.x, QTextLine::CursorOnCharacter);
}

std::vector<Span> LayoutManager::spansOf(const RowPosition &row, TextRange range, Span visible)
{
    std::vector<Span> spans;
    const auto add = [&spans](double from, double to) {
        const Span span{std::min(from, to), std::max(from, to)};
        if (!spans.empty() && std::abs(spans.back().right - span.left) < 0.01) {
            spans.back().right = span.right;
        } else {
            spans.push_back(span);
        }
    };
    forEachLayout(row, visible, [&](const SegmentLayout &shown, int inLayout, double x) {
        const TextRange inRow = wraps() ? shown.rowRange(inLayout) : shown.range();
        const TextRange shared = range.intersected(inRow);
        if (shared.isEmpty()) {
            return;
        }
        if (!shown.mixesDirections()) {
            add(x + shown.xOf(inLayout, shared.location), x + shown.xOf(inLayout, shared.end()));
            return;
        }
        // Neighbours in the text need not be neighbours on the screen, so each character is taken by its own two edges.
        for (qsizetype offset = shared.location; offset < shared.end(); ++offset) {
            add(x + shown.xOf(inLayout, offset), x + shown.xBehind(inLayout, offset));
        }
    });
    return spans;
}

double LayoutManager::widthOf(const RowPosition &row)
{
    const Line line = lineFrom(row.line, row.lineStart);
    if (!wraps() && isLong(line)) {
        return longLine(line).width();
    }
    const Placed placed = placedAt(row, row.lineStart);
    return placed.layout.rowWidth(placed.row);
}

double LayoutManager::contentWidth() const
{
    if (wraps()) {
        return *m_settings.wrapWidth;
    }
    return std::max(m_widest, static_cast<double>(m_storage.text().longestLine()) * m_cellWidth);
}

void LayoutManager::forEachLayout(const RowPosition &row, Span visible,
                                  const std::function<void(const SegmentLayout &, int, double)> &visit)
{
    const Line line = lineFrom(row.line, row.lineStart);
    if (wraps() || !isLong(line)) {
        const Placed placed = placedAt(row, row.lineStart);
        visit(placed.layout, placed.row, placed.x);
        return;
    }
    LongLine &cut = longLine(line);
    for (int segment = cut.segmentAtX(visible.left); segment < cut.segmentCount(); ++segment) {
        const Placed placed = placedSegment(cut, row.line, segment);
        if (placed.x > visible.right) {
            break;
        }
        visit(placed.layout, placed.row, placed.x);
    }
}

void LayoutManager::measureGap(RowMap::Stretch gap, qsizetype unitBudget)
{
    const qsizetype start = m_storage.text().lineStart(gap.firstLine);
    const auto cells = countCellsOfLines(m_storage.text(), start, gap.count, unitBudget, m_settings.tabWidth);
    const auto perRow = static_cast<qsizetype>(cellsPerRow());
    std::vector<quint32> rows(cells.size());
    const auto widest = m_settings.indentsWrappedRows ? static_cast<qsizetype>(widestIndent() / m_cellWidth) : 0;
    std::transform(cells.begin(), cells.end(), rows.begin(), [perRow, widest](const LineCells &line) {
        const qsizetype others = perRow - std::min(line.indent, widest);
        return static_cast<quint32>(line.cells <= perRow ? 1 : 1 + (line.cells - perRow + others - 1) / others);
    });
    m_rows.setRowsOfLines(gap.firstLine, rows);
}

bool LayoutManager::refine(qsizetype line, qsizetype unitBudget)
{
    const auto gap = wraps() ? m_rows.gapNear(line) : std::nullopt;
    if (!gap) {
        return false;
    }
    // Downwards from the line first, then what lies above it.
    const qsizetype end = gap->firstLine + gap->count;
    const qsizetype from = std::clamp(line, gap->firstLine, end - 1);
    const bool isAbove = end <= line;
    measureGap(isAbove ? *gap : RowMap::Stretch{from, end - from}, unitBudget);
    return m_rows.gapNear(line).has_value();
}

void LayoutManager::checkInvariants() const
{
    m_rows.checkInvariants();
    const bool isSorted = std::is_sorted(m_cache.begin(), m_cache.end(),
                                         [](const auto &a, const auto &b) { return a->range().location < b->range().location; });
    const bool isInText = m_cache.empty() || m_cache.back()->range().end() <= m_storage.text().length();
    if (!isSorted || !isInText || (wraps() && m_rows.lineCount() != m_storage.text().lineCount())) {
        qFatal("LayoutManager: the layouts do not match the text");
    }
}
