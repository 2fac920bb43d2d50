// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/Viewport.h"

#include "Text/TextStorage.h"

#include <cmath>
#include <limits>
#include <tuple>

void Viewport::setSize(QSizeF size)
{
    m_size = size;
}

qint64 Viewport::rowsPerPage() const
{
    return std::max<qint64>(1, static_cast<qint64>(m_size.height() / m_layout.rowHeight()));
}

void Viewport::textChanged(const TextChange &change, Editor editor)
{
    if (m_anchor == 0 && m_above <= 0) {
        m_held = 0;
        return; // the top of the text stays the top
    }
    m_anchor = m_held = change.mapped(m_anchor, editor == Editor::thisView ? Bias::before : Bias::after);
}

RowPosition Viewport::topRow()
{
    return m_layout.rowOf(m_anchor);
}

void Viewport::place(const RowPosition &row, double above)
{
    const double height = m_layout.rowHeight();
    RowPosition top = row;
    above = m_layout.snapped(above);
    // The first row may hang below the edge by the inset; every other begins at or above it.
    const auto rows = static_cast<qint64>(std::floor(above / height));
    above -= static_cast<double>(m_layout.step(top, rows)) * height;
    const bool isFirst = !m_layout.previous(top).has_value();
    if (above < 0 && isFirst) {
        above = std::max(above, -insets().vertical);
    }
    // Below the last row there is the inset and no more.
    const qint64 fitting = static_cast<qint64>(m_size.height() / height) + 2;
    RowPosition last = top;
    const qint64 below = m_layout.step(last, fitting);
    if (below < fitting) {
        const double bottom = static_cast<double>(below + 1) * height - above + insets().vertical;
        if (bottom < m_size.height()) {
            above -= m_size.height() - bottom;
            above -= static_cast<double>(m_layout.step(top, static_cast<qint64>(std::floor(above / height)))) * height;
            if (above < 0) {
                above = -insets().vertical;
            }
        }
    }
    m_anchor = m_layout.wraps() ? m_layout.rangeOf(top).location : top.lineStart;
    m_held = m_anchor;
    m_above = m_layout.snapped(above);
}

bool Viewport::settle()
{
    const auto before = std::tuple(m_anchor, m_above, m_x);
    const qsizetype held = m_held;
    const RowPosition row = m_layout.rowOf(held);
    place(row, m_above);
    if (topRow() == row) {
        m_held = held;
    }
    setX(m_x);
    return before != std::tuple(m_anchor, m_above, m_x);
}

std::vector<Viewport::VisibleRow> Viewport::rows(double top, double bottom)
{
    std::vector<VisibleRow> visible;
    const double height = m_layout.rowHeight();
    std::optional<RowPosition> row = topRow();
    double y = -m_above;
    if (y + height <= top) {
        const auto skipped = static_cast<qint64>((top - y) / height);
        y += static_cast<double>(m_layout.step(*row, skipped)) * height;
    }
    for (; row && y < bottom; y += height, row = m_layout.next(*row)) {
        if (y + height > top) {
            visible.push_back({*row, y});
        }
    }
    return visible;
}

Viewport::VisibleRow Viewport::rowAt(double y)
{
    RowPosition row = topRow();
    const double height = m_layout.rowHeight();
    const qint64 went = m_layout.step(row, static_cast<qint64>(std::floor((y + m_above) / height)));
    return {row, static_cast<double>(went) * height - m_above};
}

std::optional<qint64> Viewport::distance(RowPosition from, const RowPosition &to, qint64 limit)
{
    if (!m_layout.wraps()) {
        const qint64 rows = to.line - from.line;
        return rows >= 0 && rows <= limit ? std::optional(rows) : std::nullopt;
    }
    // Lines count first: far rows are told apart without laying out what is between.
    if (to.line < from.line || to.line - from.line > limit) {
        return std::nullopt;
    }
    for (qint64 rows = 0; rows <= limit; ++rows) {
        if (from == to) {
            return rows;
        }
        const auto next = m_layout.next(from);
        if (!next) {
            break;
        }
        from = *next;
    }
    return std::nullopt;
}

std::optional<double> Viewport::topOf(const RowPosition &row)
{
    const auto rows = distance(topRow(), row, rowsPerPage() + 2);
    return rows ? std::optional(static_cast<double>(*rows) * m_layout.rowHeight() - m_above) : std::nullopt;
}

QPointF Viewport::position()
{
    return {m_x, static_cast<double>(m_layout.numberOf(topRow())) * m_layout.rowHeight() + m_above + insets().vertical};
}

double Viewport::maximumX() const
{
    // Room for a caret behind the longest line.
    const double content = m_layout.wraps() ? 0 : m_layout.contentWidth() + 2 * insets().horizontal + 2;
    return std::max(0.0, content - m_size.width());
}

double Viewport::maximumY() const
{
    return std::max(0.0, static_cast<double>(m_layout.rowCount()) * m_layout.rowHeight() + 2 * insets().vertical - m_size.height());
}

void Viewport::setX(double x)
{
    m_x = m_layout.snapped(std::clamp(x, 0.0, maximumX()));
}

void Viewport::setY(double y)
{
    if (y >= maximumY()) {
        // Whatever the estimates: the lowest position shows the end of the text.
        place(m_layout.rowOf(std::numeric_limits<qsizetype>::max()), 0);
        return;
    }
    const double distance = y - position().y();
    if (std::abs(distance) <= 3 * m_size.height()) {
        scrollBy(distance);
        return;
    }
    const double inRows = y - insets().vertical;
    const auto number = std::max<qint64>(0, static_cast<qint64>(inRows / m_layout.rowHeight()));
    const RowPosition row = m_layout.rowNumber(number);
    place(row, inRows - static_cast<double>(number) * m_layout.rowHeight());
}

void Viewport::scrollBy(double pixels)
{
    place(topRow(), m_above + pixels);
}

void Viewport::scrollRows(qint64 rows)
{
    RowPosition top = topRow();
    // Upwards from a row that is cut off, the first step shows the rest of it.
    const bool isCut = m_above > 0;
    m_layout.step(top, isCut && rows < 0 ? rows + 1 : rows);
    place(top, m_layout.previous(top) ? 0 : -insets().vertical);
}

void Viewport::goTo(const Place &place)
{
    this->place(m_layout.rowOf(place.anchor), place.above);
    setX(place.x);
}

void Viewport::reveal(const RowPosition &row, Reveal how, qint64 margin)
{
    const double height = m_layout.rowHeight();
    const double highest = double(std::min(margin, (rowsPerPage() - 1) / 2)) * height;
    const double lowest = std::max(0.0, m_size.height() - height - highest);
    if (how == Reveal::nearest) {
        if (const auto top = topOf(row); top) {
            if (*top < highest) {
                scrollBy(*top - highest);
            } else if (*top > lowest) {
                scrollBy(*top - lowest);
            }
            return;
        }
        const RowPosition first = topRow();
        if (distance(row, first, rowsPerPage())) {
            place(row, -highest);
            return;
        }
        if (distance(first, row, 2 * rowsPerPage() + 2)) {
            place(row, -lowest);
            return;
        }
    }
    place(row, -std::max(0.0, m_size.height() - height) / 2);
}

void Viewport::revealX(Span span)
{
    if (m_layout.wraps()) {
        m_x = 0;
        return;
    }
    // Some context beside the caret, so that typing at the edge does not scroll at every key.
    const double margin = std::min(4 * m_layout.cellWidth(), m_size.width() / 4);
    // A view that is too narrow, as one that is not shown yet may be, begins with the span.
    const double visible = std::max(m_size.width() - 2 * insets().horizontal, span.right - span.left);
    if (span.left < m_x) {
        setX(span.left - margin);
    } else if (span.right > m_x + visible) {
        setX(span.right - visible + margin);
    }
}
