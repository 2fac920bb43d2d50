// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SubstitutionPanel.h"

#include "Base/Translation.h"
#include "Desktop/PaletteBlend.h"
#include "View/FloatingNote.h"
#include "View/TextView.h"
#include "Vim/VimBuffer.h"
#include "Vim/VimSubstituteJob.h"
#include "Widgets/AccessibleRole.h"

#include <QEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Around the panel, and within it.
constexpr int margin = 4;
constexpr int padding = 8;
constexpr int largestShare = 3;
/// Of the text's colour in that of the numbers.
constexpr double numberShare = 0.65;
/// Units of a line: before its first hit, and behind its last.
constexpr qsizetype leading = 60;
constexpr qsizetype trailing = 200;

/// In one row.
QString flat(QString text)
{
    for (QChar &unit : text) {
        unit = isBreak(unit.unicode()) ? QChar(u'↵') : unit == u'\t' ? QChar(u' ') : unit;
    }
    return text;
}

} // namespace

SubstitutionPanel::SubstitutionPanel(TextView &view) : QWidget(view.viewport()), m_view(view)
{
    becomeNotice(*this);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    view.viewport()->installEventFilter(this);
    hide();
}

std::vector<SubstitutionPanel::Row> SubstitutionPanel::rows(const Rope &text, const std::vector<VimSubstituteHit> &hits, size_t most)
{
    std::vector<Row> rows;
    VimBuffer buffer(text);
    for (size_t index = 0; index < hits.size() && rows.size() < most;) {
        const qsizetype line = text.lineAt(hits[index].range.location);
        const qsizetype start = text.lineStart(line);
        qsizetype place = std::max(start, hits[index].range.location - leading);
        Row row{.number = numberOfLine(line), .text = place > start ? u"…"_s : QString(), .replaced = {}};
        for (; index < hits.size() && text.lineAt(hits[index].range.location) == line; ++index) {
            const VimSubstituteHit &hit = hits[index];
            if (row.text.size() > 2 * trailing) {
                continue;
            }
            row.text += flat(text.toString(TextRange::between(place, std::max(place, hit.range.location))));
            row.replaced.push_back({row.text.size(), hit.text.size()});
            row.text += flat(hit.text);
            place = hit.range.end();
        }
        const qsizetype end = std::max(place, buffer.lineContentEnd(place));
        row.text += flat(text.toString(TextRange::between(place, std::min(end, place + trailing))));
        rows.push_back(std::move(row));
    }
    return rows;
}

int SubstitutionPanel::rowHeight() const
{
    return QFontMetrics(m_view.textFont()).height() + 2;
}

size_t SubstitutionPanel::mostRows() const
{
    return size_t(std::max(1, (m_view.viewport()->height() / largestShare - 2 * padding) / rowHeight()));
}

void SubstitutionPanel::show(std::vector<Row> rows, QRect hit)
{
    m_rows = std::move(rows);
    m_hit = hit;
    QStringList said;
    for (const Row &row : m_rows) {
        said << u"%1 %2"_s.arg(qsizetype(row.number)).arg(row.text);
    }
    setAccessibleName(formatted(localized(u"Lines would become: %@"), said.join(u'\n')));
    setVisible(!m_rows.empty());
    if (isVisible()) {
        place();
        raise();
        update();
    }
}

void SubstitutionPanel::place()
{
    const QRect room = m_view.viewport()->rect().adjusted(margin, margin, -margin, -margin);
    const int height = int(std::min(m_rows.size(), mostRows())) * rowHeight() + 2 * padding;
    QRect place(room.left(), room.bottom() - height + 1, room.width(), height);
    if (place.intersects(m_hit)) {
        place.moveTop(room.top());
    }
    setGeometry(place);
}

bool SubstitutionPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize && isVisible()) {
        place();
    }
    return QWidget::eventFilter(watched, event);
}

void SubstitutionPanel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    const TextLooks::Colors &colors = m_view.colors();
    paintFloatingNote(painter, rect(), colors);
    painter.setFont(m_view.textFont());
    const QFontMetrics metrics(m_view.textFont());
    int numberWidth = 0;
    for (const Row &row : m_rows) {
        numberWidth = std::max(numberWidth, metrics.horizontalAdvance(QString::number(qsizetype(row.number))));
    }
    const int left = padding + numberWidth + 2 * metrics.averageCharWidth();
    int top = padding;
    for (const Row &row : m_rows) {
        painter.setPen(blended(colors.background, colors.text, numberShare));
        painter.setClipping(false);
        painter.drawText(QRect(padding, top, numberWidth, rowHeight()), Qt::AlignRight | Qt::AlignVCenter,
                         QString::number(qsizetype(row.number)));
        QTextLayout layout(row.text, m_view.textFont());
        QList<QTextLayout::FormatRange> formats;
        for (const TextRange range : row.replaced) {
            QTextCharFormat format;
            format.setBackground(colors.mark);
            formats << QTextLayout::FormatRange{int(range.location), int(range.length), format};
        }
        layout.setFormats(formats);
        layout.beginLayout();
        layout.createLine().setNumColumns(int(row.text.size()));
        layout.endLayout();
        painter.setPen(colors.text);
        painter.setClipRect(QRect(left, top, width() - left - padding, rowHeight()));
        layout.draw(&painter, QPointF(left, top + 1));
        top += rowHeight();
    }
}
