// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/DesktopRecentFiles.h"

#include "HeldWorkers.h"
#include "TestFolder.h"

#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

const QDateTime now({2026, 1, 2}, {3, 4, 5}, Qt::UTC);

/// A line for each element, its attributes in the order of their names, and for each text; indented by depth.
QString outline(const QByteArray &xml)
{
    QString lines;
    QXmlStreamReader reader(xml);
    for (int depth = 0; !reader.atEnd();) {
        reader.readNext();
        const QString indent(std::max(depth, 0) * 2, u' ');
        if (reader.isStartElement()) {
            QStringList attributes;
            for (const QXmlStreamAttribute &attribute : reader.attributes()) {
                attributes << attribute.qualifiedName().toString() + u'=' + attribute.value().toString();
            }
            attributes.sort();
            lines += indent + reader.qualifiedName().toString() + u' ' + attributes.join(u' ') + u'\n';
            ++depth;
        } else if (reader.isEndElement()) {
            --depth;
        } else if ((reader.isCharacters() && !reader.isWhitespace()) || reader.isComment()) {
            lines += indent + reader.text().toString() + u'\n';
        }
    }
    return reader.hasError() ? reader.errorString() : lines;
}

QByteArray listOf(const QByteArray &bookmarks)
{
    return R"(<?xml version="1.0" encoding="UTF-8"?><xbel version="1.0" xmlns:bookmark="http://www.freedesktop.org/standards/desktop-bookmarks")"
           R"( xmlns:mime="http://www.freedesktop.org/standards/shared-mime-info">)" +
           bookmarks + "</xbel>";
}

/// What is inside the list, without the list itself.
QString bookmarksAfter(const QByteArray &xbel, const QStringList &paths)
{
    const auto after = withRecentFiles(xbel, paths, now);
    return after ? outline(*after).section(u'\n', 1) : u"left alone"_s;
}

class DesktopRecentFilesTest : public testing::Test, protected TestFolder {
protected:
    const QString listFile = path(u"share/recently-used.xbel"_s);
    [[nodiscard]] qsizetype countWritten(const QString &part) const { return outline(read(listFile)).count(part); }
};

} // namespace

TEST(RecentFilesList, IsMadeWhereThereIsNone)
{
    const auto made = withRecentFiles({}, {u"/a b/ü&#\"<1>[;].cpp"_s, u"/x.mp4"_s}, now);
    ASSERT_TRUE(made);
    EXPECT_TRUE(made->startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xbel ")) << made->constData();
    const QString bookmark = u"  bookmark added=2026-01-02T03:04:05Z href=%1 modified=2026-01-02T03:04:05Z visited=2026-01-02T03:04:05Z\n"
                             "    info \n"
                             "      metadata owner=http://freedesktop.org\n"
                             "        mime:mime-type type=%2\n"
                             "        bookmark:applications \n"
                             "          bookmark:application count=1 exec='quillet %u' modified=2026-01-02T03:04:05Z name=Quillet\n"_s;
    const QString expected = u"xbel version=1.0\n"_s +
                             bookmark.arg(u"file:///a%20b/%C3%BC&%23%22%3C1%3E%5B%3B%5D.cpp"_s, u"text/x-c++src"_s) +
                             bookmark.arg(u"file:///x.mp4"_s, u"text/plain"_s);
    EXPECT_EQ(outline(*made).toStdString(), expected.toStdString());
    EXPECT_EQ(outline(withRecentFiles(*made, {}, now).value()), outline(*made));
}

TEST(RecentFilesList, KeepsWhatOthersWrote)
{
    const QByteArray others =
        "<title>Ä &amp; b</title><!-- kept -->"
        "<bookmark href=\"https://a.b/?c&amp;d\" added=\"then\"><info><metadata "
        "owner=\"http://x.org\"><y>z</y></metadata></info></bookmark>"
        "<bookmark href=\"file:///a;b\" added=\"2020-01-01T00:00:00Z\" modified=\"m\" visited=\"v\"><title>kept</title><info>"
        "<metadata owner=\"http://x.org\"/><metadata owner=\"http://freedesktop.org\"><mime:mime-type type=\"text/x-kept\"/>"
        "<bookmark:groups><bookmark:group>g</bookmark:group></bookmark:groups><bookmark:applications>"
        "<bookmark:application name=\"other\" exec=\"&apos;other %u&apos;\" modified=\"then\" count=\"7\"/>"
        "<bookmark:application name=\"Quillet\" exec=\"old\" modified=\"then\" count=\"4\"/>"
        "</bookmark:applications></metadata></info></bookmark>";
    const QString before = outline(listOf(others)).section(u'\n', 1);
    EXPECT_EQ(bookmarksAfter(listOf(others), {}), before);
    QString after = before;
    after.replace(u"modified=m visited=v"_s, u"modified=2026-01-02T03:04:05Z visited=2026-01-02T03:04:05Z"_s)
        .replace(u"count=4 exec=old modified=then"_s, u"count=5 exec='quillet %u' modified=2026-01-02T03:04:05Z"_s);
    EXPECT_EQ(bookmarksAfter(listOf(others), {u"/a;b"_s}), after) << "the same file though its address is escaped in another way";
    // As another program may have encoded it.
    QByteArray latin = QString::fromUtf8(listOf(others)).replace(u"UTF-8"_s, u"ISO-8859-1"_s).toLatin1();
    EXPECT_EQ(bookmarksAfter(latin, {u"/a;b"_s}), after);
}

TEST(RecentFilesList, LeavesAloneWhatIsNoList)
{
    const QByteArray deep = QByteArray("<a>").repeated(300'000) + QByteArray("</a>").repeated(300'000);
    for (const QByteArray &xml : {QByteArray("no xml"), QByteArray("<html/>"), listOf("").chopped(3), listOf("<bookmark/>\xFF"),
                                  listOf(deep), listOf("").replace("shared-mime-info", "else")}) {
        EXPECT_FALSE(withRecentFiles(xml, {u"/a"_s}, now)) << xml.left(80).constData();
    }
}

TEST_F(DesktopRecentFilesTest, OneJobAtATimeWritesAllThatWasNoted)
{
    HeldWorkers workers;
    DesktopRecentFiles files(listFile, workers);
    files.note({u"/a"_s});
    files.note({u"/b"_s, u"/c"_s});
    EXPECT_EQ(workers.count, 1);
    EXPECT_FALSE(QFile::exists(listFile));
    workers.finish();
    EXPECT_EQ(countWritten(u"href=file:///"_s), 3);
    EXPECT_EQ(QFile::permissions(listFile) & 0x77, 0) << "nobody else reads it";
    files.note({u"/d"_s, u"/a"_s});
    EXPECT_EQ(workers.count, 2);
    workers.finish();
    EXPECT_EQ(countWritten(u"href=file:///"_s), 4);
    EXPECT_EQ(countWritten(u"count=2"_s), 1);
}

TEST_F(DesktopRecentFilesTest, LosesNothingOnThreads)
{
    {
        PoolWorkers workers;
        DesktopRecentFiles files(listFile, workers);
        for (int number = 0; number < 40; ++number) {
            files.note({u"/%1"_s.arg(number)});
        }
        while (!read(listFile).contains("file:///39\"")) {
            std::this_thread::yield();
        }
    }
    EXPECT_EQ(countWritten(u"href=file:///"_s), 40);
}

TEST_F(DesktopRecentFilesTest, TouchesNoFileThatIsNoList)
{
    InlineWorkers workers;
    const auto noteOver = [&](const QByteArray &content) {
        put(listFile, content);
        DesktopRecentFiles(listFile, workers).note({u"/a"_s});
        return read(listFile);
    };
    EXPECT_EQ(noteOver("damaged"), "damaged");
    const QByteArray large = listOf(QByteArray(DesktopRecentFiles::largestFile, ' '));
    EXPECT_TRUE(noteOver(large) == large);
    EXPECT_TRUE(noteOver("").contains("file:///a")) << "nothing to be lost";
    QFile::remove(listFile);
    ASSERT_EQ(mkfifo(QFile::encodeName(listFile).constData(), 0600), 0);
    DesktopRecentFiles(listFile, workers).note({u"/a"_s});
}
