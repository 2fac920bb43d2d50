// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextScrollBar.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

#include <utility>

namespace {

/// Pixels that the handle leaves free at the edges.
constexpr int handleInset = 2;

} // namespace

void TextScrollBar::setColors(const QColor &ground, const QColor &handle)
{
    m_ground = ground;
    m_handle = handle;
    update();
}

void TextScrollBar::paintEvent(QPaintEvent *event)
{
    if (!m_ground.isValid() || !m_handle.isValid()) {
        QScrollBar::paintEvent(event);
        return;
    }
    QStyleOptionSlider option;
    initStyleOption(&option);
    const auto placeOf = [&](QStyle::SubControl part) { return style()->subControlRect(QStyle::CC_ScrollBar, &option, part, this); };
    const bool isVertical = orientation() == Qt::Vertical;
    QPainter painter(this);
    painter.fillRect(rect(), m_ground);
    painter.fillRect(isVertical ? QRect(0, 0, 1, height()) : QRect(0, 0, width(), 1), m_handle);
    if (minimum() < maximum()) {
        painter.fillRect(placeOf(QStyle::SC_ScrollBarSlider).adjusted(handleInset, handleInset, -handleInset, -handleInset), m_handle);
    }
    QStyleOption arrow = option;
    for (const auto role : {QPalette::ButtonText, QPalette::WindowText, QPalette::Text}) {
        arrow.palette.setColor(role, m_handle);
    }
    using enum QStyle::PrimitiveElement;
    for (const auto &[part, symbol] :
         {std::pair(QStyle::SC_ScrollBarSubLine, isVertical ? PE_IndicatorArrowUp : PE_IndicatorArrowLeft),
          std::pair(QStyle::SC_ScrollBarAddLine, isVertical ? PE_IndicatorArrowDown : PE_IndicatorArrowRight)}) {
        arrow.rect = placeOf(part);
        if (!arrow.rect.isEmpty()) {
            style()->drawPrimitive(symbol, &arrow, &painter, this);
        }
    }
}
