// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimSearch.h"

#include "Base/Translation.h"
#include "Text/TextSearch.h"
#include "Vim/VimCharacters.h"
#include "Vim/VimCollection.h"
#include "Vim/VimMatcher.h"
#include "Vim/VimOptions.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

Result<TextSearcher> searcherFor(const QString &pattern)
{
    return TextSearcher::compile({.pattern = pattern, .matchesCase = true, .isRegularExpression = true, .isBareExpression = true});
}

/// The first hit behind `last` of those from the start of its line on: of hits that could overlap it is always the same ones, wherever the
/// caret is.
std::optional<TextRange> firstBehind(qsizetype last, const Rope &text, TextRange range, TextSearcher &searcher,
                                     const SearchControl &control)
{
    std::optional<TextRange> hit;
    const auto take = [&](TextRange found) {
        if (found.location > last) {
            hit = found;
        }
        return !hit;
    };
    searcher.forEachHit(text, range, take, control);
    return hit;
}

// Exact mode

using Base = VimSearchOffset::Base;
using Direction = VimSearch::Direction;

char32_t characterAt(const Rope &text, qsizetype offset)
{
    const char16_t unit = text.at(offset);
    const bool isPair = QChar::isHighSurrogate(unit) && offset + 1 < text.length() && QChar::isLowSurrogate(text.at(offset + 1));
    return isPair ? QChar::surrogateToUcs4(unit, text.at(offset + 1)) : unit;
}

bool isBreakAt(const Rope &text, qsizetype offset)
{
    return offset >= text.length() || text.at(offset) == u'\n' || text.at(offset) == u'\r';
}

/// `offset` so many characters on, or back; breaks are passed over, but for those of empty lines.
qsizetype movedByCharacters(const Rope &text, qsizetype offset, qsizetype count)
{
    const auto mayStand = [&text](qsizetype place) {
        return !text.splitsPair(place) && (!isBreakAt(text, place) || text.lineStart(text.lineAt(place)) == place);
    };
    const qsizetype step = count < 0 ? -1 : 1;
    for (qsizetype left = qAbs(count); left > 0; --left) {
        qsizetype next = offset + step;
        while (next > 0 && next < text.length() && !mayStand(next)) {
            next += step;
        }
        if (next < 0 || next >= text.length() || !mayStand(next)) {
            break;
        }
        offset = next;
    }
    return offset;
}

/// Looks for one pattern.
class Seeker {
public:
    Seeker(VimMatcher matcher, const VimSearch &search, const SearchControl &control)
        : m_matcher(std::move(matcher)), m_text(m_matcher.text()), m_search(search), m_control(control)
    {}

    bool hasWrapped = false;

    std::optional<TextRange> seek(qsizetype from, qsizetype most)
    {
        const bool isForward = m_search.direction == Direction::forward;
        const qsizetype length = m_text.length();
        auto hit = isForward ? firstBehind(from, most < length ? from + most : length + 1) : lastBefore(from, most);
        const qsizetype searched = isForward ? length - from : from;
        if (!hit && m_search.wraps && searched < most) {
            hit = isForward ? wrapped(std::min(most - searched, length + 1)) : lastOfAll(most - searched);
            hasWrapped = hasWrapped || hit;
        }
        return m_control.stop.stop_requested() ? std::nullopt : hit;
    }
    /// What of a hit is compared with the caret.
    [[nodiscard]] qsizetype place(TextRange hit) const
    {
        return m_search.offset.base == Base::end && !hit.isEmpty() ? movedByCharacters(m_text, hit.end(), -1) : hit.location;
    }

private:
    /// The next match may begin where `match` ends in its line, but no longer at the line's end.
    [[nodiscard]] qsizetype behind(const VimMatch &match) const
    {
        const qsizetype at = m_matcher.behind(match);
        const qsizetype line = m_text.lineAt(match.start);
        const bool isInLine = at <= m_text.length() && m_text.lineAt(at) == line;
        if (!isInLine || !isBreakAt(m_text, at)) {
            return at;
        }
        return line + 1 < m_text.lineCount() ? m_text.lineStart(line + 1) : m_text.length() + 1;
    }
    std::optional<TextRange> firstBehind(qsizetype from, qsizetype end)
    {
        const qsizetype line = m_text.lineAt(std::max<qsizetype>(from, 0));
        const qsizetype last = from < 0 ? from : VimMotion::lastUnit(m_text, from);
        qsizetype at = m_text.lineStart(line);
        while (const auto match = m_matcher.next(TextRange::between(at, end), m_control)) {
            const bool isOfEnd = m_search.offset.base == Base::end;
            const qsizetype found = isOfEnd ? match->hit.end() : match->hit.location;
            // Of what is found its last character counts, and at a line's end the caret stands on the character before it.
            if (m_text.lineAt(found) > line || found - (isOfEnd || isBreakAt(m_text, found) ? 1 : 0) > last) {
                return match->hit;
            }
            at = behind(*match);
        }
        return std::nullopt;
    }
    std::optional<TextRange> wrapped(qsizetype end)
    {
        const auto match = m_matcher.next({0, end}, m_control);
        return match ? std::optional(match->hit) : std::nullopt;
    }
    /// Lines are looked through from the first one on, in blocks that grow.
    std::optional<TextRange> lastBefore(qsizetype from, qsizetype most)
    {
        constexpr qsizetype smallest = 4096;
        constexpr qsizetype largest = qsizetype(128) * 1024;
        qsizetype size = smallest;
        const qsizetype line = m_text.lineAt(std::min(from, m_text.length()));
        qsizetype end = from > m_text.length() || line + 1 == m_text.lineCount() ? m_text.length() + 1 : m_text.lineStart(line + 1);
        std::optional<TextRange> last;
        while (end > 0 && !last && from - end < most && !m_control.stop.stop_requested()) {
            const qsizetype start = m_text.lineStart(m_text.lineAt(std::max<qsizetype>(0, end - 1 - size)));
            qsizetype at = start;
            while (const auto match = m_matcher.next(TextRange::between(at, end), m_control)) {
                last = place(match->hit) < from ? match->hit : last;
                at = behind(*match);
            }
            end = start;
            size = std::min(2 * size, largest);
        }
        return last;
    }
    std::optional<TextRange> lastOfAll(qsizetype most) { return lastBefore(m_text.length() + 1, most); }

    VimMatcher m_matcher;
    const Rope &m_text;
    const VimSearch &m_search;
    const SearchControl &m_control;
};

} // namespace

VimSearchOffset VimSearchOffset::parse(QStringView typed)
{
    VimSearchOffset offset;
    qsizetype at = 0;
    const QChar first = typed.isEmpty() ? QChar() : typed[0];
    const bool isOfEnd = first == u'e';
    if (isOfEnd || first == u's' || first == u'b') {
        offset.base = isOfEnd ? Base::end : Base::start;
        ++at;
    } else if (first == u'+' || first == u'-' || first.isDigit()) {
        offset.base = Base::line;
    }
    const QStringView number = typed.sliced(at);
    const bool isBack = number.startsWith(u'-');
    at += isBack || number.startsWith(u'+') ? 1 : 0;
    const bool isSigned = at > (offset.base == Base::line ? 0 : 1) || isBack || number.startsWith(u'+');
    const auto amount = vimNumber(typed, at, 10, 9);
    offset.amount = amount ? qsizetype(*amount) : isSigned ? 1 : 0;
    offset.amount = isBack ? -offset.amount : offset.amount;
    return offset;
}

VimSearch VimSearch::exact(const QString &pattern, Direction direction, const VimOptions &options,
                           const std::optional<QString> &lastSubstitute)
{
    return {.pattern = pattern,
            .direction = direction,
            .isExact = true,
            .options = {.ignoresCase = options.ignoresCase, .smartCase = options.smartCase, .lastSubstitute = lastSubstitute},
            .wraps = options.wrapsSearch};
}

std::optional<QString> VimSearch::patternOfWord(const Rope &text, qsizetype caret, Words words)
{
    const auto isWord = [&text](qsizetype at) { return !isBreakAt(text, at) && VimCharacters::isKeyword(characterAt(text, at)); };
    const auto isBlank = [&text](qsizetype at) {
        return isBreakAt(text, at) || VimCharacters::classOf(characterAt(text, at)) == VimCharacters::Class::blank;
    };
    const auto isSame = [&](qsizetype a, qsizetype b) {
        return isWord(a) ? isWord(b) && VimCharacters::classOf(characterAt(text, a)) == VimCharacters::classOf(characterAt(text, b))
                         : !isBlank(b) && !isWord(b);
    };
    const auto before = [&text](qsizetype at) { return at - (at > 1 && text.splitsPair(at - 1) ? 2 : 1); };
    const auto behind = [&text](qsizetype at) { return at + (characterAt(text, at) > 0xFFFF ? 2 : 1); };
    const auto firstOf = [&](qsizetype from, const auto &isOne) {
        while (!isBreakAt(text, from) && !isOne(from)) {
            from = behind(from);
        }
        return from;
    };
    qsizetype start = firstOf(caret, isWord);
    if (isBreakAt(text, start)) {
        start = firstOf(caret, [&](qsizetype at) { return !isBlank(at); });
    }
    if (isBreakAt(text, start)) {
        return std::nullopt;
    }
    const qsizetype line = text.lineStart(text.lineAt(start));
    const qsizetype within = start;
    while (start > line && isSame(within, before(start))) {
        start = before(start);
    }
    qsizetype end = within;
    while (!isBreakAt(text, end) && isSame(within, end)) {
        end = behind(end);
    }
    const QString escaped = VimPattern::escaped(text.toString(TextRange::between(start, end)), u'/');
    return isWord(within) && words == Words::whole ? u"\\<"_s + escaped + u"\\>"_s : escaped;
}

Result<std::vector<VimSearch>> VimSearch::parse(QStringView typed, const VimSearch &common, const std::optional<VimSearch> &last)
{
    std::vector<VimSearch> all;
    VimSearch step = common;
    for (;;) {
        const QChar delimiter = step.direction == Direction::forward ? u'/' : u'?';
        const qsizetype length = VimPattern::lengthOf(typed, delimiter);
        QString pattern = typed.first(length).toString();
        if (delimiter == u'?') {
            pattern.replace(u"\\?"_s, u"?"_s);
        }
        const bool hasOffset = length < typed.size();
        typed = typed.sliced(hasOffset ? length + 1 : length);
        if (pattern.isEmpty() && !last && all.empty()) {
            return failure(localized(u"There is no pattern yet to look for again"));
        }
        const VimSearch &before = all.empty() && last ? *last : all.empty() ? step : all.back();
        step.pattern = pattern.isEmpty() ? before.pattern : pattern;
        step.offset = hasOffset ? VimSearchOffset::parse(typed) : pattern.isEmpty() ? before.offset : VimSearchOffset();
        if (pattern.isEmpty()) {
            step.options.smartCase = before.options.smartCase;
        }
        all.push_back(step);
        const qsizetype next = typed.indexOf(u';');
        const bool isOffset = std::ranges::all_of(typed.first(std::max<qsizetype>(next, 0)),
                                                  [](QChar unit) { return unit.isDigit() || u"esb+-"_s.contains(unit); });
        if (next < 0 || !isOffset) {
            return all;
        }
        typed = typed.sliced(next + 1);
        if (!typed.startsWith(u'/') && !typed.startsWith(u'?')) {
            return failure(localized(u"“/” or “?” has to follow “;”"));
        }
        step.direction = typed.startsWith(u'/') ? Direction::forward : Direction::backward;
        typed = typed.sliced(1);
    }
}

bool VimSearch::isValid() const
{
    return isExact ? problem().isEmpty() : searcherFor(pattern).has_value();
}

QString VimSearch::problem() const
{
    if (!isExact) {
        return isValid() ? QString() : formatted(localized(u"Bad pattern: %@"), pattern);
    }
    const auto translated = VimPattern::translate(pattern, options);
    if (!translated) {
        return translated.error().message;
    }
    return VimMatcher::compile(*translated, {}) ? QString() : formatted(localized(u"Bad pattern: %@"), pattern);
}

std::optional<VimSearchMove> VimSearch::move(const Rope &text, qsizetype from, qsizetype count, const std::stop_token &stop,
                                             qsizetype most) const
{
    const auto translated = VimPattern::translate(pattern, options);
    auto matcher = translated ? VimMatcher::compile(*translated, text) : tl::make_unexpected(translated.error());
    if (!matcher) {
        return std::nullopt;
    }
    const SearchControl control{.stop = stop};
    Seeker seeker(std::move(*matcher), *this, control);
    // Else a search with an offset would find again what it has come from.
    qsizetype at = offset.base == Base::line ? from : movedByCharacters(text, from, -offset.amount);
    if (at == 0 && direction == Direction::forward && offset.base != Base::line && movedByCharacters(text, at, offset.amount) > from) {
        at = -1; // there are not so many before it
    }
    std::optional<TextRange> hit;
    for (qsizetype left = std::max<qsizetype>(count, 1); left > 0; --left) {
        hit = seeker.seek(at, most);
        if (!hit) {
            return std::nullopt;
        }
        at = seeker.place(*hit);
    }
    using enum VimMotion::Kind;
    VimSearchMove move{.hit = *hit, .position = at, .hasWrapped = seeker.hasWrapped};
    if (offset.base == Base::line) {
        const qsizetype last =
            text.lineAt(text.length()) - (text.lineCount() > 1 && text.lineStart(text.lineCount() - 1) == text.length() ? 1 : 0);
        move.position = text.lineStart(std::clamp<qsizetype>(text.lineAt(hit->location) + offset.amount, 0, last));
        move.kind = linewise;
        return move;
    }
    move.position = movedByCharacters(text, at, offset.amount);
    move.kind = offset.base == Base::end ? inclusive : exclusive;
    return move;
}

std::optional<VimSearchMove> VimSearch::repeated(const Rope &text, qsizetype from, qsizetype count, const std::stop_token &stop) const
{
    const auto moved = move(text, from, count, stop);
    const bool isStuck = moved && moved->position == from && offset.base != Base::line && !moved->hasWrapped;
    return isStuck ? move(text, from, count + 1, stop) : moved;
}

QString VimSearch::messageForNone() const
{
    if (isExact && !wraps) {
        return formatted(direction == Direction::forward ? localized(u"Not found before the end of the text: %@")
                                                         : localized(u"Not found back to the start of the text: %@"),
                         pattern);
    }
    return formatted(localized(u"Pattern not found: %@"), pattern);
}

std::optional<TextRange> VimSearch::hit(const Rope &text, qsizetype from, const std::stop_token &stop) const
{
    if (isExact) {
        const auto moved = move(text, from, 1, stop);
        return moved ? std::optional(moved->hit) : std::nullopt;
    }
    auto searcher = searcherFor(pattern);
    if (!searcher) {
        return std::nullopt;
    }
    const SearchControl control{.stop = stop};
    const TextRange all{0, text.length() + 1};
    std::optional<TextRange> hit;
    if (direction == Direction::forward) {
        const TextRange behind = TextRange::between(text.lineStart(text.lineAt(from)), text.length() + 1);
        hit = firstBehind(VimMotion::lastUnit(text, from), text, behind, *searcher, control);
        hit = hit ? hit : searcher->firstHit(text, all, control);
    } else {
        hit = searcher->lastHit(text, {0, from}, control);
        hit = hit ? hit : searcher->lastHit(text, all, control);
    }
    return stop.stop_requested() ? std::nullopt : hit;
}

std::optional<TextRange> VimSearch::nearHit(const Rope &text, qsizetype from) const
{
    if (text.length() <= nearby) {
        return hit(text, from);
    }
    if (isExact) {
        const auto moved = move(text, from, 1, {}, nearby);
        return moved ? std::optional(moved->hit) : std::nullopt;
    }
    auto searcher = searcherFor(pattern);
    if (!searcher) {
        return std::nullopt;
    }
    if (direction == Direction::forward) {
        const qsizetype line = text.lineStart(text.lineAt(from));
        if (from - line > nearby) {
            return std::nullopt;
        }
        const qsizetype end = from + nearby;
        const qsizetype rest = end - text.length();
        const auto hit =
            firstBehind(VimMotion::lastUnit(text, from), text, TextRange::between(line, std::min(end, text.length() + 1)), *searcher, {});
        return hit || rest <= 0 ? hit : searcher->firstHit(text, {0, rest});
    }
    const auto hit = searcher->lastHit(text, {0, from}, {}, nearby);
    return hit || from >= nearby ? hit : searcher->lastHit(text, {0, text.length() + 1}, {}, nearby - from);
}
