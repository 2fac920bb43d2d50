// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/Scheduler.h"
#include "Find/HitIndex.h"
#include "Text/TextSearch.h"

#include <QObject>

#include <optional>

class TextView;

/// Marks where else in what is seen the word at the caret stands, as soon as the caret rests. Only what is painted is searched here; for
/// the scroll bar a worker searches the text, unless that is very long. Main thread only.
class OccurrenceMarker final : public QObject {
    Q_OBJECT

public:
    static constexpr Scheduler::Milliseconds restTime{300};
    /// Units; what is longer is no word that anybody looks for.
    static constexpr qsizetype longestWord = 200;
    /// Units; a longer text has no marks on its scroll bar, since each rest of the caret would have all of it read.
    static constexpr qsizetype longestCounted = qsizetype(16) * 1024 * 1024;

    /// All must outlive it.
    OccurrenceMarker(TextView &view, Scheduler &scheduler, Workers &workers);

    void setMarking(bool isMarking);
    /// The word at the caret, or the selection if that is one; empty for none.
    [[nodiscard]] TextRange word() const;
    /// What is marked in a stretch that is seen, ascending.
    [[nodiscard]] std::vector<TextRange> occurrencesIn(TextRange seen);

private:
    void update();
    void mark(const QString &word);
    void repaintMarked();
    void count();
    void setPlaces(std::optional<HitIndex> places);
    void goToPlaceIn(TextRange stretch);

    TextView &m_view;
    Scheduler &m_scheduler;
    Workers &m_workers;
    bool m_isMarking = false;
    /// As it was at the last change of text or selection.
    TextRange m_word;
    /// Nothing is marked while there is none.
    std::optional<TextSearcher> m_searcher;
    /// Those of a text as it was, which are still about where they are; none if the word stands nowhere else.
    std::optional<HitIndex> m_places;
    std::optional<quint64> m_countedRevision;
    BackgroundTask m_counting;
    DelayedTask m_rest;
};
