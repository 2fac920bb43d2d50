// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/SeveralCarets.h"

#include "View/CaretMotion.h"

#include <algorithm>
#include <cmath>

namespace SeveralCarets {

Selections besideEach(const Selections &selections, Side side, LayoutManager &layout)
{
    std::vector<CaretSelection> all(selections.begin(), selections.end());
    for (const CaretSelection &one : selections) {
        if (const auto there = movedByRows(one.caret, side == Side::above ? -1 : 1, layout)) {
            all.push_back(CaretSelection::at(*there));
        }
    }
    const auto byPlace = [](const CaretSelection &one) { return one.range().location; };
    const auto primary = side == Side::above ? std::ranges::min_element(all, {}, byPlace) : std::ranges::max_element(all, {}, byPlace);
    const auto index = size_t(primary - all.begin());
    return all.size() == selections.count() ? selections : Selections::merged(std::move(all), index);
}

namespace {

CaretSelection inRow(const RowPosition &row, double from, double to, LayoutManager &layout)
{
    const bool endsLine = layout.endsLine(row);
    const qsizetype end = layout.rangeOf(row).end();
    const double beyond = std::min(from, to) - layout.widthOf(row);
    if (endsLine && beyond > layout.cellWidth() / 2) {
        return {.caret = {end}, .anchor = end, .cellsBehind = qsizetype(std::round(beyond / layout.cellWidth()))};
    }
    const qsizetype offset = layout.offsetAt(row, to);
    const bool isAtWrap = offset == end && !endsLine;
    return {.caret = {offset, isAtWrap ? Affinity::upstream : Affinity::downstream}, .anchor = layout.offsetAt(row, from)};
}

} // namespace

Selections column(const Place &from, const Place &to, LayoutManager &layout)
{
    const bool isDownwards = layout.rangeOf(from.row).location <= layout.rangeOf(to.row).location;
    const RowPosition last = isDownwards ? to.row : from.row;
    std::vector<CaretSelection> all;
    for (std::optional<RowPosition> row = isDownwards ? from.row : to.row; row; row = *row == last ? std::nullopt : layout.next(*row)) {
        all.push_back(inRow(*row, from.x, to.x, layout));
    }
    const size_t primary = isDownwards ? all.size() - 1 : 0;
    return Selections::merged(std::move(all), primary);
}

} // namespace SeveralCarets
