// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/ForeignChords.h"

#include "Desktop/ForeignKeyboard.h"

#include <QAction>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr auto control = Qt::ControlModifier;
constexpr auto shift = Qt::ShiftModifier;
constexpr auto alt = Qt::AltModifier;
/// As X has it.
constexpr quint32 cyrillicYeru = 0x6d9;

class ForeignChordsTest : public testing::Test {
protected:
    void SetUp() override
    {
        m_window.setCentralWidget(&edit);
        for (const char *keys : {"Ctrl+S", "Ctrl+/", "Ctrl+Shift+\\", "Ctrl+:", "Ctrl+;", "Ctrl+Q", "Ctrl+Alt+F"}) {
            QAction *action = m_window.menuBar()->addAction(QString::fromUtf8(keys));
            action->setShortcut(QKeySequence(QString::fromUtf8(keys)));
            QObject::connect(action, &QAction::triggered, &m_window, [this, action] { chosen << action->text(); });
        }
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
        edit.setFocus();
    }
    void TearDown() override { m_window.takeCentralWidget(); }

    /// As the toolkit has it from the display, with the kernel's key code; what came of it, "-" for what it looks for by itself.
    QString press(int key, quint32 code, Qt::KeyboardModifiers modifiers, const QString &text = {}, quint32 layout = 0, quint32 symbol = 0)
    {
        chosen.clear();
        const auto send = [&](QEvent::Type type) {
            QKeyEvent event(type, key, modifiers, code + 8, symbol, layout << 13, text);
            event.setAccepted(type == QEvent::KeyPress);
            QCoreApplication::sendEvent(m_window.windowHandle(), &event);
            return event.isAccepted();
        };
        const bool isClaimed = send(QEvent::ShortcutOverride);
        send(QEvent::KeyPress);
        return isClaimed ? chosen.join(u' ') : u"-"_s;
    }

    QStringList chosen;
    QLineEdit edit;

private:
    QMainWindow m_window;
    ForeignKeyboard m_keyboard;
    ForeignChords m_chords{m_keyboard};
};

} // namespace

TEST_F(ForeignChordsTest, AreFoundByTheirPlaces)
{
    EXPECT_EQ(press('.', 53, control, u"."_s), u"-"_s) << "nothing is known of the keyboard";
    EXPECT_EQ(press(0x42b, 31, control, u"ы"_s), u"Ctrl+S"_s);
    EXPECT_EQ(press('.', 53, control, u"."_s), u"Ctrl+/"_s);
    EXPECT_EQ(press('/', 43, control | shift, u"\u001F"_s), u"Ctrl+Shift+\\"_s);
    EXPECT_EQ(press(0x416, 39, control | shift, u"Ж"_s), u"Ctrl+:"_s);
    EXPECT_EQ(press(';', 16, control, u";"_s), u"Ctrl+Q"_s) << "not what the key writes";
    EXPECT_EQ(press(0x410, 33, control | alt, u"а"_s), u"Ctrl+Alt+F"_s);
    EXPECT_EQ(press(':', 7, control | shift, u":"_s), u"Ctrl+:"_s) << "what it writes, when the place means nothing";
    EXPECT_EQ(press(Qt::Key_S, 31, control, u"\u0013"_s), u"-"_s) << "the toolkit knows the letter";
    EXPECT_EQ(press(']', 27, control, u"\u001D"_s), u"-"_s) << "and the sign";
    EXPECT_EQ(press(':', 39, control | shift, u":"_s), u"Ctrl+:"_s) << "but not one with Shift";
    // Another layout of the same keyboard.
    EXPECT_EQ(press('.', 53, control, u"."_s, 1), u"-"_s);
    press(Qt::Key_S, 31, control, u"\u0013"_s, 1, cyrillicYeru);
    EXPECT_EQ(press('.', 53, control, u"."_s, 1), u"Ctrl+/"_s);
    press(Qt::Key_S, 31, control, u"\u0013"_s, 1, 's');
    EXPECT_EQ(press('.', 53, control, u"."_s, 1), u"-"_s);
    press(Qt::Key_Z, 21, {}, u"z"_s);
    EXPECT_EQ(press('.', 53, control, u"."_s), u"-"_s) << "Latin letters again";
}

TEST_F(ForeignChordsTest, FindSignsThatNeedAltGr)
{
    EXPECT_EQ(press('/', 8, control | Qt::GroupSwitchModifier, {}), u"Ctrl+/"_s);
    EXPECT_EQ(press(Qt::Key_AltGr, 100, control | Qt::GroupSwitchModifier), u"-"_s);
    EXPECT_EQ(press('@', 16, Qt::GroupSwitchModifier, u"@"_s), u"-"_s) << "text";
}

TEST_F(ForeignChordsTest, ReachWhatHasTheFocus)
{
    edit.setText(u"one"_s);
    edit.selectAll();
    press(0x427, 45, control, u"ч"_s); // Ctrl+X
    EXPECT_EQ(edit.text(), QString());
    press(0x41c, 47, control, u"м"_s); // Ctrl+V
    EXPECT_EQ(edit.text(), u"one"_s);
    press(0x42f, 44, control, u"я"_s); // Ctrl+Z
    EXPECT_EQ(edit.text(), QString());
    press(0x44b, 31, {}, u"ы"_s);
    EXPECT_EQ(edit.text(), u"ы"_s) << "text is what it is";
}
