// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Desktop/DroppedFiles.h"
#include "Editor/NumberedTextView.h"
#include "Highlighting/Language.h"
#include "Text/LineEditing.h"

#include <memory>

class AutoPairs;
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
    /// Whether what is typed goes before what stands at the caret or in its place.
    enum class TypingMode { inserts, overwrites };
    /// What is copied and cut where nothing is selected.
    enum class BareCopy { nothing, line };

    EditorTextView(TextStorage &storage, UndoManager &undoManager, const Services &services, const QFont &font, QWidget *parent = nullptr);
    ~EditorTextView() override;

    void setIndentation(Indentation indentation);
    [[nodiscard]] Indentation indentation() const { return m_indentation; }
    void setAutoIndent(AutoIndent autoIndent) { m_autoIndent = autoIndent; }
    [[nodiscard]] AutoIndent autoIndent() const { return m_autoIndent; }
    void setBareCopy(BareCopy bareCopy) { m_bareCopy = bareCopy; }
    /// Completes brackets and quotes; null where they are text as any other.
    void setAutoPairs(std::unique_ptr<AutoPairs> pairs);
    [[nodiscard]] const AutoPairs *autoPairs() const { return m_pairs.get(); }
    [[nodiscard]] TypingMode typingMode() const { return m_typingMode; }
    void setLanguage(const Language &language) { m_language = language; }
    [[nodiscard]] const Language &language() const { return m_language; }

    /// Gets the keys before the view does; null takes it away. Must outlive the view or be taken back.
    void setVim(EditorVim *vim);

    /// What an input method has shown so far becomes text.
    void commitInput() { input().commit(); }
    void insertNewline() override;
    void insertTab() override;
    void insertBacktab() override;
    void deleteBackward() override;
    void shiftSelectedLines(LineEditing::Shift shift);
    void toggleComment();
    void duplicateLine();
    void deleteLine();
    void cut() override;
    void copy() override;
    void paste() override;

    [[nodiscard]] const ActionRow *actionFor(const Action &wanted) const override;

signals:
    /// It got the focus or was clicked.
    void activated();
    /// Absolute paths of files that exist.
    void filesDropped(const QStringList &paths);
    void typingModeChanged();

protected:
    void typeText(QStringView text) override;
    void willReplay() override;
    void willPerform(const Action &wanted) override;
    void finishTyping() override;
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
    [[nodiscard]] bool canCopy() const { return selections().hasSelected() || m_bareCopy == BareCopy::line; }
    [[nodiscard]] bool canCut() const { return isEditable() && canCopy(); }
    [[nodiscard]] bool takesLine() const { return selections().isSingle() && selection().isEmpty() && m_bareCopy == BareCopy::line; }
    void toggleOverwriteMode();
    [[nodiscard]] ActionState overwriteState() const;
    void setTypingMode(TypingMode mode);
    void addCommands(QMenu *menu);
    bool takesFiles(QDropEvent &event);

    EditorVim *m_vim = nullptr;
    std::unique_ptr<AutoPairs> m_pairs;
    DroppedFiles m_files;
    std::function<void()> m_beep;
    Indentation m_indentation;
    AutoIndent m_autoIndent = AutoIndent::on;
    BareCopy m_bareCopy = BareCopy::nothing;
    TypingMode m_typingMode = TypingMode::inserts;
    /// Of the last shift: as long as its text and its selection are as it left them, another concerns the same lines.
    struct ShiftedLines {
        quint64 revision = 0;
        TextSelection selection;
        TextRange lines;
    };
    std::optional<ShiftedLines> m_shifted;
    Language m_language;
};
