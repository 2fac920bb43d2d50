// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/FirstLine.h"

#include "Text/Rope.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(FirstLine, IsATitleAndAFileName)
{
    const QString family = u"👨‍👩‍👧"_s;
    struct Case {
        QString text;
        QString title;
        QString name;
    };
    for (const Case &each : {Case{u""_s, u""_s, u""_s},
                             {u" \n\t\n"_s, u""_s, u""_s},
                             {u"\n  To:\tme  \nmore"_s, u"To: me"_s, u"To: me"_s},
                             {u"/etc/../x\u0007\u2028y"_s, u"/etc/../x y"_s, u"etc-..-x y"_s},
                             {u" -- ..rf"_s, u"-- ..rf"_s, u"rf"_s},
                             {u"..."_s, u"..."_s, u""_s},
                             {u"a"_s.repeated(40), u"a"_s.repeated(40), u"a"_s.repeated(40)},
                             {u"a"_s.repeated(41), u"a"_s.repeated(40) + u'…', u"a"_s.repeated(40)},
                             {family.repeated(41), family.repeated(40) + u'…', family.repeated(11)},
                             {u"b"_s.repeated(100000), u"b"_s.repeated(40) + u'…', u"b"_s.repeated(40)}}) {
        EXPECT_EQ(firstLineOf(Rope(each.text)).toStdString(), each.title.toStdString());
        EXPECT_EQ(fileNameFor(Rope(each.text)).toStdString(), each.name.toStdString());
    }
}
