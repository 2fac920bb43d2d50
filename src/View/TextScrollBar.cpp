// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextScrollBar.h"

#include <QImage>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

#include <algorithm>
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

TextScrollBar::Grounds TextScrollBar::grounds() const
{
    if (m_ground.isValid() && m_handle.isValid()) {
        return {m_ground, m_handle};
    }
    // Styles make their own of the palette, so one looks.
    QStyleOptionSlider option;
    initStyleOption(&option);
    option.subControls = QStyle::SC_All;
    option.activeSubControls = QStyle::SC_None;
    option.state &= ~(QStyle::State_MouseOver | QStyle::State_Sunken);
    option.rect = QRect(0, 0, std::max(width(), 4), std::max(height(), 200));
    option.minimum = 0;
    option.maximum = 100;
    option.pageStep = 100;
    option.sliderPosition = option.sliderValue = 0;
    QImage image(option.rect.size(), QImage::Format_RGB32);
    image.fill(palette().color(QPalette::Window));
    QPainter painter(&image);
    style()->drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, this);
    painter.end();
    const auto colorIn = [&](QStyle::SubControl part) {
        const QRect place = style()->subControlRect(QStyle::CC_ScrollBar, &option, part, this) & image.rect();
        // Some have a grip in the middle.
        return place.isEmpty() ? palette().color(QPalette::Window)
                               : image.pixelColor(place.left() + place.width() / 2, place.top() + place.height() / 4);
    };
    return {colorIn(QStyle::SC_ScrollBarAddPage), colorIn(QStyle::SC_ScrollBarSlider)};
}
