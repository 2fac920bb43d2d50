// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Workers.h"

#include <deque>

/// Does the work when the test says so or, while nothing is held, at once.
class HeldWorkers final : public Workers {
public:
    bool isHeld = true;
    /// Jobs so far.
    int count = 0;

    void run(std::function<void()> job) override
    {
        ++count;
        m_jobs.push_back(std::move(job));
        if (!isHeld) {
            finish();
        }
    }
    void finish()
    {
        while (!m_jobs.empty()) {
            const auto job = std::move(m_jobs.front());
            m_jobs.pop_front();
            job();
        }
    }

private:
    std::deque<std::function<void()>> m_jobs;
};
