// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/DialogGrid.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QIcon>

using namespace Qt::StringLiterals;

void DialogGrid::apply(QLayout &layout)
{
    layout.setContentsMargins(margin, margin, margin, margin);
    if (auto *grid = qobject_cast<QGridLayout *>(&layout)) {
        grid->setHorizontalSpacing(columnSpacing);
        grid->setVerticalSpacing(rowSpacing);
    } else {
        layout.setSpacing(rowSpacing);
    }
}

void DialogGrid::apply(QDialogButtonBox &buttons)
{
    if (!QIcon::hasThemeIcon(u"dialog-ok"_s)) {
        for (QAbstractButton *button : buttons.buttons()) {
            button->setIcon({});
        }
    }
}
