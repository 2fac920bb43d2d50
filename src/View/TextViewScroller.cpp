// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextViewScroller.h"

#include <QAbstractScrollArea>
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

void TextViewScroller::viewMoved(Bars bars)
{
    if (bars == Bars::whenKeysRest &&
        isScrollBarNear(*m_area.verticalScrollBar(), m_port.maximumY() / m_verticalScale, m_port.position().y() / m_verticalScale) &&
        isScrollBarNear(*m_area.horizontalScrollBar(), m_port.maximumX(), m_port.position().x())) {
        m_barsSettle = m_scheduler.after(150ms, [this] { syncBars(); });
    } else {
        syncBars();
    }
    refineSoon();
}

/// Measuring goes on in slices; it moves the scroll bar and nothing that is on the screen.
void TextViewScroller::refineSoon()
{
    if (!m_layout.wraps() || m_refining.isPending()) {
        return;
    }
    m_refining = m_scheduler.after(0ms, [this] {
        const bool hasMore = m_layout.refine(m_port.topRow().line, refineBudget);
        syncBars();
        if (hasMore) {
            m_refining = {};
            refineSoon();
        }
    });
}

void TextViewScroller::noticeWidths()
{
    noticeShifts();
    const double width = std::ceil(std::min(m_port.maximumX(), scrollBarLimit));
    if (width > m_area.horizontalScrollBar()->maximum() * 1.0005 && !m_widening.isPending()) {
        m_widening = m_scheduler.after(0ms, [this] { syncBars(); });
    }
}

void TextViewScroller::syncBars()
{
    const QScopedValueRollback<bool> syncing(m_isSyncing, true);
    const double maximumY = m_port.maximumY();
    m_verticalScale = std::max(1.0, maximumY / scrollBarLimit);
    const QPointF position = m_port.position();
    const auto set = [](QScrollBar *bar, double maximum, double value, double page, double step) {
        bar->setRange(0, static_cast<int>(std::ceil(maximum)));
        bar->setPageStep(std::max(1, static_cast<int>(page)));
        bar->setSingleStep(std::max(1, static_cast<int>(step)));
        bar->setValue(static_cast<int>(std::lround(value)));
    };
    const QSize size = m_area.viewport()->size();
    const double scale = m_verticalScale;
    set(m_area.verticalScrollBar(), maximumY / scale, position.y() / scale, size.height() / scale, m_layout.rowHeight() / scale);
    const double width = std::min(m_port.maximumX(), scrollBarLimit);
    set(m_area.horizontalScrollBar(), width, position.x(), size.width(), 4 * m_layout.cellWidth());
}

bool TextViewScroller::barsMoved(int dx, int dy)
{
    if (m_isSyncing) {
        return false;
    }
    if (dx != 0) {
        m_port.setX(m_area.horizontalScrollBar()->value());
    }
    if (dy != 0) {
        m_port.setY(m_area.verticalScrollBar()->value() * m_verticalScale);
    }
    return true;
}

void TextViewScroller::noticeShifts()
{
    if (std::exchange(m_seenShifts, m_layout.shifts()) != m_layout.shifts()) {
        m_area.viewport()->update();
    }
}
