// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/KeyboardAccess.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QWidget>

namespace {

void requestContextMenu(QWidget &focused, Qt::KeyboardModifiers modifiers)
{
    const QPoint place = focused.inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent request(QContextMenuEvent::Keyboard, place, focused.mapToGlobal(place), modifiers);
    QCoreApplication::sendEvent(&focused, &request);
}

} // namespace

KeyboardAccess::KeyboardAccess(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool KeyboardAccess::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        m_isByKey = false;
        return false;
    case QEvent::KeyPress: {
        m_isByKey = true;
        const auto &key = static_cast<const QKeyEvent &>(*event);
        if (key.key() != Qt::Key_F10 || key.modifiers() != Qt::ShiftModifier || watched != QApplication::focusWidget() ||
            QApplication::activePopupWidget()) {
            return false;
        }
        requestContextMenu(*QApplication::focusWidget(), key.modifiers());
        return true;
    }
    case QEvent::Show:
        if (auto *window = m_isByKey && watched->isWidgetType() ? static_cast<QWidget *>(watched) : nullptr; window && window->isWindow()) {
            // Until something is clicked in it.
            window->setAttribute(Qt::WA_KeyboardFocusChange);
        }
        return false;
    default:
        return false;
    }
}
