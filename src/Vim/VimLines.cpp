// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimLines.h"

#include "Text/TextBoundaries.h"
#include "Vim/VimCharacters.h"

#include <unicode/uchar.h>

namespace {

/// Cells of a character that is no tab.
qsizetype widthOf(char32_t character)
{
    if (character < 0x20 || character == 0x7F) {
        return 2; // ^X
    }
    if (character < 0x1100) {
        return 1;
    }
    const int width = u_getIntPropertyValue(UChar32(character), UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

} // namespace

// Lines

const VimLines::Line &VimLines::line(qsizetype place) const
{
    const bool isKept = m_line && place >= m_line->start && (place < m_line->next || (place == m_line->end && m_line->end == m_line->next));
    if (!isKept) {
        const qsizetype index = number(place) - 1;
        const qsizetype first = text().lineStart(index);
        const qsizetype next = index + 1 < text().lineCount() ? text().lineStart(index + 1) : m_text.length();
        qsizetype end = next;
        end -= end > first && m_text.at(end - 1) == u'\n' ? 1 : 0;
        end -= end > first && m_text.at(end - 1) == u'\r' ? 1 : 0;
        m_line = {first, end, next};
    }
    return *m_line;
}

qsizetype VimLines::start(qsizetype place) const
{
    return line(place).start;
}

qsizetype VimLines::end(qsizetype place) const
{
    return line(place).end;
}

bool VimLines::isLast(qsizetype place) const
{
    return next(place) >= m_text.length() && number(place) == count();
}

qsizetype VimLines::count() const
{
    const bool hasEmptyLast = isEnded() && (m_last == LastLine::hasText || m_text.length() == 0);
    return std::max<qsizetype>(text().lineCount() - (hasEmptyLast ? 1 : 0), 1);
}

qsizetype VimLines::next(qsizetype place) const
{
    return line(place).next;
}

qsizetype VimLines::startNear(qsizetype place, qsizetype lines) const
{
    return startOf(std::clamp<qsizetype>(number(place) + lines, 1, count()));
}

qsizetype VimLines::startOf(qsizetype number) const
{
    return number > count() ? m_text.length() : text().lineStart(std::max<qsizetype>(number, 1) - 1);
}

qsizetype VimLines::endOf(qsizetype number) const
{
    return number > count() ? m_text.length() : number < 1 ? 0 : end(startOf(number));
}

qsizetype VimLines::firstNonBlank(qsizetype place) const
{
    const qsizetype behind = end(place);
    qsizetype at = start(place);
    while (at < behind && isSpaceOrTab(m_text.at(at))) {
        ++at;
    }
    return at == behind ? last(place) : at;
}

bool VimLines::isBlankFrom(qsizetype place) const
{
    const qsizetype behind = end(place);
    while (place < behind && isSpaceOrTab(m_text.at(place))) {
        ++place;
    }
    return place >= behind;
}

TextRange VimLines::lines(qsizetype one, qsizetype other) const
{
    return TextRange::between(start(std::min(one, other)), next(std::max(one, other)));
}

TextRange VimLines::removable(TextRange lines) const
{
    const bool hasBreak = !lines.isEmpty() && (lines.end() < m_text.length() || isEnded());
    return hasBreak || lines.location == 0 ? lines : TextRange::between(end(lines.location - 1), lines.end());
}

// Characters

char32_t VimLines::codePoint(qsizetype place) const
{
    const char16_t unit = at(place);
    return QChar::isHighSurrogate(unit) && QChar::isLowSurrogate(at(place + 1)) ? QChar::surrogateToUcs4(unit, at(place + 1)) : unit;
}

qsizetype VimLines::after(qsizetype place) const
{
    const qsizetype behind = end(place);
    return place < behind ? std::min(TextBoundaries::nextGrapheme(text(), place), behind) : behind;
}

qsizetype VimLines::before(qsizetype place) const
{
    return std::max(place > 0 ? TextBoundaries::previousGrapheme(text(), place) : 0, start(place));
}

qsizetype VimLines::last(qsizetype place) const
{
    const qsizetype behind = end(place);
    return behind == start(place) ? behind : before(behind);
}

qsizetype VimLines::after(qsizetype place, qsizetype characters) const
{
    for (const qsizetype behind = end(place); characters > 0 && place < behind; --characters) {
        place = std::min(TextBoundaries::nextGrapheme(text(), place), behind);
    }
    return place;
}

qsizetype VimLines::before(qsizetype place, qsizetype characters) const
{
    for (const qsizetype first = start(place); characters > 0 && place > first; --characters) {
        place = std::max(TextBoundaries::previousGrapheme(text(), place), first);
    }
    return place;
}

qsizetype VimLines::settled(qsizetype place) const
{
    const qsizetype inText = std::clamp<qsizetype>(place, 0, m_text.length());
    return inText >= end(inText) ? last(inText) : TextBoundaries::snapped(text(), inText);
}

int VimLines::wordClass(qsizetype place) const
{
    return isAtEnd(place) ? 0 : int(VimCharacters::classOf(codePoint(place)));
}

// Cells

qsizetype VimLines::width(qsizetype place, qsizetype firstCell) const
{
    const char16_t unit = at(place);
    return unit == u'\t' ? m_tabWidth - firstCell % m_tabWidth : widthOf(codePoint(place));
}

VimLines::Cells VimLines::cells(qsizetype place) const
{
    qsizetype cell = 0;
    const qsizetype behind = end(place);
    qsizetype at = start(place);
    while (at < place && at < behind) {
        const qsizetype here = width(at, cell);
        const qsizetype next = after(at);
        if (next > place) {
            break;
        }
        cell += here;
        at = next;
    }
    return {cell, at < behind ? cell + width(at, cell) - 1 : cell};
}

qsizetype VimLines::column(qsizetype place) const
{
    const Cells of = cells(place);
    return at(place) == u'\t' ? of.last : of.first;
}

qsizetype VimLines::placeAt(qsizetype line, qsizetype cell) const
{
    const qsizetype behind = end(line);
    qsizetype place = start(line);
    for (qsizetype reached = 0; place < behind; place = after(place)) {
        reached += width(place, reached);
        if (reached > cell) {
            break;
        }
    }
    return place;
}

// Steps

VimLines::Step VimLines::forward(qsizetype &place) const
{
    if (const qsizetype behind = end(place); place < behind) {
        place = after(place);
        return place < behind ? Step::character : Step::lineEnd;
    }
    if (isLast(place)) {
        return Step::none;
    }
    place = next(place);
    return Step::nextLine;
}

VimLines::Step VimLines::backward(qsizetype &place) const
{
    if (const qsizetype first = start(place); place > first) {
        place = before(place);
        return Step::character;
    }
    if (place == 0) {
        return Step::none;
    }
    place = end(place - 1);
    return Step::nextLine;
}

bool VimLines::forwardOverEnds(qsizetype &place) const
{
    const Step step = forward(place);
    if (step == Step::lineEnd && !isLast(place)) {
        return forward(place) != Step::none;
    }
    return step != Step::none && step != Step::lineEnd;
}

bool VimLines::backwardOverEnds(qsizetype &place) const
{
    const Step step = backward(place);
    if (step == Step::nextLine && !isEmpty(place)) {
        place = before(place);
    }
    return step != Step::none;
}

// Bytes

std::optional<qsizetype> byteColumn(const VimLines &lines, qsizetype place)
{
    constexpr qsizetype farthest = 1 << 16;
    const qsizetype start = lines.start(place);
    return place - start > farthest ? std::nullopt : std::optional(lines.text().toString(TextRange::between(start, place)).toUtf8().size());
}

qsizetype placeAtByte(const VimLines &lines, qsizetype line, qsizetype bytes)
{
    qsizetype place = line;
    while (!lines.isAtEnd(place)) {
        const qsizetype next = lines.after(place);
        bytes -= lines.text().toString(TextRange::between(place, next)).toUtf8().size();
        if (bytes < 0) {
            break;
        }
        place = next;
    }
    return place;
}
