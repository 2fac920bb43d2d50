// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QThread>

#include <functional>
#include <memory>
#include <optional>

class FileWatcherQueue;
class FileWatchMailbox;
class Scheduler;
class WatchCalls;
struct FileStamp;
class Workers;
struct FileWatchLink;

/// Reports when a file changed on disk or disappeared by someone else's doing.
///
/// The file, the folders on the way to it and the symbolic links among them are watched, so a file that is replaced by rename, deleted
/// and made again, or comes back with its folder stays in sight. Reports come 0.2 s after the last sign of a change, at the
/// latest 2 s after the first one, and only when
/// modification date or size differ from those last known: a burst yields one, a change of permissions none. Where watches are not to
/// be had, or do not report all, as on network shares, the file is looked at every 2 s as well.
///
/// Main thread only. Nothing here waits for a file system: what a dead share delays are the reports on its own files. Failures are
/// silent: the file counts as changed when it can no longer be asked, and never as deleted.
class FileWatcher final {
public:
    /// `renamed` is there for callers that tell it apart; this class reports the other two.
    enum class Event { contentChanged, deleted, renamed };

    /// `known` is the file as the caller has read it, and what happened to it since is reported. Without one the file as it is soon
    /// after this call is the known one; it need not exist. A relative `path` counts from the working folder of now. `onEvent` is called
    /// from the event loop and may destroy the watcher. Without its `queue` a watcher is silent.
    FileWatcher(FileWatcherQueue &queue, const QString &path, const std::optional<FileStamp> &known, std::function<void(Event)> onEvent);
    FileWatcher(const FileWatcher &) = delete;
    FileWatcher &operator=(const FileWatcher &) = delete;
    ~FileWatcher() { stop(); }

    [[nodiscard]] const QString &path() const { return m_path; }

    /// Nothing is reported after this.
    void stop();

    /// From here on changes are the caller's own and not reported, nor is what was noticed before but not yet reported. Takes effect at
    /// once.
    void beginOwnWrite();
    /// Ends the write: the file as it was `written` is the known one, or when nothing was written the one that was before. Reports begin
    /// again 0.3 s later, and with what others changed meanwhile.
    void endOwnWrite(const std::optional<FileStamp> &written);

private:
    QString m_path;
    std::shared_ptr<FileWatchMailbox> m_queue;
    std::shared_ptr<FileWatchLink> m_link;
};

/// Where all watchers of the program have their events received and their files looked at: one thread with one notifier, which never
/// touches a file system itself. Every look at a file happens on a worker. Four looks may be under way; one that takes longer than a
/// quarter of a second, as on a dead share, no longer counts as one of them and delays nobody else. A file has one look under way at
/// most. Made and destroyed on the main thread; destroying it waits 0.2 s at most for looks that hang.
class FileWatcherQueue final {
public:
    FileWatcherQueue();
    /// With other system calls, which must live as long as the process if any of them can hang.
    explicit FileWatcherQueue(WatchCalls &calls);
    /// For tests: everything on the calling thread's event loop, except what `workers` do.
    FileWatcherQueue(Scheduler &scheduler, WatchCalls &calls, Workers &workers);
    FileWatcherQueue(const FileWatcherQueue &) = delete;
    FileWatcherQueue &operator=(const FileWatcherQueue &) = delete;
    ~FileWatcherQueue();

private:
    friend class FileWatcher;

    std::unique_ptr<Workers> m_ownWorkers;
    /// Receives what the thread has to say.
    QObject m_mainThread;
    QThread m_thread;
    std::shared_ptr<FileWatchMailbox> m_mailbox;
};
