// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QFileDialog>

class AlertPresenter;

/// The toolkit's file dialog. Where the desktop has none of its own to show in its place, it is made like the rest of the program: wide
/// enough for its columns, with the program's symbols, and with a question that says what its buttons do before a file is replaced.
class FilePanel final : public QFileDialog {
    Q_OBJECT

public:
    FilePanel(AlertPresenter &presenter, QWidget *window, const QString &title, AcceptMode mode);

    void accept() override;

private:
    void decorate();
    void askToReplace(const QString &name);

    AlertPresenter &m_presenter;
    bool m_isOwn = false;
};
