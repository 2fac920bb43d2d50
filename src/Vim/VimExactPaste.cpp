// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What Vim does with what registers have: characters, lines and rectangles put into the text.

#include "Vim/VimExact.h"

#include "Text/LineEditing.h"
#include "Text/TextBoundaries.h"

using namespace Qt::StringLiterals;

namespace {

/// Cells of a row of a rectangle, each tab as wide as where a line begins.
qsizetype widthOf(const QString &row, int tabWidth)
{
    const Rope rope(row);
    const VimLines lines(rope, tabWidth);
    qsizetype width = 0;
    for (qsizetype place = 0; place < rope.length(); place = lines.after(place)) {
        width += lines.width(place, 0);
    }
    return width;
}

} // namespace

void VimEngine::Operating::paste(Side side, qsizetype count, PasteCaret at, PasteIndentation indentation)
{
    VimRegisterContents contents = m_exact.contents(m_engine.m_pendingRegister);
    TextRange around{caret(), 0}; // what Vim keeps for undoing it, lines that stay as they are
    {
        const Sight sight = see();
        const qsizetype below = sight.lines.startNear(caret(), 1);
        around = TextRange::between(contents.isLinewise && side == Side::after ? below : sight.lines.start(caret()), below + 1);
    }
    const bool isOfLines = contents.isLinewise || contents.isBlock;
    m_exact.changing.beginChange(caret(),
                                 contents.text.isEmpty() ? Changing::Reach::between
                                 : isOfLines             ? Changing::Reach::lines
                                                         : Changing::Reach::line,
                                 around);
    if (contents.text.isEmpty() && !contents.isBlock) {
        if (!m_exact.repeating.isReplaying()) {
            m_exact.repeating.remember();
        }
        m_exact.changing.setChangeMarks(caret(), caret());
        fail();
        return;
    }
    if (!m_engine.mayPaste(contents, count)) {
        finish();
        return;
    }
    if (indentation == PasteIndentation::asHere && contents.isLinewise) {
        // The first line gets that of the caret's line, the others keep their distance.
        const Sight sight = see();
        const qsizetype wanted = indentationAt(text().lineAt(caret()));
        const Rope rope = contents.text;
        const VimLines lines(rope, sight.lines.tabWidth());
        std::optional<qsizetype> first;
        QString moved;
        for (qsizetype row = 0; row < rope.length(); row = lines.next(row)) {
            qsizetype behind = row;
            while (!lines.isAtEnd(behind) && isSpaceOrTab(lines.at(behind))) {
                ++behind;
            }
            const qsizetype cells = lines.cells(behind).first;
            first = first.value_or(cells);
            const bool isEmpty = lines.isEmpty(row);
            moved += (isEmpty ? QString() : blanks(std::max<qsizetype>(cells + wanted - *first, 0))) +
                     rope.toString(TextRange::between(behind, lines.next(row)));
        }
        contents.text = Rope(moved);
    }
    const bool isWithin = indentation == PasteIndentation::asHere && !contents.isLinewise && !contents.isBlock;
    const qsizetype line = text().lineAt(caret());
    const qsizetype cells = isWithin ? indentationAt(line) : 0;
    m_engine.m_view.beginUndoGroup();
    pasteText(contents, side, count, at);
    if (isWithin) {
        const qsizetype place = caret();
        alignLines(line + 1, (contents.text.lineCount() - 1) * count, cells);
        setCaret(place);
    }
    m_engine.m_view.endUndoGroup();
    finish(Repeatable::yes);
}

/// Cells of the blanks that the line, from 0, begins with.
qsizetype VimEngine::Operating::indentationAt(qsizetype line) const
{
    const Sight sight = see();
    qsizetype behind = text().lineStart(line);
    while (!sight.lines.isAtEnd(behind) && isSpaceOrTab(sight.lines.at(behind))) {
        ++behind;
    }
    return sight.lines.cells(behind).first;
}

/// The first of so many lines gets so much indentation, and the others keep their distance, but for empty ones.
void VimEngine::Operating::alignLines(qsizetype first, qsizetype count, qsizetype cells)
{
    TextEdits edits;
    {
        const Sight sight = see();
        std::optional<qsizetype> by;
        for (qsizetype line = first; line < first + count; ++line) {
            const qsizetype start = text().lineStart(line);
            if (sight.lines.isEmpty(start)) {
                continue;
            }
            const qsizetype now = indentationAt(line);
            by = by.value_or(cells - now);
            edits.add({start, LineEditing::leadingBlanks(text(), start).size()}, Rope(blanks(std::max<qsizetype>(now + *by, 0))));
        }
    }
    edit(edits);
}

void VimEngine::Operating::pasteText(const VimRegisterContents &contents, Side side, qsizetype count, PasteCaret at)
{
    m_engine.m_view.beginUndoGroup();
    putText(contents, side, count, at);
    if (const qsizetype place = caret(); m_exact.restoreLastBreak()) {
        setCaret(place);
    }
    m_engine.m_view.endUndoGroup();
}

void VimEngine::Operating::putText(const VimRegisterContents &contents, Side side, qsizetype count, PasteCaret at)
{
    if (contents.isBlock) {
        pasteBlock(contents, side, count, at);
        return;
    }
    Rope pasted = contents.text;
    const Rope once = contents.text;
    for (qsizetype done = 1; done < count; ++done) {
        pasted.replace({pasted.length(), 0}, once);
    }
    if (!contents.isLinewise) {
        qsizetype place = caret();
        {
            const Sight sight = see();
            place = side == Side::after && !sight.lines.isEmpty(place) ? sight.lines.after(place) : place;
        }
        const bool hasLines = [&] {
            const QString text = pasted.toString();
            return text.contains(u'\n');
        }();
        edit(TextEdits({place, 0}, pasted));
        const qsizetype behind = place + pasted.length();
        m_exact.changing.setChangeMarks(place, endsWithBreak(pasted) ? behind : behind - 1);
        if (at == PasteCaret::behindText) {
            setCaret(behind);
        } else {
            setCaret(hasLines ? place : TextBoundaries::previousGrapheme(text(), behind));
        }
        return;
    }
    qsizetype place = 0;
    bool isBehindAll = false;
    {
        const Sight sight = see();
        const qsizetype from = caret();
        place = side == Side::after ? sight.lines.next(from) : sight.lines.start(from);
        const bool isOpen = place == 0 || !isBreak(sight.lines.at(place - 1)) || sight.lines.start(from) == place;
        isBehindAll = side == Side::after && place == text().length() && isOpen;
    }
    if (isBehindAll) {
        // The last line has no break, and the new last one has none either.
        pasted.replace({pasted.length() - 1, 1}, Rope());
        pasted.replace({0, 0}, Rope(u"\n"));
    }
    edit(TextEdits({place, 0}, pasted));
    const qsizetype first = place + (isBehindAll ? 1 : 0);
    const qsizetype behind = place + pasted.length();
    const Sight sight = see();
    m_exact.changing.setChangeMarks(first, sight.lines.last(std::max(behind - 1, first)));
    m_exact.changing.noteChange(first);
    if (at == PasteCaret::behindText) {
        setCaret(behind < text().length() ? behind : sight.lines.lastStart());
    } else {
        setCaret(sight.lines.firstNonBlank(first));
    }
}

void VimEngine::Operating::pasteBlock(const VimRegisterContents &contents, Side side, qsizetype count, PasteCaret at)
{
    const QStringList rows = contents.text.toString().split(u'\n');
    TextEdits edits;
    qsizetype first = 0;
    qsizetype last = 0;
    qsizetype behindLast = 0;
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const qsizetype from = caret();
        const VimLines::Cells cells = lines.cells(from);
        const qsizetype column = side == Side::after && !lines.isEmpty(from) ? cells.last + 1 : cells.first;
        qsizetype line = lines.start(from);
        QString behindAll;
        for (qsizetype index = 0; index < rows.size(); ++index) {
            const qsizetype width = widthOf(rows[index], lines.tabWidth());
            const QString padding(std::max<qsizetype>(contents.blockWidth - width, 0), u' ');
            QString text;
            for (qsizetype done = 0; done < count; ++done) {
                text += rows[index] + (done + 1 < count ? padding : QString());
            }
            if (line < 0) {
                behindAll += u'\n' + QString(column, u' ') + text;
                continue;
            }
            const qsizetype end = lines.end(line);
            const qsizetype place = lines.placeAt(line, column);
            const qsizetype reached = lines.cells(place).first;
            const qsizetype missing = place == end ? std::max<qsizetype>(column - reached, 0) : 0;
            const bool isLast = lines.isLast(line);
            TextRange range{place, 0};
            QString inserted = QString(missing, u' ') + text + (place < end ? padding : QString());
            if (place < end && reached < column) {
                // Within a tab, which becomes blanks.
                const qsizetype cellsOfTab = lines.width(place, reached);
                inserted = QString(column - reached, u' ') + text + padding + QString(reached + cellsOfTab - column, u' ');
                range = TextRange::between(place, lines.after(place));
            }
            const qsizetype start = place + edits.growth() + (place < end && reached < column ? column - reached : missing);
            first = index == 0 ? start : first;
            last = start + text.size();
            behindLast = last + (place < end ? padding.size() : 0);
            edits.add(range, Rope(inserted));
            line = isLast ? -1 : lines.next(line);
        }
        if (!behindAll.isEmpty()) {
            const qsizetype end = lines.end(lines.lastStart());
            edits.add({end, 0}, Rope(behindAll));
            last = end + edits.growth();
            behindLast = last;
        }
    }
    edit(edits);
    m_exact.changing.setChangeMarks(first, std::max(last - 1, first));
    m_exact.changing.noteLine(first);
    setCaret(at == PasteCaret::behindText ? behindLast : first);
}
