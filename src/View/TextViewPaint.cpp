// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The painting of a TextView. From back to front: background, the caret's row, marks, selection, text, underlines, invisibles, caret. Only
// the rows in the region asked for are touched, and nothing is laid out that cannot be seen.

#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <QPaintEvent>
#include <QPainter>

#include <cmath>

namespace {

constexpr float blockCaretAlpha = 0.45F;
constexpr QColor indicatorColor(0xFF, 0xC8, 0x1E);
constexpr QColor misspellingColor(0xE5, 0x3E, 0x3E);

/// Puts the painter's state back when it goes.
class PainterState final {
public:
    explicit PainterState(QPainter &painter) : m_painter(painter) { m_painter.save(); }
    ~PainterState() { m_painter.restore(); }
    Q_DISABLE_COPY_MOVE(PainterState)

private:
    QPainter &m_painter;
};

} // namespace

void TextView::paintEvent(QPaintEvent *event)
{
    const QRectF area = event->rect();
    QPainter painter(viewport());
    // Larger than what was asked for: at a fractional scale the clip's edge, not the rectangle's, decides about a pixel in between.
    painter.fillRect(area.adjusted(-1, -1, 1, 1), m_colors.background);
    painter.setFont(m_layout.settings().font);
    const double left = m_port.left();
    const Span visible{area.left() - 1 - left, area.right() + 1 - left};
    const auto rows = m_port.rows(area.top() - 1, area.bottom() + 1);
    if (hasFocus()) {
        painter.fillRect(caretRowInViewport(), m_colors.currentLine);
    }
    for (const Viewport::VisibleRow &row : rows) {
        paintRow(painter, row, visible);
    }
    paintCaret(painter);
    noticeWidths();
}

/// The units of the row that can be seen: of a long line only these are asked for, it may hold millions.
TextRange TextView::seenOf(const Viewport::VisibleRow &row, Span visible)
{
    TextRange seen = m_layout.rangeOf(row.row);
    if (!m_layout.wraps()) {
        m_layout.forEachLayout(row.row, visible, [&, isFirst = true](const SegmentLayout &shown, int, double) mutable {
            seen = TextRange::between(isFirst ? shown.range().location : seen.location, shown.range().end());
            isFirst = false;
        });
    }
    return seen;
}

void TextView::paintMarks(QPainter &painter, const Viewport::VisibleRow &row, Span visible)
{
    if (!m_marks) {
        return;
    }
    for (const TextRange mark : m_marks(seenOf(row, visible))) {
        for (const Span span : m_layout.spansOf(row.row, mark, visible)) {
            painter.fillRect(QRectF(m_port.left() + span.left, row.top, span.right - span.left, m_layout.rowHeight()), m_colors.mark);
        }
    }
}

void TextView::paintIndicator(QPainter &painter, const Viewport::VisibleRow &row, Span visible)
{
    if (m_indicatorStrength <= 0 || !m_indicated.touches(m_layout.rangeOf(row.row))) {
        return;
    }
    QColor fill = indicatorColor;
    fill.setAlphaF(0.5F * float(std::min(1.0, m_indicatorStrength)));
    QColor edge = indicatorColor;
    edge.setAlphaF(float(std::min(1.0, m_indicatorStrength)));
    const PainterState state(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(edge, 1.5));
    painter.setBrush(fill);
    for (const Span span : m_layout.spansOf(row.row, m_indicated, visible)) {
        const QRectF box(m_port.left() + span.left, row.top, span.right - span.left, m_layout.rowHeight());
        painter.drawRoundedRect(box.adjusted(-2, 0.75, 2, -0.75), 3, 3);
    }
}

void TextView::paintMisspellings(QPainter &painter, const Viewport::VisibleRow &row, Span visible)
{
    if (!m_misspellings) {
        return;
    }
    constexpr double amplitude = 1;
    constexpr double step = 2;
    const double bottom = row.top + std::min(m_layout.baseline() + 3, m_layout.rowHeight() - amplitude - 0.5);
    const PainterState state(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(misspellingColor, 1));
    for (const TextRange word : m_misspellings(seenOf(row, visible))) {
        for (const Span span : m_layout.spansOf(row.row, word, visible)) {
            QPolygonF wave;
            for (double x = span.left; x <= span.right; x += step) {
                wave << QPointF(m_port.left() + x, bottom + (wave.size() % 2 == 0 ? amplitude : -amplitude));
            }
            painter.drawPolyline(wave);
        }
    }
}

void TextView::paintRow(QPainter &painter, const Viewport::VisibleRow &row, Span visible)
{
    const double left = m_port.left();
    paintBehind(painter, row, visible);
    paintMarks(painter, row, visible);
    paintSelection(painter, row, visible);
    paintIndicator(painter, row, visible);
    painter.setPen(m_colors.text);
    m_layout.forEachLayout(
        row.row, visible, [&](const SegmentLayout &shown, int inLayout, double x) { shown.drawRow(painter, inLayout, left + x, row.top); });
    paintMisspellings(painter, row, visible);
    if (m_invisibles == Visibility::shown) {
        paintInvisibles(painter, row, visible);
    }
}

void TextView::paintSelection(QPainter &painter, const Viewport::VisibleRow &row, Span visible)
{
    const TextRange selected = selection().range();
    if (selected.isEmpty()) {
        return;
    }
    const TextRange units = m_layout.rangeOf(row.row);
    if (selected.end() < units.location || selected.location > units.end()) {
        return;
    }
    const double left = m_port.left();
    const double height = m_layout.rowHeight();
    for (const Span span : m_layout.spansOf(row.row, selected, visible)) {
        painter.fillRect(QRectF(left + span.left, row.top, span.right - span.left, height), m_colors.selection);
    }
    // A selected line break shows as a stub behind the text, or an empty line would look unselected.
    const bool hasBreak = selected.location <= units.end() && selected.end() > units.end() && m_layout.endsLine(row.row);
    if (hasBreak) {
        const double end = m_layout.widthOf(row.row);
        painter.fillRect(QRectF(left + end, row.top, m_layout.cellWidth() / 2, height), m_colors.selection);
    }
}

void TextView::paintInvisibles(QPainter &painter, const Viewport::VisibleRow &row, Span visible)
{
    painter.setPen(m_colors.invisibles);
    const double left = m_port.left();
    const double baseline = row.top + m_layout.baseline();
    m_layout.forEachLayout(row.row, visible, [&](const SegmentLayout &shown, int inLayout, double x) {
        const TextRange units = m_layout.wraps() ? shown.rowRange(inLayout) : shown.range();
        RopeCursor cursor(m_storage.text());
        for (qsizetype offset = units.location; offset < units.end(); ++offset) {
            const char16_t unit = cursor.at(offset);
            if (unit == u' ' || unit == u'\t') {
                // Right to left the near edge of a blank is its right one, and what follows may be in sight again.
                double at = x + shown.xOf(inLayout, offset);
                if (shown.mixesDirections()) {
                    at = std::min(at, x + shown.xBehind(inLayout, offset));
                } else if (at > visible.right) {
                    break;
                }
                painter.drawText(QPointF(left + at, baseline), unit == u' ' ? QStringLiteral("\u00B7") : QStringLiteral("\u2192"));
            }
        }
    });
    const TextRange units = m_layout.rangeOf(row.row);
    if (m_layout.endsLine(row.row) && units.end() < m_storage.length()) {
        const double end = m_layout.widthOf(row.row);
        if (end <= visible.right) {
            painter.drawText(QPointF(left + end, baseline), QStringLiteral("\u00AC"));
        }
    }
}

void TextView::paintCaret(QPainter &painter)
{
    if (m_dropCaret) {
        const RowPosition row = m_layout.rowOf(*m_dropCaret);
        if (const auto top = m_port.topOf(row)) {
            painter.fillRect(QRectF(std::floor(m_port.left() + m_layout.xOf(row, *m_dropCaret)), *top, 2, m_layout.rowHeight()),
                             m_colors.caret);
        }
    }
    const bool isShown = hasFocus() && (m_isCaretOn || m_caretShape == CaretShape::block) && (!isComposing() || m_isPreeditCaretShown);
    if (!isShown) {
        return;
    }
    QRectF caret = caretInViewport();
    QColor color = m_colors.caret;
    if (m_caretShape == CaretShape::block) {
        color.setAlphaF(blockCaretAlpha);
    } else if (m_caretShape == CaretShape::underline) {
        caret.setTop(caret.bottom() - 2);
    }
    painter.fillRect(caret, color);
}
