// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/JournalWriter.h"

#include "Base/AtomicFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <utility>

using namespace Qt::StringLiterals;

QString JournalWriter::pathOf(const QUuid &document, quint64 number) const
{
    return m_folder + u'/' + EditJournal::nameFor(document, number);
}

QString JournalWriter::asideFolder() const
{
    return m_folder + u"/Unused"_s;
}

std::map<QUuid, LeftEdits> JournalWriter::readIn(const QString &folder, const Rejection &reject)
{
    std::map<QUuid, LeftEdits> found;
    const QFileInfoList files = QDir(folder).entryInfoList({u"*.journal"_s}, QDir::Files | QDir::NoSymLinks, QDir::Name);
    for (const QFileInfo &info : files) {
        const auto name = EditJournal::parseName(info.fileName());
        QFile file(info.filePath());
        if (!name || !file.open(QIODevice::ReadOnly)) {
            continue;
        }
        m_lastNumber = std::max(m_lastNumber, name->number);
        const QByteArray content = file.readAll();
        auto journal = EditJournal::parse(content);
        if (!journal) {
            reject(info, content);
            continue;
        }
        LeftEdits &left = found[name->document];
        struct stat status = {};
        if (m_calls.stat(QFile::encodeName(info.filePath()).constData(), &status) == 0) {
            left.modified = status.st_mtim;
        }
        left.lastNumber = name->number;
        left.journals.push_back(*std::move(journal));
    }
    return found;
}

std::map<QUuid, LeftEdits> JournalWriter::read()
{
    return readIn(m_folder, [this](const QFileInfo &file, const QByteArray &content) {
        if (EditJournal::isCutOff(content)) {
            m_calls.unlink(QFile::encodeName(file.filePath()).constData()); // the program was killed before there was anything in it
        } else {
            moveAside(file.fileName());
        }
    });
}

void JournalWriter::setAside(const QUuid &document)
{
    for (const quint64 number : numbersOf(document, m_folder)) {
        moveAside(EditJournal::nameFor(document, number));
    }
}

void JournalWriter::moveAside(const QString &name) const
{
    makePrivateFolder(asideFolder(), m_calls);
    m_calls.rename(QFile::encodeName(m_folder + u'/' + name).constData(), QFile::encodeName(asideFolder() + u'/' + name).constData());
}

std::map<QUuid, LeftEdits> JournalWriter::readSetAside()
{
    constexpr qint64 daysKept = 30;
    return readIn(asideFolder(), [this](const QFileInfo &file, const QByteArray & /*content*/) {
        if (file.lastModified().daysTo(QDateTime::currentDateTime()) > daysKept) {
            m_calls.unlink(QFile::encodeName(file.filePath()).constData());
        }
    });
}

/// Ascending.
std::vector<quint64> JournalWriter::numbersOf(const QUuid &document, const QString &folder)
{
    std::vector<quint64> numbers;
    const QString pattern = document.toString(QUuid::WithoutBraces).toUpper() + u".*.journal"_s;
    for (const QString &fileName : QDir(folder).entryList({pattern}, QDir::Files, QDir::Name)) {
        if (const auto name = EditJournal::parseName(fileName)) {
            numbers.push_back(name->number);
        }
    }
    return numbers;
}

quint64 JournalWriter::begin(const QUuid &document, const SessionSnapshot::Document &entry, const Rope &base)
{
    m_thread.start([this, document, entry, base, number = ++m_lastNumber] {
        Open &open = m_open[document];
        close(open);
        open = {.number = number, .beginning = EditJournal::beginning(EditJournal::hashOf(base), entry)};
        write(document, open, {});
    });
    return m_lastNumber;
}

void JournalWriter::append(const QUuid &document, const TextEdits &change)
{
    m_thread.start([this, document, change] {
        if (const auto open = m_open.find(document); open != m_open.end()) {
            write(document, open->second, EditJournal::record(change));
        }
    });
}

void JournalWriter::write(const QUuid &document, Open &open, const QByteArray &bytes)
{
    if (open.isBroken) {
        return;
    }
    const QString path = pathOf(document, open.number);
    QByteArray all = bytes;
    if (open.file < 0) {
        makePrivateFolder(m_folder, m_calls);
        open.file = m_calls.open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC | O_NOFOLLOW,
                                 S_IRUSR | S_IWUSR);
        all = open.beginning + bytes;
    }
    for (qsizetype at = 0; at < all.size() && !open.isBroken;) {
        const ssize_t written = open.file < 0 ? -1 : m_calls.write(open.file, all.constData() + at, size_t(all.size() - at));
        open.isBroken = written == 0 || (written < 0 && errno != EINTR);
        at += std::max<ssize_t>(written, 0);
    }
    open.isEmpty = open.isEmpty && bytes.isEmpty();
    m_unflushed.insert(path);
}

void JournalWriter::close(Open &open)
{
    if (open.file >= 0) {
        m_calls.close(std::exchange(open.file, -1));
    }
}

void JournalWriter::flush()
{
    m_thread.start([this] {
        m_flushing.start([this, paths = std::exchange(m_unflushed, {})] {
            for (const QString &path : paths) {
                // Any descriptor of a file flushes all that was written to it.
                if (const int file = m_calls.open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW, 0); file >= 0) {
                    m_calls.fsync(file);
                    m_calls.close(file);
                }
            }
            if (!paths.empty()) {
                flushFolder(m_folder, m_calls);
            }
        });
    });
}

void JournalWriter::drop(const QUuid &document, quint64 number)
{
    m_thread.start([this, document, number] {
        const auto open = m_open.find(document);
        const bool isEmptyOne = open != m_open.end() && open->second.number == number && open->second.isEmpty;
        for (const quint64 each : numbersOf(document, m_folder)) {
            if (each < number || (each == number && isEmptyOne)) {
                const QString path = pathOf(document, each);
                m_calls.unlink(QFile::encodeName(path).constData());
                m_unflushed.erase(path);
            }
        }
        if (open == m_open.end()) {
            return;
        }
        if (isEmptyOne) {
            // The next change makes it anew.
            close(open->second);
        } else if (open->second.number < number) {
            close(open->second);
            m_open.erase(open);
        }
    });
}

void JournalWriter::dropSetAside(const QUuid &document, quint64 lastNumber)
{
    m_thread.start([this, document, lastNumber] {
        for (const quint64 number : numbersOf(document, asideFolder())) {
            if (number <= lastNumber) {
                m_calls.unlink(QFile::encodeName(asideFolder() + u'/' + EditJournal::nameFor(document, number)).constData());
            }
        }
    });
}

bool JournalWriter::waitUntilWritten(QDeadlineTimer deadline)
{
    return m_thread.waitForDone(int(deadline.remainingTime())) && m_flushing.waitForDone(int(deadline.remainingTime()));
}
