// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineIndex.h"

#include "Files/LineEnding.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace {

using Starts = std::vector<qsizetype>;

/// The definition, unit by unit.
Starts naiveStarts(QStringView text)
{
    Starts starts = {0};
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] == u'\n' || (text[at] == u'\r' && (at + 1 == text.size() || text[at + 1] != u'\n'))) {
            starts.push_back(at + 1);
        }
    }
    return starts;
}

LineEnding naiveEnding(const QString &text)
{
    const qsizetype pairs = text.count(u"\r\n"_s);
    const qsizetype lf = text.count(u'\n') - pairs;
    const qsizetype cr = text.count(u'\r') - pairs;
    return pairs > 0 && pairs >= lf && pairs >= cr ? LineEnding::crlf : cr > lf ? LineEnding::cr : LineEnding::lf;
}

} // namespace

TEST(LineIndex, ClampsWhatIsOutsideTheText)
{
    const LineIndex index;
    const Rope text(u"a\nbb\r\nc"_s);
    EXPECT_EQ(index.startOfLine(-5, text), 0);
    EXPECT_EQ(index.startOfLine(1000, text), 6);
    EXPECT_EQ(index.lineNumber(1000, text), 3);
    EXPECT_EQ(index.lineNumber(-1, text), 1);
    EXPECT_EQ(index.lineNumber(5, text), 2) << "between CR and LF";
    EXPECT_EQ(index.lineNumber(0, Rope()), 1);
}

TEST(LineIndex, AgreesWithTheListThroughRandomEdits)
{
    const unsigned seed = 4711;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const QString pieces[] = {u"\r"_s, u"\n"_s, u"\r\n"_s, u"word "_s, u"日\u2028\u0085\f"_s, QString(5000, u'x')};
    QString text;
    Rope rope;
    for (int round = 0; round < 300; ++round) {
        const auto at = qsizetype(random() % size_t(text.size() + 1));
        const qsizetype length = std::min<qsizetype>(qsizetype(random() % 300), text.size() - at);
        const QString &piece = pieces[random() % std::size(pieces)];
        text.replace(at, length, piece);
        rope.replace({at, length}, piece);

        const Starts starts = naiveStarts(text);
        ASSERT_EQ(TextMetrics::lineStarts(rope), starts);
        ASSERT_EQ(detectLineEnding(rope), naiveEnding(text));
        ASSERT_EQ(detectLineEnding(text), naiveEnding(text));
        for (int probe = 0; probe < 20; ++probe) {
            const auto offset = qsizetype(random() % size_t(text.size() + 1));
            const auto line = std::upper_bound(starts.begin(), starts.end(), offset) - starts.begin();
            ASSERT_EQ(LineIndex().lineNumber(offset, rope), line);
            ASSERT_EQ(LineIndex().startOfLine(line, rope), starts[size_t(line - 1)]);
        }
    }
}

TEST(LineEnding, IsKeptByItsBreak)
{
    EXPECT_EQ(lineEndingWithRawValue(u"\r\n"), LineEnding::crlf);
    EXPECT_EQ(lineEndingWithRawValue(u"\n\r"), std::nullopt);
}
