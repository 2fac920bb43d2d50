// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/WatchedPath.h"

#include <QList>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits.h>
#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/vfs.h>

namespace {

// One inode may play several parts, for several files: each adds its own events to the others'.
constexpr uint32_t selfEvents = IN_MOVE_SELF | IN_DELETE_SELF | IN_DONT_FOLLOW | IN_MASK_ADD;
constexpr uint32_t fileEvents = selfEvents | IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE;
constexpr uint32_t ancestorEvents = selfEvents | IN_ONLYDIR;
constexpr uint32_t entryEvents = ancestorEvents | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

// Named in no header for programs.
constexpr uint32_t bcachefsMagic = 0xCA451A4E;
constexpr uint32_t hfsMagic = 0x4244;
constexpr uint32_t hfsPlusMagic = 0x482B;
constexpr uint32_t jfsMagic = 0x3153464A;
constexpr uint32_t ntfsMagic = 0x5346544E;
constexpr uint32_t ntfs3Magic = 0x7366746E;
constexpr uint32_t zfsMagic = 0x2FC12FC1;

/// Of these, one kernel does all the writing and reports it. What is missing here may be shared with other machines, as clusters' file
/// systems and those of virtual machines are.
constexpr std::array<uint32_t, 25> localFileSystems = {EXT4_SUPER_MAGIC,
                                                       BTRFS_SUPER_MAGIC,
                                                       XFS_SUPER_MAGIC,
                                                       F2FS_SUPER_MAGIC,
                                                       TMPFS_MAGIC,
                                                       RAMFS_MAGIC,
                                                       OVERLAYFS_SUPER_MAGIC,
                                                       MSDOS_SUPER_MAGIC,
                                                       EXFAT_SUPER_MAGIC,
                                                       ECRYPTFS_SUPER_MAGIC,
                                                       REISERFS_SUPER_MAGIC,
                                                       NILFS_SUPER_MAGIC,
                                                       UDF_SUPER_MAGIC,
                                                       ISOFS_SUPER_MAGIC,
                                                       SQUASHFS_MAGIC,
                                                       EROFS_SUPER_MAGIC_V1,
                                                       JFFS2_SUPER_MAGIC,
                                                       MINIX3_SUPER_MAGIC,
                                                       bcachefsMagic,
                                                       hfsMagic,
                                                       hfsPlusMagic,
                                                       jfsMagic,
                                                       ntfsMagic,
                                                       ntfs3Magic,
                                                       zfsMagic};

bool isGone(int error)
{
    return error == ENOENT || error == ENOTDIR || error == ELOOP;
}

class PathWalk final {
public:
    PathWalk(const QByteArray &path, int notifier, WatchCalls &calls, WatchedPath &found)
        : m_calls(calls), m_found(found), m_notifier(notifier)
    {
        push(path);
    }

    /// False when a folder was replaced under our feet.
    bool walk()
    {
        while (!m_rest.empty() && step()) {
        }
        return !m_wasOvertaken;
    }

    /// The last folder that was reached, with a slash at its end.
    [[nodiscard]] QByteArray folder() const { return m_folder + '/'; }

private:
    bool step();
    bool followLink(const QByteArray &link);
    void watch(const QByteArray &path, uint32_t events, PathWatch::Role role, const QByteArray &name = {});

    /// What lies ahead, the next component last.
    void push(const QByteArray &path)
    {
        const auto components = path.split('/');
        for (auto component = components.crbegin(); component != components.crend(); ++component) {
            if (!component->isEmpty() && *component != ".") {
                m_rest.push_back(*component);
            }
        }
    }

    WatchCalls &m_calls;
    WatchedPath &m_found;
    int m_notifier;
    /// Free of links, no slash at its end.
    QByteArray m_folder;
    std::vector<QByteArray> m_rest;
    int m_links = 0;
    bool m_wasOvertaken = false;
};

bool PathWalk::step()
{
    const QByteArray name = m_rest.back();
    m_rest.pop_back();
    if (name == "..") {
        m_folder.truncate(std::max<qsizetype>(m_folder.lastIndexOf('/'), 0));
        return true;
    }
    const QByteArray child = m_folder + '/' + name;
    const bool isLast = m_rest.empty();
    struct stat status = {};
    const auto isFolder = [&] { return m_calls.lstat(child.constData(), &status) == 0 && S_ISDIR(status.st_mode); };
    // Only what may be replaced by name needs its folder watched, and then it is looked at once more.
    if (isLast || !isFolder()) {
        watch(folder(), entryEvents, PathWatch::Role::entry, name);
        if (m_calls.lstat(child.constData(), &status) != 0) {
            return false;
        }
        if (S_ISLNK(status.st_mode)) {
            return followLink(child);
        }
        if (isLast && !S_ISDIR(status.st_mode)) {
            watch(child, fileEvents, PathWatch::Role::file);
            return false;
        }
        if (!S_ISDIR(status.st_mode)) {
            return false;
        }
    }
    watch(child, ancestorEvents, PathWatch::Role::ancestor);
    m_folder = child;
    return !m_wasOvertaken;
}

bool PathWalk::followLink(const QByteArray &link)
{
    constexpr int mostLinks = 40;
    QByteArray target(PATH_MAX, Qt::Uninitialized);
    const ssize_t length = m_calls.readlink(link.constData(), target.data(), size_t(target.size()));
    if (length <= 0 || ++m_links > mostLinks) {
        return false;
    }
    target.truncate(length);
    if (target.startsWith('/')) {
        m_folder.clear();
    }
    push(target);
    return true;
}

void PathWalk::watch(const QByteArray &path, uint32_t events, PathWatch::Role role, const QByteArray &name)
{
    if (m_notifier < 0) {
        m_found.needsPolling = true;
        return;
    }
    const int descriptor = m_calls.inotifyAddWatch(m_notifier, path.constData(), events);
    if (descriptor >= 0) {
        m_found.watches.push_back({.descriptor = descriptor, .role = role, .name = name});
    } else if (isGone(errno)) {
        // That a file is gone is reported by its folder, which is watched already.
        m_wasOvertaken = m_wasOvertaken || role != PathWatch::Role::file;
    } else if (errno != EACCES || role != PathWatch::Role::ancestor) {
        // Folders above that may be passed through but not read, as other people's are, hardly ever change.
        m_found.needsPolling = true;
    }
}

} // namespace

WatchCalls &WatchCalls::system()
{
    // Never destroyed: a thread that hangs in one of the calls may come back while the program ends.
    static auto *const calls = new WatchCalls;
    return *calls;
}

int WatchCalls::inotifyInit(int flags)
{
    return ::inotify_init1(flags);
}

int WatchCalls::inotifyAddWatch(int notifier, const char *path, uint32_t mask)
{
    return ::inotify_add_watch(notifier, path, mask);
}

int WatchCalls::inotifyRemoveWatch(int notifier, int descriptor)
{
    return ::inotify_rm_watch(notifier, descriptor);
}

int WatchCalls::statfs(const char *path, struct statfs *status)
{
    return ::statfs(path, status);
}

WatchedPath WatchedPath::arm(const QByteArray &path, int notifier, WatchCalls &calls)
{
    constexpr int mostAttempts = 3;
    WatchedPath found;
    QByteArray folder;
    for (int attempt = 1;; ++attempt) {
        PathWalk walk(path, notifier, calls, found);
        const bool isArmed = walk.walk();
        folder = walk.folder();
        if (isArmed) {
            break;
        }
        if (attempt == mostAttempts) {
            found.needsPolling = true;
            break;
        }
    }
    struct statfs fileSystem = {};
    const bool isLocal =
        calls.statfs(folder.constData(), &fileSystem) == 0 && std::ranges::count(localFileSystems, uint32_t(fileSystem.f_type)) != 0;
    found.needsPolling = found.needsPolling || !isLocal;
    struct stat status = {};
    if (calls.stat(path.constData(), &status) == 0) {
        found.stamp = FileStamp::of(status);
    } else {
        found.isMissing = isGone(errno);
    }
    return found;
}
