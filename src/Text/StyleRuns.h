// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LeafTree.h"
#include "Text/StyleTable.h"
#include "Text/TextEdits.h"
#include "Text/TextRange.h"

#include <functional>
#include <span>
#include <vector>

/// So many units of one style.
struct StyleRun {
    qsizetype length = 0;
    StyleId style = plainStyle;

    friend bool operator==(const StyleRun &, const StyleRun &) = default;
};

/// A leaf of runs in one allocation: this head, then the runs. Neighbours differ in style, or together are
/// too long for the 16 bits of one.
struct RunLeaf : TreeNode {
    struct Run {
        quint16 length;
        StyleId style;
    };
    static constexpr qsizetype longestRun = 65535;

    quint16 runCount = 0;

    [[nodiscard]] static RunLeaf *make(std::span<const Run> runs);
    static void destroy(RunLeaf *leaf);

    [[nodiscard]] Run *begin() { return reinterpret_cast<Run *>(this + 1); }
    [[nodiscard]] Run *end() { return begin() + runCount; }
    [[nodiscard]] const Run *begin() const { return reinterpret_cast<const Run *>(this + 1); }
    [[nodiscard]] const Run *end() const { return begin() + runCount; }
};

/// Runs on their way into leaves: equal neighbours become one if they fit, lengths above the limit several.
class RunPacker {
public:
    void add(qsizetype length, StyleId style);
    /// The part of `leaf` from `from` to `to`.
    void add(const RunLeaf &leaf, qsizetype from, qsizetype to);
    [[nodiscard]] std::span<const RunLeaf::Run> runs() const { return m_runs; }

private:
    std::vector<RunLeaf::Run> m_runs;
};

struct RunSummary {
    quint32 units = 0;

    [[nodiscard]] static RunSummary total(std::span<const RunSummary> parts)
    {
        RunSummary sum;
        for (const RunSummary &part : parts)
            sum.units += part.units;
        return sum;
    }
    bool follow(const RunSummary &before, const RunSummary &after)
    {
        units += after.units - before.units;
        return true;
    }
    friend bool operator==(const RunSummary &, const RunSummary &) = default;
};

template<int leafRuns, int treeFanout>
struct RunTraits {
    using Leaf = RunLeaf;
    using Summary = RunSummary;
    static constexpr int fanout = treeFanout;

    static Summary summarize(const Leaf &leaf);
    static void destroy(Leaf *leaf) { Leaf::destroy(leaf); }
    static std::pair<Leaf *, Leaf *> cut(const Leaf &leaf, qsizetype at);
    static bool isSmall(qsizetype runs) { return runs * 4 < leafRuns; }
    static bool belongTogether(const Leaf &left, const Leaf &right) { return isSmall(left.runCount) && isSmall(right.runCount); }
    template<class Put>
    static void merge(const Leaf &left, const Leaf &right, Put put);
    static bool checkLeaf(const Leaf &leaf);
};

/// The styles of a text as runs, in a tree like the text's own. Copies share leaves; a copy may be read on any thread.
/// Offsets and lengths are UTF-16 code units. Open in the size of its leaves and nodes for tests; StyleRuns is the one in use.
template<int leafRuns, int fanout>
class RunTree {
public:
    [[nodiscard]] qsizetype length() const { return m_tree.summary().units; }
    /// `offset` must be below `length()`. O(log n).
    [[nodiscard]] StyleId styleAt(qsizetype offset) const;
    /// Calls `visit` for the runs in `range`, cut to it; neighbours differ in style.
    void forEachRun(TextRange range, const std::function<void(TextRange, StyleId)> &visit) const;
    /// The text in `range` was replaced by `newLength` units: they take the style of the unit before them, plain at the very start.
    /// O(log n).
    void replace(TextRange range, qsizetype newLength);
    /// So for all of `edits`.
    void replace(const TextEdits &edits);
    /// Gives the units of `window` the styles of `runs`, whose lengths must add up to it. Returns the parts that really changed,
    /// ascending and apart. O(log n + runs).
    std::vector<TextRange> assign(TextRange window, std::span<const StyleRun> runs);
    /// O(n), for tests and debug builds.
    [[nodiscard]] bool checkInvariants() const { return m_tree.checkInvariants(); }

private:
    using Traits = RunTraits<leafRuns, fanout>;
    using Tree = LeafTree<Traits>;
    using Branch = typename Tree::Branch;

    Tree m_tree;

    static Tree treeOf(const RunPacker &packer);
    void splice(TextRange range, const RunPacker &runs);
    [[nodiscard]] bool replaceInLeaf(TextRange range, qsizetype newLength);
    [[nodiscard]] std::vector<TextRange> differences(TextRange window, std::span<const StyleRun> runs) const;
};

extern template class RunTree<256, 32>;
using StyleRuns = RunTree<256, 32>;
