// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextBoundaries.h"

#include "Text/Rope.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace TextBoundaries;

using namespace Qt::StringLiterals;

namespace {

/// Text, and where the bars in it stood, its ends included.
std::pair<Rope, std::vector<qsizetype>> stopsIn(const QString &barred)
{
    qsizetype stop = 0;
    std::vector<qsizetype> stops{stop};
    for (const QString &part : barred.split(u'|'))
        stops.push_back(stop += part.length());
    return {Rope(QString(barred).remove(u'|')), stops};
}

TEST(TextBoundaries, Graphemes)
{
    for (const QString &barred : {u"a|b|\n|c"_s, u"a|\r\n|\r|\r\n|\n|b"_s, u"e\u0301|a\u0308\u0323|x"_s,
                                  u"\U0001F600|a|\U0001F601|\U0001F602"_s, u"x|\U0001F468\u200D\U0001F469\u200D\U0001F467|y"_s,
                                  u"\U0001F1E9\U0001F1EA|\U0001F1EB\U0001F1F7|a"_s, u"\u1112\u1161\u11AB|\uAE00"_s, u"a|\n|\u0301|b"_s}) {
        const auto [text, stops] = stopsIn(barred);
        SCOPED_TRACE(barred.toStdString());
        for (size_t i = 0; i + 1 < stops.size(); ++i) {
            EXPECT_EQ(nextGrapheme(text, stops[i]), stops[i + 1]);
            EXPECT_EQ(previousGrapheme(text, stops[i + 1]), stops[i]);
            for (qsizetype inside = stops[i]; inside < stops[i + 1]; ++inside)
                EXPECT_EQ(snapped(text, inside), stops[i]) << inside;
        }
        EXPECT_EQ(nextGrapheme(text, text.length()), text.length());
    }
}

TEST(TextBoundaries, WordsForward)
{
    for (const QString &barred : {u"one |two  |three"_s, u"foo|(|bar_baz|, |x|);"_s, u"a|\n  |b|\r\n|c"_s, u"e\u0301te\u0301 |x"_s}) {
        const auto [text, stops] = stopsIn(barred);
        for (size_t i = 0; i + 1 < stops.size(); ++i)
            EXPECT_EQ(nextWordStart(text, stops[i]), stops[i + 1]) << barred.toStdString();
    }
}

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
