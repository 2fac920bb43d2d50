// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/FindHistory.h"

#include "HeldWorkers.h"
#include "TestFolder.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;
using Kind = FindHistory::Kind;
using Kept = FindHistory::Kept;

namespace {

class FindHistoryTest : public testing::Test {
protected:
    /// As the next run finds it.
    [[nodiscard]] QString next(Kind kind = Kind::searches)
    {
        return FindHistory(m_folder.path(u"data/history.json"_s), m_workers).entries(kind).join(u' ');
    }

    TestFolder m_folder;
    HeldWorkers m_workers;
};

TEST_F(FindHistoryTest, IsKeptForTheNextRunButForPrivateFiles)
{
    {
        FindHistory history(m_folder.path(u"data/history.json"_s), m_workers);
        history.add(Kind::searches, u"one"_s, Kept::forNextRun);
        history.add(Kind::searches, u"secret"_s, Kept::whileRunning);
        history.add(Kind::replacements, u"two\nlines"_s, Kept::forNextRun);
        history.add(Kind::searches, u"one"_s, Kept::whileRunning);
        history.add(Kind::searches, QString(FindHistory::largestEntry + 1, u'x'), Kept::forNextRun);
        EXPECT_EQ(history.entries(Kind::searches).sliced(1).join(u' '), u"one secret"_s);
        m_workers.finish();
        EXPECT_EQ(next(), u"one"_s);
        history.add(Kind::searches, u"last"_s, Kept::forNextRun);
    }
    EXPECT_EQ(next(), u"last one"_s) << "what was not written yet is at the end";
    EXPECT_EQ(next(Kind::replacements), u"two\nlines"_s);
    EXPECT_FALSE(QFile::permissions(m_folder.path(u"data/history.json"_s)) & (QFile::ReadGroup | QFile::ReadOther));
    {
        FindHistory history(m_folder.path(u"data/history.json"_s), m_workers);
        history.clear();
        EXPECT_TRUE(history.isEmpty());
    }
    EXPECT_EQ(next(), QString());
    EXPECT_FALSE(m_folder.read(u"data/history.json"_s).contains("one"));
}

TEST_F(FindHistoryTest, IsBoundedAndTakesNothingElse)
{
    {
        FindHistory history(m_folder.path(u"data/history.json"_s), m_workers);
        for (int i = 0; i < 60; ++i) {
            history.add(Kind::searches, QString::number(i), Kept::forNextRun);
        }
        EXPECT_EQ(history.entries(Kind::searches).size(), FindHistory::mostEntries);
    }
    EXPECT_EQ(next().section(u' ', 0, 1), u"59 58"_s);
    m_folder.put(u"data/history.json"_s, R"({"searches": ["a", 1, "", null, "a", ["b"], "c"], "other": 1})");
    EXPECT_EQ(next(), u"a c"_s);
    m_folder.put(u"data/history.json"_s, "[\"a\"");
    EXPECT_EQ(next(), QString());
}

} // namespace
