// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/TextEncoding.h"
#include "Text/Rope.h"
#include "Text/TextRange.h"

#include <bitset>
#include <limits>
#include <stop_token>
#include <vector>

/// The characters that can be written in an encoding which has not all of them. Whether a unit is among them does not depend on the units
/// around it, so what is missing in a text is the sum of what is missing in its parts: of a surrogate pair, which no such encoding has,
/// the first half counts and the second does not.
class CharacterSet final {
public:
    /// Null for an encoding that has every character, or that nothing can be written in. Made when it is asked for first, which takes
    /// some milliseconds, and never destroyed. Any thread.
    [[nodiscard]] static const CharacterSet *of(TextEncoding encoding);

    [[nodiscard]] bool has(char16_t unit) const { return m_units[unit]; }

    /// How many characters of `range` it lacks. Stopped, it is anything. O(range).
    [[nodiscard]] qsizetype countMissing(const Rope &text, TextRange range, const std::stop_token &stop = {}) const;
    /// The first `most` of them, ascending; a pair is one range of two units.
    [[nodiscard]] std::vector<TextRange> missingIn(const Rope &text, TextRange range,
                                                   size_t most = std::numeric_limits<size_t>::max()) const;

private:
    explicit CharacterSet(TextEncoding encoding);

    static constexpr size_t unitCount = 0x10000;
    std::bitset<unitCount> m_units;
    /// The same of the first 256, which is all that most texts have.
    bool m_hasLatin1 = false;
};
