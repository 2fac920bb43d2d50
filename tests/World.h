// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

/// The environment of a user who has nothing, made before anything looks at it: folders that go with the program, fonts and types of files
/// that are always the same, no bus, no display, no printers, no language, no other programs' settings.
class World final {
public:
    World()
    {
        std::vector<QByteArray> foreign;
        for (char **variable = environ; *variable; ++variable) {
            const QByteArray name = QByteArray(*variable).split('=').first();
            if (!isKept(name)) {
                foreign.push_back(name);
            }
        }
        for (const QByteArray &name : foreign) {
            qunsetenv(name.constData());
        }
        for (const char *name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_DIRS"}) {
            qputenv(name, m_home.path().toUtf8());
        }
        ::umask(S_IWGRP | S_IWOTH);
        qputenv("XDG_DATA_DIRS", QUILLET_TEST_DATA);
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_home.filePath(QStringLiteral("no-bus")).toUtf8());
        qputenv("CUPS_SERVER", m_home.filePath(QStringLiteral("no-printers")).toUtf8());
        qputenv("FONTCONFIG_FILE", QUILLET_TEST_DATA "/fonts.conf");
        qputenv("LC_ALL", "C.UTF-8");
        qputenv("TZ", "UTC");
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }

private:
    QTemporaryDir m_home;

    /// What the test runner says, and where programs are.
    static bool isKept(const QByteArray &name)
    {
        static constexpr std::array kept = {"PATH", "TMPDIR", "QT_SCALE_FACTOR", "VIM_WALKS"};
        return name.startsWith("GTEST_") || name.endsWith("SAN_OPTIONS") ||
               std::ranges::any_of(kept, [&](const char *one) { return name == one; });
    }
};
