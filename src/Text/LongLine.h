// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"

#include <functional>

class Rope;

/// A line too long for one layout, cut into segments that are laid out, measured and thrown away on their own.
///
/// The first cut goes by content: after a tab (so that its tab stops stay in step), else a space, else a mark, else between two
/// graphemes. From then on the cuts stand still: an edit touches the segment it is in, which is cut anew only when it outgrows its
/// size. So a key press in a line of any length costs one segment. Offsets and lengths are UTF-16 units; widths are pixels.
class LongLine final {
public:
    struct Measure {
        double width = 0;
        qint64 rows = 1;
        bool isExact = false;
    };
    /// The size of a stretch of the text (offsets in the text) before it is laid out.
    using Estimate = std::function<Measure(TextRange)>;

    /// Cuts the line at `range` of `text` (its break not counted in) into segments of about `segmentLength` units. O(range).
    LongLine(const Rope &text, TextRange range, qsizetype segmentLength, const Estimate &estimate);

    [[nodiscard]] TextRange range() const { return {m_start, m_length}; }
    [[nodiscard]] int segmentCount() const { return static_cast<int>(m_segments.size()); }
    [[nodiscard]] TextRange segment(int index) const;
    /// The segment that holds `offset` (an offset in the text, clamped); at a cut the one behind it.
    [[nodiscard]] int segmentAt(qsizetype offset) const;

    [[nodiscard]] double x(int index) const;
    [[nodiscard]] double width() const;
    /// The segment at `x`, clamped.
    [[nodiscard]] int segmentAtX(double x) const;
    [[nodiscard]] qint64 firstRow(int index) const;
    [[nodiscard]] qint64 rowCount() const;
    /// The segment that holds `row` of the line, clamped.
    [[nodiscard]] int segmentAtRow(qint64 row) const;
    [[nodiscard]] const Measure &measure(int index) const { return m_segments[static_cast<size_t>(index)].measure; }
    void setMeasure(int index, Measure measure);

    /// The whole line moved, as text before it came or went.
    void moveBy(qsizetype distance) { m_start += distance; }
    /// `removed` units at `position` (an offset in the text as it now is) became `inserted`, all inside the line and without a break.
    void replaced(const Rope &text, qsizetype position, qsizetype removed, qsizetype inserted, const Estimate &estimate);

    /// Where a stretch that begins at `from` and could reach to `limit` is best cut.
    [[nodiscard]] static qsizetype cutBefore(const Rope &text, qsizetype from, qsizetype limit);

private:
    struct Segment {
        qsizetype length = 0;
        Measure measure;
    };
    /// What all segments before some place add up to.
    struct Sums {
        qsizetype offset = 0;
        double x = 0;
        qint64 row = 0;

        void add(const Segment &segment);
    };

    void sumUp();
    [[nodiscard]] Sums before(int index) const;
    template<class Value>
    [[nodiscard]] int lastNotBeyond(Value Sums::*member, Value value) const;
    void setSegment(int index, const Segment &segment);
    [[nodiscard]] std::vector<Segment> cut(const Rope &text, TextRange range, const Estimate &estimate) const;

    qsizetype m_start = 0;
    qsizetype m_length = 0;
    qsizetype m_segmentLength = 0;
    std::vector<Segment> m_segments;
    // For every 128th segment, so that a key press in the middle of tens of thousands does not add them all up again.
    std::vector<Sums> m_sums;
    Sums m_total;
};
