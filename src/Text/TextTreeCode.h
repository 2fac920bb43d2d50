// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

// The bodies of TextTree's members; included where a tree of some size is instantiated.

#include "Text/TextTree.h"

#include <algorithm>
#include <cstring>

struct LineSum {
    qsizetype units = 0;
    qsizetype breaks = 0;
    bool endsWithCr = false;

    void add(const TextSummary &next)
    {
        breaks += next.breaks + (endsWithCr && !next.startsWithLf ? 1 : 0);
        units += next.units;
        endsWithCr = next.endsWithCr;
    }
};

struct CharacterSum {
    qsizetype units = 0;
    qsizetype pairs = 0;

    [[nodiscard]] qsizetype characters() const { return units - pairs; }
    void add(const TextSummary &next)
    {
        units += next.units;
        pairs += next.pairs;
    }
};

template<int leafBytes, int fanout>
TextTree<leafBytes, fanout>::TextTree(QStringView text)
{
    if (text.size() <= Traits::wideUnits) {
        if (!text.isEmpty())
            m_tree = Tree(TextLeaf::make(text.utf16(), text.size()));
        return;
    }
    Builder builder;
    builder.append(text);
    *this = builder.build();
}

template<int leafBytes, int fanout>
qsizetype TextTree<leafBytes, fanout>::lineStart(qsizetype line) const
{
    line = std::clamp<qsizetype>(line, 0, lineCount() - 1);
    if (line == 0)
        return 0;
    if (line > qsizetype(m_tree.summary().breaks))
        return length();
    LineSum before;
    const TextLeaf &leaf = m_tree.seek(before, [line](const LineSum &sum) { return sum.breaks >= line; });
    qsizetype number = line - before.breaks;
    if (before.endsWithCr && leaf.at(0) != u'\n' && --number == 0)
        return before.units;
    return before.units + leaf.endOfBreak(number);
}

template<int leafBytes, int fanout>
qsizetype TextTree<leafBytes, fanout>::lineAt(qsizetype offset) const
{
    if (offset >= length())
        return lineCount() - 1;
    if (offset <= 0)
        return 0;
    LineSum sum;
    const TextLeaf &leaf = m_tree.seek(sum, [offset](const LineSum &next) { return next.units > offset; });
    const qsizetype inLeaf = offset - sum.units;
    if (inLeaf > 0)
        sum.add(leaf.summarize(inLeaf));
    return sum.breaks + (sum.endsWithCr && leaf.at(inLeaf) != u'\n' ? 1 : 0);
}

template<int leafBytes, int fanout>
qsizetype TextTree<leafBytes, fanout>::characterAt(qsizetype offset) const
{
    if (offset >= length())
        return characterCount();
    if (offset <= 0)
        return 0;
    CharacterSum sum;
    const TextLeaf &leaf = m_tree.seek(sum, [offset](const CharacterSum &next) { return next.units > offset; });
    sum.add(leaf.summarize(offset - sum.units));
    return sum.characters();
}

template<int leafBytes, int fanout>
qsizetype TextTree<leafBytes, fanout>::characterStart(qsizetype character) const
{
    if (character >= characterCount())
        return length();
    if (character <= 0)
        return 0;
    CharacterSum sum;
    const TextLeaf &leaf = m_tree.seek(sum, [character](const CharacterSum &next) { return next.characters() > character; });
    const qsizetype inLeaf = character - sum.characters();
    return sum.units + (leaf.isWide ? startOfCharacter(leaf.wide(), leaf.length, inLeaf) : inLeaf);
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::copy(TextRange range, char16_t *out) const
{
    for (qsizetype at = range.location; at < range.end();) {
        qsizetype inLeaf = at;
        const TextLeaf &leaf = leafAt(inLeaf);
        const qsizetype count = std::min(leaf.length - inLeaf, range.end() - at);
        leaf.copy(inLeaf, count, out);
        out += count;
        at += count;
    }
}

template<int leafBytes, int fanout>
bool TextTree<leafBytes, fanout>::equals(const TextTree &other) const
{
    if (length() != other.length())
        return false;
    if (m_tree.sharesRootWith(other.m_tree))
        return true;
    for (qsizetype at = 0; at < length();) {
        qsizetype i = at;
        qsizetype j = at;
        const TextLeaf &mine = leafAt(i);
        const TextLeaf &theirs = other.leafAt(j);
        const qsizetype count = std::min(mine.length - i, theirs.length - j);
        const bool sameLeaf = &mine == &theirs && i == j;
        if (!sameLeaf && mine.isWide == theirs.isWide) {
            const qsizetype unit = mine.isWide ? 2 : 1;
            if (std::memcmp(mine.narrow() + i * unit, theirs.narrow() + j * unit, size_t(count * unit)) != 0)
                return false;
        } else if (!sameLeaf) {
            const TextLeaf &wide = mine.isWide ? mine : theirs;
            const TextLeaf &narrow = mine.isWide ? theirs : mine;
            const char16_t *units = wide.wide() + (mine.isWide ? i : j);
            if (!std::equal(units, units + count, narrow.narrow() + (mine.isWide ? j : i)))
                return false;
        }
        at += count;
    }
    return true;
}

template<int leafBytes, int fanout>
auto TextTree<leafBytes, fanout>::slice(TextRange range) const -> TextTree
{
    if (range.isEmpty())
        return TextTree();
    qsizetype inLeaf = range.location;
    const TextLeaf &leaf = leafAt(inLeaf);
    if (inLeaf + range.length <= leaf.length && range.length < leaf.length)
        return TextTree(Tree(leaf.part(inLeaf, range.length)));
    Tree middle = m_tree;
    (void)middle.splitOff(range.end());
    return TextTree(middle.splitOff(range.location));
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::replace(TextRange range, QStringView text)
{
    if (range.isEmpty() && text.isEmpty())
        return;
    if (!replaceInLeaf(range, text))
        splice(range, TextTree(text).m_tree);
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::replace(TextRange range, const TextTree &text)
{
    if (text.length() <= Traits::wideUnits) {
        std::array<char16_t, Traits::wideUnits> units;
        text.copy({0, text.length()}, units.data());
        if (replaceInLeaf(range, QStringView(units.data(), text.length())))
            return;
    }
    splice(range, text.m_tree);
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::splice(TextRange range, Tree inserted)
{
    Tree after = m_tree.splitOff(range.location);
    if (!range.isEmpty())
        after = after.splitOff(range.length);
    m_tree.append(std::move(inserted));
    m_tree.append(std::move(after));
}

/// Few changes far apart take their paths through the tree one by one; of many the leaves around them are made anew in one pass, and
/// those between are shared.
template<int leafBytes, int fanout>
template<class RangeOf, class TextOf>
void TextTree<leafBytes, fanout>::replace(size_t count, RangeOf range, TextOf text)
{
    if (count == 0)
        return;
    const auto hull = TextRange::between(range(0).location, range(count - 1).end());
    constexpr size_t fewestAtOnce = 16;
    constexpr qsizetype leavesPerChange = 32;
    if (count < fewestAtOnce || qsizetype(count) * leavesPerChange < hull.length / Traits::narrowUnits) {
        qsizetype shift = 0;
        for (size_t i = 0; i < count; ++i) {
            replace({range(i).location + shift, range(i).length}, text(i));
            shift += text(i).length() - range(i).length;
        }
        return;
    }
    const Tree after = m_tree.splitOff(hull.end());
    const Tree between = m_tree.splitOff(hull.location);
    Builder builder;
    size_t next = 0;
    qsizetype start = hull.location; // of the leaf
    qsizetype at = hull.location;    // up to where all is done
    between.forEachLeaf([&](const TextLeaf &leaf, const TextSummary &summary) {
        const qsizetype end = start + leaf.length;
        if (at == start && (next == count || range(next).location >= end)) {
            builder.append(leaf, summary);
            at = end;
        }
        while (at < end) {
            const qsizetype kept = next == count ? end : std::min(end, range(next).location);
            if (kept > at)
                builder.append(leaf, at - start, kept - start);
            at = std::max(at, kept);
            if (at < end) {
                builder.append(text(next));
                at = range(next++).end();
            }
        }
        start = end;
    });
    if (next < count)
        builder.append(text(next));
    m_tree.append(builder.build().m_tree);
    m_tree.append(after);
}

/// Most edits end in the leaf they begin in. Not so when the leaf would be used up, would leave two small leaves side by side, or would
/// have half a surrogate pair at its edge.
template<int leafBytes, int fanout>
bool TextTree<leafBytes, fanout>::replaceInLeaf(TextRange range, QStringView text)
{
    if (m_tree.isEmpty() || text.size() > Traits::wideUnits)
        return false;
    const Side side = range.isEmpty() ? Side::left : Side::right;
    qsizetype from = range.location;
    const TextLeaf &leaf = m_tree.leafAt(from, side);
    const qsizetype to = from + range.length;
    const qsizetype newLength = leaf.length - range.length + text.size();
    if (to > leaf.length || newLength == 0)
        return false;
    const qsizetype last = leaf.length - 1;
    const char16_t newFirst = from > 0 ? leaf.at(0) : text.isEmpty() ? leaf.at(to) : text.front().unicode();
    const char16_t newLast = to <= last ? leaf.at(last) : text.isEmpty() ? leaf.at(from - 1) : text.back().unicode();
    if (QChar::isLowSurrogate(newFirst) || QChar::isHighSurrogate(newLast))
        return false;
    const qsizetype leafStart = range.location - from;
    const auto isSmall = [](const TextLeaf &neighbour) { return Traits::isSmall(neighbour.bytes()); };
    if (Traits::isSmall(newLength) && m_tree.hasNeighbour(leafStart, leafStart + leaf.length, isSmall))
        return false;
    m_tree.changeLeaf(range.location, side, [range, text](Branch &branch, qsizetype at, typename Tree::Branches &more) {
        changeLeaf(branch, {at, range.length}, text, more);
    });
    return true;
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::changeLeaf(Branch &branch, TextRange range, QStringView text, typename Tree::Branches &more)
{
    auto *leaf = static_cast<TextLeaf *>(branch.node);
    const qsizetype newLength = leaf->length - range.length + text.size();
    const qsizetype newBytes = leaf->isWide ? 2 * newLength : newLength;
    const qsizetype tail = leaf->length - range.end();
    const bool isTextNarrow = isNarrowText(text.utf16(), text.size());
    const auto staysWide = [&] {
        return !isTextNarrow || !isNarrowText(leaf->wide(), range.location) || !isNarrowText(leaf->wide() + range.end(), tail);
    };
    const bool fits = newBytes <= std::min<qsizetype>(leaf->capacity, leafBytes) && !leaf->isShared();
    if (fits && (leaf->isWide ? staysWide() : isTextNarrow)) {
        leaf->replace(range.location, range.length, text.utf16(), text.size());
        branch.setLeaf(leaf);
        return;
    }
    std::array<char16_t, Traits::narrowUnits + Traits::wideUnits> units;
    const qsizetype head = range.location;
    leaf->copy(0, head, units.data());
    std::copy_n(text.utf16(), text.size(), units.data() + head);
    leaf->copy(range.end(), tail, units.data() + head + text.size());
    bool isFirst = true;
    Traits::makeLeaves(units.data(), newLength, [&](TextLeaf *made) {
        if (std::exchange(isFirst, false))
            branch.setLeaf(made);
        else
            more.emplace_back(made);
    });
}

/// Makes one leaf of the first units and returns how many; a leaf is filled unless the text ends before.
template<int leafBytes, int fanout>
qsizetype TextTree<leafBytes, fanout>::Builder::addLeaf(const char16_t *text, qsizetype length)
{
    qsizetype count = std::min(length, Traits::narrowUnits);
    if (!isNarrowText(text, count)) {
        count = std::min(length, Traits::wideUnits);
        if (count < length && Traits::isPair(text[count - 1], text[count]))
            --count;
    }
    m_leaves.emplace_back(TextLeaf::make(text, count));
    return count;
}

/// How many of `wanted` units may be put behind those that wait.
template<int leafBytes, int fanout>
qsizetype TextTree<leafBytes, fanout>::Builder::makeRoom(qsizetype wanted)
{
    if (!m_pending)
        m_pending = std::make_unique_for_overwrite<char16_t[]>(size_t(Traits::narrowUnits));
    return std::min(wanted, Traits::narrowUnits - m_pendingLength);
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::Builder::addFullPending()
{
    if (m_pendingLength < Traits::narrowUnits)
        return;
    const qsizetype used = addLeaf(m_pending.get(), m_pendingLength);
    m_pendingLength -= used;
    std::memmove(m_pending.get(), m_pending.get() + used, size_t(m_pendingLength) * 2);
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::Builder::append(QStringView text)
{
    const char16_t *from = text.utf16();
    qsizetype left = text.size();
    m_length += left;
    while (left > 0) {
        qsizetype used = 0;
        if (m_pendingLength == 0 && left > Traits::narrowUnits) {
            used = addLeaf(from, left);
        } else {
            used = makeRoom(left);
            std::copy_n(from, used, m_pending.get() + m_pendingLength);
            m_pendingLength += used;
            addFullPending();
        }
        from += used;
        left -= used;
    }
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::Builder::appendLatin1(const uchar *text, qsizetype length)
{
    m_length += length;
    while (length > 0) {
        qsizetype used = 0;
        if (m_pendingLength == 0 && length >= Traits::narrowUnits) {
            used = Traits::narrowUnits;
            m_leaves.emplace_back(TextLeaf::makeNarrow(text, used));
        } else {
            used = makeRoom(length);
            widenText(text, used, m_pending.get() + m_pendingLength);
            m_pendingLength += used;
            addFullPending();
        }
        text += used;
        length -= used;
    }
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::Builder::append(const TextLeaf &leaf, qsizetype from, qsizetype to)
{
    if (leaf.isWide)
        append(QStringView(leaf.wide() + from, to - from));
    else
        appendLatin1(leaf.narrow() + from, to - from);
}

/// A leaf that ends with what may be half a pair has its units copied, and so has one that could be too small for its neighbours.
template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::Builder::append(const TextLeaf &leaf, const TextSummary &summary)
{
    const bool mayMeetPair = QChar::isHighSurrogate(leaf.at(leaf.length - 1)) ||
                             (m_pendingLength > 0 && QChar::isHighSurrogate(m_pending[size_t(m_pendingLength - 1)]));
    if (mayMeetPair || Traits::isSmall(leaf.bytes())) {
        append(leaf, 0, leaf.length);
        return;
    }
    addAllPending();
    m_leaves.push_back(Branch::share(leaf, summary));
    m_length += leaf.length;
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::Builder::append(const TextTree &tree)
{
    tree.m_tree.forEachLeaf([this](const TextLeaf &leaf, const TextSummary &summary) { append(leaf, summary); });
}

template<int leafBytes, int fanout>
void TextTree<leafBytes, fanout>::Builder::addAllPending()
{
    for (qsizetype at = 0; at < m_pendingLength;)
        at += addLeaf(m_pending.get() + at, m_pendingLength - at);
    m_pendingLength = 0;
}

template<int leafBytes, int fanout>
auto TextTree<leafBytes, fanout>::Builder::build() -> TextTree
{
    addAllPending();
    m_length = 0;
    return TextTree(Tree(std::exchange(m_leaves, {})));
}
