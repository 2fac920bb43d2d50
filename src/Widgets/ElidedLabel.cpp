// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/ElidedLabel.h"

#include "Widgets/PlainToolTip.h"

#include <QHelpEvent>
#include <QStylePainter>
#include <QToolTip>

ElidedLabel::ElidedLabel(Qt::TextElideMode mode, QWidget *parent) : QLabel(parent), m_mode(mode)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize ElidedLabel::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 1, metrics.height()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.averageCharWidth() * 4, metrics.height()};
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && sizeHint().width() > width()) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), plainToolTip(text()), this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent * /*event*/)
{
    QStylePainter painter(this);
    const QString shown = QFontMetrics(font()).elidedText(text(), m_mode, width());
    painter.drawItemText(rect(), int(QStyle::visualAlignment(layoutDirection(), alignment())), palette(), isEnabled(), shown,
                         foregroundRole());
}
