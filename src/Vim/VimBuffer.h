// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineNumber.h"
#include "Text/LineRange.h"

#include <optional>

/// What modal editing asks of a text. Lines end after LF, CR, CR LF, U+2028 and U+2029; a text that ends with a break has an empty line
/// behind it, which most questions leave out. Offsets are UTF-16 units; those beyond the text are taken for its end. Holds the rope for as
/// long as it lives and copies none of it; any thread.
class VimBuffer final {
public:
    enum class CharacterClass { blank, word, punctuation };

    explicit VimBuffer(const Rope &text) : m_text(text), m_cursor(text) {}

    [[nodiscard]] qsizetype length() const { return m_text.length(); }
    [[nodiscard]] const Rope &text() const { return m_text; }
    /// `offset` must lie before the end. Neighbouring offsets cost next to nothing.
    [[nodiscard]] char16_t at(qsizetype offset) { return m_cursor.at(offset); }

    /// Its break included.
    [[nodiscard]] TextRange lineRange(qsizetype offset) const;
    [[nodiscard]] qsizetype lineStart(qsizetype offset) const { return lineRange(offset).location; }
    /// Where the line's break begins; an offset at the text's end counts as the one before it.
    [[nodiscard]] qsizetype lineContentEnd(qsizetype offset);
    /// The first unit that is neither space nor tab; of a blank line its start.
    [[nodiscard]] qsizetype firstNonBlank(qsizetype offset);
    /// The start of the line so many lines below, or above where `lines` is negative; none where there is no such line. The empty line
    /// behind a last break is none.
    [[nodiscard]] std::optional<qsizetype> line(qsizetype from, qsizetype lines) const;
    /// At most the end of the text.
    [[nodiscard]] qsizetype startOfLine(LineNumber number) const;
    /// The empty line behind a last break is none.
    [[nodiscard]] qsizetype lastLineStart() const;
    /// Its break begins where it begins.
    [[nodiscard]] bool isEmptyLine(TextRange line);

    /// Blank outside of the text; half of a surrogate pair is punctuation.
    [[nodiscard]] CharacterClass characterClass(qsizetype offset);
    [[nodiscard]] static CharacterClass classOf(char16_t unit);
    /// Where the caret may stand in normal mode: on a character, not on a break unless the line is empty.
    [[nodiscard]] qsizetype clampToNormalMode(qsizetype offset);

private:
    [[nodiscard]] qsizetype clamped(qsizetype offset) const { return std::clamp<qsizetype>(offset, 0, length()); }

    const Rope &m_text;
    RopeCursor m_cursor;
};

/// What ends a line; of CR LF either.
[[nodiscard]] constexpr bool isBreak(char16_t unit)
{
    return unit == u'\n' || unit == u'\r' || isLineSeparator(unit);
}

[[nodiscard]] inline bool endsWithBreak(const Rope &text)
{
    return !text.isEmpty() && isBreak(text.at(text.length() - 1));
}

[[nodiscard]] constexpr bool isSpaceOrTab(char16_t unit)
{
    return unit == u' ' || unit == u'\t';
}

/// The start of the character that begins at `offset` or behind it.
[[nodiscard]] qsizetype characterAtOrBehind(const Rope &text, qsizetype offset);
/// `range` with the characters that it would cut in two.
[[nodiscard]] TextRange wholeCharacters(const Rope &text, TextRange range);
