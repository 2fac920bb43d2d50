// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextSearch.h"

#include <optional>
#include <vector>

/// How many hits a text has and the way to each of them, at a price that depends on the text's length alone: two numbers for every block
/// of 16384 units, which say how many hits begin before the block and where the search for those in it begins. So a hit is found by
/// searching one block again.
///
/// A value of the text and query that it was made of; questions need both again. Any thread.
class HitIndex final {
public:
    static constexpr qsizetype blockUnits = 16384;
    static constexpr qsizetype mostPieces = 65'536;

    /// O(text). Stopped, it is of no use.
    [[nodiscard]] static HitIndex make(TextSearcher &searcher, const Rope &text, const SearchControl &control = {});

    [[nodiscard]] qsizetype count() const { return m_blocks.back().before; }
    /// Which hit `hit` is, from 0; none when it is not one of them. Searches one block, as the others do.
    [[nodiscard]] std::optional<qsizetype> indexOf(TextRange hit, TextSearcher &searcher, const Rope &text) const;
    /// The first hit that begins at `offset` or behind.
    [[nodiscard]] std::optional<TextRange> next(qsizetype offset, TextSearcher &searcher, const Rope &text) const;
    /// The last hit that begins before `offset`.
    [[nodiscard]] std::optional<TextRange> previous(qsizetype offset, TextSearcher &searcher, const Rope &text) const;
    /// Whether a piece of the text in which a hit begins does so in `range`: of 65,536 at most that it is cut into, in a shorter text of
    /// one unit each. Of ranges side by side only one has it. Costs a bit a piece.
    [[nodiscard]] bool mayHaveHitsIn(TextRange range) const;
    /// Where a search comes by all hits that touch `offset`, unless they are longer than a block.
    [[nodiscard]] qsizetype searchStart(qsizetype offset) const;

private:
    struct Block {
        qsizetype start = 0;
        qsizetype before = 0;
    };

    HitIndex() = default;
    [[nodiscard]] size_t blockAt(qsizetype offset) const;
    [[nodiscard]] bool hasHits(size_t block) const { return m_blocks[block + 1].before > m_blocks[block].before; }
    [[nodiscard]] TextRange rangeOf(size_t block) const;

    qsizetype m_pieceUnits = 1;
    /// Whether hits begin in them.
    std::vector<bool> m_pieces;
    /// One for every block and one behind them.
    std::vector<Block> m_blocks;
};
