// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Platform/FirstResponder.h"

#include "Platform/Responder.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPointer>

#include <array>

namespace {

/// Stands in for the line edit that has the focus, so that the menu's commands reach it as its keys do.
class LineEditResponder final : public Responder {
public:
    void setEdit(QLineEdit *edit)
    {
        m_edit = edit;
        setNextResponder(nearestResponder(edit->parent()));
    }

    [[nodiscard]] const ActionRow *actionFor(Selector selector) const override
    {
        static constexpr auto rows = std::to_array<ActionRow>({
            action<&LineEditResponder::undo, &LineEditResponder::canUndo>("undo:"),
            action<&LineEditResponder::redo, &LineEditResponder::canRedo>("redo:"),
            action<&LineEditResponder::cut, &LineEditResponder::canCut>("cut:"),
            action<&LineEditResponder::copy, &LineEditResponder::canCopy>("copy:"),
            action<&LineEditResponder::paste, &LineEditResponder::canPaste>("paste:"),
            action<&LineEditResponder::deleteSelection, &LineEditResponder::canDelete>("delete:"),
            action<&LineEditResponder::selectAll>("selectAll:"),
        });
        return m_edit ? findAction(rows, selector) : nullptr;
    }

private:
    void undo() { m_edit->undo(); }
    void redo() { m_edit->redo(); }
    void cut() { m_edit->cut(); }
    void copy() { m_edit->copy(); }
    void paste() { m_edit->paste(); }
    void deleteSelection()
    {
        if (canDelete()) {
            m_edit->del();
        }
    }
    void selectAll() { m_edit->selectAll(); }

    [[nodiscard]] bool isEditable() const { return m_edit->isEnabled() && !m_edit->isReadOnly(); }
    [[nodiscard]] bool canUndo() const { return isEditable() && m_edit->isUndoAvailable(); }
    [[nodiscard]] bool canRedo() const { return isEditable() && m_edit->isRedoAvailable(); }
    [[nodiscard]] bool canCut() const { return isEditable() && canCopy(); }
    [[nodiscard]] bool canCopy() const { return m_edit->hasSelectedText() && m_edit->echoMode() == QLineEdit::Normal; }
    [[nodiscard]] bool canPaste() const
    {
        const QMimeData *data = QApplication::clipboard()->mimeData();
        return isEditable() && data && data->hasText();
    }
    [[nodiscard]] bool canDelete() const { return isEditable() && m_edit->hasSelectedText(); }

    QPointer<QLineEdit> m_edit;
};

/// What had the focus when a menu bar took it.
QPointer<QWidget> behindMenuBar;

QWidget *focusBehindMenuBar(const QWidget *window)
{
    QWidget *focus = window->focusWidget();
    if (!qobject_cast<QMenuBar *>(focus)) {
        return focus;
    }
    return behindMenuBar && behindMenuBar->window() == window ? behindMenuBar.get() : nullptr;
}

} // namespace

void keepFirstResponderBehind(QMenuBar &menuBar)
{
    QObject::connect(qApp, &QApplication::focusChanged, &menuBar, [&menuBar](QWidget *before, QWidget *now) {
        if (now == &menuBar && before) {
            behindMenuBar = before;
        }
    });
}

Responder *firstResponder(QWidget *window)
{
    QWidget *focus = focusBehindMenuBar(window);
    auto *edit = qobject_cast<QLineEdit *>(focus);
    if (edit && !dynamic_cast<Responder *>(focus)) {
        static LineEditResponder responder;
        responder.setEdit(edit);
        return &responder;
    }
    return nearestResponder(focus ? focus : window);
}
