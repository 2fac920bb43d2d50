// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExactObject.h"

#include <array>

namespace VimExactObject {

namespace {

using VimExactMotion::classAt;
using VimMotion::Direction;
using VimMotion::Kind;
using VimMotion::Words;

bool isBlankAt(const VimLines &lines, qsizetype place)
{
    return !lines.isAtEnd(place) && isSpaceOrTab(lines.at(place));
}

// Words

qsizetype startOfRun(const VimLines &lines, qsizetype place, Words words)
{
    const int kind = classAt(lines, place, words);
    const qsizetype first = lines.start(place);
    while (place > first && classAt(lines, lines.before(place), words) == kind) {
        place = lines.before(place);
    }
    return place;
}

/// One word or stretch of blanks more in front of `place`; false where there is none, and then as far as it goes.
template<Words words>
bool takeBefore(const VimLines &lines, qsizetype &place, bool isAround)
{
    using namespace VimExactMotion;
    if (!lines.backwardOverEnds(place)) {
        return false;
    }
    const bool goesToStart = isAround != (classAt(lines, place, words) != 0);
    const Walked walked = goesToStart ? wordsBackward(lines, place, 1, words, true) : wordEndsBackward(lines, place, 1, words, true);
    place = walked.place;
    if (walked.isWhole && !goesToStart) {
        lines.forwardOverEnds(place);
    }
    return walked.isWhole;
}

/// The same behind `place`, with whether its last unit is taken with it; none where there is none, unless it is the `isLast` wanted.
template<Words words>
std::optional<Kind> takeBehind(const VimLines &lines, qsizetype &place, bool isAround, bool isLast)
{
    using namespace VimExactMotion;
    if (!lines.forwardOverEnds(place)) {
        return std::nullopt;
    }
    const bool goesToEnd = isAround == (classAt(lines, place, words) == 0);
    const Walked walked = goesToEnd ? wordEndsForward(lines, place, 1, words, true, true) : wordsForward(lines, place, 1, words, true);
    if (!walked.isWhole && (goesToEnd || !isLast)) {
        return std::nullopt;
    }
    place = walked.place;
    if (!goesToEnd && place == lines.start(place)) {
        return Kind::exclusive;
    }
    place = goesToEnd ? place : lines.before(place);
    return Kind::inclusive;
}

template<Words words>
std::optional<Result> word(const Request &request)
{
    using namespace VimExactMotion;
    const VimLines &lines = request.lines;
    const bool isAround = request.extent == Extent::around;
    qsizetype place = request.caret;
    qsizetype from = request.anchor;
    qsizetype count = request.count;
    Kind kind = Kind::inclusive;
    bool includesBlanks = false;
    const auto failure = [&](qsizetype start, qsizetype edge) {
        return Result{.from = start, .place = edge, .selects = Result::Selects::asBefore, .failed = true};
    };
    const qsizetype textEnd = lines.end(lines.lastStart());
    if (!request.isSelecting()) {
        place = startOfRun(lines, place, words);
        from = place;
        if ((classAt(lines, place, words) == 0) == isAround) {
            const Walked walked = wordEndsForward(lines, place, 1, words, true, true);
            if (!walked.isWhole) {
                return failure(request.anchor, textEnd);
            }
            place = walked.place;
        } else {
            place = wordsForward(lines, place, 1, words, true).place;
            if (place == lines.start(place)) {
                lines.backwardOverEnds(place);
            } else {
                place = lines.before(place);
            }
            includesBlanks = isAround;
        }
        --count;
    }
    const qsizetype first = from;
    for (; count > 0; --count) {
        kind = Kind::inclusive;
        if (request.isVisual && place < from) {
            if (!takeBefore<words>(lines, place, isAround)) {
                return failure(from, place);
            }
        } else if (const auto taken = takeBehind<words>(lines, place, isAround, count == 1)) {
            kind = *taken;
        } else {
            return failure(from, textEnd);
        }
    }
    if (includesBlanks && (classAt(lines, place, words) != 0 || (place == lines.start(place) && kind == Kind::exclusive)) &&
        first > lines.start(first)) {
        // No blanks behind: those before, but no indentation.
        const qsizetype blanks = startOfRun(lines, lines.before(first), words);
        if (classAt(lines, blanks, words) == 0 && blanks > lines.start(blanks)) {
            from = blanks;
        }
    }
    return Result{.from = from, .place = place, .kind = kind};
}

// Sentences

qsizetype firstBlankBefore(const VimLines &lines, qsizetype place)
{
    qsizetype at = place;
    while (lines.backwardOverEnds(at)) {
        if (!isBlankAt(lines, at)) {
            lines.forwardOverEnds(at);
            break;
        }
    }
    return at;
}

qsizetype sentencesForward(const VimLines &lines, qsizetype place, qsizetype count, bool isAtStart)
{
    while (count-- > 0) {
        place = VimExactMotion::sentence(lines, place, Direction::forward, 1).value_or(place);
        if (isAtStart) {
            place = firstBlankBefore(lines, place);
        }
        if (count == 0 || isAtStart) {
            lines.backwardOverEnds(place);
        }
        isAtStart = !isAtStart;
    }
    return place;
}

qsizetype sentencesBackward(const VimLines &lines, qsizetype place, qsizetype count, bool isAtStart, Extent extent)
{
    for (; count > 0; --count) {
        place = isAtStart ? firstBlankBefore(lines, place) : place;
        if (!isAtStart || (extent == Extent::inner && !isBlankAt(lines, place))) {
            place = VimExactMotion::sentence(lines, place, Direction::backward, 1).value_or(place);
        }
        isAtStart = !isAtStart;
    }
    return place;
}

bool areBlanks(const VimLines &lines, qsizetype from, qsizetype end)
{
    while (from < end && isBlankAt(lines, from)) {
        if (!lines.forwardOverEnds(from)) {
            break;
        }
    }
    return from >= end;
}

/// A selection that is to grow at the end that moves, which is `moving`; from there on `next` is where a sentence begins.
Result grownSentences(const Request &request, qsizetype moving, qsizetype next)
{
    const VimLines &lines = request.lines;
    const qsizetype count = request.count * (request.extent == Extent::around ? 2 : 1); // sentences and blanks in turn
    Result result{.from = request.anchor, .place = next, .selects = Result::Selects::asBefore};
    if (request.caret < request.anchor) {
        lines.backwardOverEnds(moving);
        bool isAtStart = areBlanks(lines, moving, next);
        if (!isAtStart) {
            const qsizetype start = VimExactMotion::sentence(lines, next, Direction::backward, 1).value_or(next);
            isAtStart = start == request.caret;
            result.place = isAtStart ? start : VimExactMotion::sentence(lines, start, Direction::forward, 1).value_or(start);
        }
        result.place = sentencesBackward(lines, result.place, count, isAtStart, request.extent);
        return result;
    }
    lines.forwardOverEnds(moving);
    bool isAtStart = true;
    if (moving != next) {
        isAtStart = !areBlanks(lines, moving, next);
        result.place = isAtStart ? VimExactMotion::sentence(lines, next, Direction::backward, 1).value_or(next) : request.caret;
    }
    result.place = sentencesForward(lines, result.place, count, isAtStart);
    return result;
}

std::optional<Result> sentence(const Request &request)
{
    const VimLines &lines = request.lines;
    const bool isAround = request.extent == Extent::around;
    const qsizetype next = VimExactMotion::sentence(lines, request.caret, Direction::forward, 1).value_or(request.caret);
    if (request.isSelecting()) {
        return grownSentences(request, request.caret, next);
    }
    qsizetype behindBlanks = request.caret;
    while (isBlankAt(lines, behindBlanks)) {
        if (!lines.forwardOverEnds(behindBlanks)) {
            break;
        }
    }
    const bool startsBlank = behindBlanks == next;
    qsizetype from = startsBlank ? firstBlankBefore(lines, request.caret)
                                 : VimExactMotion::sentence(lines, next, Direction::backward, 1).value_or(request.caret);
    qsizetype place = startsBlank ? next : from;
    const qsizetype count = isAround ? request.count * 2 : request.count - (startsBlank ? 1 : 0);
    if (count > 0) {
        place = sentencesForward(lines, place, count, true);
    } else {
        lines.backwardOverEnds(place);
    }
    if (isAround) {
        if (startsBlank) {
            place = firstBlankBefore(lines, place);
            if (isBlankAt(lines, place)) {
                lines.backwardOverEnds(place);
            }
        } else if (!isBlankAt(lines, place)) {
            from = firstBlankBefore(lines, from);
        }
    }
    if (request.isVisual) {
        // One character is what was selected already.
        return from == place ? grownSentences(request, behindBlanks, place)
                             : Result{.from = from, .place = place, .selects = Result::Selects::characters};
    }
    const bool isAtEnd = !lines.forwardOverEnds(place);
    return Result{.from = from, .place = place, .kind = isAtEnd ? Kind::inclusive : Kind::exclusive};
}

// Paragraphs

bool isBlankLine(const VimLines &lines, qsizetype line)
{
    return lines.isBlankFrom(lines.start(line));
}

/// A selection of lines that is to grow at the end that moves.
std::optional<Result> grownParagraphs(const Request &request)
{
    const VimLines &lines = request.lines;
    const bool isAround = request.extent == Extent::around;
    const auto below = [&](qsizetype line) { return lines.next(line); };
    const auto above = [&](qsizetype line) { return lines.start(line - 1); };
    qsizetype start = lines.start(request.caret);
    const bool isBackward = start < lines.start(request.anchor);
    const auto isAtEdge = [&] { return isBackward ? lines.isFirst(start) : lines.isLast(start); };
    const auto step = [&](qsizetype line) { return isBackward ? above(line) : below(line); };
    bool isWhole = true;
    for (qsizetype left = request.count; left > 0; --left) {
        if (isAtEdge()) {
            isWhole = false;
            break;
        }
        std::optional<bool> wasBlank;
        for (int part = 0; part < 2; ++part) {
            const qsizetype next = step(start);
            const bool isBlank = isBlankLine(lines, next);
            if (wasBlank == isBlank) {
                break;
            }
            start = next;
            while (!isAtEdge() && isBlankLine(lines, step(start)) == isBlank) {
                start = step(start);
            }
            if (!isAround || isAtEdge()) {
                break;
            }
            wasBlank = isBlank;
        }
    }
    return Result{.from = request.anchor, .place = start, .kind = Kind::linewise, .selects = Result::Selects::asBefore, .failed = !isWhole};
}

std::optional<Result> paragraph(const Request &request)
{
    const VimLines &lines = request.lines;
    const bool isAround = request.extent == Extent::around;
    const auto below = [&](qsizetype line) { return lines.next(line); };
    const auto above = [&](qsizetype line) { return lines.start(line - 1); };
    qsizetype start = lines.start(request.caret);
    if (request.isVisual && lines.start(request.anchor) != start) {
        return grownParagraphs(request);
    }
    const bool isBlank = isBlankLine(lines, start);
    while (start > 0 && isBlankLine(lines, above(start)) == isBlank) {
        start = above(start);
    }
    // `end` is the last line that is taken; none yet where `hasEnd` is not.
    qsizetype end = start;
    bool hasEnd = false;
    const auto isAtLast = [&] { return hasEnd ? lines.isLast(end) : false; };
    const auto following = [&] { return hasEnd ? below(end) : start; };
    const auto take = [&] {
        end = following();
        hasEnd = true;
    };
    const auto takeWhile = [&](bool blank) {
        while (!isAtLast() && isBlankLine(lines, following()) == blank) {
            take();
        }
    };
    if (isBlank) {
        takeWhile(true);
    }
    for (qsizetype left = request.count - (!isAround && isBlank ? 1 : 0); left > 0; --left) {
        if (isAtLast()) {
            return std::nullopt;
        }
        const bool takesBlanks = !isAround && isBlankLine(lines, following());
        if (isAround || !takesBlanks) {
            take();
            takeWhile(false);
        }
        if (left == 1 && isBlank && isAround) {
            break;
        }
        if (isAround || takesBlanks) {
            takeWhile(true);
        }
    }
    if (!isBlank && !isBlankLine(lines, end) && isAround) {
        while (start > 0 && isBlankLine(lines, above(start))) {
            start = above(start);
        }
    }
    if (request.isOfLines && start == lines.start(request.caret)) {
        return grownParagraphs(request); // which may be selected already
    }
    const qsizetype column = request.anchor - lines.start(request.anchor);
    const bool keepsColumn = request.isVisual && start == lines.start(request.caret);
    const qsizetype from = keepsColumn ? std::min(start + column, lines.last(start)) : start;
    return Result{.from = from, .place = end, .kind = Kind::linewise, .selects = Result::Selects::lines};
}

// Quotes

bool isEscaped(const VimLines &lines, qsizetype place, qsizetype first)
{
    qsizetype count = 0;
    while (place - count > first && lines.at(place - count - 1) == u'\\') {
        ++count;
    }
    return count % 2 == 1;
}

/// Both ends of what something is around.
struct Pair {
    qsizetype open = 0;
    qsizetype close = 0;
};

/// The quotes around `caret` in its line, or else the next ones behind it.
std::optional<Pair> quotesAt(const VimLines &lines, qsizetype caret, char16_t quote)
{
    const qsizetype first = lines.start(caret);
    const qsizetype behind = lines.end(caret);
    const auto next = [&](qsizetype from, bool countsEscapes) -> std::optional<qsizetype> {
        for (qsizetype place = from; place < behind; ++place) {
            if (countsEscapes && lines.at(place) == u'\\') {
                ++place;
            } else if (lines.at(place) == quote) {
                return place;
            }
        }
        return std::nullopt;
    };
    const auto closed = [&](std::optional<qsizetype> open) -> std::optional<Pair> {
        const auto close = open ? next(*open + 1, true) : std::nullopt;
        return close ? std::optional(Pair{*open, *close}) : std::nullopt;
    };
    if (lines.at(caret) == quote && caret < behind) {
        // From the line's start on, to know which one it is.
        auto pair = closed(next(first, false));
        while (pair && pair->close < caret) {
            pair = closed(next(pair->close + 1, false));
        }
        return pair && pair->open <= caret ? pair : std::nullopt;
    }
    for (qsizetype place = caret - 1; place >= first; --place) {
        if (lines.at(place) == quote && !isEscaped(lines, place, first)) {
            return closed(place);
        }
    }
    return closed(next(caret, false));
}

template<char16_t quote>
std::optional<Result> quoted(const Request &request)
{
    const VimLines &lines = request.lines;
    const qsizetype first = lines.start(request.caret);
    const qsizetype caret = request.isSelecting() ? std::min(request.caret, request.anchor) : request.caret;
    if (request.isSelecting() && lines.start(request.anchor) != first) {
        return std::nullopt;
    }
    const auto pair = quotesAt(lines, caret, quote);
    if (!pair) {
        return std::nullopt;
    }
    auto [from, last] = *pair;
    if (request.extent == Extent::around) {
        if (isBlankAt(lines, last + 1)) {
            while (isBlankAt(lines, last + 1)) {
                ++last;
            }
        } else {
            while (from > first && isBlankAt(lines, from - 1)) {
                --from;
            }
        }
        return Result{.from = from, .place = last};
    }
    const bool isWhole = request.isSelecting() && caret == from + 1 && std::max(request.caret, request.anchor) == lines.before(last);
    if (request.count < 2 && !isWhole) {
        ++from;
        if (from == last) {
            // Of nothing a selection takes both quotes.
            return Result{.from = from, .place = request.isVisual ? pair->open : from, .kind = Kind::exclusive};
        }
        last = lines.before(last);
    }
    return Result{.from = from, .place = last};
}

// Brackets

bool isInIndentation(const VimLines &lines, qsizetype place)
{
    for (qsizetype at = lines.start(place); at <= place; ++at) {
        if (!isBlankAt(lines, at)) {
            return false;
        }
    }
    return true;
}

/// The brackets of which `from` is the opening one.
template<char16_t open, char16_t close>
std::optional<Pair> closed(const VimLines &lines, std::optional<qsizetype> from)
{
    const auto to = from ? VimExactMotion::enclosing(lines, *from, open, close, Direction::forward) : std::nullopt;
    return to ? std::optional(Pair{*from, *to}) : std::nullopt;
}

/// The brackets around `caret`, `count` levels up, or else the next ones behind it, so many levels down.
template<char16_t open, char16_t close>
std::optional<Pair> bracketsAt(const VimLines &lines, qsizetype caret, qsizetype count)
{
    const qsizetype innermost = caret;
    std::optional<qsizetype> from;
    const auto go = [&](char16_t wanted, char16_t other, Direction direction) {
        for (qsizetype left = count; left > 0; --left) {
            from = VimExactMotion::enclosing(lines, caret, wanted, other, direction);
            if (!from) {
                break;
            }
            caret = *from;
        }
    };
    go(open, close, Direction::backward);
    if (!from && caret == innermost) {
        go(close, open, Direction::forward);
    }
    return closed<open, close>(lines, from);
}

/// What lies between brackets, first and last unit, without a break behind the one and the indentation before the other.
struct Inside {
    qsizetype start = 0;
    qsizetype last = 0;
    /// Nothing but indentation is before the closing one.
    bool endsAtLineStart = false;
};

Inside insideOf(const VimLines &lines, const Pair &pair)
{
    Inside inside{pair.open, pair.close, pair.close == lines.start(pair.close)};
    lines.forwardOverEnds(inside.start);
    lines.backwardOverEnds(inside.last);
    while (isInIndentation(lines, inside.last)) {
        inside.endsAtLineStart = true;
        const bool isFirst = inside.last == lines.start(inside.last);
        lines.backwardOverEnds(inside.last);
        if (isFirst) {
            break;
        }
    }
    return inside;
}

template<char16_t open, char16_t close>
std::optional<Result> bracketed(const Request &request)
{
    const VimLines &lines = request.lines;
    const qsizetype oldFrom = std::min(request.caret, request.anchor);
    const qsizetype oldLast = std::max(request.caret, request.anchor);
    qsizetype caret = request.isSelecting() ? oldFrom : request.caret;
    if (!request.isSelecting()) {
        if (open == u'{' && isInIndentation(lines, caret)) {
            while (isBlankAt(lines, caret) && !lines.isAtEnd(lines.after(caret))) {
                caret = lines.after(caret);
            }
        }
        caret += lines.at(caret) == open ? 1 : 0;
    }
    auto pair = bracketsAt<open, close>(lines, caret, request.count);
    Inside taken;
    while (pair) {
        taken = request.extent == Extent::inner ? insideOf(lines, *pair) : Inside{pair->open, pair->close};
        const bool isNoMore = taken.start >= oldFrom && oldLast >= taken.last && taken.start != taken.last;
        if (request.extent != Extent::inner || !request.isVisual || !isNoMore) {
            break;
        }
        qsizetype outside = oldFrom;
        lines.backwardOverEnds(outside);
        pair = closed<open, close>(lines, VimExactMotion::enclosing(lines, outside, open, close, Direction::backward));
    }
    if (!pair || (request.isVisual && taken.start > taken.last)) {
        return std::nullopt;
    }
    auto [start, last, endsAtLineStart] = taken;
    if (request.isVisual) {
        if (endsAtLineStart && !lines.isAtEnd(last)) {
            last = lines.end(last);
        }
        return Result{.from = start, .place = last, .selects = Result::Selects::characters};
    }
    if (endsAtLineStart) {
        lines.forwardOverEnds(last);
        return Result{.from = start, .place = last, .kind = Kind::exclusive};
    }
    return start <= last ? Result{.from = start, .place = last} : Result{.from = start, .place = start, .kind = Kind::exclusive};
}

// Tags

struct Tag {
    TextRange range;
    QString name;
    bool isClosing = false;
};

/// Tags from `from` on in the text; those that close themselves are none.
std::optional<Tag> nextTag(VimBuffer &text, qsizetype &from)
{
    for (; from < text.length(); ++from) {
        if (text.at(from) != u'<') {
            continue;
        }
        qsizetype at = from + 1;
        Tag tag;
        if (at < text.length() && text.at(at) == u'/') {
            tag.isClosing = true;
            ++at;
        }
        while (at < text.length() && !isSpaceOrTab(text.at(at)) && !isBreak(text.at(at)) && text.at(at) != u'>' && text.at(at) != u'/') {
            tag.name += QChar(text.at(at++));
        }
        while (at < text.length() && text.at(at) != u'>' && text.at(at) != u'<') {
            ++at;
        }
        const bool isTag = !tag.name.isEmpty() && !tag.name.startsWith(u'!') && at < text.length() && text.at(at) == u'>';
        if (isTag && text.at(at - 1) != u'/') {
            tag.range = TextRange::between(from, at + 1);
            from = at + 1;
            return tag;
        }
    }
    return std::nullopt;
}

std::optional<Result> tag(const Request &request)
{
    const VimLines &lines = request.lines;
    VimBuffer &text = lines.buffer();
    qsizetype oldFrom = std::min(request.caret, request.anchor);
    const bool isInIndent = !request.isSelecting() && isInIndentation(lines, oldFrom) && !lines.isBlankFrom(oldFrom);
    oldFrom = isInIndent ? lines.firstNonBlank(oldFrom) : oldFrom;
    const qsizetype oldLast = std::max({request.caret, request.anchor, oldFrom});
    struct Element {
        TextRange open;
        TextRange close;
    };
    std::vector<Tag> opened;
    std::vector<Element> around;
    qsizetype place = 0;
    while (const auto found = nextTag(text, place)) {
        if (!found->isClosing) {
            opened.push_back(*found);
            continue;
        }
        const auto match = std::find_if(opened.rbegin(), opened.rend(),
                                        [&](const Tag &one) { return one.name.compare(found->name, Qt::CaseInsensitive) == 0; });
        if (match == opened.rend()) {
            continue;
        }
        // In their order of closing, so the innermost first.
        const bool isAround = request.isSelecting() ? match->range.location < oldFrom && oldFrom <= found->range.location
                                                    : match->range.location <= oldFrom && oldFrom < found->range.end();
        if (isAround) {
            around.push_back({match->range, found->range});
        }
        opened.erase(std::prev(match.base()), opened.end());
    }
    size_t wanted = size_t(request.count - 1);
    while (request.isSelecting() && wanted < around.size() && around[wanted].close.location < oldLast) {
        ++wanted; // the selection ends behind it
    }
    if (wanted >= around.size()) {
        return std::nullopt;
    }
    const auto [open, close] = around[wanted];
    const TextRange whole = open.united(close);
    const TextRange inner = TextRange::between(open.end(), close.location);
    const auto lastOf = [&](TextRange range) {
        qsizetype last = range.end();
        lines.backwardOverEnds(last);
        return last;
    };
    const bool isSame = request.isVisual && oldFrom == inner.location && (oldLast == lastOf(inner) || inner.isEmpty());
    const TextRange taken = request.extent == Extent::around || isSame ? whole : inner;
    if (taken.isEmpty()) {
        return Result{.from = taken.location, .place = taken.location, .kind = Kind::exclusive, .selects = Result::Selects::characters};
    }
    return Result{.from = taken.location, .place = lastOf(taken), .selects = Result::Selects::characters};
}

struct Row {
    std::u16string_view keys;
    std::optional<Result> (*find)(const Request &request);
    VimKeyHelp help = {};
};

constexpr auto rows = std::to_array<Row>({
    {u"w", word<Words::small>},
    {u"W", word<Words::big>},
    {u"s", sentence, {VimKeyHelp::Section::textObjects, u"sentence"}},
    {u"p", paragraph},
    {u"\"", quoted<u'"'>},
    {u"'", quoted<u'\''>},
    {u"`", quoted<u'`'>},
    {u"()b", bracketed<u'(', u')'>},
    {u"[]", bracketed<u'[', u']'>},
    {u"{}B", bracketed<u'{', u'}'>},
    {u"<>", bracketed<u'<', u'>'>},
    {u"t", tag, {VimKeyHelp::Section::textObjects, u"tag"}},
});

} // namespace

std::optional<Result> range(const Request &request, char16_t object)
{
    for (const Row &row : rows) {
        if (row.keys.find(object) != std::u16string_view::npos) {
            return row.find(request);
        }
    }
    return std::nullopt;
}

VimKeyHelpEntries keyHelp()
{
    VimKeyHelpEntries entries;
    for (const Row &row : rows) {
        if (row.help.exists()) {
            const QChar key(row.keys.front());
            entries.emplace_back(u'i' + QString(key), row.help).keys << u'a' + QString(key);
        }
    }
    return entries;
}

} // namespace VimExactObject
