// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorVim.h"

#include "Editor/EditorTextView.h"
#include "Text/PasteboardText.h"
#include "Text/TextStorage.h"

#include <QInputMethodEvent>
#include <QKeyEvent>

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

/// The letters of the three rows of a US keyboard by the kernel's key codes, which X and Wayland pass on with 8 added.
struct KeyboardRow {
    quint32 firstCode;
    QStringView plain;
    QStringView shifted;
};
constexpr auto keyboard = std::to_array<KeyboardRow>({
    {16, u"qwertyuiop[]", u"QWERTYUIOP{}"},
    {30, u"asdfghjkl;'`", u"ASDFGHJKL:\"~"},
    {44, u"zxcvbnm,./", u"ZXCVBNM<>?"},
});
constexpr quint32 scanCodeOffset = 8;

bool isPrivateUse(char16_t unit)
{
    return unit >= 0xE000 && unit <= 0xF8FF;
}

/// What the key would be on a US keyboard, for a letter of another script.
QString latinInPlaceOf(const QString &text, const QKeyEvent &event)
{
    const QChar letter = text.isEmpty() ? QChar() : text.front();
    if (!letter.isLetter() || letter.script() == QChar::Script_Latin || event.nativeScanCode() < scanCodeOffset) {
        return text;
    }
    const quint32 code = event.nativeScanCode() - scanCodeOffset;
    for (const KeyboardRow &row : keyboard) {
        if (code >= row.firstCode && code - row.firstCode < quint32(row.plain.size())) {
            return (event.modifiers() & Qt::ShiftModifier ? row.shifted : row.plain).sliced(code - row.firstCode, 1).toString();
        }
    }
    return text;
}

} // namespace

EditorVim::EditorVim(EditorTextView &view, VimRegisters &registers, VimKeymapPreset preset, Callbacks callbacks)
    : m_view(view), m_callbacks(std::move(callbacks)), m_engine(new VimEngine(*this, *this, registers, preset))
{
    m_view.setVim(this);
    m_engine->leaveToNormal();
    updateInputMethod();
}

EditorVim::~EditorVim()
{
    m_engine.reset();
    m_view.setVim(nullptr);
    m_view.setAttribute(Qt::WA_InputMethodEnabled, !m_view.isReadOnly());
}

// Keys

VimKeyEvent EditorVim::translated(const QKeyEvent &event) const
{
    // On some keyboards AltGr comes as Control and Alt, and what it types is text.
    const bool isAltGr =
        event.modifiers().testFlags(Qt::ControlModifier | Qt::AltModifier) && !event.text().isEmpty() && event.text().front().isPrint();
    VimKeyEvent key{.characters = {},
                    .charactersIgnoringModifiers = {},
                    .control = event.modifiers().testFlag(Qt::ControlModifier) && !isAltGr,
                    .option = event.modifiers().testFlag(Qt::AltModifier) && !isAltGr};
    if (const auto *row = std::ranges::find(functionKeys, Qt::Key(event.key()), &KeyRow::key); row != functionKeys.end()) {
        key.charactersIgnoringModifiers = QString(QChar(row->character));
        key.characters = isPrivateUse(row->character) ? QString() : key.charactersIgnoringModifiers;
        return key;
    }
    const bool takesLiterally = m_engine->takesText() || m_engine->awaitsCharacter();
    QString text = event.text();
    if ((key.control || (key.option && text.isEmpty())) && event.key() >= Qt::Key_Space && event.key() < Qt::Key_Escape) {
        const QString name = QString(QChar(char16_t(event.key())));
        text = event.modifiers() & Qt::ShiftModifier ? name : name.toLower();
        text = latinInPlaceOf(text, event);
    } else if (!text.isEmpty() && !text.front().isPrint() && !text.front().isSurrogate()) {
        text.clear();
    }
    key.characters = key.control ? QString() : text;
    key.charactersIgnoringModifiers = takesLiterally ? text : latinInPlaceOf(text, event);
    return key;
}

bool EditorVim::wantsKey(const QKeyEvent &event) const
{
    return m_engine->wants(translated(event));
}

bool EditorVim::handleKey(const QKeyEvent &event)
{
    const VimKeyEvent key = translated(event);
    if (m_engine->mode() == VimEngine::Mode::insert) {
        m_engine->resumeInsertSession();
    } else if (!m_engine->wants(key)) {
        // Keys of the view that modal editing has nothing in place of: chords, and modifiers by themselves.
        return !key.control && !key.option;
    }
    const bool isDone = m_engine->handle(key);
    updateInputMethod();
    runEnteredCommand();
    return isDone;
}

bool EditorVim::handleInputMethod(const QInputMethodEvent &event)
{
    if (m_engine->mode() == VimEngine::Mode::insert) {
        m_engine->resumeInsertSession();
        m_engine->noteInsertedText(event.commitString());
        return false;
    }
    const QString committed = event.commitString();
    for (qsizetype place = 0; place < committed.size();) {
        const qsizetype length = committed[place].isHighSurrogate() && place + 1 < committed.size() ? 2 : 1;
        const QString character = committed.sliced(place, length);
        m_engine->handle({.characters = character, .charactersIgnoringModifiers = character});
        place += length;
    }
    updateInputMethod();
    runEnteredCommand();
    return true;
}

void EditorVim::updateInputMethod()
{
    const bool isOn = !m_view.isReadOnly() && (m_engine->takesText() || m_engine->awaitsCharacter());
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
    if (m_enteredCommand) {
        const auto run = m_callbacks.runCommand;
        run(*std::exchange(m_enteredCommand, std::nullopt));
    }
}

void EditorVim::vimEngineDidChangeState(VimEngine & /*engine*/)
{
    if (m_engine) {
        m_callbacks.stateChanged();
    }
}

// The view

const Rope &EditorVim::text() const
{
    return m_view.storage().text();
}

TextRange EditorVim::selectedRange() const
{
    return m_view.selection().range();
}

void EditorVim::select(TextRange range, qsizetype caret)
{
    // The end that moves is where the caret is, or behind it.
    const TextSelection selection = caret == range.location && !range.isEmpty() ? TextSelection{range.end(), range.location}
                                                                                : TextSelection{range.location, range.end()};
    m_view.showCaretAt(selection, caret);
}

bool EditorVim::replace(std::span<const Edit> edits)
{
    std::vector<QString> texts;
    for (const Edit &edit : edits) {
        texts.push_back(edit.text.toString());
    }
    std::vector<EditorTextView::Replacement> replacements;
    for (size_t index = 0; index < edits.size(); ++index) {
        replacements.push_back({edits[index].range, texts[index]});
    }
    return m_view.replaceTexts(replacements, GroupKind::other, TextSelection::at(edits.front().range.location));
}

void EditorVim::insertText(const QString &text)
{
    m_view.insertText(withLineFeeds(text), m_view.selection().range());
}

void EditorVim::undo()
{
    m_view.undo();
}

void EditorVim::redo()
{
    m_view.redo();
}

void EditorVim::beginUndoGroup()
{
    m_view.undoManager().breakCoalescing();
    m_view.undoManager().beginGroup(GroupKind::other, m_view.selection(), &m_view);
}

void EditorVim::endUndoGroup()
{
    m_view.undoManager().endGroup(m_view.selection());
}

qsizetype EditorVim::visibleLineCount() const
{
    return std::max<qsizetype>(m_view.textViewport().rowsPerPage(), 1);
}

TextRange EditorVim::visibleRange() const
{
    Viewport &port = m_view.textViewport();
    LayoutManager &layout = m_view.layoutManager();
    const TextRange first = layout.rangeOf(port.rowAt(0).row);
    return first.united(layout.rangeOf(port.rowAt(m_view.viewport()->height() - 1).row));
}

void EditorVim::centerSelection()
{
    m_view.centerSelection();
}

void EditorVim::revealSelection()
{
    m_view.revealCaret();
}

void EditorVim::showIndicator(TextRange range)
{
    m_view.showIndicator(range);
}

QString EditorVim::indentationUnit() const
{
    const Indentation indentation = m_view.indentation();
    return indentation.unit == Indentation::Unit::spaces ? QString(indentation.width, u' ') : u"\t"_s;
}

void EditorVim::toggleComment()
{
    m_view.toggleComment();
}

void EditorVim::setCaretLook(VimCaret look)
{
    m_view.setCaretShape(look == VimCaret::bar ? TextView::CaretShape::bar : TextView::CaretShape::block);
}

void EditorVim::perform(Selector action)
{
    if (!m_view.Responder::perform(action)) {
        beep();
    }
}

void EditorVim::beep()
{
    m_callbacks.beep();
}
