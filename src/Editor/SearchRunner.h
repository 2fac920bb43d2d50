// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Text/TextRange.h"
#include "View/CommandServices.h"

#include <QObject>

#include <deque>
#include <functional>
#include <memory>
#include <optional>

class QKeyEvent;
class TextView;

/// A jump to a hit that is far away: it is looked for on a worker, once more when the text has changed meanwhile. Keys that are typed by
/// then wait, and come to the view after the jump; Escape drops them and the search. Main thread only; view and services must outlive it.
class SearchRunner final : public QObject {
    Q_OBJECT

public:
    using Seeking = std::function<std::optional<TextRange>(const std::stop_token &stop)>;

    SearchRunner(TextView &view, CommandServices services);
    ~SearchRunner() override;

    /// See VimTextView::seek(). One that is under way is stopped.
    void start(std::function<Seeking()> prepare, std::function<void(TextRange hit)> arrive);
    /// Harmless when there is none.
    void stop();
    /// True for a key of the view that comes while it searches: it waits, or stops the search.
    [[nodiscard]] bool take(const QKeyEvent &event);

private:
    void search();
    void finish();
    void arrive(const std::optional<TextRange> &hit);

    TextView &m_view;
    CommandServices m_services;
    std::function<Seeking()> m_prepare;
    std::function<void(TextRange hit)> m_arrive;
    BackgroundTask m_task;
    DelayedTask m_showProgressSoon;
    bool m_showsProgress = false;
    std::deque<std::unique_ptr<QKeyEvent>> m_keys;
};
