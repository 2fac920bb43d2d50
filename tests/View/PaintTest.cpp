// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "ViewFixture.h"

#include "Text/RandomText.h"
#include "Text/TextBoundaries.h"

#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// What a view shows after a long session, painted piece by piece as the events ask for it, kept in a picture like a window's.
class Canvas : public QObject {
public:
    explicit Canvas(TextView &view) : m_view(view), m_picture(view.viewport()->size() * view.devicePixelRatioF(), QImage::Format_RGB32)
    {
        m_picture.setDevicePixelRatio(view.devicePixelRatioF());
        view.viewport()->installEventFilter(this);
        m_dirty = view.viewport()->rect();
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !m_isRendering) {
            m_dirty += static_cast<QPaintEvent *>(event)->region();
        }
        return false;
    }
    /// Renders only what was asked to be painted since the last time.
    const QImage &picture()
    {
        QCoreApplication::processEvents();
        m_isRendering = true;
        if (!m_dirty.isEmpty()) {
            m_view.viewport()->render(&m_picture, m_dirty.boundingRect().topLeft(), m_dirty);
        }
        m_isRendering = false;
        m_dirty = {};
        return m_picture;
    }
    [[nodiscard]] const QRegion &dirty() const { return m_dirty; }

private:
    TextView &m_view;
    QImage m_picture;
    QRegion m_dirty;
    bool m_isRendering = false;
};

/// A new view with the same text, place and selection; null when it cannot be scrolled as far to the right.
QImage freshPicture(ViewFixture &fixture, const std::function<void(TextView &)> &setUp)
{
    TextView view(fixture.storage, fixture.undo, {fixture.scheduler, fixture.pasteboard}, testFont());
    view.setTextFont(testFont());
    view.resize(fixture.view.size());
    setUp(view);
    view.show();
    view.setFocus();
    (void)QTest::qWaitForWindowActive(&view);
    view.setSelection(fixture.view.selection());
    scrollTo(view.textViewport(), view.layoutManager(), fixture.view.textViewport().anchor(), fixture.view.textViewport().pixelsAbove());
    Canvas canvas(view);
    // How wide the rows are it learns by painting.
    (void)canvas.picture();
    const double x = fixture.view.textViewport().position().x();
    view.textViewport().setX(x);
    view.viewport()->update();
    QImage picture = view.textViewport().position().x() == x ? canvas.picture().copy() : QImage();
    view.hide();
    fixture.view.activateWindow();
    fixture.view.setFocus();
    (void)QTest::qWaitForWindowActive(&fixture.view);
    return picture;
}

class PaintWalk : public testing::TestWithParam<std::tuple<unsigned, TextView::WrapMode>> {};

/// Everything that changes the look asks for its repainting: the long-lived picture equals a new one.
TEST_P(PaintWalk, AnOldViewLooksLikeANewOne)
{
    const auto [seed, wrap] = GetParam();
    Random random(seed);
    const auto place = [&](const QScrollBar *bar) { return int(random.below(bar->maximum() + 1)); };
    // How wide a long line is, and so what stands where, depends on what was seen of it; but not where every cell is alike.
    const bool isExact = seed % 2 == 0;
    ViewFixture fixture(
        (QString(
             u"some words, \u0435\u0301 and\ta tab\n\nanother line that is quite a bit longer than the view is wide, so that it wraps\n"_s)
             .repeated(6) +
         u"\u05E2\u05D1\u05E8\u05D9\u05EA and English in one line, \u05E2\u05D1\u05E8\u05D9\u05EA \u05E2\u05D1 again\n"_s)
                .repeated(8) +
            ((isExact ? u"one long line of words "_s : u"one long line \u05E2\u05D1\u05E8 "_s).repeated(200) + u"\n"_s).repeated(3),
        {320, 200});
    const auto setUp = [seed = seed, wrap = wrap](TextView &view) {
        view.setLook(&TextLooks::caretShape, static_cast<TextView::CaretShape>(seed % 3));
        view.setLook(&TextLooks::invisibles, seed % 2 == 1 ? TextView::Visibility::shown : TextView::Visibility::hidden);
        const auto marksOf = [&text = view.storage().text()](TextRange seen) {
            std::vector<TextRange> marks;
            for (qsizetype at = seen.location; at < seen.end(); ++at) {
                if (text.at(at) == u'o') {
                    marks.push_back({at, 1});
                }
            }
            return marks;
        };
        if (seed % 3 != 0) {
            view.setLook(&TextLooks::marks, marksOf);
        }
        TextView::Colors colors = view.colors();
        colors.currentLine = seed % 2 == 0 ? QColor(240, 240, 255) : QColor();
        view.setColors(colors);
        view.setWrapMode(wrap);
        // Bars that come and go would change the size of the picture.
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    };
    setUp(fixture.view);
    TextView other(fixture.storage, fixture.undo, {fixture.scheduler, fixture.pasteboard}, testFont());
    other.setTextFont(testFont());
    other.resize(250, 150);
    other.setWrapMode(TextView::WrapMode::viewWidth);
    Canvas canvas(fixture.view);
    static const QString keys[] = {u"x"_s,        u"<Left>"_s, u"<Down>"_s,   u"<Up>"_s,  u"<S-Down>"_s,  u"<S-Right>"_s,
                                   u"<BS>"_s,     u"<Del>"_s,  u"<CR>"_s,     u"<C-z>"_s, u"<C-S-z>"_s,   u"<PageDown>"_s,
                                   u"<PageUp>"_s, u"<End>"_s,  u"<S-Home>"_s, u"<C-a>"_s, u"<C-Right>"_s, u"<C-S-Left>"_s,
                                   u"<C-Down>"_s, u"<Tab>"_s,  u"<C-c>"_s,    u"<C-v>"_s, u" "_s,         u"<C-End>"_s};
    for (int step = 0; step < 120; ++step) {
        QString did;
        const auto anywhere = [&] { return random.below(fixture.storage.length() + 1); };
        switch (random.below(9)) {
        case 3:
            fixture.view.horizontalScrollBar()->setValue(random.oneIn(2) ? 0 : place(fixture.view.horizontalScrollBar()));
            did = u"scroll sideways"_s;
            break;
        case 0:
            fixture.view.verticalScrollBar()->setValue(place(fixture.view.verticalScrollBar()));
            did = u"scroll"_s;
            break;
        case 1:
            other.insertText(random.oneIn(2) ? u"other\nedit" : u"y", {TextBoundaries::snapped(fixture.storage.text(), anywhere()), 0});
            did = u"edit in another view"_s;
            break;
        case 2: {
            const quint32 colour = 0xFF000000U + quint32(random.below(0xFFFFFF));
            const StyleId style = fixture.storage.styles().intern({.foreground = colour, .isBold = random.oneIn(2)});
            fixture.storage.setStyle(TextRange{anywhere(), random.below(60)}.clampedTo(fixture.storage.length()), style);
            did = u"style"_s;
            break;
        }
        default:
            did = random.of(keys);
            fixture.keys(did);
        }
        (void)canvas.picture();
        if (step % 10 == 9) {
            // A new view does not know at which end of a wrap the caret was.
            fixture.view.setSelection(fixture.view.selection());
            const QImage old = canvas.picture().copy();
            fixture.view.viewport()->update();
            ASSERT_TRUE(old == canvas.picture()) << "seed " << seed << ", step " << step << ", after " << did.toStdString();
            const QImage fresh = freshPicture(fixture, setUp);
            // That far to the right only a view gets that has seen a wider row.
            const bool isWider = fresh.isNull() || (!isExact && fixture.view.horizontalScrollBar()->value() > 0);
            ASSERT_TRUE(isWider || old == fresh) << "seed " << seed << ", step " << step << ", after " << did.toStdString();
            (void)canvas.picture();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Walks, PaintWalk,
                         testing::Combine(testing::Range(1U, 6U),
                                          testing::Values(TextView::WrapMode::none, TextView::WrapMode::viewWidth)));

TEST(Paint, SelectedTextAndTheCaretsRowCanHaveColoursOfTheirOwn)
{
    ViewFixture fixture(QString(u"\u2588\u2588\u2588\u2588 "_s).repeated(5), {160, 200});
    fixture.view.setWrapMode(TextView::WrapMode::viewWidth);
    TextView::Colors colors{
        .background = Qt::white, .text = Qt::black, .selection = Qt::yellow, .caret = Qt::black, .currentLine = Qt::white};
    colors.invisibles = colors.mark = Qt::white;
    const auto counts = [&fixture](const QRect &row) {
        std::map<QRgb, int> found;
        const QImage picture = fixture.image();
        const double scale = picture.devicePixelRatio();
        const QRect place = QRectF(row.x() * scale, row.y() * scale, row.width() * scale, row.height() * scale).toRect();
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= std::min(place.right(), picture.width() - 1); ++x) {
                ++found[picture.pixel(x, y)];
            }
        }
        return found;
    };
    LayoutManager &layout = fixture.view.layoutManager();
    const int height = int(layout.rowHeight());
    const RowPosition second = layout.rowOf(layout.rangeOf(layout.rowOf(0)).end() + 1);
    const auto boxOf = [&](const RowPosition &row) {
        return QRect(0, int(fixture.view.textViewport().topOf(row).value_or(0)), fixture.view.viewport()->width(), height);
    };
    const QRect firstRow = boxOf(layout.rowOf(0));
    // Without the pixels that it may share with its neighbours.
    const QRect secondRow = boxOf(second).adjusted(0, 1, 0, -1);
    fixture.storage.setStyle({0, fixture.storage.length()}, fixture.storage.styles().intern({.foreground = QColor(Qt::blue).rgb()}));
    fixture.view.setColors(colors);
    fixture.view.setSelection({0, 3});
    const auto plain = counts(secondRow);
    colors.selectedText = Qt::red;
    fixture.view.setColors(colors);
    EXPECT_GT(counts(firstRow)[qRgb(255, 0, 0)], 0) << "though it has a colour of its own";
    EXPECT_EQ(counts(secondRow), plain) << "rows without a selection are drawn once";
    colors.currentLineBorder = Qt::green;
    fixture.view.setColors(colors);
    EXPECT_GT(counts(firstRow)[qRgb(0, 255, 0)], 2 * secondRow.width() - 10) << "but for the caret";
    fixture.view.setSelection({0, 0});
    const auto blank = [](TextRange) { return std::vector<TextRange>{{4, 1}}; };
    fixture.view.setLook(&TextLooks::brackets, blank);
    fixture.view.setLook(&TextLooks::occurrences, blank);
    EXPECT_EQ(counts(firstRow)[qRgb(255, 255, 0)], 0) << "marked letters keep their colour, so nothing of the selection's is behind them";
}

TEST(Paint, TheCaretBlinksForAWhileAndABlockNever)
{
    ViewFixture fixture(u"ab"_s);
    const auto look = [&](std::chrono::milliseconds time) {
        QString seen;
        for (std::chrono::milliseconds at{0}; at < time; at += std::chrono::milliseconds(500)) {
            fixture.scheduler.advance(std::chrono::milliseconds(500));
            seen += fixture.view.caret().blinking.isOn() ? u'|' : u'.';
        }
        return seen;
    };
    fixture.keys(u"<Right>"_s);
    const QString blinked = look(std::chrono::seconds(14));
    EXPECT_TRUE(blinked.startsWith(u".|.|.|"_s) && blinked.endsWith(u"||||||"_s)) << blinked.toStdString();
    fixture.keys(u"<Left>"_s);
    EXPECT_TRUE(look(std::chrono::seconds(1)).contains(u'.')) << "the next key begins anew";
    fixture.view.setLook(&TextLooks::caretShape, TextView::CaretShape::block);
    EXPECT_FALSE(look(std::chrono::seconds(2)).contains(u'.'));
    fixture.view.setLook(&TextLooks::caretShape, TextView::CaretShape::bar);
    EXPECT_TRUE(look(std::chrono::seconds(2)).contains(u'.'));
}

TEST(Paint, ARulerStandsBehindItsColumnHoweverTheTextIsScrolled)
{
    ViewFixture fixture(QString(200, u'x') + u"\n\n"_s, {400, 200});
    const auto rulers = [&fixture] {
        std::vector<double> places;
        const QImage picture = fixture.view.viewport()->grab().toImage();
        const int empty = picture.height() - 3;
        for (int x = 1; x < picture.width(); ++x) {
            if (picture.pixel(x, empty) != picture.pixel(x - 1, empty) && picture.pixel(x, empty) != picture.pixel(0, empty)) {
                places.push_back(x / picture.devicePixelRatio());
            }
        }
        return places;
    };
    EXPECT_TRUE(rulers().empty());
    fixture.view.setLook(&TextLooks::rulerColumn, 10);
    const double column = fixture.view.textViewport().left() + 10 * fixture.view.layoutManager().cellWidth();
    ASSERT_EQ(rulers().size(), 1U);
    EXPECT_NEAR(rulers().front(), column, 1);
    fixture.view.horizontalScrollBar()->setValue(20);
    ASSERT_EQ(rulers().size(), 1U);
    EXPECT_NEAR(rulers().front(), column - 20, 1);
}

/// The width of a long line's part is an estimate until some question lays it out; what is right of it moves then.
TEST(Paint, WhatIsMeasuredLeftOfTheViewRepaintsIt)
{
    ViewFixture fixture(QString(u"one long line \u05E2\u05D1\u05E8 "_s).repeated(2000), {400, 100});
    fixture.view.horizontalScrollBar()->setValue(fixture.view.horizontalScrollBar()->maximum() / 2);
    Canvas canvas(fixture.view);
    (void)canvas.picture();
    fixture.view.setSelection(TextSelection::at(5000), TextView::Reveal::no);
    const QImage old = canvas.picture().copy();
    fixture.view.viewport()->update();
    EXPECT_TRUE(old == canvas.picture());
}

TEST(Paint, ASelectedBreakJoinsALetterThatLeansOut)
{
    ViewFixture fixture(u"7\nf\nT\n)\n"_s);
    fixture.storage.setStyle({0, fixture.storage.length()}, fixture.storage.styles().intern({.isItalic = true}));
    for (qsizetype line = 0; line < 4; ++line) {
        const RowPosition row = fixture.view.layoutManager().rowOf(2 * line);
        EXPECT_EQ(fixture.view.layoutManager().widthOf(row), fixture.view.layoutManager().xOf(row, 2 * line + 1)) << "line " << line;
    }
}

/// Layouts and units laid out so far.
class PaintCost : public testing::Test, public ViewFixture {
protected:
    [[nodiscard]] LayoutManager::Counters costOf(const std::function<void()> &action)
    {
        const LayoutManager::Counters before = view.layoutManager().counters();
        action();
        (void)image();
        const LayoutManager::Counters after = view.layoutManager().counters();
        return {.layouts = after.layouts - before.layouts, .units = after.units - before.units};
    }
    static void scrollToMiddle(QScrollBar *bar) { bar->setValue(bar->maximum() / 2); }
};

TEST_F(PaintCost, AKeyRepaintsItsRowAndARepaintLaysOutWhatIsSeen)
{
    setText(QString(u"a line of text\n"_s).repeated(100'000));
    view.setSelection(TextSelection::at(750'000), TextView::Reveal::center);
    Canvas canvas(view);
    (void)canvas.picture();
    EXPECT_LE(costOf([&] {
                  keys(u"x"_s);
                  QCoreApplication::processEvents();
                  EXPECT_LE(canvas.dirty().boundingRect().height(), 4 * view.layoutManager().rowHeight());
              }).layouts,
              1);
    EXPECT_LE(costOf([&] { scrollToMiddle(view.verticalScrollBar()); }).layouts, view.textViewport().rowsPerPage() + 4);
    EXPECT_EQ(costOf([] {}).layouts, 0) << "what is known is not laid out again";
}

TEST_F(PaintCost, ATenMegabyteLineOpensScrollsAndTakesKeysWithinFixedCounts)
{
    EXPECT_LE(costOf([&] { setText(QString(u"{\"id\":12345,\"name\":\"some value\",\"list\":[1,2,3]},"_s).repeated(200'000)); }).layouts,
              8);
    EXPECT_LE(costOf([&] { scrollToMiddle(view.horizontalScrollBar()); }).layouts, 6);
    (void)costOf([&] { view.setSelection(TextSelection::at(5'000'000), TextView::Reveal::nearest); });
    const LayoutManager::Counters typing = costOf([&] { keys(u"abc"_s); });
    EXPECT_LE(typing.layouts, 9);
    EXPECT_LE(typing.units, 15'000);
    EXPECT_EQ(storage.string({5'000'000, 3}), u"abc"_s);
    EXPECT_LE(costOf([&] { view.setWrapMode(TextView::WrapMode::viewWidth); }).units + costOf([&] { keys(u"d<CR>"_s); }).units, 400'000);
}

} // namespace
