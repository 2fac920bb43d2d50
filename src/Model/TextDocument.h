// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"
#include "Files/FileWatcher.h"
#include "Files/TextFile.h"
#include "Highlighting/Language.h"
#include "Highlighting/SyntaxHighlighter.h"
#include "Text/LineIndex.h"
#include "Text/TextStorage.h"
#include "Text/UndoManager.h"

#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

class Preferences;

/// What documents use; must outlive them.
struct DocumentServices {
    Scheduler &scheduler;
    NotificationCenter &notifications;
    const Preferences &preferences;
    Workers &workers;
    FileWatcherQueue &watchers;
    /// The text is safe in its file: what was kept of it elsewhere may go. May be empty.
    std::function<void(const QUuid &id)> discardDraft;
};

/// One open text: its storage and history, the file it belongs to, whether it differs from that file, and what others did to the file.
///
/// The text is dirty from the first edit on; 0.4 s after the last one it is compared, by length and hash, with what was read or written
/// last, so that an edit taken back leaves it clean. A large text is hashed on a worker from a snapshot, and the answer counts only if
/// nothing was typed meanwhile: no key waits for a pass over the text. What to do about a conflict is for the views; the document only
/// tells.
///
/// A document may have been restored: from a draft, and then its text counts as clean but stands in no file; or from a file that is still
/// being read, and until then it is empty and nothing changes or writes it.
///
/// The store owns it; a view may hold it a little longer, until the event is over in which it was closed.
///
/// Main thread only. Paths are absolute. All notifications have the document as their object.
class TextDocument final : public std::enable_shared_from_this<TextDocument> {
public:
    /// Dirty flag, title, encoding, line ending, language, file or external state may have changed.
    static constexpr NotificationName didChangeMetadata = "QLT.DocumentDidChangeMetadata";
    /// The text was replaced from the file.
    static constexpr NotificationName didReloadFromDisk = "QLT.DocumentDidReloadFromDisk";
    /// It became conflicted or deleted.
    static constexpr NotificationName didDetectExternalChange = "QLT.DocumentDidDetectExternalChange";

    /// The file that it waited for cannot be read; whoever hears of it may destroy the document.
    static constexpr NotificationName didFailToArrive = "QLT.DocumentDidFailToArrive";

    enum class ExternalState {
        none,
        /// The file changed on disk while the text has unsaved edits.
        conflicted,
        /// The file disappeared.
        deleted,
        /// The file is still being read.
        waiting,
    };

    /// From this many units on a text is hashed on a worker.
    static constexpr qsizetype largeText = 512 * 1024;
    static constexpr Scheduler::Milliseconds dirtyCheckDelay{400};
    static constexpr Scheduler::Milliseconds deletionCheckDelay{400};

    /// `path` is empty for a text without a file; no contents are an empty text.
    TextDocument(const DocumentServices &services, const QString &path, const std::optional<TextFile::Contents> &contents,
                 const QUuid &id = QUuid::createUuid());
    /// A text that was not saved when it was kept, of the file at `path`, which may be gone, or of none. The stamp is that of where it was
    /// kept: a file that was written since is compared with it. Asks no file system by itself: that may hang.
    [[nodiscard]] static std::unique_ptr<TextDocument> fromDraft(const DocumentServices &services, const QString &path,
                                                                 const TextFile::Contents &contents, const QUuid &id);
    /// A file that a worker reads, since its place may not answer; as its text comes, it is that of a document that was opened. Until then
    /// it has the encoding and the line ending given.
    [[nodiscard]] static std::unique_ptr<TextDocument> awaiting(const DocumentServices &services, const QString &path,
                                                                TextEncoding encoding, LineEnding lineEnding, const QUuid &id);
    /// A text that the program makes itself and nobody saves.
    [[nodiscard]] static std::unique_ptr<TextDocument> generated(const DocumentServices &services, const QString &title,
                                                                 const QString &text, const Language &language);
    /// Of a generated document; there is no way back.
    void setGeneratedText(const QString &text);
    ~TextDocument();
    Q_DISABLE_COPY_MOVE(TextDocument)

    [[nodiscard]] const QUuid &id() const { return m_id; }
    [[nodiscard]] TextStorage &storage() { return m_storage; }
    [[nodiscard]] const TextStorage &storage() const { return m_storage; }
    [[nodiscard]] UndoManager &undoManager() { return m_undoManager; }
    [[nodiscard]] const LineIndex &lineIndex() const { return m_lineIndex; }
    [[nodiscard]] const QString &path() const { return m_path; }
    /// One name for a file, however it is reached; of a file that is not there its path without "." and "..". Asks the file system.
    [[nodiscard]] static QString identityOf(const QString &path);
    /// Of the document's file when it was opened or saved there.
    [[nodiscard]] const QString &identity() const { return m_identity; }
    [[nodiscard]] bool isUntitled() const { return m_path.isEmpty(); }
    [[nodiscard]] bool isGenerated() const { return m_generatedTitle.has_value(); }
    /// The generated title, else the file's name, else "Untitled".
    [[nodiscard]] QString displayName() const;
    /// The path with the home folder as "~", or what the text is when it has none.
    [[nodiscard]] QString displayPath() const;

    /// Whether a program waits until the document is closed, and what it is to be told then.
    enum class Awaited { no, yes, aborted };
    [[nodiscard]] Awaited awaited() const { return m_awaited; }
    void setAwaited(Awaited awaited);

    [[nodiscard]] bool isDirty() const { return m_isDirty; }
    /// The text would be lost with the document: it is dirty, without a file or from a draft, and not an empty one without a file.
    [[nodiscard]] bool hasUnsavedText() const;
    [[nodiscard]] bool isWaiting() const { return m_externalState == ExternalState::waiting; }
    /// Waits for the file that is being read, until `deadline`.
    void waitForFile(std::chrono::steady_clock::time_point deadline) { std::ignore = m_arrival.waitUntil(deadline); }
    /// Why there is no text although it is not waiting.
    [[nodiscard]] const std::optional<TextFile::ReadError> &arrivalError() const { return m_arrivalError; }
    [[nodiscard]] ExternalState externalState() const { return m_externalState; }
    /// The user keeps the text as it is, whatever became of the file.
    void clearExternalState();
    /// The document replaces its own text; edits seen now are nobody's.
    [[nodiscard]] bool isLoading() const { return m_isLoading; }

    [[nodiscard]] TextEncoding encoding() const { return m_encoding; }
    void setEncoding(TextEncoding encoding);
    [[nodiscard]] LineEnding lineEnding() const { return m_lineEnding; }
    void setLineEnding(LineEnding lineEnding);
    [[nodiscard]] const Language &language() const { return m_language; }
    void setLanguage(const Language &language);
    /// The user picked the language; saving under another name keeps it.
    bool languageWasChosenManually = false;

    /// Null until the store attached one.
    [[nodiscard]] SyntaxHighlighter *highlighter() const { return m_highlighter.get(); }
    void attachHighlighter(const Theme &theme);

    /// Remembered for new views and the session: units, and pixels.
    TextRange lastSelectedRange;
    double lastScrollOffset = 0;

    /// Writes the text to `path`, which becomes its file, after trimming and ending the text as the settings want. When that fails the
    /// document is as it was, except for that. Refused while it waits for its text.
    [[nodiscard]] Result<void> save(const QString &path);
    /// Takes the file's text; the history goes. Does nothing without a file; when that fails nothing has changed.
    [[nodiscard]] tl::expected<void, TextFile::ReadError> revertToFileOnDisk();
    /// Reads the file as `encoding`, as a step that can be undone.
    [[nodiscard]] tl::expected<void, TextFile::ReadError> reinterpret(TextEncoding encoding);

private:
    /// What the file holds, and what is different from the document's text as it was at `revision`.
    struct FileReading {
        TextFile::Contents contents;
        TextEdits difference;
        quint64 revision = 0;
        /// Of the file's text; none where it is still to be computed.
        std::optional<quint64> hash;
    };

    struct Arrival {
        tl::expected<TextFile::Contents, TextFile::ReadError> contents;
        QString identity;
    };

    TextDocument(const DocumentServices &services, const QString &path, const QString &identity,
                 const std::optional<TextFile::Contents> &contents, const QUuid &id);

    void arrive(const Arrival &arrival);
    /// Plain text for a text with a line of megabytes.
    [[nodiscard]] const Language &colouredLanguage() const;
    void noteEdit();
    void checkDirty();
    void hashSavedText();
    void applyDirtyCheck(quint64 hash);
    void rememberSavedText(std::optional<quint64> hash = {});
    void setDirty(bool isDirty);
    void postMetadata() const;

    void transformForSaving();
    void agreeWithFile(std::optional<quint64> hash = {});
    void forgetFileQuestions();
    [[nodiscard]] FileReading comparedWith(const TextFile::Contents &contents) const;
    void adopt(const FileReading &reading);
    void reload(const FileReading &reading);
    [[nodiscard]] Language detectedLanguage() const;

    void startWatching(const std::optional<FileStamp> &known);
    void handleFileEvent(FileWatcher::Event event);
    void checkDeleted();
    void compareWithFile();
    void applyReading(std::optional<FileReading> reading);
    void setExternalState(ExternalState state);

    DocumentServices m_services;
    QUuid m_id;
    TextStorage m_storage;
    UndoManager m_undoManager;
    LineIndex m_lineIndex;
    QString m_path;
    QString m_identity;
    Awaited m_awaited = Awaited::no;
    bool m_isDirty = false;
    bool m_isDraft = false;
    std::optional<TextFile::ReadError> m_arrivalError;
    ExternalState m_externalState = ExternalState::none;
    bool m_isLoading = false;
    TextEncoding m_encoding = TextEncoding::utf8;
    LineEnding m_lineEnding = LineEnding::lf;
    Language m_language;
    std::optional<QString> m_generatedTitle;
    std::unique_ptr<SyntaxHighlighter> m_highlighter;
    std::unique_ptr<FileWatcher> m_watcher;
    // Of the saved text: the hash of a large one is computed when it is first asked for, and then the text is let go.
    qsizetype m_savedLength = 0;
    std::optional<quint64> m_savedContentHash;
    Rope m_unhashedText;
    /// The file is gone, so no text is a saved one.
    bool m_isOnlyCopy = false;
    DelayedTask m_dirtyCheck;
    DelayedTask m_deletedCheck;
    BackgroundTask m_savedHashing;
    BackgroundTask m_dirtyHashing;
    BackgroundTask m_fileReading;
    BackgroundTask m_fileLooking;
    BackgroundTask m_arrival;
    QObject m_context;
};
