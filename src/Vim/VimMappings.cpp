// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimMappings.h"

#include <algorithm>

void VimMappings::set(Modes modes, const QString &keys, const VimMapping &mapping)
{
    for (size_t mode = 0; mode < modeCount; ++mode) {
        if (modes.has(Mode(mode))) {
            m_tables[mode].insert_or_assign(keys, mapping);
        }
    }
}

bool VimMappings::remove(Modes modes, const QString &keys)
{
    bool isGone = false;
    for (size_t mode = 0; mode < modeCount; ++mode) {
        isGone = (modes.has(Mode(mode)) && m_tables[mode].erase(keys) > 0) || isGone;
    }
    return isGone;
}

void VimMappings::clear(Modes modes)
{
    for (size_t mode = 0; mode < modeCount; ++mode) {
        if (modes.has(Mode(mode))) {
            m_tables[mode].clear();
        }
    }
}

const VimMapping *VimMappings::find(Mode mode, const QString &keys) const
{
    const auto found = table(mode).find(keys);
    return found == table(mode).end() ? nullptr : &found->second;
}

bool VimMappings::goOn(Mode mode, const QString &keys) const
{
    // What begins with them comes right behind them.
    const auto next = table(mode).upper_bound(keys);
    return next != table(mode).end() && next->first.startsWith(keys);
}

std::vector<VimMappings::Listed> VimMappings::list(Modes modes, QStringView keys) const
{
    std::vector<Listed> all;
    for (size_t mode = 0; mode < modeCount; ++mode) {
        if (!modes.has(Mode(mode))) {
            continue;
        }
        for (const auto &row : m_tables[mode]) {
            if (!row.first.startsWith(keys)) {
                continue;
            }
            const auto same = std::ranges::find_if(all, [&row](const Listed &known) {
                return known.keys == row.first && known.mapping->result == row.second.result &&
                       known.mapping->isRecursive == row.second.isRecursive;
            });
            if (same == all.end()) {
                all.push_back({Mode(mode), row.first, &row.second});
            } else {
                same->modes = same->modes | Modes(Mode(mode));
            }
        }
    }
    std::ranges::stable_sort(all, {}, &Listed::keys);
    return all;
}
