// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExactMotion.h"

#include <string_view>

using VimMotion::Direction;
using VimMotion::FindKind;
using VimMotion::Words;

namespace VimExactMotion {

qsizetype columnOf(const VimLines &lines, qsizetype place)
{
    const VimLines::Cells cells = lines.cells(place);
    return lines.at(place) == u'\t' ? cells.last : cells.first;
}

namespace {

/// Not behind the line, for an operator then with that character.
Result onCharacter(const Request &request, qsizetype place, Kind kind)
{
    const VimLines &lines = request.lines;
    if (place > request.caret && lines.isAtEnd(place) && !lines.isEmpty(place) && request.purpose != For::selection) {
        return {.place = lines.last(place), .kind = Kind::inclusive};
    }
    return {.place = place, .kind = kind};
}

Result toLine(const Request &request, qsizetype line, bool isJump = false)
{
    if (request.keepsColumn) {
        const VimLines &text = request.lines;
        const qsizetype cell = request.column.value_or(text.column(request.caret));
        const qsizetype place = cell >= VimLines::endless ? text.end(line) : text.placeAt(line, cell);
        return {.place = std::min(place, text.last(line)), .kind = Kind::linewise, .isJump = isJump, .column = cell};
    }
    return {.place = request.lines.firstNonBlank(line), .kind = Kind::linewise, .isJump = isJump};
}

/// Down by `lines`; to the last line if there are fewer, but not from the last one itself.
Result vertical(const Request &request, qsizetype lines)
{
    const VimLines &text = request.lines;
    const bool isAtEdge = lines > 0 ? text.isLast(request.caret) : text.isFirst(request.caret);
    if (lines != 0 && isAtEdge) {
        return Result::failure();
    }
    const qsizetype line = text.startNear(request.caret, lines);
    const bool mayStandBehind = request.purpose == For::selection;
    const qsizetype cell = request.column.value_or(text.column(request.caret));
    qsizetype place = cell >= VimLines::endless ? text.end(line) : text.placeAt(line, cell);
    if (place == text.end(line) && !mayStandBehind) {
        place = text.last(line);
    }
    return {.place = place, .kind = Kind::linewise, .column = cell};
}

} // namespace

Result left(const Request &request)
{
    const qsizetype place = request.lines.before(request.caret, request.count);
    return {.place = place, .failed = place == request.caret && !request.isForOperator()};
}

Result right(const Request &request)
{
    const VimLines &lines = request.lines;
    const qsizetype behind = lines.after(request.caret, request.count);
    if (request.purpose == For::caret) {
        const qsizetype place = std::min(behind, lines.last(request.caret));
        return {.place = place, .failed = place == request.caret};
    }
    if (request.isForOperator() && lines.isAtEnd(behind) && !lines.isEmpty(behind)) {
        return {.place = lines.last(behind), .kind = Kind::inclusive};
    }
    return {.place = behind, .failed = behind == request.caret && request.purpose == For::selection};
}

Result characterBefore(const Request &request)
{
    const VimLines &lines = request.lines;
    const bool mayStandBehind = request.purpose == For::selection || request.purpose == For::remove || request.purpose == For::change;
    qsizetype place = request.caret;
    bool takesBreak = false;
    for (qsizetype done = 0; done < request.count; ++done) {
        if (place == lines.start(place)) {
            if (place == 0) {
                return {.place = place, .failed = done == 0 && !request.isForOperator(), .takesBreak = takesBreak};
            }
            const qsizetype above = lines.start(place - 1);
            // What deletes takes the break by itself.
            const bool standsBehind = mayStandBehind && !lines.isEmpty(above);
            place = standsBehind ? lines.end(above) : lines.last(above);
            takesBreak = takesBreak || standsBehind;
        } else {
            place = lines.before(place);
        }
    }
    return {.place = place, .takesBreak = takesBreak};
}

Result characterBehind(const Request &request)
{
    const VimLines &lines = request.lines;
    qsizetype place = request.caret;
    for (qsizetype done = 0; done < request.count; ++done) {
        const bool isAtLast = request.purpose == For::caret ? place >= lines.last(place) : lines.isAtEnd(place);
        if (!isAtLast) {
            place = lines.after(place);
            if (request.isForOperator() && lines.isAtEnd(place) && done + 1 < request.count && !lines.isLast(place)) {
                continue;
            }
        } else if (lines.isLast(place)) {
            const bool isOnCharacter = request.isForOperator() && !lines.isEmpty(place);
            return {.place = isOnCharacter ? lines.last(place) : place,
                    .kind = isOnCharacter ? Kind::inclusive : Kind::exclusive,
                    .failed = done == 0 && !request.isForOperator()};
        } else {
            place = lines.next(place);
        }
    }
    if (request.isForOperator() && lines.isAtEnd(place) && !lines.isEmpty(place)) {
        return {.place = lines.last(place), .kind = Kind::inclusive};
    }
    return {.place = place};
}

Result down(const Request &request)
{
    return vertical(request, request.count);
}

Result up(const Request &request)
{
    return vertical(request, -request.count);
}

namespace {

Result firstNonBlankOf(const Request &request, qsizetype lines)
{
    const VimLines &text = request.lines;
    if (lines != 0 && (lines > 0 ? text.isLast(request.caret) : text.isFirst(request.caret))) {
        return Result::failure();
    }
    return toLine(request, text.startNear(request.caret, lines));
}

} // namespace

Result firstOfNextLine(const Request &request)
{
    return firstNonBlankOf(request, request.count);
}

Result firstOfPreviousLine(const Request &request)
{
    return firstNonBlankOf(request, -request.count);
}

Result firstOfLineBelow(const Request &request)
{
    Result result = firstNonBlankOf(request, request.count - 1);
    if (!result.failed && request.purpose == For::yank) {
        result.place = std::max(result.place, request.caret); // the caret stays where it is
    }
    return result;
}

Result lineStart(const Request &request)
{
    return {.place = request.lines.start(request.caret)};
}

Result firstNonBlank(const Request &request)
{
    return {.place = request.lines.firstNonBlank(request.caret)};
}

namespace {

/// There is no such line, yet the column is that of ends from now on.
Result endlessHere(const Request &request)
{
    return {.place = request.caret, .failed = true, .goesNonetheless = true, .column = VimLines::endless};
}

} // namespace

Result lineEnd(const Request &request)
{
    const VimLines &lines = request.lines;
    if (request.count > 1 && lines.isLast(request.caret)) {
        return endlessHere(request);
    }
    const qsizetype line = lines.startNear(request.caret, request.count - 1);
    const qsizetype place = request.purpose == For::selection ? lines.end(line) : lines.last(line);
    return {.place = place, .kind = Kind::inclusive, .column = VimLines::endless};
}

Result lastNonBlank(const Request &request)
{
    const VimLines &lines = request.lines;
    if (request.count > 1 && lines.isLast(request.caret)) {
        return endlessHere(request);
    }
    const qsizetype line = lines.startNear(request.caret, request.count - 1);
    qsizetype place = lines.last(line);
    while (place > line && isSpaceOrTab(lines.at(place))) {
        place = lines.before(place);
    }
    return {.place = place, .kind = Kind::inclusive};
}

Result rowEnd(const Request &request)
{
    Request within = request;
    within.count = request.lines.isLast(request.caret) ? 1 : request.count;
    Result result = lineEnd(within);
    result.place = std::min(result.place, request.lines.last(result.place));
    return result;
}

Result column(const Request &request)
{
    const VimLines &lines = request.lines;
    const qsizetype cell = request.hasCount ? request.count - 1 : 0;
    const qsizetype place = lines.placeAt(lines.start(request.caret), cell);
    return {.place = request.purpose == For::selection ? place : std::min(place, lines.last(place)), .column = cell};
}

Result middleOfLine(const Request &request)
{
    const VimLines &lines = request.lines;
    const qsizetype width = lines.cells(lines.end(request.caret)).first;
    const qsizetype cell = request.hasCount ? width * std::min<qsizetype>(request.count, 100) / 100 : width / 2;
    const qsizetype place = std::min(lines.placeAt(lines.start(request.caret), cell), lines.last(request.caret));
    return {.place = place};
}

Result byteOfText(const Request &request)
{
    // Units rather than bytes: nobody counts those of an encoding.
    return {.place = request.lines.settled(std::min(request.count - 1, request.lines.text().length())), .isJump = true};
}

template<Words words>
Result wordForward(const Request &request)
{
    const VimLines &lines = request.lines;
    if (request.purpose == For::change && !lines.isAtEnd(request.caret) && classAt(lines, request.caret, words) != 0) {
        const Walked walked = wordEndsForward(lines, request.caret, request.count, words, true, false);
        Result result = onCharacter(request, walked.place, Kind::inclusive);
        result.kind = Kind::inclusive;
        return result;
    }
    const Walked walked = wordsForward(lines, request.caret, request.count, words, request.isForOperator());
    Result result = onCharacter(request, walked.place, Kind::exclusive);
    result.failed = result.goesNonetheless = !walked.isWhole && !request.isForOperator();
    result.isWordMotion = walked.isWhole && !walked.isCutShort;
    return result;
}

template<Words words>
Result wordBackward(const Request &request)
{
    const Walked walked = wordsBackward(request.lines, request.caret, request.count, words, false);
    return {.place = walked.place, .failed = !walked.isWhole, .goesNonetheless = !walked.isWhole};
}

template<Words words>
Result wordEndForward(const Request &request)
{
    const Walked walked = wordEndsForward(request.lines, request.caret, request.count, words, false, false);
    Result result = onCharacter(request, walked.place, Kind::inclusive);
    result.kind = Kind::inclusive;
    result.failed = result.goesNonetheless = !walked.isWhole && !request.isForOperator();
    return result;
}

template<Words words>
Result wordEndBackward(const Request &request)
{
    const Walked walked = wordEndsBackward(request.lines, request.caret, request.count, words, false);
    return {.place = walked.place, .kind = Kind::inclusive, .failed = !walked.isWhole, .goesNonetheless = !walked.isWhole};
}

namespace {

/// At most the last one.
qsizetype numberedLine(const Request &request, qsizetype number)
{
    return request.lines.startOf(std::min(number, request.lines.count()));
}

} // namespace

Result firstLine(const Request &request)
{
    return toLine(request, numberedLine(request, request.hasCount ? request.count : 1), true);
}

Result lastLine(const Request &request)
{
    return toLine(request, numberedLine(request, request.hasCount ? request.count : request.lines.count()), true);
}

namespace {

Result paragraph(const Request &request, Direction direction)
{
    const VimLines &lines = request.lines;
    const bool isForward = direction == Direction::forward;
    const auto isAtEdge = [&](qsizetype line) { return isForward ? lines.isLast(line) : lines.isFirst(line); };
    qsizetype line = lines.start(request.caret);
    for (qsizetype left = request.count; left > 0; --left) {
        while (lines.isEmpty(line) && !isAtEdge(line)) {
            line = isForward ? lines.next(line) : lines.start(line - 1);
        }
        const qsizetype from = line;
        line = lines.start(VimMotion::nextDivider(lines.buffer(), from, direction, VimMotion::Dividers::emptyLinesAndFeeds));
        if (left > 1 && (line == from || !dividesParagraphs(lines, line))) {
            return Result::failure();
        }
    }
    if (direction == Direction::forward && lines.isLast(line) && !lines.isEmpty(line)) {
        return {.place = lines.last(line), .kind = Kind::inclusive, .isLarge = true, .isJump = true};
    }
    return {.place = line, .isLarge = true, .isJump = true};
}

} // namespace

Result paragraphForward(const Request &request)
{
    return paragraph(request, Direction::forward);
}

Result paragraphBackward(const Request &request)
{
    return paragraph(request, Direction::backward);
}

namespace {

Result toSentence(const Request &request, Direction direction)
{
    const auto place = sentence(request.lines, request.caret, direction, request.count);
    if (!place) {
        return Result::failure();
    }
    Result result = onCharacter(request, *place, Kind::exclusive);
    result.isLarge = true;
    result.isJump = true;
    return result;
}

} // namespace

Result sentenceForward(const Request &request)
{
    return toSentence(request, Direction::forward);
}

Result sentenceBackward(const Request &request)
{
    return toSentence(request, Direction::backward);
}

template<char16_t first, Direction direction>
Result section(const Request &request)
{
    const VimLines &lines = request.lines;
    constexpr bool isForward = direction == Direction::forward;
    qsizetype line = lines.start(request.caret);
    for (qsizetype left = request.count; left > 0; --left) {
        do {
            if (isForward ? lines.isLast(line) : lines.isFirst(line)) {
                // The end of the text stands for one.
                const qsizetype edge = isForward ? (request.isForOperator() ? lines.end(line) : lines.firstNonBlank(line)) : 0;
                if (left > 1 || edge == request.caret) {
                    return Result::failure();
                }
                return {.place = edge, .kind = Kind::exclusive, .isLarge = true, .isJump = true};
            }
            line = isForward ? lines.next(line) : lines.start(line - 1);
        } while (lines.at(line) != first && !(first == u'{' && lines.at(line) == u'\f'));
    }
    return {.place = line, .isLarge = true, .isJump = true};
}

template<char16_t wanted>
Result unmatched(const Request &request)
{
    constexpr bool isBackward = wanted == u'(' || wanted == u'{';
    constexpr char16_t open = wanted == u'(' || wanted == u')' ? u'(' : u'{';
    constexpr char16_t close = open == u'(' ? u')' : u'}';
    // As far out as there are brackets, if not so many.
    std::optional<qsizetype> place;
    for (qsizetype left = request.count; left > 0; --left) {
        const auto next =
            enclosing(request.lines, place.value_or(request.caret), open, close, isBackward ? Direction::backward : Direction::forward);
        if (!next) {
            break;
        }
        place = next;
    }
    return place ? Result{.place = *place, .kind = Kind::exclusive, .isJump = true} : Result::failure();
}

Result bracketPartner(const Request &request)
{
    const VimLines &lines = request.lines;
    if (request.hasCount) {
        if (request.count > 100) {
            return Result::failure();
        }
        return toLine(request, lines.startOf((request.count * lines.count() + 99) / 100), true);
    }
    // A selection may have its caret behind the last character.
    qsizetype place = lines.isAtEnd(request.caret) ? lines.last(request.caret) : request.caret;
    while (!lines.isAtEnd(place) && std::u16string_view(u"()[]{}").find(lines.at(place)) == std::u16string_view::npos) {
        ++place;
    }
    const auto found = lines.isAtEnd(place) ? std::nullopt : partner(lines, place);
    return found ? Result{.place = *found, .kind = Kind::inclusive, .isLarge = true, .isJump = true} : Result::failure();
}

Result find(const Request &request, char32_t character, FindKind kind, bool isRepeated)
{
    const VimLines &lines = request.lines;
    const bool isForward = kind == FindKind::forwardTo || kind == FindKind::forwardBefore;
    const bool isBefore = kind == FindKind::forwardBefore || kind == FindKind::backwardBefore;
    const qsizetype first = lines.start(request.caret);
    const qsizetype behind = lines.end(request.caret);
    const auto step = [&](qsizetype place) { return isForward ? lines.after(place) : lines.before(place); };
    const auto canStep = [&](qsizetype place) { return isForward ? place < behind : place > first; };
    const auto isHit = [&](qsizetype place) { return place < behind && lines.codePoint(place) == character; };
    qsizetype place = request.caret;
    qsizetype count = request.count;
    if (isBefore && isRepeated && count == 1 && canStep(place) && isHit(step(place))) {
        place = step(place);
    }
    while (count > 0) {
        if (!canStep(place)) {
            return Result::failure();
        }
        place = step(place);
        if (place >= behind) {
            return Result::failure();
        }
        count -= isHit(place) ? 1 : 0;
    }
    if (isBefore) {
        place = isForward ? lines.before(place) : lines.after(place);
    }
    return {.place = place, .kind = isForward ? Kind::inclusive : Kind::exclusive};
}

template Result wordForward<Words::small>(const Request &request);
template Result wordForward<Words::big>(const Request &request);
template Result wordBackward<Words::small>(const Request &request);
template Result wordBackward<Words::big>(const Request &request);
template Result wordEndForward<Words::small>(const Request &request);
template Result wordEndForward<Words::big>(const Request &request);
template Result wordEndBackward<Words::small>(const Request &request);
template Result wordEndBackward<Words::big>(const Request &request);
template Result section<u'{', Direction::forward>(const Request &request);
template Result section<u'{', Direction::backward>(const Request &request);
template Result section<u'}', Direction::forward>(const Request &request);
template Result section<u'}', Direction::backward>(const Request &request);
template Result unmatched<u'('>(const Request &request);
template Result unmatched<u')'>(const Request &request);
template Result unmatched<u'{'>(const Request &request);
template Result unmatched<u'}'>(const Request &request);

} // namespace VimExactMotion
