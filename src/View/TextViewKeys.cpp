// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The keys of a TextView: one table of chords, and what counts as text.

#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <QKeyEvent>

#include <algorithm>
#include <vector>

/// What a chord does. With Shift held besides, a motion extends the selection.
struct TextView::KeyCommand {
    enum class Kind { motion, deletion, scroll, command };

    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    Kind kind;
    Motion motion = Motion::left;
    int rows = 0;
    void (TextView::*command)() = nullptr;
};

const TextView::KeyCommand *TextView::commandFor(const QKeyEvent &event)
{
    using Kind = KeyCommand::Kind;
    constexpr auto none = Qt::NoModifier;
    constexpr auto control = Qt::ControlModifier;
    constexpr auto shift = Qt::ShiftModifier;
    const auto move = [](Qt::Key key, Qt::KeyboardModifiers modifiers, Motion motion) {
        return KeyCommand{.key = key, .modifiers = modifiers, .kind = Kind::motion, .motion = motion};
    };
    const auto erase = [](Qt::Key key, Qt::KeyboardModifiers modifiers, Motion motion) {
        return KeyCommand{.key = key, .modifiers = modifiers, .kind = Kind::deletion, .motion = motion};
    };
    const auto scroll = [](Qt::Key key, int rows) {
        return KeyCommand{.key = key, .modifiers = control, .kind = Kind::scroll, .rows = rows};
    };
    const auto run = [](Qt::Key key, Qt::KeyboardModifiers modifiers, void (TextView::*command)()) {
        return KeyCommand{.key = key, .modifiers = modifiers, .kind = Kind::command, .command = command};
    };
    static const auto table = [&] {
        std::vector<KeyCommand> rows{
            move(Qt::Key_Left, none, Motion::left),
            move(Qt::Key_Right, none, Motion::right),
            move(Qt::Key_Left, control, Motion::wordLeft),
            move(Qt::Key_Right, control, Motion::wordRight),
            move(Qt::Key_Up, none, Motion::up),
            move(Qt::Key_Down, none, Motion::down),
            move(Qt::Key_PageUp, none, Motion::pageUp),
            move(Qt::Key_PageDown, none, Motion::pageDown),
            move(Qt::Key_PageUp, Qt::AltModifier, Motion::paragraphUp),
            move(Qt::Key_PageDown, Qt::AltModifier, Motion::paragraphDown),
            move(Qt::Key_Home, none, Motion::rowStart),
            move(Qt::Key_End, none, Motion::rowEnd),
            move(Qt::Key_Home, control, Motion::textStart),
            move(Qt::Key_End, control, Motion::textEnd),
            erase(Qt::Key_Backspace, control, Motion::wordLeft),
            erase(Qt::Key_Delete, control, Motion::wordRight),
            erase(Qt::Key_Backspace, control | shift, Motion::rowStart),
            erase(Qt::Key_Delete, control | shift, Motion::rowEnd),
            scroll(Qt::Key_Up, -1),
            scroll(Qt::Key_Down, 1),
            run(Qt::Key_Backspace, none, &TextView::deleteBackward),
            run(Qt::Key_Backspace, shift, &TextView::deleteBackward),
            run(Qt::Key_Delete, none, &TextView::deleteForward),
            run(Qt::Key_Return, none, &TextView::insertNewline),
            run(Qt::Key_Return, shift, &TextView::insertNewline),
            run(Qt::Key_Enter, none, &TextView::insertNewline),
            run(Qt::Key_Tab, none, &TextView::insertTab),
            run(Qt::Key_Backtab, none, &TextView::insertBacktab),
            run(Qt::Key_Backtab, shift, &TextView::insertBacktab),
            run(Qt::Key_Delete, shift, &TextView::cut),
            run(Qt::Key_Insert, control, &TextView::copy),
            run(Qt::Key_Insert, shift, &TextView::paste),
            run(Qt::Key_Cut, none, &TextView::cut),
            run(Qt::Key_Copy, none, &TextView::copy),
            run(Qt::Key_Paste, none, &TextView::paste),
        };
        // Taken by the text itself, before the menu, so that they work where there is none.
        const std::pair<const Action *, void (TextView::*)()> actions[] = {
            {&Actions::undo, &TextView::undo}, {&Actions::redo, &TextView::redo},   {&Actions::cut, &TextView::cut},
            {&Actions::copy, &TextView::copy}, {&Actions::paste, &TextView::paste}, {&Actions::selectAll, &TextView::selectAll},
        };
        for (const auto &[action, command] : actions) {
            for (const QKeySequence &keys : keySequences(*action)) {
                rows.push_back(run(keys[0].key(), keys[0].keyboardModifiers(), command));
            }
        }
        return rows;
    }();
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    const auto matches = [&](const KeyCommand &row) {
        if (row.key != event.key()) {
            return false;
        }
        return row.modifiers == modifiers || (row.kind == Kind::motion && (row.modifiers | shift) == modifiers);
    };
    const auto found = std::find_if(table.begin(), table.end(), matches);
    return found == table.end() ? nullptr : &*found;
}

namespace {

bool hasControlAndAlt(const QKeyEvent &event)
{
    return event.modifiers().testFlags(Qt::ControlModifier | Qt::AltModifier);
}

/// Text as a key press means it: AltGr arrives as Control and Alt on some keyboards, Control or Alt alone make a chord.
bool isTextInput(const QKeyEvent &event)
{
    const QString text = event.text();
    if (text.isEmpty()) {
        return false;
    }
    const QChar first = text.front();
    if (first.category() == QChar::Other_Format || first.category() == QChar::Other_PrivateUse || first.isHighSurrogate()) {
        return true;
    }
    const bool isChord = event.modifiers().testFlag(Qt::ControlModifier) != event.modifiers().testFlag(Qt::AltModifier);
    return !isChord && first.isPrint();
}

/// Escape leaves only the primary one of several carets.
bool givesUpCarets(const QKeyEvent &event, const Selections &selections)
{
    return event.key() == Qt::Key_Escape && event.modifiers() == Qt::NoModifier && !selections.isSingle();
}

} // namespace

bool TextView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        // Claimed: what the text takes. All else is left to the shortcuts of the window, and so is what may be AltGr but mostly is not.
        const auto &key = static_cast<const QKeyEvent &>(*event);
        if (commandFor(key) || givesUpCarets(key, selections()) || (isTextInput(key) && !hasControlAndAlt(key) && !isReadOnly())) {
            event->accept();
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void TextView::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    if (m_input.isCancelledBy(*event)) {
        return;
    }
    if (givesUpCarets(*event, selections())) {
        setSelection(selection(), Reveal::nearest);
        return;
    }
    if (const KeyCommand *row = commandFor(*event)) {
        switch (row->kind) {
        case KeyCommand::Kind::motion:
            m_input.commit();
            move(row->motion, event->modifiers() & Qt::ShiftModifier ? Anchor::stays : Anchor::moves);
            return;
        case KeyCommand::Kind::deletion:
            deleteTo(row->motion);
            return;
        case KeyCommand::Kind::scroll:
            scrollRows(row->rows);
            return;
        case KeyCommand::Kind::command:
            (this->*row->command)();
            return;
        }
    }
    if (!isTextInput(*event) || isReadOnly()) {
        event->ignore();
        return;
    }
    typeText(event->text());
}

void TextView::move(Motion motion, Anchor anchor)
{
    m_undoManager.breakCoalescing();
    const bool isSideways = motion == Motion::left || motion == Motion::right;
    const auto movedOne = [&](const CaretSelection &one) -> CaretSelection {
        if (anchor == Anchor::moves && one.cellsBehind > 0 && motion == Motion::left) {
            return {.caret = one.caret, .anchor = one.anchor, .cellsBehind = one.cellsBehind - 1};
        }
        // The first arrow key only gives the selection up, at the side that it points to.
        if (anchor == Anchor::moves && !one.isEmpty() && isSideways) {
            return CaretSelection::at({motion == Motion::left ? one.range().location : one.range().end()});
        }
        const Caret caret = moved(one.caret, motion, m_layout, m_storage.text(), m_port.rowsPerPage());
        return {.caret = caret, .anchor = anchor == Anchor::stays ? one.anchor : caret.offset};
    };
    std::vector<CaretSelection> all;
    std::ranges::transform(selections(), std::back_inserter(all), movedOne);
    const bool isPage = motion == Motion::pageUp || motion == Motion::pageDown;
    const auto before =
        isPage && anchor == Anchor::moves ? m_port.topOf(m_layout.rowOf(m_caret.place().offset, m_caret.place().affinity)) : std::nullopt;
    setCarets(Selections::merged(std::move(all), selections().primaryIndex()));
    if (before) {
        // A page turns the text under the caret, which stays where it is on the screen.
        m_port.scrollRows(motion == Motion::pageUp ? -m_port.rowsPerPage() : m_port.rowsPerPage());
        viewMoved();
        viewport()->update();
    }
    revealCaret();
}

void TextView::deleteTo(Motion motion)
{
    using enum CaretEditing::Direction;
    m_input.commit();
    const bool isForward = motion == Motion::right || motion == Motion::wordRight || motion == Motion::rowEnd;
    run(CaretEditing::removed(
            selections(), isForward ? forward : backward,
            [&](const CaretSelection &one) { return moved(one.caret, motion, m_layout, m_storage.text(), m_port.rowsPerPage()).offset; }),
        GroupKind::other);
}

void TextView::insertNewline()
{
    m_input.commit();
    typeText(u"\n");
}

void TextView::insertTab()
{
    m_input.commit();
    typeText(u"\t");
}

void TextView::insertBacktab()
{
    // The text of one plain view has no levels to go back.
}

void TextView::deleteBackward()
{
    m_input.commit();
    const GroupKind kind = selections().hasSelected() ? GroupKind::other : GroupKind::deletingBackward;
    run(CaretEditing::removed(
            selections(), CaretEditing::Direction::backward,
            [this](const CaretSelection &one) { return TextBoundaries::previousGrapheme(m_storage.text(), one.caret.offset); }),
        kind);
}

void TextView::deleteForward()
{
    m_input.commit();
    const GroupKind kind = selections().hasSelected() ? GroupKind::other : GroupKind::deletingForward;
    run(CaretEditing::removed(
            selections(), CaretEditing::Direction::forward,
            [this](const CaretSelection &one) { return TextBoundaries::nextGrapheme(m_storage.text(), one.caret.offset); }),
        kind);
}
