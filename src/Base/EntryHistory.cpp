// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/EntryHistory.h"

#include "Base/AtomicFile.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <mutex>
#include <utility>

namespace {

/// Empty when there is no file to be read.
QByteArray contentOf(const QString &path)
{
    QFile file(path);
    const bool isReadable = QFileInfo(path).isFile() && file.size() <= EntryHistory::largestFile && file.open(QIODevice::ReadOnly);
    return isReadable ? file.read(EntryHistory::largestFile) : QByteArray();
}

} // namespace

/// What is to be in the file: the latest, however many there were since it was written.
struct EntryHistory::Writing {
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
            makePrivateFolder(QFileInfo(file).path());
            std::ignore = writeAtomically(file, content, AtomicFile::NewFile::privateToUser);
        }
    }
};

EntryHistory::EntryHistory(const Form &form, QString file, Workers &workers) : EntryHistory(form)
{
    m_writing = std::make_shared<Writing>(std::move(file));
    m_workers = &workers;
    load();
}

EntryHistory::~EntryHistory()
{
    m_task.cancel();
    if (m_writing) {
        m_writing->run();
    }
}

void EntryHistory::load()
{
    const QJsonObject object = QJsonDocument::fromJson(contentOf(m_writing->file)).object();
    for (size_t kind = 0; kind < m_form.kinds.size(); ++kind) {
        QStringList &entries = m_entries[kind];
        for (const auto &value : object[m_form.kinds[kind]].toArray()) {
            const QString entry = value.toString();
            if (!entry.isEmpty() && entry.size() <= largestEntry && entries.size() < m_form.mostEntries && !entries.contains(entry)) {
                entries << entry;
            }
        }
    }
}

bool EntryHistory::isEmpty() const
{
    return std::ranges::all_of(m_entries, &QStringList::isEmpty);
}

void EntryHistory::add(size_t kind, const QString &entry, Kept kept)
{
    QStringList &entries = m_entries[kind];
    QStringList &isPrivate = m_private[kind];
    const bool wasKept = entries.contains(entry) && !isPrivate.contains(entry);
    const bool keeps = wasKept || kept == Kept::forNextRun;
    const bool isAtHead = !entries.isEmpty() && entries.first() == entry;
    if (entry.isEmpty() || (isAtHead && keeps == wasKept)) {
        return;
    }
    entries.removeAll(entry);
    entries.prepend(entry);
    isPrivate.removeAll(entry);
    if (!keeps) {
        isPrivate.prepend(entry);
    }
    if (entries.size() > m_form.mostEntries) {
        isPrivate.removeAll(entries.takeLast());
    }
    if (keeps) {
        write();
    }
}

void EntryHistory::clear()
{
    m_entries.assign(m_form.kinds.size(), {});
    m_private.assign(m_form.kinds.size(), {});
    write();
}

void EntryHistory::write()
{
    if (!m_writing) {
        return;
    }
    QJsonObject object;
    for (size_t kind = 0; kind < m_form.kinds.size(); ++kind) {
        QJsonArray array;
        for (const QString &entry : m_entries[kind]) {
            if (entry.size() <= largestEntry && !m_private[kind].contains(entry)) {
                array << entry;
            }
        }
        object[m_form.kinds[kind]] = array;
    }
    m_writing->put(QJsonDocument(object).toJson(QJsonDocument::Compact));
    m_task = BackgroundTask::start(
        *m_workers, [writing = m_writing](const std::stop_token & /*stop*/) { return writing->run(), 0; }, [](int /*done*/) {});
}
