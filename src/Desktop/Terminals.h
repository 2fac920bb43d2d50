// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Where programs are looked for, and what the desktop says about terminals. Reading files, so not for every key press.
struct TerminalLookup {
    /// Absolute folders that hold desktop entries, the most important first.
    QStringList applicationFolders;
    /// Absolute folders that hold programs.
    QStringList programFolders;
    /// The user's choice of a terminal, a name or a path, perhaps with arguments; may be empty.
    QString terminalVariable;
    /// The names that the desktop gives itself, such as "GNOME".
    QStringList desktops;

    /// By $XDG_DATA_HOME, $XDG_DATA_DIRS, $PATH, $TERMINAL and $XDG_CURRENT_DESKTOP.
    [[nodiscard]] static TerminalLookup fromEnvironment();

    /// The desktop entry of `id` ("kitty" or "kitty.desktop"), if it is not hidden and its program is there.
    [[nodiscard]] std::optional<QString> applicationWithId(const QString &id) const;
    /// The program of that name, or at that absolute path.
    [[nodiscard]] std::optional<QString> program(const QString &name) const;

    /// What opens a terminal: the desktop entry of `preferredId` if it is installed; else the first of a few well-known ones, the one
    /// that the user or the desktop chose, any other that is known. An absolute path of a desktop entry or of a program.
    [[nodiscard]] std::optional<QString> terminal(const QString &preferredId) const;
};
