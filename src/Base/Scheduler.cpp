// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Scheduler.h"

#include <QTimerEvent>

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

/// Owned by the scheduler until it is over; while it runs, also by whoever runs it.
struct ScheduledCall {
    Scheduler *scheduler = nullptr;
    /// 0 once it is over.
    int id = 0;
    bool isRepeating = false;
    std::function<void()> action;
};

ScheduledHandle &ScheduledHandle::operator=(ScheduledHandle &&other) noexcept
{
    if (this != &other) {
        cancel();
        m_call = std::move(other.m_call);
    }
    return *this;
}

void ScheduledHandle::cancel()
{
    const auto call = std::exchange(m_call, {}).lock();
    if (call && call->id != 0) {
        call->scheduler->remove(call->id);
    }
}

bool ScheduledHandle::isPending() const
{
    const auto call = m_call.lock();
    return call && call->id != 0;
}

Scheduler::~Scheduler()
{
    // What the calls hold may hold handles in turn: they must find their calls over, and not this map.
    const auto calls = std::exchange(m_calls, {});
    for (const auto &[id, call] : calls) {
        call->id = 0;
    }
}

DelayedTask Scheduler::after(Milliseconds delay, std::function<void()> action)
{
    return DelayedTask(add(std::max(delay, Milliseconds(0)), Milliseconds(0), Repeat::once, std::move(action)));
}

RepeatingTimer Scheduler::every(Milliseconds interval, Milliseconds tolerance, std::function<void()> action)
{
    return RepeatingTimer(add(std::max(interval, Milliseconds(1)), tolerance, Repeat::always, std::move(action)));
}

std::weak_ptr<ScheduledCall> Scheduler::add(Milliseconds interval, Milliseconds tolerance, Repeat repeat, std::function<void()> action)
{
    const int id = startTiming(interval, tolerance, repeat);
    auto call = std::make_shared<ScheduledCall>(
        ScheduledCall{.scheduler = this, .id = id, .isRepeating = repeat == Repeat::always, .action = std::move(action)});
    m_calls.emplace(id, call);
    return call;
}

void Scheduler::remove(int id)
{
    // Kept until the end: what the action holds may remove other calls while it goes.
    const auto node = m_calls.extract(id);
    node.mapped()->id = 0;
    stopTiming(id);
}

void Scheduler::fire(int id)
{
    const auto found = m_calls.find(id);
    if (found == m_calls.end()) {
        return;
    }
    const std::shared_ptr<ScheduledCall> call = found->second;
    if (!call->isRepeating) {
        remove(id);
    }
    call->action();
}

Scheduler::Milliseconds EventLoopScheduler::now() const
{
    return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

int EventLoopScheduler::startTiming(Milliseconds interval, Milliseconds tolerance, Repeat)
{
    // Coarse timers stray by a twentieth, very coarse ones by half a second.
    Qt::TimerType type = Qt::PreciseTimer;
    if (tolerance >= Milliseconds(500) && interval >= Milliseconds(2000)) {
        type = Qt::VeryCoarseTimer;
    } else if (tolerance * 20 >= interval) {
        type = Qt::CoarseTimer;
    }
    return startTimer(std::min(interval, Milliseconds(std::numeric_limits<int>::max())), type);
}

void EventLoopScheduler::stopTiming(int id)
{
    killTimer(id);
}

void EventLoopScheduler::timerEvent(QTimerEvent *event)
{
    fire(event->timerId());
}

void ManualScheduler::advance(Milliseconds duration)
{
    const Milliseconds end = m_now + std::max(duration, Milliseconds(0));
    for (;;) {
        const auto next = std::ranges::min_element(m_timings, {}, [](const Timing &timing) { return std::tie(timing.due, timing.order); });
        if (next == m_timings.end() || next->due > end) {
            break;
        }
        m_now = std::max(m_now, next->due);
        if (next->repeat == Repeat::always) {
            next->due += next->interval;
            next->order = ++m_order;
        }
        fire(next->id);
    }
    m_now = end;
}

int ManualScheduler::startTiming(Milliseconds interval, Milliseconds, Repeat repeat)
{
    m_timings.push_back({.id = ++m_lastId, .due = m_now + interval, .interval = interval, .repeat = repeat, .order = ++m_order});
    return m_lastId;
}

void ManualScheduler::stopTiming(int id)
{
    std::erase_if(m_timings, [id](const Timing &timing) { return timing.id == id; });
}
