// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Helper/PinnedFolder.h"

#include "Base/AdministratorProtocol.h"

#include <QByteArray>
#include <QByteArrayList>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

using MissingFolder = Administrator::MissingFolder;

/// Rights of the program that the old content was, and signatures of that content.
constexpr std::array<std::string_view, 3> attributesOfContent = {"security.capability", "security.ima", "security.evm"};

int failed(int error)
{
    errno = error;
    return -1;
}

/// The descriptor of a folder in one that is open, or -1 with `errno`.
int openFolder(int parent, const char *name, MissingFolder missing)
{
    constexpr mode_t openToAll = 0777; // but for what the mask says
    constexpr int flags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    int folder = ::openat(parent, name, flags);
    if (folder < 0 && errno == ENOENT && missing == MissingFolder::isMade) {
        if (::mkdirat(parent, name, openToAll) != 0 && errno != EEXIST) {
            return -1;
        }
        folder = ::openat(parent, name, flags);
    }
    if (folder < 0 && errno == ENOTDIR) {
        struct stat status = {};
        const bool isLink = ::fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
        return failed(isLink ? AdministratorProtocol::isLink : ENOTDIR);
    }
    return folder;
}

} // namespace

int enterFolder(const QByteArray &path, MissingFolder missing)
{
    int folder = ::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC);
    for (const QByteArray &name : path.split('/')) {
        if (folder < 0 || name.isEmpty()) {
            continue;
        }
        const int next = openFolder(folder, name.constData(), missing);
        const int error = errno;
        ::close(folder);
        errno = error;
        folder = next;
    }
    if (folder < 0) {
        return errno;
    }
    const int error = ::fchdir(folder) == 0 ? 0 : errno;
    ::close(folder);
    return error;
}

int PinnedCalls::stat(const char *path, struct stat *status)
{
    if (FileCalls::lstat(path, status) != 0) {
        return -1;
    }
    if (S_ISLNK(status->st_mode)) {
        return failed(AdministratorProtocol::isLink);
    }
    if (S_ISREG(status->st_mode) && status->st_nlink > 1) {
        return failed(AdministratorProtocol::hasSeveralNames);
    }
    if (S_ISREG(status->st_mode) && (status->st_mode & (S_ISUID | S_ISGID)) != 0) {
        return failed(AdministratorProtocol::hasOwnersRights);
    }
    return 0;
}

int PinnedCalls::fchown(int file, uid_t owner, gid_t group)
{
    // Where not even root may, the file would silently become root's.
    const int result = FileCalls::fchown(file, owner, group);
    return result != 0 && errno == EPERM ? failed(EACCES) : result;
}

ssize_t PinnedCalls::listxattr(const char *path, char *names, size_t size)
{
    return ::llistxattr(path, names, size);
}

ssize_t PinnedCalls::getxattr(const char *path, const char *name, void *value, size_t size)
{
    return ::lgetxattr(path, name, value, size);
}

int PinnedCalls::fsetxattr(int file, const char *name, const void *value, size_t size)
{
    const bool isOfContent = std::ranges::find(attributesOfContent, std::string_view(name)) != attributesOfContent.end();
    return isOfContent ? failed(EPERM) : FileCalls::fsetxattr(file, name, value, size);
}
