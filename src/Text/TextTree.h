// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextLeaf.h"
#include "Text/TextRange.h"

#include <QStringView>

#include <memory>
#include <vector>

/// The working of a Rope, open in the size of its leaves and nodes so that tests can make deep trees of short texts.
/// Contracts are those of Rope.
template<int leafBytes, int fanout>
class TextTree {
public:
    TextTree() = default;
    explicit TextTree(QStringView text);

    [[nodiscard]] qsizetype length() const { return m_tree.summary().units; }
    [[nodiscard]] qsizetype lineCount() const { return qsizetype(m_tree.summary().closedBreaks()) + 1; }
    [[nodiscard]] qsizetype longestLine() const { return m_tree.summary().longestLine; }
    [[nodiscard]] qsizetype lineStart(qsizetype line) const;
    [[nodiscard]] qsizetype lineAt(qsizetype offset) const;
    [[nodiscard]] qsizetype characterCount() const { return length() - m_tree.summary().pairs; }
    [[nodiscard]] qsizetype characterAt(qsizetype offset) const;
    [[nodiscard]] qsizetype characterStart(qsizetype character) const;

    /// The leaf that holds `offset`, which becomes the offset in it. The text must not be empty.
    [[nodiscard]] const TextLeaf &leafAt(qsizetype &offset) const { return m_tree.leafAt(offset, Side::right); }
    void copy(TextRange range, char16_t *out) const;
    [[nodiscard]] char16_t at(qsizetype offset) const
    {
        const TextLeaf &leaf = leafAt(offset);
        return leaf.at(offset);
    }
    friend bool operator==(const TextTree &a, const TextTree &b) { return a.equals(b); }

    [[nodiscard]] TextTree slice(TextRange range) const;
    void replace(TextRange range, QStringView text);
    void replace(TextRange range, const TextTree &text);
    /// All at once: `text(i)` in place of `range(i)`, ascending and apart, for `count` stretches.
    template<class RangeOf, class TextOf>
    void replace(size_t count, RangeOf range, TextOf text);
    [[nodiscard]] bool checkInvariants() const { return m_tree.checkInvariants(); }

    class Builder;

private:
    using Traits = TextTraits<leafBytes, fanout>;
    using Tree = LeafTree<Traits>;
    using Branch = typename Tree::Branch;

    Tree m_tree;

    [[nodiscard]] bool equals(const TextTree &other) const;
    explicit TextTree(Tree tree) : m_tree(std::move(tree)) {}
    [[nodiscard]] bool replaceInLeaf(TextRange range, QStringView text);
    void splice(TextRange range, Tree inserted);
    static void changeLeaf(Branch &branch, TextRange range, QStringView text, typename Tree::Branches &more);
};

/// Makes a tree front to back. Long portions go straight into their leaves; what is left over waits in a leaf's worth of units.
template<int leafBytes, int fanout>
class TextTree<leafBytes, fanout>::Builder {
public:
    void append(QStringView text);
    void appendLatin1(const uchar *text, qsizetype length);
    /// The units of a leaf between two of its offsets.
    void append(const TextLeaf &leaf, qsizetype from, qsizetype to);
    /// Shares the leaf where that is fit to stand there.
    void append(const TextLeaf &leaf, const TextSummary &summary);
    void append(const TextTree &tree);
    [[nodiscard]] qsizetype length() const { return m_length; }
    [[nodiscard]] TextTree build();

private:
    std::vector<Branch> m_leaves;
    std::unique_ptr<char16_t[]> m_pending;
    qsizetype m_pendingLength = 0;
    qsizetype m_length = 0;

    qsizetype addLeaf(const char16_t *text, qsizetype length);
    qsizetype makeRoom(qsizetype wanted);
    void addFullPending();
    void addAllPending();
};
