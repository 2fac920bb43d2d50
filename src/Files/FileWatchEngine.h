// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "Files/FileWatcher.h"
#include "Files/WatchedPath.h"

#include <QSocketNotifier>

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <unordered_set>

struct inotify_event;
class FileWatchEngine;

/// What a watcher and its record in the engine share. Writes are counted from 1; the main thread counts those begun, the engine follows.
struct FileWatchLink {
    /// Main thread; empty once the watcher is stopped.
    std::function<void(FileWatcher::Event)> onEvent;
    std::atomic<quint64> begunWrites = 0;
    /// The last write whose grace is over.
    std::atomic<quint64> settledWrites = 0;

    [[nodiscard]] bool isSuspended() const { return begunWrites != settledWrites; }
};

/// The way to the engine from other threads, which may outlive it.
class FileWatchMailbox final {
public:
    using Message = std::function<void(FileWatchEngine &)>;

    explicit FileWatchMailbox(FileWatchEngine &engine) : m_engine(&engine) {}
    /// In order, on the engine's thread; dropped when the engine is gone. Any thread.
    void post(Message message);
    void close();

private:
    std::mutex m_mutex;
    FileWatchEngine *m_engine;
};

/// The watchers' side of their queue. A record of each watcher asks for looks at its file, of four kinds; looks run on workers, and what
/// they find comes back as a message. Belongs to one thread, on which `start` is called first.
class FileWatchEngine final : public QObject {
public:
    /// `receiver` lives on the main thread, and there longer than the engine. With no scheduler the engine makes one on its thread.
    FileWatchEngine(QObject &receiver, Scheduler *scheduler, WatchCalls &calls, Workers &workers);
    ~FileWatchEngine() override;

    [[nodiscard]] const std::shared_ptr<FileWatchMailbox> &mailbox() const { return m_mailbox; }

    void start();
    void add(const std::shared_ptr<FileWatchLink> &link, const QByteArray &path, const std::optional<FileStamp> &known);
    void remove(const std::shared_ptr<FileWatchLink> &link);
    void endOwnWrite(const std::shared_ptr<FileWatchLink> &link, quint64 write, const std::optional<FileStamp> &written);

private:
    /// What a look is for; a later one includes those before it.
    enum class Purpose { none, arm, poll, report, capture };

    /// Open as long as a look uses it.
    struct Notifier {
        WatchCalls &calls;
        const int file;

        Notifier(WatchCalls &system, int descriptor) : calls(system), file(descriptor) {}
        Notifier(const Notifier &) = delete;
        Notifier &operator=(const Notifier &) = delete;
        ~Notifier() { calls.close(file); }
    };

    struct Record {
        std::shared_ptr<FileWatchLink> link;
        QByteArray path;
        std::vector<PathWatch> watches;
        std::optional<FileStamp> known;
        /// Until it is seen again; polling does not repeat itself.
        bool isKnownMissing = false;
        Purpose wanted = Purpose::none;
        /// 0 for none.
        quint64 look = 0;
        quint64 endedWrite = 0;
        DelayedTask debounce;
        /// When there was the first sign of what is to be reported.
        std::optional<Scheduler::Milliseconds> changedSince;
        DelayedTask grace;
        DelayedTask poll;
    };

    struct Look {
        std::shared_ptr<FileWatchLink> link;
        Purpose purpose = Purpose::none;
        quint64 endedWrite = 0;
        bool isSlow = false;
        DelayedTask slow;
    };

    using Records = std::unordered_map<FileWatchLink *, Record>;

    void openNotifier();
    void readEvents();
    void handle(const inotify_event &event);
    void noteChange(Record &record);
    void noteReplacement(Record &record);

    void want(Record &record, Purpose purpose);
    void startLooks();
    void startLook(Record &record);
    void endLook(quint64 number, WatchedPath found);
    void uncountLook();
    void adopt(Record &record, std::vector<PathWatch> watches);
    void release(const std::vector<PathWatch> &watches);

    void judge(Record &record, const Look &look, const WatchedPath &found);
    void report(const Record &record, FileWatcher::Event event);

    QObject &m_receiver;
    std::unique_ptr<Scheduler> m_ownScheduler;
    Scheduler *m_scheduler;
    WatchCalls &m_calls;
    Workers &m_workers;
    std::shared_ptr<FileWatchMailbox> m_mailbox;
    std::shared_ptr<Notifier> m_notifier;
    std::unique_ptr<QSocketNotifier> m_socket;

    Records m_records;
    std::unordered_map<quint64, Look> m_looks;
    std::deque<FileWatchLink *> m_waiting;
    quint64 m_lastLook = 0;
    /// Under way and not slow.
    int m_countedLooks = 0;
    /// Watches that had events before the look that made them came back.
    std::unordered_set<int> m_strays;
};
