// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Diff/DiffTextView.h"

#include "Diff/DiffText.h"
#include "Text/TextStorage.h"

#include <QKeyEvent>
#include <QPainter>

namespace {

constexpr qsizetype mostRemembered = 4096;

/// 0 for keys that have nothing to do with changes.
int stepOf(const QKeyEvent &event)
{
    if (event.modifiers() != Qt::NoModifier) {
        return 0;
    }
    switch (event.key()) {
    case Qt::Key_N:
        return 1;
    case Qt::Key_P:
        return -1;
    default:
        return 0;
    }
}

} // namespace

DiffTextView::DiffTextView(TextStorage &storage, UndoManager &undoManager, Services services, const QFont &font, LineDiff::Side side,
                           QWidget *parent)
    : NumberedTextView(storage, undoManager, services, font, parent), m_side(side), m_theme(&Theme::light())
{
    setAccess(Access::readOnly);
}

void DiffTextView::setResult(Result result)
{
    m_result = std::move(result);
    m_emphasis.clear();
    const auto last = static_cast<LineNumber>(m_result ? m_result->lines(m_side).count() : 1);
    const auto numberOf = [side = m_side, shown = m_result](qsizetype row) -> std::optional<LineNumber> {
        if (!shown || row >= shown->rowCount()) {
            return std::nullopt;
        }
        const LineDiff::Row found = shown->row(row);
        return side == LineDiff::Side::left ? found.leftNumber : found.rightNumber;
    };
    ruler().setExplicitNumbers(LineNumberRulerView::Numbers{numberOf, last});
    viewport()->update();
}

void DiffTextView::applyTheme(const Theme &theme)
{
    m_theme = &theme;
    setTheme(theme, CurrentLine::plain);
}

double DiffTextView::topOfRow(qsizetype row)
{
    return textViewport().insets().vertical + double(row) * layoutManager().rowHeight();
}

qsizetype DiffTextView::topRow()
{
    return textViewport().topRow().line;
}

bool DiffTextView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && stepOf(static_cast<const QKeyEvent &>(*event)) != 0) {
        event->accept();
        return true;
    }
    return NumberedTextView::event(event);
}

void DiffTextView::keyPressEvent(QKeyEvent *event)
{
    if (const int step = stepOf(*event)) {
        emit changeWanted(step);
    } else {
        NumberedTextView::keyPressEvent(event);
    }
}

const std::vector<TextRange> &DiffTextView::emphasisOf(qsizetype row)
{
    auto found = m_emphasis.find(row);
    if (found == m_emphasis.end()) {
        if (m_emphasis.size() >= mostRemembered) {
            m_emphasis.clear();
        }
        found = m_emphasis.insert(row, DiffText::emphasis(*m_result, m_side, row));
    }
    return *found;
}

void DiffTextView::paintBehind(QPainter &painter, const Viewport::VisibleRow &row, Span visible)
{
    const qsizetype index = row.row.line;
    if (!m_result || index >= m_result->rowCount()) {
        return;
    }
    const double height = layoutManager().rowHeight();
    if (const auto color = DiffText::rowColor(*m_theme, m_result->runAt(index).kind, m_side)) {
        painter.fillRect(QRectF(0, row.top, viewport()->width(), height), QColor::fromRgb(*color));
    }
    const double left = textViewport().left();
    const qsizetype start = storage().text().lineStart(index);
    for (const TextRange changed : emphasisOf(index)) {
        for (const Span span : layoutManager().spansOf(row.row, {start + changed.location, changed.length}, visible)) {
            painter.fillRect(QRectF(left + span.left, row.top, span.right - span.left, height),
                             QColor::fromRgb(DiffText::emphasisColor(*m_theme, m_side)));
        }
    }
}
