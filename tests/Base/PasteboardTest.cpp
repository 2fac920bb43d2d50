// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Pasteboard.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(MemoryPasteboard, MakesTextsOnlyWhenAsked)
{
    MemoryPasteboard pasteboard;
    EXPECT_FALSE(pasteboard.hasText());
    EXPECT_EQ(pasteboard.text(), QString());
    int made = 0;
    const int before = pasteboard.changeCount();
    pasteboard.setLazyText([&] { return u"made %1"_s.arg(++made); });
    EXPECT_NE(pasteboard.changeCount(), before);
    EXPECT_TRUE(pasteboard.hasText());
    EXPECT_EQ(made, 0);
    EXPECT_EQ(pasteboard.text(), u"made 1"_s);

    const int count = pasteboard.changeCount();
    pasteboard.setPrimary([] { return u"selected"_s; });
    EXPECT_EQ(pasteboard.primaryText(), u"selected"_s);
    EXPECT_TRUE(pasteboard.ownsPrimary());
    EXPECT_EQ(pasteboard.changeCount(), count) << "the primary selection is no part of the clipboard";
    pasteboard.setPrimaryFromElsewhere(u"other"_s);
    EXPECT_FALSE(pasteboard.ownsPrimary());
    EXPECT_EQ(pasteboard.primaryText(), u"other"_s);

    MemoryPasteboard without(MemoryPasteboard::Primary::missing);
    without.setPrimary([] { return u"selected"_s; });
    EXPECT_FALSE(without.ownsPrimary());
    EXPECT_EQ(without.primaryText(), QString());
}
