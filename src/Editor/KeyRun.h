// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/PausableCall.h"
#include "Editor/LongWork.h"
#include "Text/Rope.h"

#include <functional>

class TextView;

/// What a key does, if that may take long: it runs in slices of some milliseconds, between which the event loop turns, and computes on
/// workers. Keys that are typed meanwhile wait; Escape and Control-C stop it, and then what it asks says so until it ends. Main thread
/// only; view and services must outlive it.
class KeyRun final {
public:
    struct Callbacks {
        /// It is about to pause: the view is to be as it should be.
        std::function<void()> willPause;
        /// The last thing to be done; it may be the end of this.
        std::function<void(bool isStopped)> didEnd;
    };

    KeyRun(TextView &view, const CommandServices &services, Callbacks callbacks);
    /// Stops what runs, which is done then but for didEnd().
    ~KeyRun();
    Q_DISABLE_COPY_MOVE(KeyRun)

    /// Returns when `work` is done, and didEnd() was called, or has paused. Nothing must be running.
    void start(std::function<void()> work);
    [[nodiscard]] bool isRunning() const { return m_isRunning; }
    /// It has paused: the event loop turns.
    [[nodiscard]] bool isPaused() const { return m_call.isPaused(); }
    /// It is at its end when this returns, unless that is called from within it.
    void stop();

    // For what runs; without a run nothing pauses

    /// To be asked now and then, where it may pause; false when it is to end.
    [[nodiscard]] bool goesOn();
    /// Calls `compute` on a worker with the text, once more when that is another by then; false when it is to end. `compute` is copied and
    /// destroyed on any thread.
    using Computing = std::function<void(const Rope &text, const std::stop_token &stop)>;
    [[nodiscard]] bool compute(const Computing &compute);

private:
    void proceed(const std::function<void()> &go);
    void resume();

    TextView &m_view;
    CommandServices m_services;
    Callbacks m_callbacks;
    PausableCall m_call;
    LongWork m_work;
    DelayedTask m_next;
    BackgroundTask m_computing;
    Scheduler::Milliseconds m_sliceStart{};
    bool m_isRunning = false;
    bool m_isStopped = false;
};
