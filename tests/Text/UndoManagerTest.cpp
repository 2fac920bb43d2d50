// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/UndoManager.h"
#include "RandomText.h"

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
    EXPECT_EQ(unwind(),
              (QStringList{u"<-=~~abcde"_s, u"<-=~abcde"_s, u"<-=abcde"_s, u"<-abcde"_s, u"abcde"_s, u"abcd"_s, u"abc"_s, u""_s}));
}

TEST_F(Undo, DeletingGrowsTogetherInItsDirection)
{
    undo.beginGroup(GroupKind::other, TextSelection::at(0), nullptr);
    storage.apply({{0, 0}, QStringView(u"0123456789")});
    undo.endGroup(TextSelection::at(10));
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

TEST_F(Undo, TheSavePointIsAPlaceInTheHistory)
{
    int told = 0;
    QObject::connect(&undo, &UndoManager::stateChanged, [&] { ++told; });
    EXPECT_TRUE(undo.isAtSavePoint());
    type(u"a");
    EXPECT_FALSE(undo.isAtSavePoint());
    EXPECT_EQ(told, 1);
    undo.markSavePoint();
    type(u"b"); // A group of its own, or one could not come back to what was saved.
    EXPECT_FALSE(undo.isAtSavePoint());
    undo.undo();
    EXPECT_TRUE(undo.isAtSavePoint());
    EXPECT_EQ(storage.string(), u"a"_s);
    undo.undo();
    EXPECT_FALSE(undo.isAtSavePoint());
    type(u"c");
    undo.undo();
    EXPECT_FALSE(undo.canUndo());
    EXPECT_FALSE(undo.isAtSavePoint()) << "what was saved lay on the branch cut off";
    undo.removeAllActions();
    EXPECT_FALSE(undo.isAtSavePoint());
    undo.markSavePoint();
    type(u"d");
    undo.markSavePoint();
    undo.removeAllActions();
    EXPECT_TRUE(undo.isAtSavePoint());
    EXPECT_FALSE(undo.canUndo());
}

TEST_F(Undo, SavingInsideAnOpenGroupPartsIt)
{
    undo.beginGroup(GroupKind::other, TextSelection::at(0), nullptr);
    storage.apply({{0, 0}, QStringView(u"saved")});
    EXPECT_FALSE(undo.undo()) << "the group is open";
    undo.markSavePoint();
    EXPECT_TRUE(undo.isAtSavePoint());
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

TEST_F(Undo, HalvesOfAPairPartAgain)
{
    const QString apart = QString(u'a') + QChar(0xd83d) + u'x' + QChar(0xde00) + u'b';
    const QString met = u"a\U0001F600b"_s;
    type(apart);
    group(GroupKind::other, {2, 1}, {});
    group(GroupKind::other, {0, 1}, QStringView(u"-"));
    EXPECT_EQ(unwind(), (QStringList{u"-"_s + met.mid(1), met, apart, QString()}));
    while (undo.redo()) {
    }
    EXPECT_EQ(storage.string(), u"-"_s + met.mid(1));
    // One half comes to the other, from either side.
    for (const qsizetype kept : {2, 3}) {
        storage.apply({{0, storage.length()}, QStringView(apart)});
        storage.apply({{1, 3}, QStringView(apart).mid(kept == 2 ? 1 : 3, 1)});
        const QString single = storage.string();
        group(GroupKind::other, {kept == 2 ? 2 : 1, 0}, QStringView(apart).mid(kept == 2 ? 3 : 1, 1));
        EXPECT_EQ(storage.string(), met);
        undo.undo();
        EXPECT_EQ(storage.string(), single);
        undo.redo();
        EXPECT_EQ(storage.string(), met);
    }
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
    for (int i = 0; i < 20; ++i)
        group(GroupKind::other, {storage.length(), 0}, QString(10, QChar(u'a' + i)));
    int steps = 0;
    while (undo.undo())
        ++steps;
    EXPECT_EQ(steps, 10);
    EXPECT_EQ(storage.length(), 100);
    EXPECT_FALSE(undo.isAtSavePoint());
    group(GroupKind::other, {0, 0}, QString(500, u'z'));
    EXPECT_TRUE(undo.undo()) << "the last one stays whatever its size";
}

TEST_F(Undo, AGroupOfManyChangesComesBackAsOne)
{
    storage.apply({{0, 0}, u"a hit, "_s.repeated(3000)});
    const QString before = storage.string();
    undo.beginGroup(GroupKind::other, TextSelection::at(1), nullptr);
    for (qsizetype i = 0; i < 3000; ++i)
        storage.apply({{i * 8 + 2, 3}, u"miss"});
    storage.apply({{0, 0}, u">"});
    undo.endGroup(TextSelection::at(2));
    const QString after = storage.string();
    ASSERT_EQ(after, u">"_s + u"a miss, "_s.repeated(3000));
    int changes = 0;
    QObject::connect(&storage, &TextStorage::changed, [&] { ++changes; });
    EXPECT_EQ(undo.undo(), TextSelection::at(1));
    EXPECT_EQ(storage.string(), before);
    EXPECT_EQ(undo.redo(), TextSelection::at(2));
    EXPECT_EQ(storage.string(), after);
    EXPECT_EQ(changes, 2);
    undo.undo();
    undo.undo();
    EXPECT_EQ(storage.length(), 0);
}

/// Where a random history stands: texts and selections around its groups, and which text was saved.
struct History {
    std::vector<QString> texts{QString()};
    std::vector<TextSelection> before;
    std::vector<TextSelection> after;
    size_t done = 0;
    qsizetype saved = 0;
};

TEST_F(Undo, RandomHistoriesLeadBackAndForth)
{
    for (quint32 seed = 1; seed <= 40; ++seed) {
        Random random(seed);
        History history;
        storage.apply({{0, storage.length()}, QStringView()});
        undo.removeAllActions();
        undo.markSavePoint();
        for (int step = 0; step < 120; ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            const qsizetype action = random.below(8);
            if (action == 0) {
                undo.markSavePoint();
                history.saved = qsizetype(history.done);
            } else if (action < 3 && history.done > 0) {
                ASSERT_EQ(undo.undo(), history.before[--history.done]);
            } else if (action < 5 && history.done < history.before.size()) {
                ASSERT_EQ(undo.redo(), history.after[history.done++]);
            } else {
                history.texts.resize(history.done + 1);
                history.before.resize(history.done);
                history.after.resize(history.done);
                if (history.saved > qsizetype(history.done))
                    history.saved = -1;
                history.before.push_back({random.below(9), random.below(9)});
                history.after.push_back({random.below(9), random.below(9)});
                undo.beginGroup(GroupKind::other, history.before.back(), nullptr);
                for (qsizetype edits = random.below(6); edits >= 0; --edits) {
                    const qsizetype from = random.below(storage.length() + 1);
                    const qsizetype count = std::min(random.below(6), storage.length() - from);
                    const QString text = QString(1 + random.below(4), QChar(u'a' + char16_t(random.below(26))));
                    undo.beginGroup(GroupKind::typing, {}, this); // Inner groups do not count.
                    storage.apply({{from, count}, text});
                    undo.endGroup({});
                }
                undo.endGroup(history.after.back());
                history.texts.push_back(storage.string());
                ++history.done;
            }
            ASSERT_EQ(storage.string(), history.texts[history.done]);
            ASSERT_EQ(undo.canUndo(), history.done > 0);
            ASSERT_EQ(undo.canRedo(), history.done < history.before.size());
            ASSERT_EQ(undo.isAtSavePoint(), history.saved == qsizetype(history.done));
        }
    }
}

} // namespace
