// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Commands/Responder.h"

#include <QPlainTextEdit>
#include <QStringList>

#include <functional>

class QLabel;
class QToolButton;

/// An edit field that looks like a line edit and grows with the lines of its text, offers what was entered before (Up and Down), has room
/// for a note at its end, and can show that its text is wrong. Enter is for whoever watches its keys.
class FindField final : public QPlainTextEdit, public Responder {
    Q_OBJECT

public:
    /// What is not found is shown by the colour of the note, what is wrong by that of the field.
    enum class State { normal, notFound, wrong };
    enum class Saying { aloud, silently };
    /// The latest first.
    using History = std::function<QStringList()>;

    explicit FindField(History history, QWidget *parent = nullptr);

    /// Its lines end with line feeds.
    [[nodiscard]] QString text() const;
    void setText(const QString &text);

    /// Hidden where it would leave no room to type. Screen readers say it when it changes aloud.
    void setNote(const QString &note, const QString &explanation, Saying saying);
    [[nodiscard]] QString note() const;
    /// What the button that empties the field is called.
    void nameClearButton(const QString &name) const;
    void setState(State state);
    [[nodiscard]] State shownState() const { return m_state; }

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    /// Text alone, as it is.
    [[nodiscard]] QMimeData *createMimeDataFromSelection() const override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    // What the menu's commands do here, as the keys do.
    void undoTyping() { undo(); }
    void redoTyping() { redo(); }
    void cutSelected() { cut(); }
    void copySelected() { copy(); }
    void pasteText() { paste(); }
    void deleteSelected() { textCursor().removeSelectedText(); }
    void selectAllText() { selectAll(); }
    [[nodiscard]] bool canUndoTyping() const { return document()->isUndoAvailable(); }
    [[nodiscard]] bool canRedoTyping() const { return document()->isRedoAvailable(); }
    [[nodiscard]] bool hasSelected() const { return textCursor().hasSelection(); }
    [[nodiscard]] bool canPasteText() const { return canPaste(); }

    [[nodiscard]] int heightFor(int lines) const;
    [[nodiscard]] QRect contents() const;
    void fitHeight();
    [[nodiscard]] bool stepThroughHistory(int step);
    void placeControls();
    void applyState();

    History m_history;
    QLabel *m_note = nullptr;
    QToolButton *m_clear = nullptr;
    State m_state = State::normal;
    int m_lines = 1;
    bool m_isApplyingState = false;
    /// Which entry of the history is shown; -1 for what was typed.
    int m_entry = -1;
    QString m_typed;
};
