// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Diff/DiffViewController.h"
#include "Files/TextEncoding.h"
#include "Files/TextFile.h"
#include "UI/PaneViewController.h"
#include "UI/StatusBarView.h"
#include "Vim/VimExCommands.h"
#include "Widgets/FileDropView.h"

class PaneSplitter;
class SubstitutionRunner;
class WorkspaceViewController;
struct Alert;
struct WindowLayout;
template<typename T>
struct Setting;

/// What the application does for its windows.
class WorkspaceHost {
public:
    /// The workspace of a new window, which has one empty untitled tab and is shown.
    [[nodiscard]] virtual WorkspaceViewController &openWindow() = 0;
    /// A window that shows both texts side by side, with the colours of `language`.
    virtual void openComparison(DiffViewController::Side left, DiffViewController::Side right, const Language &language) = 0;
    /// Of all windows.
    [[nodiscard]] virtual std::vector<WorkspaceViewController *> workspaces() const = 0;

protected:
    ~WorkspaceHost() = default;
};

/// The content of one main window: its panes in one row or column, which of them is active, the status bar, and the commands on the
/// current document, which is that of the active pane.
///
/// Panes are a flat list. A document may be in several of them, and then has one editor in each; it leaves the store when its last tab
/// in this window closes. There is always a pane, and every pane has a tab. Main thread only.
class WorkspaceViewController final : public FileDropView,
                                      public Responder,
                                      private PaneViewControllerDelegate,
                                      private StatusBarViewDelegate,
                                      private VimCommandHost {
    Q_OBJECT

public:
    using Completion = std::function<void(bool isDone)>;

    /// No panes yet. `host` must outlive the workspace.
    WorkspaceViewController(const WorkspaceServices &services, WorkspaceHost &host, QWidget *parent = nullptr);
    ~WorkspaceViewController() override;

    [[nodiscard]] const std::vector<PaneViewController *> &panes() const { return m_panes; }
    [[nodiscard]] PaneViewController *activePane() const { return m_activePane; }
    [[nodiscard]] StatusBarView &statusBar() { return *m_statusBar; }
    [[nodiscard]] TextDocument *currentDocument() const { return m_activePane ? m_activePane->currentDocument() : nullptr; }
    [[nodiscard]] EditorViewController *currentEditor() const { return m_activePane ? m_activePane->currentEditor() : nullptr; }
    /// Those of all panes in order, each once.
    [[nodiscard]] PaneViewController::Documents documents() const;
    [[nodiscard]] Qt::Orientation orientation() const;

    /// Opens files into tabs of the active pane. One that is open somewhere is only shown. Of those that cannot be read the first is
    /// told about, when the others are open. A window's only, empty tab goes.
    void open(const QStringList &paths);
    /// Shows a document that exists already.
    void adopt(TextDocument &document);
    TextDocument &openUntitled();
    /// Shows a document that has a tab here at a place: line and column (UTF-16 units) from 1, a column of 0 for none. Beyond the end it
    /// is the end.
    void goTo(TextDocument &document, qsizetype line, qsizetype column);
    PaneViewController &addPane(const PaneViewController::Documents &documents, int selectedIndex);
    void setActivePane(PaneViewController &pane);
    void removePane(PaneViewController &pane);
    void focusPaneShowing(const TextDocument &document);
    void focusEditor();

    [[nodiscard]] WindowLayout windowLayout() const;
    /// Of a window that has no panes yet.
    void setWindowLayout(const WindowLayout &layout);
    /// Notes in the documents where the user is: of one in several panes, where that was last.
    void rememberPlaces();

    /// Gets true when the text was written.
    void save(TextDocument &document, const Completion &completion);
    void saveAs(TextDocument &document, const Completion &completion);
    /// Gets true when the tab may close.
    void confirmClose(TextDocument &document, const Completion &completion);

    /// What was typed behind ":" in modal editing.
    void runVimCommand(const QString &command);

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

signals:
    /// Title, file or dirty mark of the current document may be others.
    void currentDocumentChanged();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    // Panes and tabs
    [[nodiscard]] std::shared_ptr<TextDocument> placeholder() const;
    void removePlaceholder(const TextDocument &document);
    [[nodiscard]] PaneViewController &targetPane();
    [[nodiscard]] PaneViewController *paneShowing(const TextDocument &document) const;
    [[nodiscard]] qsizetype indexOf(const PaneViewController &pane) const;
    PaneViewController &place(TextDocument &document);
    /// In any window but for `except`, which may be null.
    [[nodiscard]] bool isShownBeside(const PaneViewController *except, const TextDocument &document) const;
    void removeFromAllPanes(const TextDocument &document);
    void redistributePanes();
    void limitPanes();
    void makeSplit(Qt::Orientation orientation);
    void setOrientation(Qt::Orientation orientation);
    void focusPane(int step);
    void updateStatusBar();
    void updateState();
    void applyTheme();

    void dropDocumentsThatCannotBeRead();

    // Commands
    void newDocument() { openUntitled(); }
    void openDocument();
    void saveDocument() override;
    void saveDocumentAs();
    void revertDocumentToSaved();
    void makeBackup();
    void openInTerminal();
    void moveDocumentToTrash();
    void revealInFinder();
    void copyFilePath();
    void showFindInterface();
    void compareWithFileOnDisk();
    void compareWithFile();
    void compareWithOpenDocument(const ActionSender &sender);
    void compare(DiffViewController::Side left);
    void closeTab() override;
    void selectNextTab();
    void selectPreviousTab();
    void selectTabByNumber(const ActionSender &sender);
    void moveTabToNewWindow();
    void splitEditorRight() override { makeSplit(Qt::Horizontal); }
    void splitEditorDown() override { makeSplit(Qt::Vertical); }
    void closeSplit();
    void closeOtherSplits() override;
    void focusNextPane() { focusPane(1); }
    void focusPreviousPane() { focusPane(-1); }
    void toggleSplitOrientation();
    void closeWindowFromVim() override { window()->close(); }
    void goToLine();
    void showVimKeyReference();
    void showUserGuide();
    void showGenerated(const QString &title, const QString &text);
    void selectLanguageFromMenu(const ActionSender &sender);
    void selectTheme(const ActionSender &sender);
    template<const Setting<bool> &setting>
    void toggle();
    void increaseFontSize() { changeFontSize(1); }
    void decreaseFontSize() { changeFontSize(-1); }
    void resetFontSize();
    void changeFontSize(int steps);

    // Ex commands
    void showVimMessage(const QString &message) override;
    void scrollToLine(qsizetype number) override;
    void substitute(const VimSubstitution &substitution) override;
    void saveAndClose() override;
    void finishWaiting();
    void abortWaiting();
    void forceCloseCurrentTab() override;
    void editFile(const QString &name) override;
    void revertWithoutAsking();

    // Enabling
    [[nodiscard]] bool hasDocument() const { return currentDocument() != nullptr; }
    [[nodiscard]] bool hasFile() const;
    [[nodiscard]] bool canRevert() const;
    [[nodiscard]] bool hasEditor() const { return currentEditor() != nullptr; }
    [[nodiscard]] bool hasSeveralPanes() const { return m_panes.size() > 1; }
    [[nodiscard]] bool hasSeveralTabs() const;
    [[nodiscard]] bool hasSeveralTabsInAll() const;
    [[nodiscard]] bool hasSeveralDocuments() const;
    template<const Setting<bool> &setting>
    [[nodiscard]] ActionState stateOf() const;
    /// Of an action that turns a setting on and off.
    template<const Setting<bool> &setting>
    [[nodiscard]] static constexpr ActionRow toggleRow(const Action &toggled);
    [[nodiscard]] ActionState themeState(const ActionSender &sender) const;
    [[nodiscard]] ActionState languageState(const ActionSender &sender) const;

    void presentError(const QString &description, const QString &recoverySuggestion = {});
    void presentError(const TextFile::ReadError &error);
    void present(const Alert &alert, std::function<void(int button)> completion);
    void trash(TextDocument &document);
    void chooseLanguage(const Language &language);
    [[nodiscard]] QString panelFolder() const;
    void rememberPanelFolder(const QString &path);
    void beep();

    void paneDidBecomeActive(PaneViewController &pane) override;
    void paneDidChangeState(PaneViewController &pane) override;
    void paneRequestsNewDocument(PaneViewController &pane) override;
    void paneDidDropFiles(PaneViewController &pane, const QStringList &paths) override;
    void paneRequestsClose(PaneViewController &pane, TextDocument &document, CloseCompletion completion) override;
    void paneRunsVimCommand(PaneViewController & /*pane*/, const QString &command) override { runVimCommand(command); }
    void paneDidBecomeEmpty(PaneViewController &pane) override;

    void statusBarDidChooseLanguage(const Language &language) override;
    void statusBarDidChooseEncoding(TextEncoding encoding) override;
    void statusBarDidChooseLineEnding(int index) override;
    void statusBarDidChooseIndentation(Indentation indentation) override;
    void statusBarDidClickPosition() override;

    using CloseCompletion = PaneViewControllerDelegate::CloseCompletion;

    WorkspaceServices m_services;
    WorkspaceHost &m_host;
    PaneSplitter *m_splitView;
    StatusBarView *m_statusBar;
    std::vector<PaneViewController *> m_panes;
    PaneViewController *m_activePane = nullptr;
    /// The panes have got their equal shares of the window.
    bool m_isSharedOut = false;
    std::unique_ptr<SubstitutionRunner> m_substitutions;
    std::vector<NotificationCenter::Token> m_observers;
};
