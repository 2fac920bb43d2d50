// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/LayoutManager.h"

enum class Motion {
    left,
    right,
    wordLeft,
    wordRight,
    up,
    down,
    pageUp,
    pageDown,
    /// To the blank line before the paragraph, and to the one behind it, else to the end of the text.
    paragraphUp,
    paragraphDown,
    /// To the row's first character that is no blank; from there to the row's start.
    rowStart,
    rowEnd,
    textStart,
    textEnd,
};

/// So many rows down, or up when negative, as far as there are rows; none when there is not one.
[[nodiscard]] std::optional<Caret> movedByRows(const Caret &caret, qint64 rows, LayoutManager &layout);

/// The caret after one motion; where there is no way to go it stays. By grapheme, never into a CR LF.
[[nodiscard]] Caret moved(const Caret &caret, Motion motion, LayoutManager &layout, const Rope &text, qint64 rowsPerPage);
