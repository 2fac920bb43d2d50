// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Responder.h"

#include <QKeySequence>
#include <QList>

#include <functional>
#include <span>
#include <vector>

class AlertPresenter;
class QMainWindow;
class QMenu;
class RecentDocuments;

/// One item of the menu bar, or the place of items that are listed elsewhere.
struct MenuCommand {
    enum class Place {
        inGroup,
        /// A separator comes before it.
        startsGroup,
    };
    enum class Look { plain, checkable };
    /// What stands in the place of the row: nothing where it is not for this desktop.
    enum class Content { itself, languages, themes, recentDocuments, openDocuments, notHere };

    /// English titles are the keys of the language tables.
    const char16_t *menu;
    Selector selector;
    const char16_t *title;
    /// As QKeySequence reads them, several with "; " between; empty for none. The first is shown.
    const char *shortcuts = "";
    Place place = Place::inGroup;
    Look look = Look::plain;
    /// The submenu that the item is in; null for none. Items of one submenu follow each other.
    const char16_t *submenu = nullptr;
    /// Tells items of one selector apart; "%d" in the title stands for it.
    int tag = 0;
    Content content = Content::itself;

    [[nodiscard]] QList<QKeySequence> keySequences() const;
};

/// A menu bar, a menu or an item, with titles in the language of the interface.
struct MenuNode {
    enum class Kind { item, separator, menu };

    Kind kind = Kind::item;
    QString title = {};
    /// Of an item; it is disabled when it has none. Of a menu only when that is made anew each time it opens.
    const MenuCommand *command = nullptr;
    ActionSender sender = {};
    QString toolTip = {};
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

    /// All rows in the order of the menus.
    [[nodiscard]] static std::span<const MenuCommand> commands();
    /// The menus as they are while there are no recent and no other documents.
    [[nodiscard]] static std::vector<MenuNode> build();
    /// The first key of a command; empty when it has none.
    [[nodiscard]] static QKeySequence keyOf(Selector selector);

    /// Gives `window` its menu bar, in place of one that it has: after another language was chosen. Items act on the window's first
    /// responder and are shown as it says when their menu opens; one that is chosen by its keys while it is disabled beeps. `presenter`
    /// and what the sources ask must outlive the window.
    static void install(QMainWindow &window, AlertPresenter &presenter, const MenuSources &sources);
    /// Fills `menu`, which is empty, with what the current text of `window` can be compared with, as the submenu of the menu bar is.
    static void populateCompareMenu(QMenu &menu, QMainWindow &window, AlertPresenter &presenter, const MenuSources &sources);
    /// Gives a window that has no menus the keys of all commands.
    static void installKeys(QWidget &window, AlertPresenter &presenter);
};
