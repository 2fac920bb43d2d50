// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// A view while others edit its text, and while its size and font change.

#include "ViewFixture.h"

#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct FollowCase {
    const char *name;
    QString before;
    TextRange range;
    QString text;
    QString after;
};

TEST(Following, CaretAndSelectionGoWithTheirText)
{
    const FollowCase cases[] = {
        {"text before a selection stays outside", u"a^bc|d"_s, {1, 0}, u"X"_s, u"aX^bc|d"_s},
        {"and behind it", u"a^bc|d"_s, {3, 0}, u"X"_s, u"a^bc|Xd"_s},
        {"backward too", u"a|bc^d"_s, {1, 0}, u"X"_s, u"aX|bc^d"_s},
        {"text at the caret goes behind it", u"a|b"_s, {1, 0}, u"X"_s, u"a|Xb"_s},
        {"never into a grapheme", u"ae|b"_s, {2, 0}, u"\u0301"_s, u"a|e\u0301b"_s},
        {"nor into a line break", u"a\r|b"_s, {2, 0}, u"\n"_s, u"a|\r\nb"_s},
        {"a selection that is taken away", u"a^bc|d"_s, {0, 4}, u""_s, u"|"_s},
    };
    for (const FollowCase &c : cases) {
        ViewFixture fixture;
        fixture.setText(c.before);
        fixture.storage.apply({c.range, c.text});
        EXPECT_EQ(fixture.marked(), c.after) << c.name;
    }
}

TEST(Following, ReplacingEverywhereAndTakingItBackMovesNoOtherView)
{
    ViewFixture fixture(QString(u"a word in a line\n"_s).repeated(3000));
    TextView other(fixture.storage, fixture.undo, {fixture.scheduler, fixture.pasteboard}, testFont());
    other.setTextFont(testFont());
    other.resize(300, 200);
    other.show();
    const auto topLine = [](TextView &view) { return view.textViewport().topRow().line; };
    other.verticalScrollBar()->setValue(other.verticalScrollBar()->maximum() / 3);
    other.setSelection(TextSelection::at(fixture.storage.text().lineStart(1200) + 3));
    fixture.view.verticalScrollBar()->setValue(fixture.view.verticalScrollBar()->maximum() / 2);
    fixture.view.setSelection(TextSelection::at(fixture.view.textViewport().anchor() + 100));
    const qsizetype line = topLine(other);
    const qsizetype ownLine = topLine(fixture.view);
    TextEdits edits;
    for (qsizetype hit = 0; hit < 3000; ++hit) {
        edits.add({hit * 17 + 2, 4}, Rope(u"term of"_s));
    }
    fixture.storage.apply(edits);
    EXPECT_EQ(topLine(other), line);
    EXPECT_EQ(topLine(fixture.view), ownLine);
    EXPECT_EQ(fixture.storage.text().lineAt(other.selection().caret), 1200);
    fixture.view.undo();
    EXPECT_EQ(topLine(other), line);
}

TEST(Following, ANewWidthKeepsTheTopOfTheView)
{
    ViewFixture fixture((QString(u"lorem ipsum dolor sit amet "_s).repeated(185) + u"\n"_s).repeated(40), {400, 300});
    TextView &view = fixture.view;
    view.setWrapMode(TextView::WrapMode::viewWidth);
    scrollTo(view.textViewport(), view.layoutManager(), 100'000, 0);
    const qsizetype before = view.textViewport().anchor();
    for (int step = -42; step <= 42; ++step) {
        view.resize(700 - 7 * std::abs(step), 300);
    }
    view.resize(400, 300);
    EXPECT_EQ(view.textViewport().anchor(), before);
    QFont font = testFont();
    font.setPixelSize(19);
    view.setTextFont(font);
    view.setTextFont(testFont());
    view.setWrapMode(TextView::WrapMode::none);
    view.setTabWidth(8);
    view.setWrapMode(TextView::WrapMode::viewWidth);
    EXPECT_EQ(view.textViewport().anchor(), before);
    for (const QSize size : {QSize(400, 0), QSize(1, 300), QSize(0, 0), QSize(5, 5)}) {
        view.resize(size);
        view.viewport()->resize(size);
        fixture.keys(u"<Down><PageDown><PageUp><End>"_s);
        (void)fixture.image();
    }
}

TEST(Following, ALargerFontKeepsTheCaretsRowWhereItIs)
{
    ViewFixture fixture((QString(u"lorem ipsum dolor sit amet "_s).repeated(5) + u"\n"_s).repeated(400), {400, 300});
    TextView &view = fixture.view;
    view.setWrapMode(TextView::WrapMode::viewWidth);
    QFont large = testFont();
    large.setPixelSize(31);
    for (const double share : {0.1, 0.5, 0.9}) {
        view.setSelection(TextSelection::at(20'000), TextView::Reveal::center);
        const auto top = [&view] { return view.textViewport().topOf(view.layoutManager().rowOf(20'000)).value_or(-1000); };
        view.textViewport().scrollBy(top() - share * view.viewport()->height());
        (void)fixture.image();
        const double before = top();
        view.setTextFont(large);
        const double lowest = view.viewport()->height() - view.layoutManager().rowHeight();
        EXPECT_NEAR(top(), std::min(before, lowest), 1);
        (void)fixture.image();
        view.setTextFont(testFont());
        EXPECT_NEAR(top(), std::min(before, lowest), 1);
    }
    // One that was not seen is not looked for.
    view.textViewport().scrollBy(3000);
    (void)fixture.image();
    const qsizetype anchor = view.textViewport().anchor();
    view.setTextFont(large);
    EXPECT_EQ(view.textViewport().anchor(), anchor);
}

TEST(Following, TheHorizontalRangeCoversWhatWasPainted)
{
    ViewFixture fixture(QString(u"a line of fifty letters, more or less, as it may be\n"_s).repeated(100) + QString(40, u'水') + u"\n"_s,
                        {300, 300});
    QScrollBar *bar = fixture.view.horizontalScrollBar();
    fixture.view.verticalScrollBar()->setValue(fixture.view.verticalScrollBar()->maximum());
    (void)fixture.image();
    fixture.scheduler.advance(std::chrono::milliseconds(1));
    bar->setValue(bar->maximum());
    LayoutManager &layout = fixture.view.layoutManager();
    const qsizetype end = fixture.storage.length() - 1;
    EXPECT_LT(fixture.view.textViewport().left() + layout.xOf(layout.rowOf(end), end), fixture.view.viewport()->width());
    bar->setValue(0);
    (void)fixture.image();
    EXPECT_EQ(bar->value(), 0);
}

} // namespace
