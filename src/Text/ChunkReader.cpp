// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/ChunkReader.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr qsizetype blockUnits = 64;

template<class A, class B>
bool isSame(const A *a, const B *b, qsizetype length)
{
    if constexpr (std::is_same_v<A, B>) {
        return std::memcmp(a, b, size_t(length) * sizeof(A)) == 0;
    } else {
        return std::equal(a, a + length, b);
    }
}

} // namespace

void ChunkReader::hold(qsizetype offset)
{
    if (quint64(offset - m_chunk.location) >= quint64(m_chunk.length)) {
        m_chunk = m_text->chunkAt(offset);
    }
}

Rope::Chunk ChunkReader::after(qsizetype offset, qsizetype end)
{
    hold(offset);
    const qsizetype from = offset - m_chunk.location;
    return cut(m_chunk, from, std::min(m_chunk.length - from, end - offset));
}

Rope::Chunk ChunkReader::before(qsizetype start, qsizetype offset)
{
    hold(offset - 1);
    const qsizetype from = std::max<qsizetype>(0, start - m_chunk.location);
    return cut(m_chunk, from, offset - m_chunk.location - from);
}

qsizetype ChunkReader::lineEnd(qsizetype offset, qsizetype end)
{
    while (offset < end) {
        const Rope::Chunk chunk = after(offset, end);
        if (const qsizetype found = firstLineFeed(chunk); found >= 0) {
            return chunk.location + found;
        }
        offset += chunk.length;
    }
    return end;
}

qsizetype ChunkReader::lineStart(qsizetype start, qsizetype offset)
{
    while (offset > start) {
        const Rope::Chunk chunk = before(start, offset);
        if (const qsizetype found = lastLineFeed(chunk); found >= 0) {
            return chunk.location + found + 1;
        }
        offset = chunk.location;
    }
    return start;
}

qsizetype countLineFeeds(const Rope::Chunk &chunk)
{
    // Counted in bytes for as many units as cannot overflow one, which compilers do by vectors.
    return withUnits(chunk, [length = chunk.length](const auto *units) {
        qsizetype count = 0;
        qsizetype at = 0;
        while (at < length) {
            const qsizetype end = std::min(length, at + 192);
            quint8 found = 0;
            for (; at < end; ++at) {
                found = quint8(found + (units[at] == u'\n'));
            }
            count += found;
        }
        return count;
    });
}

qsizetype firstLineFeed(const Rope::Chunk &chunk)
{
    if (chunk.narrow) {
        const void *const found = std::memchr(chunk.narrow, '\n', size_t(chunk.length));
        return found ? static_cast<const uchar *>(found) - chunk.narrow : -1;
    }
    return QStringView(chunk.wide, chunk.length).indexOf(u'\n');
}

qsizetype lastLineFeed(const Rope::Chunk &chunk)
{
    if (chunk.narrow) {
        const void *const found = memrchr(chunk.narrow, '\n', size_t(chunk.length));
        return found ? static_cast<const uchar *>(found) - chunk.narrow : -1;
    }
    return QStringView(chunk.wide, chunk.length).lastIndexOf(u'\n');
}

Rope::Chunk cut(const Rope::Chunk &chunk, qsizetype from, qsizetype length)
{
    return {.location = chunk.location + from,
            .length = length,
            .narrow = chunk.narrow ? chunk.narrow + from : nullptr,
            .wide = chunk.narrow ? nullptr : chunk.wide + from};
}

qsizetype commonStart(const Rope::Chunk &a, const Rope::Chunk &b)
{
    const qsizetype length = std::min(a.length, b.length);
    return withUnits(a, [&b, length](const auto *one) {
        return withUnits(b, [one, length](const auto *other) {
            qsizetype same = 0;
            while (length - same >= blockUnits && isSame(one + same, other + same, blockUnits)) {
                same += blockUnits;
            }
            while (same < length && one[same] == other[same]) {
                ++same;
            }
            return same;
        });
    });
}

qsizetype commonEnd(const Rope::Chunk &a, const Rope::Chunk &b)
{
    const qsizetype length = std::min(a.length, b.length);
    return withUnits(a, [&a, &b, length](const auto *one) {
        return withUnits(b, [oneEnd = one + a.length, &b, length](const auto *other) {
            const auto *const otherEnd = other + b.length;
            qsizetype same = 0;
            while (length - same >= blockUnits && isSame(oneEnd - same - blockUnits, otherEnd - same - blockUnits, blockUnits)) {
                same += blockUnits;
            }
            while (same < length && oneEnd[-same - 1] == otherEnd[-same - 1]) {
                ++same;
            }
            return same;
        });
    });
}
