// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

/// Where work goes that the calling thread must not wait for, so that tests can have it done at once.
class Workers {
public:
    virtual ~Workers() = default;

    /// Runs `job` once, which must not throw. Any thread; `job` is destroyed on the thread that ran it.
    virtual void run(std::function<void()> job) = 0;
};

/// Does the work before `run` returns.
class InlineWorkers final : public Workers {
public:
    void run(std::function<void()> job) override { job(); }
};

/// For system calls that may never return, as on a network share whose server is gone: every job has a thread at once, and nobody waits
/// for one that hangs. Threads are used again and end after some seconds without work. Destroying this drops jobs that have not begun
/// and leaves those that do not end within `patience` to themselves; what they use must live as long as they do.
class DetachedWorkers final : public Workers {
public:
    DetachedWorkers();
    DetachedWorkers(const DetachedWorkers &) = delete;
    DetachedWorkers &operator=(const DetachedWorkers &) = delete;
    ~DetachedWorkers() override;

    void run(std::function<void()> job) override;

private:
    struct State;
    std::shared_ptr<State> m_state;
};
