// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimLines.h"

#include <QString>

#include <vector>

/// The rectangle between two characters: the cells from the leftmost to the rightmost of both, in all lines between.
struct VimBlock {
    /// One line of it. Offsets are UTF-16 units.
    struct Row {
        qsizetype line = 0;
        /// Characters that have a cell in the rectangle.
        TextRange range;
        /// Cells of a tab at either end that lie outside.
        qsizetype cellsBefore = 0;
        qsizetype cellsBehind = 0;
        /// Cells from the line's end to the rectangle; 0 for lines that reach it.
        qsizetype missing = 0;
        /// The line ends before the rectangle begins.
        bool isShort = false;
    };

    qsizetype firstLine = 0;
    qsizetype lastLine = 0;
    qsizetype left = 0;
    /// The last cell; `VimLines::endless` when it goes to every line's end.
    qsizetype right = 0;

    [[nodiscard]] static VimBlock between(const VimLines &lines, qsizetype anchor, qsizetype head, bool toEnds);
    [[nodiscard]] bool goesToEnds() const { return right >= VimLines::endless; }
    [[nodiscard]] qsizetype width() const { return right - left + 1; }
    /// To the end of its longest line.
    [[nodiscard]] qsizetype widthToEnds(const VimLines &lines) const;
    [[nodiscard]] Row row(const VimLines &lines, qsizetype line) const;
    [[nodiscard]] std::vector<Row> rows(const VimLines &lines) const;
    /// What stands in it, with blanks for parts of tabs and for lines that end before it; none for what lines lack at its right side.
    [[nodiscard]] QStringList text(const VimLines &lines) const;
};
