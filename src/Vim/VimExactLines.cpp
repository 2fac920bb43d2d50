// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What Vim's operators and commands do to whole lines: shift, fill and join them.

#include "Vim/VimExact.h"

namespace {

/// Where the character at `place` is in `filled`, which `range` becomes; of blanks that go what is there instead. It is in no blank line.
qsizetype placeInFilled(const VimLines &lines, TextRange range, qsizetype place, const QString &filled)
{
    const auto isText = [](QChar unit) { return !unit.isSpace(); };
    qsizetype behind = place; // the last character before it that is no blank
    while (behind > range.location && QChar(lines.at(behind - 1)).isSpace()) {
        --behind;
    }
    qsizetype left = 0;
    for (qsizetype at = range.location; at < behind; ++at) {
        left += isText(QChar(lines.at(at))) ? 1 : 0;
    }
    qsizetype at = 0;
    while (left > 0 && at < filled.size()) {
        left -= isText(filled[at++]) ? 1 : 0;
    }
    if (isText(QChar(lines.at(place)))) {
        while (at < filled.size() && !isText(filled[at])) {
            ++at;
        }
        return at;
    }
    // Those of a line's indentation stand where the lines are joined.
    const qsizetype most = std::min(place, lines.end(behind)) - behind;
    for (qsizetype blanks = 0; blanks < most && at < filled.size() && isSpaceOrTab(filled[at].unicode()); ++blanks) {
        ++at;
    }
    return at;
}

} // namespace

void VimEngine::Operating::shift(const Region &region, OperatorKind kind)
{
    const int width = m_engine.m_view.indentation().width;
    TextEdits edits;
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        for (qsizetype line = lines.start(region.range.location); line < std::max(region.range.end(), line + 1);) {
            if (!lines.isEmpty(line)) {
                qsizetype behind = line;
                while (!lines.isAtEnd(behind) && isSpaceOrTab(lines.at(behind))) {
                    ++behind;
                }
                const qsizetype cells = lines.cells(behind).first;
                const qsizetype by = width * region.amount;
                const QString now = blanks(kind == OperatorKind::indent ? cells + by : std::max<qsizetype>(cells - by, 0));
                if (text().toString(TextRange::between(line, behind)) != now) {
                    edits.add(TextRange::between(line, behind), Rope(now));
                }
            }
            const qsizetype next = lines.next(line);
            if (next <= line || next >= region.range.end()) {
                break;
            }
            line = next;
        }
    }
    const qsizetype line = text().lineStart(text().lineAt(region.range.location));
    const qsizetype before = text().length();
    edit(edits);
    const Sight sight = see();
    const qsizetype behind = region.range.end() + text().length() - before;
    setChangeMarks(std::min(region.start, sight.lines.end(line)), sight.lines.last(std::max(behind - 1, line)));
    noteChange(line);
    setCaret(sight.lines.firstNonBlank(line));
}

void VimEngine::Operating::format(const Region &region, bool keepsCaret)
{
    const qsizetype from = m_objectCaret.value_or(caret());
    qsizetype kept = from;
    TextRange range;
    QString filled;
    {
        const Sight sight = see();
        range = sight.lines.lines(region.range.location, std::max(region.range.end() - 1, region.range.location));
        const VimOptions &options = m_engine.m_options;
        const int wanted = options.textWidth > 0 ? options.textWidth : options.longestLine;
        const auto fill = [&, width = wanted > 0 ? wanted : 79](TextRange part) {
            return VimFormatting::filled(sight.lines, part, width, [this](qsizetype cells) { return blanks(cells); });
        };
        filled = fill(range);
        const qsizetype line = sight.lines.start(from);
        if (range.contains(from) && sight.lines.isBlankFrom(line)) { // which is between paragraphs
            const qsizetype before = line > range.location ? fill(TextRange::between(range.location, line)).size() : 0;
            kept = range.location + before + from - line;
        } else if (range.contains(from)) {
            kept = range.location + placeInFilled(sight.lines, range, from, filled);
        }
    }
    const TextEdits edits = TextEdits::difference(text().slice(range), Rope(filled)).movedBy(range.location);
    if (!edits.isEmpty()) {
        edit(edits);
        noteLineBelow(edits.newRange(edits.count() - 1).end());
    }
    const qsizetype last = range.location + std::max<qsizetype>(filled.size() - 1, 0);
    const Sight sight = see();
    m_exact.marks.set(u']', sight.lines.firstNonBlank(last));
    if (keepsCaret) {
        setCaret(kept);
        return;
    }
    const bool goesOn = region.endsBelow && !sight.lines.isLast(last);
    setCaret(sight.lines.firstNonBlank(goesOn ? sight.lines.next(last) : last));
}

void VimEngine::Operating::join(qsizetype count, VimFormatting::Glue glue)
{
    VimFormatting::Joined joined;
    qsizetype lineStart = 0;
    {
        const Sight sight = see();
        lineStart = sight.lines.start(caret());
        const qsizetype left = sight.lines.count() - sight.lines.number(caret()) + 1;
        const qsizetype lines = std::max<qsizetype>(count, 2);
        if (left < lines && lines <= 2) {
            fail();
            return;
        }
        beginChange(caret(), left > 1 ? Reach::lines : Reach::line);
        if (text().isEmpty()) {
            m_hasChanged = m_exact.restoreLastBreak(true) || m_hasChanged;
            m_exact.setHasEmptyLine(true);
            finish(Repeatable::yes);
            return;
        }
        if (left < lines) {
            m_exact.repeating.limitCount(left); // as many are joined by a repetition
        }
        joined = VimFormatting::joined(sight.lines, caret(), std::min(lines, left), glue);
    }
    const qsizetype first = joined.edits.isEmpty() ? text().length() : joined.edits[0].range.location;
    edit(joined.edits);
    m_exact.marks.noteJoined(lineStart);
    {
        const Sight sight = see();
        const qsizetype end = sight.lines.end(lineStart);
        setChangeMarks(std::min(first, end), end);
        noteChange(joined.edits.isEmpty() ? end : sight.lines.next(lineStart)); // the line below is what was deleted last
    }
    setCaret(joined.edits.isEmpty() ? lineStart : joined.place);
    finish(Repeatable::yes);
}
