// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"

#include <QStringView>

#include <vector>

/// Where a changed line differs from what it was. Pure functions, any thread.
///
/// Characters are user-perceived ones (grapheme clusters, UAX #29), compared under canonical equivalence: an é is the same whether it is
/// one code point or two. Lone surrogates are characters of their own.
namespace InlineDiff {

/// Lines with more characters than this are not looked into.
inline constexpr qsizetype mostCharacters = 2000;

/// Half-open, in characters of a line from 0; never empty.
struct CharacterRange {
    qsizetype lower = 0;
    qsizetype upper = 0;

    friend bool operator==(CharacterRange, CharacterRange) = default;
};

/// One range a side at most. A pure insertion has none on the left.
struct Spans {
    std::vector<CharacterRange> left;
    std::vector<CharacterRange> right;

    friend bool operator==(const Spans &, const Spans &) = default;
};

/// What is left of two lines, given without their line feeds, when the characters that both begin with and then those that both end with
/// are taken away. When either has more than `mostCharacters`, all of both. O(n).
[[nodiscard]] Spans spans(QStringView old, QStringView newer);

/// The UTF-16 units in `line` that make up `range`, which must lie in it. O(n).
[[nodiscard]] TextRange unitRange(QStringView line, CharacterRange range);

} // namespace InlineDiff
