// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/GlyphButton.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionToolButton>

namespace {

/// Room around the height of a text.
constexpr int margin = 8;
constexpr double disabledOpacity = 0.4;

} // namespace

GlyphButton::GlyphButton(Glyph glyph, QWidget *parent) : QToolButton(parent), m_glyph(glyph)
{
    setAutoRaise(true);
}

QSize GlyphButton::sizeHint() const
{
    const int side = fontMetrics().height() + margin;
    const bool isWide = m_glyph == Glyph::matchCase || m_glyph == Glyph::wholeWord || m_glyph == Glyph::expression;
    return {isWide ? side + 4 : side, side};
}

void GlyphButton::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    style()->drawComplexControl(QStyle::CC_ToolButton, &option, &painter, this);
    if (!isEnabled()) {
        painter.setOpacity(disabledOpacity);
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Active, QPalette::ButtonText), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const bool isLetters = m_glyph == Glyph::matchCase || m_glyph == Glyph::wholeWord || m_glyph == Glyph::expression;
    isLetters ? paintLetters(painter) : paintLines(painter);
}

void GlyphButton::paintLines(QPainter &painter) const
{
    const QPointF center = QRectF(rect()).center();
    const double half = fontMetrics().height() * 0.26;
    QPainterPath path;
    if (m_glyph == Glyph::close) {
        path.moveTo(center + QPointF(-half, -half));
        path.lineTo(center + QPointF(half, half));
        path.moveTo(center + QPointF(half, -half));
        path.lineTo(center + QPointF(-half, half));
    } else {
        const double tip = m_glyph == Glyph::up ? -half / 2 : half / 2;
        path.moveTo(center + QPointF(-half, -tip));
        path.lineTo(center + QPointF(0, tip));
        path.lineTo(center + QPointF(half, -tip));
    }
    painter.drawPath(path);
}

void GlyphButton::paintLetters(QPainter &painter) const
{
    const QString letters = m_glyph == Glyph::matchCase    ? QStringLiteral("Aa")
                            : m_glyph == Glyph::expression ? QStringLiteral(".*")
                                                           : QStringLiteral("ab");
    const bool isWord = m_glyph == Glyph::wholeWord;
    const QRectF box = QRectF(rect()).adjusted(0, 0, 0, isWord ? -2 : 0);
    painter.drawText(box, Qt::AlignCenter, letters);
    if (isWord) {
        // A bracket below says that the word ends there.
        const double half = fontMetrics().horizontalAdvance(letters) / 2.0 + 1;
        const double bottom = box.center().y() + fontMetrics().height() * 0.5 + 2;
        const double x = box.center().x();
        painter.setPen(QPen(painter.pen().color(), 1.2));
        painter.drawPolyline(QPolygonF({{x - half, bottom - 3}, {x - half, bottom}, {x + half, bottom}, {x + half, bottom - 3}}));
    }
}
