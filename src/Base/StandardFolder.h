// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>

/// The folder of the user's that `variable` names; where it is not set, or relative and so to be ignored, `inHome` below the home folder.
/// Absolute and clean. (QStandardPaths of this version takes a relative one.)
[[nodiscard]] inline QString standardFolder(const char *variable, QStringView inHome)
{
    const QString path = qEnvironmentVariable(variable);
    return QDir::cleanPath(QDir::isAbsolutePath(path) ? path : QDir(QDir::homePath()).filePath(inHome.toString()));
}
