// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What Vim's operators and commands do to whole lines: shift, fill and join them.

#include "Vim/VimExEdits.h"
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

struct FilledPart {
    TextEdits edits;
    /// Of all of it then.
    qsizetype size = 0;
    /// Where the character at the caret is then.
    qsizetype kept = 0;
};

struct Filling {
    int width;
    Indentation indentation;
};

FilledPart filledPart(const VimLines &lines, TextRange range, qsizetype caret, const Filling &filling)
{
    const auto fill = [&](TextRange part) { return VimFormatting::filled(lines, part, filling.width, filling.indentation); };
    const QString filled = fill(range);
    FilledPart part{.size = filled.size(), .kept = caret};
    const qsizetype line = lines.start(caret);
    if (range.contains(caret) && lines.isBlankFrom(line)) { // which is between paragraphs
        const qsizetype before = line > range.location ? fill(TextRange::between(range.location, line)).size() : 0;
        part.kept = range.location + before + caret - line;
    } else if (range.contains(caret)) {
        part.kept = range.location + placeInFilled(lines, range, caret, filled);
    }
    part.edits = TextEdits::difference(lines.text().slice(range), Rope(filled)).movedBy(range.location);
    return part;
}

} // namespace

void VimEngine::Operating::shift(const Region &region, OperatorKind kind)
{
    const qsizetype levels = kind == OperatorKind::indent ? region.amount : -region.amount;
    const Indentation indentation = m_engine.m_view.indentation();
    const qsizetype lineCount =
        text().lineAt(std::max(region.range.end() - 1, region.range.location)) - text().lineAt(region.range.location) + 1;
    if (levels > 0 && !m_engine.mayInsert(levels * indentation.width, lineCount)) {
        return;
    }
    const auto made = computed(region.range, [range = region.range, levels, indentation](const VimLines &lines) {
        const VimExEdits::LineSpan span{lines.number(range.location), lines.number(std::max(range.end() - 1, range.location))};
        return VimExEdits::shifted(lines.text(), span, levels, indentation);
    });
    const TextEdits edits = made.value_or(TextEdits());
    const qsizetype line = text().lineStart(text().lineAt(region.range.location));
    const qsizetype before = text().length();
    edit(edits);
    const Sight sight = see();
    const qsizetype behind = region.range.end() + text().length() - before;
    m_exact.changing.setChangeMarks(std::min(region.start, sight.lines.end(line)), sight.lines.last(std::max(behind - 1, line)));
    m_exact.changing.noteChange(line);
    setCaret(sight.lines.firstNonBlank(line));
}

void VimEngine::Operating::format(const Region &region, bool keepsCaret)
{
    const qsizetype from = m_objectCaret.value_or(caret());
    const TextRange range = see().lines.lines(region.range.location, std::max(region.range.end() - 1, region.range.location));
    const VimOptions &options = m_engine.m_options;
    const int wanted = options.textWidth > 0 ? options.textWidth : options.longestLine;
    const auto made = computed(
        range, [range, from, width = wanted > 0 ? wanted : 79, indentation = m_engine.m_view.indentation()](const VimLines &lines) {
            return filledPart(lines, range, from, {width, indentation});
        });
    if (!made) {
        setCaret(from);
        return;
    }
    const auto &[edits, size, kept] = *made;
    if (!edits.isEmpty()) {
        edit(edits);
        m_exact.changing.noteLineBelow(edits.newRange(edits.count() - 1).end());
    }
    const qsizetype last = range.location + std::max<qsizetype>(size - 1, 0);
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
        m_exact.changing.beginChange(caret(), left > 1 ? Changing::Reach::lines : Changing::Reach::line);
        if (text().isEmpty()) {
            if (m_exact.restoreLastBreak(true)) {
                m_exact.changing.countChange();
            }
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
        m_exact.changing.setChangeMarks(std::min(first, end), end);
        m_exact.changing.noteChange(std::min(first, end));
        if (!joined.edits.isEmpty()) {
            m_exact.changing.noteLineBelow(lineStart); // which was deleted last
        }
    }
    setCaret(joined.edits.isEmpty() ? lineStart : joined.place);
    finish(Repeatable::yes);
}
