// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Vim/VimExactPart.h"
#include "Vim/VimIdleSteps.h"
#include "Vim/VimStepCaret.h"

/// What is remembered of changes: the marks that follow them, their steps of undo, the line before them.
class VimEngine::Changing final : public ExactPart {
public:
    using ExactPart::ExactPart;

    void undo(qsizetype count);
    void redo(qsizetype count);
    void undoLine();
    void followChange(const TextChange &change);
    /// The change under way is none of its own.
    [[nodiscard]] bool isUndoing() const { return m_making != Making::change; }
    [[nodiscard]] bool isReplaying() const { return m_making == Making::replay; }
    void noteCaret(qsizetype place) { m_caretBefore = place; }
    /// There is no line any more that could be as it was before.
    void forgetLine() { m_lineBefore.reset(); }
    /// A command is about to change the text there: where it changes nothing, that is a step of undo as well. It is for changes of one
    /// line that the line is kept for `U`. What comes `between` lines lets those alone.
    enum class Reach { line, lines, between };
    /// `taken` is what it takes, even if some of that stays as it is.
    void beginChange(qsizetype place, Reach reach = Reach::line, std::optional<TextRange> taken = std::nullopt);
    /// What a step keeps of `change`, which begins it: where the caret was.
    [[nodiscard]] VimStepCaret stepOf(const TextChange &change);
    /// The lines that a command took, all that it changes or not.
    [[nodiscard]] std::optional<VimStepCaret::LineSpan> takenLines() const { return m_taken; }
    void forgetTaken() { m_taken.reset(); }
    /// The line at `place` is as it is, unless it is kept already.
    void keepLine(qsizetype place);
    /// The change under way is one even if nothing else comes of it.
    void countChange() { m_hasChanged = true; }
    /// A key is done with.
    void endChange();
    /// Steps that can be undone.
    [[nodiscard]] qsizetype undoSteps() const;
    /// The break at the end of the text comes or goes with a change.
    void appendBreak();
    void dropLastBreak();
    /// The places of `[` and `]`.
    void setChangeMarks(qsizetype first, qsizetype last);
    /// A command has changed the text there, or changed nothing in what it was to change: that is where the mark `.` is, and where the
    /// list of changes leads for the step of undo. Without a call it is where the change begins.
    void noteChange(qsizetype place);
    /// The line of `place` as such was changed.
    void noteLine(qsizetype place);
    /// The line below that of `place` was there before the change; there need be none any more.
    void noteLineBelow(qsizetype place);

private:
    using Replay = VimStepCaret::Replay;
    enum class Replayed { nothing, idleStep, change };
    Replayed replayStep(Replay replay);
    void replaySteps(Replay replay, qsizetype count);
    void showReplayed(Replay replay);
    void showIdleStep(const VimIdleSteps::Step &step);
    void keepLineOf(const Rope &before, qsizetype place, qsizetype caret);
    [[nodiscard]] qsizetype stepUnderWay() const;

    /// The first unit that undoing changed.
    std::optional<qsizetype> m_firstChanged;
    /// As it was before the changes in it; the text has no break.
    struct LineBefore {
        qsizetype number = 0;
        Rope text;
        qsizetype column = 0;
    };
    std::optional<LineBefore> m_lineBefore;
    VimIdleSteps m_idleSteps;
    std::optional<VimStepCaret::LineSpan> m_taken;
    /// That of the step that has a place in the list of changes already.
    qsizetype m_stepNoted = 0;
    /// A command that may change nothing.
    struct Begun {
        qsizetype place = 0;
        Reach reach = Reach::line;
        /// Of the mark `]`.
        qsizetype last = 0;
    };
    std::optional<Begun> m_begun;
    bool m_hasChanged = false;
    bool m_changesLines = false;
    /// Where the caret is while a command changes the text.
    std::optional<qsizetype> m_caretBefore;
    /// What the change under way is: one of the user, what goes with one, or one that is undone or redone.
    enum class Making { change, addition, replay };
    Making m_making = Making::change;
};
