// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"

#include <QStringView>

#include <optional>
#include <vector>

/// A pattern of Vim's language as an expression in ICU's syntax, to be compiled without options. A value; any thread.
///
/// Lines end after LF, CR LF or CR; what does not name a line break matches none. The expression is to match where no CR LF is parted.
/// `\zs` and `\ze` are groups of nothing: a hit reaches from the furthest of `starts` that took part to the furthest of `ends`. What would
/// have to be unbounded behind `\@<=` and `\@<!` reaches back `reachBack` characters.
struct VimPattern {
    struct Options {
        bool ignoresCase = false;
        /// Not where the pattern has capitals.
        bool smartCase = false;
        /// What `~` stands for; none before the first substitution.
        std::optional<QString> lastSubstitute = std::nullopt;
        /// Says whether case counts, whatever the two above say; `\c` and `\C` win.
        std::optional<bool> matchesCase = std::nullopt;

        friend bool operator==(const Options &, const Options &) = default;
    };

    static constexpr int reachBack = 500;

    QString expression;
    /// The expression's numbers of the groups 1 … 9 of the pattern, as many as there are.
    std::vector<int> groups;
    std::vector<int> starts;
    std::vector<int> ends;
    bool ignoresCase = false;
    /// No match goes beyond a line's end.
    bool staysInLine = true;

    /// Fails with what is wrong with the pattern, or cannot be looked for here.
    [[nodiscard]] static Result<VimPattern> translate(QStringView pattern, const Options &options);
    /// What stands for `text` itself in a pattern that is delimited by `delimiter`.
    [[nodiscard]] static QString escaped(QStringView text, QChar delimiter);
    /// How much of `typed` is a pattern: where the first `delimiter` is that no `\` protects and no collection holds, or its end; a
    /// collection that is not closed goes on to that.
    [[nodiscard]] static qsizetype lengthOf(QStringView typed, QChar delimiter);
};
