// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/MarkedScrollBar.h"

#include "Base/ColorContrast.h"
#include "View/ViewFixture.h"

#include <QStyleOptionSlider>
#include <QTest>
#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace {

/// 1000 lines "line 0\n" … with marks in some.
class MarkedScrollBarTest : public testing::Test {
protected:
    MarkedScrollBarTest()
    {
        QString text;
        for (int line = 0; line < 1000; ++line) {
            text += u"line %1\n"_s.arg(line);
        }
        fixture.setText(text);
        fixture.view.setVerticalScrollBar(bar);
        fixture.view.resize(400, 600);
    }
    void markLines(ScrollMark mark, const std::vector<int> &lines)
    {
        bar->setSource(mark, {.has =
                                  [this, lines](TextRange stretch) {
                                      ++asked;
                                      return std::ranges::any_of(lines, [&](int line) { return stretch.contains(startOf(line)); });
                                  },
                              .go = [this](TextRange stretch) { gone = stretch; }});
    }
    [[nodiscard]] qsizetype startOf(int line) const { return fixture.storage.text().lineStart(line); }
    /// Where the handle is when this line is at the top.
    [[nodiscard]] QRect handleAt(int line)
    {
        fixture.view.textViewport().setY(fixture.view.textViewport().insets().vertical + line * fixture.view.layoutManager().rowHeight());
        QStyleOptionSlider option;
        option.initFrom(bar);
        option.orientation = Qt::Vertical;
        option.maximum = bar->maximum();
        option.pageStep = bar->pageStep();
        option.sliderPosition = static_cast<int>(fixture.view.scrollOffset());
        option.subControls = QStyle::SC_All;
        return bar->style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, bar);
    }

    ViewFixture fixture;
    MarkedScrollBar *bar = new MarkedScrollBar(fixture.view);
    int asked = 0;
    TextRange gone;
};

TEST_F(MarkedScrollBarTest, MarksStandWhereTheHandleGoes)
{
    markLines(ScrollMark::hit, {0, 500, 700});
    const auto rows = bar->rowsOf(ScrollMark::hit);
    ASSERT_EQ(rows.size(), 3U);
    const auto expectWithin = [this](int row, int line) {
        EXPECT_TRUE(handleAt(line).adjusted(0, -1, 0, 1).contains(1, row)) << row << " for line " << line;
    };
    expectWithin(rows[0], 0);
    expectWithin(rows[1], 500);
    expectWithin(rows[2], 700);
    EXPECT_TRUE(bar->rowsOf(ScrollMark::conflict).empty());

    // The text grows: what is known of it stays where it is in it.
    fixture.storage.apply({{0, 0}, u"\n"_s.repeated(1000)});
    const auto later = bar->rowsOf(ScrollMark::hit);
    EXPECT_EQ(later.front(), rows[0]);
    expectWithin(later.back(), 700);
    bar->setSource(ScrollMark::hit, {});
    EXPECT_TRUE(bar->rowsOf(ScrollMark::hit).empty());
}

TEST_F(MarkedScrollBarTest, CostsABarsHeightWhateverTheTextIs)
{
    fixture.setText(u"hit\n"_s.repeated(200'000) + u"a line of words "_s.repeated(100'000));
    for (const auto mode : {TextView::WrapMode::none, TextView::WrapMode::viewWidth}) {
        fixture.view.setWrapMode(mode);
        std::ignore = fixture.image();
        markLines(ScrollMark::hit, {199'000});
        asked = 0;
        const qint64 layouts = fixture.view.layoutManager().counters().layouts;
        EXPECT_EQ(bar->rowsOf(ScrollMark::hit).size(), 1U);
        EXPECT_LE(asked, 30) << "it is the only one";
        EXPECT_EQ(fixture.view.layoutManager().counters().layouts, layouts);
        asked = 0;
        bar->grab();
        fixture.view.textViewport().setY(1000);
        bar->grab();
        EXPECT_EQ(asked, 0) << "nothing is new";
        bar->setSource(ScrollMark::hit, {.any = {},
                                         .has =
                                             [this](TextRange) {
                                                 ++asked;
                                                 return true;
                                             },
                                         .go = {}});
        bar->grab();
        EXPECT_GT(bar->rowsOf(ScrollMark::hit).size(), 400U);
        EXPECT_LE(asked, 2 * bar->height());
    }
}

TEST_F(MarkedScrollBarTest, GoesToTheMarkThatIsClickedAndDragsItsHandle)
{
    markLines(ScrollMark::hit, {0, 500});
    markLines(ScrollMark::conflict, {700});
    const int hit = bar->rowsOf(ScrollMark::hit).back();
    QTest::mouseClick(bar, Qt::LeftButton, {}, {5, hit + 3});
    EXPECT_TRUE(gone.contains(startOf(500)));
    EXPECT_EQ(bar->value(), 0) << "whoever has the mark goes there";
    QTest::mouseClick(bar, Qt::LeftButton, {}, {5, bar->rowsOf(ScrollMark::conflict).back()});
    EXPECT_TRUE(gone.contains(startOf(700)));
    gone = {};
    QTest::mouseClick(bar, Qt::LeftButton, {}, {5, hit + 20});
    EXPECT_GT(bar->value(), 0) << "a page on, as ever";
    bar->setValue(0);
    QTest::mouseClick(bar, Qt::LeftButton, {}, {5, bar->rowsOf(ScrollMark::hit).front()});
    EXPECT_TRUE(gone.isEmpty()) << "on the handle";
}

TEST_F(MarkedScrollBarTest, AsksForNoPlacesWhereThereAreNone)
{
    bool isAny = false;
    bar->setSource(ScrollMark::conflict, {.any = [&] { return isAny; },
                                          .has =
                                              [this](TextRange) {
                                                  ++asked;
                                                  return true;
                                              },
                                          .go = {}});
    bar->grab();
    EXPECT_TRUE(bar->rowsOf(ScrollMark::conflict).empty());
    EXPECT_EQ(asked, 0);
    isAny = true;
    bar->placesChanged();
    EXPECT_FALSE(bar->rowsOf(ScrollMark::conflict).empty());
}

TEST_F(MarkedScrollBarTest, MarksCanBeToldFromOneAnotherWithoutColors)
{
    bar->setPalette(QPalette(Qt::white));
    std::vector<QImage> pictures{bar->grab().toImage()};
    for (const ScrollMarkKind &kind : scrollMarkKinds) {
        bar->setBaseColor(kind.mark, 0xFF000000);
        markLines(kind.mark, {500});
        pictures.push_back(bar->grab().toImage());
        EXPECT_EQ(std::ranges::count(pictures, pictures.back()), 1) << int(kind.mark);
        bar->setSource(kind.mark, {});
    }
}

TEST_F(MarkedScrollBarTest, MarksCanBeToldFromTheBar)
{
    for (const QRgb ground : {0xFFFFFFFF, 0xFFEFEFEF, 0xFF1E1E1E, 0xFF000000}) {
        QPalette palette(QColor::fromRgb(ground));
        bar->setPalette(palette);
        for (const bool isStark : {false, true}) {
            const QColor other = QColor::fromRgb(oppositeOf(ground));
            bar->setColors(isStark ? QColor::fromRgb(ground) : QColor(), isStark ? other : QColor());
            const auto [own, handle] = bar->grounds();
            for (const ScrollMarkKind &kind : scrollMarkKinds) {
                const QRgb color = bar->colorOf(kind.mark).rgb();
                EXPECT_GE(std::min(contrast(color, own.rgb()), contrast(color, handle.rgb())), 3)
                    << QColor::fromRgb(ground).name().toStdString() << isStark << int(kind.mark);
            }
        }
    }
    bar->setColors({}, {});
    bar->setPalette(QPalette(Qt::white));
    markLines(ScrollMark::hit, {500});
    const QImage image = bar->grab().toImage();
    EXPECT_EQ(image.pixelColor(bar->width() / 2, bar->rowsOf(ScrollMark::hit).front()), bar->colorOf(ScrollMark::hit));
}

} // namespace
