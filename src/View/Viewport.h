// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/LayoutManager.h"

#include <QPointF>
#include <QSizeF>

class Rope;

/// Which part of a layout is on the screen.
///
/// The place is kept as an anchor: the row at the top edge, by the offset of a unit in it, and how many pixels of that row are above
/// the edge. So nothing on the screen moves when rows elsewhere are measured, or when text elsewhere comes and goes; the position
/// for a scroll bar is derived, and estimated like the rows it counts. All positions are whole device pixels. Coordinates are logical
/// pixels from the viewport's top left corner, if not said otherwise.
class Viewport final {
public:
    struct Insets {
        double horizontal = 6;
        double vertical = 8;
    };
    struct VisibleRow {
        RowPosition row;
        double top = 0;
    };
    enum class Reveal {
        /// As little as needed; a row far away comes to the middle.
        nearest,
        center,
    };

    explicit Viewport(LayoutManager &layout) : m_layout(layout) {}

    void setSize(QSizeF size);
    [[nodiscard]] QSizeF size() const { return m_size; }
    [[nodiscard]] Insets insets() const { return {m_layout.snapped(m_insets.horizontal), m_layout.snapped(m_insets.vertical)}; }
    /// Whole rows that fit, at least 1.
    [[nodiscard]] qint64 rowsPerPage() const;

    /// Keeps the anchor on its text. Text that the user of this view inserts just before the top row shall be seen, that of another goes
    /// above it.
    enum class Editor { thisView, another };
    void textChanged(const TextChange &change, Editor editor);
    /// Puts the anchor and the horizontal position back into what the layout has; call after text, size or settings changed. True
    /// when that moved what is on the screen.
    bool settle();

    [[nodiscard]] RowPosition topRow();
    [[nodiscard]] std::vector<VisibleRow> rows(double top, double bottom);
    /// The row at `y`, clamped to the first and last of the text.
    [[nodiscard]] VisibleRow rowAt(double y);
    /// Where the row's top is; none when the row is not on the screen.
    [[nodiscard]] std::optional<double> topOf(const RowPosition &row);
    /// The viewport's x of the row's left edge.
    [[nodiscard]] double left() const { return insets().horizontal - m_x; }

    /// From the content's top left corner, insets counted in.
    [[nodiscard]] QPointF position();
    [[nodiscard]] double maximumX() const;
    [[nodiscard]] double maximumY() const;
    void setX(double x);
    void setY(double y);
    void scrollBy(double pixels);
    /// By whole rows; afterwards the top row is seen whole.
    void scrollRows(qint64 rows);
    /// With so many rows above and below it, as far as that leaves it in the middle of the view.
    void reveal(const RowPosition &row, Reveal how = Reveal::nearest, qint64 margin = 0);
    /// Scrolls sideways until the span (pixels along the row) is seen.
    void revealX(Span span);

    /// The first unit of the top row and the pixels of that row that are above the edge: a place to come back to.
    [[nodiscard]] qsizetype anchor() const { return m_anchor; }
    [[nodiscard]] double pixelsAbove() const { return m_above; }
    /// Of both directions.
    struct Place {
        qsizetype anchor = 0;
        double above = 0;
        double x = 0;

        friend bool operator==(const Place &, const Place &) = default;
    };
    [[nodiscard]] Place place() const { return {m_anchor, m_above, m_x}; }
    void goTo(const Place &place);

private:
    void place(const RowPosition &row, double above);
    /// Rows from `from` down to `to`, if there are at most `limit`.
    [[nodiscard]] std::optional<qint64> distance(RowPosition from, const RowPosition &to, qint64 limit);

    LayoutManager &m_layout;
    QSizeF m_size{1, 1};
    Insets m_insets;
    qsizetype m_anchor = 0;
    // What the rows made anew shall show at the top: the anchor as it was when the user last scrolled. Rows of every other width begin
    // elsewhere, and their starts would creep up the text while a window is resized.
    qsizetype m_held = 0;
    double m_above = -Insets{}.vertical;
    double m_x = 0;
};
