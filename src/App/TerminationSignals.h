// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

/// Turns SIGTERM, SIGINT and SIGHUP into a call from the event loop of the thread that made it. There is one at a time; while it lives the
/// signals do not end the program by themselves. One that was ignored before stays so.
class TerminationSignals final {
public:
    explicit TerminationSignals(std::function<void()> action);
    TerminationSignals(const TerminationSignals &) = delete;
    TerminationSignals &operator=(const TerminationSignals &) = delete;
    ~TerminationSignals();

private:
    int m_sockets[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> m_notifier;
};
