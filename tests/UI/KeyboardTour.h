// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QTabBar>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

/// Goes through a window with nothing but the keyboard, and complains of every control that is not come to, of one that has no name or
/// only a vague role for screen readers, and of one that looks with the focus as it does without.
class KeyboardTour {
public:
    /// The window is the one that is active. `byOtherKeys` names controls that need no focus: a key or a menu does the same.
    explicit KeyboardTour(QWidget &window, QStringList byOtherKeys = {}) : m_window(window), m_byOtherKeys(std::move(byOtherKeys)) {}

    /// The names in the order in which they were come to.
    QStringList take()
    {
        // As after the Tab key, before which some styles do not show where the focus is.
        m_window.setAttribute(Qt::WA_KeyboardFocusChange);
        if (QWidget *first = m_window.focusWidget()) {
            first->setFocus(Qt::TabFocusReason);
            QCoreApplication::processEvents();
        }
        follow();
        for (int region = 0; region < 8; ++region) {
            press(Qt::Key_F6);
            follow();
        }
        for (QWidget *widget : m_window.findChildren<QWidget *>()) {
            if (isControl(*widget) && !m_byOtherKeys.contains(nameOf(*widget))) {
                EXPECT_TRUE(isVisited(widget)) << describe(*widget) << " is out of the keyboard's reach";
            }
        }
        QStringList names;
        std::ranges::transform(m_visited, std::back_inserter(names), [](const QWidget *widget) { return nameOf(*widget); });
        return names;
    }

    [[nodiscard]] static QString nameOf(const QWidget &widget)
    {
        return QAccessible::queryAccessibleInterface(const_cast<QWidget *>(&widget))->text(QAccessible::Name);
    }

private:
    [[nodiscard]] bool isControl(const QWidget &widget) const
    {
        const auto isOne = [](const QWidget *each, std::initializer_list<const char *> classes) {
            return std::ranges::any_of(classes, [each](const char *name) { return each->inherits(name); });
        };
        // What these are made of.
        const bool isPart = isOne(widget.parentWidget(), {"QLineEdit", "FindField", "QComboBox", "QAbstractSpinBox", "QTabBar"});
        const bool isUsable = widget.isVisible() && widget.isEnabled() && !widget.focusProxy() && widget.window() == &m_window;
        return isUsable && !isPart &&
               ((widget.focusPolicy() & Qt::TabFocus) ||
                isOne(&widget, {"QAbstractButton", "QLineEdit", "QComboBox", "QAbstractSpinBox", "QAbstractItemView", "QTabBar"}));
    }

    [[nodiscard]] static std::string describe(const QWidget &widget)
    {
        return std::string(widget.metaObject()->className()) + " “" + nameOf(widget).toStdString() + "” " +
               widget.objectName().toStdString();
    }

    [[nodiscard]] bool isVisited(const QWidget *widget) const { return std::ranges::find(m_visited, widget) != m_visited.end(); }

    void press(Qt::Key key)
    {
        QWidget *focused = m_window.focusWidget();
        QTest::keyClick(focused ? focused : &m_window, key);
        QCoreApplication::processEvents();
    }

    /// From where the focus is, on and on by Tab, and from each stop along its row by the arrow keys.
    void follow()
    {
        for (QWidget *stop = m_window.focusWidget(); stop && !isVisited(stop); stop = m_window.focusWidget()) {
            visit(*stop);
            const bool mayBeOfRow = !qobject_cast<QTabBar *>(stop) && !qobject_cast<QLineEdit *>(stop);
            for (QWidget *here = stop; mayBeOfRow;) {
                press(Qt::Key_Right);
                QWidget *next = m_window.focusWidget();
                if (next == here || !next || isVisited(next)) {
                    break;
                }
                visit(*next);
                here = next;
            }
            press(Qt::Key_Tab);
        }
    }

    void visit(QWidget &widget)
    {
        m_visited.push_back(&widget);
        const QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(&widget);
        EXPECT_FALSE(nameOf(widget).isEmpty()) << describe(widget) << " has no name";
        const bool isVague =
            reader->role() == QAccessible::NoRole || reader->role() == QAccessible::Client || reader->role() == QAccessible::Pane;
        EXPECT_FALSE(isVague) << describe(widget) << " is nothing in particular";
        EXPECT_TRUE(reader->state().focused) << describe(widget);

        EXPECT_TRUE(m_window.rect().intersects(placeOf(widget))) << describe(widget) << " is out of sight";
        // A default button looks the same without it until another one has it.
        if (m_before) {
            EXPECT_NE(m_lookBefore, lookOf(*m_before)) << describe(*m_before) << " does not show that it has the focus";
        }
        m_before = &widget;
        m_lookBefore = lookOf(widget);
    }

    [[nodiscard]] QRect placeOf(const QWidget &widget) const { return {widget.mapTo(&m_window, QPoint()), widget.size()}; }
    [[nodiscard]] QImage lookOf(const QWidget &widget) const { return m_window.grab(placeOf(widget)).toImage(); }

    QWidget &m_window;
    QStringList m_byOtherKeys;
    std::vector<QWidget *> m_visited;
    QWidget *m_before = nullptr;
    QImage m_lookBefore;
};
