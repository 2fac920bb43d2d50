// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Desktop/DroppedFiles.h"
#include "Editor/NumberedTextView.h"
#include "Highlighting/Language.h"
#include "Text/LineEditing.h"

class EditorVim;

/// A text view for source code: tab stops, indentation, comments, and whole lines. Files that are dropped on it
/// go to its editor; with Alt held their names become text.
class EditorTextView final : public NumberedTextView {
    Q_OBJECT

public:
    struct Services {
        Scheduler &scheduler;
        Pasteboard &pasteboard;
        /// The sound for a command that cannot do its work.
        std::function<void()> beep;
    };
    enum class AutoIndent { off, on };

    EditorTextView(TextStorage &storage, UndoManager &undoManager, const Services &services, const QFont &font, QWidget *parent = nullptr);

    void setIndentation(Indentation indentation);
    [[nodiscard]] Indentation indentation() const { return m_indentation; }
    void setAutoIndent(AutoIndent autoIndent) { m_autoIndent = autoIndent; }
    void setLanguage(const Language &language) { m_language = language; }
    [[nodiscard]] const Language &language() const { return m_language; }

    /// Gets the keys before the view does; null takes it away. Must outlive the view or be taken back.
    void setVim(EditorVim *vim) { m_vim = vim; }

    void insertNewline() override;
    void insertTab() override;
    void insertBacktab() override;
    void deleteBackward() override;
    void shiftSelectedLines(LineEditing::Shift shift);
    void toggleComment();
    void duplicateLine();
    void deleteLine();

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

signals:
    /// It got the focus or was clicked.
    void activated();
    /// Absolute paths of files that exist.
    void filesDropped(const QStringList &paths);

protected:
    void willReplay() override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    friend class EditorVim;

    [[nodiscard]] bool isEditable() const { return !isReadOnly(); }
    [[nodiscard]] bool canToggleComment() const;
    /// A command of whole lines, for those of every selection.
    void atLines(const std::function<std::optional<TextStep>(TextRange)> &command);
    /// One that puts text in place of a selection, for each.
    void replaceAtEach(const std::function<TextStep(TextRange)> &command);
    void addCommands(QMenu *menu);
    bool takesFiles(QDropEvent &event);

    EditorVim *m_vim = nullptr;
    DroppedFiles m_files;
    std::function<void()> m_beep;
    Indentation m_indentation;
    AutoIndent m_autoIndent = AutoIndent::on;
    Language m_language;
};
