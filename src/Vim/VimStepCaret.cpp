// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimStepCaret.h"

#include "Vim/VimLines.h"

#include <algorithm>

namespace {

/// Nothing, or something with a line break at that end.
bool beginsWithBreak(const Rope &text, TextRange range)
{
    return range.isEmpty() || isBreak(text.at(range.location));
}

bool endsWithBreak(const Rope &text, TextRange range)
{
    return range.isEmpty() || isBreak(text.at(range.end() - 1));
}

} // namespace

VimStepCaret::Replaced VimStepCaret::replaced(const TextChange &change)
{
    const ReplacedStretch hull = change.edits.hull();
    const TextRange before{hull.location, hull.removed};
    const TextRange after{hull.location, hull.inserted};
    const qsizetype line = change.before.lineAt(hull.location);
    const qsizetype start = change.before.lineStart(line);
    // Whole lines, with the break behind them or the one before.
    if (hull.location == start && endsWithBreak(change.before, before) && endsWithBreak(change.after, after)) {
        return {line, change.before.lineAt(before.end()) - line, change.after.lineAt(after.end()) - line};
    }
    const bool isAtEnd = hull.location == change.before.length() || isBreak(change.before.at(hull.location));
    if (isAtEnd && before.end() == change.before.length() && beginsWithBreak(change.before, before) &&
        beginsWithBreak(change.after, after)) {
        return {line + 1, change.before.lineAt(before.end()) - line, change.after.lineAt(after.end()) - line};
    }
    return {line, change.before.lineAt(before.end()) - line + 1, change.after.lineAt(after.end()) - line + 1};
}

void VimStepCaret::add(const TextChange &change, std::optional<LineSpan> taken)
{
    Replaced lines = replaced(change);
    if (taken) {
        const qsizetype above = std::max<qsizetype>(lines.first - taken->first, 0);
        const qsizetype below = std::max<qsizetype>(taken->last - (lines.first + lines.removed - 1), 0);
        lines = {lines.first - above, above + lines.removed + below, above + lines.inserted + below, above};
    }
    const bool isInLine = lines.removed == 1 && lines.inserted == 1;
    if (!isInLine || m_changes.empty() || m_changes.back() != lines) {
        m_changes.push_back(lines);
    }
}

std::optional<VimStepCaret::Changed> VimStepCaret::changed(Replay replay) const
{
    std::optional<Changed> all;
    const auto take = [&](const Replaced &change) {
        const bool isUndo = replay == Replay::undo;
        const qsizetype restored = isUndo ? change.removed : change.inserted;
        const qsizetype gone = isUndo ? change.inserted : change.removed;
        const qsizetype first = change.first;
        const qsizetype last = first + std::max<qsizetype>(restored, 1) - 1;
        const qsizetype lastBefore = all ? all->lines.last + (all->lines.last >= first ? restored - gone : 0) : last;
        all = Changed{{all ? std::min(all->lines.first, first) : first, std::max(lastBefore, last)}, first};
    };
    if (replay == Replay::undo) {
        std::for_each(m_changes.rbegin(), m_changes.rend(), take);
    } else {
        std::for_each(m_changes.begin(), m_changes.end(), take);
    }
    return all;
}

qsizetype VimStepCaret::place(Replay replay, const VimLines &lines, qsizetype now) const
{
    std::optional<qsizetype> found;
    const auto look = [&](const Replaced &change) {
        const qsizetype restored = replay == Replay::undo ? change.removed : change.inserted;
        if (found && change.first >= *found) {
            return;
        }
        if (m_before.line >= change.first - 1 && m_before.line <= change.first + restored) {
            found = m_before.line;
        } else if (change.same < restored) {
            found = change.first + change.same;
        } else if (!found && m_changes.size() == 1) {
            found = change.first;
        }
    };
    if (replay == Replay::undo) {
        std::for_each(m_changes.rbegin(), m_changes.rend(), look);
    } else {
        std::for_each(m_changes.begin(), m_changes.end(), look);
    }
    qsizetype line = std::min(found.value_or(now), lines.count() - 1);
    if (line > 0 && m_before.line + 1 == line) {
        --line; // above what was opened
    }
    const qsizetype start = lines.startOf(line + 1);
    if (line != m_before.line) {
        return lines.firstNonBlank(start);
    }
    return m_before.bytes ? placeAtByte(lines, start, *m_before.bytes) : std::min(start + m_before.column, lines.endOf(line + 1));
}
