// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

// The bodies of RunTree's members; included where a tree of some size is instantiated.

#include "Text/StyleRuns.h"

#include <algorithm>

template<int leafRuns, int fanout>
RunSummary RunTraits<leafRuns, fanout>::summarize(const Leaf &leaf)
{
    quint32 units = 0;
    for (const RunLeaf::Run &run : leaf)
        units += run.length;
    return {units};
}

template<int leafRuns, int fanout>
auto RunTraits<leafRuns, fanout>::cut(const Leaf &leaf, qsizetype at) -> std::pair<Leaf *, Leaf *>
{
    RunPacker left;
    RunPacker right;
    left.add(leaf, 0, at);
    right.add(leaf, at, summarize(leaf).units);
    return {RunLeaf::make(left.runs()), RunLeaf::make(right.runs())};
}

template<int leafRuns, int fanout>
template<class Put>
void RunTraits<leafRuns, fanout>::merge(const Leaf &left, const Leaf &right, Put put)
{
    RunPacker packer;
    packer.add(left, 0, summarize(left).units);
    packer.add(right, 0, summarize(right).units);
    put(RunLeaf::make(packer.runs()));
}

template<int leafRuns, int fanout>
bool RunTraits<leafRuns, fanout>::checkLeaf(const Leaf &leaf)
{
    const auto mayBeOne = [](const RunLeaf::Run &a, const RunLeaf::Run &b) {
        return a.style == b.style && a.length + b.length <= RunLeaf::longestRun;
    };
    return leaf.runCount > 0 && leaf.runCount <= leafRuns && std::ranges::none_of(leaf, [](const auto &run) { return run.length == 0; }) &&
           std::ranges::adjacent_find(leaf, mayBeOne) == leaf.end();
}

template<int leafRuns, int fanout>
StyleId RunTree<leafRuns, fanout>::styleAt(qsizetype offset) const
{
    const RunLeaf &leaf = m_tree.leafAt(offset, Side::right);
    const RunLeaf::Run *run = leaf.begin();
    for (; offset >= run->length; ++run)
        offset -= run->length;
    return run->style;
}

template<int leafRuns, int fanout>
void RunTree<leafRuns, fanout>::forEachRun(TextRange range, const std::function<void(TextRange, StyleId)> &visit) const
{
    TextRange pending{range.location, 0};
    StyleId style = plainStyle;
    for (qsizetype at = range.location; at < range.end();) {
        qsizetype skipped = at;
        const RunLeaf &leaf = m_tree.leafAt(skipped, Side::right);
        for (const RunLeaf::Run &run : leaf) {
            if (at >= range.end())
                break;
            if (skipped >= run.length) {
                skipped -= run.length;
                continue;
            }
            const qsizetype length = std::min<qsizetype>(run.length - std::exchange(skipped, 0), range.end() - at);
            if (run.style != style) {
                if (!pending.isEmpty())
                    visit(pending, style);
                pending = {at, 0};
                style = run.style;
            }
            pending.length += length;
            at += length;
        }
    }
    if (!pending.isEmpty())
        visit(pending, style);
}

template<int leafRuns, int fanout>
void RunTree<leafRuns, fanout>::replace(TextRange range, qsizetype newLength)
{
    if ((range.isEmpty() && newLength == 0) || (!m_tree.isEmpty() && replaceInLeaf(range, newLength)))
        return;
    RunPacker inserted;
    inserted.add(newLength, range.location > 0 ? styleAt(range.location - 1) : plainStyle);
    splice(range, inserted);
}

template<int leafRuns, int fanout>
void RunTree<leafRuns, fanout>::replace(const TextEdits &edits)
{
    constexpr size_t fewestAtOnce = 8;
    if (edits.count() < fewestAtOnce) {
        for (size_t index = 0; index < edits.count(); ++index) {
            const TextRange fresh = edits.newRange(index);
            replace({fresh.location, edits[index].range.length}, fresh.length);
        }
        return;
    }
    // One pass over the runs around them all.
    const ReplacedStretch hull = edits.hull();
    RunPacker packer;
    StyleId style = hull.location > 0 ? styleAt(hull.location - 1) : plainStyle; // of the unit before
    size_t next = 0;
    qsizetype at = hull.location;
    forEachRun({hull.location, hull.removed}, [&](TextRange run, StyleId runStyle) {
        while (at < run.end()) {
            const qsizetype kept = next == edits.count() ? run.end() : std::min(run.end(), edits[next].range.location);
            if (kept > at) {
                packer.add(kept - at, runStyle);
                style = runStyle;
                at = kept;
            }
            if (at < run.end()) {
                packer.add(edits[next].text.length(), style);
                at = edits[next++].range.end();
            }
        }
    });
    for (; next < edits.count(); ++next)
        packer.add(edits[next].text.length(), style);
    splice({hull.location, hull.removed}, packer);
}

/// The usual case: the run before `range` only grows or shrinks. Else the leaf is made anew, if nothing outside is touched.
template<int leafRuns, int fanout>
bool RunTree<leafRuns, fanout>::replaceInLeaf(TextRange range, qsizetype newLength)
{
    qsizetype from = range.location;
    const RunLeaf &leaf = m_tree.leafAt(from, Side::left);
    const qsizetype leafStart = range.location - from;
    const qsizetype leafLength = Traits::summarize(leaf).units;
    const qsizetype to = from + range.length;
    if (to > leafLength || leafLength - range.length + newLength == 0)
        return false;
    qsizetype index = 0;
    qsizetype runStart = 0;
    while (runStart + leaf.begin()[index].length < from)
        runStart += leaf.begin()[index++].length;
    const RunLeaf::Run run = leaf.begin()[index];
    const qsizetype resized = run.length - range.length + newLength;
    const auto mayBecomeOneWith = [&](qsizetype other) {
        return other >= 0 && other < leaf.runCount && leaf.begin()[other].style == run.style &&
               leaf.begin()[other].length + resized <= RunLeaf::longestRun;
    };
    if (!mayBecomeOneWith(index - 1) && !mayBecomeOneWith(index + 1) && from > 0 && to <= runStart + run.length && resized > 0 &&
        resized <= RunLeaf::longestRun) {
        m_tree.changeLeaf(range.location, Side::left, [index, resized](Branch &branch, qsizetype, typename Tree::Branches &) {
            auto *changed = static_cast<RunLeaf *>(branch.node);
            if (changed->isShared())
                changed = RunLeaf::make({changed->begin(), changed->end()});
            changed->begin()[index].length = quint16(resized);
            branch.setLeaf(changed);
        });
        return true;
    }
    RunPacker packer;
    packer.add(leaf, 0, from);
    packer.add(newLength, from > 0 ? run.style : plainStyle);
    packer.add(leaf, to, leafLength);
    const auto count = qsizetype(packer.runs().size());
    const auto isSmall = [](const RunLeaf &neighbour) { return Traits::isSmall(neighbour.runCount); };
    if (count > leafRuns || (Traits::isSmall(count) && m_tree.hasNeighbour(leafStart, leafStart + leafLength, isSmall)))
        return false;
    m_tree.changeLeaf(range.location, Side::left,
                      [&packer](Branch &branch, qsizetype, typename Tree::Branches &) { branch.setLeaf(RunLeaf::make(packer.runs())); });
    return true;
}

template<int leafRuns, int fanout>
auto RunTree<leafRuns, fanout>::treeOf(const RunPacker &packer) -> Tree
{
    std::vector<Branch> leaves;
    const size_t total = packer.runs().size();
    const size_t count = (total + leafRuns - 1) / leafRuns;
    for (size_t i = 0; i < count; ++i) {
        const size_t from = total * i / count;
        leaves.emplace_back(RunLeaf::make(packer.runs().subspan(from, total * (i + 1) / count - from)));
    }
    return Tree(std::move(leaves));
}

template<int leafRuns, int fanout>
void RunTree<leafRuns, fanout>::splice(TextRange range, const RunPacker &runs)
{
    Tree after = m_tree.splitOff(range.location);
    if (!range.isEmpty())
        after = after.splitOff(range.length);
    m_tree.append(treeOf(runs));
    m_tree.append(std::move(after));
}

/// Where the styles there are and those wanted differ.
template<int leafRuns, int fanout>
std::vector<TextRange> RunTree<leafRuns, fanout>::differences(TextRange window, std::span<const StyleRun> runs) const
{
    std::vector<TextRange> result;
    auto wanted = runs.begin();
    qsizetype wantedEnd = window.location + (runs.empty() ? 0 : wanted->length);
    forEachRun(window, [&](TextRange range, StyleId style) {
        for (qsizetype at = range.location; at < range.end();) {
            while (wantedEnd <= at)
                wantedEnd += (++wanted)->length;
            const qsizetype end = std::min(wantedEnd, range.end());
            if (wanted->style != style) {
                if (!result.empty() && result.back().end() == at)
                    result.back().length += end - at;
                else
                    result.push_back(TextRange::between(at, end));
            }
            at = end;
        }
    });
    return result;
}

template<int leafRuns, int fanout>
std::vector<TextRange> RunTree<leafRuns, fanout>::assign(TextRange window, std::span<const StyleRun> runs)
{
    std::vector<TextRange> changed = differences(window, runs);
    if (changed.empty())
        return changed;
    const auto hull = TextRange::between(changed.front().location, changed.back().end());
    RunPacker packer;
    qsizetype at = window.location;
    for (const StyleRun &run : runs) {
        const qsizetype from = std::max(at, hull.location);
        at += run.length;
        if (const qsizetype to = std::min(at, hull.end()); to > from)
            packer.add(to - from, run.style);
    }
    splice(hull, packer);
    return changed;
}
