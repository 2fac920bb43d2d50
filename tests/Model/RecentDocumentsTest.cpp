// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/RecentDocuments.h"

#include "HeldWorkers.h"
#include "TestFolder.h"

#include <QCoreApplication>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

class RecentDocumentsTest : public testing::Test, protected TestFolder {
protected:
    [[nodiscard]] QString listFile() const { return path(listName); }
    [[nodiscard]] QByteArray written() const { return read(listName); }
    [[nodiscard]] QStringList stored() { return pathsOf(RecentDocuments(listFile(), workers).entries()); }
    [[nodiscard]] static QStringList pathsOf(const std::vector<RecentDocuments::Entry> &entries)
    {
        QStringList paths;
        std::ranges::transform(entries, std::back_inserter(paths), &RecentDocuments::Entry::path);
        return paths;
    }

    const QString listName = u"data/Quillet/recent-documents.json"_s;
    InlineWorkers workers;
};

} // namespace

TEST_F(RecentDocumentsTest, KeepsTheLastTenNewestFirst)
{
    QStringList reported;
    int calls = 0;
    RecentDocuments recent(listFile(), workers);
    recent.onNote([&](const QStringList &paths) {
        reported = paths;
        ++calls;
    });
    recent.note({});
    recent.clear();
    EXPECT_FALSE(QFile::exists(listFile())) << "nothing was noted";
    recent.note({u"/a/./b.txt"_s, u"/a/c.txt"_s, u"/a/d/../b.txt"_s});
    EXPECT_EQ(pathsOf(recent.entries()), QStringList({u"/a/b.txt"_s, u"/a/c.txt"_s}));
    EXPECT_EQ(reported, QStringList({u"/a/c.txt"_s, u"/a/b.txt"_s}));
    EXPECT_EQ(written(), R"([{"path":"/a/b.txt"},{"path":"/a/c.txt"}])");
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    EXPECT_FALSE((QFile::permissions(listFile()) | QFile::permissions(path(u"data/Quillet"_s))) & others);

    QStringList many;
    for (int number = 1; number <= 2000; ++number) {
        many << u"/many/%1"_s.arg(number);
    }
    recent.note(many);
    QStringList lastTen = many.last(10);
    EXPECT_EQ(reported, lastTen);
    EXPECT_EQ(calls, 2);
    std::ranges::reverse(lastTen);
    EXPECT_EQ(stored(), lastTen);
    lastTen.move(3, 0);
    recent.note({lastTen.first()});
    EXPECT_EQ(stored(), lastTen);
    EXPECT_EQ(calls, 3);

    recent.clear();
    EXPECT_EQ(written(), "[]");
    EXPECT_TRUE(recent.entries().empty());
    EXPECT_EQ(calls, 3);
}

TEST_F(RecentDocumentsTest, TakesNothingStrangeFromItsFile)
{
    const std::pair<QByteArray, QStringList> cases[] = {
        {"", {}},
        {R"({"path":"/a"})", {}},
        {R"([{"path":"/a"},)", {}},
        {QByteArray("[").repeated(500'000), {}},
        {"[" + QByteArray(R"({"path":"/a"},)").repeated(80'000) + R"({"path":"/a"}])", {}},
        {R"([1,null,"/s",[],{},{"path":7},{"path":""},{"path":"b"},{"path":"/a/../c"},{"path":"/c","bookmark":1}])", {u"/c"_s}},
        {R"([{"path":"/1"},{"path":"/2"},{"path":"/3"},{"path":"/4"},{"path":"/5"},{"path":"/6"},{"path":"/7"},{"path":"/8"},)"
         R"({"path":"/9"},{"path":"/10"},{"path":"/11"}])",
         {u"/1"_s, u"/2"_s, u"/3"_s, u"/4"_s, u"/5"_s, u"/6"_s, u"/7"_s, u"/8"_s, u"/9"_s, u"/10"_s}}};
    for (const auto &[content, paths] : cases) {
        put(listName, content);
        EXPECT_EQ(stored(), paths) << content.left(100).constData();
    }
    QFile::remove(listFile());
    ASSERT_EQ(mkfifo(QFile::encodeName(listFile()).constData(), 0600), 0);
    EXPECT_EQ(stored(), QStringList()) << "a pipe without a writer";
}

TEST_F(RecentDocumentsTest, KeepsTheBookmarksOfOthers)
{
    put(listName, R"([{"bookmark":"Qm9v","path":"/a"},{"bookmark":"a2V5","path":"/b"},{"path":"/c"}])");
    RecentDocuments recent(listFile(), workers);
    recent.note({u"/b"_s, u"/d"_s});
    EXPECT_EQ(written(), R"([{"path":"/d"},{"bookmark":"a2V5","path":"/b"},{"bookmark":"Qm9v","path":"/a"},{"path":"/c"}])");
}

TEST_F(RecentDocumentsTest, GoesOnInMemoryWhenItCannotWrite)
{
    put(u"data"_s, "a file where the folder should be");
    for (const QString &file : {listFile(), QString()}) {
        RecentDocuments recent(file, workers);
        recent.note({u"/a"_s});
        EXPECT_EQ(pathsOf(recent.entries()), QStringList(u"/a"_s));
    }
}

TEST_F(RecentDocumentsTest, HidesWhatIsGoneAndKeepsIt)
{
    const QString there = put(u"there"_s, "x");
    const QString gone = path(u"gone"_s);
    RecentDocuments recent(listFile(), workers);
    recent.note({there, gone});
    EXPECT_EQ(pathsOf(recent.reachable()), QStringList(there));
    EXPECT_EQ(recent.resolve(there), there);
    EXPECT_EQ(recent.resolve(gone), std::nullopt);
    EXPECT_EQ(recent.resolve(QDir::rootPath()), std::nullopt) << "is there, but no entry";
    EXPECT_EQ(stored(), QStringList({gone, there}));
}

TEST_F(RecentDocumentsTest, AShareThatHangsIsAskedOnce)
{
    const QString there = put(u"there"_s, "x");
    HeldWorkers share;
    RecentDocuments recent({}, share, std::chrono::milliseconds(0));
    recent.note({there, path(u"gone"_s)});
    EXPECT_EQ(pathsOf(recent.reachable()), QStringList());
    EXPECT_EQ(recent.resolve(there), std::nullopt);
    EXPECT_EQ(share.jobs.size(), 2U);
    share.finish();
    EXPECT_EQ(pathsOf(recent.reachable()), QStringList(there)) << "the answers are there, though the event loop did not bring them";
    EXPECT_TRUE(share.jobs.empty());

    EXPECT_EQ(recent.resolve(there), std::nullopt) << "asked anew";
    share.finish();
    QCoreApplication::processEvents();
    QFile::remove(there);
    EXPECT_EQ(recent.resolve(there), std::nullopt) << "an answer that was too late is not kept";
    share.finish();
    EXPECT_EQ(recent.resolve(there), std::nullopt);
}
