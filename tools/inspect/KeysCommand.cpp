// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "App/MainWindow.h"
#include "App/MenuBar.h"
#include "Highlighting/LanguageRegistry.h"
#include "KeyWords.h"
#include "Model/DocumentStore.h"
#include "Model/Preferences.h"
#include "Platform/AlertPresenter.h"
#include "Platform/DefaultsStore.h"
#include "Platform/FirstResponder.h"
#include "Platform/Pasteboard.h"
#include "Text/FindState.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QJsonArray>
#include <QTimer>
#include <QWindow>

#include <qpa/qwindowsysteminterface.h>

#include <array>

using namespace Qt::StringLiterals;

namespace {

/// The program with all that surrounds it replaced: nobody answers its questions but Cancel, and its clipboard is its own.
class Stage {
public:
    Stage()
    {
        Responder::setObserver(
            [this](Selector selector) { actions << QString::fromLatin1(selector.name().data(), qsizetype(selector.name().size())); });
    }
    ~Stage() { Responder::setObserver({}); }
    Q_DISABLE_COPY_MOVE(Stage)

    EventLoopScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{DefaultsStore::standardPath(), scheduler};
    Preferences preferences{defaults, notifications};
    MemoryPasteboard pasteboard;
    ScriptedAlertPresenter presenter;
    DetachedWorkers workers;
    FileWatcherQueue watchers;
    DocumentStore documents{{scheduler, notifications, defaults, workers, watchers, {}}, {}};
    FindState find;
    AppServices services{scheduler, notifications, defaults, preferences, pasteboard, presenter, documents, workers, find};
    QStringList actions;
};

void runEventLoop(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Shortcuts and the focus belong to the window that is active.
bool activate(QWidget &window)
{
    window.show();
    window.activateWindow();
    const QDeadlineTimer deadline(10'000);
    while (!window.isActiveWindow() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return window.isActiveWindow();
}

void press(const KeyPress &key)
{
    QWindow *window = QGuiApplication::focusWindow();
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QWindowSystemInterface::handleKeyEvent<QWindowSystemInterface::SynchronousDelivery>(window, type, int(key.key), key.modifiers,
                                                                                            key.text);
    }
}

void send(MainWindow &window, const QByteArray &selector, Stage &stage)
{
    Responder *responder = firstResponder(&window);
    if (!responder || !responder->perform(Selector(selector.constData()))) {
        stage.presenter.beep();
    }
}

void play(MainWindow &window, const std::vector<KeyWord> &words, Stage &stage)
{
    for (const KeyWord &word : words) {
        if (const auto *key = std::get_if<KeyPress>(&word)) {
            press(*key);
        } else if (const auto *action = std::get_if<ActionWord>(&word)) {
            send(window, action->selector, stage);
        } else {
            runEventLoop(std::get<WaitWord>(word).milliseconds);
        }
        // Deferred deletions, paints, what was posted.
        QCoreApplication::processEvents();
    }
}

QJsonObject commandStates(MainWindow &window, bool (*answer)(const ActionState &))
{
    QJsonObject states;
    const Responder *responder = firstResponder(&window);
    for (const MenuCommand &command : menuCommands()) {
        const auto name = command.selector.name();
        states[QString::fromLatin1(name.data(), qsizetype(name.size()))] = responder && answer(responder->state(command.selector));
    }
    return states;
}

QJsonObject stateOf(MainWindow &window, const Stage &stage)
{
    const TextRange selected = window.textView().selection().range();
    QJsonArray alerts;
    for (const Alert &alert : stage.presenter.alerts()) {
        alerts << alert.messageText;
    }
    return {{u"text"_s, window.document().storage().string()},
            {u"selection"_s, QJsonArray{selected.location, selected.length}},
            {u"isDirty"_s, window.document().isDirty()},
            {u"mode"_s, QJsonValue::Null},
            {u"pending"_s, QString()},
            {u"commandLine"_s, QJsonValue::Null},
            {u"registers"_s, QJsonObject()},
            {u"clipboard"_s, stage.pasteboard.text()},
            {u"messages"_s, QJsonArray()},
            {u"actions"_s, QJsonArray::fromStringList(stage.actions)},
            {u"beeps"_s, stage.presenter.beepCount()},
            {u"tabs"_s, QJsonArray{window.document().displayName()}},
            {u"panes"_s, 1},
            {u"alerts"_s, alerts},
            {u"enabled"_s, commandStates(window, [](const ActionState &state) { return state.isEnabled; })},
            {u"checked"_s, commandStates(window, [](const ActionState &state) { return state.checkMark == CheckMark::on; })}};
}

QJsonObject runKeys(const Arguments &arguments)
{
    Stage stage;
    for (const QString &setting : arguments.values(u"pref")) {
        setPreference(stage.preferences, setting);
    }
    if (const auto text = arguments.value(u"clipboard")) {
        stage.pasteboard.setTextFromElsewhere(*text);
    }
    const QString path = QFileInfo(arguments.positionals.first()).absoluteFilePath();
    if (const auto contents = TextFile::read(path); !contents) {
        return answerOf(contents.error());
    }
    MainWindow window(stage.services);
    if (!activate(window)) {
        return {{u"error"_s, u"noWindow"_s}};
    }
    window.show(path);
    if (const auto language = arguments.value(u"language")) {
        window.document().setLanguage(LanguageRegistry::withID(*language).value());
    }
    if (const auto range = arguments.value(u"select")) {
        const TextRange selected = toRange(*range)->clampedTo(window.document().storage().length());
        window.textView().setSelection({selected.location, selected.end()});
    }
    QCoreApplication::processEvents();
    stage.actions.clear();
    play(window, parseKeyWords(arguments.value(u"keys").value_or(QString())).value(), stage);
    return stateOf(window, stage);
}

bool areKeys(const QString &keys)
{
    return parseKeyWords(keys).has_value();
}

constexpr auto keysOptions = std::to_array<OptionRow>({
    {u"keys", u"KEYS", areKeys},
    {u"pref", u"KEY=VALUE", isPreferenceSetting},
    {u"select", u"LOCATION,LENGTH", isRange},
    {u"language", u"ID", isLanguageID},
    {u"clipboard", u"TEXT"},
});

constexpr auto rows = std::to_array<CommandRow>({
    {u"keys", u"FILE", keysOptions, u"what a window holds after the keys, which are written as in Vim: ab<CR><C-s><Cmd:undo:><Wait:500>",
     runKeys},
});

} // namespace

std::span<const CommandRow> keysCommands()
{
    return rows;
}
