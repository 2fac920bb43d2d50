// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Text/TextSearch.h"

#include <QStringList>

/// What the find bars of all windows have in common while the program runs: the text sought last, how, and what was sought and put in
/// its place before. Main thread only.
class FindState final {
public:
    /// Entries that a history keeps; older ones go.
    static constexpr qsizetype mostEntries = 50;

    [[nodiscard]] const SearchQuery &query() const { return m_query; }
    /// Also puts the pattern, unless empty, at the head of the searches, and notifies the observers when anything is new.
    void setQuery(const SearchQuery &query);

    /// The latest first, each once.
    [[nodiscard]] const QStringList &searches() const { return m_searches; }
    [[nodiscard]] const QStringList &replacements() const { return m_replacements; }
    void addReplacement(const QString &replacement);

    /// Called when the query has become another.
    template<typename Function>
    [[nodiscard]] NotificationCenter::Token observe(Function callback)
    {
        return m_observers.observe("queryDidChange", this, std::move(callback));
    }

private:
    SearchQuery m_query;
    QStringList m_searches;
    QStringList m_replacements;
    NotificationCenter m_observers;
};
