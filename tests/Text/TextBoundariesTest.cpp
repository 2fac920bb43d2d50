// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextBoundaries.h"

#include "Text/Rope.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace TextBoundaries;

using namespace Qt::StringLiterals;

namespace {

/// Text with bars where the caret stops.
struct StopsCase {
    const char *name;
    QString text;
};

class CaretStops : public testing::TestWithParam<StopsCase> {};

TEST_P(CaretStops, ForwardAndBack)
{
    const QStringList parts = GetParam().text.split(u'|');
    const Rope text(parts.join(QString()));
    std::vector<qsizetype> stops{0};
    for (const QString &part : parts) {
        // cppcheck-suppress containerOutOfBounds; the list has one from the start
        stops.push_back(stops.back() + part.length());
    }
    for (size_t i = 0; i + 1 < stops.size(); ++i) {
        EXPECT_EQ(nextGrapheme(text, stops[i]), stops[i + 1]) << GetParam().name;
        EXPECT_EQ(previousGrapheme(text, stops[i + 1]), stops[i]) << GetParam().name;
        for (qsizetype inside = stops[i]; inside < stops[i + 1]; ++inside) {
            EXPECT_EQ(snapped(text, inside), stops[i]) << GetParam().name << " at " << inside;
        }
    }
    EXPECT_EQ(nextGrapheme(text, text.length()), text.length());
}

INSTANTIATE_TEST_SUITE_P(Texts, CaretStops,
                         testing::Values(StopsCase{"ascii", u"a|b|\n|c"_s}, StopsCase{"carriage returns", u"a|\r\n|\r|\r\n|\n|b"_s},
                                         StopsCase{"combining", u"e\u0301|a\u0308\u0323|x"_s},
                                         StopsCase{"pairs", u"\U0001F600|a|\U0001F601|\U0001F602"_s},
                                         StopsCase{"family", u"x|\U0001F468\u200D\U0001F469\u200D\U0001F467|y"_s},
                                         StopsCase{"flags", u"\U0001F1E9\U0001F1EA|\U0001F1EB\U0001F1F7|a"_s},
                                         StopsCase{"hangul", u"\u1112\u1161\u11AB|\uAE00"_s},
                                         StopsCase{"mark after break", u"a|\n|\u0301|b"_s}));

/// `text` with bars where Control and the arrow keys stop.
class WordStops : public testing::TestWithParam<StopsCase> {};

TEST_P(WordStops, Forward)
{
    const QStringList parts = GetParam().text.split(u'|');
    const Rope text(parts.join(QString()));
    qsizetype at = 0;
    for (const QString &part : parts) {
        EXPECT_EQ(nextWordStart(text, at), at + part.length()) << GetParam().name << " from " << at;
        at += part.length();
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, WordStops,
                         testing::Values(StopsCase{"words", u"one |two  |three"_s}, StopsCase{"marks", u"foo|(|bar_baz|, |x|);"_s},
                                         StopsCase{"lines", u"a|\n  |b|\r\n|c"_s}, StopsCase{"accents", u"e\u0301te\u0301 |x"_s}));

TEST(TextBoundaries, WordsBackwardAndAround)
{
    const Rope text(u"one two, drei\n  \n水曜日は"_s);
    EXPECT_EQ(previousWordStart(text, 13), 9);
    EXPECT_EQ(previousWordStart(text, 9), 7);
    EXPECT_EQ(previousWordStart(text, 7), 4);
    EXPECT_EQ(previousWordStart(text, 16), 13) << "over the blanks of a line to the end of the one before";
    EXPECT_EQ(previousWordStart(text, 0), 0);
    EXPECT_EQ(wordAt(text, 5), (TextRange{4, 3}));
    EXPECT_EQ(wordAt(text, 7), (TextRange{7, 1}));
    EXPECT_EQ(wordAt(text, 13), (TextRange{9, 4})) << "at a line's end the word before it";
    EXPECT_EQ(wordAt(text, 17), (TextRange{17, 3})) << "a language without blanks is divided by its words";
    EXPECT_EQ(wordAt(Rope(), 0), (TextRange{0, 0}));
}

TEST(TextBoundaries, ReadOnlyAnExcerpt)
{
    // One grapheme longer than the excerpt is cut rather than read whole.
    const QString text = u"a"_s + QString(5000, QChar(0x0301)) + u"b"_s;
    const qsizetype end = nextGrapheme(Rope(text), 0);
    EXPECT_GT(end, 64);
    EXPECT_LE(end, 130);
}

} // namespace
