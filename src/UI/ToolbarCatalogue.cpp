// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/ToolbarCatalogue.h"

#include "Commands/Actions.h"
#include "Settings/Preferences.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr auto actions = std::to_array<ToolbarAction>({
    {"new"_L1, u"New", Actions::newDocument},
    {"open"_L1, u"Open", Actions::openDocument},
    {"save"_L1, u"Save", Actions::saveDocument},
    {"saveAs"_L1, u"Save As", Actions::saveDocumentAs},
    {"backup"_L1, u"Backup", Actions::makeBackup},
    {"terminal"_L1, u"Terminal", Actions::openInTerminal},
    {"revert"_L1, u"Revert", Actions::revertDocumentToSaved},
    {"reveal"_L1, u"Reveal", Actions::revealInFinder},
    {"copyPath"_L1, u"Copy Path", Actions::copyFilePath},
    {.id = "trash"_L1, .label = u"Move to Trash", .action = Actions::moveDocumentToTrash, .isDestructive = true},
    {.id = "compare"_L1, .label = u"Compare", .action = Actions::compareWithFile, .hasMenu = true},
    {"find"_L1, u"Find", Actions::showFindInterface},
    {"goToLine"_L1, u"Go to Line", Actions::goToLine},
    {"comment"_L1, u"Comment", Actions::toggleComment},
    {"splitRight"_L1, u"Split Right", Actions::splitEditorRight},
    {"splitDown"_L1, u"Split Down", Actions::splitEditorDown},
    {"closeSplit"_L1, u"Close Split", Actions::closeSplit},
    {"lineNumbers"_L1, u"Line Numbers", Actions::toggleLineNumbers},
    {"wrap"_L1, u"Wrap", Actions::toggleLineWrap},
    {"invisibles"_L1, u"Invisibles", Actions::toggleInvisibles},
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
    for (const QString &id : preferences.value(Settings::toolbarItemIDs)) {
        if (const ToolbarAction *known = action(id)) {
            configured.push_back(known);
        }
    }
    return configured;
}
