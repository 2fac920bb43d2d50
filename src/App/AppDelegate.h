// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "App/CommandLine.h"
#include "Base/BackgroundTask.h"
#include "Diff/DiffWindowController.h"
#include "Session/SessionKeeper.h"
#include "UI/MainWindowController.h"

#include <QPointer>

#include <memory>

struct MenuSources;
struct OpenRequest;

class SettingsWindowController;

/// The life of the process: its windows, the files handed to it, its end, and the commands that concern no window. Main thread only.
class AppDelegate final : public QObject, public Responder, private SessionWindows {
    Q_OBJECT

public:
    explicit AppDelegate(const WorkspaceServices &services);
    ~AppDelegate() override;

    using Documents = PaneLayout::Documents;

    /// Shows the first window, with the session if the settings say so, and opens the files in it; absolute paths. Returns their documents,
    /// as WorkspaceViewController::open does.
    Documents launch(const QStringList &paths);
    /// Shows two files side by side, and no other window; the program ends with the comparison. Absolute paths.
    void compare(const QString &oldPath, const QString &newPath);
    /// What another start or the desktop asks for; the window comes to the front.
    void open(const OpenRequest &request);
    /// What is left of it when its files are open, as `documents`: their places, the stream, problems, those who wait.
    void handle(const OpenRequest &request, const Documents &documents);
    /// Somebody who waited will not be notified: what it waited for is an ordinary text again. See OpenRequest.
    void forgetWaiter(const QString &waiter);
    /// Says in the window in front that the program has all rights, which it does not need; once for each user who has them.
    void remarkOnRoot();
    /// Ends the program. The session is kept, with all unsaved text; where it cannot be, the windows close one after the other and each
    /// asks about its texts. One that is left open ends it.
    void terminate();
    /// Ends the program within a second, without a question.
    void terminateNow();
    /// Files from outside, for the window in front; with none a window comes to the front. Returns their documents.
    Documents open(const QStringList &paths, TextDocument::MissingFile missingFile = TextDocument::MissingFile::isError);

    /// With one empty untitled tab.
    [[nodiscard]] MainWindowController &makeWindow();
    /// In the order in which they came.
    [[nodiscard]] const std::vector<MainWindowController *> &windows() const { return m_windows; }
    /// The active one, else the one that was last, else the first; null when there is none.
    [[nodiscard]] MainWindowController *frontmostWindow() const;
    [[nodiscard]] const std::vector<DiffWindowController *> &comparisons() const { return m_comparisons; }

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;
    [[nodiscard]] Responder *nextResponder() const override { return nullptr; }

signals:
    /// An action of a window is about to be carried out, whoever takes it; for tools that watch.
    void actionChosen(const Action &action);
    /// The program is to end. Windows may still be there.
    void finished();

protected:
    void willPerform(const Action &action) override { emit actionChosen(action); }

private:
    /// What somebody waits for.
    struct Waiting {
        QString waiter;
        std::function<void(int status)> closed;
        std::vector<std::shared_ptr<TextDocument>> documents = {};
        int status = 0;
    };

    [[nodiscard]] MainWindowController &addWindow();
    /// A new one where there is none.
    [[nodiscard]] MainWindowController &windowInFront();
    void newWindow();
    void closeNext();
    void goTo(TextDocument &document, const CommandLine::File &place);
    /// Opens what comes on a descriptor, once it has ended, as a text without a file. Closes it.
    void openStream(int descriptor, const Waiting &waiting);
    void showComparison(const QString &oldPath, const Rope &old, const QString &newPath, const Rope &newer);
    void notifyWhenClosed(Waiting waiting);
    void noticeClosed();
    void warn(const QString &message, const QString &details);
    void showAbout();
    void showSettings();
    void showUserGuide();
    void showVimKeyReference();
    void showInWindow(const Action &reference);
    void rememberActiveWindow();
    void showShortcuts();
    void showVimKeyOverview();
    void revealSupportFolder();
    void openRecentDocument(const ActionSender &sender);
    void clearRecentDocuments();
    [[nodiscard]] bool hasRecentDocuments() const;
    void windowClosed(MainWindowController &window);
    void dismissSaved();
    void inform(const QString &message, const QString &details);

    [[nodiscard]] MenuSources menuSources() const;

    /// A new one, which is shown.
    [[nodiscard]] WorkspaceViewController &openWindow();
    /// Both texts side by side, with the colours of `language`.
    void openComparison(const DiffViewController::Side &left, const DiffViewController::Side &right, const Language &language);
    [[nodiscard]] std::vector<WorkspaceViewController *> workspaces() const;

    void rememberPlaces() override;
    [[nodiscard]] std::vector<WindowLayout> layouts() const override;
    [[nodiscard]] size_t frontmostLayout() const override;
    void showBehind(TextDocument &document) override;

    WorkspaceServices m_services;
    PaneLayouts m_layouts;
    std::vector<MainWindowController *> m_windows;
    /// Those that are open.
    std::vector<DiffWindowController *> m_comparisons;
    QPointer<MainWindowController> m_lastActive;
    /// Made when it is shown first.
    std::unique_ptr<SettingsWindowController> m_settings;
    std::vector<BackgroundTask> m_readings;
    std::vector<Waiting> m_waiting;
    /// Texts of closed windows, which were not saved then.
    std::vector<std::weak_ptr<TextDocument>> m_leftBehind;
    NotificationCenter::Token m_documentObserver;
    NotificationCenter::Token m_savedObserver;
    bool m_isTerminating = false;
    PendingWrites m_writes{m_services.presenter};
    DelayedTask m_warning;
    NotificationCenter::Token m_languageObserver;
    NotificationCenter::Token m_keyboardObserver;
};
