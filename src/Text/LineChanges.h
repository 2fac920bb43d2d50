// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/LineDiff.h"
#include "Text/TextEdits.h"
#include "Text/TextRange.h"

#include <optional>
#include <span>
#include <vector>

/// Neighbouring lines of a text that are others than in the text that it is compared with, its base. Offsets are UTF-16 units.
struct LineChange {
    enum class Kind { added, modified, deleted };

    Kind kind = Kind::modified;
    /// In the text: whole lines with their breaks. Empty where lines are missing, at the start of the line that follows them.
    TextRange range;
    /// The lines in the base; empty for added ones.
    TextRange baseRange;

    /// Whether its mark stands beside the line that begins at `lineStart`.
    [[nodiscard]] bool marks(qsizetype lineStart) const
    {
        return kind == Kind::deleted ? range.location == lineStart : range.contains(lineStart);
    }

    friend bool operator==(const LineChange &, const LineChange &) = default;
};

/// Pure functions, for any thread. Lists of changes are ascending and apart.
namespace LineChanges {

/// What makes the right text of `compared` of the left one, its base. O(runs · log n).
[[nodiscard]] std::vector<LineChange> of(const LineDiff::Result &compared);
/// Keeps the changes on their lines while the text is edited; what the edits themselves change is not looked at. One of which nothing is
/// left in the text marks missing lines. True when a mark went or became another. O(changes · log edits).
bool map(std::vector<LineChange> &changes, const TextEdits &edits);

/// The index of the first change behind the line that begins at `lineStart`, or of the last one before it; none when there is none.
[[nodiscard]] std::optional<size_t> next(std::span<const LineChange> changes, qsizetype lineStart);
[[nodiscard]] std::optional<size_t> previous(std::span<const LineChange> changes, qsizetype lineStart);
/// Of the change whose mark stands beside that line; `lineEnd` is behind its break. Lines that are missing at the text's end belong to the
/// last line.
[[nodiscard]] std::optional<size_t> at(std::span<const LineChange> changes, qsizetype lineStart, qsizetype lineEnd);
/// The first of that kind with anything in `stretch`; lines that are missing are where the next one begins. O(log n + those in `stretch`).
[[nodiscard]] std::optional<size_t> firstIn(std::span<const LineChange> changes, LineChange::Kind kind, TextRange stretch);

/// Puts the lines of the base in place of those of `change`, which is a change between exactly these two texts.
[[nodiscard]] TextEdits restoring(const LineChange &change, const Rope &text, const Rope &base);

} // namespace LineChanges
