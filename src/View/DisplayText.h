// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"

#include <QString>

#include <vector>

class Rope;

/// What stands in `range` as it is shown: of the same length, with control characters and separators that a layout would act upon
/// replaced by visible stand-ins, and lone surrogates by U+FFFD. A tab stays a tab.
[[nodiscard]] QString displayText(const Rope &text, TextRange range);

/// True when `text` may be drawn right to left somewhere, so that a stretch of it need not be one interval on the screen.
[[nodiscard]] bool mayRunRightToLeft(QStringView text);

/// How wide a text will be, in cells of a fixed-pitch font, without laying it out.
struct CellCount {
    qsizetype narrow = 0;
    /// East Asian wide characters and emoji.
    qsizetype wide = 0;
    /// Only printable ASCII and tabs: in a fixed-pitch font the count is exact.
    bool isExact = true;
};

/// Tabs advance to the next multiple of `tabWidth` cells, counted from the start of `range`.
[[nodiscard]] CellCount countCells(const Rope &text, TextRange range, int tabWidth);

struct LineCells {
    /// A wide character counts as two.
    qsizetype cells = 0;
    /// Those of the blanks and tabs that it begins with.
    qsizetype indent = 0;

    friend bool operator==(const LineCells &, const LineCells &) = default;
};

/// The cells of each line from `start` on, which must begin a line. Ends with the line in which the
/// unit budget is used up, after `mostLines` or with the text. About a nanosecond a unit.
[[nodiscard]] std::vector<LineCells> countCellsOfLines(const Rope &text, qsizetype start, qsizetype mostLines, qsizetype unitBudget,
                                                       int tabWidth);
