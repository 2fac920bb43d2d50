// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/OutOfSightHint.h"

#include "View/TextView.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>

OutOfSightHint::OutOfSightHint(TextView &view) : QFrame(view.viewport()), m_view(view), m_label(new QLabel(this))
{
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 1, 6, 1);
    layout->addWidget(m_label);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setTextInteractionFlags(Qt::NoTextInteraction);
    setFrameShape(QFrame::Box);
    setAutoFillBackground(true);
    setCursor(Qt::PointingHandCursor);
    view.viewport()->installEventFilter(this);
    hide();
}

void OutOfSightHint::show(const QString &text)
{
    const TextView::Colors &colors = m_view.colors();
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, colors.background);
    palette.setColor(QPalette::WindowText, colors.text);
    m_label->setPalette(palette);
    // The frame is there, but does not speak up.
    palette.setColor(QPalette::WindowText, colors.invisibles);
    setPalette(palette);
    m_label->setFont(m_view.textFont());
    m_label->setText(text);
    setAccessibleName(text);
    place();
    QFrame::show();
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
    return QFrame::eventFilter(watched, event);
}

void OutOfSightHint::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    emit clicked();
}
