// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/AtomicFile.h"

#include "Base/FilePath.h"
#include "Base/Translation.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSysInfo>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <limits>
#include <signal.h>
#include <stdio.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype bufferSize = 256 * 1024;
/// No text is longer.
constexpr qint64 largestHashed = 128 * 1024 * 1024;
constexpr const char *accessList = "system.posix_acl_access";
constexpr mode_t permissionBits = 07777;

auto retried(auto &&call)
{
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

QByteArray nameIn(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

QString fileName(const QByteArray &path)
{
    return shownPath(decodedPath(nameIn(path)));
}

/// With its slash; empty for a name in the working folder.
QByteArray folderOf(const QByteArray &path)
{
    return path.left(path.lastIndexOf('/') + 1);
}

QStringView reasonOf(int error)
{
    switch (error) {
    case EACCES:
    case EPERM:
        return u"“%@” could not be saved, because you do not have permission to write to it or to its folder.";
    case EROFS:
        return u"“%@” could not be saved, because it is on a volume that is read-only.";
    case ENOSPC:
        return u"“%@” could not be saved, because the disk is full.";
    case EDQUOT:
        return u"“%@” could not be saved, because your quota on the disk is used up.";
    case EFBIG:
        return u"“%@” could not be saved, because it is too large for the disk.";
    case ENOENT:
        return u"“%@” could not be saved, because its folder does not exist.";
    case ENOTDIR:
        return u"“%@” could not be saved, because a file stands where its folder should be.";
    case EEXIST:
        return u"“%@” could not be saved, because there is a file of that name now.";
    case EISDIR:
        return u"“%@” could not be saved, because there is a folder of that name.";
    case ENAMETOOLONG:
        return u"“%@” could not be saved, because its name is too long.";
    case ELOOP:
        return u"“%@” could not be saved, because its symbolic link leads round in a circle.";
    default:
        return {};
    }
}

tl::unexpected<Error> saveFailure(const QByteArray &path, int error)
{
    return tl::make_unexpected(saveError(decodedPath(path), error));
}

/// The kernel follows no such link, but it is not asked to: links are read here one by one.
bool isLinkOfStranger(const QByteArray &link, const struct stat &status, FileCalls &calls)
{
    const QByteArray folderName = folderOf(link) + '.';
    struct stat folder = {};
    constexpr mode_t sticky = S_ISVTX | S_IWOTH;
    return status.st_uid != ::geteuid() && calls.stat(folderName.constData(), &folder) == 0 && (folder.st_mode & sticky) == sticky &&
           folder.st_uid != status.st_uid;
}

Result<QByteArray> followLinks(QByteArray path, FileCalls &calls)
{
    constexpr int mostLinks = 40;
    const QByteArray asGiven = path;
    for (int link = 0; link <= mostLinks; ++link) {
        struct stat status = {};
        if (calls.lstat(path.constData(), &status) != 0) {
            // A link may lead nowhere; whether something can be made there, its use will tell.
            return errno == ENOENT ? Result<QByteArray>(path) : saveFailure(asGiven, errno);
        }
        if (!S_ISLNK(status.st_mode)) {
            return path;
        }
        if (isLinkOfStranger(path, status, calls)) {
            return failure(formatted(localized(u"“%@” could not be saved, because it is a symbolic link that another user made in a folder "
                                               u"where everybody may write."),
                                     fileName(asGiven)),
                           AtomicFile::strangersLinkError);
        }
        QByteArray target(PATH_MAX, Qt::Uninitialized);
        const ssize_t length = calls.readlink(path.constData(), target.data(), size_t(target.size()));
        if (length < 0) {
            return saveFailure(asGiven, errno);
        }
        target.truncate(length);
        path = target.startsWith('/') ? target : folderOf(path) + target;
    }
    return saveFailure(asGiven, ELOOP);
}

/// The file system has no such thing; there is nothing to keep or to flush.
bool isUnsupported(int error)
{
    return error == ENOTSUP || error == EINVAL || error == ENOSYS || error == ENOTTY;
}

bool isForbidden(int error)
{
    return error == EACCES || error == EPERM || error == EROFS;
}

/// Another program on this machine, which has ended. `name` begins with its mark.
bool isOfEndedProgram(const QByteArray &name)
{
    const QList<QByteArray> parts = name.split('-');
    bool isNumber = false;
    const int program = parts.size() == 3 ? parts[1].toInt(&isNumber) : 0;
    return isNumber && name.startsWith(programMark(program)) && ::kill(program, 0) != 0 && errno == ESRCH;
}

/// One name for a file, however its folder is reached, where that can be asked.
QByteArray lastingName(const QByteArray &path)
{
    const QByteArray found = realPath(path);
    return found.isEmpty() ? path : found;
}

constexpr QByteArrayView temporaryBegin = ".quillet-";
constexpr auto contentEnding = ".content"_L1;
constexpr auto targetEnding = ".target"_L1;

/// What killed programs left in a folder. Not in the largest, which take their time to be read.
void removeLeftBehind(const QByteArray &folder, FileCalls &calls)
{
    constexpr int mostEntries = 20'000;
    DIR *const entries = ::opendir(folder.isEmpty() ? "." : folder.constData());
    if (!entries) {
        return;
    }
    for (int count = 0; count < mostEntries; ++count) {
        const dirent *const entry = ::readdir(entries);
        if (!entry) {
            break;
        }
        const QByteArrayView name(entry->d_name);
        if (name.startsWith(temporaryBegin) && isOfEndedProgram(name.sliced(temporaryBegin.size()).toByteArray())) {
            calls.unlink((folder + name.toByteArray()).constData());
        }
    }
    ::closedir(entries);
}

} // namespace

Result<AtomicFile> AtomicFile::open(const QString &path, NewFile newFile, FileCalls &calls, const QString &rescueFolder)
{
    auto target = followLinks(encodedPath(path), calls);
    if (!target) {
        return tl::make_unexpected(target.error());
    }
    AtomicFile file(calls, *std::move(target), newFile, rescueFolder.isEmpty() ? QByteArray() : encodedPath(rescueFolder) + '/');
    if (auto result = file.examineTarget(); !result) {
        return tl::make_unexpected(result.error());
    }
    if (auto result = file.create(); !result) {
        return tl::make_unexpected(result.error());
    }
    return file;
}

AtomicFile::AtomicFile(FileCalls &calls, QByteArray target, NewFile newFile, QByteArray rescueFolder)
    : m_calls(&calls), m_target(std::move(target)), m_rescueFolder(std::move(rescueFolder)), m_mode(mode_t(newFile))
{
    m_buffer.reserve(bufferSize);
}

AtomicFile::AtomicFile(AtomicFile &&other) noexcept
    : m_calls(other.m_calls), m_target(std::move(other.m_target)), m_rescueFolder(std::move(other.m_rescueFolder)),
      m_inPlace(other.m_inPlace), m_temporary(std::exchange(other.m_temporary, {})), m_note(std::exchange(other.m_note, {})),
      m_buffer(std::move(other.m_buffer)), m_hash(std::move(other.m_hash)), m_found(other.m_found), m_mode(other.m_mode),
      m_file(std::exchange(other.m_file, -1)), m_targetExists(other.m_targetExists), m_isDamaged(other.m_isDamaged)
{}

AtomicFile::~AtomicFile()
{
    discard();
}

QString AtomicFile::target() const
{
    return decodedPath(m_target);
}

tl::unexpected<Error> AtomicFile::failed(int error) const
{
    return saveFailure(m_target, error);
}

Result<void> AtomicFile::examineTarget()
{
    struct stat status = {};
    if (m_calls->stat(m_target.constData(), &status) != 0) {
        if (errno == ENOENT && !fileName(m_target).isEmpty()) {
            return {};
        }
        return failed(errno);
    }
    m_targetExists = true;
    // Until the attributes have been taken over, only the user can get at the content, and at most as far as at the target.
    m_mode = status.st_mode & 0600;
    if (S_ISDIR(status.st_mode)) {
        return failed(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        return failure(formatted(localized(u"“%@” could not be saved, because it is a pipe, a socket or a device and not a file."),
                                 fileName(m_target)),
                       EINVAL);
    }
    if (m_calls->access(m_target.constData(), W_OK) != 0) {
        const int error = errno;
        if (error == EACCES || error == EPERM) {
            return failure(
                formatted(localized(u"“%@” could not be saved, because it is read-only: you do not have permission to write to it."),
                          fileName(m_target)),
                error);
        }
        return failed(error);
    }
    m_inPlace = status.st_nlink > 1 && mayWriteInPlace() ? InPlace::hardLinks : InPlace::no;
    return {};
}

Result<void> AtomicFile::create()
{
    if (m_inPlace == InPlace::no) {
        m_file = createIn(folderOf(m_target), temporaryBegin.toByteArray(), m_mode);
        if (m_file >= 0) {
            return {};
        }
        if (!mayWriteInPlace() || !(isForbidden(errno) || isUnsupported(errno))) {
            return failed(errno);
        }
        m_inPlace = InPlace::folder;
    }
    makePrivateFolder(decodedPath(m_rescueFolder.chopped(1)), *m_calls);
    m_file = createIn(m_rescueFolder, {}, S_IRUSR | S_IWUSR);
    return m_file >= 0 ? Result<void>() : failed(errno);
}

/// -1 with `errno`.
int AtomicFile::createIn(const QByteArray &folder, const QByteArray &begin, mode_t mode)
{
    constexpr int attempts = 100;
    const QByteArray end = begin.isEmpty() ? QByteArray(contentEnding.data(), contentEnding.size()) : QByteArray();
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const QByteArray name = folder + begin + programMark(QCoreApplication::applicationPid()) +
                                QByteArray::number(QRandomGenerator::global()->generate64(), 36) + end;
        const int file = retried([&] { return m_calls->open(name.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode); });
        if (file >= 0) {
            m_temporary = name;
            return file;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return -1;
}

Result<void> AtomicFile::write(QByteArrayView bytes)
{
    Q_ASSERT(m_file >= 0);
    if (m_buffer.size() + bytes.size() < bufferSize) {
        m_buffer.append(bytes.data(), bytes.size());
        return {};
    }
    if (auto result = flushBuffer(); !result) {
        return result;
    }
    m_hash.add(bytes.data(), size_t(bytes.size()));
    return writeAll(m_file, bytes);
}

Result<void> AtomicFile::flushBuffer()
{
    m_hash.add(m_buffer.constData(), size_t(m_buffer.size()));
    const auto written = writeAll(m_file, m_buffer);
    m_buffer.resize(0);
    return written;
}

Result<void> AtomicFile::writeAll(int file, QByteArrayView bytes) const
{
    while (!bytes.isEmpty()) {
        const ssize_t written = retried([&] { return m_calls->write(file, bytes.data(), size_t(bytes.size())); });
        if (written <= 0) {
            return failed(written < 0 ? errno : ENOSPC);
        }
        bytes = bytes.sliced(written);
    }
    return {};
}

Result<AtomicFile::Written> AtomicFile::commit(const std::optional<Expectation> &expected)
{
    Q_ASSERT(m_file >= 0);
    if (auto result = flushBuffer(); !result) {
        return tl::make_unexpected(result.error());
    }
    const bool isReplaced = m_inPlace == InPlace::no;
    auto written = isReplaced ? replace(expected) : writeInPlace(expected);
    if (!written && isReplaced && m_inPlace != InPlace::no) {
        // What stood in the way of replacing it does not stand in the way of writing it.
        written = moveToRescue().and_then([&] { return writeInPlace(expected); });
    }
    if (written) {
        removeLeftBehind(folderOf(m_target), *m_calls);
        // Of attempts that failed. What other programs were writing there somebody has to see first.
        const QByteArray own = programMark(QCoreApplication::applicationPid());
        for (const RescuedFile &rescued : rescuedFiles(decodedPath(m_rescueFolder))) {
            if (nameIn(encodedPath(rescued.content)).startsWith(own) && encodedPath(rescued.target) == lastingName(m_target)) {
                removeRescued(rescued, *m_calls);
            }
        }
    }
    return written;
}

/// When it fails and `m_inPlace` says why, nothing has happened to the target, and it can be written in place.
Result<AtomicFile::Written> AtomicFile::replace(const std::optional<Expectation> &expected)
{
    if (auto result = takeOverIdentity(); !result) {
        return tl::make_unexpected(result.error());
    }
    if (retried([&] { return m_calls->fsync(m_file); }) != 0 && !isUnsupported(errno)) {
        return failed(errno);
    }
    struct stat status = {};
    if (m_calls->fstat(m_file, &status) != 0) {
        return failed(errno);
    }
    const FileState state = FileState::of(status, m_hash.value());
    if (auto result = closeTemporary(); !result) {
        return tl::make_unexpected(result.error());
    }
    // Opened while a failure is still harmless. A folder that may be written to but not read cannot be flushed by us.
    const QByteArray folderName = folderOf(m_target) + '.';
    const int folder = retried([&] { return m_calls->open(folderName.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0); });
    if (folder < 0 && errno != EACCES) {
        return failed(errno);
    }
    if (auto result = replaceTarget(folder, expected); !result) {
        if (folder >= 0) {
            m_calls->close(folder);
        }
        return tl::make_unexpected(result.error());
    }
    m_temporary.clear();
    if (folder < 0) {
        return Written{state};
    }
    const int error = retried([&] { return m_calls->fsync(folder); }) != 0 ? errno : 0;
    m_calls->close(folder);
    if (error != 0 && !isUnsupported(error)) {
        return failure(formatted(localized(u"“%@” was written, but it is not certain that it reached the disk: %@."), fileName(m_target),
                                 qt_error_string(error)),
                       error);
    }
    return Written{state};
}

/// By names in the folder that was opened, wherever that is now; by whole paths when it cannot be read.
Result<void> AtomicFile::replaceTarget(int folder, const std::optional<Expectation> &expected)
{
    const int at = folder < 0 ? AT_FDCWD : folder;
    const QByteArray from = folder < 0 ? m_temporary : nameIn(m_temporary);
    const QByteArray to = folder < 0 ? m_target : nameIn(m_target);
    bool mustBeNew = false;
    if (expected) {
        const auto exists = examineChanges(folder, *expected);
        if (!exists) {
            return tl::make_unexpected(exists.error());
        }
        mustBeNew = !*exists;
    }
    if (mustBeNew) {
        if (m_calls->renameat(at, from.constData(), at, to.constData(), RENAME_NOREPLACE) == 0) {
            return {};
        }
        struct stat status = {};
        if (errno == EEXIST && m_calls->fstatat(at, to.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
            return changed(status, std::nullopt);
        }
        if (!isUnsupported(errno)) {
            return failed(errno);
        }
    }
    if (m_calls->renameat(at, from.constData(), at, to.constData(), 0) == 0) {
        return {};
    }
    if (mayWriteInPlace() && (isForbidden(errno) || errno == EBUSY || errno == EXDEV)) {
        m_inPlace = InPlace::mount;
    }
    return failed(errno);
}

/// Whether there is a file. The last thing that is done here is a look at it.
Result<bool> AtomicFile::examineChanges(int folder, const Expectation &expected)
{
    const int at = folder < 0 ? AT_FDCWD : folder;
    const QByteArray name = folder < 0 ? m_target : nameIn(m_target);
    struct stat status = {};
    std::optional<quint64> hash;
    // A file that somebody writes steadily never looks twice the same.
    constexpr int attempts = 3;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const struct stat before = status;
        if (m_calls->fstatat(at, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
            return errno == ENOENT ? Result<bool>(false) : failed(errno);
        }
        const auto &state = expected.state;
        if (state && state->isSurelySameAs(status)) {
            return true;
        }
        if (hash && isUntouched(before, status)) {
            return state && state->hash == hash ? Result<bool>(true) : changed(status, hash);
        }
        if (!S_ISREG(status.st_mode) || status.st_size > largestHashed) {
            break;
        }
        if (const auto read = hashOfTarget()) {
            hash = *read;
        } else {
            break;
        }
    }
    return changed(status, std::nullopt);
}

tl::unexpected<Error> AtomicFile::changed(const struct stat &status, std::optional<quint64> hash)
{
    m_found = FileState::of(status, hash);
    return failure(localized(u"Not saved: the file was changed by another program"), changedError);
}

Result<quint64> AtomicFile::hashOfTarget()
{
    const int file = retried([&] { return m_calls->open(m_target.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0); });
    if (file < 0) {
        return failed(errno);
    }
    ContentHash hash;
    QByteArray block(bufferSize, Qt::Uninitialized);
    ssize_t count = 0;
    while ((count = retried([&] { return m_calls->read(file, block.data(), size_t(block.size())); })) > 0) {
        hash.add(block.constData(), size_t(count));
    }
    const int error = errno;
    m_calls->close(file);
    return count < 0 ? Result<quint64>(failed(error)) : hash.value();
}

Result<void> AtomicFile::takeOverIdentity()
{
    if (!m_targetExists) {
        return {};
    }
    struct stat status = {};
    if (m_calls->stat(m_target.constData(), &status) != 0) {
        if (errno == ENOENT) {
            // Removed meanwhile. There is nothing to keep, and nobody gets more access than at the beginning.
            return {};
        }
        return failed(errno);
    }
    // The owner first, since a change of it takes set-id bits away; the mode last, since an access list changes its group bits.
    const auto mode = takeOverOwner(status);
    if (!mode) {
        return tl::make_unexpected(mode.error());
    }
    if (auto result = takeOverAttributes(); !result) {
        return result;
    }
    return takeOverMode(*mode);
}

Result<void> AtomicFile::takeOverMode(mode_t mode)
{
    if (m_calls->fchmod(m_file, mode) == 0) {
        return {};
    }
    const int error = errno;
    // Where all files of a mount have one mode, there is nothing to be set.
    struct stat own = {};
    if ((isForbidden(error) || isUnsupported(error)) && m_calls->fstat(m_file, &own) == 0 && (own.st_mode & permissionBits) == mode) {
        return {};
    }
    m_inPlace = mayWriteInPlace() ? InPlace::attributes : InPlace::no;
    return failed(error);
}

Result<mode_t> AtomicFile::takeOverOwner(const struct stat &wanted)
{
    mode_t mode = wanted.st_mode & permissionBits;
    struct stat own = {};
    if (m_calls->fstat(m_file, &own) != 0) {
        return failed(errno);
    }
    if (own.st_gid != wanted.st_gid && m_calls->fchown(m_file, uid_t(-1), wanted.st_gid) != 0) {
        if (errno != EPERM && !isUnsupported(errno)) {
            return failed(errno);
        }
        if (mayWriteInPlace()) {
            m_inPlace = InPlace::owner;
            return failed(errno);
        }
        // Another group must not get what was meant for the file's own, only what everybody has.
        mode = (mode & ~mode_t(S_IRWXG | S_ISGID)) | (mode & ((mode & S_IRWXO) << 3));
    }
    if (own.st_uid != wanted.st_uid && m_calls->fchown(m_file, wanted.st_uid, gid_t(-1)) != 0) {
        if (errno != EPERM && !isUnsupported(errno)) {
            return failed(errno);
        }
        if (mayWriteInPlace()) {
            m_inPlace = InPlace::owner;
            return failed(errno);
        }
        mode &= ~mode_t(S_ISUID);
    }
    return mode;
}

Result<void> AtomicFile::takeOverAttributes()
{
    // The folder may have given the new file an access list that the target does not have.
    if (m_calls->fremovexattr(m_file, accessList) != 0) {
        const int error = errno;
        if (m_calls->getxattr(m_temporary.constData(), accessList, nullptr, 0) >= 0) {
            return failed(error);
        }
    }
    QByteArray names(64 * 1024, Qt::Uninitialized);
    const ssize_t length = m_calls->listxattr(m_target.constData(), names.data(), size_t(names.size()));
    if (length < 0) {
        return isUnsupported(errno) ? Result<void>() : failed(errno);
    }
    names.truncate(length);
    QByteArray value(64 * 1024, Qt::Uninitialized);
    for (const QByteArray &name : names.split('\0')) {
        if (name.isEmpty()) {
            continue;
        }
        const ssize_t size = m_calls->getxattr(m_target.constData(), name.constData(), value.data(), size_t(value.size()));
        const bool isCopied = size >= 0 && m_calls->fsetxattr(m_file, name.constData(), value.constData(), size_t(size)) == 0;
        // Some attributes are the system's to give, and it gives them; but an access list is the user's word on who may read.
        const bool isOptional = errno == ENODATA || ((errno == EPERM || errno == EACCES || isUnsupported(errno)) && name != accessList);
        if (!isCopied && !isOptional) {
            m_inPlace = mayWriteInPlace() ? InPlace::attributes : InPlace::no;
            return failed(errno);
        }
    }
    return {};
}

Result<void> AtomicFile::closeTemporary()
{
    // Some network file systems report a full disk only here. The descriptor is gone even then.
    if (m_calls->close(std::exchange(m_file, -1)) != 0 && errno != EINTR) {
        return failed(errno);
    }
    return {};
}

// In place

Result<void> AtomicFile::moveToRescue()
{
    const QByteArray beside = std::exchange(m_temporary, {});
    if (m_file >= 0) {
        m_calls->close(std::exchange(m_file, -1));
    }
    const int file = retried([&] { return m_calls->open(beside.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW, 0); });
    Result<void> moved = file < 0 ? failed(errno) : create();
    if (file >= 0) {
        if (moved) {
            moved = copyPart(file, m_file, 0, std::numeric_limits<qint64>::max());
        }
        m_calls->close(file);
    }
    m_calls->unlink(beside.constData());
    return moved;
}

Result<void> AtomicFile::copyPart(int from, int to, qint64 offset, qint64 count)
{
    if (m_calls->lseek(from, offset, SEEK_SET) != offset || m_calls->lseek(to, offset, SEEK_SET) != offset) {
        return failed(errno);
    }
    QByteArray block(bufferSize, Qt::Uninitialized);
    while (count > 0) {
        const ssize_t length = retried([&] { return m_calls->read(from, block.data(), size_t(std::min<qint64>(block.size(), count))); });
        if (length <= 0) {
            return length == 0 ? Result<void>() : failed(errno);
        }
        count -= length;
        if (auto written = writeAll(to, QByteArrayView(block).first(length)); !written) {
            return written;
        }
    }
    return {};
}

/// The content is in the folder for rescue, on disk, before the target is touched, and stays there until the target is on disk.
Result<AtomicFile::Written> AtomicFile::writeInPlace(const std::optional<Expectation> &expected)
{
    if (retried([&] { return m_calls->fsync(m_file); }) != 0 && !isUnsupported(errno)) {
        return failed(errno);
    }
    m_note = m_temporary.chopped(contentEnding.size()) + QByteArray(targetEnding.data(), targetEnding.size());
    if (auto noted = writeAtomically(decodedPath(m_note), lastingName(m_target), NewFile::privateToUser, *m_calls); !noted) {
        return tl::make_unexpected(noted.error());
    }
    if (expected) {
        const auto exists = examineChanges(-1, *expected);
        if (!exists) {
            return tl::make_unexpected(exists.error());
        }
    }
    const int target = retried([&] { return m_calls->open(m_target.constData(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0); });
    if (target < 0) {
        return failed(errno);
    }
    struct stat status = {};
    Result<void> filled = m_calls->fstat(target, &status) == 0 ? Result<void>() : failed(errno);
    if (filled) {
        filled = S_ISREG(status.st_mode) ? fillTarget(target, status.st_size) : failed(EINVAL);
    }
    if (filled && m_calls->fstat(target, &status) != 0) {
        filled = failed(errno);
    }
    const FileState state = FileState::of(status, m_hash.value());
    if (m_calls->close(target) != 0 && errno != EINTR && filled) {
        filled = failed(errno);
    }
    return filled.map([&] { return Written{state, m_inPlace}; });
}

/// What makes it longer comes first: when there is no room, it is as it was.
Result<void> AtomicFile::fillTarget(int target, qint64 sizeBefore)
{
    const qint64 size = m_calls->lseek(m_file, 0, SEEK_END);
    if (size < 0) {
        return failed(errno);
    }
    if (auto longer = copyPart(m_file, target, sizeBefore, size - sizeBefore); !longer) {
        std::ignore = m_calls->ftruncate(target, sizeBefore);
        return longer;
    }
    auto filled = copyPart(m_file, target, 0, std::min(size, sizeBefore));
    if (filled && size < sizeBefore && m_calls->ftruncate(target, size) != 0) {
        filled = failed(errno);
    }
    if (filled && retried([&] { return m_calls->fsync(target); }) != 0 && !isUnsupported(errno)) {
        filled = failed(errno);
    }
    return filled.map_error([&](const Error &error) {
        m_isDamaged = true;
        return Error{formatted(localized(u"“%@” could not be written to its end: %@. The text is kept, and comes back at the next start."),
                               fileName(m_target), qt_error_string(error.code)),
                     error.code};
    });
}

void AtomicFile::discard()
{
    if (m_file >= 0) {
        m_calls->close(std::exchange(m_file, -1));
    }
    // A target that was begun may be whole nowhere else.
    for (QByteArray *path : {&m_temporary, &m_note}) {
        if (!path->isEmpty() && !m_isDamaged) {
            m_calls->unlink(path->constData());
        }
        path->clear();
    }
}

QByteArray programMark(qint64 program)
{
    static const QByteArray machine =
        QCryptographicHash::hash(QSysInfo::machineUniqueId() + QSysInfo::machineHostName().toUtf8(), QCryptographicHash::Sha1)
            .toHex()
            .first(8);
    return machine + '-' + QByteArray::number(program) + '-';
}

std::vector<RescuedFile> rescuedFiles(const QString &folder)
{
    std::vector<RescuedFile> found;
    if (folder.isEmpty()) {
        return found;
    }
    const QDir files(folder);
    for (const QString &name : files.entryList({u"*"_s + contentEnding}, QDir::Files, QDir::Time | QDir::Reversed)) {
        QFile note(files.filePath(name.chopped(contentEnding.size()) + targetEnding));
        if (note.open(QIODevice::ReadOnly)) {
            found.push_back({.content = files.filePath(name),
                             .target = decodedPath(note.readAll()),
                             .isBeingWritten = !isOfEndedProgram(encodedPath(name))});
        }
    }
    return found;
}

void removeRescued(const RescuedFile &rescued, FileCalls &calls)
{
    for (const QString &path : {rescued.content, rescued.content.chopped(contentEnding.size()) + targetEnding}) {
        calls.unlink(encodedPath(path).constData());
    }
}

Result<void> writeAtomically(const QString &path, QByteArrayView bytes, AtomicFile::NewFile newFile, FileCalls &calls)
{
    return AtomicFile::open(path, newFile, calls).and_then([&](AtomicFile file) {
        return file.write(bytes).and_then([&] { return file.commit(); }).map([](const AtomicFile::Written &) {});
    });
}

Error saveError(const QString &path, int code)
{
    const QString name = fileName(encodedPath(path));
    if (const QStringView reason = reasonOf(code); !reason.isEmpty()) {
        return {formatted(localized(reason), name), code};
    }
    return {formatted(localized(u"“%@” could not be saved: %@."), name, qt_error_string(code)), code};
}

Result<QString> resolvedLinks(const QString &path)
{
    return followLinks(encodedPath(path), FileCalls::system()).map([](const QByteArray &target) { return decodedPath(target); });
}

void makePrivateFolder(const QString &path, FileCalls &calls)
{
    if (path.isEmpty() || QFileInfo::exists(path)) {
        return;
    }
    const QString parent = QFileInfo(path).path();
    makePrivateFolder(parent, calls);
    if (calls.mkdir(encodedPath(path).constData(), S_IRWXU) == 0) {
        flushFolder(parent, calls);
    }
}

void flushFolder(const QString &path, FileCalls &calls)
{
    const QByteArray name = encodedPath(path);
    const int folder = retried([&] { return calls.open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0); });
    if (folder >= 0) {
        std::ignore = retried([&] { return calls.fsync(folder); });
        calls.close(folder);
    }
}
