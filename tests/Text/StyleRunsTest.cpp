// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/StyleRuns.h"

#include <gtest/gtest.h>

namespace {

TEST(StyleRuns, RunsLongerThanALeafEntryGoOn)
{
    StyleRuns runs;
    runs.replace({0, 0}, 10'000'000);
    const StyleRun coloured{300'000, 7};
    EXPECT_EQ(runs.assign({1'000'000, 300'000}, {&coloured, 1}).size(), 1U);
    std::vector<StyleRun> read;
    runs.forEachRun({0, runs.length()}, [&](TextRange range, StyleId style) { read.push_back({range.length, style}); });
    EXPECT_EQ(read, (std::vector<StyleRun>{{1'000'000, 0}, {300'000, 7}, {8'700'000, 0}}));
    treeCounters = {};
    for (int i = 0; i < 1000; ++i)
        runs.replace({5'000'000 + i, 0}, 1);
    EXPECT_LE(treeCounters.leavesMade + treeCounters.nodesMade, 8U);
}

/// Lengths around the limits of an entry, in every order and at every place.
TEST(StyleRuns, LongStretchesGoBesideShortOnesOfTheirStyle)
{
    const qsizetype lengths[] = {1, 32'767, 32'768, 65'535, 65'536, 98'303, 200'000};
    for (const qsizetype first : lengths) {
        for (const qsizetype second : lengths) {
            for (const qsizetype at : {qsizetype(0), first / 2, first}) {
                StyleRuns runs;
                runs.replace({0, 0}, first);
                runs.replace({at, 0}, second);
                ASSERT_TRUE(runs.checkInvariants()) << second << " in " << first << " at " << at;
                runs.replace({at, 1}, 70'000);
                ASSERT_TRUE(runs.checkInvariants()) << "70000 after " << second << " in " << first << " at " << at;
                ASSERT_EQ(runs.length(), first + second + 69'999);
            }
        }
    }
}

TEST(StyleTable, EqualAttributesHaveOneNumber)
{
    StyleTable table;
    const StyleId black = table.intern({.foreground = 0});
    EXPECT_NE(black, plainStyle);
    for (quint32 colour = 1; table.count() < 65'536; ++colour)
        (void)table.intern({.background = colour});
    EXPECT_EQ(table.intern({.isBold = true}), plainStyle) << "a full table";
    EXPECT_EQ(table.intern({.foreground = 0}), black);
}

} // namespace
