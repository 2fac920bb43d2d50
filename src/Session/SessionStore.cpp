// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/SessionStore.h"

#include "Base/AtomicFile.h"
#include "Base/StandardFolder.h"
#include "Model/TextDocument.h"
#include "Session/DraftFile.h"
#include "Session/GuestSessions.h"
#include "Session/SessionLock.h"
#include "Session/SessionQueue.h"
#include "Session/WindowLayout.h"
#include "Settings/Preferences.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>

#include <algorithm>
#include <functional>
#include <mutex>
#include <set>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto timeoutAtEnd = 5s;
/// Thousands of tabs have less.
constexpr qint64 largestSnapshot = 64 * 1024 * 1024;
/// Bytes; then the draft is written, so that the journal begins anew.
constexpr qsizetype largestJournal = 1024 * 1024;
constexpr qsizetype bytesOfEdit = 24;
constexpr auto temporaryFiles = ".quillet-*"_L1;
/// The beginning of 2001 in UTC, in seconds of Unix.
constexpr double referenceDate = 978307200;

/// Those that are wanted, which are gone from `list`.
template<class List>
List taken(List &list, const auto &isWanted)
{
    const auto first = std::stable_partition(list.begin(), list.end(), std::not_fn(isWanted));
    const List wanted(first, list.end());
    list.erase(first, list.end());
    return wanted;
}

bool isPlainName(const QString &name)
{
    return !name.isEmpty() && !name.contains(u'/') && !name.contains(QChar::Null) && name != u"."_s && name != u".."_s;
}

} // namespace

SessionStore::Places SessionStore::Places::standard(Role role)
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return {.rootDirectory = standardFolder("XDG_DATA_HOME", u".local/share") + u"/Quillet"_s,
            .runtimeDirectory = QDir::isAbsolutePath(runtime) ? QDir::cleanPath(runtime) : QString(),
            .role = role};
}

SessionStore::SessionStore(const Places &places, const Preferences &preferences, FileCalls &calls)
    : m_root(places.rootDirectory), m_preferences(preferences), m_calls(calls),
      m_queue(std::make_shared<Queue>(places.rootDirectory, calls)), m_journal(m_queue->journal), m_thread(std::make_unique<QThreadPool>())
{
    m_thread->setObjectName(u"org.quillet.Quillet.session"_s);
    m_thread->setMaxThreadCount(1);
    m_thread->setThreadPriority(QThread::LowPriority);
    setFolder(m_root);
    if (places.role == Role::owner) {
        claim(places);
    }
}

void SessionStore::claim(const Places &places)
{
    makePrivateFolder(draftsDirectory(), m_calls);
    m_sharedFolder = sharedFolder();
    if (m_sharedFolder) {
        return;
    }
    // Several folders may be in use at once, each by one program.
    const QByteArray folder = QCryptographicHash::hash(QFile::encodeName(QDir::cleanPath(m_root)), QCryptographicHash::Sha1).toHex();
    const QString lockName = u"/quillet-session-"_s + QString::fromLatin1(folder.first(16)) + u".lock"_s;
    // Two: programs of the same user may have different folders for what runs, or none, and a data folder on a network may have no locks.
    m_locks.push_back(std::make_unique<SessionLock>(m_root + u"/session.lock"_s, m_calls));
    if (!places.runtimeDirectory.isEmpty()) {
        m_locks.push_back(std::make_unique<SessionLock>(places.runtimeDirectory + lockName, m_calls));
    }
    // Where no lock can be had because nothing can be written, nobody is disturbed.
    m_isHeldByOther = std::ranges::any_of(m_locks, [](const auto &lock) { return lock->state() == SessionLock::State::heldByOther; });
    m_isOwner = !m_isHeldByOther;
    if (m_isHeldByOther) {
        m_locks.clear();
    }
}

/// Whoever may write there could put words into the user's mouth, or have files written that are the user's.
std::optional<QString> SessionStore::sharedFolder() const
{
    for (const QString &folder : {m_root, m_root + u"/Drafts"_s, m_root + u"/Guests"_s}) {
        struct stat status = {};
        const bool exists = m_calls.stat(QFile::encodeName(folder).constData(), &status) == 0;
        if (exists && (status.st_uid != ::geteuid() || (status.st_mode & (S_IWGRP | S_IWOTH)) != 0)) {
            return folder;
        }
    }
    return std::nullopt;
}

void SessionStore::setFolder(const QString &folder)
{
    m_queue->root = folder;
    m_journal->setFolder(folder + u"/Journal"_s);
}

bool SessionStore::hasPlace()
{
    carryOver();
    if (!m_isOwner && !m_guest && !sharedFolder()) {
        m_guest = GuestSessions::make(m_root, m_calls);
        setFolder(m_guest ? m_guest->folder : m_root);
    }
    return m_isOwner || m_guest;
}

SessionStore::~SessionStore()
{
    m_queue->report = nullptr;
    if (!waitUntilWritten(timeoutAtEnd)) {
        // Its destructor would wait for a disk that does not answer.
        std::ignore = m_thread.release();
        std::ignore = new auto(m_journal);
    } else if (m_guest) {
        GuestSessions::removeIfEmpty(m_guest->folder);
    }
}

QString SessionStore::draftsDirectory() const
{
    return m_queue->drafts();
}

QString SessionStore::snapshotPath() const
{
    return m_queue->snapshotPath();
}

void SessionStore::onProblem(std::function<void(const Problem &problem)> report)
{
    if (m_sharedFolder && report) {
        report({.kind = Problem::Kind::sharedFolder, .path = *m_sharedFolder});
    }
    m_queue->report = std::move(report);
}

bool SessionStore::keepsUnsavedText() const
{
    return m_isOwner && m_preferences.value(Settings::restoreSession) && keepsDrafts();
}

bool SessionStore::keepsDrafts() const
{
    return (m_isOwner || m_guest) && m_preferences.value(Settings::autosaveDrafts) && isHealthy();
}

bool SessionStore::isHealthy() const
{
    const std::lock_guard lock(m_queue->mutex);
    return m_queue->failedDrafts.empty() && !m_queue->hasFailedSnapshot;
}

// Reading

QStringList SessionStore::draftsOnDisk() const
{
    return QDir(draftsDirectory()).entryList({u"*.draft"_s}, QDir::Files, QDir::Time | QDir::Reversed);
}

SessionStore::Saved SessionStore::read()
{
    Saved saved;
    if (!m_isOwner || std::exchange(m_hasRead, true)) {
        return saved;
    }
    // Of writing that was cut off.
    QDir root(m_root);
    for (const QString &name : root.entryList({temporaryFiles}, QDir::Files | QDir::Hidden)) {
        root.remove(name);
    }
    saved.snapshot = readSnapshot();
    if (m_isOwner) {
        GuestSessions::adopt(m_root, saved.snapshot, m_calls);
    }
    m_leftEdits = m_journal->read();
    for (const auto &[id, left] : m_leftEdits) {
        saved.edited << left.journals.back().entry;
    }
    const auto setAside = m_journal->readSetAside();
    m_setAside.assign(setAside.begin(), setAside.end());
    saved.rescued = rescued();
    std::set<QString> named;
    if (saved.snapshot) {
        for (const Snapshot::Document &document : saved.snapshot->documents) {
            named.insert(document.draftFilename.value_or(QString()));
        }
    }
    for (const QString &name : draftsOnDisk()) {
        m_drafts.emplace(name, std::nullopt);
        if (!named.contains(name)) {
            saved.otherDrafts << name;
        }
    }
    return saved;
}

std::optional<SessionStore::Snapshot> SessionStore::readSnapshot()
{
    const QFileInfo info(snapshotPath());
    if (!info.exists() && !info.isSymLink()) {
        return std::nullopt;
    }
    QFile file(snapshotPath());
    if (info.isFile() && info.size() <= largestSnapshot && file.open(QIODevice::ReadOnly)) {
        if (auto snapshot = Snapshot::fromJson(file.readAll())) {
            return snapshot;
        }
    }
    QString folder = m_root + u"/Unreadable session "_s + QDateTime::currentDateTime().toString(u"yyyy-MM-dd HH.mm.ss"_s);
    if (!setAside(folder)) {
        m_isOwner = false; // it must not be written over
        folder = m_root;
    }
    if (m_reportSetAside) {
        m_reportSetAside(folder);
    }
    return std::nullopt;
}

/// What was not brought back still is not saved. Before a draft is written, which would be taken for one of these.
void SessionStore::carryOver()
{
    if (m_hasRead) {
        return;
    }
    const Saved saved = read();
    if (saved.snapshot) {
        std::ranges::copy_if(saved.snapshot->documents, std::back_inserter(m_carriedOver),
                             [](const Snapshot::Document &document) { return document.draftFilename.has_value(); });
    }
    for (const QString &name : saved.otherDrafts) {
        const QUuid id = DraftFile::documentOf(name);
        m_carriedOver << Snapshot::Document{.id = id.isNull() ? QUuid::createUuid() : id,
                                            .draftFilename = name,
                                            .encodingRawValue = quint32(TextEncoding::utf8),
                                            .lineEnding = rawValue(LineEnding::lf).toString()};
    }
    std::ranges::copy_if(saved.edited, std::back_inserter(m_carriedEdits), [this](const Snapshot::Document &edited) {
        return std::ranges::find(m_carriedOver, edited.id, &Snapshot::Document::id) == m_carriedOver.end();
    });
}

SessionStore::Saved SessionStore::takeCarriedOver(const QString &path)
{
    carryOver();
    const auto isOfFile = [name = QDir::cleanPath(path)](const Snapshot::Document &document) {
        return document.filePath && QDir::cleanPath(*document.filePath) == name;
    };
    const auto documents = taken(m_carriedOver, isOfFile);
    return {.snapshot = documents.isEmpty() ? std::nullopt : std::optional(Snapshot{.documents = documents}),
            .otherDrafts = {},
            .edited = taken(m_carriedEdits, isOfFile)};
}

std::vector<RescuedFile> SessionStore::rescued() const
{
    if (!m_isOwner && sharedFolder()) {
        return {};
    }
    std::vector<RescuedFile> found = rescuedFiles(rescueDirectory());
    std::erase_if(found, [this](const RescuedFile &each) { return each.isBeingWritten || m_adoptedRescued.contains(each.content); });
    return found;
}

bool SessionStore::setAside(const QString &folder)
{
    makePrivateFolder(folder, m_calls);
    const auto move = [&](const QString &from, const QString &to) {
        return m_calls.rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
    };
    const bool hasDrafts = !QDir(draftsDirectory()).isEmpty();
    // The drafts first: as long as the snapshot is there, what is in their folder is not used.
    const QString journals = m_root + u"/Journal"_s;
    if (QFileInfo::exists(journals)) {
        move(journals, folder + u"/Journal"_s);
    }
    if ((hasDrafts && !move(draftsDirectory(), folder + u"/Drafts"_s)) || !move(snapshotPath(), folder + u"/session.json"_s)) {
        return false;
    }
    makePrivateFolder(draftsDirectory(), m_calls);
    return true;
}

std::optional<Rope> SessionStore::draft(const QString &name)
{
    if (!isPlainName(name)) {
        return std::nullopt;
    }
    const QString path = draftsDirectory() + u'/' + name;
    auto text = DraftFile::read(path);
    if (!text && QFileInfo::exists(path)) {
        const std::lock_guard lock(m_queue->mutex);
        m_queue->unreadableDrafts.insert(name);
    }
    return text;
}

std::optional<FileStamp> SessionStore::draftStamp(const QString &name) const
{
    struct stat status = {};
    const QString path = draftsDirectory() + u'/' + name;
    return isPlainName(name) && m_calls.stat(QFile::encodeName(path).constData(), &status) == 0 ? std::optional(FileStamp::of(status))
                                                                                                : std::nullopt;
}

qint64 SessionStore::changedAt(const QUuid &document, const QString &name) const
{
    const auto nanoseconds = [](const timespec &time) {
        return std::chrono::nanoseconds(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec)).count();
    };
    const auto stamp = draftStamp(name);
    const auto left = m_leftEdits.find(document);
    return std::max<qint64>(stamp ? nanoseconds(stamp->modified) : 0, left == m_leftEdits.end() ? 0 : nanoseconds(left->second.modified));
}

bool SessionStore::hasUnreadableDraft(const QUuid &document) const
{
    const std::lock_guard lock(m_queue->mutex);
    return m_queue->unreadableDrafts.contains(DraftFile::nameFor(document));
}

void SessionStore::adoptDraft(const TextDocument &document, const QString &name)
{
    // Under another name it is written anew; the old one goes when a snapshot with the new one is there.
    if (name == DraftFile::nameFor(document.id())) {
        m_drafts[name] = document.storage().revision();
        const std::lock_guard lock(m_queue->mutex);
        m_queue->written[name] = document.storage().text();
    }
}

std::optional<Rope> SessionStore::edited(const QUuid &document, const Rope &base) const
{
    const auto left = m_leftEdits.find(document);
    return left == m_leftEdits.end() ? std::nullopt : replayed(left->second.journals, base);
}

void SessionStore::adoptEdits(const TextDocument &document)
{
    m_leftEdits.erase(document.id());
    m_adoptedEdits[document.id()] = document.storage().revision();
}

void SessionStore::replayEdits(TextDocument &document, const Rope &edited)
{
    // What is on disk already is not journalled again.
    m_isReplaying = true;
    document.storage().apply(TextEdits::difference(document.storage().text(), edited));
    m_isReplaying = false;
    adoptEdits(document);
}

void SessionStore::discardEdits(const QUuid &document)
{
    m_leftEdits.erase(document);
    m_journal->drop(document, m_journal->nextNumber());
}

void SessionStore::setAsideEdits(const QUuid &document, const Rope &text)
{
    auto left = m_leftEdits.extract(document);
    if (left.empty()) {
        return;
    }
    if (areContained(left.mapped().journals, text)) {
        // Saved, and the program was killed before they went.
        m_journal->drop(document, m_journal->nextNumber());
        return;
    }
    m_journal->setAside(document);
    m_setAside.emplace_back(document, std::move(left.mapped()));
}

std::vector<SessionStore::SetAside> SessionStore::takeSetAside()
{
    std::vector<SetAside> taken;
    for (const auto &[document, left] : std::exchange(m_setAside, {})) {
        const SetAside one{.id = QUuid::createUuidV5(document, QString::number(left.lastNumber)),
                           .entry = left.journals.back().entry,
                           .text = insertionsOf(left.journals),
                           .lastNumber = left.lastNumber};
        if (one.text.isEmpty() || m_drafts.contains(DraftFile::nameFor(one.id))) {
            // Nothing was typed, or the program was killed when the draft was there.
            m_journal->dropSetAside(document, left.lastNumber);
        } else {
            taken.push_back(one);
        }
    }
    return taken;
}

void SessionStore::adoptSetAside(const TextDocument &document, const SetAside &setAside)
{
    const auto name = writeDraft(document);
    if (!name) {
        return;
    }
    m_thread->start([queue = m_queue, name = *name, id = setAside.entry.id, number = setAside.lastNumber] {
        const std::lock_guard lock(queue->mutex);
        if (!queue->failedDrafts.contains(name)) {
            queue->journal->dropSetAside(id, number);
        }
    });
}

// Writing

void SessionStore::noteEdit(const TextDocument &document, const TextChange &change, Before before)
{
    if (m_isReplaying || document.isGenerated() || document.arrival().isPending() || !m_preferences.value(Settings::autosaveDrafts)) {
        return;
    }
    const QUuid &id = document.id();
    const quint64 revision = document.storage().revision();
    auto journal = m_journals.find(id);
    if (journal == m_journals.end() || journal->second.revision != revision - 1) {
        if (!document.isDirty() && !document.hasUnsavedText()) {
            return; // what came is the file's text
        }
        if (!hasPlace()) {
            return;
        }
        const auto draft = m_drafts.find(DraftFile::nameFor(id));
        const auto adopted = m_adoptedEdits.find(id);
        const bool isOnDisk = change.before.isEmpty() || (before == Before::saved && !document.isUntitled()) ||
                              (draft != m_drafts.end() && draft->second == revision - 1) ||
                              (adopted != m_adoptedEdits.end() && adopted->second == revision - 1);
        if (!isOnDisk) {
            m_journals[id] = {.revision = revision};
            writeDraft(document);
            return;
        }
        std::ignore = beginJournal(document, change.before, revision - 1);
        journal = m_journals.find(id);
    } else if (document.saves().isActive() && !journal->second.isOfSave) {
        // What came before may be in the file already.
        std::ignore = beginJournal(document, change.before, revision - 1);
    }
    m_journal->append(id, change.edits);
    journal->second.revision = revision;
    for (const TextEdit &edit : change.edits) {
        journal->second.size += bytesOfEdit + 2 * edit.text.length();
    }
    if (journal->second.size > largestJournal) {
        writeDraft(document);
    }
}

/// What is appended to it from now on changes `base`.
quint64 SessionStore::beginJournal(const TextDocument &document, const Rope &base, quint64 revision)
{
    m_journals[document.id()] = {.revision = revision, .isOfSave = document.saves().isActive()};
    return m_journal->begin(document.id(), entryOf(document, {}), base);
}

void SessionStore::forgetEdits(const QUuid &document)
{
    if (m_journals.contains(document) || m_adoptedEdits.contains(document)) {
        // With its draft, and after it: what is typed next builds on the file, and is to be found from the draft until that is gone.
        discardDraft(document);
    }
}

void SessionStore::flushEdits()
{
    m_journal->flush();
}

std::optional<QString> SessionStore::writeDraft(const TextDocument &document)
{
    if (!m_preferences.value(Settings::autosaveDrafts) || document.isGenerated()) {
        return std::nullopt;
    }
    if (!document.hasUnsavedText()) {
        carryOver();
        discardDraft(document.id());
        return std::nullopt;
    }
    if (!hasPlace()) {
        return std::nullopt;
    }
    const QString name = DraftFile::nameFor(document.id());
    const quint64 revision = document.storage().revision();
    quint64 ticket = 0;
    {
        const std::lock_guard lock(m_queue->mutex);
        const auto kept = m_drafts.find(name);
        if (kept != m_drafts.end() && kept->second == revision && !m_queue->failedDrafts.contains(name)) {
            return name;
        }
        Queue::WaitingText &waiting = m_queue->texts[name];
        waiting.text = document.storage().text();
        if (m_journals.contains(document.id())) {
            waiting.document = document.id();
            waiting.journal = beginJournal(document, waiting.text, revision);
        } else if (m_adoptedEdits.erase(document.id()) != 0) {
            waiting.document = document.id();
            waiting.journal = m_journal->nextNumber();
        }
        if (waiting.ticket == 0) {
            ticket = waiting.ticket = ++m_lastTicket;
        }
    }
    m_drafts[name] = revision;
    if (ticket != 0) {
        m_thread->start([queue = m_queue, name, ticket] { queue->writeDraft(name, ticket); });
    }
    return name;
}

void SessionStore::adoptRescued(const TextDocument &document, const std::vector<RescuedFile> &rescued)
{
    for (const RescuedFile &each : rescued) {
        m_adoptedRescued.insert(each.content);
    }
    {
        const std::lock_guard lock(m_queue->mutex);
        m_queue->rescued[DraftFile::nameFor(document.id())] = rescued;
    }
    std::ignore = writeDraft(document);
}

void SessionStore::dropRescued(const QUuid &document)
{
    const QString name = DraftFile::nameFor(document);
    const std::lock_guard lock(m_queue->mutex);
    if (m_queue->rescued.contains(name)) {
        m_thread->start([queue = m_queue, name] { queue->dropRescued(name); });
    }
}

void SessionStore::discardDraft(const QUuid &document)
{
    dropRescued(document);
    const QString name = DraftFile::nameFor(document);
    const bool hasEdits = (m_journals.erase(document) | m_adoptedEdits.erase(document)) != 0;
    if (m_drafts.erase(name) == 0) {
        if (hasEdits) {
            m_journal->drop(document, m_journal->nextNumber());
        }
        return;
    }
    {
        const std::lock_guard lock(m_queue->mutex);
        m_queue->texts.erase(name);
    }
    m_thread->start([queue = m_queue, name, document, journal = hasEdits ? m_journal->nextNumber() : 0] {
        queue->remove({name});
        if (journal != 0) {
            queue->journal->drop(document, journal);
        }
        const std::lock_guard lock(queue->mutex);
        queue->failedDrafts.erase(name);
    });
}

void SessionStore::write(Snapshot snapshot)
{
    carryOver();
    // Of a program beside the owner only texts come back.
    if (!m_isOwner && !m_guest) {
        return;
    }
    if (snapshot == m_held && isHealthy()) {
        lookForMissing();
        return;
    }
    m_held = snapshot;
    snapshot.documents << m_carriedOver;
    snapshot.savedAt = double(QDateTime::currentMSecsSinceEpoch()) / 1000 - referenceDate;
    {
        const std::lock_guard lock(m_queue->mutex);
        // One that waits is overtaken, unless drafts wait behind it: this one may name them.
        if (const auto waiting = m_queue->snapshots.find(m_lastTicket); waiting != m_queue->snapshots.end()) {
            waiting->second = std::move(snapshot);
            return;
        }
        m_queue->snapshots.emplace(++m_lastTicket, std::move(snapshot));
    }
    m_thread->start([queue = m_queue, ticket = m_lastTicket] { queue->writeSnapshot(ticket); });
}

/// One that waits will see what became of the folder until then.
void SessionStore::lookForMissing()
{
    {
        const std::lock_guard lock(m_queue->mutex);
        if (std::exchange(m_queue->isLooking, true)) {
            return;
        }
    }
    m_thread->start([queue = m_queue] { queue->lookForMissing(); });
}

void SessionStore::runInOrder(std::function<void()> job)
{
    m_thread->start(std::move(job));
}

bool SessionStore::waitUntilWritten(std::chrono::milliseconds timeout)
{
    const QDeadlineTimer deadline(timeout);
    // Drafts first: they make journals go.
    return m_thread->waitForDone(int(deadline.remainingTime())) && m_journal->waitUntilWritten(deadline);
}
