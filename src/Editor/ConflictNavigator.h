// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Editor/StretchRound.h"
#include "Text/TextRange.h"
#include "View/CommandServices.h"

#include <QObject>

#include <optional>
#include <vector>

struct TextChange;

/// Marks on the scroll bar of a view where its text has conflicts of a merge, and goes from one to the next. They are looked for by a
/// worker when edits have come to rest, unless the text is very long. Main thread only.
class ConflictNavigator final : public QObject {
    Q_OBJECT

public:
    static constexpr Scheduler::Milliseconds restTime{300};
    /// Units.
    static constexpr qsizetype longestText = qsizetype(16) * 1024 * 1024;

    /// All must outlive it.
    ConflictNavigator(TextView &view, const CommandServices &services);

    [[nodiscard]] bool hasConflicts() const { return !m_conflicts.empty(); }
    /// From the caret; behind the last one comes the first.
    void goToNext();
    void goToPrevious();

private:
    void noteEdit(const TextChange &change);
    void searchSoon();
    void search();
    void take(std::vector<TextRange> conflicts);
    [[nodiscard]] std::optional<size_t> firstIn(TextRange stretch) const;
    void arriveAt(std::optional<size_t> conflict);

    TextView &m_view;
    CommandServices m_services;
    StretchRound m_round;
    std::vector<TextRange> m_conflicts;
    DelayedTask m_rest;
    BackgroundTask m_searching;
};
