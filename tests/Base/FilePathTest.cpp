// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/FilePath.h"

#include "Base/PathKind.h"
#include "TestFolder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

#include <random>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

TEST(FilePath, EveryNameHasATextThatLeadsBackToIt)
{
    std::mt19937 random(7); // NOLINT(bugprone-random-generator-seed): the same names each time
    QByteArrayList names = {"",
                            "plain",
                            "Gr\xC3\xBC\xC3\x9F"
                            "e \xF0\x9F\x98\x80",
                            "\xEF\xBB\xBFmark",
                            "latin \xE9",
                            "cut \xF0\x9F\x98",
                            "\xED\xA0\x80 half a pair",
                            "\xF4\x8F\xBA\x80 a sign",
                            "\xF4\x8F\xBB\xBF",
                            "\xC0\xAF"};
    for (int count = 0; count < 2000; ++count) {
        QByteArray name;
        for (unsigned length = random() % 8; length > 0; --length) {
            name += char(random() % 2 ? random() % 255 + 1 : 0x80 + random() % 0x80);
        }
        names << name;
    }
    for (const QByteArray &name : names) {
        const QString text = decodedPath(name);
        EXPECT_EQ(encodedPath(text), name) << name.toHex().constData();
        const QString path = u"/a folder/"_s + text;
        EXPECT_EQ(QJsonDocument::fromJson(QJsonDocument(QJsonArray{path}).toJson())[0].toString(), path) << name.toHex().constData();
        if (!name.contains('/')) {
            EXPECT_EQ(localPath(QUrl(addressOf(path))), path) << name.toHex().constData();
        }
    }
    EXPECT_EQ(decodedPath("Gr\xC3\xBC\xC3\x9F"), u"Grüß"_s);
    EXPECT_EQ(shownPath(decodedPath("/caf\xE9/\xFF.txt")), u"/caf\uFFFD/\uFFFD.txt"_s);
    EXPECT_EQ(shownPath(u"/😀"_s), u"/😀"_s);
    EXPECT_EQ(localPath(QUrl(u"file:///caf%E9"_s)), decodedPath("/caf\xE9"));
    EXPECT_EQ(localPath(QUrl(u"https://example.org/x"_s)), QString());
}

TEST(PathKind, SaysWhatStandsThere)
{
    const TestFolder folder;
    ASSERT_EQ(::mkfifo(encodedPath(folder.path(u"pipe"_s)).constData(), 0600), 0);
    const QString file = folder.put(u"file"_s, "");
    const QString tooLong = folder.path(QString(5000, u'x'));
    EXPECT_EQ(
        kindsOf({file, folder.path({}), folder.path(u"pipe"_s), folder.path(u"none"_s), file + u"/x"_s, tooLong}, std::chrono::hours(1)),
        (std::vector{PathKind::file, PathKind::folder, PathKind::special, PathKind::missing, PathKind::unknown, PathKind::unknown}));
    QStringList many;
    for (int number = 0; number < 300; ++number) {
        many << folder.path(QString::number(number));
    }
    EXPECT_EQ(kindsOf(many, std::chrono::hours(1)), std::vector(300, PathKind::missing));
}
