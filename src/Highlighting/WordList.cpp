// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/WordList.h"

#include <algorithm>
#include <array>

namespace {

constexpr qsizetype longest = 63;

constexpr char16_t smallLetter(QChar unit)
{
    const char16_t code = unit.unicode();
    return code >= u'A' && code <= u'Z' ? char16_t(code + (u'a' - u'A')) : code;
}

} // namespace

WordList::WordList(QStringView words, QStringView moreWords, Case letterCase) : m_case(letterCase)
{
    for (const QStringView list : {words, moreWords}) {
        for (const QStringView word : list.tokenize(u'|', Qt::SkipEmptyParts)) {
            if (word.size() > longest || !std::ranges::all_of(word, isUnit)) {
                *this = {};
                return;
            }
            std::u16string kept(word.utf16(), size_t(word.size()));
            if (m_case == Case::any) {
                std::ranges::transform(word, kept.begin(), smallLetter);
            }
            m_words.insert(std::move(kept));
            m_lengths |= quint64(1) << word.size();
            m_beginnings |= quint32(1) << word.front().unicode() % 32;
        }
    }
}

bool WordList::contains(QStringView word) const
{
    if (word.isEmpty() || word.size() > longest || (m_lengths >> word.size() & 1) == 0 ||
        (m_beginnings >> word.front().unicode() % 32 & 1) == 0) {
        return false;
    }
    if (m_case == Case::asWritten) {
        return m_words.contains(std::u16string_view(word.utf16(), size_t(word.size())));
    }
    std::array<char16_t, longest> letters;
    std::ranges::transform(word, letters.begin(), smallLetter);
    return m_words.contains(std::u16string_view(letters.data(), size_t(word.size())));
}
