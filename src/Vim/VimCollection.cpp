// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimCollection.h"

#include "Base/Translation.h"
#include "Vim/VimCharacters.h"

#include <unicode/uchar.h>
#include <unicode/uset.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr char32_t lastCharacter = 0x10FFFF;

struct Closer {
    void operator()(USet *set) const { uset_close(set); }
};
using Set = std::unique_ptr<USet, Closer>;

Set made()
{
    return Set(uset_openEmpty());
}

Set ofPattern(QStringView pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    Set set(uset_openPattern(pattern.utf16(), int32_t(pattern.size()), &status));
    return U_SUCCESS(status) ? std::move(set) : made();
}

QString written(const USet *set)
{
    QString all = u"["_s;
    for (int32_t index = 0; index < uset_getItemCount(set); ++index) {
        UErrorCode status = U_ZERO_ERROR;
        UChar32 first = 0;
        UChar32 last = 0;
        if (uset_getItem(set, index, &first, &last, nullptr, 0, &status) == 0) {
            all += u"\\x{%1}"_s.arg(first, 0, 16) + (last > first ? u"-\\x{%1}"_s.arg(last, 0, 16) : QString());
        }
    }
    // A set of nothing is written so.
    return all.size() == 1 ? u"[^\\x{0}-\\x{10FFFF}]"_s : all + u']';
}

/// Characters that have another form in capitals, or the other way round.
const USet *cased(UChar32 (*other)(UChar32))
{
    const auto make = [](UChar32 (*map)(UChar32)) {
        Set set = made();
        for (UChar32 character = 0; character < 0x20000; ++character) {
            if (map(character) != character) {
                uset_add(set.get(), character);
            }
        }
        uset_add(set.get(), map == u_toupper ? 0xDF : U'A');
        return set;
    };
    static const Set lower = make(u_toupper);
    static const Set upper = make(u_tolower);
    return other == u_toupper ? lower.get() : upper.get();
}

struct NamedClass {
    QStringView name;
    QStringView set;
};

constexpr auto namedClasses = std::to_array<NamedClass>({
    {u"alnum", u"[0-9A-Za-z]"},
    {u"alpha", u"[A-Za-z]"},
    {u"blank", u"[\\u0009\\u0020]"},
    {u"cntrl", u"[\\u0000-\\u001F\\u007F]"},
    {u"digit", u"[0-9]"},
    {u"graph", u"[\\u0021-\\u007E]"},
    {u"print", u"[\\u0020-\\u007E[\\u00A0-\\U0010FFFF]-[\\u070F\\u180B-\\u180E\\u200B-\\u200F\\u202A-\\u202E\\u206A-\\u206F\\uFEFF\\uFFF9-"
               u"\\uFFFB\\uFFFE\\uFFFF\\u2028\\u2029\\uD800-\\uDFFF]]"},
    {u"punct", u"[\\u0021-\\u002F\\u003A-\\u0040\\u005B-\\u0060\\u007B-\\u007E]"},
    {u"space", u"[\\u0009\\u000B-\\u000D\\u0020]"},
    {u"xdigit", u"[0-9A-Fa-f]"},
    {u"return", u"[\\u000D]"},
    {u"tab", u"[\\u0009]"},
    {u"escape", u"[\\u001B]"},
    {u"backspace", u"[\\u0008]"},
    {u"ident", u"[0-9A-Z_a-z\\u00B5\\u00C0-\\u00FF]"},
    {u"fname", u"[\\u0023-\\u0025\\u002B-\\u0039\\u003D@A-Z_a-z~\\u00A0-\\U0010FFFF]"},
});

/// A letter and what it stands for; its capital for all others.
struct LetterClass {
    char16_t letter;
    QStringView set;
    /// The capital stands for the same without digits.
    bool isWithoutDigits = false;
};

constexpr auto letterClasses = std::to_array<LetterClass>({
    {u's', u"[ \\t]"},
    {u'd', u"[0-9]"},
    {u'x', u"[0-9A-Fa-f]"},
    {u'o', u"[0-7]"},
    {u'w', u"[0-9A-Z_a-z]"},
    {u'h', u"[A-Z_a-z]"},
    {u'a', u"[A-Za-z]"},
    {u'l', u"[a-z]"},
    {u'u', u"[A-Z]"},
    {u'i', u"[0-9A-Z_a-z\\xB5\\xC0-\\xFF]", true},
    {u'k', u"", true},
    {u'f', u"[#-%+-9=A-Z_a-z~\\xA0-\\x{10FFFF}]", true},
    {u'p',
     u"[[ -~\\xA0-\\x{10FFFF}]--[\\u070F\\u180B-\\u180E\\u200B-\\u200F\\u202A-\\u202E\\u206A-\\u206F\\uFEFF\\uFFF9-\\uFFFB\\uFFFE"
     u"\\uFFFF\\u2028\\u2029]]",
     true},
});

/// Reads one collection.
class Reader {
public:
    explicit Reader(QStringView pattern) : text(pattern) {}

    QStringView text;
    qsizetype at = 1;
    Set set = made();
    bool takesBreak = false;
    /// A range is.
    bool isBackward = false;

    [[nodiscard]] bool isAtEnd() const { return at >= text.size(); }
    [[nodiscard]] char32_t take()
    {
        const QChar unit = text[at++];
        if (unit.isHighSurrogate() && !isAtEnd() && text[at].isLowSurrogate()) {
            return QChar::surrogateToUcs4(unit, text[at++]);
        }
        return unit.unicode();
    }

    /// False when no bracket closes it.
    bool read()
    {
        const bool isNegated = text.sliced(at).startsWith(u'^');
        at += isNegated ? 1 : 0;
        if (text.sliced(at).startsWith(u']')) {
            ++at;
            uset_add(m_literals.get(), U']');
            takeRange(U']');
        }
        while (!isAtEnd() && text[at] != u']') {
            takeItem();
        }
        if (isAtEnd()) {
            return false;
        }
        ++at;
        m_isNegated = isNegated;
        return true;
    }

    [[nodiscard]] QString result(VimLetterCase letterCase)
    {
        if (letterCase == VimLetterCase::isIgnored) {
            uset_closeOver(m_literals.get(), USET_CASE_INSENSITIVE);
        }
        uset_addAll(set.get(), m_literals.get());
        uset_removeAllStrings(set.get());
        if (m_isNegated) {
            uset_complement(set.get());
        }
        uset_remove(set.get(), U'\n');
        uset_remove(set.get(), U'\r');
        return written(set.get());
    }

private:
    void takeItem()
    {
        if (text[at] == u'[' && takeClass()) {
            return;
        }
        const auto first = takeCharacter();
        if (first) {
            uset_add(m_literals.get(), static_cast<UChar32>(std::min(*first, lastCharacter)));
            takeRange(*first);
        }
    }
    /// "-z" behind the character that it begins with.
    void takeRange(char32_t first)
    {
        const QStringView rest = text.sliced(at);
        if (rest.size() < 2 || rest.front() != u'-' || rest[1] == u']' || rest.startsWith("-\\n"_L1) || rest.startsWith("-[:"_L1) ||
            rest.startsWith("--]"_L1)) {
            return;
        }
        ++at;
        const QStringView collating = text.sliced(at);
        std::optional<char32_t> last;
        if (collating.startsWith("[."_L1) && collating.sliced(2).indexOf(".]"_L1) > 0) {
            at += 2;
            last = take();
            at += 2;
        } else {
            last = takeCharacter();
        }
        isBackward = isBackward || !last || *last < first;
        if (last && *last >= first) {
            uset_addRange(m_literals.get(), static_cast<UChar32>(first), static_cast<UChar32>(std::min(*last, lastCharacter)));
        }
    }
    /// None for a line break.
    std::optional<char32_t> takeCharacter()
    {
        if (text[at] != u'\\' || at + 1 >= text.size()) {
            return take();
        }
        constexpr std::pair<char16_t, char32_t> escapes[] = {{u'e', 0x1B}, {u't', u'\t'}, {u'r', u'\r'}, {u'b', 8},
                                                             {u']', u']'}, {u'^', u'^'},  {u'-', u'-'},  {u'\\', u'\\'}};
        const char16_t next = text[at + 1].unicode();
        if (next == u'n') {
            at += 2;
            takesBreak = true;
            return std::nullopt;
        }
        for (const auto &[letter, character] : escapes) {
            if (letter == next) {
                at += 2;
                return character;
            }
        }
        struct Row {
            char16_t letter;
            int base;
            int digits;
        };
        for (const Row &row : {Row{u'd', 10, 10}, Row{u'o', 8, 4}, Row{u'x', 16, 2}, Row{u'u', 16, 4}, Row{u'U', 16, 8}}) {
            qsizetype behind = at + 2;
            if (row.letter == next) {
                if (const auto number = vimNumber(text, behind, row.base, row.digits)) {
                    at = behind;
                    return *number;
                }
            }
        }
        return take();
    }
    /// "[:alpha:]", "[=a=]" or "[.a.]".
    bool takeClass()
    {
        const QStringView rest = text.sliced(at);
        if (rest.startsWith("[:"_L1)) {
            const qsizetype end = rest.indexOf(":]"_L1);
            const QStringView name = end > 0 ? rest.sliced(2, end - 2) : QStringView();
            if (!addNamed(name)) {
                return false;
            }
            at += end + 2;
            return true;
        }
        if (!rest.startsWith("[="_L1) && !rest.startsWith("[."_L1)) {
            return false;
        }
        const qsizetype before = at;
        at += 2;
        const char32_t character = isAtEnd() ? 0 : take();
        const QChar mark = rest[1];
        if (!text.sliced(at).startsWith(mark) || !text.sliced(at + 1).startsWith(u']')) {
            at = before;
            return false;
        }
        at += 2;
        uset_add(m_literals.get(), static_cast<UChar32>(character));
        if (mark == u'=') {
            addEquivalents(character);
        } else {
            takeRange(character);
        }
        return true;
    }
    bool addNamed(QStringView name)
    {
        if (name == u"lower" || name == u"upper") {
            uset_addAll(set.get(), cased(name == u"lower" ? u_toupper : u_tolower));
            return true;
        }
        if (name == u"keyword") {
            // Sets of expressions write differences and intersections with two signs.
            QString keywords = VimCharacters::keywordSet();
            uset_addAll(set.get(), ofPattern(keywords.replace(u"--"_s, u"-"_s).replace(u"&&"_s, u"&"_s)).get());
            return true;
        }
        const auto row = std::ranges::find(namedClasses, name, &NamedClass::name);
        if (row != namedClasses.end()) {
            uset_addAll(set.get(), ofPattern(row->set).get());
        }
        return row != namedClasses.end();
    }
    /// Letters with other marks.
    void addEquivalents(char32_t character)
    {
        const auto baseOf = [](char32_t letter) { return QString::fromUcs4(&letter, 1).normalized(QString::NormalizationForm_D).left(1); };
        const QString base = baseOf(character);
        for (char32_t other = 0xC0; other < 0x2000; ++other) {
            if (baseOf(other) == base) {
                uset_add(m_literals.get(), static_cast<UChar32>(other));
            }
        }
        uset_add(m_literals.get(), static_cast<UChar32>(base.front().unicode()));
    }

    /// To which case may not matter.
    Set m_literals = made();
    bool m_isNegated = false;
};

} // namespace

std::optional<char32_t> vimNumber(QStringView text, qsizetype &at, int base, int most)
{
    const qsizetype start = at;
    quint64 value = 0;
    for (; at < text.size() && at - start < most; ++at) {
        const char16_t unit = text[at].unicode();
        const int digit = unit >= u'0' && unit <= u'9'   ? unit - u'0'
                          : unit >= u'a' && unit <= u'f' ? unit - u'a' + 10
                          : unit >= u'A' && unit <= u'F' ? unit - u'A' + 10
                                                         : 99;
        if (digit >= base) {
            break;
        }
        value = value * quint64(base) + quint64(digit);
    }
    return at > start ? std::optional(char32_t(std::min<quint64>(value, std::numeric_limits<int32_t>::max()))) : std::nullopt;
}

std::optional<VimCharacterSet> vimCharacterClass(char32_t letter)
{
    const bool isCapital = letter >= U'A' && letter <= U'Z';
    const auto row = std::ranges::find(letterClasses, char16_t(isCapital ? letter + 0x20 : letter), &LetterClass::letter);
    if (letter > U'z' || row == letterClasses.end()) {
        return std::nullopt;
    }
    const QString set = row->set.isEmpty() ? VimCharacters::keywordSet() : row->set.toString();
    if (!isCapital) {
        return VimCharacterSet{set};
    }
    return VimCharacterSet{row->isWithoutDigits ? u"["_s + set + u"--[0-9]]"_s : u"[^"_s + set + u"\\n\\r]"_s};
}

Result<std::optional<VimCollection>> VimCollection::parse(QStringView text, VimLetterCase letterCase)
{
    Reader reader(text);
    if (!reader.read()) {
        return std::optional<VimCollection>();
    }
    if (reader.isBackward) {
        return failure(formatted(localized(u"A range in “%@” runs backwards"), text.first(reader.at).toString()));
    }
    const QString set = reader.result(letterCase);
    return VimCollection{.characters = {set, reader.takesBreak}, .length = reader.at};
}

qsizetype VimCollection::lengthOf(QStringView text)
{
    Reader reader(text);
    return reader.read() ? reader.at : 0;
}

std::optional<QString> VimCollection::variants(char32_t character)
{
    const Set set = made();
    uset_add(set.get(), static_cast<UChar32>(character));
    uset_closeOver(set.get(), USET_CASE_INSENSITIVE);
    uset_removeAllStrings(set.get());
    return uset_size(set.get()) > 1 ? std::optional(written(set.get())) : std::nullopt;
}
