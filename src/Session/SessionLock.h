// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"

#include <QByteArray>
#include <QString>

/// One program's claim on a folder, which ends with the program, however that ends.
///
/// The kernel's lock on a file decides wherever the file system has one: flock(), which NFS has too, else that of fcntl(). Where it has
/// neither, a file beside it, its name ending in ".holder", says who has the folder: the computer, its start, the process and the start of
/// that. A holder that does not run any more loses its claim when it was one of this computer; whether one of another computer still runs
/// nobody can tell. Main thread only.
class SessionLock final {
public:
    enum class State {
        held,
        heldByOther,
        /// Nothing can be written there, so that nobody disturbs anybody.
        unavailable,
    };

    /// `calls` must outlive the lock.
    SessionLock(const QString &path, FileCalls &calls);
    ~SessionLock();
    Q_DISABLE_COPY_MOVE(SessionLock)

    [[nodiscard]] State state() const { return m_state; }

private:
    [[nodiscard]] State lock();
    [[nodiscard]] State claim();
    [[nodiscard]] bool isStillNamed() const;
    [[nodiscard]] bool removeGoneHolder(const QByteArray &content);
    void close();

    FileCalls &m_calls;
    QByteArray m_path;
    int m_file = -1;
    bool m_hasClaim = false;
    State m_state = State::unavailable;
};
