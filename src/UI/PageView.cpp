// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/PageView.h"

#include "Widgets/AccessibleRole.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

namespace {

/// Around the sheet.
constexpr int edge = 16;
constexpr double pointsPerInch = 72;
constexpr int wheelStep = 120;

} // namespace

PageView::PageView(QWidget *parent) : QAbstractScrollArea(parent)
{
    setAccessibleRole(*this, QAccessible::Graphic);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Mid);
    viewport()->setAutoFillBackground(true);
}

void PageView::setPage(const QPageLayout &paper, std::function<void(QPainter &painter)> paint, const QString &name)
{
    m_paper = paper;
    m_paint = std::move(paint);
    m_sheet = {};
    setAccessibleName(name);
    layOut();
}

void PageView::setFit(Fit fit, double factor)
{
    m_fit = fit;
    m_factor = factor;
    layOut();
}

QSize PageView::sheetSize() const
{
    const QSizeF points = m_paper.fullRectPoints().size();
    if (points.isEmpty()) {
        return {};
    }
    const QSize room = maximumViewportSize() - QSize(2 * edge, 2 * edge);
    const int bar = verticalScrollBar()->sizeHint().width();
    switch (m_fit) {
    case Fit::page:
        return points.scaled(room, Qt::KeepAspectRatio).toSize();
    case Fit::width:
        return (points * (room.width() - bar) / points.width()).toSize();
    case Fit::factor:
        return (points * m_factor * logicalDpiX() / pointsPerInch).toSize();
    }
    Q_UNREACHABLE();
}

void PageView::layOut()
{
    const QSize wanted = sheetSize() + QSize(2 * edge, 2 * edge);
    if (m_sheet.size() != sheetSize() * devicePixelRatioF()) {
        m_sheet = {};
    }
    const QSize shown = viewport()->size();
    const auto setBar = [](QScrollBar &bar, int all, int seen) {
        bar.setRange(0, std::max(0, all - seen));
        bar.setPageStep(seen);
        bar.setSingleStep(std::max(1, seen / 10));
    };
    setBar(*horizontalScrollBar(), wanted.width(), shown.width());
    setBar(*verticalScrollBar(), wanted.height(), shown.height());
    viewport()->update();
}

void PageView::draw()
{
    const QSize size = sheetSize();
    m_sheet = QPixmap(size * devicePixelRatioF());
    m_sheet.setDevicePixelRatio(devicePixelRatioF());
    m_sheet.fill(Qt::white);
    QPainter painter(&m_sheet);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    const double scale = size.width() / m_paper.fullRectPoints().toRectF().width();
    painter.scale(scale, scale);
    const QRectF area = m_paper.paintRect(QPageLayout::Point);
    painter.translate(area.topLeft());
    m_paint(painter);
}

void PageView::paintEvent(QPaintEvent *)
{
    const QSize size = sheetSize();
    if (!m_paint || size.isEmpty()) {
        return;
    }
    if (m_sheet.isNull()) {
        draw();
    }
    const auto begin = [](int shown, int length, int scrolled) { return std::max(edge, (shown - length) / 2) - scrolled; };
    const QRect sheet(QPoint(begin(viewport()->width(), size.width(), horizontalScrollBar()->value()),
                             begin(viewport()->height(), size.height(), verticalScrollBar()->value())),
                      size);
    QPainter painter(viewport());
    painter.drawPixmap(sheet.topLeft(), m_sheet);
    painter.setPen(hasFocus() ? palette().color(QPalette::Highlight) : palette().color(QPalette::Shadow));
    painter.drawRect(sheet.adjusted(-1, -1, 0, 0));
}

void PageView::resizeEvent(QResizeEvent *)
{
    layOut();
}

void PageView::scrollContentsBy(int, int)
{
    viewport()->update();
}

/// Within the page, and at its edge to the next one.
void PageView::step(int direction)
{
    QScrollBar &bar = *verticalScrollBar();
    const int before = bar.value();
    bar.triggerAction(direction > 0 ? QScrollBar::SliderPageStepAdd : QScrollBar::SliderPageStepSub);
    if (bar.value() == before && onStep(direction > 0 ? Step::next : Step::previous)) {
        bar.setValue(direction > 0 ? bar.minimum() : bar.maximum());
    }
}

void PageView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_PageDown:
    case Qt::Key_Space:
        step(1);
        break;
    case Qt::Key_PageUp:
    case Qt::Key_Backspace:
        step(-1);
        break;
    case Qt::Key_Home:
        onStep(Step::first);
        break;
    case Qt::Key_End:
        onStep(Step::last);
        break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void PageView::wheelEvent(QWheelEvent *event)
{
    const QScrollBar &bar = *verticalScrollBar();
    const int turned = event->angleDelta().y();
    if (std::abs(turned) >= wheelStep && (turned < 0 ? bar.value() == bar.maximum() : bar.value() == bar.minimum())) {
        step(turned < 0 ? 1 : -1);
        event->accept();
        return;
    }
    QAbstractScrollArea::wheelEvent(event);
}
