// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Find/FindHistory.h"
#include "Text/TextSearch.h"

/// What the find bars of all windows have in common: the text sought last, how, and what was sought and put in its place before. Main
/// thread only.
class FindState final {
public:
    using Kept = FindHistory::Kept;

    /// Its history is gone with the program.
    FindState() = default;
    /// As for FindHistory.
    FindState(QString historyFile, Workers &workers) : m_history(std::move(historyFile), workers) {}

    [[nodiscard]] const SearchQuery &query() const { return m_query; }
    /// Also puts the pattern, unless empty, at the head of the searches, and notifies the observers when anything is new.
    void setQuery(const SearchQuery &query, Kept kept = Kept::whileRunning);

    [[nodiscard]] FindHistory &history() { return m_history; }

    using LetterCase = ReplacementTemplate::LetterCase;
    /// Of what replaces a hit.
    [[nodiscard]] LetterCase letterCase() const { return m_letterCase; }
    void setLetterCase(LetterCase letterCase) { m_letterCase = letterCase; }

    /// Called when the query has become another.
    template<typename Function>
    [[nodiscard]] NotificationCenter::Token observe(Function callback)
    {
        return m_observers.observe("queryDidChange", this, std::move(callback));
    }

private:
    SearchQuery m_query;
    FindHistory m_history;
    LetterCase m_letterCase = LetterCase::asWritten;
    NotificationCenter m_observers;
};
