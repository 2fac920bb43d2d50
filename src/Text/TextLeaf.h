// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LeafTree.h"
#include "Text/TextScan.h"

#include <QChar>

#include <array>

/// A short stretch of text in one allocation: this head, then the units, one byte each when all are below U+0100, else two.
struct alignas(16) TextLeaf : TreeNode {
    quint16 length = 0;   ///< units
    quint16 capacity = 0; ///< bytes
    bool isWide = false;

    [[nodiscard]] static TextLeaf *allocate(qsizetype capacity);
    /// One byte a unit exactly when that will do. A leaf that will be typed into gets room to grow, up to `limit` bytes.
    [[nodiscard]] static TextLeaf *make(const char16_t *text, qsizetype length, qsizetype limit = 0);
    [[nodiscard]] static TextLeaf *makeNarrow(const uchar *text, qsizetype length);
    static void destroy(TextLeaf *leaf);

    [[nodiscard]] const uchar *narrow() const { return reinterpret_cast<const uchar *>(this + 1); }
    [[nodiscard]] uchar *narrow() { return reinterpret_cast<uchar *>(this + 1); }
    [[nodiscard]] const char16_t *wide() const { return reinterpret_cast<const char16_t *>(this + 1); }
    [[nodiscard]] char16_t *wide() { return reinterpret_cast<char16_t *>(this + 1); }
    [[nodiscard]] qsizetype bytes() const { return isWide ? 2 * length : length; }
    [[nodiscard]] char16_t at(qsizetype index) const { return isWide ? wide()[index] : narrow()[index]; }
    void copy(qsizetype from, qsizetype count, char16_t *out) const;
    [[nodiscard]] TextSummary summarize(qsizetype count) const;
    [[nodiscard]] TextSummary summarize() const { return summarize(length); }
    [[nodiscard]] qsizetype endOfBreak(qsizetype number) const;

    /// A new leaf of a part.
    [[nodiscard]] TextLeaf *part(qsizetype from, qsizetype count) const;
    /// Replaces units in place; the units must fit the kind and the capacity.
    void replace(qsizetype from, qsizetype count, const char16_t *text, qsizetype textLength);
};
static_assert(sizeof(TextLeaf) == 16);

/// Text leaves of at most `leafBytes` bytes as a LeafTree takes them.
template<int leafBytes, int treeFanout>
struct TextTraits {
    using Leaf = TextLeaf;
    using Summary = TextSummary;
    static constexpr int fanout = treeFanout;
    static constexpr qsizetype narrowUnits = leafBytes;
    static constexpr qsizetype wideUnits = leafBytes / 2;

    static Summary summarize(const Leaf &leaf) { return leaf.summarize(); }
    static void destroy(Leaf *leaf) { TextLeaf::destroy(leaf); }
    static std::pair<Leaf *, Leaf *> cut(const Leaf &leaf, qsizetype at) { return {leaf.part(0, at), leaf.part(at, leaf.length - at)}; }
    static bool isSmall(qsizetype bytes) { return bytes * 4 < leafBytes; }
    static bool isPair(char16_t first, char16_t second) { return QChar::isHighSurrogate(first) && QChar::isLowSurrogate(second); }

    static bool belongTogether(const Leaf &left, const Leaf &right)
    {
        return (isSmall(left.bytes()) && isSmall(right.bytes())) || isPair(left.at(left.length - 1), right.at(0));
    }

    template<class Put>
    static void merge(const Leaf &left, const Leaf &right, Put put)
    {
        std::array<char16_t, 2 * narrowUnits> text;
        left.copy(0, left.length, text.data());
        right.copy(0, right.length, text.data() + left.length);
        makeLeaves(text.data(), left.length + right.length, put);
    }

    /// Leaves of about equal length, as few as can be.
    template<class Put>
    static void makeLeaves(const char16_t *text, qsizetype length, Put put)
    {
        const qsizetype limit = isNarrowText(text, length) ? narrowUnits : wideUnits;
        // Where there are cuts, every leaf has room for the second half of a pair at its end.
        const qsizetype room = length <= limit || limit == narrowUnits ? limit : limit - 1;
        const qsizetype count = (length + room - 1) / room;
        qsizetype from = 0;
        for (qsizetype i = 1; i <= count; ++i) {
            qsizetype to = length * i / count;
            if (i < count && isPair(text[to - 1], text[to]))
                ++to;
            put(TextLeaf::make(text + from, to - from, leafBytes));
            from = to;
        }
    }

    static bool checkLeaf(const Leaf &leaf)
    {
        return leaf.bytes() <= leafBytes && leaf.bytes() <= leaf.capacity && (!leaf.isWide || !isNarrowText(leaf.wide(), leaf.length));
    }
};
