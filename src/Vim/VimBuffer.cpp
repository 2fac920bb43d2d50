// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimBuffer.h"

#include "Text/TextBoundaries.h"

#include <QChar>

namespace {

/// Breaks that the rope does not count; most leaves need no look.
bool hasSeparators(const Rope &text, TextRange range)
{
    bool isFound = false;
    text.forEachChunk(range, [&](const Rope::Chunk &chunk) {
        if (!chunk.narrow) {
            isFound = std::any_of(chunk.wide, chunk.wide + chunk.length, isLineSeparator);
        }
        return !isFound;
    });
    return isFound;
}

} // namespace

TextRange VimBuffer::lineRange(qsizetype offset) const
{
    return ::lineRange(m_text, {clamped(offset), 0});
}

qsizetype VimBuffer::lineContentEnd(qsizetype offset)
{
    if (length() == 0) {
        return 0;
    }
    const TextRange line = lineRange(std::min(offset, length() - 1));
    qsizetype end = line.end();
    if (end > line.location && at(end - 1) == u'\n') {
        --end;
        return end > line.location && at(end - 1) == u'\r' ? end - 1 : end;
    }
    return end > line.location && isBreak(at(end - 1)) ? end - 1 : end;
}

qsizetype VimBuffer::firstNonBlank(qsizetype offset)
{
    const TextRange line = lineRange(offset);
    qsizetype place = line.location;
    while (place < line.end() && isSpaceOrTab(at(place))) {
        ++place;
    }
    return place == line.end() || isBreak(at(place)) ? line.location : place;
}

std::optional<qsizetype> VimBuffer::line(qsizetype from, qsizetype lines) const
{
    const TextRange here = lineRange(from);
    if (lines == 0) {
        return here.location;
    }
    // As the rope counts, unless there are breaks on the way that it does not count.
    const qsizetype number = m_text.lineAt(here.location) + lines;
    if (number >= 0 && number < m_text.lineCount()) {
        const qsizetype target = m_text.lineStart(number);
        const qsizetype low = std::min(here.location, target);
        if (!hasSeparators(m_text, TextRange::between(low, std::max(here.end(), target)))) {
            return target < length() || target < here.location ? std::optional(target) : std::nullopt;
        }
    } else if (!hasSeparators(m_text, lines < 0 ? TextRange{0, here.location} : TextRange::between(here.location, length()))) {
        return std::nullopt;
    }
    TextRange line = here;
    for (qsizetype step = 0; step < std::abs(lines); ++step) {
        if (lines < 0 ? line.location == 0 : line.end() >= length()) {
            return std::nullopt;
        }
        line = lineRange(lines < 0 ? line.location - 1 : line.end());
    }
    return line.location;
}

qsizetype VimBuffer::startOfLine(LineNumber number) const
{
    const qsizetype index = lineOfNumber(number);
    if (index == 0) {
        return 0;
    }
    const qsizetype target = index < m_text.lineCount() ? m_text.lineStart(index) : length();
    if (!hasSeparators(m_text, {0, target})) {
        return target;
    }
    TextRange line = lineRange(0);
    for (qsizetype step = 1; step <= index && line.end() < length(); ++step) {
        line = lineRange(line.end());
        if (step == index) {
            return line.location;
        }
    }
    return length();
}

qsizetype VimBuffer::lastLineStart() const
{
    return length() == 0 ? 0 : lineStart(length() - 1);
}

bool VimBuffer::isEmptyLine(TextRange line)
{
    return line.isEmpty() || isBreak(at(line.location));
}

VimBuffer::CharacterClass VimBuffer::characterClass(qsizetype offset)
{
    return offset < 0 || offset >= length() ? CharacterClass::blank : classOf(at(offset));
}

VimBuffer::CharacterClass VimBuffer::classOf(char16_t unit)
{
    if (isSpaceOrTab(unit) || unit == u'\n' || unit == u'\r') {
        return CharacterClass::blank;
    }
    const QChar character(unit);
    return unit == u'_' || (!character.isSurrogate() && (character.isLetterOrNumber() || character.isMark())) ? CharacterClass::word
                                                                                                              : CharacterClass::punctuation;
}

qsizetype VimBuffer::clampToNormalMode(qsizetype offset)
{
    if (length() == 0) {
        return 0;
    }
    const qsizetype place = std::clamp<qsizetype>(offset, 0, length() - 1);
    const qsizetype end = lineContentEnd(place);
    return place < end ? place : std::max(end - 1, lineStart(place));
}

TextRange wholeCharacters(const Rope &text, TextRange range)
{
    const qsizetype start = TextBoundaries::snapped(text, range.location);
    if (range.isEmpty()) {
        return {start, 0};
    }
    return TextRange::between(start, characterAtOrBehind(text, range.end()));
}

qsizetype characterAtOrBehind(const Rope &text, qsizetype offset)
{
    const qsizetype before = TextBoundaries::snapped(text, offset);
    return before < offset ? TextBoundaries::nextGrapheme(text, before) : before;
}
