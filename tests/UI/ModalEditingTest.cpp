// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/VimBadge.h"
#include "WindowFixture.h"

#include <QInputMethodEvent>

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
    [[nodiscard]] qsizetype caret() const { return textView().selection().caret; }
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
    EXPECT_FALSE(claims(Qt::Key_J, AltModifier));
    EXPECT_FALSE(claims(Qt::Key_Adiaeresis, ControlModifier | AltModifier, u"ä"_s)) << "writes a letter all the same";
    preferences.set(Settings::vimKeymapPreset, VimKeymapPreset::lazyVim);
    EXPECT_TRUE(claims(Qt::Key_S, ControlModifier));
    EXPECT_TRUE(claims(Qt::Key_J, AltModifier));
    type(u"i"_s);
    EXPECT_FALSE(claims(Qt::Key_S, ControlModifier));
    EXPECT_FALSE(claims(Qt::Key_W, ControlModifier));
    EXPECT_TRUE(claims(Qt::Key_C, ControlModifier));
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
