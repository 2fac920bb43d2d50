// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExactPart.h"

#include <functional>

/// Where commands begin and how they are done again: their keys, macros, ".".
class VimEngine::Repeating final : public ExactPart {
public:
    using ExactPart::ExactPart;

    /// A key of a command, other than counts and registers.
    void note(QStringView key) { m_keys += key; }
    void dropNoted(qsizetype units) { m_keys.chop(units); }
    void forget();
    /// What was noted is what "." does.
    void remember();
    void rememberScript(const QString &script);
    /// "." inserts what was typed since then.
    void rememberInsertion();
    /// "." repeats the command by other keys than were typed.
    void rememberKeys(const QString &keys);
    /// "." does it no more than so often.
    void limitCount(qsizetype count);
    [[nodiscard]] bool isReplaying() const { return m_isReplaying; }
    [[nodiscard]] bool isRunning() const { return m_depth > 0; }
    void repeat();

    /// Carries keys out, false when one failed; what was left of them is dropped then.
    bool run(const QString &keys);
    /// The same, before what is still to come while others are carried out.
    void runNext(const QString &keys);
    void noteFailure() { m_hasFailed = true; }
    /// What is done meanwhile is part of another command.
    [[nodiscard]] QString hold();
    void release(const QString &keys);

    void record(const VimKeyEvent &event);
    /// An input method typed it.
    void recordText(const QString &text);
    /// Changes till the end are one step of undo, but for what `u` in between divides.
    void beginStep();
    void endStep();
    /// Undoes or redoes, beside the step that is under way.
    void outsideStep(const std::function<void()> &replay);
    /// Ends a recording, or waits for the name of a register to record into.
    void beginRecording();
    void toggleRecording(char16_t name);
    void runMacro(char16_t name);
    [[nodiscard]] std::optional<char16_t> recording() const { return m_recording; }

private:
    struct Redo {
        QString keys;
        std::optional<char16_t> registerName;
        /// 0 for none.
        qsizetype count = 0;
        std::optional<Extent> extent;
        /// What was typed in insert mode.
        std::optional<QString> script;
    };
    QString m_keys;
    void push(Redo redo);

    std::optional<Redo> m_redo;
    /// That before it, which "." repeats while the one that inserts text goes on.
    std::optional<Redo> m_redoBefore;
    bool m_isReplaying = false;
    bool m_isHeld = false;
    bool m_hasFailed = false;
    std::optional<char16_t> m_recording;
    QString m_recorded;
    char16_t m_lastMacro = 0;
    /// Still to come while keys are carried out; a macro goes before the rest.
    QString m_queue;
    qsizetype m_queuePlace = 0;
    qsizetype m_depth = 0;
    qsizetype m_steps = 0;
    qsizetype m_keysRun = 0;
};
