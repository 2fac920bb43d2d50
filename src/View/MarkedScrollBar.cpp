// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/MarkedScrollBar.h"

#include "Base/ColorContrast.h"
#include "View/TextView.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionSlider>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Pixels beside a mark that count as its own for a click.
constexpr int reach = 2;
/// What can be told apart.
constexpr double leastContrast = 3;

} // namespace

MarkedScrollBar *MarkedScrollBar::of(const TextView &view)
{
    return qobject_cast<MarkedScrollBar *>(view.verticalScrollBar());
}

void MarkedScrollBar::setSource(ScrollMark mark, Source source)
{
    m_sources[static_cast<size_t>(mark)] = std::move(source);
    placesChanged();
}

void MarkedScrollBar::placesChanged()
{
    m_made.reset();
    update();
}

bool MarkedScrollBar::hasSources() const
{
    return std::ranges::any_of(m_sources, [](const Source &source) { return source.has != nullptr; });
}

// Rows of pixels

QRect MarkedScrollBar::placeOf(QStyle::SubControl part) const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    return style()->subControlRect(QStyle::CC_ScrollBar, &option, part, this);
}

MarkedScrollBar::Made MarkedScrollBar::wanted()
{
    return {.revision = m_view.storage().revision(),
            .rowCount = m_view.layoutManager().rowCount(),
            .contentHeight = m_view.textViewport().maximumY() + m_view.textViewport().size().height(),
            .groove = placeOf(QStyle::SC_ScrollBarGroove)};
}

/// Where the text begins that is beside a row of pixels when the handle is there.
qsizetype MarkedScrollBar::offsetAt(int row, const Made &made)
{
    const double y = made.contentHeight * row / made.groove.height() - m_view.textViewport().insets().vertical;
    return m_view.layoutManager().offsetNear(y / m_view.layoutManager().rowHeight());
}

void MarkedScrollBar::makeRows()
{
    const Made made = wanted();
    if (m_made == made) {
        return;
    }
    m_made = made;
    m_rows.assign(static_cast<size_t>(std::max(0, made.groove.height())), 0);
    qsizetype from = 0;
    for (int row = 0; row < made.groove.height(); ++row) {
        const bool isLast = row + 1 == made.groove.height();
        const qsizetype end = isLast ? m_view.storage().length() + 1 : std::max(from, offsetAt(row + 1, made));
        for (size_t kind = 0; kind < m_sources.size() && end > from; ++kind) {
            if (m_sources[kind].has && m_sources[kind].has(TextRange::between(from, end))) {
                m_rows[static_cast<size_t>(row)] |= static_cast<quint8>(1U << kind);
            }
        }
        from = end;
    }
}

std::vector<int> MarkedScrollBar::rowsOf(ScrollMark mark)
{
    makeRows();
    std::vector<int> rows;
    for (size_t row = 0; row < m_rows.size(); ++row) {
        if ((m_rows[row] >> static_cast<unsigned>(mark) & 1U) != 0) {
            rows.push_back(m_made->groove.top() + static_cast<int>(row));
        }
    }
    return rows;
}

// Painting

QColor MarkedScrollBar::colorOf(ScrollMark mark)
{
    if (!m_colors) {
        const auto [ground, handle] = grounds();
        m_colors.emplace();
        for (const ScrollMarkKind &kind : scrollMarkKinds) {
            (*m_colors)[static_cast<size_t>(kind.mark)] =
                QColor::fromRgb(legible(kind.color, oppositeOf(ground.rgb()), leastContrast, {ground.rgb(), handle.rgb()}));
        }
    }
    return (*m_colors)[static_cast<size_t>(mark)];
}

void MarkedScrollBar::paintEvent(QPaintEvent *event)
{
    TextScrollBar::paintEvent(event);
    if (!hasSources() || minimum() == maximum()) {
        return;
    }
    makeRows();
    QPainter painter(this);
    for (const ScrollMarkKind &kind : scrollMarkKinds) {
        if (!m_sources[static_cast<size_t>(kind.mark)].has) {
            continue;
        }
        const int left = static_cast<int>(std::lround(kind.left * (width() - 2))) + 1;
        const int right = static_cast<int>(std::lround(kind.right * (width() - 2))) + 1;
        const QColor color = colorOf(kind.mark);
        for (const int row : rowsOf(kind.mark)) {
            painter.fillRect(left, row, right - left, markHeight, color);
        }
    }
}

void MarkedScrollBar::changeEvent(QEvent *event)
{
    TextScrollBar::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        m_colors.reset();
    }
}

// The pointer

/// The nearest mark; that of the kind which is drawn last, of several as near. None on the handle, which is for dragging.
std::optional<MarkedScrollBar::Mark> MarkedScrollBar::markAt(QPoint place)
{
    if (!hasSources() || placeOf(QStyle::SC_ScrollBarSlider).contains(place)) {
        return std::nullopt;
    }
    makeRows();
    std::optional<Mark> nearest;
    int least = reach + markHeight;
    for (size_t kind = 0; kind < scrollMarkKinds.size(); ++kind) {
        for (const int row : rowsOf(scrollMarkKinds[kind].mark)) {
            const int distance = std::max({row - place.y(), place.y() - (row + markHeight - 1), 0});
            if (distance <= reach && (!nearest || distance <= least)) {
                nearest = {.kind = kind, .row = row - m_made->groove.top()};
                least = distance;
            }
        }
    }
    return nearest;
}

void MarkedScrollBar::mousePressEvent(QMouseEvent *event)
{
    const auto mark = event->button() == Qt::LeftButton ? markAt(event->position().toPoint()) : std::nullopt;
    m_isOnMark = mark.has_value();
    if (!mark) {
        TextScrollBar::mousePressEvent(event);
        return;
    }
    event->accept();
    const Made made = *m_made;
    const qsizetype from = mark->row == 0 ? 0 : offsetAt(mark->row, made);
    const qsizetype end = mark->row + 1 == made.groove.height() ? m_view.storage().length() + 1 : offsetAt(mark->row + 1, made);
    if (const auto go = m_sources[mark->kind].go) {
        go(TextRange::between(from, std::max(from, end)));
    }
}

void MarkedScrollBar::mouseMoveEvent(QMouseEvent *event)
{
    if (m_isOnMark) {
        return;
    }
    const bool isOver = event->buttons() == Qt::NoButton && markAt(event->position().toPoint());
    if (isOver != testAttribute(Qt::WA_SetCursor)) {
        isOver ? setCursor(Qt::PointingHandCursor) : unsetCursor();
    }
    TextScrollBar::mouseMoveEvent(event);
}

void MarkedScrollBar::mouseReleaseEvent(QMouseEvent *event)
{
    if (!std::exchange(m_isOnMark, false)) {
        TextScrollBar::mouseReleaseEvent(event);
    }
}
