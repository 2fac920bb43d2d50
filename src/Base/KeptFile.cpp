// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/KeptFile.h"

#include "Base/AtomicFile.h"

#include <QFile>
#include <QFileInfo>

#include <mutex>
#include <tuple>
#include <utility>

/// What is to be in the file: the latest, however many there were since it was written.
struct KeptFile::Writing {
    explicit Writing(QString path) : file(std::move(path)) {}

    const QString file;
    std::mutex isWriting;
    std::mutex hasLatest;
    QByteArray latest;

    void put(const QByteArray &content)
    {
        const std::lock_guard lock(hasLatest);
        latest = content;
    }
    void run()
    {
        const std::lock_guard one(isWriting);
        QByteArray content;
        {
            const std::lock_guard lock(hasLatest);
            content = std::exchange(latest, {});
        }
        if (!content.isEmpty()) {
            writeAt(file, content);
        }
    }
};

QByteArray KeptFile::contentAt(const QString &path, qint64 largest)
{
    QFile file(path);
    const bool isReadable = QFileInfo(path).isFile() && file.size() <= largest && file.open(QIODevice::ReadOnly);
    return isReadable ? file.read(largest) : QByteArray();
}

void KeptFile::writeAt(const QString &path, QByteArrayView content)
{
    makePrivateFolder(QFileInfo(path).path());
    std::ignore = writeAtomically(path, content, AtomicFile::NewFile::privateToUser);
}

KeptFile::KeptFile(QString path, Workers &workers) : m_writing(std::make_shared<Writing>(std::move(path))), m_workers(workers) {}

KeptFile::~KeptFile()
{
    m_task.cancel();
    m_writing->run();
}

QByteArray KeptFile::content(qint64 largest) const
{
    return contentAt(m_writing->file, largest);
}

void KeptFile::write(const QByteArray &content)
{
    m_writing->put(content);
    m_task = BackgroundTask::start(
        m_workers, [writing = m_writing](const std::stop_token & /*stop*/) { return writing->run(), 0; }, [](int /*done*/) {});
}
