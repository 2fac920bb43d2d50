// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <array>

/// What a text has in places that its scroll bar marks.
enum class ScrollMark : quint8 { added, changed, deleted, occurrence, hit, conflict };

/// How marks of one kind look. Those that stand later are drawn over the others, and a click finds them first.
struct ScrollMarkKind {
    ScrollMark mark;
    /// sRGB, 0xFFRRGGBB; made darker or brighter until it can be told from the bar and its handle.
    quint32 color;
    /// Shares of the bar's width.
    double left;
    double right;
};

inline constexpr auto scrollMarkKinds = std::to_array<ScrollMarkKind>({
    {ScrollMark::added, 0xFF2E8B57, 0.0, 0.3},
    {ScrollMark::changed, 0xFF1E6FD9, 0.0, 0.3},
    {ScrollMark::deleted, 0xFFD03030, 0.0, 0.3},
    {ScrollMark::occurrence, 0xFF7A7A7A, 0.65, 1.0},
    {ScrollMark::hit, 0xFFB8780B, 0.3, 1.0},
    {ScrollMark::conflict, 0xFFB030B0, 0.0, 1.0},
});
static_assert([] {
    for (size_t i = 0; i < scrollMarkKinds.size(); ++i) {
        if (static_cast<size_t>(scrollMarkKinds[i].mark) != i) {
            return false;
        }
    }
    return true;
}());
