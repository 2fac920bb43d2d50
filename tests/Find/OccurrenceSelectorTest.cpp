// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/OccurrenceSelector.h"

#include "HeldWorkers.h"
#include "View/SeveralMarks.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Occurrences : public testing::Test, public ViewFixture {
protected:
    [[nodiscard]] QString shown() const { return ::marked(view); }
    void set(const QString &text) { setMarked(view, text); }
    void finishWork()
    {
        workers.finish();
        QCoreApplication::processEvents();
    }

    HeldWorkers workers;
    int beeps = 0;
    OccurrenceSelector selector{view, {scheduler, workers, [this] { ++beeps; }}};
};

TEST_F(Occurrences, AreSelectedOneAfterAnother)
{
    set(u"cat c|at scat Cat cat"_s);
    selector.selectNext();
    EXPECT_EQ(shown(), u"cat ^cat| scat Cat cat"_s) << "first the word";
    selector.selectNext();
    EXPECT_EQ(shown(), u"cat ^cat| scat Cat ^cat|"_s) << "whole words, in their case";
    selector.selectNext();
    EXPECT_EQ(shown(), u"^cat| ^cat| scat Cat ^cat|"_s) << "on from the start";
    EXPECT_EQ(view.selections().primaryIndex(), 0U);
    selector.selectNext();
    EXPECT_EQ(beeps, 1);
    set(u"^cat| scat cat"_s);
    selector.skip();
    EXPECT_EQ(shown(), u"cat s^cat| cat"_s) << "what was selected is sought wherever it stands";
    selector.selectNext();
    selector.skip();
    EXPECT_EQ(shown(), u"^cat| s^cat| cat"_s);
    set(u"a  |  b"_s);
    selector.selectNext();
    EXPECT_EQ(shown(), u"a  |  b"_s) << "no word";
    EXPECT_EQ(beeps, 2);
}

TEST_F(Occurrences, AreGoneToOneAfterAnother)
{
    set(u"wo|rd words Word word"_s);
    selector.goToNext({0, 4});
    EXPECT_EQ(shown(), u"word words Word ^word|"_s);
    selector.goToNext({16, 4});
    EXPECT_EQ(shown(), u"^word| words Word word"_s) << "after the last comes the first";
    selector.selectNext();
    EXPECT_EQ(shown(), u"^word| words Word ^word|"_s) << "of the same word";
    set(u"word wor|ds"_s);
    selector.goToNext({5, 5});
    selector.goToNext({});
    EXPECT_EQ(beeps, 2);
    EXPECT_EQ(shown(), u"word wor|ds"_s);
}

TEST_F(Occurrences, AreSelectedAllAtOnce)
{
    set(u"cat c|at scat cat"_s);
    selector.selectAll();
    EXPECT_EQ(shown(), u"^cat| ^cat| scat ^cat|"_s);
    EXPECT_EQ(view.selections().primaryIndex(), 1U);
    selector.selectAllHits({.pattern = u"[a-c]+t"_s, .isRegularExpression = true});
    EXPECT_EQ(view.selections().count(), 4U);
    selector.selectAllHits({.pattern = u"dog"_s});
    EXPECT_EQ(view.selections().count(), 4U);
    EXPECT_EQ(beeps, 1);
}

TEST_F(Occurrences, FarAwayAreFoundInTheBackground)
{
    const QString far(2 << 20, u'.');
    set(u"^cat|"_s + far + u"cat"_s);
    selector.selectNext();
    EXPECT_TRUE(view.selections().isSingle());
    finishWork();
    EXPECT_EQ(view.selections().count(), 2U);
    selector.selectAll();
    keys(u"<Esc><End>x"_s);
    finishWork();
    EXPECT_TRUE(view.selections().isSingle()) << "not in a text that is another by then";
}

} // namespace
