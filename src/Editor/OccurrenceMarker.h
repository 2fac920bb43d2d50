// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "Text/TextSearch.h"

#include <QObject>

#include <optional>

class TextView;

/// Marks where else in what is seen the word at the caret stands, as soon as the caret rests. Only what is painted is searched.
/// Main thread only.
class OccurrenceMarker final : public QObject {
    Q_OBJECT

public:
    static constexpr Scheduler::Milliseconds restTime{300};
    /// Units; what is longer is no word that anybody looks for.
    static constexpr qsizetype longestWord = 200;

    /// All must outlive it.
    OccurrenceMarker(TextView &view, Scheduler &scheduler);

    void setMarking(bool isMarking);
    /// The word at the caret, or the selection if that is one; empty for none.
    [[nodiscard]] TextRange word() const;
    /// What is marked in a stretch that is seen, ascending.
    [[nodiscard]] std::vector<TextRange> occurrencesIn(TextRange seen);

private:
    void update();
    void mark(const QString &word);

    TextView &m_view;
    Scheduler &m_scheduler;
    bool m_isMarking = false;
    /// Nothing is marked while there is none.
    std::optional<TextSearcher> m_searcher;
    DelayedTask m_rest;
};
