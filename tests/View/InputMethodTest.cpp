// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/Actions.h"
#include "ViewFixture.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class InputMethod : public testing::Test, public ViewFixture {
protected:
    void compose(const QString &preedit, int caret = -1)
    {
        QList<QInputMethodEvent::Attribute> attributes;
        if (caret >= 0) {
            attributes.append({QInputMethodEvent::Cursor, caret, 1, {}});
        }
        QInputMethodEvent event(preedit, attributes);
        QApplication::sendEvent(&view, &event);
    }
    void commit(const QString &text, int from = 0, int length = 0)
    {
        QInputMethodEvent event;
        event.setCommitString(text, from, length);
        QApplication::sendEvent(&view, &event);
    }
    QVariant ask(Qt::InputMethodQuery query)
    {
        QInputMethodQueryEvent event(query);
        QApplication::sendEvent(&view, &event);
        return event.value(query);
    }
    LayoutManager &layout() { return view.layoutManager(); }
};

TEST_F(InputMethod, ComposingIsShownButIsNoText)
{
    setText(u"a|b"_s);
    const QImage before = image();
    const QRect caret = view.caretRectangle();
    compose(u"nihon"_s, 2);
    EXPECT_EQ(text(), u"ab"_s);
    EXPECT_FALSE(undo.canUndo());
    EXPECT_NE(image(), before);
    EXPECT_NEAR(view.caretRectangle().left(), caret.left() + 2 * layout().cellWidth(), 1.5);
    EXPECT_NEAR(pointOf(2).x(), 6 + 7 * layout().cellWidth(), 1.5) << "what stands behind makes room";
    keys(u"<Esc>"_s);
    EXPECT_FALSE(view.isComposing());
    EXPECT_EQ(image(), before) << "cancelled: as if it had not been";
    compose(u"nihon"_s);
    commit(u"日本"_s);
    EXPECT_EQ(marked(), u"a日本|b"_s);
    keys(u"<C-z>"_s);
    EXPECT_EQ(text(), u"ab"_s) << "a commit is one undo step";
    compose(u"nihon"_s);
    view.redo();
    EXPECT_FALSE(view.isComposing());
    EXPECT_EQ(text(), u"a日本b"_s);
    const std::function<void()> others[] = {[this] { view.perform(Actions::paste); },
                                            [this] { view.setAccess(TextView::Access::readOnly); }};
    for (const auto &other : others) {
        compose(u"nihon"_s);
        other();
        EXPECT_FALSE(view.isComposing());
    }
}

TEST_F(InputMethod, WhatIsSelectedMakesWayAndAReadOnlyTextTakesNothing)
{
    setText(u"a^bc|def"_s);
    compose(u"k"_s);
    EXPECT_EQ(text(), u"adef"_s) << "when composing begins";
    commit(u"か"_s);
    EXPECT_EQ(marked(), u"aか|def"_s);
    view.setAccess(TextView::Access::readOnly);
    commit(u"no"_s);
    EXPECT_EQ(text(), u"aかdef"_s);
    EXPECT_FALSE(ask(Qt::ImEnabled).toBool());
}

TEST_F(InputMethod, AnswersWithAnExcerptOfTheText)
{
    setText(u"start "_s + QString(100'000, u'x') + u" \U0001F600 end"_s);
    const qsizetype caret = 50'000;
    view.setSelection({caret - 3, caret});
    const QString around = ask(Qt::ImSurroundingText).toString();
    EXPECT_LE(around.toUtf8().size(), 4000);
    EXPECT_GE(around.length(), 1000);
    const int position = ask(Qt::ImCursorPosition).toInt();
    EXPECT_EQ(around.left(position), ask(Qt::ImTextBeforeCursor).toString());
    EXPECT_EQ(ask(Qt::ImAnchorPosition).toInt(), position - 3);
    EXPECT_EQ(ask(Qt::ImAbsolutePosition).toInt(), caret);
    keys(u"<C-a>"_s);
    EXPECT_LE(ask(Qt::ImCurrentSelection).toString().length(), 2000);
}

/// A selection goes before what is to be replaced around the caret is counted.
TEST_F(InputMethod, CommitsReplaceTextAroundTheCaretInOneStep)
{
    using Case = std::tuple<QString, int, int, QString>;
    for (const auto &[before, from, length, after] :
         {Case(u"abcê|def"_s, -2, 2, u"abX|def"_s), Case(u"abc^de|fgh"_s, -2, 2, u"aX|fgh"_s), Case(u"abc^de|fgh"_s, 0, 2, u"abcX|h"_s),
          Case(u"abc^de|fgh"_s, -1, 2, u"abX|gh"_s), Case(u"abc^de|fgh"_s, -3, 1, u"X|bcfgh"_s), Case(u"abc^de|fgh"_s, -1, 900, u"abX|"_s),
          Case(u"a\U0001F600|b"_s, -1, 1, u"aX|b"_s)}) {
        setText(before);
        commit(u"X"_s, from, length);
        EXPECT_EQ(marked(), after) << from << ' ' << length;
        keys(u"<C-z>"_s);
        EXPECT_EQ(text(), MarkedText(before).text) << from << ' ' << length;
    }
    commit(u"X"_s, -50, 2); // Is no fault.
}

TEST_F(InputMethod, ComposingStaysAtTheCaretThroughEdits)
{
    setText(u"abc|def"_s);
    compose(u"nihon"_s);
    storage.apply({{0, 1}, u"12345"_s});
    EXPECT_EQ(layout().preedit().offset, 7);
    view.insertText(u"XY", {7, 0});
    EXPECT_EQ(layout().preedit().offset, view.selection().caret);
    storage.apply({{0, storage.length()}, QStringView()});
    (void)image();
    commit(u"日本"_s);
    EXPECT_EQ(marked(), u"日本|"_s);
}

/// In a long line the preedit text stands in one segment, and those behind it make room.
TEST_F(InputMethod, ComposingInALongLine)
{
    setText(QString(u"word "_s).repeated(1000));
    const RowPosition row = layout().rowOf(0);
    qsizetype cut = 0;
    layout().forEachLayout(row, {0, 1}, [&](const SegmentLayout &shown, int, double) { cut = shown.range().end(); });
    const double end = layout().xOf(row, cut + 100);
    for (const qsizetype offset : {cut, cut - 5}) {
        view.setSelection(TextSelection::at(offset), TextView::Reveal::nearest);
        compose(u"nihongo"_s);
        EXPECT_NEAR(layout().xOf(row, cut + 100), end + 7 * layout().cellWidth(), 1) << "at " << offset - cut << " from the cut";
        compose({});
        EXPECT_NEAR(layout().xOf(row, cut + 100), end, 1);
    }
}

TEST_F(InputMethod, TheCaretIsShownInTheRowThatThePreeditWrapsTo)
{
    view.setWrapMode(TextView::WrapMode::viewWidth);
    for (const QString &shown : {u"start of "_s + QString(18, u'x'), QString(u"word "_s).repeated(2000)}) {
        setText(shown + u'|');
        const QString preedit = QString(u"nihon "_s).repeated(12);
        compose(preedit);
        const QRect caret = view.caretRectangle();
        EXPECT_TRUE(view.viewport()->geometry().contains(caret.center()));
        compose(preedit, 0);
        EXPECT_GE(caret.top() - view.caretRectangle().top(), int(layout().rowHeight())) << "72 letters take more than one row";
        compose({});
    }
}

} // namespace
