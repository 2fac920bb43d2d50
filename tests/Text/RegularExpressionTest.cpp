// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/RegularExpression.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Case {
    const char *name;
    QString pattern;
    RegularExpression::Options options;
    QString text;
    TextRange range;
    RegularExpression::Bounds bounds;
    /// "location+length" of every match; then "(group 1)" where it is not none.
    QString expected;
};

class RegularExpressionCase : public testing::TestWithParam<Case> {};

QString found(RegularExpression &expression, QStringView text, TextRange range, RegularExpression::Bounds bounds)
{
    QStringList matches;
    expression.forEachMatch(text, range, bounds, [&](const RegularExpression &match) {
        QString line = u"%1+%2"_s.arg(match.range().location).arg(match.range().length);
        if (const auto group = match.group(1)) {
            line += u"(%1+%2)"_s.arg(group->location).arg(group->length);
        }
        matches += line;
        return true;
    });
    return matches.join(u' ');
}

} // namespace

TEST_P(RegularExpressionCase, FindsWhatItShould)
{
    auto expression = RegularExpression::compile(GetParam().pattern, GetParam().options);
    ASSERT_TRUE(expression) << expression.error().message.toStdString();
    const Case &c = GetParam();
    EXPECT_EQ(found(*expression, c.text, c.range, c.bounds), c.expected) << c.name;
    // A clone starts with the same options and without what its original has found.
    RegularExpression clone = expression->clone();
    EXPECT_EQ(found(clone, c.text, c.range, c.bounds), c.expected) << c.name << " (clone)";
}

INSTANTIATE_TEST_SUITE_P(
    All, RegularExpressionCase,
    testing::Values(
        Case{"an empty match moves on by a whole character", u"x*"_s, {}, u"a😀x"_s, {0, 4}, {}, u"0+0 1+0 3+1 4+0"_s},
        Case{"an empty pattern matches everywhere", u""_s, {}, u"ab"_s, {0, 2}, {}, u"0+0 1+0 2+0"_s},
        Case{"a group that took no part is none", u"(a)|b"_s, {}, u"ab"_s, {0, 2}, {}, u"0+1(0+1) 1+1"_s},
        Case{"dot stops at line ends", u"a.b"_s, {}, u"a\nb a\u2028b axb"_s, {0, 11}, {}, u"8+3"_s},
        Case{"dot matches line ends", u"a.b"_s, {.dotMatchesLineSeparators = true}, u"a\nb axb"_s, {0, 7}, {}, u"0+3 4+3"_s},
        Case{"anchors mean the text", u"^.|.$"_s, {}, u"ab\ncd"_s, {0, 5}, {}, u"0+1 4+1"_s},
        Case{"anchors mean lines", u"^.|.$"_s, {.anchorsMatchLines = true}, u"ab\ncd"_s, {0, 5}, {}, u"0+1 1+1 3+1 4+1"_s},
        Case{"a range's ends are anchors and hide the rest", u"^b|\\bb|(?<=a)b"_s, {}, u"aba"_s, {1, 1}, {}, u"1+1"_s},
        Case{"a window's ends are none", u"^b|\\bb"_s, {}, u"ab"_s, {1, 1}, RegularExpression::Bounds::window(), u""_s},
        Case{"a window can be looked out of", u"(?<=a)b(?=c)"_s, {}, u"abc"_s, {1, 1}, RegularExpression::Bounds::window(), u"1+1"_s}));

TEST(RegularExpression, SaysWhatIsWrongWithAPattern)
{
    const auto unclosed = RegularExpression::compile(u"a(b");
    ASSERT_FALSE(unclosed);
    EXPECT_TRUE(unclosed.error().message.contains(u"“a(b”")) << unclosed.error().message.toStdString();
    EXPECT_TRUE(unclosed.error().message.contains(u"parenthesis"));
    EXPECT_FALSE(RegularExpression::compile(u"[a"));
    EXPECT_FALSE(RegularExpression::compile(u"(?<=a*)b"));
}

TEST(RegularExpression, GivesUpHardSearchesAndGoesOnServing)
{
    const QString text = u"ok "_s + QString(60, u'a');
    auto slow = RegularExpression::compile(u"ok|(a+)+b").value();
    // What was found before stays found.
    EXPECT_EQ(found(slow, text, {0, text.size()}, {}), u"0+2"_s);
    EXPECT_EQ(slow.limitHits(), 1);
    EXPECT_FALSE(slow.findNext());
    EXPECT_EQ(found(slow, u"aab", {0, 3}, {}), u"0+3(0+2)"_s);
    EXPECT_EQ(slow.limitHits(), 1);
    EXPECT_EQ(slow.clone().limitHits(), 0);

    const QString open = u'"' + QString(200'000, u'x');
    auto deep = RegularExpression::compile(u"\"(?:[^\"\\\\]|\\\\.)*\"", {}, {.stackBytes = 100'000}).value();
    EXPECT_FALSE(deep.firstMatch(open));
    EXPECT_EQ(deep.limitHits(), 1);
}

TEST(RegularExpression, AllowsLongTextsOfHarmlessMatches)
{
    // Backtracks once or twice a word: far more steps in all than one search of a short text may take.
    const QString text = u"identifier another_one "_s.repeated(50'000);
    auto calls = RegularExpression::compile(u"[A-Za-z_]+(?=\\()|one").value();
    int matches = 0;
    calls.forEachMatch(text, {0, text.size()}, [&](const RegularExpression &) { return ++matches > 0; });
    EXPECT_EQ(matches, 50'000);
    EXPECT_EQ(calls.limitHits(), 0);

    auto strict = RegularExpression::compile(u"[A-Za-z_]+(?=\\()|one", {}, {.unitsPerExtraTick = 1'000'000'000}).value();
    strict.forEachMatch(text, {0, text.size()}, [](const RegularExpression &) { return true; });
    EXPECT_EQ(strict.limitHits(), 1) << "this text no longer shows what the extra allowance is for";
}

TEST(RegularExpression, ReplacesByTemplate)
{
    const auto replaced = [](QStringView pattern, QStringView text, QStringView format) {
        auto expression = RegularExpression::compile(pattern).value();
        QString result;
        qsizetype copied = 0;
        expression.forEachMatch(text, {0, text.size()}, [&](const RegularExpression &found) {
            const auto match = found.match();
            result += text.sliced(copied, match.range().location - copied);
            result += RegularExpression::replacement(match, text, format);
            copied = match.range().end();
            return true;
        });
        result += text.sliced(copied);
        return result;
    };
    EXPECT_EQ(replaced(u"(\\w)(\\d)?", u"a1 b", u"<$0|$1|$2|$9>"), u"<a1|a|1|> <b|b||>");
    EXPECT_EQ(replaced(u"a", u"a", u"\\$0 \\\\ $ $x \\n\\"), u"$0 \\ $ $x n");
    // One group needs one digit, ten need two.
    EXPECT_EQ(replaced(u"(a)", u"a", u"$10"), u"a0");
    EXPECT_EQ(replaced(u"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", u"abcdefghij", u"$10$01"), u"ja");

    const QString odd = u"a.b*[c]^$|\\(x){1}?+/"_s;
    EXPECT_EQ(replaced(RegularExpression::escapedPattern(odd), u'<' + odd + u'>', u"x"), u"<x>");
}
