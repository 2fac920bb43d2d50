// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/CommandLine.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class CommandLineTest : public testing::Test {
protected:
    void SetUp() override
    {
        for (const QString &name : {u"a.txt"_s, u"-b"_s, u"a:12"_s}) {
            QFile file(folder.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        }
        ASSERT_TRUE(QDir(folder.path()).mkdir(u"inner"_s));
    }

    [[nodiscard]] CommandLine parse(const QStringList &arguments) const { return CommandLine::parse(arguments, folder.path()); }
    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }

    QTemporaryDir folder;
};

} // namespace

TEST_F(CommandLineTest, FilesThatExistAreOpened)
{
    const CommandLine line = parse({u"./inner/../a.txt"_s, u"missing"_s, u"inner"_s, path(u"a:12"_s), u"--"_s, u"-b"_s, u"--help"_s});
    EXPECT_EQ(line.request, CommandLine::Request::openFiles);
    EXPECT_EQ(line.files, QStringList({path(u"a.txt"_s), path(u"a:12"_s), path(u"-b"_s)}));
    ASSERT_EQ(line.complaints.size(), 3);
    EXPECT_TRUE(line.complaints[0].contains(u"missing"_s));
    EXPECT_TRUE(line.complaints[1].contains(u"folder"_s));
    EXPECT_TRUE(line.complaints[2].contains(u"--help"_s));

    const QString fromHome = QDir::home().relativeFilePath(path(u"a.txt"_s));
    EXPECT_EQ(parse({u"~/"_s + fromHome}).files, QStringList(path(u"a.txt"_s)));
    EXPECT_TRUE(parse({}).files.isEmpty());
}

TEST_F(CommandLineTest, OptionsAreKnownOrRefused)
{
    EXPECT_EQ(parse({u"a.txt"_s, u"--version"_s}).request, CommandLine::Request::showVersion);
    EXPECT_EQ(parse({u"-h"_s, u"--unknown"_s}).request, CommandLine::Request::showHelp);
    for (const QString &option : {u"--unknown"_s, u"-b"_s, u"--help=x"_s, u"-"_s}) {
        const CommandLine line = parse({u"a.txt"_s, option});
        EXPECT_EQ(line.request, CommandLine::Request::refuse) << option.toStdString();
        EXPECT_TRUE(line.files.isEmpty());
        EXPECT_TRUE(line.complaints.value(0).contains(option));
    }
    EXPECT_TRUE(CommandLine::help().contains(u"--version"_s));
}
