// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimMotion.h"

#include "Text/TextBoundaries.h"

#include <string_view>

namespace {

using CharacterClass = VimBuffer::CharacterClass;

/// Whether a word of class `of` goes on at `offset`.
bool continues(VimBuffer &text, qsizetype offset, CharacterClass of, VimMotion::Words words)
{
    const CharacterClass here = text.characterClass(offset);
    return words == VimMotion::Words::big ? here != CharacterClass::blank : here == of;
}

qsizetype pastBlanks(VimBuffer &text, qsizetype from)
{
    while (from < text.length() && text.characterClass(from) == CharacterClass::blank) {
        ++from;
    }
    return from;
}

} // namespace

namespace VimMotion {

FindKind reversed(FindKind kind)
{
    switch (kind) {
    case FindKind::forwardTo:
        return FindKind::backwardTo;
    case FindKind::forwardBefore:
        return FindKind::backwardBefore;
    case FindKind::backwardTo:
        return FindKind::forwardTo;
    case FindKind::backwardBefore:
        break;
    }
    return FindKind::forwardBefore;
}

qsizetype nextWordStart(VimBuffer &text, qsizetype from, Words words)
{
    if (from >= text.length()) {
        return from;
    }
    if (const CharacterClass here = text.characterClass(from); here != CharacterClass::blank) {
        while (from < text.length() && continues(text, from, here, words)) {
            ++from;
        }
    }
    return pastBlanks(text, from);
}

qsizetype previousWordStart(VimBuffer &text, qsizetype from, Words words)
{
    qsizetype place = from - 1;
    while (place > 0 && text.characterClass(place) == CharacterClass::blank) {
        --place;
    }
    if (place <= 0) {
        return 0;
    }
    const CharacterClass here = text.characterClass(place);
    while (place > 0 && continues(text, place - 1, here, words)) {
        --place;
    }
    return place;
}

qsizetype nextWordEnd(VimBuffer &text, qsizetype from, Words words)
{
    qsizetype place = pastBlanks(text, from + 1);
    if (place >= text.length()) {
        return std::max<qsizetype>(text.length() - 1, 0);
    }
    const CharacterClass here = text.characterClass(place);
    while (place + 1 < text.length() && continues(text, place + 1, here, words)) {
        ++place;
    }
    return place;
}

qsizetype lastOfLine(VimBuffer &text, qsizetype from, qsizetype count)
{
    const qsizetype line = text.line(from, count - 1).value_or(text.lineStart(from));
    return std::max(text.lineContentEnd(line) - 1, line);
}

qsizetype nextParagraphBoundary(VimBuffer &text, qsizetype from, Direction direction)
{
    return nextDivider(text, from, direction, Dividers::emptyLines);
}

qsizetype nextDivider(VimBuffer &text, qsizetype from, Direction direction, Dividers dividers)
{
    const auto isFeed = [&](char16_t unit) { return dividers == Dividers::emptyLinesAndFeeds && unit == u'\f'; };
    // Unit by unit: to ask for line after line takes much longer in a text of millions.
    const TextRange line = text.lineRange(from);
    if (direction == Direction::forward) {
        qsizetype start = line.end();
        while (start < text.length() && !isBreak(text.at(start)) && !isFeed(text.at(start))) {
            while (start < text.length() && !isBreak(text.at(start))) {
                ++start;
            }
            const bool isPair = start + 1 < text.length() && text.at(start) == u'\r' && text.at(start + 1) == u'\n';
            start = std::min(start + (isPair ? 2 : 1), text.length());
        }
        return start;
    }
    qsizetype start = line.location;
    while (start > 0) {
        qsizetype end = start - 1;
        if (end > 0 && text.at(end) == u'\n' && text.at(end - 1) == u'\r') {
            --end;
        }
        start = end;
        while (start > 0 && !isBreak(text.at(start - 1))) {
            --start;
        }
        if (start == end || isFeed(text.at(start))) {
            return start;
        }
    }
    return 0;
}

Result matchingBracket(VimBuffer &text, qsizetype from)
{
    static constexpr std::u16string_view brackets = u"()[]{}";
    const Result none{.position = from, .kind = Kind::inclusive, .failed = true};
    const qsizetype lineEnd = text.lineContentEnd(from);
    qsizetype place = from;
    while (place < lineEnd && brackets.find(text.at(place)) == std::u16string_view::npos) {
        ++place;
    }
    if (place >= lineEnd) {
        return none;
    }
    const size_t index = brackets.find(text.at(place));
    const char16_t own = brackets[index];
    const char16_t partner = brackets[index ^ 1];
    const qsizetype step = index % 2 == 0 ? 1 : -1;
    qsizetype depth = 0;
    for (; place >= 0 && place < text.length(); place += step) {
        const char16_t unit = text.at(place);
        depth += unit == own ? 1 : unit == partner ? -1 : 0;
        if (depth == 0) {
            return {.position = place, .kind = Kind::inclusive};
        }
    }
    return none;
}

Result find(VimBuffer &text, qsizetype from, char16_t character, FindKind kind, qsizetype count)
{
    const bool isForward = kind == FindKind::forwardTo || kind == FindKind::forwardBefore;
    const bool isBefore = kind == FindKind::forwardBefore || kind == FindKind::backwardBefore;
    const qsizetype step = isForward ? 1 : -1;
    const Kind motionKind = isForward ? Kind::inclusive : Kind::exclusive;
    const qsizetype lineStart = text.lineStart(from);
    const qsizetype lineEnd = text.lineContentEnd(from);
    const auto isOnLine = [&](qsizetype place) { return place >= lineStart && place < lineEnd; };
    qsizetype place = from + step;
    if (isBefore && isOnLine(place) && text.at(place) == character) {
        place += step; // repeated, it goes on instead of staying before the same one
    }
    qsizetype found = from;
    for (qsizetype nth = 0; nth < count; ++nth) {
        while (isOnLine(place) && text.at(place) != character) {
            place += step;
        }
        if (!isOnLine(place)) {
            return {.position = from, .kind = motionKind, .failed = true};
        }
        found = place;
        place += step;
    }
    return {.position = isBefore ? found - step : found, .kind = motionKind};
}

qsizetype lastUnit(const Rope &text, qsizetype offset)
{
    return std::max(TextBoundaries::nextGrapheme(text, offset) - 1, offset);
}

namespace {

/// Words that begin within a character are none.
qsizetype nextWord(VimBuffer &text, qsizetype from, Words words)
{
    do {
        from = nextWordStart(text, from, words);
    } while (from < text.length() && TextBoundaries::snapped(text.text(), from) < from);
    return from;
}

qsizetype nextEnd(VimBuffer &text, qsizetype from, Words words)
{
    return nextWordEnd(text, lastUnit(text.text(), from), words);
}

/// Where `step` leads that often, or as often as it leads anywhere.
template<auto step, auto how>
qsizetype repeated(const Request &request)
{
    qsizetype from = request.caret;
    for (qsizetype done = 0; done < request.count; ++done) {
        const qsizetype next = step(request.text, from, how);
        if (next == from) {
            break;
        }
        from = next;
    }
    return from;
}

} // namespace

Result left(const Request &request)
{
    return {.position = std::max(request.caret - request.count, request.text.lineStart(request.caret))};
}

Result right(const Request &request)
{
    const Rope &text = request.text.text();
    const qsizetype end = request.text.lineContentEnd(request.caret);
    const qsizetype last = TextBoundaries::snapped(text, std::max(end - 1, request.text.lineStart(request.caret)));
    return {.position = characterAtOrBehind(text, std::min(request.caret + request.count, request.mayStandOnBreak ? end : last))};
}

template<Words words>
Result wordStart(const Request &request)
{
    return {.position = repeated<nextWord, words>(request), .isWordMotion = true};
}

template<Words words>
Result wordStartBefore(const Request &request)
{
    return {.position = repeated<previousWordStart, words>(request)};
}

template<Words words>
Result wordEnd(const Request &request)
{
    return {.position = repeated<nextEnd, words>(request), .kind = Kind::inclusive};
}

Result paragraphBefore(const Request &request)
{
    return {.position = repeated<nextParagraphBoundary, Direction::backward>(request)};
}

Result paragraphBehind(const Request &request)
{
    return {.position = repeated<nextParagraphBoundary, Direction::forward>(request)};
}

Result lineStart(const Request &request)
{
    return {.position = request.text.lineStart(request.caret)};
}

Result firstNonBlank(const Request &request)
{
    return {.position = request.text.firstNonBlank(request.caret)};
}

Result lineEnd(const Request &request)
{
    return {.position = lastOfLine(request.text, request.caret, request.count), .kind = Kind::inclusive};
}

Result bracketPartner(const Request &request)
{
    return matchingBracket(request.text, request.caret);
}

template Result wordStart<Words::small>(const Request &request);
template Result wordStart<Words::big>(const Request &request);
template Result wordStartBefore<Words::small>(const Request &request);
template Result wordStartBefore<Words::big>(const Request &request);
template Result wordEnd<Words::small>(const Request &request);
template Result wordEnd<Words::big>(const Request &request);

} // namespace VimMotion
