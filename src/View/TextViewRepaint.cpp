// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/TextViewRepaint.h"

#include "View/TextView.h"

#include <cmath>

TextRange TextViewRepaint::seen() const
{
    Viewport &port = m_view.textViewport();
    const auto last = m_view.layoutManager().rangeOf(port.rowAt(m_view.viewport()->height()).row);
    return TextRange::between(port.anchor(), last.end());
}

void TextViewRepaint::rows(TextRange range)
{
    LayoutManager &layout = m_view.layoutManager();
    Viewport &port = m_view.textViewport();
    QWidget &shown = *m_view.viewport();
    const Viewport::VisibleRow end = port.rowAt(shown.height());
    const auto first = port.topOf(layout.rowOf(range.location));
    const auto last = port.topOf(layout.rowOf(std::min(range.end(), m_view.storage().length())));
    if (!first && !last && range.location > layout.rangeOf(end.row).end()) {
        return;
    }
    const double top = first.value_or(0);
    const double bottom = last ? *last + layout.rowHeight() : shown.height();
    shown.update(QRectF(0, top, shown.width(), bottom - top).toAlignedRect());
}

void TextViewRepaint::change(const TextChange &change)
{
    LayoutManager &layout = m_view.layoutManager();
    QWidget &shown = *m_view.viewport();
    const TextRange first = change.edits.newRange(0);
    if (change.edits.count() == 1 && !layout.wraps() && change.isWithinLines()) {
        rows(first);
        return;
    }
    const auto top = m_view.textViewport().topOf(layout.rowOf(change.after.lineStart(change.after.lineAt(first.location))));
    shown.update(0, int(std::floor(top.value_or(0))), shown.width(), shown.height());
}

void TextViewRepaint::selection(TextSelection before)
{
    const TextSelection now = m_view.selection();
    if (before.isEmpty() && now.isEmpty()) {
        return;
    }
    const auto changed = [this](qsizetype a, qsizetype b) {
        if (a != b) {
            rows(TextRange::spanning(a, b).clampedTo(m_view.storage().length()));
        }
    };
    if (before.anchor == now.anchor) {
        changed(before.caret, now.caret);
    } else {
        changed(before.anchor, before.caret);
        changed(now.anchor, now.caret);
    }
}

void TextViewRepaint::ranges(const std::vector<TextRange> &ranges)
{
    const TextRange visible = seen();
    for (const TextRange range : ranges) {
        if (range.touches(visible)) {
            rows(range.intersected(visible));
        }
    }
}
