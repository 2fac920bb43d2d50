// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"
#include "Text/TextRange.h"

#include <vector>

/// `text` in place of `range`.
struct TextEdit {
    TextRange range;
    Rope text;
};

/// Where an offset goes that has text inserted exactly at it: it stays before that text or goes behind it.
enum class Bias { before, after };

/// So many units became so many others at `location`; in numbers only, for those who need to know no more.
struct ReplacedStretch {
    qsizetype location = 0;
    qsizetype removed = 0;
    qsizetype inserted = 0;

    [[nodiscard]] constexpr qsizetype growth() const { return inserted - removed; }
    /// One stretch around this and `next`, which was replaced after it.
    [[nodiscard]] constexpr ReplacedStretch followedBy(const ReplacedStretch &next) const
    {
        const TextRange both = TextRange{location, inserted}.united({next.location, next.removed});
        return {both.location, both.length - growth(), both.length + next.growth()};
    }

    friend constexpr bool operator==(const ReplacedStretch &, const ReplacedStretch &) = default;
};

/// One change of a text, as a value: any number of edits, all of the text before them, ascending and apart from one another (edits that
/// touch are one). Offsets are UTF-16 units. Copies share the texts.
class TextEdits final {
public:
    TextEdits() = default;
    TextEdits(TextRange range, const Rope &text) { add(range, text); }
    TextEdits(TextRange range, QStringView text) { add(range, Rope(text)); }
    /// What makes `after` of `before`: one edit, of what is between what both begin and end with. O(n).
    [[nodiscard]] static TextEdits difference(const Rope &before, const Rope &after);

    /// Behind all there are. What replaces nothing by nothing is left out.
    void add(TextRange range, const Rope &text);

    [[nodiscard]] bool isEmpty() const { return m_edits.empty(); }
    [[nodiscard]] size_t count() const { return m_edits.size(); }
    [[nodiscard]] const TextEdit &operator[](size_t index) const { return m_edits[index]; }
    [[nodiscard]] std::vector<TextEdit>::const_iterator begin() const { return m_edits.begin(); }
    [[nodiscard]] std::vector<TextEdit>::const_iterator end() const { return m_edits.end(); }
    /// Where the text of an edit stands in the text after all of them.
    [[nodiscard]] TextRange newRange(size_t index) const
    {
        return {m_edits[index].range.location + m_shifts[index], m_edits[index].text.length()};
    }
    /// Units by which the text grows.
    [[nodiscard]] qsizetype growth() const { return m_growth; }
    /// From the first edit to the last; empty at 0 when there is none.
    [[nodiscard]] ReplacedStretch hull() const;
    /// The first edit that ends at `offset` of the text before, or behind it; count() when there is none. O(log edits).
    [[nodiscard]] size_t firstReaching(qsizetype offset) const;

    /// Whether an edit has a part in `range` or meets an end of it. O(log edits).
    [[nodiscard]] bool touches(TextRange range) const
    {
        const size_t index = firstReaching(range.location);
        return index < count() && m_edits[index].range.location <= range.end();
    }
    /// By how much the edits before an offset, which none touches, move it. O(log edits).
    [[nodiscard]] qsizetype shiftAt(qsizetype offset) const
    {
        const size_t index = firstReaching(offset);
        return index < count() ? m_shifts[index] : m_growth;
    }

    [[nodiscard]] Rope applied(Rope before) const;
    /// What takes these edits of `before` back.
    [[nodiscard]] TextEdits inverse(const Rope &before) const;
    /// These and then `next`, as one change. O(edits of both).
    [[nodiscard]] TextEdits followedBy(const TextEdits &next) const;
    /// The same edits of a text that has so many units more before them.
    [[nodiscard]] TextEdits movedBy(qsizetype distance) const;
    /// The same change of `before`, with no edit that parts a surrogate pair of it.
    [[nodiscard]] TextEdits withWholePairs(const Rope &before) const;

    /// Where an offset stands afterwards. Text that was replaced takes the offsets inside it to the start or the end of what came in its
    /// place; an offset at the edge of replaced text stays at that edge, whatever its bias. O(log edits).
    [[nodiscard]] qsizetype mapped(qsizetype offset, Bias bias) const;
    /// What is left of `range`: text inserted at its ends stays outside, text inserted inside comes in.
    [[nodiscard]] TextRange mapped(TextRange range) const;

private:
    std::vector<TextEdit> m_edits;
    /// By how much the edits before each have moved it.
    std::vector<qsizetype> m_shifts;
    qsizetype m_growth = 0;
};

/// What became of a text, as it is reported to those who follow it. It refers to what it reports.
struct TextChange {
    const TextEdits &edits;
    const Rope &before;
    const Rope &after;

    /// Line breaks that an edit takes away and brings. A CR and LF that the edit parts or brings together at its ends are not counted.
    [[nodiscard]] qsizetype removedLines(size_t index) const;
    [[nodiscard]] qsizetype insertedLines(size_t index) const;
    /// No line came, went, or became two or part of another.
    [[nodiscard]] bool isWithinLines() const;

    /// Like TextEdits::mapped(), but an offset inside lines that were replaced goes to the same line and column of what came in their
    /// place, as far as there is one: when all hits of a search are replaced at once, a view keeps its place.
    [[nodiscard]] qsizetype mapped(qsizetype offset, Bias bias) const;
    /// So do the ends of a selection, at grapheme boundaries; what comes in at either end stays outside.
    [[nodiscard]] TextSelection mapped(TextSelection selection) const;
    [[nodiscard]] TextRange mapped(TextRange range) const { return edits.mapped(range); }
};

/// A change and the selection that it leaves; what a command of the text is when nothing has happened yet.
struct TextStep {
    TextEdits edits;
    TextSelection after;
};
