// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextView.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <cmath>

using namespace std::chrono_literals;

namespace {

// Some 2 ms a slice.
constexpr qsizetype refineBudget = 2 * 1024 * 1024;
// A scroll bar counts in int; above this many pixels one step of it is several.
constexpr double scrollBarLimit = 1 << 30;

/// True when the bar would look the same with these values.
bool isScrollBarNear(const QScrollBar &bar, double maximum, double value)
{
    const double invisible = bar.maximum() / 2000.0;
    return std::abs(bar.maximum() - std::ceil(maximum)) <= invisible && std::abs(bar.value() - std::round(value)) <= invisible;
}

} // namespace

void TextView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    const bool isWidthNew = m_wrapMode == WrapMode::viewWidth && settingsForViewport().wrapWidth != m_layout.settings().wrapWidth;
    if (isWidthNew) {
        applySettings(settingsForViewport());
        return;
    }
    m_port.setSize(viewport()->size());
    m_layout.setCacheCapacity(static_cast<size_t>(std::max<qint64>(64, 3 * m_port.rowsPerPage())));
    if (m_port.settle()) {
        viewport()->update();
    }
    viewMoved();
}

void TextView::viewMoved()
{
    // A typed letter moves the bars by less than a pixel, but setting them paints them: that waits until the keys rest.
    if (m_isEditing &&
        isScrollBarNear(*verticalScrollBar(), m_port.maximumY() / m_verticalScale, m_port.position().y() / m_verticalScale) &&
        isScrollBarNear(*horizontalScrollBar(), m_port.maximumX(), m_port.position().x())) {
        m_barsSettle = m_services.scheduler.after(150ms, [this] { syncScrollBars(); });
    } else {
        syncScrollBars();
    }
    refineSoon();
    emit visibleRowsChanged();
}

/// Measuring goes on in slices; it moves the scroll bar and nothing that is on the screen.
void TextView::refineSoon()
{
    if (!m_layout.wraps() || m_refining.isPending()) {
        return;
    }
    m_refining = m_services.scheduler.after(0ms, [this] {
        const bool hasMore = m_layout.refine(m_port.topRow().line, refineBudget);
        syncScrollBars();
        if (hasMore) {
            m_refining = {};
            refineSoon();
        }
    });
}

/// Painting lays out rows that may be wider than all before.
void TextView::noticeWidths()
{
    noticeShifts();
    const double width = std::ceil(std::min(m_port.maximumX(), scrollBarLimit));
    if (width > horizontalScrollBar()->maximum() * 1.0005 && !m_widening.isPending()) {
        m_widening = m_services.scheduler.after(0ms, [this] { syncScrollBars(); });
    }
}

void TextView::syncScrollBars()
{
    const QScopedValueRollback<bool> syncing(m_isSyncingScrollBars, true);
    const double maximumY = m_port.maximumY();
    m_verticalScale = std::max(1.0, maximumY / scrollBarLimit);
    const QPointF position = m_port.position();
    const auto set = [](QScrollBar *bar, double maximum, double value, double page, double step) {
        bar->setRange(0, static_cast<int>(std::ceil(maximum)));
        bar->setPageStep(std::max(1, static_cast<int>(page)));
        bar->setSingleStep(std::max(1, static_cast<int>(step)));
        bar->setValue(static_cast<int>(std::lround(value)));
    };
    const double scale = m_verticalScale;
    set(verticalScrollBar(), maximumY / scale, position.y() / scale, viewport()->height() / scale, m_layout.rowHeight() / scale);
    const double width = std::min(m_port.maximumX(), scrollBarLimit);
    set(horizontalScrollBar(), width, position.x(), viewport()->width(), 4 * m_layout.cellWidth());
}

void TextView::scrollContentsBy(int dx, int dy)
{
    if (m_isSyncingScrollBars) {
        return;
    }
    if (dx != 0) {
        m_port.setX(horizontalScrollBar()->value());
    }
    if (dy != 0) {
        m_port.setY(verticalScrollBar()->value() * m_verticalScale);
    }
    viewMoved();
    viewport()->update();
    QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle | Qt::ImAnchorRectangle);
}

void TextView::scrollRows(int rows)
{
    m_port.scrollRows(rows);
    viewMoved();
    viewport()->update();
}

/// Some question laid out what is left of the screen, and all that is on it moved.
void TextView::noticeShifts()
{
    if (std::exchange(m_seenShifts, m_layout.shifts()) != m_layout.shifts()) {
        viewport()->update();
    }
}
