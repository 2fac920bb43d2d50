// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/GroupsDialog.h"

#include "Base/Translation.h"
#include "Widgets/DialogGrid.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <memory>
#include <span>

namespace {

// Logical pixels.
constexpr int columnSpacing = 36;
constexpr int detailSpacing = 18;
constexpr int lineSpacing = 3;
constexpr int groupSpacing = 12;
constexpr size_t mostColumns = 3;
/// For the button, the frames of windows and the panels of desktops.
constexpr QSize roomAround(64, 140);

using Groups = std::span<const Alert::Group>;

QLabel *label(const QString &text, QWidget *parent)
{
    auto *made = new QLabel(text, parent);
    made->setTextFormat(Qt::PlainText);
    return made;
}

/// As many columns as `count`, or fewer, none higher than it must be.
std::vector<Groups> columnsOf(Groups groups, size_t count)
{
    for (size_t height = 1;; ++height) {
        std::vector<Groups> columns;
        size_t start = 0;
        size_t lines = 0;
        for (size_t end = 0; end < groups.size(); ++end) {
            // The title, and what sets the group apart.
            const size_t added = groups[end].lines.size() + 2;
            if (lines + added > height && end > start) {
                columns.push_back(groups.subspan(start, end - start));
                start = end;
                lines = 0;
            }
            lines += added;
        }
        columns.push_back(groups.subspan(start));
        if (columns.size() <= count) {
            return columns;
        }
    }
}

enum class LongLines { whole, wrapped };

QWidget *column(Groups groups, LongLines longLines, QWidget *parent)
{
    auto *made = new QWidget(parent);
    auto *grid = new QGridLayout(made);
    grid->setContentsMargins({});
    grid->setHorizontalSpacing(detailSpacing);
    grid->setVerticalSpacing(lineSpacing);
    grid->setColumnStretch(0, 1);
    for (const Alert::Group &group : groups) {
        int row = grid->rowCount();
        QLabel *title = label(group.title, made);
        QFont bold = title->font();
        bold.setBold(true);
        title->setFont(bold);
        title->setContentsMargins(0, &group == &groups.front() ? 0 : groupSpacing, 0, 0);
        grid->addWidget(title, row, 0, 1, 2);
        for (const Alert::Group::Line &line : group.lines) {
            ++row;
            QLabel *text = label(line.text, made);
            text->setWordWrap(longLines == LongLines::wrapped);
            grid->addWidget(text, row, 0);
            grid->addWidget(label(line.detail, made), row, 1, Qt::AlignRight | Qt::AlignTop);
        }
    }
    grid->setRowStretch(grid->rowCount(), 1);
    return made;
}

std::unique_ptr<QWidget> content(const std::vector<Groups> &columns, LongLines longLines = LongLines::whole)
{
    auto made = std::make_unique<QWidget>();
    auto *row = new QHBoxLayout(made.get());
    // Apart from the scroll bar.
    row->setContentsMargins(0, 0, DialogGrid::rowSpacing, 0);
    row->setSpacing(columnSpacing);
    for (const Groups groups : columns) {
        row->addWidget(column(groups, longLines, made.get()), 1);
    }
    return made;
}

/// In the fewest columns that are not too high, but in no more than are not too wide.
std::unique_ptr<QWidget> content(Groups groups, QSize room)
{
    std::unique_ptr<QWidget> made = content(columnsOf(groups, 1));
    if (made->sizeHint().width() > room.width()) {
        return content(columnsOf(groups, 1), LongLines::wrapped);
    }
    for (size_t count = 2; count <= mostColumns && made->sizeHint().height() > room.height(); ++count) {
        std::unique_ptr<QWidget> wider = content(columnsOf(groups, count));
        if (wider->sizeHint().width() > room.width()) {
            break;
        }
        made = std::move(wider);
    }
    return made;
}

} // namespace

GroupsDialog::GroupsDialog(const Alert &alert, QWidget *window) : QDialog(window)
{
    setWindowTitle(alert.messageText);
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *buttons = new QDialogButtonBox;
    QPushButton *ok = buttons->addButton(localized(u"OK"), QDialogButtonBox::AcceptRole);
    ok->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto *stack = new QVBoxLayout(this);
    DialogGrid::apply(*stack);
    stack->addWidget(area, 1);
    stack->addSpacing(DialogGrid::groupSpacing);
    stack->addWidget(buttons);
    ok->setFocus();

    QWidget *lines = content(alert.groups, screen()->availableSize() - roomAround).release();
    area->setWidget(lines);
    // Else they have a ground of their own.
    lines->setAutoFillBackground(false);
    area->viewport()->setAutoFillBackground(false);
    const QSize wanted = lines->sizeHint();
    area->setMinimumWidth(
        std::min(wanted.width() + area->verticalScrollBar()->sizeHint().width(), screen()->availableSize().width() - roomAround.width()));
    resize(sizeHint().width(), std::min(wanted.height(), screen()->availableSize().height() - roomAround.height()) + sizeHint().height() -
                                   area->sizeHint().height());
}
