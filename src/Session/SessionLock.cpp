// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/SessionLock.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSysInfo>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int attempts = 10;
/// A holder that was killed before it wrote who it is.
constexpr qint64 secondsToWrite = 60;

QByteArray contentOf(const QByteArray &path)
{
    QFile file(QFile::decodeName(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// When the process began, in ticks since the computer's start; empty when there is none.
QByteArray startOf(const QByteArray &process)
{
    const QByteArray status = contentOf("/proc/" + process + "/stat");
    // The program's name, in parentheses, may hold anything.
    constexpr qsizetype fieldsAfterName = 20;
    return status.mid(status.lastIndexOf(')') + 1).trimmed().split(' ').value(fieldsAfterName - 1);
}

/// Who has a folder; a line each.
struct Holder {
    QByteArray computer;
    /// Another one after each start of the computer.
    QByteArray boot;
    /// Where its number means something.
    QByteArray processes;
    QByteArray process;
    QByteArray start;

    static Holder self()
    {
        std::array<char, 64> processes = {};
        const ssize_t length = ::readlink("/proc/self/ns/pid", processes.data(), processes.size());
        const QByteArray process = QByteArray::number(qint64(::getpid()));
        return {.computer = QSysInfo::machineHostName().toUtf8() + ' ' + QSysInfo::machineUniqueId(),
                .boot = QSysInfo::bootUniqueId(),
                .processes = QByteArray(processes.data(), std::max<ssize_t>(length, 0)),
                .process = process,
                .start = startOf(process)};
    }
    static Holder from(const QByteArray &content)
    {
        const QList<QByteArray> lines = content.split('\n');
        return {lines.value(0), lines.value(1), lines.value(2), lines.value(3), lines.value(4)};
    }

    [[nodiscard]] QByteArray toBytes() const { return computer + '\n' + boot + '\n' + processes + '\n' + process + '\n' + start + '\n'; }
    /// Only when that is certain.
    [[nodiscard]] bool isGone() const
    {
        const Holder here = self();
        const bool isAfterItsEnd = boot != here.boot || (processes == here.processes && startOf(process) != start);
        return computer == here.computer && isAfterItsEnd;
    }
};

} // namespace

SessionLock::SessionLock(const QString &path, FileCalls &calls) : m_calls(calls), m_path(QFile::encodeName(path))
{
    // Another program may remove the folder, and the file, before it is locked.
    for (int attempt = 0; attempt < attempts; ++attempt) {
        m_file = m_calls.open(m_path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
        m_state = m_file < 0 ? State::unavailable : lock();
        if (m_state != State::held || isStillNamed()) {
            break;
        }
        close();
        m_state = State::unavailable;
    }
    if (m_state != State::held) {
        close();
    }
}

SessionLock::~SessionLock()
{
    if (m_hasClaim) {
        m_calls.unlink((m_path + ".holder").constData());
    }
    close();
}

void SessionLock::close()
{
    if (m_file >= 0) {
        m_calls.close(std::exchange(m_file, -1));
    }
}

SessionLock::State SessionLock::lock()
{
    if (m_calls.flock(m_file, LOCK_EX | LOCK_NB) == 0) {
        return State::held;
    }
    if (errno == EWOULDBLOCK) {
        return State::heldByOther;
    }
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    // Of the open file: it is not lost when another part of the program closes the file, as that of a process is.
    if (m_calls.fcntl(m_file, F_OFD_SETLK, &whole) == 0) {
        return State::held;
    }
    return errno == EAGAIN || errno == EACCES ? State::heldByOther : claim();
}

bool SessionLock::isStillNamed() const
{
    struct stat opened = {};
    struct stat named = {};
    return m_calls.fstat(m_file, &opened) != 0 ||
           (m_calls.stat(m_path.constData(), &named) == 0 && opened.st_ino == named.st_ino && opened.st_dev == named.st_dev);
}

SessionLock::State SessionLock::claim()
{
    const QByteArray path = m_path + ".holder";
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const int file = m_calls.open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
        if (file >= 0) {
            const QByteArray self = Holder::self().toBytes();
            const bool isWritten = m_calls.write(file, self.constData(), size_t(self.size())) == self.size();
            m_calls.close(file);
            m_hasClaim = true;
            return isWritten ? State::held : State::unavailable;
        }
        if (errno != EEXIST) {
            return State::unavailable;
        }
        if (!removeGoneHolder(contentOf(path))) {
            return State::heldByOther;
        }
    }
    return State::heldByOther;
}

bool SessionLock::removeGoneHolder(const QByteArray &content)
{
    const QByteArray path = m_path + ".holder";
    const Holder holder = Holder::from(content);
    const QDateTime written = QFileInfo(QFile::decodeName(path)).lastModified();
    const bool isHalf = holder.start.isEmpty() && written.secsTo(QDateTime::currentDateTime()) > secondsToWrite;
    if (!isHalf && (holder.start.isEmpty() || !holder.isGone())) {
        return false;
    }
    // Of several that see this only one moves the file away, and it looks whether that still was the one it saw.
    const QByteArray moved = path + '-' + QByteArray::number(QRandomGenerator::global()->generate64(), 36);
    if (m_calls.rename(path.constData(), moved.constData()) != 0) {
        return errno == ENOENT;
    }
    if (contentOf(moved) != content) {
        m_calls.rename(moved.constData(), path.constData());
        return false;
    }
    m_calls.unlink(moved.constData());
    return true;
}
