// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "monkey/Monkey.h"

#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/Theme.h"
#include "fuzz/Require.h"

#include <QApplication>
#include <QDialog>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <QWindow>

#include <qpa/qplatformdrag.h>
#include <qpa/qwindowsysteminterface.h>

#include <numeric>
#include <set>

#include <unistd.h>

using namespace Qt::StringLiterals;
using Input = QWindowSystemInterface;

namespace {

constexpr size_t traceLength = 25;
/// Turns of a loop that a drag or a menu runs by itself, until it is ended.
constexpr int mostNestedTurns = 20;
constexpr int turnsBetweenFullChecks = 10;

} // namespace

Monkey::Monkey(quint32 seed, int steps, Stage::Work work, Talk talk)
    : m_seed(seed), m_random(seed), m_actions(Actions::inMenus()), m_steps(steps), m_work(work), m_talk(talk), m_ground(m_random)
{}

Monkey::~Monkey() = default;

void Monkey::start()
{
    raiseCurtain();
    QTimer::singleShot(0, this, &Monkey::tick);
}

void Monkey::printTrace() const
{
    const auto print = [](const QByteArray &line) { (void)!write(STDERR_FILENO, line.constData(), size_t(line.size())); };
    for (const QByteArray &line : m_trace) {
        print(line);
    }
    print("monkey: seed " + QByteArray::number(m_seed) + ", failed at step " + QByteArray::number(m_step) + "\n");
}

void Monkey::note(const QString &what)
{
    m_trace.push_back(QByteArray::number(m_step) + ' ' + what.toUtf8() + '\n');
    if (m_trace.size() > traceLength) {
        m_trace.pop_front();
    }
    if (m_talk == Talk::always) {
        std::fputs(m_trace.back().constData(), stderr);
    }
}

void Monkey::tick()
{
    if (QThread::currentThread()->loopLevel() > 1) {
        if (++m_nestedTurns > mostNestedTurns) {
            leaveNestedLoop();
        }
    } else if (m_nestedTurns = 0; std::exchange(m_isCheckDue, false)) {
        check();
    } else if (m_step++ == m_steps) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_stage.reset();
        QCoreApplication::quit();
        return;
    } else {
        step();
        m_isCheckDue = true;
    }
    QTimer::singleShot(0, this, &Monkey::tick);
}

void Monkey::raiseCurtain()
{
    // Windows that were closed are still there, and use what the stage has.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_stage.reset();
    m_stage = std::make_unique<Stage>(m_random, m_ground, m_work);
    m_stage->application.launch({});
    struct Mode {
        QStringView name;
        bool isModal = false;
        bool isExact = false;
        VimKeymapPreset preset = VimKeymapPreset::plain;
    };
    static constexpr auto modes = std::to_array<Mode>({
        {u"plain editing"},
        {u"plain editing"},
        {u"Vim", true},
        {u"LazyVim", true, false, VimKeymapPreset::lazyVim},
        {u"exact Vim", true, true},
        {u"exact LazyVim", true, true, VimKeymapPreset::lazyVim},
    });
    const Mode &mode = m_random.of(modes);
    m_stage->preferences.set(Settings::vimMode, mode.isModal);
    m_stage->preferences.set(Settings::vimExact, mode.isExact);
    m_stage->preferences.set(Settings::vimKeymapPreset, mode.preset);
    m_stage->application.windows().front()->activateWindow();
    note(u"start with "_s + mode.name.toString());
}

void Monkey::leaveNestedLoop()
{
    note(u"leave a loop"_s);
    m_nestedTurns = 0;
    // The toolkit's own, such as one that asks for a file to print into.
    if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
        dialog->reject();
    }
    if (QWindow *window = QGuiApplication::focusWindow()) {
        Input::handleKeyEvent<Input::SynchronousDelivery>(window, QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    }
    if (m_pressed) {
        Input::handleMouseEvent<Input::SynchronousDelivery>(m_pressed, QPointF(1, 1), QPointF(m_pressed->mapToGlobal(QPoint(1, 1))),
                                                            Qt::NoButton, Qt::LeftButton, QEvent::MouseButtonRelease);
    }
}

void Monkey::step()
{
    struct Habit {
        qsizetype weight;
        void (Monkey::*act)();
        /// Not while a question is open: input does not reach the window then.
        bool isInput = true;
    };
    static constexpr auto habits = std::to_array<Habit>({
        {.weight = 22, .act = &Monkey::pressKey},
        {.weight = 12, .act = &Monkey::pressShortcut},
        {.weight = 10, .act = &Monkey::typeLetters},
        {.weight = 12, .act = &Monkey::sendCommand},
        {.weight = 4, .act = &Monkey::multiplyCarets},
        {.weight = 2, .act = &Monkey::openDialog},
        {.weight = 3, .act = &Monkey::leaveDialog},
        {.weight = 3, .act = &Monkey::editBehind},
        {.weight = 3, .act = &Monkey::composeText},
        {.weight = 14, .act = &Monkey::click},
        {.weight = 5, .act = &Monkey::drag},
        {.weight = 4, .act = &Monkey::turnWheel},
        {.weight = 2, .act = &Monkey::dropFiles},
        {.weight = 2, .act = &Monkey::tidyWindows},
        {.weight = 2, .act = &Monkey::openFiles},
        {.weight = 2, .act = &Monkey::fillPasteboard},
        {.weight = 3, .act = &Monkey::resizeWindow, .isInput = false},
        {.weight = 3, .act = &Monkey::changePreference, .isInput = false},
        {.weight = 4, .act = &Monkey::changeFile, .isInput = false},
        {.weight = 10, .act = &Monkey::passTime, .isInput = false},
    });
    if (m_stage->application.windows().empty()) {
        raiseCurtain();
        return;
    }
    if (!QGuiApplication::focusWindow() && m_random.oneIn(4)) {
        note(u"come back"_s);
        MainWindowController *window = m_random.of(m_stage->application.windows());
        window->showNormal();
        window->activateWindow();
        return;
    }
    const bool isBlocked = m_stage->moody.hasOpenQuestions();
    if (isBlocked && m_random.oneIn(3)) {
        note(u"answer"_s);
        m_stage->moody.answerOne();
        return;
    }
    static constexpr qsizetype total =
        std::accumulate(habits.begin(), habits.end(), qsizetype(0), [](qsizetype sum, const Habit &habit) { return sum + habit.weight; });
    qsizetype choice = m_random.below(total);
    for (const Habit &habit : habits) {
        choice -= habit.weight;
        if (choice < 0) {
            if (!isBlocked || !habit.isInput) {
                (this->*habit.act)();
            }
            return;
        }
    }
}

// Looking

void Monkey::check()
{
    // What it does about a text in the turn after hearing of it is part of the step.
    QCoreApplication::sendPostedEvents(&m_stage->application);
    std::set<const TextDocument *> shown;
    for (MainWindowController *window : m_stage->application.windows()) {
        REQUIRE(window->isVisible());
        checkWorkspace(window->workspace());
        for (const auto &document : window->workspace().paneLayout().documents()) {
            shown.insert(document.get());
        }
    }
    for (const auto &document : m_stage->documents.documents()) {
        // Unsaved changes of a file outlive their window: opening it again brings them back.
        requirementContext = displayPath(*document).toStdString();
        REQUIRE(shown.erase(document.get()) > 0 || document->hasUnsavedText());
        REQUIRE(m_step % turnsBetweenFullChecks != 0 || document->storage().checkInvariants());
    }
    REQUIRE(shown.empty());
    for (const DiffWindowController *comparison : m_stage->application.comparisons()) {
        REQUIRE(comparison->isVisible());
    }
}

void Monkey::checkWorkspace(WorkspaceViewController &workspace)
{
    const auto &panes = workspace.panes();
    REQUIRE(!panes.empty() && workspace.paneLayout().checkInvariants());
    REQUIRE(std::find(panes.begin(), panes.end(), workspace.activePane()) != panes.end());
    for (const PaneViewController *pane : panes) {
        REQUIRE(pane->isActive() == (pane == workspace.activePane()));
        EditorViewController *editor = pane->currentEditor();
        REQUIRE(editor != nullptr && editor->isVisible());
        REQUIRE(&editor->document() == pane->documents().at(size_t(pane->selectedIndex())).get());
        const Rope &text = editor->document().storage().text();
        qsizetype previousEnd = -1;
        for (const CaretSelection &selection : editor->textView().selections()) {
            const TextRange selected = selection.range();
            REQUIRE(selected.location >= 0 && selected.end() <= text.length() && selected.location >= previousEnd);
            REQUIRE(!text.splitsPair(selected.location) && !text.splitsPair(selected.end()));
            previousEnd = selected.end();
        }
        if (m_step % turnsBetweenFullChecks == 0) {
            editor->textView().layoutManager().checkInvariants();
        }
    }
}

// Doing

Qt::KeyboardModifiers Monkey::anyModifiers()
{
    static constexpr auto modifiers = std::to_array<Qt::KeyboardModifiers::Int>(
        {Qt::NoModifier, Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier,
         Qt::ShiftModifier | Qt::ControlModifier, Qt::ShiftModifier | Qt::AltModifier});
    return Qt::KeyboardModifiers(m_random.of(modifiers));
}

void Monkey::sendKey(Qt::Key key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        // The press may have closed the window.
        if (QWindow *window = QGuiApplication::focusWindow()) {
            Input::handleKeyEvent<Input::AsynchronousDelivery>(window, type, int(key), modifiers, text);
        }
    }
}

void Monkey::pressKey()
{
    static constexpr auto keys = std::to_array<Qt::Key>(
        {Qt::Key_Left,     Qt::Key_Right,  Qt::Key_Up,   Qt::Key_Down,      Qt::Key_Home,   Qt::Key_End,    Qt::Key_PageUp,
         Qt::Key_PageDown, Qt::Key_Return, Qt::Key_Tab,  Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_Escape, Qt::Key_Escape,
         Qt::Key_Backtab,  Qt::Key_F6,     Qt::Key_Menu, Qt::Key_Space,     Qt::Key_F10,    Qt::Key_Insert});
    const Qt::Key key = m_random.of(keys);
    const auto modifiers = anyModifiers();
    const bool isPlain = (modifiers & ~Qt::ShiftModifier) == Qt::NoModifier;
    static const std::map<Qt::Key, QString> texts{{Qt::Key_Return, u"\r"_s}, {Qt::Key_Tab, u"\t"_s}, {Qt::Key_Space, u" "_s}};
    const QString text = isPlain && texts.contains(key) ? texts.at(key) : QString();
    const qsizetype times = m_random.oneIn(4) ? 1 + m_random.below(6) : 1;
    note(u"key %1 x %2"_s.arg(QKeySequence(QKeyCombination(modifiers, key)).toString()).arg(times));
    for (qsizetype i = 0; i < times; ++i) {
        sendKey(key, modifiers, text);
    }
}

void Monkey::pressShortcut()
{
    const auto sequences = keySequences(*m_random.of(m_actions));
    if (sequences.isEmpty()) {
        return;
    }
    const QKeySequence &sequence = m_random.of(sequences);
    note(u"shortcut "_s + sequence.toString());
    for (int i = 0; i < sequence.count(); ++i) {
        sendKey(sequence[uint(i)].key(), sequence[uint(i)].keyboardModifiers());
    }
}

void Monkey::typeLetters()
{
    // What is below a blank are chords with Control, Escape and Return; some of the lines are commands of modal editing.
    static constexpr auto words = std::to_array<QStringView>({u"word",
                                                              u"äöüß ÄÖÜ",
                                                              u"{",
                                                              u"}",
                                                              u"\"",
                                                              u"// x",
                                                              u"(a+)+$",
                                                              u"#include <a>",
                                                              u"\u4e2d\u6587",
                                                              u"12",
                                                              u":w",
                                                              u"dd",
                                                              u"qa",
                                                              u"q",
                                                              u"3@a",
                                                              u"u",
                                                              u".",
                                                              u"v",
                                                              u"R",
                                                              u"/o",
                                                              u":%s/o/x/c",
                                                              u":g/x/normal p",
                                                              u"y",
                                                              u"ma",
                                                              u"`a",
                                                              u"gj",
                                                              u"zt",
                                                              u"\x16jjlI-\x1b",
                                                              u"\x16j$A;\x1b",
                                                              u"\x16\x04r+",
                                                              u"\x16jlc_\x1b",
                                                              u"qqcw\x12\"\x1bjq",
                                                              u"5@q",
                                                              u"\x17s",
                                                              u"\x17w",
                                                              u"\x17"
                                                              u"c",
                                                              u"\x0f",
                                                              u"\x12",
                                                              u"ggVG=",
                                                              u":s/a/b/g\r",
                                                              u":map x ddp\r",
                                                              u"xxx",
                                                              u":vsplit\r",
                                                              u":set nu! wrap!\r",
                                                              u":2,4m0\r",
                                                              u"/a\rcgnb\x1b",
                                                              u"\x01",
                                                              u"gv",
                                                              u":registers\r",
                                                              u"q:",
                                                              u":q\r",
                                                              u" |",
                                                              u" bd",
                                                              u"yyP",
                                                              u"\"ayiw\"ap",
                                                              u"ciw\x0e\x1b"});
    const QStringView word = m_random.of(words);
    note(u"type "_s + QString::fromUtf8(word.toString().toUtf8().toPercentEncoding(" |:/\"{}()+$<>#`=%;-_&!,")));
    for (const QChar letter : word) {
        if (letter == u'\r' || letter == u'\x1b') {
            sendKey(letter == u'\r' ? Qt::Key_Return : Qt::Key_Escape, Qt::NoModifier, letter);
        } else if (letter < u' ') {
            sendKey(Qt::Key(Qt::Key_A + letter.unicode() - 1), Qt::ControlModifier, letter);
        } else {
            const bool isKey = letter.unicode() < 0x80;
            sendKey(isKey ? Qt::Key(letter.toUpper().unicode()) : Qt::Key_unknown, letter.isUpper() ? Qt::ShiftModifier : Qt::NoModifier,
                    letter);
        }
    }
}

namespace {

/// Only other windows can be used then, and the program can end.
bool hasDialog(const QWidget &window)
{
    return std::ranges::any_of(window.findChildren<QDialog *>(), [](const QDialog *each) { return each->isVisible() && each->isModal(); });
}

} // namespace

void Monkey::sendCommand()
{
    const Action &action = *m_random.of(m_actions);
    const auto &comparisons = m_stage->application.comparisons();
    MainWindowController *window = m_stage->application.frontmostWindow();
    const bool isForComparison = !comparisons.empty() && m_random.oneIn(3);
    if (!window || (!isForComparison && hasDialog(*window))) {
        return;
    }
    FirstResponder &responder = isForComparison ? m_random.of(comparisons)->firstResponder() : window->firstResponder();
    const QVariant represented = anyRepresented(action);
    // Quitting comes up by its key.
    if (action.isNamedLike(Actions::terminate) || !responder.state(action, represented).isEnabled) {
        return;
    }
    note(u"command "_s + action.name());
    responder.perform(action, represented);
}

QVariant Monkey::anyRepresented(const Action &action)
{
    const auto &documents = m_stage->documents.documents();
    if (action.isNamedLike(Actions::compareWithOpenDocument) && !documents.empty()) {
        return m_random.of(documents)->id().toString();
    }
    if (action.isNamedLike(Actions::openRecentDocument)) {
        return m_ground.anyPath();
    }
    if (action.isNamedLike(Actions::selectLanguage)) {
        return m_random.of(LanguageRegistry::all()).id();
    }
    return {};
}

void Monkey::multiplyCarets()
{
    static constexpr auto chords = std::to_array<QKeyCombination>(
        {Qt::ALT | Qt::SHIFT | Qt::Key_Down, Qt::ALT | Qt::SHIFT | Qt::Key_Up, Qt::CTRL | Qt::Key_D, Qt::CTRL | Qt::Key_K,
         Qt::CTRL | Qt::ALT | Qt::Key_A, Qt::ALT | Qt::SHIFT | Qt::Key_I, Qt::SHIFT | Qt::Key_End});
    const QKeyCombination chord = m_random.of(chords);
    const qsizetype times = 1 + m_random.below(5);
    note(u"carets by %1 x %2"_s.arg(QKeySequence(chord).toString()).arg(times));
    for (qsizetype i = 0; i < times; ++i) {
        sendKey(chord.key(), chord.keyboardModifiers());
    }
}

void Monkey::openDialog()
{
    static constexpr auto actions = std::to_array<const Action *>(
        {&Actions::printPreview, &Actions::printPreview, &Actions::printDocument, &Actions::exportAsPdf, &Actions::exportAsHtml,
         &Actions::showSettings, &Actions::compareWithFileOnDisk, &Actions::compareWithFile, &Actions::listMissingCharacters});
    const Action &action = *m_random.of(actions);
    MainWindowController *window = m_stage->application.frontmostWindow();
    if (window && !hasDialog(*window) && window->firstResponder().state(action).isEnabled) {
        note(u"dialog "_s + action.name());
        window->firstResponder().perform(action);
    }
}

void Monkey::leaveDialog()
{
    if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
        note(u"leave the dialog "_s + dialog->objectName());
        m_random.oneIn(3) ? dialog->accept() : dialog->reject();
    }
}

/// As another window does while a dialog is open.
void Monkey::editBehind()
{
    const auto &documents = m_stage->documents.documents();
    if (!QApplication::activeModalWidget() || documents.empty()) {
        return;
    }
    TextDocument &document = *m_random.of(documents);
    const Rope &text = document.storage().text();
    const qsizetype start = m_random.below(text.length() + 1);
    const TextRange range{start, m_random.below(text.length() + 1 - start)};
    const bool isEditable = !document.arrival().isPending() && !document.isGenerated();
    if (isEditable && !text.splitsPair(range.location) && !text.splitsPair(range.end())) {
        note(u"edit behind, %1 units at %2"_s.arg(range.length).arg(range.location));
        document.storage().apply(TextEdits(range, QString::fromStdU16String(m_random.text(m_random.below(200)))));
    }
}

void Monkey::composeText()
{
    QObject *object = QGuiApplication::focusObject();
    if (!object) {
        return;
    }
    const QString preedit = m_random.oneIn(3) ? QString() : u"´"_s;
    QInputMethodEvent event(preedit, {{QInputMethodEvent::Cursor, int(preedit.size()), 1, {}}});
    if (m_random.oneIn(2)) {
        event.setCommitString(u"é"_s, m_random.oneIn(4) ? -1 : 0, m_random.oneIn(4) ? 1 : 0);
    }
    note(u"compose \"%1\" + \"%2\""_s.arg(preedit, event.commitString()));
    QCoreApplication::sendEvent(object, &event);
}

QWindow *Monkey::target()
{
    for (const QWidget *above : {QApplication::activePopupWidget(), QApplication::activeModalWidget()}) {
        if (above && !m_random.oneIn(4)) {
            return above->windowHandle();
        }
    }
    const auto &windows = m_stage->application.windows();
    // In the order in which they came.
    QWindowList all = QGuiApplication::topLevelWindows();
    all.removeIf(
        [](const QWindow *window) { return !window->isVisible() || (window->type() != Qt::Window && window->type() != Qt::Dialog); });
    if (windows.empty() || (!all.empty() && m_random.oneIn(4))) {
        return all.empty() ? nullptr : m_random.of(all);
    }
    return m_random.of(windows)->windowHandle();
}

QPoint Monkey::anyPlace(const QWindow &window)
{
    const auto within = [this](int length) { return int(m_random.below(std::max(1, length))); };
    const int height = window.height();
    const QWidget *widget = QWidget::find(const_cast<QWindow &>(window).winId());
    if (widget && window.type() == Qt::Dialog && !m_random.oneIn(4)) {
        // Most of a dialog is nothing to click at.
        QList<QWidget *> controls = widget->findChildren<QWidget *>();
        controls.removeIf([](const QWidget *each) { return !each->isVisible() || each->focusPolicy() == Qt::NoFocus; });
        if (!controls.empty()) {
            const QWidget *control = m_random.of(controls);
            return control->mapTo(widget, QPoint(within(control->width()), within(control->height())));
        }
    }
    // Half of it where the tabs, the toolbar and the status bar are.
    const qsizetype part = m_random.below(6);
    const int y = part < 2 ? within(std::min(height, 120)) : part == 2 ? height - 1 - within(std::min(height, 30)) : within(height);
    return {within(window.width()), y};
}

void Monkey::sendMouse(QEvent::Type type, QPoint place, Qt::MouseButton button, Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    Input::handleMouseEvent<Input::AsynchronousDelivery>(m_pressed, QPointF(place), QPointF(m_pressed->mapToGlobal(place)), buttons, button,
                                                         type, modifiers);
}

void Monkey::click()
{
    m_pressed = target();
    if (!m_pressed) {
        return;
    }
    const QPoint place = anyPlace(*m_pressed);
    static constexpr auto buttons =
        std::to_array<Qt::MouseButton>({Qt::LeftButton, Qt::LeftButton, Qt::LeftButton, Qt::RightButton, Qt::MiddleButton});
    const Qt::MouseButton button = m_random.of(buttons);
    const auto modifiers = anyModifiers();
    const qsizetype times = m_random.oneIn(3) ? 1 + m_random.below(3) : 1;
    note(u"click %1 x %2 at %3, %4"_s.arg(int(button)).arg(times).arg(place.x()).arg(place.y()));
    sendMouse(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton, modifiers);
    for (qsizetype i = 0; i < times; ++i) {
        sendMouse(QEvent::MouseButtonPress, place, button, button, modifiers);
        sendMouse(QEvent::MouseButtonRelease, place, button, Qt::NoButton, modifiers);
    }
}

void Monkey::drag()
{
    m_pressed = target();
    if (!m_pressed) {
        return;
    }
    const QPoint from = anyPlace(*m_pressed);
    QPoint to = anyPlace(*m_pressed);
    // Tabs and selections are dragged along a line.
    if (m_random.oneIn(2)) {
        to.setY(from.y());
    }
    // Columns are, with those.
    const bool isColumn = m_random.oneIn(4);
    const bool isMiddle = m_random.oneIn(6);
    const Qt::MouseButton button = isMiddle ? Qt::MiddleButton : Qt::LeftButton;
    const Qt::KeyboardModifiers modifiers = isColumn ? Qt::AltModifier | Qt::ShiftModifier : Qt::NoModifier;
    note(u"drag%1%2 %3, %4 to %5, %6"_s.arg(isMiddle ? u" the middle button"_s : QString(), isColumn ? u" a column"_s : QString())
             .arg(from.x())
             .arg(from.y())
             .arg(to.x())
             .arg(to.y()));
    sendMouse(QEvent::MouseButtonPress, from, button, button, modifiers);
    for (int i = 1; i <= 5; ++i) {
        sendMouse(QEvent::MouseMove, from + (to - from) * i / 5, Qt::NoButton, button, modifiers);
    }
    if (m_random.oneIn(5)) {
        sendKey(Qt::Key_Escape, Qt::NoModifier);
    }
    sendMouse(QEvent::MouseButtonRelease, to, button, Qt::NoButton, modifiers);
}

void Monkey::turnWheel()
{
    if (QWindow *window = target()) {
        const QPoint place = anyPlace(*window);
        const QPoint turn(m_random.oneIn(4) ? 120 : 0, int(m_random.below(9) - 4) * 120);
        const auto modifiers = anyModifiers();
        note(u"wheel %1 at %2, %3"_s.arg(turn.y()).arg(place.x()).arg(place.y()));
        Input::handleWheelEvent(window, QPointF(place), QPointF(window->mapToGlobal(place)), QPoint(), turn, modifiers);
    }
}

void Monkey::dropFiles()
{
    QWindow *window = target();
    if (!window) {
        return;
    }
    QMimeData data;
    if (m_random.oneIn(3)) {
        data.setText(u"dropped\ntext"_s);
    } else {
        data.setUrls({QUrl::fromLocalFile(m_ground.anyPath()), QUrl::fromLocalFile(m_ground.folder())});
    }
    const QPoint place = anyPlace(*window);
    note(u"drop at %1, %2"_s.arg(place.x()).arg(place.y()));
    const QPointer<QWindow> alive = window;
    (void)Input::handleDrag(window, &data, place, Qt::CopyAction | Qt::MoveAction, Qt::LeftButton, Qt::NoModifier);
    if (!alive) {
        return;
    }
    if (m_random.oneIn(4)) {
        (void)Input::handleDrag(window, nullptr, QPoint(), Qt::IgnoreAction, Qt::NoButton, Qt::NoModifier);
    } else {
        (void)Input::handleDrop(window, &data, place, Qt::CopyAction | Qt::MoveAction, Qt::NoButton, Qt::NoModifier);
    }
}

void Monkey::resizeWindow()
{
    const QSize size(480 + int(m_random.below(900)), 300 + int(m_random.below(600)));
    note(u"resize to %1 x %2"_s.arg(size.width()).arg(size.height()));
    MainWindowController *window = m_random.of(m_stage->application.windows());
    m_random.oneIn(3) ? window->resize(480, 300) : window->resize(size);
}

void Monkey::tidyWindows()
{
    const auto &windows = m_stage->application.windows();
    const bool isClosed = windows.size() > 3 || m_random.oneIn(8);
    note(isClosed ? u"close a window"_s : u"activate a window"_s);
    isClosed ? (void)m_random.of(windows)->close() : m_random.of(windows)->activateWindow();
}

void Monkey::openFiles()
{
    QStringList paths;
    for (qsizetype count = 1 + m_random.below(3); count > 0; --count) {
        paths << m_ground.anyPath();
    }
    note(u"open "_s + paths.join(u' '));
    m_stage->application.open(paths);
}

void Monkey::changePreference()
{
    const AnySetting &setting = *m_random.of(Settings::all());
    QString value;
    if (&setting == &Settings::themeName) {
        value = m_random.of(Theme::all()).name.toString();
    } else if (setting.type == SettingType::choice) {
        value = m_random.of(setting.choices).name;
    } else if (setting.type == SettingType::boolean) {
        value = m_random.oneIn(2) ? u"true"_s : u"false"_s;
    } else {
        // Texts too, a font that there is not among them.
        value = QString::number(m_random.below(40));
    }
    note(u"preference %1 = %2"_s.arg(setting.key, value));
    m_stage->preferences.setFromText(setting, value);
}

void Monkey::changeFile()
{
    note(m_ground.change());
    m_stage->desktop.result = m_random.oneIn(3) ? Result<void>(failure(u"no"_s)) : Result<void>();
}

void Monkey::passTime()
{
    static constexpr auto durations = std::to_array<int>({1, 20, 60, 250, 450, 1000, 5000});
    const int duration = m_random.of(durations);
    note(u"%1 ms"_s.arg(duration));
    m_stage->scheduler.advance(Scheduler::Milliseconds(duration));
}

void Monkey::fillPasteboard()
{
    const auto text = QString::fromStdU16String(m_random.text(m_random.below(60)));
    note(u"pasteboard, %1 units"_s.arg(text.size()));
    m_stage->pasteboard.setTextFromElsewhere(text);
}
