// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorTextView.h"

#include "Base/Pasteboard.h"
#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Editor/AutoPairs.h"
#include "Editor/EditorVim.h"
#include "Text/LineWalk.h"
#include "Text/PasteboardText.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "Widgets/Mnemonics.h"

#include <QDropEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>

#include <algorithm>
#include <array>
#include <utility>

namespace {

bool endsLine(const Rope &text, qsizetype offset)
{
    return offset == text.length() || isLineEnd(text.at(offset));
}

} // namespace

EditorTextView::EditorTextView(TextStorage &storage, UndoManager &undoManager, const Services &services, const QFont &font, QWidget *parent)
    : NumberedTextView(storage, undoManager, {services.scheduler, services.pasteboard}, font, parent), m_beep(services.beep)
{
    connect(this, &TextView::contextMenuRequested, this, &EditorTextView::addCommands);
    connect(this, &TextView::selectionChanged, this, [this] {
        if (m_vim) {
            m_vim->selectionChanged();
        }
    });
}

EditorTextView::~EditorTextView() = default;

void EditorTextView::setAutoPairs(std::unique_ptr<AutoPairs> pairs)
{
    m_pairs = std::move(pairs);
}

void EditorTextView::addCommands(QMenu *menu)
{
    menu->addSeparator();
    QAction *item = menu->addAction(withMnemonic(localized(Actions::toggleComment.title), *menu), this, &EditorTextView::toggleComment);
    item->setEnabled(canToggleComment());
}

const ActionRow *EditorTextView::actionFor(const Action &wanted) const
{
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&EditorTextView::insertTab, &EditorTextView::isEditable>(Actions::insertTab),
        action<&EditorTextView::insertBacktab, &EditorTextView::isEditable>(Actions::insertBacktab),
        action<&EditorTextView::toggleComment, &EditorTextView::canToggleComment>(Actions::toggleComment),
        action<&EditorTextView::duplicateLine, &EditorTextView::isEditable>(Actions::duplicateLine),
        action<&EditorTextView::deleteLine, &EditorTextView::isEditable>(Actions::deleteLine),
        action<&EditorTextView::cut, &EditorTextView::canCut>(Actions::cut),
        action<&EditorTextView::copy, &EditorTextView::canCopy>(Actions::copy),
        action<&EditorTextView::toggleOverwriteMode, &EditorTextView::overwriteState>(Actions::toggleOverwriteMode),
    });
    const ActionRow *row = findAction(rows, wanted);
    return row ? row : TextView::actionFor(wanted);
}

// Modal editing

bool EditorTextView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && m_vim && m_vim->wantsKey(static_cast<const QKeyEvent &>(*event))) {
        event->accept();
        return true;
    }
    return TextView::event(event);
}

void EditorTextView::keyPressEvent(QKeyEvent *event)
{
    if (input().isCancelledBy(*event) || (m_vim && m_vim->handleKey(*event))) {
        event->accept();
        return;
    }
    TextView::keyPressEvent(event);
}

void EditorTextView::inputMethodEvent(QInputMethodEvent *event)
{
    if (m_vim && m_vim->handleInputMethod(*event)) {
        event->accept();
        return;
    }
    TextView::inputMethodEvent(event);
}

void EditorTextView::willPerform(const Action & /*wanted*/)
{
    finishTyping();
}

void EditorTextView::finishTyping()
{
    if (m_vim) {
        m_vim->settleMapping();
    }
}

void EditorTextView::willReplay()
{
    if (m_vim) {
        m_vim->breakInsertSession();
    }
}

void EditorTextView::focusOutEvent(QFocusEvent *event)
{
    finishTyping();
    if (m_vim) {
        m_vim->breakInsertSession();
    }
    TextView::focusOutEvent(event);
}

void EditorTextView::setVim(EditorVim *vim)
{
    if (vim) {
        setTypingMode(TypingMode::inserts);
    }
    m_vim = vim;
}

// Overwriting

void EditorTextView::toggleOverwriteMode()
{
    if (!m_vim) {
        setTypingMode(m_typingMode == TypingMode::inserts ? TypingMode::overwrites : TypingMode::inserts);
    }
}

ActionState EditorTextView::overwriteState() const
{
    return {.isEnabled = isEditable() && !m_vim, .checkMark = m_typingMode == TypingMode::overwrites ? CheckMark::on : CheckMark::none};
}

void EditorTextView::setTypingMode(TypingMode mode)
{
    if (std::exchange(m_typingMode, mode) != mode) {
        setLook(&TextLooks::caretShape, mode == TypingMode::overwrites ? CaretShape::block : CaretShape::bar);
        emit typingModeChanged();
    }
}

/// As many characters go as come, but no line break does.
void EditorTextView::typeText(QStringView typed)
{
    if (m_pairs && m_typingMode == TypingMode::inserts && m_pairs->type(typed)) {
        return;
    }
    const bool isWritten = std::ranges::none_of(typed, [](QChar unit) { return unit.category() == QChar::Other_Control; });
    const bool isInText =
        std::ranges::all_of(selections(), [](const CaretSelection &one) { return one.isEmpty() && one.cellsBehind == 0; });
    if (m_typingMode == TypingMode::inserts || !isWritten || !isInText) {
        NumberedTextView::typeText(typed);
        return;
    }
    const Rope &text = storage().text();
    const Rope added(typed);
    const auto replacement = [&](const CaretSelection &one, size_t /*index*/) {
        qsizetype end = one.caret.offset;
        for (qsizetype at = 0; at < added.length() && !endsLine(text, end); at = TextBoundaries::nextGrapheme(added, at)) {
            end = TextBoundaries::nextGrapheme(text, end);
        }
        return CaretEditing::Replacement{TextRange::between(one.caret.offset, end), added};
    };
    run(CaretEditing::replaced(selections(), replacement), GroupKind::typing);
}

// The pasteboard

void EditorTextView::copy()
{
    if (!takesLine()) {
        NumberedTextView::copy();
        return;
    }
    const Rope &text = storage().text();
    Rope line = text.slice(selectedLines(text, selection().range()));
    if (line.isEmpty() || !isLineEnd(line.at(line.length() - 1))) {
        line.replace({line.length(), 0}, u"\n");
    }
    ::setText(pasteboard(), line);
    pasteboard().markAsLine();
}

void EditorTextView::cut()
{
    if (!takesLine()) {
        NumberedTextView::cut();
    } else if (isEditable()) {
        input().commit();
        copy();
        deleteLine();
    }
}

/// What was copied as a line becomes one before that of the caret.
void EditorTextView::paste()
{
    if (!takesLine() || !pasteboard().isLine()) {
        NumberedTextView::paste();
        return;
    }
    input().commit();
    const qsizetype caret = selection().caret;
    const Rope line(withLineFeeds(pasteboard().text()));
    apply({{lineRange(storage().text(), {caret, 0}).location, 0}, line}, GroupKind::other, TextSelection::at(caret + line.length()));
}

// Looks

void EditorTextView::setIndentation(Indentation indentation)
{
    m_indentation = indentation;
    setTabWidth(indentation.tabWidth());
}

// Commands

bool EditorTextView::canToggleComment() const
{
    return !isReadOnly() && m_language.lineComment().has_value();
}

void EditorTextView::atLines(const std::function<std::optional<TextStep>(TextRange)> &command)
{
    input().commit();
    const auto step =
        CaretEditing::atLines(storage().text(), selections(), [&](TextSelection selected) { return command(selected.range()); });
    if (step) {
        run(*step, GroupKind::other);
    }
}

void EditorTextView::insertTab()
{
    input().commit();
    const Rope &text = storage().text();
    const auto spansLines = [&](const CaretSelection &one) { return text.lineAt(one.range().location) != text.lineAt(one.range().end()); };
    if (std::ranges::any_of(selections(), spansLines)) {
        shiftSelectedLines(LineEditing::Shift::indent);
    } else if (m_indentation.unit == Indentation::Unit::tab) {
        TextView::insertTab();
    } else {
        replaceAtEach([&](TextRange selected) { return LineEditing::tabbed(text, selected, m_indentation); });
    }
}

void EditorTextView::insertBacktab()
{
    shiftSelectedLines(LineEditing::Shift::outdent);
}

void EditorTextView::shiftSelectedLines(LineEditing::Shift shift)
{
    if (!selections().isSingle()) {
        atLines([&](TextRange selected) { return LineEditing::shifted(storage().text(), selected, shift, m_indentation); });
        return;
    }
    input().commit();
    const Rope &text = storage().text();
    const bool isRepeated = m_shifted && m_shifted->revision == storage().revision() && m_shifted->selection == selection();
    const TextRange lines = isRepeated ? m_shifted->lines : selectedLines(text, selection().range());
    if (const auto step = LineEditing::shifted(text, selection().range(), shift, m_indentation, lines)) {
        apply(step->edits, GroupKind::other, step->after);
        m_shifted = {
            .revision = storage().revision(), .selection = selection(), .lines = {lines.location, lines.length + step->edits.growth()}};
    }
}

void EditorTextView::insertNewline()
{
    if (m_autoIndent == AutoIndent::off) {
        TextView::insertNewline();
        return;
    }
    input().commit();
    const auto broken = [&](TextRange selected) { return LineEditing::brokenLine(storage().text(), selected, m_indentation); };
    if (m_pairs) {
        run(m_pairs->broken(m_indentation, broken), GroupKind::typing);
    } else {
        replaceAtEach(broken);
    }
}

void EditorTextView::deleteBackward()
{
    input().commit();
    const bool goesToStops = m_indentation.unit == Indentation::Unit::spaces && !selections().hasSelected();
    if (!goesToStops && !m_pairs) {
        TextView::deleteBackward();
        return;
    }
    const Rope &text = storage().text();
    const auto otherEnd = [&](const CaretSelection &one) {
        const qsizetype caret = one.caret.offset;
        const auto step = goesToStops ? LineEditing::unindented(text, caret, m_indentation.width) : std::nullopt;
        return step ? step->after.caret : TextBoundaries::previousGrapheme(text, caret);
    };
    run(m_pairs ? m_pairs->removed(otherEnd) : CaretEditing::removed(selections(), CaretEditing::Direction::backward, otherEnd),
        selections().hasSelected() ? GroupKind::other : GroupKind::deletingBackward);
}

void EditorTextView::toggleComment()
{
    if (!canToggleComment()) {
        m_beep();
        return;
    }
    atLines([&](TextRange selected) { return LineEditing::commentToggled(storage().text(), selected, *m_language.lineComment()); });
}

void EditorTextView::duplicateLine()
{
    atLines([&](TextRange selected) { return LineEditing::duplicated(storage().text(), selected); });
}

void EditorTextView::deleteLine()
{
    atLines([&](TextRange selected) { return LineEditing::deleted(storage().text(), selected); });
}

void EditorTextView::replaceAtEach(const std::function<TextStep(TextRange)> &command)
{
    run(CaretEditing::replaced(selections(),
                               [&](const CaretSelection &one, size_t) { return CaretEditing::Replacement::of(command(one.range())); }),
        GroupKind::typing);
}

// Focus and drops

void EditorTextView::focusInEvent(QFocusEvent *event)
{
    TextView::focusInEvent(event);
    emit activated();
}

bool EditorTextView::viewportEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        emit activated();
        break;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        if (takesFiles(static_cast<QDropEvent &>(*event))) {
            return true;
        }
        break;
    default:
        break;
    }
    const bool isDone = TextView::viewportEvent(event);
    if (m_vim && event->type() == QEvent::MouseButtonRelease) {
        m_vim->takeSelection();
    }
    return isDone;
}

/// True when what is dragged are files for the editor, and shall not become text.
bool EditorTextView::takesFiles(QDropEvent &event)
{
    const QStringList &paths = m_files.of(event);
    if (paths.isEmpty() || event.modifiers().testFlag(Qt::AltModifier)) {
        return false;
    }
    pointer().setDropCaret({});
    event.setDropAction(Qt::CopyAction);
    event.accept();
    if (event.type() == QEvent::Drop) {
        emit filesDropped(paths);
    }
    return true;
}
