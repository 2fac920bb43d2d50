// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/FloatingNote.h"

#include "Desktop/PaletteBlend.h"

#include <QPainter>

void paintFloatingNote(QPainter &painter, const QRect &rect, const TextLooks::Colors &colors)
{
    constexpr double groundShare = 0.08;
    constexpr double borderShare = 0.45;
    constexpr double radius = 3;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(blended(colors.background, colors.text, borderShare));
    painter.setBrush(blended(colors.background, colors.text, groundShare));
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}
