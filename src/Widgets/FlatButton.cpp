// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/FlatButton.h"

#include "Widgets/SymbolIcon.h"
#include "Widgets/SystemColors.h"

#include <QKeyEvent>
#include <QPainter>

namespace {

constexpr double hoverOpacity = 0.13;
constexpr double pressedOpacity = 0.24;
constexpr double disabledOpacity = 0.4;
constexpr double cornerRadius = 4;
constexpr int heightMargin = 2;

} // namespace

FlatButton::FlatButton(QWidget *parent) : QToolButton(parent)
{
    setAutoRaise(true);
    setAttribute(Qt::WA_Hover);
}

void FlatButton::setSymbol(const QString &name, int side)
{
    m_symbol = name;
    setIconSize({side, side});
    tintSymbol();
}

void FlatButton::tintSymbol()
{
    if (!m_symbol.isEmpty()) {
        setIcon(symbolIcon(m_symbol, palette().color(QPalette::Active, QPalette::ButtonText)));
    }
}

void FlatButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange) {
        tintSymbol();
    }
    QToolButton::changeEvent(event);
}

QSize FlatButton::sizeHint() const
{
    if (text().isEmpty()) {
        return iconSize() + QSize(2 * textMargin, 2 * textMargin);
    }
    if (m_measured.text != text() || m_measured.font != font()) {
        m_measured = {text(), font(), measured()};
    }
    return m_measured.size;
}

QSize FlatButton::measured() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 2 * textMargin, metrics.height() + 2 * heightMargin};
}

void FlatButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QToolButton::keyPressEvent(event);
}

void FlatButton::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintGround(painter);
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    if (text().isEmpty()) {
        QRect place(QPoint(), iconSize());
        place.moveCenter(rect().center());
        icon().paint(&painter, place);
        return;
    }
    painter.setPen(palette().color(QPalette::Active, QPalette::ButtonText));
    painter.drawText(rect().adjusted(textMargin, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text());
}

void FlatButton::paintGround(QPainter &painter) const
{
    if (autoFillBackground()) {
        painter.fillRect(rect(), palette().color(QPalette::Active, QPalette::Window));
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ground = QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75);
    // A menu of its own that closes by a click elsewhere leaves it under a pointer that is gone.
    const bool isPointedAt = underMouse() && rect().contains(mapFromGlobal(QCursor::pos()));
    if (isEnabled() && (isDown() || isPointedAt)) {
        QColor color = palette().color(QPalette::Active, QPalette::ButtonText);
        color.setAlphaF(float(isDown() ? pressedOpacity : hoverOpacity));
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawRoundedRect(ground, cornerRadius, cornerRadius);
    }
    if (hasFocus()) {
        painter.setPen(QPen(SystemColor::accent(), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(ground, cornerRadius, cornerRadius);
    }
}
