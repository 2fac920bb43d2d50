// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"

#include <QStringView>

#include <optional>

/// One character of a text, by a set in ICU's syntax.
struct VimCharacterSet {
    /// Without line breaks; with brackets.
    QString set;
    /// A line break is as good.
    bool takesBreak = false;
};

enum class VimLetterCase { matters, isIgnored };

/// `\s`, `\S`, `\k` and the like; none where a letter names none.
[[nodiscard]] std::optional<VimCharacterSet> vimCharacterClass(char32_t letter);

/// What a collection of a pattern holds: `[a-z]`, `[^[:alpha:]_]`.
struct VimCollection {
    VimCharacterSet characters;
    /// Units of the pattern, brackets included.
    qsizetype length = 0;

    /// Of what begins with "[". None without a closing bracket; fails where a range runs backwards.
    [[nodiscard]] static Result<std::optional<VimCollection>> parse(QStringView text, VimLetterCase letterCase);
    /// As `parse` has it; 0 when it is none.
    [[nodiscard]] static qsizetype lengthOf(QStringView text);
    /// A set that holds `character` and, where case is ignored, those that differ in it alone; none when there are no others.
    [[nodiscard]] static std::optional<QString> variants(char32_t character);
};

/// So many digits of `base` at `at`, which is moved behind them; none without any.
[[nodiscard]] std::optional<char32_t> vimNumber(QStringView text, qsizetype &at, int base, int most);
