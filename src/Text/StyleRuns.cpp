// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/StyleRuns.h"

#include "Text/StyleRunsCode.h"

#include <new>

template class RunTree<256, 32>;

RunLeaf *RunLeaf::make(std::span<const Run> runs)
{
    ++treeCounters.leavesMade;
    auto *leaf = new (::operator new(sizeof(RunLeaf) + runs.size_bytes())) RunLeaf;
    leaf->runCount = quint16(runs.size());
    std::ranges::copy(runs, leaf->begin());
    return leaf;
}

void RunLeaf::destroy(RunLeaf *leaf)
{
    leaf->~RunLeaf();
    ::operator delete(leaf);
}

void RunPacker::add(qsizetype length, StyleId style)
{
    if (length == 0)
        return;
    // Half full, so that typing has room.
    constexpr qsizetype piece = (RunLeaf::longestRun + 1) / 2;
    if (!m_runs.empty() && m_runs.back().style == style) {
        const qsizetype last = m_runs.back().length;
        if (last + length <= RunLeaf::longestRun) {
            m_runs.back().length = quint16(last + length);
            return;
        }
        // One that would fit together with the first piece.
        if (length > RunLeaf::longestRun && last < piece) {
            length += last;
            m_runs.pop_back();
        }
    }
    for (; length > RunLeaf::longestRun; length -= piece)
        m_runs.push_back({quint16(piece), style});
    m_runs.push_back({quint16(length), style});
}

void RunPacker::add(const RunLeaf &leaf, qsizetype from, qsizetype to)
{
    qsizetype start = 0;
    for (const RunLeaf::Run &run : leaf) {
        const qsizetype end = start + run.length;
        if (const qsizetype length = std::min(end, to) - std::max(start, from); length > 0)
            add(length, run.style);
        start = end;
    }
}
