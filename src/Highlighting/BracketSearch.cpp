// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/BracketSearch.h"

#include "Highlighting/SyntaxHighlighter.h"

#include <algorithm>
#include <vector>

BracketSearch::Kind BracketSearch::kindOf(Scope scope)
{
    const bool isString = scope == Scope::string || scope == Scope::escape;
    return scope == Scope::comment ? Kind::comment : isString ? Kind::string : Kind::code;
}

std::optional<BracketSearch::Bracket> BracketSearch::bracketOf(char16_t unit, qsizetype offset) const
{
    for (size_t pair = 0; pair < m_pairs.size(); ++pair) {
        if (m_pairs[pair].open.front() == unit || m_pairs[pair].close.front() == unit) {
            return Bracket{offset, pair, m_pairs[pair].open.front() == unit};
        }
    }
    return std::nullopt;
}

std::optional<qsizetype> BracketSearch::beside(qsizetype offset) const
{
    for (const qsizetype place : {offset, offset - 1}) {
        if (place >= 0 && place < m_text.length() && bracketOf(m_text.at(place), place)) {
            return place;
        }
    }
    return std::nullopt;
}

BracketSearch::Kind BracketSearch::kindAt(qsizetype offset)
{
    Kind kind = Kind::code;
    m_scopes(TextRange{offset, 1}.clampedTo(m_text.length()), [&kind](TextRange, Scope scope) { kind = kindOf(scope); });
    return kind;
}

void BracketSearch::forEach(qsizetype from, Direction direction, Kind kind, const std::function<bool(const Bracket &)> &visit)
{
    constexpr qsizetype windowLength = 4096;
    std::vector<char16_t> units(windowLength);
    std::vector<Bracket> found;
    const bool isForward = direction == Direction::forward;
    while (!m_stop.stop_requested()) {
        const TextRange window = isForward ? TextRange::between(from, std::min(from + windowLength, m_within.end()))
                                           : TextRange::between(std::max(from - windowLength, m_within.location), from);
        if (window.length <= 0) {
            return;
        }
        m_text.copy(window, units.data());
        found.clear();
        for (qsizetype index = 0; index < window.length; ++index) {
            if (const auto bracket = bracketOf(units[size_t(index)], window.location + index)) {
                found.push_back(*bracket);
            }
        }
        // Only where there are some does it matter what the text is.
        if (!found.empty()) {
            std::vector<Bracket> ofKind;
            auto next = found.begin();
            m_scopes(window, [&](TextRange run, Scope scope) {
                for (; next != found.end() && next->offset < run.end(); ++next) {
                    if (kindOf(scope) == kind) {
                        ofKind.push_back(*next);
                    }
                }
            });
            if (!isForward) {
                std::ranges::reverse(ofKind);
            }
            if (!std::ranges::all_of(ofKind, visit)) {
                return;
            }
        }
        from = isForward ? window.end() : window.location;
    }
}

std::optional<qsizetype> BracketSearch::partnerOf(qsizetype bracket)
{
    const auto self = bracketOf(m_text.at(bracket), bracket);
    if (!self) {
        return std::nullopt;
    }
    std::optional<qsizetype> partner;
    int depth = 0;
    const auto visit = [&](const Bracket &other) {
        if (other.pair != self->pair) {
            return true;
        }
        if (other.isOpening == self->isOpening) {
            ++depth;
        } else if (depth-- == 0) {
            partner = other.offset;
        }
        return !partner;
    };
    if (self->isOpening) {
        forEach(bracket + 1, Direction::forward, kindAt(bracket), visit);
    } else {
        forEach(bracket, Direction::backward, kindAt(bracket), visit);
    }
    return partner;
}

std::optional<TextRange> BracketSearch::around(TextRange range)
{
    const Kind kind = kindAt(std::max<qsizetype>(range.location - 1, 0));
    const auto found = around(range, kind);
    return found || kind == Kind::code ? found : around(range, Kind::code);
}

std::optional<TextRange> BracketSearch::around(TextRange range, Kind kind)
{
    std::vector<int> depths(m_pairs.size());
    std::optional<TextRange> found;
    forEach(range.location, Direction::backward, kind, [&](const Bracket &bracket) {
        int &depth = depths[bracket.pair];
        if (!bracket.isOpening) {
            ++depth;
        } else if (depth > 0) {
            --depth;
        } else if (const auto partner = partnerOf(bracket.offset); partner && *partner >= range.end()) {
            found = TextRange::between(bracket.offset, *partner + 1);
        }
        return !found;
    });
    return found;
}

BracketSearch::Scopes scopesOf(SyntaxHighlighter *highlighter)
{
    if (!highlighter) {
        return {};
    }
    return [highlighter](TextRange range, const std::function<void(TextRange, Scope)> &visit) {
        highlighter->ensureHighlighted(range);
        highlighter->forEachScope(range, visit);
    };
}
