// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/MenuBar.h"

#include "Platform/AlertPresenter.h"
#include "Platform/FirstResponder.h"
#include "Platform/Translation.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using enum MenuCommand::Place;

constexpr auto commands = std::to_array<MenuCommand>({
    {u"File", "openDocument:", u"Open…", "Ctrl+O"},
    {u"File", "saveDocument:", u"Save", "Ctrl+S", startsGroup},
    {u"File", "saveDocumentAs:", u"Save As…", "Ctrl+Shift+S"},
    {u"File", "revertDocumentToSaved:", u"Revert to Saved"},
    {u"File", "terminate:", u"Quit Quillet", "Ctrl+Q", startsGroup},

    {u"Edit", "undo:", u"Undo", "Ctrl+Z"},
    {u"Edit", "redo:", u"Redo", "Ctrl+Shift+Z; Ctrl+Y"},
    {u"Edit", "cut:", u"Cut", "Ctrl+X", startsGroup},
    {u"Edit", "copy:", u"Copy", "Ctrl+C"},
    {u"Edit", "paste:", u"Paste", "Ctrl+V"},
    {u"Edit", "delete:", u"Delete"},
    {u"Edit", "selectAll:", u"Select All", "Ctrl+A", startsGroup},

    {.menu = u"Edit",
     .selector = "performTextFinderAction:",
     .title = u"Find",
     .shortcuts = "Ctrl+F; Ctrl+Shift+F",
     .place = startsGroup,
     .submenu = u"Find",
     .tag = 1},
    {.menu = u"Edit",
     .selector = "performTextFinderAction:",
     .title = u"Find and Replace…",
     .shortcuts = "Ctrl+Alt+F; Ctrl+H",
     .submenu = u"Find",
     .tag = 12},
    {.menu = u"Edit",
     .selector = "performTextFinderAction:",
     .title = u"Find Next",
     .shortcuts = "Ctrl+G; F3",
     .submenu = u"Find",
     .tag = 2},
    {.menu = u"Edit",
     .selector = "performTextFinderAction:",
     .title = u"Find Previous",
     .shortcuts = "Ctrl+Shift+G; Shift+F3",
     .submenu = u"Find",
     .tag = 3},
    {.menu = u"Edit",
     .selector = "performTextFinderAction:",
     .title = u"Use Selection for Find",
     .shortcuts = "Ctrl+E",
     .submenu = u"Find",
     .tag = 7},
    {.menu = u"Edit",
     .selector = "centerSelectionInVisibleArea:",
     .title = u"Jump to Selection",
     .shortcuts = "Ctrl+J",
     .place = startsGroup,
     .submenu = u"Find"},
    {u"Edit", "toggleComment:", u"Toggle Comment", "Ctrl+/; Ctrl+#", startsGroup},
    {u"Edit", "insertTab:", u"Shift Right", "Ctrl+]"},
    {u"Edit", "insertBacktab:", u"Shift Left", "Ctrl+["},
    {u"Edit", "duplicateLine:", u"Duplicate Line", "Ctrl+Shift+D"},
    {u"Edit", "deleteLine:", u"Delete Line", "Ctrl+Shift+K"},

    {u"View", "toggleLineNumbers:", u"Show Line Numbers", "Ctrl+Alt+L", inGroup, MenuCommand::Look::checkable},
    {u"View", "toggleLineWrap:", u"Wrap Lines", "Ctrl+Alt+W", inGroup, MenuCommand::Look::checkable},
    {u"View", "toggleInvisibles:", u"Show Invisibles", "Ctrl+Alt+I", inGroup, MenuCommand::Look::checkable},
    {u"View", "toggleCurrentLineHighlight:", u"Highlight Current Line", "", inGroup, MenuCommand::Look::checkable},
    // Where "+" needs Shift, the key without it means the same.
    {u"View", "increaseFontSize:", u"Bigger", "Ctrl++; Ctrl+=", startsGroup},
    {u"View", "decreaseFontSize:", u"Smaller", "Ctrl+-"},
    {u"View", "resetFontSize:", u"Actual Size", "Ctrl+0"},
});

/// Gives the titles of one menu their underlined letters: the first letter of a word that no title before has, else none.
class Mnemonics {
public:
    [[nodiscard]] QString mark(QString title)
    {
        title.replace(u'&', "&&"_L1);
        for (qsizetype place = 0; place < title.size(); ++place) {
            const QChar letter = title[place].toLower();
            if (letter.isLetter() && (place == 0 || title[place - 1].isSpace()) && !m_taken.contains(letter)) {
                m_taken += letter;
                return title.insert(place, u'&');
            }
        }
        return title;
    }

private:
    QString m_taken;
};

void show(QAction &item, const QString &title, const ActionState &state)
{
    item.setEnabled(state.isEnabled);
    item.setText(state.title.value_or(title));
    if (item.isCheckable()) {
        item.setChecked(state.checkMark != CheckMark::none);
    }
}

void choose(QMainWindow &window, const MenuCommand &command, AlertPresenter &presenter)
{
    Responder *responder = firstResponder(&window);
    const ActionSender sender{.tag = command.tag};
    if (!responder || !responder->state(command.selector, sender).isEnabled || !responder->perform(command.selector, sender)) {
        presenter.beep();
    }
}

/// Makes menus from rows that come in the order of the items.
class MenuBuilder final {
public:
    MenuBuilder(QMainWindow &window, AlertPresenter &presenter) : m_window(window), m_presenter(presenter) {}

    void add(const MenuCommand &command)
    {
        if (!m_menu.menu || QStringView(m_menu.title) != command.menu) {
            m_menu = {command.menu, m_window.menuBar()->addMenu(m_titles.mark(localized(command.menu))), {}};
            m_submenu = {};
        } else if (command.place == startsGroup && (!command.submenu || !isInSubmenu(command))) {
            m_menu.menu->addSeparator();
        } else if (command.place == startsGroup) {
            m_submenu.menu->addSeparator();
        }
        if (command.submenu && !isInSubmenu(command)) {
            m_submenu = {command.submenu, m_menu.menu->addMenu(m_menu.mnemonics.mark(localized(command.submenu))), {}};
        }
        addItem(command, command.submenu ? m_submenu : m_menu);
    }

private:
    struct Menu {
        const char16_t *title = nullptr;
        QMenu *menu = nullptr;
        Mnemonics mnemonics = {};
    };

    [[nodiscard]] bool isInSubmenu(const MenuCommand &command) const
    {
        return m_submenu.menu && QStringView(m_submenu.title) == command.submenu;
    }

    void addItem(const MenuCommand &command, Menu &menu)
    {
        const QString title = menu.mnemonics.mark(localized(command.title));
        QAction *item = menu.menu->addAction(title);
        item->setCheckable(command.look == MenuCommand::Look::checkable);
        item->setShortcuts(command.keySequences());
        QObject::connect(item, &QAction::triggered, &m_window,
                         [&window = m_window, &command, &presenter = m_presenter] { choose(window, command, presenter); });
        QObject::connect(menu.menu, &QMenu::aboutToShow, item, [&window = m_window, &command, item, title] {
            const Responder *responder = firstResponder(&window);
            show(*item, title, responder ? responder->state(command.selector, {.tag = command.tag}) : ActionState{.isEnabled = false});
        });
        // While the menu is closed nobody looks, and a key that cannot do its work is to be heard rather than swallowed.
        QObject::connect(menu.menu, &QMenu::aboutToHide, item, [item] { item->setEnabled(true); });
    }

    QMainWindow &m_window;
    AlertPresenter &m_presenter;
    Mnemonics m_titles;
    Menu m_menu;
    Menu m_submenu;
};

} // namespace

QList<QKeySequence> MenuCommand::keySequences() const
{
    // An empty text would be read as one empty sequence.
    return *shortcuts ? QKeySequence::listFromString(QString::fromLatin1(shortcuts)) : QList<QKeySequence>();
}

std::span<const MenuCommand> menuCommands()
{
    return commands;
}

void installMenuBar(QMainWindow &window, AlertPresenter &presenter)
{
    QMenuBar *bar = window.menuBar();
    keepFirstResponderBehind(*bar);
    for (QMenu *old : bar->findChildren<QMenu *>(Qt::FindDirectChildrenOnly)) {
        old->close();
        old->deleteLater(); // it may be what led here
    }
    bar->clear();
    MenuBuilder builder(window, presenter);
    for (const MenuCommand &command : commands) {
        builder.add(command);
    }
}
