// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/RowMap.h"

#include "Text/RandomText.h"

#include <gtest/gtest.h>

namespace {

/// `rows` is a plain list of rows a line, 0 where nothing is known.
void expectSame(const RowMap &map, const std::vector<qint64> &rows)
{
    map.checkInvariants();
    ASSERT_EQ(map.lineCount(), std::ssize(rows));
    const qsizetype gap = std::ranges::find(rows, 0) - rows.begin();
    ASSERT_EQ(map.gapNear(0).has_value(), gap < map.lineCount());
    qint64 before = 0;
    for (qsizetype line = 0; line < map.lineCount(); ++line) {
        const qint64 own = rows[size_t(line)];
        const qint64 first = map.rowsBefore(line);
        ASSERT_TRUE(first == before || line > gap) << first << " rows before line " << line << ", not " << before;
        ASSERT_EQ(map.isMeasured(line), own > 0) << "line " << line;
        for (const qint64 row : {qint64(0), std::max<qint64>(own - 1, 0)}) {
            ASSERT_EQ(map.lineAtRow(first + row).line, line);
            ASSERT_EQ(map.lineAtRow(first + row).row, row);
        }
        before += own;
    }
    ASSERT_TRUE(map.rowCount() == before || gap < map.lineCount());
}

TEST(RowMap, RandomChangesEqualThoseOfAPlainList)
{
    for (quint32 seed = 1; seed <= 8; ++seed) {
        Random random(seed);
        RowMap map([](qsizetype, qsizetype count) { return count + count / 3; });
        std::vector<qint64> model(1, 0);
        for (int step = 0; step < 400; ++step) {
            const qsizetype lines = std::ssize(model);
            const qsizetype line = random.below(lines);
            switch (random.below(5)) {
            case 0: {
                const qsizetype removed = std::min(random.below(4), lines - line - 1);
                const qsizetype inserted = random.below(step % 50 == 0 ? 300 : 5);
                map.linesChanged(line, removed, inserted);
                const auto at = model.begin() + line;
                model.insert(model.erase(at, at + removed + 1), size_t(inserted) + 1, 0);
                break;
            }
            case 1: {
                const qsizetype count = std::min<qsizetype>(1 + random.below(step % 3 == 0 ? 700 : 80), lines - line);
                std::vector<quint32> rows(size_t(count), 1);
                for (qsizetype odd = random.below(3); odd > 0; --odd) {
                    rows[size_t(random.below(count))] = quint32(1 + random.below(4));
                }
                map.setRowsOfLines(line, rows);
                std::ranges::copy(rows, model.begin() + line);
                break;
            }
            default:
                model[size_t(line)] = 1 + random.below(3);
                map.setRows(line, model[size_t(line)]);
            }
            ASSERT_NO_FATAL_FAILURE(expectSame(map, model)) << "seed " << seed << ", step " << step;
        }
    }
}

TEST(RowMap, ManyMeasuredLinesStayFewBlocks)
{
    RowMap map([](qsizetype, qsizetype count) { return count; });
    map.reset(1'000'000);
    for (qsizetype line = 400'000; line < 410'000; ++line) {
        map.setRows(line, line % 100 == 0 ? 7 : 1);
    }
    EXPECT_LT(map.blockCount(), 250);
    map.setRowsOfLines(0, std::vector<quint32>(400'000, 1));
    map.setRowsOfLines(410'000, std::vector<quint32>(590'000, 1));
    EXPECT_FALSE(map.gapNear(5).has_value());
    EXPECT_EQ(map.rowCount(), 1'000'000 + 100 * 6);
}

} // namespace
