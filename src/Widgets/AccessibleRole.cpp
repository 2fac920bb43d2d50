// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/AccessibleRole.h"

#include <QAccessibleWidget>
#include <QLabel>
#include <QVariant>

namespace {

constexpr const char *roleProperty = "accessibleRole";

class RoleAccessible final : public QAccessibleWidget {
public:
    RoleAccessible(QWidget &widget, QAccessible::Role role) : QAccessibleWidget(&widget, role) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        QString text = QAccessibleWidget::text(kind);
        if (const auto *label = qobject_cast<QLabel *>(widget()); label && kind == QAccessible::Name && text.isEmpty()) {
            text = label->text();
        }
        return text;
    }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        // The one that has the focus in its stead says so itself.
        state.focused = state.focused && !widget()->focusProxy();
        return state;
    }
};

QAccessibleInterface *makeAccessible(const QString & /*className*/, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    const QVariant role = widget ? widget->property(roleProperty) : QVariant();
    return role.isValid() ? new RoleAccessible(*widget, static_cast<QAccessible::Role>(role.toInt())) : nullptr;
}

} // namespace

void setAccessibleRole(QWidget &widget, QAccessible::Role role)
{
    static const bool installed = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    Q_UNUSED(installed)
    widget.setProperty(roleProperty, static_cast<int>(role));
}

void becomeNotice(QWidget &widget)
{
    setAccessibleRole(widget, QAccessible::Notification);
}

// The bridge to the bus drops alerts; that a notification is shown is what readers wait for.
void announce(QWidget &notice)
{
    QAccessibleEvent shown(&notice, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&shown);
}
