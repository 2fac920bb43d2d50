// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorTextView.h"

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Editor/EditorVim.h"
#include "Text/TextStorage.h"
#include "Widgets/Mnemonics.h"

#include <QDropEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>

#include <array>

EditorTextView::EditorTextView(TextStorage &storage, UndoManager &undoManager, const Services &services, const QFont &font, QWidget *parent)
    : NumberedTextView(storage, undoManager, {services.scheduler, services.pasteboard}, font, parent), m_beep(services.beep)
{
    connect(this, &TextView::contextMenuRequested, this, &EditorTextView::addCommands);
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

void EditorTextView::willReplay()
{
    if (m_vim) {
        m_vim->breakInsertSession();
    }
}

void EditorTextView::focusOutEvent(QFocusEvent *event)
{
    if (m_vim) {
        m_vim->breakInsertSession();
    }
    TextView::focusOutEvent(event);
}

// Looks

void EditorTextView::setIndentation(Indentation indentation)
{
    m_indentation = indentation;
    setTabWidth(indentation.width);
}

// Commands

bool EditorTextView::canToggleComment() const
{
    return !isReadOnly() && m_language.lineComment().has_value();
}

void EditorTextView::run(const std::optional<TextStep> &step, GroupKind kind)
{
    if (step) {
        apply(step->edits, kind, step->after);
    }
}

void EditorTextView::insertTab()
{
    input().commit();
    const TextRange selected = selection().range();
    const Rope &text = storage().text();
    if (text.lineAt(selected.location) != text.lineAt(selected.end())) {
        shiftSelectedLines(LineEditing::Shift::indent);
    } else if (m_indentation.unit == Indentation::Unit::tab) {
        TextView::insertTab();
    } else {
        run(LineEditing::tabbed(text, selected, m_indentation.width), GroupKind::typing);
    }
}

void EditorTextView::insertBacktab()
{
    shiftSelectedLines(LineEditing::Shift::outdent);
}

void EditorTextView::shiftSelectedLines(LineEditing::Shift shift)
{
    input().commit();
    run(LineEditing::shifted(storage().text(), selection().range(), shift, m_indentation));
}

void EditorTextView::insertNewline()
{
    if (m_autoIndent == AutoIndent::off) {
        TextView::insertNewline();
        return;
    }
    input().commit();
    run(LineEditing::brokenLine(storage().text(), selection().range(), m_indentation), GroupKind::typing);
}

void EditorTextView::deleteBackward()
{
    input().commit();
    const TextSelection selected = selection();
    const auto step = selected.isEmpty() && m_indentation.unit == Indentation::Unit::spaces
                          ? LineEditing::unindented(storage().text(), selected.caret, m_indentation.width)
                          : std::nullopt;
    if (step) {
        run(step, GroupKind::deletingBackward);
    } else {
        TextView::deleteBackward();
    }
}

void EditorTextView::toggleComment()
{
    if (!canToggleComment()) {
        m_beep();
        return;
    }
    input().commit();
    run(LineEditing::commentToggled(storage().text(), selection().range(), *m_language.lineComment()));
}

void EditorTextView::duplicateLine()
{
    input().commit();
    run(LineEditing::duplicated(storage().text(), selection().range()));
}

void EditorTextView::deleteLine()
{
    input().commit();
    run(LineEditing::deleted(storage().text(), selection().range()));
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
    return TextView::viewportEvent(event);
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
