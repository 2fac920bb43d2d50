// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/LineEndings.h"

#include "Text/TextEdits.h"

#include <algorithm>
#include <vector>

namespace {

constexpr qsizetype longestRun = 4096;

void appendRun(RopeBuilder &order, LineEnding ending, qsizetype count)
{
    const std::array<uchar, 1> unit = {uchar(ending)};
    const std::vector<uchar> run(size_t(std::min(count, longestRun)), unit[0]);
    for (; count > 0; count -= longestRun) {
        order.appendLatin1(run.data(), std::min(count, longestRun));
    }
}

Rope repeated(LineEnding ending, qsizetype count)
{
    RopeBuilder order;
    appendRun(order, ending, count);
    return order.build();
}

void count(const Rope &order, TextRange range, qsizetype sign, std::array<qsizetype, 3> &counts)
{
    order.forEachChunk(range, [&](const Rope::Chunk &chunk) {
        for (qsizetype index = 0; index < chunk.length; ++index) {
            counts[size_t(chunk.at(index))] += sign;
        }
        return true;
    });
}

} // namespace

LineEndings LineEndings::uniform(LineEnding ending, qsizetype count)
{
    LineEndings all;
    all.m_counts[size_t(ending)] = count;
    return all;
}

LineEnding LineEndings::onlyOne(LineEnding fallback) const
{
    const auto found = std::ranges::find_if(m_counts, [](qsizetype count) { return count > 0; });
    return found == m_counts.end() ? fallback : LineEnding(found - m_counts.begin());
}

Rope LineEndings::spelledOut() const
{
    return isMixed() ? m_order : repeated(onlyOne(LineEnding::lf), count());
}

/// Where all have come to be alike, their order is not needed any more.
void LineEndings::settle()
{
    if (std::ranges::count(m_counts, 0) >= 2) {
        m_order = Rope();
    }
}

void LineEndings::apply(const TextChange &change, LineEnding fallback)
{
    if (!isMixed()) {
        *this = uniform(onlyOne(fallback), change.after.lineCount() - 1);
        return;
    }
    // From the last one, so that the lines before each are still those of the text before.
    for (size_t index = change.edits.count(); index-- > 0;) {
        const qsizetype first = std::min(change.before.lineAt(change.edits[index].range.location), m_order.length());
        const qsizetype removed = std::min(change.removedLines(index), m_order.length() - first);
        const qsizetype inserted = change.insertedLines(index);
        const qsizetype kept = std::min(removed, inserted);
        const TextRange gone{first + kept, removed - kept};
        if (inserted > kept) {
            const qsizetype own = first + kept;
            const qsizetype neighbour = own < m_order.length() ? own : own - 1;
            const auto ending = neighbour >= 0 ? LineEnding(m_order.at(neighbour)) : fallback;
            m_order.replace(gone, repeated(ending, inserted - kept));
            m_counts[size_t(ending)] += inserted - kept;
        } else if (gone.length > 0) {
            ::count(m_order, gone, -1, m_counts);
            m_order.replace(gone, Rope());
        }
    }
    settle();
}

LineEndings LineEndings::followedBy(const LineEndings &next, Seam seam) const
{
    LineEndings all = *this;
    Rope order = spelledOut();
    if (const TextRange joined{order.length() - 1, 1}; seam == Seam::sharedLine && !order.isEmpty()) {
        --all.m_counts[size_t(order.at(joined.location))];
        order.replace(joined, Rope());
    }
    order.replace({order.length(), 0}, next.spelledOut());
    for (const LineEndingRow &row : lineEndings) {
        all.m_counts[size_t(row.ending)] += next.count(row.ending);
    }
    all.m_order = order;
    all.settle();
    return all;
}

void LineEndingRecorder::add(LineEnding ending, qsizetype count)
{
    if (count == 0) {
        return;
    }
    if (!m_isMixed && m_counts[size_t(ending)] == 0) {
        for (const LineEndingRow &row : lineEndings) {
            if (m_counts[size_t(row.ending)] > 0) {
                appendRun(m_order, row.ending, m_counts[size_t(row.ending)]);
                m_isMixed = true;
            }
        }
    }
    m_counts[size_t(ending)] += count;
    if (m_isMixed) {
        appendRun(m_order, ending, count);
    }
}

LineEndings LineEndingRecorder::build()
{
    LineEndings all;
    all.m_order = m_order.build();
    all.m_counts = m_counts;
    return all;
}
