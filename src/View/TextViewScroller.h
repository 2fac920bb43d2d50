// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "View/Viewport.h"

class QAbstractScrollArea;

/// Keeps the scroll bars of a view to its viewport, and the rows of a wrapped text counted in idle slices.
class TextViewScroller final {
public:
    /// A typed letter moves the bars by less than a pixel, but setting them paints them: that may wait until the keys rest.
    enum class Bars { atOnce, whenKeysRest };

    TextViewScroller(QAbstractScrollArea &area, LayoutManager &layout, Viewport &port, Scheduler &scheduler)
        : m_area(area), m_layout(layout), m_port(port), m_scheduler(scheduler)
    {}

    void viewMoved(Bars bars);
    /// The user moved a bar; false when it was the scroller itself.
    bool barsMoved(int dx, int dy);
    /// Painting lays out rows that may be wider than all before.
    void noticeWidths();
    /// Some question may have laid out what is left of the screen; then all that is on it moved.
    void noticeShifts();

private:
    void syncBars();
    void refineSoon();

    QAbstractScrollArea &m_area;
    LayoutManager &m_layout;
    Viewport &m_port;
    Scheduler &m_scheduler;
    bool m_isSyncing = false;
    double m_verticalScale = 1;
    quint64 m_seenShifts = 0;
    DelayedTask m_refining, m_widening;
    DelayedTask m_barsSettle;
};
