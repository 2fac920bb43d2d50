// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimPattern.h"

#include "Base/Translation.h"
#include "Vim/VimCharacters.h"
#include "Vim/VimCollection.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

enum class Magic { veryNone, none, usual, very };

constexpr int mostGroups = 9;
/// Groups within groups.
constexpr int deepest = 200;
constexpr int unbounded = -1;

constexpr auto lineStart = "(?<![^\\n\\r])"_L1;
constexpr auto lineEnd = "(?![^\\n\\r])"_L1;
constexpr auto anyInLine = "[^\\n\\r]"_L1;
constexpr auto anywhere = "[\\x{0}-\\x{10FFFF}]"_L1;
/// Behind what could stop between CR and LF.
constexpr auto wholeBreak = "(?!(?<=\\r)\\n)"_L1;
constexpr auto marks = "\\p{M}*"_L1;

/// What is between two ends of the pattern, or one escape.
struct Token {
    char32_t character = 0;
    bool isSpecial = false;
    bool isEnd = false;
    bool isEscaped = false;
    qsizetype behind = 0;

    [[nodiscard]] bool is(char32_t special) const { return isSpecial && character == special; }
};

struct Atom {
    /// One piece for ICU.
    QString text;
    /// Of a set that takes line breaks: what repeats it as often as there are some.
    QString looped = {};
    std::optional<char32_t> literal = std::nullopt;
    bool isRepeatable = true;
    /// Once is as good as often.
    bool isPlace = false;
};

struct Repetition {
    int least = 0;
    int most = unbounded;
    bool isLazy = false;
};

bool isWordUnit(char32_t character)
{
    return (character >= U'0' && character <= U'9') || (character >= U'a' && character <= U'z') ||
           (character >= U'A' && character <= U'Z') || character == U'_';
}

bool isSpecialBare(Magic magic, char32_t character)
{
    switch (magic) {
    case Magic::very:
        return character < 0x80 && !isWordUnit(character);
    case Magic::usual:
        return character < 0x80 && u"^$.*[~"_s.contains(QChar(uint(character)));
    case Magic::none:
        return character == U'^' || character == U'$';
    case Magic::veryNone:
        break;
    }
    return false;
}

/// What is `literal` in an expression, outside of a set.
QString quoted(char32_t character)
{
    if (character < 0x20 || character == 0x7F || QChar::isSurrogate(character)) {
        return u"\\x{%1}"_s.arg(uint(character), 0, 16);
    }
    const QString text = QString::fromUcs4(&character, 1);
    return character < 0x80 && !isWordUnit(character) ? u'\\' + text : text;
}

/// Turns one pattern into an expression.
class Translator {
public:
    Translator(QStringView pattern, const VimPattern::Options &options, bool ignoresCase, bool ignoresMarks)
        : m_pattern(pattern), m_options(options), m_ignoresMarks(ignoresMarks)
    {
        m_result.ignoresCase = ignoresCase;
        for (qsizetype at = 0; at + 1 < pattern.size(); ++at) {
            m_hasReferences = m_hasReferences || (pattern[at] == u'\\' && pattern[at + 1] >= u'1' && pattern[at + 1] <= u'9');
        }
    }

    /// False when it failed.
    bool run()
    {
        m_result.expression = branches(0);
        if (m_error.isEmpty() && !peek().isEnd) {
            fail(localized(u"“%@” has no counterpart"), m_pattern.sliced(m_at, peek().behind - m_at).toString());
        }
        return m_error.isEmpty();
    }

    [[nodiscard]] const QString &error() const { return m_error; }
    [[nodiscard]] VimPattern &result() { return m_result; }
    /// Said by `\c`, `\C` and `\Z`.
    std::optional<bool> wantsCase;
    bool wantsNoMarks = false;
    bool hasCapitals = false;

private:
    /// What is put back to read an atom once more.
    struct State {
        qsizetype at;
        Magic magic;
        bool isAtStart;
        bool isBehindCaret;
        int captures;
        VimPattern result;
        std::vector<int> open;
    };

    void fail(const QString &pattern, const QString &piece = {})
    {
        if (m_error.isEmpty()) {
            m_error = formatted(pattern, piece);
        }
    }
    void failUnsupported(qsizetype from, qsizetype end)
    {
        fail(localized(u"“%@” cannot be looked for here"), m_pattern.sliced(from, std::min(end, m_pattern.size()) - from).toString());
    }

    [[nodiscard]] char32_t characterAt(qsizetype at) const
    {
        const QChar unit = m_pattern[at];
        return unit.isHighSurrogate() && at + 1 < m_pattern.size() && m_pattern[at + 1].isLowSurrogate()
                   ? QChar::surrogateToUcs4(unit, m_pattern[at + 1])
                   : unit.unicode();
    }
    [[nodiscard]] Token tokenAt(qsizetype at, Magic magic) const
    {
        if (at >= m_pattern.size()) {
            return {.isEnd = true, .behind = at};
        }
        char32_t character = characterAt(at);
        const auto behind = [&](qsizetype from) { return from + (character > 0xFFFF ? 2 : 1); };
        if (character != U'\\' || at + 1 >= m_pattern.size()) {
            return {.character = character, .isSpecial = isSpecialBare(magic, character) && character != U'\\', .behind = behind(at)};
        }
        character = characterAt(at + 1);
        const bool isSpecial = isWordUnit(character) || (character < 0x80 && !isSpecialBare(magic, character));
        return {.character = character, .isSpecial = isSpecial, .isEscaped = true, .behind = behind(at + 1)};
    }
    [[nodiscard]] Token peek() const { return tokenAt(m_at, m_magic); }
    void skip(const Token &token) { m_at = token.behind; }
    [[nodiscard]] bool endsBranch(const Token &token) const { return token.isEnd || token.is(U'|') || token.is(U'&') || token.is(U')'); }

    QString branches(int depth)
    {
        if (depth > deepest) {
            fail(localized(u"The pattern has too many groups within groups"));
            return {};
        }
        QString all;
        for (;;) {
            all += branch(depth);
            const Token token = peek();
            if (!m_error.isEmpty() || !token.is(U'|')) {
                return all;
            }
            skip(token);
            all += u'|';
        }
    }

    /// The last of its concatenations, where the others match too.
    QString branch(int depth)
    {
        QString all;
        for (;;) {
            const QString one = concatenation(depth);
            const Token token = peek();
            if (!m_error.isEmpty() || !token.is(U'&')) {
                return all + one;
            }
            skip(token);
            all += u"(?="_s + one + u')';
        }
    }

    QString concatenation(int depth)
    {
        QString all;
        m_isAtStart = true;
        m_isBehindCaret = false;
        m_before.reset();
        while (m_error.isEmpty() && !endsBranch(peek())) {
            if (!takeSetting(peek())) {
                all += piece(depth);
            }
        }
        return all;
    }

    /// `\v`, `\c` and their like match nothing.
    bool takeSetting(const Token &token)
    {
        constexpr std::pair<char32_t, Magic> levels[] = {
            {U'v', Magic::very}, {U'm', Magic::usual}, {U'M', Magic::none}, {U'V', Magic::veryNone}};
        if (!token.isSpecial || !token.isEscaped) {
            return takeEngine(token);
        }
        const auto level = std::ranges::find(levels, token.character, &std::pair<char32_t, Magic>::first);
        if (level != std::end(levels)) {
            m_magic = level->second;
        } else if (token.is(U'c') || token.is(U'C')) {
            wantsCase = token.is(U'C');
        } else if (token.is(U'Z')) {
            wantsNoMarks = true;
        } else {
            return takeEngine(token);
        }
        skip(token);
        return true;
    }
    /// "\%#=1" chooses among engines, of which there is one.
    bool takeEngine(const Token &token)
    {
        const bool isOne = token.is(U'%') && m_pattern.sliced(token.behind).startsWith("#="_L1) && token.behind + 2 < m_pattern.size() &&
                           m_pattern[token.behind + 2] >= u'0' && m_pattern[token.behind + 2] <= u'2';
        m_at = isOne ? token.behind + 3 : m_at;
        return isOne;
    }

    QString piece(int depth)
    {
        const State before{m_at, m_magic, m_isAtStart, m_isBehindCaret, m_captures, m_result, m_open};
        const qsizetype start = m_at;
        Atom atom = this->atom(depth);
        QString text = atom.text;
        m_before = atom.literal;
        Token token = peek();
        const bool isStar = m_isBehindCaret && token.is(U'*') && !token.isEscaped;
        const auto repetition = m_error.isEmpty() && !isStar ? takeRepetition(token) : std::nullopt;
        if (repetition) {
            if (!atom.isRepeatable && (repetition->most != 1 || token.is(U'{'))) {
                fail(localized(u"“%@” cannot be repeated"), m_pattern.sliced(start, token.behind - start).toString());
            }
            text = repeated(atom, *repetition);
            m_before.reset();
        } else if (token.is(U'@') && m_error.isEmpty()) {
            text = around(atom, before, depth);
            m_before.reset();
        }
        if (m_error.isEmpty() && text != atom.text && isRepetition(peek())) {
            const Token next = peek();
            fail(localized(u"“%@” has nothing to repeat"), m_pattern.sliced(m_at, next.behind - m_at).toString());
        }
        return text;
    }

    // Repetitions

    [[nodiscard]] bool isRepetition(const Token &token) const
    {
        return token.isSpecial && U"*+=?{@"sv.find(token.character) != std::u32string_view::npos;
    }
    std::optional<Repetition> takeRepetition(const Token &token)
    {
        if (!isRepetition(token) || token.character == U'@') {
            return std::nullopt;
        }
        skip(token);
        switch (token.character) {
        case U'*':
            return Repetition{};
        case U'+':
            return Repetition{.least = 1};
        case U'{':
            return takeCounts();
        default:
            return Repetition{.most = 1};
        }
    }
    std::optional<Repetition> takeCounts()
    {
        const qsizetype start = m_at;
        Repetition counts;
        const auto skips = [this](QLatin1StringView text) {
            const bool isThere = m_pattern.sliced(m_at).startsWith(text);
            m_at += isThere ? text.size() : 0;
            return isThere;
        };
        counts.isLazy = skips("-"_L1);
        const auto least = vimNumber(m_pattern, m_at, 10, 9);
        counts.least = int(least.value_or(0));
        counts.most = least ? counts.least : unbounded;
        if (skips(","_L1)) {
            const auto most = vimNumber(m_pattern, m_at, 10, 9);
            counts.most = most ? int(*most) : unbounded;
        }
        if (counts.most != unbounded && counts.most < counts.least) {
            std::swap(counts.most, counts.least);
        }
        if (!skips("}"_L1) && !skips("\\}"_L1)) {
            fail(localized(u"“%@” is no count of repetitions"),
                 u"\\{"_s + m_pattern.sliced(start).first(std::min<qsizetype>(m_pattern.size() - start, 20)).toString());
        }
        return counts;
    }
    [[nodiscard]] QString repeated(const Atom &atom, Repetition counts) const
    {
        if (atom.isPlace) {
            return counts.least == 0 ? u"(?:)"_s : atom.text;
        }
        const bool isOpen = counts.most == unbounded;
        const bool isLoop = isOpen && counts.least <= 1 && !atom.looped.isEmpty();
        if (isOpen && m_reach > 0) {
            counts.most = std::max(m_reach, counts.least);
        }
        const QString times = counts.most == 1 && counts.least == 0 && !counts.isLazy ? u"?"_s
                              : counts.most == unbounded && counts.least == 0         ? u"*"_s
                              : counts.most == unbounded && counts.least == 1
                                  ? u"+"_s
                                  : u"{%1,%2}"_s.arg(counts.least).arg(counts.most == unbounded ? QString() : QString::number(counts.most));
        const QString lazy = counts.isLazy ? u"?"_s : QString();
        const QString end = counts.least == 1 && m_reach == 0 ? u"|(?<![\\n\\r])\\z"_s : QString();
        const bool isOne = atom.literal || atom.text.startsWith(u'[') || (atom.text.startsWith(u'(') && !atom.text.startsWith(u"(?"_s));
        return isLoop  ? u"(?:"_s + atom.looped + times + lazy + wholeBreak + end + u')'
               : isOne ? atom.text + times + lazy
                       : u"(?:"_s + atom.text + u')' + times + lazy;
    }

    /// `\@=` and its like.
    QString around(const Atom &atom, const State &before, int depth)
    {
        const qsizetype start = m_at;
        skip(peek());
        const auto number = vimNumber(m_pattern, m_at, 10, 9);
        struct Row {
            QLatin1StringView written;
            QLatin1StringView group;
            bool looksBack;
        };
        constexpr Row rows[] = {{"<="_L1, "(?<="_L1, true},
                                {"<!"_L1, "(?<!"_L1, true},
                                {"="_L1, "(?="_L1, false},
                                {"!"_L1, "(?!"_L1, false},
                                {">"_L1, "(?>"_L1, false}};
        const QStringView rest = m_pattern.sliced(m_at);
        const auto row = std::ranges::find_if(rows, [rest](const Row &one) { return rest.startsWith(one.written); });
        if (row == std::end(rows)) {
            fail(localized(u"“%@” is incomplete"), m_pattern.sliced(start, m_at - start).toString());
            return {};
        }
        m_at += row->written.size();
        if (!row->looksBack || m_reach > 0) {
            return row->group + atom.text + u')';
        }
        // Once more: what has no bounds needs some.
        const qsizetype behind = m_at;
        const Magic magic = m_magic;
        m_at = before.at;
        m_magic = before.magic;
        m_isAtStart = before.isAtStart;
        m_isBehindCaret = before.isBehindCaret;
        m_captures = before.captures;
        m_result = before.result;
        m_open = before.open;
        m_reach = number && *number > 0 ? std::min(int(*number), VimPattern::reachBack) : VimPattern::reachBack;
        const QString bounded = this->atom(depth).text;
        m_reach = 0;
        m_at = behind;
        m_magic = magic;
        return row->group + bounded + u')';
    }

    // Atoms

    Atom literal(char32_t character)
    {
        if (m_ignoresMarks && m_before && QChar::isMark(character)) {
            return {.text = {}, .isRepeatable = false};
        }
        const auto variants = m_result.ignoresCase ? VimCollection::variants(character) : std::nullopt;
        const QString text = variants ? *variants : quoted(character);
        return {.text = m_ignoresMarks ? u"(?:"_s + text + marks + u')' : text, .literal = character};
    }
    Atom set(const VimCharacterSet &characters, bool takesBreak)
    {
        if (!takesBreak && !characters.takesBreak) {
            return {.text = characters.set};
        }
        m_result.staysInLine = false;
        return {.text = u"(?>\\r\\n?|["_s + characters.set + u"\\n]"_s + lastEnd(), .looped = u'[' + characters.set + u"\\n\\r]"_s};
    }
    Atom lineBreak()
    {
        m_result.staysInLine = false;
        return {.text = u"(?>\\r\\n?|\\n"_s + lastEnd()};
    }
    /// A last line without a break ends all the same.
    [[nodiscard]] QString lastEnd() const { return m_reach > 0 ? u")"_s : u"|(?<![\\n\\r])\\z)"_s; }
    Atom group(qsizetype start, bool isCapturing, int depth)
    {
        const qsizetype opening = m_at - start;
        int number = 0;
        if (isCapturing) {
            if (m_result.groups.size() == mostGroups) {
                fail(localized(u"The pattern has more than nine groups"));
                return {};
            }
            m_result.groups.push_back(++m_captures);
            number = int(m_result.groups.size());
            m_open.push_back(number);
        }
        QString all = (isCapturing ? u"("_s : u"(?:"_s) + branches(depth + 1) + u')';
        if (isCapturing && m_hasReferences) {
            m_markers[size_t(number)] = ++m_captures;
            all = u"(?:"_s + all + u"())"_s;
        }
        const Token token = peek();
        if (!token.is(U')')) {
            fail(localized(u"“%@” has no counterpart"), m_pattern.sliced(start, opening).toString());
        }
        skip(token);
        std::erase(m_open, number);
        m_isAtStart = false;
        m_isBehindCaret = false;
        return {.text = all};
    }

    Atom atom(int depth)
    {
        const qsizetype start = m_at;
        const Token token = peek();
        skip(token);
        const bool isAtStart = std::exchange(m_isAtStart, false);
        const bool isBehindCaret = std::exchange(m_isBehindCaret, false);
        if (!token.isSpecial) {
            hasCapitals = hasCapitals || QChar::isUpper(token.character);
            return literal(token.character);
        }
        switch (token.character) {
        case U'^':
            if (m_magic == Magic::very || isAtStart || token.isEscaped) {
                m_isBehindCaret = true;
                return {.text = lineStart, .isPlace = true};
            }
            return literal(U'^');
        case U'$':
            return m_magic == Magic::very || token.isEscaped || isAtEnd() ? Atom{.text = lineEnd, .isPlace = true} : literal(U'$');
        case U'*':
            if (!token.isEscaped && (isAtStart || isBehindCaret)) {
                return literal(U'*');
            }
            [[fallthrough]];
        case U'+':
        case U'=':
        case U'?':
        case U'{':
        case U'@':
            fail(localized(u"“%@” has nothing to repeat"), m_pattern.sliced(start, m_at - start).toString());
            return {};
        case U'.':
            return m_ignoresMarks ? Atom{.text = u"(?:"_s + anyInLine + marks + u')'} : Atom{.text = anyInLine};
        case U'(':
            return group(start, true, depth);
        case U'[':
            return collection(start, false);
        case U'~':
            return lastSubstitute();
        case U'<':
            return wordStart();
        case U'>':
            return wordEnd();
        case U'_':
            return withBreak(start);
        case U'%':
            return percent(start, depth);
        case U'z':
            return bound(start);
        case U'n':
            m_isAtStart = true;
            return lineBreak();
        default:
            return letter(token, start);
        }
    }

    /// Escapes that are a letter or digit.
    Atom letter(const Token &token, qsizetype start)
    {
        constexpr std::pair<char32_t, char32_t> controls[] = {{U'e', 0x1B}, {U't', U'\t'}, {U'r', U'\r'}, {U'b', 8}};
        const auto control = std::ranges::find(controls, token.character, &std::pair<char32_t, char32_t>::first);
        if (control != std::end(controls)) {
            // One before LF is part of a line's end.
            return control->second == U'\r' ? Atom{.text = u"(?:\\r(?!\\n))"_s} : literal(control->second);
        }
        if (token.character >= U'1' && token.character <= U'9') {
            const size_t number = token.character - U'0';
            if (number > m_result.groups.size() || std::ranges::find(m_open, int(number)) != m_open.end()) {
                fail(localized(u"“%@” refers to a group that does not exist"), m_pattern.sliced(start, m_at - start).toString());
                return {};
            }
            const auto reference = [](int group) { return u"\\%1"_s.arg(group); };
            // One that took no part matches nothing, while for ICU it matches never.
            const QString text = reference(m_result.groups[number - 1]) + u"|(?!"_s + reference(m_markers[number]) + u')';
            return {.text = (m_result.ignoresCase ? u"(?i:"_s : u"(?:"_s) + text + u')'};
        }
        if (const auto characters = vimCharacterClass(token.character)) {
            return set(*characters, false);
        }
        return literal(token.character);
    }

    /// Whether only the branch's end follows, or a line's.
    [[nodiscard]] bool isAtEnd() const
    {
        Token token = peek();
        Magic magic = m_magic;
        while (token.isSpecial && token.isEscaped && U"cCmMvVZ"sv.find(token.character) != std::u32string_view::npos) {
            magic = token.is(U'v')   ? Magic::very
                    : token.is(U'm') ? Magic::usual
                    : token.is(U'M') ? Magic::none
                    : token.is(U'V') ? Magic::veryNone
                                     : magic;
            token = tokenAt(token.behind, magic);
        }
        return endsBranch(token) || token.is(U'n');
    }

    Atom lastSubstitute()
    {
        if (!m_options.lastSubstitute) {
            fail(localized(u"There was no substitution yet for “~” to stand for"));
            return {};
        }
        QString all = u"(?:"_s;
        for (const char32_t character : m_options.lastSubstitute->toUcs4()) {
            all += literal(character).text;
        }
        return {.text = all + u')'};
    }

    /// A word's start and end are where the class changes; where the next character is known, only the one before it can differ.
    Atom wordStart() const
    {
        const Token next = peek();
        if (!next.isSpecial && !next.isEnd && VimCharacters::isKeyword(next.character) && !isRepetition(tokenAt(next.behind, m_magic))) {
            return {.text = u"(?<!"_s + VimCharacters::setOf(VimCharacters::classOf(next.character)) + u')', .isPlace = true};
        }
        return {.text = VimCharacters::wordStart(), .isPlace = true};
    }
    Atom wordEnd() const
    {
        if (m_before && VimCharacters::isKeyword(*m_before)) {
            return {.text = u"(?!"_s + VimCharacters::setOf(VimCharacters::classOf(*m_before)) + u')', .isPlace = true};
        }
        return {.text = VimCharacters::wordEnd(), .isPlace = true};
    }

    Atom collection(qsizetype start, bool takesBreak)
    {
        const auto parsed =
            VimCollection::parse(m_pattern.sliced(m_at - 1), m_result.ignoresCase ? VimLetterCase::isIgnored : VimLetterCase::matters);
        if (!parsed) {
            fail(parsed.error().message);
            return {};
        }
        if (!*parsed) {
            return literal(U'[');
        }
        m_at += (*parsed)->length - 1;
        for (const QChar unit : m_pattern.sliced(start, m_at - start)) {
            hasCapitals = hasCapitals || unit.isUpper();
        }
        return set((*parsed)->characters, takesBreak);
    }

    /// `\_x`
    Atom withBreak(qsizetype start)
    {
        if (m_at >= m_pattern.size()) {
            fail(localized(u"“%@” is incomplete"), u"\\_"_s);
            return {};
        }
        const char32_t next = characterAt(m_at);
        m_at += next > 0xFFFF ? 2 : 1;
        switch (next) {
        case U'^':
            return {.text = lineStart, .isPlace = true};
        case U'$':
            return {.text = lineEnd, .isPlace = true};
        case U'.':
            return set({.set = anywhere}, true);
        case U'[':
            return collection(start, true);
        default:
            break;
        }
        const auto characters = vimCharacterClass(next);
        if (!characters) {
            fail(localized(u"“%@” cannot be looked for here"), m_pattern.sliced(start, m_at - start).toString());
            return {};
        }
        return set(*characters, true);
    }

    /// `\%x`
    Atom percent(qsizetype start, int depth)
    {
        if (m_at >= m_pattern.size()) {
            fail(localized(u"“%@” is incomplete"), u"\\%"_s);
            return {};
        }
        const char16_t next = m_pattern[m_at++].unicode();
        switch (next) {
        case u'(':
            if (m_magic == Magic::usual && m_pattern.sliced(m_at).startsWith(u'*')) {
                fail(localized(u"“%@” has nothing to repeat"), u"*"_s);
            }
            return group(start, false, depth);
        case u'[':
            return optionalSequence(start, depth);
        case u'^':
            return {.text = u"\\A"_s, .isPlace = true};
        case u'$':
            return {.text = u"(?=(?>\\r\\n?|\\n)?\\z)(?!(?<=[\\n\\r])\\z)"_s, .isPlace = true};
        case u'C':
            return {.text = u"(?:"_s + marks + u')', .isRepeatable = false};
        case u'd':
            return numbered(start, 10, 10);
        case u'o':
            return numbered(start, 8, 4);
        case u'x':
            return numbered(start, 16, 2);
        case u'u':
            return numbered(start, 16, 4);
        case u'U':
            return numbered(start, 16, 8);
        default:
            break;
        }
        // Places of the caret, of marks, lines and columns are not the text's.
        qsizetype end = m_at;
        const auto isPlace = [this](qsizetype at) {
            return at < m_pattern.size() && (m_pattern[at].isDigit() || u"<>.'"_s.contains(m_pattern[at]));
        };
        while (isPlace(end - 1) && end < m_pattern.size()) {
            ++end;
        }
        failUnsupported(start, end);
        return {};
    }
    Atom numbered(qsizetype start, int base, int most)
    {
        const auto number = vimNumber(m_pattern, m_at, base, most);
        if (!number || *number > 0x10FFFF) {
            fail(localized(u"“%@” names no character"), m_pattern.sliced(start, m_at - start).toString());
            return {};
        }
        return literal(*number);
    }
    /// `\%[abc]`
    Atom optionalSequence(qsizetype start, int depth)
    {
        QStringList atoms;
        while (m_error.isEmpty() && m_at < m_pattern.size() && m_pattern[m_at] != u']') {
            const Token token = peek();
            if (token.is(U'(') || token.is(U')') ||
                (token.is(U'%') && token.behind < m_pattern.size() && u"(["_s.contains(m_pattern[token.behind]))) {
                break;
            }
            m_before.reset();
            atoms << atom(depth).text;
        }
        if (m_error.isEmpty() && (m_at >= m_pattern.size() || m_pattern[m_at] != u']' || atoms.isEmpty())) {
            fail(localized(u"“%@” is incomplete"), m_pattern.sliced(start, m_at - start).toString());
            return {};
        }
        ++m_at;
        return {.text = u"(?:"_s + atoms.join(u"(?:"_s) + u")?"_s.repeated(atoms.size())};
    }
    /// `\zs` and `\ze`
    Atom bound(qsizetype start)
    {
        const char16_t next = m_at < m_pattern.size() ? m_pattern[m_at].unicode() : u' ';
        if (next != u's' && next != u'e') {
            failUnsupported(start, m_at + 1);
            return {};
        }
        ++m_at;
        (next == u's' ? m_result.starts : m_result.ends).push_back(++m_captures);
        return {.text = u"()"_s, .isRepeatable = false};
    }

    QStringView m_pattern;
    const VimPattern::Options &m_options;
    bool m_ignoresMarks;
    VimPattern m_result;
    QString m_error;
    qsizetype m_at = 0;
    Magic m_magic = Magic::usual;
    /// Where `^` is a line's start and `*` itself.
    bool m_isAtStart = true;
    bool m_isBehindCaret = false;
    /// The character that has just been matched, where it is known.
    std::optional<char32_t> m_before;
    /// What is unbounded is bounded by it; 0 for not at all.
    int m_reach = 0;
    int m_captures = 0;
    /// Groups of nothing that say whether a group took part.
    std::array<int, mostGroups + 1> m_markers = {};
    bool m_hasReferences = false;
    /// Groups that are not closed yet.
    std::vector<int> m_open;
};

} // namespace

Result<VimPattern> VimPattern::translate(QStringView pattern, const Options &options)
{
    bool ignoresCase = options.matchesCase ? !*options.matchesCase : options.ignoresCase;
    bool ignoresMarks = false;
    // What it says of case may come last.
    for (;;) {
        Translator translator(pattern, options, ignoresCase, ignoresMarks);
        if (!translator.run()) {
            return failure(translator.error());
        }
        const bool isSmart = !options.matchesCase && options.smartCase && translator.hasCapitals;
        const bool isIgnored = translator.wantsCase ? !*translator.wantsCase : ignoresCase && !isSmart;
        if (isIgnored == ignoresCase && translator.wantsNoMarks == ignoresMarks) {
            return std::move(translator.result());
        }
        ignoresCase = isIgnored;
        ignoresMarks = translator.wantsNoMarks;
        if (isSmart && !translator.wantsCase) {
            Options exact = options;
            exact.matchesCase = true;
            return translate(pattern, exact);
        }
    }
}

QString VimPattern::escaped(QStringView text, QChar delimiter)
{
    QString all;
    for (const QChar unit : text) {
        if (unit == delimiter || u"\\.*$^~[/"_s.contains(unit)) {
            all += u'\\';
        }
        all += unit;
    }
    return all;
}

qsizetype VimPattern::lengthOf(QStringView typed, QChar delimiter)
{
    Magic magic = Magic::usual;
    for (qsizetype at = 0; at < typed.size(); ++at) {
        const QChar unit = typed[at];
        if (unit == delimiter) {
            return at;
        }
        const bool isEscaped = unit == u'\\' && at + 1 < typed.size();
        const QChar next = isEscaped ? typed[at + 1] : QChar();
        const bool takesBare = magic >= Magic::usual;
        if ((unit == u'[' && takesBare) || (isEscaped && next == u'[' && !takesBare)) {
            const qsizetype bracket = at + (isEscaped ? 1 : 0);
            const qsizetype length = VimCollection::lengthOf(typed.sliced(bracket));
            if (length == 0) {
                return typed.size();
            }
            at = bracket + length - 1;
        } else if (isEscaped) {
            ++at;
            magic = next == u'v' ? Magic::very : next == u'V' ? Magic::veryNone : magic;
        }
    }
    return typed.size();
}
