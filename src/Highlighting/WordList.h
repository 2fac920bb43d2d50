// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/RegularExpression.h"

#include <string>
#include <string_view>
#include <unordered_set>

/// The words of a rule that is nothing but a list of them. To look up each word of a text takes a tenth of the time in which an expression
/// tries all of the list at each place.
///
/// A value. Positions are UTF-16 code units.
class WordList final {
public:
    enum class Case { asWritten, any };

    WordList() = default;
    /// `words` have `|` between them, as have `moreWords`. The list is empty if one of them has anything but letters and digits of ASCII
    /// and `_`, and so may be a pattern.
    WordList(QStringView words, QStringView moreWords, Case letterCase);

    [[nodiscard]] bool isEmpty() const { return m_words.empty(); }

    /// Calls `visit(range)` for what `regex`, the list as an expression with `\b` at either end, matches in `text`. Where a word is not
    /// ASCII alone the expression is asked.
    template<typename Visitor>
    void forEachIn(QStringView text, RegularExpression &regex, Visitor &&visit) const
    {
        for (qsizetype end = 0; end < text.size(); ++end) {
            const qsizetype from = end;
            bool isForeign = false;
            for (; end < text.size() && (isUnit(text[end]) || text[end].unicode() >= 0x80); ++end) {
                isForeign |= text[end].unicode() >= 0x80;
            }
            const TextRange word{from, end - from};
            if (isForeign) {
                regex.forEachMatch(text, word, RegularExpression::Bounds::window(), [&visit](const RegularExpression &match) {
                    visit(match.range());
                    return true;
                });
            } else if (contains(text.sliced(word.location, word.length))) {
                visit(word);
            }
        }
    }

private:
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::u16string_view word) const { return std::hash<std::u16string_view>()(word); }
    };

    [[nodiscard]] static constexpr bool isUnit(QChar unit)
    {
        const char16_t code = unit.unicode();
        return (code >= u'a' && code <= u'z') || (code >= u'A' && code <= u'Z') || (code >= u'0' && code <= u'9') || code == u'_';
    }
    [[nodiscard]] bool contains(QStringView word) const;

    Case m_case = Case::asWritten;
    /// In small letters if the case does not matter.
    std::unordered_set<std::u16string, Hash, std::equal_to<>> m_words;
    /// A bit for each length, and one for each first unit modulo 32, which takes no case: most words need no more than a look at these.
    quint64 m_lengths = 0;
    quint32 m_beginnings = 0;
};
