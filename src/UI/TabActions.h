// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/PendingWrites.h"
#include "UI/TabPlace.h"
#include "UI/WorkspaceServices.h"

class WorkspaceViewController;

/// Closing the tabs of a window, one or several, and bringing back what was closed. A link of the window's responder chain; commands are
/// about the current tab, or about the one that their menu item stands for. Main thread only.
class TabActions final : public QObject, public Responder {
    Q_OBJECT

public:
    /// The workspace has it and outlives it.
    TabActions(const WorkspaceServices &services, WorkspaceViewController &workspace);

    /// Asks first when there is unsaved text that nobody else shows. A place where there is no tab changes nothing.
    void requestClose(int pane, int tab);

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

private:
    using Documents = PaneLayout::Documents;

    /// What is to be closed of a pane, in order.
    struct Closing {
        /// Its id.
        int pane = 0;
        /// Texts that are asked about, one after the other.
        Documents asked = {};
        /// What goes in the end, without a question, unless one was answered by Cancel.
        Documents others = {};
        /// What is in front then; null for what comes by itself.
        PaneLayout::Document front = {};
    };

    void closeTab(const ActionSender &sender);
    void closeOtherTabs(const ActionSender &sender);
    void closeTabsToTheRight(const ActionSender &sender);
    void closeSavedTabs(const ActionSender &sender);
    void closeSeveral(int pane, const Documents &documents, const PaneLayout::Document &front);
    void goOn(Closing closing);
    void select(int pane, const TextDocument &document);
    void reopenClosedTab();
    void saveAndClose();
    void forceCloseTab();
    void finishWaiting();
    void abortWaiting();

    [[nodiscard]] bool hasTab(const ActionSender &sender) const { return tabOf(layout(), sender).exists(); }
    [[nodiscard]] bool hasOtherTabs(const ActionSender &sender) const;
    [[nodiscard]] bool hasTabsToTheRight(const ActionSender &sender) const;
    [[nodiscard]] bool hasSavedTabs(const ActionSender &sender) const;
    [[nodiscard]] bool hasClosedTabs() const;

    [[nodiscard]] const PaneLayout &layout() const;
    /// The pane of the tab that a command is about; null when that is gone.
    [[nodiscard]] const PaneLayout::Pane *paneOf(const ActionSender &sender) const;

    WorkspaceServices m_services;
    WorkspaceViewController &m_workspace;
    PendingWrites m_writes{m_services.presenter};
};
