// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LongLine.h"

#include "Text/Rope.h"
#include "Text/TextBoundaries.h"

#include <array>

namespace {

constexpr qsizetype searchBack = 512;

bool isAsciiMark(char16_t unit)
{
    return (unit > 0x20 && unit < u'0') || (unit > u'9' && unit < u'A') || (unit > u'Z' && unit < u'a' && unit != u'_') ||
           (unit > u'z' && unit < 0x7F);
}

/// The last index whose prefix sum is not above `value`.
template<class Value>
int indexAt(const std::vector<Value> &sums, Value value)
{
    const auto after = std::upper_bound(sums.begin() + 1, sums.end() - 1, value);
    return static_cast<int>(after - sums.begin()) - 1;
}

} // namespace

LongLine::LongLine(const Rope &text, TextRange range, qsizetype segmentLength, const Estimate &estimate)
    : m_start(range.location), m_length(range.length), m_segmentLength(segmentLength), m_segments(cut(text, range, estimate))
{}

qsizetype LongLine::cutBefore(const Rope &text, qsizetype from, qsizetype limit)
{
    std::array<char16_t, searchBack + 1> units;
    const qsizetype first = std::max(from, limit - searchBack);
    const auto count = limit - first;
    const bool hasNext = limit < text.length();
    text.copy({first, count + (hasNext ? 1 : 0)}, units.data());
    const auto *const searched = units.data();
    const bool hasTab = std::find(searched, searched + count, u'\t') != searched + count;
    qsizetype afterSpace = 0;
    qsizetype afterMark = 0;
    for (qsizetype i = count; i > 0; --i) {
        const char16_t unit = units[static_cast<size_t>(i - 1)];
        // What follows must begin a grapheme of its own, or a combining mark would lose its base.
        const bool mayCut = i < count || hasNext ? units[static_cast<size_t>(i)] < 0x300 : true;
        if (!mayCut) {
            continue;
        }
        if (unit == u'\t') {
            return first + i;
        }
        if (unit == u' ' && afterSpace == 0) {
            afterSpace = i;
            if (!hasTab) {
                break;
            }
        } else if (isAsciiMark(unit) && afterMark == 0) {
            afterMark = i;
        }
    }
    if (afterSpace > 0 || afterMark > 0) {
        return first + (afterSpace > 0 ? afterSpace : afterMark);
    }
    const qsizetype boundary = TextBoundaries::snapped(text, limit);
    return boundary > from ? boundary : limit;
}

std::vector<LongLine::Segment> LongLine::cut(const Rope &text, TextRange range, const Estimate &estimate) const
{
    std::vector<Segment> segments;
    qsizetype from = range.location;
    do {
        const qsizetype limit = from + m_segmentLength;
        const qsizetype to = limit < range.end() ? cutBefore(text, from, limit) : range.end();
        const auto stretch = TextRange::between(from, to);
        segments.push_back({stretch.length, estimate(stretch)});
        from = to;
    } while (from < range.end());
    return segments;
}

void LongLine::sum() const
{
    if (m_isSummed) {
        return;
    }
    const size_t count = m_segments.size() + 1;
    m_offsets.resize(count);
    m_xs.resize(count);
    m_rows.resize(count);
    m_offsets[0] = 0;
    m_xs[0] = 0;
    m_rows[0] = 0;
    for (size_t i = 0; i + 1 < count; ++i) {
        m_offsets[i + 1] = m_offsets[i] + m_segments[i].length;
        m_xs[i + 1] = m_xs[i] + m_segments[i].measure.width;
        m_rows[i + 1] = m_rows[i] + m_segments[i].measure.rows;
    }
    m_isSummed = true;
}

TextRange LongLine::segment(int index) const
{
    sum();
    return {m_start + m_offsets[static_cast<size_t>(index)], m_segments[static_cast<size_t>(index)].length};
}

int LongLine::segmentAt(qsizetype offset) const
{
    sum();
    return indexAt(m_offsets, std::clamp<qsizetype>(offset - m_start, 0, m_length));
}

double LongLine::x(int index) const
{
    sum();
    return m_xs[static_cast<size_t>(index)];
}

double LongLine::width() const
{
    sum();
    return m_xs.back();
}

int LongLine::segmentAtX(double x) const
{
    sum();
    return indexAt(m_xs, std::max(x, 0.0));
}

qint64 LongLine::firstRow(int index) const
{
    sum();
    return m_rows[static_cast<size_t>(index)];
}

qint64 LongLine::rowCount() const
{
    sum();
    return m_rows.back();
}

int LongLine::segmentAtRow(qint64 row) const
{
    sum();
    return indexAt(m_rows, std::max<qint64>(row, 0));
}

void LongLine::setMeasure(int index, Measure measure)
{
    Measure &old = m_segments[static_cast<size_t>(index)].measure;
    if (old.width != measure.width || old.rows != measure.rows) {
        m_isSummed = false;
    }
    old = measure;
}

void LongLine::replaced(const Rope &text, qsizetype position, qsizetype removed, qsizetype inserted, const Estimate &estimate)
{
    const int first = segmentAt(position);
    // Text typed at a cut belongs to the segment behind it, removed text may reach across several.
    const int last = removed > 0 ? std::max(first, segmentAt(position + removed - 1)) : first;
    const qsizetype start = segment(first).location;
    qsizetype length = segment(last).end() - start - removed + inserted;
    auto from = m_segments.begin() + first;
    auto to = m_segments.begin() + last + 1;
    m_length += inserted - removed;
    // A sliver would stay forever: it joins its neighbour.
    if (length < m_segmentLength / 4 && to != m_segments.end()) {
        length += to->length;
        ++to;
    }
    std::vector<Segment> fresh;
    if (length > m_segmentLength + m_segmentLength / 2) {
        fresh = cut(text, {start, length}, estimate);
    } else if (length > 0 || m_segments.size() == static_cast<size_t>(to - from)) {
        fresh.push_back({length, estimate({start, length})});
    }
    from = m_segments.erase(from, to);
    m_segments.insert(from, fresh.begin(), fresh.end());
    m_isSummed = false;
}
