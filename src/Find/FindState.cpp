// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/FindState.h"

#include <utility>

namespace {

void putFirst(QStringList &history, const QString &entry)
{
    if (entry.isEmpty()) {
        return;
    }
    history.removeAll(entry);
    history.prepend(entry);
    if (history.size() > FindState::mostEntries) {
        history.removeLast();
    }
}

} // namespace

void FindState::setQuery(const SearchQuery &query)
{
    putFirst(m_searches, query.pattern);
    if (std::exchange(m_query, query) != query) {
        m_observers.post("queryDidChange", this);
    }
}

void FindState::addReplacement(const QString &replacement)
{
    putFirst(m_replacements, replacement);
}
