// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/StatisticsPopUp.h"

#include "Base/Translation.h"
#include "Widgets/AccessibleRole.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace {

// Logical pixels.
constexpr int edge = 12;
constexpr int columnSpacing = 24;
constexpr int rowSpacing = 4;
constexpr int gap = 4;

enum Column { titleColumn, textColumn, selectionColumn };

/// As one would read the table out.
QString spoken(const TextStatistics &statistics)
{
    QStringList lines;
    for (const TextStatistics::Row &row : statistics.rows()) {
        lines << (row.selection.isEmpty() ? u"%1: %2"_s.arg(row.title, row.text)
                                          : u"%1: %2, %3: %4"_s.arg(row.title, row.text, localized(u"Selection"), row.selection));
    }
    return lines.join(u'\n');
}

} // namespace

StatisticsPopUp::StatisticsPopUp(const TextStatistics &statistics, QWidget *parent)
    : QFrame(parent, Qt::Popup), m_grid(new QGridLayout(this))
{
    becomeNotice(*this);
    setAttribute(Qt::WA_DeleteOnClose);
    setFrameShape(QFrame::StyledPanel);
    // Below a bar that has the colours of the text's theme.
    setPalette(QGuiApplication::palette());
    m_grid->setContentsMargins(edge, edge, edge, edge);
    m_grid->setHorizontalSpacing(columnSpacing);
    m_grid->setVerticalSpacing(rowSpacing);
    setStatistics(statistics);
}

void StatisticsPopUp::setStatistics(const TextStatistics &statistics)
{
    setAccessibleName(spoken(statistics));
    setCell(0, textColumn, localized(u"Text"));
    setCell(0, selectionColumn, statistics.selection ? localized(u"Selection") : QString());
    int row = 0;
    for (const TextStatistics::Row &cells : statistics.rows()) {
        setCell(++row, titleColumn, cells.title);
        setCell(row, textColumn, cells.text);
        setCell(row, selectionColumn, cells.selection);
    }
}

void StatisticsPopUp::setCell(int row, int column, const QString &text)
{
    QLayoutItem *item = m_grid->itemAtPosition(row, column);
    auto *label = item ? static_cast<QLabel *>(item->widget()) : nullptr;
    if (!label) {
        label = new QLabel(this);
        label->setTextFormat(Qt::PlainText);
        QFont font = label->font();
        font.setBold(row == 0);
        label->setFont(font);
        m_grid->addWidget(label, row, column, column == titleColumn ? Qt::AlignLeft : Qt::AlignRight);
    }
    label->setText(text);
    label->setHidden(text.isEmpty());
}

/// Where the screen has room for it.
void StatisticsPopUp::showAbove(const QWidget &button)
{
    adjustSize();
    const QRect room = button.screen()->availableGeometry();
    const QPoint corner = button.mapToGlobal(QPoint(button.width() - width(), -height() - gap));
    move(qBound(room.left(), corner.x(), room.right() - width()), qMax(room.top(), corner.y()));
    show();
}

void StatisticsPopUp::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    close();
}
