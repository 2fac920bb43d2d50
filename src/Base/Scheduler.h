// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

struct ScheduledCall;

/// What delayed tasks and repeating timers have in common: whoever holds one holds the call it stands for. Destroying it, or assigning
/// another to it, cancels the call. It may outlive its scheduler.
class ScheduledHandle {
public:
    ScheduledHandle() = default;
    ScheduledHandle(ScheduledHandle &&other) noexcept = default;
    ScheduledHandle &operator=(ScheduledHandle &&other) noexcept;
    ~ScheduledHandle() { cancel(); }

    /// The call will not happen any more. Harmless when it has, also from within the call itself.
    void cancel();
    /// True while the call lies ahead; of a repeating timer until it is cancelled.
    [[nodiscard]] bool isPending() const;

protected:
    explicit ScheduledHandle(std::weak_ptr<ScheduledCall> call) : m_call(std::move(call)) {}

private:
    std::weak_ptr<ScheduledCall> m_call;
};

/// One call that lies ahead.
class DelayedTask final : public ScheduledHandle {
public:
    DelayedTask() = default;

private:
    friend class Scheduler;
    using ScheduledHandle::ScheduledHandle;
};

/// A call that comes again and again.
class RepeatingTimer final : public ScheduledHandle {
public:
    RepeatingTimer() = default;

private:
    friend class Scheduler;
    using ScheduledHandle::ScheduledHandle;
};

/// Where every delay and timer of the program comes from, so that tests can own the time. A scheduler, its handles and its calls belong
/// to the thread that made it. A call may cancel itself, cancel others and schedule anew; the scheduler may be destroyed from within one
/// unless the scheduler says otherwise.
class Scheduler {
public:
    using Milliseconds = std::chrono::milliseconds;

    Scheduler() = default;
    Scheduler(const Scheduler &) = delete;
    Scheduler &operator=(const Scheduler &) = delete;
    /// Cancels what is still pending.
    virtual ~Scheduler();

    /// Time since some moment before the scheduler was made; never runs backwards.
    [[nodiscard]] virtual Milliseconds now() const = 0;

    /// Calls `action` once, no earlier than `delay` from now and never before this returns. A delay of 0 is the next turn of the event
    /// loop; a negative one counts as 0.
    [[nodiscard]] DelayedTask after(Milliseconds delay, std::function<void()> action);
    /// Calls `action` every `interval` (at least 1 ms) from now on. Each call may come up to `tolerance` early or late, which lets the
    /// machine sleep longer.
    [[nodiscard]] RepeatingTimer every(Milliseconds interval, Milliseconds tolerance, std::function<void()> action);

protected:
    enum class Repeat { once, always };

    /// Begins to count; answers with a number above 0 that no other running timer of this scheduler has.
    virtual int startTiming(Milliseconds interval, Milliseconds tolerance, Repeat repeat) = 0;
    virtual void stopTiming(int id) = 0;
    /// Runs the call that `id` stands for. The caller must not touch the scheduler afterwards if it may be destroyed by the call.
    void fire(int id);

private:
    friend class ScheduledHandle;

    std::weak_ptr<ScheduledCall> add(Milliseconds interval, Milliseconds tolerance, Repeat repeat, std::function<void()> action);
    void remove(int id);

    std::unordered_map<int, std::shared_ptr<ScheduledCall>> m_calls;
};

/// Time as it is, on the event loop of the thread that made the scheduler.
class EventLoopScheduler final : public Scheduler, private QObject {
public:
    EventLoopScheduler() = default;

    [[nodiscard]] Milliseconds now() const override;

protected:
    int startTiming(Milliseconds interval, Milliseconds tolerance, Repeat repeat) override;
    void stopTiming(int id) override;
    void timerEvent(QTimerEvent *event) override;
};

/// Time that stands still until it is advanced. Must not be destroyed from within a call.
class ManualScheduler final : public Scheduler {
public:
    [[nodiscard]] Milliseconds now() const override { return m_now; }

    /// Moves the time on and runs what falls due meanwhile, in order of time (calls of the same moment in the order in which they were
    /// scheduled), each with `now()` at its own moment. Calls that are scheduled by calls run too when they fall due in that time.
    void advance(Milliseconds duration);
    /// Calls that lie ahead, repeating ones counted once.
    [[nodiscard]] int pendingCount() const { return int(m_timings.size()); }

protected:
    int startTiming(Milliseconds interval, Milliseconds tolerance, Repeat repeat) override;
    void stopTiming(int id) override;

private:
    struct Timing {
        int id = 0;
        Milliseconds due{};
        Milliseconds interval{};
        Repeat repeat = Repeat::once;
        /// Orders calls of the same moment.
        quint64 order = 0;
    };

    std::vector<Timing> m_timings;
    Milliseconds m_now{};
    quint64 m_order = 0;
    int m_lastId = 0;
};
