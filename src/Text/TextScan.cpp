// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextScan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

constexpr qsizetype blockUnits = 64;

/// Which of 64 units are LF and which are CR, the first in the lowest bit.
struct BlockMasks {
    quint64 lf = 0;
    quint64 cr = 0;
};

#ifdef __SSE2__
__m128i load(const void *from)
{
    return _mm_loadu_si128(static_cast<const __m128i *>(from));
}

/// One byte a unit, 0xff where 16 units equal `key`.
__m128i equal16(const uchar *units, char key)
{
    return _mm_cmpeq_epi8(load(units), _mm_set1_epi8(key));
}
__m128i equal16(const char16_t *units, char key)
{
    const __m128i wide = _mm_set1_epi16(key);
    return _mm_packs_epi16(_mm_cmpeq_epi16(load(units), wide), _mm_cmpeq_epi16(load(units + 8), wide));
}

quint64 bits(const __m128i (&bytes)[4])
{
    const auto part = [&bytes](int i) { return quint64(quint32(_mm_movemask_epi8(bytes[i]))); };
    return part(0) | part(1) << 16 | part(2) << 32 | part(3) << 48;
}

bool hasAny(const __m128i (&bytes)[4])
{
    return _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(bytes[0], bytes[1]), _mm_or_si128(bytes[2], bytes[3]))) != 0;
}

template<class Unit>
BlockMasks scanBlock(const Unit *block)
{
    __m128i lf[4];
    __m128i cr[4];
    for (int part = 0; part < 4; ++part) {
        lf[part] = equal16(block + part * 16, '\n');
        cr[part] = equal16(block + part * 16, '\r');
    }
    return {bits(lf), hasAny(cr) ? bits(cr) : 0};
}
#else
template<class Unit>
BlockMasks scanBlock(const Unit *block)
{
    BlockMasks masks;
    for (qsizetype i = 0; i < blockUnits; ++i) {
        masks.lf |= quint64(block[i] == Unit('\n')) << i;
        masks.cr |= quint64(block[i] == Unit('\r')) << i;
    }
    return masks;
}
#endif

/// Gives `visit` the start of every block and the mask of units that end a line in it, until it returns false.
template<class Unit, class Visit>
void forEachBreakMask(const Unit *text, qsizetype length, Visit visit)
{
    std::array<Unit, blockUnits> tail;
    for (qsizetype start = 0; start < length; start += blockUnits) {
        const Unit *block = text + start;
        const qsizetype left = length - start;
        if (left < blockUnits) {
            tail.fill(Unit(0));
            std::copy_n(block, left, tail.begin());
            block = tail.data();
        }
        auto [lf, cr] = scanBlock(block);
        quint64 breaks = lf;
        if (cr) {
            if (left <= blockUnits)
                cr &= ~(quint64(1) << (left - 1));
            quint64 paired = lf >> 1;
            if (left > blockUnits && block[blockUnits] == Unit('\n'))
                paired |= quint64(1) << (blockUnits - 1);
            breaks |= cr & ~paired;
        }
        if (breaks && !visit(start, breaks))
            return;
    }
}

/// 1 where a surrogate pair ends, else 0.
quint32 endsPair(const char16_t *unit)
{
    return quint32((unit[-1] & 0xfc00) == 0xd800) & quint32((unit[0] & 0xfc00) == 0xdc00);
}

quint32 countPairs(const uchar * /*text*/, qsizetype /*length*/)
{
    return 0;
}

quint32 countPairs(const char16_t *text, qsizetype length)
{
    quint32 pairs = 0;
    for (qsizetype i = 1; i < length; ++i)
        pairs += endsPair(text + i);
    return pairs;
}

template<class Unit>
TextSummary summarize(const Unit *text, qsizetype length)
{
    TextSummary sum;
    if (length == 0)
        return sum;
    quint32 lineStart = 0;
    quint32 longest = 0;
    quint32 count = 0;
    quint32 first = 0;
    forEachBreakMask(text, length, [&](qsizetype start, quint64 breaks) {
        if (count == 0)
            first = quint32(start) + quint32(std::countr_zero(breaks)) + 1;
        do {
            const quint32 end = quint32(start) + quint32(std::countr_zero(breaks)) + 1;
            longest = std::max(longest, end - lineStart);
            lineStart = end;
            ++count;
            breaks &= breaks - 1;
        } while (breaks);
        return true;
    });
    sum.units = quint32(length);
    sum.breaks = count;
    sum.firstLine = count ? first : sum.units;
    sum.lastLine = sum.units - lineStart;
    sum.longestLine = std::max(longest, sum.lastLine);
    sum.pairs = countPairs(text, length);
    sum.startsWithLf = text[0] == Unit('\n');
    sum.endsWithCr = text[length - 1] == Unit('\r');
    return sum;
}

template<class Unit>
qsizetype findBreak(const Unit *text, qsizetype length, qsizetype number)
{
    qsizetype result = length;
    forEachBreakMask(text, length, [&](qsizetype start, quint64 breaks) {
        const qsizetype here = std::popcount(breaks);
        if (number > here) {
            number -= here;
            return true;
        }
        for (; number > 1; --number)
            breaks &= breaks - 1;
        result = start + std::countr_zero(breaks) + 1;
        return false;
    });
    return result;
}

} // namespace

TextSummary summarizeText(const uchar *text, qsizetype length)
{
    return summarize(text, length);
}
TextSummary summarizeText(const char16_t *text, qsizetype length)
{
    return summarize(text, length);
}
qsizetype endOfBreak(const uchar *text, qsizetype length, qsizetype number)
{
    return findBreak(text, length, number);
}
qsizetype endOfBreak(const char16_t *text, qsizetype length, qsizetype number)
{
    return findBreak(text, length, number);
}

qsizetype startOfCharacter(const char16_t *text, qsizetype length, qsizetype number)
{
    qsizetype at = 0;
    for (; number > 0 && at < length; --number)
        at += at + 1 < length && endsPair(text + at + 1) ? 2 : 1;
    return at;
}

bool isNarrowText(const char16_t *text, qsizetype length)
{
    qsizetype i = 0;
    // In strides, so that the loop has no branch per unit and is vectorised, yet wide text is found out early.
    for (; i + 64 <= length; i += 64) {
        char16_t all = 0;
        for (qsizetype j = 0; j < 64; ++j)
            all = char16_t(all | text[i + j]);
        if (all > 0xff)
            return false;
    }
    char16_t all = 0;
    for (; i < length; ++i)
        all = char16_t(all | text[i]);
    return all <= 0xff;
}

void widenText(const uchar *text, qsizetype length, char16_t *out)
{
    for (qsizetype i = 0; i < length; ++i)
        out[i] = text[i];
}

void narrowText(const char16_t *text, qsizetype length, uchar *out)
{
    qsizetype i = 0;
#ifdef __SSE2__
    for (; i + 16 <= length; i += 16)
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i), _mm_packus_epi16(load(text + i), load(text + i + 8)));
#endif
    for (; i < length; ++i)
        out[i] = uchar(text[i]);
}
