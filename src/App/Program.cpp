// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/Program.h"

#include "App/AppDelegate.h"
#include "App/DisplayLoss.h"
#include "App/RunningInstance.h"
#include "App/TerminationSignals.h"
#include "Base/Localization.h"
#include "Base/ToolkitTexts.h"
#include "Commands/KeyboardChords.h"
#include "Desktop/DesktopRecentFiles.h"
#include "Desktop/FileChooserPortal.h"
#include "Desktop/ForeignKeyboard.h"
#include "Desktop/KeyboardLayout.h"
#include "Desktop/PolkitAdministrator.h"
#include "Desktop/SystemAppearance.h"
#include "Desktop/SystemDesktop.h"
#include "Desktop/SystemPasteboard.h"
#include "Editor/SpellingPanel.h"
#include "Find/FindState.h"
#include "Highlighting/Theme.h"
#include "Model/DocumentStore.h"
#include "Model/EncodingMemory.h"
#include "Model/FileMemory.h"
#include "Model/RecentDocuments.h"
#include "Session/ClosedTabs.h"
#include "Session/SessionStore.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "Spelling/SpellChecker.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimHistory.h"
#include "Vim/VimRegisters.h"
#include "Vim/VimSavedState.h"
#include "Widgets/DesktopPalette.h"
#include "Widgets/ForeignChords.h"
#include "Widgets/InterfaceStyle.h"
#include "Widgets/KeyboardAccess.h"
#include "Widgets/SymbolIcon.h"
#include "Widgets/WidgetAlertPresenter.h"

#include <QApplication>
#include <QSessionManager>

#include <utility>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// What is answered by then seems to be there at once.
constexpr std::chrono::milliseconds fileTimeout{100};

void setUp()
{
    QApplication::setApplicationName(u"Quillet"_s);
    QApplication::setApplicationDisplayName(u"Quillet"_s);
    QApplication::setDesktopFileName(u"org.quillet.Quillet"_s);
    QApplication::setStyle(new InterfaceStyle);
    QApplication::setWindowIcon(applicationIcon());
    QApplication::setQuitOnLastWindowClosed(false);
}

/// Never destroyed: a worker that waits for the password may do so while the program ends.
Administrator &administrator()
{
    static auto *const asked = new PolkitAdministrator(PolkitAdministrator::Programs::standard());
    return *asked;
}

/// Null without a bus.
std::unique_ptr<FileChooserPortal> portalOfSession()
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() ? std::make_unique<FileChooserPortal>(bus) : nullptr;
}

/// Chosen before anything is made that has words, and whenever the user chooses another.
struct InterfaceLanguage {
    InterfaceLanguage(Preferences &preferences, ToolkitTexts &toolkitTexts, std::optional<AppLanguage> thisTime)
    {
        const auto choose = [&toolkitTexts](AppLanguage language) {
            Localization::use(language);
            toolkitTexts.use(Localization::current().locale());
        };
        preferences.setLanguageResolver(choose);
        choose(thisTime.value_or(preferences.value(Settings::language)));
    }
};

} // namespace

struct Program::Parts {
    Parts(QApplication &application, std::optional<AppLanguage> thisTime, SessionStore::Role role)
        : language(preferences, toolkitTexts, thisTime), session(SessionStore::Places::standard(role), preferences)
    {
        spellingLanguages = notifications.observe(Localization::didChangeNotification, nullptr,
                                                  [this] { spellChecker.setLanguages(SpellChecker::systemSetup().languages); });
        const auto useKeyboard = [this] {
            KeyboardChords::use(layout.chords());
            notifications.post(KeyboardChords::didChangeNotification, nullptr);
        };
        QObject::connect(&layout, &KeyboardLayout::changed, &delegate, useKeyboard);
        useKeyboard();
        recent.onNote([this](const QStringList &paths) { desktopRecentFiles.note(paths); });
        followAppearance();
        vimProblems = vimConfiguration.follow(VimConfiguration::standardPath());
        setUpVim = notifications.observe(Preferences::didChange, nullptr, [this] {
            if (const QStringList problems = vimConfiguration.follow(VimConfiguration::standardPath()); !problems.isEmpty()) {
                presenter.present(Alert::forError(problems.join(u'\n')), delegate.frontmostWindow(), {});
            }
        });
        QObject::connect(
            &application, &QGuiApplication::commitDataRequest, &delegate,
            [this](QSessionManager &manager) {
                // To be allowed to ask means to hold up all others: only when there is something to ask.
                const bool isLost = keeper.keepAndWait(SessionKeeper::systemPatience) == SessionKeeper::Kept::notAll;
                if (isLost && manager.allowsInteraction()) {
                    manager.cancel();
                    delegate.terminate();
                }
            },
            Qt::DirectConnection);
        QObject::connect(
            &application, &QGuiApplication::saveStateRequest, &delegate,
            // As it was started by hand, without the toolkit's options.
            [](QSessionManager &manager) { manager.setRestartCommand({QCoreApplication::applicationFilePath()}); }, Qt::DirectConnection);
        // Not quit(), which would close the windows that are left, and they would ask.
        QObject::connect(
            &delegate, &AppDelegate::finished, &application, [this] { QCoreApplication::exit(status); }, Qt::QueuedConnection);
    }

    /// Texts, windows and desktop are light or dark together.
    void followAppearance()
    {
        QObject::connect(&appearance, &SystemAppearance::requestChanged, &palette, [this](const RequestedAppearance &requested) {
            palette.adapt(requested);
            documents.setHighContrast(requested.hasHighContrast);
            useFont(requested.fixedFont.value_or(plainFixedFont()));
        });
        QObject::connect(&appearance, &SystemAppearance::changed, &documents, &DocumentStore::refreshAppearance);
        QObject::connect(&palette, &DesktopPalette::desktopChanged, &appearance, &SystemAppearance::update);
        const auto followTheme = [this] {
            const Theme *chosen = Theme::named(preferences.value(Settings::themeName));
            palette.follow(chosen ? std::optional(chosen->isDark ? Appearance::dark : Appearance::light) : std::nullopt);
        };
        followTheme();
        chosenTheme = notifications.observe(Preferences::didChange, nullptr, followTheme);
        useFont(plainFixedFont());
    }

    void useFont(const DesktopFont &font)
    {
        if (font != fixedFont) {
            fixedFont = font;
            preferences.setDesktopValues({{Settings::fontName, font.family}, {Settings::fontSize, font.pointSize}});
        }
    }

    /// Of the exit.
    int status = 0;
    DesktopFont fixedFont;
    DesktopPalette palette;
    ForeignKeyboard keyboard;
    KeyboardLayout layout;
    ForeignChords foreignChords{keyboard};
    KeyboardAccess keyboardAccess;
    EventLoopScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{DefaultsStore::standardPath(), scheduler};
    Preferences preferences{defaults, notifications};
    ToolkitTexts toolkitTexts;
    const InterfaceLanguage language;
    SystemPasteboard pasteboard;
    WidgetAlertPresenter presenter{[] { return portalOfSession(); }};

    DetachedWorkers workers;
    FileWatcherQueue watchers;
    SystemAppearance appearance{std::make_unique<PortalAppearanceSource>(), [this] { return palette.ofDesktop(); }};
    SessionStore session;
    FileMemory fileMemory{session.rootDirectory() + u"/file-memory.json"_s};
    EncodingMemory encodings{fileMemory};
    DocumentStore documents{{.scheduler = scheduler,
                             .notifications = notifications,
                             .preferences = preferences,
                             .workers = workers,
                             .watchers = watchers,
                             .discardDraft = [this](const QUuid &id) { session.discardDraft(id); },
                             .timeout = fileTimeout,
                             .rescueFolder = session.rescueDirectory(),
                             .bringBack = [this](const QString &path) { keeper.bringBack(path); },
                             .encodings = &encodings,
                             .administrator = &administrator()},
                            [this] { return appearance.current(); }};
    SessionKeeper keeper{scheduler, notifications, preferences, documents, session};
    ClosedTabs closedTabs{notifications, preferences, documents, session};

    FindState find{session.rootDirectory() + u"/find-history.json"_s, workers};
    VimRegisters registers{pasteboard, preferences};
    VimConfiguration vimConfiguration{preferences};
    VimSavedState vimState{session.rootDirectory() + u"/vim-state.json"_s,
                           {scheduler, workers, notifications, preferences, registers, vimConfiguration.fileMarks()}};
    VimHistory vimHistory{session.rootDirectory() + u"/vim-history.json"_s, workers};
    SpellChecker spellChecker{workers, SpellChecker::systemSetup()};
    SpellingPanel spellingPanel{spellChecker};
    NotificationCenter::Token spellingLanguages;
    NotificationCenter::Token chosenTheme;
    NotificationCenter::Token setUpVim;
    /// Of the user's file of commands, when the program starts.
    QStringList vimProblems;
    SystemDesktop desktop;
    RecentDocuments recent{session.rootDirectory() + u"/recent-documents.json"_s, workers};
    DesktopRecentFiles desktopRecentFiles{DesktopRecentFiles::standardPath(), workers};
    AppDelegate delegate{{{scheduler, notifications, preferences, pasteboard, presenter, documents, workers, find, registers, keyboard,
                           &spellChecker, &spellingPanel, &fileMemory, &vimHistory, &vimConfiguration},
                          defaults,
                          desktop,
                          session,
                          keeper,
                          recent,
                          closedTabs}};
    RunningInstance instance{QDBusConnection::sessionBus(),
                             {.open = [this](const OpenRequest &request) { delegate.open(request); },
                              .gone = [this](const QString &waiter) { delegate.forgetWaiter(waiter); }}};
    TerminationSignals termination{[this] { delegate.terminateNow(); }};
    DisplayLoss displayLoss{[this] { std::ignore = keeper.keepAndWait(SessionKeeper::systemPatience); }};
};

Program::Program(QApplication &application, const CommandLine &line)
{
    setUp();
    // A comparison must not keep the session from a start that wants it.
    const bool isComparison = line.request == CommandLine::Request::compare;
    m_parts = std::make_unique<Parts>(application, line.language, isComparison ? SessionStore::Role::guest : SessionStore::Role::owner);
}

Program::~Program() = default;

AppDelegate &Program::delegate()
{
    return m_parts->delegate;
}

bool Program::listen()
{
    return m_parts->instance.registerHere();
}

int Program::run(const CommandLine &line)
{
    AppDelegate &delegate = m_parts->delegate;
    if (line.request == CommandLine::Request::compare) {
        delegate.compare(line.files[0].path, line.files[1].path);
        return QApplication::exec();
    }
    QStringList paths;
    for (const CommandLine::File &file : line.files) {
        paths << file.path;
    }
    AppDelegate::Documents opened = delegate.launch(paths);
    // Without a session there is one already.
    const TextDocument *shown = delegate.frontmostWindow()->workspace().currentDocument();
    const bool showsEmptyTab = shown && shown->isUntitled() && shown->storage().length() == 0;
    OpenRequest request{.files = line.files,
                        .opensNewTab = line.opensNewTab && !showsEmptyTab,
                        .problems = line.problems + m_parts->vimProblems,
                        .stream = line.readsStandardInput ? STDIN_FILENO : -1};
    if (line.waits) {
        // With nobody to hand over to, this one is waited for itself.
        request.closed = [this](int status) {
            m_parts->status = status;
            m_parts->delegate.terminate();
        };
    }
    // Not held until the end of the program.
    delegate.handle(request, std::exchange(opened, {}));
    if (::geteuid() == 0) {
        delegate.remarkOnRoot();
    }
    return QApplication::exec();
}
