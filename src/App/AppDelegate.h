// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "UI/MainWindowController.h"

#include <memory>

/// The life of the process: its windows, the files handed to it, its end, and the commands that concern no window. Main thread only.
class AppDelegate final : public QObject, public Responder, private WorkspaceHost {
    Q_OBJECT

public:
    explicit AppDelegate(const WorkspaceServices &services);
    ~AppDelegate() override;

    /// Shows the first window and opens the files in it; absolute paths.
    void launch(const QStringList &paths);
    /// Closes the windows one after the other, each of which asks about texts that are not saved. One that is kept ends it.
    void terminate();
    /// Whether quitting would have to ask.
    [[nodiscard]] bool hasUnsavedText() const;
    /// Files from outside, for the window in front; with none a window comes to the front.
    void open(const QStringList &paths);

    [[nodiscard]] MainWindowController &makeWindow(MainWindowController::Content content = MainWindowController::Content::untitledTab);
    /// In the order in which they came.
    [[nodiscard]] const std::vector<MainWindowController *> &windows() const { return m_windows; }
    /// The active one, else the first; null when there is none.
    [[nodiscard]] MainWindowController *frontmostWindow() const;

    [[nodiscard]] const ActionRow *actionFor(Selector selector) const override;
    [[nodiscard]] Responder *nextResponder() const override { return nullptr; }

signals:
    /// The last window has closed.
    void finished();

private:
    void newWindow();
    void closeNext();
    void showAbout();
    void showShortcuts();
    void revealSupportFolder();
    void windowClosed(MainWindowController &window);
    void inform(const QString &message, const QString &details);

    [[nodiscard]] WorkspaceViewController &openWindow() override;
    [[nodiscard]] std::vector<WorkspaceViewController *> workspaces() const override;
    [[nodiscard]] QString keyName(Selector action) const override;

    WorkspaceServices m_services;
    std::vector<MainWindowController *> m_windows;
    bool m_isTerminating = false;
    NotificationCenter::Token m_languageObserver;
};
