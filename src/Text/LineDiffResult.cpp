// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineDiff.h"

#include <algorithm>

namespace LineDiff {

Result::Result(LineTable left, LineTable right, const std::vector<Match> &matches) : m_left(std::move(left)), m_right(std::move(right))
{
    qsizetype leftDone = 0;
    qsizetype rightDone = 0;
    for (const Match &match : matches) {
        addChange(match.left - leftDone, match.right - rightDone);
        add(Row::Kind::equal, match.count);
        leftDone = match.left + match.count;
        rightDone = match.right + match.count;
    }
    addChange(m_left.count() - leftDone, m_right.count() - rightDone);
}

void Result::addChange(qsizetype deleted, qsizetype inserted)
{
    if (deleted > 0 || inserted > 0) {
        m_changeStarts.push_back(rowCount());
    }
    const qsizetype pairs = std::min(deleted, inserted);
    add(Row::Kind::modified, pairs);
    add(Row::Kind::deleted, deleted - pairs);
    add(Row::Kind::inserted, inserted - pairs);
    m_removedCount += deleted;
    m_addedCount += inserted;
}

void Result::add(Row::Kind kind, qsizetype count)
{
    if (count == 0) {
        return;
    }
    if (!m_runs.empty() && m_runs.back().kind == kind) {
        m_runs.back().rowCount += count;
        return;
    }
    Run run{.kind = kind, .firstRow = rowCount(), .rowCount = count};
    if (!m_runs.empty()) {
        const Run &last = m_runs.back();
        run.leftLine = last.leftLine + (last.has(Side::left) ? last.rowCount : 0);
        run.rightLine = last.rightLine + (last.has(Side::right) ? last.rowCount : 0);
    }
    m_runs.push_back(run);
}

const Run &Result::runAt(qsizetype row) const
{
    return *std::prev(std::ranges::upper_bound(m_runs, row, {}, &Run::firstRow));
}

Row Result::row(qsizetype row) const
{
    const Run &run = runAt(row);
    const qsizetype inRun = row - run.firstRow;
    Row result{.kind = run.kind};
    if (run.has(Side::left)) {
        result.leftNumber = numberOfLine(run.leftLine + inRun);
    }
    if (run.has(Side::right)) {
        result.rightNumber = numberOfLine(run.rightLine + inRun);
    }
    return result;
}

std::optional<TextRange> Result::lineRange(Side side, qsizetype row) const
{
    const Run &run = runAt(row);
    return run.has(side) ? std::optional(lines(side).range(run.line(side) + row - run.firstRow)) : std::nullopt;
}

QString Result::text(Side side, qsizetype row) const
{
    const auto range = lineRange(side, row);
    return range ? lines(side).text().toString(*range) : QString();
}

InlineDiff::Spans Result::emphasis(qsizetype row) const
{
    return runAt(row).kind == Row::Kind::modified ? InlineDiff::spans(leftText(row), rightText(row)) : InlineDiff::Spans();
}

} // namespace LineDiff
