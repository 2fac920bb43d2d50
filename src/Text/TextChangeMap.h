// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"

#include <span>
#include <vector>

class Rope;

/// Where an offset goes that has text inserted exactly at it: it stays before that text or goes behind it.
enum class Bias { before, after };

/// Where `offset` of the text before `changes` stands in the text after them.
///
/// Text that was replaced takes the offsets inside it to the start (Bias::before) or the end (Bias::after) of what came in its place. An
/// offset at the edge of replaced text stays at that edge, whatever its bias. O(changes).
[[nodiscard]] qsizetype mappedOffset(qsizetype offset, const TextChangeList &changes, Bias bias);

/// A place as a user sees it: a line (from 0) and the units before it in that line.
struct LinePlace {
    qsizetype line = 0;
    qsizetype column = 0;

    [[nodiscard]] static LinePlace of(const Rope &text, qsizetype offset);
};

/// Like mappedOffset(), but an offset inside lines that were replaced goes to the same line and column of what came in their place, as
/// far as there is one: when all hits of a search are replaced at once, a view keeps its place. `before` is where the offset stood,
/// `text` is the text after the changes.
[[nodiscard]] qsizetype mappedPlace(qsizetype offset, LinePlace before, const Rope &text, const TextChangeList &changes, Bias bias);

/// Anchor and caret both by `bias`.
[[nodiscard]] TextSelection mappedSelection(TextSelection selection, const TextChangeList &changes, Bias bias);

/// What is left of `range`: text inserted at its ends stays outside, text inserted inside comes in.
[[nodiscard]] TextRange mappedRange(TextRange range, const TextChangeList &changes);

/// Moves a whole list of ascending offsets in one pass; they stay ascending. O(changes + offsets).
void mapOffsets(std::span<qsizetype> offsets, const TextChangeList &changes, Bias bias);

/// Gathers the edits of a batch, each given in the text as it then is, into changes that are ascending and apart from one another.
/// Above 1000 they become one change around them all. O(log changes) for edits front to back, O(changes) for others.
class TextChangeCollector final {
public:
    static constexpr size_t mostChanges = 1000;

    struct Edit {
        qsizetype position = 0;
        qsizetype removed = 0;
        qsizetype inserted = 0;
        /// Line breaks of the whole text after the edit less those before it.
        qsizetype addedLines = 0;
        /// The unit at `position` before the edit is a LF.
        bool startsAtLf = false;
    };
    void add(const Edit &edit);
    [[nodiscard]] bool isEmpty() const { return m_entries.empty(); }
    /// Ends the batch; `text` is the text after it. Leaves the collector empty.
    [[nodiscard]] TextChangeList finish(const Rope &text);

private:
    struct Entry {
        TextChange change;
        qsizetype addedLines = 0;
        bool startedAtLf = false;
    };
    std::vector<Entry> m_entries;
    bool m_isHull = false;

    void collapse();
};
