// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

class QKeyEvent;
class QLabel;
class QPlainTextEdit;
class TextView;

/// What a command listed, to be read at leisure, over the lower end of a text and in its font. It has the keyboard until Escape, Return or
/// `q` closes it, or something else gets the keyboard; `:` goes on to the next command.
class VimListPanel final : public QFrame {
    Q_OBJECT

public:
    /// `view` must outlive it.
    explicit VimListPanel(TextView &view);

    /// In place of what it shows.
    void showList(const QString &title, const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    enum class Closed { byKey, byFocus };
    void leave(Closed how);
    void place();
    /// In place of the keys of a text that can be edited. False leaves them to the widget.
    bool takeKey(const QKeyEvent &event);

    TextView &m_view;
    QLabel *m_title;
    QPlainTextEdit *m_lines;
};
