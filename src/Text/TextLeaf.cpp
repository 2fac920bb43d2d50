// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextLeaf.h"

#include <cstring>
#include <new>

TextLeaf *TextLeaf::allocate(qsizetype capacity)
{
    ++treeCounters.leavesMade;
    // The allocator hands out multiples of 16.
    const qsizetype rounded = (capacity + 15) & ~qsizetype(15);
    auto *leaf = new (::operator new(sizeof(TextLeaf) + size_t(rounded))) TextLeaf;
    leaf->capacity = quint16(rounded);
    return leaf;
}

TextLeaf *TextLeaf::make(const char16_t *text, qsizetype length, qsizetype limit)
{
    const bool isNarrow = isNarrowText(text, length);
    const qsizetype bytes = isNarrow ? length : 2 * length;
    TextLeaf *leaf = allocate(std::max(bytes, std::min(limit, bytes + bytes / 2 + 32)));
    leaf->length = quint16(length);
    leaf->isWide = !isNarrow;
    if (isNarrow)
        narrowText(text, length, leaf->narrow());
    else
        std::copy_n(text, length, leaf->wide());
    return leaf;
}

TextLeaf *TextLeaf::makeNarrow(const uchar *text, qsizetype length)
{
    TextLeaf *leaf = allocate(length);
    leaf->length = quint16(length);
    std::memcpy(leaf->narrow(), text, size_t(length));
    return leaf;
}

void TextLeaf::destroy(TextLeaf *leaf)
{
    leaf->~TextLeaf();
    ::operator delete(leaf);
}

void TextLeaf::copy(qsizetype from, qsizetype count, char16_t *out) const
{
    if (isWide)
        std::copy_n(wide() + from, count, out);
    else
        widenText(narrow() + from, count, out);
}

TextSummary TextLeaf::summarize(qsizetype count) const
{
    return isWide ? summarizeText(wide(), count) : summarizeText(narrow(), count);
}

qsizetype TextLeaf::endOfBreak(qsizetype number) const
{
    return isWide ? ::endOfBreak(wide(), length, number) : ::endOfBreak(narrow(), length, number);
}

TextLeaf *TextLeaf::part(qsizetype from, qsizetype count) const
{
    return isWide ? make(wide() + from, count) : makeNarrow(narrow() + from, count);
}

void TextLeaf::replace(qsizetype from, qsizetype count, const char16_t *text, qsizetype textLength)
{
    const qsizetype tail = length - from - count;
    if (isWide) {
        std::memmove(wide() + from + textLength, wide() + from + count, size_t(tail) * 2);
        std::copy_n(text, textLength, wide() + from);
    } else {
        std::memmove(narrow() + from + textLength, narrow() + from + count, size_t(tail));
        narrowText(text, textLength, narrow() + from);
    }
    length = quint16(length - count + textLength);
}
