// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/CompletionPanel.h"

#include "Base/Translation.h"
#include "View/FloatingNote.h"
#include "View/TextView.h"
#include "Widgets/AccessibleRole.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace {

/// Around the words.
constexpr int padding = 4;
constexpr int inset = 6;
constexpr int fewestPixels = 60;
/// Beside rows of which not all are seen.
constexpr int thumbWidth = 3;

} // namespace

CompletionPanel::CompletionPanel(TextView &view) : QWidget(view.viewport()), m_view(view)
{
    becomeNotice(*this);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    view.installEventFilter(this);
    connect(&view, &TextView::visibleRowsChanged, this, [this] {
        if (isVisible() && !place()) {
            hide();
        }
    });
    hide();
}

void CompletionPanel::showOffer(const std::optional<VimOffer> &offer)
{
    if (!offer || offer->words.isEmpty() || !m_view.hasFocus()) {
        hide();
        return;
    }
    m_offer = *offer;
    const qsizetype rows = std::min(m_offer.words.size(), mostRows);
    const qsizetype chosen = m_offer.chosen.value_or(0);
    m_first = isVisible() ? m_first : chosen - rows / 2;
    m_first = std::clamp<qsizetype>(std::clamp(m_first, chosen - rows + 1, chosen), 0, m_offer.words.size() - rows);
    if (!place()) {
        hide();
        return;
    }
    if (m_offer.chosen) {
        setAccessibleName(formatted(localized(u"%@, %d of %d"), m_offer.words[chosen], chosen + 1, m_offer.words.size()));
    }
    show();
    raise();
    update();
    if (m_offer.chosen) {
        announce(*this);
    }
}

int CompletionPanel::rowHeight() const
{
    return QFontMetrics(m_view.textFont()).height() + 2;
}

bool CompletionPanel::place()
{
    const QRect room = m_view.viewport()->rect();
    const QFontMetrics metrics(m_view.textFont());
    const qsizetype rows = std::min(m_offer.words.size(), mostRows);
    int width = fewestPixels;
    for (qsizetype index = m_first; index < m_first + rows; ++index) {
        width = std::max(width, metrics.horizontalAdvance(m_offer.words[index]) + 2 * (padding + inset) + thumbWidth);
    }
    const QSize size(std::min(width, room.width()), int(rows) * rowHeight() + 2 * padding);
    if (!m_offer.place) {
        setGeometry(QRect(QPoint(0, std::max(room.height() - size.height(), 0)), size));
        return true;
    }
    LayoutManager &layout = m_view.layoutManager();
    if (*m_offer.place > m_view.storage().length()) {
        return false;
    }
    const RowPosition row = layout.rowOf(*m_offer.place);
    const auto top = m_view.textViewport().topOf(row);
    if (!top || *top < -layout.rowHeight() || *top > room.height()) {
        return false;
    }
    const int below = int(*top + layout.rowHeight()) + 1;
    const int above = int(*top) - size.height() - 1;
    // Where it cannot be whole, on the side that has more of it.
    const bool isBelow = below + size.height() <= room.height() || (above < 0 && room.height() - below >= *top);
    const int left = int(m_view.textViewport().left() + layout.xOf(row, *m_offer.place)) - padding - inset;
    setGeometry(QRect(QPoint(std::clamp(left, 0, std::max(room.width() - size.width(), 0)), isBelow ? below : above), size));
    return true;
}

bool CompletionPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut || event->type() == QEvent::Resize) {
        hide();
    }
    return QWidget::eventFilter(watched, event);
}

void CompletionPanel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    const TextLooks::Colors &colors = m_view.colors();
    paintFloatingNote(painter, rect(), colors);
    painter.setFont(m_view.textFont());
    const qsizetype rows = std::min(m_offer.words.size(), mostRows);
    const int height = rowHeight();
    for (qsizetype index = 0; index < rows; ++index) {
        const QRect row(padding, padding + int(index) * height, width() - 2 * padding, height);
        const bool isChosen = m_offer.chosen == m_first + index;
        if (isChosen) {
            painter.fillRect(row, colors.selection);
        }
        painter.setPen(isChosen && colors.selectedText.isValid() ? colors.selectedText : colors.text);
        const QRect words = row.adjusted(inset, 0, -inset, 0);
        painter.drawText(words, Qt::AlignVCenter | Qt::TextSingleLine,
                         painter.fontMetrics().elidedText(m_offer.words[m_first + index], Qt::ElideRight, words.width()));
    }
    if (rows < m_offer.words.size()) {
        const double all = double(m_offer.words.size());
        const double track = height * double(rows);
        const QRectF thumb(width() - padding + 0.5 - thumbWidth, padding + track * double(m_first) / all, thumbWidth,
                           std::max(track * double(rows) / all, 2.0 * thumbWidth));
        painter.fillRect(thumb, colors.invisibles);
    }
}
