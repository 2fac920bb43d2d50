// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <optional>
#include <span>
#include <stop_token>
#include <vector>

/// The search for the fewest insertions and deletions that turn one list into another: the greedy O(ND) algorithm of E. W. Myers, "An
/// O(ND) Difference Algorithm and Its Variations" (Algorithmica 1, 1986), with a limit. Where both are as good, it deletes first.
namespace EditSearch {

/// More insertions and deletions than this are not looked for: the lists then have nothing in common.
inline constexpr qsizetype mostEdits = 2000;

/// `count` entries that both have, from `old` in the one and `newer` in the other. What lies between two of them is deleted or inserted.
struct Match {
    qsizetype old = 0;
    qsizetype newer = 0;
    qsizetype count = 0;

    friend bool operator==(const Match &, const Match &) = default;
};

/// Ascending; none soon after a stop was requested. Equal numbers stand for equal entries. Keeps d + 1 integers for the `d`th edit, so 8
/// MB at most. O(edits² + what is compared), at worst the length of a list times `mostEdits`.
[[nodiscard]] std::optional<std::vector<Match>> matches(std::span<const quint32> old, std::span<const quint32> newer,
                                                        const std::stop_token &stop = {});

} // namespace EditSearch
