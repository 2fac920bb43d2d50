// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/TabBarView.h"
#include "UI/WorkspaceServices.h"

#include <memory>
#include <unordered_map>
#include <vector>

class PaneViewController;

/// What a pane asks of its workspace.
class PaneViewControllerDelegate {
public:
    /// Gets true when the tab may go.
    using CloseCompletion = std::function<void(bool mayClose)>;

    virtual void paneDidBecomeActive(PaneViewController &pane) = 0;
    /// Its selection, its tab or the state of its document is another.
    virtual void paneDidChangeState(PaneViewController &pane) = 0;
    virtual void paneRequestsNewDocument(PaneViewController &pane) = 0;
    virtual void paneDidDropFiles(PaneViewController &pane, const QStringList &paths) = 0;
    virtual void paneRequestsClose(PaneViewController &pane, TextDocument &document, CloseCompletion completion) = 0;
    /// What was entered in the command line of its editor.
    virtual void paneRunsVimCommand(PaneViewController &pane, const QString &command) = 0;
    /// The last tab went. May destroy the pane, later.
    virtual void paneDidBecomeEmpty(PaneViewController &pane) = 0;

protected:
    ~PaneViewControllerDelegate() = default;
};

/// One column or row of a window: a strip of tabs and below it the editor of the selected one. An editor is made when its tab is shown
/// first and kept until the tab closes. A document is in a pane once at most. Indexes beyond the tabs are ignored. Main thread only.
class PaneViewController final : public QWidget, public Responder, private EditorViewControllerDelegate, private TabBarViewDelegate {
    Q_OBJECT

public:
    using Documents = std::vector<std::shared_ptr<TextDocument>>;
    enum class Select { no, yes };

    /// `delegate` must outlive the pane.
    PaneViewController(const WorkspaceServices &services, PaneViewControllerDelegate &delegate, QWidget *parent = nullptr);
    ~PaneViewController() override;

    /// The tabs, left to right.
    [[nodiscard]] const Documents &documents() const { return m_documents; }
    [[nodiscard]] int count() const { return int(m_documents.size()); }
    [[nodiscard]] int selectedIndex() const { return m_selectedIndex; }
    [[nodiscard]] bool holds(const TextDocument &document) const { return indexOf(document) >= 0; }
    /// -1 when it is not here.
    [[nodiscard]] int indexOf(const TextDocument &document) const;
    /// Null when there are no tabs.
    [[nodiscard]] TextDocument *currentDocument() const;
    [[nodiscard]] EditorViewController *currentEditor() const { return m_currentEditor; }
    [[nodiscard]] TabBarView &tabBar() { return *m_tabBar; }

    [[nodiscard]] bool isActive() const { return m_isActive; }
    void setActive(bool isActive);

    /// At the end when there is no index; a document that is here already is only selected.
    void add(TextDocument &document, Select select, std::optional<int> index = {});
    /// At the end; none may be here already. Nothing is selected.
    void append(const Documents &documents);
    void selectDocument(int index);
    /// Takes the tab away; the document stays open elsewhere.
    void removeDocument(int index);
    void moveTab(int from, int to);
    void selectNextTab(int step);
    /// Asks first when there is unsaved text.
    void requestClose(int index);
    void closeCurrentTab() { requestClose(m_selectedIndex); }
    void focusEditor();
    void saveViewState();

private:
    void refreshTabs();
    void applyTheme();
    [[nodiscard]] bool editorHasFocus() const;
    void showEditor(TextDocument &document);
    void dropEditor(const TextDocument &document);

    void editorWantsFocus(EditorViewController &editor) override;
    void editorDidChangeSelection(EditorViewController &editor) override;
    void editorDidChangeIndentation(EditorViewController &editor) override { editorDidChangeSelection(editor); }
    void editorDidChangeVimState(EditorViewController &editor) override { editorDidChangeSelection(editor); }
    void editorRunsVimCommand(EditorViewController &editor, const QString &command) override;
    void editorDidDropFiles(EditorViewController &editor, const QStringList &paths) override;
    void tabBarDidSelectTab(TabBarView &bar, int index) override;
    void tabBarDidRequestClose(TabBarView &bar, int index) override;
    void tabBarDidRequestNewTab(TabBarView &bar) override;
    void tabBarDidMoveTab(TabBarView &bar, int from, int to) override;

    WorkspaceServices m_services;
    PaneViewControllerDelegate &m_delegate;
    Documents m_documents;
    int m_selectedIndex = 0;
    bool m_isActive = false;
    TabBarView *m_tabBar;
    QWidget *m_container;
    std::unordered_map<const TextDocument *, EditorViewController *> m_editors;
    EditorViewController *m_currentEditor = nullptr;
    std::vector<NotificationCenter::Token> m_observers;
};
