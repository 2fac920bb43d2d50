// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextViewCaret.h"

#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <cmath>

RowPosition TextViewCaret::row()
{
    LayoutManager &layout = m_view.m_layout;
    return m_view.isComposing() ? layout.rowInPreedit(m_view.m_input.caret()) : layout.rowOf(shownOffset(), place().affinity);
}

double TextViewCaret::x(const RowPosition &row)
{
    LayoutManager &layout = m_view.m_layout;
    const double beyond = double(selections.primary().cellsBehind) * layout.cellWidth();
    return m_view.isComposing() ? layout.xInPreedit(row, m_view.m_input.caret()) : layout.xOf(row, shownOffset()) + beyond;
}

QRectF TextViewCaret::box()
{
    const RowPosition row = this->row();
    const auto top = m_view.m_port.topOf(row);
    return top ? boxAt(row, *top, x(row), shownOffset()) : QRectF();
}

QRectF TextViewCaret::boxAt(const RowPosition &row, double top, double x, qsizetype offset)
{
    LayoutManager &layout = m_view.m_layout;
    const double dpr = m_view.devicePixelRatioF();
    const double left = std::floor((m_view.m_port.left() + x) * dpr) / dpr;
    double width = std::max(1.0, std::round(1.4 * dpr) / dpr);
    if (m_view.m_painter.looks.caretShape != TextLooks::CaretShape::bar) {
        const qsizetype next = TextBoundaries::nextGrapheme(m_view.m_storage.text(), offset);
        const bool isInRow = next <= layout.rangeOf(row).end();
        width = isInRow && next > offset ? std::abs(layout.xOf(row, next) - x) : layout.cellWidth();
    }
    // Blanks that hang over the edge of a wrapped row do not take the caret with them.
    const double rightmost = layout.wraps() ? std::max(0.0, m_view.viewport()->width() - width) : left;
    return {std::min(left, rightmost), top, width, layout.rowHeight()};
}

std::vector<QRectF> TextViewCaret::otherBoxes()
{
    std::vector<QRectF> boxes;
    if (selections.isSingle() || shown) {
        return boxes;
    }
    LayoutManager &layout = m_view.m_layout;
    const double left = m_view.m_port.left();
    const QSize size = m_view.viewport()->size();
    for (const Viewport::VisibleRow &row : m_view.m_port.rows(0, size.height())) {
        const TextRange seen = m_view.m_painter.seenOf(row, {-left, size.width() - left});
        const TextRange units = layout.rangeOf(row.row);
        for (size_t i = selections.firstReaching(seen.location); i < selections.count(); ++i) {
            const CaretSelection &one = selections[i];
            if (one.range().location > seen.end()) {
                break;
            }
            // Between two rows of a line it belongs to one of them.
            const qsizetype at = one.caret.offset;
            const bool isInOther = one.caret.affinity == Affinity::upstream ? at == units.location && !layout.startsLine(row.row)
                                                                            : at == units.end() && !layout.endsLine(row.row);
            if (i != selections.primaryIndex() && seen.location <= at && at <= seen.end() && !isInOther) {
                boxes.push_back(boxAt(row.row, row.top, layout.xOf(row.row, at) + double(one.cellsBehind) * layout.cellWidth(), at));
            }
        }
    }
    return boxes;
}

QRectF TextViewCaret::rowBox()
{
    if (!m_view.colors().currentLine.isValid()) {
        return {};
    }
    // Line numbers go by the start of a selection too.
    const TextSelection selection = this->selection();
    const auto top = m_view.m_port.topOf(selection.isEmpty() ? row() : m_view.m_layout.rowOf(selection.range().location));
    return top ? QRectF(0, *top, m_view.viewport()->width(), m_view.m_layout.rowHeight()) : QRectF();
}

void TextViewCaret::restartBlinking()
{
    if (m_view.hasFocus() && m_view.m_painter.looks.caretShape != TextLooks::CaretShape::block) {
        blinking.restart(m_view.m_services.scheduler, [this] { repaint(); });
    } else {
        blinking.rest();
    }
}

bool TextViewCaret::isToBeSeen() const
{
    return m_view.hasFocus() && blinking.isOn() && (!m_view.isComposing() || m_view.m_input.isCaretShown());
}

void TextViewCaret::repaint()
{
    m_view.viewport()->update(box().toAlignedRect().adjusted(-1, 0, 1, 0));
    for (const QRectF &other : otherBoxes()) {
        m_view.viewport()->update(other.toAlignedRect().adjusted(-1, 0, 1, 0));
    }
    m_view.m_scroller.noticeShifts();
}
