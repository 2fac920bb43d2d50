// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextCounts.h"

#include "RandomText.h"
#include "Text/Rope.h"
#include "Text/TextEdits.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TextCounts countsOf(const QString &text)
{
    return TextCounts::of(Rope(text), {0, text.size()});
}

std::string shown(const TextCounts &counts)
{
    return std::to_string(counts.words) + " words, " + std::to_string(counts.characters) + " characters, " + std::to_string(counts.blanks) +
           " blanks";
}

} // namespace

TEST(TextCountsTest, CountsAsPeopleDo)
{
    struct Case {
        QString text;
        TextCounts counts;
    };
    for (const auto &[text, counts] : {
             Case{u""_s, {0, 0, 0}},
             {u"It’s 3.5 km - well-known.\n"_s, {5, 25, 4}},
             {u"a\r\nb\t c\n\n"_s, {3, 5, 2}},
             {u"e\u0301te\u0301 \U0001F468\u200D\U0001F469\u200D\U0001F467!"_s, {1, 6, 1}},
             {u"snake_case камень 水曜日"_s, {3, 21, 2}},
         }) {
        EXPECT_EQ(shown(countsOf(text)), shown(counts)) << qPrintable(text);
    }
}

// A text of ASCII alone is counted by rules of its own, any other by ICU's.
TEST(TextCountsTest, CountsAsciiAsItIsCountedBesideOtherText)
{
    constexpr QStringView units = u"ab@01_:'.,;\"- \r\n/#";
    Random random(7);
    QString text;
    for (qsizetype number = 0; number < units.size() * units.size() * units.size(); ++number) {
        text.clear();
        for (qsizetype rest = number; text.size() < 3; rest /= units.size()) {
            text += units[rest % units.size()];
        }
        ASSERT_EQ(countsOf(text).words + 1, countsOf(text + u"\né"_s).words) << '"' << qPrintable(text) << '"';
    }
    for (int round = 0; round < 200; ++round) {
        text.clear();
        for (int unit = 0; unit < 300; ++unit) {
            text += random.oneIn(9) ? QChar(char16_t(random.below(0x80))) : random.of(units);
        }
        ASSERT_EQ(countsOf(text).words + 1, countsOf(text + u"\né"_s).words) << qPrintable(text);
    }
}

// Texts of many pieces: words, one word, blanks, graphemes at every cut, and no blank at all.
TEST(TextCountsTest, DoesNotCountAnythingTwiceWhereALongTextIsCut)
{
    const auto times = [](const QString &text, qsizetype count) { return std::pair(text.repeated(count), count); };
    for (const auto &[text, count] : {times(u"word’s "_s, 100000), times(u"e\u0301 "_s, 150000)}) {
        EXPECT_EQ(countsOf(text).words, count);
        EXPECT_EQ(countsOf(text).blanks, count);
    }
    EXPECT_EQ(shown(countsOf(QString(300000, u'x') + u" end"_s)), "2 words, 300004 characters, 1 blanks");
    EXPECT_EQ(shown(countsOf(QString(300000, u' ') + u"end"_s)), "1 words, 300003 characters, 300000 blanks");
    EXPECT_EQ(shown(countsOf(u"e\u0301"_s.repeated(150000))), "1 words, 150000 characters, 0 blanks");
    EXPECT_EQ(countsOf(u"слово,"_s.repeated(50000)).words, 50000);
}

TEST(TextCountsTest, WhatAnEditAddsIsWhatCountingAnewFinds)
{
    Random random(7);
    int known = 0;
    for (int round = 0; round < 3000; ++round) {
        const QString some = QString::fromStdU16String(random.text(random.below(400)));
        const Rope before(some);
        const auto place = [&] { return random.below(before.length() + 1); };
        TextEdits edits;
        qsizetype from = place();
        for (qsizetype count = 1 + random.below(2); count > 0; --count) {
            const qsizetype to = std::min(before.length(), from + random.below(6));
            edits.add(TextRange::between(from, to), Rope(QString::fromStdU16String(random.text(random.below(5)))));
            from = std::min(before.length(), to + 1 + random.below(9));
        }
        edits = edits.withWholePairs(before);
        const Rope after = edits.applied(before);
        const auto growth = TextCounts::growth({edits, before, after}, 300);
        known += growth ? 1 : 0;
        TextCounts counts = TextCounts::of(before, {0, before.length()});
        counts += growth.value_or(TextCounts());
        EXPECT_TRUE(!growth || counts == TextCounts::of(after, {0, after.length()}))
            << round << ": " << escaped(before.toString().toStdU16String()) << " to " << escaped(after.toString().toStdU16String());
    }
    EXPECT_GT(known, 2000);
}
