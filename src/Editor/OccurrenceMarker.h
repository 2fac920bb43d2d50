// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/Scheduler.h"
#include "Text/TextSearch.h"

#include <QObject>

#include <functional>
#include <optional>

class TextView;

/// Marks where else in what is seen the word at the caret stands, as soon as the caret rests, and goes from one to the next. Only what is
/// painted is searched. Main thread only.
class OccurrenceMarker final : public QObject {
    Q_OBJECT

public:
    struct Services {
        Scheduler &scheduler;
        Workers &workers;
        /// For a command that finds nothing.
        std::function<void()> beep;
    };
    static constexpr Scheduler::Milliseconds restTime{300};
    /// Units; what is longer is no word that anybody looks for.
    static constexpr qsizetype longestWord = 200;

    /// All must outlive it.
    OccurrenceMarker(TextView &view, const Services &services);

    void setMarking(bool isMarking);
    /// Selects the next one, after the last the first.
    void goToNext();
    /// What is marked in a stretch that is seen, ascending.
    [[nodiscard]] std::vector<TextRange> occurrencesIn(TextRange seen);

private:
    void update();
    void mark(const QString &word);
    /// The word at the caret, or the selection if that is one; empty for none.
    [[nodiscard]] TextRange word() const;

    TextView &m_view;
    Services m_services;
    bool m_isMarking = false;
    /// Nothing is marked while there is none.
    std::optional<TextSearcher> m_searcher;
    DelayedTask m_rest;
    BackgroundTask m_command;
};
