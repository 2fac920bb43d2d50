// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimFormatting.h"

#include "Text/LineEditing.h"

namespace VimFormatting {

namespace {

bool isBlank(QChar unit)
{
    return unit == u' ' || unit == u'\t';
}

QStringView trimmedLeft(QStringView text)
{
    qsizetype blanks = 0;
    while (blanks < text.size() && isBlank(text[blanks])) {
        ++blanks;
    }
    return text.sliced(blanks);
}

/// `next` behind `text`, with a blank where one belongs.
void append(QString &text, QStringView next)
{
    const QStringView rest = trimmedLeft(next);
    if (!rest.isEmpty() && rest.front() != u')' && !text.isEmpty() && text.back() != u'\t' && text.back() != u' ') {
        text += u' ';
    }
    text += rest;
}

qsizetype cellsOf(const QString &text, int tabWidth)
{
    const Rope rope(text);
    const VimLines lines(rope, tabWidth);
    return lines.cells(text.size()).first;
}

/// Where a line that begins at `start` and cell `margin` is broken so that what stays is not wider than `width`: behind the last word that
/// fits, or the first. Looks no further than that.
std::optional<TextRange> breakOf(const VimLines &lines, qsizetype start, qsizetype margin, int width)
{
    std::optional<TextRange> found;
    const qsizetype end = lines.text().length();
    qsizetype cell = margin;
    const auto step = [&](qsizetype &place) {
        cell += lines.width(place, cell);
        place = lines.after(place);
    };
    for (qsizetype place = start; place < end;) {
        if (!isBlank(lines.at(place))) {
            step(place);
            continue;
        }
        const qsizetype blanks = place;
        const bool isBeyond = cell > width;
        while (place < end && isBlank(lines.at(place))) {
            step(place);
        }
        if (place < end && !(isBeyond && found)) {
            found = TextRange::between(blanks, place);
        }
        if (isBeyond) {
            break;
        }
    }
    return cell > width ? found : std::nullopt;
}

/// Whole lines of `paragraph`, which has no break, behind `indentation`.
QStringList linesOf(const QString &paragraph, const QString &indentation, int width, int tabWidth)
{
    const qsizetype margin = cellsOf(indentation, tabWidth);
    const Rope rope(paragraph);
    const VimLines lines(rope, tabWidth);
    QStringList written;
    qsizetype start = 0;
    while (const auto at = breakOf(lines, start, margin, width)) {
        written << indentation + paragraph.sliced(start, at->location - start);
        start = at->end();
    }
    written << indentation + paragraph.sliced(start);
    return written;
}

} // namespace

Joined joined(const VimLines &lines, qsizetype place, qsizetype count, Glue glue)
{
    Joined result;
    qsizetype line = lines.start(place);
    qsizetype total = lines.end(line) - line;
    qsizetype shift = 0;
    result.place = place;
    char16_t last = lines.isEmpty(line) ? u'\0' : lines.at(lines.end(line) - 1);
    for (qsizetype done = 1; done < count && !lines.isLast(line); ++done) {
        const qsizetype end = lines.end(line);
        const qsizetype next = lines.next(line);
        const qsizetype nextEnd = lines.end(next);
        qsizetype from = next;
        bool hasBlank = false;
        if (glue == Glue::blank) {
            while (from < nextEnd && isSpaceOrTab(lines.at(from))) {
                ++from;
            }
            hasBlank = from < nextEnd && lines.at(from) != u')' && total != 0 && last != u'\t' && last != u' ';
        }
        result.edits.add(TextRange::between(end, from), hasBlank ? Rope(u" ") : Rope());
        result.place = end + shift;
        shift += (hasBlank ? 1 : 0) - (from - end);
        total += (nextEnd - from) + (hasBlank ? 1 : 0);
        last = from < nextEnd ? lines.at(nextEnd - 1) : u'\0';
        line = next;
    }
    return result;
}

QString filled(const VimLines &lines, TextRange range, int width, const Indentation &indentation)
{
    const bool hasBreak = !range.isEmpty() && isBreak(lines.at(range.end() - 1));
    QStringList written;
    QString paragraph;
    bool hasParagraph = false;
    const auto flush = [&] {
        if (!hasParagraph) {
            return;
        }
        qsizetype start = 0;
        while (start < paragraph.size() && isBlank(paragraph[start])) {
            ++start;
        }
        const QString margin = blanks(0, cellsOf(paragraph.first(start), lines.tabWidth()), indentation);
        written << linesOf(paragraph.sliced(start), margin, width, lines.tabWidth());
        paragraph.clear();
        hasParagraph = false;
    };
    for (qsizetype line = range.location; line < range.end() || line == range.location; line = lines.next(line)) {
        const QString text = lines.text().toString(TextRange::between(line, lines.end(line)));
        if (lines.isBlankFrom(line)) {
            flush();
            written << text;
        } else if (hasParagraph) {
            append(paragraph, text);
        } else {
            paragraph = text;
            hasParagraph = true;
        }
        if (lines.next(line) <= line) {
            break;
        }
    }
    flush();
    return written.join(u'\n') + (hasBreak ? QStringLiteral("\n") : QString());
}

QString blanks(qsizetype from, qsizetype to, const Indentation &indentation)
{
    QString text;
    if (indentation.unit == Indentation::Unit::tab) {
        const qsizetype width = indentation.tabWidth();
        for (qsizetype stop = (from / width + 1) * width; stop <= to; stop += width) {
            text += u'\t';
            from = stop;
        }
    }
    return text + QString(to - from, u' ');
}

} // namespace VimFormatting
