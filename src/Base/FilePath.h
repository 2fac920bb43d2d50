// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>

/// The clean absolute path of what somebody typed in `folder`; "~" at its start is the home folder.
[[nodiscard]] inline QString absoluteFilePath(const QString &name, const QString &folder)
{
    if (name == QLatin1StringView("~") || name.startsWith(QLatin1StringView("~/"))) {
        return QDir::cleanPath(QDir::homePath() + name.mid(1));
    }
    return QDir::cleanPath(QDir(folder).absoluteFilePath(name));
}
