// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/Languages/LanguageRow.h"
#include "Highlighting/Rule.h"
#include "Text/RandomText.h"

#include <QDirIterator>
#include <QFile>
#include <QSet>

#include <gtest/gtest.h>

#include <latch>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

struct Detection {
    QString path;
    QString firstLine;
    QString expected;
};

} // namespace

TEST(LanguageRegistry, DetectsByExtensionThenNameThenFirstLine)
{
    const Detection cases[] = {
        // Extensions, whatever the case, and only the last.
        {u"/home/a/Parser.SWIFT"_s, {}, u"swift"_s},
        {u"/x.swift/main.go"_s, {}, u"go"_s},
        {u"archive.py.json"_s, {}, u"json"_s},
        {u"/a/b.rs/"_s, {}, u"rust"_s},
        // An extension goes before a first line.
        {u"setup.py"_s, u"#!/bin/sh"_s, u"python"_s},
        // Names that are known as a whole.
        {u"/srv/dockerfile"_s, {}, u"dockerfile"_s},
        {u"CMakeLists.txt"_s, {}, u"cmake"_s},
        {u"~/.bashrc"_s, {}, u"shell"_s},
        {u"ReadMe"_s, {}, u"markdown"_s},
        {u"Makefile"_s, u"#!/usr/bin/env python"_s, u"makefile"_s},
        // What is known neither way.
        {u"LICENSE.txt"_s, {}, u"text"_s},
        {u".swift"_s, {}, u"text"_s},
        {u"swift"_s, {}, u"text"_s},
        {u"a.swift."_s, {}, u"text"_s},
        {u"/"_s, {}, u"text"_s},
        {{}, {}, u"text"_s},
        // First lines.
        {u"tool.unknown"_s, u"#!/usr/bin/env node"_s, u"javascript"_s},
        {{}, u"#!/usr/bin/env python3.12"_s, u"python"_s},
        {{}, u"#! /bin/sh"_s, u"shell"_s},
        {{}, u" #!/bin/sh"_s, u"text"_s},
        {{}, u"#!/usr/bin/nodejs"_s, u"text"_s},
        // The order decides which of two it is.
        {{}, u"#!/bin/sh -c 'exec python node'"_s, u"javascript"_s},
    };
    for (const Detection &c : cases) {
        EXPECT_EQ(LanguageRegistry::detect(c.path, c.firstLine).id().toStdString(), c.expected.toStdString())
            << "path \"" << c.path.toStdString() << "\", first line \"" << c.firstLine.toStdString() << '"';
    }
}

TEST(LanguageRegistry, IsOneListWithoutContradictions)
{
    const auto &all = LanguageRegistry::all();
    EXPECT_EQ(all.back(), Language());
    QSet<QString> ids;
    QSet<QString> extensions;
    QSet<QString> filenames;
    for (const Language &language : all) {
        const auto claim = [&](QSet<QString> &claimed, const QString &entry) {
            EXPECT_EQ(entry, entry.toLower());
            EXPECT_FALSE(claimed.contains(entry)) << entry.toStdString() << " once more in " << language.id().toStdString();
            claimed.insert(entry);
        };
        claim(ids, language.id());
        std::ranges::for_each(language.extensions(), [&](const QString &entry) { claim(extensions, entry); });
        std::ranges::for_each(language.filenames(), [&](const QString &entry) { claim(filenames, entry); });
        EXPECT_EQ(LanguageRegistry::withID(language.id()), language);
    }
    EXPECT_FALSE(LanguageRegistry::withID(u"Swift"));
    EXPECT_FALSE(LanguageRegistry::withID(u""));
}

// The files are what the highlighter is tried on: a rule that finds nothing in its language's file is tried by nobody.
TEST(Language, HasEveryRuleAndFindsItInItsSampleFile)
{
    for (const LanguageRow &row : builtInLanguages()) {
        const Language language(row);
        SCOPED_TRACE(language.id().toStdString());
        QString text;
        QDirIterator files(QStringLiteral(QUILLET_TEST_DATA "/highlight/") + language.id(), QDir::Files | QDir::Hidden);
        while (files.hasNext()) {
            QFile file(files.next());
            ASSERT_TRUE(file.open(QFile::ReadOnly)) << file.fileName().toStdString();
            text += QString::fromUtf8(file.readAll());
            EXPECT_EQ(LanguageRegistry::detect(file.fileName(), {}).id(), language.id()) << file.fileName().toStdString();
        }
        ASSERT_FALSE(text.isEmpty());
        ASSERT_EQ(language.spans().size() + language.rules().size(), row.rules ? row.rules->spans.size() + row.rules->tokens.size() : 0);
        for (size_t place = 0; place < language.spans().size(); ++place) {
            EXPECT_TRUE(language.spans()[place].regex.clone().firstMatch(text)) << "span " << place + 1;
        }
        for (size_t place = 0; place < language.rules().size(); ++place) {
            EXPECT_TRUE(language.rules()[place].regex.clone().firstMatch(text)) << "rule " << place + 1;
        }
    }
}

TEST(Language, DropsRulesThatDoNotCompileAndKeepsTheOthersInOrder)
{
    using enum RuleTraits;
    static constexpr auto spans = std::to_array<RuleRow>({{Scope::comment, none, u"(?<=a*)b"}, {Scope::string, none, u"<.*>"}});
    static constexpr auto tokens = std::to_array<RuleRow>({{Scope::keyword, words, u"if|else", u"unless"},
                                                           {Scope::type, none, u"(["},
                                                           {Scope::number, lines | group1, u"^(\\d)"},
                                                           {Scope::link, none, u"^a"}});
    static constexpr LanguageRules rules = {spans, tokens};
    static constexpr LanguageRow row = {.id = u"x", .name = u"X", .rules = &rules};
    const Language language(row);

    ASSERT_EQ(language.spans().size(), 1u);
    EXPECT_EQ(language.spans()[0].scope, Scope::string);
    EXPECT_TRUE(language.spans()[0].regex.clone().firstMatch(u"<\n>"));
    ASSERT_EQ(language.rules().size(), 3u);
    const auto find = [&](size_t rule, QStringView text) {
        const auto match = language.rules()[rule].regex.clone().firstMatch(text);
        return match ? match->group(language.rules()[rule].group) : std::nullopt;
    };
    EXPECT_EQ(find(0, u"elsewhere unless"), (TextRange{10, 6}));
    EXPECT_EQ(find(1, u"a\n1"), (TextRange{2, 1}));
    EXPECT_EQ(find(2, u"b\na"), std::nullopt);
}

TEST(Language, LooksUpWordsAsItsExpressionsFindThem)
{
    static constexpr auto between =
        std::to_array<QStringView>({u" ", u"\n", u"-", u"$", u"_", u"x", u"7", u"é", u"\u0301", u"\u200d", u"\u00ad", u"\U0001d538",
                                    u"\U0001f600", u"\xd83d", u"ſ", u"\u212a", u"ß", u"\ufb01", u""});
    Random random(1);
    int listCount = 0;
    for (const LanguageRow &row : builtInLanguages()) {
        const Language language(row);
        for (size_t place = 0; place < language.rules().size(); ++place) {
            const WordList &words = language.rules()[place].words;
            const RuleRow &rule = row.rules->tokens[place];
            if (words.isEmpty()) {
                continue;
            }
            ++listCount;
            const QStringList list = rule.pattern.toString().split(u'|') + rule.moreWords.toString().split(u'|');
            QString text;
            for (int i = 0; i < 1000; ++i) {
                const QString &word = random.of(list);
                text += random.oneIn(3) ? word.toLower() : random.oneIn(3) ? word.toUpper() : word;
                text += random.of(between);
                text += random.oneIn(9) ? QString(word).replace(u's', u'ſ').replace(u"fi"_s, u"\ufb01"_s) : QString();
            }
            RegularExpression regex = language.rules()[place].regex.clone();
            std::vector<TextRange> expected, found;
            regex.forEachMatch(text, {0, text.size()}, [&](const RegularExpression &match) {
                expected.push_back(match.range());
                return true;
            });
            words.forEachIn(text, regex, [&](TextRange word) { found.push_back(word); });
            EXPECT_TRUE(found == expected && expected.size() > 30) << language.id().toStdString() << ", rule " << place + 1;
        }
    }
    EXPECT_GT(listCount, 20);
    EXPECT_TRUE(WordList(u"define|defined?", {}, WordList::Case::asWritten).isEmpty()) << "a pattern";
}

TEST(Language, CompilesOnceForAllThreads)
{
    const Language language(*std::ranges::find(builtInLanguages(), QStringView(u"ruby"), &LanguageRow::id));
    std::latch start(4);
    std::vector<const TokenRule *> seen(4);
    {
        std::vector<std::jthread> threads;
        threads.reserve(seen.size());
        for (const TokenRule *&place : seen) {
            threads.emplace_back([&, copy = language] {
                start.arrive_and_wait();
                RegularExpression regex = copy.rules()[0].regex.clone();
                place = regex.firstMatch(u"x # y") && copy.matchesShebang(u"#!ruby") ? copy.rules().data() : nullptr;
            });
        }
    }
    EXPECT_EQ(seen, std::vector(4, language.rules().data()));
}

TEST(Language, MatchesLongCommentsAndStrings)
{
    const QString inside = u"a * b; "_s.repeated(36'000);
    const auto matched = [](const RegularExpression &rule, const QString &text) {
        const auto match = rule.clone().firstMatch(text);
        return match ? match->range().length : 0;
    };
    const Language c = LanguageRegistry::withID(u"c").value();
    EXPECT_EQ(matched(c.spans()[0].regex, u"/*"_s + inside + u"*/ x"_s), inside.size() + 4);
    EXPECT_EQ(matched(c.rules()[2].regex, u'"' + inside + u"\" x"_s), inside.size() + 2);
}
