// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Clicks, and selecting with the mouse.

#include "ViewFixture.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Pointer : public testing::Test, public ViewFixture {
protected:
    QWidget *target() { return view.viewport(); }
    /// The middle of the letter at `offset`, or so many cells right of it.
    QPoint in(qsizetype offset, double cells = 0)
    {
        return pointOf(offset) + QPoint(static_cast<int>(cells * view.layoutManager().cellWidth()), 0);
    }
    void press(QPoint point, Qt::KeyboardModifiers modifiers = {}) { QTest::mousePress(target(), Qt::LeftButton, modifiers, point); }
    void release(QPoint point) { QTest::mouseRelease(target(), Qt::LeftButton, {}, point); }
    void doubleClick(QPoint point) { QTest::mouseDClick(target(), Qt::LeftButton, {}, point); }
    void tripleClick(QPoint point)
    {
        doubleClick(point);
        QTest::mousePress(target(), Qt::LeftButton, {}, point, 1);
    }
};

TEST_F(Pointer, SelectsByLetterWordAndLine)
{
    setText(u"one two three\nfour five\n\nsix"_s);
    press(in(2));
    dragTo(in(16));
    release(in(16));
    press(in(5), Qt::ShiftModifier);
    release(in(5));
    EXPECT_EQ(marked(), u"on^e t|wo three\nfour five\n\nsix"_s);
    doubleClick(in(5));
    dragTo(in(12, 0.8));
    EXPECT_EQ(marked(), u"one ^two three|\nfour five\n\nsix"_s);
    dragTo(in(2, 0.8));
    release(in(2, 0.8));
    EXPECT_EQ(marked(), u"|one two^ three\nfour five\n\nsix"_s) << "by whole words, the first one included";
    doubleClick(in(12, 9));
    EXPECT_EQ(marked(), u"one two ^three|\nfour five\n\nsix"_s) << "right of the text";
    release(in(12, 9));
    doubleClick({30, 290});
    EXPECT_EQ(marked(), u"one two three\nfour five\n\n^six|"_s) << "below the last line";
    tripleClick(in(16));
    EXPECT_EQ(marked(), u"one two three\n^four five\n|\nsix"_s);
    QMouseEvent fourth(QEvent::MouseButtonDblClick, in(16), target()->mapToGlobal(in(16)), Qt::LeftButton, Qt::LeftButton, {});
    fourth.setTimestamp(quint64(QTest::lastMouseTimestamp));
    QApplication::sendEvent(target(), &fourth);
    EXPECT_EQ(marked(), u"one two three\n^four five\n|\nsix"_s) << "a fourth click";
    release(in(16));
    doubleClick(in(1));
    QTest::mousePress(target(), Qt::LeftButton, {}, in(19), 1);
    EXPECT_EQ(marked(), u"one two three\nfour |five\n\nsix"_s) << "a quick press elsewhere is no third click";
}

TEST_F(Pointer, SelectingALongLineDoesNotScroll)
{
    setText(QString(u"words "_s).repeated(100) + u"\n"_s + QString(u"more\n"_s).repeated(100));
    view.horizontalScrollBar()->setValue(900);
    tripleClick({100, 15});
    release({100, 15});
    EXPECT_EQ(view.selection(), (TextSelection{0, 601}));
    EXPECT_EQ(view.horizontalScrollBar()->value(), 900);
}

TEST_F(Pointer, AClickRightOfAWrappedRowStandsAtItsEnd)
{
    setText(QString(150, u'x') + u"\n"_s + QString(100, u'水'));
    view.setWrapMode(TextView::WrapMode::viewWidth);
    LayoutManager &layout = view.layoutManager();
    for (const qsizetype offset : {qsizetype(0), qsizetype(151)}) {
        const qsizetype end = layout.rangeOf(layout.rowOf(offset)).end();
        const QPoint right(target()->width() - 2, pointOf(offset).y());
        QTest::mouseClick(target(), Qt::LeftButton, {}, right);
        EXPECT_EQ(view.selection(), TextSelection::at(end));
        EXPECT_NEAR(view.caretRectangle().center().y(), target()->y() + right.y(), 3) << "in the row clicked at";
        doubleClick(right);
        EXPECT_LT(view.selection().range().location, end);
    }
}

TEST_F(Pointer, TheLastLetterOfASelectionCanBeTakenHoldOf)
{
    setText(u"one ^two| three"_s);
    press(in(6, 0.8));
    EXPECT_EQ(marked(), u"one ^two| three"_s) << "a drag may follow";
    release(in(6, 0.8));
    EXPECT_EQ(marked(), u"one two| three"_s) << "none did";
    setText(u"one ^two| three"_s);
    press(in(7, 0.8));
    EXPECT_EQ(marked(), u"one two |three"_s);
}

TEST_F(Pointer, DraggingBeyondTheEdgeScrolls)
{
    setText(QString(u"line\n"_s).repeated(200));
    press({20, 20});
    dragTo({20, 400});
    const qsizetype before = view.selection().caret;
    scheduler.advance(std::chrono::milliseconds(300));
    EXPECT_GT(view.selection().caret, before);
    EXPECT_GT(view.verticalScrollBar()->value(), 100);
    release({20, 100});
    const int rest = view.verticalScrollBar()->value();
    scheduler.advance(std::chrono::milliseconds(300));
    EXPECT_EQ(view.verticalScrollBar()->value(), rest);
}

TEST_F(Pointer, GoesOnSelectingFromTheTextItWasPressedOn)
{
    setText(u"one two three four"_s);
    doubleClick(in(5));
    storage.apply({{0, 4}, QStringView()});
    dragTo(in(11));
    EXPECT_EQ(marked(), u"^two three four|"_s);
    storage.apply({{0, storage.length()}, u"ab"_s});
    dragTo({100, 10});
    EXPECT_LE(view.selection().range().end(), 2);
}

/// Text selected lately is kept for the middle button, as it was when it was selected.
TEST_F(Pointer, TheMiddleButtonPastesWhatWasSelected)
{
    setText(u"^one| two"_s);
    EXPECT_FALSE(pasteboard.ownsPrimary());
    scheduler.advance(std::chrono::milliseconds(200));
    storage.apply({{0, 1}, u"X"_s});
    EXPECT_EQ(pasteboard.primaryText(), u"one"_s) << "what was selected, not what stands there now";
    pasteboard.setText(u"a\r\nb\r"_s);
    QTest::mouseClick(target(), Qt::MiddleButton, {}, pointOf(7));
    EXPECT_EQ(text(), u"Xne twoone"_s);
    keys(u"<C-v>"_s);
    EXPECT_EQ(text(), u"Xne twoonea\nb\n"_s) << "what comes from elsewhere has line feeds only";
    pasteboard.setPrimaryFromElsewhere(u"\r\n"_s);
    QTest::mouseClick(target(), Qt::MiddleButton, {}, pointOf(0));
    EXPECT_EQ(text(), u"\nXne twoonea\nb\n"_s);
}

TEST_F(Pointer, TheWheelMovesByPixelsAndZooms)
{
    setText(QString(u"line\n"_s).repeated(100));
    std::vector<int> zooms;
    QObject::connect(&view, &TextView::zoomRequested, &view, [&](int steps) { zooms.push_back(steps); });
    const auto wheel = [&](int angle, Qt::KeyboardModifiers modifiers) {
        const QPointF at(50, 50);
        QWheelEvent event(at, view.mapToGlobal(at), {}, {0, angle}, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(target(), &event);
    };
    wheel(-15, {});
    wheel(-15, {});
    const double expected = 2 * 15.0 / 120 * QApplication::wheelScrollLines() * view.layoutManager().rowHeight();
    EXPECT_NEAR(view.textViewport().position().y(), expected, 1);
    for (const int angle : {60, 60, -240}) {
        wheel(angle, Qt::ControlModifier);
    }
    EXPECT_EQ(zooms, (std::vector<int>{1, -2}));
}

} // namespace
