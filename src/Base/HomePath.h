// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>

/// An absolute path as it is shown: the home folder as "~".
[[nodiscard]] inline QString abbreviatedPath(const QString &path)
{
    const QString home = QDir::homePath();
    return path == home ? QStringLiteral("~") : path.startsWith(home + u'/') ? u'~' + path.mid(home.length()) : path;
}
