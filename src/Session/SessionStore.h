// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/AtomicFile.h"
#include "Base/FileCalls.h"
#include "Base/FileStamp.h"
#include "Base/Result.h"
#include "Session/EditJournal.h"
#include "Session/GuestSessions.h"
#include "Session/SessionSnapshot.h"
#include "Text/Rope.h"

#include <QStringList>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

class Preferences;
class JournalWriter;
class QThreadPool;
class TextDocument;
struct TextChange;

/// Keeps the session and the texts that were not saved ("drafts") in a folder of the user's, from one start of the program to the next.
///
/// The folder holds `session.json` (SessionSnapshot) and `Drafts` with one DraftFile for each such text. A draft is on disk before a
/// snapshot names it, and goes only when a snapshot that does not name it is on disk: whenever the program is killed or the power fails,
/// the snapshot that is there finds its drafts.
///
/// What is typed in between goes to journals beside the drafts at once (JournalWriter), for those documents of which noteEdit() tells.
///
/// All writing is done in the order asked for by a thread of the store's own, from ropes that cost nothing to take; of what waits to be
/// written only the latest version is. What was written already is not written again.
///
/// One running program owns a folder. In another one the store finds nothing, and writes to a folder of its own (GuestSessions), whose
/// texts the next owner takes over. Main thread only.
class SessionStore final {
public:
    using Snapshot = SessionSnapshot;

    /// A guest never owns the folder: a program that was started for something else than its session.
    enum class Role { owner, guest };

    /// Absolute paths.
    struct Places {
        QString rootDirectory;
        /// For a second lock; empty when there is none.
        QString runtimeDirectory;
        Role role = Role::owner;

        /// In the user's data folder: $XDG_DATA_HOME if that is absolute, else ~/.local/share.
        [[nodiscard]] static Places standard(Role role = Role::owner);
    };

    /// What earlier programs left.
    struct Saved {
        std::optional<Snapshot> snapshot;
        /// Drafts that the snapshot does not name: of texts that were typed just before the program was killed.
        QStringList otherDrafts;
        /// Documents in which something was typed since they were last written, as they were then.
        QList<Snapshot::Document> edited = {};
        /// Texts of files that were not written to their end.
        std::vector<RescuedFile> rescued = {};

        [[nodiscard]] bool isEmpty() const { return !snapshot && otherDrafts.isEmpty() && edited.isEmpty() && rescued.empty(); }
    };

    /// Makes the folders, for the user only, unless it is a guest. `preferences` and `calls` must outlive the store.
    SessionStore(const Places &places, const Preferences &preferences, FileCalls &calls = FileCalls::system());
    /// Waits for what is to be written, unless the disk hangs.
    ~SessionStore();
    Q_DISABLE_COPY_MOVE(SessionStore)

    [[nodiscard]] const QString &rootDirectory() const { return m_root; }
    // Where it writes; beside an owner that is a place of its own, once there is something to keep.
    [[nodiscard]] QString draftsDirectory() const;
    [[nodiscard]] QString snapshotPath() const;
    /// For AtomicFile.
    [[nodiscard]] QString rescueDirectory() const { return m_root + QStringLiteral("/Rescue"); }

    /// False while another program owns the folder, when it is not the user's alone, and after a snapshot that can neither be read nor
    /// moved out of the way.
    [[nodiscard]] bool isOwner() const { return m_isOwner; }
    [[nodiscard]] bool isHeldByOther() const { return m_isHeldByOther; }
    /// Whether text that is not saved comes back at the next start: the settings want it and writing works.
    [[nodiscard]] bool keepsUnsavedText() const;
    /// Whether it comes back some day: when this is not the owner, the next one that is brings it back.
    [[nodiscard]] bool keepsDrafts() const;
    /// Everything that was to be written so far was.
    [[nodiscard]] bool isHealthy() const;

    /// Once. A snapshot that cannot be read is moved to a folder of its own, with all drafts. When this was not called before anything is
    /// written, what it would have returned is carried over: texts that were not saved are in the next snapshots too.
    [[nodiscard]] Saved read();
    /// What was carried over of unsaved texts of the file at `path`, which is absolute, but for `rescued`; from now on that is the
    /// caller's.
    [[nodiscard]] Saved takeCarriedOver(const QString &path);
    /// Texts of files that were not written to their end and that no document of this program has got. Looks anew, since programs beside
    /// this one end too; also when this is not the owner.
    [[nodiscard]] std::vector<RescuedFile> rescued() const;
    /// A draft's text; none when the name is none of a draft, or when it cannot be read: then it is left where it is.
    [[nodiscard]] std::optional<Rope> draft(const QString &name);
    /// When the draft was written; none when that is unknown.
    [[nodiscard]] std::optional<FileStamp> draftStamp(const QString &name) const;
    /// When unsaved text of the document, which may be in the draft `name` and in edits, was written last, in nanoseconds since 1970; 0
    /// when there is none.
    [[nodiscard]] qint64 changedAt(const QUuid &document, const QString &name) const;
    /// Some day it may be readable again: another document must not write or discard it as its own.
    [[nodiscard]] bool hasUnreadableDraft(const QUuid &document) const;
    /// `base`, a draft or the text of a file, with what was typed since; none when nothing was, or the edits are of another text.
    [[nodiscard]] std::optional<Rope> edited(const QUuid &document, const Rope &base) const;
    /// `document` has such a text: the edits that made it are kept until it is written.
    void adoptEdits(const TextDocument &document);
    /// Makes it such a text, as a step that can be undone.
    void replayEdits(TextDocument &document, const Rope &edited);
    /// What was typed was taken back.
    void discardEdits(const QUuid &document);
    /// The edits are of another text than `text`, which is the one that is there. Unless it has what they brought all the same, they are
    /// kept until somebody takes that.
    void setAsideEdits(const QUuid &document, const Rope &text = {});
    /// Edits that fit nowhere.
    struct SetAside {
        /// For a document with the text; the same edits always have the same.
        QUuid id;
        /// Of the document into which they were typed.
        Snapshot::Document entry;
        /// See insertionsOf().
        QString text;
        quint64 lastNumber = 0;
    };
    /// All of them, also those of earlier programs, which did not come to the end with them.
    [[nodiscard]] std::vector<SetAside> takeSetAside();
    /// `document` has the text of `setAside`, which goes when the draft is written.
    void adoptSetAside(const TextDocument &document, const SetAside &setAside);
    /// `document` has the text of the draft `name` and goes on using it.
    void adoptDraft(const TextDocument &document, const QString &name);

    /// Writes the document's unsaved text and returns the name for the snapshot. None, and the draft goes, when all is saved; none, and
    /// nothing is touched, when drafts are not wanted or nobody saves the document.
    std::optional<QString> writeDraft(const TextDocument &document);
    /// `document` has the text of the last of `rescued`. They go when a session that names its draft is on disk, else with the draft: no
    /// start but one of the session finds a draft by its file.
    void adoptRescued(const TextDocument &document, const std::vector<RescuedFile> &rescued);
    /// The file was written to its end since.
    void dropRescued(const QUuid &document);
    /// Whether the text is the same as that of the document's file, or as its draft.
    enum class Before { saved, dirty };
    /// The document was edited just now, after it was as `before` says: that is safe within a tenth of a second.
    void noteEdit(const TextDocument &document, const TextChange &change, Before before);
    /// Its text is that of its file again.
    void forgetEdits(const QUuid &document);
    /// What was typed so far withstands a power cut.
    void flushEdits();
    /// The text is safe elsewhere, or not wanted any more.
    void discardDraft(const QUuid &document);
    /// Then deletes the drafts that it does not name. When the store was given the same last, and all is well with that, it only sees to it
    /// that this is there: what others removed is written again.
    void write(Snapshot snapshot);
    /// Runs `job` on the thread that writes, after all that was to be written so far. While a disk hangs it may run when the store is gone.
    void runInOrder(std::function<void()> job);
    /// Returns true when everything is written, false when `timeout` is over first.
    bool waitUntilWritten(std::chrono::milliseconds timeout);

    /// Something that cannot be written.
    struct Problem {
        enum class Kind {
            drafts,
            /// While drafts can be.
            session,
            /// It is another user's, or others may write to it: nothing is read or written there.
            sharedFolder,
        };
        Kind kind = Kind::drafts;
        QString path;
        /// Of the writing.
        Error error = {};
    };
    /// Called when something cannot be written: once, and again only after a time in which it could; for a shared folder at once.
    void onProblem(std::function<void(const Problem &problem)> report);
    /// Called when there was a snapshot that cannot be read, with the folder where it is now, and the drafts with it.
    void onSetAside(std::function<void(const QString &folder)> report) { m_reportSetAside = std::move(report); }

private:
    struct Queue;

    void claim(const Places &places);
    /// Makes one for a program beside the owner.
    [[nodiscard]] bool hasPlace();
    /// The first that is not the user's alone.
    [[nodiscard]] std::optional<QString> sharedFolder() const;
    [[nodiscard]] std::optional<Snapshot> readSnapshot();
    [[nodiscard]] bool setAside(const QString &folder);
    void carryOver();
    [[nodiscard]] quint64 beginJournal(const TextDocument &document, const Rope &base, quint64 revision);
    void setFolder(const QString &folder);
    void lookForMissing();
    [[nodiscard]] QStringList draftsOnDisk() const;

    QString m_root;
    const Preferences &m_preferences;
    FileCalls &m_calls;
    std::vector<std::unique_ptr<SessionLock>> m_locks;
    std::optional<GuestSessions::Place> m_guest;
    std::optional<QString> m_sharedFolder;
    bool m_isOwner = false;
    bool m_isHeldByOther = false;
    bool m_hasRead = false;
    /// As it was last given.
    std::optional<Snapshot> m_held;
    /// Of earlier programs, not brought back by this one.
    QList<Snapshot::Document> m_carriedOver;
    /// The same for what has been edited only, and has no draft.
    QList<Snapshot::Document> m_carriedEdits;
    /// Contents that documents of this program have got.
    std::set<QString> m_adoptedRescued;
    std::function<void(const QString &folder)> m_reportSetAside;
    /// Drafts that may be on disk, and the revision of the text that was last handed over.
    std::map<QString, std::optional<quint64>> m_drafts;
    /// What is being journalled.
    struct Journal {
        /// Of the text after the last change in it.
        quint64 revision = 0;
        /// Bytes, about.
        qsizetype size = 0;
        /// It began while the file was being written.
        bool isOfSave = false;
    };
    std::map<QUuid, Journal> m_journals;
    /// Of earlier programs.
    std::map<QUuid, LeftEdits> m_leftEdits;
    std::vector<std::pair<QUuid, LeftEdits>> m_setAside;
    /// Texts that are on disk as a draft or a file and edits.
    std::map<QUuid, quint64> m_adoptedEdits;
    bool m_isReplaying = false;
    /// Of the jobs that write.
    quint64 m_lastTicket = 0;
    std::shared_ptr<Queue> m_queue;
    std::shared_ptr<JournalWriter> m_journal;
    std::unique_ptr<QThreadPool> m_thread;
};
