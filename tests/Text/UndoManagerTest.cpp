// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/UndoManager.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;
using std::chrono::milliseconds;

class Undo : public testing::Test {
protected:
    TextStorage storage;
    milliseconds now{0};
    UndoManager undo{storage, [this] { return now; }};

    void group(GroupKind kind, TextRange range, QStringView text, const void *view = nullptr)
    {
        undo.beginGroup(kind, TextSelection::at(range.end()), view);
        storage.apply({range, text});
        undo.endGroup(TextSelection::at(range.location + text.size()));
    }
    void type(QStringView text) { group(GroupKind::typing, {storage.length(), 0}, text); }
    /// All texts from the present one back to the first.
    QStringList unwind()
    {
        QStringList texts{storage.string()};
        while (undo.undo())
            texts << storage.string();
        return texts;
    }
};

TEST_F(Undo, TypingGrowsTogetherUntilSomethingBreaksIt)
{
    int view = 0;
    type(u"a");
    now += milliseconds(999);
    type(u"b"); // Within a second of the edit before, however long ago the group began.
    now += milliseconds(999);
    type(u"c");
    now += milliseconds(1000);
    type(u"d");
    undo.breakCoalescing();
    type(u"e");
    group(GroupKind::typing, {0, 0}, u"<");
    group(GroupKind::typing, {1, 0}, u"-");
    group(GroupKind::typing, {2, 0}, u"=", &view);
    group(GroupKind::other, {3, 0}, u"~");
    group(GroupKind::other, {4, 0}, u"~");
    type(u"f");
    type(u"\n  ");
    type(u"g");
    type(u"h");
    EXPECT_EQ(undo.undo(), TextSelection::at(14)) << "a line break ends what is typed";
    undo.undo();
    EXPECT_EQ(unwind(),
              (QStringList{u"<-=~~abcde"_s, u"<-=~abcde"_s, u"<-=abcde"_s, u"<-abcde"_s, u"abcde"_s, u"abcd"_s, u"abc"_s, u""_s}));
}

TEST_F(Undo, DeletingGrowsTogetherInItsDirection)
{
    group(GroupKind::other, {0, 0}, u"0123456789");
    for (const qsizetype position : {5, 4, 3})
        group(GroupKind::deletingBackward, {position, 1}, {});
    for (int i = 0; i < 2; ++i)
        group(GroupKind::deletingForward, {3, 1}, {});
    group(GroupKind::deletingForward, {0, 1}, {});
    // Whoever types over a selection and goes on has done one thing.
    group(GroupKind::typing, {1, 2}, u"a");
    group(GroupKind::typing, {2, 0}, u"b");
    EXPECT_EQ(unwind(), (QStringList{u"1ab9"_s, u"1289"_s, u"01289"_s, u"0126789"_s, u"0123456789"_s, u""_s}));
    EXPECT_EQ(undo.redo(), TextSelection::at(10));
    EXPECT_EQ(undo.redo(), TextSelection::at(3));
    EXPECT_EQ(undo.undo(), TextSelection::at(6));
}

TEST_F(Undo, WhatIsSavedIsToldAndKept)
{
    int notified = 0;
    QObject::connect(&undo, &UndoManager::stateChanged, [&] { ++notified; });
    type(u"a");
    EXPECT_EQ(notified, 1);
    undo.markSavePoint();
    type(u"b");
    undo.undo();
    EXPECT_TRUE(undo.isAtSavePoint()) << "typing does not go on in the group that was saved";
    EXPECT_EQ(storage.string(), u"a"_s);
    undo.undo();
    undo.removeAllActions();
    EXPECT_FALSE(undo.isAtSavePoint());
    undo.markSavePoint();
    undo.removeAllActions();
    EXPECT_TRUE(undo.isAtSavePoint());
}

TEST_F(Undo, SavingInsideAnOpenGroupPartsIt)
{
    undo.beginGroup(GroupKind::other, TextSelection::at(0), nullptr);
    storage.apply({{0, 0}, QStringView(u"saved")});
    EXPECT_FALSE(undo.undo()) << "the group is open";
    undo.markSavePoint();
    storage.apply({{5, 0}, QStringView(u", not saved")});
    EXPECT_FALSE(undo.isAtSavePoint());
    undo.endGroup(TextSelection::at(16));
    EXPECT_EQ(undo.undo(), TextSelection::at(5));
    EXPECT_EQ(storage.string(), u"saved"_s);
    EXPECT_TRUE(undo.isAtSavePoint());
}

TEST_F(Undo, AChangeOutsideAnyGroupIsOne)
{
    storage.apply({{0, 0}, u"one"});
    storage.apply({{0, 0}, u"two "});
    storage.apply({{0, 4}, Rope()});
    EXPECT_EQ(unwind(), (QStringList{u"one"_s, u"two one"_s, u"one"_s, u""_s}));
    EXPECT_EQ(undo.redo(), TextSelection::at(3));
    EXPECT_EQ(undo.redo(), TextSelection::at(4));
    EXPECT_EQ(undo.redo(), TextSelection::at(0));
    EXPECT_EQ(undo.undo(), (TextSelection{0, 4}));
}

TEST_F(Undo, TypingAtSeveralPlacesGrowsTogether)
{
    storage.apply({{0, 0}, u"ab"});
    for (const QChar letter : u"xy"_s) {
        undo.beginGroup(GroupKind::typing, {}, nullptr);
        const qsizetype typed = letter == u'x' ? 0 : 1;
        TextEdits edits({1 + typed, 0}, QStringView(&letter, 1));
        edits.add({2 + 2 * typed, 0}, Rope(QStringView(&letter, 1)));
        storage.apply(edits);
        undo.endGroup({});
    }
    EXPECT_EQ(unwind(), (QStringList{u"axybxy"_s, u"ab"_s, u""_s}));
}

TEST_F(Undo, UnrecordedEditsTakeTheHistoryWithThem)
{
    type(u"old");
    {
        const UndoManager::Pause pause(undo);
        EXPECT_TRUE(undo.canUndo());
        storage.apply({{0, 3}, QStringView(u"loaded")});
    }
    EXPECT_FALSE(undo.canUndo());
    EXPECT_FALSE(undo.isAtSavePoint());
    type(u"!");
    EXPECT_EQ(unwind(), (QStringList{u"loaded!"_s, u"loaded"_s}));
}

TEST_F(Undo, TheOldestGroupsGoWhenTheyKeepTooMuch)
{
    undo.setUnitLimit(100);
    for (int i = 0; i < 20; ++i) {
        group(GroupKind::other, {storage.length(), 0}, QString(10, QChar(u'a' + i)));
        if (i == 9)
            undo.markSavePoint();
    }
    EXPECT_FALSE(undo.isAtSavePoint());
    EXPECT_EQ(unwind().size(), 11);
    EXPECT_EQ(storage.length(), 100);
    EXPECT_TRUE(undo.isAtSavePoint());
    group(GroupKind::other, {0, 0}, QString(500, u'z'));
    EXPECT_TRUE(undo.undo()) << "the last one stays whatever its size";
}

} // namespace
