// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"

#include <QString>

#include <optional>

/// How a `:s` of exact mode goes about it.
struct VimSubstituteFlags {
    /// Every hit of a line: `g`, the other way round where that is the default.
    bool takesAll = false;
    /// `c`
    bool asks = false;
    /// `e`: to find nothing is no error.
    bool isQuiet = false;
    /// `n`: nothing is changed.
    bool onlyCounts = false;
    /// `i` or `I`; else the options decide.
    std::optional<bool> matchesCase = std::nullopt;
    /// `p`, `#` and `l`: the last line that was changed is shown, with its number, with its blanks.
    bool shows = false;
    bool showsNumber = false;
    bool showsBlanks = false;

    friend bool operator==(const VimSubstituteFlags &, const VimSubstituteFlags &) = default;
};

/// What was substituted last, in exact mode.
struct VimSubstituteMemory {
    std::optional<QString> pattern = std::nullopt;
    /// As it was typed, to be repeated.
    std::optional<QString> typed = std::nullopt;
    /// With `~` expanded, which is what `~` stands for next, in patterns too.
    std::optional<QString> replacement = std::nullopt;
    VimSubstituteFlags flags = {};
};

/// A `:s` of exact mode as it was typed, without its range: `s/a/b/g`, `substitute+a+b+`, `s`, `sg`, `&&`, `~`.
struct VimSubstituteCommand {
    enum class Pattern {
        /// Typed, and not empty.
        typed,
        /// That of the last substitution.
        lastSubstituted,
        /// That of the last substitution or search.
        lastUsed,
    };

    Pattern patternKind = Pattern::lastSubstituted;
    QString pattern = {};
    /// None to repeat the last one.
    std::optional<QString> replacement = std::nullopt;
    /// What was typed goes as far as the replacement.
    bool hasReplacement = false;
    /// Those of the last one, and `flags` turn some of them round.
    bool keepsFlags = false;
    QString flags = {};
    /// So many lines, the range's last one first.
    std::optional<qsizetype> count = std::nullopt;
    /// Commands behind `|`.
    QString rest = {};

    /// Whether a command, which begins with its name, is one.
    [[nodiscard]] static bool isOne(QStringView command);
    /// `command` is one. Fails with what is wrong with it.
    [[nodiscard]] static Result<VimSubstituteCommand> parse(QStringView command);

    /// Its flags made of the last ones. `byDefault` is whether a line's hits are all taken without `g`.
    enum class Default { firstOfLine, allOfLine };
    [[nodiscard]] VimSubstituteFlags resolved(const VimSubstituteFlags &last, Default byDefault) const;
};
