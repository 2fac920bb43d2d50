// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "ViewFixture.h"

#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Text with marks, keys, text with marks after; every case is also undone and done again.
struct KeyCase {
    const char *name;
    QString before;
    QString keys;
    QString after;
};

class Keys : public testing::TestWithParam<KeyCase> {};

TEST_P(Keys, DoAndUndo)
{
    const KeyCase &c = GetParam();
    const MarkedText before(c.before);
    ViewFixture fixture(before.text);
    fixture.view.setSelection(before.selection);
    fixture.keys(c.keys);
    EXPECT_EQ(fixture.marked(), c.after) << c.name << ": keys " << c.keys.toStdString() << " on " << c.before.toStdString();
    if (fixture.undo.canUndo()) {
        while (fixture.undo.canUndo()) {
            fixture.keys(u"<C-z>"_s);
        }
        EXPECT_EQ(fixture.storage.text().toString(), before.text) << c.name;
        while (fixture.undo.canRedo()) {
            fixture.keys(u"<C-S-z>"_s);
        }
        EXPECT_EQ(fixture.storage.text().toString(), MarkedText(c.after).text) << c.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Moving, Keys,
                         testing::Values(KeyCase{"by grapheme", u"|ae\u0301\U0001F600b"_s, u"<Right><Right><Right>"_s,
                                                 u"ae\u0301\U0001F600|b"_s},
                                         KeyCase{"back by grapheme", u"ae\u0301\U0001F600|"_s, u"<Left><Left>"_s, u"a|e\u0301\U0001F600"_s},
                                         KeyCase{"a selection is given up at its side", u"a^bc|d"_s, u"<Left>"_s, u"a|bcd"_s},
                                         KeyCase{"and at the other", u"a|bc^d"_s, u"<Right>"_s, u"abc|d"_s},
                                         KeyCase{"by word", u"|one two"_s, u"<C-Right>"_s, u"one |two"_s},
                                         KeyCase{"by word back", u"one two|"_s, u"<C-Left>"_s, u"one |two"_s},
                                         KeyCase{"home goes to the first letter", u"  ab|c"_s, u"<Home>"_s, u"  |abc"_s},
                                         KeyCase{"home again to the start", u"  |abc"_s, u"<Home>"_s, u"|  abc"_s},
                                         KeyCase{"end", u"a|bc\nd"_s, u"<End>"_s, u"abc|\nd"_s},
                                         KeyCase{"down keeps the column", u"abc|d\ne\nfghi"_s, u"<Down><Down>"_s, u"abcd\ne\nfgh|i"_s},
                                         KeyCase{"up in the first row", u"ab|c\nd"_s, u"<Up>"_s, u"|abc\nd"_s},
                                         KeyCase{"down in the last row", u"a\nb|c"_s, u"<Down>"_s, u"a\nbc|"_s},
                                         KeyCase{"document end", u"|a\nb"_s, u"<C-End>"_s, u"a\nb|"_s},
                                         KeyCase{"document start", u"a\nb|"_s, u"<C-Home>"_s, u"|a\nb"_s},
                                         KeyCase{"selecting", u"a|bc\nd"_s, u"<S-Right><S-Down>"_s, u"a^bc\nd|"_s},
                                         KeyCase{"selecting to the line end", u"a|bc\nd"_s, u"<S-End>"_s, u"a^bc|\nd"_s},
                                         KeyCase{"selecting by word", u"|one two"_s, u"<C-S-Right>"_s, u"^one |two"_s},
                                         KeyCase{"all", u"a|b"_s, u"<C-a>"_s, u"^ab|"_s}));

INSTANTIATE_TEST_SUITE_P(
    Editing, Keys,
    testing::Values(KeyCase{"typing", u"a|c"_s, u"b"_s, u"ab|c"_s}, KeyCase{"typing over a selection", u"a^bcd|e"_s, u"x"_s, u"ax|e"_s},
                    KeyCase{"return", u"a|b"_s, u"<CR>"_s, u"a\n|b"_s}, KeyCase{"tab", u"a|b"_s, u"<Tab>"_s, u"a\t|b"_s},
                    KeyCase{"backspace takes a grapheme", u"ae\u0301|b"_s, u"<BS>"_s, u"a|b"_s},
                    KeyCase{"backspace takes a pair", u"a\U0001F468\u200D\U0001F469|b"_s, u"<BS>"_s, u"a|b"_s},
                    KeyCase{"backspace takes CR LF whole", u"a\r\n|b"_s, u"<BS>"_s, u"a|b"_s},
                    KeyCase{"backspace at the start", u"|ab"_s, u"<BS>"_s, u"|ab"_s},
                    KeyCase{"delete", u"a|e\u0301b"_s, u"<Del>"_s, u"a|b"_s}, KeyCase{"delete at the end", u"ab|"_s, u"<Del>"_s, u"ab|"_s},
                    KeyCase{"delete a selection", u"a^bc|d"_s, u"<Del>"_s, u"a|d"_s},
                    KeyCase{"word back", u"one two|"_s, u"<C-BS>"_s, u"one |"_s},
                    KeyCase{"word forward", u"|one two"_s, u"<C-Del>"_s, u"|two"_s},
                    KeyCase{"to the line start", u"x\nab|c"_s, u"<C-S-BS>"_s, u"x\n|c"_s},
                    KeyCase{"to the line end", u"a|bc\nd"_s, u"<C-S-Del>"_s, u"a|\nd"_s},
                    KeyCase{"cut and paste", u"^ab|c"_s, u"<C-x><End><C-v>"_s, u"cab|"_s},
                    KeyCase{"copy and paste", u"^ab|"_s, u"<C-c><End><C-v>"_s, u"abab|"_s},
                    KeyCase{"the other pasteboard keys", u"^ab|c"_s, u"<S-Del><End><S-Insert><S-Insert>"_s, u"cabab|"_s}));

TEST(TextView, TypingUndoesInRunsThatPausesAndCaretJumpsEnd)
{
    ViewFixture fixture;
    fixture.keys(u"ab"_s);
    fixture.scheduler.advance(std::chrono::milliseconds(1500));
    fixture.keys(u"cd<Home>e"_s);
    fixture.keys(u"<C-z>"_s);
    EXPECT_EQ(fixture.marked(), u"|abcd"_s);
    fixture.keys(u"<C-z>"_s);
    EXPECT_EQ(fixture.marked(), u"ab|"_s);
    fixture.keys(u"<C-z>"_s);
    EXPECT_EQ(fixture.marked(), u"|"_s);
    fixture.keys(u"<C-y><C-y><C-y>"_s);
    EXPECT_EQ(fixture.marked(), u"e|abcd"_s);
}

TEST(TextView, WrappedRowsHaveTheirOwnEnds)
{
    ViewFixture fixture(u"aaaa bbbb cccc dddd eeee ffff gggg hhhh iiii jjjj\nxy"_s, {200, 200});
    fixture.view.setWrapMode(TextView::WrapMode::viewWidth);
    LayoutManager &layout = fixture.view.layoutManager();
    const RowPosition first = layout.rowOf(0);
    const qsizetype wrap = layout.rangeOf(first).end();
    ASSERT_LT(wrap, 30);
    fixture.keys(u"<End>"_s);
    EXPECT_EQ(fixture.view.selection().caret, wrap);
    EXPECT_EQ(fixture.view.caretRectangle().top(), fixture.view.viewport()->y() + 8)
        << "the caret is shown at the end of its row, not in the next";
    fixture.keys(u"<Home>"_s);
    EXPECT_EQ(fixture.view.selection().caret, 0);
    fixture.keys(u"<Right><Right><Down>"_s);
    EXPECT_EQ(fixture.view.selection().caret, wrap + 2);
    fixture.keys(u"<Home>"_s);
    EXPECT_EQ(fixture.view.selection().caret, wrap);
    fixture.keys(u"<Up>"_s);
    EXPECT_EQ(fixture.view.selection().caret, 0);
    EXPECT_EQ(fixture.view.horizontalScrollBar()->maximum(), 0);
}

TEST(TextView, ShortcutOverrideClaimsTextAndEditingKeysOnly)
{
    ViewFixture fixture(u"abc"_s);
    const auto isClaimed = [&](int key, Qt::KeyboardModifiers modifiers, const QString &text) {
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, text);
        event.ignore();
        QApplication::sendEvent(&fixture.view, &event);
        return event.isAccepted();
    };
    EXPECT_TRUE(isClaimed(Qt::Key_A, Qt::NoModifier, u"a"_s));
    EXPECT_TRUE(isClaimed(Qt::Key_Z, Qt::ControlModifier, u"\u001A"_s));
    EXPECT_TRUE(isClaimed(Qt::Key_Backspace, Qt::ControlModifier, u"\u007F"_s));
    EXPECT_TRUE(isClaimed(Qt::Key_BraceLeft, Qt::GroupSwitchModifier, u"{"_s)) << "AltGr";
    EXPECT_FALSE(isClaimed(Qt::Key_Adiaeresis, Qt::ControlModifier | Qt::AltModifier, u"ä"_s)) << "may be a shortcut";
    EXPECT_FALSE(isClaimed(Qt::Key_S, Qt::ControlModifier, u"\u0013"_s));
    EXPECT_FALSE(isClaimed(Qt::Key_F, Qt::AltModifier, u"f"_s));
    EXPECT_FALSE(isClaimed(Qt::Key_Control, Qt::ControlModifier, {}));
    EXPECT_FALSE(isClaimed(Qt::Key_F10, Qt::NoModifier, {}));
    QTest::keyClick(&fixture.view, Qt::Key_BraceLeft, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(fixture.storage.text().toString(), u"{abc"_s) << "AltGr of some keyboards, when it is none";
    fixture.view.setAccess(TextView::Access::readOnly);
    EXPECT_FALSE(isClaimed(Qt::Key_A, Qt::NoModifier, u"a"_s));
    fixture.keys(u"x<BS><CR>"_s);
    fixture.view.insertText(u"x", {0, 0});
    EXPECT_FALSE(fixture.storage.text().toString().contains(u'x'));
}

TEST(TextView, PointerSelectsByLetterWordAndLine)
{
    ViewFixture fixture(u"one two three\nfour five\nsix"_s);
    QWidget *target = fixture.view.viewport();
    const auto press = [&](qsizetype offset, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mousePress(target, Qt::LeftButton, modifiers, fixture.pointOf(offset));
    };
    const auto moveTo = [&](qsizetype offset) {
        QMouseEvent event(QEvent::MouseMove, fixture.pointOf(offset), target->mapToGlobal(fixture.pointOf(offset)), Qt::NoButton,
                          Qt::LeftButton, {});
        QApplication::sendEvent(target, &event);
    };
    const auto release = [&](qsizetype offset) { QTest::mouseRelease(target, Qt::LeftButton, {}, fixture.pointOf(offset)); };
    press(2);
    moveTo(16);
    release(16);
    EXPECT_EQ(fixture.marked(), u"on^e two three\nfo|ur five\nsix"_s);
    press(5, Qt::ShiftModifier);
    release(5);
    EXPECT_EQ(fixture.marked(), u"on^e t|wo three\nfour five\nsix"_s);
    QTest::mouseDClick(target, Qt::LeftButton, {}, fixture.pointOf(9));
    EXPECT_EQ(fixture.marked(), u"one two ^three|\nfour five\nsix"_s);
    moveTo(1);
    release(1);
    EXPECT_EQ(fixture.marked(), u"|one two three^\nfour five\nsix"_s) << "by whole words, the first one included";
    QTest::mouseDClick(target, Qt::LeftButton, {}, fixture.pointOf(16));
    QTest::mousePress(target, Qt::LeftButton, {}, fixture.pointOf(16), 1);
    EXPECT_EQ(fixture.marked(), u"one two three\n^four five\n|six"_s);
    release(16);
}

TEST(TextView, DraggingBeyondTheEdgeScrolls)
{
    ViewFixture fixture(QString(u"line\n"_s).repeated(200), {300, 120});
    QWidget *target = fixture.view.viewport();
    QTest::mousePress(target, Qt::LeftButton, {}, {20, 20});
    QMouseEvent event(QEvent::MouseMove, QPointF(20, 200), target->mapToGlobal(QPointF(20, 200)), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(target, &event);
    const qsizetype before = fixture.view.selection().caret;
    fixture.scheduler.advance(std::chrono::milliseconds(300));
    EXPECT_GT(fixture.view.selection().caret, before);
    EXPECT_GT(fixture.view.verticalScrollBar()->value(), 100);
    QTest::mouseRelease(target, Qt::LeftButton, {}, {20, 100});
    const int rest = fixture.view.verticalScrollBar()->value();
    fixture.scheduler.advance(std::chrono::milliseconds(300));
    EXPECT_EQ(fixture.view.verticalScrollBar()->value(), rest);
}

TEST(TextView, PrimarySelectionIsPublishedLazilyAndPastedAtThePointer)
{
    ViewFixture fixture(u"one two"_s);
    fixture.view.setSelection({0, 3});
    EXPECT_FALSE(fixture.pasteboard.ownsPrimary());
    fixture.scheduler.advance(std::chrono::milliseconds(200));
    fixture.storage.apply({{0, 1}, u"X"_s});
    EXPECT_EQ(fixture.pasteboard.primaryText(), u"one"_s) << "what was selected, not what stands there now";
    fixture.pasteboard.setText(u"clip"_s);
    QTest::mouseClick(fixture.view.viewport(), Qt::MiddleButton, {}, fixture.pointOf(7));
    EXPECT_EQ(fixture.storage.text().toString(), u"Xne twoone"_s);
    EXPECT_EQ(fixture.pasteboard.text(), u"clip"_s);
}

TEST(TextView, WhatComesFromElsewhereHasLineFeedsOnly)
{
    ViewFixture fixture;
    fixture.pasteboard.setText(u"a\r\nb\rc\n"_s);
    fixture.keys(u"<C-v>"_s);
    EXPECT_EQ(fixture.storage.string(), u"a\nb\nc\n"_s);
    fixture.pasteboard.setPrimaryFromElsewhere(u"\r\n"_s);
    QTest::mouseClick(fixture.view.viewport(), Qt::MiddleButton, {}, fixture.pointOf(0));
    EXPECT_EQ(fixture.storage.string(), u"\na\nb\nc\n"_s);
}

TEST(TextView, DropsInsertAndFilesPassThrough)
{
    ViewFixture fixture(u"one two"_s);
    QMimeData data;
    data.setText(u"NEW"_s);
    const QPoint at = fixture.pointOf(4);
    const auto drop = [&](const QMimeData &content) {
        QDragEnterEvent enter(at, Qt::CopyAction, &content, Qt::LeftButton, {});
        QApplication::sendEvent(fixture.view.viewport(), &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        QDropEvent event(at, Qt::CopyAction, &content, Qt::LeftButton, {});
        QApplication::sendEvent(fixture.view.viewport(), &event);
        return event.isAccepted();
    };
    EXPECT_TRUE(drop(data));
    EXPECT_EQ(fixture.marked(), u"one ^NEW|two"_s);
    fixture.keys(u"<C-z>"_s);
    EXPECT_EQ(fixture.storage.text().toString(), u"one two"_s);
    QMimeData files;
    files.setUrls({QUrl(u"file:///etc/hostname"_s)});
    EXPECT_FALSE(drop(files));
}

TEST(TextView, ScrollPositionHoldsWhileOthersEditAbove)
{
    ViewFixture fixture(QString(u"some line of text\n"_s).repeated(500));
    TextView other(fixture.storage, fixture.undo, {fixture.scheduler, fixture.pasteboard}, testFont());
    other.setTextFont(testFont());
    other.resize(200, 150);
    other.setWrapMode(TextView::WrapMode::viewWidth);
    other.show();
    fixture.view.verticalScrollBar()->setValue(3000);
    other.setSelection(TextSelection::at(fixture.storage.length() - 5), TextView::Reveal::center);
    const qsizetype top = fixture.view.textViewport().anchor();
    const double above = fixture.view.textViewport().pixelsAbove();
    const qsizetype otherTop = other.textViewport().anchor();
    QImage before = fixture.image();
    other.insertText(u"new\nlines\n\n", {0, 0});
    EXPECT_EQ(fixture.view.textViewport().anchor(), top + 11);
    EXPECT_EQ(fixture.view.textViewport().pixelsAbove(), above);
    EXPECT_EQ(fixture.image(), before) << "the picture stands still";
    EXPECT_NE(other.textViewport().anchor(), otherTop) << "the view that typed shows what it typed";
    fixture.view.insertText(u"x", {0, 1});
    EXPECT_EQ(other.storage().length(), fixture.storage.length());
}

TEST(TextView, WheelMovesByPixelsAndZooms)
{
    ViewFixture fixture(QString(u"line\n"_s).repeated(100));
    std::vector<int> zooms;
    QObject::connect(&fixture.view, &TextView::zoomRequested, &fixture.view, [&](int steps) { zooms.push_back(steps); });
    const auto wheel = [&](QPoint angle, Qt::KeyboardModifiers modifiers) {
        QWheelEvent event(QPointF(50, 50), fixture.view.mapToGlobal(QPointF(50, 50)), {}, angle, Qt::NoButton, modifiers, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(fixture.view.viewport(), &event);
    };
    wheel({0, -15}, {});
    wheel({0, -15}, {});
    const double expected = 2 * 15.0 / 120 * QApplication::wheelScrollLines() * fixture.view.layoutManager().rowHeight();
    EXPECT_NEAR(fixture.view.textViewport().position().y(), expected, 1);
    wheel({0, 60}, Qt::ControlModifier);
    wheel({0, 60}, Qt::ControlModifier);
    wheel({0, -240}, Qt::ControlModifier);
    EXPECT_EQ(zooms, (std::vector<int>{1, -2}));
}

TEST(TextView, ScrollingReachesBothEndsAndThePageKeysMoveTheCaretWithTheText)
{
    ViewFixture fixture(QString(u"some words in a line\n"_s).repeated(300));
    QScrollBar *bar = fixture.view.verticalScrollBar();
    bar->setValue(bar->maximum());
    EXPECT_TRUE(fixture.view.textViewport().topOf(fixture.view.layoutManager().rowOf(fixture.storage.length())).has_value());
    bar->setValue(0);
    EXPECT_EQ(fixture.view.textViewport().anchor(), 0);
    EXPECT_EQ(fixture.view.textViewport().pixelsAbove(), -8);
    fixture.keys(u"<PageDown><PageDown>"_s);
    const qsizetype rows = fixture.view.textViewport().rowsPerPage();
    EXPECT_EQ(fixture.storage.text().lineAt(fixture.view.selection().caret), 2 * rows);
    EXPECT_GT(bar->value(), 0);
    fixture.keys(u"<PageUp><PageUp>"_s);
    EXPECT_EQ(fixture.view.selection().caret, 0);
    EXPECT_EQ(fixture.view.textViewport().pixelsAbove(), -8);
    fixture.keys(u"<C-Down><C-Down>"_s);
    EXPECT_EQ(fixture.view.selection().caret, 0);
    EXPECT_GT(bar->value(), 0);
}

/// A window that is not shown yet has no room for them.
TEST(TextView, WhatIsShownInNoRoomBeginsWithTheCaret)
{
    ViewFixture fixture(QString(200, u'x'), {4, 300});
    fixture.view.setSelection(TextSelection::at(0), TextView::Reveal::nearest);
    fixture.view.resize(400, 300);
    EXPECT_EQ(fixture.view.horizontalScrollBar()->value(), 0);
}

TEST(TextView, BlinkingTouchesTheCaretOnly)
{
    ViewFixture fixture(u"some text"_s);
    const QImage shown = fixture.image();
    fixture.scheduler.advance(std::chrono::milliseconds(QApplication::cursorFlashTime() / 2 + 1));
    const QImage hidden = fixture.image();
    const QRect inView = fixture.view.caretRectangle().translated(-fixture.view.viewport()->pos()).adjusted(-1, 0, 1, 0);
    const double dpr = shown.devicePixelRatio();
    const QRect caret = QRectF(QPointF(inView.topLeft()) * dpr, QSizeF(inView.size()) * dpr).toAlignedRect();
    EXPECT_NE(shown, hidden);
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            if (shown.pixel(x, y) != hidden.pixel(x, y)) {
                ASSERT_TRUE(caret.contains(x, y)) << x << ',' << y;
            }
        }
    }
}

} // namespace
