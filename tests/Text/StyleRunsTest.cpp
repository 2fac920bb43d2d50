// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/StyleRuns.h"
#include "RandomText.h"
#include "Text/StyleRunsCode.h"

#include <gtest/gtest.h>

namespace {

using Styles = std::vector<StyleId>;

template<class Runs>
void expectSame(const Runs &runs, const Styles &model, TextRange range)
{
    ASSERT_TRUE(runs.checkInvariants());
    ASSERT_EQ(runs.length(), qsizetype(model.size()));
    Styles read;
    StyleId previous = 0xffff;
    runs.forEachRun(range, [&](TextRange run, StyleId style) {
        EXPECT_EQ(run.location, range.location + qsizetype(read.size()));
        EXPECT_NE(style, previous);
        previous = style;
        read.insert(read.end(), size_t(run.length), style);
    });
    ASSERT_EQ(read, Styles(model.begin() + range.location, model.begin() + range.end()));
}

std::vector<TextRange> differences(const Styles &a, const Styles &b)
{
    std::vector<TextRange> result;
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i] == b[i])
            continue;
        if (!result.empty() && result.back().end() == qsizetype(i))
            ++result.back().length;
        else
            result.push_back({qsizetype(i), 1});
    }
    return result;
}

template<class Runs>
void runScript(quint32 seed)
{
    Random random(seed);
    Runs runs;
    Styles model;
    std::vector<std::pair<Runs, Styles>> snapshots;
    for (int step = 0; step < 150; ++step) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
        const qsizetype length = qsizetype(model.size());
        const qsizetype from = random.below(length + 1);
        const TextRange range{from, std::min(random.below(random.oneIn(6) ? 150 : 8), length - from)};
        if (random.oneIn(2)) {
            const qsizetype inserted = random.below(random.oneIn(6) ? 80 : 4);
            runs.replace(range, inserted);
            const StyleId style = from > 0 ? model[size_t(from) - 1] : plainStyle;
            model.erase(model.begin() + from, model.begin() + range.end());
            model.insert(model.begin() + from, size_t(inserted), style);
        } else {
            std::vector<StyleRun> wanted;
            Styles changed = model;
            for (qsizetype at = from; at < range.end(); at += wanted.back().length) {
                // Some of it stays as it is.
                const StyleId style = random.oneIn(3) ? model[size_t(at)] : StyleId(random.below(3));
                wanted.push_back({std::min(1 + random.below(5), range.end() - at), style});
                std::fill_n(changed.begin() + at, wanted.back().length, style);
            }
            ASSERT_EQ(runs.assign(range, wanted), differences(model, changed));
            model = changed;
        }
        for (const qsizetype part : {qsizetype(0), random.below(runs.length() + 1)})
            ASSERT_NO_FATAL_FAILURE(expectSame(runs, model, {part, runs.length() - part}));
        if (random.oneIn(12))
            snapshots.emplace_back(runs, model);
    }
    for (const auto &[snapshot, styles] : snapshots)
        ASSERT_NO_FATAL_FAILURE(expectSame(snapshot, styles, {0, snapshot.length()}));
}

TEST(StyleRuns, RandomChangesEqualThoseOfAVector)
{
    for (quint32 seed = 1; seed <= 60 && !testing::Test::HasFatalFailure(); ++seed) {
        runScript<RunTree<4, 4>>(seed);
        runScript<RunTree<9, 5>>(seed);
        runScript<StyleRuns>(seed);
    }
}

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
