// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExTarget.h"
#include "Vim/VimExactPart.h"
#include "Vim/VimSubstituteJob.h"

/// What commands behind ":" do to the text, and the questions of those that ask.
class VimEngine::Commanding final : public ExactPart, public VimExTarget {
public:
    using ExactPart::ExactPart;

    /// False when it failed.
    bool run(const QString &typed);
    /// A command that a key stands for.
    void runFromKey(const QString &command);
    /// Of a key that in Vim runs another program.
    void refuseProgram(const QString &key);
    /// The last substitution once more, in the line or in all lines.
    void substituteAgain(bool inAllLines);
    /// A key that answers a question; false when none is asked.
    bool takeAnswer(const VimKeyEvent &event);
    /// What is replaced stays so, and the rest as it is.
    void endQuestions();
    [[nodiscard]] QString question() const { return m_confirmation ? m_confirmation->question() : QString(); }
    [[nodiscard]] std::optional<QString> lastReplacement() const { return m_substitution.replacement; }
    [[nodiscard]] std::optional<VimTypedSubstitution> typedSubstitution() const;

private:
    [[nodiscard]] const Rope &text() const override { return ExactPart::text(); }
    [[nodiscard]] VimLines::LastLine lastLine() const override;
    [[nodiscard]] qsizetype caret() const override { return ExactPart::caret(); }
    void moveCaret(qsizetype place) override;
    bool apply(const TextEdits &edits) override;
    void beginChange(std::optional<TextRange> taken) override;
    void beginUndoGroup() override;
    void endUndoGroup() override;
    void undo() override;
    void redo() override;
    [[nodiscard]] qsizetype undoSteps() const override;
    void noteChange(qsizetype place) override;
    void forgetLine() override;
    [[nodiscard]] VimTextName name() const override;
    [[nodiscard]] VimMarks &marks() override;
    void setMark(char16_t name, qsizetype place) override;
    void removeMark(char16_t name) override;
    [[nodiscard]] std::vector<VimFileMarks::Mark> marksElsewhere() const override;
    [[nodiscard]] VimPlaces &jumps() override;
    [[nodiscard]] VimPlaces &changes() override;
    [[nodiscard]] const VimRegisters &registers() const override;
    void keep(const VimRegisterContents &contents, std::optional<char16_t> name, VimRegisters::Taken taken) override;
    bool runNormal(const QString &keys, bool usesMappings) override;
    [[nodiscard]] VimRunning &running() override { return m_engine.m_view; }
    [[nodiscard]] std::optional<VimSearch> &lastSearch() override;
    [[nodiscard]] VimSubstituteMemory &lastSubstitution() override { return m_substitution; }
    [[nodiscard]] Indentation indentation() const override;
    [[nodiscard]] const VimOptions &options() const override;
    void hideHits() override;
    void say(const QString &message) override;
    void list(const QString &title, const QString &text) override;
    void perform(const Action &action, const QString &argument) override;
    bool substituteElsewhere(const VimSubstituteJob &job) override;
    bool confirm(const VimSubstituteJob &job) override;
    void ask();

    VimSubstituteMemory m_substitution;
    std::unique_ptr<VimSubstituteJob> m_job;
    std::unique_ptr<VimSubstituteConfirmation> m_confirmation;
};
