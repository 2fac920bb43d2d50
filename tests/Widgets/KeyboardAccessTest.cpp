// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Widgets/KeyboardAccess.h"
#include "Widgets/InterfaceStyle.h"
#include "Widgets/Mnemonics.h"

#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Field final : QLineEdit {
    void contextMenuEvent(QContextMenuEvent *event) override { requests += event->reason() == QContextMenuEvent::Keyboard; }

    int requests = 0;
};

TEST(KeyboardAccess, OpensContextMenusByKeysAndShowsTheFocusOfWhatKeysHaveOpened)
{
    KeyboardAccess access;
    Field field;
    field.show();
    field.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&field));
    QTest::mouseClick(&field, Qt::LeftButton);
    QWidget byMouse;
    byMouse.show();
    EXPECT_FALSE(byMouse.testAttribute(Qt::WA_KeyboardFocusChange));
    field.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&field));
    QTest::keyClick(&field, Qt::Key_F10);
    EXPECT_EQ(field.requests, 0);
    QTest::keyClick(&field, Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(field.requests, 1);
    QWidget byKey;
    byKey.show();
    EXPECT_TRUE(byKey.testAttribute(Qt::WA_KeyboardFocusChange));
}

TEST(Mnemonics, AreFirstLettersWhereverThereIsOne)
{
    QString taken;
    EXPECT_EQ(withMnemonics(
                  {u"Neuer Tab"_s, u"Neues Fenster"_s, u"Fenster schließen"_s, u"Speichern"_s, u"Speichern unter …"_s, u"A & B"_s}, taken),
              (QStringList{u"&Neuer Tab"_s, u"N&eues Fenster"_s, u"&Fenster schließen"_s, u"&Speichern"_s, u"Speichern &unter …"_s,
                           u"&A && B"_s}));
    EXPECT_EQ(withMnemonics({u"Ab"_s, u"Ba"_s, u"AB"_s, u"Bac"_s}, taken = QString()),
              (QStringList{u"&Ab"_s, u"&Ba"_s, u"AB"_s, u"Ba&c"_s}));
    EXPECT_EQ(withMnemonics({u"Abc"_s, u"Ba"_s, u"AB"_s}, taken = QString()), (QStringList{u"Ab&c"_s, u"&Ba"_s, u"&AB"_s}))
        << "Abc gives its A up";
    QMenu menu;
    menu.addAction(u"&Kopieren"_s);
    EXPECT_EQ(withMnemonic(u"Kommentar umschalten"_s, menu), u"Kommentar &umschalten"_s);
}

TEST(InterfaceStyle, LetsMenusThatAreLongerThanTheScreenScroll)
{
    InterfaceStyle style;
    QMenu menu;
    menu.setStyle(&style);
    menu.addAction(u"An item"_s);
    const int width = menu.sizeHint().width();
    for (int item = 0; item < 100; ++item) {
        menu.addAction(u"An item"_s);
    }
    EXPECT_EQ(menu.sizeHint().width(), width) << "one column";
}

} // namespace
