// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"

#include <QString>

#include <vector>

/// A word whose spelling can be checked.
struct SpellingWord {
    TextRange range;
    QString text;

    friend bool operator==(const SpellingWord &, const SpellingWord &) = default;
};

/// The words of a text after Unicode's text segmentation, less those that no dictionary has: names of things in programs (with digits,
/// underscores or capitals inside, or beside signs that only programs have), words in capitals, single letters, Web and mail addresses,
/// paths. Ranges are UTF-16 units of the text. Any thread.
namespace SpellingWords {

enum class Setting {
    prose,
    /// Comments and strings of a program, where a backslash and the letter behind it stand for something else.
    code,
};

/// The words that touch `range`, ascending; it may begin and end inside a word. Costs what the range does.
[[nodiscard]] std::vector<SpellingWord> touching(const Rope &text, TextRange range, Setting setting);

} // namespace SpellingWords
