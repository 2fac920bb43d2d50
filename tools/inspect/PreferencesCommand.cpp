// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Model/Preferences.h"
#include "Platform/DefaultsStore.h"

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

bool set(Preferences &preferences, const QString &setting)
{
    const qsizetype equals = setting.indexOf(u'=');
    const PreferenceRow *row = equals < 0 ? nullptr : Preferences::rowForKey(QStringView(setting).left(equals));
    return row && preferences.setFromText(*row, setting.mid(equals + 1));
}

bool isSetting(const QString &setting)
{
    ManualScheduler scheduler;
    DefaultsStore defaults(QString(), scheduler);
    NotificationCenter notifications;
    Preferences preferences(defaults, notifications);
    return set(preferences, setting);
}

QJsonObject runPreferences(const Arguments &arguments)
{
    PrivatePreferences store;
    for (const QString &setting : arguments.values(u"set")) {
        set(store.preferences, setting);
    }
    QJsonObject values;
    for (const PreferenceRow &row : Preferences::table()) {
        values[row.key] = QJsonValue::fromVariant(store.preferences.value(row.preference));
    }
    return {{u"values"_s, values}};
}

constexpr auto preferencesOptions = std::to_array<OptionRow>({{u"set", u"KEY=VALUE", isSetting}});

constexpr auto rows = std::to_array<CommandRow>({
    {u"preferences", u"", preferencesOptions, u"every preference with its value after the settings", runPreferences},
});

} // namespace

std::span<const CommandRow> preferencesCommands()
{
    return rows;
}
