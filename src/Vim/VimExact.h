// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

// What the engine does exactly as Vim, in parts that share the engine's keys and counts; the rows of VimExactKeys.cpp call them. Private to
// the sources of the engine. Positions are UTF-16 units. Main thread only.

#include "Vim/VimExactCommands.h"
#include "Vim/VimExactGoing.h"
#include "Vim/VimExactInsert.h"
#include "Vim/VimExactMarks.h"
#include "Vim/VimExactRepeating.h"
#include "Vim/VimExactUndo.h"
#include "Vim/VimExactVisual.h"
#include "Vim/VimPlaces.h"

#include <deque>

class VimEngine::Exact final {
public:
    explicit Exact(VimEngine &owner);

    /// The range that a command line begins with: what was selected, or as many lines as the count says.
    [[nodiscard]] QString linesToCommand();
    /// Ends what waits for a key, else the mode.
    void escape();
    void enterCommandLine(const VimCommandLine &line);
    void followChange(const TextChange &change);
    /// What `~` stands for in a pattern.
    [[nodiscard]] std::optional<QString> lastSubstitute() const { return commanding.lastReplacement(); }
    [[nodiscard]] VimRegisterContents contents(std::optional<char16_t> name) const;
    void keep(VimRegisterContents contents, std::optional<char16_t> name, VimRegisters::Taken taken) const;
    /// The line that ends with the last break is the last one again.
    void terminate() { m_isUnterminated = false; }
    /// What came into a text that was emptied, also if it is gone again when it `wasTyped`, gets the break at its end that the text had;
    /// whether it did. Part of the same change.
    bool restoreLastBreak(bool wasTyped = false);
    /// The same of what brought one of its own, which goes where the text `wasUnterminated`.
    void settleLastBreak(bool wasUnterminated);
    [[nodiscard]] bool isUnterminated() const { return m_isUnterminated; }
    /// Whether a text that is empty has a line nonetheless, which has nothing in it. It has none at first and when its lines were deleted.
    [[nodiscard]] bool hasEmptyLine() const { return m_hasEmptyLine && !m_isEmptied && engine.m_view.text().isEmpty(); }
    void setHasEmptyLine(bool hasEmptyLine) { m_hasEmptyLine = hasEmptyLine; }
    /// Something was put there, be it nothing.
    [[nodiscard]] bool isSet(std::optional<char16_t> name) const;
    /// After a step was undone: the marks that went with their lines are back, and what was selected before it.
    void restoreMarks();
    /// Of the step that was undone or redone last; null where nothing is known of it.
    [[nodiscard]] const VimStepCaret *replayedStep(VimStepCaret::Replay replay);

    VimEngine &engine;
    VimMarks marks;
    VimPlaces jumps{VimPlaces::Kind::jumps};
    VimPlaces changes{VimPlaces::Kind::changes};
    /// Cells, kept by `j` and `k` where it is not the caret's; `VimLines::endless` behind `$`.
    std::optional<qsizetype> column;
    /// Where the column was kept.
    qsizetype columnPlace = 0;
    QString lastCommandLine;

    Repeating repeating{*this};
    Inserting inserting{*this};
    Changing changing{*this};
    Operating operating{*this};
    Selecting selecting{*this};
    Going going{*this};
    Marking marking{*this};
    Commanding commanding{*this};

private:
    /// The last line has no break, so that there is a line behind the last break even where it is empty.
    bool m_isUnterminated = false;
    /// All of the text was deleted, with the break at its end.
    bool m_isEmptied = false;
    bool m_hasEmptyLine = false;
    enum class ChangedBy { others, keys };
    void rememberStep(const TextChange &change, ChangedBy by);
    /// A step of undo, the first of which is 1, with what there was before it.
    struct Step {
        qsizetype number = 0;
        VimMarks marks;
        std::optional<Selecting::Selected> selected;
        VimStepCaret caret;
        bool isUndone = false;
    };
    [[nodiscard]] Step *step(qsizetype number);
    /// The oldest first.
    std::deque<Step> m_steps;
};
