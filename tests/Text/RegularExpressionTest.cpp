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
    QString text;
    /// "location+length" of every match; then "(group 1)" where it is not none.
    QString expected;
    RegularExpression::Options options = {};
    std::optional<TextRange> range = {};
    RegularExpression::Bounds bounds = {};
};

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

TEST(RegularExpression, FindsWhatItShould)
{
    const auto window = RegularExpression::Bounds::window();
    const Case cases[] = {
        {"an empty match moves on by a whole character", u"x*"_s, u"a😀x"_s, u"0+0 1+0 3+1 4+0"_s},
        {"an empty pattern matches everywhere", u""_s, u"ab"_s, u"0+0 1+0 2+0"_s},
        {"a group that took no part is none", u"(a)|b"_s, u"ab"_s, u"0+1(0+1) 1+1"_s},
        {"dot stops at line ends", u"a.b"_s, u"a\nb a\u2028b axb"_s, u"8+3"_s},
        {"dot matches line ends", u"a.b"_s, u"a\nb axb"_s, u"0+3 4+3"_s, {.dotMatchesLineSeparators = true}},
        {"anchors mean the text", u"^.|.$"_s, u"ab\ncd"_s, u"0+1 4+1"_s},
        {"anchors mean lines", u"^.|.$"_s, u"ab\ncd"_s, u"0+1 1+1 3+1 4+1"_s, {.anchorsMatchLines = true}},
        {"a range's ends are anchors and hide the rest", u"^b|\\bb|(?<=a)b"_s, u"aba"_s, u"1+1"_s, {}, TextRange{1, 1}},
        {"a window's ends are none", u"^b|\\bb"_s, u"ab"_s, u""_s, {}, TextRange{1, 1}, window},
        {"a window can be looked out of", u"(?<=a)b(?=c)"_s, u"abc"_s, u"1+1"_s, {}, TextRange{1, 1}, window},
    };
    for (const Case &c : cases) {
        // A clone starts with the same options.
        RegularExpression expression = RegularExpression::compile(c.pattern, c.options).value().clone();
        EXPECT_EQ(found(expression, c.text, c.range.value_or(TextRange{0, c.text.size()}), c.bounds), c.expected) << c.name;
    }
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
    const auto replaced = [](QStringView pattern, const QString &text, QStringView format) {
        return RegularExpression::replacement(RegularExpression::compile(pattern)->firstMatch(text).value(), text, format);
    };
    EXPECT_EQ(replaced(u"(\\w)(\\d)?", u" a1"_s, u"<$0|$1|$2|$9>"), u"<a1|a|1|>"_s);
    EXPECT_EQ(replaced(u"(\\w)(\\d)?", u" b"_s, u"<$0|$1|$2|$9>"), u"<b|b||>"_s);
    EXPECT_EQ(replaced(u"a", u"a"_s, u"\\$0 \\\\ $ $x \\n\\"), u"$0 \\ $ $x n"_s);
    // One group needs one digit, ten need two.
    EXPECT_EQ(replaced(u"(a)", u"a"_s, u"$10"), u"a0"_s);
    EXPECT_EQ(replaced(u"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", u"abcdefghij"_s, u"$10$01"), u"ja"_s);

    const QString odd = u"a.b*[c]^$|\\(x){1}?+/"_s;
    EXPECT_EQ(replaced(RegularExpression::escapedPattern(odd), u'<' + odd + u'>', u"$0"), odd);
}
