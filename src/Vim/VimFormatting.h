// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineEditing.h"
#include "Vim/VimLines.h"

#include <QString>

/// Lines put together and broken anew. Pure functions over the text; offsets are UTF-16 units.
namespace VimFormatting {

enum class Glue {
    /// One blank between, where none is and the next line does not begin with `)`; indentation goes.
    blank,
    nothing,
};

struct Joined {
    TextEdits edits;
    /// Where the last line was added.
    qsizetype place = 0;
};
/// The line of `place` and those behind it, `count` in all.
[[nodiscard]] Joined joined(const VimLines &lines, qsizetype place, qsizetype count, Glue glue);

/// The text of `range`, which are whole lines, with paragraphs filled up to `width` cells; blank lines are between paragraphs, which have
/// the indentation of their first line, written as `indentation` says. Ends with a break if the range does.
[[nodiscard]] QString filled(const VimLines &lines, TextRange range, int width, const Indentation &indentation);

/// From one cell of a line to another.
[[nodiscard]] QString blanks(qsizetype from, qsizetype to, const Indentation &indentation);

} // namespace VimFormatting
