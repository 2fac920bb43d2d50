// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/PathKind.h"

#include "Base/FilePath.h"
#include "Base/Workers.h"

#include <cerrno>
#include <condition_variable>
#include <mutex>

#include <sys/stat.h>

namespace {

/// Outlives whoever asked, for the sake of threads that hang.
class Inquiry final {
public:
    explicit Inquiry(const QStringList &paths) : m_paths(paths), m_kinds(size_t(paths.size()), PathKind::unknown) {}

    void answer()
    {
        std::unique_lock lock(m_mutex);
        while (m_next < m_kinds.size()) {
            const size_t place = m_next++;
            lock.unlock();
            const PathKind kind = kindOf(m_paths[qsizetype(place)]);
            lock.lock();
            m_kinds[place] = kind;
            ++m_answered;
        }
        m_changed.notify_all();
    }
    [[nodiscard]] std::vector<PathKind> answers(std::chrono::milliseconds timeout)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, timeout, [this] { return m_answered == m_kinds.size(); });
        return m_kinds;
    }

private:
    const QStringList m_paths;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<PathKind> m_kinds;
    size_t m_next = 0;
    size_t m_answered = 0;
};

} // namespace

PathKind kindOf(const struct stat &status)
{
    switch (status.st_mode & S_IFMT) {
    case S_IFREG:
        return PathKind::file;
    case S_IFDIR:
        return PathKind::folder;
    default:
        return PathKind::special;
    }
}

PathKind kindOf(const QString &path)
{
    struct stat status = {};
    if (::stat(encodedPath(path).constData(), &status) == 0) {
        return kindOf(status);
    }
    return errno == ENOENT ? PathKind::missing : PathKind::unknown;
}

std::vector<PathKind> kindsOf(const QStringList &paths, std::chrono::milliseconds timeout)
{
    constexpr qsizetype mostThreads = 16;
    // Never destroyed: a thread that hangs may come back while the program ends.
    static auto *const workers = new DetachedWorkers;
    const auto inquiry = std::make_shared<Inquiry>(paths);
    for (qsizetype thread = 0; thread < std::min(paths.size(), mostThreads); ++thread) {
        workers->run([inquiry] { inquiry->answer(); });
    }
    return inquiry->answers(timeout);
}
