// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/Scheduler.h"

#include <array>

/// What one document has asked of file systems without an answer yet. All of it is done on workers, since a share whose server is gone
/// answers in minutes or never. What is answered soon is taken at once, so that nothing flickers; what takes long is reported as an
/// activity. Main thread only.
class FileRequests final {
public:
    /// A request takes the place of an earlier one of its kind, whose answer nobody gets any more.
    enum class Kind { arrival, reading, comparison, writing, authorizedWriting, copying, moving };
    /// `authorizing`: the user is asked for a password.
    enum class Activity { none, opening, saving, authorizing };

    static constexpr Scheduler::Milliseconds slowAfter{300};

    /// `changed` is called when activity() is another, and may not destroy this.
    FileRequests(Scheduler &scheduler, Workers &workers, std::function<void()> changed)
        : m_scheduler(scheduler), m_workers(workers), m_changed(std::move(changed))
    {}

    /// Calls `work(stopToken)` on a worker and then `done(result)`, as BackgroundTask does, but before this returns if the work is over
    /// within `timeout`. `done` may destroy this.
    template<class Work, class Done>
    void start(Kind kind, std::chrono::milliseconds timeout, Work work, Done done)
    {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        cancel(kind);
        Request &request = of(kind);
        request.slow = m_scheduler.after(slowAfter, [this, &request] {
            request.isSlow = true;
            m_changed();
        });
        request.task = BackgroundTask::start(m_workers, std::move(work), [this, kind, done = std::move(done)](auto result) mutable {
            end(kind);
            done(std::move(result));
        });
        std::ignore = waitUntil(kind, deadline);
    }
    [[nodiscard]] bool waitUntil(Kind kind, std::chrono::steady_clock::time_point deadline) { return of(kind).task.waitUntil(deadline); }
    void cancel(Kind kind);
    [[nodiscard]] bool isPending(Kind kind) const { return m_requests[size_t(kind)].task.isPending(); }

    /// What the user has to do before saving, and that before opening.
    [[nodiscard]] Activity activity() const;

private:
    static constexpr size_t kindCount = 7;

    struct Request {
        BackgroundTask task;
        DelayedTask slow;
        bool isSlow = false;
    };

    [[nodiscard]] Request &of(Kind kind) { return m_requests[size_t(kind)]; }
    void end(Kind kind);

    Scheduler &m_scheduler;
    Workers &m_workers;
    std::function<void()> m_changed;
    std::array<Request, kindCount> m_requests;
};
