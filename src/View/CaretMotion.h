// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/LayoutManager.h"

class Rope;

/// Where a caret stands. Moving up and down keeps `preferredX` (pixels along the row), so that short rows do not pull it left for good.
struct Caret {
    qsizetype offset = 0;
    Affinity affinity = Affinity::downstream;
    std::optional<double> preferredX;
};

enum class Motion {
    left,
    right,
    wordLeft,
    wordRight,
    up,
    down,
    pageUp,
    pageDown,
    /// To the row's first character that is no blank; from there to the row's start.
    rowStart,
    rowEnd,
    textStart,
    textEnd,
};

/// The caret after one motion; where there is no way to go it stays. By grapheme, never into a CR LF.
[[nodiscard]] Caret moved(const Caret &caret, Motion motion, LayoutManager &layout, const Rope &text, qint64 rowsPerPage);
