// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"
#include "Text/TextEdits.h"
#include "Text/TextRange.h"

#include <optional>
#include <span>
#include <stop_token>
#include <vector>

/// Where a merge wrote both versions into a text: lines from one that begins with "<<<<<<<", over one with "=======", to one with
/// ">>>>>>>". Pure functions, for any thread. Ranges are whole lines in UTF-16 units, ascending and apart.
namespace MergeConflicts {

/// More than these are not told apart from text.
inline constexpr size_t mostMarkers = 10'000;

/// O(text). Stopped, it returns anything.
[[nodiscard]] std::vector<TextRange> in(const Rope &text, const std::stop_token &stop = {});
/// Keeps them on their lines while the text is edited, whatever that does to them; those of which nothing is left go.
void map(std::vector<TextRange> &conflicts, const TextEdits &edits);

/// The index of the first one that begins behind `place`, or of the last one that begins before it; none when there is none.
[[nodiscard]] std::optional<size_t> next(std::span<const TextRange> conflicts, qsizetype place);
[[nodiscard]] std::optional<size_t> previous(std::span<const TextRange> conflicts, qsizetype place);
/// The first one with anything in `stretch`.
[[nodiscard]] std::optional<size_t> firstIn(std::span<const TextRange> conflicts, TextRange stretch);

} // namespace MergeConflicts
