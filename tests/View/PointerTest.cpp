// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Clicks, and selecting with the mouse.

#include "ViewFixture.h"

#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Pointer : public testing::Test {
protected:
    QWidget *target() { return fixture.view.viewport(); }
    void setText(const QString &marked)
    {
        const MarkedText text(marked);
        const UndoManager::Pause pause(fixture.undo);
        fixture.storage.apply({{0, fixture.storage.length()}, text.text});
        fixture.view.setSelection(text.selection);
    }
    void moveTo(QPoint point)
    {
        QMouseEvent event(QEvent::MouseMove, point, target()->mapToGlobal(point), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(target(), &event);
    }
    QPoint beside(qsizetype offset, double cells)
    {
        return fixture.pointOf(offset) + QPoint(static_cast<int>(cells * fixture.view.layoutManager().cellWidth()), 0);
    }

    ViewFixture fixture;
};

TEST_F(Pointer, WordsAreTakenByTheLetterUnderThePointer)
{
    setText(u"one two three four\n\nlast"_s);
    QTest::mouseDClick(target(), Qt::LeftButton, {}, fixture.pointOf(5));
    moveTo(beside(12, 0.8));
    EXPECT_EQ(fixture.marked(), u"one ^two three| four\n\nlast"_s);
    moveTo(beside(2, 0.8));
    EXPECT_EQ(fixture.marked(), u"|one two^ three four\n\nlast"_s);
    QTest::mouseRelease(target(), Qt::LeftButton, {}, beside(2, 0.8));
    QTest::mouseDClick(target(), Qt::LeftButton, {}, beside(18, 9));
    EXPECT_EQ(fixture.marked(), u"one two three ^four|\n\nlast"_s) << "right of the text";
    QTest::mouseRelease(target(), Qt::LeftButton, {}, beside(18, 9));
    QTest::mouseDClick(target(), Qt::LeftButton, {}, QPoint(30, 290));
    EXPECT_EQ(fixture.marked(), u"one two three four\n\n^last|"_s) << "below the last line";
}

TEST_F(Pointer, AQuickPressElsewhereIsNoTripleClick)
{
    setText(u"one two three\nfour five\nsix"_s);
    QTest::mouseDClick(target(), Qt::LeftButton, {}, fixture.pointOf(1));
    QTest::mousePress(target(), Qt::LeftButton, {}, fixture.pointOf(19), 1);
    EXPECT_EQ(fixture.marked(), u"one two three\nfour |five\nsix"_s);
}

TEST_F(Pointer, SelectingALongLineOrWordDoesNotScroll)
{
    setText(QString(u"words "_s).repeated(100) + u"\n"_s + QString(u"more\n"_s).repeated(100));
    QScrollBar *bar = fixture.view.horizontalScrollBar();
    bar->setValue(900);
    const QPoint inside(100, 15);
    QTest::mouseDClick(target(), Qt::LeftButton, {}, inside);
    QTest::mousePress(target(), Qt::LeftButton, {}, inside, 1);
    QTest::mouseRelease(target(), Qt::LeftButton, {}, inside);
    EXPECT_EQ(fixture.view.selection(), (TextSelection{0, 601}));
    EXPECT_EQ(bar->value(), 900);
}

TEST_F(Pointer, AClickRightOfAWrappedRowStandsAtItsEnd)
{
    setText(QString(150, u'x') + u"\n"_s + QString(100, u'水'));
    fixture.view.setWrapMode(TextView::WrapMode::viewWidth);
    LayoutManager &layout = fixture.view.layoutManager();
    for (const qsizetype offset : {qsizetype(0), qsizetype(151)}) {
        const RowPosition row = layout.rowOf(offset);
        const QPoint right(target()->width() - 2, fixture.pointOf(offset).y());
        QTest::mouseClick(target(), Qt::LeftButton, {}, right);
        EXPECT_EQ(fixture.view.selection(), TextSelection::at(layout.rangeOf(row).end()));
        EXPECT_NEAR(fixture.view.caretRectangle().center().y(), fixture.view.viewport()->y() + right.y(), 3) << "in the row clicked at";
        QTest::mouseDClick(target(), Qt::LeftButton, {}, right);
        EXPECT_LT(fixture.view.selection().range().location, layout.rangeOf(row).end());
    }
}

TEST_F(Pointer, TheLastLetterOfASelectionCanBeTakenHoldOf)
{
    setText(u"one ^two| three"_s);
    QTest::mousePress(target(), Qt::LeftButton, {}, beside(6, 0.8));
    EXPECT_EQ(fixture.marked(), u"one ^two| three"_s) << "a drag may follow";
    QTest::mouseRelease(target(), Qt::LeftButton, {}, beside(6, 0.8));
    EXPECT_EQ(fixture.marked(), u"one two| three"_s) << "none did";
    setText(u"one ^two| three"_s);
    QTest::mousePress(target(), Qt::LeftButton, {}, beside(7, 0.8));
    EXPECT_EQ(fixture.marked(), u"one two |three"_s);
}

} // namespace
