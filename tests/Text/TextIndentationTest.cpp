// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextIndentation.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr auto spaces = Indentation::Unit::spaces;
constexpr TextIndentation tabs{Indentation::Unit::tab, 0};

/// A line for each of the columns.
QString indentedBy(std::initializer_list<int> columns)
{
    QString text;
    for (const int column : columns) {
        text += QString(column, u' ') + u"a\n"_s;
    }
    return text;
}

struct Case {
    const char *description;
    QString text;
    std::optional<TextIndentation> found;
};

} // namespace

TEST(TextIndentationTest, IsWhatNineLinesInTenAgreeOn)
{
    const QString four = indentedBy({0, 4, 8, 4});
    const Case cases[] = {
        {"nothing", u""_s, std::nullopt},
        {"four lines are too few", indentedBy({0, 2, 2, 2, 2}), std::nullopt},
        {"five are not", indentedBy({0, 2, 2, 2, 2, 2}), TextIndentation{spaces, 2}},
        {"lines with nothing but blanks do not count", indentedBy({0, 2, 2, 2, 2}) + u"  \n  \n"_s, std::nullopt},
        {"a wider level", four.repeated(3), TextIndentation{spaces, 4}},
        {"three columns", indentedBy({0, 3, 6, 9, 6, 3}), TextIndentation{spaces, 3}},
        {"one step of two among many of four", four.repeated(9) + indentedBy({0, 2}), TextIndentation{spaces, 4}},
        {"two in ten differ", four.repeated(2) + indentedBy({0, 2, 0, 2}), std::nullopt},
        {"a single space is no level", indentedBy({1, 1, 1, 1, 1, 1}), std::nullopt},
        {"tabs", u"a\n\tb\n\t\tc\n"_s.repeated(3), tabs},
        {"nine lines with a tab and one without", u"\ta\n"_s.repeated(9) + u"  a\n"_s, tabs},
        {"eight with and two without", u"\ta\n"_s.repeated(8) + u"  a\n"_s.repeated(2), std::nullopt},
        {"blanks behind tabs align", u"\t\t   a\n"_s.repeated(5), tabs},
        {"a tab behind blanks is neither", u"    \ta\n"_s.repeated(5), std::nullopt},
        {"comments go on with a blank more", u"\ta\n\t/*\n\t * b\n\t */\n"_s.repeated(3) + u"/*\n * c\n * d\n */\n"_s.repeated(9), tabs},
        {"what stands below something in the line before",
         u"if a:\n    f(a,\n      b,\n      c)\n    g()\n    long_name(\n               d)\n"_s.repeated(3), TextIndentation{spaces, 4}},
        {"the context of a patch", u"-a\n a\n     b\n+    c\n         d\n"_s.repeated(5), std::nullopt},
        {"lines that end otherwise", u"a\r\n  b\r\n"_s.repeated(5), TextIndentation{spaces, 2}},
    };
    for (const Case &one : cases) {
        EXPECT_EQ(indentationOf(Rope(one.text)), one.found) << one.description;
    }
}

TEST(TextIndentationTest, LooksAtTheBeginningOfLinesAndOfTheText)
{
    const QString beginning = u"  a\n"_s.repeated(1000);
    EXPECT_EQ(indentationOf(Rope(beginning + u"\tb\n"_s.repeated(5000))), (TextIndentation{spaces, 2}));
    EXPECT_EQ(indentationOf(Rope(u"a\n"_s.repeated(30'000) + beginning)), std::nullopt);
    EXPECT_EQ(indentationOf(Rope(QString(1'000'000, u' ') + u"a\n"_s + beginning)), (TextIndentation{spaces, 2}));
}
