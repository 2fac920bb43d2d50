// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"
#include "Session/JournalWriter.h"
#include "Session/SessionStore.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

/// What the store's thread works with. It may outlive the store, when the disk hangs.
struct SessionStore::Queue : std::enable_shared_from_this<Queue> {
    Queue(const QString &folder, FileCalls &fileCalls) : root(folder), calls(fileCalls) {}

    QString root;
    FileCalls &calls;

    std::mutex mutex;
    // Guarded: what waits for the thread. A job that finds nothing has been overtaken.
    struct WaitingText {
        Rope text = {};
        /// Of the job that is to write it: one that waited for a text that was discarded must not take a later one.
        quint64 ticket = 0;
        /// Of the journal that builds on the text; 0 for none.
        QUuid document = {};
        quint64 journal = 0;
    };
    std::map<QString, WaitingText> texts;
    /// By the ticket of the job that is to write it.
    std::map<quint64, Snapshot> snapshots;
    // Guarded: what is on disk, to be written again when others remove it.
    std::map<QString, Rope> written;
    bool isLooking = false;
    // Guarded: what is to be tried again.
    std::set<QString> failedDrafts;
    bool hasFailedSnapshot = false;
    // Guarded: what the texts of drafts stood in as files that were not written to their end.
    std::map<QString, std::vector<RescuedFile>> rescued;
    // Guarded: they may be readable again some day.
    std::set<QString> unreadableDrafts;

    std::shared_ptr<JournalWriter> journal = std::make_shared<JournalWriter>(calls);

    /// Main thread.
    std::function<void(const Problem &problem)> report;
    std::set<Problem::Kind> reported;

    /// Of the thread: what `session.json` holds.
    std::optional<Snapshot> lastWritten;

    [[nodiscard]] QString drafts() const { return root + QStringLiteral("/Drafts"); }
    [[nodiscard]] QString snapshotPath() const { return root + QStringLiteral("/session.json"); }
    [[nodiscard]] QString pathOf(const QString &draft) const { return drafts() + u'/' + draft; }

    void writeDraft(const QString &name, quint64 ticket);
    void writeSnapshot(quint64 ticket);
    void lookForMissing();
    void remove(const QStringList &names);
    void dropRescued(const QString &name);

private:
    [[nodiscard]] bool isThere(const QString &path) const;
    [[nodiscard]] bool writeText(const QString &name, const Rope &text);
    void writeMissingDrafts(const Snapshot &snapshot);
    void writeSnapshot(const Snapshot &snapshot);
    void note(Problem::Kind kind, const Result<void> &result);
    void dropRescued(const Snapshot &snapshot);
    void prune(const Snapshot &snapshot);
};
