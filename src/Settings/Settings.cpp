// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Settings/Settings.h"

#include <algorithm>

namespace {

constexpr size_t count = [] {
    size_t sum = Settings::withoutRow.size();
    for (const SettingsPageTable &page : Settings::pages) {
        sum += page.rows.size();
    }
    return sum;
}();

constexpr auto settings = [] {
    std::array<const AnySetting *, count> listed{};
    auto *next = std::ranges::copy(Settings::withoutRow, listed.data()).out;
    for (const SettingsPageTable &page : Settings::pages) {
        for (const SettingRow &row : page.rows) {
            *next++ = &row.setting;
        }
    }
    return listed;
}();

} // namespace

std::span<const AnySetting *const> Settings::all()
{
    return settings;
}

const AnySetting *Settings::withKey(QStringView key)
{
    const auto *const found = std::ranges::find_if(settings, [key](const AnySetting *setting) { return setting->key == key; });
    return found == settings.end() ? nullptr : *found;
}
