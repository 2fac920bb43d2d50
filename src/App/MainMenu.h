// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Action.h"

#include <QVariant>

#include <functional>
#include <vector>

class FirstResponder;
class QMainWindow;
class QMenu;
class RecentDocuments;

/// A menu bar, a menu or an item, with titles in the language of the interface.
struct MenuNode {
    enum class Kind { item, separator, menu };

    Kind kind = Kind::item;
    QString title = {};
    /// Of an item; it is disabled when it has none.
    const Action *action = nullptr;
    /// What an item stands for that is one of several of its action.
    QVariant represented = {};
    QString toolTip = {};
    /// An item that has the name of a file, or says that there are none.
    bool comesAndGoes = false;
    /// Of a menu that is made anew each time it opens.
    const MenuLayout *filledWhenItOpens = nullptr;
    std::vector<MenuNode> children = {};
};

/// What menus list that comes and goes. Must outlive the windows that have the menus.
struct MenuSources {
    /// Another document that is open, besides the current one of a window.
    struct Document {
        QString title;
        QString id;
        /// Empty when it has no file.
        QString path;
    };

    RecentDocuments &recent;
    std::function<std::vector<Document>(QMainWindow &window)> otherDocuments;
};

/// The menus of every main window.
class MainMenu final {
public:
    MainMenu() = delete;

    /// The menus as they are while there are no recent and no other documents.
    [[nodiscard]] static std::vector<MenuNode> build();

    /// Gives `window` its menu bar, in place of one that it has: after another language was chosen. Items act on the window's first
    /// responder and are shown as it says when their menu opens; one that is chosen by its keys while it is disabled beeps. What the
    /// sources ask must outlive the window.
    static void install(QMainWindow &window, FirstResponder &responder, const MenuSources &sources);
    /// Fills `menu`, which is empty, with what the current text of `window` can be compared with, as the submenu of the menu bar is.
    static void populateCompareMenu(QMenu &menu, QMainWindow &window, FirstResponder &responder, const MenuSources &sources);
    /// Gives a window that has no menus the keys of all commands.
    static void installKeys(QWidget &window, FirstResponder &responder);
};
