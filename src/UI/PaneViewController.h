// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Model/PaneLayout.h"
#include "UI/TabBarView.h"
#include "UI/TabDetails.h"
#include "UI/WorkspaceServices.h"

#include <memory>
#include <unordered_map>
#include <vector>

/// One column or row of a window: a strip of tabs and below it the editor of the selected one. It shows a pane of the window's layout and
/// changes nothing in it. An editor is made when its tab is shown first and kept until the tab closes. Main thread only.
class PaneViewController final : public QWidget, public Responder {
    Q_OBJECT

public:
    /// `id` as in the layout.
    PaneViewController(const WorkspaceServices &services, int id, QWidget *parent = nullptr);
    ~PaneViewController() override;

    /// With the keyboard in the text that goes, it is in the one that comes.
    void setContent(const PaneLayout::Pane &pane);
    /// Shows the tabs as their documents are now.
    void refreshTabs();
    /// What stands beside the titles of its tabs.
    void setTabDetails(const TabDetails &details);
    [[nodiscard]] int id() const { return m_content.id; }
    /// The tabs, left to right.
    [[nodiscard]] const PaneLayout::Documents &documents() const { return m_content.tabs; }
    [[nodiscard]] int selectedIndex() const { return m_content.selected; }
    [[nodiscard]] EditorViewController *currentEditor() const { return m_currentEditor; }
    [[nodiscard]] TabBarView &tabBar() { return *m_tabBar; }

    [[nodiscard]] bool isActive() const { return m_isActive; }
    void setActive(bool isActive);
    void focusEditor();
    /// Has the current document remember where the user is in it.
    void saveViewState();

signals:
    /// One of its texts got the focus or was clicked.
    void activated();
    /// The selection in its text or the state of one of its documents is another.
    void stateChanged();
    /// What one of its texts has of words and characters is known, or other than before.
    void countsChanged();
    /// Something to be said for so long.
    void messageShown(const QString &message, Scheduler::Milliseconds duration);
    /// Absolute paths of files that exist.
    void filesDropped(const QStringList &paths);

private:
    void applyTheme();
    [[nodiscard]] bool editorHasFocus() const;
    void showEditor(TextDocument &document);
    [[nodiscard]] EditorViewController *makeEditor(TextDocument &document);
    void dropEditorsOfClosedTabs();

    WorkspaceServices m_services;
    PaneLayout::Pane m_content;
    TabDetails m_tabDetails;
    bool m_isActive = false;
    TabBarView *m_tabBar;
    QWidget *m_container;
    std::unordered_map<const TextDocument *, EditorViewController *> m_editors;
    EditorViewController *m_currentEditor = nullptr;
    std::vector<NotificationCenter::Token> m_observers;
};
