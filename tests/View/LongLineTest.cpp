// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LongLine.h"

#include "Text/RandomText.h"
#include "Text/Rope.h"
#include "Text/TextBoundaries.h"
#include "View/DisplayText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

LongLine::Measure byLength(TextRange range)
{
    return {static_cast<double>(range.length), 1 + range.length / 10, false};
}

QString randomLine(Random &random, qsizetype length)
{
    static const QString pieces[] = {u"a"_s, u"word"_s, u" "_s, u"\t"_s, u","_s, u"é"_s, u"e\u0301"_s, u"\U0001F600"_s, u"水"_s, u"}{"_s};
    QString line;
    while (line.length() < length) {
        line += random.of(pieces);
    }
    return line;
}

void checkCuts(const LongLine &line, const Rope &text, qsizetype segmentLength)
{
    qsizetype expected = line.range().location;
    double x = 0;
    qint64 rows = 0;
    for (int index = 0; index < line.segmentCount(); ++index) {
        const TextRange segment = line.segment(index);
        ASSERT_EQ(segment.location, expected);
        ASSERT_LE(segment.length, segmentLength + segmentLength / 2);
        ASSERT_EQ(TextBoundaries::snapped(text, segment.location), segment.location) << "a cut inside a grapheme";
        ASSERT_EQ(line.segmentAt(segment.location), index);
        ASSERT_DOUBLE_EQ(line.x(index), x);
        ASSERT_EQ(line.firstRow(index), rows);
        ASSERT_EQ(line.segmentAtRow(rows), index);
        ASSERT_EQ(line.segmentAtX(x + 0.5), index);
        expected = segment.end();
        x += line.measure(index).width;
        rows += line.measure(index).rows;
    }
    ASSERT_EQ(expected, line.range().end());
    ASSERT_EQ(line.rowCount(), rows);
}

TEST(LongLine, EditsKeepTheSegmentsWholeAndTheCutsElsewhere)
{
    constexpr qsizetype segmentLength = 64;
    for (quint32 seed = 1; seed <= 6; ++seed) {
        Random random(seed);
        const QString before = u"first line\n"_s;
        Rope text(before + randomLine(random, 3000));
        LongLine line(text, TextRange::between(before.length(), text.length()), segmentLength, byLength);
        for (int step = 0; step < 300; ++step) {
            const qsizetype from =
                std::max(before.length(), TextBoundaries::snapped(text, before.length() + random.below(line.range().length + 1)));
            qsizetype to = from;
            for (qsizetype count = random.below(step % 20 == 0 ? 150 : 4); count > 0; --count) {
                to = TextBoundaries::nextGrapheme(text, to);
            }
            const QString inserted = random.oneIn(3) ? QString() : randomLine(random, random.below(step % 30 == 0 ? 400 : 6));
            std::vector<TextRange> farBefore;
            for (int index = 0; index < line.segmentCount() && line.segment(index).end() < from; ++index) {
                farBefore.push_back(line.segment(index));
            }
            text.replace(TextRange::between(from, to), inserted);
            line.replaced(text, from, to - from, inserted.length(), byLength);
            ASSERT_EQ(line.range().end(), text.length());
            for (size_t index = 0; index < farBefore.size(); ++index) {
                ASSERT_EQ(line.segment(int(index)).location, farBefore[index].location) << "an edit moved a cut before it";
            }
            // A combining mark that came to stand at a cut is the one thing that may break the rule; the alphabet has none alone.
            ASSERT_NO_FATAL_FAILURE(checkCuts(line, text, segmentLength)) << "seed " << seed << ", step " << step;
        }
    }
}

TEST(LongLine, CutsAfterTabsThenSpacesThenMarks)
{
    const auto cut = [](const QString &text) { return LongLine::cutBefore(Rope(text), 0, 10); };
    EXPECT_EQ(cut(u"ab\tcd ef,gh0123"_s), 3);
    EXPECT_EQ(cut(u"abc cd,ef0123456"_s), 4);
    EXPECT_EQ(cut(u"abc,def;gh0123"_s), 8);
    EXPECT_EQ(cut(u"abcdefghijklmn"_s), 10);
    EXPECT_EQ(cut(u"abcdefghi\U0001F600jkl"_s), 9) << "a pair stays together";
    EXPECT_EQ(cut(u"abcdefghie\u0301jkl"_s), 9) << "a letter keeps its accent";
}

TEST(DisplayText, ReplacesWhatALayoutWouldActUponAndKeepsTheLength)
{
    const QString text = u"a\tb\u0001c\u2028d\u2029e\u0085f\u007F"_s + QChar(0xD800) + u"g\U0001F600"_s + QChar(0xDC00);
    const QString shown = displayText(Rope(text), {0, text.length()});
    EXPECT_EQ(shown, u"a\tb\u2401c\u21B5d\u00B6e\u2424f\u2421\uFFFDg\U0001F600\uFFFD"_s);
}

TEST(DisplayText, CountsCellsLineByLine)
{
    const Rope text(u"abc\n\tx\r\n\rlonger than eight cells\né水e\u0301\U0001F600\n"_s);
    const std::vector<LineCells> all{{3}, {5, 4}, {0}, {23}, {6}, {0}};
    EXPECT_EQ(countCellsOfLines(text, 0, 100, 1'000'000, 4), all);
    EXPECT_EQ(countCellsOfLines(text, text.lineStart(2), 2, 1'000'000, 4), (std::vector<LineCells>{{0}, {23}}));
    EXPECT_EQ(countCellsOfLines(text, 0, 100, 5, 4), (std::vector<LineCells>{{3}, {5, 4}})) << "the line in which the budget ends is whole";
    EXPECT_EQ(countCellsOfLines(text, text.length(), 1, 10, 4), std::vector<LineCells>{{0}});
    EXPECT_TRUE(countCells(text, {0, 6}, 4).isExact);
    EXPECT_FALSE(countCells(text, {text.lineStart(4), 5}, 4).isExact) << "how wide those are depends on the font";
    // Breaks at every place around the edges of the tree's leaves.
    for (const QString &lineBreak : {u"\n"_s, u"\r\n"_s, u"\r"_s}) {
        QString lines;
        std::vector<LineCells> expected{{0}};
        for (qsizetype length = 4000; length < 4110; ++length) {
            lines += QString(length, u' ') + u'x' + lineBreak;
            expected.insert(expected.end() - 1, {length + 1, length});
        }
        EXPECT_EQ(countCellsOfLines(Rope(lines), 0, 1000, lines.length() + 1, 4), expected);
    }
}

} // namespace
