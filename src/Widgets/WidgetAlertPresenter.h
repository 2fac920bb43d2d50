// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Widgets/AlertPresenter.h"
#include "Widgets/FilePanel.h"

#include <QHash>
#include <QObject>

class QDialog;

/// Alerts and panels as windows of the desktop. Nothing is made before it is shown.
class WidgetAlertPresenter final : public AlertPresenter {
public:
    /// `portal` makes what shows panels where the toolkit has none of the desktop's.
    explicit WidgetAlertPresenter(FileChooserPortalMaker portal = {}) : m_portal(std::move(portal)) {}

    using AlertPresenter::present;
    void present(const Alert &alert, QWidget *window, AlertCompletion completion) override;
    void present(const OpenPanel &panel, QWidget *window, OpenCompletion completion) override;
    void present(const SavePanel &panel, QWidget *window, SaveCompletion completion) override;
    void present(const FontPanel &panel, QWidget *window, FontCompletion completion) override;
    void present(const ChoicePanel &panel, QWidget *window, ChoiceCompletion completion) override;
    void beep() override;

private:
    /// Opens `dialog` now, or when the one that its window shows has closed.
    void enqueue(QDialog *dialog, QWidget *window);
    /// Opens the first that waits, as soon as the window can be seen.
    void openFirst(QWidget *window);
    /// The first has closed.
    void openNext(QWidget *window);

    FileChooserPortalMaker m_portal;
    /// Ends the connections to dialogs that outlive the presenter.
    QObject m_context;
    /// Dialogs of a window in their order; the first is open.
    QHash<QWidget *, QList<QDialog *>> m_queues;
};
