// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/PendingKeysPanel.h"

#include "Base/Translation.h"
#include "View/FloatingNote.h"
#include "View/TextView.h"
#include "Widgets/AccessibleRole.h"

#include <QEvent>
#include <QFontDatabase>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Around the panel, and within it.
constexpr int margin = 4;
constexpr int padding = 8;
constexpr int largestShare = 3;

} // namespace

PendingKeysPanel::PendingKeysPanel(TextView &view, Scheduler &scheduler) : QWidget(view.viewport()), m_view(view), m_scheduler(scheduler)
{
    becomeNotice(*this);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    view.installEventFilter(this);
    view.viewport()->installEventFilter(this);
    hide();
}

void PendingKeysPanel::follow(const std::vector<VimKeymap::Mapping> &continuations)
{
    m_cells.clear();
    if (continuations.empty()) {
        m_soon.cancel();
        hide();
        return;
    }
    QStringList said;
    for (const VimKeymap::Mapping &mapping : continuations) {
        const Cell &cell = m_cells.emplace_back(Cell{VimKeymap::describe(mapping.keys), mapping.label});
        said << cell.keys + u' ' + cell.label;
    }
    setAccessibleName(formatted(localized(u"What may follow: %@"), said.join(u", "_s)));
    if (isVisible()) {
        reveal();
        announce(*this);
    } else {
        m_soon = m_scheduler.after(delay, [this] { reveal(); });
    }
}

void PendingKeysPanel::reveal()
{
    if (!m_view.hasFocus()) {
        return;
    }
    place();
    show();
    raise();
    update();
}

void PendingKeysPanel::place()
{
    const QRect room = m_view.viewport()->rect().adjusted(margin, margin, -margin, -margin);
    m_grid = grid(room.size());
    const int height = m_grid.rows * m_grid.rowHeight + 2 * padding;
    setGeometry(room.left(), room.bottom() - height + 1, room.width(), height);
}

QFont PendingKeysPanel::keyFont() const
{
    QFont keys = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    keys.setPointSizeF(QFontInfo(font()).pointSizeF());
    keys.setBold(true);
    return keys;
}

PendingKeysPanel::Grid PendingKeysPanel::grid(QSize room) const
{
    const QFontMetrics keys(keyFont());
    const QFontMetrics labels(font());
    const int gap = labels.averageCharWidth();
    Grid grid{.rowHeight = std::max(keys.height(), labels.height()) + 2};
    int labelWidth = 0;
    for (const Cell &cell : m_cells) {
        grid.keyWidth = std::max(grid.keyWidth, keys.horizontalAdvance(cell.keys) + 2 * gap);
        labelWidth = std::max(labelWidth, labels.horizontalAdvance(cell.label) + 3 * gap);
    }
    const int width = room.width() - 2 * padding;
    const int most = std::max(m_view.viewport()->height() / largestShare - 2 * padding, grid.rowHeight) / grid.rowHeight;
    const int count = int(m_cells.size());
    grid.cellWidth = std::clamp(grid.keyWidth + labelWidth, 1, std::max(width, 1));
    grid.columns = std::clamp(width / grid.cellWidth, 1, std::max(count, 1));
    grid.rows = std::min((count + grid.columns - 1) / grid.columns, most);
    return grid;
}

bool PendingKeysPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize && isVisible()) {
        place();
    } else if (watched == &m_view && event->type() == QEvent::FocusOut) {
        m_soon.cancel();
        hide();
    } else if (watched == &m_view && event->type() == QEvent::FocusIn && !m_cells.empty()) {
        m_soon = m_scheduler.after(delay, [this] { reveal(); });
    }
    return QWidget::eventFilter(watched, event);
}

void PendingKeysPanel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    const TextLooks::Colors &colors = m_view.colors();
    paintFloatingNote(painter, rect(), colors);
    painter.setPen(colors.text);
    const int shown = std::min(int(m_cells.size()), m_grid.columns * m_grid.rows);
    for (int index = 0; index < shown; ++index) {
        const Cell &cell = m_cells[size_t(index)];
        const QPoint corner(padding + index / m_grid.rows * m_grid.cellWidth, padding + index % m_grid.rows * m_grid.rowHeight);
        const QRect whole(corner, QSize(m_grid.cellWidth, m_grid.rowHeight));
        painter.setFont(keyFont());
        painter.drawText(whole, Qt::AlignVCenter | Qt::TextSingleLine, cell.keys);
        painter.setFont(font());
        const QRect label = whole.adjusted(m_grid.keyWidth, 0, 0, 0);
        painter.drawText(label, Qt::AlignVCenter | Qt::TextSingleLine, fontMetrics().elidedText(cell.label, Qt::ElideRight, label.width()));
    }
}
