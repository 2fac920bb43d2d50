// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimBlock.h"

VimBlock VimBlock::between(const VimLines &lines, qsizetype anchor, qsizetype head, bool toEnds)
{
    const VimLines::Cells one = lines.cells(anchor);
    const VimLines::Cells other = lines.cells(head);
    return {.firstLine = lines.start(std::min(anchor, head)),
            .lastLine = lines.start(std::max(anchor, head)),
            .left = std::min(one.first, other.first),
            .right = toEnds ? VimLines::endless : std::max(one.last, other.last)};
}

VimBlock::Row VimBlock::row(const VimLines &lines, qsizetype line) const
{
    Row row{.line = line};
    const qsizetype end = lines.end(line);
    qsizetype place = line;
    qsizetype cell = 0;
    while (place < end && cell + lines.width(place, cell) <= left) {
        cell += lines.width(place, cell);
        place = lines.after(place);
    }
    row.range = {place, 0};
    if (place == end) {
        row.missing = left - cell;
        row.isShort = row.missing > 0;
        return row;
    }
    row.cellsBefore = left - cell;
    while (place < end && cell <= right) {
        cell += lines.width(place, cell);
        place = lines.after(place);
    }
    row.range = TextRange::between(row.range.location, place);
    row.cellsBehind = goesToEnds() ? 0 : std::max<qsizetype>(cell - right - 1, 0);
    row.missing = goesToEnds() ? 0 : std::max<qsizetype>(right + 1 - cell, 0);
    return row;
}

std::vector<VimBlock::Row> VimBlock::rows(const VimLines &lines) const
{
    std::vector<Row> all;
    for (qsizetype line = firstLine;; line = lines.next(line)) {
        all.push_back(row(lines, line));
        if (line >= lastLine || lines.isLast(line)) {
            return all;
        }
    }
}

qsizetype VimBlock::widthToEnds(const VimLines &lines) const
{
    qsizetype behind = left;
    for (qsizetype line = firstLine;; line = lines.next(line)) {
        behind = std::max(behind, lines.cells(lines.end(line)).first);
        if (line >= lastLine || lines.isLast(line)) {
            return behind - left;
        }
    }
}

QStringList VimBlock::text(const VimLines &lines) const
{
    QStringList all;
    const qsizetype missing = goesToEnds() ? widthToEnds(lines) + 1 : width();
    for (const Row &row : rows(lines)) {
        QString text = row.isShort ? QString(missing, u' ') : QString();
        const bool hasPart = row.cellsBefore > 0 || row.cellsBehind > 0;
        qsizetype cell = left - row.cellsBefore;
        for (qsizetype place = row.range.location; place < row.range.end(); place = lines.after(place)) {
            const qsizetype width = lines.width(place, cell);
            const qsizetype from = std::max(cell, left);
            const qsizetype behind = std::min(cell + width, goesToEnds() ? VimLines::endless : right + 1);
            const bool isPart = hasPart && behind - from < width;
            text += isPart ? QString(behind - from, u' ') : lines.text().toString(TextRange::between(place, lines.after(place)));
            cell += width;
        }
        all << text;
    }
    return all;
}
