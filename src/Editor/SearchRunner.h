// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Editor/LongWork.h"
#include "Text/TextRange.h"

#include <functional>
#include <optional>

class TextView;

/// A jump to a hit that is far away: it is looked for on a worker, once more when the text has changed meanwhile. Keys that are typed by
/// then wait, and come to the view after the jump; Escape drops them and the search. Main thread only; view and services must outlive it.
class SearchRunner final {
public:
    using Seeking = std::function<std::optional<TextRange>(const std::stop_token &stop)>;

    SearchRunner(TextView &view, const CommandServices &services);
    ~SearchRunner();
    Q_DISABLE_COPY_MOVE(SearchRunner)

    /// See VimTextView::seek(). One that is under way is stopped.
    void start(std::function<Seeking()> prepare, std::function<void(TextRange hit)> arrive);
    /// Harmless when there is none.
    void stop();

private:
    void search();
    void finish();
    void arrive(const std::optional<TextRange> &hit);

    TextView &m_view;
    CommandServices m_services;
    std::function<Seeking()> m_prepare;
    std::function<void(TextRange hit)> m_arrive;
    BackgroundTask m_task;
    LongWork m_work;
};
