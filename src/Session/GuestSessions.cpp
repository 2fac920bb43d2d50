// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/GuestSessions.h"

#include "Base/AtomicFile.h"
#include "Session/DraftFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

QString guestsOf(const QString &root)
{
    return root + u"/Guests"_s;
}

QString lockOf(const QString &folder)
{
    return folder + u"/session.lock"_s;
}

QStringList editsIn(const QString &folder)
{
    return QDir(folder + u"/Journal"_s).entryList({u"*.journal"_s}, QDir::Files);
}

QStringList textsIn(const QString &folder)
{
    return QDir(folder + u"/Drafts"_s).entryList({u"*.draft"_s}, QDir::Files);
}

/// Of one that has ended.
class Adoption final {
public:
    Adoption(const QString &root, const QString &folder, std::optional<SessionSnapshot> &snapshot, FileCalls &calls)
        : m_root(root), m_folder(folder), m_snapshot(snapshot), m_calls(calls)
    {}

    [[nodiscard]] bool run()
    {
        // The entries first: a draft that none names would come back without its file.
        return takeEntries() && moveDrafts() && moveEdits();
    }

private:
    [[nodiscard]] bool takeEntries()
    {
        QFile file(m_folder + u"/session.json"_s);
        const auto left = file.open(QIODevice::ReadOnly) ? SessionSnapshot::fromJson(file.readAll()) : std::nullopt;
        if (!left) {
            return true;
        }
        const QStringList texts = textsIn(m_folder);
        SessionSnapshot merged = m_snapshot.value_or(SessionSnapshot());
        for (const SessionSnapshot::Document &entry : left->documents) {
            if (entry.draftFilename && texts.contains(*entry.draftFilename)) {
                takeEntry(entry, merged.documents);
            }
        }
        if (m_snapshot.value_or(SessionSnapshot()) != merged) {
            if (!writeAtomically(m_root + u"/session.json"_s, merged.toJson(), AtomicFile::NewFile::privateToUser, m_calls)) {
                return false;
            }
            m_snapshot = merged;
        }
        return true;
    }

    /// Of a file that has an entry already the newer text is shown in its tab.
    static void takeEntry(const SessionSnapshot::Document &entry, QList<SessionSnapshot::Document> &known)
    {
        const auto isThere = [&](const SessionSnapshot::Document &one) {
            return one.id == entry.id || one.draftFilename == entry.draftFilename;
        };
        if (std::ranges::none_of(known, isThere)) {
            known << entry;
        }
    }

    [[nodiscard]] bool moveDrafts()
    {
        const QString drafts = m_root + u"/Drafts/"_s;
        const QStringList texts = textsIn(m_folder);
        for (const QString &name : texts) {
            const QString target = drafts + (QFile::exists(drafts + name) ? DraftFile::nameFor(QUuid::createUuid()) : name);
            if (m_calls.rename(QFile::encodeName(m_folder + u"/Drafts/"_s + name).constData(), QFile::encodeName(target).constData()) !=
                0) {
                return false;
            }
        }
        if (!texts.isEmpty()) {
            flushFolder(drafts, m_calls);
        }
        return true;
    }

    [[nodiscard]] bool moveEdits()
    {
        const QStringList names = editsIn(m_folder);
        const QString target = m_root + u"/Journal"_s;
        if (!names.isEmpty()) {
            makePrivateFolder(target, m_calls);
        }
        return std::ranges::all_of(names, [&](const QString &name) {
            return m_calls.rename(QFile::encodeName(m_folder + u"/Journal/"_s + name).constData(),
                                  QFile::encodeName(target + u'/' + name).constData()) == 0;
        });
    }

    const QString &m_root;
    const QString &m_folder;
    std::optional<SessionSnapshot> &m_snapshot;
    FileCalls &m_calls;
};

} // namespace

std::optional<GuestSessions::Place> GuestSessions::make(const QString &root, FileCalls &calls)
{
    // An owner that starts just now may take one without a lock for left behind.
    constexpr int attempts = 5;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const QString folder = guestsOf(root) + u'/' + QUuid::createUuid().toString(QUuid::WithoutBraces);
        makePrivateFolder(folder + u"/Drafts"_s, calls);
        auto lock = std::make_unique<SessionLock>(lockOf(folder), calls);
        if (lock->state() == SessionLock::State::held) {
            return Place{folder, std::move(lock)};
        }
    }
    return std::nullopt;
}

void GuestSessions::adopt(const QString &root, std::optional<SessionSnapshot> &snapshot, FileCalls &calls)
{
    QDir guests(guestsOf(root));
    const QStringList names = guests.entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Time | QDir::Reversed);
    for (const QString &name : names) {
        const QString folder = guests.filePath(name);
        std::optional<SessionLock> lock(std::in_place, lockOf(folder), calls);
        if (lock->state() == SessionLock::State::held && Adoption(root, folder, snapshot, calls).run()) {
            removeIfEmpty(folder);
            // Some file systems keep a file that is open, by another name.
            lock.reset();
            QDir().rmdir(folder);
        }
    }
    if (!names.isEmpty()) {
        QDir().rmdir(guests.path());
    }
}

void GuestSessions::removeIfEmpty(const QString &folder)
{
    if (textsIn(folder).isEmpty() && editsIn(folder).isEmpty()) {
        QDir(folder).removeRecursively();
        QDir().rmdir(QFileInfo(folder).path());
    }
}
