// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "App/CommandLine.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <chrono>
#include <functional>

/// What a start of the program, or the desktop, asks of the one that runs.
struct OpenRequest {
    std::vector<CommandLine::File> files = {};
    bool opensNewWindow = false;
    bool opensNewTab = false;
    /// Files that do not exist are to be made by saving them.
    bool mayNameNewFiles = false;
    /// What is not opened, and why, for the user.
    QStringList problems = {};
    /// What comes on it is opened too; below 0 there is none. Whoever is asked closes it.
    int stream = -1;
    /// By which the desktop lets a window come to the front; may be empty.
    QString activationToken = {};
    /// Somebody waits until all of it is closed again, and gets the exit status: 0, or 1 when edits were not saved. May be empty.
    std::function<void(int status)> closed = {};
    /// Who that is, for RunningInstance::Handlers::gone; may be empty.
    QString waiter = {};
};

/// The one program of a user's session, which others find on the session bus: as `org.freedesktop.Application`, and by an interface of its
/// own that knows places in files. Main thread only.
class RunningInstance final : public QObject {
    Q_OBJECT

public:
    enum class Answer { taken, nobodyRuns, none };
    enum class Until { taken, closed };
    struct Outcome {
        Answer answer = Answer::none;
        /// For the exit, when it was taken.
        int status = 0;
    };

    /// Hands `request` to the program that runs, which has so long to answer at all. Closes nothing.
    [[nodiscard]] static Outcome handOver(QDBusConnection bus, const OpenRequest &request, Until until, std::chrono::milliseconds timeout);
    /// Whether there is one, after at most so long.
    [[nodiscard]] static bool waitUntilOneRuns(QDBusConnection bus, std::chrono::milliseconds timeout);

    /// Both are called from the event loop.
    struct Handlers {
        std::function<void(const OpenRequest &request)> open;
        /// Somebody who waited has ended before it was notified.
        std::function<void(const QString &waiter)> gone;
    };
    RunningInstance(const QDBusConnection &bus, Handlers handlers);
    ~RunningInstance() override;

    /// Is the one that is found from now on; false when there is another, or no bus.
    [[nodiscard]] bool registerHere();
    void take(const OpenRequest &request);
    [[nodiscard]] const QDBusConnection &bus() const { return m_bus; }

private:
    QDBusConnection m_bus;
    Handlers m_handlers;
    QDBusServiceWatcher m_waiters;
    bool m_isRegistered = false;
};
