// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/CharacterName.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct ControlName {
    char32_t codePoint;
    const char *name;
};
/// Unicode has no names for them, but says how they are called.
constexpr auto controlNames = std::to_array<ControlName>({
    {0x00, "NULL"},
    {0x07, "BELL"},
    {0x08, "BACKSPACE"},
    {0x09, "CHARACTER TABULATION"},
    {0x0A, "LINE FEED"},
    {0x0B, "LINE TABULATION"},
    {0x0C, "FORM FEED"},
    {0x0D, "CARRIAGE RETURN"},
    {0x1A, "SUBSTITUTE"},
    {0x1B, "ESCAPE"},
    {0x7F, "DELETE"},
    {0x85, "NEXT LINE"},
});

} // namespace

QString characterName(char32_t character)
{
    if (const auto control = std::ranges::find(controlNames, character, &ControlName::codePoint); control != controlNames.end()) {
        return QString::fromLatin1(control->name);
    }
    std::array<char, 128> name{};
    UErrorCode status = U_ZERO_ERROR;
    u_charName(UChar32(character), U_EXTENDED_CHAR_NAME, name.data(), int32_t(name.size()), &status);
    return U_SUCCESS(status) ? QString::fromLatin1(name.data()) : QString();
}

QString codePointName(char32_t character)
{
    return u"U+%1"_s.arg(uint(character), 4, 16, QChar(u'0')).toUpper();
}
