// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

// The bodies of LeafTree's members; included where a tree is instantiated.

#include "Text/LeafTree.h"

template<class Traits>
void LeafTree<Traits>::release(const TreeNode *node)
{
    if (node->references.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    if (node->level == 0) {
        Traits::destroy(static_cast<Leaf *>(const_cast<TreeNode *>(node)));
        return;
    }
    const auto *dying = static_cast<const Inner *>(node);
    for (int i = 0; i < dying->childCount; ++i)
        release(dying->nodes[i]);
    delete dying;
}

/// The inner node of `branch`, copied first if anyone else holds it.
template<class Traits>
auto LeafTree<Traits>::own(Branch &branch) -> Inner *
{
    Inner *node = inner(branch);
    if (!node->isShared())
        return node;
    auto *copy = new Inner;
    ++treeCounters.nodesMade;
    copy->level = node->level;
    copy->childCount = node->childCount;
    std::copy_n(node->sums, node->childCount, copy->sums);
    for (int i = 0; i < node->childCount; ++i) {
        copy->nodes[i] = node->nodes[i];
        copy->nodes[i]->references.fetch_add(1, std::memory_order_relaxed);
    }
    branch.node = copy;
    release(node);
    return copy;
}

/// Appends the children of an inner node to `out`.
template<class Traits>
void LeafTree<Traits>::unpack(Branch branch, Branches &out)
{
    Inner *node = inner(branch);
    const bool shared = node->isShared();
    for (int i = 0; i < node->childCount; ++i) {
        if (shared)
            node->nodes[i]->references.fetch_add(1, std::memory_order_relaxed);
        out.emplace_back(node->nodes[i], node->sums[i]);
    }
    if (!shared) {
        branch.node = nullptr;
        delete node;
    }
}

template<class Traits>
auto LeafTree<Traits>::packOne(std::span<Branch> children) -> Branch
{
    auto *node = new Inner;
    ++treeCounters.nodesMade;
    node->level = quint8(children[0].node->level + 1);
    node->childCount = quint8(children.size());
    for (size_t i = 0; i < children.size(); ++i) {
        node->sums[i] = children[i].summary;
        node->nodes[i] = std::exchange(children[i].node, nullptr);
    }
    return Branch(node, node->total());
}

/// One or two nodes that hold 2 … 2 * fanout children.
template<class Traits>
void LeafTree<Traits>::pack(Branches &children, Branches &out)
{
    const std::span<Branch> all(children.data(), size_t(children.size()));
    if (children.size() <= fanout) {
        out.push_back(packOne(all));
        return;
    }
    const size_t half = all.size() / 2;
    out.push_back(packOne(all.first(half)));
    out.push_back(packOne(all.subspan(half)));
}

/// A tree of some children of one node.
template<class Traits>
auto LeafTree<Traits>::group(std::span<Branch> children) -> Branch
{
    if (children.empty())
        return Branch();
    return children.size() == 1 ? std::move(children[0]) : packOne(children);
}

template<class Traits>
auto LeafTree<Traits>::build(std::vector<Branch> row) -> Branch
{
    if (row.empty())
        return Branch();
    while (row.size() > 1) {
        const size_t count = (row.size() + fanout - 1) / fanout;
        std::vector<Branch> above;
        above.reserve(count);
        size_t from = 0;
        for (size_t i = 0; i < count; ++i) {
            const size_t to = row.size() * (i + 1) / count;
            above.push_back(packOne(std::span(row).subspan(from, to - from)));
            from = to;
        }
        row = std::move(above);
    }
    Branch root = std::move(row.front());
    return root;
}

/// Appends one or two branches of the higher of the two levels, which hold `left` and then `right`.
template<class Traits>
void LeafTree<Traits>::meet(Branch left, Branch right, Branches &out)
{
    const int difference = left.node->level - right.node->level;
    if (difference == 0 && left.node->level == 0) {
        out.push_back(std::move(left));
        out.push_back(std::move(right));
        return;
    }
    Branches all;
    if (difference == 0) {
        unpack(std::move(left), all);
        unpack(std::move(right), all);
    } else if (difference > 0) {
        unpack(std::move(left), all);
        Branch last = std::move(all.back());
        all.pop_back();
        meet(std::move(last), std::move(right), all);
    } else {
        Branches rest;
        unpack(std::move(right), rest);
        meet(std::move(left), std::move(rest.front()), all);
        for (qsizetype i = 1; i < rest.size(); ++i)
            all.push_back(std::move(rest[i]));
    }
    pack(all, out);
}

/// Puts two trees beside each other, whatever leaves meet.
template<class Traits>
auto LeafTree<Traits>::join(Branch left, Branch right) -> Branch
{
    if (!left || !right)
        return left ? std::move(left) : std::move(right);
    Branches top;
    meet(std::move(left), std::move(right), top);
    return group(std::span(top.data(), size_t(top.size())));
}

template<class Traits>
auto LeafTree<Traits>::concatenate(Branch left, Branch right) -> Branch
{
    if (!left || !right)
        return left ? std::move(left) : std::move(right);
    const Leaf &last = edgeLeaf(left, Side::right);
    const Leaf &first = edgeLeaf(right, Side::left);
    if (!Traits::belongTogether(last, first))
        return join(std::move(left), std::move(right));
    const qsizetype lastStart = qsizetype(left.summary.units) - qsizetype(Traits::summarize(last).units);
    const qsizetype firstEnd = Traits::summarize(first).units;
    auto [before, lastLeaf] = split(std::move(left), lastStart);
    auto [firstLeaf, after] = split(std::move(right), firstEnd);
    Branch result = std::move(before);
    Traits::merge(lastLeaf.leaf(), firstLeaf.leaf(), [&result](Leaf *leaf) { result = join(std::move(result), Branch(leaf)); });
    return join(std::move(result), std::move(after));
}

template<class Traits>
auto LeafTree<Traits>::split(Branch whole, qsizetype at) -> std::pair<Branch, Branch>
{
    if (!whole || at <= 0)
        return {Branch(), std::move(whole)};
    if (at >= qsizetype(whole.summary.units))
        return {std::move(whole), Branch()};
    if (whole.node->level == 0) {
        auto [left, right] = Traits::cut(whole.leaf(), at);
        return {Branch(left), Branch(right)};
    }
    const int i = childAt(*inner(whole), at, Side::right);
    Branches children;
    unpack(std::move(whole), children);
    const std::span<Branch> all(children.data(), size_t(children.size()));
    auto [left, right] = split(std::move(all[size_t(i)]), at);
    return {concatenate(group(all.first(size_t(i))), std::move(left)), concatenate(std::move(right), group(all.subspan(size_t(i) + 1)))};
}

template<class Traits>
auto LeafTree<Traits>::edgeLeaf(const Branch &branch, Side side) -> const Leaf &
{
    const TreeNode *node = branch.node;
    while (node->level > 0)
        node = static_cast<const Inner *>(node)->nodes[side == Side::left ? 0 : node->childCount - 1];
    return *static_cast<const Leaf *>(node);
}

template<class Traits>
template<class Sum, class Reached>
auto LeafTree<Traits>::seek(Sum &before, Reached reached) const -> const Leaf &
{
    ++treeCounters.leavesReached;
    const TreeNode *node = m_root.node;
    while (node->level > 0) {
        const auto &parent = *static_cast<const Inner *>(node);
        int i = 0;
        for (const int last = parent.childCount - 1; i < last; ++i) {
            Sum after = before;
            after.add(parent.sums[i]);
            if (reached(after))
                break;
            before = after;
        }
        node = parent.nodes[i];
    }
    return *static_cast<const Leaf *>(node);
}

template<class Traits>
auto LeafTree<Traits>::leafAt(qsizetype &offset, Side side) const -> const Leaf &
{
    ++treeCounters.leavesReached;
    const TreeNode *node = m_root.node;
    while (node->level > 0) {
        const auto &parent = *static_cast<const Inner *>(node);
        node = parent.nodes[childAt(parent, offset, side)];
    }
    return *static_cast<const Leaf *>(node);
}

template<class Traits>
template<class Change>
void LeafTree<Traits>::changeLeaf(qsizetype offset, Side side, Change change)
{
    Branches more;
    changeLeaf(m_root, offset, side, change, more);
    if (more.isEmpty())
        return;
    if (m_root.node->level == 0) {
        std::vector<Branch> leaves;
        leaves.push_back(std::move(m_root));
        for (Branch &leaf : more)
            leaves.push_back(std::move(leaf));
        m_root = build(std::move(leaves));
    } else {
        m_root = join(std::move(m_root), std::move(more.front()));
    }
}

template<class Traits>
template<class Change>
void LeafTree<Traits>::changeLeaf(Branch &branch, qsizetype offset, Side side, Change &change, Branches &more)
{
    if (branch.node->level == 0) {
        ++treeCounters.leavesReached;
        change(branch, offset, more);
        return;
    }
    Inner *node = own(branch);
    const int i = childAt(*node, offset, side);
    Branch child(node->nodes[i], node->sums[i]);
    Branches added;
    changeLeaf(child, offset, side, change, added);
    node->nodes[i] = std::exchange(child.node, nullptr);
    const Summary before = std::exchange(node->sums[i], child.summary);
    if (added.isEmpty()) {
        if (!branch.summary.follow(before, child.summary))
            branch.summary = node->total();
        return;
    }
    Branches all;
    Branches packed;
    unpack(std::move(branch), all);
    Branches tail;
    while (all.size() > i + 1) {
        tail.push_back(std::move(all.back()));
        all.pop_back();
    }
    for (Branch &leaf : added)
        all.push_back(std::move(leaf));
    for (; !tail.isEmpty(); tail.pop_back())
        all.push_back(std::move(tail.back()));
    pack(all, packed);
    branch = std::move(packed.front());
    if (packed.size() > 1)
        more.push_back(std::move(packed.back()));
}

template<class Traits>
LeafTree<Traits> LeafTree<Traits>::splitOff(qsizetype offset)
{
    LeafTree rest;
    std::tie(m_root, rest.m_root) = split(std::move(m_root), offset);
    return rest;
}

template<class Traits>
bool LeafTree<Traits>::checkInvariants() const
{
    const Leaf *previous = nullptr;
    return !m_root || check(m_root, 2, previous);
}

template<class Traits>
bool LeafTree<Traits>::check(const Branch &branch, int fewestChildren, const Leaf *&previous)
{
    if (branch.node->level == 0) {
        const Leaf &leaf = branch.leaf();
        const bool isFit = branch.summary.units > 0 && branch.summary == Traits::summarize(leaf) && Traits::checkLeaf(leaf);
        const bool fitsBefore = !previous || !Traits::belongTogether(*previous, leaf);
        previous = &leaf;
        return isFit && fitsBefore;
    }
    const Inner &node = *inner(branch);
    if (node.childCount > fanout || node.childCount < fewestChildren || !(branch.summary == node.total()))
        return false;
    for (int i = 0; i < node.childCount; ++i) {
        if (node.nodes[i]->level != node.level - 1)
            return false;
        Branch child(node.nodes[i], node.sums[i]);
        const bool isSound = check(child, fanout / 2, previous);
        child.node = nullptr;
        if (!isSound)
            return false;
    }
    return true;
}
