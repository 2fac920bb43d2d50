// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/Scheduler.h"
#include "Files/DocumentFile.h"
#include "Files/FileWatcher.h"
#include "Files/GrowingFile.h"

#include <functional>
#include <memory>
#include <optional>

class DocumentForm;
class EncodingMemory;
class SavedText;

/// Finds out what others do to the file of a document: watches it, and when something happened looks or reads on a worker. Remembers
/// what the file was. Of a file that only grew what was added is read, and once it rests, or has grown for a while, the rest is checked.
/// Main thread only.
class FileFollower final {
public:
    /// What it uses; must outlive it.
    struct Services {
        Scheduler &scheduler;
        Workers &workers;
        FileWatcherQueue &watchers;
        FileCalls &files;
        const TextStorage &storage;
        const SavedText &saved;
        const DocumentForm &form;
        const EncodingMemory *encodings;
        /// The file was read, of which it was said that it changed. The difference is against the text of the revision that it names.
        std::function<void(const DocumentFile::Reading &reading)> changed;
        /// The file is gone.
        std::function<void()> deleted;
    };

    static constexpr Scheduler::Milliseconds deletionCheckDelay{400};
    /// How long a file that grew rests before all of it is checked, and how long it may go on growing unchecked.
    static constexpr Scheduler::Milliseconds growthCheckDelay{5000};
    static constexpr Scheduler::Milliseconds longestUnchecked{30000};

    explicit FileFollower(Services services) : m_services(std::move(services)) {}

    /// From now on the file at `path`, none if that is empty, which is known to be as `known` says, or as it is found.
    void follow(const QString &path, const std::optional<FileStamp> &known);
    /// See DocumentFile::identityOf; of the file when it was opened or saved.
    [[nodiscard]] const QString &identity() const { return m_identity; }
    void setIdentity(const QString &identity) { m_identity = identity; }
    /// It has a path, at which there was no file yet.
    [[nodiscard]] bool isNew() const { return m_isNew; }
    void setNew(bool isNew) { m_isNew = isNew; }
    /// See TextFile::isReadOnly(); when the file was last read or written.
    [[nodiscard]] bool isReadOnly() const { return m_isReadOnly; }
    void setReadOnly(bool isReadOnly) { m_isReadOnly = isReadOnly; }
    /// The file as it was when the text was last read from it or written to it; none where that is unknown.
    [[nodiscard]] const std::optional<FileState> &state() const { return m_state; }
    /// Whoever made the file keeps it from everybody else, as keys, passwords and what is edited of them are kept.
    [[nodiscard]] bool isPrivate() const { return m_state && (m_state->mode & 077) == 0; }
    /// The text that the file is known to have; none where there is no file.
    [[nodiscard]] std::optional<Rope> savedText() const;
    /// The text of the document is that of the file in this state; with a `position` as it is now, letter by letter.
    void agreeOn(const std::optional<FileState> &state, const std::shared_ptr<const ReadPosition> &position = nullptr);
    /// The user is shown that the file differs from the text. From then on saving may write over it as it is `shown`.
    void noteShown(const std::optional<FileState> &shown) { m_shown = shown; }
    /// What the file has to be when the text is written over it.
    [[nodiscard]] AtomicFile::Expectation expectation() const { return {m_shown ? m_shown : m_state}; }
    /// Reads the file; `changed` follows if it can be read.
    void read();
    /// Nothing that was asked is answered any more.
    void forget();
    /// The document's text is about to be written to the file.
    void beginOwnWrite();
    /// The file as it was written, or none: then what was asked before is asked again.
    void endOwnWrite(const std::optional<FileStamp> &written);

private:
    void handle(FileWatcher::Event event);
    void look();
    void checkGrowthSoon();
    void checkGrowth();
    void takeCheck(const std::shared_ptr<const ReadPosition> &position, const GrowingFile::Check &check);
    void stopChecking();

    Services m_services;
    QString m_path;
    QString m_identity;
    bool m_isNew = false;
    bool m_isReadOnly = false;
    std::optional<FileState> m_state;
    std::optional<FileState> m_shown;
    /// Null where the file has to be read as a whole.
    std::shared_ptr<const ReadPosition> m_position;
    /// Of the text that stands in the file before it.
    quint64 m_positionRevision = 0;
    std::unique_ptr<FileWatcher> m_watcher;
    DelayedTask m_lookSoon;
    BackgroundTask m_looking;
    BackgroundTask m_reading;
    /// Since when something of a growing file waits for its check.
    std::optional<Scheduler::Milliseconds> m_uncheckedSince;
    DelayedTask m_checkSoon;
    BackgroundTask m_checking;
    bool m_asksAgain = false;
};
