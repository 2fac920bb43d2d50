// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/AtomicFile.h"

#include "Base/Translation.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <unistd.h>

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

QString fileName(const QByteArray &path)
{
    return QFile::decodeName(path.mid(path.lastIndexOf('/') + 1));
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
    if (const QStringView reason = reasonOf(error); !reason.isEmpty()) {
        return failure(formatted(localized(reason), fileName(path)), error);
    }
    return failure(formatted(localized(u"“%@” could not be saved: %@."), fileName(path), qt_error_string(error)), error);
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

QByteArray nameIn(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

bool isSameFile(const struct stat &a, const struct stat &b)
{
    return FileStamp::of(a) == FileStamp::of(b) && a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_ctim.tv_sec == b.st_ctim.tv_sec &&
           a.st_ctim.tv_nsec == b.st_ctim.tv_nsec;
}

/// The file system has no such thing; there is nothing to keep or to flush.
bool isUnsupported(int error)
{
    return error == ENOTSUP || error == EINVAL || error == ENOSYS;
}

} // namespace

Result<AtomicFile> AtomicFile::open(const QString &path, NewFile newFile, FileCalls &calls)
{
    auto target = followLinks(QFile::encodeName(path), calls);
    if (!target) {
        return tl::make_unexpected(target.error());
    }
    AtomicFile file(calls, *std::move(target), newFile);
    if (auto result = file.examineTarget(); !result) {
        return tl::make_unexpected(result.error());
    }
    if (auto result = file.create(); !result) {
        return tl::make_unexpected(result.error());
    }
    return file;
}

AtomicFile::AtomicFile(FileCalls &calls, QByteArray target, NewFile newFile)
    : m_calls(&calls), m_target(std::move(target)), m_mode(mode_t(newFile))
{
    m_buffer.reserve(bufferSize);
}

AtomicFile::AtomicFile(AtomicFile &&other) noexcept
    : m_calls(other.m_calls), m_target(std::move(other.m_target)), m_temporary(std::exchange(other.m_temporary, {})),
      m_buffer(std::move(other.m_buffer)), m_hash(std::move(other.m_hash)), m_found(other.m_found), m_mode(other.m_mode),
      m_file(std::exchange(other.m_file, -1)), m_targetExists(other.m_targetExists)
{}

AtomicFile::~AtomicFile()
{
    discard();
}

QString AtomicFile::target() const
{
    return QFile::decodeName(m_target);
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
    return {};
}

Result<void> AtomicFile::create()
{
    constexpr int attempts = 100;
    int error = EEXIST;
    for (int attempt = 0; attempt < attempts && error == EEXIST; ++attempt) {
        const QByteArray name = folderOf(m_target) + ".quillet-" + QByteArray::number(QRandomGenerator::global()->generate64(), 36);
        m_file = retried([&] { return m_calls->open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, m_mode); });
        if (m_file >= 0) {
            m_temporary = name;
            return {};
        }
        error = errno;
    }
    return failed(error);
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
    while (!bytes.isEmpty()) {
        const qsizetype portion = std::min(bytes.size(), bufferSize);
        const ssize_t written = retried([&] { return m_calls->write(m_file, bytes.data(), size_t(portion)); });
        if (written <= 0) {
            return failed(written < 0 ? errno : ENOSPC);
        }
        m_hash.add(bytes.data(), size_t(written));
        bytes = bytes.sliced(written);
    }
    return {};
}

Result<void> AtomicFile::flushBuffer()
{
    for (qsizetype at = 0; at < m_buffer.size();) {
        const ssize_t written = retried([&] { return m_calls->write(m_file, m_buffer.constData() + at, size_t(m_buffer.size() - at)); });
        if (written <= 0) {
            return failed(written < 0 ? errno : ENOSPC);
        }
        m_hash.add(m_buffer.constData() + at, size_t(written));
        at += written;
    }
    m_buffer.resize(0);
    return {};
}

Result<FileState> AtomicFile::commit(const std::optional<Expectation> &expected)
{
    Q_ASSERT(m_file >= 0);
    if (auto result = flushBuffer(); !result) {
        return tl::make_unexpected(result.error());
    }
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
        return state;
    }
    const int error = retried([&] { return m_calls->fsync(folder); }) != 0 ? errno : 0;
    m_calls->close(folder);
    if (error != 0 && !isUnsupported(error)) {
        return failure(formatted(localized(u"“%@” was written, but it is not certain that it reached the disk: %@."), fileName(m_target),
                                 qt_error_string(error)),
                       error);
    }
    return state;
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
    return m_calls->renameat(at, from.constData(), at, to.constData(), 0) == 0 ? Result<void>() : failed(errno);
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
        if (hash && isSameFile(before, status)) {
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
    if (m_calls->fchmod(m_file, *mode) != 0) {
        return failed(errno);
    }
    return {};
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
        // Another group must not get what was meant for the file's own, only what everybody has.
        mode = (mode & ~mode_t(S_IRWXG | S_ISGID)) | (mode & ((mode & S_IRWXO) << 3));
    }
    if (own.st_uid != wanted.st_uid && m_calls->fchown(m_file, wanted.st_uid, gid_t(-1)) != 0) {
        if (errno != EPERM && !isUnsupported(errno)) {
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

void AtomicFile::discard()
{
    if (m_file >= 0) {
        m_calls->close(std::exchange(m_file, -1));
    }
    if (!m_temporary.isEmpty()) {
        m_calls->unlink(m_temporary.constData());
        m_temporary.clear();
    }
}

Result<void> writeAtomically(const QString &path, QByteArrayView bytes, AtomicFile::NewFile newFile, FileCalls &calls)
{
    return AtomicFile::open(path, newFile, calls).and_then([&](AtomicFile file) {
        return file.write(bytes).and_then([&] { return file.commit(); }).map([](const FileState &) {});
    });
}

Result<QString> resolvedLinks(const QString &path)
{
    return followLinks(QFile::encodeName(path), FileCalls::system()).map([](const QByteArray &target) {
        return QFile::decodeName(target);
    });
}

void makePrivateFolder(const QString &path, FileCalls &calls)
{
    if (path.isEmpty() || QFileInfo::exists(path)) {
        return;
    }
    const QString parent = QFileInfo(path).path();
    makePrivateFolder(parent, calls);
    if (calls.mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0) {
        flushFolder(parent, calls);
    }
}

void flushFolder(const QString &path, FileCalls &calls)
{
    const QByteArray name = QFile::encodeName(path);
    const int folder = retried([&] { return calls.open(name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0); });
    if (folder >= 0) {
        std::ignore = retried([&] { return calls.fsync(folder); });
        calls.close(folder);
    }
}
