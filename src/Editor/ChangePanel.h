// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/NumberedTextView.h"
#include "Text/LineChanges.h"
#include "Text/TextStorage.h"
#include "Text/UndoManager.h"

#include <QFrame>

class ElidedLabel;
class FlatButton;
class QPushButton;

/// A small panel over a text with the lines that a change took the place of, and the button that brings them back. The lines can be read
/// and copied. It takes the keyboard while it is shown; Escape closes it. It only shows and reports.
class ChangePanel final : public QFrame {
    Q_OBJECT

public:
    /// At most so many rows of old lines are seen at once.
    static constexpr qsizetype mostRows = 10;

    ChangePanel(const TextView::Services &services, const QFont &font, QWidget *parent);
    ~ChangePanel() override;

    /// `title` says what became of the lines, which are `lines` of `base`.
    void setChange(const QString &title, LineChange::Kind kind, const Rope &base, TextRange lines);
    void setRestorable(bool isRestorable);
    void applyTheme(const Theme &theme);
    void setFocusToButtons();
    /// Pixels that it wants when it is so wide.
    [[nodiscard]] int wantedHeight(int width) const;

signals:
    void restoreWanted();
    void closeWanted();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    TextStorage m_storage;
    UndoManager m_undoManager;
    QWidget *m_header;
    ElidedLabel *m_title;
    QPushButton *m_restore;
    FlatButton *m_close;
    NumberedTextView *m_lines;
    LineChange::Kind m_kind = LineChange::Kind::modified;
    const Theme *m_theme;
};
