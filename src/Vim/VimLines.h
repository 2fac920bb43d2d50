// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimBuffer.h"

#include <limits>

/// A text as Vim has it: lines, which end as the rope has it, each a row of characters with a place behind the last one. The empty line
/// behind a last break is none, and an empty text is one empty line. Offsets are UTF-16 units, characters graphemes, and lines are counted
/// from 1. Of a text that stays as it is, and stays, for as long as this lives.
class VimLines final {
public:
    /// Behind any line.
    static constexpr qsizetype endless = std::numeric_limits<qsizetype>::max() / 4;

    /// While text is typed, and in a text whose last line has no break, the empty line behind a last break is one as well.
    enum class LastLine { hasText, mayBeEmpty };

    explicit VimLines(const Rope &text, int tabWidth = 4, LastLine last = LastLine::hasText)
        : m_text(text), m_tabWidth(std::max(tabWidth, 1)), m_last(last)
    {}

    /// The text for what asks no lines of it.
    [[nodiscard]] VimBuffer &buffer() const { return m_text; }
    [[nodiscard]] const Rope &text() const { return m_text.text(); }

    // Lines
    [[nodiscard]] qsizetype start(qsizetype place) const;
    /// Behind its last character.
    [[nodiscard]] qsizetype end(qsizetype place) const;
    /// Behind its break.
    [[nodiscard]] qsizetype next(qsizetype place) const;
    [[nodiscard]] bool isEmpty(qsizetype place) const { return start(place) == end(place); }
    [[nodiscard]] bool isFirst(qsizetype place) const { return start(place) == 0; }
    [[nodiscard]] bool isLast(qsizetype place) const;
    /// Behind the last line, where there is none.
    [[nodiscard]] bool isBehindAll(qsizetype place) const { return text().lineAt(place) >= count(); }
    [[nodiscard]] qsizetype lastStart() const { return startOf(count()); }
    [[nodiscard]] qsizetype number(qsizetype place) const { return std::min(text().lineAt(place) + 1, count()); }
    [[nodiscard]] qsizetype count() const;
    /// The last line has a break; so has that of an empty text, for what is to come.
    [[nodiscard]] bool isEnded() const { return text().lineStart(text().lineCount() - 1) == m_text.length(); }
    /// The start of the line so many below, or above, or of the first or last one.
    [[nodiscard]] qsizetype startNear(qsizetype place, qsizetype lines) const;
    /// Of the line of that number, of the first for those below; the end of the text behind the last line.
    [[nodiscard]] qsizetype startOf(qsizetype number) const;
    [[nodiscard]] qsizetype endOf(qsizetype number) const;
    /// Without its break.
    [[nodiscard]] QString string(qsizetype number) const { return text().toString(TextRange::between(startOf(number), endOf(number))); }
    /// Of a line of blanks the last one; of an empty line its start.
    [[nodiscard]] qsizetype firstNonBlank(qsizetype place) const;
    /// Whether there is nothing but blanks from `place` to the line's end.
    [[nodiscard]] bool isBlankFrom(qsizetype place) const;
    /// The whole lines of both and between, the last one's break included.
    [[nodiscard]] TextRange lines(qsizetype one, qsizetype other) const;
    /// The empty one behind the last break, where that is a line.
    [[nodiscard]] bool isOpenLine(qsizetype place) const { return m_text.length() > 0 && start(place) == m_text.length(); }
    /// What has to go so that such lines do: where the last of them has no break, that of the line before.
    [[nodiscard]] TextRange removable(TextRange lines) const;

    // Characters
    [[nodiscard]] char16_t at(qsizetype place) const { return place >= 0 && place < m_text.length() ? m_text.at(place) : u'\0'; }
    [[nodiscard]] char32_t codePoint(qsizetype place) const;
    /// Behind the last character of its line, which is where nothing stands.
    [[nodiscard]] bool isAtEnd(qsizetype place) const { return place >= end(place); }
    [[nodiscard]] qsizetype after(qsizetype place) const;
    [[nodiscard]] qsizetype before(qsizetype place) const;
    /// The last character of the line; of an empty one its start.
    [[nodiscard]] qsizetype last(qsizetype place) const;
    /// So many characters on in the line, at most its end.
    [[nodiscard]] qsizetype after(qsizetype place, qsizetype characters) const;
    /// So many characters back in the line, at most its start.
    [[nodiscard]] qsizetype before(qsizetype place, qsizetype characters) const;
    /// Of words (VimCharacters::Class); blank behind the line.
    [[nodiscard]] int wordClass(qsizetype place) const;
    /// On a character, but for empty lines.
    [[nodiscard]] qsizetype settled(qsizetype place) const;

    // Cells of a screen, from 0
    struct Cells {
        qsizetype first = 0;
        qsizetype last = 0;
    };
    /// Those of the character at `place`. Costs a walk from the start of the line.
    [[nodiscard]] Cells cells(qsizetype place) const;
    /// Its first cell; of a tab the last one, where the caret is shown.
    [[nodiscard]] qsizetype column(qsizetype place) const;
    /// Where the character with that cell stands; behind the last one for cells beyond.
    [[nodiscard]] qsizetype placeAt(qsizetype line, qsizetype cell) const;
    [[nodiscard]] qsizetype width(qsizetype place, qsizetype firstCell) const;
    [[nodiscard]] int tabWidth() const { return m_tabWidth; }

    // Steps through all characters and the places behind lines, as `w` goes.
    enum class Step { none, character, lineEnd, nextLine };
    /// `lineEnd` when it comes to the place behind a line, `nextLine` when it leaves it.
    Step forward(qsizetype &place) const;
    /// `nextLine` when it comes to the place behind the line above.
    Step backward(qsizetype &place) const;
    /// Steps that do not stay behind lines that have characters.
    bool forwardOverEnds(qsizetype &place) const;
    bool backwardOverEnds(qsizetype &place) const;

private:
    struct Line {
        qsizetype start;
        qsizetype end;
        qsizetype next;
    };
    /// That of the last question is kept: questions about one line follow each other, and to find its ends may cost a walk through it.
    [[nodiscard]] const Line &line(qsizetype place) const;

    mutable VimBuffer m_text;
    int m_tabWidth;
    LastLine m_last;
    mutable std::optional<Line> m_line;
};

/// Bytes of UTF-8 between the start of the line and `place`: the column that Vim keeps where a caret goes to another line. None far behind
/// the start, where nobody counts them.
[[nodiscard]] std::optional<qsizetype> byteColumn(const VimLines &lines, qsizetype place);
/// The character of the line at `line` that has that byte, or the line's end.
[[nodiscard]] qsizetype placeAtByte(const VimLines &lines, qsizetype line, qsizetype bytes);
