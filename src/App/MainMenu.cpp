// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/MainMenu.h"

#include "Base/FilePath.h"
#include "Base/FoldersApart.h"
#include "Base/Translation.h"
#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/Theme.h"
#include "Model/RecentDocuments.h"
#include "View/FirstResponder.h"
#include "Widgets/Mnemonics.h"
#include "Widgets/PlainToolTip.h"

#include <QAction>
#include <QActionGroup>
#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QShortcut>

using namespace Qt::StringLiterals;

namespace {

using enum MenuRow::Kind;

/// Of a file's name, in letters.
constexpr int longestTitle = 60;

/// The titles of one menu with their underlined letters. Names of files get none, since they come and go and the others should keep theirs.
QStringList markedTitles(const std::vector<MenuNode> &nodes)
{
    QStringList titles;
    for (const MenuNode &node : nodes) {
        if (!node.comesAndGoes) {
            titles << node.title;
        }
    }
    QString taken;
    titles = withMnemonics(titles, taken);
    for (size_t index = 0; index < nodes.size(); ++index) {
        if (nodes[index].comesAndGoes) {
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

MenuNode itemOf(const Action &action, const QString &title, const QVariant &represented = {})
{
    return {.title = title, .action = &action, .represented = represented};
}

std::vector<MenuNode> languageItems(const Action &action)
{
    std::vector<MenuNode> items;
    for (const Language &language : LanguageRegistry::all()) {
        items.push_back(itemOf(action, language == Language::plainText() ? localized(language.name()) : language.name(), language.id()));
    }
    std::ranges::stable_sort(items, {}, &MenuNode::title);
    return items;
}

std::vector<MenuNode> themeItems(const Action &action)
{
    std::vector<MenuNode> items = {itemOf(action, localized(u"System"), u"System"_s), {.kind = MenuNode::Kind::separator}};
    for (const Theme &theme : Theme::all()) {
        items.push_back(itemOf(action, localized(theme.name), theme.name.toString()));
    }
    return items;
}

/// The names of the files; where some are alike, with as few of their folders as tell them apart.
QStringList titlesOf(std::span<const RecentDocuments::Entry> entries)
{
    QStringList titles;
    QStringList paths;
    for (const RecentDocuments::Entry &entry : entries) {
        paths << entry.path;
        // What follows a tab would be taken for a key.
        titles << shownPath(QFileInfo(entry.path).fileName()).replace(u'\t', u' ');
    }
    const QStringList folders = foldersApart(paths);
    for (qsizetype place = 0; place < titles.size(); ++place) {
        if (!folders[place].isEmpty()) {
            titles[place] += u" – "_s + shownPath(folders[place]);
        }
    }
    return titles;
}

/// What has a file's name, or stands in its place.
MenuNode fileItemOf(const QString &title, const Action *action = nullptr, const QString &represented = {}, const QString &toolTip = {})
{
    return {.title = title, .action = action, .represented = represented, .toolTip = toolTip, .comesAndGoes = true};
}

std::vector<MenuNode> recentDocumentItems(const Action &action, std::span<const RecentDocuments::Entry> entries)
{
    std::vector<MenuNode> items;
    const QStringList titles = titlesOf(entries);
    for (size_t index = 0; index < entries.size(); ++index) {
        items.push_back(fileItemOf(titles[qsizetype(index)], &action, entries[index].path, entries[index].path));
    }
    if (items.empty()) {
        items.push_back(fileItemOf(localized(u"No Recent Files")));
    }
    return items;
}

/// Below the title of their group.
std::vector<MenuNode> otherDocumentItems(const Action &action, std::span<const MenuSources::Document> documents)
{
    constexpr auto indent = "    "_L1;
    std::vector<MenuNode> items;
    if (!documents.empty()) {
        items.push_back(fileItemOf(localized(action.title)));
    }
    for (const MenuSources::Document &document : documents) {
        // What follows a tab would be taken for a key.
        items.push_back(fileItemOf(indent + QString(document.title).replace(u'\t', u' '), &action, document.id, document.path));
    }
    return items;
}

/// What there is now of that which comes and goes.
struct Contents {
    std::vector<RecentDocuments::Entry> recent = {};
    std::vector<MenuSources::Document> others = {};
};

bool lists(const MenuLayout &menu, MenuRow::Kind kind)
{
    return std::ranges::find(menu.rows, kind, &MenuRow::kind) != menu.rows.end();
}

std::vector<MenuNode> nodesOf(const MenuLayout &menu, const Contents &contents = {});

MenuNode submenuOf(const MenuLayout &menu)
{
    const bool comesAndGoes = lists(menu, recentDocuments) || lists(menu, openDocuments);
    return {.kind = MenuNode::Kind::menu,
            .title = localized(menu.title),
            .filledWhenItOpens = comesAndGoes ? &menu : nullptr,
            .children = nodesOf(menu)};
}

std::vector<MenuNode> nodesOf(const MenuRow &row, const Contents &contents)
{
    switch (row.kind) {
    case item:
        return {itemOf(*row.action, formatted(localized(row.action->title), row.action->tag))};
    case submenu:
        return {submenuOf(*row.submenu)};
    case languages:
        return languageItems(*row.action);
    case themes:
        return themeItems(*row.action);
    case recentDocuments:
        return recentDocumentItems(*row.action, contents.recent);
    case openDocuments:
        return otherDocumentItems(*row.action, contents.others);
    case separator:
    case unavailable:
        break;
    }
    return {};
}

std::vector<MenuNode> nodesOf(const MenuLayout &menu, const Contents &contents)
{
    std::vector<MenuNode> nodes;
    bool startsGroup = false;
    for (const MenuRow &row : menu.rows) {
        startsGroup |= row.kind == separator;
        std::vector<MenuNode> added = nodesOf(row, contents);
        if (startsGroup && !nodes.empty() && !added.empty()) {
            nodes.push_back({.kind = MenuNode::Kind::separator});
        }
        startsGroup &= added.empty();
        std::ranges::move(added, std::back_inserter(nodes));
    }
    return nodes;
}

/// Makes the widgets of a menu bar.
class MenuInstaller final {
public:
    /// Items have their keys, or only show those of others.
    enum class Keys { active, shown };

    MenuInstaller(QMainWindow &window, FirstResponder &responder, const MenuSources &sources, Keys keys = Keys::active)
        : m_window(window), m_responder(responder), m_sources(sources), m_keys(keys)
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
                if (node.filledWhenItOpens) {
                    fillWhenItOpens(*submenu, *node.filledWhenItOpens);
                }
                break;
            }
            case MenuNode::Kind::item:
                addItem(menu, node, title);
                break;
            }
        }
    }

    void fill(QMenu &menu, const MenuLayout &layout)
    {
        const bool hasRecent = lists(layout, recentDocuments);
        std::vector<MenuNode> nodes = nodesOf(layout, {.recent = hasRecent ? m_sources.recent.reachable() : Contents().recent,
                                                       .others = hasRecent ? Contents().others : m_sources.otherDocuments(m_window)});
        const QFontMetrics metrics(menu.font());
        for (MenuNode &node : nodes) {
            node.title = metrics.elidedText(node.title, Qt::ElideMiddle, metrics.averageCharWidth() * longestTitle);
        }
        m_isOpening = true;
        addItems(menu, nodes);
    }

private:
    void fillWhenItOpens(QMenu &menu, const MenuLayout &layout) const
    {
        menu.setToolTipsVisible(true);
        QObject::connect(&menu, &QMenu::aboutToShow, &menu, [&menu, &layout, installer = *this] {
            menu.clear();
            MenuInstaller anew = installer;
            // The items that had them are gone.
            for (const MenuRow &row : layout.rows) {
                for (const QKeySequence &keys : row.action ? keySequences(*row.action) : QList<QKeySequence>()) {
                    anew.m_taken.remove(keys);
                }
            }
            anew.fill(menu, layout);
        });
    }

    void addItem(QMenu &menu, const MenuNode &node, const QString &title)
    {
        QAction *item = menu.addAction(title);
        if (!node.action) {
            item->setEnabled(false);
            return;
        }
        if (!node.toolTip.isEmpty()) {
            item->setToolTip(plainToolTip(node.toolTip));
        }
        const Action &action = *node.action;
        item->setCheckable(action.isCheckable);
        if (node.represented.isNull()) {
            setKeys(*item, action);
        } else if (action.isCheckable) {
            addChoice(menu, *item);
        }
        QObject::connect(item, &QAction::triggered, &m_responder,
                         [&responder = m_responder, &action, represented = node.represented] { responder.choose(action, represented); });
        const auto update = [&responder = m_responder, &action, represented = node.represented, item, title] {
            ::show(*item, title, responder.state(action, represented));
        };
        QObject::connect(&menu, &QMenu::aboutToShow, item, update);
        if (m_isOpening) {
            update();
        }
        // While the menu is closed nobody looks, and a key that cannot do its work is to be heard rather than swallowed.
        QObject::connect(&menu, &QMenu::aboutToHide, item, [item] { item->setEnabled(true); });
    }

    /// One of several, of which one holds: marked as such, and taken again it stays.
    static void addChoice(QMenu &menu, QAction &item)
    {
        auto *choices = menu.findChild<QActionGroup *>(QString(), Qt::FindDirectChildrenOnly);
        (choices ? choices : new QActionGroup(&menu))->addAction(&item);
    }

    /// Two items of one window may not have the same keys; the second one only shows them.
    void setKeys(QAction &item, const Action &action)
    {
        const QList<QKeySequence> keys = keySequences(action);
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
    FirstResponder &m_responder;
    MenuSources m_sources;
    Keys m_keys;
    QSet<QKeySequence> m_taken;
    /// The menu is already notifying its items that it opens, and will not notify new ones.
    bool m_isOpening = false;
};

} // namespace

std::vector<MenuNode> MainMenu::build()
{
    std::vector<MenuNode> menus;
    std::ranges::transform(Actions::Menus::bar, std::back_inserter(menus), submenuOf);
    return menus;
}

void MainMenu::install(QMainWindow &window, FirstResponder &responder, const MenuSources &sources)
{
    QMenuBar *bar = window.menuBar();
    FirstResponder::setBar(*bar);
    for (QMenu *old : bar->findChildren<QMenu *>(Qt::FindDirectChildrenOnly)) {
        old->close();
        old->deleteLater(); // it may be what led here
    }
    bar->clear();
    MenuInstaller installer(window, responder, sources);
    const std::vector<MenuNode> menus = build();
    const QStringList titles = markedTitles(menus);
    for (size_t index = 0; index < menus.size(); ++index) {
        installer.addItems(*bar->addMenu(titles[qsizetype(index)]), menus[index].children);
    }
}

void MainMenu::populateCompareMenu(QMenu &menu, QMainWindow &window, FirstResponder &responder, const MenuSources &sources)
{
    menu.setToolTipsVisible(true);
    MenuInstaller(window, responder, sources, MenuInstaller::Keys::shown).fill(menu, Actions::Menus::compare);
}

void MainMenu::installKeys(QWidget &window, FirstResponder &responder)
{
    for (const Action *action : Actions::inMenus()) {
        for (const QKeySequence &keys : keySequences(*action)) {
            QObject::connect(new QShortcut(keys, &window), &QShortcut::activated, &responder,
                             [&responder, action] { responder.choose(*action); });
        }
    }
}
