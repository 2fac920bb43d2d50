// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/CompletionPanel.h"
#include "Editor/PendingKeysPanel.h"
#include "Editor/SubstitutionPanel.h"
#include "Editor/VimListPanel.h"
#include "UI/VimBadge.h"
#include "WindowFixture.h"

#include <QInputMethodEvent>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

namespace {

class ModalEditingTest : public WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        preferences.set(Settings::vimMode, true);
    }
    void start(const QByteArray &content) { workspace().open({put(u"a.txt"_s, content)}); }
    void commit(const QString &text) const
    {
        QInputMethodEvent event;
        event.setCommitString(text);
        QCoreApplication::sendEvent(&textView(), &event);
    }
    [[nodiscard]] bool takesInputMethod() const
    {
        QInputMethodQueryEvent query(Qt::ImEnabled);
        QCoreApplication::sendEvent(&textView(), &query);
        return query.value(Qt::ImEnabled).toBool();
    }
    [[nodiscard]] bool claims(Qt::Key key, Qt::KeyboardModifiers modifiers, const QString &text = {}) const
    {
        QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, text);
        event.ignore();
        QCoreApplication::sendEvent(&textView(), &event);
        return event.isAccepted();
    }
    [[nodiscard]] QString badge() const { return workspace().statusBar().findChild<VimBadge *>()->text().trimmed(); }
    [[nodiscard]] TextDocument &document() const { return *workspace().currentDocument(); }
    [[nodiscard]] qsizetype caret() const { return textView().selection().caret; }
    [[nodiscard]] double rowHeight() const { return textView().layoutManager().rowHeight(); }
    /// The ground of a low letter at `offset`, if that is seen, has a colour.
    [[nodiscard]] bool isMarked(qsizetype offset) const
    {
        const QPoint place = pointIn(textView(), offset) - QPoint(-2, int(rowHeight() / 2) - 2);
        const QImage image = textView().viewport()->grab().toImage();
        return image.rect().contains(place) && image.pixelColor(place) != textView().colors().background;
    }
};

} // namespace

TEST_F(ModalEditingTest, AnInsertSessionIsOneStepOfUndoUntilTheFocusGoes)
{
    start("one two\n");
    const QString after = u"first,\nsecond two\n"_s;
    for (const auto &[keys, wanted] :
         {std::pair(u"cwfirst, <BS><CR>second <Esc>"_s, after), {u"u"_s, u"one two\n"_s}, {u"<C-r>"_s, after}}) {
        press(keys);
        EXPECT_EQ(text(), wanted) << keys.toStdString();
    }
    press(u"ggIa"_s);
    textView().clearFocus();
    textView().setFocus();
    press(u"b<Esc>u"_s);
    EXPECT_EQ(text(), u'a' + after);
    press(u"Ic"_s);
    send(Actions::undo);
    EXPECT_EQ(text(), u'a' + after) << "from the menu";
}

TEST_F(ModalEditingTest, InputMethodsTypeTextAndNoCommands)
{
    start("one tw\u00e9\n");
    EXPECT_FALSE(takesInputMethod());
    commit(u"dd"_s);
    EXPECT_EQ(text(), u"one tw\u00e9\n"_s) << "it comes too late";
    type(u"f"_s);
    EXPECT_TRUE(takesInputMethod());
    commit(u"é"_s);
    EXPECT_EQ(caret(), 6);
    type(u"0i"_s);
    EXPECT_TRUE(takesInputMethod());
    commit(u"日本"_s);
    press(u"<Esc>."_s);
    EXPECT_EQ(text(), u"日日本本one tw\u00e9\n"_s) << "repeated like typed text";
    preferences.set(Settings::vimMode, false);
    EXPECT_TRUE(takesInputMethod());
}

TEST_F(ModalEditingTest, ControlChordsThatItHasNoUseForStayShortcuts)
{
    using enum Qt::KeyboardModifier;
    for (const Qt::Key key : {Qt::Key_R, Qt::Key_D, Qt::Key_U, Qt::Key_F, Qt::Key_B, Qt::Key_W, Qt::Key_C, Qt::Key_BracketLeft}) {
        EXPECT_TRUE(claims(key, ControlModifier)) << key;
    }
    for (const Qt::Key key : {Qt::Key_S, Qt::Key_N, Qt::Key_T, Qt::Key_P, Qt::Key_G, Qt::Key_L}) {
        EXPECT_FALSE(claims(key, ControlModifier)) << key;
    }
    EXPECT_FALSE(claims(Qt::Key_F, ControlModifier | ShiftModifier)) << "the other key of Find";
    for (const QString &keys : {u""_s, u"v"_s, u"<Esc>i"_s, u"<Esc>:"_s, u"<Esc><C-w>"_s, u"<Esc>"_s}) {
        press(keys);
        for (const Qt::Key key : {Qt::Key_D, Qt::Key_F, Qt::Key_W, Qt::Key_BracketRight}) {
            EXPECT_FALSE(claims(key, ControlModifier | AltModifier)) << keys.toStdString() << key;
        }
    }
    EXPECT_FALSE(claims(Qt::Key_J, AltModifier));
    EXPECT_FALSE(claims(Qt::Key_Adiaeresis, ControlModifier | AltModifier, u"ä"_s)) << "writes a letter all the same";
    preferences.set(Settings::vimKeymapPreset, VimKeymapPreset::lazyVim);
    EXPECT_TRUE(claims(Qt::Key_S, ControlModifier));
    EXPECT_TRUE(claims(Qt::Key_J, AltModifier));
    type(u"i"_s);
    EXPECT_FALSE(claims(Qt::Key_S, ControlModifier));
    for (const Qt::Key key : {Qt::Key_C, Qt::Key_H, Qt::Key_R, Qt::Key_U, Qt::Key_W}) {
        EXPECT_TRUE(claims(key, ControlModifier)) << key;
    }
    press(u"<Esc>:"_s);
    for (const Qt::Key key : {Qt::Key_S, Qt::Key_N, Qt::Key_T, Qt::Key_Q, Qt::Key_V, Qt::Key_W}) {
        EXPECT_TRUE(claims(key, ControlModifier)) << key;
    }
    EXPECT_TRUE(claims(Qt::Key_F, AltModifier, u"f"_s));
    press(u"<A-f>"_s);
    EXPECT_EQ(badge(), u":█"_s);
}

TEST_F(ModalEditingTest, ExactCommandLinesAreCompletedAndKept)
{
    start("one\n");
    const QString folder = QFileInfo(put(u"alpha.txt"_s, "alpha\n")).path();
    preferences.set(Settings::vimExact, true);
    press(u":e "_s);
    type(folder + u"/al"_s);
    press(u"<Tab>"_s);
    QCoreApplication::processEvents();
    EXPECT_EQ(badge(), u":e "_s + folder + u"/alpha.txt"_s) << "in place of the block that stands for a cursor";
    press(u"<CR>"_s);
    EXPECT_EQ(document().path(), folder + u"/alpha.txt"_s);
    press(u":zz<S-Left>no <Esc>/x<S-Tab>"_s);
    EXPECT_EQ(badge(), u"/x"_s) << "the keyboard stays where it is";
    press(u"<Esc>:<Up>"_s);
    EXPECT_EQ(badge(), u":no zz"_s);
    press(u"<Esc>"_s);
    send(Actions::clearFindHistory);
    EXPECT_TRUE(vimHistory.isEmpty());
}

TEST_F(ModalEditingTest, MarksLeadToOtherFilesAndFunctionKeysToMappings)
{
    preferences.set(Settings::vimExact, true);
    start("one\n  two\nthree\n");
    TextDocument &first = document();
    press(u"jllmA"_s);
    workspace().open({put(u"b.txt"_s, "x\n")});
    press(u"'A"_s);
    EXPECT_EQ(&document(), &first);
    EXPECT_EQ(caret(), 6) << "the first that is no blank";
    send(Actions::closeTab);
    QCoreApplication::processEvents();
    ASSERT_NE(&document(), &first);
    press(u"`A"_s);
    EXPECT_EQ(document().displayName(), u"a.txt"_s) << "opened again";
    EXPECT_EQ(caret(), 6);
    EXPECT_FALSE(claims(Qt::Key_F5, Qt::NoModifier));
    type(u":nmap <F5> x"_s);
    press(u"<CR>"_s);
    EXPECT_TRUE(claims(Qt::Key_F5, Qt::NoModifier));
    QTest::keyClick(&textView(), Qt::Key_F5);
    EXPECT_EQ(text(), u"one\n  wo\nthree\n"_s);
}

TEST_F(ModalEditingTest, ChordsAreShortcutsWhereTheUserWantsThemToBe)
{
    using enum Qt::KeyboardModifier;
    const auto claimsAll = [this](std::initializer_list<Qt::Key> keys) {
        return std::ranges::count_if(keys, [this](Qt::Key key) { return claims(key, ControlModifier); });
    };
    start("one two one\n");
    preferences.set(Settings::vimChords, {u"w=quillet"_s, u"d=quillet"_s, u"k=quillet"_s, u"[=quillet"_s, u"later"_s});
    for (const QString &keys : {u""_s, u"v"_s, u"<Esc>i"_s, u"<Esc>"_s}) {
        press(keys);
        EXPECT_EQ(claimsAll({Qt::Key_W, Qt::Key_D, Qt::Key_BracketLeft}), 0) << keys.toStdString();
        EXPECT_TRUE(claims(Qt::Key_R, ControlModifier));
    }
    EXPECT_EQ(badge(), u"NORMAL"_s) << "Escape is always Vim’s";
    QTest::keyClick(&textView(), Qt::Key_D, ControlModifier);
    EXPECT_EQ(textView().selection().range(), (TextRange{0, 3}));
    press(u"<Esc>i<C-r>"_s);
    EXPECT_TRUE(claims(Qt::Key_W, ControlModifier)) << "the name of a register";
    press(u"<Esc><Esc>:"_s);
    EXPECT_TRUE(claims(Qt::Key_W, ControlModifier));
    press(u"<Esc>"_s);
    preferences.set(Settings::vimChords, {u"k=quillet"_s});
    EXPECT_EQ(claimsAll({Qt::Key_W, Qt::Key_D, Qt::Key_K}), 2);
    press(u"<C-w>"_s);
    EXPECT_TRUE(claims(Qt::Key_K, ControlModifier)) << "goes on with what was begun";
}

TEST_F(ModalEditingTest, AnExactSearchIsShownWhileItIsTyped)
{
    const QByteArray lines = QByteArray("line\n").repeated(100);
    start(lines + "xx\n" + lines + "xx\n" + lines);
    preferences.set(Settings::vimExact, true);
    const qsizetype first = 500;
    const qsizetype second = 1003;
    flashes.clear();
    const double top = textView().scrollOffset();
    press(u"/xx"_s);
    EXPECT_TRUE(isMarked(first));
    EXPECT_EQ(caret(), 0);
    press(u"<C-g>"_s);
    EXPECT_TRUE(isMarked(second));
    press(u"<C-t>"_s);
    EXPECT_TRUE(isMarked(first));
    press(u"<BS><BS>\\(xx"_s);
    EXPECT_EQ(textView().scrollOffset(), top) << "half a pattern";
    press(u"\\)"_s);
    EXPECT_TRUE(isMarked(first));
    press(u"<Esc>"_s);
    EXPECT_EQ(textView().scrollOffset(), top);
    EXPECT_EQ(caret(), 0);
    press(u"/xx<C-t>"_s);
    const double seen = textView().scrollOffset();
    press(u"<CR>"_s);
    EXPECT_EQ(caret(), second);
    EXPECT_EQ(textView().scrollOffset(), seen) << "nothing jumps once more";
    EXPECT_EQ(flashes, QStringList());
    preferences.set(Settings::vimIncSearch, false);
    press(u"gg/xx"_s);
    EXPECT_LE(textView().scrollOffset(), top);
}

TEST_F(ModalEditingTest, AWorkerLooksForWhatIsTypedInALongText)
{
    start(QByteArray("line\n").repeated(300'000) + "xx\n");
    preferences.set(Settings::vimExact, true);
    const double top = textView().scrollOffset();
    workers.isHeld = true;
    press(u"/x"_s);
    EXPECT_EQ(badge(), u"/x"_s);
    press(u"x"_s);
    EXPECT_EQ(badge(), u"/xx"_s) << "keys do not wait";
    EXPECT_EQ(textView().scrollOffset(), top);
    workers.finish();
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(isMarked(1'500'000));
    press(u"<BS>"_s);
    press(u"<Esc>"_s);
    workers.finish();
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(textView().scrollOffset(), top);
}

TEST_F(ModalEditingTest, HitsOfAnExactSearchAreMarkedTillTheyAreHidden)
{
    start("line\nxx a xx\nxx\n");
    preferences.set(Settings::highlightCurrentLine, false);
    preferences.set(Settings::vimExact, true);
    preferences.set(Settings::vimHlSearch, true);
    const auto marked = [this] {
        QString all;
        for (const qsizetype offset : {2, 5, 8, 10, 13}) {
            all += isMarked(offset) ? u'+' : u'-';
        }
        return all;
    };
    press(u"/xx"_s);
    EXPECT_EQ(marked(), u"-+-++"_s);
    press(u"<CR>gg"_s);
    scheduler.advance(std::chrono::seconds(2));
    EXPECT_EQ(marked(), u"-+-++"_s);
    press(u":noh<CR>"_s);
    EXPECT_EQ(marked(), u"-----"_s);
    press(u"ngg"_s);
    scheduler.advance(std::chrono::seconds(2));
    EXPECT_EQ(marked(), u"-+-++"_s);
    preferences.set(Settings::vimExact, false);
    EXPECT_EQ(marked(), u"-----"_s);
}

TEST_F(ModalEditingTest, WhatAnExactSubstitutionWouldDoIsShown)
{
    start("xx a\n" + QByteArray("line\n").repeated(100) + "xx b xx\nxx\n");
    preferences.set(Settings::highlightCurrentLine, false);
    preferences.set(Settings::vimExact, true);
    const auto &panel = *textView().findChild<SubstitutionPanel *>();
    const qsizetype far = 505;
    const QString shown = u"Lines would become: "_s;
    const double top = textView().scrollOffset();
    press(u":102s/x"_s);
    EXPECT_TRUE(isMarked(far));
    press(u"x"_s);
    EXPECT_FALSE(isMarked(far + 5)) << "of a line the first alone";
    EXPECT_FALSE(panel.isVisible());
    press(u"/[&]"_s);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.accessibleName(), shown + u"102 [xx] b xx"_s);
    press(u"/g"_s);
    EXPECT_EQ(panel.accessibleName(), shown + u"102 [xx] b [xx]"_s);
    EXPECT_FALSE(panel.geometry().contains(pointIn(textView(), far)));
    press(u"<Home>.,$-<End>"_s);
    EXPECT_EQ(panel.accessibleName(), shown + u"1 [xx] a"_s) << "what is seen, and that comes back";
    press(u"<C-u>s/\\("_s);
    EXPECT_FALSE(panel.isVisible());
    press(u"<C-u>$s/xx/y<Esc>"_s);
    EXPECT_FALSE(panel.isVisible());
    EXPECT_EQ(textView().scrollOffset(), top);
    EXPECT_FALSE(document().isDirty());
    preferences.set(Settings::vimExact, false);
    press(u":%s/xx/y"_s);
    EXPECT_FALSE(panel.isVisible());
}

TEST_F(ModalEditingTest, ExactEditingKeepsRowsAroundTheCaretAndCountsFromItsLine)
{
    start(QByteArray("line\n").repeated(100));
    preferences.set(Settings::highlightCurrentLine, false);
    LineNumberRulerView &ruler = textView().ruler();
    const auto row = [&](int index) {
        const QRect place(0, int(*textView().textViewport().topOf(textView().layoutManager().rowOf(5 * index))), 40, int(rowHeight()));
        return ruler.grab(place).toImage();
    };
    const QImage one = row(0);
    const QImage three = row(2);
    preferences.set(Settings::vimRelativeNumber, true);
    preferences.set(Settings::vimScrollOff, 3);
    EXPECT_EQ(row(2), three) << "not without the preference";
    preferences.set(Settings::vimExact, true);
    EXPECT_EQ(row(3), three);
    EXPECT_NE(row(0), one) << "at the left";
    press(u"jj"_s);
    EXPECT_EQ(row(5), three);
    EXPECT_EQ(row(1), one);
    press(u"40j"_s);
    Viewport &port = textView().textViewport();
    const auto top = [&] { return *port.topOf(textView().layoutManager().rowOf(caret())); };
    press(u"jj"_s);
    EXPECT_LE(top(), port.size().height() - 4 * rowHeight() + 1);
    press(u"35k"_s);
    EXPECT_GE(top(), 3 * rowHeight() - 1);
}

TEST_F(ModalEditingTest, ABlockHasOneCaretWhereItsCornerIsMoved)
{
    start("ooooooo\nooooooo\n");
    preferences.set(Settings::highlightCurrentLine, false);
    preferences.set(Settings::vimExact, true);
    press(u"4l"_s);
    QTest::keyClick(&textView(), Qt::Key_V, Qt::ControlModifier);
    press(u"jhh"_s);
    EXPECT_EQ(badge(), u"V-BLOCK"_s);
    EXPECT_TRUE(isMarked(2) && isMarked(4) && isMarked(10) && isMarked(12)) << "selected";
    EXPECT_FALSE(isMarked(5) || isMarked(13)) << "no caret behind it";
    const QImage image = textView().viewport()->grab().toImage();
    const auto ground = [&](qsizetype offset) {
        return image.pixelColor(pointIn(textView(), offset) - QPoint(-2, int(rowHeight() / 2) - 2));
    };
    EXPECT_EQ(ground(2), ground(3));
    EXPECT_NE(ground(10), ground(11));
    press(u"Ix<Esc>"_s);
    EXPECT_EQ(text(), u"ooxooooo\nooxooooo\n"_s);
    press(u"u"_s);
    EXPECT_EQ(text(), u"ooooooo\nooooooo\n"_s);
    EXPECT_EQ(caret(), 2);
    textView().setSelection(TextSelection{2, 5});
    EXPECT_EQ(badge(), u"VISUAL"_s);
    EXPECT_FALSE(isMarked(5)) << "the caret is in what was selected by others";
}

TEST_F(ModalEditingTest, TheStatusBarSaysWhatGoesOnInExactEditing)
{
    start("one two\none two\n");
    preferences.set(Settings::vimExact, true);
    press(u"R"_s);
    EXPECT_EQ(badge(), u"REPLACE"_s);
    commit(u"é"_s);
    press(u"<Esc>"_s);
    EXPECT_EQ(text(), u"éne two\none two\n"_s) << "an input method replaces, too";
    press(u"qaA"_s);
    EXPECT_EQ(badge(), u"INSERT  recording @a"_s);
    commit(u"ß"_s);
    press(u"<Esc>jq"_s);
    EXPECT_EQ(badge(), u"NORMAL"_s);
    press(u"@a"_s);
    EXPECT_EQ(text(), u"éne twoß\none twoß\n"_s);
    press(u":%s/two/2/c<CR>"_s);
    scheduler.advance(std::chrono::minutes(1));
    EXPECT_TRUE(badge().startsWith(u"Replace by “2”?"_s)) << "until it is answered";
    EXPECT_EQ(textView().selection().range(), (TextRange{4, 3}));
    press(u"y"_s);
    EXPECT_EQ(textView().selection().range(), (TextRange{11, 3}));
    press(u"q"_s);
    EXPECT_EQ(badge(), u"NORMAL"_s);
    EXPECT_TRUE(textView().selection().isEmpty());
    press(u"u"_s);
    EXPECT_EQ(text(), u"éne twoß\none twoß\n"_s);
    press(u"qb"_s);
    preferences.set(Settings::vimExact, false);
    EXPECT_EQ(badge(), u"NORMAL"_s) << "nothing is recorded any more";
}

TEST_F(ModalEditingTest, ADeadKeyIsItsSignWithOrWithoutTheSpaceBarBehindIt)
{
    start("  one two\n");
    preferences.set(Settings::vimExact, true);
    press(u"$"_s);
    QKeyEvent dead(QEvent::KeyPress, Qt::Key_Dead_Circumflex, Qt::NoModifier);
    QCoreApplication::sendEvent(&textView(), &dead);
    EXPECT_EQ(caret(), 2);
    QTest::keyClick(&textView(), Qt::Key_Space);
    EXPECT_EQ(caret(), 2);
    QTest::keyClick(&textView(), Qt::Key_Space);
    EXPECT_EQ(caret(), 3);
}

TEST_F(ModalEditingTest, WhatIsListedStaysUntilItIsRead)
{
    start("one\ntwo\n");
    preferences.set(Settings::vimExact, true);
    press(u"yiw:reg<CR>"_s);
    auto *const panel = textView().findChild<VimListPanel *>();
    ASSERT_TRUE(panel && panel->isVisible());
    auto *const lines = panel->findChild<QPlainTextEdit *>();
    EXPECT_TRUE(lines->hasFocus());
    EXPECT_TRUE(lines->toPlainText().contains(u"  c  \"0   one"_s)) << lines->toPlainText().toStdString();
    QTest::keyClick(lines, Qt::Key_X);
    EXPECT_TRUE(panel->isVisible());
    QTest::keyClick(lines, Qt::Key_Escape);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_TRUE(textView().hasFocus());
    press(u":marks<CR>"_s);
    QTest::keyClick(lines, ':');
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(badge(), u":"_s);
}

TEST_F(ModalEditingTest, WordsAreCompletedFromAllOpenTexts)
{
    start("window word\n\n");
    preferences.set(Settings::vimExact, true);
    workspace().open({put(u"b.txt"_s, "wonder\n")});
    press(u"<C-^>"_s);
    EXPECT_EQ(document().displayName(), u"a.txt"_s);
    press(u"jiwo<C-n>"_s);
    const auto &panel = *textView().findChild<CompletionPanel *>();
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.accessibleName(), u"word, 1 of 2"_s);
    const QPoint caret = textView().caretRectangle().bottomLeft() - textView().viewport()->pos();
    EXPECT_LE(caret.y(), panel.geometry().top() + 1) << "below the word";
    press(u"<C-n>"_s);
    EXPECT_EQ(text(), u"window word\nwonder\n"_s);
    press(u"<Esc>"_s);
    EXPECT_FALSE(panel.isVisible());
    press(u"a wi<C-n> wo<C-n>"_s);
    EXPECT_TRUE(panel.isVisible());
    QTest::mouseClick(textView().viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    EXPECT_FALSE(panel.isVisible());
    press(u"<Esc>u"_s);
    EXPECT_EQ(text(), u"window word\nwonder\n"_s);
    // A text that was closed is opened again.
    workspace().open({path(u"b.txt"_s)});
    press(u":ls<CR>"_s);
    auto *const list = textView().findChild<VimListPanel *>()->findChild<QPlainTextEdit *>();
    EXPECT_TRUE(list->toPlainText().startsWith(u"  1 # + "_s)) << list->toPlainText().toStdString();
    EXPECT_TRUE(list->toPlainText().contains(u"\n  2 %   "_s)) << list->toPlainText().toStdString();
    QTest::keyClick(list, Qt::Key_Escape);
    press(u"o<C-r>#<Esc>:b 1<CR>:q!<CR>"_s);
    EXPECT_EQ(tabs(), QStringList{u"b.txt"_s});
    EXPECT_EQ(text(), u"wonder\n"_s + path(u"a.txt"_s) + u'\n');
    press(u":e #<CR>"_s);
    EXPECT_EQ(document().displayName(), u"a.txt"_s);
}

TEST_F(ModalEditingTest, ExactEditingGoesByRowsOfTheScreen)
{
    start("word " + QByteArray("word ").repeated(200) + "\n" + QByteArray("line\n").repeated(100));
    preferences.set(Settings::vimExact, true);
    preferences.set(Settings::wrapLines, true);
    const auto row = [this] { return textView().layoutManager().rangeOf(textView().layoutManager().rowOf(caret())); };
    const TextRange first = row();
    ASSERT_LT(first.length, 900);
    press(u"lgj"_s);
    EXPECT_EQ(caret(), first.end() + 1);
    press(u"g$"_s);
    EXPECT_EQ(row().location, first.end());
    EXPECT_EQ(caret(), row().end() - 1);
    press(u"g0gk"_s);
    EXPECT_EQ(caret(), 0);
    press(u"dgj"_s);
    EXPECT_EQ(text().indexOf(u'\n'), 1005 - first.length);
    preferences.set(Settings::wrapLines, false);
    Viewport &port = textView().textViewport();
    const auto top = [&] { return *port.topOf(textView().layoutManager().rowOf(caret())); };
    press(u"50Gzt"_s);
    EXPECT_EQ(top(), 0);
    press(u"zb"_s);
    EXPECT_GT(top(), port.size().height() - 2 * rowHeight());
    EXPECT_LE(top(), port.size().height() - rowHeight());
}

TEST_F(ModalEditingTest, WhatIsSelectedOtherwiseIsTheModesOwn)
{
    start("ab cd\nef\n");
    press(u"ve"_s);
    textView().setSelection(TextSelection::at(8));
    EXPECT_EQ(badge(), u"NORMAL"_s);
    EXPECT_EQ(caret(), 7) << "never on a line's end";
    send(Actions::selectAll);
    EXPECT_EQ(badge(), u"VISUAL"_s);
    press(u"<Esc>0"_s);
    const auto place = [this](qsizetype offset) {
        LayoutManager &layout = textView().layoutManager();
        const RowPosition row = layout.rowOf(offset);
        const double x = textView().textViewport().left() + layout.xOf(row, offset);
        return QPoint(int(x) + 1, int(*textView().textViewport().topOf(row) + layout.rowHeight() / 2));
    };
    QTest::mousePress(textView().viewport(), Qt::LeftButton, {}, place(0));
    QTest::mouseMove(textView().viewport(), place(2));
    QTest::mouseRelease(textView().viewport(), Qt::LeftButton, {}, place(2));
    EXPECT_EQ(badge(), u"VISUAL"_s);
    press(u"d"_s);
    EXPECT_EQ(text(), u" cd\nef\n"_s);
    press(u"<C-Right><C-Right>"_s);
    EXPECT_EQ(caret(), 2);
    send(Actions::undo);
    QCoreApplication::processEvents();
    EXPECT_EQ(badge(), u"NORMAL"_s);
    EXPECT_TRUE(textView().selection().isEmpty());
    press(u"wvl<C-c>"_s);
    EXPECT_EQ(badge(), u"NORMAL"_s);
    EXPECT_EQ(pasteboard.text(), u"cd"_s);
}

TEST_F(ModalEditingTest, KeysOfInsertMode)
{
    start("xy\n");
    press(u"ia<Right>b<Esc>u"_s);
    EXPECT_EQ(text(), u"axy\n"_s) << "a caret that moved begins another step";
    press(u"uione two<C-w>three<C-h><Esc>"_s);
    EXPECT_EQ(text(), u"one threxy\n"_s);
    press(u"A!<C-u>?<Esc>yiwo<C-r>\"<Esc>"_s);
    EXPECT_EQ(text(), u"?\n?\n"_s);
}

TEST_F(ModalEditingTest, KeysWaitForAHitThatIsFarAway)
{
    const QByteArray lines = QByteArray(79, '-').append('\n').repeated(20'000);
    const qsizetype far = lines.size() + 4;
    start("one hit\n" + lines + "far hit x\n" + lines + "end\n");
    const auto finish = [this] {
        for (int searches = 0; searches < 3; ++searches) {
            workers.finish();
            QCoreApplication::sendPostedEvents();
        }
    };
    workers.isHeld = true;
    press(u"/hit<CR>"_s);
    EXPECT_EQ(caret(), 4) << "near";
    EXPECT_TRUE(workers.jobs.empty());
    flashes.clear();
    press(u"ndwn"_s);
    EXPECT_EQ(caret(), 4);
    scheduler.advance(std::chrono::seconds(1));
    EXPECT_EQ(flashes, QStringList{u"Searching… Esc stops."_s});
    finish();
    EXPECT_EQ(text().sliced(far + 4, 6), u"far x\n"_s);
    EXPECT_EQ(caret(), 4) << "once more, around the end";
    EXPECT_EQ(flashes.last(), QString());

    press(u"gg/x<CR>dd"_s);
    send(Actions::selectAll);
    finish();
    EXPECT_EQ(badge(), u"VISUAL"_s) << "the caret was moved: no jump, no keys";
    press(u"<Esc>ggv/x<CR>"_s);
    document().storage().apply({{0, 0}, u"ab\n"_s});
    finish();
    EXPECT_EQ(caret(), far + 11) << "in the text as it is";
    const QString before = text();
    press(u"ggnd<Esc>l"_s);
    finish();
    EXPECT_EQ(caret(), 1);
    press(u"nd"_s);
    preferences.set(Settings::vimMode, false);
    finish();
    EXPECT_EQ(text(), before);
}

TEST_F(ModalEditingTest, EachEditorHasItsModeAndAllTheSameRegisters)
{
    start("one two three\n");
    type(u"2d3"_s);
    EXPECT_EQ(badge(), u"NORMAL  2d3"_s);
    press(u"<Esc>yiwi"_s);
    EXPECT_EQ(badge(), u"INSERT"_s);
    send(Actions::newDocument);
    EXPECT_EQ(badge(), u"NORMAL"_s);
    type(u"p"_s);
    EXPECT_EQ(text(), u"one"_s);
    press(u"<C-w>v"_s);
    EXPECT_EQ(workspace().panes().size(), 2U);
    preferences.set(Settings::vimMode, false);
    EXPECT_TRUE(workspace().statusBar().findChild<VimBadge *>()->isHidden());
}

TEST_F(ModalEditingTest, WhatMayFollowAKeyIsShownToThoseWhoWait)
{
    start("one\ntwo\n");
    const auto shown = [this] {
        const auto *const panel = textView().viewport()->findChild<PendingKeysPanel *>();
        return panel->isVisible() ? panel->accessibleName() : QString();
    };
    const auto rest = [this] { scheduler.advance(PendingKeysPanel::delay); };
    type(u" "_s);
    rest();
    EXPECT_EQ(shown(), QString()) << "no key map";
    preferences.set(Settings::vimKeymapPreset, VimKeymapPreset::lazyVim);
    type(u"g"_s);
    scheduler.advance(PendingKeysPanel::delay - std::chrono::milliseconds(1));
    EXPECT_EQ(shown(), QString());
    type(u"g"_s);
    rest();
    EXPECT_EQ(shown(), QString()) << "nobody waits";
    type(u"g"_s);
    rest();
    EXPECT_EQ(shown(), u"What may follow: cc toggle comment on the line"_s);
    press(u"<Esc>vg"_s);
    rest();
    EXPECT_EQ(shown(), u"What may follow: c toggle comment on the selection"_s);
    press(u"<Esc> "_s);
    EXPECT_EQ(shown(), QString());
    rest();
    EXPECT_TRUE(shown().startsWith(u"What may follow: bd close tab, bb other tab, | split right"_s)) << shown().toStdString();
    const auto *const panel = textView().viewport()->findChild<PendingKeysPanel *>();
    for (const int height : {700, 240}) {
        window().resize(260, height);
        const QRect view = textView().viewport()->rect();
        EXPECT_TRUE(view.contains(panel->geometry()));
        EXPECT_GT(panel->geometry().bottom(), view.height() - 10);
        EXPECT_LE(panel->height(), view.height() / 3);
    }
    type(u"b"_s);
    EXPECT_EQ(shown(), u"What may follow: d close tab, b other tab"_s) << "at once";
    textView().clearFocus();
    EXPECT_EQ(shown(), QString());
    textView().setFocus();
    rest();
    EXPECT_NE(shown(), QString());
    preferences.set(Settings::vimKeymapPreset, VimKeymapPreset::plain);
    EXPECT_EQ(shown(), QString());
    EXPECT_EQ(badge(), u"NORMAL"_s);
}
