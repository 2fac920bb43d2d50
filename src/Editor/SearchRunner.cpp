// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SearchRunner.h"

#include "Base/Translation.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

using namespace std::chrono_literals;

SearchRunner::SearchRunner(TextView &view, const CommandServices &services) : m_view(view), m_services(services), m_work(services) {}

SearchRunner::~SearchRunner()
{
    finish();
}

void SearchRunner::start(std::function<Seeking()> prepare, std::function<void(TextRange hit)> arrive)
{
    finish();
    m_prepare = std::move(prepare);
    m_arrive = std::move(arrive);
    m_work.begin(m_view, localized(u"Searching… Esc stops."), LongWork::Keys::wait, [this] { stop(); });
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
    m_work.handOver();
}

/// What waits for it stays.
void SearchRunner::finish()
{
    m_task.cancel();
    if (m_work.end()) {
        m_services.showMessage({}, 0ms);
    }
}

void SearchRunner::stop()
{
    if (m_task.isPending()) {
        m_work.dropKeys();
        finish();
    }
}
