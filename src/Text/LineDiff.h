// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/DiffControl.h"
#include "Text/InlineDiff.h"
#include "Text/LineNumber.h"
#include "Text/LineTable.h"
#include "Text/Rope.h"

#include <QString>

#include <optional>
#include <vector>

/// The comparison of two texts line by line, as rows for two columns: the old text on the left, the new one on the right.
///
/// Lines end at LF only; see LineTable. Two are equal under canonical equivalence, without their white space if that is ignored. Within a
/// change the first deleted line stands opposite the first inserted one, and so on; surplus deletions follow, then surplus insertions.
/// Beyond EditSearch::mostEdits deletions and insertions, all between the first and last lines in common counts as changed.
///
/// Lines and rows are counted from 0; offsets and lengths are UTF-16 units.
namespace LineDiff {

enum class Side { left, right };

struct Row {
    enum class Kind { equal, deleted, inserted, modified };

    Kind kind = Kind::equal;
    /// None for an inserted row.
    std::optional<LineNumber> leftNumber = {};
    /// None for a deleted row.
    std::optional<LineNumber> rightNumber = {};

    friend bool operator==(const Row &, const Row &) = default;
};

/// Neighbouring rows of one kind whose lines follow one another on each side. A result has some thousands of runs at most.
struct Run {
    Row::Kind kind = Row::Kind::equal;
    qsizetype firstRow = 0;
    qsizetype rowCount = 0;
    /// The first row's lines; on a side without lines, that of the line which comes next there.
    qsizetype leftLine = 0;
    qsizetype rightLine = 0;

    [[nodiscard]] bool has(Side side) const { return kind != (side == Side::left ? Row::Kind::inserted : Row::Kind::deleted); }
    [[nodiscard]] qsizetype line(Side side) const { return side == Side::left ? leftLine : rightLine; }

    friend bool operator==(const Run &, const Run &) = default;
};

/// What a comparison found. It keeps both texts (as they were, sharing their leaves) and no copy of any line, so it takes some hundred
/// kilobytes for texts of 100 MB. A value; reading it is safe on any thread.
///
/// Row indices must lie in 0 … rowCount() - 1. Where nothing else is said, a question costs O(log n).
class Result final {
public:
    Result() = default;
    /// The rows that come of `matches`, equal lines in ascending order.
    struct Match {
        qsizetype left = 0;
        qsizetype right = 0;
        qsizetype count = 0;
    };
    Result(LineTable left, LineTable right, const std::vector<Match> &matches);

    [[nodiscard]] qsizetype rowCount() const { return m_runs.empty() ? 0 : m_runs.back().firstRow + m_runs.back().rowCount; }
    [[nodiscard]] Row row(qsizetype row) const;
    /// All rows, top to bottom; modified, deleted and inserted ones of a change in this order. O(1).
    [[nodiscard]] const std::vector<Run> &runs() const { return m_runs; }
    /// The run that holds `row`.
    [[nodiscard]] const Run &runAt(qsizetype row) const;

    /// The first row of every maximal stretch of rows that are not equal, ascending. O(1).
    [[nodiscard]] const std::vector<qsizetype> &changeStarts() const { return m_changeStarts; }
    /// Rows that are inserted or modified. O(1).
    [[nodiscard]] qsizetype addedCount() const { return m_addedCount; }
    /// Rows that are deleted or modified. O(1).
    [[nodiscard]] qsizetype removedCount() const { return m_removedCount; }

    [[nodiscard]] const LineTable &lines(Side side) const { return side == Side::left ? m_left : m_right; }
    /// Where the row's line stands in the text of that side, its LF left out; none for a row without one there.
    [[nodiscard]] std::optional<TextRange> lineRange(Side side, qsizetype row) const;

    /// The line as it stands in the text; empty for a row without one on that side. O(log n + line).
    [[nodiscard]] QString leftText(qsizetype row) const { return text(Side::left, row); }
    [[nodiscard]] QString rightText(qsizetype row) const { return text(Side::right, row); }
    /// The changed characters of a modified row, worked out anew at each call; nothing for others. O(log n + line).
    [[nodiscard]] InlineDiff::Spans emphasis(qsizetype row) const;

private:
    void add(Row::Kind kind, qsizetype count);
    void addChange(qsizetype deleted, qsizetype inserted);
    [[nodiscard]] QString text(Side side, qsizetype row) const;

    LineTable m_left;
    LineTable m_right;
    std::vector<Run> m_runs;
    std::vector<qsizetype> m_changeStarts;
    qsizetype m_addedCount = 0;
    qsizetype m_removedCount = 0;
};

/// Compares two texts; none only when a stop was requested, soon after that. A pure function for any thread, of ropes that do not change
/// meanwhile. It reads each text about twice, so 100 MB take some tenths of a second: on the main thread for short texts only. Until it is
/// done it takes about 15 bytes for each line between the first and last lines in common, 50 for one that differs from all others; lines
/// of more than a leaf are put together, one of each text at a time, unless both are narrow and white space counts.
[[nodiscard]] std::optional<Result> compare(const Rope &old, const Rope &newer, Whitespace whitespace = Whitespace::counts,
                                            const DiffControl &control = {});

} // namespace LineDiff
