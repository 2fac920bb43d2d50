// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/TextCounter.h"

#include "EditorFixture.h"
#include "HeldWorkers.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class TextCounterTest : public testing::Test, protected EditorFixture {
protected:
    TextCounterTest() : EditorFixture(u"some words|"_s) {}

    [[nodiscard]] qsizetype words()
    {
        const auto counts = counter.counts().text;
        return counts ? counts->words : -1;
    }
    [[nodiscard]] qsizetype selectedWords()
    {
        const auto counts = counter.counts().selection;
        return counts ? counts->words : -1;
    }
    void rest() { scheduler.advance(TextCounter::restTime); }
    void finish()
    {
        workers.finish();
        QCoreApplication::processEvents();
    }

    HeldWorkers workers;
    TextCounter counter{view, {scheduler, workers}};
};

} // namespace

TEST_F(TextCounterTest, CountsWhatIsShortAtOnce)
{
    EXPECT_EQ(words(), 2);
    EXPECT_EQ(selectedWords(), -1);
    sendKeys(view, u" more<S-Left><S-Left>"_s);
    EXPECT_EQ(words(), 3);
    EXPECT_EQ(selectedWords(), 1);
    view.setSelection(Selections::merged({CaretSelection::of({0, 4}), CaretSelection::of({5, 10})}, 0));
    EXPECT_EQ(selectedWords(), 2) << "of all carets";
    EXPECT_EQ(workers.count, 0);
}

TEST_F(TextCounterTest, CountsLongTextsOnAWorkerAndFollowsKeysMeanwhile)
{
    const QSignalSpy changes(&counter, &TextCounter::changed);
    storage.apply({{0, 0}, u"a word "_s.repeated(5000)});
    EXPECT_EQ(words(), -1);
    rest();
    EXPECT_EQ(workers.count, 1);
    sendKeys(view, u" and<S-Home><S-Right>"_s);
    EXPECT_EQ(words(), -1);
    finish();
    EXPECT_EQ(words(), 10003);
    EXPECT_EQ(selectedWords(), -1);
    rest();
    finish();
    EXPECT_EQ(selectedWords(), 10002);
    sendKeys(view, u"<End> then"_s);
    EXPECT_EQ(words(), 10004);

    // What is too much for a key is counted anew, and only when it has come to rest.
    const int before = workers.count;
    for (int paste = 0; paste < 5; ++paste) {
        storage.apply({{0, 0}, u"a word "_s.repeated(1000)});
        EXPECT_EQ(words(), -1);
        scheduler.advance(TextCounter::restTime / 2);
    }
    rest();
    EXPECT_EQ(workers.count, before + 1);
    finish();
    EXPECT_EQ(words(), 20004);
    EXPECT_GE(changes.count(), 3);
}
