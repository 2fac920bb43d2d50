// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// What the program was asked to do when it was started.
struct CommandLine {
    enum class Request { openFiles, showHelp, showVersion, refuse };

    Request request = Request::openFiles;
    /// Files that exist, absolute, in the order given.
    QStringList files;
    /// For standard error, one a line: why the request is refused, or what is not opened.
    QStringList complaints;

    /// `arguments` without the program's own name; relative ones start at `folder`, "~/" at the home folder. What begins with "-" is an
    /// option unless it follows "--".
    [[nodiscard]] static CommandLine parse(const QStringList &arguments, const QString &folder);
    [[nodiscard]] static QString help();
};
