// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Taking changes back as Vim does, and what is remembered of each.

#include "Vim/VimExact.h"

#include <QScopedValueRollback>

void VimEngine::Operating::followChange(const TextChange &change)
{
    const ReplacedStretch hull = change.edits.hull();
    const qsizetype caretBefore = std::exchange(m_caretBefore, std::nullopt).value_or(hull.location);
    if (m_isUndoing) {
        m_firstChanged = std::min(m_firstChanged.value_or(hull.location), hull.location);
        m_lastChanged = hull.location + hull.inserted;
        return;
    }
    m_idleSteps.forgetUndone();
    m_hasChanged = m_hasChanged || m_engine.isBusy() || m_engine.m_mode == Mode::insert;
    m_exact.changes.add(hull.location, change.after, m_engine.m_options.textWidth);
    m_exact.marks.set(u'.', hull.location);
    if (m_engine.m_mode == Mode::insert || (m_changesLines && !change.before.isEmpty())) {
        return;
    }
    const VimLines before(change.before, 1, VimLines::LastLine::mayBeEmpty);
    const TextRange line = before.lines(hull.location, hull.location);
    if (change.before.isEmpty() || (change.isWithinLines() && hull.location + hull.removed <= line.end())) {
        keepLineOf(change.before, line.location, caretBefore);
    }
}

VimStepCaret VimEngine::Operating::stepOf(const TextChange &change)
{
    const qsizetype place = std::exchange(m_begun, std::nullopt).value_or(m_caretBefore.value_or(change.edits.hull().location));
    const qsizetype line = change.before.lineAt(place);
    return VimStepCaret({line, place - change.before.lineStart(line)});
}

void VimEngine::Operating::beginChange(qsizetype place, Reach reach, std::optional<TextRange> taken)
{
    m_begun = m_begun.value_or(place);
    m_changesLines = reach == Reach::lines;
    if (taken) {
        m_taken = {text().lineAt(taken->location), text().lineAt(std::max(taken->end() - 1, taken->location))};
    }
    if (reach == Reach::line) {
        keepLineOf(text(), place, place);
    }
}

void VimEngine::Operating::keepLine(qsizetype place)
{
    keepLineOf(text(), place, place);
}

void VimEngine::Operating::keepLineOf(const Rope &before, qsizetype place, qsizetype caret)
{
    const VimLines lines(before, 1, VimLines::LastLine::mayBeEmpty);
    const TextRange line = lines.lines(place, place);
    const qsizetype number = lines.number(line.location);
    if (m_lineBefore && m_lineBefore->number == number) {
        return;
    }
    const Rope text = before.slice(TextRange::between(line.location, lines.end(line.location)));
    m_lineBefore = LineBefore{number, text, caret >= line.location && caret <= lines.end(line.location) ? caret - line.location : 0};
}

void VimEngine::Operating::endChange()
{
    if (m_engine.m_mode == Mode::insert) {
        return;
    }
    if (m_begun && !m_hasChanged) {
        m_idleSteps.add(m_engine.m_view.undoSteps(), *m_begun);
    }
    m_begun.reset();
    m_hasChanged = false;
    m_changesLines = false;
}

qsizetype VimEngine::Operating::undoSteps() const
{
    return m_engine.m_view.undoSteps() + m_idleSteps.count();
}

/// One step, with what changed nothing among them.
VimEngine::Operating::Replayed VimEngine::Operating::replayStep(Replay replay)
{
    m_firstChanged.reset();
    const VimPlaces jumps = m_exact.jumps;
    const auto leftAt = m_exact.marks.place(u'\'');
    m_exact.going.rememberJump(Going::Moving::goes);
    const bool isUndo = replay == Replay::undo;
    const qsizetype steps = m_engine.m_view.undoSteps();
    if (const auto place = isUndo ? m_idleSteps.undo(steps) : m_idleSteps.redo(steps)) {
        setCaret(*place);
        return Replayed::idleStep;
    }
    if (isUndo || m_idleSteps.mayRedo(steps)) {
        const QScopedValueRollback undoing(m_isUndoing, true);
        m_exact.repeating.outsideStep([&] { isUndo ? m_engine.m_view.undo() : m_engine.m_view.redo(); });
    }
    if (m_engine.m_view.undoSteps() != steps) {
        return Replayed::change;
    }
    m_exact.jumps = jumps;
    m_exact.marks.set(u'\'', leftAt.value_or(0));
    return Replayed::nothing;
}

void VimEngine::Operating::undo(qsizetype count)
{
    replaySteps(Replay::undo, count);
}

void VimEngine::Operating::redo(qsizetype count)
{
    replaySteps(Replay::redo, count);
}

void VimEngine::Operating::replaySteps(Replay replay, qsizetype count)
{
    for (qsizetype left = count; left > 0; --left) {
        const Replayed replayed = replayStep(replay);
        if (replayed == Replayed::nothing) {
            break;
        }
        if (replayed == Replayed::change) {
            if (replay == Replay::undo) {
                m_exact.restoreMarks();
            }
            showReplayed(replay);
        }
    }
    finish();
}

void VimEngine::Operating::showReplayed(Replay replay)
{
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    // What was typed may have been deleted in the same step.
    const qsizetype first = m_firstChanged.value_or(std::min(caret(), text().length()));
    const qsizetype line = lines.start(first);
    if (m_firstChanged) {
        // Undoing is a change of lines as well.
        const bool isOfLines =
            replay == Replay::undo && first == line && m_lastChanged > line && m_lastChanged == lines.start(m_lastChanged);
        setChangeMarks(line, lines.start(isOfLines ? m_lastChanged - 1 : std::min(m_lastChanged, text().length())));
        m_exact.marks.set(u'.', line);
        m_exact.changes.add(line, text(), m_engine.m_options.textWidth);
    }
    const VimStepCaret *step = m_exact.replayedStep(replay);
    setCaret(step ? step->place(replay, lines, lines.number(first) - 1) : lines.firstNonBlank(line));
}

void VimEngine::Operating::undoLine()
{
    if (!m_lineBefore) {
        fail();
        return;
    }
    const LineBefore before = *m_lineBefore;
    TextRange line;
    qsizetype column = before.column;
    {
        const Sight sight = see();
        if (before.number > sight.lines.count()) {
            fail();
            return;
        }
        const qsizetype start = sight.lines.startOf(before.number);
        line = TextRange::between(start, sight.lines.end(start));
        column = sight.lines.start(caret()) == start ? caret() - start : column;
    }
    const Rope now = text().slice(line);
    if (const TextEdits edits = TextEdits::difference(now, before.text).movedBy(line.location); !edits.isEmpty()) {
        edit(edits);
    }
    m_lineBefore = LineBefore{before.number, now, column};
    setCaret(line.location + std::min(before.column, before.text.length()));
    finish();
}
