// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimWordCompletion.h"

#include "Text/TextRange.h"
#include "Vim/VimCharacters.h"

#include <QSet>

#include <algorithm>

namespace {

/// The units of a text as parts of words. Neighbouring places cost next to nothing.
class Words final {
public:
    explicit Words(const Rope &text) : m_text(text), m_cursor(text) {}

    [[nodiscard]] char16_t at(qsizetype place) { return m_cursor.at(place); }
    /// Of half of a surrogate pair that of the pair.
    [[nodiscard]] bool isKeyword(qsizetype place)
    {
        const char16_t unit = at(place);
        if (unit < 0x80) {
            return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || (unit >= u'0' && unit <= u'9') || unit == u'_';
        }
        if (QChar::isLowSurrogate(unit) && place > 0 && QChar::isHighSurrogate(at(place - 1))) {
            return VimCharacters::isKeyword(QChar::surrogateToUcs4(at(place - 1), unit));
        }
        const bool isPair = QChar::isHighSurrogate(unit) && place + 1 < m_text.length() && QChar::isLowSurrogate(at(place + 1));
        return VimCharacters::isKeyword(isPair ? QChar::surrogateToUcs4(unit, at(place + 1)) : char32_t(unit));
    }
    [[nodiscard]] qsizetype startOf(qsizetype place, qsizetype least)
    {
        while (place > least && isKeyword(place - 1)) {
            --place;
        }
        return place;
    }
    [[nodiscard]] qsizetype endOf(qsizetype place, qsizetype most)
    {
        while (place < most && isKeyword(place)) {
            ++place;
        }
        return place;
    }

private:
    const Rope &m_text;
    RopeCursor m_cursor;
};

/// Longer ones are no words that somebody would type.
constexpr qsizetype longestWord = 200;

} // namespace

class VimWordCompletion::Finding final {
public:
    Finding(VimWordCompletion &completion, bool ignoresCase)
        : m_completion(completion), m_case(ignoresCase ? Qt::CaseInsensitive : Qt::CaseSensitive)
    {}

    /// Whole words in `range`, which is cut to `longestSearch` units at its far end.
    void search(const Rope &text, TextRange range)
    {
        const bool isForward = m_completion.m_direction == Direction::forward;
        const qsizetype length = std::min(range.length, longestSearch);
        const qsizetype from = isForward ? range.location : range.end() - length;
        const qsizetype to = from + length;
        Words words(text);
        std::vector<TextRange> found;
        // What is cut in two is none of them.
        qsizetype place = from > range.location ? words.endOf(from, to) : from;
        while (place < to) {
            if (!words.isKeyword(place)) {
                ++place;
                continue;
            }
            const qsizetype end = words.endOf(place, to);
            if ((end < to || to == range.end()) && fits(text, words, {place, end - place})) {
                found.push_back({place, end - place});
            }
            place = end;
        }
        if (!isForward) {
            std::ranges::reverse(found);
        }
        for (const TextRange &word : found) {
            add(text.toString(word));
        }
    }

private:
    /// One letter, or none, is completed by two at least.
    [[nodiscard]] bool fits(const Rope &text, Words &words, TextRange word) const
    {
        const QString &typed = m_completion.m_typed;
        if (word.length > longestWord || word.length < std::max<qsizetype>(typed.size(), 2)) {
            return false;
        }
        if (typed.isEmpty()) {
            return true;
        }
        if (m_case == Qt::CaseSensitive && words.at(word.location) != typed.front().unicode()) {
            return false;
        }
        return text.toString({word.location, typed.size()}).compare(typed, m_case) == 0;
    }

    void add(const QString &word)
    {
        if (m_completion.m_words.size() < mostWords && !m_known.contains(word)) {
            m_known.insert(word);
            m_completion.m_words << word;
        }
    }

    VimWordCompletion &m_completion;
    Qt::CaseSensitivity m_case;
    QSet<QString> m_known;
};

VimWordCompletion::VimWordCompletion(const Place &place, const std::vector<Rope> &others, Direction direction) : m_direction(direction)
{
    const Rope &text = place.text;
    Words words(text);
    m_start = words.startOf(place.caret, std::max<qsizetype>(place.caret - longestWord, 0));
    m_typed = text.toString(TextRange::between(m_start, place.caret));
    const qsizetype end = words.endOf(place.caret, std::min(place.caret + longestWord, text.length()));
    const TextRange before{0, m_start};
    const TextRange behind = TextRange::between(end, text.length());
    Finding finding(*this, place.ignoresCase);
    finding.search(text, direction == Direction::forward ? behind : before);
    finding.search(text, direction == Direction::forward ? before : behind);
    qsizetype left = longestSearch;
    for (const Rope &other : others) {
        const qsizetype length = std::min(other.length(), left);
        finding.search(other, direction == Direction::forward ? TextRange{0, length} : TextRange{other.length() - length, length});
        left -= length;
    }
}

void VimWordCompletion::step(Direction direction)
{
    const qsizetype places = m_words.size() + 1;
    m_chosen = (m_chosen + 1 + (direction == m_direction ? 1 : places - 1)) % places - 1;
}

QStringList VimWordCompletion::listed() const
{
    return m_direction == Direction::forward ? m_words : QStringList(m_words.rbegin(), m_words.rend());
}

qsizetype VimWordCompletion::chosenRow() const
{
    return m_chosen < 0 || m_direction == Direction::forward ? m_chosen : m_words.size() - 1 - m_chosen;
}
