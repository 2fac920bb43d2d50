// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Translation.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(Translation, FillsPlaceholdersAndKeepsWhatIsNone)
{
    EXPECT_EQ(formatted(u"“%@” is %@, %d of %d", u"a"_s, u"%@"_s, 3, qint64(4)), u"“a” is %@, 3 of 4");
    EXPECT_EQ(formatted(u"%2$@ vor %1$d, 100%%, %", 1, u"b"_s), u"b vor 1, 100%, %");
    EXPECT_EQ(formatted(u"%@ %@ %3$@ %x %5", u"a"_s), u"a %@ %3$@ %x %5");
}

TEST(Translation, WritesSizesInDecimalMultiples)
{
    const std::pair<qint64, QString> cases[] = {
        {1, u"1 byte"_s},
        {999, u"999 bytes"_s},
        {999'499, u"999 KB"_s},
        {999'500, u"1 MB"_s},
        {105'000'000, u"105 MB"_s},
        {1'250'000'000, u"1.25 GB"_s},
        {5'000'000'000'000'000'000, u"5000 PB"_s},
    };
    for (const auto &[bytes, expected] : cases) {
        EXPECT_EQ(formattedByteCount(bytes), expected);
    }
}
