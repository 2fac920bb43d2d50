// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "App/MainMenu.h"
#include "Commands/ActionKeys.h"

#include <QJsonArray>

#include <array>

using namespace Qt::StringLiterals;

namespace {

QJsonArray answerOf(const std::vector<MenuNode> &nodes);

QJsonObject answerOf(const MenuNode &node)
{
    switch (node.kind) {
    case MenuNode::Kind::separator:
        return {{u"separator"_s, true}};
    case MenuNode::Kind::menu:
        return {{u"title"_s, node.title}, {u"items"_s, answerOf(node.children)}};
    case MenuNode::Kind::item:
        break;
    }
    if (!node.action) {
        return {{u"title"_s, node.title}, {u"key"_s, QString()}, {u"action"_s, QString()}};
    }
    const QList<QKeySequence> keys = node.represented.isNull() ? keySequences(*node.action) : QList<QKeySequence>();
    QJsonObject item = {{u"title"_s, node.title},
                        {u"key"_s, keys.isEmpty() ? QString() : keys.first().toString(QKeySequence::PortableText)},
                        {u"action"_s, node.action->name()}};
    if (node.action->tag != 0) {
        item[u"tag"_s] = node.action->tag;
    }
    return item;
}

QJsonArray answerOf(const std::vector<MenuNode> &nodes)
{
    QJsonArray items;
    for (const MenuNode &node : nodes) {
        items << answerOf(node);
    }
    return items;
}

QJsonObject runMenu(const Arguments &arguments)
{
    useInterfaceLanguage(arguments);
    return {{u"menus"_s, answerOf(MainMenu::build())}};
}

constexpr std::array menuOptions = {interfaceLanguageOption};

constexpr auto rows = std::to_array<CommandRow>({
    {u"menu", u"", menuOptions, u"the menu bar with its titles, keys and actions", runMenu},
});

} // namespace

std::span<const CommandRow> menuCommandRows()
{
    return rows;
}
