// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

/// The system calls that reading and writing files consist of, so that a test can make any of them fail, or stop the program before it.
/// Each is the call of its name: -1 and `errno` for a failure.
class FileCalls {
public:
    /// The real ones. Any thread; lives as long as the process.
    [[nodiscard]] static FileCalls &system();

    virtual ~FileCalls() = default;

    virtual int open(const char *path, int flags, mode_t mode);
    virtual ssize_t read(int file, void *bytes, size_t count);
    virtual ssize_t write(int file, const void *bytes, size_t count);
    virtual off_t lseek(int file, off_t offset, int whence);
    virtual int ftruncate(int file, off_t size);
    virtual int fsync(int file);
    virtual int close(int file);
    virtual int rename(const char *from, const char *to);
    /// `flags` as of renameat2.
    virtual int renameat(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags);
    virtual int unlink(const char *path);
    virtual int mkdir(const char *path, mode_t mode);

    virtual int stat(const char *path, struct stat *status);
    virtual int lstat(const char *path, struct stat *status);
    virtual int fstat(int file, struct stat *status);
    virtual int fstatat(int folder, const char *path, struct stat *status, int flags);
    virtual ssize_t readlink(const char *path, char *target, size_t size);
    /// With the effective user's rights.
    virtual int access(const char *path, int mode);
    virtual int flock(int file, int operation);
    /// With one of the commands that lock.
    virtual int fcntl(int file, int command, struct flock *lock);

    virtual int fchmod(int file, mode_t mode);
    virtual int fchown(int file, uid_t owner, gid_t group);
    virtual ssize_t listxattr(const char *path, char *names, size_t size);
    virtual ssize_t getxattr(const char *path, const char *name, void *value, size_t size);
    virtual int fsetxattr(int file, const char *name, const void *value, size_t size);
    virtual int fremovexattr(int file, const char *name);
};
