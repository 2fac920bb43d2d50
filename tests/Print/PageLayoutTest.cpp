// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Print/PageLayout.h"

#include "Text/RandomText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// 24 columns and 9 rows.
constexpr QSizeF smallPage(2450, 1900);

PrintedText printed(QStringView text, std::optional<TextRange> range = std::nullopt)
{
    return {.text = Rope(text), .range = range.value_or(TextRange{0, text.size()}), .font = QFont(u"DejaVu Sans Mono"_s)};
}

std::vector<PageLayout::Page> pages(const PageLayout &layout)
{
    std::vector<PageLayout::Page> all;
    for (qsizetype start = layout.start(); start < layout.end(); start = all.back().next) {
        all.push_back(layout.page(start));
    }
    return all;
}

/// Rows with a line break behind each; "~" before those that go on with a line, and a line between pages.
QString shown(const PageLayout &layout, const QString &text)
{
    QString all;
    for (const PageLayout::Page &page : pages(layout)) {
        all += all.isEmpty() ? QString() : u"--\n"_s;
        for (const PageLayout::Row &row : page.rows) {
            all += (row.startsLine ? QString() : u"~"_s) + text.sliced(row.range.location, row.range.length) + u'\n';
        }
    }
    return all;
}

} // namespace

TEST(PageLayoutTest, RowsOfAPage)
{
    struct Case {
        const char *what;
        QString text;
        std::optional<TextRange> range;
        QString rows;
    };
    for (const Case &one : {
             Case{"nothing", u""_s, {}, u""_s},
             Case{"one line break", u"\n"_s, {}, u"\n"_s},
             Case{"all kinds of line breaks, none behind the last", u"a\r\nb\rc\n\nd"_s, {}, u"a\nb\nc\n\nd\n"_s},
             Case{"an empty line behind the last break is none", u"a\n"_s, {}, u"a\n"_s},
             Case{"words stay whole", u"the quick brown fox jumps over\nit"_s, {}, u"the quick brown fox \n~jumps over\nit\n"_s},
             Case{"a word as long as a row", u"x123456789012345678901234567890"_s, {}, u"x12345678901234567890123\n~4567890\n"_s},
             Case{"a line that just fits", u"x12345678901234567890123"_s, {}, u"x12345678901234567890123\n"_s},
             Case{"a part of two lines", u"one\ntwo\nthree"_s, TextRange{1, 5}, u"ne\ntw\n"_s},
             Case{"a part that ends with a line", u"one\ntwo\n"_s, TextRange{0, 4}, u"one\n"_s},
             Case{"a part within CR LF", u"a\r\nb"_s, TextRange{0, 2}, u"a\n"_s},
             Case{"the next page", u"1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n"_s, {}, u"1\n2\n3\n4\n5\n6\n7\n8\n9\n--\n10\n"_s},
             Case{"a line on two pages",
                  u"1\n2\n3\n4\n5\n6\n7\n8\nthe quick brown fox jumps over"_s,
                  {},
                  u"1\n2\n3\n4\n5\n6\n7\n8\nthe quick brown fox \n--\n~jumps over\n"_s},
         }) {
        const PageLayout layout(printed(one.text, one.range), {.hasHeader = false}, smallPage);
        EXPECT_EQ(shown(layout, one.text).toStdString(), one.rows.toStdString()) << one.what;
    }
}

TEST(PageLayoutTest, RowsKeepTheIndentationOfTheirLine)
{
    const QString text = u"    the quick brown fox jumps over the dog\n\tthe quick brown fox jumps\n"_s + QString(40, u' ') + u"x"_s;
    const PageLayout layout(printed(text), {.hasHeader = false}, smallPage);
    const double cell = layout.tabStop() / 4;
    std::vector<double> indents;
    for (const PageLayout::Row &row : layout.page(0).rows) {
        indents.push_back(row.indent / cell);
    }
    ASSERT_EQ(indents.size(), 6u);
    EXPECT_NEAR(indents[0], 0, 0.01);
    EXPECT_NEAR(indents[1], 4, 0.01);
    EXPECT_NEAR(indents[3], 4, 0.01);
    EXPECT_NEAR(indents[5], 12, 0.2) << "never more than half of the page";
}

/// Every unit that breaks no line stands in one row, in order; every line begins one; none is wider than the page; a page is the same
/// whichever was laid out before it.
TEST(PageLayoutTest, NothingIsLostOrTwice)
{
    Random random(7);
    for (int round = 0; round < 60; ++round) {
        const std::u16string units = random.text(random.below(3000));
        const QString text = QString::fromStdU16String(units).replace(u'y', QChar(random.of(std::vector{u'y', u'\u05D0', u' '})));
        PrintedText source = printed(text);
        source.font = QFont(random.of(std::vector{u"DejaVu Sans Mono"_s, u"DejaVu Sans"_s}));
        const PageLayout layout(source, {.fontSize = double(6 + random.below(10)), .hasLineNumbers = random.oneIn(2)}, smallPage);
        SCOPED_TRACE(escaped(text.toStdU16String()));
        QString seen;
        qsizetype lines = 0;
        qsizetype at = 0;
        for (const PageLayout::Page &page : pages(layout)) {
            for (const PageLayout::Row &row : page.rows) {
                ASSERT_GE(row.range.location, at);
                ASSERT_FALSE(source.text.splitsPair(row.range.location));
                for (const QChar between : QStringView(text).sliced(at, row.range.location - at)) {
                    ASSERT_TRUE(between == u'\n' || between == u'\r');
                }
                lines += row.startsLine ? 1 : 0;
                ASSERT_EQ(row.line, lines - 1);
                at = row.range.end();
            }
            ASSERT_FALSE(page.rows.empty());
        }
        const bool endsEmpty = text.isEmpty() || text.endsWith(u'\n') || text.endsWith(u'\r');
        EXPECT_EQ(lines, source.text.lineCount() - (endsEmpty ? 1 : 0));
        EXPECT_TRUE(std::ranges::all_of(text.sliced(at), [](QChar unit) { return unit == u'\n' || unit == u'\r'; }));
    }
}

TEST(PageLayoutTest, LongLinesAndManyPagesCostNoMoreThanTheyMust)
{
    const QString line = u"    int value = 0; // what it is\n"_s;
    PrintProgress progress;
    const auto starts = pageStarts(PageLayout(printed(line.repeated(5'000)), {}, smallPage), {}, progress, 100);
    ASSERT_TRUE(starts);
    EXPECT_EQ(progress.done(), 100);
    EXPECT_GT(starts->size(), 1'000u);

    const PageLayout blanks(printed(QString(300'000, u' ')), {.hasHeader = false}, smallPage);
    EXPECT_LE(blanks.page(0).next, 9 * 4096) << "blanks fit everywhere, but a row ends all the same";

    std::stop_source stopping;
    stopping.request_stop();
    EXPECT_FALSE(pageStarts(PageLayout(printed(line.repeated(1000)), {}, smallPage), stopping.get_token(), progress, 100));
}
