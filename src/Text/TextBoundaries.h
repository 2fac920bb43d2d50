// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"

class Rope;

/// Where the caret may stand and where words begin, after Unicode's text segmentation (UAX #29) as ICU implements it.
///
/// Every question reads at most 256 units around the offset, so it costs the same in a line of any length; a single grapheme longer
/// than that is cut. All offsets are UTF-16 units in 0 … length and may be used from any thread.
namespace TextBoundaries {

/// The end of the grapheme at `offset`; CR LF is one. At the end of the text, the end.
[[nodiscard]] qsizetype nextGrapheme(const Rope &text, qsizetype offset);
/// The start of the grapheme before `offset`; 0 at the start.
[[nodiscard]] qsizetype previousGrapheme(const Rope &text, qsizetype offset);
/// The grapheme boundary at or before `offset`.
[[nodiscard]] qsizetype snapped(const Rope &text, qsizetype offset);

/// Past the rest of the word at `offset` and the blanks behind it; from a line end, to the first word of the next line.
[[nodiscard]] qsizetype nextWordStart(const Rope &text, qsizetype offset);
/// Back over blanks to the start of the word before `offset`; from a line start, to the end of the line before.
[[nodiscard]] qsizetype previousWordStart(const Rope &text, qsizetype offset);
/// The word, the run of blanks, of marks, or the line break at `offset`; at a line end what stands before it.
[[nodiscard]] TextRange wordAt(const Rope &text, qsizetype offset);

} // namespace TextBoundaries
