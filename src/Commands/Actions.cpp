// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/Actions.h"

#include <algorithm>

namespace {

void collect(std::span<const MenuRow> rows, std::vector<const Action *> &actions)
{
    for (const MenuRow &row : rows) {
        if (row.submenu) {
            collect(row.submenu->rows, actions);
        } else if (row.action && std::ranges::find(actions, row.action) == actions.end()) {
            actions.push_back(row.action);
        }
    }
}

} // namespace

std::vector<const Action *> Actions::inMenus()
{
    std::vector<const Action *> actions;
    for (const MenuLayout &menu : Menus::bar) {
        collect(menu.rows, actions);
    }
    return actions;
}

std::vector<const Action *> Actions::all()
{
    std::vector<const Action *> actions = inMenus();
    actions.insert(actions.end(), inNoMenu.begin(), inNoMenu.end());
    return actions;
}

const Action *Actions::named(std::string_view id)
{
    const std::vector<const Action *> actions = all();
    const auto found = std::ranges::find(actions, id, &Action::id);
    return found == actions.end() ? nullptr : *found;
}
