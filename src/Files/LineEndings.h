// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/LineEnding.h"
#include "Text/Rope.h"

#include <array>

struct TextChange;

/// How each line of a text ends in its file, in the order of the lines. Where all end alike only their number is kept, else one byte a
/// line, in a rope: a copy costs O(1), an edit O(log lines). A value.
///
/// Breaks are counted as the rope of the text counts them.
class LineEndings final {
public:
    LineEndings() = default;
    [[nodiscard]] static LineEndings uniform(LineEnding ending, qsizetype count);

    [[nodiscard]] bool isMixed() const { return !m_order.isEmpty(); }
    [[nodiscard]] qsizetype count() const { return m_counts[0] + m_counts[1] + m_counts[2]; }
    [[nodiscard]] qsizetype count(LineEnding ending) const { return m_counts[size_t(ending)]; }
    /// By the numbers of the endings.
    [[nodiscard]] const std::array<qsizetype, 3> &counts() const { return m_counts; }
    /// Of those that are not mixed; `fallback` where there is none.
    [[nodiscard]] LineEnding onlyOne(LineEnding fallback) const;
    /// One byte a line, the number of its ending; empty where all are alike.
    [[nodiscard]] const Rope &order() const { return m_order; }

    /// Follows the text. Of lines that others take the place of, these take over the endings as far as there are that many; a line that is
    /// parted has its own ending twice, and what else is new ends like the line before it.
    void apply(const TextChange &change, LineEnding fallback);
    /// Both one behind the other. When a text that ended with CR goes on with LF, the last of these and the first of those are one.
    enum class Seam { none, sharedLine };
    [[nodiscard]] LineEndings followedBy(const LineEndings &next, Seam seam) const;

    friend bool operator==(const LineEndings &, const LineEndings &) = default;

private:
    friend class LineEndingRecorder;

    [[nodiscard]] Rope spelledOut() const;
    void settle();

    Rope m_order;
    std::array<qsizetype, 3> m_counts = {};
};

/// Makes them of what comes one after the other.
class LineEndingRecorder final {
public:
    void add(LineEnding ending, qsizetype count);
    [[nodiscard]] LineEndings build();

private:
    RopeBuilder m_order;
    std::array<qsizetype, 3> m_counts = {};
    bool m_isMixed = false;
};
