// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"

/// Both reading directions of a rope by whole pieces, without looking for the leaf again while it is the same. The rope must outlive the
/// reader unchanged. Offsets are UTF-16 units.
class ChunkReader final {
public:
    explicit ChunkReader(const Rope &text) : m_text(&text) {}

    /// From `offset` to the end of its leaf, or to `end` if that comes first. `offset` must be below `end`.
    [[nodiscard]] Rope::Chunk after(qsizetype offset, qsizetype end);
    /// From the start of the leaf, or from `start` if that comes later, to `offset`, which must be above `start`.
    [[nodiscard]] Rope::Chunk before(qsizetype start, qsizetype offset);

    /// The first LF in `offset` … `end`, or `end`.
    [[nodiscard]] qsizetype lineEnd(qsizetype offset, qsizetype end);
    /// Behind the last LF in `start` … `offset`, or `start`.
    [[nodiscard]] qsizetype lineStart(qsizetype start, qsizetype offset);

private:
    void hold(qsizetype offset);

    const Rope *m_text;
    Rope::Chunk m_chunk;
};

[[nodiscard]] qsizetype countLineFeeds(const Rope::Chunk &chunk);
/// In the chunk; -1 when there is none.
[[nodiscard]] qsizetype firstLineFeed(const Rope::Chunk &chunk);
[[nodiscard]] qsizetype lastLineFeed(const Rope::Chunk &chunk);

/// Calls `visit` with a pointer to the chunk's units.
template<class Visit>
auto withUnits(const Rope::Chunk &chunk, Visit visit)
{
    return chunk.narrow ? visit(chunk.narrow) : visit(chunk.wide);
}

/// `length` units from `from` in the chunk.
[[nodiscard]] Rope::Chunk cut(const Rope::Chunk &chunk, qsizetype from, qsizetype length);

/// How many units both begin with, or end with.
[[nodiscard]] qsizetype commonStart(const Rope::Chunk &a, const Rope::Chunk &b);
[[nodiscard]] qsizetype commonEnd(const Rope::Chunk &a, const Rope::Chunk &b);
