// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Print/PageLayout.h"
#include "Print/PaperColors.h"

class QPainter;

/// Draws pages of a text, one at a time. Belongs to the thread that made it.
class PagePainter final {
public:
    /// `area` as for PageLayout.
    PagePainter(const PrintedText &text, const PrintStyle &style, QSizeF area, PaperColors::Slab slab);

    [[nodiscard]] const PageLayout &layout() const { return m_layout; }

    /// Draws the page that begins at `start` with the corner of its area at the painter's origin, in dots; returns where the next one
    /// begins. `number` counts from 1; of how many it is one stands in its header if that is known.
    qsizetype paint(QPainter &painter, qsizetype start, int number, std::optional<int> count);

private:
    void paintHeader(QPainter &painter, int number, std::optional<int> count) const;
    void paintRow(QPainter &painter, const PageLayout::Row &row, double baseline);

    PageLayout m_layout;
    std::optional<PaperColors> m_colors;
};

/// Of what stands beside the text on paper, header and line numbers.
inline constexpr quint32 paperSideColor = 0xFF606060;
