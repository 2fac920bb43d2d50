// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"

#include <optional>
#include <stop_token>

class Rope;
struct TextChange;

/// What there is in a text, as people count it.
struct TextCounts {
    /// After Unicode's text segmentation, as words are checked for spelling; numbers count too.
    qsizetype words = 0;
    /// Graphemes, without line breaks.
    qsizetype characters = 0;
    /// Those of the characters that are blank.
    qsizetype blanks = 0;

    /// What is in `range`, which begins and ends between graphemes. A word is whole there, wherever it goes on outside. O(units);
    /// stops early, with anything, once the token says so. Any thread.
    [[nodiscard]] static TextCounts of(const Rope &text, TextRange range, const std::stop_token &stop = {});
    /// By how much a change alters the counts of the whole text. Looks at no more than `most` units before and after; none when that is
    /// not enough.
    [[nodiscard]] static std::optional<TextCounts> growth(const TextChange &change, qsizetype most);

    TextCounts &operator+=(const TextCounts &other);
    TextCounts &operator-=(const TextCounts &other);
    friend bool operator==(const TextCounts &, const TextCounts &) = default;
};
