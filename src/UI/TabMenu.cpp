// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabMenu.h"

#include "Base/Translation.h"
#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Widgets/Mnemonics.h"

#include <QMenu>

void showTabMenu(QWidget &parent, Responder &responder, const TabPlace &tab, QPoint globalPosition)
{
    auto *menu = new QMenu(&parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QStringList titles;
    for (const MenuRow &row : Actions::Menus::tab) {
        if (row.action) {
            titles << localized(row.action->title);
        }
    }
    QString taken;
    titles = withMnemonics(titles, taken);
    const QVariant represented = QVariant::fromValue(tab);
    for (const MenuRow &row : Actions::Menus::tab) {
        if (!row.action) {
            menu->addSeparator();
            continue;
        }
        const Action &action = *row.action;
        QAction *item =
            menu->addAction(titles.takeFirst(), &parent, [&responder, &action, represented] { responder.perform(action, represented); });
        item->setEnabled(responder.state(action, represented).isEnabled);
        if (const QList<QKeySequence> keys = keySequences(action); !keys.isEmpty()) {
            // Only shown: of a menu, which never has the focus.
            item->setShortcutContext(Qt::WidgetShortcut);
            item->setShortcut(keys.first());
            item->setShortcutVisibleInContextMenu(true);
        }
    }
    menu->popup(globalPosition);
}
