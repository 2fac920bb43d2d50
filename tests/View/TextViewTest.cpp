// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "ViewFixture.h"

#include <QApplication>
#include <QPainter>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::string_literals;

namespace {

/// Text with marks, keys, text with marks after; every case is also undone and done again.
struct KeyCase {
    const char *name;
    QString before;
    QString keys;
    QString after;
};

const KeyCase keyCases[] = {
    {"by grapheme", u"|ae\u0301\U0001F600b"_s, u"<Right><Right><Right>"_s, u"ae\u0301\U0001F600|b"_s},
    {"back by grapheme", u"ae\u0301\U0001F600|"_s, u"<Left><Left>"_s, u"a|e\u0301\U0001F600"_s},
    {"a selection is given up at its side", u"a^bc|d"_s, u"<Left>"_s, u"a|bcd"_s},
    {"and at the other", u"a|bc^d"_s, u"<Right>"_s, u"abc|d"_s},
    {"by word back", u"one two|"_s, u"<C-Left>"_s, u"one |two"_s},
    {"home goes to the first letter", u"  ab|c"_s, u"<Home>"_s, u"  |abc"_s},
    {"home again to the start", u"  |abc"_s, u"<Home>"_s, u"|  abc"_s},
    {"down keeps the column", u"abc|d\ne\nfghi"_s, u"<Down><Down>"_s, u"abcd\ne\nfgh|i"_s},
    {"up in the first row", u"ab|c\nd"_s, u"<Up>"_s, u"|abc\nd"_s},
    {"down in the last row", u"a\nb|c"_s, u"<Down>"_s, u"a\nbc|"_s},
    {"document end and start", u"a|\nb"_s, u"<C-End>x<C-Home>"_s, u"|a\nbx"_s},
    {"down by paragraph", u"a|b\nc\n \n\nd\n\ne"_s, u"<A-PageDown>"_s, u"ab\nc\n| \n\nd\n\ne"_s},
    {"from between paragraphs", u"ab\nc\n| \n\nd\n\ne"_s, u"<A-PageDown>"_s, u"ab\nc\n \n\nd\n|\ne"_s},
    {"down behind the last one", u"a\n\n|b\nc"_s, u"<A-PageDown>"_s, u"a\n\nb\nc|"_s},
    {"up by paragraph", u"a\n\nb\n \n\nc\nd|"_s, u"<A-PageUp>"_s, u"a\n\nb\n \n|\nc\nd"_s},
    {"up from between paragraphs", u"a\n\nb\n \n|\nc"_s, u"<A-PageUp>"_s, u"a\n|\nb\n \n\nc"_s},
    {"up before the first one", u"a\nb|\n\nc"_s, u"<A-PageUp>"_s, u"|a\nb\n\nc"_s},
    {"selecting by paragraph", u"a\nb|c\n\nd\n\ne"_s, u"<A-S-PageDown><A-S-PageDown>"_s, u"a\nb^c\n\nd\n|\ne"_s},
    {"selecting back by paragraph", u"a\n\nb\nc|d"_s, u"<A-S-PageUp>"_s, u"a\n|\nb\nc^d"_s},
    {"selecting", u"a|bc\nd"_s, u"<S-Right><S-Down>"_s, u"a^bc\nd|"_s},
    {"selecting to the line end", u"a|bc\nd"_s, u"<S-End>"_s, u"a^bc|\nd"_s},
    {"selecting by word", u"|one two"_s, u"<C-S-Right>"_s, u"^one |two"_s},
    {"all", u"a|b"_s, u"<C-a>"_s, u"^ab|"_s},
    {"typing over a selection", u"a^bcd|e"_s, u"x"_s, u"ax|e"_s},
    {"return and tab", u"a|b"_s, u"<CR><Tab>"_s, u"a\n\t|b"_s},
    {"backspace takes a grapheme", u"ae\u0301|b"_s, u"<BS>"_s, u"a|b"_s},
    {"backspace takes a pair", u"a\U0001F468\u200D\U0001F469|b"_s, u"<BS>"_s, u"a|b"_s},
    {"backspace takes CR LF whole", u"a\r\n|b"_s, u"<BS>"_s, u"a|b"_s},
    {"delete", u"a|e\u0301b"_s, u"<Del>"_s, u"a|b"_s},
    {"nothing at the ends", u"|"_s, u"<BS><Del>"_s, u"|"_s},
    {"delete a selection", u"a^bc|d"_s, u"<Del>"_s, u"a|d"_s},
    {"word back", u"one two|"_s, u"<C-BS>"_s, u"one |"_s},
    {"word forward", u"|one two"_s, u"<C-Del>"_s, u"|two"_s},
    {"to the line start", u"x\nab|c"_s, u"<C-S-BS>"_s, u"x\n|c"_s},
    {"to the line end", u"a|bc\nd"_s, u"<C-S-Del>"_s, u"a|\nd"_s},
    {"copy, cut and paste", u"^ab|c"_s, u"<C-c><C-x><C-v><End><C-v>"_s, u"abcab|"_s},
    {"the other pasteboard keys", u"^ab|c"_s, u"<S-Del><End><S-Insert><S-Insert>"_s, u"cabab|"_s},
};

TEST(TextView, DoesWhatKeysSayAndUndoesIt)
{
    for (const KeyCase &c : keyCases) {
        SCOPED_TRACE(c.name + ": keys "s + c.keys.toStdString() + " on " + c.before.toStdString());
        ViewFixture fixture;
        fixture.setText(c.before);
        const QString before = fixture.text();
        fixture.keys(c.keys);
        EXPECT_EQ(fixture.marked(), c.after);
        while (fixture.undo.canUndo()) {
            fixture.keys(u"<C-z>"_s);
        }
        EXPECT_EQ(fixture.text(), before);
        while (fixture.undo.canRedo()) {
            fixture.keys(u"<C-S-z>"_s);
        }
        EXPECT_EQ(fixture.text(), MarkedText(c.after).text);
    }
}

TEST(TextView, MovingTheCaretAndLeavingTheTextEndARunOfTyping)
{
    ViewFixture fixture;
    fixture.keys(u"ab<Left><Right>cd"_s);
    fixture.view.clearFocus();
    fixture.view.setFocus();
    fixture.keys(u"ef<C-z>"_s);
    EXPECT_EQ(fixture.marked(), u"abcd|"_s);
    fixture.keys(u"<C-z>"_s);
    EXPECT_EQ(fixture.marked(), u"ab|"_s);
    fixture.keys(u"<C-z><C-y><C-y>"_s);
    EXPECT_EQ(fixture.marked(), u"abcd|"_s);
}

TEST(TextView, WrappedRowsHaveTheirOwnEnds)
{
    ViewFixture fixture(u"aaaa bbbb cccc dddd eeee ffff gggg hhhh iiii jjjj\nxy"_s, {200, 200});
    fixture.view.setWrapMode(TextView::WrapMode::viewWidth);
    LayoutManager &layout = fixture.view.layoutManager();
    const qsizetype wrap = layout.rangeOf(layout.rowOf(0)).end();
    ASSERT_LT(wrap, 30);
    fixture.keys(u"<End>"_s);
    EXPECT_EQ(fixture.view.selection().caret, wrap);
    EXPECT_EQ(fixture.view.caretRectangle().top(), fixture.view.viewport()->y() + 8)
        << "the caret is shown at the end of its row, not in the next";
    for (const auto &[keys, caret] : {std::pair(u"<Home>"_s, qsizetype(0)), std::pair(u"<Right><Right><Down>"_s, wrap + 2),
                                      std::pair(u"<Home>"_s, wrap), std::pair(u"<Up>"_s, qsizetype(0))}) {
        fixture.keys(keys);
        EXPECT_EQ(fixture.view.selection().caret, caret) << keys.toStdString();
    }
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
    EXPECT_TRUE(isClaimed(Qt::Key_BraceLeft, Qt::GroupSwitchModifier, u"{"_s)) << "AltGr";
    EXPECT_FALSE(isClaimed(Qt::Key_Adiaeresis, Qt::ControlModifier | Qt::AltModifier, u"ä"_s)) << "may be a shortcut";
    EXPECT_FALSE(isClaimed(Qt::Key_S, Qt::ControlModifier, u"\u0013"_s));
    EXPECT_FALSE(isClaimed(Qt::Key_F, Qt::AltModifier, u"f"_s));
    EXPECT_FALSE(isClaimed(Qt::Key_F10, Qt::NoModifier, {}));
    QTest::keyClick(&fixture.view, Qt::Key_BraceLeft, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(fixture.text(), u"{abc"_s) << "AltGr of some keyboards, when it is none";
    fixture.view.setAccess(TextView::Access::readOnly);
    EXPECT_FALSE(isClaimed(Qt::Key_A, Qt::NoModifier, u"a"_s));
    fixture.keys(u"x<BS><CR>"_s);
    fixture.view.insertText(u"x", {0, 0});
    EXPECT_EQ(fixture.text(), u"{abc"_s);
}

TEST(TextView, ScrollingReachesBothEndsAndThePageKeysMoveTheCaretWithTheText)
{
    // Wide letters at the end take more rows than they are reckoned to before they are measured.
    ViewFixture fixture(QString(u"some words in a line\n"_s).repeated(4000) + (QString(150, u'水') + u"\n"_s).repeated(40), {300, 200});
    fixture.view.setWrapMode(TextView::WrapMode::viewWidth);
    QScrollBar *bar = fixture.view.verticalScrollBar();
    Viewport &port = fixture.view.textViewport();
    bar->setValue(bar->maximum());
    EXPECT_TRUE(port.topOf(fixture.view.layoutManager().rowOf(fixture.storage.length())).has_value());
    bar->setValue(0);
    fixture.keys(u"<PageDown><PageDown>"_s);
    EXPECT_EQ(fixture.storage.text().lineAt(fixture.view.selection().caret), 2 * port.rowsPerPage());
    EXPECT_GT(bar->value(), 0);
    fixture.keys(u"<PageUp><PageUp>"_s);
    EXPECT_EQ(fixture.view.selection().caret, 0);
    EXPECT_EQ(port.anchor(), 0);
    EXPECT_EQ(port.pixelsAbove(), -8);
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
    QImage shown = fixture.image();
    fixture.scheduler.advance(std::chrono::milliseconds(QApplication::cursorFlashTime() / 2 + 1));
    QImage hidden = fixture.image();
    EXPECT_NE(shown, hidden);
    const QRect caret = fixture.view.caretRectangle().translated(-fixture.view.viewport()->pos()).adjusted(-1, 0, 1, 0);
    for (QImage *image : {&shown, &hidden}) {
        QPainter(image).fillRect(caret, Qt::black);
    }
    EXPECT_EQ(shown, hidden);
}

} // namespace
