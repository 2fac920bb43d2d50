// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

/// A preferences store of the tool's own, on the disk as the program's is.
struct PrivatePreferences {
    PrivatePreferences() { preferences.setLanguageResolver(Localization::use); }

    ManualScheduler scheduler;
    DefaultsStore defaults{DefaultsStore::standardPath(), scheduler};
    NotificationCenter notifications;
    Preferences preferences{defaults, notifications};
};

QJsonObject runPreferences(const Arguments &arguments)
{
    PrivatePreferences store;
    setPreferences(store.preferences, arguments.values(u"set"));
    QJsonObject values;
    for (const AnySetting *setting : Settings::all()) {
        values[setting->key] = QJsonValue::fromVariant(store.preferences.storedValue(*setting));
    }
    return {{u"values"_s, values}};
}

constexpr auto preferencesOptions = std::to_array<OptionRow>({{u"set", u"KEY=VALUE", isPreferenceSetting}});

constexpr auto rows = std::to_array<CommandRow>({
    {u"preferences", u"", preferencesOptions, u"every preference with its value after the settings", runPreferences},
});

} // namespace

std::span<const CommandRow> preferencesCommands()
{
    return rows;
}
