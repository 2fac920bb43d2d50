// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabAccessible.h"

#include "UI/TabItemView.h"

namespace {

QAccessibleInterface *makeAccessible(const QString & /*className*/, QObject *object)
{
    if (auto *item = qobject_cast<TabItemView *>(object)) {
        return new TabItemAccessible(*item);
    }
    if (auto *strip = qobject_cast<TabStrip *>(object)) {
        return new QAccessibleWidget(strip, QAccessible::PageTabList);
    }
    return nullptr;
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
    return {pressAction(), setFocusAction()};
}

void TabItemAccessible::doAction(const QString &name)
{
    if (name != pressAction()) {
        QAccessibleWidget::doAction(name);
    } else if (item().onSelect) {
        item().onSelect();
    }
}
