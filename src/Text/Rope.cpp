// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/Rope.h"

#include "Text/TextEdits.h"
#include "Text/TextTreeCode.h"

template class TextTree<4096, 32>;

bool Rope::splitsPair(qsizetype offset) const
{
    return offset > 0 && offset < length() && QChar::isLowSurrogate(at(offset)) && QChar::isHighSurrogate(at(offset - 1));
}

QString Rope::toString(TextRange range) const
{
    QString text(range.length, Qt::Uninitialized);
    copy(range, reinterpret_cast<char16_t *>(text.data()));
    return text;
}

Rope::Chunk Rope::chunkAt(qsizetype offset) const
{
    qsizetype inLeaf = offset;
    const TextLeaf &leaf = m_tree.leafAt(inLeaf);
    return {.location = offset - inLeaf,
            .length = leaf.length,
            .narrow = leaf.isWide ? nullptr : leaf.narrow(),
            .wide = leaf.isWide ? leaf.wide() : nullptr};
}

void Rope::forEachChunk(TextRange range, const std::function<bool(const Chunk &)> &visit) const
{
    for (qsizetype at = range.location; at < range.end();) {
        Chunk chunk = chunkAt(at);
        const qsizetype skipped = at - chunk.location;
        chunk.length = std::min(chunk.length - skipped, range.end() - at);
        chunk.location = at;
        if (chunk.narrow)
            chunk.narrow += skipped;
        else
            chunk.wide += skipped;
        if (!visit(chunk))
            return;
        at += chunk.length;
    }
}

void Rope::replace(std::span<const TextEdit> edits)
{
    m_tree.replace(
        edits.size(), [edits](size_t index) { return edits[index].range; },
        [edits](size_t index) -> const Tree & { return edits[index].text.m_tree; });
}
