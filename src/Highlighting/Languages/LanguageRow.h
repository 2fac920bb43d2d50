// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/Language.h"
#include "Highlighting/Scope.h"

#include <QStringView>

#include <array>
#include <span>

/// How the pattern of a rule is meant; values add up with `|`.
enum class RuleTraits {
    none = 0,
    /// `^` and `$` match at every line, not only at the ends of what is searched.
    lines = 1,
    /// The first capture group is coloured, not the whole match.
    group1 = 2,
    /// The pattern is a list of words with `|` between them; each of them is matched where it stands alone.
    words = 4,
    /// Capital and small letters are the same. For words only; any other pattern says `(?i)`.
    anyCase = 8,
};

[[nodiscard]] constexpr RuleTraits operator|(RuleTraits left, RuleTraits right)
{
    return RuleTraits(int(left) | int(right));
}
[[nodiscard]] constexpr bool hasTrait(RuleTraits traits, RuleTraits trait)
{
    return (int(traits) & int(trait)) != 0;
}

/// One rule as it is written down.
struct RuleRow {
    Scope scope;
    RuleTraits traits;
    /// ICU syntax.
    QStringView pattern;
    /// More words for a list of them, in the same form.
    QStringView moreWords = {};
};

/// The expression of the row as it is compiled.
[[nodiscard]] QString patternOf(const RuleRow &row);

/// The rules of one language by priority. In the patterns of spans `.` matches the ends of lines too.
struct LanguageRules {
    std::span<const RuleRow> spans;
    std::span<const RuleRow> tokens;
};

/// `onlyTabs`: with spaces it means something else.
enum class IndentationStyle { asTheUserLikes, spaces, tabs, onlyTabs };

inline constexpr auto standardBracketPairs = std::to_array<DelimiterPair>({{u"(", u")"}, {u"[", u"]"}, {u"{", u"}"}});

/// One language as it is written down.
struct LanguageRow {
    QStringView id;
    QStringView name;
    /// In each of the three lists blanks stand between the entries.
    QStringView extensions = {};
    QStringView filenames = {};
    QStringView shebangPatterns = {};
    /// Empty where there is none, as are the delimiters of the next.
    QStringView lineComment = {};
    DelimiterPair blockComment = {};
    IndentationStyle indentation = IndentationStyle::asTheUserLikes;
    /// Columns; counts only with an indentation of the language's own.
    int indentWidth = 0;
    const LanguageRules *rules = nullptr;
    std::span<const DelimiterPair> bracketPairs = standardBracketPairs;
};

/// Every built-in language in the registry's order.
[[nodiscard]] std::span<const LanguageRow> builtInLanguages();
