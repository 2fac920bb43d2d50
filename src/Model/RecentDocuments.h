// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"

#include <QString>
#include <QStringList>

#include <map>
#include <set>
#include <vector>

/// The files that were opened or saved last, newest first, kept from one run to the next. Main thread only.
///
/// The file is a JSON array in the order of the list, of objects with "path" and, when the entry came with one, "bookmark". It is never
/// trusted: what is no entry is left out. When it cannot be read the list is empty, and when it cannot be written nobody is notified.
class RecentDocuments final {
public:
    static constexpr size_t largestCount = 10;
    /// Bytes of a file that is still read.
    static constexpr qint64 largestFile = 1024 * 1024;

    struct Entry {
        /// Absolute and clean; symbolic links are as they were named.
        QString path;
        /// Means nothing here, and is kept.
        std::optional<QString> bookmark = std::nullopt;

        friend bool operator==(const Entry &, const Entry &) = default;
    };

    /// `file` is absolute; its folder is made, for its user only, when something is first written. An empty one keeps all in memory.
    /// Whether files exist is asked on `workers`, and one that has no answer within `timeout` counts as not there.
    RecentDocuments(QString file, Workers &workers, std::chrono::milliseconds timeout = std::chrono::milliseconds(150));
    RecentDocuments(const RecentDocuments &) = delete;
    RecentDocuments &operator=(const RecentDocuments &) = delete;

    [[nodiscard]] const std::vector<Entry> &entries() const { return m_entries; }
    /// The entries whose files are there. Does not take longer than the timeout, whatever network share does not answer.
    [[nodiscard]] std::vector<Entry> reachable();
    /// The file of the entry of this path if there is such an entry and its file is there.
    [[nodiscard]] std::optional<QString> resolve(const QString &path);

    /// Puts files in front, the last of them first. One write, however many there are.
    void note(const QStringList &paths);
    void clear();

    /// `callback` is notified of every note: the paths that are in the list now, in the order in which they were noted.
    void onNote(std::function<void(const QStringList &paths)> callback) { m_onNote = std::move(callback); }

private:
    struct Inquiry {
        BackgroundTask task;
        std::chrono::steady_clock::time_point deadline;
    };

    void load();
    void write() const;
    [[nodiscard]] std::set<QString> existing(const std::vector<Entry> &entries);

    QString m_file;
    Workers &m_workers;
    std::chrono::milliseconds m_timeout;
    std::vector<Entry> m_entries;
    /// By path. One that hangs stays, so that opening the menu again costs neither another thread nor the timeout.
    std::map<QString, Inquiry> m_inquiries;
    /// Answers that came since inquiring last began.
    std::set<QString> m_found;
    std::function<void(const QStringList &paths)> m_onNote;
};
