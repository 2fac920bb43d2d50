// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextBoundaries.h"

#include "Text/Rope.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <array>
#include <memory>

namespace {

constexpr qsizetype reach = 128;

enum class UnitClass { blank, lineBreak, word, mark };

struct BreakIteratorCloser {
    void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
};
using BreakIterator = std::unique_ptr<UBreakIterator, BreakIteratorCloser>;

BreakIterator openIterator(UBreakIteratorType type)
{
    UErrorCode status = U_ZERO_ERROR;
    BreakIterator iterator(ubrk_open(type, "", nullptr, 0, &status));
    return U_SUCCESS(status) ? std::move(iterator) : nullptr;
}

/// The units around an offset, with an iterator over them.
class Excerpt {
public:
    Excerpt(const Rope &text, qsizetype offset, UBreakIteratorType type)
    {
        qsizetype from = std::max<qsizetype>(0, offset - reach);
        if (from > 0 && QChar::isLowSurrogate(text.at(from))) {
            --from;
        }
        m_range = TextRange::between(from, std::min(text.length(), offset + reach));
        text.copy(m_range, m_units.data());
        thread_local const BreakIterator graphemes = openIterator(UBRK_CHARACTER);
        thread_local const BreakIterator words = openIterator(UBRK_WORD);
        m_iterator = type == UBRK_CHARACTER ? graphemes.get() : words.get();
        if (m_iterator) {
            UErrorCode status = U_ZERO_ERROR;
            ubrk_setText(m_iterator, m_units.data(), static_cast<int32_t>(m_range.length), &status);
        }
    }

    /// Without ICU's data every unit is a boundary of its own.
    [[nodiscard]] qsizetype following(qsizetype offset) const
    {
        const int32_t found = m_iterator ? ubrk_following(m_iterator, relative(offset)) : UBRK_DONE;
        return found == UBRK_DONE ? std::min(offset + 1, m_range.end()) : m_range.location + found;
    }
    [[nodiscard]] qsizetype preceding(qsizetype offset) const
    {
        const int32_t found = m_iterator ? ubrk_preceding(m_iterator, relative(offset)) : UBRK_DONE;
        return found == UBRK_DONE ? std::max(offset - 1, m_range.location) : m_range.location + found;
    }
    [[nodiscard]] bool isBoundary(qsizetype offset) const { return !m_iterator || ubrk_isBoundary(m_iterator, relative(offset)); }

private:
    [[nodiscard]] int32_t relative(qsizetype offset) const { return static_cast<int32_t>(offset - m_range.location); }

    std::array<char16_t, 2 * reach + 2> m_units;
    TextRange m_range;
    UBreakIterator *m_iterator = nullptr;
};

/// Below the first combining mark every unit is a grapheme, but for CR LF.
bool isPlain(char16_t unit)
{
    return unit < 0x300 && unit != u'\r' && unit != 0xAD;
}

UnitClass classOf(char16_t unit)
{
    if (unit == u'\n' || unit == u'\r') {
        return UnitClass::lineBreak;
    }
    if (unit == u' ' || unit == u'\t' || (unit >= 0x80 && u_isUWhiteSpace(unit))) {
        return UnitClass::blank;
    }
    if (unit < 0x80) {
        const bool isWord =
            (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9') || unit == u'_';
        return isWord ? UnitClass::word : UnitClass::mark;
    }
    const int8_t type = u_charType(unit);
    const bool isWord = u_isalnum(unit) || type == U_NON_SPACING_MARK || type == U_COMBINING_SPACING_MARK || type == U_ENCLOSING_MARK ||
                        U16_IS_SURROGATE(unit) || unit == 0x200D;
    return isWord ? UnitClass::word : UnitClass::mark;
}

/// Scripts that write words without blanks between them; their runs are divided by ICU's dictionaries.
bool needsDictionary(char16_t unit)
{
    return unit >= 0x0E00;
}

qsizetype runEnd(RopeCursor &cursor, qsizetype offset, qsizetype length)
{
    const UnitClass kind = classOf(cursor.at(offset));
    while (offset < length && classOf(cursor.at(offset)) == kind) {
        ++offset;
    }
    return offset;
}

qsizetype runStart(RopeCursor &cursor, qsizetype offset)
{
    const UnitClass kind = classOf(cursor.at(offset - 1));
    while (offset > 0 && classOf(cursor.at(offset - 1)) == kind) {
        --offset;
    }
    return offset;
}

qsizetype breakLength(RopeCursor &cursor, qsizetype offset, qsizetype length)
{
    return cursor.at(offset) == u'\r' && offset + 1 < length && cursor.at(offset + 1) == u'\n' ? 2 : 1;
}

qsizetype skipBlanks(RopeCursor &cursor, qsizetype offset, qsizetype length)
{
    while (offset < length && classOf(cursor.at(offset)) == UnitClass::blank) {
        ++offset;
    }
    return offset;
}

/// The end of the word (or run of marks) that `offset` is in.
qsizetype wordEnd(const Rope &text, RopeCursor &cursor, qsizetype offset)
{
    const qsizetype end = runEnd(cursor, offset, text.length());
    if (classOf(cursor.at(offset)) == UnitClass::word && needsDictionary(cursor.at(offset))) {
        return std::min(end, Excerpt(text, offset, UBRK_WORD).following(offset));
    }
    return end;
}

qsizetype wordStart(const Rope &text, RopeCursor &cursor, qsizetype offset)
{
    const qsizetype start = runStart(cursor, offset);
    if (classOf(cursor.at(offset - 1)) == UnitClass::word && needsDictionary(cursor.at(offset - 1))) {
        return std::max(start, Excerpt(text, offset, UBRK_WORD).preceding(offset));
    }
    return start;
}

} // namespace

qsizetype TextBoundaries::nextGrapheme(const Rope &text, qsizetype offset)
{
    const qsizetype length = text.length();
    if (offset >= length) {
        return length;
    }
    if (isPlain(text.at(offset)) && (offset + 1 == length || isPlain(text.at(offset + 1)) || text.at(offset + 1) == u'\r')) {
        return offset + 1;
    }
    return Excerpt(text, offset, UBRK_CHARACTER).following(offset);
}

qsizetype TextBoundaries::previousGrapheme(const Rope &text, qsizetype offset)
{
    if (offset <= 1) {
        return 0;
    }
    if (isPlain(text.at(offset - 1)) && (isPlain(text.at(offset - 2)) || text.at(offset - 1) != u'\n')) {
        return offset - 1;
    }
    return Excerpt(text, offset, UBRK_CHARACTER).preceding(offset);
}

qsizetype TextBoundaries::snapped(const Rope &text, qsizetype offset)
{
    if (offset <= 0 || offset >= text.length() || (isPlain(text.at(offset)) && text.at(offset) != u'\n')) {
        return std::clamp<qsizetype>(offset, 0, text.length());
    }
    if (text.splitsPair(offset)) {
        --offset;
    }
    const Excerpt excerpt(text, offset, UBRK_CHARACTER);
    return excerpt.isBoundary(offset) ? offset : excerpt.preceding(offset);
}

qsizetype TextBoundaries::nextWordStart(const Rope &text, qsizetype offset)
{
    const qsizetype length = text.length();
    if (offset >= length) {
        return length;
    }
    RopeCursor cursor(text);
    switch (classOf(cursor.at(offset))) {
    case UnitClass::lineBreak:
        return skipBlanks(cursor, offset + breakLength(cursor, offset, length), length);
    case UnitClass::blank:
        return skipBlanks(cursor, offset, length);
    default:
        return skipBlanks(cursor, wordEnd(text, cursor, offset), length);
    }
}

qsizetype TextBoundaries::previousWordStart(const Rope &text, qsizetype offset)
{
    RopeCursor cursor(text);
    while (offset > 0 && classOf(cursor.at(offset - 1)) == UnitClass::blank) {
        --offset;
    }
    if (offset == 0) {
        return 0;
    }
    if (classOf(cursor.at(offset - 1)) == UnitClass::lineBreak) {
        return previousGrapheme(text, offset);
    }
    return wordStart(text, cursor, offset);
}

TextRange TextBoundaries::wordAt(const Rope &text, qsizetype offset)
{
    const qsizetype length = text.length();
    RopeCursor cursor(text);
    const bool atLineEnd = offset >= length || classOf(cursor.at(offset)) == UnitClass::lineBreak;
    if (atLineEnd) {
        if (offset > 0 && classOf(cursor.at(offset - 1)) != UnitClass::lineBreak) {
            return TextRange::between(wordStart(text, cursor, offset), offset);
        }
        return {offset, offset < length ? breakLength(cursor, offset, length) : 0};
    }
    const qsizetype end = wordEnd(text, cursor, offset);
    return TextRange::between(wordStart(text, cursor, std::min(end, offset + 1)), end);
}
