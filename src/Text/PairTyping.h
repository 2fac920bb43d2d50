// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextEdits.h"

#include <optional>
#include <vector>

/// Two characters that are typed together; quotes have the same at both ends.
struct TypingPair {
    char16_t open = 0;
    char16_t close = 0;

    [[nodiscard]] bool isQuote() const { return open == close; }
};
using TypingPairs = std::vector<TypingPair>;

/// Which quote of a line is open at an offset of it: one that is behind a backslash or inside others is none. Looks back `farthest` units
/// at most. Asked for ascending offsets it reads each unit once.
class OpenQuotes final {
public:
    static constexpr qsizetype farthest = qsizetype(64) * 1024;

    /// Both must outlive it.
    OpenQuotes(const Rope &text, const TypingPairs &pairs) : m_text(text), m_pairs(pairs) {}

    /// 0 for none.
    [[nodiscard]] char16_t at(qsizetype offset);

private:
    const Rope &m_text;
    const TypingPairs &m_pairs;
    TextRange m_read;
    char16_t m_open = 0;
    bool m_isEscaped = false;
};

/// What becomes of the characters of pairs when they are typed at one caret outside comments and strings, as functions of the text.
namespace PairTyping {

/// Both of a pair around what is selected, which stays selected. Where nothing is, both with the caret between, if a blank, the end of the
/// line or something that closes is behind it; a quote only if none is open in the line, and no apostrophe in a word. Otherwise nothing.
[[nodiscard]] std::optional<TextStep> opened(const Rope &text, TextSelection selection, char16_t typed, const TypingPairs &pairs,
                                             OpenQuotes &quotes);

/// Whether there is nothing but the caret between the two of a pair.
[[nodiscard]] bool isBetween(const Rope &text, qsizetype caret, const TypingPairs &pairs, OpenQuotes &quotes);

/// Whether a backslash takes what is at `offset` its meaning.
[[nodiscard]] bool isEscaped(const Rope &text, qsizetype offset);

} // namespace PairTyping
