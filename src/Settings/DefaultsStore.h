// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"

#include <QLatin1StringView>
#include <QStringList>
#include <QVariant>

#include <map>
#include <set>

/// The user's settings as a flat file of keys and values that may also be edited by hand. Main thread only.
///
/// Reading happens at the first question, writing a moment after a change and when the store goes; only keys that changed are written,
/// into the file as it is then, in one step. What the file holds is never trusted: a value of the wrong type counts as not set. When the
/// file cannot be written, or is no regular one, the changes stay in memory, and the next one tries again. A file that is damaged is kept
/// beside the new one under a name that ends in ".damaged". Only its user has access to it.
class DefaultsStore final {
public:
    /// `path` is absolute; its folder is made, for its user only, when something is first written. An empty one keeps all in memory.
    DefaultsStore(QString path, Scheduler &scheduler);
    DefaultsStore(const DefaultsStore &) = delete;
    DefaultsStore &operator=(const DefaultsStore &) = delete;
    ~DefaultsStore();

    /// Where the program keeps its settings: in $XDG_CONFIG_HOME if that is absolute, else in ~/.config.
    [[nodiscard]] static QString standardPath();

    /// What the key answers while the user has set nothing; never written. Its type is the key's type.
    void registerDefault(QLatin1StringView key, QVariant value);

    // What overrides it, else the user's value if it is one of that type, else the registered one, else an empty one.
    [[nodiscard]] QString string(QLatin1StringView key) const;
    [[nodiscard]] QStringList stringList(QLatin1StringView key) const;
    [[nodiscard]] int integer(QLatin1StringView key) const;
    /// Always finite.
    [[nodiscard]] double real(QLatin1StringView key) const;
    [[nodiscard]] bool boolean(QLatin1StringView key) const;

    /// `value` is a QString, QStringList, int, double or bool.
    void set(QLatin1StringView key, const QVariant &value);
    /// Back to the registered value.
    void remove(QLatin1StringView key);
    /// What the key answers as long as the store lives, or until it is set or removed; never written.
    void override(QLatin1StringView key, const QVariant &value) { m_overrides.insert_or_assign(QString(key), value); }
    /// Forgets those.
    void dropOverrides() { m_overrides.clear(); }
    /// The user has set the key, to whatever.
    [[nodiscard]] bool isSet(QLatin1StringView key) const;

    /// Writes what has changed since; false when it could not be written and stays in memory.
    bool synchronize();

private:
    void load() const;
    void noteChange(QLatin1StringView key);
    void forgetOverride(QLatin1StringView key);
    [[nodiscard]] bool setDamagedFileAside();
    [[nodiscard]] bool makePrivateFile() const;

    /// The user's value as `convert` reads it, else the registered one, else an empty one.
    template<typename T>
    [[nodiscard]] T read(QLatin1StringView key, std::optional<T> (*convert)(const QVariant &value)) const;

    using Values = std::map<QString, QVariant, std::less<>>;

    QString m_path;
    Scheduler &m_scheduler;
    Values m_registered;
    mutable Values m_values;
    Values m_overrides;
    mutable bool m_isLoaded = false;
    mutable bool m_isDamaged = false;
    std::set<QString> m_changed;
    DelayedTask m_writing;
};
