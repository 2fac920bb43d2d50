// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SearchRunner.h"

#include "Base/Translation.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPointer>

using namespace std::chrono_literals;

namespace {

/// Before anything is said of a search that goes on.
constexpr Scheduler::Milliseconds timeout = 300ms;
constexpr Scheduler::Milliseconds untilFound = 24h;

bool isEscape(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Escape || (event.key() == Qt::Key_BracketLeft && event.modifiers() == Qt::ControlModifier);
}

} // namespace

SearchRunner::SearchRunner(TextView &view, CommandServices services) : m_view(view), m_services(std::move(services)) {}

SearchRunner::~SearchRunner()
{
    finish();
}

void SearchRunner::start(std::function<Seeking()> prepare, std::function<void(TextRange hit)> arrive)
{
    finish();
    m_prepare = std::move(prepare);
    m_arrive = std::move(arrive);
    m_showProgressSoon = m_services.scheduler.after(timeout, [this] {
        m_showsProgress = true;
        m_services.showMessage(localized(u"Searching… Esc stops."), untilFound);
    });
    search();
}

void SearchRunner::search()
{
    m_task = BackgroundTask::start(m_services.workers, m_prepare(),
                                   [this, revision = m_view.storage().revision()](const std::optional<TextRange> &hit) {
                                       m_view.storage().revision() == revision ? arrive(hit) : search();
                                   });
}

void SearchRunner::arrive(const std::optional<TextRange> &hit)
{
    finish();
    if (hit) {
        m_arrive(*hit);
    }
    // Any of the keys may be the end of this, or search once more.
    const QPointer self(this);
    while (self && !m_task.isPending() && !m_keys.empty()) {
        const auto key = std::move(m_keys.front());
        m_keys.pop_front();
        QCoreApplication::sendEvent(&m_view, key.get());
    }
}

/// What waits for it stays.
void SearchRunner::finish()
{
    m_task.cancel();
    m_showProgressSoon.cancel();
    if (std::exchange(m_showsProgress, false)) {
        m_services.showMessage({}, 0ms);
    }
}

void SearchRunner::stop()
{
    if (m_task.isPending()) {
        m_keys.clear();
        finish();
    }
}

bool SearchRunner::take(const QKeyEvent &event)
{
    if (!m_task.isPending()) {
        return false;
    }
    if (isEscape(event)) {
        stop();
    } else {
        m_keys.emplace_back(event.clone());
    }
    return true;
}
