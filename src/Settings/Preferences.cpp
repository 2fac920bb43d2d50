// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Settings/Preferences.h"

#include "Settings/DefaultsStore.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

using enum SettingType;

QStringList itemsOf(const QString &text)
{
    return text.split(u',', Qt::SkipEmptyParts);
}

QVariant defaultOf(const AnySetting &setting)
{
    return std::visit(
        [&](auto value) -> QVariant {
            if constexpr (std::is_same_v<decltype(value), QLatin1StringView>) {
                return setting.type == list ? QVariant(itemsOf(QString(value))) : QVariant(QString(value));
            } else {
                return value;
            }
        },
        setting.byDefault);
}

/// What `text` says, if it is of the setting's type.
std::optional<QVariant> parsed(const AnySetting &setting, const QString &text)
{
    bool isValid = true;
    QVariant value;
    switch (setting.type) {
    case SettingType::text:
        value = text;
        break;
    case choice:
        isValid = std::ranges::find(setting.choices, text, &SettingChoice::name) != setting.choices.end();
        value = text;
        break;
    case list:
        value = itemsOf(text);
        break;
    case real: {
        const double number = text.toDouble(&isValid);
        isValid = isValid && std::isfinite(number);
        value = number;
        break;
    }
    case integer:
        value = text.toInt(&isValid);
        break;
    case boolean:
        isValid = text == "true"_L1 || text == "false"_L1;
        value = text == "true"_L1;
        break;
    }
    return isValid ? std::optional(value) : std::nullopt;
}

} // namespace

Preferences::Preferences(DefaultsStore &defaults, NotificationCenter &notifications) : m_defaults(defaults), m_notifications(notifications)
{
    for (const AnySetting *setting : Settings::all()) {
        m_defaults.registerDefault(setting->key, defaultOf(*setting));
    }
}

QVariant Preferences::storedValue(const AnySetting &setting) const
{
    switch (setting.type) {
    case SettingType::text:
        return text(setting);
    case SettingType::choice:
        return QString(setting.choices[choice(setting)].name);
    case SettingType::list:
        return list(setting);
    case SettingType::real:
        return real(setting);
    case SettingType::integer:
        return integer(setting);
    case SettingType::boolean:
        return boolean(setting);
    }
    return {};
}

bool Preferences::setFromText(const AnySetting &setting, const QString &text)
{
    const auto value = parsed(setting, text);
    if (value) {
        store(setting, *value);
    }
    return value.has_value();
}

void Preferences::reset(const AnySetting &setting)
{
    store(setting, defaultOf(setting));
}

bool Preferences::isSet(const AnySetting &setting) const
{
    return m_defaults.isSet(setting.key);
}

void Preferences::unset(const AnySetting &setting)
{
    m_defaults.remove(setting.key);
    announce(setting.details.announcement);
}

void Preferences::setDesktopValues(const std::vector<DesktopValue> &values)
{
    for (const DesktopValue &row : values) {
        m_defaults.registerDefault(row.setting.key, row.value);
    }
    for (const DesktopValue &row : values) {
        if (!isSet(row.setting)) {
            announce(row.setting.details.announcement);
            return;
        }
    }
}

QString Preferences::text(const AnySetting &setting) const
{
    return m_defaults.string(setting.key);
}

QStringList Preferences::list(const AnySetting &setting) const
{
    return m_defaults.stringList(setting.key);
}

double Preferences::real(const AnySetting &setting) const
{
    // The limits hold for what was written into the file by hand too.
    return std::clamp(m_defaults.real(setting.key), setting.details.minimum, setting.details.maximum);
}

int Preferences::integer(const AnySetting &setting) const
{
    return int(std::clamp<double>(m_defaults.integer(setting.key), setting.details.minimum, setting.details.maximum));
}

bool Preferences::boolean(const AnySetting &setting) const
{
    return m_defaults.boolean(setting.key);
}

size_t Preferences::choice(const AnySetting &setting) const
{
    const auto found = std::ranges::find(setting.choices, text(setting), &SettingChoice::name);
    return found == setting.choices.end() ? 0 : size_t(found - setting.choices.begin());
}

void Preferences::setForRun(const AnySetting &setting, const QVariant &value)
{
    m_defaults.override(setting.key, value);
    announce(setting.details.announcement);
}

void Preferences::endRunValues()
{
    m_defaults.dropOverrides();
    announce(AnySetting::Announcement::preferences);
}

void Preferences::store(const AnySetting &setting, const QVariant &value)
{
    QVariant stored = value;
    if (setting.type == SettingType::real) {
        // A value that is no number at all ends at the minimum.
        stored = std::fmin(std::fmax(value.toDouble(), setting.details.minimum), setting.details.maximum);
    } else if (setting.type == SettingType::integer) {
        stored = int(std::clamp<double>(value.toInt(), setting.details.minimum, setting.details.maximum));
    }
    m_defaults.set(setting.key, stored);
    announce(setting.details.announcement);
}

void Preferences::announce(AnySetting::Announcement announcement)
{
    if (announcement == AnySetting::Announcement::toolbar) {
        m_notifications.post(toolbarConfigurationDidChange, this);
        return;
    }
    if (announcement == AnySetting::Announcement::language) {
        if (m_resolveLanguage) {
            m_resolveLanguage(value(Settings::language));
        }
        m_notifications.post(languageDidChange, nullptr);
    }
    m_notifications.post(didChange, this);
}
