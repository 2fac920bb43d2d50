// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/CanonicalEquivalence.h"

#include <QStringList>

#include <unicode/caniter.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// ICU's tables for one form; they are part of the library, and so always there.
const UNormalizer2 *normalizer(bool composes)
{
    UErrorCode status = U_ZERO_ERROR;
    return composes ? unorm2_getNFCInstance(&status) : unorm2_getNFDInstance(&status);
}

QString normalized(const QString &text, bool composes)
{
    UErrorCode status = U_ZERO_ERROR;
    QString result(text.size() * 4 + 16, Qt::Uninitialized);
    const int32_t length =
        unorm2_normalize(normalizer(composes), reinterpret_cast<const UChar *>(text.utf16()), static_cast<int32_t>(text.size()),
                         reinterpret_cast<UChar *>(result.data()), static_cast<int32_t>(result.size()), &status);
    return U_SUCCESS(status) ? result.first(length) : text;
}

/// What each character of 16 bits decomposes into, and what single units say of theirs.
class Decompositions final {
public:
    static const Decompositions &shared()
    {
        static const Decompositions table;
        return table;
    }

    /// False for what stays as it is and moves no mark; of a surrogate, for all characters that begin with it.
    [[nodiscard]] bool changes(char16_t unit) const { return m_changes[unit]; }
    [[nodiscard]] bool hasEquivalents(char32_t character) const
    {
        return (character < 0x10000 && m_isSingleton[character]) || hasDecomposition(static_cast<UChar32>(character)) ||
               !unorm2_hasBoundaryBefore(normalizer(true), static_cast<UChar32>(character));
    }
    [[nodiscard]] QStringView of(char16_t unit) const { return QStringView(m_pool).sliced(m_starts[unit], m_lengths[unit]); }

    static qsizetype decompose(char32_t character, std::array<char16_t, 64> &units)
    {
        UErrorCode status = U_ZERO_ERROR;
        return unorm2_getDecomposition(normalizer(false), static_cast<UChar32>(character), units.data(), static_cast<int32_t>(units.size()),
                                       &status);
    }

private:
    Decompositions() : m_changes(0x10000), m_isSingleton(0x10000), m_starts(0x10000), m_lengths(0x10000)
    {
        // Nothing decomposes beyond.
        constexpr char32_t end = 0x30000;
        std::array<char16_t, 64> units{};
        for (char32_t character = 0; character < end; ++character) {
            const qsizetype length = decompose(character, units);
            const char16_t first = character < 0x10000 ? static_cast<char16_t>(character) : QChar::highSurrogate(character);
            m_changes[first] = m_changes[first] || length > 0 || u_getCombiningClass(static_cast<UChar32>(character)) != 0;
            if (character < 0x10000) {
                m_starts[first] = static_cast<quint32>(m_pool.size());
                m_lengths[first] = static_cast<quint8>(std::max<qsizetype>(length, 1));
                m_pool += length > 0 ? QStringView(units.data(), length) : QStringView(&first, 1);
            }
            // Other ways to write letters of ASCII are signs that nobody types, and these letters are what is sought most.
            if (length == 1 && units[0] >= 0x80) {
                m_isSingleton[units[0]] = true;
            }
        }
    }

    static bool hasDecomposition(UChar32 character)
    {
        std::array<char16_t, 64> units{};
        return decompose(static_cast<char32_t>(character), units) > 0;
    }

    std::vector<bool> m_changes;
    std::vector<bool> m_isSingleton;
    std::vector<quint32> m_starts;
    std::vector<quint8> m_lengths;
    QString m_pool;
};

char32_t characterAt(QStringView text, qsizetype offset)
{
    const bool isPair = text[offset].isHighSurrogate() && offset + 1 < text.size() && text[offset + 1].isLowSurrogate();
    return isPair ? QChar::surrogateToUcs4(text[offset], text[offset + 1]) : text[offset].unicode();
}

/// Whether it belongs to the letter before it.
bool joins(char32_t character)
{
    return !unorm2_hasBoundaryBefore(normalizer(true), static_cast<UChar32>(character));
}

/// The end of the letter at `offset` with what joins it.
qsizetype letterEnd(QStringView text, qsizetype offset)
{
    const auto behind = [text](qsizetype at) { return at + (characterAt(text, at) >= 0x10000 ? 2 : 1); };
    qsizetype end = behind(offset);
    while (end < text.size() && joins(characterAt(text, end))) {
        end = behind(end);
    }
    return end;
}

// Decomposing

/// A decomposed text as it is built.
struct Decomposer {
    struct Mark {
        quint8 order;
        char32_t character;
        qint32 origin;
    };

    QString units;
    std::vector<qint32> origins;
    /// Those behind the last letter.
    std::vector<Mark> marks;

    void add(QStringView text, qint32 origin)
    {
        for (qsizetype at = 0; at < text.size(); ++at) {
            const char32_t character = characterAt(text, at);
            at += character >= 0x10000 ? 1 : 0;
            if (const quint8 order = u_getCombiningClass(static_cast<UChar32>(character)); order != 0) {
                marks.push_back({order, character, origin});
            } else {
                put(character, origin);
            }
        }
    }
    void put(char32_t character, qint32 origin)
    {
        placeMarks();
        append(character, origin);
    }
    void placeMarks()
    {
        std::ranges::stable_sort(marks, {}, &Mark::order);
        for (const Mark &mark : marks) {
            append(mark.character, mark.origin);
        }
        marks.clear();
    }
    void append(char32_t character, qint32 origin)
    {
        units += QChar::fromUcs4(character);
        origins.insert(origins.end(), character >= 0x10000 ? 2 : 1, origin);
    }
    /// Only where all units before come from before those behind is a place of the text.
    void keepBorders(qint32 end)
    {
        std::vector<qint32> behind(origins.size() + 1, end);
        for (size_t i = origins.size(); i > 0; --i) {
            behind[i - 1] = std::min(behind[i], origins[i - 1]);
        }
        qint32 last = -1;
        for (size_t i = 0; i < behind.size(); ++i) {
            const bool isBorder = last < behind[i];
            last = i < origins.size() ? std::max(last, origins[i]) : last;
            behind[i] = isBorder ? behind[i] : -1;
        }
        origins = std::move(behind);
    }
};

} // namespace

DecomposedText::DecomposedText(const QString &text)
{
    const Decompositions &table = Decompositions::shared();
    qsizetype at = 0;
    while (at < text.size() && !table.changes(text[at].unicode())) {
        ++at;
    }
    if (at == text.size()) {
        m_units = text;
        return;
    }
    Decomposer built;
    built.units.reserve(text.size() + text.size() / 4);
    built.origins.reserve(static_cast<size_t>(built.units.capacity()));
    for (at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at].unicode();
        const auto origin = static_cast<qint32>(at);
        if (!table.changes(unit)) {
            if (!built.marks.empty()) {
                built.placeMarks();
            }
            built.units += QChar(unit);
            built.origins.push_back(origin);
        } else if (const char32_t character = characterAt(text, at); character >= 0x10000) {
            std::array<char16_t, 64> units{};
            const qsizetype length = Decompositions::decompose(character, units);
            built.add(length > 0 ? QStringView(units.data(), length) : QStringView(text).sliced(at, 2), origin);
            ++at;
        } else {
            built.add(table.of(unit), origin);
        }
    }
    built.placeMarks();
    built.keepBorders(static_cast<qint32>(text.size()));
    m_units = std::move(built.units);
    m_origins = std::move(built.origins);
}

std::optional<qsizetype> DecomposedText::origin(qsizetype index) const
{
    if (m_origins.empty()) {
        return index;
    }
    const qint32 origin = m_origins[static_cast<size_t>(index)];
    return origin >= 0 ? std::optional<qsizetype>(origin) : std::nullopt;
}

qsizetype DecomposedText::indexOf(qsizetype offset) const
{
    if (m_origins.empty()) {
        return offset;
    }
    // What is decomposed is never shorter, but for pairs that decompose into one unit.
    qsizetype index = offset / 2;
    while (index < m_units.size() && m_origins[static_cast<size_t>(index)] < offset) {
        ++index;
    }
    return index;
}

bool CanonicalEquivalence::isMark(char32_t character)
{
    return u_getCombiningClass(static_cast<UChar32>(character)) != 0;
}

bool CanonicalEquivalence::hasEquivalents(QStringView text)
{
    if (std::ranges::all_of(text, [](QChar unit) { return unit.unicode() < 0x80; })) {
        return false;
    }
    const Decompositions &table = Decompositions::shared();
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char32_t character = characterAt(text, at);
        if (table.hasEquivalents(character)) {
            return true;
        }
        at += character >= 0x10000 ? 1 : 0;
    }
    return false;
}

// Expressions

namespace {

/// All ways to write `letter`, itself first; itself alone when there are too many.
QStringList spellings(const QString &letter)
{
    constexpr qsizetype mostUnits = 8;
    QStringList result{letter};
    for (const bool composes : {true, false}) {
        result << normalized(letter, composes);
    }
    UErrorCode status = U_ZERO_ERROR;
    if (letter.size() <= mostUnits) {
        icu::CanonicalIterator iterator(icu::UnicodeString(letter.utf16(), static_cast<int32_t>(letter.size())), status);
        for (icu::UnicodeString other = iterator.next(); U_SUCCESS(status) && !other.isBogus(); other = iterator.next()) {
            result << QString(reinterpret_cast<const QChar *>(other.getBuffer()), other.length());
        }
    }
    result.removeDuplicates();
    return result;
}

/// The same expression piece by piece.
class ExpressionWriter final {
public:
    explicit ExpressionWriter(const QString &expression) : m_expression(expression) {}

    QString written()
    {
        while (m_at < m_expression.size()) {
            const QStringView rest = QStringView(m_expression).sliced(m_at);
            if (rest.startsWith(u"\\Q")) {
                copyTo(endOf(u"\\E"));
            } else if (rest.startsWith(u"(?#")) {
                copyTo(endOf(u")"));
            } else if (rest.front() == u'\\') {
                copyTo(m_at + 2);
            } else if (rest.front() == u'[') {
                writeSet();
            } else if (const qsizetype end = letterEnd(m_expression, m_at); isLetter(rest.first(end - m_at))) {
                m_result += alternatives({}, spellings(rest.first(end - m_at).toString()));
                m_at = end;
            } else {
                copyTo(m_at + 1);
            }
        }
        return m_result;
    }

private:
    static bool isLetter(QStringView letter)
    {
        return !u"\\*?+[](){}^$|.#"_s.contains(letter.front()) && !letter.front().isSpace() && CanonicalEquivalence::hasEquivalents(letter);
    }
    static QString alternatives(const QString &set, const QStringList &others)
    {
        const QStringList all = set.isEmpty() ? others : QStringList(set) + others;
        return all.size() == 1 ? all.first() : u"(?:"_s + all.join(u'|') + u')';
    }
    [[nodiscard]] qsizetype endOf(QStringView closing) const
    {
        const qsizetype found = m_expression.indexOf(closing, m_at);
        return found < 0 ? m_expression.size() : found + closing.size();
    }
    void copyTo(qsizetype end)
    {
        m_result += QStringView(m_expression).sliced(m_at, std::min(end, m_expression.size()) - m_at);
        m_at = std::min(end, m_expression.size());
    }
    void writeSet()
    {
        const qsizetype start = m_at;
        const bool excludes = m_expression.sliced(start).startsWith(u"[^");
        QStringList others;
        int depth = 0;
        bool isSimple = !excludes;
        for (; m_at < m_expression.size(); ++m_at) {
            const QChar unit = m_expression[m_at];
            if (unit == u'\\') {
                ++m_at;
            } else if (unit == u'[') {
                isSimple = isSimple && depth == 0;
                ++depth;
            } else if (unit == u']') {
                if (--depth == 0) {
                    break;
                }
            } else if (unit == u'&') {
                isSimple = false;
            } else if (depth == 1 && unit.unicode() >= 0x80 && !isInRange()) {
                addSpellings(others);
            }
        }
        m_at = std::min(m_at + 1, m_expression.size());
        const QString set = m_expression.sliced(start, m_at - start);
        m_result += isSimple ? alternatives(set, others) : set;
    }
    [[nodiscard]] bool isInRange() const
    {
        return m_expression[m_at - 1] == u'-' || (m_at + 1 < m_expression.size() && m_expression[m_at + 1] == u'-');
    }
    /// Those of one character are in the set by themselves, in one form or another; a mark of its own is none of a letter.
    void addSpellings(QStringList &others) const
    {
        const char32_t character = characterAt(m_expression, m_at);
        const QString letter = m_expression.sliced(m_at, character >= 0x10000 ? 2 : 1);
        if (!m_expression[m_at].isLowSurrogate() && !joins(character) && isLetter(letter)) {
            others << spellings(letter).sliced(1);
        }
    }

    const QString &m_expression;
    qsizetype m_at = 0;
    QString m_result;
};

} // namespace

QString CanonicalEquivalence::expressionWithEquivalents(const QString &expression)
{
    return hasEquivalents(expression) ? ExpressionWriter(expression).written() : expression;
}
