// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExactSteps.h"

#include <string_view>
#include <utility>

using VimMotion::Direction;
using VimMotion::Words;

namespace VimExactMotion {

int classAt(const VimLines &lines, qsizetype place, Words words)
{
    const int kind = lines.wordClass(place);
    return words == Words::big ? std::min(kind, 1) : kind;
}

bool dividesParagraphs(const VimLines &lines, qsizetype line)
{
    return lines.isEmpty(line) || lines.at(line) == u'\f';
}

namespace {

using Step = VimLines::Step;

/// Steps until the class is another; false at an end of the text.
bool leave(const VimLines &lines, qsizetype &place, int kind, Words words, Direction direction)
{
    while (classAt(lines, place, words) == kind) {
        if ((direction == Direction::forward ? lines.forward(place) : lines.backward(place)) == Step::none) {
            return false;
        }
    }
    return true;
}

bool isOneOf(char16_t unit, std::u16string_view set)
{
    return unit != 0 && set.find(unit) != std::u16string_view::npos;
}

char16_t unitOnLine(const VimLines &lines, qsizetype place)
{
    return lines.isAtEnd(place) ? u'\0' : lines.at(place);
}

constexpr std::u16string_view sentenceEnds = u".!?";
constexpr std::u16string_view closers = u")]\"'";
constexpr std::u16string_view endsAndClosers = u".!?)]\"'";

} // namespace

// Words

Walked wordsForward(const VimLines &lines, qsizetype place, qsizetype count, Words words, bool staysInLine)
{
    while (--count >= 0) {
        const int kind = classAt(lines, place, words);
        const bool isLastLine = lines.isLast(place);
        Step step = lines.forward(place);
        if (step == Step::none || (step != Step::character && isLastLine)) {
            return {place, false};
        }
        if (step != Step::character && staysInLine && count == 0) {
            return {place, true};
        }
        if (kind != 0) {
            while (classAt(lines, place, words) == kind) {
                step = lines.forward(place);
                if (step == Step::none || (step != Step::character && staysInLine && count == 0)) {
                    return {place, true};
                }
            }
        }
        while (classAt(lines, place, words) == 0 && !lines.isEmpty(place)) {
            step = lines.forward(place);
            if (step == Step::none || (step != Step::character && (isLastLine || (staysInLine && count == 0)))) {
                return {place, true, count > 0};
            }
        }
    }
    return {place, true};
}

Walked wordsBackward(const VimLines &lines, qsizetype place, qsizetype count, Words words, bool mayStay)
{
    while (--count >= 0) {
        const int kind = classAt(lines, place, words);
        if (lines.backward(place) == Step::none) {
            return {place, false};
        }
        if (std::exchange(mayStay, false) && kind != 0 && classAt(lines, place, words) != kind) {
            lines.forward(place);
            continue;
        }
        bool isOnEmpty = false;
        while (classAt(lines, place, words) == 0) {
            if (lines.isEmpty(place)) {
                isOnEmpty = true;
                break;
            }
            if (lines.backward(place) == Step::none) {
                return {place, true};
            }
        }
        if (isOnEmpty) {
            continue;
        }
        if (!leave(lines, place, classAt(lines, place, words), words, Direction::backward)) {
            return {place, true};
        }
        lines.forward(place);
    }
    return {place, true};
}

Walked wordEndsForward(const VimLines &lines, qsizetype place, qsizetype count, Words words, bool mayStay, bool stopsAtEmpty)
{
    while (--count >= 0) {
        const int kind = classAt(lines, place, words);
        if (lines.forward(place) == Step::none) {
            return {place, false};
        }
        if (classAt(lines, place, words) == kind && kind != 0) {
            if (!leave(lines, place, kind, words, Direction::forward)) {
                return {place, false};
            }
        } else if (!mayStay || kind == 0) {
            bool isOnEmpty = false;
            while (classAt(lines, place, words) == 0) {
                if (stopsAtEmpty && lines.isEmpty(place)) {
                    isOnEmpty = true;
                    break;
                }
                if (lines.forward(place) == Step::none) {
                    return {place, false};
                }
            }
            if (isOnEmpty) {
                mayStay = false;
                continue;
            }
            if (!leave(lines, place, classAt(lines, place, words), words, Direction::forward)) {
                return {place, false};
            }
        }
        lines.backward(place);
        mayStay = false;
    }
    return {place, true};
}

Walked wordEndsBackward(const VimLines &lines, qsizetype place, qsizetype count, Words words, bool staysInLine)
{
    while (--count >= 0) {
        const int kind = classAt(lines, place, words);
        Step step = lines.backward(place);
        if (step == Step::none) {
            return {place, false};
        }
        if (step == Step::nextLine && staysInLine) {
            return {place, true};
        }
        const auto goOn = [&] {
            step = lines.backward(place);
            return step != Step::none && !(step == Step::nextLine && staysInLine);
        };
        while (kind != 0 && classAt(lines, place, words) == kind) {
            if (!goOn()) {
                return {place, true};
            }
        }
        while (classAt(lines, place, words) == 0 && !lines.isEmpty(place)) {
            if (!goOn()) {
                return {place, true};
            }
        }
    }
    return {place, true};
}

// Sentences

namespace {

/// From behind a sentence back to its last character.
qsizetype backToSentence(const VimLines &lines, qsizetype place, Direction direction)
{
    bool hasDot = false;
    for (char16_t unit = unitOnLine(lines, place); !hasDot && (isSpaceOrTab(unit) || isOneOf(unit, endsAndClosers));
         unit = unitOnLine(lines, place)) {
        qsizetype earlier = place;
        if (!lines.backwardOverEnds(earlier) || (lines.isEmpty(earlier) && direction == Direction::forward)) {
            break;
        }
        hasDot = isOneOf(unit, sentenceEnds);
        if (isOneOf(unit, closers) && !isOneOf(unitOnLine(lines, earlier), endsAndClosers)) {
            break;
        }
        place = earlier;
    }
    return place;
}

/// Behind the sentence that ends at `place`, with what closes there too; none if it goes on.
std::optional<qsizetype> behindSentence(const VimLines &lines, qsizetype place)
{
    if (!isOneOf(unitOnLine(lines, place), sentenceEnds)) {
        return std::nullopt;
    }
    bool isEnd = false;
    do {
        isEnd = lines.forward(place) == Step::none;
    } while (!isEnd && isOneOf(unitOnLine(lines, place), closers));
    if (!isEnd && !lines.isAtEnd(place) && !isSpaceOrTab(lines.at(place))) {
        return std::nullopt;
    }
    if (lines.isAtEnd(place)) {
        lines.forward(place);
    }
    return place;
}

} // namespace

std::optional<qsizetype> sentence(const VimLines &lines, qsizetype place, Direction direction, qsizetype count)
{
    const bool isForward = direction == Direction::forward;
    const auto step = [&](qsizetype &at) { return isForward ? lines.forwardOverEnds(at) : lines.backwardOverEnds(at); };
    const auto skipBlanks = [&] {
        while (isSpaceOrTab(unitOnLine(lines, place))) {
            if (!lines.forwardOverEnds(place)) {
                break;
            }
        }
    };
    while (count-- > 0) {
        if (lines.isAtEnd(place)) {
            const qsizetype from = place;
            while (step(place) && lines.isAtEnd(place)) {
            }
            if (place == from && count > 0) {
                return std::nullopt;
            }
            if (isForward) {
                skipBlanks();
                continue;
            }
        } else if (isForward && place == lines.start(place) && dividesParagraphs(lines, place)) {
            if (lines.isLast(place)) {
                return std::nullopt;
            }
            place = lines.next(place);
            skipBlanks();
            continue;
        } else if (!isForward) {
            lines.backwardOverEnds(place);
        }
        place = backToSentence(lines, place, direction);
        const qsizetype startLine = lines.start(place);
        bool skipsNothing = false;
        for (;;) {
            if (lines.isAtEnd(place) || (place == lines.start(place) && dividesParagraphs(lines, place))) {
                if (!isForward && lines.start(place) != startLine) {
                    place = lines.next(place);
                }
                break;
            }
            if (const auto behind = behindSentence(lines, place)) {
                place = *behind;
                break;
            }
            if (!step(place)) {
                if (count > 0) {
                    return std::nullopt;
                }
                skipsNothing = true;
                break;
            }
        }
        if (!skipsNothing) {
            skipBlanks();
        }
    }
    return place;
}

// Brackets

std::optional<qsizetype> enclosing(const VimLines &lines, qsizetype place, char16_t open, char16_t close, Direction direction)
{
    VimBuffer &text = lines.buffer();
    const char16_t wanted = direction == Direction::backward ? open : close;
    const char16_t other = direction == Direction::backward ? close : open;
    const qsizetype step = direction == Direction::backward ? -1 : 1;
    qsizetype depth = 1;
    for (place += step; place >= 0 && place < text.length(); place += step) {
        const char16_t unit = text.at(place);
        if (unit == other) {
            ++depth;
        } else if (unit == wanted && --depth == 0) {
            return place;
        }
    }
    return std::nullopt;
}

namespace {

/// Backslashes right before `place`, in its line.
qsizetype backslashesBefore(const VimLines &lines, qsizetype place)
{
    const qsizetype first = lines.start(place);
    qsizetype count = 0;
    while (place - count > first && lines.at(place - count - 1) == u'\\') {
        ++count;
    }
    return count;
}

} // namespace

std::optional<qsizetype> partner(const VimLines &lines, qsizetype place)
{
    static constexpr std::u16string_view brackets = u"()[]{}";
    const size_t index = brackets.find(lines.at(place));
    if (index == std::u16string_view::npos) {
        return std::nullopt;
    }
    VimBuffer &text = lines.buffer();
    const char16_t own = brackets[index];
    const char16_t other = brackets[index ^ 1];
    const qsizetype step = index % 2 == 0 ? 1 : -1;
    const bool isEscaped = backslashesBefore(lines, place) % 2 == 1;
    // Whether it stands in quotes tells which others count: those that do as well.
    const auto quotesUpTo = [&](qsizetype at) {
        qsizetype count = 0;
        for (qsizetype on = lines.start(at); on < at; ++on) {
            count += text.at(on) == u'"' && backslashesBefore(lines, on) % 2 == 0 ? 1 : 0;
        }
        return count;
    };
    const auto hasPairs = [&](qsizetype at) { return quotesUpTo(lines.end(at)) % 2 == 0; };
    const bool startsInQuotes = hasPairs(place) && quotesUpTo(place) % 2 == 1;
    bool isInQuotes = startsInQuotes;
    bool respectsQuotes = hasPairs(place);
    qsizetype depth = 0;
    qsizetype line = lines.start(place);
    for (qsizetype at = place; at >= 0 && at < text.length(); at += step) {
        const char16_t unit = text.at(at);
        if (isBreak(unit)) {
            continue;
        }
        if (const qsizetype here = lines.start(at); here != line) {
            line = here;
            respectsQuotes = hasPairs(at);
            isInQuotes = false;
            if (startsInQuotes) {
                return std::nullopt;
            }
        }
        if (unit == u'"' && respectsQuotes && backslashesBefore(lines, at) % 2 == 0) {
            isInQuotes = !isInQuotes;
            continue;
        }
        if ((unit != own && unit != other) || (respectsQuotes && isInQuotes != startsInQuotes) ||
            (backslashesBefore(lines, at) % 2 == 1) != isEscaped) {
            continue;
        }
        depth += unit == own ? 1 : -1;
        if (depth == 0) {
            return at;
        }
    }
    return std::nullopt;
}

} // namespace VimExactMotion
