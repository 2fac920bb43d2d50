// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/RowMap.h"

#include "Text/RandomText.h"

#include <gtest/gtest.h>

namespace {

/// A plain list of rows a line, 0 where nothing is known.
class RowMapModel {
public:
    std::vector<qint64> rows = std::vector<qint64>(1, 0);

    void compare(const RowMap &map) const
    {
        map.checkInvariants();
        ASSERT_EQ(map.lineCount(), std::ssize(rows));
        qint64 before = 0;
        bool isKnown = true;
        for (size_t line = 0; line < rows.size(); ++line) {
            const auto number = static_cast<qsizetype>(line);
            ASSERT_EQ(map.isMeasured(number), rows[line] > 0) << "line " << line;
            if (isKnown) {
                ASSERT_EQ(map.rowsBefore(number), before) << "line " << line;
            }
            const RowMap::Place place = map.lineAtRow(map.rowsBefore(number));
            ASSERT_EQ(place.line, number);
            ASSERT_EQ(place.row, 0);
            if (rows[line] > 1 && isKnown) {
                ASSERT_EQ(map.lineAtRow(before + rows[line] - 1).row, rows[line] - 1);
            }
            isKnown = isKnown && rows[line] > 0;
            before += rows[line];
        }
        const bool hasGap = std::find(rows.begin(), rows.end(), 0) != rows.end();
        ASSERT_EQ(map.gapNear(0).has_value(), hasGap);
        if (!hasGap) {
            ASSERT_EQ(map.rowCount(), before);
        }
    }
};

class RowMapWalk : public testing::TestWithParam<unsigned> {};

TEST_P(RowMapWalk, AgreesWithAPlainList)
{
    Random random(GetParam());
    RowMap map([](qsizetype, qsizetype count) { return count + count / 3; });
    RowMapModel model;
    for (int step = 0; step < 400; ++step) {
        const qsizetype lines = std::ssize(model.rows);
        const qsizetype line = random.below(lines);
        switch (random.below(5)) {
        case 0: {
            const qsizetype removed = std::min(random.below(4), lines - line - 1);
            const qsizetype inserted = random.below(step % 50 == 0 ? 300 : 5);
            map.linesChanged(line, removed, inserted);
            const auto at = model.rows.begin() + line;
            model.rows.insert(model.rows.erase(at, at + removed + 1), static_cast<size_t>(inserted) + 1, 0);
            break;
        }
        case 1: {
            const qsizetype count = std::min<qsizetype>(1 + random.below(step % 3 == 0 ? 700 : 80), lines - line);
            std::vector<quint32> rows(static_cast<size_t>(count), 1);
            for (qsizetype odd = random.below(3); odd > 0; --odd) {
                rows[size_t(random.below(count))] = quint32(1 + random.below(4));
            }
            map.setRowsOfLines(line, rows);
            std::copy(rows.begin(), rows.end(), model.rows.begin() + line);
            break;
        }
        default: {
            const qint64 rows = 1 + random.below(3);
            map.setRows(line, rows);
            model.rows[static_cast<size_t>(line)] = rows;
        }
        }
        ASSERT_NO_FATAL_FAILURE(model.compare(map)) << "seed " << GetParam() << ", step " << step;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RowMapWalk, testing::Range(1U, 9U));

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
