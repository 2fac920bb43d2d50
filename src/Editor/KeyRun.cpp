// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/KeyRun.h"

#include "Base/Translation.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <optional>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// Hardly felt between a key and what is seen of it.
constexpr Scheduler::Milliseconds slice = 40ms;

} // namespace

KeyRun::KeyRun(TextView &view, const CommandServices &services, Callbacks callbacks)
    : m_view(view), m_services(services), m_callbacks(std::move(callbacks)), m_work(services)
{}

KeyRun::~KeyRun()
{
    m_callbacks.didEnd = [](bool /*isStopped*/) {};
    stop();
}

void KeyRun::start(std::function<void()> work)
{
    m_isRunning = true;
    m_isStopped = false;
    proceed([&] { m_call.start(std::move(work)); });
}

/// One slice.
void KeyRun::proceed(const std::function<void()> &go)
{
    m_sliceStart = m_services.scheduler.now();
    go();
    if (m_call.isPaused()) {
        if (!m_work.isUnderWay()) {
            m_work.begin(m_view, localized(u"Running… Esc stops."), LongWork::Keys::wait, [this] { stop(); });
        }
        if (!m_computing.isPending()) {
            m_next = m_services.scheduler.after(0ms, [this] { resume(); });
        }
        return;
    }
    m_isRunning = false;
    if (m_work.end()) {
        m_services.showMessage({}, 0ms);
    }
    const QPointer work(&m_work);
    const auto didEnd = m_callbacks.didEnd;
    didEnd(m_isStopped);
    if (work) {
        work->handOver();
    }
}

void KeyRun::resume()
{
    proceed([this] { m_call.resume(); });
}

void KeyRun::stop()
{
    if (!m_isRunning) {
        return;
    }
    m_isStopped = true;
    m_work.dropKeys();
    m_next.cancel();
    m_computing.cancel();
    if (m_call.isPaused()) {
        resume();
    }
}

bool KeyRun::goesOn()
{
    if (!m_call.isWithin() || m_isStopped || m_services.scheduler.now() - m_sliceStart < slice) {
        return !m_isStopped;
    }
    m_callbacks.willPause();
    m_call.pause();
    return !m_isStopped;
}

bool KeyRun::compute(const Computing &compute)
{
    m_callbacks.willPause();
    if (!m_call.isWithin()) {
        compute(m_view.storage().text(), {});
        return true;
    }
    std::optional<quint64> revision;
    while (!m_isStopped && revision != m_view.storage().revision()) {
        revision = m_view.storage().revision();
        const auto work = [compute, text = m_view.storage().text()](const std::stop_token &stop) {
            compute(text, stop);
            return true;
        };
        m_computing = BackgroundTask::start(m_services.workers, work, [this](bool /*isDone*/) { resume(); });
        m_call.pause();
    }
    return !m_isStopped;
}
