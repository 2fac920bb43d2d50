// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/WindowAccessible.h"

#include "UI/MainWindowController.h"
#include "UI/ToolbarStrip.h"

#include <QMenuBar>

namespace {

QAccessibleInterface *makeAccessible(const QString & /*className*/, QObject *object)
{
    if (auto *window = qobject_cast<MainWindowController *>(object)) {
        return new WindowAccessible(*window);
    }
    auto *strip = qobject_cast<ToolbarStrip *>(object);
    return strip ? new ToolbarAccessible(*strip) : nullptr;
}

} // namespace

void WindowAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    Q_UNUSED(installed)
}

WindowAccessible::WindowAccessible(MainWindowController &window) : QAccessibleWidget(&window, QAccessible::Window) {}

QAccessibleInterface *WindowAccessible::toolbar() const
{
    const auto *menus = qobject_cast<QMenuBar *>(static_cast<QMainWindow *>(widget())->menuWidget());
    QWidget *corner = menus ? menus->cornerWidget() : nullptr;
    return corner ? QAccessible::queryAccessibleInterface(corner) : nullptr;
}

int WindowAccessible::childCount() const
{
    return QAccessibleWidget::childCount() + (toolbar() ? 1 : 0);
}

QAccessibleInterface *WindowAccessible::child(int index) const
{
    QAccessibleInterface *first = toolbar();
    if (!first) {
        return QAccessibleWidget::child(index);
    }
    return index == 0 ? first : QAccessibleWidget::child(index - 1);
}

int WindowAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    const QAccessibleInterface *first = toolbar();
    if (first && child == first) {
        return 0;
    }
    const int index = QAccessibleWidget::indexOfChild(child);
    return first && index >= 0 ? index + 1 : index;
}

ToolbarAccessible::ToolbarAccessible(ToolbarStrip &strip) : QAccessibleWidget(&strip, QAccessible::ToolBar) {}

bool ToolbarAccessible::isBesideMenus() const
{
    return qobject_cast<QMenuBar *>(widget()->parentWidget());
}

QAccessible::Role ToolbarAccessible::role() const
{
    return isBesideMenus() ? QAccessible::ToolBar : QAccessible::Client;
}

QAccessibleInterface *ToolbarAccessible::parent() const
{
    return isBesideMenus() ? QAccessible::queryAccessibleInterface(widget()->window()) : QAccessibleWidget::parent();
}
