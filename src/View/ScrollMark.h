// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <array>

/// What a text has in places that its scroll bar marks.
enum class ScrollMark : quint8 { added, changed, deleted, occurrence, hit, conflict };

enum class ScrollMarkShape : quint8 {
    bar,
    /// Its two ends.
    rails,
    /// Wide in the middle, and higher than the others.
    wedge
};

/// How marks of one kind look, which can be told apart without their colours. Those that stand later are drawn over the others, and a click
/// finds them first.
struct ScrollMarkKind {
    ScrollMark mark;
    ScrollMarkShape shape;
    /// sRGB, 0xFFRRGGBB; made darker or brighter until it can be told from the bar and its handle.
    quint32 color;
    /// Shares of the bar's width.
    double left;
    double right;
};

inline constexpr auto scrollMarkKinds = std::to_array<ScrollMarkKind>({
    {ScrollMark::added, ScrollMarkShape::bar, 0xFF2DA44E, 0.0, 0.45},
    {ScrollMark::changed, ScrollMarkShape::rails, 0xFF1F7FE0, 0.0, 0.45},
    {ScrollMark::deleted, ScrollMarkShape::wedge, 0xFFCF222E, 0.0, 0.45},
    {ScrollMark::occurrence, ScrollMarkShape::bar, 0xFF7A7A7A, 0.7, 1.0},
    {ScrollMark::hit, ScrollMarkShape::bar, 0xFFB8780B, 0.45, 1.0},
    {ScrollMark::conflict, ScrollMarkShape::bar, 0xFFB030B0, 0.0, 1.0},
});
static_assert([] {
    for (size_t i = 0; i < scrollMarkKinds.size(); ++i) {
        if (static_cast<size_t>(scrollMarkKinds[i].mark) != i) {
            return false;
        }
    }
    return true;
}());
