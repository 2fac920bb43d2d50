// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/MainMenu.h"

#include "Base/Translation.h"
#include "Commands/FirstResponder.h"
#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/Theme.h"
#include "Model/RecentDocuments.h"
#include "Widgets/AlertPresenter.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/PlainToolTip.h"

#include <QAction>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QShortcut>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using enum MenuCommand::Place;
using enum MenuCommand::Look;
using enum MenuCommand::Content;

/// Of a file's name, in letters.
constexpr int longestTitle = 60;

// Where a chord needs AltGr on a German keyboard, another one follows that does not; the same for those that modal editing may take.
constexpr auto rows = std::to_array<MenuCommand>({
    {u"Quillet", "orderFrontStandardAboutPanel:", u"About Quillet"},
    {u"Quillet", "showSettings:", u"Settings…", "Ctrl+,", startsGroup},
    {.menu = u"Quillet", .selector = "", .title = u"Services", .place = startsGroup, .content = notHere},
    {.menu = u"Quillet", .selector = "hide:", .title = u"Hide Quillet", .place = startsGroup, .content = notHere},
    {.menu = u"Quillet", .selector = "hideOtherApplications:", .title = u"Hide Others", .content = notHere},
    {.menu = u"Quillet", .selector = "unhideAllApplications:", .title = u"Show All", .content = notHere},
    {u"Quillet", "terminate:", u"Quit Quillet", "Ctrl+Q", startsGroup},

    {u"File", "newDocument:", u"New Tab", "Ctrl+N; Ctrl+T"},
    {u"File", "newWindow:", u"New Window", "Ctrl+Shift+N"},
    {u"File", "openDocument:", u"Open…", "Ctrl+O"},
    {.menu = u"File", .selector = "openRecentDocument:", .title = u"Open Recent", .submenu = u"Open Recent", .content = recentDocuments},
    {.menu = u"File", .selector = "clearRecentDocuments:", .title = u"Clear Menu", .place = startsGroup, .submenu = u"Open Recent"},
    {u"File", "closeTab:", u"Close Tab", "Ctrl+W; Ctrl+F4", startsGroup},
    {u"File", "performClose:", u"Close Window", "Ctrl+Shift+W"},
    {u"File", "saveDocument:", u"Save", "Ctrl+S", startsGroup},
    {u"File", "saveDocumentAs:", u"Save As…", "Ctrl+Shift+S"},
    {u"File", "revertDocumentToSaved:", u"Revert to Saved"},
    {u"File", "compareWithFileOnDisk:", u"With File on Disk", "Ctrl+Alt+D", inGroup, plain, u"Compare"},
    {u"File", "compareWithFile:", u"With File…", "", inGroup, plain, u"Compare"},
    {.menu = u"File",
     .selector = "compareWithOpenDocument:",
     .title = u"Other Open Files",
     .place = startsGroup,
     .submenu = u"Compare",
     .content = openDocuments},
    {u"File", "makeBackup:", u"Backup", "Ctrl+Alt+B"},
    {u"File", "moveDocumentToTrash:", u"Move to Trash…"},
    {u"File", "revealInFinder:", u"Reveal in Finder", "Ctrl+Alt+R", startsGroup},
    {u"File", "copyFilePath:", u"Copy Path", "Ctrl+Alt+Shift+C"},
    {u"File", "openInTerminal:", u"Open in Terminal", "Ctrl+Alt+T"},

    {u"Edit", "undo:", u"Undo", "Ctrl+Z"},
    {u"Edit", "redo:", u"Redo", "Ctrl+Shift+Z; Ctrl+Y"},
    {u"Edit", "cut:", u"Cut", "Ctrl+X", startsGroup},
    {u"Edit", "copy:", u"Copy", "Ctrl+C"},
    {u"Edit", "paste:", u"Paste", "Ctrl+V"},
    {u"Edit", "delete:", u"Delete"},
    {u"Edit", "selectAll:", u"Select All", "Ctrl+A"},
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
    {u"Edit", "insertTab:", u"Shift Right", "Ctrl+]; Ctrl+Ä"},
    {u"Edit", "insertBacktab:", u"Shift Left", "Ctrl+[; Ctrl+Ö"},
    {u"Edit", "duplicateLine:", u"Duplicate Line", "Ctrl+Shift+D"},
    {u"Edit", "deleteLine:", u"Delete Line", "Ctrl+Shift+K"},
    {.menu = u"Edit",
     .selector = "showGuessPanel:",
     .title = u"Show Spelling and Grammar",
     .shortcuts = "Ctrl+:",
     .place = startsGroup,
     .submenu = u"Spelling and Grammar"},
    {.menu = u"Edit",
     .selector = "checkSpelling:",
     .title = u"Check Document Now",
     .shortcuts = "Ctrl+;",
     .submenu = u"Spelling and Grammar"},
    {.menu = u"Edit",
     .selector = "toggleContinuousSpellChecking:",
     .title = u"Check Spelling While Typing",
     .place = startsGroup,
     .look = checkable,
     .submenu = u"Spelling and Grammar"},

    {u"View", "toggleLineNumbers:", u"Show Line Numbers", "Ctrl+Alt+L", inGroup, checkable},
    {u"View", "toggleLineWrap:", u"Wrap Lines", "Ctrl+Alt+W", inGroup, checkable},
    {u"View", "toggleInvisibles:", u"Show Invisibles", "Ctrl+Alt+I", inGroup, checkable},
    {u"View", "toggleCurrentLineHighlight:", u"Highlight Current Line", "", inGroup, checkable},
    {.menu = u"View",
     .selector = "selectLanguageFromMenu:",
     .title = u"Syntax",
     .place = startsGroup,
     .look = checkable,
     .submenu = u"Syntax",
     .content = languages},
    {.menu = u"View", .selector = "selectTheme:", .title = u"Theme", .look = checkable, .submenu = u"Theme", .content = themes},
    {u"View", "increaseFontSize:", u"Bigger", "Ctrl++; Ctrl+=", startsGroup},
    {u"View", "decreaseFontSize:", u"Smaller", "Ctrl+-"},
    {u"View", "resetFontSize:", u"Actual Size", "Ctrl+0"},
    {u"View", "toggleFullScreen:", u"Enter Full Screen", "F11", startsGroup},

    {u"Navigate", "goToLine:", u"Go to Line…", "Ctrl+L; Ctrl+Shift+L"},
    {u"Navigate", "selectNextTab:", u"Next Tab", "Ctrl+Tab; Ctrl+PgDown", startsGroup},
    {u"Navigate", "selectPreviousTab:", u"Previous Tab", "Ctrl+Shift+Tab; Ctrl+PgUp"},
    {.menu = u"Navigate", .selector = "selectTabByNumber:", .title = u"Tab %d", .shortcuts = "Ctrl+1", .place = startsGroup, .tag = 1},
    {.menu = u"Navigate", .selector = "selectTabByNumber:", .title = u"Tab %d", .shortcuts = "Ctrl+2", .tag = 2},
    {.menu = u"Navigate", .selector = "selectTabByNumber:", .title = u"Tab %d", .shortcuts = "Ctrl+3", .tag = 3},
    {.menu = u"Navigate", .selector = "selectTabByNumber:", .title = u"Tab %d", .shortcuts = "Ctrl+4", .tag = 4},
    {.menu = u"Navigate", .selector = "selectTabByNumber:", .title = u"Tab %d", .shortcuts = "Ctrl+5", .tag = 5},
    {.menu = u"Navigate", .selector = "selectTabByNumber:", .title = u"Tab %d", .shortcuts = "Ctrl+6", .tag = 6},
    {.menu = u"Navigate", .selector = "selectTabByNumber:", .title = u"Tab %d", .shortcuts = "Ctrl+7", .tag = 7},
    {.menu = u"Navigate", .selector = "selectTabByNumber:", .title = u"Tab %d", .shortcuts = "Ctrl+8", .tag = 8},
    {.menu = u"Navigate", .selector = "selectTabByNumber:", .title = u"Last Tab", .shortcuts = "Ctrl+9", .tag = 9},

    {u"Editor", "splitEditorRight:", u"Split Right", "Ctrl+\\; Ctrl+<"},
    {u"Editor", "splitEditorDown:", u"Split Down", "Ctrl+Shift+\\; Ctrl+>"},
    {u"Editor", "closeSplit:", u"Close Split", "Ctrl+Alt+\\; Ctrl+Alt+<"},
    {u"Editor", "focusNextPane:", u"Focus Next Pane", "Ctrl+Alt+]; Ctrl+Alt+Ä", startsGroup},
    {u"Editor", "toggleSplitOrientation:", u"Toggle Split Orientation"},

    {u"Window", "newWindow:", u"New Window", "Ctrl+Shift+N"},
    {u"Window", "moveTabToNewWindow:", u"Move Tab to New Window"},
    {u"Window", "performMiniaturize:", u"Minimize", "Ctrl+M", startsGroup},
    {u"Window", "performZoom:", u"Zoom"},
    {.menu = u"Window", .selector = "arrangeInFront:", .title = u"Bring All to Front", .place = startsGroup, .content = notHere},

    {u"Help", "showUserGuide:", u"User’s Guide", "F1"},
    {u"Help", "showShortcuts:", u"Keyboard Shortcuts", "", startsGroup},
    {u"Help", "showVimKeyReference:", u"Vim Key Reference"},
    {u"Help", "revealSupportFolder:", u"Reveal Local Data Folder"},
});

/// The titles of one menu with their underlined letters. Names of files get none, since they come and go and the others should keep theirs.
QStringList markedTitles(const std::vector<MenuNode> &nodes)
{
    const auto isFile = [](const MenuNode &node) {
        return node.kind == MenuNode::Kind::item &&
               (!node.command || node.command->content == recentDocuments || node.command->content == openDocuments);
    };
    QStringList titles;
    for (const MenuNode &node : nodes) {
        if (!isFile(node)) {
            titles << node.title;
        }
    }
    QString taken;
    titles = withMnemonics(titles, taken);
    for (size_t index = 0; index < nodes.size(); ++index) {
        if (isFile(nodes[index])) {
            titles.insert(qsizetype(index), QString(nodes[index].title).replace(u'&', "&&"_L1));
        }
    }
    return titles;
}

void show(QAction &item, const QString &title, const ActionState &state)
{
    item.setEnabled(state.isEnabled);
    item.setText(state.title.value_or(title));
    if (item.isCheckable()) {
        item.setChecked(state.checkMark != CheckMark::none);
    }
}

MenuNode itemOf(const MenuCommand &row, const QString &title, const QVariant &represented = {})
{
    return {.title = title, .command = &row, .sender = {.tag = row.tag, .represented = represented}};
}

std::vector<MenuNode> languageItems(const MenuCommand &row)
{
    std::vector<MenuNode> items;
    for (const Language &language : LanguageRegistry::all()) {
        items.push_back(itemOf(row, language == Language::plainText() ? localized(language.name()) : language.name(), language.id()));
    }
    std::ranges::stable_sort(items, {}, &MenuNode::title);
    return items;
}

std::vector<MenuNode> themeItems(const MenuCommand &row)
{
    std::vector<MenuNode> items = {itemOf(row, localized(u"System"), u"System"_s), {.kind = MenuNode::Kind::separator}};
    for (const Theme &theme : Theme::all()) {
        items.push_back(itemOf(row, localized(theme.name), theme.name.toString()));
    }
    return items;
}

/// The names of the files; where some are alike, with as few of their folders as tell them apart.
QStringList titlesOf(std::span<const RecentDocuments::Entry> entries)
{
    QStringList titles;
    for (const RecentDocuments::Entry &entry : entries) {
        // What follows a tab would be taken for a key.
        titles << QFileInfo(entry.path).fileName().replace(u'\t', u' ');
    }
    const QStringList names = titles;
    constexpr int mostFolders = 100;
    for (int count = 1; count <= mostFolders; ++count) {
        const QStringList before = titles;
        for (size_t index = 0; index < entries.size(); ++index) {
            const auto place = qsizetype(index);
            if (before.count(before[place]) > 1) {
                const QString folders = QFileInfo(entries[index].path).path().section(u'/', -count);
                titles[place] = names[place] + u" – "_s + (folders.isEmpty() ? u"/"_s : folders);
            }
        }
        if (titles == before) {
            break;
        }
    }
    return titles;
}

std::vector<MenuNode> recentDocumentItems(const MenuCommand &row, std::span<const RecentDocuments::Entry> entries)
{
    std::vector<MenuNode> items;
    const QStringList titles = titlesOf(entries);
    for (size_t index = 0; index < entries.size(); ++index) {
        items.push_back(itemOf(row, titles[qsizetype(index)], entries[index].path));
        items.back().toolTip = entries[index].path;
    }
    if (items.empty()) {
        items.push_back({.title = localized(u"No Recent Files")});
    }
    return items;
}

/// Below the title of their group.
std::vector<MenuNode> otherDocumentItems(const MenuCommand &row, std::span<const MenuSources::Document> documents)
{
    constexpr auto indent = "    "_L1;
    std::vector<MenuNode> items;
    if (!documents.empty()) {
        items.push_back({.title = localized(row.title)});
    }
    for (const MenuSources::Document &document : documents) {
        // What follows a tab would be taken for a key.
        items.push_back(itemOf(row, indent + QString(document.title).replace(u'\t', u' '), document.id));
        items.back().toolTip = document.path;
    }
    return items;
}

/// What there is now of that which comes and goes.
struct Contents {
    std::vector<RecentDocuments::Entry> recent = {};
    std::vector<MenuSources::Document> others = {};
};

std::vector<MenuNode> itemsOf(const MenuCommand &row, const Contents &contents = {})
{
    switch (row.content) {
    case itself:
        return {itemOf(row, formatted(localized(row.title), row.tag))};
    case languages:
        return languageItems(row);
    case themes:
        return themeItems(row);
    case recentDocuments:
        return recentDocumentItems(row, contents.recent);
    case openDocuments:
        return otherDocumentItems(row, contents.others);
    case notHere:
        break;
    }
    return {};
}

void beginGroup(const MenuCommand &row, std::vector<MenuNode> &items)
{
    if (row.place == startsGroup && !items.empty()) {
        items.push_back({.kind = MenuNode::Kind::separator});
    }
}

/// Of the submenu that `first` is the first of.
std::span<const MenuCommand> submenuFrom(const MenuCommand &first)
{
    const auto begin = std::find_if(rows.begin(), rows.end(), [&first](const MenuCommand &row) { return &row == &first; });
    const auto end = std::find_if(begin, rows.end(),
                                  [&first](const MenuCommand &row) { return !row.submenu || QStringView(row.submenu) != first.submenu; });
    return {begin, end};
}

/// Whether a submenu is made anew each time it opens.
bool comesAndGoes(std::span<const MenuCommand> submenu)
{
    return std::ranges::any_of(submenu,
                               [](const MenuCommand &row) { return row.content == recentDocuments || row.content == openDocuments; });
}

std::vector<MenuNode> nodesOf(std::span<const MenuCommand> submenu, const Contents &contents)
{
    std::vector<MenuNode> items;
    for (const MenuCommand &row : submenu) {
        std::vector<MenuNode> added = itemsOf(row, contents);
        if (!added.empty()) {
            beginGroup(row, items);
            std::ranges::move(added, std::back_inserter(items));
        }
    }
    return items;
}

/// Makes the widgets of a menu bar.
class MenuInstaller final {
public:
    /// Items have their keys, or only show those of others.
    enum class Keys { active, shown };

    MenuInstaller(QMainWindow &window, AlertPresenter &presenter, const MenuSources &sources, Keys keys = Keys::active)
        : m_window(window), m_presenter(presenter), m_sources(sources), m_keys(keys)
    {}

    void addItems(QMenu &menu, const std::vector<MenuNode> &nodes)
    {
        const QStringList titles = markedTitles(nodes);
        for (size_t index = 0; index < nodes.size(); ++index) {
            const MenuNode &node = nodes[index];
            const QString &title = titles[qsizetype(index)];
            switch (node.kind) {
            case MenuNode::Kind::separator:
                menu.addSeparator();
                break;
            case MenuNode::Kind::menu: {
                QMenu *submenu = menu.addMenu(title);
                submenu->setEnabled(!node.children.empty());
                addItems(*submenu, node.children);
                if (node.command) {
                    fillWhenItOpens(*submenu, submenuFrom(*node.command));
                }
                break;
            }
            case MenuNode::Kind::item:
                addItem(menu, node, title);
                break;
            }
        }
    }

    void fill(QMenu &menu, std::span<const MenuCommand> submenu)
    {
        const bool hasRecent = std::ranges::find(submenu, recentDocuments, &MenuCommand::content) != submenu.end();
        std::vector<MenuNode> nodes = nodesOf(submenu, {.recent = hasRecent ? m_sources.recent.reachable() : Contents().recent,
                                                        .others = hasRecent ? Contents().others : m_sources.otherDocuments(m_window)});
        const QFontMetrics metrics(menu.font());
        for (MenuNode &node : nodes) {
            node.title = metrics.elidedText(node.title, Qt::ElideMiddle, metrics.averageCharWidth() * longestTitle);
        }
        m_isOpening = true;
        addItems(menu, nodes);
    }

private:
    void fillWhenItOpens(QMenu &menu, std::span<const MenuCommand> submenu) const
    {
        menu.setToolTipsVisible(true);
        QObject::connect(&menu, &QMenu::aboutToShow, &menu, [&menu, submenu, installer = *this] {
            menu.clear();
            MenuInstaller anew = installer;
            // The items that had them are gone.
            for (const MenuCommand &row : submenu) {
                for (const QKeySequence &keys : row.keySequences()) {
                    anew.m_taken.remove(keys);
                }
            }
            anew.fill(menu, submenu);
        });
    }

    void addItem(QMenu &menu, const MenuNode &node, const QString &title)
    {
        QAction *item = menu.addAction(title);
        if (!node.command) {
            item->setEnabled(false);
            return;
        }
        if (!node.toolTip.isEmpty()) {
            item->setToolTip(plainToolTip(node.toolTip));
        }
        item->setCheckable(node.command->look == checkable);
        if (node.sender.represented.isNull()) {
            setKeys(*item, *node.command);
        }
        const Selector selector = node.command->selector;
        QObject::connect(item, &QAction::triggered, &m_window,
                         [&window = m_window, selector, sender = node.sender, &presenter = m_presenter] {
                             chooseAction(window, selector, sender, presenter);
                         });
        const auto update = [&window = m_window, selector, sender = node.sender, item, title] {
            const Responder *responder = firstResponder(&window);
            ::show(*item, title, responder ? responder->state(selector, sender) : ActionState{.isEnabled = false});
        };
        QObject::connect(&menu, &QMenu::aboutToShow, item, update);
        if (m_isOpening) {
            update();
        }
        // While the menu is closed nobody looks, and a key that cannot do its work is to be heard rather than swallowed.
        QObject::connect(&menu, &QMenu::aboutToHide, item, [item] { item->setEnabled(true); });
    }

    /// Two items of one window may not have the same keys; the second one only shows them.
    void setKeys(QAction &item, const MenuCommand &command)
    {
        const QList<QKeySequence> keys = command.keySequences();
        if (keys.isEmpty()) {
            return;
        }
        if (m_keys == Keys::shown || m_taken.contains(keys.first())) {
            // Of a menu, which never has the focus.
            item.setShortcutContext(Qt::WidgetShortcut);
            item.setShortcut(keys.first());
            return;
        }
        m_taken.insert(keys.first());
        item.setShortcuts(keys);
    }

    QMainWindow &m_window;
    AlertPresenter &m_presenter;
    MenuSources m_sources;
    Keys m_keys;
    QSet<QKeySequence> m_taken;
    /// The menu is already telling its items that it opens, and will not tell new ones.
    bool m_isOpening = false;
};

} // namespace

QList<QKeySequence> MenuCommand::keySequences() const
{
    // An empty text would be read as one empty sequence.
    return *shortcuts ? QKeySequence::listFromString(QString::fromUtf8(shortcuts)) : QList<QKeySequence>();
}

std::span<const MenuCommand> MainMenu::commands()
{
    return rows;
}

QKeySequence MainMenu::keyOf(Selector selector)
{
    const auto row = std::ranges::find(rows, selector, &MenuCommand::selector);
    return row == rows.end() || row->keySequences().isEmpty() ? QKeySequence() : row->keySequences().first();
}

std::vector<MenuNode> MainMenu::build()
{
    std::vector<MenuNode> menus;
    const char16_t *menu = nullptr;
    const char16_t *submenu = nullptr;
    for (const MenuCommand &row : rows) {
        if (row.content == notHere) {
            continue;
        }
        if (!menu || QStringView(menu) != row.menu) {
            menu = row.menu;
            submenu = nullptr;
            menus.push_back({.kind = MenuNode::Kind::menu, .title = localized(menu)});
        }
        std::vector<MenuNode> *items = &menus.back().children;
        const bool isInSubmenu = row.submenu && submenu && QStringView(submenu) == row.submenu;
        if (row.submenu && !isInSubmenu) {
            beginGroup(row, *items);
            items->push_back({.kind = MenuNode::Kind::menu,
                              .title = localized(row.submenu),
                              .command = comesAndGoes(submenuFrom(row)) ? &row : nullptr});
            std::ranges::move(nodesOf(submenuFrom(row), {}), std::back_inserter(items->back().children));
        } else if (!isInSubmenu) {
            beginGroup(row, *items);
            std::ranges::move(itemsOf(row), std::back_inserter(*items));
        }
        submenu = row.submenu;
    }
    return menus;
}

void MainMenu::install(QMainWindow &window, AlertPresenter &presenter, const MenuSources &sources)
{
    QMenuBar *bar = window.menuBar();
    keepFirstResponderBehind(*bar);
    for (QMenu *old : bar->findChildren<QMenu *>(Qt::FindDirectChildrenOnly)) {
        old->close();
        old->deleteLater(); // it may be what led here
    }
    bar->clear();
    MenuInstaller installer(window, presenter, sources);
    const std::vector<MenuNode> menus = build();
    const QStringList titles = markedTitles(menus);
    for (size_t index = 0; index < menus.size(); ++index) {
        installer.addItems(*bar->addMenu(titles[qsizetype(index)]), menus[index].children);
    }
}

void MainMenu::populateCompareMenu(QMenu &menu, QMainWindow &window, AlertPresenter &presenter, const MenuSources &sources)
{
    const auto first = std::ranges::find(rows, Selector("compareWithFileOnDisk:"), &MenuCommand::selector);
    menu.setToolTipsVisible(true);
    MenuInstaller(window, presenter, sources, MenuInstaller::Keys::shown).fill(menu, submenuFrom(*first));
}

void MainMenu::installKeys(QWidget &window, AlertPresenter &presenter)
{
    QSet<QKeySequence> taken;
    for (const MenuCommand &row : rows) {
        for (const QKeySequence &keys : row.keySequences()) {
            if (row.content == notHere || taken.contains(keys)) {
                continue;
            }
            taken.insert(keys);
            QObject::connect(new QShortcut(keys, &window), &QShortcut::activated, &window, [&window, &row, &presenter] {
                chooseAction(window, row.selector, {.tag = row.tag, .represented = {}}, presenter);
            });
        }
    }
}
