// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/AppDelegate.h"

#include "App/MainMenu.h"
#include "App/RunningInstance.h"
#include "App/ShortcutOverview.h"
#include "App/StandardInput.h"
#include "Base/AtomicFile.h"
#include "Base/FilePath.h"
#include "Base/HomePath.h"
#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Commands/KeyboardChords.h"
#include "Desktop/Desktop.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentStore.h"
#include "Model/RecentDocuments.h"
#include "Session/ClosedTabs.h"
#include "Session/SessionRestoration.h"
#include "Session/SessionStore.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "UI/EditorToolbarController.h"
#include "UI/SettingsWindowController.h"
#include "Vim/VimChords.h"
#include "Vim/VimOptions.h"
#include "Widgets/AlertPresenter.h"

#include <QApplication>

#include <array>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using Problem = SessionStore::Problem::Kind;

/// What it is, and what that means for whom: the path, and the reason, stand in it.
struct ProblemWords {
    Problem kind;
    QStringView message;
    QStringView details;
};

constexpr auto problems = std::to_array<ProblemWords>({
    {Problem::drafts, u"Unsaved changes cannot be kept at the moment.",
     u"The folder “%@” cannot be written to: %@. Until that is fixed, only what you save is safe."},
    {Problem::session, u"The session cannot be kept at the moment.",
     u"“%@” cannot be written: %@. Until that is fixed, unsaved texts come back at the next start, but the tabs that are open do not."},
    {Problem::sharedFolder, u"No session is kept.",
     u"The folder “%@” belongs to another user, or other users may write to it. As long as that is so, nothing comes back at the next "
     u"start, "
     u"and Quillet asks about unsaved changes before it ends."},
});

constexpr Scheduler::Milliseconds flashDuration{5000};

const ProblemWords &wordsFor(Problem kind)
{
    return *std::ranges::find(problems, kind, &ProblemWords::kind);
}

Alert overviewOf(const Action &action, const std::vector<Alert::Group> &groups)
{
    return {.style = AlertStyle::informational, .messageText = localized(action.title), .groups = groups};
}

} // namespace

AppDelegate::AppDelegate(const WorkspaceServices &services) : m_services(services)
{
    const auto installMenus = [this] {
        for (MainWindowController *window : m_windows) {
            MainMenu::install(*window, window->firstResponder(), menuSources());
        }
    };
    m_languageObserver = m_services.notifications.observe(Localization::didChangeNotification, nullptr, installMenus);
    m_keyboardObserver = m_services.notifications.observe(KeyboardChords::didChangeNotification, nullptr, installMenus);
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &AppDelegate::rememberActiveWindow);
    m_documentObserver = m_services.notifications.observe(DocumentStore::didChange, nullptr, [this] { noticeClosed(); });
    m_savedObserver = m_services.notifications.observe(TextDocument::didChangeMetadata, nullptr, [this] {
        if (!m_leftBehind.empty()) {
            // The document that says so is still at work.
            QMetaObject::invokeMethod(this, &AppDelegate::dismissSaved, Qt::QueuedConnection);
        }
    });
    m_services.keeper.setWindows(this);
    m_services.session.onSetAside([this](const QString &folder) {
        warn(localized(u"The last session could not be read."),
             formatted(localized(m_services.session.isOwner()
                                     ? u"It was moved to “%@”, together with the texts that had not been saved."
                                     : u"It was left in “%@”, together with the texts that had not been saved. As long as it is there, no "
                                       u"session is kept."),
                       folder));
    });
    m_services.session.onProblem([this](const SessionStore::Problem &problem) {
        const auto &[kind, message, details] = wordsFor(problem.kind);
        warn(localized(message), formatted(localized(details), problem.path, qt_error_string(problem.error.code)));
    });
}

AppDelegate::~AppDelegate()
{
    // What is still open was saved or not.
    for (const Waiting &waiting : std::exchange(m_waiting, {})) {
        const bool isDirty = std::ranges::any_of(waiting.documents, [](const auto &document) { return document->hasUnsavedText(); });
        waiting.closed(isDirty ? 1 : waiting.status);
    }
    m_services.keeper.setWindows(nullptr);
    m_services.session.onSetAside({});
    m_services.session.onProblem({});
    for (DiffWindowController *window : std::exchange(m_comparisons, {})) {
        delete window;
    }
    while (!m_windows.empty()) {
        MainWindowController *window = m_windows.back();
        disconnect(window, nullptr, this, nullptr);
        delete window;
        m_windows.pop_back();
    }
}

const ActionRow *AppDelegate::actionFor(const Action &wanted) const
{
    using Self = AppDelegate;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::newWindow>(Actions::newWindow),
        action<&Self::terminate>(Actions::terminate),
        action<&Self::showAbout>(Actions::showAbout),
        action<&Self::showSettings>(Actions::showSettings),
        action<&Self::showUserGuide>(Actions::showUserGuide),
        action<&Self::showVimKeyReference>(Actions::showVimKeyReference),
        action<&Self::showShortcuts>(Actions::showShortcuts),
        action<&Self::showVimKeyOverview>(Actions::showVimKeyOverview),
        action<&Self::revealSupportFolder>(Actions::revealSupportFolder),
        action<&Self::openRecentDocument>(Actions::openRecentDocument),
        action<&Self::clearRecentDocuments, &Self::hasRecentDocuments>(Actions::clearRecentDocuments),
    });
    return findAction(rows, wanted);
}

// Windows

MainWindowController &AppDelegate::addWindow()
{
    auto *window = new MainWindowController(m_services, m_layouts);
    window->setNextResponder(this);
    MainMenu::install(*window, window->firstResponder(), menuSources());
    window->toolbar().setMenuFiller(
        [this, window](QMenu &menu) { MainMenu::populateCompareMenu(menu, *window, window->firstResponder(), menuSources()); });
    m_windows.push_back(window);
    WorkspaceViewController &workspace = window->workspace();
    connect(&workspace.documentActions(), &DocumentActions::comparisonRequested, this, &AppDelegate::openComparison);
    connect(&workspace, &WorkspaceViewController::tabDetached, this, [this](TextDocument &document) {
        WorkspaceViewController &other = openWindow();
        other.adopt(document);
        other.window()->raise();
        other.window()->activateWindow();
    });
    connect(window, &MainWindowController::closed, this, [this, window] { windowClosed(*window); });
    connect(window, &MainWindowController::closingRefused, this, [this] { m_isTerminating = false; });
    return *window;
}

MainWindowController &AppDelegate::makeWindow()
{
    MainWindowController &window = addWindow();
    window.workspace().openUntitled();
    return window;
}

MainWindowController &AppDelegate::windowInFront()
{
    MainWindowController *front = frontmostWindow();
    return front ? *front : makeWindow();
}

MenuSources AppDelegate::menuSources() const
{
    const auto otherDocuments = [this](QMainWindow &window) {
        const auto *current = static_cast<MainWindowController &>(window).workspace().currentDocument();
        std::vector<MenuSources::Document> others;
        for (const auto &document : m_services.documents.documents()) {
            if (document.get() != current) {
                others.push_back({document->displayName(), document->id().toString(), document->path()});
            }
        }
        return others;
    };
    return {m_services.recent, otherDocuments};
}

void AppDelegate::windowClosed(MainWindowController &window)
{
    // The session is that of a window that is there, or was the last.
    window.workspace().rememberPlaces();
    if (m_windows.size() == 1) {
        m_services.keeper.keep();
    }
    std::erase(m_windows, &window);
    window.workspace().retire();
    const bool isKept = m_services.session.keepsUnsavedText();
    // What nobody shows any more goes, but for texts that were not saved: the next start brings those back, or opening the file again.
    for (const auto &document : window.workspace().paneLayout().documents()) {
        const bool isShown = m_layouts.countOf(*document) > 0;
        const bool isWanted = document->hasUnsavedText() && (isKept || !document->isUntitled());
        if (!isShown && !isWanted) {
            if (!m_windows.empty()) {
                window.workspace().noteClosed(*document);
            }
            m_services.documents.remove(*document);
        } else if (!isShown) {
            m_leftBehind.push_back(document);
        }
    }
    window.deleteLater();
    if (m_windows.empty()) {
        if (!m_services.session.isOwner()) {
            // The user was asked about every text.
            std::ranges::for_each(m_services.documents.documents(),
                                  [this](const auto &document) { m_services.session.discardDraft(document->id()); });
        }
        m_services.session.waitUntilWritten(SessionKeeper::userPatience);
        emit finished();
        return;
    }
    m_services.keeper.keep();
    if (m_isTerminating) {
        closeNext();
    }
}

/// What has come into its file since, by others or by itself, goes like any text that nobody shows.
void AppDelegate::dismissSaved()
{
    std::erase_if(m_leftBehind, [this](const std::weak_ptr<TextDocument> &each) {
        const auto document = each.lock();
        const bool isShown = document && m_layouts.countOf(*document) > 0;
        const bool isSaved = document && !document->hasUnsavedText();
        if (isSaved && !isShown) {
            m_services.documents.remove(*document);
        }
        return !document || isShown || isSaved;
    });
}

MainWindowController *AppDelegate::frontmostWindow() const
{
    const auto active = std::ranges::find_if(m_windows, [](const MainWindowController *window) { return window->isActiveWindow(); });
    if (active != m_windows.end()) {
        return *active;
    }
    if (std::ranges::find(m_windows, m_lastActive.data()) != m_windows.end()) {
        return m_lastActive;
    }
    return m_windows.empty() ? nullptr : m_windows.front();
}

/// For commands that come from a window beside them, or from outside.
void AppDelegate::rememberActiveWindow()
{
    const auto active = std::ranges::find_if(m_windows, [](const MainWindowController *window) { return window->isActiveWindow(); });
    if (active != m_windows.end()) {
        m_lastActive = *active;
    }
}

void AppDelegate::openComparison(const DiffViewController::Side &left, const DiffViewController::Side &right, const Language &language)
{
    auto *window = new DiffWindowController(m_services, left, right, language);
    window->setNextResponder(this);
    MainMenu::installKeys(*window, window->firstResponder());
    m_comparisons.push_back(window);
    connect(window, &DiffWindowController::closed, this, [this, window] {
        std::erase(m_comparisons, window);
        window->deleteLater();
        if (m_windows.empty() && m_comparisons.empty()) {
            emit finished();
        }
    });
    window->comeToFront();
}

WorkspaceViewController &AppDelegate::openWindow()
{
    MainWindowController &window = makeWindow();
    window.show();
    return window.workspace();
}

std::vector<WorkspaceViewController *> AppDelegate::workspaces() const
{
    std::vector<WorkspaceViewController *> all;
    for (MainWindowController *window : m_windows) {
        all.push_back(&window->workspace());
    }
    return all;
}

void AppDelegate::rememberPlaces()
{
    std::ranges::for_each(workspaces(), &WorkspaceViewController::rememberPlaces);
    if (MainWindowController *front = frontmostWindow()) {
        front->workspace().rememberPlaces();
    }
}

std::vector<WindowLayout> AppDelegate::layouts() const
{
    std::vector<WindowLayout> layouts;
    std::ranges::transform(workspaces(), std::back_inserter(layouts), &WorkspaceViewController::windowLayout);
    return layouts;
}

size_t AppDelegate::frontmostLayout() const
{
    return size_t(std::ranges::find(m_windows, frontmostWindow()) - m_windows.begin());
}

void AppDelegate::showBehind(TextDocument &document)
{
    MainWindowController *front = frontmostWindow();
    if (!front) {
        return;
    }
    WorkspaceViewController &workspace = front->workspace();
    const PaneLayout &layout = workspace.paneLayout();
    const auto tab = document.shared_from_this();
    workspace.setPaneLayout(layout.isEmpty() ? layout.adding(tab) : layout.appending({tab}));
    workspace.statusBar().flash(formatted(localized(u"“%@” is in a tab of its own."), document.displayName()), flashDuration);
}

// Files

AppDelegate::Documents AppDelegate::launch(const QStringList &paths)
{
    const Preferences &preferences = m_services.preferences;
    MainWindowController &window = addWindow();
    WorkspaceViewController &workspace = window.workspace();
    if (paths.isEmpty() || preferences.value(Settings::restoreSessionWhenOpeningFiles)) {
        if (const auto layout = m_services.keeper.restore()) {
            workspace.setWindowLayout(*layout);
        }
    }
    // An untitled text that the files replace at once would be made, laid out and thrown away.
    if (paths.isEmpty() && !workspace.currentDocument()) {
        workspace.openUntitled();
    }
    window.show();
    const Documents opened = workspace.openWithin(restorationTimeout, paths, TextDocument::MissingFile::isMade);
    if (!workspace.currentDocument()) {
        workspace.openUntitled();
    }
    if (m_services.session.isHeldByOther() && preferences.value(Settings::restoreSession)) {
        inform(localized(u"Quillet is running already."),
               localized(
                   u"The other one keeps the session. This one works as well, but its tabs do not come back at the next start, and it "
                   u"asks about unsaved changes before it ends. If it cannot ask, unsaved texts come back when no other one is running."));
    }
    return opened;
}

void AppDelegate::compare(const QString &oldPath, const QString &newPath)
{
    using Read = TextFile::ReadResult;
    m_readings.push_back(BackgroundTask::start(
        m_services.workers,
        [oldPath, newPath, &files = m_services.documents.services().files](const std::stop_token &) {
            return std::pair(TextFile::read(oldPath, std::nullopt, files), TextFile::read(newPath, std::nullopt, files));
        },
        [this, oldPath, newPath](const std::pair<Read, Read> &read) {
            if (read.first && read.second) {
                showComparison(oldPath, read.first->text, newPath, read.second->text);
                return;
            }
            const TextFile::ReadError &error = read.first ? read.second.error() : read.first.error();
            m_services.presenter.present(Alert::forError(error.description(), error.recoverySuggestion().value_or(QString())), nullptr,
                                         [this](const AlertReply &) { emit finished(); });
        }));
    std::ignore = m_readings.back().waitUntil(std::chrono::steady_clock::now() + restorationTimeout);
}

void AppDelegate::showComparison(const QString &oldPath, const Rope &old, const QString &newPath, const Rope &newer)
{
    const auto sideOf = [](const QString &path, const Rope &text) {
        const QFileInfo file(path);
        return DiffViewController::Side{shownPath(file.fileName()), shownPath(abbreviatedPath(file.path())), text};
    };
    constexpr qsizetype enoughOfALine = 512;
    const Rope start = newer.slice({0, std::min(newer.length(), enoughOfALine)});
    openComparison(sideOf(oldPath, old), sideOf(newPath, newer), LanguageRegistry::detect(newPath, start.toString().section(u'\n', 0, 0)));
}

/// As soon as its text is there.
void AppDelegate::goTo(TextDocument &document, const CommandLine::File &place)
{
    document.arrival().whenOver([this, &document, line = place.line.value_or(LineNumber::first), column = place.column] {
        if (MainWindowController *front = frontmostWindow()) {
            front->workspace().goTo(document.arrival().failure().twin ? *document.arrival().failure().twin : document, line, column);
        }
    });
}

void AppDelegate::open(const OpenRequest &request)
{
    if (!request.activationToken.isEmpty()) {
        // The toolkit takes it from there when the window asks to be active.
        qputenv("XDG_ACTIVATION_TOKEN", request.activationToken.toUtf8());
    }
    QStringList paths;
    for (const CommandLine::File &file : request.files) {
        paths << file.path;
    }
    using MissingFile = TextDocument::MissingFile;
    const MissingFile missingFile = request.mayNameNewFiles ? MissingFile::isMade : MissingFile::isError;
    if (request.opensNewWindow) {
        WorkspaceViewController &workspace = openWindow();
        workspace.window()->activateWindow();
        const Documents opened = workspace.open(paths, missingFile);
        m_lastActive = m_windows.back();
        handle(request, opened);
    } else {
        handle(request, open(paths, missingFile));
    }
}

void AppDelegate::handle(const OpenRequest &request, const Documents &documents)
{
    for (size_t index = 0; index < documents.size(); ++index) {
        if (documents[index] && request.files[index].line) {
            goTo(*documents[index], request.files[index]);
        }
    }
    Documents opened = documents;
    std::erase(opened, nullptr);
    MainWindowController *front = frontmostWindow();
    if (request.opensNewTab && front) {
        front->workspace().openUntitled();
    }
    if (!request.problems.isEmpty()) {
        m_services.presenter.present(Alert::forError(shownPath(request.problems.join(u'\n')), {}), front, {});
    }
    Waiting waiting{request.waiter, request.closed, opened};
    const bool waitsForStream = request.files.empty() && request.stream >= 0;
    if (request.stream >= 0) {
        openStream(request.stream, waitsForStream ? waiting : Waiting());
    }
    if (request.closed && !waitsForStream) {
        notifyWhenClosed(std::move(waiting));
    }
}

void AppDelegate::forgetWaiter(const QString &waiter)
{
    std::vector<std::shared_ptr<TextDocument>> freed;
    std::erase_if(m_waiting, [&](const Waiting &waiting) {
        const bool isMeant = waiting.waiter == waiter;
        if (isMeant) {
            freed.insert(freed.end(), waiting.documents.begin(), waiting.documents.end());
        }
        return isMeant;
    });
    for (const auto &document : freed) {
        const bool isStillAwaited = std::ranges::any_of(
            m_waiting, [&](const Waiting &waiting) { return std::ranges::find(waiting.documents, document) != waiting.documents.end(); });
        if (!isStillAwaited) {
            document->setAwaited(TextDocument::Awaited::no);
        }
    }
}

/// What could not be opened is not saved either.
void AppDelegate::notifyWhenClosed(Waiting waiting)
{
    if (waiting.documents.empty()) {
        waiting.closed(1);
    } else {
        std::ranges::for_each(waiting.documents, [](const auto &document) { document->setAwaited(TextDocument::Awaited::yes); });
        m_waiting.push_back(std::move(waiting));
    }
}

void AppDelegate::noticeClosed()
{
    const auto &open = m_services.documents.documents();
    for (Waiting &waiting : m_waiting) {
        for (auto &document : waiting.documents) {
            if (const auto twin = document->arrival().failure().twin) {
                document = twin;
                document->setAwaited(TextDocument::Awaited::yes);
            }
        }
        std::erase_if(waiting.documents, [&](const std::shared_ptr<TextDocument> &document) {
            const bool isOpen = std::ranges::find(open, document) != open.end();
            const bool isLost =
                document->hasUnsavedEdits() || document->arrival().failure().error || document->awaited() == TextDocument::Awaited::aborted;
            waiting.status = !isOpen && isLost ? 1 : waiting.status;
            return !isOpen;
        });
    }
    // Whoever is notified may begin to wait for something else.
    std::vector<Waiting> over;
    std::erase_if(m_waiting, [&over](Waiting &waiting) {
        const bool isOver = waiting.documents.empty();
        if (isOver) {
            over.push_back(std::move(waiting));
        }
        return isOver;
    });
    for (const Waiting &waiting : over) {
        waiting.closed(waiting.status);
    }
}

void AppDelegate::openStream(int descriptor, const Waiting &waiting)
{
    std::erase_if(m_readings, [](const BackgroundTask &reading) { return !reading.isPending(); });
    m_readings.push_back(BackgroundTask::start(
        m_services.workers,
        [descriptor](const std::stop_token &) {
            auto contents = readStream(descriptor);
            ::close(descriptor);
            return contents;
        },
        [this, waiting](const TextFile::ReadResult &contents) {
            MainWindowController &window = windowInFront();
            Waiting forThis = waiting;
            if (contents) {
                TextDocument &document =
                    m_services.documents.add(std::make_unique<TextDocument>(m_services.documents.services(), QString(), *contents));
                forThis.documents.push_back(document.shared_from_this());
                window.workspace().adopt(document);
            } else {
                m_services.presenter.present(
                    Alert::forError(contents.error().description(), contents.error().recoverySuggestion().value_or(QString())), &window,
                    {});
            }
            if (forThis.closed) {
                notifyWhenClosed(std::move(forThis));
            }
        }));
}

AppDelegate::Documents AppDelegate::open(const QStringList &paths, TextDocument::MissingFile missingFile)
{
    MainWindowController &window = windowInFront();
    window.comeToFront();
    return paths.isEmpty() ? Documents() : window.workspace().open(paths, missingFile);
}

void AppDelegate::openRecentDocument(const ActionSender &sender)
{
    if (const auto path = m_services.recent.resolve(sender.represented.toString())) {
        open({*path});
    } else {
        m_services.presenter.beep();
    }
}

void AppDelegate::clearRecentDocuments()
{
    m_services.recent.clear();
    m_services.closedTabs.clear();
}

bool AppDelegate::hasRecentDocuments() const
{
    return !m_services.recent.entries().empty();
}

// Commands

void AppDelegate::newWindow()
{
    std::ignore = openWindow();
}

void AppDelegate::terminate()
{
    const auto isPrinting = [](MainWindowController *window) { return window->workspace().printActions().isActive(); };
    if (const auto printing = std::ranges::find_if(m_windows, isPrinting); printing != m_windows.end()) {
        (*printing)->comeToFront();
        (*printing)->workspace().printActions().whenOver([this](PrintActions::Outcome outcome) {
            if (outcome == PrintActions::Outcome::failed) {
                m_isTerminating = false;
            } else {
                terminate();
            }
        });
        return;
    }
    // Asked once more, it does not wait for what is in a draft as well.
    using Kept = SessionKeeper::Kept;
    if (m_writes.isWaiting() && m_services.keeper.keepAndWait(SessionKeeper::userPatience) == Kept::all) {
        emit finished();
        return;
    }
    m_writes.await(m_services.documents.documents(), frontmostWindow(), [this](PendingWrites::Outcome outcome) {
        if (outcome == PendingWrites::Outcome::failed) {
            return;
        }
        const Kept kept = m_services.keeper.keepAndWait(SessionKeeper::userPatience);
        if (kept == Kept::all || outcome == PendingWrites::Outcome::abandoned) {
            emit finished();
            return;
        }
        m_isTerminating = true;
        closeNext();
    });
}

void AppDelegate::terminateNow()
{
    std::ignore = m_services.keeper.keepAndWait(SessionKeeper::systemPatience);
    emit finished();
}

void AppDelegate::closeNext()
{
    if (MainWindowController *window = frontmostWindow()) {
        window->close();
    }
}

void AppDelegate::remarkOnRoot()
{
    constexpr auto remarkedKey = "app.remarkedOnRoot"_L1;
    constexpr std::chrono::seconds duration{10};
    MainWindowController *window = frontmostWindow();
    if (window && !m_services.defaults.boolean(remarkedKey)) {
        m_services.defaults.set(remarkedKey, true);
        window->workspace().statusBar().flash(
            localized(u"Quillet runs as root. It need not: it asks for the password when a file has to be saved as administrator."),
            duration);
    }
}

void AppDelegate::inform(const QString &message, const QString &details)
{
    m_services.presenter.present(Alert{.style = AlertStyle::informational, .messageText = message, .informativeText = details},
                                 frontmostWindow(), {});
}

/// In the window in front, as soon as there is one that is shown.
void AppDelegate::warn(const QString &message, const QString &details)
{
    m_warning = m_services.scheduler.after(Scheduler::Milliseconds(0), [this, message, details] {
        m_services.presenter.present(Alert{.messageText = message, .informativeText = details}, frontmostWindow(), {});
    });
}

void AppDelegate::showAbout()
{
    inform(u"Quillet "_s + QCoreApplication::applicationVersion(), localized(u"An editor for plain text and source code."));
}

void AppDelegate::showSettings()
{
    if (!m_settings) {
        m_settings = std::make_unique<SettingsWindowController>(SettingsServices{.preferences = m_services.preferences,
                                                                                 .notifications = m_services.notifications,
                                                                                 .presenter = m_services.presenter,
                                                                                 .dataFolder = m_services.session.rootDirectory()});
        m_settings->setNextResponder(this);
    }
    m_settings->comeToFront(frontmostWindow());
}

void AppDelegate::showUserGuide()
{
    showInWindow(Actions::showUserGuide);
}

void AppDelegate::showVimKeyReference()
{
    showInWindow(Actions::showVimKeyReference);
}

/// For those who ask from a window that has no tabs.
void AppDelegate::showInWindow(const Action &reference)
{
    MainWindowController &window = windowInFront();
    window.comeToFront();
    if (!window.workspace().perform(reference)) {
        m_services.presenter.beep();
    }
}

void AppDelegate::showShortcuts()
{
    m_services.presenter.present(overviewOf(Actions::showShortcuts, shortcutOverview()), frontmostWindow(), {});
}

void AppDelegate::showVimKeyOverview()
{
    const Preferences &preferences = m_services.preferences;
    const auto keys = vimKeyOverview(VimOptions::of(preferences), VimChords(preferences.value(Settings::vimChords)));
    m_services.presenter.present(overviewOf(Actions::showVimKeyOverview, keys), frontmostWindow(), {});
}

void AppDelegate::revealSupportFolder()
{
    const QString folder = m_services.session.rootDirectory();
    makePrivateFolder(folder);
    m_services.desktop.reveal(folder, [this, folder](const QString &problem) {
        m_services.presenter.present(Alert::forError(problem, folder), frontmostWindow(), {});
    });
}
