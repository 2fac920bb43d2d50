// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/FirstResponder.h"

#include "Commands/Actions.h"
#include "Widgets/AlertPresenter.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
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

/// Marks the widgets that act on what lies behind them.
constexpr const char *barProperty = "actsOnFocusBehind";
/// What had the focus when a bar took it.
QPointer<QWidget> behindBar;

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

void keepFirstResponderBehind(QWidget &bar)
{
    bar.setProperty(barProperty, true);
    static const auto connection = QObject::connect(qApp, &QApplication::focusChanged, [](QWidget *before, QWidget *now) {
        if (before && isInBar(now) && !isInBar(before)) {
            behindBar = before;
        }
    });
}

QWidget *focusBehindBars(const QWidget *window)
{
    QWidget *focus = window->focusWidget();
    if (!isInBar(focus)) {
        return focus;
    }
    if (behindBar && behindBar->window() == window && behindBar->isVisible()) {
        return behindBar.data();
    }
    const auto *main = dynamic_cast<const MainFocus *>(window);
    return main ? main->mainFocus() : nullptr;
}

Responder *firstResponder(QWidget *window)
{
    QWidget *focus = focusBehindBars(window);
    auto *edit = qobject_cast<QLineEdit *>(focus);
    if (edit && !dynamic_cast<Responder *>(focus)) {
        static LineEditResponder responder;
        responder.setEdit(edit);
        return &responder;
    }
    return nearestResponder(focus ? focus : window);
}

void chooseAction(QWidget &window, const Action &action, const QVariant &represented, AlertPresenter &presenter)
{
    Responder *responder = firstResponder(&window);
    if (!responder || !responder->state(action, represented).isEnabled || !responder->perform(action, represented)) {
        presenter.beep();
    }
}
