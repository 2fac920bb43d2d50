// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/ActionKeys.h"

#include "Commands/Actions.h"
#include "Commands/KeyboardChords.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ActionKeysTest, WhatTheKeyboardHasComesFirst)
{
    const auto keysOn = [](const QList<QKeySequence> &keyboard, const Action &action) {
        QSet<int> chords;
        for (const QKeySequence &keys : keyboard) {
            chords.insert(keys[0].toCombined());
        }
        KeyboardChords::use(chords);
        return QKeySequence::listToString(keySequences(action));
    };
    const QList<QKeySequence> german{QKeySequence(u"Ctrl+Ä"_s), QKeySequence(u"Ctrl+Ö"_s), QKeySequence(u"Ctrl+#"_s)};
    const QList<QKeySequence> american{QKeySequence(u"Ctrl+]"_s), QKeySequence(u"Ctrl+/"_s)};
    EXPECT_EQ(keysOn(german, Actions::insertTab), u"Ctrl+Ä; Ctrl+]");
    EXPECT_EQ(toolTipOf(Actions::insertTab, u"Shift"_s),
              QKeySequence(u"Ctrl+Ä"_s).toString(QKeySequence::NativeText).prepend(u"Shift ("_s) + u')');
    EXPECT_EQ(keysOn(american, Actions::insertTab), u"Ctrl+]; Ctrl+Ä");
    // Keys that write nothing are on every keyboard, and of a foreign one, which has none of them, the order stays.
    EXPECT_EQ(keysOn({QKeySequence(u"Ctrl+Ш"_s)}, Actions::insertTab), u"Ctrl+]; Ctrl+Ä");
    EXPECT_EQ(keysOn(german, Actions::findNext), u"F3; Ctrl+G");
    EXPECT_EQ(keysOn({}, Actions::insertTab), u"Ctrl+]; Ctrl+Ä");
}
