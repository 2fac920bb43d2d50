// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/Language.h"
#include "Highlighting/Scope.h"
#include "Text/Rope.h"

#include <functional>
#include <optional>
#include <stop_token>

class SyntaxHighlighter;

/// Which brackets of a text belong together. Those in strings only belong to others in strings, those in comments to others in comments.
/// A search is for one state of the text, and for one thread. All offsets are UTF-16 units.
class BracketSearch final {
public:
    /// Calls `visit` for the stretches of the range that have one scope, ascending.
    using Scopes = std::function<void(TextRange range, const std::function<void(TextRange, Scope)> &visit)>;
    /// What a stretch of text is as far as brackets go.
    enum class Kind : quint8 { code, string, comment };
    [[nodiscard]] static Kind kindOf(Scope scope);
    /// Far enough for what people look for.
    static constexpr qsizetype farthest = qsizetype(1024) * 1024;

    /// Nothing outside `within` is looked at. All must outlive the search, and the pairs be of one unit each.
    BracketSearch(const Rope &text, std::span<const DelimiterPair> pairs, Scopes scopesOf, TextRange within, std::stop_token stop = {})
        : m_text(text), m_pairs(pairs), m_scopes(std::move(scopesOf)), m_within(within.clampedTo(text.length())), m_stop(std::move(stop))
    {}

    /// Where there is a bracket: at `offset`, or else before it.
    [[nodiscard]] std::optional<qsizetype> beside(qsizetype offset) const;
    /// Of the bracket that is there; none when there is none in reach.
    [[nodiscard]] std::optional<qsizetype> partnerOf(qsizetype bracket);
    /// From the opening bracket to behind the closing one: the innermost pair around `range`, which may touch them from inside.
    [[nodiscard]] std::optional<TextRange> around(TextRange range);

private:
    enum class Direction { forward, backward };
    struct Bracket {
        qsizetype offset = 0;
        size_t pair = 0;
        bool isOpening = false;
    };

    [[nodiscard]] std::optional<Bracket> bracketOf(char16_t unit, qsizetype offset) const;
    [[nodiscard]] std::optional<TextRange> around(TextRange range, Kind kind);
    [[nodiscard]] Kind kindAt(qsizetype offset);
    /// Calls `visit` for the brackets of one kind until it returns false; backward begins with the one before `from`.
    void forEach(qsizetype from, Direction direction, Kind kind, const std::function<bool(const Bracket &)> &visit);

    const Rope &m_text;
    std::span<const DelimiterPair> m_pairs;
    Scopes m_scopes;
    TextRange m_within;
    std::stop_token m_stop;
};

/// What a text is by its highlighter, which must outlive it and colours what is asked for; none of null.
[[nodiscard]] BracketSearch::Scopes scopesOf(SyntaxHighlighter *highlighter);
