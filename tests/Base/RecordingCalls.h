// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <condition_variable>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <thread>
#include <unistd.h>
#include <vector>

/// A call that changes what a disk holds, or says that it is there.
struct RecordedCall {
    enum class Kind { makeFolder, create, write, flushFile, rename, unlink, flushFolder };

    Kind kind = Kind::write;
    /// Of what has a name.
    QByteArray path = {};
    /// Of a rename.
    QByteArray target = {};
    QByteArray bytes = {};
    /// Of a file: it keeps the number under another name.
    int inode = 0;
};

/// The real calls, except that nothing waits for the disk, kept in their order; other threads than the one that made the object go on call
/// by call, as it lets them.
class RecordingCalls final : public FileCalls {
public:
    /// How many there are so far. The calls themselves are to be read when no thread makes any.
    [[nodiscard]] size_t count() const
    {
        const std::lock_guard lock(m_mutex);
        return m_calls.size();
    }
    [[nodiscard]] const std::vector<RecordedCall> &calls() const { return m_calls; }

    void letAllPass(bool isAllowed)
    {
        const std::lock_guard lock(m_mutex);
        m_letsAllPass = isAllowed;
        m_allowance = 0;
        m_change.notify_all();
    }
    /// Returns when another thread has made `count` calls and is about to make one more, or `isIdle`, which is asked again and again.
    template<typename IsIdle>
    void letPass(int count, IsIdle &&isIdle)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_allowance = count;
            m_change.notify_all();
        }
        const auto isStopped = [&] {
            const std::lock_guard lock(m_mutex);
            return m_isHeld && m_allowance == 0;
        };
        while (!isStopped() && !isIdle()) {
        }
        const std::lock_guard lock(m_mutex);
        m_allowance = 0;
    }

    int open(const char *path, int flags, mode_t mode) override
    {
        const auto lock = enter();
        const bool isNew = (flags & O_CREAT) != 0 && FileCalls::access(path, F_OK) != 0;
        const int file = FileCalls::open(path, flags, mode);
        if (file >= 0) {
            const QByteArray name = cleaned(path);
            m_open[file] = {name, (flags & O_DIRECTORY) != 0, m_inodes[name]};
            if (isNew) {
                m_open[file].inode = m_inodes[name] = ++m_lastInode;
                m_calls.push_back({.kind = RecordedCall::Kind::create, .path = name, .inode = m_lastInode});
            }
        }
        return file;
    }
    ssize_t write(int file, const void *bytes, size_t count) override
    {
        const auto lock = enter();
        const ssize_t written = FileCalls::write(file, bytes, count);
        m_calls.push_back({.bytes = QByteArray(static_cast<const char *>(bytes), qsizetype(written)), .inode = m_open[file].inode});
        return written;
    }
    int fsync(int file) override
    {
        const auto lock = enter();
        const auto &[path, isFolder, inode] = m_open[file];
        const auto kind = isFolder ? RecordedCall::Kind::flushFolder : RecordedCall::Kind::flushFile;
        m_calls.push_back({.kind = kind, .path = path, .inode = inode});
        return 0;
    }
    int rename(const char *from, const char *to) override
    {
        const auto lock = enter();
        const int result = FileCalls::rename(from, to);
        const int inode = m_inodes[cleaned(to)] = m_inodes[cleaned(from)];
        m_calls.push_back({.kind = RecordedCall::Kind::rename, .path = cleaned(from), .target = cleaned(to), .inode = inode});
        return result;
    }
    int renameat(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) override
    {
        const auto lock = enter();
        const QByteArray source = m_open[fromFolder].path + '/' + from;
        const QByteArray target = m_open[toFolder].path + '/' + to;
        const int result = FileCalls::renameat(fromFolder, from, toFolder, to, flags);
        m_inodes[target] = m_inodes[source];
        m_calls.push_back({.kind = RecordedCall::Kind::rename, .path = source, .target = target, .inode = m_inodes[source]});
        return result;
    }
    int unlink(const char *path) override
    {
        const auto lock = enter();
        const int result = FileCalls::unlink(path);
        if (result == 0) {
            m_calls.push_back({.kind = RecordedCall::Kind::unlink, .path = cleaned(path)});
        }
        return result;
    }
    int mkdir(const char *path, mode_t mode) override
    {
        const auto lock = enter();
        m_calls.push_back({.kind = RecordedCall::Kind::makeFolder, .path = cleaned(path)});
        return FileCalls::mkdir(path, mode);
    }

private:
    struct Opened {
        QByteArray path;
        bool isFolder = false;
        int inode = 0;
    };

    static QByteArray cleaned(const char *path) { return QFile::encodeName(QDir::cleanPath(QFile::decodeName(path))); }

    std::unique_lock<std::mutex> enter()
    {
        std::unique_lock lock(m_mutex);
        if (std::this_thread::get_id() != m_owner) {
            m_isHeld = true;
            m_change.wait(lock, [&] { return m_letsAllPass || m_allowance > 0; });
            m_isHeld = false;
            m_allowance -= m_letsAllPass ? 0 : 1;
        }
        return lock;
    }

    const std::thread::id m_owner = std::this_thread::get_id();
    mutable std::mutex m_mutex;
    std::condition_variable m_change;
    bool m_letsAllPass = false;
    bool m_isHeld = false;
    int m_allowance = 0;
    std::vector<RecordedCall> m_calls;
    std::map<int, Opened> m_open;
    std::map<QByteArray, int> m_inodes;
    int m_lastInode = 0;
};
