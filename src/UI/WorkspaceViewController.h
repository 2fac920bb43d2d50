// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/DocumentStore.h"
#include "Text/LineNumber.h"
#include "UI/DocumentActions.h"
#include "UI/PaneViewController.h"
#include "UI/PrintActions.h"
#include "UI/StatusBarView.h"
#include "UI/TabActions.h"
#include "UI/TypedDestinations.h"
#include "Widgets/FileDropView.h"

class MissingCharactersPanel;
class PaneSplitter;
struct ClosedPlace;
struct WindowLayout;
template<typename T>
struct Setting;

/// The content of one main window: its panes in one row or column, which of them is active, the status bar, and the commands on the
/// current document, which is that of the active pane.
///
/// It shows a PaneLayout: whatever concerns panes and tabs is an operation on that, whose result is shown. A document leaves the store when
/// its last tab closes. Main thread only.
class WorkspaceViewController final : public FileDropView, public Responder {
    Q_OBJECT

public:
    /// No panes yet. `layouts`, which are those of all windows, must outlive the workspace or its retirement.
    WorkspaceViewController(const WorkspaceServices &services, PaneLayouts &layouts, QWidget *parent = nullptr);
    ~WorkspaceViewController() override;

    [[nodiscard]] const PaneLayout &paneLayout() const { return m_layout; }
    /// Panes that go give the keyboard to the active one.
    void setPaneLayout(PaneLayout layout);
    /// Those of the layout, in its order.
    [[nodiscard]] const std::vector<PaneViewController *> &panes() const { return m_panes; }
    /// Null when there are no panes.
    [[nodiscard]] PaneViewController *activePane() const;
    [[nodiscard]] StatusBarView &statusBar() { return *m_statusBar; }
    [[nodiscard]] DocumentActions &documentActions() { return m_documentActions; }
    [[nodiscard]] PrintActions &printActions() { return m_printActions; }
    [[nodiscard]] TextDocument *currentDocument() const { return m_layout.current().get(); }
    [[nodiscard]] EditorViewController *currentEditor() const;

    /// Opens files into tabs of the active pane. One that is open somewhere is only shown. Of those that cannot be read the first is
    /// told about, when the others are open. A window's only, empty tab goes. Returns the documents of the paths, null for what cannot be
    /// read; files that are not there soon have tabs that wait, or go when it turns out that they cannot be read.
    using MissingFile = TextDocument::MissingFile;
    PaneLayout::Documents open(const QStringList &paths, MissingFile missingFile = MissingFile::isError)
    {
        return openWithin(m_services.documents.services().timeout, paths, missingFile);
    }
    PaneLayout::Documents openWithin(std::chrono::milliseconds timeout, const QStringList &paths, MissingFile missingFile);
    /// Shows a document that exists already.
    void adopt(TextDocument &document);
    /// In the tab that it has, or in a new one.
    void showDocument(TextDocument &document);
    /// Of the active pane.
    void selectTab(int tab);
    TextDocument &openUntitled();
    /// Shows a document that has a tab here at a place: line and column (UTF-16 units from 1), a column of 0 for none. Beyond the end it
    /// is the end.
    void goTo(TextDocument &document, LineNumber line, qsizetype column);
    void focusPaneShowing(const TextDocument &document);
    void focusEditor();

    [[nodiscard]] WindowLayout windowLayout() const;
    /// Of a window that has no panes yet.
    void setWindowLayout(const WindowLayout &layout);
    /// Notes in the documents where the user is: of one in several panes, where that was last.
    void rememberPlaces();
    /// Closes a tab without asking. The document leaves the store when nobody else shows it.
    void takeTab(int pane, const TextDocument &document);
    /// What of the window's is about to be closed can be opened again.
    void noteClosed(const TextDocument &document);
    void showReopened(TextDocument &document, const ClosedPlace &place);
    /// In any window, but for that pane of this one.
    [[nodiscard]] bool isShownBeside(int pane, const TextDocument &document) const;

    /// Its window is closed: what becomes of documents is of no concern to it any more.
    void retire();

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

signals:
    /// Title, file or dirty mark of the current document may be others.
    void currentDocumentChanged();
    /// The document has left its tab for a window of its own.
    void tabDetached(TextDocument &document);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    // Panes and tabs
    [[nodiscard]] std::shared_ptr<TextDocument> placeholder() const;
    void removePlaceholder(const std::shared_ptr<TextDocument> &placeholder);
    [[nodiscard]] PaneViewController *makePane(int id);
    [[nodiscard]] int indexOf(const PaneViewController &pane) const { return m_layout.paneWithId(pane.id()); }
    void activate(const PaneViewController &pane) { setPaneLayout(m_layout.activating(indexOf(pane))); }
    [[nodiscard]] PaneLayout::Selected keptSelection() const;
    void takeTabs(const TextDocument &document);
    void redistributePanes();
    void limitPanes();
    void makeSplit(Qt::Orientation orientation, const ActionSender &sender);
    void focusPane(int step);
    /// Where there is none of that index nothing happens.
    void focusPaneAt(int index);
    void updateStatusBar();
    void updateState();
    void updateTabDetails();
    void updateTabDetailsSoon();
    void applyTheme();

    void dropDocumentsThatCannotBeRead();
    void reportWhenArrived(TextDocument &document);
    void noteOpened(const PaneLayout::Documents &documents);
    void presentError(const TextFile::ReadError &error);

    // Commands
    void newDocument() { openUntitled(); }
    void showFindInterface();
    void selectNextTab();
    void selectPreviousTab();
    void selectTabByNumber(const ActionSender &sender);
    void moveTabToNewWindow(const ActionSender &sender);
    void splitEditorRight(const ActionSender &sender) { makeSplit(Qt::Horizontal, sender); }
    void splitEditorDown(const ActionSender &sender) { makeSplit(Qt::Vertical, sender); }
    void closeSplit();
    void closeOtherSplits();
    void focusNextPane() { focusPane(1); }
    void focusPreviousPane() { focusPane(-1); }
    /// That side by side, or one above the other; at the edge nothing happens.
    template<Qt::Orientation orientation, int step>
    void focusNeighbour()
    {
        if (m_layout.orientation() == orientation) {
            focusPaneAt(m_layout.activeIndex() + step);
        }
    }
    void focusLastPane() { focusPaneAt(m_layout.paneWithId(m_lastPane)); }
    void toggleSplitOrientation();
    void goToLine();
    void listMissingCharacters();
    void selectTheme(const ActionSender &sender);
    template<const Setting<bool> &setting>
    void toggle();
    void increaseFontSize() { changeFontSize(1); }
    void decreaseFontSize() { changeFontSize(-1); }
    void resetFontSize();
    void changeFontSize(int steps);

    // Enabling
    [[nodiscard]] bool hasEditor() const { return currentEditor() != nullptr; }
    [[nodiscard]] bool hasMissingCharacters() const;
    [[nodiscard]] bool hasSeveralPanes() const { return m_layout.paneCount() > 1; }
    [[nodiscard]] bool hasSeveralTabs() const { return !m_layout.isEmpty() && m_layout.active()->count() > 1; }
    [[nodiscard]] bool hasSeveralTabsInAll() const { return m_layout.tabCount() > 1; }
    template<const Setting<bool> &setting>
    [[nodiscard]] ActionState stateOf() const;
    /// Of an action that turns a setting on and off.
    template<const Setting<bool> &setting>
    [[nodiscard]] static constexpr ActionRow toggleRow(const Action &toggled);
    [[nodiscard]] ActionState themeState(const ActionSender &sender) const;

    void beep();

    void connectParts();
    void chooseIndentation(Indentation indentation);

    WorkspaceServices m_services;
    /// Null once it is retired; it may outlive them then.
    PaneLayouts *m_layouts;
    TabActions m_tabActions;
    DocumentActions m_documentActions;
    PrintActions m_printActions;
    TypedDestinations m_typedDestinations;
    PaneSplitter *m_splitView;
    StatusBarView *m_statusBar;
    PaneLayout m_layout;
    TabDetails m_tabDetails;
    DelayedTask m_detailsSoon;
    /// The widgets of its panes.
    std::vector<PaneViewController *> m_panes;
    /// The identifier of the pane that was active before the one that is.
    int m_lastPane = -1;
    /// Made when it is needed first.
    MissingCharactersPanel *m_missingCharacters = nullptr;
    /// The panes have got their equal shares of the window.
    bool m_isSharedOut = false;
    std::vector<NotificationCenter::Token> m_observers;
};
