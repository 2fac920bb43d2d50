// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What Vim puts in the place of what is selected.

#include "Vim/VimExact.h"

#include "Text/TextBoundaries.h"

using namespace Qt::StringLiterals;

void VimEngine::Selecting::paste(qsizetype count, Side side, PasteRegister taking, Operating::PasteCaret at)
{
    VimRegisterContents pasted = m_exact.contents(m_engine.m_pendingRegister);
    const bool isSet = m_exact.isSet(m_engine.m_pendingRegister);
    if (!m_engine.mayPaste(pasted, count)) {
        leave();
        finish();
        return;
    }
    takeExtent();
    remember();
    m_engine.m_view.beginUndoGroup();
    m_engine.m_pendingRegister = taking == PasteRegister::keeps ? std::optional(u'_') : std::nullopt;
    Replaced replaced{
        .region = region(), .block = block(), .isBlock = m_engine.m_mode == Mode::visualBlock, .lines = m_engine.m_extent->lines};
    {
        const Sight sight = see();
        const TextRange range = replaced.region.range;
        const bool isOfLines = replaced.region.span == Span::lines;
        replaced.isAtEnd = !isOfLines && !replaced.isBlock && sight.lines.isAtEnd(range.end()) && !range.isEmpty();
        replaced.isLast = isOfLines && range.end() >= text().length();
        replaced.isAll = replaced.isLast && range.location == 0;
        replaced.isUpward = sight.lines.start(m_engine.m_visualHead) < sight.lines.start(m_engine.m_visualAnchor);
    }
    const auto repeating = m_exact.repeating.hold();
    const auto extentTaken = m_engine.m_extent;
    m_engine.setMode(Mode::normal);
    if (replaced.isBlock) {
        m_exact.operating.applyToBlock(OperatorKind::remove, replaced.block);
    } else {
        m_exact.operating.apply(OperatorKind::remove, replaced.region);
    }
    m_exact.repeating.release(repeating);
    m_engine.m_extent = extentTaken;
    if (replaced.region.span == Span::lines && (!pasted.text.isEmpty() || pasted.isBlock || isSet) && !pasted.isLinewise) {
        // Into lines of their own.
        pasted.text.replace({pasted.text.length(), 0}, u"\n");
        pasted.isLinewise = true;
        pasted.isBlock = false;
    }
    if (!pasted.text.isEmpty()) {
        put(pasted, replaced, side, count, at);
    } else {
        m_exact.changing.setChangeMarks(caret(), caret());
    }
    m_engine.m_view.endUndoGroup();
    selectPasted(extentTaken->mode);
    // It is the deletion that is repeated.
    m_engine.m_pendingRegister = taking == PasteRegister::keeps ? std::optional(u'_') : std::nullopt;
    m_engine.m_countBuffer.clear();
    finish(Repeatable::yes);
    m_exact.repeating.rememberKeys(u"d"_s);
}

void VimEngine::Selecting::put(const VimRegisterContents &pasted, const Replaced &replaced, Side side, qsizetype count,
                               Operating::PasteCaret at)
{
    const auto putAt = [&](qsizetype place, Side beside) {
        m_engine.m_view.select({place, 0}, place);
        m_exact.operating.pasteText(pasted, beside, count, at);
    };
    if (replaced.region.span == Span::lines) {
        m_exact.operating.pasteText(pasted, replaced.isLast && !replaced.isAll ? Side::after : Side::before, count, at);
        if (replaced.isAll) {
            removeEmptyLast();
        }
    } else if (pasted.isLinewise && replaced.isBlock) {
        // Below the line of the rectangle where the caret was, or above its first one.
        const bool wasEmpty = text().isEmpty();
        const bool isAbove = side == Side::before && caret() >= m_exact.marks.place(u'[').value_or(0);
        const qsizetype place = side == Side::before || replaced.isUpward ? caret() : see().lines.startNear(caret(), replaced.lines - 1);
        putAt(place, isAbove ? Side::before : Side::after);
        if (isAbove && wasEmpty) {
            removeEmptyLast();
        }
    } else if (replaced.isBlock && !pasted.isBlock && pasted.text.lineCount() == 1) {
        pasteIntoRows(replaced.block, pasted.text.toString().repeated(count));
        if (at == Operating::PasteCaret::behindText) {
            setCaret(TextBoundaries::nextGrapheme(text(), caret()));
        }
    } else if (pasted.isLinewise && !pasted.isBlock) {
        // The line is broken in two around them.
        const qsizetype place = replaced.isAtEnd ? replaced.region.range.location : caret();
        if (!text().isEmpty() || m_exact.hasEmptyLine()) {
            edit({place, 0}, u"\n");
        }
        putAt(place, Side::after);
    } else {
        const qsizetype place = std::min(replaced.region.range.location, text().length());
        putAt(replaced.isBlock ? m_exact.marks.place(u'[').value_or(caret()) : place, Side::before);
    }
}

/// At the left side of a rectangle that was deleted, in each line that reaches it.
void VimEngine::Selecting::pasteIntoRows(const VimBlock &block, const QString &pasted)
{
    TextEdits edits;
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        qsizetype line = lines.start(block.firstLine);
        for (qsizetype left = m_engine.m_extent->lines; left > 0; --left) {
            if (lines.cells(lines.end(line)).first >= block.left) {
                edits.add({lines.placeAt(line, block.left), 0}, Rope(pasted));
            }
            if (lines.isLast(line)) {
                break;
            }
            line = lines.next(line);
        }
    }
    if (edits.isEmpty()) {
        return;
    }
    const qsizetype behind = edits[0].range.location + pasted.size();
    edit(edits);
    m_exact.changing.setChangeMarks(behind - pasted.size(), behind - 1);
    m_exact.changing.noteChange(edits.newRange(edits.count() - 1).location);
    setCaret(TextBoundaries::previousGrapheme(text(), behind));
}

/// `gv` selects what was put, in the mode in which something was selected.
void VimEngine::Selecting::selectPasted(Mode mode)
{
    const qsizetype first = m_exact.marks.place(u'[').value_or(caret());
    const qsizetype behind = m_exact.marks.place(u']').value_or(first);
    const Sight sight = see();
    setSelected({mode, {first}, {std::min(behind, sight.lines.last(behind))}, false});
}

/// What is left of a text that was deleted whole.
void VimEngine::Selecting::removeEmptyLast()
{
    const bool isUnterminated = m_exact.isUnterminated();
    TextRange range;
    {
        const Sight sight = see();
        const qsizetype last = sight.lines.lastStart();
        if (!sight.lines.isEmpty(last) || last == 0) {
            return;
        }
        range = TextRange::between(isUnterminated ? sight.lines.end(last - 1) : last, text().length());
    }
    const qsizetype place = caret();
    edit(range, {});
    if (!isUnterminated) {
        m_exact.terminate();
    }
    setCaret(place);
}
