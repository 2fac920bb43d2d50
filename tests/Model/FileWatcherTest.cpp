// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/FileWatcher.h"

#include "Model/WatchedPath.h"
#include "Platform/AtomicFile.h"
#include "Platform/Scheduler.h"
#include "Platform/Workers.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <semaphore>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;
using Event = FileWatcher::Event;

namespace {

constexpr auto changed = Event::contentChanged;
constexpr auto deleted = Event::deleted;

/// The real calls, but for what a test takes away.
class LimitedCalls final : public WatchCalls {
public:
    int initError = 0;
    int addError = 0;
    int statError = 0;
    uint32_t fileSystem = 0;
    bool overflows = false;
    int stats = 0;
    int watches = 0;
    std::function<void(const char *path)> beforeStat = [](const char *) {};

    int inotifyInit(int flags) override { return initError != 0 ? fail(initError) : WatchCalls::inotifyInit(flags); }
    int inotifyAddWatch(int notifier, const char *path, uint32_t mask) override
    {
        return addError != 0 ? fail(addError) : WatchCalls::inotifyAddWatch(notifier, path, mask);
    }
    int stat(const char *path, struct stat *status) override
    {
        ++stats;
        beforeStat(path);
        return statError != 0 ? fail(statError) : WatchCalls::stat(path, status);
    }
    int statfs(const char *path, struct statfs *status) override
    {
        const int result = WatchCalls::statfs(path, status);
        status->f_type = fileSystem != 0 ? decltype(status->f_type)(fileSystem) : status->f_type;
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
    static int fail(int error)
    {
        errno = error;
        return -1;
    }
};

/// Keeps the work until the test lets it be done.
class HeldWorkers final : public Workers {
public:
    bool isHeld = false;
    std::deque<std::function<void()>> jobs;

    void run(std::function<void()> job) override
    {
        jobs.push_back(std::move(job));
        if (!isHeld) {
            release();
        }
    }
    void release(size_t count = SIZE_MAX)
    {
        for (; count > 0 && !jobs.empty(); --count) {
            const auto job = std::move(jobs.front());
            jobs.pop_front();
            job();
        }
    }
};

void put(const QString &path, const QByteArray &content, QIODevice::OpenMode mode = QIODevice::WriteOnly)
{
    QFile file(path);
    ASSERT_TRUE(file.open(mode)) << path.toStdString();
    file.write(content);
}

void replaceByRename(const QString &path, const QByteArray &content)
{
    put(path + u"~"_s, content);
    ASSERT_EQ(::rename(QFile::encodeName(path + u"~"_s).constData(), QFile::encodeName(path).constData()), 0);
}

void makeLink(const QString &target, const QString &path)
{
    const QByteArray temporary = QFile::encodeName(path + u"~"_s);
    ASSERT_EQ(::symlink(QFile::encodeName(target).constData(), temporary.constData()), 0);
    ASSERT_EQ(::rename(temporary.constData(), QFile::encodeName(path).constData()), 0);
}

class FileWatcherTest : public testing::Test {
protected:
    FileWatcherTest() { put(path, "one"); }

    [[nodiscard]] std::unique_ptr<FileWatcher> watch(const QString &watched)
    {
        auto watcher = std::make_unique<FileWatcher>(*queue, watched, [this](Event event) { events.push_back(event); });
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

    /// Time goes on, after what has happened so far was noticed. Answers with what was reported.
    std::vector<Event> after(Scheduler::Milliseconds time)
    {
        settle();
        for (; time > 0ms; time -= 50ms) {
            scheduler.advance(std::min(time, Scheduler::Milliseconds(50)));
            settle();
        }
        return std::exchange(events, {});
    }

    [[nodiscard]] QString in(const QString &name) const { return folder.filePath(name); }

    QTemporaryDir folder;
    QString path = in(u"file.txt"_s);
    ManualScheduler scheduler;
    LimitedCalls calls;
    HeldWorkers workers;
    std::unique_ptr<FileWatcherQueue> queue = std::make_unique<FileWatcherQueue>(scheduler, calls, workers);
    std::vector<Event> events;
};

} // namespace

TEST_F(FileWatcherTest, ReportsABurstOnceAfterItsLastChange)
{
    const auto watcher = watch(path);
    put(path, "changed");
    EXPECT_THAT(after(199ms), IsEmpty());
    put(path, "changed again");
    EXPECT_THAT(after(199ms), IsEmpty());
    const int stats = calls.stats;
    EXPECT_THAT(after(1ms), ElementsAre(changed));
    EXPECT_THAT(after(10s), IsEmpty());
    EXPECT_EQ(calls.stats, stats + 1);
    EXPECT_EQ(scheduler.pendingCount(), 0);
}

TEST_F(FileWatcherTest, IgnoresWhatIsNoChangeOfContent)
{
    const auto watcher = watch(path);
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_THAT(after(1s), IsEmpty());
    const int stats = calls.stats;
    put(in(u"other.txt"_s), "other");
    QFile::remove(in(u"other.txt"_s));
    EXPECT_THAT(after(1s), IsEmpty());
    EXPECT_EQ(calls.stats, stats);
    // Same date, other size; same size, other date.
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0);
    put(path, "longer");
    timespec times[] = {status.st_atim, status.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
    EXPECT_THAT(after(1s), ElementsAre(changed));
    times[1].tv_nsec = (times[1].tv_nsec + 1) % 1'000'000'000;
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
    EXPECT_THAT(after(1s), ElementsAre(changed));
}

TEST_F(FileWatcherTest, SurvivesReplacementAndDeletion)
{
    const auto watcher = watch(path);
    replaceByRename(path, "renamed over");
    EXPECT_THAT(after(1s), ElementsAre(changed));
    put(path, " and written to", QIODevice::Append);
    EXPECT_THAT(after(1s), ElementsAre(changed));

    QFile::remove(path);
    EXPECT_THAT(after(1s), ElementsAre(deleted));
    put(path, "made again");
    EXPECT_THAT(after(1s), ElementsAre(changed));
    put(path, " and written to", QIODevice::Append);
    EXPECT_THAT(after(1s), ElementsAre(changed));

    // Gone for a moment only.
    QFile::remove(path);
    put(path, "quickly made again");
    EXPECT_THAT(after(1s), ElementsAre(changed));

    QFile::rename(path, in(u"elsewhere"_s));
    EXPECT_THAT(after(1s), ElementsAre(deleted));
    put(in(u"elsewhere"_s), "no longer ours");
    EXPECT_THAT(after(1s), IsEmpty());
}

TEST_F(FileWatcherTest, NoticesTheFileOfANewDocumentAppear)
{
    const auto watcher = watch(in(u"a/b/new.txt"_s));
    EXPECT_THAT(after(10s), IsEmpty());
    QDir(folder.path()).mkpath(u"a/b"_s);
    put(in(u"a/b/new.txt"_s), "here");
    EXPECT_THAT(after(1s), ElementsAre(changed));
}

TEST_F(FileWatcherTest, FollowsItsFolderAwayAndBack)
{
    const QString inner = in(u"a/b/c/file.txt"_s);
    QDir(folder.path()).mkpath(u"a/b/c"_s);
    put(inner, "one");
    const auto watcher = watch(inner);
    for (const QString &moved : {u"a"_s, u"a/b"_s, u"a/b/c"_s}) {
        QDir(folder.path()).rename(moved, u"away"_s);
        EXPECT_THAT(after(1s), ElementsAre(deleted)) << moved.toStdString();
        // Step by step, with time between the steps.
        for (const QString &step : {u"a"_s, u"a/b"_s, u"a/b/c"_s}) {
            QDir(folder.path()).mkdir(step);
            after(1s);
        }
        put(inner, "back as another");
        EXPECT_THAT(after(1s), ElementsAre(changed)) << moved.toStdString();
        put(inner, "x", QIODevice::Append);
        EXPECT_THAT(after(1s), ElementsAre(changed)) << moved.toStdString();
        QDir(in(u"away"_s)).removeRecursively();
    }
    QDir(in(u"a"_s)).removeRecursively();
    EXPECT_THAT(after(1s), ElementsAre(deleted));
    QDir(folder.path()).mkpath(u"a/b/c"_s);
    put(inner, "back at once");
    EXPECT_THAT(after(1s), ElementsAre(changed));
}

TEST_F(FileWatcherTest, WatchesLinksAndWhatTheyLeadTo)
{
    QDir(folder.path()).mkpath(u"v1"_s);
    QDir(folder.path()).mkpath(u"v2"_s);
    put(in(u"v1/file.txt"_s), "one");
    put(in(u"v2/file.txt"_s), "number two");
    makeLink(u"v1"_s, in(u"current"_s));
    makeLink(u"../current/./file.txt"_s, in(u"v2/link"_s));
    makeLink(in(u"v2/link"_s), in(u"link"_s));
    const auto watcher = watch(in(u"v1/../link"_s));
    put(in(u"v1/file.txt"_s), "written");
    EXPECT_THAT(after(1s), ElementsAre(changed));
    replaceByRename(in(u"v1/file.txt"_s), "replaced");
    EXPECT_THAT(after(1s), ElementsAre(changed));
    makeLink(u"v2"_s, in(u"current"_s));
    EXPECT_THAT(after(1s), ElementsAre(changed));
    put(in(u"v1/file.txt"_s), "nobody's");
    EXPECT_THAT(after(1s), IsEmpty());
    put(in(u"v2/file.txt"_s), "x", QIODevice::Append);
    EXPECT_THAT(after(1s), ElementsAre(changed));
    QFile::remove(in(u"v2/file.txt"_s));
    EXPECT_THAT(after(1s), ElementsAre(deleted));
    makeLink(in(u"link"_s), in(u"v2/link"_s));
    EXPECT_THAT(after(1s), ElementsAre(deleted)) << "round in a circle";
    replaceByRename(in(u"link"_s), "no link any more");
    EXPECT_THAT(after(1s), ElementsAre(changed));
}

TEST_F(FileWatcherTest, DoesNotReportOwnWrites)
{
    const auto watcher = watch(path);
    for (int save = 0; save < 3; ++save) {
        watcher->beginOwnWrite();
        ASSERT_TRUE(writeAtomically(path, QByteArray(10 + save, 'x'), AtomicFile::NewFile::readableByOthers));
        // A slow disk: the events come in while the write is under way.
        EXPECT_THAT(after(save == 1 ? 1s : 0s), IsEmpty());
        watcher->endOwnWrite();
        // The third save comes within the grace of the second.
        EXPECT_THAT(after(save == 1 ? 100ms : 2s), IsEmpty());
    }
    put(path, "foreign");
    EXPECT_THAT(after(1s), ElementsAre(changed));
}

TEST_F(FileWatcherTest, OwnWritesHideNothingOfOthers)
{
    const auto watcher = watch(path);
    // What was noticed or even sent before the write is about a text that is gone.
    put(path, "before");
    settle();
    scheduler.advance(200ms);
    watcher->beginOwnWrite();
    replaceByRename(path, "own");
    watcher->endOwnWrite();
    EXPECT_THAT(after(100ms), IsEmpty());
    put(path, "others', in the time of grace");
    EXPECT_THAT(after(199ms), IsEmpty());
    EXPECT_THAT(after(1ms), ElementsAre(changed));

    // A failed write changes nothing.
    watcher->beginOwnWrite();
    watcher->endOwnWrite();
    EXPECT_THAT(after(1s), IsEmpty());
    QFile::remove(path);
    EXPECT_THAT(after(1s), ElementsAre(deleted));
}

TEST_F(FileWatcherTest, AnOwnWriteIsMarkedWhileALookHangs)
{
    workers.isHeld = true;
    const auto watcher = watch(path);
    watcher->beginOwnWrite();
    put(path, "own");
    watcher->endOwnWrite();
    EXPECT_THAT(after(10s), IsEmpty());
    // The first look was taken in the middle of the write, the next after it.
    ASSERT_EQ(workers.jobs.size(), 1);
    workers.release();
    workers.isHeld = false;
    settle();
    workers.release();
    EXPECT_THAT(after(1s), IsEmpty());
    put(path, "foreign");
    EXPECT_THAT(after(1s), ElementsAre(changed));
}

TEST_F(FileWatcherTest, ManyWatchersShareFoldersAndOneNotifier)
{
    const auto first = watch(path);
    auto second = watch(path);
    const auto other = watch(in(u"other.txt"_s));
    replaceByRename(path, "for two");
    EXPECT_THAT(after(1s), ElementsAre(changed, changed));
    second.reset();
    put(path, "for one");
    put(in(u"other.txt"_s), "for the other");
    EXPECT_THAT(after(1s), ElementsAre(changed, changed));
    other->stop();
    put(in(u"other.txt"_s), "for nobody");
    EXPECT_THAT(after(1s), IsEmpty());
}

TEST_F(FileWatcherTest, PollsWhenThereAreNoWatchesToBeHad)
{
    struct Case {
        const char *what;
        std::function<void(LimitedCalls &)> limit;
    };
    const Case cases[] = {
        {"no notifier", [](LimitedCalls &limited) { limited.initError = EMFILE; }},
        {"no watch", [](LimitedCalls &limited) { limited.addError = ENOSPC; }},
    };
    for (const Case &limited : cases) {
        SCOPED_TRACE(limited.what);
        put(path, "one");
        calls.initError = calls.addError = 0;
        queue = std::make_unique<FileWatcherQueue>(scheduler, calls, workers);
        limited.limit(calls);
        const auto watcher = watch(path);
        EXPECT_THAT(after(10s), IsEmpty());
        put(path, "polled");
        EXPECT_THAT(after(2s), ElementsAre(changed));
        QFile::remove(path);
        EXPECT_THAT(after(10s), ElementsAre(deleted)) << "once";
        put(path, "back");
        EXPECT_THAT(after(2s), ElementsAre(changed));
        // The limit is lifted: watches take over.
        calls.initError = calls.addError = 0;
        EXPECT_THAT(after(2s), IsEmpty());
        EXPECT_EQ(scheduler.pendingCount(), 0);
        put(path, "watched");
        EXPECT_THAT(after(200ms), ElementsAre(changed));
    }
}

TEST_F(FileWatcherTest, PollsFileSystemsThatOthersChangeAndSparesThemWhileTheyAreDead)
{
    calls.fileSystem = 0x6969;
    const auto watcher = watch(path);
    const int stats = calls.stats;
    EXPECT_THAT(after(6s), IsEmpty());
    EXPECT_EQ(calls.stats, stats + 3);
    calls.statError = EIO;
    EXPECT_THAT(after(6s), ElementsAre(changed)) << "not deleted, and not again and again";
    calls.statError = 0;
    EXPECT_THAT(after(6s), ElementsAre(changed));
    workers.isHeld = true;
    after(60s);
    EXPECT_EQ(workers.jobs.size(), 1);
}

TEST_F(FileWatcherTest, LooksAgainAtEverythingWhenEventsWereLost)
{
    const auto watcher = watch(path);
    const auto other = watch(in(u"other.txt"_s));
    calls.overflows = true;
    put(path, "lost");
    replaceByRename(in(u"other.txt"_s), "lost too");
    settle();
    calls.overflows = false;
    EXPECT_THAT(after(1s), ElementsAre(changed, changed));
    put(in(u"other.txt"_s), "x", QIODevice::Append);
    EXPECT_THAT(after(1s), ElementsAre(changed));
}

TEST_F(FileWatcherTest, MissesNothingWhileALookIsOnItsWay)
{
    // Each look finds the file as it was before the change that comes before its answer.
    const auto watcher = watch(path);
    calls.beforeStat = [this, left = 3](const char *) mutable {
        if (left-- > 0) {
            replaceByRename(path, QByteArray(20 + left, 'x'));
        }
    };
    workers.isHeld = true;
    replaceByRename(path, "the first");
    settle();
    workers.release();
    put(path, "between look and answer", QIODevice::Append);
    workers.isHeld = false;
    after(2s);
    calls.beforeStat = [](const char *) {};
    put(path, "and still watched");
    EXPECT_THAT(after(200ms), ElementsAre(changed));
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
    after(500ms);
    ASSERT_EQ(workers.jobs.size(), 10);
    auto hanging = std::exchange(workers.jobs, {});
    workers.jobs.push_back(std::move(hanging.back()));
    hanging.pop_back();
    workers.release();
    workers.isHeld = false;
    settle();
    put(path, "seen");
    EXPECT_THAT(after(200ms), ElementsAre(changed));
    // The share answers again: its files are watched, but for one whose watcher is gone.
    dead.pop_back();
    settle();
    workers.jobs = std::move(hanging);
    workers.release();
    settle();
    put(in(u"dead0.txt"_s), "alive");
    put(in(u"dead8.txt"_s), "alive");
    EXPECT_THAT(after(1s), ElementsAre(changed));
}

TEST_F(FileWatcherTest, MayBeDestroyedWhileEventsAreUnderWay)
{
    auto watcher = watch(path);
    put(path, "reported");
    settle();
    // Before the report is made, before it is looked up, before it is delivered.
    watcher.reset();
    EXPECT_THAT(after(1s), IsEmpty());
    watcher = watch(path);
    put(path, "looked up");
    workers.isHeld = true;
    after(200ms);
    watcher.reset();
    workers.release();
    workers.isHeld = false;
    EXPECT_THAT(after(1s), IsEmpty());

    std::unique_ptr<FileWatcher> own;
    int calledBack = 0;
    own = std::make_unique<FileWatcher>(*queue, path, [&](Event) {
        ++calledBack;
        own.reset();
    });
    settle();
    put(path, "destroyed by the call");
    after(1s);
    put(path, "and again");
    after(1s);
    EXPECT_EQ(calledBack, 1);

    watcher = watch(path);
    put(path, "the queue goes first");
    queue.reset();
    watcher->beginOwnWrite();
    watcher->endOwnWrite();
    EXPECT_THAT(after(1s), IsEmpty());
}

TEST(FileWatcherThread, ReportsWhileAShareIsDead)
{
    // As long as the process: a thread hangs in it when the queue is gone.
    static std::binary_semaphore isBack(0);
    static std::binary_semaphore isHanging(0);
    static LimitedCalls calls;
    QTemporaryDir folder;
    const QString path = folder.filePath(u"file.txt"_s);
    put(path, "one");
    calls.beforeStat = [](const char *name) {
        if (std::strstr(name, "/dead/") != nullptr) {
            isHanging.release();
            isBack.acquire();
            isHanging.release();
        }
    };
    {
        FileWatcherQueue queue(calls);
        FileWatcher dead(queue, u"/dead/file"_s, [](Event) { ADD_FAILURE() << "says something"; });
        isHanging.acquire();
        QEventLoop loop;
        std::vector<Event> events;
        FileWatcher watcher(queue, path, [&](Event event) {
            events.push_back(event);
            loop.quit();
        });
        EventLoopScheduler scheduler;
        // Until the change is later than the capture, which nobody tells about.
        const auto writing = scheduler.every(500ms, 0ms, [&] { put(path, "x", QIODevice::Append); });
        const auto giveUp = scheduler.after(60s, [&] { loop.exit(1); });
        EXPECT_EQ(loop.exec(), 0);
        EXPECT_THAT(events, ElementsAre(changed));
        dead.beginOwnWrite();
        dead.endOwnWrite();
    }
    isBack.release();
    isHanging.acquire();
}
