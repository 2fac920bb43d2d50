// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/RegularExpression.h"
#include "Text/Rope.h"
#include "Text/TextSearch.h"
#include "Vim/VimPattern.h"

/// Where a pattern matched. Offsets of the text, in UTF-16 units.
struct VimMatch {
    /// What counts as found: from `\zs` to `\ze`, where there are some.
    TextRange hit;
    /// Where it began to match.
    qsizetype start = 0;
    /// The pattern's groups 1 … 9; none for one that took no part.
    std::vector<std::optional<TextRange>> groups;
};

/// Matches one pattern against one text, of which a window is in one piece at a time, so that asking on from match to match costs little.
/// The empty line behind a last break is no line. Matches reach as far as those of a `TextSearcher` do, and what is too hard for the
/// expression is left out as there. One object serves one thread at a time.
class VimMatcher final {
public:
    /// Fails with what is wrong with the pattern.
    [[nodiscard]] static Result<VimMatcher> compile(const VimPattern &pattern, const Rope &text);

    [[nodiscard]] const Rope &text() const { return m_text; }
    /// The first match that begins in `range`; at the text's end too when the range goes beyond it.
    [[nodiscard]] std::optional<VimMatch> next(TextRange range, const SearchControl &control = {});
    /// Where the one behind `match` may begin: at the end of its hit in its line, or in the next line.
    [[nodiscard]] qsizetype behind(const VimMatch &match) const;
    /// Stretches were left out that were too hard for the expression.
    [[nodiscard]] bool gaveUp() const { return m_gaveUp; }

private:
    VimMatcher(const VimPattern &pattern, RegularExpression expression, const Rope &text);
    [[nodiscard]] qsizetype lineEndBehind(qsizetype offset) const;
    void readWindow(qsizetype at);
    [[nodiscard]] VimMatch match() const;
    [[nodiscard]] bool isLegal(const VimMatch &match) const;

    VimPattern m_pattern;
    RegularExpression m_expression;
    Rope m_text;

    /// Matches begin in the window, and may end in what is matchable; around it is what look-around sees.
    QString m_units;
    qsizetype m_start = 0;
    TextRange m_window{-1, 0};
    qsizetype m_matchableEnd = 0;
    /// A window was too hard: it is a line at a time from now on.
    bool m_isHard = false;
    int m_hardLines = 0;
    bool m_gaveUp = false;
};
