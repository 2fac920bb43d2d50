// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Settings/Settings.h"

#include <QVariant>

#include <functional>
#include <vector>

class DefaultsStore;

/// What the user has set. Main thread only.
///
/// Whatever is set is moved within its setting's limits, stored, and announced by one of the notifications below, also when nothing
/// changed.
class Preferences final {
public:
    /// After every change but those of the toolbar; about the preferences.
    static constexpr NotificationName didChange = "QLT.PreferencesDidChange";
    /// After a change of the toolbar's style, items, labels or title; about the preferences.
    static constexpr NotificationName toolbarConfigurationDidChange = "QLT.ToolbarConfigurationDidChange";
    /// After a change of the language, before `didChange`; about nothing.
    static constexpr NotificationName languageDidChange = Localization::didChangeNotification;

    /// Registers the defaults. `defaults` and `notifications` must outlive the preferences.
    Preferences(DefaultsStore &defaults, NotificationCenter &notifications);

    /// What makes the texts of the interface be looked up anew; runs when the language is set, before anybody is notified.
    void setLanguageResolver(std::function<void(AppLanguage language)> resolver) { m_resolveLanguage = std::move(resolver); }

    template<typename T>
    [[nodiscard]] T value(const Setting<T> &setting) const;
    template<typename T>
    void set(const Setting<T> &setting, const std::type_identity_t<T> &value);
    void toggle(const Setting<bool> &setting) { set(setting, !value(setting)); }
    /// Sets what it is by default.
    void reset(const AnySetting &setting);
    /// Until the program ends, or somebody sets it; whatever the user has set stays what is stored. `value` is as storedValue() has it.
    void setForRun(const AnySetting &setting, const QVariant &value);
    /// Back to what is stored.
    void endRunValues();

    /// The user has chosen a value, be it the default.
    [[nodiscard]] bool isSet(const AnySetting &setting) const;
    /// The user has chosen nothing any more.
    void unset(const AnySetting &setting);
    struct DesktopValue {
        const AnySetting &setting;
        QVariant value;
    };
    /// What settings are while the user has chosen nothing, where the desktop knows better than the defaults.
    void setDesktopValues(const std::vector<DesktopValue> &values);

    /// A QString, QStringList, double, int or bool by the setting's type; the name of a choice.
    [[nodiscard]] QVariant storedValue(const AnySetting &setting) const;
    /// Sets it from what somebody wrote on a command line: a list is its items with commas between. False, and nothing set, when `text` is
    /// no value of the setting's type or none of its choices.
    bool setFromText(const AnySetting &setting, const QString &text);

private:
    [[nodiscard]] QString text(const AnySetting &setting) const;
    [[nodiscard]] QStringList list(const AnySetting &setting) const;
    [[nodiscard]] double real(const AnySetting &setting) const;
    [[nodiscard]] int integer(const AnySetting &setting) const;
    [[nodiscard]] bool boolean(const AnySetting &setting) const;
    /// Place among the setting's choices.
    [[nodiscard]] size_t choice(const AnySetting &setting) const;
    void store(const AnySetting &setting, const QVariant &value);
    void announce(AnySetting::Announcement announcement);

    DefaultsStore &m_defaults;
    NotificationCenter &m_notifications;
    std::function<void(AppLanguage)> m_resolveLanguage;
};

template<typename T>
T Preferences::value(const Setting<T> &setting) const
{
    if constexpr (std::is_same_v<T, bool>) {
        return boolean(setting);
    } else if constexpr (std::is_same_v<T, int>) {
        return integer(setting);
    } else if constexpr (std::is_same_v<T, double>) {
        return real(setting);
    } else if constexpr (std::is_same_v<T, QString>) {
        return text(setting);
    } else if constexpr (std::is_same_v<T, QStringList>) {
        return list(setting);
    } else {
        return T(choice(setting));
    }
}

template<typename T>
void Preferences::set(const Setting<T> &setting, const std::type_identity_t<T> &value)
{
    if constexpr (std::is_enum_v<T>) {
        store(setting, QString(setting.choices[size_t(value)].name));
    } else {
        store(setting, value);
    }
}
