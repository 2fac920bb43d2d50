// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabAccessible.h"

#include "UI/TabItemView.h"

namespace {

QAccessibleInterface *makeAccessible(const QString & /*className*/, QObject *object)
{
    auto *item = qobject_cast<TabItemView *>(object);
    return item ? new TabItemAccessible(*item) : nullptr;
}

} // namespace

void TabItemAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    Q_UNUSED(installed)
}

TabItemAccessible::TabItemAccessible(TabItemView &item) : QAccessibleWidget(&item, QAccessible::PageTab) {}

TabItemView &TabItemAccessible::item() const
{
    return *static_cast<TabItemView *>(widget());
}

QAccessible::State TabItemAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.focusable = true;
    state.selectable = true;
    state.selected = item().isSelected();
    return state;
}

QStringList TabItemAccessible::actionNames() const
{
    return {pressAction(), showMenuAction(), setFocusAction()};
}

void TabItemAccessible::doAction(const QString &name)
{
    if (name == showMenuAction() && item().onContextMenu) {
        item().onContextMenu(item().mapToGlobal(item().rect().bottomLeft()));
    } else if (name == pressAction() && item().onSelect) {
        item().onSelect();
    } else {
        QAccessibleWidget::doAction(name);
    }
}
