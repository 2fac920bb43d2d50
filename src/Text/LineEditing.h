// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"

#include <QString>

#include <optional>

/// One replacement that a command makes, and the selection after it.
struct LineEdit {
    TextRange range;
    QString replacement;
    TextSelection after;
};

/// What one level of indentation is.
struct Indentation {
    enum class Unit { spaces, tab };

    /// Columns of a level and between tab stops, at least 1.
    int width = 4;
    Unit unit = Unit::spaces;

    [[nodiscard]] QString level() const { return unit == Unit::spaces ? QString(width, u' ') : QStringLiteral("\t"); }

    friend bool operator==(Indentation, Indentation) = default;
};

/// The commands of an editor that work on whole lines or on the blanks before them, as functions of the text. Nothing is returned where
/// there is nothing to change. Selections are UTF-16 ranges in the text; lines are those of LineRange.h.
namespace LineEditing {

enum class Shift { indent, outdent };

/// One level more or less for every selected line; an empty line gets none.
[[nodiscard]] std::optional<LineEdit> shifted(const Rope &text, TextRange selection, Shift shift, Indentation indentation);

/// Spaces up to the next tab stop, in place of the selection. Costs a walk from the start of the line.
[[nodiscard]] LineEdit tabbed(const Rope &text, TextRange selection, int tabWidth);

/// A new line in place of the selection, indented as the line before, and a level deeper when that opens a block.
[[nodiscard]] LineEdit brokenLine(const Rope &text, TextRange selection, Indentation indentation);

/// The spaces before `caret` back to the last tab stop, if there is nothing but spaces before it in its line.
[[nodiscard]] std::optional<LineEdit> unindented(const Rope &text, qsizetype caret, int tabWidth);

/// Every selected line that is not blank begins with `token` afterwards, or none does if all did before.
[[nodiscard]] std::optional<LineEdit> commentToggled(const Rope &text, TextRange selection, QStringView token);

/// The selected lines once more behind them, the caret at the start of the copy.
[[nodiscard]] LineEdit duplicated(const Rope &text, TextRange selection);

/// Without the selected lines.
[[nodiscard]] std::optional<LineEdit> deleted(const Rope &text, TextRange selection);

} // namespace LineEditing
