// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Result.h"
#include "Text/TextRange.h"

#include <QStringView>
#include <QVarLengthArray>

#include <optional>
#include <utility>

struct URegularExpression;

/// A compiled regular expression in ICU syntax; positions are UTF-16 code units of the text that is searched.
///
/// One object serves one thread at a time and holds the state of one search. `clone()` is cheap (the compiled program is shared), so
/// that whoever uses an expression for long, or inside another search with it, takes a clone of their own.
///
/// A search that uses up its limits ends as if nothing more matched and is counted in `limitHits()`.
class RegularExpression final {
public:
    struct Options {
        /// `.` also matches a line's end.
        bool dotMatchesLineSeparators = false;
        /// `^` and `$` also match at the ends of lines, not only of the searched range.
        bool anchorsMatchLines = false;
    };

    /// What one search may cost before it is given up.
    struct Limits {
        /// Units of 10 000 backtracking steps (about 0.15 ms each): the allowance of every search …
        int ticks = 20;
        /// … and one more of them for this many units of searched text, so that long texts of harmless matches are not cut short.
        int unitsPerExtraTick = 500;
        /// Bytes of the heap that hold the steps to come back to.
        int stackBytes = 8'000'000;
    };

    /// How the ends of the searched range look to the expression. As they stand here the range is all there is: its ends match `^` and
    /// `$`, and look-around and `\b` see nothing beyond them. Windows cut from a longer text take `window()`.
    struct Bounds {
        bool areAnchoring = true;
        bool areTransparent = false;

        [[nodiscard]] static constexpr Bounds window() { return {.areAnchoring = false, .areTransparent = true}; }
    };

    /// A match that was found: group 0 is all of it. A group that took no part is none.
    class Match {
    public:
        [[nodiscard]] TextRange range() const { return m_groups[0]; }
        [[nodiscard]] int groupCount() const { return int(m_groups.size()) - 1; }
        /// `number` is 0 … `groupCount()`; none for any other.
        [[nodiscard]] std::optional<TextRange> group(int number) const;

    private:
        friend class RegularExpression;
        /// Location -1 stands for none.
        QVarLengthArray<TextRange, 4> m_groups;
    };

    /// Fails with a message that says what is wrong with `pattern` and where.
    [[nodiscard]] static Result<RegularExpression> compile(QStringView pattern, Options options);
    [[nodiscard]] static Result<RegularExpression> compile(QStringView pattern, Options options, Limits limits);
    [[nodiscard]] static Result<RegularExpression> compile(QStringView pattern) { return compile(pattern, Options{}); }

    RegularExpression(RegularExpression &&other) noexcept;
    RegularExpression &operator=(RegularExpression &&other) noexcept;
    ~RegularExpression();

    /// Options and limits as here, no search under way, `limitHits()` 0. May be called for an object that never searches from any
    /// thread, and the clone then belongs to that thread. About half a microsecond.
    [[nodiscard]] RegularExpression clone() const;

    /// Number of capture groups in the pattern, group 0 not counted.
    [[nodiscard]] int groupCount() const { return m_groupCount; }

    /// Begins a search in `range`, which must lie in `text`; `text` must stay where it is until the search is over.
    void begin(QStringView text, TextRange range, Bounds bounds);
    /// Goes on to the next match, which never overlaps the one before; false when there is none.
    [[nodiscard]] bool findNext();
    /// The match that `findNext` found last. Valid until the next call of it.
    [[nodiscard]] TextRange range() const { return *group(0); }
    [[nodiscard]] std::optional<TextRange> group(int number) const;
    [[nodiscard]] Match match() const;

    /// Calls `visit(*this)` at every match in order until it returns false. `visit` reads `range()` and `group()`; it must not start
    /// another search with this object.
    template<typename Visitor>
    void forEachMatch(QStringView text, TextRange range, Bounds bounds, Visitor &&visit)
    {
        begin(text, range, bounds);
        while (findNext() && visit(std::as_const(*this))) {
        }
    }
    template<typename Visitor>
    void forEachMatch(QStringView text, TextRange range, Visitor &&visit)
    {
        forEachMatch(text, range, Bounds{}, std::forward<Visitor>(visit));
    }

    [[nodiscard]] std::optional<Match> firstMatch(QStringView text, TextRange range, Bounds bounds);
    [[nodiscard]] std::optional<Match> firstMatch(QStringView text, TextRange range) { return firstMatch(text, range, Bounds{}); }
    [[nodiscard]] std::optional<Match> firstMatch(QStringView text) { return firstMatch(text, {0, text.size()}); }

    /// Searches of this object that were given up so far.
    [[nodiscard]] int limitHits() const { return m_limitHits; }
    /// What the search under way, or the last one, has cost: see Limits::ticks.
    [[nodiscard]] int ticks() const { return m_ticks; }

    /// `format` with `$n` replaced by group n of `match` (nothing for a group that is none or does not exist) and `\` taken away
    /// before the character that it protects. n has as many digits as the largest group number. `text` is the one searched.
    [[nodiscard]] static QString replacement(const Match &match, QStringView text, QStringView format);

    /// A pattern that matches `text` itself.
    [[nodiscard]] static QString escapedPattern(QStringView text);

private:
    RegularExpression(URegularExpression *expression, Limits limits, int groupCount);

    URegularExpression *m_expression = nullptr;
    Limits m_limits;
    int m_groupCount = 0;
    int m_limitHits = 0;
    int m_ticks = 0;
    int m_mostTicks = 0;
    /// The engine has a text and its last call did not fail.
    bool m_isSearching = false;
};
