// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/HitIndex.h"

#include <algorithm>

HitIndex HitIndex::make(TextSearcher &searcher, const Rope &text, const SearchControl &control)
{
    HitIndex index;
    const auto count = static_cast<size_t>((text.length() + blockUnits - 1) / blockUnits) + 1;
    index.m_blocks.reserve(count);
    index.m_pieceUnits = text.length() / mostPieces + 1;
    index.m_pieces.resize(static_cast<size_t>(text.length() / index.m_pieceUnits) + 1);
    qsizetype hits = 0;
    qsizetype reached = 0;
    // No hit begins between the end of the one before and the next, so the search for those of a block may begin there.
    const auto closeBlocks = [&](size_t wanted) {
        while (index.m_blocks.size() < wanted) {
            const auto start = static_cast<qsizetype>(index.m_blocks.size()) * blockUnits;
            index.m_blocks.push_back({.start = std::max(reached, start), .before = hits});
        }
    };
    searcher.forEachHit(
        text, {0, text.length()},
        [&](TextRange hit) {
            closeBlocks(static_cast<size_t>(hit.location / blockUnits) + 1);
            index.m_pieces[static_cast<size_t>(hit.location / index.m_pieceUnits)] = true;
            ++hits;
            reached = hit.end();
            return true;
        },
        control);
    closeBlocks(count);
    return index;
}

size_t HitIndex::blockAt(qsizetype offset) const
{
    return std::min(static_cast<size_t>(std::max<qsizetype>(0, offset) / blockUnits), m_blocks.size() - 1);
}

TextRange HitIndex::rangeOf(size_t block) const
{
    const qsizetype start = m_blocks[block].start;
    return TextRange::between(start, std::max(start, static_cast<qsizetype>(block + 1) * blockUnits));
}

std::optional<qsizetype> HitIndex::indexOf(TextRange hit, TextSearcher &searcher, const Rope &text) const
{
    const size_t block = blockAt(hit.location);
    if (block + 1 >= m_blocks.size() || !hasHits(block)) {
        return std::nullopt;
    }
    qsizetype before = m_blocks[block].before;
    bool isHit = false;
    searcher.forEachHit(text, rangeOf(block), [&](TextRange found) {
        isHit = found == hit;
        before += found.location < hit.location ? 1 : 0;
        return found.location < hit.location;
    });
    return isHit ? std::optional(before) : std::nullopt;
}

std::optional<TextRange> HitIndex::next(qsizetype offset, TextSearcher &searcher, const Rope &text) const
{
    std::optional<TextRange> result;
    for (size_t block = blockAt(offset); block + 1 < m_blocks.size() && !result; ++block) {
        if (hasHits(block)) {
            searcher.forEachHit(text, rangeOf(block), [&](TextRange hit) {
                if (hit.location >= offset) {
                    result = hit;
                }
                return !result;
            });
        }
    }
    return result;
}

std::optional<TextRange> HitIndex::previous(qsizetype offset, TextSearcher &searcher, const Rope &text) const
{
    std::optional<TextRange> result;
    for (size_t block = std::min(blockAt(offset) + 1, m_blocks.size() - 1); block > 0 && !result; --block) {
        if (hasHits(block - 1)) {
            searcher.forEachHit(text, rangeOf(block - 1), [&](TextRange hit) {
                if (hit.location < offset) {
                    result = hit;
                }
                return hit.location < offset;
            });
        }
    }
    return result;
}

bool HitIndex::mayHaveHitsIn(TextRange range) const
{
    const auto pieces = static_cast<qsizetype>(m_pieces.size());
    const auto pieceAt = [&](qsizetype offset) { return std::clamp<qsizetype>((offset + m_pieceUnits - 1) / m_pieceUnits, 0, pieces); };
    const auto end = m_pieces.begin() + pieceAt(range.end());
    return std::find(m_pieces.begin() + pieceAt(range.location), end, true) != end;
}

qsizetype HitIndex::searchStart(qsizetype offset) const
{
    const size_t block = blockAt(offset);
    return std::min(m_blocks[block > 0 ? block - 1 : 0].start, offset);
}
