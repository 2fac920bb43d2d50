// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimLiteral.h"

#include "Vim/VimKeyNotation.h"
#include "Vim/VimKeys.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

struct Base {
    char16_t prefix;
    int base;
    qsizetype mostDigits;
    char32_t largest;
};

constexpr char32_t lastCharacter = 0x10FFFF;
constexpr auto bases = std::to_array<Base>({
    {u'x', 16, 2, 0xFF},
    {u'X', 16, 2, 0xFF},
    {u'o', 8, 3, 0xFF},
    {u'O', 8, 3, 0xFF},
    {u'u', 16, 4, 0xFFFF},
    {u'U', 16, 8, lastCharacter},
});
constexpr Base decimal{0, 10, 3, 0xFF};

Base baseOf(QStringView code)
{
    const auto found = code.isEmpty() ? bases.end() : std::ranges::find(bases, code.front().unicode(), &Base::prefix);
    return found == bases.end() ? decimal : *found;
}

/// It has digits.
QString characterOf(QStringView code)
{
    const Base base = baseOf(code);
    const QStringView digits = base.prefix == 0 ? code : code.sliced(1);
    const char32_t value = std::min<char32_t>(digits.toUInt(nullptr, base.base), base.largest);
    return QString::fromUcs4(&value, 1);
}

} // namespace

VimLiteral::Taken VimLiteral::take(const VimKeyEvent &event)
{
    const QString key = event.control ? QString() : event.characters;
    const Base base = baseOf(m_code);
    const bool isPrefix = m_code.isEmpty() && baseOf(key).prefix != 0;
    bool isDigit = false;
    static_cast<void>(key.toUInt(&isDigit, base.base));
    if (isPrefix || (isDigit && key.size() == 1 && key.front().isLetterOrNumber())) {
        m_code += key;
        const bool isWhole = !isPrefix && m_code.size() - (base.prefix != 0 ? 1 : 0) == base.mostDigits;
        return isWhole ? Taken{.text = characterOf(std::exchange(m_code, {}))} : Taken{.goesOn = true};
    }
    const QString code = std::exchange(m_code, {});
    if (code.size() > (base.prefix != 0 ? 1 : 0)) {
        return {.text = characterOf(code), .leavesKey = true};
    }
    const QString text = VimKeys::text(event); // Escape as well
    const char16_t unit = text.size() == 1 ? text.front().unicode() : u'\0';
    const bool typesNothing = unit == VimKey::backspace || VimKey::isNamed(unit);
    return {.text = typesNothing ? VimKeyNotation::written(text) : text};
}
