// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Workers.h"

#include <QByteArray>
#include <QDateTime>
#include <QStringList>

#include <memory>
#include <optional>

/// The list of recent files that all programs of the desktop share, which file managers and their panels show. Main thread only.
class DesktopRecentFiles final {
public:
    /// Bytes of a list that is still touched.
    static constexpr qint64 largestFile = 20 * 1024 * 1024;

    /// `file` is absolute.
    DesktopRecentFiles(QString file, Workers &workers);

    /// Where the desktop has it: in $XDG_DATA_HOME if that is absolute, else in ~/.local/share.
    [[nodiscard]] static QString standardPath();

    /// Adds files on a worker; absolute paths. Nobody is notified when that fails, as it does when the user made the list unwritable.
    void note(const QStringList &paths);

private:
    struct State;

    Workers &m_workers;
    /// Shared with the one job that may be under way.
    std::shared_ptr<State> m_state;
};

/// The list `xbel` with `paths` as files that Quillet opened at `now`; all else in it is kept, also what other programs wrote about these
/// files. An empty `xbel` stands for a list that is still to be made. None when it is no list. Any thread.
[[nodiscard]] std::optional<QByteArray> withRecentFiles(const QByteArray &xbel, const QStringList &paths, const QDateTime &now);
