// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Workers.h"

#include <deque>

/// Does the work when the test says so or, while nothing is held, at once; or has it done on threads.
class HeldWorkers final : public Workers {
public:
    enum class Mode { held, atOnce };
    explicit HeldWorkers(Mode mode = Mode::held) : isHeld(mode == Mode::held) {}

    bool isHeld;
    /// Jobs so far.
    int count = 0;
    /// Those that wait.
    std::deque<std::function<void()>> jobs;
    std::unique_ptr<Workers> threads;

    void run(std::function<void()> job) override
    {
        ++count;
        if (threads) {
            threads->run(std::move(job));
            return;
        }
        jobs.push_back(std::move(job));
        if (!isHeld) {
            finish();
        }
    }
    void finish()
    {
        while (!jobs.empty()) {
            const auto job = std::move(jobs.front());
            jobs.pop_front();
            job();
        }
    }
};
