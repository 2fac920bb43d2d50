// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Responder.h"

#include <QKeySequence>
#include <QList>

#include <span>

class AlertPresenter;
class QMainWindow;

/// One item of the menu bar.
struct MenuCommand {
    enum class Place {
        inGroup,
        /// A separator comes before it.
        startsGroup,
    };
    enum class Look { plain, checkable };

    /// English titles are the keys of the language tables.
    const char16_t *menu;
    Selector selector;
    const char16_t *title;
    /// As QKeySequence reads them, several with "; " between; empty for none.
    const char *shortcuts = "";
    Place place = Place::inGroup;
    Look look = Look::plain;
    /// The submenu that the item is in; null for none. Items of one submenu follow each other.
    const char16_t *submenu = nullptr;
    /// Tells items of one selector apart.
    int tag = 0;

    [[nodiscard]] QList<QKeySequence> keySequences() const;
};

/// All items in the order of the menus.
[[nodiscard]] std::span<const MenuCommand> menuCommands();

/// Gives `window` its menu bar, in place of one that it has: after another language was chosen. Items act on the window's first responder
/// and are shown as it says when their menu opens; one that is chosen by its keys while it is disabled beeps. `presenter` must outlive the
/// window.
void installMenuBar(QMainWindow &window, AlertPresenter &presenter);
