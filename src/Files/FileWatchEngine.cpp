// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/FileWatchEngine.h"

#include "Base/Workers.h"

#include <algorithm>
#include <array>
#include <sys/inotify.h>

namespace {

using namespace std::chrono_literals;

constexpr auto debounceDelay = 200ms;
/// For a file that is written all the time, which never rests for so long.
constexpr auto longestDebounce = 2000ms;
constexpr auto graceAfterOwnWrite = 300ms;
constexpr auto pollInterval = 2000ms;
constexpr auto slowLook = 250ms;
constexpr int mostLooks = 4;

bool concerns(const PathWatch &watch, const inotify_event &event)
{
    constexpr uint32_t goneEvents = IN_MOVE_SELF | IN_DELETE_SELF | IN_UNMOUNT | IN_IGNORED;
    if (watch.descriptor != event.wd) {
        return false;
    }
    if ((event.mask & goneEvents) != 0) {
        return true;
    }
    switch (watch.role) {
    case PathWatch::Role::file:
        return true;
    case PathWatch::Role::entry:
        return event.len > 0 && watch.name == event.name;
    case PathWatch::Role::ancestor:
        return false;
    }
    return false;
}

} // namespace

void FileWatchMailbox::post(Message message)
{
    const std::lock_guard lock(m_mutex);
    if (m_engine) {
        QMetaObject::invokeMethod(
            m_engine, [engine = m_engine, message = std::move(message)] { message(*engine); }, Qt::QueuedConnection);
    }
}

void FileWatchMailbox::close()
{
    const std::lock_guard lock(m_mutex);
    m_engine = nullptr;
}

FileWatchEngine::FileWatchEngine(QObject &receiver, Scheduler *scheduler, WatchCalls &calls, Workers &workers)
    : m_receiver(receiver), m_scheduler(scheduler), m_calls(calls), m_workers(workers), m_mailbox(std::make_shared<FileWatchMailbox>(*this))
{}

FileWatchEngine::~FileWatchEngine()
{
    m_mailbox->close();
}

void FileWatchEngine::start()
{
    if (!m_scheduler) {
        m_ownScheduler = std::make_unique<EventLoopScheduler>();
        m_scheduler = m_ownScheduler.get();
    }
}

void FileWatchEngine::add(const std::shared_ptr<FileWatchLink> &link, const QByteArray &path, const std::optional<FileStamp> &known)
{
    Record &record = m_records[link.get()];
    record.link = link;
    record.path = path;
    record.known = known;
    want(record, known ? Purpose::report : Purpose::capture);
}

void FileWatchEngine::remove(const std::shared_ptr<FileWatchLink> &link)
{
    const auto node = m_records.extract(link.get());
    if (node) {
        std::erase(m_waiting, link.get());
        release(node.mapped().watches);
    }
}

void FileWatchEngine::endOwnWrite(const std::shared_ptr<FileWatchLink> &link, quint64 write, const std::optional<FileStamp> &written)
{
    const auto found = m_records.find(link.get());
    if (found == m_records.end()) {
        return;
    }
    Record &record = found->second;
    record.endedWrite = write;
    if (written) {
        record.known = written;
        record.isKnownMissing = false;
    }
    want(record, Purpose::arm);
    record.grace = m_scheduler->after(graceAfterOwnWrite, [this, &record, write] {
        record.link->settledWrites = write;
        want(record, Purpose::report);
    });
}

// Events

void FileWatchEngine::openNotifier()
{
    if (m_notifier) {
        return;
    }
    const int file = m_calls.inotifyInit(IN_NONBLOCK | IN_CLOEXEC);
    if (file < 0) {
        return;
    }
    m_notifier = std::make_shared<Notifier>(m_calls, file);
    m_socket = std::make_unique<QSocketNotifier>(file, QSocketNotifier::Read);
    QObject::connect(m_socket.get(), &QSocketNotifier::activated, this, [this] { readEvents(); });
}

void FileWatchEngine::readEvents()
{
    alignas(inotify_event) std::array<char, 16 * 1024> buffer;
    for (;;) {
        const ssize_t length = m_calls.read(m_notifier->file, buffer.data(), buffer.size());
        if (length <= 0) {
            return;
        }
        for (size_t at = 0; at + sizeof(inotify_event) <= size_t(length);) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer.data() + at);
            handle(*event);
            at += sizeof(inotify_event) + event->len;
        }
    }
}

void FileWatchEngine::handle(const inotify_event &event)
{
    constexpr uint32_t contentEvents = IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE;
    const bool isOverflow = (event.mask & IN_Q_OVERFLOW) != 0;
    bool isKnown = isOverflow;
    for (auto &[key, record] : m_records) {
        const auto isOfEvent = [&](const PathWatch &watch) { return watch.descriptor == event.wd; };
        isKnown = isKnown || std::ranges::any_of(record.watches, isOfEvent);
        const bool isConcerned =
            isOverflow || std::ranges::any_of(record.watches, [&](const auto &watch) { return concerns(watch, event); });
        if (isConcerned && (event.mask & contentEvents) != 0) {
            noteChange(record);
        } else if (isConcerned) {
            noteReplacement(record);
        }
    }
    if (!isKnown && !m_looks.empty()) {
        m_strays.insert(event.wd);
    }
}

void FileWatchEngine::noteChange(Record &record)
{
    // After an own write the file is looked at in any case.
    if (!record.link->isSuspended()) {
        const Scheduler::Milliseconds now = m_scheduler->now();
        record.changedSince = record.changedSince.value_or(now);
        const auto delay = std::clamp<Scheduler::Milliseconds>(*record.changedSince + longestDebounce - now, 0ms, debounceDelay);
        record.debounce = m_scheduler->after(delay, [this, &record] {
            record.changedSince.reset();
            want(record, Purpose::report);
        });
    }
}

void FileWatchEngine::noteReplacement(Record &record)
{
    if (!record.link->isSuspended()) {
        want(record, Purpose::arm);
        noteChange(record);
    }
}

// Looks

void FileWatchEngine::want(Record &record, Purpose purpose)
{
    if (record.wanted == Purpose::none && record.look == 0) {
        m_waiting.push_back(record.link.get());
    }
    record.wanted = std::max(record.wanted, purpose);
    startLooks();
}

void FileWatchEngine::startLooks()
{
    while (m_countedLooks < mostLooks && !m_waiting.empty()) {
        FileWatchLink *const next = m_waiting.front();
        m_waiting.pop_front();
        startLook(m_records.at(next));
    }
}

void FileWatchEngine::startLook(Record &record)
{
    openNotifier();
    const quint64 number = ++m_lastLook;
    record.look = number;
    Look &look = m_looks[number];
    look.link = record.link;
    look.purpose = std::exchange(record.wanted, Purpose::none);
    look.endedWrite = record.endedWrite;
    look.slow = m_scheduler->after(slowLook, [this, &look] {
        look.isSlow = true;
        uncountLook();
    });
    ++m_countedLooks;
    m_workers.run([number, path = record.path, notifier = m_notifier, &calls = m_calls, mailbox = m_mailbox] {
        mailbox->post([number, found = WatchedPath::arm(path, notifier ? notifier->file : -1, calls)](FileWatchEngine &engine) {
            engine.endLook(number, found);
        });
    });
}

void FileWatchEngine::uncountLook()
{
    --m_countedLooks;
    startLooks();
}

void FileWatchEngine::endLook(quint64 number, WatchedPath found)
{
    const auto node = m_looks.extract(number);
    const Look &look = node.mapped();
    if (const auto at = m_records.find(look.link.get()); at == m_records.end()) {
        release(found.watches);
    } else {
        Record &record = at->second;
        adopt(record, std::move(found.watches));
        judge(record, look, found);
        record.poll =
            found.needsPolling ? m_scheduler->after(pollInterval, [this, &record] { want(record, Purpose::poll); }) : DelayedTask();
        record.look = 0;
        if (record.wanted != Purpose::none) {
            m_waiting.push_back(look.link.get());
        }
    }
    if (m_looks.empty()) {
        m_strays.clear();
    }
    if (look.isSlow) {
        startLooks();
    } else {
        uncountLook();
    }
}

void FileWatchEngine::adopt(Record &record, std::vector<PathWatch> watches)
{
    const bool hasMissed = std::ranges::any_of(watches, [&](const PathWatch &watch) { return m_strays.contains(watch.descriptor); });
    const auto before = std::exchange(record.watches, std::move(watches));
    release(before);
    if (hasMissed) {
        noteReplacement(record);
    }
}

void FileWatchEngine::release(const std::vector<PathWatch> &watches)
{
    for (const PathWatch &watch : watches) {
        const bool isUsed = std::ranges::any_of(m_records, [&](const auto &entry) {
            return std::ranges::any_of(entry.second.watches, [&](const auto &other) { return other.descriptor == watch.descriptor; });
        });
        if (!isUsed) {
            // Should a look make the same watch anew meanwhile, the kernel's word that it was removed has the file looked at again.
            m_workers.run(
                [notifier = m_notifier, descriptor = watch.descriptor] { notifier->calls.inotifyRemoveWatch(notifier->file, descriptor); });
        }
    }
}

// What was found

void FileWatchEngine::judge(Record &record, const Look &look, const WatchedPath &found)
{
    if (look.purpose == Purpose::capture) {
        record.known = found.stamp;
        record.isKnownMissing = found.isMissing;
        return;
    }
    // What was seen before an own write ended says nothing about others.
    const bool isOwnDoing = record.link->isSuspended() || look.endedWrite != record.endedWrite;
    if (look.purpose == Purpose::arm || isOwnDoing) {
        return;
    }
    if (found.isMissing) {
        if (look.purpose == Purpose::report || !record.isKnownMissing) {
            record.isKnownMissing = true;
            report(record, FileWatcher::Event::deleted);
        }
        return;
    }
    record.isKnownMissing = false;
    if (found.stamp != record.known) {
        record.known = found.stamp;
        report(record, FileWatcher::Event::contentChanged);
    }
}

void FileWatchEngine::report(const Record &record, FileWatcher::Event event)
{
    const auto deliver = [link = record.link, write = record.endedWrite, event] {
        // A copy, since the call may destroy the watcher.
        if (const auto onEvent = link->onEvent; onEvent && link->begunWrites == write) {
            onEvent(event);
        }
    };
    QMetaObject::invokeMethod(&m_receiver, deliver, Qt::QueuedConnection);
}
