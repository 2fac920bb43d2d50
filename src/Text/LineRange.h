// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"

/// U+2028 and U+2029, which end lines, but not for the rope, whose leaves of one byte a unit cannot hold them.
[[nodiscard]] constexpr bool isLineSeparator(char16_t unit)
{
    return unit == 0x2028 || unit == 0x2029;
}

/// What ends a line: line feeds alone, or also the other characters that do.
enum class Breaks { lineFeeds, all };

/// From the start of the line that holds the start of `range` to the end, its break included, of the line that holds its end: when a line
/// is broken in two, both are in it. U+2028 and U+2029 end lines here too, which the rope does not count. `range` must lie in the text.
[[nodiscard]] TextRange lineRange(const Rope &text, TextRange range);

/// The start of the next line above or below that holds nothing but spaces and tabs and has another beside it that holds more, on the side
/// of `offset`; the end of the text in that direction where there is none. O(lines between · log text).
[[nodiscard]] qsizetype blankLineBefore(const Rope &text, qsizetype offset);
[[nodiscard]] qsizetype blankLineBehind(const Rope &text, qsizetype offset);

/// The lines of which `selection` holds a part; of an empty one the line that it stands in. A selection that ends with a line break
/// does not touch the line behind it.
[[nodiscard]] inline TextRange selectedLines(const Rope &text, TextRange selection)
{
    return lineRange(text, {selection.location, std::max<qsizetype>(selection.length - 1, 0)});
}
