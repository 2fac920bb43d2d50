// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/RowMap.h"

#include <algorithm>
#include <numeric>

namespace {
constexpr qsizetype mixedLimit = 512;
// Shorter stretches of single rows join a mixed block instead of standing between two of them.
constexpr qsizetype shortStretch = 64;
} // namespace

RowMap::RowMap(Estimate estimate) : m_estimate(std::move(estimate))
{
    m_blocks.push_back({.kind = Kind::gap, .lines = 1, .rows = 1, .perLine = {}});
}

void RowMap::reset(qsizetype lineCount)
{
    m_blocks.clear();
    m_blocks.push_back({.kind = Kind::gap, .lines = lineCount, .rows = lineCount, .perLine = {}});
    estimateGap(0, 0);
    m_isSummed = false;
}

void RowMap::sum() const
{
    if (m_isSummed) {
        return;
    }
    m_firstLines.assign(1, 0);
    m_firstRows.assign(1, 0);
    for (const Block &block : m_blocks) {
        m_firstLines.push_back(m_firstLines.back() + block.lines);
        m_firstRows.push_back(m_firstRows.back() + block.rows);
    }
    m_isSummed = true;
}

RowMap::Found RowMap::find(qsizetype line) const
{
    sum();
    const auto after = std::upper_bound(m_firstLines.begin(), m_firstLines.end() - 1, line);
    const auto block = static_cast<size_t>(after - m_firstLines.begin()) - 1;
    return {block, line - m_firstLines[block]};
}

qsizetype RowMap::lineCount() const
{
    sum();
    return m_firstLines.back();
}

qint64 RowMap::rowCount() const
{
    sum();
    return m_firstRows.back();
}

qint64 RowMap::rowsBefore(qsizetype line) const
{
    if (line >= lineCount()) {
        return rowCount();
    }
    const Found found = find(std::max<qsizetype>(line, 0));
    const Block &block = m_blocks[found.block];
    qint64 rows = m_firstRows[found.block];
    switch (block.kind) {
    case Kind::single:
        return rows + found.lineInBlock;
    case Kind::mixed:
        return std::accumulate(block.perLine.begin(), block.perLine.begin() + found.lineInBlock, rows);
    case Kind::gap:
        break;
    }
    // Inside a gap the estimate is spread evenly; at least one row a line keeps both directions in step.
    return rows + block.rows * found.lineInBlock / block.lines;
}

RowMap::Place RowMap::lineAtRow(qint64 row) const
{
    row = std::clamp<qint64>(row, 0, rowCount() - 1);
    const auto after = std::upper_bound(m_firstRows.begin(), m_firstRows.end() - 1, row);
    const auto index = static_cast<size_t>(after - m_firstRows.begin()) - 1;
    const Block &block = m_blocks[index];
    const qsizetype first = m_firstLines[index];
    qint64 rest = row - m_firstRows[index];
    switch (block.kind) {
    case Kind::single:
        return {first + rest, 0};
    case Kind::mixed: {
        qsizetype line = 0;
        while (rest >= block.perLine[static_cast<size_t>(line)]) {
            rest -= block.perLine[static_cast<size_t>(line)];
            ++line;
        }
        return {first + line, rest};
    }
    case Kind::gap:
        break;
    }
    // The last line whose rows begin at or before `rest`.
    const qsizetype inBlock = ((rest + 1) * block.lines - 1) / block.rows;
    return {first + inBlock, row - rowsBefore(first + inBlock)};
}

bool RowMap::isMeasured(qsizetype line) const
{
    return m_blocks[find(line).block].kind != Kind::gap;
}

std::optional<RowMap::Stretch> RowMap::gapNear(qsizetype line) const
{
    const size_t here = find(std::clamp<qsizetype>(line, 0, lineCount() - 1)).block;
    for (size_t block = here; block < m_blocks.size(); ++block) {
        if (m_blocks[block].kind == Kind::gap) {
            return Stretch{m_firstLines[block], m_blocks[block].lines};
        }
    }
    for (size_t block = here; block-- > 0;) {
        if (m_blocks[block].kind == Kind::gap) {
            return Stretch{m_firstLines[block], m_blocks[block].lines};
        }
    }
    return std::nullopt;
}

void RowMap::estimateGap(size_t block, qsizetype firstLine)
{
    if (m_blocks[block].kind == Kind::gap) {
        m_blocks[block].rows = std::max<qint64>(m_blocks[block].lines, m_estimate(firstLine, m_blocks[block].lines));
    }
}

size_t RowMap::splitAt(qsizetype line)
{
    if (line >= lineCount()) {
        return m_blocks.size();
    }
    const Found found = find(line);
    if (found.lineInBlock == 0) {
        return found.block;
    }
    const qsizetype first = m_firstLines[found.block];
    Block &head = m_blocks[found.block];
    Block tail{.kind = head.kind, .lines = head.lines - found.lineInBlock, .rows = 0, .perLine = {}};
    head.lines = found.lineInBlock;
    if (head.kind == Kind::single) {
        head.rows = head.lines;
        tail.rows = tail.lines;
    } else if (head.kind == Kind::mixed) {
        tail.perLine.assign(head.perLine.begin() + head.lines, head.perLine.end());
        head.perLine.resize(static_cast<size_t>(head.lines));
        tail.rows = std::accumulate(tail.perLine.begin(), tail.perLine.end(), qint64{0});
        head.rows -= tail.rows;
    }
    m_blocks.insert(m_blocks.begin() + static_cast<qsizetype>(found.block) + 1, std::move(tail));
    estimateGap(found.block, first);
    estimateGap(found.block + 1, line);
    m_isSummed = false;
    return found.block + 1;
}

void RowMap::linesChanged(qsizetype first, qsizetype removed, qsizetype inserted)
{
    const size_t from = splitAt(first);
    const size_t to = splitAt(first + removed + 1);
    Block gap{.kind = Kind::gap, .lines = inserted + 1, .rows = inserted + 1, .perLine = {}};
    m_blocks.erase(m_blocks.begin() + static_cast<qsizetype>(from), m_blocks.begin() + static_cast<qsizetype>(to));
    m_blocks.insert(m_blocks.begin() + static_cast<qsizetype>(from), std::move(gap));
    estimateGap(from, first);
    m_isSummed = false;
    mergeAround(from);
}

void RowMap::setRows(qsizetype line, qint64 rows)
{
    const Found found = find(line);
    Block &block = m_blocks[found.block];
    if (block.kind == Kind::single && rows == 1) {
        return;
    }
    if (block.kind != Kind::mixed) {
        setRowsOfLines(line, {static_cast<quint32>(rows)});
        return;
    }
    quint32 &entry = block.perLine[static_cast<size_t>(found.lineInBlock)];
    if (entry != rows) {
        block.rows += rows - entry;
        entry = static_cast<quint32>(rows);
        m_isSummed = false;
    }
}

void RowMap::setRowsOfLines(qsizetype firstLine, const std::vector<quint32> &rows)
{
    const auto from = static_cast<qsizetype>(splitAt(firstLine));
    const auto to = static_cast<qsizetype>(splitAt(firstLine + std::ssize(rows)));
    std::vector<Block> blocks = blocksOf(rows);
    const auto last = static_cast<size_t>(from) + blocks.size() - 1;
    const auto rest = m_blocks.erase(m_blocks.begin() + from, m_blocks.begin() + to);
    m_blocks.insert(rest, std::make_move_iterator(blocks.begin()), std::make_move_iterator(blocks.end()));
    m_isSummed = false;
    mergeAround(last);
    mergeAround(static_cast<size_t>(from));
}

std::vector<RowMap::Block> RowMap::blocksOf(const std::vector<quint32> &rows)
{
    std::vector<Block> blocks;
    for (auto at = rows.begin(); at != rows.end();) {
        const auto ones = std::find_if(at, rows.end(), [](quint32 count) { return count != 1; });
        if (ones - at > shortStretch || ones == rows.end()) {
            blocks.push_back({.kind = Kind::single, .lines = ones - at, .rows = ones - at, .perLine = {}});
            at = ones;
            continue;
        }
        // Up to the next long stretch of single rows.
        auto end = ones;
        while (end != rows.end() && end - at < mixedLimit) {
            const auto next = std::find_if(end + 1, rows.end(), [](quint32 count) { return count != 1; });
            ++end;
            if (next - end > shortStretch) {
                break;
            }
            end = next == rows.end() ? end : std::min(next, at + mixedLimit);
        }
        blocks.push_back({.kind = Kind::mixed, .lines = end - at, .rows = std::accumulate(at, end, qint64{0}), .perLine = {at, end}});
        at = end;
    }
    return blocks;
}

bool RowMap::merges(const Block &a, const Block &b)
{
    if (a.kind == Kind::gap || b.kind == Kind::gap) {
        return a.kind == b.kind;
    }
    if (a.kind == Kind::single && b.kind == Kind::single) {
        return true;
    }
    const auto joins = [](const Block &block) { return block.kind == Kind::mixed || block.lines <= shortStretch; };
    return joins(a) && joins(b) && a.lines + b.lines <= mixedLimit;
}

void RowMap::mergeAround(size_t block)
{
    mergeWithNext(block);
    if (block > 0) {
        mergeWithNext(block - 1);
    }
}

void RowMap::mergeWithNext(size_t block)
{
    if (block + 1 >= m_blocks.size() || !merges(m_blocks[block], m_blocks[block + 1])) {
        return;
    }
    Block &a = m_blocks[block];
    Block &b = m_blocks[block + 1];
    if (a.kind == Kind::mixed || b.kind == Kind::mixed) {
        const auto spellOut = [](Block &single) {
            if (single.kind == Kind::single) {
                single.perLine.assign(static_cast<size_t>(single.lines), 1);
                single.kind = Kind::mixed;
            }
        };
        spellOut(a);
        spellOut(b);
        a.perLine.insert(a.perLine.end(), b.perLine.begin(), b.perLine.end());
    }
    a.lines += b.lines;
    a.rows += b.rows;
    m_blocks.erase(m_blocks.begin() + static_cast<qsizetype>(block) + 1);
    m_isSummed = false;
}

void RowMap::checkInvariants() const
{
    for (const Block &block : m_blocks) {
        const bool isRight =
            block.lines > 0 && block.rows >= block.lines && (block.kind != Kind::single || block.rows == block.lines) &&
            (block.kind != Kind::mixed || (std::ssize(block.perLine) == block.lines &&
                                           std::accumulate(block.perLine.begin(), block.perLine.end(), qint64{0}) == block.rows));
        if (!isRight) {
            qFatal("RowMap: a block does not add up");
        }
    }
}
