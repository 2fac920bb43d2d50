// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/AppDelegate.h"
#include "App/CommandLine.h"
#include "App/TerminationSignals.h"
#include "Editor/SpellingPanel.h"
#include "Model/DocumentStore.h"
#include "Model/Preferences.h"
#include "Platform/DefaultsStore.h"
#include "Platform/DesktopPalette.h"
#include "Platform/Localization.h"
#include "Platform/SpellChecker.h"
#include "Platform/SymbolIcon.h"
#include "Platform/SystemAppearance.h"
#include "Platform/SystemDesktop.h"
#include "Platform/SystemPasteboard.h"
#include "Platform/ToolkitTexts.h"
#include "Platform/WidgetAlertPresenter.h"
#include "Text/FindState.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSessionManager>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void print(FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
}

void complain(const CommandLine &line)
{
    for (const QString &complaint : line.complaints) {
        print(stderr, u"quillet: "_s + complaint + u'\n');
    }
}

int run(QApplication &application, const QStringList &files)
{
    QApplication::setApplicationName(u"Quillet"_s);
    QApplication::setApplicationDisplayName(u"Quillet"_s);
    QApplication::setApplicationVersion(QStringLiteral(QUILLET_VERSION));
    QApplication::setDesktopFileName(u"org.quillet.Quillet"_s);
    QApplication::setWindowIcon(applicationIcon());

    const DesktopPalette palette;
    EventLoopScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults(DefaultsStore::standardPath(), scheduler);
    Preferences preferences(defaults, notifications);
    ToolkitTexts toolkitTexts;
    const auto chooseLanguage = [&toolkitTexts](AppLanguage language) {
        Localization::use(language);
        toolkitTexts.use(Localization::current().locale());
    };
    preferences.setLanguageResolver(chooseLanguage);
    chooseLanguage(preferences.language());
    SystemPasteboard pasteboard;
    WidgetAlertPresenter presenter;

    DetachedWorkers workers;
    FileWatcherQueue watchers;
    const SystemAppearance appearance(std::make_unique<PortalAppearanceSource>());
    DocumentStore documents({scheduler, notifications, defaults, workers, watchers, {}}, [&appearance] { return appearance.current(); });
    QObject::connect(&appearance, &SystemAppearance::changed, &application, [&] { notifications.post(Preferences::didChange, nullptr); });

    FindState find;
    SpellChecker spellChecker(workers, SpellChecker::systemSetup());
    SpellingPanel spellingPanel(spellChecker);
    const auto spellingLanguages = notifications.observe(Localization::didChangeNotification, nullptr, [&spellChecker] {
        spellChecker.setLanguages(SpellChecker::systemSetup().languages);
    });
    SystemDesktop desktop;
    AppDelegate delegate(
        {{scheduler, notifications, preferences, pasteboard, presenter, documents, workers, find, &spellChecker, &spellingPanel},
         defaults,
         desktop});
    QApplication::setQuitOnLastWindowClosed(false);
    const TerminationSignals termination([&delegate] { delegate.terminate(); });
    QObject::connect(
        &application, &QGuiApplication::commitDataRequest, &delegate,
        [&delegate](QSessionManager &session) {
            // To be allowed to ask means to hold up all others.
            if (delegate.hasUnsavedText() && session.allowsInteraction()) {
                session.cancel();
                delegate.terminate();
            }
        },
        Qt::DirectConnection);
    QObject::connect(
        &application, &QGuiApplication::saveStateRequest, &delegate,
        // As it was started by hand, without the toolkit's options.
        [](QSessionManager &session) { session.setRestartCommand({QCoreApplication::applicationFilePath()}); }, Qt::DirectConnection);
    QObject::connect(&delegate, &AppDelegate::finished, &application, &QCoreApplication::quit, Qt::QueuedConnection);
    delegate.launch(files);
    return application.exec();
}

} // namespace

int main(int argc, char **argv)
{
    QStringList arguments;
    for (int index = 1; index < argc; ++index) {
        arguments << QFile::decodeName(argv[index]);
    }
    const CommandLine line = CommandLine::parse(arguments, QDir::currentPath());
    complain(line);
    switch (line.request) {
    case CommandLine::Request::refuse:
        print(stderr, CommandLine::help());
        return 2;
    case CommandLine::Request::showHelp:
        print(stdout, CommandLine::help());
        return 0;
    case CommandLine::Request::showVersion:
        print(stdout, u"Quillet "_s + QStringLiteral(QUILLET_VERSION) + u'\n');
        return 0;
    case CommandLine::Request::openFiles:
        break;
    }
    // The arguments are all read; the application object would look for its own among them.
    int applicationArguments = 1;
    QApplication application(applicationArguments, argv);
    return run(application, line.files);
}
