// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/OutOfSightHint.h"

#include "View/FloatingNote.h"
#include "View/TextView.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>

OutOfSightHint::OutOfSightHint(TextView &view) : QWidget(view.viewport()), m_view(view), m_label(new QLabel(this))
{
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 1, 6, 1);
    layout->addWidget(m_label);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setTextInteractionFlags(Qt::NoTextInteraction);
    setCursor(Qt::PointingHandCursor);
    view.viewport()->installEventFilter(this);
    hide();
}

void OutOfSightHint::show(const QString &text)
{
    QPalette palette = this->palette();
    palette.setColor(QPalette::WindowText, m_view.colors().text);
    m_label->setPalette(palette);
    m_label->setFont(m_view.textFont());
    m_label->setText(text);
    setAccessibleName(text);
    place();
    QWidget::show();
    raise();
}

void OutOfSightHint::place()
{
    constexpr int margin = 4;
    const QRect room = m_view.viewport()->rect().adjusted(margin, margin, -margin, -margin);
    const QSize size = sizeHint().boundedTo(room.size());
    const QRect caret = m_view.caretRectangle().translated(-m_view.viewport()->pos());
    const int left = room.right() - size.width() + 1;
    const QRect top(QPoint(left, room.top()), size);
    const bool isInTheWay = caret.isValid() && caret.intersects(top);
    setGeometry(isInTheWay ? QRect(QPoint(left, room.bottom() - size.height() + 1), size) : top);
}

bool OutOfSightHint::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize && isVisible()) {
        place();
    }
    return QWidget::eventFilter(watched, event);
}

void OutOfSightHint::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    emit clicked();
}

void OutOfSightHint::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintFloatingNote(painter, rect(), m_view.colors());
}
