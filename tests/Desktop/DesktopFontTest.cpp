// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/DesktopFont.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

bool isFamily(const QString &name)
{
    return name == "Fira Code"_L1 || name == "Hack"_L1 || name == "Mono Bold"_L1;
}

std::optional<DesktopFont> font(const QString &family, double size)
{
    return DesktopFont{family, size};
}

} // namespace

TEST(DesktopFont, IsReadAsDesktopsWriteIt)
{
    EXPECT_EQ(fontOfDescription(u"Fira Code 11"_s, isFamily), font(u"Fira Code"_s, 11));
    EXPECT_EQ(fontOfDescription(u" Fira Code,  Semi-Bold Italic 10.5"_s, isFamily), font(u"Fira Code"_s, 10.5));
    EXPECT_EQ(fontOfDescription(u"Mono Bold 9"_s, isFamily), font(u"Mono Bold"_s, 9)) << "the family is called so";
    EXPECT_EQ(fontOfList(u"Hack,12,-1,5,50,0,0,0,0,0"_s, isFamily), font(u"Hack"_s, 12));
    for (const QString &bad : {u""_s, u"11"_s, u"Gone 11"_s, u"Hack"_s, u"Hack -3"_s, u"Hack nan"_s, u"Hack 0"_s}) {
        EXPECT_EQ(fontOfDescription(bad, isFamily), std::nullopt) << bad.toStdString();
        EXPECT_EQ(fontOfList(QString(bad).replace(u' ', u','), isFamily), std::nullopt) << bad.toStdString();
    }
}
