// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Diff/DiffViewController.h"
#include "View/FirstResponder.h"

/// The window of one comparison, which lives until it is closed.
class DiffWindowController final : public QWidget, public Responder {
    Q_OBJECT

public:
    using Side = DiffViewController::Side;

    /// Not shown yet. The services must outlive it.
    DiffWindowController(const EditorServices &services, Side left, Side right, const Language &language);

    [[nodiscard]] DiffViewController &content() { return *m_content; }
    [[nodiscard]] FirstResponder &firstResponder() { return m_firstResponder; }
    void comeToFront();

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void performClose() { close(); }
    void performMiniaturize() { showMinimized(); }
    void performZoom() { setWindowState(windowState() ^ Qt::WindowMaximized); }
    void toggleFullScreen() { setWindowState(windowState() ^ Qt::WindowFullScreen); }

    FirstResponder m_firstResponder;
    DiffViewController *m_content;
};
