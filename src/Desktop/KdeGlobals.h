// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QFileSystemWatcher>
#include <QObject>

/// What KDE's users have set for all programs, read from its files and followed. Main thread only.
class KdeGlobals final : public QObject {
    Q_OBJECT

public:
    struct Values {
        /// See fontOfList(); empty while none is chosen.
        QString fixedFont;
        /// The colours chosen are called so: KDE has no switch.
        bool hasHighContrast = false;

        friend bool operator==(const Values &, const Values &) = default;
    };

    KdeGlobals();

    [[nodiscard]] const Values &values() const { return m_values; }

    /// The session is KDE's.
    [[nodiscard]] static bool isDesktop();

signals:
    void changed();

private:
    void read();
    void watch();

    QFileSystemWatcher m_watcher;
    Values m_values;
};
