// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "ViewFixture.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QTextCharFormat>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

void compose(ViewFixture &fixture, const QString &preedit, int caret = -1)
{
    QList<QInputMethodEvent::Attribute> attributes;
    if (caret >= 0) {
        attributes.append({QInputMethodEvent::Cursor, caret, 1, {}});
    }
    QInputMethodEvent event(preedit, attributes);
    QApplication::sendEvent(&fixture.view, &event);
}

void commit(ViewFixture &fixture, const QString &text, int from = 0, int length = 0)
{
    QInputMethodEvent event;
    event.setCommitString(text, from, length);
    QApplication::sendEvent(&fixture.view, &event);
}

QVariant ask(ViewFixture &fixture, Qt::InputMethodQuery query)
{
    QInputMethodQueryEvent event(query);
    QApplication::sendEvent(&fixture.view, &event);
    return event.value(query);
}

TEST(InputMethod, ComposingIsShownButIsNoText)
{
    ViewFixture fixture(u"ab"_s);
    fixture.view.setSelection(TextSelection::at(1));
    const QImage before = fixture.image();
    const QRect caret = fixture.view.caretRectangle();
    compose(fixture, u"nihon"_s, 2);
    EXPECT_EQ(fixture.storage.text().toString(), u"ab"_s);
    EXPECT_FALSE(fixture.undo.canUndo());
    EXPECT_NE(fixture.image(), before);
    EXPECT_NEAR(fixture.view.caretRectangle().left(), caret.left() + 2 * fixture.view.layoutManager().cellWidth(), 1.5);
    EXPECT_NEAR(fixture.pointOf(2).x(), 6 + 7 * fixture.view.layoutManager().cellWidth(), 1.5) << "what stands behind makes room";
    compose(fixture, u"日"_s);
    compose(fixture, {});
    fixture.view.setFocus();
    EXPECT_EQ(fixture.image(), before) << "cancelled: as if it had not been";
    compose(fixture, u"nihon"_s);
    commit(fixture, u"日本"_s);
    EXPECT_EQ(fixture.marked(), u"a日本|b"_s);
    fixture.keys(u"<C-z>"_s);
    EXPECT_EQ(fixture.storage.text().toString(), u"ab"_s) << "a commit is one undo step";
}

TEST(InputMethod, EscapeGivesUpWhatIsComposed)
{
    ViewFixture fixture(u"ab"_s);
    compose(fixture, u"nihon"_s);
    fixture.keys(u"<Esc>"_s);
    EXPECT_FALSE(fixture.view.isComposing());
    EXPECT_EQ(fixture.storage.text().toString(), u"ab"_s);
}

TEST(InputMethod, DeadKeysReplacementAndSelection)
{
    ViewFixture fixture(u"abcdef"_s);
    fixture.view.setSelection(TextSelection::at(3));
    commit(fixture, u"ê"_s);
    EXPECT_EQ(fixture.marked(), u"abcê|def"_s);
    commit(fixture, u"X"_s, -2, 2);
    EXPECT_EQ(fixture.marked(), u"abX|def"_s);
    fixture.view.setSelection({1, 3});
    compose(fixture, u"k"_s);
    EXPECT_EQ(fixture.storage.text().toString(), u"adef"_s) << "what is selected makes way when composing begins";
    commit(fixture, u"か"_s);
    EXPECT_EQ(fixture.marked(), u"aか|def"_s);
    fixture.view.setAccess(TextView::Access::readOnly);
    commit(fixture, u"no"_s);
    EXPECT_EQ(fixture.storage.text().toString(), u"aかdef"_s);
    EXPECT_FALSE(ask(fixture, Qt::ImEnabled).toBool());
}

TEST(InputMethod, AnswersWithAnExcerptOfTheText)
{
    const QString text = u"start "_s + QString(100'000, u'x') + u" \U0001F600 end"_s;
    ViewFixture fixture(text);
    const qsizetype caret = 50'000;
    fixture.view.setSelection({caret - 3, caret});
    const QString around = ask(fixture, Qt::ImSurroundingText).toString();
    EXPECT_LE(around.toUtf8().size(), 4000);
    EXPECT_GE(around.length(), 1000);
    const int position = ask(fixture, Qt::ImCursorPosition).toInt();
    EXPECT_EQ(around.left(position), ask(fixture, Qt::ImTextBeforeCursor).toString());
    EXPECT_EQ(ask(fixture, Qt::ImAnchorPosition).toInt(), position - 3);
    EXPECT_EQ(ask(fixture, Qt::ImAbsolutePosition).toInt(), caret);
    EXPECT_EQ(ask(fixture, Qt::ImCurrentSelection).toString(), u"xxx"_s);
    fixture.keys(u"<C-a>"_s);
    EXPECT_LE(ask(fixture, Qt::ImCurrentSelection).toString().length(), 2000);
    EXPECT_GE(ask(fixture, Qt::ImCursorRectangle).toRect().width(), 1);
}

TEST(InputMethod, ASelectionGoesBeforeAReplacementIsCounted)
{
    struct Case {
        int from;
        int length;
        QString after;
    };
    for (const Case &c : {Case{-2, 2, u"aX|fgh"_s}, Case{0, 2, u"abcX|h"_s}, Case{-1, 2, u"abX|gh"_s}, Case{-3, 1, u"X|bcfgh"_s},
                          Case{-50, 2, {}}, Case{-1, 900, u"abX|"_s}}) {
        ViewFixture fixture(u"abcdefgh"_s);
        fixture.view.setSelection({3, 5});
        commit(fixture, u"X"_s, c.from, c.length);
        if (c.from > -50) {
            EXPECT_EQ(fixture.marked(), c.after) << c.from << ' ' << c.length;
        }
        fixture.keys(u"<C-z>"_s);
        EXPECT_EQ(fixture.storage.text().toString(), u"abcdefgh"_s) << "one step: " << c.from << ' ' << c.length;
    }
    ViewFixture fixture(u"a\U0001F600b"_s);
    fixture.view.setSelection(TextSelection::at(3));
    commit(fixture, u"X"_s, -1, 1);
    EXPECT_EQ(fixture.marked(), u"aX|b"_s) << "half a pair is the whole pair";
}

TEST(InputMethod, ComposingStaysAtTheCaretThroughEdits)
{
    ViewFixture fixture(u"abcdef"_s);
    fixture.view.setSelection(TextSelection::at(3));
    compose(fixture, u"nihon"_s);
    fixture.storage.apply({{0, 1}, u"12345"_s});
    EXPECT_EQ(fixture.view.layoutManager().preedit().offset, 7);
    fixture.view.insertText(u"XY", {7, 0});
    EXPECT_EQ(fixture.view.layoutManager().preedit().offset, fixture.view.selection().caret);
    fixture.storage.apply({{0, fixture.storage.length()}, QStringView()});
    (void)fixture.image();
    commit(fixture, u"日本"_s);
    EXPECT_EQ(fixture.marked(), u"日本|"_s);
}

/// In a long line the preedit text stands in one segment, and those behind it make room.
TEST(InputMethod, ComposingInALongLine)
{
    ViewFixture fixture(QString(u"word "_s).repeated(1000), {800, 200});
    LayoutManager &layout = fixture.view.layoutManager();
    const RowPosition row = layout.rowOf(0);
    qsizetype cut = 0;
    layout.forEachLayout(row, {0, 1}, [&](const SegmentLayout &shown, int, double) { cut = shown.range().end(); });
    const double end = layout.xOf(row, cut + 100);
    for (const qsizetype offset : {cut, cut - 5}) {
        fixture.view.setSelection(TextSelection::at(offset), TextView::Reveal::nearest);
        compose(fixture, u"nihongo"_s);
        EXPECT_NEAR(layout.xOf(row, cut + 100), end + 7 * layout.cellWidth(), 1) << "at " << offset - cut << " from the cut";
        compose(fixture, {});
        EXPECT_NEAR(layout.xOf(row, cut + 100), end, 1);
    }
}

TEST(InputMethod, TheCaretIsShownInTheRowThatThePreeditWrapsTo)
{
    for (const QString &text : {u"start of "_s + QString(18, u'x'), QString(u"word "_s).repeated(2000)}) {
        ViewFixture fixture(text, {300, 200});
        fixture.view.setWrapMode(TextView::WrapMode::viewWidth);
        fixture.view.setSelection(TextSelection::at(fixture.storage.length()), TextView::Reveal::nearest);
        const QRect before = fixture.view.caretRectangle();
        const QString preedit = QString(u"nihon "_s).repeated(12);
        compose(fixture, preedit);
        const QRect caret = fixture.view.caretRectangle();
        const int rowHeight = static_cast<int>(fixture.view.layoutManager().rowHeight());
        EXPECT_TRUE(fixture.view.viewport()->geometry().contains(caret.center()));
        compose(fixture, preedit, 0);
        EXPECT_GE(caret.top() - fixture.view.caretRectangle().top(), rowHeight) << "72 letters take more than one row";
        compose(fixture, {});
        EXPECT_EQ(fixture.view.caretRectangle().left(), before.left());
    }
}

} // namespace
