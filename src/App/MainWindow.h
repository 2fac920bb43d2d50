// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/EditorViewController.h"
#include "Model/TextFile.h"
#include "Platform/TextEncoding.h"

#include <QMainWindow>

#include <functional>
#include <memory>

class AlertPresenter;
class DefaultsStore;
class DocumentStore;
class Pasteboard;
class Preferences;
class TextDocument;

/// What the windows of the program use; made in `main`, and by every test for itself.
struct AppServices {
    Scheduler &scheduler;
    NotificationCenter &notifications;
    DefaultsStore &defaults;
    Preferences &preferences;
    Pasteboard &pasteboard;
    AlertPresenter &presenter;
    DocumentStore &documents;
    Workers &workers;
    FindState &find;
    SpellChecker *spellChecker = nullptr;
    SpellingPanel *spellingPanel = nullptr;

    [[nodiscard]] EditorServices editors() const
    {
        return {scheduler, notifications, preferences, pasteboard, presenter, documents, workers, find, spellChecker, spellingPanel};
    }
};

/// A window that edits one file. Never loses text without asking: not by closing, not by opening another file, not by a failed save.
class MainWindow final : public QMainWindow, public Responder, private EditorViewControllerDelegate {
    Q_OBJECT

public:
    /// The services must outlive the window. It begins with an empty text.
    explicit MainWindow(const AppServices &services);
    ~MainWindow() override;

    /// Shows the file at `path` (absolute) instead, at once: what was shown before must be saved or given up. A file that cannot be read
    /// is answered with an alert and changes nothing.
    void show(const QString &path);
    /// Asks first when there is unsaved text.
    void open(const QString &path);

    [[nodiscard]] TextDocument &document() { return *m_document; }
    [[nodiscard]] EditorViewController &editor() { return *m_editor; }
    [[nodiscard]] EditorTextView &textView() { return m_editor->textView(); }

    [[nodiscard]] const ActionRow *actionFor(Selector selector) const override;
    using QMainWindow::show;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void editorWantsFocus(EditorViewController & /*editor*/) override {}
    void editorDidChangeSelection(EditorViewController & /*editor*/) override {}
    void editorDidDropFiles(EditorViewController &editor, const QStringList &paths) override;

    /// Gets true when the text was written, or may be given up.
    using Completion = std::function<void(bool mayGoOn)>;

    void openDocument();
    void saveDocument();
    void saveDocumentAs();
    void terminate();
    /// A preference that an action switches.
    template<bool (Preferences::*value)() const, void (Preferences::*setValue)(bool)>
    void toggle();
    template<bool (Preferences::*value)() const>
    [[nodiscard]] ActionState stateOf() const;
    void increaseFontSize() { changeFontSize(1); }
    void decreaseFontSize() { changeFontSize(-1); }
    void resetFontSize();
    void changeFontSize(int steps);

    void save(Completion completion);
    void saveAs(Completion completion);
    void write(const QString &path, const Completion &completion);
    void askToSave(Completion completion);

    void setDocument(std::unique_ptr<TextDocument> document);
    void closeDocument();
    void revertDocument();
    [[nodiscard]] bool canRevert() const;
    void presentError(const TextFile::ReadError &error);
    void installMenus();
    void installEncodingMenu();
    void chooseEncoding(TextEncoding encoding);
    void updateTitle();
    [[nodiscard]] QString panelFolder() const;
    void rememberPanelFolder(const QString &path);

    AppServices m_services;
    TextDocument *m_document = nullptr; // the store owns it
    EditorViewController *m_editor = nullptr;
    NotificationCenter::Token m_metadataObserver;
    NotificationCenter::Token m_languageObserver;
    /// The next closing has been asked about.
    bool m_mayClose = false;
};
