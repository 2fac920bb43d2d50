// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Selections.h"
#include "View/LayoutManager.h"

/// The ways to more than one caret that go by rows.
namespace SeveralCarets {

enum class Side { above, below };
/// Together with a caret in the row above or below each, as far from the left edge as that is or was; the topmost or lowest is the primary.
/// The same ones when there is no such row.
[[nodiscard]] Selections besideEach(const Selections &selections, Side side, LayoutManager &layout);

/// A place in a row, in pixels from the row's left edge, also behind its text.
struct Place {
    RowPosition row;
    double x = 0;
};
/// What lies between two places in each row from one to the other. In a row that ends before both the caret is so many cells behind its
/// end. The one in the row of `to` is the primary. Lays out all rows between.
[[nodiscard]] Selections column(const Place &from, const Place &to, LayoutManager &layout);

} // namespace SeveralCarets
