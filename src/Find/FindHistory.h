// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"

#include <QStringList>

#include <array>
#include <memory>

/// What was sought and what was put in its place, the latest first, each once; kept from one run to the next. Main thread only.
///
/// The file, which only the user may read, is a JSON object of two arrays of texts. It is never trusted: what is no text is left out. When
/// it cannot be read nothing is known, and when it cannot be written nobody is notified. It is written on a worker, and by the destructor.
class FindHistory final {
public:
    /// Entries of each kind; older ones go.
    static constexpr qsizetype mostEntries = 50;
    /// UTF-16 units of an entry that is kept for the next run.
    static constexpr qsizetype largestEntry = 2000;
    /// Bytes of a file that is still read.
    static constexpr qint64 largestFile = 1024 * 1024;

    enum class Kind { searches, replacements };
    /// What concerns a private file is forgotten when the program ends.
    enum class Kept { whileRunning, forNextRun };

    /// Keeps all in memory.
    FindHistory() = default;
    /// `file` is absolute; its folder is made, for its user only, when something is first written. `workers` must outlive this.
    FindHistory(QString file, Workers &workers);
    FindHistory(const FindHistory &) = delete;
    FindHistory &operator=(const FindHistory &) = delete;
    ~FindHistory();

    [[nodiscard]] const QStringList &entries(Kind kind) const { return m_entries[static_cast<size_t>(kind)]; }
    [[nodiscard]] bool isEmpty() const;
    /// Puts an entry in front; an empty one is none. Once kept for the next run it stays so.
    void add(Kind kind, const QString &entry, Kept kept);
    void clear();

private:
    struct Writing;

    void load();
    void write();

    std::array<QStringList, 2> m_entries;
    /// Of each kind, those that are not for the next run.
    std::array<QStringList, 2> m_private;
    std::shared_ptr<Writing> m_writing;
    Workers *m_workers = nullptr;
    BackgroundTask m_task;
};
