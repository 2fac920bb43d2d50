// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/EditSearch.h"

#include <algorithm>

namespace {

/// Entries that are compared before it is asked again whether to stop.
constexpr qsizetype stopInterval = 1'000'000;

/// How far the best ways of each number of edits reach, on the diagonals -d, -d + 2 … d: offsets into the old list, which may lie beyond
/// its end. Diagonal k holds the places where old offset - new offset = k.
class Trace {
public:
    /// Begins the next number of edits, d = 0 first.
    void begin(int edits) { m_row = m_reached.size(), m_reached.resize(m_row + size_t(edits) + 1); }
    void reach(int edits, int diagonal, int offset) { m_reached[m_row + size_t(diagonal + edits) / 2] = offset; }

    /// Whether the best way to `diagonal` with `edits` edits ends with an insertion; asked once the row before is complete.
    [[nodiscard]] bool insertsLast(int edits, int diagonal) const
    {
        return diagonal == -edits || (diagonal != edits && before(edits, diagonal - 1) < before(edits, diagonal + 1));
    }
    /// How far the row before `edits` reached on `diagonal`.
    [[nodiscard]] int before(int edits, int diagonal) const
    {
        // Rows 0 … d - 2 hold 1 + 2 + … + (d - 1) offsets.
        return m_reached[size_t(edits) * size_t(edits - 1) / 2 + size_t(diagonal + edits - 1) / 2];
    }

private:
    std::vector<int> m_reached;
    size_t m_row = 0;
};

/// From the end of both lists back along the best way.
std::vector<EditSearch::Match> backtracked(const Trace &trace, int edits, int oldCount, int newCount)
{
    std::vector<EditSearch::Match> found;
    const auto add = [&found](int old, int newer, int count) {
        if (count > 0) {
            found.push_back({old, newer, count});
        }
    };
    int x = oldCount;
    int y = newCount;
    for (; edits > 0; --edits) {
        const int diagonal = x - y;
        const bool inserts = trace.insertsLast(edits, diagonal);
        const int previous = inserts ? diagonal + 1 : diagonal - 1;
        const int previousX = trace.before(edits, previous);
        const int startX = inserts ? previousX : previousX + 1;
        add(startX, startX - diagonal, x - startX);
        x = previousX;
        y = previousX - previous;
    }
    add(0, 0, x);
    std::ranges::reverse(found);
    return found;
}

} // namespace

std::optional<std::vector<EditSearch::Match>> EditSearch::matches(std::span<const quint32> old, std::span<const quint32> newer,
                                                                  const std::stop_token &stop)
{
    const int oldCount = int(old.size());
    const int newCount = int(newer.size());
    const int limit = int(std::min<qsizetype>(qsizetype(oldCount) + newCount, mostEdits));
    Trace trace;
    qsizetype compared = 0;
    for (int edits = 0; edits <= limit; ++edits) {
        trace.begin(edits);
        for (int diagonal = -edits; diagonal <= edits; diagonal += 2) {
            int x = 0;
            if (edits > 0) {
                x = trace.insertsLast(edits, diagonal) ? trace.before(edits, diagonal + 1) : trace.before(edits, diagonal - 1) + 1;
            }
            const int start = x;
            while (x < oldCount && x - diagonal < newCount && old[size_t(x)] == newer[size_t(x - diagonal)]) {
                ++x;
            }
            trace.reach(edits, diagonal, x);
            if (x >= oldCount && x - diagonal >= newCount) {
                return backtracked(trace, edits, oldCount, newCount);
            }
            compared += 1 + x - start;
            if (compared > stopInterval) {
                compared = 0;
                if (stop.stop_requested()) {
                    return std::nullopt;
                }
            }
        }
    }
    return std::vector<Match>();
}
