// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/FirstResponder.h"

#include "Commands/Actions.h"
#include "Widgets/AlertPresenter.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMimeData>

#include <array>
#include <utility>

/// Stands in for the line edit that has the focus, so that the menu's commands reach it as its keys do.
class LineEditResponder final : public Responder {
public:
    void setEdit(QLineEdit *edit)
    {
        m_edit = edit;
        setNextResponder(nearestResponder(edit->parent()));
    }

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override
    {
        static constexpr auto rows = std::to_array<ActionRow>({
            action<&LineEditResponder::undo, &LineEditResponder::canUndo>(Actions::undo),
            action<&LineEditResponder::redo, &LineEditResponder::canRedo>(Actions::redo),
            action<&LineEditResponder::cut, &LineEditResponder::canCut>(Actions::cut),
            action<&LineEditResponder::copy, &LineEditResponder::canCopy>(Actions::copy),
            action<&LineEditResponder::paste, &LineEditResponder::canPaste>(Actions::paste),
            action<&LineEditResponder::deleteSelection, &LineEditResponder::canDelete>(Actions::deleteSelection),
            action<&LineEditResponder::selectAll>(Actions::selectAll),
        });
        return m_edit ? findAction(rows, wanted) : nullptr;
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

namespace {

/// Marks the widgets that act on what lies behind them.
constexpr const char *barProperty = "actsOnFocusBehind";

bool isInBar(const QWidget *widget)
{
    for (; widget; widget = widget->isWindow() ? nullptr : widget->parentWidget()) {
        if (widget->property(barProperty).toBool()) {
            return true;
        }
    }
    return false;
}

} // namespace

FirstResponder::FirstResponder(QWidget &window, AlertPresenter &presenter, MainFocus mainFocus)
    : m_window(window), m_presenter(presenter), m_mainFocus(std::move(mainFocus)), m_lineEdit(std::make_unique<LineEditResponder>())
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *before, QWidget *now) {
        if (before && before->window() == &m_window && isInBar(now) && !isInBar(before)) {
            m_behind = before;
        }
    });
}

FirstResponder::~FirstResponder() = default;

void FirstResponder::setBar(QWidget &bar)
{
    bar.setProperty(barProperty, true);
}

QWidget *FirstResponder::focusBehindBars() const
{
    QWidget *focus = m_window.focusWidget();
    if (!isInBar(focus)) {
        return focus;
    }
    if (m_behind && m_behind->window() == &m_window && m_behind->isVisible()) {
        return m_behind;
    }
    return m_mainFocus ? m_mainFocus() : nullptr;
}

void FirstResponder::choose(const Action &action, const QVariant &represented)
{
    if (!state(action, represented).isEnabled || !perform(action, represented)) {
        m_presenter.beep();
    }
}

Responder *FirstResponder::nextResponder() const
{
    QWidget *focus = focusBehindBars();
    auto *edit = qobject_cast<QLineEdit *>(focus);
    if (edit && !dynamic_cast<Responder *>(focus)) {
        m_lineEdit->setEdit(edit);
        return m_lineEdit.get();
    }
    return nearestResponder(focus ? focus : &m_window);
}
