// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Files/DocumentFile.h"
#include "Files/FileRequests.h"
#include "Files/TextFile.h"
#include "Highlighting/Language.h"
#include "Highlighting/SyntaxHighlighter.h"
#include "Model/DocumentArrival.h"
#include "Model/DocumentConventions.h"
#include "Model/DocumentEncoding.h"
#include "Model/DocumentForm.h"
#include "Model/DocumentServices.h"
#include "Model/FileFollower.h"
#include "Model/FinishedText.h"
#include "Model/SaveQueue.h"
#include "Model/SavedText.h"
#include "Model/TextOrigin.h"
#include "Text/TextStorage.h"
#include "Text/UndoManager.h"

#include <QStringList>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

/// One open text: its storage and history, the file it belongs to, whether it differs from that file, and what others did to the file.
///
/// The text is dirty from the first edit on; soon after the last one it is compared with what was read or written last, so that an edit
/// taken back leaves it clean. What to do about a conflict is for the views; the document only notifies.
///
/// A document may have been restored from a draft, and then its text counts as clean but stands in no file.
///
/// Files are read and written by workers, from snapshots; nothing here waits for them longer than `DocumentServices::timeout`. Until its
/// file has been read a document is empty, and nothing changes or writes it. While the text is being written it may be edited: what is
/// written is the text as it was when that was asked for, and what was typed since stays unsaved. Writes of one document follow each other.
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

    /// The file that it waited for cannot be read, or is that of another document; whoever is notified may remove the document.
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

    /// What it means that there is no file: an error, or that the first save makes it.
    enum class MissingFile { isError, isMade };

    /// `path` is empty for a text without a file; no contents are an empty text. Asks no file system.
    TextDocument(const DocumentServices &services, const QString &path, const std::optional<TextFile::Contents> &contents,
                 const QUuid &id = QUuid::createUuid());
    /// A text that was not saved when it was kept, of the file at `path`, which may be gone, or of none. The state in `contents` is that of
    /// the file which it was made of: one that was written since is compared with it. Without a state that is a file written since
    /// `keptAt`. Asks no file system by itself: that may hang.
    [[nodiscard]] static std::unique_ptr<TextDocument> fromDraft(const DocumentServices &services, const QString &path,
                                                                 const TextFile::Contents &contents, const QUuid &id,
                                                                 const std::optional<FileStamp> &keptAt = std::nullopt,
                                                                 MissingFile missingFile = MissingFile::isError);
    /// A file that is being read. Until its text is there it has the encoding and the line ending given.
    [[nodiscard]] static std::unique_ptr<TextDocument>
    awaiting(const DocumentServices &services, const QString &path, TextEncoding encoding = TextEncoding::utf8,
             LineEnding lineEnding = LineEnding::lf, const QUuid &id = QUuid::createUuid(), MissingFile missingFile = MissingFile::isError);
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
    [[nodiscard]] const QString &path() const { return m_path; }
    /// What is known of the file.
    [[nodiscard]] const FileFollower &file() const { return m_follower; }
    [[nodiscard]] bool isUntitled() const { return m_path.isEmpty(); }
    [[nodiscard]] bool isGenerated() const { return m_generatedTitle.has_value(); }
    /// The generated title, else the file's name, else where it comes from, else "Untitled", or the first line if the settings want that.
    [[nodiscard]] QString displayName() const;

    /// Whether a program waits until the document is closed, and what it is to be notified of then.
    enum class Awaited { no, yes, aborted };
    [[nodiscard]] Awaited awaited() const { return m_awaited; }
    void setAwaited(Awaited awaited);

    /// For marks: it follows the text soon after the last edit.
    [[nodiscard]] bool isDirty() const { return m_isDirty; }
    /// The same as it is now, for what is decided by it: an edit that was taken back a moment ago is none.
    [[nodiscard]] bool hasUnsavedEdits() const;
    /// The text would be lost with the document: it is dirty, without a file or from a draft, and not an empty one without a file.
    [[nodiscard]] bool hasUnsavedText() const;
    /// Of its text, where it stands in a file.
    [[nodiscard]] const DocumentArrival &arrival() const { return m_arrival; }
    [[nodiscard]] ExternalState externalState() const { return m_arrival.isPending() ? ExternalState::waiting : m_externalState; }
    /// Nobody shows it for a while: what others do to its file is of no concern until it is followed again, which finds out what they did.
    void setFollowingFile(bool isFollowing);
    /// The user keeps the text as it is, whatever became of the file, and wherever it comes from.
    void clearExternalState();
    /// What it has asked of file systems; for others to ask as well.
    [[nodiscard]] FileRequests &requests() { return m_requests; }
    /// Its texts that are being written, or wait for that.
    [[nodiscard]] const SaveQueue &saves() const { return m_saves; }

    [[nodiscard]] TextEncoding encoding() const { return m_encoding.value(); }
    void setEncoding(TextEncoding encoding);
    /// What there is to know of it and to do about it.
    [[nodiscard]] DocumentEncoding &encodingDetails() { return m_encoding; }
    [[nodiscard]] const DocumentEncoding &encodingDetails() const { return m_encoding; }
    /// What the file has beside the text.
    [[nodiscard]] const DocumentForm &form() const { return m_form; }
    [[nodiscard]] LineEnding lineEnding() const { return m_lineEnding; }
    void setLineEnding(LineEnding lineEnding);
    [[nodiscard]] const Language &language() const { return m_language; }
    void setLanguage(const Language &language);
    /// The user picked the language; saving under another name keeps it.
    bool languageWasChosenManually = false;
    /// How it is written.
    DocumentConventions conventions;
    /// Of one without a file, until it gets one or the user is done with knowing.
    std::optional<TextOrigin> origin;

    /// Null until the store attached one.
    [[nodiscard]] SyntaxHighlighter *highlighter() const { return m_highlighter.get(); }
    void attachHighlighter(const Theme &theme);

    /// Where the text ended before the last reload, if that only added to it.
    [[nodiscard]] std::optional<qsizetype> endBeforeReload() const { return m_endBeforeReload; }

    /// Remembered for new views and the session: units, and pixels.
    TextRange lastSelectedRange;
    double lastScrollOffset = 0;
    /// Names of the dictionaries that the user chose; none to go by the words of the text.
    QStringList spellingDictionaries;

    /// Called when a file was read, or could not be.
    using ReadCompletion = std::function<void(const Result<void, TextFile::ReadError> &read)>;

    /// Writes the text as it is now to `path`, which becomes its file, trimmed and ended as the settings and .editorconfig files want; what
    /// that changes is a step that can be undone. When it fails the document is as it was; so it does when the encoding lacks characters,
    /// unless they are to be substituted.
    /// Refused while it waits for its text.
    void save(const QString &path, const SaveQueue::Completion &completion = {}, const DocumentFile::Manner &manner = {});
    /// Takes the file's text, after what is being written; the history goes. Does nothing without a file. When it cannot be read nothing
    /// has changed; when the text is edited or saved meanwhile, nothing comes of it, and nobody is notified.
    void revertToFileOnDisk(const ReadCompletion &completion = {});
    /// In the same way reads the file as `encoding`, as a step that can be undone. Remembered, it is also read so from now on.
    enum class Remembered { no, yes };
    void reinterpret(TextEncoding encoding, const ReadCompletion &completion = {}, Remembered remembered = Remembered::no);

private:
    using FileReading = DocumentFile::Reading;

    struct Arrival {
        TextFile::ReadResult contents;
        QString identity;
        bool isReadOnly = false;
        EditorConfig config;
    };
    struct Saved {
        FinishedText text;
        DocumentFile::WriteResult result;
    };

    TextDocument(const DocumentServices &services, const QString &path, const QString &identity,
                 const std::optional<TextFile::Contents> &contents, const QUuid &id);

    void arrive(const Arrival &arrival, MissingFile missingFile);
    void takeArrived(const TextFile::Contents &contents);
    void takeForm(FileForm form, const Rope &text);
    /// Plain text for a text with a line of megabytes.
    [[nodiscard]] const Language &colouredLanguage() const;
    void noteEdit();
    void setDirty(bool isDirty);
    void applyInParts(const TextEdits &edits);
    void setReadOnly(bool isReadOnly);
    void postMetadata() const;

    void startSaving();
    void endSaving(const Saved &saved);
    void takeForm(const DocumentFile::Snapshot &asked, const DocumentFile::Snapshot &finished);
    void takeWritten(const FinishedText &text, const DocumentFile::Written &written);
    void takeFile(std::optional<TextEncoding> forcedEncoding, void (TextDocument::*take)(const FileReading &reading),
                  const ReadCompletion &completion);
    void takeReinterpreted(const FileReading &reading);
    void agreeWithFile(const Rope &text, std::optional<quint64> hash);
    [[nodiscard]] FileReading comparedWith(const TextFile::Contents &contents) const;
    void adopt(const FileReading &reading);
    void reload(const FileReading &reading);
    [[nodiscard]] Language detectedLanguage() const;

    void takeChanged(const FileReading &reading);
    void takeDeleted();
    void setExternalState(ExternalState state);
    void showConflict(const std::optional<FileState> &found);

    DocumentServices m_services;
    QUuid m_id;
    TextStorage m_storage;
    UndoManager m_undoManager;
    QString m_path;
    Awaited m_awaited = Awaited::no;
    FileRequests m_requests;
    DocumentArrival m_arrival;
    SaveQueue m_saves;
    bool m_isDirty = false;
    bool m_isDraft = false;
    std::optional<qsizetype> m_endBeforeReload;
    ExternalState m_externalState = ExternalState::none;
    bool m_isLoading = false;
    DocumentEncoding m_encoding;
    LineEnding m_lineEnding = LineEnding::lf;
    DocumentForm m_form{m_undoManager, m_services.preferences};
    Language m_language;
    std::optional<QString> m_generatedTitle;
    std::unique_ptr<SyntaxHighlighter> m_highlighter;
    SavedText m_savedText;
    FileFollower m_follower;
    BackgroundTask m_draftLooking;
    QObject m_context;
};

/// The path with the home folder as "~", or what the text is when it has none.
[[nodiscard]] QString displayPath(const TextDocument &document);

/// The document's text as it is now, on its way to `path`, in the form that the settings want.
[[nodiscard]] DocumentFile::Snapshot snapshotOf(const TextDocument &document, const QString &path);
