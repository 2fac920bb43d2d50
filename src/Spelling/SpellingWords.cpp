// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Spelling/SpellingWords.h"

#include <unicode/ubrk.h>

#include <algorithm>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// What stands around a range is looked at no further than so, in a text without blanks.
constexpr qsizetype reach = 256;
constexpr qsizetype longestWord = 80;

struct BreakIteratorCloser {
    void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
};
using BreakIterator = std::unique_ptr<UBreakIterator, BreakIteratorCloser>;

UBreakIterator *wordIterator()
{
    thread_local const BreakIterator iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        BreakIterator opened(ubrk_open(UBRK_WORD, "", nullptr, 0, &status));
        return U_SUCCESS(status) ? std::move(opened) : nullptr;
    }();
    return iterator.get();
}

TextRange widenedToBlanks(const Rope &text, TextRange range)
{
    RopeCursor cursor(text);
    const auto isBlank = [&cursor](qsizetype offset) { return QChar::isSpace(cursor.at(offset)); };
    qsizetype from = range.location;
    while (from > 0 && range.location - from < reach && !isBlank(from - 1)) {
        --from;
    }
    qsizetype to = range.end();
    while (to < text.length() && to - range.end() < reach && !isBlank(to)) {
        ++to;
    }
    return TextRange::between(from, to);
}

bool isOneOf(QChar character, QStringView characters)
{
    return characters.contains(character);
}

/// A stretch without blanks, in which addresses and paths are found. Places are those in the stretch.
class Token {
public:
    explicit Token(QStringView text) : m_text(text) {}

    /// What of it is no prose: a stretch of the token, or none.
    [[nodiscard]] std::optional<TextRange> address() const
    {
        if (const qsizetype at = m_text.indexOf("://"_L1); at > 0 && m_text[at - 1].isLetterOrNumber()) {
            return until(backWhile(at, u"+-."), u"<>\"')]}`");
        }
        if (const qsizetype at = m_text.indexOf("www."_L1); at == 0 || (at > 0 && !m_text[at - 1].isLetterOrNumber())) {
            return until(at, u"<>\"')]}`");
        }
        if (const qsizetype at = m_text.indexOf(u'@'); at > 0 && at + 1 < m_text.size()) {
            const qsizetype from = backWhile(at, u"._%+-");
            qsizetype to = at + 1;
            while (to < m_text.size() && (m_text[to].isLetterOrNumber() || isOneOf(m_text[to], u".-"))) {
                ++to;
            }
            if (from < at && to > at + 1) {
                return TextRange::between(from, to);
            }
        }
        const qsizetype start = std::ranges::find_if_not(m_text, [](QChar c) { return isOneOf(c, u"\"'`(<[{“„"); }) - m_text.begin();
        return looksLikePath(m_text.sliced(start)) ? std::optional(TextRange{0, m_text.size()}) : std::nullopt;
    }

private:
    [[nodiscard]] static bool looksLikePath(QStringView text)
    {
        if (text.startsWith("--"_L1) || text.startsWith("~/"_L1) || text.startsWith("./"_L1) || text.startsWith("../"_L1)) {
            return true;
        }
        qsizetype parts = 0;
        for (qsizetype place = 0; place + 1 < text.size(); ++place) {
            if (text[place] == u'/' && (text[place + 1].isLetterOrNumber() || text[place + 1] == u'.')) {
                parts += place == 0 ? 2 : 1;
            }
        }
        return parts >= 2 && !text.startsWith("//"_L1);
    }
    [[nodiscard]] qsizetype backWhile(qsizetype place, QStringView alsoAllowed) const
    {
        while (place > 0 && (m_text[place - 1].isLetterOrNumber() || isOneOf(m_text[place - 1], alsoAllowed))) {
            --place;
        }
        return place;
    }
    [[nodiscard]] TextRange until(qsizetype from, QStringView ends) const
    {
        const auto end = std::find_if(m_text.begin() + from, m_text.end(), [&](QChar c) { return isOneOf(c, ends); });
        return TextRange::between(from, end - m_text.begin());
    }

    QStringView m_text;
};

std::vector<TextRange> addresses(QStringView text)
{
    std::vector<TextRange> found;
    for (qsizetype from = 0; from < text.size();) {
        if (text[from].isSpace()) {
            ++from;
            continue;
        }
        qsizetype to = from;
        while (to < text.size() && !text[to].isSpace()) {
            ++to;
        }
        if (const auto address = Token(text.sliced(from, to - from)).address()) {
            found.push_back({from + address->location, address->length});
            // There may be another one behind it, as in a list without blanks.
            to = std::max(from + address->end(), from + 1);
        }
        from = to;
    }
    return found;
}

/// Names of programs have digits, underscores, points or capitals within; so have words in capitals.
bool isOrdinary(QStringView word)
{
    if (word.size() < 2 || word.size() > longestWord) {
        return false;
    }
    return word[0].isLetter() && std::all_of(word.begin() + 1, word.end(), [](QChar character) {
               return !character.isUpper() && !character.isDigit() && !isOneOf(character, u"_.:\u00AD");
           });
}

bool isBesideProgramSigns(QStringView text, TextRange word)
{
    const QStringView before = text.first(word.location);
    const QStringView behind = text.sliced(word.end());
    if (!before.isEmpty() && isOneOf(before.back(), u"#@$%&`.\\")) {
        return true;
    }
    return before.endsWith("::"_L1) || before.endsWith("->"_L1) || behind.startsWith(u'`') || behind.startsWith("::"_L1) ||
           behind.startsWith("()"_L1);
}

/// Of a word behind a backslash what belongs to the word; empty when that is unknown.
TextRange withoutEscape(QStringView text, TextRange word)
{
    qsizetype slashes = 0;
    while (slashes < word.location && text[word.location - slashes - 1] == u'\\') {
        ++slashes;
    }
    if (slashes % 2 == 0) {
        return word;
    }
    const bool isNumber = isOneOf(text[word.location], u"xuUN");
    return isNumber ? TextRange{word.location, 0} : TextRange{word.location + 1, word.length - 1};
}

void addWord(std::vector<SpellingWord> &words, QStringView text, TextRange word, SpellingWords::Setting setting)
{
    if (setting == SpellingWords::Setting::code && word.location > 0 && text[word.location - 1] == u'\\') {
        word = withoutEscape(text, word);
    } else if (isBesideProgramSigns(text, word)) {
        return;
    }
    const QStringView spelled = text.sliced(word.location, word.length);
    if (isOrdinary(spelled)) {
        words.push_back({word, spelled.toString()});
    }
}

/// Swedish has words with a colon inside, so it does not end one for ICU. In prose underscores around words mark them.
void addParts(std::vector<SpellingWord> &words, QStringView text, TextRange segment, SpellingWords::Setting setting)
{
    if (setting == SpellingWords::Setting::prose) {
        while (!segment.isEmpty() && text[segment.location] == u'_') {
            segment = {segment.location + 1, segment.length - 1};
        }
        while (!segment.isEmpty() && text[segment.end() - 1] == u'_') {
            --segment.length;
        }
    }
    qsizetype from = segment.location;
    for (qsizetype place = from; place <= segment.end(); ++place) {
        if (place == segment.end() || text[place] == u':') {
            if (place > from) {
                addWord(words, text, TextRange::between(from, place), setting);
            }
            from = place + 1;
        }
    }
}

} // namespace

std::vector<SpellingWord> SpellingWords::touching(const Rope &text, TextRange range, Setting setting)
{
    const TextRange around = widenedToBlanks(text, range);
    UBreakIterator *iterator = wordIterator();
    if (around.isEmpty() || !iterator) {
        return {};
    }
    const QString units = text.toString(around);
    UErrorCode status = U_ZERO_ERROR;
    ubrk_setText(iterator, reinterpret_cast<const UChar *>(units.utf16()), int32_t(units.size()), &status);
    if (U_FAILURE(status)) {
        return {};
    }
    const std::vector<TextRange> excluded = addresses(units);
    std::vector<SpellingWord> words;
    auto address = excluded.begin();
    int32_t from = ubrk_first(iterator);
    for (int32_t to = ubrk_next(iterator); to != UBRK_DONE; from = std::exchange(to, ubrk_next(iterator))) {
        const TextRange segment = TextRange::between(from, to);
        while (address != excluded.end() && address->end() <= segment.location) {
            ++address;
        }
        const bool isExcluded = address != excluded.end() && address->location < segment.end();
        const int32_t kind = ubrk_getRuleStatus(iterator);
        if (kind >= UBRK_WORD_LETTER && kind < UBRK_WORD_LETTER_LIMIT && !isExcluded) {
            addParts(words, units, segment, setting);
        }
    }
    for (SpellingWord &word : words) {
        word.range.location += around.location;
    }
    std::erase_if(words, [range](const SpellingWord &word) { return !word.range.touches(range); });
    return words;
}
