// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorVim.h"

#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Desktop/ForeignKeyboard.h"
#include "Editor/CompletionPanel.h"
#include "Editor/EditorTextView.h"
#include "Editor/PendingKeysPanel.h"
#include "Text/PasteboardText.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/CaretMotion.h"
#include "Vim/VimBuffer.h"
#include "Vim/VimCompletion.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

namespace {

struct KeyRow {
    Qt::Key key;
    char16_t character;
};

constexpr auto functionKeys = std::to_array<KeyRow>({
    {Qt::Key_Escape, VimKey::escape},
    {Qt::Key_Backspace, VimKey::backspace},
    {Qt::Key_Delete, VimKey::forwardDelete},
    {Qt::Key_Return, u'\r'},
    {Qt::Key_Enter, u'\r'},
    {Qt::Key_Tab, u'\t'},
    {Qt::Key_Up, VimKey::up},
    {Qt::Key_Down, VimKey::down},
    {Qt::Key_Left, VimKey::left},
    {Qt::Key_Right, VimKey::right},
    {Qt::Key_Home, VimKey::home},
    {Qt::Key_End, VimKey::end},
    {Qt::Key_PageUp, VimKey::pageUp},
    {Qt::Key_PageDown, VimKey::pageDown},
});

/// Dead keys by the signs that they stand for when nothing is to be composed.
constexpr auto deadKeys = std::to_array<KeyRow>({
    {Qt::Key_Dead_Grave, u'`'},
    {Qt::Key_Dead_Acute, u'\''},
    {Qt::Key_Dead_Circumflex, u'^'},
    {Qt::Key_Dead_Tilde, u'~'},
    {Qt::Key_Dead_Diaeresis, u'"'},
});

/// F1 to F12, and Tab with Shift; a mapping may want them.
std::optional<char16_t> keyForMappings(const QKeyEvent &event)
{
    const bool isFunctionKey = event.key() >= Qt::Key_F1 && event.key() < Qt::Key_F1 + VimKey::functionKeys;
    if (isFunctionKey && event.modifiers() == Qt::NoModifier) {
        return char16_t(VimKey::functionKey + event.key() - Qt::Key_F1);
    }
    return event.key() == Qt::Key_Backtab ? std::optional(VimKey::backtab) : std::nullopt;
}

bool isModifier(int key)
{
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr;
}

bool isPrivateUse(char16_t unit)
{
    return unit >= 0xE000 && unit <= 0xF8FF;
}

/// What the key means as a command when it writes `text`.
QString commandText(const QString &text, const QKeyEvent &event, const ForeignKeyboard &keyboard)
{
    if (keyboard.wrote(event) && !event.modifiers().testFlag(Qt::GroupSwitchModifier)) {
        return ForeignKeyboard::textInPlaceOf(event).value_or(text);
    }
    const auto *dead = std::ranges::find(deadKeys, Qt::Key(event.key()), &KeyRow::key);
    return text.isEmpty() && dead != deadKeys.end() ? QString(QChar(dead->character)) : text;
}

/// At once; more are beyond any text.
constexpr qsizetype mostRows = 100'000'000;

/// On some keyboards AltGr comes as Control and Alt, and what it types is text.
bool isAltGr(const QKeyEvent &event)
{
    return event.modifiers().testFlags(Qt::ControlModifier | Qt::AltModifier) && !event.text().isEmpty() && event.text().front().isPrint();
}

} // namespace

EditorVim::EditorVim(EditorTextView &view, const Services &services, const VimOptions &options, Callbacks callbacks)
    : m_view(view), m_keyboard(services.keyboard), m_workers(services.commands.workers), m_callbacks(std::move(callbacks)),
      m_name(services.name), m_otherTexts(services.otherTexts), m_beep(services.commands.beep),
      m_text(view,
             [this](const TextChange &change) {
                 if (m_engine) {
                     m_engine->textChanged(change);
                 }
             }),
      m_engine(new VimEngine(*this, *this, services.registers, options)), m_run(view, services.commands,
                                                                                {[this] {
                                                                                     m_text.flush();
                                                                                     vimEngineDidChangeState(*m_engine);
                                                                                 },
                                                                                 [this](bool isStopped) { keysDone(isStopped); }}),
      m_search(view, services.commands), m_preview(view, services.commands.workers), m_substitution(view),
      m_panel(std::make_unique<PendingKeysPanel>(view, services.commands.scheduler)), m_scheduler(services.commands.scheduler)
{
    m_engine->setConfiguration(services.configuration);
    m_revision = m_view.storage().revision();
    if (services.history) {
        m_engine->setHistory(*services.history, services.historyKept);
    }
    m_view.setVim(this);
    m_engine->leaveToNormal();
    updateInputMethod();
}

EditorVim::~EditorVim()
{
    m_callbacks = {.stateChanged = [] {},
                   .runCommand = [](const QString &) {},
                   .say = [](const QString &) {},
                   .list = [](const QString &, const QString &) {},
                   .performCommand = [](const Action &, const QString &) {},
                   .substitute = [](const VimSubstituteJob &) {}};
    m_run.stop();
    m_engine.reset();
    m_view.setVim(nullptr);
    m_view.setAttribute(Qt::WA_InputMethodEnabled, !m_view.isReadOnly());
}

// Keys

VimKeyEvent EditorVim::translated(const QKeyEvent &event) const
{
    m_keyboard.note(event);
    const bool isText = isAltGr(event);
    VimKeyEvent key{.characters = {},
                    .charactersIgnoringModifiers = {},
                    .control = event.modifiers().testFlag(Qt::ControlModifier) && !isText,
                    .option = event.modifiers().testFlag(Qt::AltModifier) && !isText};
    if (const auto unit = keyForMappings(event)) {
        key.charactersIgnoringModifiers = QString(QChar(*unit));
        if (m_engine->wants(key)) {
            return key;
        }
        key.charactersIgnoringModifiers.clear();
    }
    if (const auto *row = std::ranges::find(functionKeys, Qt::Key(event.key()), &KeyRow::key); row != functionKeys.end()) {
        key.charactersIgnoringModifiers = QString(QChar(row->character));
        key.characters = isPrivateUse(row->character) ? QString() : key.charactersIgnoringModifiers;
        key.shift = event.modifiers().testFlag(Qt::ShiftModifier);
        return key;
    }
    QString text = event.text();
    // Another of the user's layouts may have told what key it is.
    const bool isNamed =
        (key.control || (key.option && text.isEmpty())) && event.key() >= Qt::Key_Space && event.key() <= Qt::Key_AsciiTilde;
    if (isNamed) {
        const QString name = QString(QChar(char16_t(event.key())));
        text = event.modifiers() & Qt::ShiftModifier ? name : name.toLower();
    } else if (!text.isEmpty() && !text.front().isPrint() && !text.front().isSurrogate()) {
        text.clear();
    }
    key.characters = key.control || key.option ? QString() : text;
    const bool isLiteral = isNamed || (takesCharacters() && !key.control);
    key.charactersIgnoringModifiers = isLiteral ? text : commandText(text, event, m_keyboard);
    return key;
}

bool EditorVim::wantsKey(const QKeyEvent &event) const
{
    // What may be AltGr but mostly is not is a shortcut first.
    return !isAltGr(event) && engineWants(translated(event));
}

/// What was begun gets its next key, whosever that is otherwise.
bool EditorVim::engineWants(const VimKeyEvent &key) const
{
    return m_engine->wants(key) && (m_engine->awaitsChord() || m_chords.isVims(key));
}

bool EditorVim::handleKey(const QKeyEvent &event)
{
    if (event.key() == Qt::Key_Escape && !m_preedit.isEmpty()) {
        QGuiApplication::inputMethod()->reset();
        setPreedit({});
        return true;
    }
    if (!isModifier(event.key())) {
        const bool isSign = m_engine->options().isExact && !takesCharacters() &&
                            std::ranges::find(deadKeys, Qt::Key(event.key()), &KeyRow::key) != deadKeys.end();
        if (std::exchange(m_isAfterDeadKey, isSign) && event.key() == Qt::Key_Space && event.modifiers() == Qt::NoModifier) {
            return true;
        }
    }
    takeSelection();
    const VimKeyEvent key = translated(event);
    if (m_engine->mode() == VimEngine::Mode::insert) {
        m_engine->resumeInsertSession();
        if (engineWants(key)) {
            // What ends the mode would have it typed as commands. Keys that wait for a mapping wait on: this may be the next of it.
            if (m_view.isComposing()) {
                m_view.input().commit();
            }
        } else if (key.control) {
            return false;
        }
    } else if (!engineWants(key)) {
        // Keys of the view that modal editing has nothing in place of: chords, and modifiers by themselves.
        return !key.control && !key.option;
    }
    return carryOut([this, key] { return m_engine->handle(key); });
}

/// True when the key is done with, or goes on by itself; this may be gone then.
bool EditorVim::carryOut(std::function<bool()> keys)
{
    const auto isDone = std::make_shared<bool>(true);
    const auto work = [this, isDone, keys = std::move(keys)] {
        const QScopedValueRollback own(m_isOwn, true);
        *isDone = keys();
    };
    if (m_engine->options().isExact) {
        m_run.start(work);
    } else {
        work();
        keysDone(false);
    }
    return *isDone;
}

void EditorVim::keysDone(bool isStopped)
{
    if (isStopped) {
        const QScopedValueRollback own(m_isOwn, true);
        m_engine->leaveToNormal();
        if (!std::exchange(m_isStoppedFromWithin, false)) {
            m_lastSaid = localized(u"Interrupted. What was done by then is one step of undo.");
        }
    }
    m_revision = m_view.storage().revision();
    updateInputMethod();
    if (const QString said = std::exchange(m_lastSaid, {}); !said.isEmpty()) {
        m_callbacks.say(said);
    }
    runEnteredCommand();
}

void EditorVim::stop()
{
    m_isStoppedFromWithin = m_run.isRunning() && !m_run.isPaused();
    m_run.stop();
}

void EditorVim::settleMapping()
{
    if (!m_run.isRunning() && m_engine->awaitsMapping()) {
        const QScopedValueRollback settling(m_isSettling, true);
        carryOut([this] {
            m_engine->settleMapping();
            return true;
        });
    }
}

void EditorVim::breakInsertSession()
{
    if (!m_run.isRunning()) {
        m_engine->pauseInsertSession();
    }
}

bool EditorVim::handleInputMethod(const QInputMethodEvent &event)
{
    if (m_run.isPaused()) {
        return true;
    }
    const QString committed = event.commitString();
    if (!committed.isEmpty() || !event.preeditString().isEmpty()) {
        settleMapping();
    }
    const bool isReplacing = m_engine->isReplacing() && !committed.isEmpty();
    if (m_engine->mode() == VimEngine::Mode::insert && !isReplacing) {
        m_engine->resumeInsertSession();
        m_engine->noteInsertedText(committed);
        return false;
    }
    if (isReplacing) {
        QInputMethodEvent composed(event.preeditString(), event.attributes());
        m_view.input().handle(composed);
    }
    const QScopedValueRollback own(m_isOwn, true);
    for (qsizetype place = 0; place < committed.size() && takesCharacters();) {
        const qsizetype length = committed[place].isHighSurrogate() && place + 1 < committed.size() ? 2 : 1;
        const QString character = committed.sliced(place, length);
        m_engine->handle({.characters = character, .charactersIgnoringModifiers = character});
        place += length;
    }
    setPreedit(takesCharacters() && !isReplacing ? event.preeditString() : QString());
    updateInputMethod();
    m_revision = m_view.storage().revision();
    runEnteredCommand();
    return true;
}

void EditorVim::setPreedit(const QString &text)
{
    if (m_preedit != text) {
        m_preedit = text;
        m_callbacks.stateChanged();
    }
}

bool EditorVim::takesCharacters() const
{
    return m_engine->takesText() || m_engine->awaitsCharacter();
}

void EditorVim::updateInputMethod()
{
    const bool isOn = !m_view.isReadOnly() && takesCharacters();
    if (m_view.testAttribute(Qt::WA_InputMethodEnabled) != isOn) {
        m_view.setAttribute(Qt::WA_InputMethodEnabled, isOn);
        m_view.updateMicroFocus(Qt::ImEnabled);
    }
}

void EditorVim::vimEngineRunsCommand(VimEngine & /*engine*/, const QString &command)
{
    m_enteredCommand = command;
}

/// The last that is done with a key: a command may switch modal editing off, and so be the end of the engine and of this.
void EditorVim::runEnteredCommand()
{
    awaitMapping();
    if (m_isSettling) {
        QMetaObject::invokeMethod(
            &m_context, [this] { runEnteredCommand(); }, Qt::QueuedConnection);
        return;
    }
    if (!m_enteredActions.empty()) {
        const auto perform = m_callbacks.performCommand;
        for (const EnteredAction &entered : std::exchange(m_enteredActions, {})) {
            perform(*entered.action, entered.argument);
        }
        return;
    }
    if (m_enteredCommand) {
        const auto run = m_callbacks.runCommand;
        run(*std::exchange(m_enteredCommand, std::nullopt));
    }
}

void EditorVim::vimEngineSays(VimEngine & /*engine*/, const QString &message)
{
    if (m_run.isRunning()) {
        m_lastSaid = message;
    } else {
        m_callbacks.say(message);
    }
}

void EditorVim::vimEngineLists(VimEngine & /*engine*/, const QString &title, const QString &text)
{
    m_callbacks.list(title, text);
}

void EditorVim::vimEnginePerforms(VimEngine & /*engine*/, const Action &action, const QString &argument)
{
    m_enteredActions.push_back({&action, argument});
}

void EditorVim::vimEngineSubstitutes(VimEngine & /*engine*/, const VimSubstituteJob &job)
{
    m_callbacks.substitute(job);
}

/// A mapping that could go on waits for so long.
void EditorVim::awaitMapping()
{
    m_mappingTimeout.cancel();
    if (m_engine->awaitsMapping()) {
        m_mappingTimeout = m_scheduler.after(Scheduler::Milliseconds(m_engine->options().mappingTimeout), [this] {
            if (!m_run.isRunning()) {
                carryOut([this] {
                    m_engine->expireMapping();
                    return true;
                });
            }
        });
    }
}

void EditorVim::vimEngineDidChangeState(VimEngine & /*engine*/)
{
    if (m_engine) {
        keepOneCaret();
        m_panel->follow(m_engine->continuations());
        m_preview.follow(*m_engine);
        m_substitution.follow(*m_engine);
        completeFiles();
        m_callbacks.stateChanged();
    }
}

void EditorVim::configure(const VimOptions &options)
{
    m_engine->configure(options);
    m_preview.follow(*m_engine);
}

void EditorVim::completeFiles()
{
    const auto typed = m_engine->commandLine().awaitedFiles();
    if (!typed) {
        m_files.cancel();
        return;
    }
    m_files = BackgroundTask::start(
        m_workers,
        [typed = *typed, folder = workingFolder()](const std::stop_token & /*stop*/) { return VimCompletion::files(typed, folder); },
        [this](const QStringList &names) { m_engine->completeFiles(names); });
}

void EditorVim::selectionChanged()
{
    keepOneCaret();
    const quint64 revision = m_view.storage().revision();
    const bool isMove = std::exchange(m_revision, revision) == revision;
    if (m_isOwn) {
        return;
    }
    if (isMove) {
        showOffer(std::nullopt);
        m_search.stop();
    }
    if (m_engine->mode() == VimEngine::Mode::insert) {
        if (isMove) {
            breakInsertSession();
        }
        return;
    }
    m_foreign = isMove && m_foreign != Foreign::edited ? Foreign::moved : Foreign::edited;
    if (isMove && QGuiApplication::mouseButtons() == Qt::NoButton) {
        takeSelection();
        return;
    }
    // Whoever edits has not yet said where the caret is to be.
    const auto later = [this] {
        if (QGuiApplication::mouseButtons() == Qt::NoButton) {
            takeSelection();
        }
    };
    QMetaObject::invokeMethod(&m_context, later, Qt::QueuedConnection);
}

void EditorVim::takeSelection()
{
    const Foreign foreign = std::exchange(m_foreign, Foreign::nothing);
    if (foreign == Foreign::nothing || m_run.isPaused()) {
        return;
    }
    const QScopedValueRollback own(m_isOwn, true);
    if (foreign == Foreign::edited && m_engine->mode() == VimEngine::Mode::normal) {
        m_engine->settleCaret();
    } else {
        m_engine->takeSelection(m_view.selection());
    }
}

void EditorVim::keepOneCaret()
{
    const bool mayHaveSeveral =
        m_engine && (m_engine->mode() == VimEngine::Mode::insert || m_engine->mode() == VimEngine::Mode::visualBlock);
    if (m_engine && !mayHaveSeveral && !m_view.selections().isSingle()) {
        const QScopedValueRollback own(m_isOwn, true);
        m_view.setSelection(m_view.selection());
    }
}

// The view

const Rope &EditorVim::text() const
{
    return m_text.text();
}

VimTextName EditorVim::name() const
{
    return m_name ? m_name() : VimTextName();
}

TextRange EditorVim::selectedRange() const
{
    return m_text.selection().range();
}

void EditorVim::select(TextRange range, qsizetype caret)
{
    // The end that moves is where the caret is, or behind it.
    const QScopedValueRollback own(m_isOwn, true);
    m_foreign = Foreign::nothing;
    const TextSelection selection = caret == range.location && !range.isEmpty() ? TextSelection{range.end(), range.location}
                                                                                : TextSelection{range.location, range.end()};
    if (m_text.isDeferring()) {
        m_text.select(selection, caret);
        return;
    }
    m_view.showCaretAt(selection, caret);
}

void EditorVim::selectSeveral(const std::vector<TextRange> &ranges, size_t primary, std::optional<qsizetype> caret)
{
    const QScopedValueRollback own(m_isOwn, true);
    m_foreign = Foreign::nothing;
    std::vector<CaretSelection> all;
    all.reserve(ranges.size());
    for (const TextRange &range : ranges) {
        all.push_back(CaretSelection::of({range.location, range.end()}));
    }
    const Selections selections = Selections::merged(std::move(all), primary);
    if (caret) {
        m_text.direct().showCaretAt(selections, *caret);
    } else {
        m_text.direct().setSelection(selections, TextView::Reveal::nearest);
    }
}

bool EditorVim::apply(const TextEdits &edits)
{
    return m_text.isDeferring() ? m_text.apply(edits) : m_view.apply(edits, GroupKind::other, TextSelection::at(edits[0].range.location));
}

void EditorVim::insertText(const QString &text)
{
    if (m_text.mayType()) {
        m_text.type(withLineFeeds(text));
        return;
    }
    if (m_view.autoPairs() || !m_view.selections().isSingle()) {
        typeAgain(text);
        return;
    }
    m_view.insertText(withLineFeeds(text), m_view.selection().range());
}

void EditorVim::putText(const QString &text)
{
    if (m_text.mayType()) {
        m_text.type(withLineFeeds(text));
        return;
    }
    EditorTextView &view = m_text.direct();
    if (!view.selections().isSingle()) {
        view.typeText(withLineFeeds(text));
        return;
    }
    view.insertText(withLineFeeds(text), view.selection().range());
}

void EditorVim::deleteBackward(VimDeletion what)
{
    EditorTextView &view = m_text.direct();
    if (what == VimDeletion::letter) {
        view.deleteBackward();
    } else {
        view.deleteTo(what == VimDeletion::word ? Motion::wordLeft : Motion::rowStart);
    }
}

/// What keys did besides writing themselves they do once more.
void EditorVim::typeAgain(const QString &keys)
{
    struct Row {
        char16_t character;
        void (EditorTextView::*command)();
    };
    static constexpr auto rows = std::to_array<Row>({
        {u'\r', &EditorTextView::insertNewline},
        {u'\n', &EditorTextView::insertNewline},
        {u'\t', &EditorTextView::insertTab},
        {VimKey::backspace, &EditorTextView::deleteBackward},
    });
    EditorTextView &view = m_text.direct();
    for (qsizetype place = 0; place < keys.size();) {
        const qsizetype length = keys[place].isHighSurrogate() && place + 1 < keys.size() ? 2 : 1;
        if (const auto *row = std::ranges::find(rows, keys[place].unicode(), &Row::character); row != rows.end()) {
            (view.*row->command)();
        } else {
            view.typeText(QStringView(keys).sliced(place, length));
        }
        place += length;
    }
}

void EditorVim::undo()
{
    m_text.direct().undo();
}

void EditorVim::redo()
{
    m_text.direct().redo();
}

qsizetype EditorVim::undoSteps() const
{
    // What has not come to the view yet makes a step, unless it goes into one that is there.
    const qsizetype steps = m_view.undoManager().steps();
    const bool isInStep = m_undoGroups > 0 && steps > m_stepsBefore;
    return steps + (m_text.hasEdits() && !isInStep ? 1 : 0);
}

void EditorVim::beginUndoGroup()
{
    if (m_undoGroups++ == 0) {
        m_text.flush(); // that is no part of it
        m_stepsBefore = m_view.undoManager().steps();
    }
    m_view.undoManager().breakCoalescing();
    m_view.undoManager().beginGroup(GroupKind::other, m_view.selection(), &m_view);
}

void EditorVim::endUndoGroup()
{
    if (--m_undoGroups == 0) {
        m_text.flush();
    }
    m_view.undoManager().endGroup(m_view.selection());
}

qsizetype EditorVim::visibleLineCount() const
{
    return std::max<qsizetype>(m_view.textViewport().rowsPerPage(), 1);
}

TextRange EditorVim::visibleRange() const
{
    m_text.flush();
    Viewport &port = m_view.textViewport();
    LayoutManager &layout = m_view.layoutManager();
    const TextRange first = layout.rangeOf(port.rowAt(0).row);
    return first.united(layout.rangeOf(port.rowAt(m_view.viewport()->height() - 1).row));
}

void EditorVim::centerSelection()
{
    if (m_text.isDeferring()) {
        m_text.center();
    } else {
        m_view.revealCaret(TextView::Reveal::center);
    }
}

void EditorVim::revealSelection()
{
    if (!m_text.isDeferring()) {
        m_view.revealCaret();
    }
}

void EditorVim::revealAt(Edge edge)
{
    m_text.flush();
    m_view.revealCaret(TextView::Reveal::center);
    Viewport &port = m_view.textViewport();
    LayoutManager &layout = m_view.layoutManager();
    // All rows of its line are seen, if they fit.
    const qsizetype caret = m_view.selection().range().location;
    const Rope &text = m_view.storage().text();
    const qsizetype line = text.lineStart(text.lineAt(caret));
    const double page = double(std::max<qint64>(port.rowsPerPage() - 1, 0));
    VimBuffer buffer(text);
    const RowPosition row = layout.rowOf(edge == Edge::top ? line : buffer.lineContentEnd(caret));
    // One row at a time: where the rows are that are not on the screen need not be known.
    for (qsizetype left = port.rowsPerPage(); left > 0; --left) {
        const auto top = port.topOf(row);
        const bool isThere = top && (edge == Edge::top ? *top <= 0 : *top >= page * layout.rowHeight());
        const QPointF before = port.position();
        if (isThere) {
            break;
        }
        scrollRows(edge == Edge::top ? 1 : -1);
        if (port.position() == before) {
            break;
        }
    }
    m_view.revealCaret();
}

std::optional<VimTextView::RowPlace> EditorVim::movedByRows(const RowPlace &from, qsizetype rows) const
{
    m_text.flush();
    const auto moved =
        ::movedByRows({.offset = from.place, .affinity = Affinity::downstream, .preferredX = from.x}, rows, m_view.layoutManager());
    if (!moved) {
        return std::nullopt;
    }
    // Behind the last character of a row there is the next row.
    const bool isBehind = moved->affinity == Affinity::upstream;
    return RowPlace{isBehind ? TextBoundaries::previousGrapheme(text(), moved->offset) : moved->offset, moved->preferredX};
}

TextRange EditorVim::rowAt(qsizetype place) const
{
    m_text.flush();
    LayoutManager &layout = m_view.layoutManager();
    return layout.rangeOf(layout.rowOf(place));
}

void EditorVim::scrollRows(qsizetype rows)
{
    m_text.flush();
    m_view.scrollRows(int(std::clamp<qsizetype>(rows, -mostRows, mostRows)));
}

void EditorVim::seek(std::function<Seeking()> prepare, std::function<void(TextRange hit)> arrive)
{
    m_search.start(std::move(prepare), std::move(arrive));
}

void EditorVim::showIndicator(TextRange range)
{
    if (!m_text.isDeferring()) {
        m_view.showIndicator(range);
    }
}

Indentation EditorVim::indentation() const
{
    return m_view.indentation();
}

void EditorVim::toggleComment()
{
    m_text.direct().toggleComment();
}

void EditorVim::setCaretLook(VimCaret look)
{
    using enum TextLooks::CaretShape;
    static constexpr std::array shapes = {bar, block, underline};
    if (m_text.isDeferring()) {
        m_text.setCaretShape(shapes[size_t(look)]);
    } else {
        m_view.setLook(&TextLooks::caretShape, shapes[size_t(look)]);
    }
}

std::vector<Rope> EditorVim::otherTexts() const
{
    return m_otherTexts ? m_otherTexts() : std::vector<Rope>();
}

void EditorVim::showOffer(const std::optional<VimOffer> &offer)
{
    if (offer && !m_completions) {
        m_completions = std::make_unique<CompletionPanel>(m_view);
    }
    if (m_completions) {
        m_completions->showOffer(offer);
    }
}

void EditorVim::perform(const Action &action)
{
    if (!m_text.direct().Responder::perform(action)) {
        beep();
    }
}

void EditorVim::beep()
{
    m_beep();
}
