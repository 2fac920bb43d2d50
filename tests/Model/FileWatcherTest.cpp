// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/FileWatcher.h"

#include "Base/AtomicFile.h"
#include "Base/Scheduler.h"
#include "Base/Workers.h"
#include "Files/TextFile.h"
#include "Files/WatchedPath.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
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
    int notifier = -1;
    /// On the thread that asks, after the answer was made.
    std::function<void(const char *path)> afterStat = [](const char *) {};

    int inotifyInit(int flags) override
    {
        notifier = initError != 0 ? fail(initError) : WatchCalls::inotifyInit(flags);
        return notifier;
    }
    /// As the kernel has them.
    [[nodiscard]] qsizetype watchCount() const
    {
        QFile info(u"/proc/self/fdinfo/%1"_s.arg(notifier));
        return info.open(QIODevice::ReadOnly) ? info.readAll().count("inotify wd:") : -1;
    }
    int inotifyAddWatch(int file, const char *path, uint32_t mask) override
    {
        return addError != 0 ? fail(addError) : WatchCalls::inotifyAddWatch(file, path, mask);
    }
    int stat(const char *path, struct stat *status) override
    {
        ++stats;
        const int result = statError != 0 ? fail(statError) : WatchCalls::stat(path, status);
        const int error = errno;
        afterStat(path);
        errno = error;
        return result;
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
        auto watcher = std::make_unique<FileWatcher>(*queue, watched, std::nullopt, [this](Event event) { events.push_back(event); });
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
    replaceByRename(path, "changed");
    EXPECT_THAT(after(199ms), IsEmpty());
    put(path, " again", QIODevice::Append);
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

    QFile::rename(path, in(u"elsewhere"_s));
    EXPECT_THAT(after(1s), ElementsAre(deleted));
    put(in(u"elsewhere"_s), "no longer ours");
    EXPECT_THAT(after(1s), IsEmpty());
}

TEST_F(FileWatcherTest, FollowsItsFolderAwayAndBack)
{
    const QString inner = in(u"a/b/c/file.txt"_s);
    const auto watcher = watch(inner);
    EXPECT_THAT(after(10s), IsEmpty());
    QDir(folder.path()).mkpath(u"a/b/c"_s);
    put(inner, "one");
    EXPECT_THAT(after(1s), ElementsAre(changed));
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

TEST_F(FileWatcherTest, ReportsWhatHappenedSinceTheFileWasRead)
{
    const auto watchAsRead = [this] {
        const auto contents = TextFile::read(path);
        return [this, stamp = contents->stamp] {
            return std::make_unique<FileWatcher>(*queue, path, stamp, [this](Event event) { events.push_back(event); });
        };
    };
    auto watcher = watchAsRead()();
    EXPECT_THAT(after(10s), IsEmpty());

    const auto watchLater = watchAsRead();
    put(path, "changed before the watcher came");
    watcher = watchLater();
    EXPECT_THAT(after(10s), ElementsAre(changed));

    watcher.reset();
    settle();
    const auto watchTooLate = watchAsRead();
    QFile::remove(path);
    watcher = watchTooLate();
    EXPECT_THAT(after(10s), ElementsAre(deleted));
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
    after(0s);
    put(path, "before");
    EXPECT_THAT(after(1s), ElementsAre(changed));

    watcher = watch(path);
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
    const auto watcher = watch(path);
    put(path, "foreign");
    workers.isHeld = true;
    EXPECT_THAT(after(200ms), IsEmpty());
    ASSERT_EQ(workers.jobs.size(), 1);
    watcher->beginOwnWrite();
    put(path, "own");
    watcher->endOwnWrite();
    EXPECT_THAT(after(10s), IsEmpty());
    workers.isHeld = false;
    workers.release();
    EXPECT_THAT(after(1s), IsEmpty());
    put(path, "foreign again");
    EXPECT_THAT(after(1s), ElementsAre(changed));
}

TEST_F(FileWatcherTest, ManyWatchersShareFoldersAndOneNotifier)
{
    QDir(folder.path()).mkdir(u"sub"_s);
    auto first = watch(path);
    auto second = watch(path);
    auto below = watch(in(u"sub/file.txt"_s));
    replaceByRename(path, "for two");
    EXPECT_THAT(after(1s), ElementsAre(changed, changed));
    second.reset();
    put(path, "for one");
    put(in(u"sub/file.txt"_s), "for the other");
    EXPECT_THAT(after(1s), ElementsAre(changed, changed));
    QFile::remove(path);
    EXPECT_THAT(after(1s), ElementsAre(deleted));
    put(in(u"sub/file.txt"_s), "x", QIODevice::Append);
    EXPECT_THAT(after(1s), ElementsAre(changed));
    put(path, "back, in a folder that is watched for two reasons");
    EXPECT_THAT(after(1s), ElementsAre(changed));
    below->stop();
    put(in(u"sub/file.txt"_s), "for nobody");
    EXPECT_THAT(after(1s), IsEmpty());
    EXPECT_GT(calls.watchCount(), 0);
    first.reset();
    settle();
    EXPECT_EQ(calls.watchCount(), 0);
}

TEST_F(FileWatcherTest, PollsWhenThereAreNoWatchesToBeHad)
{
    for (int LimitedCalls::*const limit : {&LimitedCalls::initError, &LimitedCalls::addError}) {
        put(path, "one");
        calls.initError = calls.addError = 0;
        queue = std::make_unique<FileWatcherQueue>(scheduler, calls, workers);
        calls.*limit = limit == &LimitedCalls::initError ? EMFILE : ENOSPC;
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
    // The first event comes before the engine knows of the watch that it belongs to.
    workers.isHeld = true;
    const auto watcher = watch(path);
    calls.afterStat = [this](const char *) {
        put(path, "between look and answer");
        settle();
    };
    workers.release();
    calls.afterStat = [](const char *) {};
    workers.isHeld = false;
    EXPECT_THAT(after(1s), ElementsAre(changed));
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
    put(in(u"dead8.txt"_s), "alive");
    workers.release();
    settle();
    put(in(u"dead0.txt"_s), "alive");
    put(in(u"dead8.txt"_s), "and changed");
    EXPECT_THAT(after(1s), ElementsAre(changed));
    dead.clear();
    settle();
    workers.isHeld = true;
    for (int i = 0; i < 9; ++i) {
        dead.push_back(watch(path));
    }
    EXPECT_EQ(workers.jobs.size(), 4);
    dead.clear();
    workers.isHeld = false;
    workers.release();
    settle();
    const qsizetype watches = calls.watchCount();
    queue = std::make_unique<FileWatcherQueue>(scheduler, calls, workers);
    const auto alone = watch(path);
    EXPECT_EQ(calls.watchCount(), watches) << "of the one watcher that is left";
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
    own = std::make_unique<FileWatcher>(*queue, path, std::nullopt, [&](Event) {
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
