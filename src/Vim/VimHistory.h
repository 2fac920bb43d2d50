// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/EntryHistory.h"

#include <array>

/// What was entered behind ":" and behind "/" and "?"; see EntryHistory.
class VimHistory final {
public:
    static constexpr qsizetype mostEntries = 200;

    using Kept = EntryHistory::Kept;

    /// Keeps all in memory.
    VimHistory() : m_history(form) {}
    VimHistory(QString file, Workers &workers) : m_history(form, std::move(file), workers) {}

    /// The latest first. `prefix` is that of the line.
    [[nodiscard]] const QStringList &entries(char16_t prefix) const { return m_history.entries(kindOf(prefix)); }
    [[nodiscard]] bool isEmpty() const { return m_history.isEmpty(); }
    void add(char16_t prefix, const QString &entry, Kept kept) { m_history.add(kindOf(prefix), entry, kept); }
    void clear() { m_history.clear(); }

private:
    static constexpr std::array kinds{QLatin1StringView("commands"), QLatin1StringView("searches")};
    static constexpr EntryHistory::Form form{kinds, mostEntries};

    [[nodiscard]] static size_t kindOf(char16_t prefix) { return prefix == u':' ? 0 : 1; }

    EntryHistory m_history;
};
