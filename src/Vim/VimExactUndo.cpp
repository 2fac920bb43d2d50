// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Taking changes back as Vim does, and what is remembered of each.

#include "Vim/VimExact.h"

#include <QScopedValueRollback>

void VimEngine::Changing::followChange(const TextChange &change)
{
    const ReplacedStretch hull = change.edits.hull();
    const qsizetype caretBefore = std::exchange(m_caretBefore, std::nullopt).value_or(hull.location);
    if (isUndoing()) {
        m_firstChanged = std::min(m_firstChanged.value_or(hull.location), hull.location);
        return;
    }
    m_idleSteps.forgetUndone();
    m_hasChanged = m_hasChanged || m_engine.isBusy() || m_engine.m_mode == Mode::insert;
    noteChange(hull.location);
    if (m_engine.m_mode == Mode::insert || (m_changesLines && !change.before.isEmpty())) {
        return;
    }
    const VimLines before(change.before, 1, VimLines::LastLine::mayBeEmpty);
    const TextRange line = before.lines(hull.location, hull.location);
    if (change.before.isEmpty() || (change.isWithinLines() && hull.location + hull.removed <= line.end())) {
        keepLineOf(change.before, line.location, caretBefore);
    }
}

void VimEngine::Changing::setChangeMarks(qsizetype first, qsizetype last)
{
    m_exact.marks.set(u'[', first);
    m_exact.marks.set(u']', last);
    if (m_begun) {
        m_begun->last = std::max(m_begun->last, last);
    }
}

qsizetype VimEngine::Changing::stepUnderWay() const
{
    return undoSteps() + (m_begun && !m_hasChanged ? 1 : 0);
}

void VimEngine::Changing::noteChange(qsizetype place)
{
    m_exact.marks.set(u'.', place);
    const qsizetype step = stepUnderWay();
    if (m_stepNoted == step && !m_exact.changes.places().empty()) {
        m_exact.changes.moveLast(place);
    } else if (m_exact.changes.add(place, text(), m_engine.m_options.textWidth)) {
        m_stepNoted = step;
    }
}

void VimEngine::Changing::noteLine(qsizetype place)
{
    noteChange(text().lineStart(text().lineAt(std::clamp<qsizetype>(place, 0, text().length()))));
}

void VimEngine::Changing::noteLineBelow(qsizetype place)
{
    noteChange(see().lines.next(place));
}

void VimEngine::Changing::appendBreak()
{
    const QScopedValueRollback making(m_making, Making::addition);
    edit({text().length(), 0}, u"\n");
}

void VimEngine::Changing::dropLastBreak()
{
    const QScopedValueRollback making(m_making, Making::addition);
    edit({text().length() - 1, 1}, {});
}

VimStepCaret VimEngine::Changing::stepOf(const TextChange &change)
{
    const auto begun = std::exchange(m_begun, std::nullopt);
    const qsizetype place = begun ? begun->place : m_caretBefore.value_or(change.edits.hull().location);
    const VimLines lines(change.before, 1, VimLines::LastLine::mayBeEmpty);
    return VimStepCaret({change.before.lineAt(place), place - lines.start(place), byteColumn(lines, place)});
}

void VimEngine::Changing::beginChange(qsizetype place, Reach reach, std::optional<TextRange> taken)
{
    m_begun = m_begun.value_or(Begun{place, reach, taken ? std::max(taken->end() - 1, taken->location) : place});
    m_changesLines = reach != Reach::line;
    if (taken) {
        m_taken = {text().lineAt(taken->location), text().lineAt(std::max(taken->end() - 1, taken->location))};
    }
    if (reach == Reach::line) {
        keepLineOf(text(), place, place);
    }
}

void VimEngine::Changing::keepLine(qsizetype place)
{
    keepLineOf(text(), place, place);
}

void VimEngine::Changing::keepLineOf(const Rope &before, qsizetype place, qsizetype caret)
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

void VimEngine::Changing::endChange()
{
    if (m_engine.m_mode == Mode::insert) {
        return;
    }
    if (m_begun && !m_hasChanged) {
        m_idleSteps.add(m_engine.m_view.undoSteps(), {m_begun->place, m_begun->last, m_begun->reach == Reach::between});
    }
    m_begun.reset();
    m_hasChanged = false;
    m_changesLines = false;
}

qsizetype VimEngine::Changing::undoSteps() const
{
    return m_engine.m_view.undoSteps() + m_idleSteps.count();
}

/// One step, with what changed nothing among them.
VimEngine::Changing::Replayed VimEngine::Changing::replayStep(Replay replay)
{
    m_firstChanged.reset();
    const VimPlaces jumps = m_exact.jumps;
    const VimMarks marks = m_exact.marks;
    m_exact.going.rememberJump();
    const bool isUndo = replay == Replay::undo;
    const qsizetype steps = m_engine.m_view.undoSteps();
    if (const auto step = isUndo ? m_idleSteps.undo(steps) : m_idleSteps.redo(steps)) {
        showIdleStep(*step);
        return Replayed::idleStep;
    }
    if (isUndo || m_idleSteps.mayRedo(steps)) {
        const QScopedValueRollback making(m_making, Making::replay);
        m_exact.repeating.outsideStep([&] { isUndo ? m_engine.m_view.undo() : m_engine.m_view.redo(); });
    }
    if (m_engine.m_view.undoSteps() != steps) {
        return Replayed::change;
    }
    m_exact.jumps = jumps;
    m_exact.marks = marks;
    return Replayed::nothing;
}

void VimEngine::Changing::undo(qsizetype count)
{
    replaySteps(Replay::undo, count);
}

void VimEngine::Changing::redo(qsizetype count)
{
    replaySteps(Replay::redo, count);
}

void VimEngine::Changing::replaySteps(Replay replay, qsizetype count)
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

void VimEngine::Changing::showIdleStep(const VimIdleSteps::Step &step)
{
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const qsizetype first = lines.start(step.place);
        const qsizetype behind = lines.isLast(first) ? first : lines.next(first);
        setChangeMarks(step.isBetweenLines ? behind : first, step.isBetweenLines ? behind : lines.start(step.last));
    }
    if (!step.isBetweenLines) {
        m_stepNoted = stepUnderWay();
        noteLine(step.place);
    }
    setCaret(step.place);
}

void VimEngine::Changing::showReplayed(Replay replay)
{
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    // What was typed may have been deleted in the same step.
    const qsizetype first = m_firstChanged.value_or(std::min(caret(), text().length()));
    const VimStepCaret *step = m_exact.replayedStep(replay);
    m_stepNoted = stepUnderWay();
    if (const auto changed = step && m_firstChanged ? step->changed(replay) : std::nullopt) {
        const auto startOf = [&](qsizetype line) { return lines.startOf(std::min(line + 1, lines.count())); };
        setChangeMarks(startOf(changed->lines.first), startOf(changed->lines.last));
        noteChange(lines.startOf(changed->last + 1)); // of a line that may be gone
    } else if (m_firstChanged) {
        setChangeMarks(lines.start(first), lines.start(first));
        noteLine(first);
    }
    setCaret(step ? step->place(replay, lines, lines.number(first) - 1) : lines.firstNonBlank(lines.start(first)));
}

void VimEngine::Changing::undoLine()
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
    } else {
        beginChange(line.location);
    }
    noteChange(line.location);
    m_lineBefore = LineBefore{before.number, now, column};
    setCaret(line.location + std::min(before.column, before.text.length()));
    finish();
}
