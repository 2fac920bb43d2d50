// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimMarks.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// `text` with "|" at the mark "a", or as it is when that is gone.
std::string marked(const Rope &text, const VimMarks &marks)
{
    QString shown = text.toString();
    if (const auto place = marks.place(u'a')) {
        shown.insert(*place, u'|');
    }
    return shown.toStdString();
}

void follow(Rope &text, VimMarks &marks, const TextEdits &edits)
{
    const Rope after = edits.applied(text);
    marks.follow({edits, text, after});
    text = after;
}

} // namespace

TEST(VimMarks, GoWithTheirLines)
{
    struct Case {
        QStringView before;
        TextRange range;
        QStringView text;
        QStringView after;
    };
    const Case cases[] = {
        // Within the line a mark keeps its column.
        {u"one\nt|wo\n", {4, 0}, u"xx", u"one\nx|xtwo\n"},
        {u"one\nt|wo\n", {4, 3}, u"", u"one\n|\n"},
        // Lines come and go.
        {u"one\nt|wo\n", {0, 0}, u"new\n", u"new\none\nt|wo\n"},
        {u"one\nt|wo\n", {4, 0}, u"new\n", u"one\nnew\nt|wo\n"},
        {u"one\nt|wo\n", {3, 0}, u"\nnew", u"one\nnew\nt|wo\n"},
        {u"one\nt|wo\n", {7, 0}, u"\nnew", u"one\nt|wo\nnew\n"},
        {u"|\n", {0, 0}, u"\nnew", u"|\nnew\n"},
        {u"one\nt|wo\n", {0, 4}, u"", u"t|wo\n"},
        {u"one\nt|wo\n", {4, 4}, u"", u"one\n"},
        {u"one\nt|wo", {3, 4}, u"", u"one"},
        {u"one\ntwo\nth|ree", {3, 4}, u"", u"one\nth|ree"},
        {u"o|ne\ntwo", {0, 7}, u"", u""},
        // A line is changed, or several.
        {u"one\nt|wo\n", {4, 3}, u"a\nlong", u"one\na|\nlong\n"},
        {u"o|ne\ntwo\nsix\n", {0, 7}, u"", u"|\nsix\n"},
        {u"one\nt|wo\nsix\n", {1, 6}, u"", u"o|\nsix\n"},
        {u"one\nt|wo\nsix\n", {0, 8}, u"abc\ndef\n", u"abc\nd|ef\nsix\n"},
        {u"one\ntwo\ns|ix\n", {0, 8}, u"abc\n", u"abc\ns|ix\n"},
        // Parted and joined.
        {u"one t|wo\n", {4, 0}, u"\n", u"one |\ntwo\n"},
        {u"o|ne two\n", {4, 0}, u"\n", u"o|ne \ntwo\n"},
        {u"one\n  t|wo\n", {3, 3}, u" ", u"one t|wo\n"},
        {u"one\n|two\n", {3, 1}, u"", u"one|two\n"},
        {u"one\nt|wo and\n", {2, 4}, u"", u"ono| and\n"},
    };
    for (const Case &row : cases) {
        QString before = row.before.toString();
        VimMarks marks;
        marks.set(u'a', before.indexOf(u'|'));
        Rope text(before.remove(u'|'));
        follow(text, marks, {row.range, row.text});
        EXPECT_EQ(marked(text, marks), row.after.toString().toStdString()) << row.before.toString().toStdString();
    }
}

TEST(VimMarks, KeepTheirColumnAndTheirNames)
{
    Rope text(u"long line\n"_s);
    VimMarks marks;
    marks.set(u'a', 7);
    marks.set(u'<', 3);
    marks.set(u'`', 2);
    marks.set(u'5', 2);
    follow(text, marks, {{0, 9}, u"s"_s});
    EXPECT_EQ(marked(text, marks), "s|\n");
    follow(text, marks, {{1, 0}, u"horter now"_s});
    EXPECT_EQ(marked(text, marks), "shorter| now\n");
    follow(text, marks, {{0, 12}, u""_s});
    EXPECT_EQ(marks.all().size(), 1U);
    EXPECT_EQ(marks.place(u'<'), 0);
    marks.set(u'B', 0);
    marks.set(u'b', 0);
    marks.deleteAll();
    EXPECT_EQ(marks.all().size(), 2U);
}

TEST(VimPlaces, AreGoneThroughBackAndForth)
{
    const Rope text(u"1\n2\n3\n4\n5\n"_s);
    VimPlaces jumps(VimPlaces::Kind::jumps);
    for (const qsizetype place : {0, 2, 4, 2}) {
        jumps.add(place, text);
    }
    EXPECT_EQ(jumps.older(4, 6, text), std::nullopt);
    EXPECT_EQ(jumps.older(1, 6, text), 2);
    EXPECT_EQ(jumps.older(2, 8, text), 0);
    EXPECT_EQ(jumps.older(1, 8, text), std::nullopt);
    EXPECT_EQ(jumps.newer(3, text), 6);
    EXPECT_EQ(jumps.newer(1, text), std::nullopt);
    VimPlaces changes(VimPlaces::Kind::changes);
    for (const qsizetype place : {0, 1, 4, 6}) {
        changes.add(place, text);
    }
    EXPECT_EQ(changes.older(1, 0, text), 6);
    EXPECT_EQ(changes.older(9, 0, text), 1);
    EXPECT_EQ(changes.older(1, 0, text), std::nullopt);
    EXPECT_EQ(changes.newer(9, text), 6);
    EXPECT_EQ(changes.newer(1, text), std::nullopt);
    const TextEdits edits({0, 4}, u""_s);
    const Rope after = edits.applied(text);
    changes.follow({edits, text, after});
    EXPECT_EQ(changes.older(9, 0, after), 1);
    for (qsizetype place = 0; place < 1000; ++place) {
        changes.add((place % 2) * 4, after);
    }
    EXPECT_EQ(changes.places().size(), VimPlaces::limit);
}
