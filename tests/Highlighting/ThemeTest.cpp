// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/Theme.h"

#include <gtest/gtest.h>

TEST(Theme, IsFoundByItsExactNameElseByTheAppearance)
{
    EXPECT_EQ(Theme::named(u"Dark"), &Theme::dark());
    EXPECT_EQ(Theme::named(u"Solarized Light"), &Theme::solarizedLight());
    EXPECT_EQ(Theme::named(u"dark"), nullptr);
    EXPECT_EQ(Theme::resolved(u"Solarized Dark", Appearance::light), Theme::solarizedDark());
    for (const QStringView unknown : {u"System", u"", u"No Longer There"}) {
        EXPECT_EQ(Theme::resolved(unknown, Appearance::dark), Theme::dark());
        EXPECT_EQ(Theme::resolved(unknown, Appearance::light), Theme::light());
        EXPECT_EQ(Theme::resolved(unknown, std::nullopt), Theme::light());
    }
}

TEST(Theme, BlendsEachChannel)
{
    EXPECT_EQ(blended(0xFF000000, 0xFFFFFFFF, 0), 0xFF000000u);
    EXPECT_EQ(blended(0xFF000000, 0xFFFFFFFF, 1), 0xFFFFFFFFu);
    EXPECT_EQ(blended(0xFF1E1F22, 0xFF000000, 0.35), 0xFF141416u);
    EXPECT_EQ(blended(0x80FF0010, 0x00000020, 0.5), 0x40800018u);
}
