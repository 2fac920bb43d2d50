// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <algorithm>

/// A half-open stretch of text in UTF-16 code units.
struct TextRange {
    qsizetype location = 0;
    qsizetype length = 0;

    [[nodiscard]] static constexpr TextRange between(qsizetype from, qsizetype to) { return {from, to - from}; }
    /// Between two offsets of which either may be the first.
    [[nodiscard]] static constexpr TextRange spanning(qsizetype one, qsizetype other)
    {
        return between(std::min(one, other), std::max(one, other));
    }

    [[nodiscard]] constexpr qsizetype end() const { return location + length; }
    [[nodiscard]] constexpr bool isEmpty() const { return length == 0; }
    [[nodiscard]] constexpr bool contains(qsizetype offset) const { return location <= offset && offset < end(); }
    [[nodiscard]] constexpr bool contains(TextRange other) const { return location <= other.location && other.end() <= end(); }
    /// True also when the two only meet at an end.
    [[nodiscard]] constexpr bool touches(TextRange other) const { return location <= other.end() && other.location <= end(); }
    /// The two and what lies between them.
    [[nodiscard]] constexpr TextRange united(TextRange other) const
    {
        return between(std::min(location, other.location), std::max(end(), other.end()));
    }
    /// What both have; empty where that is nothing.
    [[nodiscard]] constexpr TextRange intersected(TextRange other) const
    {
        const qsizetype from = std::max(location, other.location);
        return between(from, std::max(from, std::min(end(), other.end())));
    }
    [[nodiscard]] constexpr TextRange clampedTo(qsizetype textLength) const
    {
        const qsizetype from = std::clamp<qsizetype>(location, 0, textLength);
        return between(from, std::clamp(end(), from, textLength));
    }

    friend constexpr bool operator==(TextRange, TextRange) = default;
};

/// The selection of one view: `anchor` stays where the selection began, `caret` moves. Both are UTF-16 offsets.
struct TextSelection {
    qsizetype anchor = 0;
    qsizetype caret = 0;

    [[nodiscard]] static constexpr TextSelection at(qsizetype offset) { return {offset, offset}; }

    [[nodiscard]] constexpr bool isEmpty() const { return anchor == caret; }
    [[nodiscard]] constexpr TextRange range() const { return TextRange::spanning(anchor, caret); }

    friend constexpr bool operator==(TextSelection, TextSelection) = default;
};
