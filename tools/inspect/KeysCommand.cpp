// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "App/AppDelegate.h"
#include "App/MainMenu.h"
#include "Base/Pasteboard.h"
#include "Commands/Actions.h"
#include "Desktop/Desktop.h"
#include "Desktop/ForeignKeyboard.h"
#include "Editor/EditorVim.h"
#include "Find/FindState.h"
#include "Highlighting/LanguageRegistry.h"
#include "KeyWords.h"
#include "Model/DocumentStore.h"
#include "Model/RecentDocuments.h"
#include "Session/ClosedTabs.h"
#include "Session/SessionStore.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "View/FirstResponder.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimHistory.h"
#include "Vim/VimRegisters.h"
#include "Widgets/AlertPresenter.h"

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
        QObject::connect(&application, &AppDelegate::actionChosen, &application,
                         [this](const Action &action) { actions << action.name(); });
    }

    EventLoopScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{DefaultsStore::standardPath(), scheduler};
    Preferences preferences{defaults, notifications};
    MemoryPasteboard pasteboard;
    ScriptedAlertPresenter presenter;
    DetachedWorkers workers;
    FileWatcherQueue watchers;
    SessionStore session{{SessionStore::Places::standard().rootDirectory, {}}, preferences};
    DocumentStore documents{{.scheduler = scheduler,
                             .notifications = notifications,
                             .preferences = preferences,
                             .workers = workers,
                             .watchers = watchers,
                             .timeout = std::chrono::seconds(10)},
                            {}};
    SessionKeeper keeper{scheduler, notifications, preferences, documents, session};
    ClosedTabs closedTabs{notifications, preferences, documents, session};
    FindState find;
    VimRegisters registers{pasteboard, preferences};
    VimHistory vimHistory;
    VimConfiguration vimConfiguration{preferences};
    ForeignKeyboard keyboard;
    RecordingDesktop desktop;
    RecentDocuments recent{QString(), workers};
    AppDelegate application{{{scheduler, notifications, preferences, pasteboard, presenter, documents, workers, find, registers, keyboard,
                              nullptr, nullptr, nullptr, &vimHistory, &vimConfiguration},
                             defaults,
                             desktop,
                             session,
                             keeper,
                             recent,
                             closedTabs}};
    QStringList actions;
    QStringList messages;
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

void send(const QByteArray &name, Stage &stage)
{
    const std::string_view id(name.constData(), size_t(name.size()));
    const Action *known = Actions::named(id);
    // Of several with that name it means none.
    Action action = known ? *known : Action{id};
    action.tag = 0;
    MainWindowController *window = stage.application.frontmostWindow();
    if (!window || !window->firstResponder().perform(action)) {
        stage.presenter.beep();
    }
}

void play(const std::vector<KeyWord> &words, Stage &stage)
{
    for (const KeyWord &word : words) {
        if (const auto *key = std::get_if<KeyPress>(&word)) {
            press(*key);
        } else if (const auto *action = std::get_if<ActionWord>(&word)) {
            send(action->name, stage);
        } else {
            runEventLoop(std::get<WaitWord>(word).milliseconds);
        }
        // Deferred deletions, paints, what was posted.
        QCoreApplication::processEvents();
    }
}

QJsonObject commandStates(MainWindowController &window, bool (*answer)(const ActionState &))
{
    QJsonObject states;
    for (const Action *action : Actions::inMenus()) {
        states[action->name()] = answer(window.firstResponder().state(*action));
    }
    return states;
}

QJsonValue modeOf(const EditorVim *vim)
{
    static constexpr std::array<QStringView, 6> names = {u"normal", u"insert", u"visual", u"visualLine", u"commandLine", u"visualBlock"};
    return vim ? QJsonValue(names[size_t(vim->engine().mode())].toString()) : QJsonValue();
}

QJsonObject registersOf(const VimRegisters &registers)
{
    const auto answer = [](const VimRegisterContents &contents) {
        return QJsonObject{{u"text"_s, contents.text.toString()}, {u"isLinewise"_s, contents.isLinewise}};
    };
    QJsonObject all{{u"\""_s, answer(registers.unnamed())}};
    for (const auto &[name, contents] : registers.named()) {
        all[QString(QChar(name))] = answer(contents);
    }
    return all;
}

QJsonArray selectionsOf(const TextView &view)
{
    QJsonArray all;
    for (const CaretSelection &one : view.selections()) {
        all << QJsonArray{one.range().location, one.range().length};
    }
    return all;
}

QJsonObject stateOf(MainWindowController &window, const Stage &stage)
{
    WorkspaceViewController &workspace = window.workspace();
    const TextRange selected = workspace.currentEditor()->textView().selection().range();
    const EditorVim *vim = workspace.currentEditor()->vim();
    QJsonArray alerts;
    for (const Alert &alert : stage.presenter.alerts()) {
        alerts << alert.messageText;
    }
    QJsonArray tabs;
    for (const auto &document : workspace.activePane()->documents()) {
        tabs << document->displayName();
    }
    return {{u"text"_s, workspace.currentDocument()->storage().string()},
            {u"selection"_s, QJsonArray{selected.location, selected.length}},
            {u"selections"_s, selectionsOf(workspace.currentEditor()->textView())},
            {u"isDirty"_s, workspace.currentDocument()->isDirty()},
            {u"mode"_s, modeOf(vim)},
            {u"pending"_s, vim ? vim->engine().pendingDescription() : QString()},
            {u"commandLine"_s,
             vim && vim->engine().mode() == VimEngine::Mode::commandLine ? QJsonValue(vim->engine().commandLine().text()) : QJsonValue()},
            {u"registers"_s, registersOf(stage.registers)},
            {u"clipboard"_s, stage.pasteboard.text()},
            {u"messages"_s, QJsonArray::fromStringList(stage.messages)},
            {u"actions"_s, QJsonArray::fromStringList(stage.actions)},
            {u"beeps"_s, stage.presenter.beepCount()},
            {u"tabs"_s, tabs},
            {u"panes"_s, int(workspace.panes().size())},
            {u"alerts"_s, alerts},
            {u"enabled"_s, commandStates(window, [](const ActionState &state) { return state.isEnabled; })},
            {u"checked"_s, commandStates(window, [](const ActionState &state) { return state.checkMark == CheckMark::on; })}};
}

/// Shows FILE and the others in tabs, FILE's in front, as the options want it.
void prepare(MainWindowController &window, const QStringList &paths, const Arguments &arguments)
{
    WorkspaceViewController &workspace = window.workspace();
    workspace.open(paths);
    workspace.setPaneLayout(workspace.paneLayout().selecting(0, 0));
    workspace.focusEditor();
    if (const auto language = arguments.value(u"language")) {
        workspace.currentDocument()->setLanguage(LanguageRegistry::withID(*language).value());
    }
    if (const auto range = arguments.value(u"select")) {
        const TextRange selected = toRange(*range)->clampedTo(workspace.currentDocument()->storage().length());
        workspace.currentEditor()->textView().setSelection({selected.location, selected.end()});
    }
    QCoreApplication::processEvents();
}

const AnySetting *textSettingOf(const QString &setting)
{
    const AnySetting *known = Settings::withKey(setting.section(u'=', 0, 0));
    const bool isText = known && (known->type == SettingType::text || known->type == SettingType::choice);
    return isText && setting.contains(u'=') ? known : nullptr;
}

/// A name that a preference does not know may stand in the settings file all the same.
bool isPreferenceOrText(const QString &setting)
{
    return isPreferenceSetting(setting) || textSettingOf(setting);
}

QJsonObject runKeys(const Arguments &arguments)
{
    Stage stage;
    for (const QString &setting : setPreferences(stage.preferences, arguments.values(u"pref"))) {
        stage.defaults.set(textSettingOf(setting)->key, setting.section(u'=', 1));
    }
    if (const auto text = arguments.value(u"clipboard")) {
        stage.pasteboard.setTextFromElsewhere(*text);
    }
    QStringList paths;
    for (const QString &name : arguments.positionals + arguments.values(u"open")) {
        paths << QFileInfo(name).absoluteFilePath();
        if (const auto contents = TextFile::read(paths.last()); !contents) {
            return answerOf(contents.error());
        }
    }
    MainWindowController &window = stage.application.makeWindow();
    if (!activate(window)) {
        return {{u"error"_s, u"noWindow"_s}};
    }
    QObject::connect(&window.workspace().statusBar(), &StatusBarView::flashed, &window,
                     [&stage](const QString &message) { stage.messages << message; });
    prepare(window, paths, arguments);
    stage.actions.clear();
    play(parseKeyWords(arguments.value(u"keys").value_or(QString())).value(), stage);
    MainWindowController *shown = stage.application.frontmostWindow();
    return shown ? stateOf(*shown, stage) : QJsonObject{{u"error"_s, u"noWindow"_s}};
}

bool areKeys(const QString &keys)
{
    return parseKeyWords(keys).has_value();
}

constexpr auto keysOptions = std::to_array<OptionRow>({
    {u"keys", u"KEYS", areKeys},
    {u"pref", u"KEY=VALUE", isPreferenceOrText},
    {u"select", u"LOCATION,LENGTH", isRange},
    {u"language", u"ID", isLanguageID},
    {u"clipboard", u"TEXT"},
    {u"open", u"FILE2"},
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
