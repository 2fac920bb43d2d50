// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineDiff.h"

struct Theme;

/// What a column of a comparison shows, worked out without a widget. Pure functions; offsets and lengths are UTF-16 units.
namespace DiffText {

using LineDiff::Side;

/// One line for every row: the side's own, or an empty one where it has none. Stretches of the texts are shared, not copied.
/// O(runs log n + empty lines).
[[nodiscard]] Rope composed(const LineDiff::Result &result, Side side);

/// What the side has changed of a row, in its line of the composed text. O(log n + line); of very long lines, O(log n).
[[nodiscard]] std::vector<TextRange> emphasis(const LineDiff::Result &result, Side side, qsizetype row);

/// 0xFFRRGGBB behind a row; none for one that is the same on both sides.
[[nodiscard]] std::optional<quint32> rowColor(const Theme &theme, LineDiff::Row::Kind kind, Side side);
/// Behind what has changed within a line.
[[nodiscard]] quint32 emphasisColor(const Theme &theme, Side side);
/// Of a mark that stands by itself: what is only in the old text, only in the new one, or in both.
[[nodiscard]] quint32 markColor(const Theme &theme, LineDiff::Row::Kind kind);

} // namespace DiffText
