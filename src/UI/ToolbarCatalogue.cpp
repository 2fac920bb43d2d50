// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/ToolbarCatalogue.h"

#include "Settings/Preferences.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr auto actions = std::to_array<ToolbarAction>({
    {"new"_L1, u"New", "doc.badge.plus"_L1, "newDocument:"},
    {"open"_L1, u"Open", "folder"_L1, "openDocument:"},
    {"save"_L1, u"Save", "square.and.arrow.down"_L1, "saveDocument:"},
    {"saveAs"_L1, u"Save As", "square.and.arrow.down.on.square"_L1, "saveDocumentAs:"},
    {"backup"_L1, u"Backup", "doc.on.doc"_L1, "makeBackup:"},
    {"terminal"_L1, u"Terminal", "terminal"_L1, "openInTerminal:"},
    {"revert"_L1, u"Revert", "arrow.uturn.backward"_L1, "revertDocumentToSaved:"},
    {"reveal"_L1, u"Reveal", "arrow.up.forward.square"_L1, "revealInFinder:"},
    {"copyPath"_L1, u"Copy Path", "doc.on.clipboard"_L1, "copyFilePath:"},
    {.id = "trash"_L1, .label = u"Move to Trash", .symbol = "trash"_L1, .action = "moveDocumentToTrash:", .isDestructive = true},
    {.id = "compare"_L1, .label = u"Compare", .symbol = "arrow.left.arrow.right"_L1, .action = "compareWithFile:", .hasMenu = true},
    {"find"_L1, u"Find", "magnifyingglass"_L1, "showFindInterface:"},
    {"goToLine"_L1, u"Go to Line", "number"_L1, "goToLine:"},
    {"comment"_L1, u"Comment", "text.bubble"_L1, "toggleComment:"},
    {"splitRight"_L1, u"Split Right", "rectangle.split.2x1"_L1, "splitEditorRight:"},
    {"splitDown"_L1, u"Split Down", "rectangle.split.1x2"_L1, "splitEditorDown:"},
    {"closeSplit"_L1, u"Close Split", "xmark.rectangle"_L1, "closeSplit:"},
    {"lineNumbers"_L1, u"Line Numbers", "list.number"_L1, "toggleLineNumbers:", &Preferences::showLineNumbers},
    {"wrap"_L1, u"Wrap", "arrow.turn.down.left"_L1, "toggleLineWrap:", &Preferences::wrapLines},
    {"invisibles"_L1, u"Invisibles", "paragraphsign"_L1, "toggleInvisibles:", &Preferences::showInvisibles},
});

} // namespace

std::span<const ToolbarAction> ToolbarCatalogue::all()
{
    return actions;
}

const ToolbarAction *ToolbarCatalogue::action(QStringView id)
{
    const auto found = std::find_if(actions.begin(), actions.end(), [id](const ToolbarAction &action) { return id == action.id; });
    return found == actions.end() ? nullptr : found;
}

std::vector<const ToolbarAction *> ToolbarCatalogue::configuredActions(const Preferences &preferences)
{
    std::vector<const ToolbarAction *> configured;
    for (const QString &id : preferences.toolbarItemIDs()) {
        if (const ToolbarAction *known = action(id)) {
            configured.push_back(known);
        }
    }
    return configured;
}
