// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimCharacters.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

using enum VimCharacters::Class;
using VimCharacters::Class;

struct Run {
    char32_t first;
    char32_t last;
    Class characterClass;
};

/// Ascending. Emoji stand in any of these.
constexpr auto runs = std::to_array<Run>({
    {0x0, 0x8, punctuation},         {0x9, 0x9, blank},
    {0xA, 0x1F, punctuation},        {0x20, 0x20, blank},
    {0x21, 0x2F, punctuation},       {0x3A, 0x40, punctuation},
    {0x5B, 0x5E, punctuation},       {0x60, 0x60, punctuation},
    {0x7B, 0x9F, punctuation},       {0xA0, 0xA0, blank},
    {0xA1, 0xB4, punctuation},       {0xB6, 0xBF, punctuation},
    {0x37E, 0x37E, punctuation},     {0x387, 0x387, punctuation},
    {0x55A, 0x55F, punctuation},     {0x589, 0x589, punctuation},
    {0x5BE, 0x5BE, punctuation},     {0x5C0, 0x5C0, punctuation},
    {0x5C3, 0x5C3, punctuation},     {0x5F3, 0x5F4, punctuation},
    {0x60C, 0x60C, punctuation},     {0x61B, 0x61B, punctuation},
    {0x61F, 0x61F, punctuation},     {0x66A, 0x66D, punctuation},
    {0x6D4, 0x6D4, punctuation},     {0x700, 0x70D, punctuation},
    {0x964, 0x965, punctuation},     {0x970, 0x970, punctuation},
    {0xDF4, 0xDF4, punctuation},     {0xE4F, 0xE4F, punctuation},
    {0xE5A, 0xE5B, punctuation},     {0xF04, 0xF12, punctuation},
    {0xF3A, 0xF3D, punctuation},     {0xF85, 0xF85, punctuation},
    {0x104A, 0x104F, punctuation},   {0x10FB, 0x10FB, punctuation},
    {0x1361, 0x1368, punctuation},   {0x166D, 0x166E, punctuation},
    {0x1680, 0x1680, blank},         {0x169B, 0x169C, punctuation},
    {0x16EB, 0x16ED, punctuation},   {0x1735, 0x1736, punctuation},
    {0x17D4, 0x17DC, punctuation},   {0x1800, 0x180A, punctuation},
    {0x2000, 0x200B, blank},         {0x200C, 0x2027, punctuation},
    {0x2028, 0x2029, blank},         {0x202A, 0x202E, punctuation},
    {0x202F, 0x202F, blank},         {0x2030, 0x205E, punctuation},
    {0x205F, 0x205F, blank},         {0x2060, 0x27FF, punctuation},
    {0x2800, 0x28FF, braille},       {0x2900, 0x2998, punctuation},
    {0x29D8, 0x29DB, punctuation},   {0x29FC, 0x29FD, punctuation},
    {0x2E00, 0x2E7F, punctuation},   {0x3000, 0x3000, blank},
    {0x3001, 0x3020, punctuation},   {0x3040, 0x309F, hiragana},
    {0x30A0, 0x30FF, katakana},      {0x3300, 0x9FFF, han},
    {0xAC00, 0xD7A3, hangul},        {0xF900, 0xFAFF, han},
    {0xFD3E, 0xFD3F, punctuation},   {0xFE30, 0xFE6B, punctuation},
    {0xFF00, 0xFF0F, punctuation},   {0xFF1A, 0xFF20, punctuation},
    {0xFF3B, 0xFF40, punctuation},   {0xFF5B, 0xFF65, punctuation},
    {0x1D000, 0x1D24F, punctuation}, {0x1D400, 0x1D7FF, punctuation},
    {0x1F000, 0x1F9FF, punctuation},
});
static_assert(std::ranges::is_sorted(runs, {}, &Run::first));

/// What is below has been text for longer.
constexpr char32_t firstEmoji = 0x2000;
constexpr auto emojiSet = "[\\p{Emoji}&&[\\u2000-\\U0010FFFF]]"_L1;

QString made(Class wanted)
{
    if (wanted == emoji) {
        return emojiSet;
    }
    QString set = wanted == word ? u"[[^"_s : u"[["_s;
    for (const Run &run : runs) {
        if (wanted == word || run.characterClass == wanted) {
            set += u"\\x{%1}-\\x{%2}"_s.arg(uint(run.first), 0, 16).arg(uint(run.last), 0, 16);
        }
    }
    return set + u"]--"_s + emojiSet + u']';
}

constexpr auto ofWords = std::to_array<Class>({word, emoji, braille, hiragana, katakana, han, hangul});

/// `pattern` with the set of each class, one of which is to match.
QString ofAnyWord(QStringView pattern)
{
    QString all;
    for (const Class one : ofWords) {
        all += (all.isEmpty() ? u"(?:"_s : u"|"_s) + pattern.toString().replace(u'%', VimCharacters::setOf(one));
    }
    return all + u')';
}

} // namespace

Class VimCharacters::classOf(char32_t character)
{
    if (character >= firstEmoji && u_hasBinaryProperty(static_cast<UChar32>(character), UCHAR_EMOJI)) {
        return emoji;
    }
    const auto behind = std::ranges::upper_bound(runs, character, {}, &Run::first);
    return behind != runs.begin() && character <= std::prev(behind)->last ? std::prev(behind)->characterClass : word;
}

const QString &VimCharacters::setOf(Class characterClass)
{
    static const auto sets = [] {
        std::array<QString, size_t(hangul) + 1> all;
        for (size_t index = 0; index < all.size(); ++index) {
            all[index] = made(Class(index));
        }
        return all;
    }();
    return sets[size_t(characterClass)];
}

const QString &VimCharacters::keywordSet()
{
    static const QString set = u"[[^"_s + setOf(blank) + setOf(punctuation) + u"]]"_s;
    return set;
}

const QString &VimCharacters::wordStart()
{
    static const QString pattern = ofAnyWord(u"(?<!%)(?=%)");
    return pattern;
}

const QString &VimCharacters::wordEnd()
{
    static const QString pattern = ofAnyWord(u"(?<=%)(?!%)");
    return pattern;
}
