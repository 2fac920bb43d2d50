// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Diff/DiffViewController.h"
#include "Model/PaneLayout.h"
#include "Model/TextDocument.h"
#include "UI/TabPlace.h"
#include "UI/WorkspaceServices.h"

#include <chrono>

struct Alert;

/// How long a message stays that takes a while to read.
inline constexpr std::chrono::seconds longFlash{5};
/// Without its folder, as the user is to read it.
[[nodiscard]] QString nameOfFile(const QString &path);

/// What can be done with the documents of a window, and the commands for its current one. Saving, and asking before something is lost, end
/// with a completion, which may come later. It changes no panes: it reports what is to be shown, and what is closed leaves the store, of
/// of which every window is notified. Main thread only.
class DocumentActions final : public QObject, public Responder {
    Q_OBJECT

public:
    using Completion = std::function<void(bool isDone)>;
    using Side = DiffViewController::Side;

    /// `layout` is what the window shows, `widget` something in it. All must outlive this.
    DocumentActions(const WorkspaceServices &services, const PaneLayout &layout, QWidget &widget);

    /// Gets true when the text was written; is not called when this is gone by then.
    void save(TextDocument &document, const Completion &completion);
    void saveAs(TextDocument &document, const Completion &completion);
    /// Gets true when it may be closed.
    void confirmClose(TextDocument &document, const Completion &completion);
    enum class Closing { refused, saved, withoutSaving };
    /// The same for a window that shows all these. There is one at least.
    void confirmClosing(const PaneLayout::Documents &documents, const std::function<void(Closing closing)> &completion);

    /// Where a panel for a file beside the document's begins.
    [[nodiscard]] QString folderBeside(const TextDocument &document) const;
    /// The next panel begins where that file is.
    void rememberPanelFolder(const QString &path);

    /// Asks how the file, an absolute path, is to be read, and opens it.
    void openWithEncoding(const QString &path);

    // Of the current document
    void chooseLanguage(const Language &language);
    void chooseEncoding(TextEncoding encoding);
    /// Shows how the file reads in each encoding. Beeps where it cannot.
    void reopenWithEncoding();
    [[nodiscard]] bool canReopen() const;
    void chooseLineEnding(LineEnding lineEnding);

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

signals:
    /// Absolute paths of what the user wants to see.
    void filesChosen(const QStringList &paths);
    /// It is to be shown, where it has a tab already or in a new one, with the keyboard in it.
    void documentMade(TextDocument &document);
    void messageShown(const QString &message, Scheduler::Milliseconds duration);
    /// Two texts are to be shown side by side, with the colours of `language`.
    void comparisonRequested(const DiffViewController::Side &left, const DiffViewController::Side &right, const Language &language);

private:
    enum class MissingCharactersAnswer { saveInUtf8, replace, cancel };

    void openDocument();
    void saveDocument(const ActionSender &sender);
    void saveDocumentAs();
    enum class Existing { kept, replaced };
    void writeTo(const QString &path, TextDocument &document, Existing existing);
    void askForFileAndEncoding();
    /// Shows what the file would be in each encoding.
    void chooseEncodingOf(const QString &path, const QString &consequence, const QString &prompt,
                          std::function<void(TextEncoding encoding)> completion);
    /// A save, which may be tried again in another manner.
    struct Attempt {
        TextDocument &document;
        /// None for the document's own.
        std::optional<QString> path = std::nullopt;
        Completion completion = [](bool) {};
        DocumentFile::Manner manner = {};
    };
    void attempt(const Attempt &attempt);
    void handleSaved(const Attempt &done, AtomicFile::InPlace inPlace, bool isNew);
    /// Tells the user why it failed, and whatever else may be tried then; at the end the completion is called.
    void handleSaveError(const Attempt &failed, const Error &error);
    void askForFolder(const Attempt &failed);
    void askAboutMissingCharacters(TextDocument &document, std::function<void(MissingCharactersAnswer answer)> completion);
    void offerOtherWays(const Attempt &failed, const Error &error);
    void saveAllDocuments();
    void saveUntitled(PaneLayout::Documents documents);
    void saveAll(const PaneLayout::Documents &documents, const Completion &completion);
    void revertDocumentToSaved();
    void revertWithoutAsking();
    void makeBackup();
    /// Beside the document's file, or in the file that the snapshot names.
    enum class Copy { backup, named };
    void writeCopy(TextDocument &document, const DocumentFile::Snapshot &snapshot, Copy copy);
    void askHowToWrite(TextDocument &document, const DocumentFile::Snapshot &snapshot, Copy copy);
    void openInTerminal();
    void moveDocumentToTrash();
    void trash(TextDocument &document);
    void revealInFinder(const ActionSender &sender);
    void copyFilePath(const ActionSender &sender);
    void selectLanguageFromMenu(const ActionSender &sender);
    void compareWithFileOnDisk();
    void compareWithFile();
    void compareWithOrigin();
    void compareWithOpenDocument(const ActionSender &sender);
    void compare(const Side &left);
    void readForComparison(TextDocument &document, const QString &path, std::function<void(const Rope &text)> then);
    void showVimKeyReference();
    void showUserGuide();
    void showGenerated(const QString &title, const QString &text);

    [[nodiscard]] TextDocument *currentDocument() const { return m_layout.current().get(); }
    /// Which questions block.
    [[nodiscard]] QWidget *window() const { return m_widget.window(); }
    [[nodiscard]] bool hasDocument() const { return currentDocument() != nullptr; }
    [[nodiscard]] bool hasFile() const { return hasFileInTab({}); }
    [[nodiscard]] bool hasFileInTab(const ActionSender &sender) const;
    [[nodiscard]] bool canRevert() const;
    [[nodiscard]] PaneLayout::Documents unsavedDocuments() const;
    [[nodiscard]] bool hasUnsavedDocuments() const { return !unsavedDocuments().empty(); }
    [[nodiscard]] bool hasSeveralDocuments() const;
    [[nodiscard]] bool hasOrigin() const;
    [[nodiscard]] ActionState languageState(const ActionSender &sender) const;

    void presentError(const QString &description, const QString &recoverySuggestion = {});
    void presentError(const TextFile::ReadError &error);
    [[nodiscard]] TextDocument::ReadCompletion errorPresenter();
    void present(const Alert &alert, std::function<void(int button)> completion);
    void beep();
    [[nodiscard]] QString panelFolder() const;
    [[nodiscard]] bool isFolderThere(const QString &folder) const;

    WorkspaceServices m_services;
    const PaneLayout &m_layout;
    BackgroundTask m_detecting;
    QWidget &m_widget;
};
