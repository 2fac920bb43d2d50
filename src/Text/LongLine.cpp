// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LongLine.h"

#include "Text/Rope.h"
#include "Text/TextBoundaries.h"

#include <array>

namespace {

constexpr qsizetype searchBack = 512;
constexpr int groupSize = 128;

bool isAsciiMark(char16_t unit)
{
    return (unit > 0x20 && unit < u'0') || (unit > u'9' && unit < u'A') || (unit > u'Z' && unit < u'a' && unit != u'_') ||
           (unit > u'z' && unit < 0x7F);
}

} // namespace

LongLine::LongLine(const Rope &text, TextRange range, qsizetype segmentLength, const Estimate &estimate)
    : m_start(range.location), m_length(range.length), m_segmentLength(segmentLength), m_segments(cut(text, range, estimate))
{
    sumUp();
}

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

void LongLine::Sums::add(const Segment &segment)
{
    offset += segment.length;
    x += segment.measure.width;
    row += segment.measure.rows;
}

void LongLine::sumUp()
{
    m_sums.clear();
    m_total = {};
    for (size_t i = 0; i < m_segments.size(); ++i) {
        if (i % groupSize == 0) {
            m_sums.push_back(m_total);
        }
        m_total.add(m_segments[i]);
    }
}

LongLine::Sums LongLine::before(int index) const
{
    Sums sums = m_sums[static_cast<size_t>(index / groupSize)];
    for (int i = index / groupSize * groupSize; i < index; ++i) {
        sums.add(m_segments[static_cast<size_t>(i)]);
    }
    return sums;
}

/// The last segment that begins at or before `value`.
template<class Value>
int LongLine::lastNotBeyond(Value Sums::*member, Value value) const
{
    const auto after = std::upper_bound(m_sums.begin() + 1, m_sums.end(), value,
                                        [member](Value wanted, const Sums &sums) { return wanted < sums.*member; });
    Sums sums = *(after - 1);
    auto index = static_cast<size_t>(after - m_sums.begin() - 1) * groupSize;
    for (; index + 1 < m_segments.size(); ++index) {
        sums.add(m_segments[index]);
        if (value < sums.*member) {
            break;
        }
    }
    return static_cast<int>(index);
}

void LongLine::setSegment(int index, const Segment &segment)
{
    Segment &old = m_segments[static_cast<size_t>(index)];
    const qsizetype units = segment.length - old.length;
    const double pixels = segment.measure.width - old.measure.width;
    const qint64 rows = segment.measure.rows - old.measure.rows;
    old = segment;
    const auto shift = [=](Sums &sums) { sums = {sums.offset + units, sums.x + pixels, sums.row + rows}; };
    std::for_each(m_sums.begin() + index / groupSize + 1, m_sums.end(), shift);
    shift(m_total);
}

TextRange LongLine::segment(int index) const
{
    return {m_start + before(index).offset, m_segments[static_cast<size_t>(index)].length};
}

int LongLine::segmentAt(qsizetype offset) const
{
    return lastNotBeyond(&Sums::offset, std::clamp<qsizetype>(offset - m_start, 0, m_length));
}

double LongLine::x(int index) const
{
    return before(index).x;
}

double LongLine::width() const
{
    return m_total.x;
}

int LongLine::segmentAtX(double x) const
{
    return lastNotBeyond(&Sums::x, std::max(x, 0.0));
}

qint64 LongLine::firstRow(int index) const
{
    return before(index).row;
}

qint64 LongLine::rowCount() const
{
    return m_total.row;
}

int LongLine::segmentAtRow(qint64 row) const
{
    return lastNotBeyond(&Sums::row, std::max<qint64>(row, 0));
}

void LongLine::setMeasure(int index, Measure measure)
{
    setSegment(index, {m_segments[static_cast<size_t>(index)].length, measure});
}

void LongLine::replaced(const Rope &text, qsizetype position, qsizetype removed, qsizetype inserted, const Estimate &estimate)
{
    const int first = segmentAt(position);
    // Text typed at a cut belongs to the segment behind it, removed text may reach across several.
    const int last = removed > 0 ? std::max(first, segmentAt(position + removed - 1)) : first;
    const qsizetype start = segment(first).location;
    qsizetype length = segment(last).end() - start - removed + inserted;
    m_length += inserted - removed;
    auto from = m_segments.begin() + first;
    auto to = m_segments.begin() + last + 1;
    // A sliver would stay forever: it joins its neighbour.
    if (length < m_segmentLength / 4 && to != m_segments.end()) {
        length += to->length;
        ++to;
    }
    const bool isTooLong = length > m_segmentLength + m_segmentLength / 2;
    if (to - from == 1 && !isTooLong && length > 0) {
        setSegment(first, {length, estimate({start, length})});
        return;
    }
    std::vector<Segment> fresh;
    if (isTooLong) {
        fresh = cut(text, {start, length}, estimate);
    } else if (length > 0 || std::ssize(m_segments) == to - from) {
        fresh.push_back({length, estimate({start, length})});
    }
    from = m_segments.erase(from, to);
    m_segments.insert(from, fresh.begin(), fresh.end());
    sumUp();
}
