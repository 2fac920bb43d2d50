// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Workers.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <semaphore>
#include <stop_token>
#include <type_traits>
#include <utility>

/// Work on a snapshot that would hold up the main thread. Whoever holds the task holds its result: destroying it, or assigning another to
/// it, drops the result and asks the work to stop. Main thread only, which is the application object's.
class BackgroundTask final {
public:
    BackgroundTask() = default;
    BackgroundTask(BackgroundTask &&other) noexcept = default;
    BackgroundTask &operator=(BackgroundTask &&other) noexcept;
    ~BackgroundTask() { cancel(); }

    /// Calls `work(stopToken)` on a worker and then `done(result)` on the main thread, from the event loop and so never before this
    /// returns. `work` is copied and destroyed on any thread, and is to return soon, with anything, once the token says so; `done`
    /// may cancel the task, or start another in its place. `workers` must be gone before the application object.
    template<class Work, class Done>
    [[nodiscard]] static BackgroundTask start(Workers &workers, Work work, Done done)
    {
        using Result = std::invoke_result_t<Work &, const std::stop_token &>;
        const auto result = std::make_shared<std::optional<Result>>();
        return BackgroundTask(
            workers, [result, work = std::move(work)](const std::stop_token &stop) mutable { result->emplace(work(stop)); },
            [result, done = std::move(done)]() mutable { done(*std::move(*result)); });
    }

    /// Waits until the work is done or `deadline` has come. When it is done, calls `done` at once rather than from the event loop and
    /// returns true; also true when it was over before.
    [[nodiscard]] bool waitUntil(std::chrono::steady_clock::time_point deadline);
    /// Harmless when it is over.
    void cancel();
    /// True until `done` is called or the task cancelled.
    [[nodiscard]] bool isPending() const { return m_state && m_state->finish; }

private:
    struct State {
        std::stop_source stop;
        /// Main thread; empty once it is over.
        std::function<void()> finish;
        std::binary_semaphore workIsDone{0};
    };

    BackgroundTask(Workers &workers, std::function<void(const std::stop_token &)> work, std::function<void()> finish);

    std::shared_ptr<State> m_state;
};
