// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/FileCalls.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

FileCalls &FileCalls::system()
{
    // Never destroyed: a thread that hangs in one of the calls may come back while the program ends.
    static auto *const calls = new FileCalls;
    return *calls;
}

int FileCalls::open(const char *path, int flags, mode_t mode)
{
    return ::open(path, flags, mode);
}

ssize_t FileCalls::read(int file, void *bytes, size_t count)
{
    return ::read(file, bytes, count);
}

ssize_t FileCalls::write(int file, const void *bytes, size_t count)
{
    return ::write(file, bytes, count);
}

off_t FileCalls::lseek(int file, off_t offset, int whence)
{
    return ::lseek(file, offset, whence);
}

int FileCalls::ftruncate(int file, off_t size)
{
    return ::ftruncate(file, size);
}

int FileCalls::fsync(int file)
{
    return ::fsync(file);
}

int FileCalls::close(int file)
{
    return ::close(file);
}

int FileCalls::rename(const char *from, const char *to)
{
    return ::rename(from, to);
}

int FileCalls::renameat(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags)
{
    return ::renameat2(fromFolder, from, toFolder, to, flags);
}

int FileCalls::unlink(const char *path)
{
    return ::unlink(path);
}

int FileCalls::mkdir(const char *path, mode_t mode)
{
    return ::mkdir(path, mode);
}

int FileCalls::stat(const char *path, struct stat *status)
{
    return ::stat(path, status);
}

int FileCalls::lstat(const char *path, struct stat *status)
{
    return ::lstat(path, status);
}

int FileCalls::fstat(int file, struct stat *status)
{
    return ::fstat(file, status);
}

int FileCalls::fstatat(int folder, const char *path, struct stat *status, int flags)
{
    return ::fstatat(folder, path, status, flags);
}

ssize_t FileCalls::readlink(const char *path, char *target, size_t size)
{
    return ::readlink(path, target, size);
}

int FileCalls::access(const char *path, int mode)
{
    return ::faccessat(AT_FDCWD, path, mode, AT_EACCESS);
}

int FileCalls::flock(int file, int operation)
{
    return ::flock(file, operation);
}

int FileCalls::fcntl(int file, int command, struct flock *lock)
{
    return ::fcntl(file, command, lock);
}

int FileCalls::fchmod(int file, mode_t mode)
{
    return ::fchmod(file, mode);
}

int FileCalls::fchown(int file, uid_t owner, gid_t group)
{
    return ::fchown(file, owner, group);
}

ssize_t FileCalls::listxattr(const char *path, char *names, size_t size)
{
    return ::listxattr(path, names, size);
}

ssize_t FileCalls::getxattr(const char *path, const char *name, void *value, size_t size)
{
    return ::getxattr(path, name, value, size);
}

int FileCalls::fsetxattr(int file, const char *name, const void *value, size_t size)
{
    return ::fsetxattr(file, name, value, size, 0);
}

int FileCalls::fremovexattr(int file, const char *name)
{
    return ::fremovexattr(file, name);
}
