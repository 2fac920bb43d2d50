// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LongLine.h"
#include "Text/Selections.h"
#include "View/RowMap.h"
#include "View/SegmentLayout.h"

#include <QFont>

#include <memory>

class TextStorage;

/// One row of a view's text. Without wrapping a line is one row, however long.
struct RowPosition {
    qsizetype line = 0;
    /// Offset of the line's first unit.
    qsizetype lineStart = 0;
    /// In a long wrapped line: which segment, and `row` counts within it. Else 0, and `row` counts within the line.
    int segment = 0;
    int row = 0;

    friend constexpr bool operator==(RowPosition, RowPosition) = default;
};

/// A stretch of pixels from `left` to `right`.
struct Span {
    double left = 0;
    double right = 0;
};

/// The layout of one view: its rows, and where every character stands in them.
///
/// Every view has its own font, tab and wrap width on the same storage. Only what is asked for is laid out, segment by segment
/// (SegmentLayout), and the last few screens of it are kept. All rows are equally high. Rows of lines that were never laid out are
/// estimated until refine() comes by; a question about one row is always exact.
///
/// Offsets are UTF-16 units of the storage, pixels are logical, x counts from the row's left edge. Main thread only.
class LayoutManager final {
public:
    struct Settings {
        QFont font;
        /// In cells, at least 1.
        int tabWidth = 4;
        /// Pixels; none when lines do not wrap.
        std::optional<double> wrapWidth;
        /// The rows that continue a wrapped line begin below its first letter, unless that is far to the right.
        bool indentsWrappedRows = false;
        double devicePixelRatio = 1;
    };

    using Preedit = SegmentLayout::Preedit;

    /// What was laid out and copied so far; guards the cost of an operation in tests.
    struct Counters {
        qint64 layouts = 0;
        qint64 units = 0;
    };

    LayoutManager(const TextStorage &storage, Settings settings);
    ~LayoutManager();

    [[nodiscard]] const Settings &settings() const { return m_settings; }
    void setSettings(Settings settings);
    /// The storage already holds the new text. Until it was notified, the layout may not be asked for anything.
    void textChanged(const TextChange &change);
    void stylesChanged(const std::vector<TextRange> &ranges);
    void setPreedit(Preedit preedit);
    [[nodiscard]] const Preedit &preedit() const { return m_preedit; }

    [[nodiscard]] bool wraps() const { return m_settings.wrapWidth.has_value(); }
    [[nodiscard]] double rowHeight() const { return m_rowHeight; }
    [[nodiscard]] double baseline() const { return m_baseline; }
    /// The nearest whole device pixel.
    [[nodiscard]] double snapped(double pixels) const;
    /// The width of one digit.
    [[nodiscard]] double cellWidth() const { return m_cellWidth; }

    // Rows, by place in the text.
    [[nodiscard]] RowPosition rowOf(qsizetype offset, Affinity affinity = Affinity::downstream);
    [[nodiscard]] std::optional<RowPosition> next(const RowPosition &row);
    [[nodiscard]] std::optional<RowPosition> previous(const RowPosition &row);
    /// Steps `count` rows down (or up, when negative) as far as there are rows; returns how many it went.
    qint64 step(RowPosition &row, qint64 count);
    /// The units of a row without the line break.
    [[nodiscard]] TextRange rangeOf(const RowPosition &row);
    /// True when the line's break (or the text's end) follows the row.
    [[nodiscard]] bool endsLine(const RowPosition &row);
    [[nodiscard]] bool startsLine(const RowPosition &row) const { return row.segment == 0 && row.row == 0; }

    // Rows, by number from the top of the text; estimated where nothing was laid out yet.
    [[nodiscard]] qint64 rowCount() const;
    [[nodiscard]] qint64 numberOf(const RowPosition &row);
    [[nodiscard]] RowPosition rowNumber(qint64 number);
    /// About where the text of row `number` begins, a fraction counted in; clamped. Nothing is laid out for it.
    [[nodiscard]] qsizetype offsetNear(double number);

    // Along a row.
    [[nodiscard]] double xOf(const RowPosition &row, qsizetype offset);
    /// The row that holds a place in the preedit text, counted in its units; there must be one.
    [[nodiscard]] RowPosition rowInPreedit(qsizetype position);
    /// x of a place in the preedit text, counted in its units; the row must hold it.
    [[nodiscard]] double xInPreedit(const RowPosition &row, qsizetype position);
    /// The grapheme boundary nearest to `x`, within the row.
    [[nodiscard]] qsizetype offsetAt(const RowPosition &row, double x);
    /// The grapheme whose cell holds `x`, for a click that asks what is under the pointer.
    [[nodiscard]] qsizetype graphemeAt(const RowPosition &row, double x);
    /// Where the units of `range` stand in the visible part of the row; several spans where directions mix.
    [[nodiscard]] std::vector<Span> spansOf(const RowPosition &row, TextRange range, Span visible);
    [[nodiscard]] double widthOf(const RowPosition &row);
    /// The widest row known so far, an estimate for the longest line included.
    [[nodiscard]] double contentWidth() const;
    /// Calls `visit` with the layouts that show the row between the two x, the row within the layout, and the layout's x.
    void forEachLayout(const RowPosition &row, Span visible, const std::function<void(const SegmentLayout &, int, double)> &visit);

    /// Grows whenever a part of an unwrapped long line turned out to be of another width than estimated, so that what is right of it
    /// stands elsewhere now, on the screen too.
    [[nodiscard]] quint64 shifts() const { return m_shifts; }

    /// Estimates lines that were never looked at by their widths, from `line` on first, until about `unitBudget` units were counted.
    /// True while there is more to do. Costs about a nanosecond a unit; rows on the screen do not move by it.
    bool refine(qsizetype line, qsizetype unitBudget);

    /// How many layouts to keep; about three screens.
    void setCacheCapacity(size_t layouts) { m_cacheCapacity = layouts; }
    [[nodiscard]] const Counters &counters() const { return m_counters; }
    void checkInvariants() const;

private:
    struct Line {
        qsizetype start = 0;
        qsizetype length = 0;
    };
    struct KnownLine {
        qsizetype number = 0;
        /// Where the line after it begins.
        qsizetype next = 0;
        Line line;
    };
    struct Placed {
        const SegmentLayout &layout;
        int row = 0;
        double x = 0;
    };

    void measureFont();
    void forgetLayouts();
    void findWidest();
    [[nodiscard]] Line lineAt(qsizetype line);
    [[nodiscard]] Line lineFrom(qsizetype line, qsizetype start);
    [[nodiscard]] const KnownLine &known(qsizetype line, qsizetype start);
    [[nodiscard]] bool isLong(const Line &line) const { return line.length > m_segmentLength; }
    LongLine &longLine(const Line &line);
    void changeLongLines(const TextChange &change);
    void changeRows(const TextChange &change);
    /// Where the rows of a wrapped line begin that continue it, in pixels.
    [[nodiscard]] double indentOfLine(qsizetype lineStart) const;
    [[nodiscard]] double widestIndent() const;
    /// A line that begins at `lineStart`, or a segment of it.
    SegmentLayout &layout(TextRange range, qsizetype lineStart);
    [[nodiscard]] bool holdsPreedit(TextRange range) const;
    std::unique_ptr<SegmentLayout> makeLayout(TextRange range, double firstIndent, double indent);
    void trimCache();
    void changeCache(const TextEdits &edits);
    /// The layout of one segment of a long line; its real size replaces the estimate.
    SegmentLayout &layoutSegment(LongLine &line, qsizetype lineNumber, int segment);
    SegmentLayout &layoutShort(qsizetype lineNumber, const Line &line);
    /// The layout that shows `offset` of the row, and the x at which it begins.
    Placed placedAt(const RowPosition &row, qsizetype offset);
    Placed placedAtX(const RowPosition &row, double x);
    Placed placedSegment(LongLine &line, qsizetype lineNumber, int segment);
    [[nodiscard]] double wideWidth() const;
    RowPosition rowInLine(qsizetype lineNumber, const Line &line, qint64 row);
    [[nodiscard]] double cellsPerRow() const;
    [[nodiscard]] LongLine::Measure estimate(TextRange range, double indent) const;
    [[nodiscard]] qint64 estimateRows(qsizetype firstLine, qsizetype count) const;
    void measureGap(RowMap::Stretch gap, qsizetype unitBudget);

    const TextStorage &m_storage;
    Settings m_settings;
    // Of the text that the layouts belong to.
    quint64 m_revision = 0;
    // Whoever paints a row asks for its line many times.
    std::optional<KnownLine> m_lastLine;
    Preedit m_preedit;
    RowMap m_rows;
    std::vector<LongLine> m_longLines;                   // by place in the text
    std::vector<std::unique_ptr<SegmentLayout>> m_cache; // by place in the text
    SegmentFormats m_formats;
    size_t m_cacheCapacity = 256;
    quint64 m_clock = 0;
    quint64 m_shifts = 0;
    qsizetype m_segmentLength = 0;
    double m_rowHeight = 0;
    double m_baseline = 0;
    double m_cellWidth = 0;
    double m_blankWidth = 0;
    mutable double m_wideWidth = 0;
    double m_widest = 0;
    bool m_isFixedPitch = false;
    Counters m_counters;
};
