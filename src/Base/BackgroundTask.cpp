// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/BackgroundTask.h"

#include <QCoreApplication>

BackgroundTask::BackgroundTask(Workers &workers, std::function<void(const std::stop_token &)> work, std::function<void()> finish)
    : m_state(std::make_shared<State>())
{
    m_state->finish = std::move(finish);
    workers.run([state = m_state, work = std::move(work)] {
        if (state->stop.stop_requested()) {
            return;
        }
        work(state->stop.get_token());
        state->workIsDone.release();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [state] {
                if (const auto call = std::exchange(state->finish, nullptr)) {
                    call();
                }
            },
            Qt::QueuedConnection);
    });
}

BackgroundTask &BackgroundTask::operator=(BackgroundTask &&other) noexcept
{
    if (this != &other) {
        cancel();
        m_state = std::move(other.m_state);
    }
    return *this;
}

bool BackgroundTask::waitUntil(std::chrono::steady_clock::time_point deadline)
{
    if (!isPending()) {
        return true;
    }
    const auto state = m_state; // `done` may put another task in the place of this one
    if (!state->workIsDone.try_acquire_until(deadline)) {
        return false;
    }
    if (const auto call = std::exchange(state->finish, nullptr)) {
        call();
    }
    return true;
}

void BackgroundTask::cancel()
{
    if (const auto state = std::exchange(m_state, nullptr)) {
        state->stop.request_stop();
        // What it holds goes here and now, not on the worker.
        const auto dropped = std::exchange(state->finish, nullptr);
    }
}
