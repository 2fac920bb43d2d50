// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMimeData>
#include <QWidget>

#include <optional>

/// The control below `parent` that has this text, tool tip or name for screen readers: one that is shown if there is one; null for none.
template<typename Control>
[[nodiscard]] Control *control(const QWidget &parent, const QString &title)
{
    Control *found = nullptr;
    for (Control *candidate : parent.findChildren<Control *>()) {
        const QString text = candidate->property("text").toString().remove(u'&');
        if (text == title || candidate->toolTip() == title || candidate->accessibleName() == title) {
            found = found && found->isVisible() ? found : candidate;
        }
    }
    return found;
}

/// What a menu shows when it is opened: "-" for a separator, "*" before what is checked, in parentheses what cannot be chosen.
[[nodiscard]] inline QStringList titlesOf(QMenu &menu)
{
    emit menu.aboutToShow();
    QStringList titles;
    for (const QAction *action : menu.actions()) {
        const QString title = action->isChecked() ? u'*' + action->text() : action->text();
        titles << (action->isSeparator() ? QStringLiteral("-") : action->isEnabled() ? title : u'(' + title + u')');
    }
    return titles;
}

/// Drags the data over a widget and drops them there; what becomes of them, nothing if they are not welcome.
[[nodiscard]] inline std::optional<Qt::DropAction> drop(QWidget &target, const QMimeData &data)
{
    const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter({5, 5}, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &enter);
    QDropEvent dropped({5, 5}, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &dropped);
    return enter.isAccepted() && dropped.isAccepted() ? std::optional(dropped.dropAction()) : std::nullopt;
}
