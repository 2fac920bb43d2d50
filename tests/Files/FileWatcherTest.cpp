// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/FileWatcher.h"

#include "Base/AtomicFile.h"
#include "Base/Scheduler.h"
#include "Files/TextFile.h"
#include "Files/WatchedPath.h"
#include "HeldWorkers.h"
#include "TestFolder.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/magic.h>
#include <semaphore>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using Event = FileWatcher::Event;

namespace {

constexpr auto changed = Event::contentChanged;
constexpr auto deleted = Event::deleted;

/// The real calls, but for what a test takes away.
class LimitedCalls final : public WatchCalls {
public:
    /// By "init", "add" or "stat".
    std::map<std::string, int> errors;
    uint32_t fileSystem = EXT4_SUPER_MAGIC;
    bool overflows = false;
    int stats = 0;
    int notifier = -1;
    /// On the thread that asks, after the answer was made.
    std::function<void(const char *path)> afterStat = [](const char *) {};

    int inotifyInit(int flags) override { return notifier = isRefused("init") ? -1 : WatchCalls::inotifyInit(flags); }
    /// As the kernel has them.
    [[nodiscard]] qsizetype watchCount() const
    {
        QFile info(u"/proc/self/fdinfo/%1"_s.arg(notifier));
        return info.open(QIODevice::ReadOnly) ? info.readAll().count("inotify wd:") : -1;
    }
    int inotifyAddWatch(int file, const char *path, uint32_t mask) override
    {
        return isRefused("add") ? -1 : WatchCalls::inotifyAddWatch(file, path, mask);
    }
    int stat(const char *path, struct stat *status) override
    {
        ++stats;
        const int result = isRefused("stat") ? -1 : WatchCalls::stat(path, status);
        const int error = errno;
        afterStat(path);
        errno = error;
        return result;
    }
    int statfs(const char *path, struct statfs *status) override
    {
        const int result = WatchCalls::statfs(path, status);
        status->f_type = decltype(status->f_type)(fileSystem);
        return result;
    }
    ssize_t read(int file, void *bytes, size_t count) override
    {
        const ssize_t length = WatchCalls::read(file, bytes, count);
        if (length <= 0 || !overflows) {
            return length;
        }
        const inotify_event overflow = {.wd = -1, .mask = IN_Q_OVERFLOW, .cookie = 0, .len = 0};
        std::memcpy(bytes, &overflow, sizeof(overflow));
        return sizeof(overflow);
    }

private:
    bool isRefused(const char *call)
    {
        const auto found = errors.find(call);
        errno = found == errors.end() ? 0 : found->second;
        return errno != 0;
    }
};

void append(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::Append) && file.write("x") == 1);
}

class FileWatcherTest : public testing::Test, protected TestFolder {
protected:
    void replaceByRename(const QString &name, const QByteArray &content) const { rename(put(name + u'~', content), name); }
    void makeLink(const QString &target, const QString &name) const
    {
        ASSERT_EQ(::symlink(QFile::encodeName(target).constData(), QFile::encodeName(in(name + u'~')).constData()), 0);
        rename(name + u'~', name);
    }
    static std::optional<FileStamp> stamp(const QString &path)
    {
        struct stat status = {};
        return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? std::optional(FileStamp::of(status)) : std::nullopt;
    }
    void rename(const QString &from, const QString &to) const
    {
        ASSERT_EQ(::rename(QFile::encodeName(in(from)).constData(), QFile::encodeName(in(to)).constData()), 0);
    }
    void makeFolder(const QString &name) const { QDir().mkpath(in(name)); }

    [[nodiscard]] std::unique_ptr<FileWatcher> watch(const QString &watched, const std::optional<FileStamp> &known = std::nullopt)
    {
        auto watcher = std::make_unique<FileWatcher>(*queue, watched, known, [this](Event event) { events.push_back(event); });
        settle();
        return watcher;
    }
    /// Lets everything happen that happens without time going on.
    static void settle()
    {
        for (int turn = 0; turn < 16; ++turn) {
            QCoreApplication::processEvents();
        }
    }
    /// Time goes on, after what has happened so far was noticed.
    void pass(Scheduler::Milliseconds time)
    {
        settle();
        for (; time > 0ms; time -= 50ms) {
            scheduler.advance(std::min(time, Scheduler::Milliseconds(50)));
            settle();
        }
    }
    /// These are reported meanwhile, and no others.
    void expect(const std::vector<Event> &reported, Scheduler::Milliseconds time, int line = __builtin_LINE())
    {
        const testing::ScopedTrace trace(__FILE__, line, "expected here");
        pass(time);
        EXPECT_EQ(std::exchange(events, {}), reported);
    }
    void expect(const std::vector<Event> &reported, const std::function<void()> &act, int line = __builtin_LINE())
    {
        act();
        expect(reported, 1s, line);
    }

    [[nodiscard]] QString in(const QString &name) const { return TestFolder::path(name); }

    QString path = put(u"file.txt"_s, "one");
    ManualScheduler scheduler;
    LimitedCalls calls;
    HeldWorkers workers{HeldWorkers::Mode::atOnce};
    std::unique_ptr<FileWatcherQueue> queue = std::make_unique<FileWatcherQueue>(scheduler, calls, workers);
    std::vector<Event> events;
};

} // namespace

TEST_F(FileWatcherTest, ReportsAFileThatIsWrittenAllTheTime)
{
    const auto watcher = watch(path);
    for (int written = 0; written < 60; ++written) {
        append(path);
        pass(100ms);
    }
    EXPECT_EQ(events, std::vector(3, changed)) << "every other second";
}

TEST_F(FileWatcherTest, ReportsABurstOnceAfterItsLastChange)
{
    const auto watcher = watch(path);
    replaceByRename(path, "changed");
    expect({}, 199ms);
    append(path);
    expect({}, 199ms);
    const int stats = calls.stats;
    expect({changed}, 1ms);
    expect({}, 10s);
    EXPECT_EQ(calls.stats, stats + 1);
    EXPECT_EQ(scheduler.pendingCount(), 0);
}

TEST_F(FileWatcherTest, IgnoresWhatIsNoChangeOfContent)
{
    const auto watcher = watch(path);
    const QByteArray name = QFile::encodeName(path);
    expect({}, [&] { ::chmod(name.constData(), 0600); });
    const int stats = calls.stats;
    const QString other = put(u"other.txt"_s, "other");
    expect({}, [&] { QFile::remove(other); });
    EXPECT_EQ(calls.stats, stats);
    // Same date, other size; same size, other date.
    struct stat status = {};
    ASSERT_EQ(::stat(name.constData(), &status), 0);
    put(path, "longer");
    timespec times[] = {status.st_atim, status.st_mtim};
    expect({changed}, [&] { ::utimensat(AT_FDCWD, name.constData(), times, 0); });
    times[1].tv_nsec = (times[1].tv_nsec + 1) % 1'000'000'000;
    expect({changed}, [&] { ::utimensat(AT_FDCWD, name.constData(), times, 0); });
}

TEST_F(FileWatcherTest, SurvivesReplacementAndDeletion)
{
    const auto watcher = watch(path);
    expect({changed}, [&] { replaceByRename(path, "renamed over"); });
    expect({changed}, [&] { append(path); });
    expect({deleted}, [&] { QFile::remove(path); });
    expect({changed}, [&] { put(path, "made again"); });
    expect({changed}, [&] { append(path); });
    expect({deleted}, [&] { rename(path, u"elsewhere"_s); });
    expect({}, [&] { append(in(u"elsewhere"_s)); });
}

TEST_F(FileWatcherTest, FollowsItsFolderAwayAndBack)
{
    const QString inner = in(u"a/b/c/file.txt"_s);
    const auto watcher = watch(inner);
    expect({}, 10s);
    makeFolder(u"a/b/c"_s);
    expect({changed}, [&] { put(inner, "one"); });
    for (const QString &moved : {u"a"_s, u"a/b"_s, u"a/b/c"_s}) {
        SCOPED_TRACE(moved.toStdString());
        expect({deleted}, [&] { rename(moved, u"away"_s); });
        // Step by step, with time between the steps.
        for (const QString &step : {u"a"_s, u"a/b"_s, u"a/b/c"_s}) {
            makeFolder(step);
            pass(1s);
        }
        events.clear();
        expect({changed}, [&] { put(inner, "back as another"); });
        expect({changed}, [&] { append(inner); });
        QDir(in(u"away"_s)).removeRecursively();
    }
}

TEST_F(FileWatcherTest, WatchesLinksAndWhatTheyLeadTo)
{
    put(u"v1/file.txt"_s, "one");
    put(u"v2/file.txt"_s, "number two");
    makeLink(u"v1"_s, u"current"_s);
    makeLink(u"../current/./file.txt"_s, u"v2/link"_s);
    makeLink(in(u"v2/link"_s), u"link"_s);
    const auto watcher = watch(in(u"v1/../link"_s));
    expect({changed}, [&] { put(u"v1/file.txt"_s, "written"); });
    expect({changed}, [&] { replaceByRename(u"v1/file.txt"_s, "replaced"); });
    expect({changed}, [&] { makeLink(u"v2"_s, u"current"_s); });
    expect({}, [&] { put(u"v1/file.txt"_s, "nobody's"); });
    expect({changed}, [&] { append(in(u"v2/file.txt"_s)); });
    expect({deleted}, [&] { QFile::remove(in(u"v2/file.txt"_s)); });
    expect({deleted}, [&] { makeLink(in(u"link"_s), u"v2/link"_s); }); // round in a circle
    expect({changed}, [&] { replaceByRename(u"link"_s, "no link any more"); });
}

TEST_F(FileWatcherTest, DoesNotReportOwnWrites)
{
    const auto watcher = watch(path);
    for (int save = 0; save < 3; ++save) {
        watcher->beginOwnWrite();
        ASSERT_TRUE(writeAtomically(path, QByteArray(10 + save, 'x'), AtomicFile::NewFile::readableByOthers));
        // A slow disk: the events come in while the write is under way.
        expect({}, save == 1 ? 1s : 0s);
        watcher->endOwnWrite(stamp(path));
        // The third save comes within the grace of the second.
        expect({}, save == 1 ? 100ms : 2s);
    }
    expect({changed}, [&] { put(path, "foreign"); });
    // A failed write changes nothing.
    watcher->beginOwnWrite();
    watcher->endOwnWrite(std::nullopt);
    expect({}, 1s);
    expect({deleted}, [&] { QFile::remove(path); });
}

TEST_F(FileWatcherTest, OwnWritesHideNothingOfOthers)
{
    // What was sent before the write is about a text that is gone.
    std::unique_ptr<FileWatcher> watcher;
    std::unique_ptr<FileWatcher> second;
    const auto save = [&](Event event) {
        events.push_back(event);
        watcher->beginOwnWrite();
        second->beginOwnWrite();
    };
    watcher = std::make_unique<FileWatcher>(*queue, path, std::nullopt, save);
    second = std::make_unique<FileWatcher>(*queue, path, std::nullopt, save);
    settle();
    expect({changed}, [&] { put(path, "before"); });

    // A formatter that reacts to the rename comes before the write is said to be over.
    watcher = watch(path);
    watcher->beginOwnWrite();
    replaceByRename(path, "own");
    const auto written = stamp(path);
    put(path, "formatted");
    watcher->endOwnWrite(written);
    expect({changed}, 300ms);

    watcher = watch(path);
    watcher->beginOwnWrite();
    replaceByRename(path, "own");
    watcher->endOwnWrite(stamp(path));
    expect({}, 100ms);
    put(path, "others', in the time of grace");
    expect({}, 199ms);
    expect({changed}, 1ms);

    // While a look hangs that has seen the text before.
    put(path, "foreign");
    workers.isHeld = true;
    expect({}, 200ms);
    ASSERT_EQ(workers.jobs.size(), 1);
    calls.afterStat = [&](const char *) {
        watcher->beginOwnWrite();
        put(path, "own");
        watcher->endOwnWrite(stamp(path));
        expect({}, 10s);
    };
    std::exchange(workers.jobs, {}).front()();
    calls.afterStat = [](const char *) {};
    workers.isHeld = false;
    workers.finish();
    expect({}, 1s);
    expect({changed}, [&] { put(path, "foreign again"); });
}

TEST_F(FileWatcherTest, ReportsWhatHappenedSinceTheFileWasRead)
{
    const auto expectSinceRead = [&](const std::vector<Event> &reported, const std::function<void()> &act) {
        const auto known = TextFile::read(path)->state->stamp;
        act();
        const auto watcher = watch(path, known);
        expect(reported, 10s);
    };
    expectSinceRead({}, [] {});
    expectSinceRead({changed}, [&] { put(path, "changed before the watcher came"); });
    expectSinceRead({deleted}, [&] { QFile::remove(path); });
}

TEST_F(FileWatcherTest, ManyWatchersShareFoldersAndOneNotifier)
{
    makeFolder(u"sub"_s);
    const QString other = in(u"sub/file.txt"_s);
    auto first = watch(path);
    auto second = watch(path);
    auto below = watch(other);
    expect({changed, changed}, [&] { replaceByRename(path, "for two"); });
    second.reset();
    put(path, "for one");
    expect({changed, changed}, [&] { put(other, "for the other"); });
    expect({deleted}, [&] { QFile::remove(path); });
    expect({changed}, [&] { append(other); });
    expect({changed}, [&] { put(path, "back, in a folder that is watched for two reasons"); });
    below->stop();
    expect({}, [&] { append(other); });
    EXPECT_GT(calls.watchCount(), 0);
    first.reset();
    settle();
    EXPECT_EQ(calls.watchCount(), 0);
}

TEST_F(FileWatcherTest, PollsWhenThereAreNoWatchesToBeHad)
{
    for (const auto &limit : {std::pair("init", EMFILE), std::pair("add", ENOSPC)}) {
        put(path, "one");
        queue = std::make_unique<FileWatcherQueue>(scheduler, calls, workers);
        calls.errors = {limit};
        const auto watcher = watch(path);
        expect({}, 10s);
        put(path, "polled");
        expect({changed}, 2s);
        QFile::remove(path);
        expect({deleted}, 10s);
        put(path, "back");
        expect({changed}, 2s);
        // The limit is lifted: watches take over.
        calls.errors = {};
        expect({}, 2s);
        EXPECT_EQ(scheduler.pendingCount(), 0);
        put(path, "watched");
        expect({changed}, 200ms);
    }
}

TEST_F(FileWatcherTest, PollsFileSystemsThatOthersChangeAndSparesThemWhileTheyAreDead)
{
    constexpr uint32_t lustre = 0x0BD00BD0;
    constexpr uint32_t unheardOf = 0x12345678;
    std::unique_ptr<FileWatcher> watcher;
    for (const uint32_t shared : {uint32_t(NFS_SUPER_MAGIC), uint32_t(V9FS_MAGIC), lustre, unheardOf}) {
        calls.fileSystem = shared;
        watcher = watch(path);
        const int stats = calls.stats;
        expect({}, 6s);
        EXPECT_EQ(calls.stats, stats + 3) << std::hex << shared;
    }
    // Not deleted, and not again and again.
    calls.errors = {{"stat", EIO}};
    expect({changed}, 6s);
    calls.errors = {};
    expect({changed}, 6s);
    workers.isHeld = true;
    expect({}, 60s);
    EXPECT_EQ(workers.jobs.size(), 1);
}

TEST_F(FileWatcherTest, LooksAgainAtEverythingWhenEventsWereLost)
{
    const auto watcher = watch(path);
    const auto other = watch(in(u"other.txt"_s));
    calls.overflows = true;
    put(path, "lost");
    replaceByRename(u"other.txt"_s, "lost too");
    settle();
    calls.overflows = false;
    expect({changed, changed}, 1s);
    expect({changed}, [&] { append(in(u"other.txt"_s)); });
}

TEST_F(FileWatcherTest, MissesNothingWhileALookIsOnItsWay)
{
    // The first event comes before the engine knows of the watch that it belongs to.
    workers.isHeld = true;
    const auto watcher = watch(path);
    calls.afterStat = [this](const char *) {
        put(path, "between look and answer");
        settle();
    };
    workers.finish();
    calls.afterStat = [](const char *) {};
    workers.isHeld = false;
    expect({changed}, 1s);
}

TEST_F(FileWatcherTest, HangingLooksDelayOthersForAMomentOnly)
{
    workers.isHeld = true;
    std::vector<std::unique_ptr<FileWatcher>> dead;
    for (int i = 0; i < 9; ++i) {
        dead.push_back(watch(in(u"dead%1.txt"_s.arg(i))));
    }
    EXPECT_EQ(workers.jobs.size(), 4);
    const auto watcher = watch(path);
    expect({}, 500ms);
    ASSERT_EQ(workers.jobs.size(), 10);
    auto hanging = std::exchange(workers.jobs, {});
    workers.jobs.push_back(std::move(hanging.back()));
    hanging.pop_back();
    workers.finish();
    workers.isHeld = false;
    settle();
    put(path, "seen");
    expect({changed}, 200ms);
    // The share answers again: its files are watched, but for one whose watcher is gone.
    dead.pop_back();
    settle();
    workers.jobs = std::move(hanging);
    put(u"dead8.txt"_s, "alive");
    workers.finish();
    settle();
    put(u"dead0.txt"_s, "alive");
    expect({changed}, [&] { append(in(u"dead8.txt"_s)); });
}

TEST_F(FileWatcherTest, MayBeDestroyedWhileEventsAreUnderWay)
{
    auto watcher = watch(path);
    put(path, "reported");
    settle();
    // Before the report is made, before it is looked up, before it is delivered.
    watcher.reset();
    expect({}, 1s);
    watcher = watch(path);
    put(path, "looked up");
    workers.isHeld = true;
    expect({}, 200ms);
    watcher.reset();
    workers.finish();
    workers.isHeld = false;
    expect({}, 1s);

    std::unique_ptr<FileWatcher> own;
    own = std::make_unique<FileWatcher>(*queue, path, std::nullopt, [&](Event event) {
        events.push_back(event);
        own.reset();
    });
    settle();
    expect({changed}, [&] { put(path, "destroyed by the call"); });
    expect({}, [&] { put(path, "and again"); });

    watcher = watch(path);
    put(path, "the queue goes first");
    queue.reset();
    watcher->beginOwnWrite();
    watcher->endOwnWrite(stamp(path));
    expect({}, 1s);
}

TEST(FileWatcherThread, ReportsWhileAShareIsDead)
{
    // As long as the process: a thread hangs in it when the queue is gone.
    static std::binary_semaphore isBack(0);
    static std::binary_semaphore isHanging(0);
    // Nor destroyed at the end: such a thread may be in it then.
    static auto &calls = *new LimitedCalls();
    const TestFolder folder;
    const QString path = folder.put(u"file.txt"_s, "one");
    calls.afterStat = [](const char *name) {
        if (std::strstr(name, "/dead/") != nullptr) {
            isHanging.release();
            isBack.acquire();
            isHanging.release();
        }
    };
    {
        FileWatcherQueue queue(calls);
        FileWatcher dead(queue, u"/dead/file"_s, std::nullopt, [](Event) { ADD_FAILURE() << "says something"; });
        isHanging.acquire();
        QEventLoop loop;
        std::vector<Event> events;
        FileWatcher watcher(queue, path, std::nullopt, [&](Event event) {
            events.push_back(event);
            loop.quit();
        });
        EventLoopScheduler scheduler;
        // Until the change is later than the capture, which nobody reports.
        const auto writing = scheduler.every(500ms, 0ms, [&] { append(path); });
        const auto giveUp = scheduler.after(60s, [&] { loop.exit(1); });
        EXPECT_EQ(loop.exec(), 0);
        EXPECT_EQ(events, std::vector{changed});
        dead.beginOwnWrite();
        dead.endOwnWrite(std::nullopt);
    }
    isBack.release();
    isHanging.acquire();
}
