// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"
#include "Base/FileStamp.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <vector>

struct statfs;

/// The system calls that watching a file consists of, so that tests can make them fail or hang.
class WatchCalls : public FileCalls {
public:
    /// The real ones. Any thread; lives as long as the process.
    [[nodiscard]] static WatchCalls &system();

    virtual int inotifyInit(int flags);
    virtual int inotifyAddWatch(int notifier, const char *path, uint32_t mask);
    virtual int inotifyRemoveWatch(int notifier, int descriptor);
    virtual int statfs(const char *path, struct statfs *status);
};

/// One inode on the way to a file, and which of its events concern the file.
struct PathWatch {
    enum class Role {
        /// The file: everything.
        file,
        /// A folder in which the file, a symbolic link on the way to it or a missing folder should be: whatever befalls `name`.
        entry,
        /// A folder on the way: that it goes away.
        ancestor,
    };

    /// As the kernel numbers watches.
    int descriptor = -1;
    Role role = Role::ancestor;
    QByteArray name;
};

/// What was found at a path, and the watches that will report any change after that.
struct WatchedPath {
    std::vector<PathWatch> watches;
    /// None when the file is missing or cannot be asked.
    std::optional<FileStamp> stamp;
    bool isMissing = false;
    /// The watches do not suffice: the user has no more of them, a folder may not be read, or the file system is not known to report
    /// everything, as those that other machines write to do not.
    bool needsPolling = false;

    /// Goes the way to the file component by component, symbolic links included, and watches each step before it looks beyond, so that no
    /// change falls between the two. `path` is absolute. With `notifier` -1 only looks. As slow as the file systems on the way: on a
    /// dead share it may never return. Any thread.
    [[nodiscard]] static WatchedPath arm(const QByteArray &path, int notifier, WatchCalls &calls);
};
