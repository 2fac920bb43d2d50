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
    /// A command at `place` changed nothing. What was undone before it cannot be redone any more.
    void add(qsizetype steps, qsizetype place);
    /// Where the caret goes when the last step is an idle one, which is undone now.
    [[nodiscard]] std::optional<qsizetype> undo(qsizetype steps);
    [[nodiscard]] std::optional<qsizetype> redo(qsizetype steps);
    /// Whether a step that changed the text may be redone.
    [[nodiscard]] bool mayRedo(qsizetype steps) const { return m_last != steps; }
    /// The text was changed anew.
    void forgetUndone();
    /// Those that can be undone.
    [[nodiscard]] qsizetype count() const { return qsizetype(m_done.size()); }

private:
    struct Step {
        /// How many others were before it.
        qsizetype steps = 0;
        qsizetype place = 0;
    };
    std::vector<Step> m_done;
    /// The next one is the last one.
    std::vector<Step> m_undone;
    /// There is nothing to be redone where so many can be undone.
    std::optional<qsizetype> m_last;
};
