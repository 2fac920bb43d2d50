// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/KdeGlobals.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

/// The user's before the system's.
QStringList files()
{
    QStringList paths;
    for (const QString &folder : QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation)) {
        paths << folder + u"/kdeglobals"_s;
    }
    return paths;
}

/// Of the first file that has it. What has commas is read as a list.
QString valueOf(QLatin1StringView key)
{
    for (const QString &path : files()) {
        if (QFileInfo(path).isFile()) {
            const QVariant value = QSettings(path, QSettings::IniFormat).value(key);
            if (value.isValid()) {
                return value.toStringList().join(u',');
            }
        }
    }
    return {};
}

} // namespace

KdeGlobals::KdeGlobals()
{
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &KdeGlobals::read);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &KdeGlobals::read);
    read();
}

bool KdeGlobals::isDesktop()
{
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains("KDE"_L1);
}

void KdeGlobals::read()
{
    // Of the group "General", which has no name here.
    const QString scheme = valueOf("ColorScheme"_L1).remove(u' ').remove(u'-');
    const Values now{.fixedFont = valueOf("fixed"_L1), .hasHighContrast = scheme.contains("HighContrast"_L1, Qt::CaseInsensitive)};
    watch();
    if (now != m_values) {
        m_values = now;
        emit changed();
    }
}

/// A file that is replaced is another one.
void KdeGlobals::watch()
{
    const QFileInfo own(files().first());
    if (isDesktop() && !own.exists() && own.dir().exists()) {
        m_watcher.addPath(own.path());
    }
    for (const QString &path : files()) {
        if (QFileInfo(path).isFile() && !m_watcher.files().contains(path)) {
            m_watcher.addPath(path);
        }
    }
}
