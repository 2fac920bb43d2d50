// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineRange.h"
#include "Text/TextEdits.h"

#include <QString>

#include <optional>

/// What one level of indentation is.
struct Indentation {
    enum class Unit { spaces, tab };

    /// Columns of a level, at least 1; between tab stops too, unless these are said to be others.
    int width = 4;
    Unit unit = Unit::spaces;
    /// 0 where they are a level apart.
    int otherTabStops = 0;

    /// Columns between tab stops.
    [[nodiscard]] int tabWidth() const { return otherTabStops > 0 ? otherTabStops : width; }

    [[nodiscard]] QString level() const { return unit == Unit::spaces ? QString(width, u' ') : QStringLiteral("\t"); }

    friend bool operator==(Indentation, Indentation) = default;
};

/// The commands of an editor that work on whole lines or on the blanks before them, as functions of the text. Nothing is returned where
/// there is nothing to change. Selections are UTF-16 ranges in the text; lines are those of LineRange.h.
namespace LineEditing {

enum class Shift { indent, outdent };

/// One level before every line of `block`, which are whole ones, but for empty ones.
[[nodiscard]] TextEdits indentation(const Rope &text, TextRange block, const QString &level, Breaks breaks);
/// The tab or up to so many spaces that a line begins with are gone.
[[nodiscard]] TextEdits outdentation(const Rope &text, TextRange block, qsizetype mostSpaces, Breaks breaks);

/// One level more or less for every selected line, or for those of `lines`; an empty line gets none.
[[nodiscard]] std::optional<TextStep> shifted(const Rope &text, TextRange selection, Shift shift, Indentation indentation,
                                              std::optional<TextRange> lines = std::nullopt);

/// Spaces up to the next level, in place of the selection. Costs a walk from the start of the line.
[[nodiscard]] TextStep tabbed(const Rope &text, TextRange selection, Indentation indentation);

/// A new line in place of the selection, indented as the line before, and a level deeper when that opens a block.
[[nodiscard]] TextStep brokenLine(const Rope &text, TextRange selection, Indentation indentation);

/// The caret is between two brackets, which get lines of their own: it is in one of its own between, a level deeper.
[[nodiscard]] TextStep brokenPair(const Rope &text, qsizetype caret, Indentation indentation);

/// The spaces before `caret` back to the last tab stop, if there is nothing but spaces before it in its line.
[[nodiscard]] std::optional<TextStep> unindented(const Rope &text, qsizetype caret, int tabWidth);

/// Every selected line that is not blank begins with `token` afterwards, or none does if all did before.
[[nodiscard]] std::optional<TextStep> commentToggled(const Rope &text, TextRange selection, QStringView token);

/// The selected lines once more behind them, the caret at the start of the copy.
[[nodiscard]] TextStep duplicated(const Rope &text, TextRange selection);

/// Without the selected lines.
[[nodiscard]] std::optional<TextStep> deleted(const Rope &text, TextRange selection);

/// The line of `offset` and those behind it, `count` in all, as one: without the blanks that the others begin with, and with a space
/// between where there is text and no blank. The caret is left where the last one was added. With `Glue::oneBlank` blanks at line ends go
/// too, and no space comes behind an opening or before a closing bracket.
enum class Glue { kept, oneBlank };
[[nodiscard]] std::optional<TextStep> joined(const Rope &text, qsizetype offset, qsizetype count, Glue glue = Glue::kept);
/// The selected lines as one, or that of the caret with the next.
[[nodiscard]] std::optional<TextStep> joinedLines(const Rope &text, TextRange selection);

/// The lines of `block` change places with the line before or behind them, and are selected then.
enum class Neighbour { before, behind };
[[nodiscard]] std::optional<TextStep> moved(const Rope &text, TextRange block, Neighbour neighbour);
/// The same with the selected lines; the selection goes with them.
[[nodiscard]] std::optional<TextStep> movedLines(const Rope &text, TextRange selection, Neighbour neighbour);

/// A new line before or behind the selected ones, with the caret. It is indented like them, one behind what opens a block a level deeper;
/// not at all without an `indentation`.
[[nodiscard]] TextStep openedLine(const Rope &text, TextRange selection, Neighbour neighbour, std::optional<Indentation> indentation);

/// The characters before and behind the caret change places, at the end of a line the two before it; the caret is behind both then.
[[nodiscard]] std::optional<TextStep> transposed(const Rope &text, TextRange selection);

/// The spaces and tabs that the line of `offset` begins with.
[[nodiscard]] QString leadingBlanks(const Rope &text, qsizetype offset);

} // namespace LineEditing
