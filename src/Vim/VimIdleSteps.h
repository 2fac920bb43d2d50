// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <optional>
#include <vector>

/// Steps of undo of commands that found nothing to change, which count in Vim, among the steps of a text that did change it. Those are told
/// by their number: how many can be undone. Places are UTF-16 units. Main thread only.
class VimIdleSteps final {
public:
    struct Step {
        /// Where the caret goes when it is undone.
        qsizetype place = 0;
        /// In the last line of those that were to be changed, of which `place` is in the first.
        qsizetype last = 0;
        /// Something was to come behind the line of `place`, and those that were there were let alone.
        bool isBetweenLines = false;
    };

    /// A command changed nothing. What was undone before it cannot be redone any more.
    void add(qsizetype steps, const Step &step);
    /// The last step when it is an idle one, which is undone now.
    [[nodiscard]] std::optional<Step> undo(qsizetype steps);
    [[nodiscard]] std::optional<Step> redo(qsizetype steps);
    /// Whether a step that changed the text may be redone.
    [[nodiscard]] bool mayRedo(qsizetype steps) const { return m_last != steps; }
    /// The text was changed anew.
    void forgetUndone();
    /// Those that can be undone.
    [[nodiscard]] qsizetype count() const { return qsizetype(m_done.size()); }

private:
    struct Kept {
        /// How many others were before it.
        qsizetype steps = 0;
        Step step;
    };
    std::vector<Kept> m_done;
    /// The next one is the last one.
    std::vector<Kept> m_undone;
    /// There is nothing to be redone where so many can be undone.
    std::optional<qsizetype> m_last;
};
