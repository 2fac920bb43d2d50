// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Workers.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace {

constexpr auto keepIdle = std::chrono::seconds(5);
constexpr auto timeout = std::chrono::milliseconds(200);

} // namespace

struct DetachedWorkers::State {
    std::mutex mutex;
    std::condition_variable wake;
    std::condition_variable ended;
    std::deque<std::function<void()>> jobs;
    size_t idle = 0;
    size_t threads = 0;
    bool isClosing = false;

    void work()
    {
        std::unique_lock lock(mutex);
        for (;;) {
            ++idle;
            wake.wait_for(lock, keepIdle, [this] { return isClosing || !jobs.empty(); });
            --idle;
            if (jobs.empty()) {
                break;
            }
            auto job = std::move(jobs.front());
            jobs.pop_front();
            lock.unlock();
            job();
            job = nullptr;
            lock.lock();
        }
        --threads;
        ended.notify_all();
    }
};

DetachedWorkers::DetachedWorkers() : m_state(std::make_shared<State>()) {}

DetachedWorkers::~DetachedWorkers()
{
    std::unique_lock lock(m_state->mutex);
    const auto dropped = std::exchange(m_state->jobs, {});
    m_state->isClosing = true;
    m_state->wake.notify_all();
    m_state->ended.wait_for(lock, timeout, [this] { return m_state->threads == 0; });
}

void DetachedWorkers::run(std::function<void()> job)
{
    const std::lock_guard lock(m_state->mutex);
    m_state->jobs.push_back(std::move(job));
    if (m_state->jobs.size() > m_state->idle) {
        try {
            std::thread([state = m_state] { state->work(); }).detach();
            ++m_state->threads;
        } catch (const std::system_error &) {
            // No more threads to be had: the job waits for one that gets free, or for the next job's.
        }
    }
    m_state->wake.notify_one();
}
