// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QThreadPool>

#include <functional>
#include <memory>

/// Where work goes that the calling thread must not wait for, so that tests can have it done at once.
class Workers {
public:
    virtual ~Workers() = default;

    /// Runs `job` once, which must not throw. Any thread.
    virtual void run(std::function<void()> job) = 0;
};

/// Does the work before `run` returns.
class InlineWorkers final : public Workers {
public:
    void run(std::function<void()> job) override { job(); }
};

/// For computing: as many jobs at once as the machine has cores. Destroying this drops jobs that have not begun and waits for the others.
class PoolWorkers final : public Workers {
public:
    PoolWorkers() = default;
    PoolWorkers(const PoolWorkers &) = delete;
    PoolWorkers &operator=(const PoolWorkers &) = delete;
    ~PoolWorkers() override { m_pool.clear(); }

    void run(std::function<void()> job) override { m_pool.start(std::move(job)); }

private:
    QThreadPool m_pool;
};

/// For system calls that may never return, as on a network share whose server is gone: every job has a thread at once, and nobody waits
/// for one that hangs. Threads are used again and end after some seconds without work. Destroying this drops jobs that have not begun
/// and leaves those that do not end within `timeout` to themselves; what they use must live as long as they do.
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
