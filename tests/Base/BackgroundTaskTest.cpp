// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/BackgroundTask.h"

#include <QCoreApplication>
#include <QThread>

#include <gmock/gmock.h>

#include <semaphore>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(BackgroundTask, HandsItsResultOverFromTheEventLoopUnlessItIsGone)
{
    InlineWorkers workers;
    std::vector<int> results;
    const auto give = [](int result) { return [result](const std::stop_token &) { return result; }; };
    const auto take = [&](int result) { results.push_back(result); };

    const auto kept = BackgroundTask::start(workers, give(1), take);
    auto cancelled = BackgroundTask::start(workers, give(2), take);
    cancelled.cancel();
    auto replaced = BackgroundTask::start(workers, give(3), take);
    replaced = BackgroundTask::start(workers, give(4), take);
    // Its own handle begins the next from within the call; what the call holds must outlive it.
    BackgroundTask chain;
    const auto held = std::make_shared<int>(5);
    chain = BackgroundTask::start(workers, give(0), [&, held](int) {
        chain = BackgroundTask::start(workers, give(6), take);
        results.push_back(*held);
    });
    EXPECT_THAT(results, IsEmpty());
    EXPECT_TRUE(kept.isPending());
    EXPECT_FALSE(cancelled.isPending());
    QCoreApplication::processEvents();
    EXPECT_THAT(results, ElementsAre(1, 4, 5));
    QCoreApplication::processEvents();
    EXPECT_THAT(results, ElementsAre(1, 4, 5, 6));
    EXPECT_FALSE(kept.isPending());
    EXPECT_EQ(held.use_count(), 1);
}

TEST(BackgroundTask, StopsOnItsWorker)
{
    std::binary_semaphore hasBegun(0);
    bool wasStopped = false;
    const auto owned = std::make_shared<int>();
    auto workers = std::make_unique<PoolWorkers>();
    auto stopped = BackgroundTask::start(
        *workers,
        [&](const std::stop_token &stop) {
            hasBegun.release();
            while (!stop.stop_requested()) {
                QThread::yieldCurrentThread();
            }
            wasStopped = true;
            return 0;
        },
        [owned](int) { ADD_FAILURE() << "was cancelled"; });
    hasBegun.acquire();
    stopped.cancel();
    EXPECT_EQ(owned.use_count(), 1) << "dropped by the thread that it belongs to";
    workers.reset();
    EXPECT_TRUE(wasStopped);
    QCoreApplication::processEvents();
}

TEST(BackgroundTask, CanBeWaitedForUntilADeadline)
{
    using std::chrono::steady_clock;
    PoolWorkers workers;
    std::binary_semaphore mayEnd(0);
    std::vector<int> results;
    BackgroundTask task = BackgroundTask::start(
        workers,
        [&](const std::stop_token &) {
            mayEnd.acquire();
            return 1;
        },
        [&](int result) {
            results.push_back(result);
            task = BackgroundTask::start(
                workers, [](const std::stop_token &) { return 2; }, [&](int next) { results.push_back(next); });
        });
    EXPECT_FALSE(task.waitUntil(steady_clock::now()));
    EXPECT_THAT(results, IsEmpty());
    mayEnd.release();
    const auto far = steady_clock::now() + std::chrono::minutes(1);
    EXPECT_TRUE(task.waitUntil(far));
    EXPECT_THAT(results, ElementsAre(1));
    EXPECT_TRUE(task.waitUntil(far));
    EXPECT_TRUE(task.waitUntil(far)) << "it is over";
    QCoreApplication::processEvents();
    EXPECT_THAT(results, ElementsAre(1, 2)) << "each once";
}
