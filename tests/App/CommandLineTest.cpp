// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/CommandLine.h"

#include "TestFolder.h"

using namespace Qt::StringLiterals;

namespace {

using Files = std::vector<CommandLine::File>;

class CommandLineTest : public testing::Test, protected TestFolder {
protected:
    CommandLineTest()
    {
        for (const QString &name : {u"a.txt"_s, u"-b"_s, u"a:12"_s, u"+12"_s, u"inner/c"_s}) {
            put(name, "");
        }
    }
    [[nodiscard]] CommandLine parse(const QStringList &arguments) const { return CommandLine::parse(arguments, path({})); }
};

} // namespace

TEST_F(CommandLineTest, FilesAreOpenedAlsoNewOnes)
{
    const CommandLine line =
        parse({u"./inner/../a.txt"_s, u"new"_s, u"none/"_s, u"inner"_s, path(u"a:12"_s), u"\uFEFFmark"_s, u"--"_s, u"-b"_s, u"--help"_s});
    EXPECT_EQ(line.request, CommandLine::Request::openFiles);
    EXPECT_EQ(
        line.files,
        (Files{{path(u"a.txt"_s)}, {path(u"new"_s)}, {path(u"a:12"_s)}, {path(u"\uFEFFmark"_s)}, {path(u"-b"_s)}, {path(u"--help"_s)}}));
    ASSERT_EQ(line.problems.size(), 2);
    EXPECT_TRUE(line.problems[0].contains(u"none/"_s));
    EXPECT_TRUE(line.problems[1].contains(u"folder"_s));

    const QString fromHome = QDir::home().relativeFilePath(path(u"a.txt"_s));
    EXPECT_EQ(parse({u"~/"_s + fromHome}).files, (Files{{path(u"a.txt"_s)}}));
    EXPECT_TRUE(parse({}).files.empty());
    EXPECT_FALSE(parse({}).readsStandardInput);
    EXPECT_TRUE(parse({u"a.txt"_s, u"-"_s}).readsStandardInput);
}

TEST_F(CommandLineTest, PlacesStandBehindOrBeforeAFile)
{
    const QString a = path(u"a.txt"_s);
    const QString colon = path(u"a:12"_s);
    constexpr auto end = std::numeric_limits<qsizetype>::max();
    const std::pair<QStringList, Files> rows[] = {
        {{u"a.txt:7"_s}, {{a, LineNumber(7)}}},
        {{u"a.txt:7:3"_s}, {{a, LineNumber(7), 3}}},
        {{u"a.txt:7:3:"_s}, {{a, LineNumber(7), 3}}},
        {{u"a:12"_s}, {{colon}}},
        {{u"a:12:5"_s}, {{colon, LineNumber(5)}}},
        {{u"a:12:5:6"_s}, {{colon, LineNumber(5), 6}}},
        {{u"+7"_s, u"a.txt"_s, u"a:12"_s}, {{a, LineNumber(7)}, {colon}}},
        {{u"+7:3"_s, u"a.txt"_s}, {{a, LineNumber(7), 3}}},
        {{u"+"_s, u"a.txt"_s}, {{a, LineNumber(end)}}},
        {{u"+99999999999999999999"_s, u"a.txt"_s}, {{a, LineNumber(end)}}},
        {{u"--"_s, u"a.txt:2"_s}, {{a, LineNumber(2)}}},
        {{u"+12"_s, u"+7"_s, u"a.txt"_s}, {{path(u"+12"_s)}, {a, LineNumber(7)}}},
        {{u"+7"_s, u"new"_s}, {{path(u"new"_s), LineNumber(7)}}},
    };
    for (const auto &[arguments, files] : rows) {
        const CommandLine line = parse(arguments);
        EXPECT_EQ(line.files, files) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(line.problems.isEmpty()) << arguments.join(u' ').toStdString();
    }
    EXPECT_TRUE(parse({u"missing:7"_s}).problems.value(0).contains(u"missing:7"_s));
    for (const QString &name : {u"a.txt:x"_s, u"a.txt:"_s, u":7"_s, u"+x"_s}) {
        EXPECT_EQ(parse({name}).files, (Files{{path(name)}})) << "no place";
    }
}

TEST_F(CommandLineTest, WhatDoesNotAnswerIsOpenedAndAskedForOnce)
{
    int queries = 0;
    const auto silence = [&queries](const QStringList &paths) {
        ++queries;
        return std::vector(size_t(paths.size()), PathKind::unknown);
    };
    const CommandLine line = CommandLine::parse({u"+3"_s, u"/dead/a"_s, u"/dead/b:12"_s, u"/dead/c:12:3"_s, u"-w"_s}, u"/dead"_s, silence);
    EXPECT_EQ(line.files, (Files{{u"/dead/a"_s, LineNumber(3)}, {u"/dead/b"_s, LineNumber(12)}, {u"/dead/c"_s, LineNumber(12), 3}}));
    EXPECT_TRUE(line.problems.isEmpty() && line.waits);
    EXPECT_EQ(queries, 1);
}

TEST_F(CommandLineTest, OptionsAreKnownOrRefused)
{
    EXPECT_EQ(parse({u"a.txt"_s, u"--version"_s}).request, CommandLine::Request::showVersion);
    EXPECT_EQ(parse({u"-h"_s, u"--unknown"_s}).request, CommandLine::Request::showHelp);
    for (const QString &option : {u"--unknown"_s, u"-b"_s, u"--help=x"_s, u"--diff=a"_s, u"--language"_s, u"--diff"_s}) {
        const CommandLine line = parse({u"a.txt"_s, option});
        EXPECT_EQ(line.request, CommandLine::Request::refuse) << option.toStdString();
        EXPECT_TRUE(line.files.empty());
        EXPECT_TRUE(line.problems.value(0).contains(option));
    }
    EXPECT_EQ(parse({u"--language"_s, u"fr"_s}).request, CommandLine::Request::refuse);
    EXPECT_EQ(parse({u"--language"_s, u"de"_s, u"a.txt"_s}).language, AppLanguage::german);
    EXPECT_EQ(parse({u"--language=en"_s, u"--help"_s}).language, AppLanguage::english);
    EXPECT_EQ(parse({u"--language=en"_s, u"a.txt"_s}).files.size(), 1U);

    const CommandLine two = parse({u"--diff"_s, u"a.txt"_s, u"a:12"_s});
    EXPECT_EQ(two.request, CommandLine::Request::compare);
    EXPECT_FALSE(two.waits);
    EXPECT_TRUE(parse({u"--diff"_s, u"a.txt"_s, u"a:12"_s, u"--wait"_s}).waits);
    EXPECT_EQ(two.files, (Files{{path(u"a.txt"_s)}, {path(u"a:12"_s)}}));
    EXPECT_EQ(parse({u"-d"_s, u"a.txt"_s, u"missing"_s}).problems.size(), 1);
}
