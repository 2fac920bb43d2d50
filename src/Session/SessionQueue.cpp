// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/SessionQueue.h"

#include "Base/AtomicFile.h"
#include "Session/DraftFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

/// Of what is wrong one kind is told at a time: where no draft can be written, no session can be either.
void SessionStore::Queue::note(Problem::Kind kind, const Result<void> &result)
{
    const auto tell = [weak = weak_from_this(), kind, result] {
        const auto queue = weak.lock();
        if (!queue) {
            return;
        }
        if (result) {
            queue->reported.erase(kind);
            return;
        }
        const bool isMore = queue->reported.contains(Problem::Kind::drafts) || !queue->reported.insert(kind).second;
        if (!isMore && queue->report) {
            queue->report(
                {.kind = kind, .path = kind == Problem::Kind::drafts ? queue->drafts() : queue->snapshotPath(), .error = result.error()});
        }
    };
    QMetaObject::invokeMethod(QCoreApplication::instance(), tell, Qt::QueuedConnection);
}

void SessionStore::Queue::writeDraft(const QString &name, quint64 ticket)
{
    WaitingText taken;
    {
        const std::lock_guard lock(mutex);
        const auto waiting = texts.find(name);
        if (waiting == texts.end() || waiting->second.ticket != ticket) {
            return;
        }
        taken = std::move(waiting->second);
        texts.erase(waiting);
        written.erase(name);
    }
    if (writeText(name, taken.text) && taken.journal != 0) {
        journal->drop(taken.document, taken.journal);
    }
}

bool SessionStore::Queue::writeText(const QString &name, const Rope &text)
{
    makePrivateFolder(drafts(), calls);
    const Result<void> result = DraftFile::write(text, pathOf(name), calls);
    {
        const std::lock_guard lock(mutex);
        if (result) {
            failedDrafts.erase(name);
            written[name] = text;
        } else {
            failedDrafts.insert(name);
        }
    }
    note(Problem::Kind::drafts, result);
    return result.has_value();
}

void SessionStore::Queue::lookForMissing()
{
    {
        const std::lock_guard lock(mutex);
        isLooking = false;
    }
    if (!lastWritten) {
        return;
    }
    writeMissingDrafts(*lastWritten);
    if (calls.access(QFile::encodeName(snapshotPath()).constData(), F_OK) != 0) {
        writeSnapshot(*lastWritten);
    }
}

bool SessionStore::Queue::isThere(const QString &path) const
{
    struct stat status = {};
    return calls.lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISREG(status.st_mode);
}

/// What the snapshot names, others may have removed.
void SessionStore::Queue::writeMissingDrafts(const Snapshot &snapshot)
{
    for (const Snapshot::Document &document : snapshot.documents) {
        const QString name = document.draftFilename.value_or(QString());
        if (name.isEmpty() || isThere(pathOf(name))) {
            continue;
        }
        std::optional<Rope> text;
        {
            const std::lock_guard lock(mutex);
            if (const auto known = written.find(name); known != written.end()) {
                text = known->second;
            }
        }
        if (text) {
            std::ignore = writeText(name, *text);
        }
    }
}

void SessionStore::Queue::writeSnapshot(quint64 ticket)
{
    Snapshot snapshot;
    {
        const std::lock_guard lock(mutex);
        snapshot = std::move(snapshots.extract(ticket).mapped());
    }
    writeMissingDrafts(snapshot);
    writeSnapshot(snapshot);
}

void SessionStore::Queue::writeSnapshot(const Snapshot &snapshot)
{
    makePrivateFolder(root, calls);
    const Result<void> result = writeAtomically(snapshotPath(), snapshot.toJson(), AtomicFile::NewFile::privateToUser, calls);
    {
        const std::lock_guard lock(mutex);
        hasFailedSnapshot = !result;
    }
    note(Problem::Kind::session, result);
    if (result) {
        lastWritten = snapshot;
        prune(snapshot);
        dropRescued(snapshot);
    }
}

/// From now on the next start finds the drafts, and which files they are of.
void SessionStore::Queue::dropRescued(const Snapshot &snapshot)
{
    QStringList names;
    {
        const std::lock_guard lock(mutex);
        for (const Snapshot::Document &document : snapshot.documents) {
            const QString name = document.draftFilename.value_or(QString());
            if (rescued.contains(name) && !failedDrafts.contains(name)) {
                names << name;
            }
        }
    }
    for (const QString &name : names) {
        dropRescued(name);
    }
}

void SessionStore::Queue::dropRescued(const QString &name)
{
    std::vector<RescuedFile> dropped;
    {
        const std::lock_guard lock(mutex);
        dropped = std::exchange(rescued[name], {});
        rescued.erase(name);
    }
    for (const RescuedFile &each : dropped) {
        removeRescued(each, calls);
    }
}

/// Deletes what `snapshot`, which is on disk, does not name.
void SessionStore::Queue::prune(const Snapshot &snapshot)
{
    std::set<QString> kept;
    {
        const std::lock_guard lock(mutex);
        kept = unreadableDrafts;
    }
    for (const Snapshot::Document &document : snapshot.documents) {
        kept.insert(document.draftFilename.value_or(QString()));
    }
    QStringList names = QDir(drafts()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    names.removeIf([&](const QString &name) { return kept.contains(name); });
    remove(names);
}

void SessionStore::Queue::remove(const QStringList &names)
{
    bool isChanged = false;
    for (const QString &name : names) {
        isChanged |= calls.unlink(QFile::encodeName(pathOf(name)).constData()) == 0;
    }
    {
        const std::lock_guard lock(mutex);
        std::ranges::for_each(names, [this](const QString &name) { written.erase(name); });
    }
    if (isChanged) {
        // An old draft must not come back when the power fails: it would stand before its file, which was saved since.
        flushFolder(drafts(), calls);
    }
}
