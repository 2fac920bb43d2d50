// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QVarLengthArray>
#include <QtGlobal>

#include <algorithm>
#include <atomic>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

/// What the trees did on this thread; tests bound the cost of operations by it.
struct TreeCounters {
    quint64 leavesMade = 0;
    quint64 nodesMade = 0;
    quint64 leavesReached = 0;
};
inline thread_local constinit TreeCounters treeCounters;

/// The head of every node of a LeafTree. Nodes are shared by counted references; one that is shared is never changed.
struct TreeNode {
    mutable std::atomic<quint32> references{1};
    quint8 level = 0;      ///< 0 is a leaf
    quint8 childCount = 0; ///< children

    [[nodiscard]] bool isShared() const { return references.load(std::memory_order_acquire) != 1; }
};

/// Which of two leaves an offset between them belongs to.
enum class Side { left, right };

/// A persistent B+tree over leaves of any kind. Copies cost O(1) and may be read, changed and destroyed on different threads; changes
/// happen in place where nobody else holds the node, and copy the path to it otherwise.
///
/// `Traits` gives:
/// - `Summary`, with a member `units`, the length by which the tree is addressed; `total(summaries)`, an associative sum; and
///   `follow(before, after)`, which brings a sum up to date when one part changed, or returns false when it must be added up again;
/// - `Leaf`, derived from TreeNode, never empty in a tree, and `fanout`, 4 … 127;
/// - `summarize(leaf)`, `destroy(leaf)`, `cut(leaf, at)` into two new leaves;
/// - `belongTogether(left, right)` for two neighbours that may not stay so (too small both, or a split pair), and
///   `merge(left, right, put)`, which makes proper leaves of such two. What it puts must be fit to stand beside their neighbours.
///
/// Invariants: all leaves have the same depth, inner nodes have fanout / 2 … fanout children (the root 2 …), no two neighbours belong
/// together.
template<class Traits>
class LeafTree {
public:
    using Leaf = typename Traits::Leaf;
    using Summary = typename Traits::Summary;
    static constexpr int fanout = Traits::fanout;

    /// Owns one reference to a node (or none) and knows its summary.
    class Branch {
    public:
        Branch() = default;
        explicit Branch(Leaf *leaf) : node(leaf), summary(Traits::summarize(*leaf)) {}
        Branch(TreeNode *owned, const Summary &sum) : node(owned), summary(sum) {}
        Branch(Branch &&other) noexcept : node(std::exchange(other.node, nullptr)), summary(std::exchange(other.summary, Summary())) {}
        Branch &operator=(Branch &&other) noexcept
        {
            std::swap(node, other.node);
            std::swap(summary, other.summary);
            return *this;
        }
        Branch(const Branch &) = delete;
        Branch &operator=(const Branch &) = delete;
        ~Branch()
        {
            if (node)
                release(node);
        }

        [[nodiscard]] Branch share() const
        {
            if (node)
                node->references.fetch_add(1, std::memory_order_relaxed);
            return Branch(node, summary);
        }
        /// Of a leaf of some tree.
        [[nodiscard]] static Branch share(const Leaf &leaf, const Summary &sum)
        {
            leaf.references.fetch_add(1, std::memory_order_relaxed);
            return Branch(const_cast<Leaf *>(&leaf), sum);
        }
        [[nodiscard]] explicit operator bool() const { return node; }
        [[nodiscard]] const Leaf &leaf() const { return *static_cast<const Leaf *>(node); }
        /// Puts a changed or new leaf in the place of the one held, which must not be used any more.
        void setLeaf(Leaf *leaf)
        {
            if (node && node != leaf)
                release(node);
            node = leaf;
            summary = Traits::summarize(*leaf);
        }

        TreeNode *node = nullptr;
        Summary summary;
    };
    using Branches = QVarLengthArray<Branch, 2 * fanout + 4>;

    LeafTree() = default;
    explicit LeafTree(Leaf *onlyLeaf) : m_root(onlyLeaf) {}
    /// Bottom-up, O(n). The neighbours must be fit to stand beside each other.
    explicit LeafTree(std::vector<Branch> leaves) : m_root(build(std::move(leaves))) {}
    LeafTree(const LeafTree &other) : m_root(other.m_root.share()) {}
    LeafTree(LeafTree &&) noexcept = default;
    LeafTree &operator=(const LeafTree &other)
    {
        m_root = other.m_root.share();
        return *this;
    }
    LeafTree &operator=(LeafTree &&other) noexcept
    {
        m_root = std::exchange(other.m_root, Branch());
        return *this;
    }

    [[nodiscard]] const Summary &summary() const { return m_root.summary; }
    [[nodiscard]] bool isEmpty() const { return !m_root; }
    [[nodiscard]] bool sharesRootWith(const LeafTree &other) const { return m_root.node == other.m_root.node; }

    /// The first leaf by whose end `reached(sum)` holds, else the last one; `before` becomes the sum of what stands left of it.
    /// `Sum` is any monotone view of the summaries, with `add(summary)`. The tree must not be empty. O(log n).
    template<class Sum, class Reached>
    [[nodiscard]] const Leaf &seek(Sum &before, Reached reached) const;
    /// The leaf at `offset`, which becomes the offset inside it.
    [[nodiscard]] const Leaf &leafAt(qsizetype &offset, Side side) const;

    /// Calls `visit(leaf, summary)` for all leaves in order.
    template<class Visit>
    void forEachLeaf(Visit visit) const
    {
        if (m_root)
            forEachLeaf(m_root.node, m_root.summary, visit);
    }

    /// Whether the leaf before or behind the leaf from `leafStart` to `leafEnd` is one that `matches`.
    template<class Matches>
    [[nodiscard]] bool hasNeighbour(qsizetype leafStart, qsizetype leafEnd, Matches matches) const
    {
        const auto matchesAt = [&](qsizetype offset) { return matches(leafAt(offset, Side::right)); };
        return (leafStart > 0 && matchesAt(leafStart - 1)) || (leafEnd < qsizetype(summary().units) && matchesAt(leafEnd));
    }

    /// Calls `change(branch, offset in the leaf, more)` for the leaf at `offset`. It may change the leaf if that is not shared, or put
    /// another in its place, by `branch.setLeaf()`, and add up to three leaves that follow it to `more`. O(log n).
    template<class Change>
    void changeLeaf(qsizetype offset, Side side, Change change);

    /// Keeps what stands before `offset` and returns the rest. Leaves are shared but for the one cut. O(log n).
    [[nodiscard]] LeafTree splitOff(qsizetype offset);
    /// Shares all leaves but the two that meet. O(log n).
    void append(LeafTree other) { m_root = concatenate(std::move(m_root), std::move(other.m_root)); }

    /// For tests and debug builds: O(n).
    [[nodiscard]] bool checkInvariants() const;

private:
    struct Inner : TreeNode {
        Summary sums[fanout];
        TreeNode *nodes[fanout];

        [[nodiscard]] Summary total() const { return Summary::total({sums, childCount}); }
    };

    Branch m_root;

    static Inner *inner(const Branch &branch) { return static_cast<Inner *>(branch.node); }
    static void release(const TreeNode *node);
    static Inner *own(Branch &branch);
    template<class Visit>
    static void forEachLeaf(const TreeNode *node, const Summary &summary, Visit &visit)
    {
        if (node->level == 0) {
            visit(*static_cast<const Leaf *>(node), summary);
            return;
        }
        const auto *parent = static_cast<const Inner *>(node);
        for (int i = 0; i < parent->childCount; ++i)
            forEachLeaf(parent->nodes[i], parent->sums[i], visit);
    }
    static void unpack(Branch branch, Branches &out);
    static Branch packOne(std::span<Branch> children);
    static void pack(Branches &children, Branches &out);
    static Branch group(std::span<Branch> children);
    static Branch build(std::vector<Branch> row);
    static void meet(Branch left, Branch right, Branches &out);
    static Branch join(Branch left, Branch right);
    static Branch concatenate(Branch left, Branch right);
    static std::pair<Branch, Branch> split(Branch whole, qsizetype at);
    static const Leaf &edgeLeaf(const Branch &branch, Side side);
    template<class Change>
    static void changeLeaf(Branch &branch, qsizetype offset, Side side, Change &change, Branches &more);
    static bool check(const Branch &branch, int fewestChildren, const Leaf *&previous);
    /// The child that `offset` falls into; `offset` becomes the offset in it.
    static int childAt(const Inner &node, qsizetype &offset, Side side)
    {
        int i = 0;
        for (const int last = node.childCount - 1; i < last; ++i) {
            const qsizetype units = node.sums[i].units;
            if (side == Side::left ? offset <= units : offset < units)
                break;
            offset -= units;
        }
        return i;
    }
};

#include "Text/LeafTreeCode.h"
