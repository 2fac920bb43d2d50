// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/MergeConflicts.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// The first and last line of each, from 0.
[[nodiscard]] QString described(const std::vector<TextRange> &conflicts, const Rope &text)
{
    QStringList result;
    for (const TextRange conflict : conflicts) {
        result << u"%1-%2"_s.arg(text.lineAt(conflict.location)).arg(text.lineAt(conflict.end() - 1));
    }
    return result.join(u' ');
}

[[nodiscard]] QString found(QStringView text)
{
    return described(MergeConflicts::in(Rope(text)), Rope(text));
}

} // namespace

TEST(MergeConflictsTest, ArePairsOfMarkersWithALineBetween)
{
    EXPECT_EQ(found(u"a\n<<<<<<< HEAD\nours\n=======\ntheirs\n>>>>>>> topic\nb\n"), u"1-5"_s);
    EXPECT_EQ(found(u"<<<<<<<\n||||||| base\n=======\n>>>>>>>"), u"0-3"_s) << "without words, to the text's end";
    EXPECT_EQ(found(u"<<<<<<< a\n=======\n>>>>>>> b\n\n<<<<<<< a\n=======\n>>>>>>> b\n"), u"0-2 4-6"_s);
    for (const QStringView text :
         {u"", u"Heading\n=======\n", u"<<<<<<< a\n>>>>>>> b\n", u"=======\n<<<<<<< a\n>>>>>>> b\n", u" <<<<<<< a\n=======\n>>>>>>> b\n",
          u"<<<<<<<< a\n========\n>>>>>>>> b\n", u"<<<<<<< a\n=======\n", u"<<<<<<<a\n=======\n>>>>>>> b\n", u"=======\n>>>>>>> b\n"}) {
        EXPECT_EQ(found(text), u""_s) << text.toString().toStdString();
    }
    EXPECT_EQ(found(u"<<<<<<< lost\n=======\n<<<<<<< a\n=======\n>>>>>>> b\n"), u"2-4"_s);
}

TEST(MergeConflictsTest, StayOnTheirLines)
{
    const Rope text(u"a\n<<<<<<<\n=======\n>>>>>>>\nb\n");
    const auto after = [&](TextRange range, QStringView typed) {
        auto conflicts = MergeConflicts::in(text);
        const TextEdits edits(range, typed);
        MergeConflicts::map(conflicts, edits);
        return described(conflicts, edits.applied(text));
    };
    EXPECT_EQ(after({0, 0}, u"new\n"), u"2-4"_s);
    EXPECT_EQ(after({10, 0}, u"ours\n"), u"1-4"_s);
    EXPECT_EQ(after({26, 0}, u"below\n"), u"1-3"_s);
    EXPECT_EQ(after({2, 24}, u""), u""_s);
}
