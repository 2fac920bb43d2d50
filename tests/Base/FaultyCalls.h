// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"

#include <QtGlobal>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <type_traits>

/// The real calls, until the chosen step: there one call fails, or the program is dead and nothing it does has an effect any more.
class FaultyCalls final : public FileCalls {
public:
    /// Counted from 1; 0 for never.
    int failAt = 0;
    int killAt = 0;
    int error = EIO;
    std::atomic<int> steps = 0;
    std::string failedCall;
    /// Asked before every call; what it returns is the call's `errno`, 0 to go on.
    std::function<int(const char *call)> before;
    /// The most bytes that one call reads or writes; 0 for as many as asked for.
    size_t portion = 0;
    std::atomic<qint64> bytesRead = 0;
    /// What is flushed reaches the disk.
    bool flushes = true;
    /// Whom files seem to belong to that are asked for by their names.
    std::optional<uid_t> seemingOwner;

    int open(const char *path, int flags, mode_t mode) override { return step("open", &FileCalls::open, path, flags, mode); }
    ssize_t read(int file, void *bytes, size_t count) override
    {
        const ssize_t length = step("read", &FileCalls::read, file, bytes, cut(count));
        bytesRead += std::max<ssize_t>(length, 0);
        return length;
    }
    ssize_t write(int file, const void *bytes, size_t count) override { return step("write", &FileCalls::write, file, bytes, cut(count)); }
    off_t lseek(int file, off_t offset, int whence) override { return step("lseek", &FileCalls::lseek, file, offset, whence); }
    int ftruncate(int file, off_t size) override { return step("ftruncate", &FileCalls::ftruncate, file, size); }
    int fsync(int file) override { return flushes ? step("fsync", &FileCalls::fsync, file) : -int(isRefused("fsync")); }
    int rename(const char *from, const char *to) override { return step("rename", &FileCalls::rename, from, to); }
    int renameat(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) override
    {
        return step("rename", &FileCalls::renameat, fromFolder, from, toFolder, to, flags);
    }
    int unlink(const char *path) override { return step("unlink", &FileCalls::unlink, path); }
    int mkdir(const char *path, mode_t mode) override { return step("mkdir", &FileCalls::mkdir, path, mode); }
    int stat(const char *path, struct stat *status) override
    {
        const int result = step("stat", &FileCalls::stat, path, status);
        if (seemingOwner) {
            status->st_uid = *seemingOwner;
        }
        return result;
    }
    int lstat(const char *path, struct stat *status) override { return step("lstat", &FileCalls::lstat, path, status); }
    int fstat(int file, struct stat *status) override { return step("fstat", &FileCalls::fstat, file, status); }
    int fstatat(int folder, const char *path, struct stat *status, int flags) override
    {
        return step("fstatat", &FileCalls::fstatat, folder, path, status, flags);
    }
    ssize_t readlink(const char *path, char *target, size_t size) override
    {
        return step("readlink", &FileCalls::readlink, path, target, size);
    }
    int access(const char *path, int mode) override { return step("access", &FileCalls::access, path, mode); }
    int flock(int file, int operation) override { return step("flock", &FileCalls::flock, file, operation); }
    int fcntl(int file, int command, struct flock *lock) override { return step("fcntl", &FileCalls::fcntl, file, command, lock); }
    int fchmod(int file, mode_t mode) override { return step("fchmod", &FileCalls::fchmod, file, mode); }
    int fchown(int file, uid_t owner, gid_t group) override { return step("fchown", &FileCalls::fchown, file, owner, group); }
    ssize_t listxattr(const char *path, char *names, size_t size) override
    {
        return step("listxattr", &FileCalls::listxattr, path, names, size);
    }
    ssize_t getxattr(const char *path, const char *name, void *value, size_t size) override
    {
        return step("getxattr", &FileCalls::getxattr, path, name, value, size);
    }
    int fsetxattr(int file, const char *name, const void *value, size_t size) override
    {
        return step("fsetxattr", &FileCalls::fsetxattr, file, name, value, size);
    }
    int fremovexattr(int file, const char *name) override { return step("fremovexattr", &FileCalls::fremovexattr, file, name); }
    int close(int file) override
    {
        // The descriptor goes in any case, as it does in a process that ends.
        const int result = m_real.close(file);
        return isRefused("close") ? -1 : result;
    }

private:
    FileCalls &m_real = FileCalls::system();
    std::mutex m_mutex;

    size_t cut(size_t count) const { return portion != 0 && portion < count ? portion : count; }

    bool isRefused(const char *name)
    {
        const int number = ++steps;
        int refusal = number == failAt || (killAt != 0 && number >= killAt) ? error : 0;
        if (refusal == 0 && before) {
            refusal = before(name);
        }
        if (refusal != 0) {
            const std::lock_guard lock(m_mutex);
            failedCall = failedCall.empty() ? name : failedCall;
            errno = refusal;
        }
        return refusal != 0;
    }
    template<typename Answer, typename... Taken>
    Answer step(const char *name, Answer (FileCalls::*call)(Taken...), std::type_identity_t<Taken>... given)
    {
        return isRefused(name) ? Answer(-1) : (m_real.*call)(given...);
    }
};
