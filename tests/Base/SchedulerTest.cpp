// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Scheduler.h"

#include <QEventLoop>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(Scheduler, HandlesAndSchedulersMayGoInAnyOrder)
{
    int calls = 0;
    auto scheduler = std::make_unique<ManualScheduler>();
    {
        const auto dropped = scheduler->after(1ms, [&] { ++calls; });
    }
    DelayedTask survivor = scheduler->after(1ms, [&] { ++calls; });
    DelayedTask replaced = scheduler->after(1ms, [&] { calls += 10; });
    replaced = scheduler->after(1ms, [&] { ++calls; });
    const DelayedTask moved = std::move(replaced);
    scheduler->advance(2ms);
    EXPECT_EQ(calls, 2);
    // A call owns the handle of another one: both go with the scheduler.
    auto inner = std::make_shared<DelayedTask>(scheduler->after(5ms, [&] { calls += 100; }));
    const DelayedTask outer = scheduler->after(5ms, [inner] {});
    inner.reset();
    survivor = scheduler->after(1ms, [&] { ++calls; });
    scheduler.reset();
    EXPECT_FALSE(survivor.isPending());
    survivor.cancel();
    EXPECT_EQ(calls, 2);
}

TEST(EventLoopScheduler, CallsFromTheEventLoopAndMayGoInACall)
{
    auto scheduler = std::make_unique<EventLoopScheduler>();
    const auto start = scheduler->now();
    QEventLoop loop;
    int ticks = 0;
    DelayedTask cancelled = scheduler->after(0ms, [] { ADD_FAILURE() << "was cancelled"; });
    cancelled.cancel();
    DelayedTask task;
    RepeatingTimer timer = scheduler->every(2ms, 1ms, [&] {
        if (++ticks == 3) {
            timer.cancel();
            task = scheduler->after(5ms, [&] {
                EXPECT_GE(scheduler->now() - start, 10ms);
                scheduler.reset();
                loop.quit();
            });
        }
    });
    EXPECT_EQ(ticks, 0);
    loop.exec();
    EXPECT_EQ(ticks, 3);
    EXPECT_FALSE(task.isPending() || timer.isPending());
}
