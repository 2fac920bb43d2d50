// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/ToolbarSelection.h"

#include "UI/ToolbarCatalogue.h"

#include <algorithm>

ToolbarSelection::ToolbarSelection(const QStringList &ids)
{
    const auto add = [this](const ToolbarAction *action, bool isChosen) {
        if (action && std::ranges::find(m_rows, action, &Row::action) == m_rows.end()) {
            m_rows.push_back({action, isChosen});
        }
    };
    for (const QString &id : ids) {
        add(ToolbarCatalogue::action(id), true);
    }
    for (const ToolbarAction &action : ToolbarCatalogue::all()) {
        add(&action, false);
    }
}

QStringList ToolbarSelection::ids() const
{
    QStringList ids;
    for (const Row &row : m_rows) {
        if (row.isChosen) {
            ids << row.action->id;
        }
    }
    return ids;
}

bool ToolbarSelection::move(qsizetype from, qsizetype to)
{
    const auto count = std::ssize(m_rows);
    if (from < 0 || to < 0 || from >= count || to >= count) {
        return false;
    }
    const auto at = [this](qsizetype row) { return m_rows.begin() + row; };
    if (from < to) {
        std::rotate(at(from), at(from + 1), at(to + 1));
    } else {
        std::rotate(at(to), at(from), at(from + 1));
    }
    return true;
}
