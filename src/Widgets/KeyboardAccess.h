// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

/// What users of the keyboard expect of every window and the toolkit leaves out: Shift+F10 opens the context menu of what has the focus, as
/// the menu key does, which many keyboards lack; and a window that a key has opened shows where its focus is.
class KeyboardAccess final : public QObject {
public:
    /// For all windows of the program, as long as it lives.
    explicit KeyboardAccess(QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool m_isByKey = false;
};
