// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextEdits.h"

#include <optional>
#include <vector>

class VimLines;

/// What a step of undo keeps for the caret: where it was before the first change, and the lines that each change replaced. When the step is
/// undone or redone, the caret goes to the first line that this changes; where the changed lines or their neighbours have the line in which
/// it was before, it is there again. Lines count from 0. A value.
class VimStepCaret final {
public:
    struct Place {
        qsizetype line = 0;
        /// Units, which may lie behind what the line has by then.
        qsizetype column = 0;
        /// Of UTF-8 before it, which go before its units (see byteColumn).
        std::optional<qsizetype> bytes = std::nullopt;
    };
    /// The first and the last one.
    struct LineSpan {
        qsizetype first = 0;
        qsizetype last = 0;
    };

    explicit VimStepCaret(Place before) : m_before(before) {}

    /// The next change of the step, by a command that took all lines of `taken`, those that stay as they are too. O(log text).
    void add(const TextChange &change, std::optional<LineSpan> taken = std::nullopt);

    enum class Replay { undo, redo };
    struct Changed {
        LineSpan lines;
        /// The first one of what was changed last.
        qsizetype last = 0;
    };
    /// In the text that undoing or redoing the step gave. None of a step that changed nothing.
    [[nodiscard]] std::optional<Changed> changed(Replay replay) const;
    /// Where the caret goes in the text that undoing or redoing the step gave; from the line `now`, where it stays if nothing was changed.
    [[nodiscard]] qsizetype place(Replay replay, const VimLines &lines, qsizetype now) const;

private:
    /// Lines that took the place of others at `first`.
    struct Replaced {
        qsizetype first = 0;
        qsizetype removed = 0;
        qsizetype inserted = 0;
        /// Of those at the start that are the same before and after.
        qsizetype same = 0;

        friend bool operator==(const Replaced &, const Replaced &) = default;
    };
    [[nodiscard]] static Replaced replaced(const TextChange &change);

    Place m_before;
    std::vector<Replaced> m_changes;
};
