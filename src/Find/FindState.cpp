// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/FindState.h"

#include <utility>

void FindState::setQuery(const SearchQuery &query, Kept kept)
{
    m_history.add(FindHistory::Kind::searches, query.pattern, kept);
    if (std::exchange(m_query, query) != query) {
        m_observers.post("queryDidChange", this);
    }
}
