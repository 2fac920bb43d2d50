// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextViewPainter.h"

#include "Desktop/PaletteBlend.h"

#include <QPainter>

#include <cmath>

using namespace std::chrono_literals;

namespace {

/// Of the text's colour, in the ground of what is searched.
constexpr double searchedShare = 0.12;
constexpr double rulerShare = 0.12;
constexpr float blockCaretAlpha = 0.45F;
constexpr QColor indicatorColor(0xFF, 0xC8, 0x1E);
constexpr QColor misspellingColor(0xE5, 0x3E, 0x3E);
constexpr QColor unsavableColor(0xE0, 0x7B, 0x00);

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

// The indicator

void TextIndicator::show(TextRange range, Scheduler &scheduler, std::function<void(TextRange)> repaint)
{
    // Full for a while, then it fades; a step is hardly seen.
    constexpr double initialStrength = 2;
    m_repaint = std::move(repaint);
    m_repaint(m_range);
    m_range = range;
    m_strength = initialStrength;
    m_fades = scheduler.every(40ms, 10ms, [this] { fade(); });
    m_repaint(m_range);
}

void TextIndicator::fade()
{
    constexpr double step = 0.125;
    const bool isFull = m_strength > 1;
    m_strength -= step;
    if (!isFull) {
        m_repaint(m_range);
    }
    if (m_strength <= 0) {
        m_strength = 0;
        m_range = {};
        m_fades.cancel();
    }
}

// The rows

void TextViewPainter::paint(QPainter &painter, QRectF area, const Rope &text, const Frame &frame)
{
    // Larger than what was asked for: at a fractional scale the clip's edge, not the rectangle's, decides about a pixel in between.
    painter.fillRect(area.adjusted(-1, -1, 1, 1), looks.colors.background);
    painter.setFont(m_layout.settings().font);
    const double left = m_port.left();
    const Span visible{area.left() - 1 - left, area.right() + 1 - left};
    const auto rows = m_port.rows(area.top() - 1, area.bottom() + 1);
    painter.fillRect(frame.caretRow, looks.colors.currentLine);
    paintRuler(painter, area);
    for (const Viewport::VisibleRow &visibleRow : rows) {
        frame.paintBehind(visibleRow, visible);
        const Row row{visibleRow.row, visibleRow.top, visible, m_layout.rangeOf(visibleRow.row), seenOf(visibleRow, visible)};
        paintOccurrences(painter, row);
        paintMarks(painter, row);
        paintUnsavable(painter, row);
        paintSelections(painter, row, frame.selections);
        paintBrackets(painter, row);
        paintIndicator(painter, row);
        paintText(painter, row, frame.selections);
        paintMisspellings(painter, row);
        if (looks.invisibles == TextLooks::Visibility::shown) {
            paintInvisibles(painter, row, text);
        }
    }
    paintRowBorder(painter, frame.caretRow);
    if (frame.dropCaret) {
        paintDropCaret(painter, *frame.dropCaret);
    }
    for (const QRectF &caret : frame.carets) {
        paintCaret(painter, caret);
    }
}

void TextViewPainter::paintRuler(QPainter &painter, QRectF area)
{
    if (looks.rulerColumn) {
        const double x = std::round(m_port.left() + *looks.rulerColumn * m_layout.cellWidth());
        painter.fillRect(QRectF(x, area.top() - 1, 1, area.height() + 2), blended(looks.colors.background, looks.colors.text, rulerShare));
    }
}

QRectF TextViewPainter::box(const Row &row, Span span) const
{
    return {m_port.left() + span.left, row.top, span.right - span.left, m_layout.rowHeight()};
}

/// The units of the row that can be seen: of a long line only these are asked for, it may hold millions.
TextRange TextViewPainter::seenOf(const Viewport::VisibleRow &row, Span visible)
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

void TextViewPainter::paintMarks(QPainter &painter, const Row &row)
{
    fillRanges(painter, row, looks.searched, blended(looks.colors.background, looks.colors.text, searchedShare));
    fillRanges(painter, row, looks.modalHits, looks.colors.mark);
    fillRanges(painter, row, looks.replacedHits, looks.colors.mark);
    fillRanges(painter, row, looks.marks, looks.colors.mark);
}

void TextViewPainter::fillRanges(QPainter &painter, const Row &row, const TextLooks::MarkProvider &provider, const QColor &color)
{
    if (!provider) {
        return;
    }
    for (const TextRange range : provider(row.seen)) {
        for (const Span span : m_layout.spansOf(row.position, range, row.visible)) {
            painter.fillRect(box(row, span), color);
        }
    }
}

void TextViewPainter::paintIndicator(QPainter &painter, const Row &row)
{
    paintIndicator(painter, row, indicator.range(), indicator.strength());
    if (looks.shownHit) {
        paintIndicator(painter, row, *looks.shownHit, 1);
    }
}

void TextViewPainter::paintIndicator(QPainter &painter, const Row &row, TextRange range, double strength)
{
    if (strength <= 0 || !range.touches(row.units)) {
        return;
    }
    QColor fill = indicatorColor;
    fill.setAlphaF(0.5F * float(strength));
    QColor edge = indicatorColor;
    edge.setAlphaF(float(strength));
    const PainterState state(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(edge, 1.5));
    painter.setBrush(fill);
    for (const Span span : m_layout.spansOf(row.position, range, row.visible)) {
        painter.drawRoundedRect(box(row, span).adjusted(-2, 0.75, 2, -0.75), 3, 3);
    }
}

void TextViewPainter::paintMisspellings(QPainter &painter, const Row &row)
{
    if (!looks.misspellings) {
        return;
    }
    constexpr double amplitude = 1;
    constexpr double step = 2;
    const double bottom = row.top + std::min(m_layout.baseline() + 3, m_layout.rowHeight() - amplitude - 0.5);
    const PainterState state(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(misspellingColor, 1));
    for (const TextRange word : looks.misspellings(row.seen)) {
        for (const Span span : m_layout.spansOf(row.position, word, row.visible)) {
            QPolygonF wave;
            for (double x = span.left; x <= span.right; x += step) {
                wave << QPointF(m_port.left() + x, bottom + (wave.size() % 2 == 0 ? amplitude : -amplitude));
            }
            painter.drawPolyline(wave);
        }
    }
}

void TextViewPainter::paintUnsavable(QPainter &painter, const Row &row)
{
    if (!looks.unsavable) {
        return;
    }
    constexpr double thickness = 2;
    QColor ground = unsavableColor;
    ground.setAlphaF(0.18F);
    const double bottom = std::min(m_layout.baseline() + 2, m_layout.rowHeight() - thickness);
    for (const TextRange character : looks.unsavable(row.seen)) {
        for (const Span span : m_layout.spansOf(row.position, character, row.visible)) {
            painter.fillRect(box(row, span), ground);
            painter.fillRect(QRectF(m_port.left() + span.left, row.top + bottom, span.right - span.left, thickness), unsavableColor);
        }
    }
}

void TextViewPainter::paintSelections(QPainter &painter, const Row &row, const Selections &selections)
{
    const TextRange seen = selections.isSingle() ? row.units : row.seen;
    for (size_t i = selections.firstReaching(seen.location); i < selections.count(); ++i) {
        const TextRange selected = selections[i].range();
        if (selected.location > seen.end()) {
            break;
        }
        paintSelection(painter, row, selected);
    }
}

void TextViewPainter::paintOccurrences(QPainter &painter, const Row &row)
{
    if (!looks.occurrences) {
        return;
    }
    QColor ground = looks.colors.selection;
    ground.setAlphaF(0.55F);
    for (const TextRange word : looks.occurrences(row.seen)) {
        for (const Span span : m_layout.spansOf(row.position, word, row.visible)) {
            if (invertsSelected()) {
                paintFrame(painter, box(row, span));
            } else {
                painter.fillRect(box(row, span), ground);
            }
        }
    }
}

void TextViewPainter::paintFrame(QPainter &painter, const QRectF &rect)
{
    const PainterState state(painter);
    painter.setPen(QPen(looks.colors.text, 0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect.adjusted(0, 0, -1, -1));
}

void TextViewPainter::paintBrackets(QPainter &painter, const Row &row)
{
    if (!looks.brackets) {
        return;
    }
    for (const TextRange bracket : looks.brackets(row.units)) {
        if (!bracket.intersected(row.units).isEmpty()) {
            for (const Span span : m_layout.spansOf(row.position, bracket, row.visible)) {
                if (!invertsSelected()) {
                    painter.fillRect(box(row, span), looks.colors.selection);
                }
                paintFrame(painter, box(row, span));
            }
        }
    }
}

void TextViewPainter::paintSelection(QPainter &painter, const Row &row, TextRange selected)
{
    if (selected.isEmpty()) {
        return;
    }
    const TextRange units = row.units;
    for (const Span span : m_layout.spansOf(row.position, selected, row.visible)) {
        painter.fillRect(box(row, span), looks.colors.selection);
    }
    // A selected line break shows as a stub behind the text, or an empty line would look unselected.
    const bool hasBreak = selected.location <= units.end() && selected.end() > units.end() && m_layout.endsLine(row.position);
    if (hasBreak) {
        const double end = m_layout.widthOf(row.position);
        painter.fillRect(box(row, {end, end + m_layout.cellWidth() / 2}), looks.colors.selection);
    }
}

void TextViewPainter::paintInvisibles(QPainter &painter, const Row &row, const Rope &text)
{
    painter.setPen(looks.colors.invisibles);
    const double left = m_port.left();
    const double baseline = row.top + m_layout.baseline();
    m_layout.forEachLayout(row.position, row.visible, [&](const SegmentLayout &shown, int inLayout, double x) {
        const TextRange units = m_layout.wraps() ? shown.rowRange(inLayout) : shown.range();
        RopeCursor cursor(text);
        for (qsizetype offset = units.location; offset < units.end(); ++offset) {
            const char16_t unit = cursor.at(offset);
            if (unit == u' ' || unit == u'\t') {
                // Right to left the near edge of a blank is its right one, and what follows may be in sight again.
                double at = x + shown.xOf(inLayout, offset);
                if (shown.mixesDirections()) {
                    at = std::min(at, x + shown.xBehind(inLayout, offset));
                } else if (at > row.visible.right) {
                    break;
                }
                painter.drawText(QPointF(left + at, baseline), unit == u' ' ? QStringLiteral("\u00B7") : QStringLiteral("\u2192"));
            }
        }
    });
    const TextRange units = row.units;
    if (m_layout.endsLine(row.position) && units.end() < text.length()) {
        const double end = m_layout.widthOf(row.position);
        if (end <= row.visible.right) {
            painter.drawText(QPointF(left + end, baseline), QStringLiteral("\u00AC"));
        }
    }
}

void TextViewPainter::paintText(QPainter &painter, const Row &row, const Selections &selections)
{
    painter.setPen(looks.colors.text);
    const auto selectedIn = [&](TextRange units) {
        std::vector<TextRange> recolored;
        if (looks.colors.selectedText.isValid()) {
            for (size_t i = selections.firstReaching(units.location); i < selections.count(); ++i) {
                const TextRange part = selections[i].range().intersected(units);
                if (selections[i].range().location > units.end()) {
                    break;
                }
                if (!part.isEmpty()) {
                    recolored.push_back(part);
                }
            }
        }
        return recolored;
    };
    m_layout.forEachLayout(row.position, row.visible, [&](const SegmentLayout &shown, int inLayout, double x) {
        const double left = m_port.left() + x;
        if (const auto recolored = selectedIn(shown.range()); !recolored.empty()) {
            shown.drawRow(painter, inLayout, left, row.top, recolored, looks.colors.selectedText);
        } else {
            shown.drawRow(painter, inLayout, left, row.top);
        }
    });
}

void TextViewPainter::paintRowBorder(QPainter &painter, QRectF caretRow)
{
    if (!caretRow.isEmpty() && looks.colors.currentLineBorder.isValid()) {
        painter.fillRect(QRectF(caretRow.topLeft(), QSizeF(caretRow.width(), 1)), looks.colors.currentLineBorder);
        painter.fillRect(QRectF(caretRow.left(), caretRow.bottom() - 1, caretRow.width(), 1), looks.colors.currentLineBorder);
    }
}

void TextViewPainter::paintDropCaret(QPainter &painter, qsizetype offset)
{
    const RowPosition row = m_layout.rowOf(offset);
    if (const auto top = m_port.topOf(row)) {
        painter.fillRect(QRectF(std::floor(m_port.left() + m_layout.xOf(row, offset)), *top, 2, m_layout.rowHeight()), looks.colors.caret);
    }
}

void TextViewPainter::paintCaret(QPainter &painter, QRectF caret)
{
    QColor color = looks.colors.caret;
    if (looks.caretShape == TextLooks::CaretShape::block) {
        color.setAlphaF(blockCaretAlpha);
    } else if (looks.caretShape == TextLooks::CaretShape::underline) {
        caret.setTop(caret.bottom() - 2);
    }
    painter.fillRect(caret, color);
}
