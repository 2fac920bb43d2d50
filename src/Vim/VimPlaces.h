// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextEdits.h"

#include <limits>
#include <optional>
#include <span>
#include <vector>

/// A place in a text as Vim keeps it: a line and a column. Changes before the column in its line do not move it; it goes where its line
/// goes. Offsets are UTF-16 units.
struct VimPlace {
    /// What becomes of it when its line is deleted: it goes, or stays in the line of that number, which may be the one behind the last; it
    /// may also go with a line that is joined to another.
    enum class WithoutLine { goes, staysThere, goesWhenJoined };
    /// Lines of which an undone change makes more or less come in place of those that were there: what was in them is without its line.
    enum class Kind { change, undone };

    /// On a unit of the text, or its end.
    qsizetype offset = 0;
    /// Where a place stays behind the last character of its line, however long that becomes.
    static constexpr qsizetype atLineEnd = std::numeric_limits<qsizetype>::max() / 4;
    /// Bytes of UTF-8 from its line's start, which may lie behind what the line has now; none while nothing was changed.
    std::optional<qsizetype> column = std::nullopt;

    /// Where it is after a change; none when it went with its line. O(log text + edits of its line).
    [[nodiscard]] std::optional<VimPlace> after(const TextChange &change, WithoutLine without, Kind kind = Kind::change) const;
};

/// The lines that a change touches, which are found once for many places: those in other lines are moved by a number.
class VimTouchedLines final {
public:
    explicit VimTouchedLines(const TextChange &change, VimPlace::Kind kind = VimPlace::Kind::change);

    /// See VimPlace::after().
    [[nodiscard]] std::optional<VimPlace> after(const VimPlace &place, VimPlace::WithoutLine without) const;

private:
    const TextChange &m_change;
    VimPlace::Kind m_kind;
    qsizetype m_first = 0;
    /// The start of the first line behind them.
    qsizetype m_behind = 0;
};

/// Places that were left, the oldest first, and where in them one has gone back to; at most `limit`. A value: copies stand for themselves.
class VimPlaces final {
public:
    static constexpr size_t limit = 100;
    /// Jumps go to any line once; changes near the last one of the same line take its place.
    enum class Kind { jumps, changes };

    explicit VimPlaces(Kind kind) : m_kind(kind) {}

    /// The newest of them; one has not gone back from it. `textWidth` is the columns that are near for a change, 0 for 79. Whether there is
    /// one more.
    bool add(qsizetype place, const Rope &text, qsizetype textWidth = 0);
    /// So many back, from `caret`, which joins the jumps when none was gone back to. None when there are not so many jumps, or no older
    /// change.
    [[nodiscard]] std::optional<qsizetype> older(qsizetype count, qsizetype caret, const Rope &text);
    [[nodiscard]] std::optional<qsizetype> newer(qsizetype count, const Rope &text);
    /// The change that was added last went on to `place`.
    void moveLast(qsizetype place);
    void follow(const TextChange &change, VimPlace::Kind kind = VimPlace::Kind::change);
    void clear() { *this = VimPlaces(m_kind); }

    [[nodiscard]] std::span<const VimPlace> places() const { return m_places; }
    /// Of the place that one has gone to; as many as there are places when it is none.
    [[nodiscard]] size_t position() const { return m_position; }

private:
    [[nodiscard]] std::optional<qsizetype> goTo(qsizetype position);
    void dropRepeats(const Rope &text);

    Kind m_kind;
    std::vector<VimPlace> m_places;
    size_t m_position = 0;
};
