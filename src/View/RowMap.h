// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <functional>
#include <optional>
#include <vector>

/// How many rows each line of a wrapped text takes.
///
/// Lines that were laid out or counted know their rows; a stretch of others is one gap with an estimate. Measured neighbours of one
/// row each are one entry whatever their number, so a text that hardly wraps stays a handful of blocks. A question costs a sum over
/// the blocks, made once after each change. Lines and rows are numbered from 0.
class RowMap final {
public:
    /// Rows that `count` unmeasured lines from `firstLine` on will probably take; at least `count`.
    using Estimate = std::function<qint64(qsizetype firstLine, qsizetype count)>;

    struct Stretch {
        qsizetype firstLine = 0;
        qsizetype count = 0;
    };
    struct Place {
        qsizetype line = 0;
        qint64 row = 0;
    };

    explicit RowMap(Estimate estimate);

    /// Forgets every measurement.
    void reset(qsizetype lineCount);
    /// Lines first … first + removed were replaced by first … first + inserted; all of the new ones are unmeasured.
    void linesChanged(qsizetype first, qsizetype removed, qsizetype inserted);
    void setRows(qsizetype line, qint64 rows);
    /// The rows of as many lines from `firstLine` on. Costs a pass over them, whatever their number, and one over the blocks.
    void setRowsOfLines(qsizetype firstLine, const std::vector<quint32> &rows);

    [[nodiscard]] qsizetype lineCount() const;
    [[nodiscard]] qint64 rowCount() const;
    [[nodiscard]] qint64 rowsBefore(qsizetype line) const;
    /// The line that holds `row` (clamped), and which of the line's rows it is.
    [[nodiscard]] Place lineAtRow(qint64 row) const;
    [[nodiscard]] bool isMeasured(qsizetype line) const;
    /// The gap nearest to `line`, if any; it holds `line` or begins after it, else lies before it.
    [[nodiscard]] std::optional<Stretch> gapNear(qsizetype line) const;
    [[nodiscard]] qsizetype blockCount() const { return static_cast<qsizetype>(m_blocks.size()); }

    /// Aborts when the blocks do not add up; for tests and debug builds.
    void checkInvariants() const;

private:
    enum class Kind : quint8 { gap, single, mixed };
    struct Block {
        Kind kind = Kind::gap;
        qsizetype lines = 0;
        qint64 rows = 0;
        std::vector<quint32> perLine; // mixed only
    };
    struct Found {
        size_t block = 0;
        qsizetype lineInBlock = 0;
    };

    void sum() const;
    [[nodiscard]] Found find(qsizetype line) const;
    /// Makes `line` the first of a block and returns that block's index.
    size_t splitAt(qsizetype line);
    void estimateGap(size_t block, qsizetype firstLine);
    void mergeAround(size_t block);
    void mergeWithNext(size_t block);
    [[nodiscard]] static std::vector<Block> blocksOf(const std::vector<quint32> &rows);
    [[nodiscard]] static bool merges(const Block &a, const Block &b);

    Estimate m_estimate;
    std::vector<Block> m_blocks;
    mutable std::vector<qsizetype> m_firstLines;
    mutable std::vector<qint64> m_firstRows;
    mutable bool m_isSummed = false;
};
