// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/EntryHistory.h"

#include <array>

/// What was sought and what was put in its place; see EntryHistory.
class FindHistory final {
public:
    static constexpr qsizetype mostEntries = 50;
    static constexpr qsizetype largestEntry = EntryHistory::largestEntry;
    static constexpr qint64 largestFile = EntryHistory::largestFile;

    enum class Kind { searches, replacements };
    using Kept = EntryHistory::Kept;

    /// Keeps all in memory.
    FindHistory() : m_history(form) {}
    FindHistory(QString file, Workers &workers) : m_history(form, std::move(file), workers) {}

    [[nodiscard]] const QStringList &entries(Kind kind) const { return m_history.entries(size_t(kind)); }
    [[nodiscard]] bool isEmpty() const { return m_history.isEmpty(); }
    void add(Kind kind, const QString &entry, Kept kept) { m_history.add(size_t(kind), entry, kept); }
    void clear() { m_history.clear(); }

private:
    static constexpr std::array kinds{QLatin1StringView("searches"), QLatin1StringView("replacements")};
    static constexpr EntryHistory::Form form{kinds, mostEntries};

    EntryHistory m_history;
};
