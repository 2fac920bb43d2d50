// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/PendingWrites.h"
#include "UI/WorkspaceViewController.h"
#include "View/FirstResponder.h"

#include <QMainWindow>

class EditorToolbarController;

/// One main window: its title, its toolbar, its closing. Never loses text without asking.
class MainWindowController final : public QMainWindow, public Responder {
    Q_OBJECT

public:
    /// `layouts` has those of all windows. It is to be given a tab before the event loop goes on.
    MainWindowController(const WorkspaceServices &services, PaneLayouts &layouts);
    ~MainWindowController() override;

    [[nodiscard]] WorkspaceViewController &workspace() { return *m_workspace; }
    [[nodiscard]] EditorToolbarController &toolbar() { return *m_toolbar; }
    [[nodiscard]] FirstResponder &firstResponder() { return m_firstResponder; }

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

    /// Shows it before all others, also when it is minimised.
    void comeToFront();

signals:
    /// It is closed, and nobody will see it again.
    void closed();
    /// It stays: the user kept it open when asked, or something failed that it waited for.
    void closingRefused();

protected:
    void closeEvent(QCloseEvent *event) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    [[nodiscard]] PaneLayout::Documents unsavedDocuments() const;
    void updateTitle();
    void restoreFrame();
    void performClose() { close(); }
    void performMiniaturize() { showMinimized(); }
    void performZoom();
    void toggleFullScreen();
    /// F6: from the text to a banner above it, the tabs, the status bar and the toolbar, and round again.
    void focusNextRegion(int step);
    /// F10, as in other programs.
    void openFirstMenu();
    [[nodiscard]] std::vector<QWidget *> regions() const;

    [[nodiscard]] QWidget *mainFocus() const;

    WorkspaceServices m_services;
    FirstResponder m_firstResponder;
    WorkspaceViewController *m_workspace;
    EditorToolbarController *m_toolbar;
    /// `asked` while the user is to answer.
    enum class Closing { notAsked, asked, allowed, done };
    Closing m_closing = Closing::notAsked;
    PendingWrites m_writes{m_services.presenter};
};
