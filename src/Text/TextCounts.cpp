// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextCounts.h"

#include "Text/Rope.h"
#include "Text/TextEdits.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr qsizetype pieceLength = 65536;
/// A boundary nearer than this to the end of a piece may be none when what follows is seen.
constexpr qsizetype margin = 512;

struct BreakIteratorCloser {
    void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
};

/// An iterator of ICU over some units; without ICU's data it finds no boundary.
class Boundaries {
public:
    explicit Boundaries(UBreakIteratorType type)
    {
        UErrorCode status = U_ZERO_ERROR;
        m_iterator.reset(ubrk_open(type, "", nullptr, 0, &status));
    }
    void setUnits(const std::vector<char16_t> &units, qsizetype length)
    {
        UErrorCode status = U_ZERO_ERROR;
        if (m_iterator) {
            ubrk_setText(m_iterator.get(), units.data(), int32_t(length), &status);
        }
    }
    /// 0 when there is none but the start.
    [[nodiscard]] qsizetype lastBefore(qsizetype offset) const
    {
        const int32_t found = m_iterator ? ubrk_preceding(m_iterator.get(), int32_t(offset)) : UBRK_DONE;
        return found == UBRK_DONE ? 0 : found;
    }
    /// Calls `visit(end, isWord)` for the stretches between boundaries that end at `limit` or before, until it returns false.
    void forEach(qsizetype limit, const auto &visit) const
    {
        if (!m_iterator) {
            return;
        }
        ubrk_first(m_iterator.get());
        for (int32_t end = ubrk_next(m_iterator.get()); end != UBRK_DONE && end <= limit; end = ubrk_next(m_iterator.get())) {
            if (!visit(qsizetype(end), ubrk_getRuleStatus(m_iterator.get()) >= UBRK_WORD_NONE_LIMIT)) {
                return;
            }
        }
    }

private:
    std::unique_ptr<UBreakIterator, BreakIteratorCloser> m_iterator;
};

/// To open one takes longer than to count a line.
template<UBreakIteratorType type>
Boundaries &boundaries()
{
    thread_local Boundaries opened(type);
    return opened;
}

/// What ICU's rules for words make of a unit of ASCII.
enum class WordUnit : quint8 { other, letter, digit, connector, withinDigits, withinBoth };

constexpr auto wordUnits = [] {
    using enum WordUnit;
    std::array<WordUnit, 0x80> units = {};
    for (char16_t unit = 0; unit != 0x80; ++unit) {
        const bool isLetter = (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit == u'@';
        units[unit] = isLetter ? letter : unit >= u'0' && unit <= u'9' ? digit : unit == u'_' ? connector : other;
    }
    units[u','] = units[u';'] = withinDigits;
    units[u'.'] = units[u'\''] = withinBoth;
    return units;
}();

/// The words in units of ASCII by the same rules, in a fifth of the time: what consists of letters, digits and `_`, also on either side of
/// a mark that goes with two letters or two digits.
qsizetype countAsciiWords(std::u16string_view text)
{
    using enum WordUnit;
    const auto at = [text](size_t place) { return place < text.size() ? wordUnits[text[place]] : other; };
    const auto isPart = [](WordUnit unit) { return unit == letter || unit == digit || unit == connector; };
    qsizetype words = 0;
    bool wasPart = false;
    for (size_t place = 0; place < text.size(); ++place) {
        const WordUnit unit = wordUnits[text[place]];
        words += isPart(unit) && !wasPart ? 1 : 0;
        wasPart = isPart(unit);
        if (unit >= connector) {
            const WordUnit before = at(place - 1);
            const WordUnit behind = at(place + 1);
            const bool isWithin = before == behind && (before == digit || (before == letter && unit == withinBoth));
            const bool isAlone = !isPart(before) && !isPart(behind);
            words -= (unit == connector ? isAlone : isWithin) ? 1 : 0;
        }
    }
    return words;
}

bool isLineBreak(char16_t unit)
{
    return unit == u'\n' || unit == u'\r';
}

bool isBlank(char16_t unit)
{
    return unit < 0x80 ? unit == u' ' || (unit >= u'\t' && unit <= u'\r') : u_isUWhiteSpace(unit);
}

/// Counts a stretch piece by piece, in memory of its own.
class Count {
public:
    Count(const Rope &text, TextRange range) : m_text(text), m_range(range) { m_units.resize(size_t(std::min(range.length, pieceLength))); }

    [[nodiscard]] TextCounts run(const std::stop_token &stop)
    {
        for (qsizetype from = m_range.location; from < m_range.end() && !stop.stop_requested();) {
            from += countPiece(from);
        }
        return m_counts;
    }

private:
    /// Returns how many units of it are counted.
    qsizetype countPiece(qsizetype from)
    {
        const qsizetype length = std::min(pieceLength, m_range.end() - from);
        m_text.copy({from, length}, m_units.data());
        const bool isAscii = std::all_of(m_units.begin(), m_units.begin() + length, [](char16_t unit) { return unit < 0x80; });
        m_words.setUnits(m_units, length);
        qsizetype counted = length;
        bool isCut = false;
        if (from + length < m_range.end()) {
            counted = m_words.lastBefore(length - margin);
            isCut = counted == 0;
            if (isCut) {
                counted = graphemeEnd(length);
            }
        }
        if (isAscii && !isCut && !m_isInWord) {
            m_counts.words += countAsciiWords({m_units.data(), size_t(counted)});
        } else {
            countWords(isCut ? length : counted, isCut);
        }
        countCharacters(counted);
        return counted;
    }
    /// In a piece that is all one word, or all blank.
    [[nodiscard]] qsizetype graphemeEnd(qsizetype length)
    {
        m_graphemes.setUnits(m_units, length);
        const qsizetype end = m_graphemes.lastBefore(length - margin);
        return end == 0 ? length - margin : end;
    }
    /// A word that goes on from the piece before is counted already. One that is cut is all there is in this piece.
    void countWords(qsizetype limit, bool isCut)
    {
        bool goesOn = std::exchange(m_isInWord, false);
        m_words.forEach(limit, [&](qsizetype /*end*/, bool isWord) {
            m_counts.words += isWord && !goesOn ? 1 : 0;
            m_isInWord = isWord && isCut;
            goesOn = false;
            return !isCut;
        });
    }
    void countCharacters(qsizetype length)
    {
        const auto last = m_units.begin() + length;
        const auto add = [this](char16_t first) {
            if (!isLineBreak(first)) {
                ++m_counts.characters;
                m_counts.blanks += isBlank(first) ? 1 : 0;
            }
        };
        // Below the first combining mark each unit is one, but for a line break of two, which is none either way.
        if (std::all_of(m_units.begin(), last, [](char16_t unit) { return unit < 0x300; })) {
            std::for_each(m_units.begin(), last, add);
            return;
        }
        m_graphemes.setUnits(m_units, length);
        qsizetype start = 0;
        m_graphemes.forEach(length, [&](qsizetype end, bool /*isWord*/) {
            add(m_units[size_t(start)]);
            start = end;
            return true;
        });
    }

    const Rope &m_text;
    const TextRange m_range;
    std::vector<char16_t> m_units;
    Boundaries &m_words = boundaries<UBRK_WORD>();
    Boundaries &m_graphemes = boundaries<UBRK_CHARACTER>();
    TextCounts m_counts;
    bool m_isInWord = false;
};

/// Whether a word and a grapheme end at `offset` whatever else the text has: behind a line feed or, if the unit at `offset` is known to
/// stay as well, between a space and a letter or digit.
enum class Known { before, both };
bool isFirmBoundary(RopeCursor &cursor, qsizetype offset, Known known)
{
    const char16_t before = cursor.at(offset - 1);
    if (before == u'\n' || known == Known::before) {
        return before == u'\n';
    }
    const char16_t behind = cursor.at(offset);
    return before == u' ' && behind < 0x80 && u_isalnum(behind);
}

/// What is around the changed stretch of `text` up to such boundaries; none when it is longer than `most`.
std::optional<TextRange> firmlyBound(const Rope &text, TextRange changed, qsizetype most)
{
    RopeCursor cursor(text);
    qsizetype from = changed.location;
    qsizetype to = changed.end();
    while (from > 0 && !isFirmBoundary(cursor, from, from < changed.location ? Known::both : Known::before)) {
        if (--from < changed.location - most) {
            return std::nullopt;
        }
    }
    while (to < text.length() && (to == changed.end() || !isFirmBoundary(cursor, to, Known::both))) {
        if (++to > changed.end() + most) {
            return std::nullopt;
        }
    }
    return to - from <= most ? std::optional(TextRange::between(from, to)) : std::nullopt;
}

} // namespace

TextCounts TextCounts::of(const Rope &text, TextRange range, const std::stop_token &stop)
{
    return range.isEmpty() ? TextCounts() : Count(text, range).run(stop);
}

std::optional<TextCounts> TextCounts::growth(const TextChange &change, qsizetype most)
{
    const ReplacedStretch hull = change.edits.hull();
    if (hull.removed > most || hull.inserted > most) {
        return std::nullopt;
    }
    const auto before = firmlyBound(change.before, {hull.location, hull.removed}, most);
    if (!before || before->length + hull.growth() > most) {
        return std::nullopt;
    }
    TextCounts grown = of(change.after, {before->location, before->length + hull.growth()});
    grown -= of(change.before, *before);
    return grown;
}

TextCounts &TextCounts::operator+=(const TextCounts &other)
{
    words += other.words;
    characters += other.characters;
    blanks += other.blanks;
    return *this;
}

TextCounts &TextCounts::operator-=(const TextCounts &other)
{
    words -= other.words;
    characters -= other.characters;
    blanks -= other.blanks;
    return *this;
}
