// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorFont.h"

#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"

#include <QFontDatabase>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(EditorFont, IsTheDesktopsWhenTheWantedOneIsMissing)
{
    ManualScheduler scheduler;
    DefaultsStore store{QString(), scheduler};
    NotificationCenter notifications;
    Preferences preferences{store, notifications};
    preferences.set(Settings::fontSize, 20);
    preferences.set(Settings::fontName, u"No Such Font"_s);
    QFont font = editorFont(preferences);
    EXPECT_EQ(font.families(), QFontDatabase::systemFont(QFontDatabase::FixedFont).families());
    EXPECT_EQ(font.pointSizeF(), 20);
    const QStringList families = QFontDatabase::families();
    if (!families.isEmpty()) {
        preferences.set(Settings::fontName, families.last());
        font = editorFont(preferences);
        EXPECT_EQ(font.family(), families.last());
        EXPECT_EQ(font.pointSizeF(), 20);
    }
}
