// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/AtomicFile.h"

#include "Base/FaultyCalls.h"
#include "Base/FilePath.h"
#include "TestFolder.h"

#include <QRegularExpression>

#include <cstring>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QByteArray oldContent = "old content\n";
/// Longer than what is collected before it is written.
const QByteArray newContent = QByteArray("new content, line after line\n").repeated(12'000);

/// An access list of the kernel's form that lets user 1 read, whatever else is set.
QByteArray accessListForUser1(const QByteArray &groupPermissions)
{
    return QByteArray::fromHex("02000000 01000600FFFFFFFF 0200040001000000 0400" + groupPermissions +
                               "00FFFFFFFF 10000400FFFFFFFF 20000000FFFFFFFF");
}

QByteArray attribute(const QByteArray &path, const char *name)
{
    QByteArray value(4096, '\0');
    const ssize_t length = getxattr(path.constData(), name, value.data(), size_t(value.size()));
    return length < 0 ? QByteArray() : value.left(length);
}

/// What a save may meet, and what has to become of it.
struct FileKind {
    std::string name;
    AtomicFile::InPlace inPlace = AtomicFile::InPlace::no;
    /// It is saved by the name of a symbolic link.
    bool isLinked = false;
    bool hasAccessList = false;
    /// What stands in the way of replacing it: this call, every time or once, fails so.
    std::string refused = {};
    int error = 0;
    bool isOnce = false;

    void prepare(FaultyCalls &calls) const
    {
        calls.portion = 100'000;
        calls.flushes = false;
        if (inPlace == AtomicFile::InPlace::owner) {
            calls.seemingOwner = ::geteuid() + 1;
        }
        calls.before = [this, isOver = false](const char *call) mutable {
            return !isOver && refused == call ? (isOver = isOnce, error) : 0;
        };
    }
};

const FileKind fileKinds[] = {
    {.name = "an ordinary file"},
    {.name = "a symbolic link", .isLinked = true},
    {.name = "an access list", .hasAccessList = true},
    {.name = "a symbolic link to an access list", .isLinked = true, .hasAccessList = true},
    {.name = "a hard link", .inPlace = AtomicFile::InPlace::hardLinks},
    {.name = "a symbolic link to a hard link with an access list",
     .inPlace = AtomicFile::InPlace::hardLinks,
     .isLinked = true,
     .hasAccessList = true},
    {.name = "a foreign file", .inPlace = AtomicFile::InPlace::owner, .refused = "fchown", .error = EPERM},
    {.name = "an access list that cannot be copied",
     .inPlace = AtomicFile::InPlace::attributes,
     .hasAccessList = true,
     .refused = "fsetxattr",
     .error = EPERM},
    {.name = "a folder that is read-only", .inPlace = AtomicFile::InPlace::folder, .refused = "open", .error = EROFS, .isOnce = true},
    {.name = "a mounted file", .inPlace = AtomicFile::InPlace::mount, .refused = "rename", .error = EBUSY, .isOnce = true},
};

class AtomicFileTest : public testing::Test, protected TestFolder {
protected:
    [[nodiscard]] QByteArray bytePath(const QString &name) const { return QFile::encodeName(path(name)); }

    void putOld(const QString &name, mode_t mode = 0644) const
    {
        put(name, oldContent);
        ASSERT_EQ(chmod(bytePath(name).constData(), mode), 0);
    }

    [[nodiscard]] mode_t mode(const QString &name) const
    {
        struct stat status = {};
        return ::stat(bytePath(name).constData(), &status) == 0 ? status.st_mode & 07777 : mode_t(-1);
    }

    [[nodiscard]] QStringList temporaries() const { return names().filter(QRegularExpression(u"^\\.quillet-"_s)); }

    [[nodiscard]] Result<void> save(const QString &name, FileCalls &calls,
                                    AtomicFile::NewFile newFile = AtomicFile::NewFile::readableByOthers) const
    {
        return writeAtomically(path(name), newContent, newFile, calls);
    }

    [[nodiscard]] Result<void> save(const QString &name) const { return save(name, FileCalls::system()); }

    [[nodiscard]] QString rescueFolder() const { return path(u"rescue"_s); }
    /// Where it cannot be replaced, in place.
    [[nodiscard]] Result<AtomicFile::Written> saveAnyhow(const QString &name, FileCalls &calls) const
    {
        return AtomicFile::open(path(name), AtomicFile::NewFile::readableByOthers, calls, rescueFolder()).and_then([](AtomicFile file) {
            return file.write(newContent).and_then([&] { return file.commit(); });
        });
    }
    void putLinked(const QByteArray &content) const
    {
        QFile::remove(path(u"b"_s));
        put(u"a"_s, content);
        ASSERT_EQ(::link(bytePath(u"a"_s).constData(), bytePath(u"b"_s).constData()), 0);
    }

    static constexpr mode_t modeOfKinds = 0640;
    static const inline QByteArray listOfKinds = accessListForUser1("04");
    /// Makes "real" with the content, and answers with the name to be saved.
    [[nodiscard]] QString make(const FileKind &kind, const QByteArray &content) const
    {
        for (const QString &name : {u"real"_s, u"other"_s, u"link"_s}) {
            QFile::remove(path(name));
        }
        for (const QString &name : temporaries()) {
            QFile::remove(path(name));
        }
        QDir(rescueFolder()).removeRecursively();
        put(u"real"_s, content);
        const QByteArray real = bytePath(u"real"_s);
        EXPECT_EQ(chmod(real.constData(), modeOfKinds), 0);
        if (kind.hasAccessList) {
            EXPECT_EQ(setxattr(real.constData(), "system.posix_acl_access", listOfKinds.constData(), size_t(listOfKinds.size()), 0), 0);
        }
        if (kind.inPlace == AtomicFile::InPlace::hardLinks) {
            EXPECT_EQ(::link(real.constData(), bytePath(u"other"_s).constData()), 0);
        }
        if (kind.isLinked) {
            EXPECT_EQ(::symlink("real", bytePath(u"link"_s).constData()), 0);
        }
        return kind.isLinked ? u"link"_s : u"real"_s;
    }
    /// Who may read the file, and by which names, and that nobody else can read what is on its way.
    void expectIdentity(const FileKind &kind) const
    {
        EXPECT_EQ(mode(u"real"_s), modeOfKinds);
        EXPECT_EQ(attribute(bytePath(u"real"_s), "system.posix_acl_access"), kind.hasAccessList ? listOfKinds : QByteArray());
        EXPECT_EQ(QFileInfo(path(u"link"_s)).isSymLink(), kind.isLinked);
        EXPECT_TRUE(kind.inPlace != AtomicFile::InPlace::hardLinks || read(u"other"_s) == read(u"real"_s));
        for (const QString &name : temporaries() + names(u"rescue"_s)) {
            const QString there = temporaries().contains(name) ? name : u"rescue/"_s + name;
            const QByteArray list = attribute(bytePath(there), "system.posix_acl_access");
            EXPECT_EQ(mode(there) & ~modeOfKinds, 0U) << "others can get at the content";
            EXPECT_TRUE(list.isEmpty() || (kind.hasAccessList && list == listOfKinds)) << "others can get at the content";
        }
    }
};

/// All files belong to somebody else, who may be given some more or not.
class OthersFiles final : public FileCalls {
public:
    static constexpr uid_t owner = 4001;
    static constexpr gid_t group = 4002;
    int error = 0;
    std::vector<std::pair<uid_t, gid_t>> given;

    int stat(const char *path, struct stat *status) override
    {
        const int result = FileCalls::stat(path, status);
        status->st_uid = owner;
        status->st_gid = group;
        return result;
    }
    int fchown(int /*file*/, uid_t newOwner, gid_t newGroup) override
    {
        if (error == 0) {
            given.emplace_back(newOwner, newGroup);
            return 0;
        }
        errno = error;
        return -1;
    }
};

/// All symbolic links were made by somebody else.
class StrangersLinks final : public FileCalls {
public:
    int lstat(const char *path, struct stat *status) override
    {
        const int result = FileCalls::lstat(path, status);
        status->st_uid = S_ISLNK(status->st_mode) ? OthersFiles::owner : status->st_uid;
        return result;
    }
};

} // namespace

TEST_F(AtomicFileTest, WhateverFailsAndWheneverItDiesNothingIsLost)
{
    using InPlace = AtomicFile::InPlace;
    constexpr int death = 0;
    const mode_t mask = umask(0);
    int replaced = 0;
    int inPlace = 0;
    int halfWritten = 0;
    for (const FileKind &kind : fileKinds) {
        for (const int error : {death, EIO, ENOSPC, EACCES, EINTR}) {
            // In place one that becomes shorter goes another way.
            const bool isShrunk = kind.inPlace != InPlace::no && (error == death || error == EIO);
            const QByteArrayList olderContents =
                isShrunk ? QByteArrayList{oldContent, newContent + oldContent} : QByteArrayList{oldContent};
            for (const QByteArray &before : olderContents) {
                for (int step = 1;; ++step) {
                    SCOPED_TRACE(kind.name + (error == death ? " dies" : " fails with " + std::to_string(error)) + " at step " +
                                 std::to_string(step));
                    const QString name = make(kind, before);
                    FaultyCalls calls;
                    kind.prepare(calls);
                    (error == death ? calls.killAt : calls.failAt) = step;
                    calls.error = error == death ? EIO : error;
                    const bool isWritten =
                        kind.inPlace == InPlace::no ? save(name, calls).has_value() : saveAnyhow(name, calls).has_value();
                    ++(kind.inPlace == InPlace::no ? replaced : inPlace);
                    const QByteArray now = read(u"real"_s);
                    const std::vector<RescuedFile> rescued = rescuedFiles(rescueFolder());
                    const bool isRescued =
                        rescued.size() == 1 && rescued[0].target == path(u"real"_s) && read(rescued[0].content) == newContent;
                    const bool isHalf = now != before && now != newContent;
                    halfWritten += isHalf ? 1 : 0;
                    EXPECT_TRUE(!isHalf || (isRescued && kind.inPlace != InPlace::no)) << "half-written, and whole nowhere";
                    EXPECT_TRUE(!isWritten || now == newContent) << "told that it is saved, and it is not";
                    const bool isRepeated = calls.failedCall == "write" || calls.failedCall == "fsync" || calls.failedCall == "open";
                    EXPECT_TRUE(error != EINTR || !isRepeated || !kind.refused.empty() || isWritten) << calls.failedCall;
                    EXPECT_TRUE(error == death || kind.inPlace != InPlace::no || temporaries().isEmpty()) << "something is left";
                    expectIdentity(kind);
                    if (HasFailure()) {
                        umask(mask);
                        return;
                    }
                    if (calls.steps < step) {
                        EXPECT_TRUE(isWritten);
                        break;
                    }
                }
            }
        }
    }
    umask(mask);
    // The figures that the documentation has.
    RecordProperty("replaced", replaced);
    RecordProperty("in place", inPlace);
    RecordProperty("half-written", halfWritten);
    EXPECT_GT(replaced + inPlace, 2000);
    EXPECT_GT(halfWritten, 100) << "else nothing was rescued";
}

TEST_F(AtomicFileTest, WritesThroughNoLinkOfAStrangerInAFolderForAll)
{
    putOld(u"a"_s);
    ASSERT_EQ(::symlink("a", bytePath(u"b"_s).constData()), 0);
    StrangersLinks calls;
    ASSERT_EQ(chmod(bytePath(u"."_s).constData(), 01777), 0);
    const auto refused = save(u"b"_s, calls);
    EXPECT_TRUE(!refused && refused.error().code == AtomicFile::strangersLinkError);
    EXPECT_EQ(read(u"a"_s), oldContent);
    EXPECT_TRUE(save(u"b"_s)) << "the user's own";
    putOld(u"a"_s);
    ASSERT_EQ(chmod(bytePath(u"."_s).constData(), 0777), 0);
    EXPECT_TRUE(save(u"b"_s, calls)) << "the kernel follows it too";
}

TEST_F(AtomicFileTest, WritesOverNothingThatComesAtTheLastMoment)
{
    struct Case {
        std::string when;
        bool wasThere;
        std::string call;
        int time;
    };
    const Case cases[] = {{"where no file was found", false, "rename", 1}, {"behind the bytes that were compared", true, "fstatat", 2}};
    const QByteArray others = "what another program writes\n";
    for (const Case &tested : cases) {
        SCOPED_TRACE(tested.when);
        AtomicFile::Expectation expected;
        if (tested.wasThere) {
            putOld(u"a"_s);
            struct stat status = {};
            ASSERT_EQ(::stat(bytePath(u"a"_s).constData(), &status), 0);
            expected.state = FileState::of(status, ContentHash::of(oldContent.constData(), size_t(oldContent.size())));
            expected.state->isFresh = true;
        }
        FaultyCalls calls;
        calls.before = [&, left = tested.time](const char *call) mutable {
            if (tested.call == call && --left == 0) {
                put(u"a"_s, others);
            }
            return 0;
        };
        auto file = AtomicFile::open(path(u"a"_s), AtomicFile::NewFile::readableByOthers, calls);
        ASSERT_TRUE(file && file->write(newContent));
        const auto written = file->commit(expected);
        EXPECT_TRUE(!written && written.error().code == AtomicFile::changedError);
        EXPECT_EQ(read(u"a"_s), others);
        QFile::remove(path(u"a"_s));
    }
}

TEST_F(AtomicFileTest, TimesOfCoarseClocksAreTrustedLater)
{
    constexpr long tenth = 100'000'000;
    struct stat status = {};
    ASSERT_EQ(clock_gettime(CLOCK_REALTIME, &status.st_mtim), 0);
    // Some tenths of a second ago, and a second more at the most.
    status.st_mtim.tv_sec -= status.st_mtim.tv_nsec < tenth ? 1 : 0;
    status.st_mtim.tv_nsec = 0;
    EXPECT_FALSE(FileState::of(status, std::nullopt).isSurelySameAs(status)) << "written again, it may have the same time";
    status.st_mtim.tv_nsec = 1;
    EXPECT_TRUE(FileState::of(status, std::nullopt).isSurelySameAs(status));
    status.st_mtim = {.tv_sec = status.st_mtim.tv_sec - 2, .tv_nsec = 0};
    EXPECT_TRUE(FileState::of(status, std::nullopt).isSurelySameAs(status));
}

TEST_F(AtomicFileTest, RemovesWhatEndedProgramsLeft)
{
    const QString left = put(u".quillet-"_s + QString::fromLatin1(programMark(99'999'999)) + u"x"_s, "left");
    const QString own = put(u".quillet-"_s + QString::fromLatin1(programMark(QCoreApplication::applicationPid())) + u"x"_s, "own");
    const QString unknown = put(u".quillet-x"_s, "of somebody");
    ASSERT_TRUE(save(u"a"_s));
    EXPECT_FALSE(QFile::exists(left));
    EXPECT_TRUE(QFile::exists(own) && QFile::exists(unknown));
}

TEST_F(AtomicFileTest, OfTextsThatWereRescuedItsOwnGo)
{
    putLinked(oldContent);
    ASSERT_EQ(::symlink(".", bytePath(u"folder"_s).constData()), 0);
    const auto putRescued = [this](qint64 program, const QString &target) {
        const QString name = u"rescue/"_s + QString::fromLatin1(programMark(program)) + QFileInfo(target).fileName();
        put(name + u".content"_s, "kept");
        put(name + u".target"_s, encodedPath(path(target)));
        return QFileInfo(name).fileName();
    };
    const qint64 own = QCoreApplication::applicationPid();
    const QString a = QFileInfo(path(u"a"_s)).canonicalFilePath();
    putRescued(own, a);
    const QString ofOther = putRescued(own, QFileInfo(path(u"b"_s)).canonicalFilePath());
    const QString ofEnded = putRescued(99'999'999, a);
    ASSERT_TRUE(saveAnyhow(u"folder/a"_s, FileCalls::system()));
    QStringList left;
    for (const QString &name : {ofOther, ofEnded}) {
        left << name + u".content"_s << name + u".target"_s;
    }
    left.sort();
    EXPECT_EQ(names(u"rescue"_s), left) << "nobody has seen what another program was writing";
}

TEST_F(AtomicFileTest, WritesInPlaceWhatCannotBeReplaced)
{
    using InPlace = AtomicFile::InPlace;
    struct Case {
        const char *call;
        int error;
        InPlace expected;
    };
    const Case cases[] = {{"", 0, InPlace::no},           {"rename", EBUSY, InPlace::mount}, {"rename", EXDEV, InPlace::mount},
                          {"fchmod", EPERM, InPlace::no}, {"fchmod", ENOTSUP, InPlace::no},  {"fsetxattr", EIO, InPlace::attributes},
                          {"fsync", EINVAL, InPlace::no}, {"open", EROFS, InPlace::folder}};
    for (const Case &tested : cases) {
        SCOPED_TRACE(std::string(tested.call) + " " + std::to_string(tested.error));
        putOld(u"a"_s, 0600);
        ASSERT_EQ(setxattr(bytePath(u"a"_s).constData(), "user.note", "1", 1, 0), 0);
        struct stat before = {};
        struct stat after = {};
        ::stat(bytePath(u"a"_s).constData(), &before);
        FaultyCalls calls;
        bool isFirst = true;
        calls.before = [&](const char *call) {
            const bool isMeant = std::strcmp(call, tested.call) == 0;
            // Once where the folder for rescue needs the call as well.
            const bool isOnce = tested.expected == InPlace::folder || tested.expected == InPlace::mount;
            return isMeant && (!isOnce || std::exchange(isFirst, false)) ? tested.error : 0;
        };
        // The mode of the new file is the target's already where it cannot be set.
        const auto written = saveAnyhow(u"a"_s, calls);
        ASSERT_TRUE(written) << written.error().message.toStdString();
        ::stat(bytePath(u"a"_s).constData(), &after);
        EXPECT_EQ(written->inPlace, tested.expected);
        EXPECT_EQ(after.st_ino == before.st_ino, tested.expected != InPlace::no);
        EXPECT_TRUE(FileState::of(after, written->state.hash).stamp == written->state.stamp);
        EXPECT_EQ(read(u"a"_s), newContent);
        EXPECT_EQ(mode(u"a"_s), 0600U);
        EXPECT_EQ(attribute(bytePath(u"a"_s), "user.note"), "1");
        EXPECT_EQ(temporaries() + QDir(rescueFolder()).entryList(QDir::Files), QStringList());
    }
    putLinked(oldContent);
    EXPECT_EQ(saveAnyhow(u"a"_s, FileCalls::system())->inPlace, InPlace::hardLinks);
    EXPECT_EQ(read(u"b"_s), newContent);
    QFile::remove(path(u"b"_s));
    OthersFiles others;
    others.error = EPERM;
    EXPECT_EQ(saveAnyhow(u"a"_s, others)->inPlace, InPlace::owner);
}

TEST_F(AtomicFileTest, ContentIsOnDiskBeforeItGetsTheName)
{
    putOld(u"a"_s);
    FaultyCalls calls;
    QStringList order;
    calls.before = [&](const char *call) {
        const QString name = QString::fromLatin1(call);
        if ((name == u"write" || name == u"fchmod" || name == u"fsync" || name == u"rename") && (order.isEmpty() || order.last() != name)) {
            order += name;
        }
        return 0;
    };
    ASSERT_TRUE(save(u"a"_s, calls));
    EXPECT_EQ(order.join(u' '), u"write fchmod fsync rename fsync");
}

TEST_F(AtomicFileTest, GoesOnAfterInterruptionsAndShortWrites)
{
    FaultyCalls calls;
    calls.portion = 7'001;
    calls.before = [turn = 0](const char *call) mutable {
        return (std::strcmp(call, "write") == 0 || std::strcmp(call, "fsync") == 0) && ++turn % 2 == 1 ? EINTR : 0;
    };
    ASSERT_TRUE(save(u"a"_s, calls));
    EXPECT_EQ(read(u"a"_s), newContent);

    // That a disk is full may come out only when the file is closed.
    FaultyCalls full;
    full.before = [](const char *call) { return std::strcmp(call, "close") == 0 ? ENOSPC : 0; };
    putOld(u"a"_s);
    EXPECT_FALSE(save(u"a"_s, full));
    EXPECT_EQ(read(u"a"_s), oldContent);
}

TEST_F(AtomicFileTest, KeepsModeAttributesAndAccessList)
{
    putOld(u"a"_s, 04750);
    const QByteArray a = bytePath(u"a"_s);
    ASSERT_EQ(setxattr(a.constData(), "user.note", "kept", 4, 0), 0);
    ASSERT_TRUE(save(u"a"_s));
    EXPECT_EQ(mode(u"a"_s), 04750U);
    EXPECT_EQ(attribute(a, "user.note"), "kept");

    const QByteArray list = accessListForUser1("04");
    ASSERT_EQ(setxattr(a.constData(), "system.posix_acl_access", list.constData(), size_t(list.size()), 0), 0);
    ASSERT_TRUE(save(u"a"_s));
    EXPECT_EQ(attribute(a, "system.posix_acl_access"), list);

    // One that cannot be kept is no reason to let others in.
    putOld(u"a"_s, 0640);
    const QByteArray narrow = accessListForUser1("00");
    ASSERT_EQ(setxattr(a.constData(), "system.posix_acl_access", narrow.constData(), size_t(narrow.size()), 0), 0);
    FaultyCalls calls;
    calls.before = [](const char *call) { return std::strcmp(call, "fsetxattr") == 0 ? EPERM : 0; };
    EXPECT_FALSE(save(u"a"_s, calls));
    EXPECT_EQ(read(u"a"_s), oldContent);

    // What the folder hands to new files must not let anybody new at an existing one.
    putOld(u"b"_s, 0640);
    ASSERT_EQ(setxattr(bytePath({}).constData(), "system.posix_acl_default", list.constData(), size_t(list.size()), 0), 0);
    ASSERT_TRUE(save(u"b"_s));
    EXPECT_EQ(attribute(bytePath(u"b"_s), "system.posix_acl_access"), QByteArray());
    EXPECT_EQ(mode(u"b"_s), 0640U);
}

TEST_F(AtomicFileTest, KeepsTheOwnerOrNarrowsTheMode)
{
    putOld(u"a"_s, 0674);
    OthersFiles calls;
    ASSERT_TRUE(save(u"a"_s, calls));
    EXPECT_EQ(calls.given, (std::vector<std::pair<uid_t, gid_t>>{{uid_t(-1), OthersFiles::group}, {OthersFiles::owner, gid_t(-1)}}));
    EXPECT_EQ(mode(u"a"_s), 0674U);

    calls.error = EPERM;
    ASSERT_TRUE(save(u"a"_s, calls));
    EXPECT_EQ(mode(u"a"_s), 0644U) << "the new group got what the old one had";
}

TEST_F(AtomicFileTest, NewFilesFollowTheUsersMask)
{
    const mode_t mask = umask(027);
    EXPECT_TRUE(save(u"a"_s));
    EXPECT_TRUE(save(QString(255, u'n')));
    umask(0);
    EXPECT_TRUE(save(u"private"_s, FileCalls::system(), AtomicFile::NewFile::privateToUser));
    umask(mask);
    EXPECT_EQ(mode(u"a"_s), 0640U);
    EXPECT_EQ(mode(u"private"_s), 0600U);
    EXPECT_EQ(read(QString(255, u'n')), newContent);
}

TEST_F(AtomicFileTest, WritesThroughSymbolicLinks)
{
    QDir().mkdir(path(u"sub"_s));
    putOld(u"sub/real"_s, 0600);
    ASSERT_TRUE(QFile::link(u"real"_s, path(u"sub/near"_s)));
    ASSERT_TRUE(QFile::link(u"sub/near"_s, path(u"far"_s)));
    ASSERT_TRUE(QFile::link(u"sub/new"_s, path(u"dangling"_s)));
    ASSERT_TRUE(QFile::link(u"round"_s, path(u"round"_s)));

    ASSERT_TRUE(save(u"far"_s));
    EXPECT_EQ(read(u"sub/real"_s), newContent);
    EXPECT_EQ(mode(u"sub/real"_s), 0600U);
    EXPECT_TRUE(QFileInfo(path(u"far"_s)).isSymLink() && QFileInfo(path(u"sub/near"_s)).isSymLink());

    ASSERT_TRUE(save(u"dangling"_s));
    EXPECT_EQ(read(u"sub/new"_s), newContent);
    EXPECT_TRUE(QFileInfo(path(u"dangling"_s)).isSymLink());

    EXPECT_EQ(save(u"round"_s).error().code, ELOOP);
    EXPECT_EQ(resolvedLinks(path(u"far"_s)), path(u"sub/real"_s));
}

TEST_F(AtomicFileTest, RefusesWhatMustNotBeReplaced)
{
    QDir().mkdir(path(u"folder"_s));
    ASSERT_EQ(mkfifo(bytePath(u"pipe"_s).constData(), 0666), 0);
    putOld(u"locked"_s, 0444);

    EXPECT_EQ(save(u"folder"_s).error().code, EISDIR);
    EXPECT_TRUE(save(u"pipe"_s).error().message.contains(u"pipe"));
    EXPECT_EQ(save(u"missing/a"_s).error().code, ENOENT);
    EXPECT_EQ(save(u"locked/a"_s).error().code, ENOTDIR);
    EXPECT_FALSE(writeAtomically(u"/dev/null"_s, "x", AtomicFile::NewFile::readableByOthers));
    EXPECT_FALSE(writeAtomically(u""_s, "x", AtomicFile::NewFile::readableByOthers));

    FaultyCalls calls;
    calls.before = [](const char *call) { return std::strcmp(call, "access") == 0 ? EACCES : 0; };
    const auto result = save(u"locked"_s, calls);
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().message.contains(u"“locked”") && result.error().message.contains(u"read-only"))
        << result.error().message.toStdString();
    EXPECT_EQ(read(u"locked"_s), oldContent);
    EXPECT_EQ(temporaries(), QStringList());
}
