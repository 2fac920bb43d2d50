// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/ForeignChords.h"

#include "Desktop/ForeignKeyboard.h"

#include <QAction>
#include <QKeyEvent>
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
constexpr auto altGr = Qt::GroupSwitchModifier;
/// As X has it.
constexpr quint32 cyrillicYeru = 0x6d9;

class ForeignChordsTest : public testing::Test {
protected:
    void SetUp() override
    {
        for (const char *keys : {"Ctrl+S", "Ctrl+/", "Ctrl+Shift+\\", "Ctrl+:", "Ctrl+;", "Ctrl+Q", "Ctrl+Alt+F"}) {
            QAction *action = m_window.menuBar()->addAction(QString::fromUtf8(keys));
            action->setShortcut(QKeySequence(QString::fromUtf8(keys)));
            QObject::connect(action, &QAction::triggered, &m_window, [this, action] { chosen << action->text(); });
        }
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    }

    /// As the toolkit has it from the display, with the kernel's key code; what came of it, "-" for what it looks for by itself.
    QString press(int key, quint32 code, Qt::KeyboardModifiers modifiers, const QString &text, quint32 layout, quint32 symbol)
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

private:
    QMainWindow m_window;
    ForeignKeyboard m_keyboard;
    ForeignChords m_chords{m_keyboard};
};

} // namespace

TEST_F(ForeignChordsTest, AreFoundByTheirPlaces)
{
    struct Case {
        int key;
        quint32 code;
        Qt::KeyboardModifiers modifiers;
        QString text;
        QString chosen;
        const char *why = "";
        quint32 layout = 0;
        quint32 symbol = 0;
    };
    const Case cases[] = {
        {'.', 53, control, u"."_s, u"-"_s, "nothing is known of the keyboard"},
        {0x42b, 31, control, u"ы"_s, u"Ctrl+S"_s},
        {'.', 53, control, u"."_s, u"Ctrl+/"_s},
        {'/', 43, control | shift, u"\u001F"_s, u"Ctrl+Shift+\\"_s},
        {0x416, 39, control | shift, u"Ж"_s, u"Ctrl+:"_s},
        {';', 16, control, u";"_s, u"Ctrl+Q"_s, "not what the key writes"},
        {0x410, 33, control | alt, u"а"_s, u"Ctrl+Alt+F"_s},
        {':', 7, control | shift, u":"_s, u"Ctrl+:"_s, "what it writes, when the place means nothing"},
        {Qt::Key_S, 31, control, u"\u0013"_s, u"-"_s, "the toolkit knows the letter"},
        {']', 27, control, u"\u001D"_s, u"-"_s, "and the sign"},
        {':', 39, control | shift, u":"_s, u"Ctrl+:"_s, "but not one with Shift"},
        {'.', 53, control, u"."_s, u"-"_s, "another layout of the same keyboard", 1},
        {Qt::Key_S, 31, control, u"\u0013"_s, u"-"_s, "by its symbol it is Cyrillic", 1, cyrillicYeru},
        {'.', 53, control, u"."_s, u"Ctrl+/"_s, "as is known then", 1},
        {Qt::Key_S, 31, control, u"\u0013"_s, u"-"_s, "by its symbol it is Latin", 1, 's'},
        {'.', 53, control, u"."_s, u"-"_s, "as is known then", 1},
        {Qt::Key_Z, 21, {}, u"z"_s, u"-"_s, "Latin letters in the first layout again"},
        {'.', 53, control, u"."_s, u"-"_s, "as is known then"},
        {'/', 8, control | altGr, {}, u"Ctrl+/"_s},
        {Qt::Key_AltGr, 100, control | altGr, {}, u"-"_s},
        {'@', 16, altGr, u"@"_s, u"-"_s, "text"},
    };
    for (const Case &tested : cases) {
        EXPECT_EQ(press(tested.key, tested.code, tested.modifiers, tested.text, tested.layout, tested.symbol), tested.chosen)
            << tested.code << ' ' << tested.text.toStdString() << ' ' << tested.why;
    }
}
