// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Spelling/SpellChecker.h"

#include "HeldWorkers.h"
#include "TestFolder.h"

#include <QCoreApplication>
#include <QSignalSpy>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using enum SpellChecker::Answer;

namespace {

const QString data = QStringLiteral(QUILLET_TEST_DATA "/spelling");

class SpellCheckerTest : public testing::Test, protected TestFolder {
protected:
    [[nodiscard]] std::unique_ptr<SpellChecker> checker(const QStringList &languages = {u"en_US.UTF-8"_s, u"de"_s})
    {
        return std::make_unique<SpellChecker>(workers, SpellChecker::Setup{{path({}), data}, languages, learned});
    }
    [[nodiscard]] static SpellChecker::Answer answer(SpellChecker &checker, const QString &word)
    {
        SpellChecker::Answer found = checker.check(word);
        for (int turn = 0; turn < 8 && found == pending; ++turn) {
            QCoreApplication::processEvents();
            found = checker.check(word);
        }
        return found;
    }
    static void expectAnswers(SpellChecker &checker, const QStringList &words, SpellChecker::Answer expected)
    {
        for (const QString &word : words) {
            EXPECT_EQ(answer(checker, word), expected) << qPrintable(word);
        }
    }

    HeldWorkers workers{HeldWorkers::Mode::atOnce};
    QString learned = path(u"settings/Quillet/dictionary.txt"_s);
};

} // namespace

TEST_F(SpellCheckerTest, AsksTheDictionariesOfAllLanguagesInTheirEncodings)
{
    const auto spelling = checker();
    EXPECT_EQ(spelling->dictionaries(), QStringList({u"en_US"_s, u"de_AT"_s}));
    expectAnswers(*spelling, {u"words"_s, u"Words"_s, u"naïve"_s, u"Größe"_s, u"don't"_s, u"don’t"_s}, correct);
    // One is not in the encoding of one of them, others are in no language's script.
    expectAnswers(*spelling, {u"wrods"_s, u"Füsse"_s, u"wœrd"_s}, wrong);
    expectAnswers(*spelling, {u"слово"_s, u"言葉"_s}, correct);
    EXPECT_THAT(spelling->suggestions(u"wrod"_s).value_or(QStringList()), testing::Contains(u"word"_s));
    EXPECT_THAT(spelling->suggestions(u"Grösse"_s).value_or(QStringList()), testing::Contains(u"Größe"_s));

    spelling->setLanguages({u"en"_s});
    EXPECT_EQ(answer(*spelling, u"Größe"_s), wrong);
}

TEST_F(SpellCheckerTest, WorksInBatchesBehindTheMainThread)
{
    const auto spelling = checker({u"en"_s});
    workers.isHeld = true;
    const QSignalSpy changes(spelling.get(), &SpellChecker::answersChanged);
    for (const QString &word : {u"word"_s, u"wrod"_s, u"word"_s}) {
        EXPECT_EQ(spelling->check(word), pending);
        EXPECT_TRUE(spelling->isCorrect(word));
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(workers.count, 1);
    EXPECT_EQ(spelling->check(u"here"_s), pending); // while the others are on their way
    workers.finish();
    QCoreApplication::processEvents();
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(spelling->check(u"wrod"_s), wrong);
    QCoreApplication::processEvents();
    workers.finish();
    QCoreApplication::processEvents();
    EXPECT_EQ(spelling->check(u"here"_s), correct);
    EXPECT_EQ(workers.count, 2);

    EXPECT_FALSE(spelling->suggestions(u"wrod"_s));
    workers.finish();
    EXPECT_THAT(spelling->suggestions(u"wrod"_s).value_or(QStringList()), testing::Contains(u"word"_s));
}

TEST_F(SpellCheckerTest, ForgetsWhatNobodyAsksForAnyMore)
{
    const auto spelling = checker();
    const auto isForgotten = [&](const QString &word) { return spelling->check(word) == pending; };
    expectAnswers(*spelling, {u"wrod"_s, u"hree"_s}, wrong);
    for (int asked = 0; asked < 20000; ++asked) {
        (void)spelling->check(u"wo%1rd"_s.arg(asked));
        if (asked % 1000 == 0) {
            QCoreApplication::processEvents();
            QCoreApplication::processEvents();
            EXPECT_FALSE(isForgotten(u"wrod"_s)) << asked;
        }
    }
    EXPECT_TRUE(isForgotten(u"hree"_s));
}

TEST_F(SpellCheckerTest, LearnsForGoodAndIgnoresForNow)
{
    {
        const auto spelling = checker();
        expectAnswers(*spelling, {u"quillet"_s}, wrong);
        ASSERT_TRUE(spelling->learn(u"quillet"_s));
        ASSERT_TRUE(spelling->learn(u"quillet"_s));
        spelling->ignore(u"teh"_s);
        expectAnswers(*spelling, {u"quillet"_s, u"Quillet"_s, u"teh"_s}, correct);
    }
    EXPECT_EQ(read(learned), "quillet\n");
    const auto later = checker();
    EXPECT_EQ(answer(*later, u"quillet"_s), correct);
    EXPECT_EQ(answer(*later, u"teh"_s), wrong);

    // What others put into the file meanwhile stays, readable or not, and what is readable counts.
    const QByteArray foreign = "\xFF\xFEjunk\nno word here\nhallo\r\n\nFüsse"_ba;
    put(learned, foreign);
    ASSERT_TRUE(later->learn(u"teh"_s));
    EXPECT_EQ(read(learned), foreign + "\nteh\n");
    const auto last = checker();
    expectAnswers(*last, {u"hallo"_s, u"Füsse"_s, u"teh"_s}, correct);
    expectAnswers(*last, {u"junk"_s}, wrong);
}

TEST_F(SpellCheckerTest, SaysWhenAWordCannotBeKept)
{
    put(u"settings"_s, "a file where the folder should be");
    const auto spelling = checker();
    const Result<void> outcome = spelling->learn(u"quillet"_s);
    ASSERT_FALSE(outcome);
    EXPECT_TRUE(outcome.error().message.contains(u"dictionary.txt"_s)) << qPrintable(outcome.error().message);
    EXPECT_EQ(answer(*spelling, u"quillet"_s), correct);
}

TEST_F(SpellCheckerTest, WithoutAUsableDictionaryAllIsCorrect)
{
    const auto none = checker({u"fi_FI"_s});
    EXPECT_FALSE(none->isAvailable());
    EXPECT_EQ(answer(*none, u"wrod"_s), correct);
    EXPECT_EQ(none->suggestions(u"wrod"_s), QStringList());

    // Found, but when they are read it turns out what they are.
    put(u"fr_FR.aff"_s, "SET UTF-8\n");
    for (const char *words : {"", "12\n", "\x7F\x45LF\x02\x01\nword\n"}) {
        put(u"fr_FR.dic"_s, words);
        const auto spelling = checker({u"fr"_s});
        EXPECT_TRUE(spelling->isAvailable());
        EXPECT_EQ(answer(*spelling, u"wrod"_s), correct) << words;
        EXPECT_FALSE(spelling->isAvailable()) << words;
    }
    put(u"fr_FR.dic"_s, "1\nmot\n");
    const auto good = checker({u"fr"_s, u"en"_s});
    EXPECT_EQ(answer(*good, u"mot"_s), correct);
    EXPECT_EQ(answer(*good, u"wrod"_s), wrong);
}

TEST_F(SpellCheckerTest, OtherDictionariesForOneText)
{
    const auto spelling = checker({u"en"_s});
    EXPECT_EQ(spelling->installed(), QStringList({u"de_AT"_s, u"en_US"_s}));
    const auto german = spelling->with({u"de_AT"_s, u"xx_XX"_s});
    EXPECT_EQ(german, spelling->with({u"de_AT"_s, u"xx_XX"_s}));
    EXPECT_EQ(german->dictionaries(), QStringList(u"de_AT"_s));
    expectAnswers(*german, {u"Größe"_s}, correct);
    expectAnswers(*german, {u"spelling"_s, u"quillet"_s}, wrong);
    ASSERT_TRUE(spelling->learn(u"quillet"_s));
    expectAnswers(*german, {u"quillet"_s}, correct);
}

TEST_F(SpellCheckerTest, GuessesTheDictionariesByTheWordsOfAText)
{
    const auto words = [](QStringView list) { return list.toString().split(u' '); };
    put(u"fr_FR.aff"_s, "SET UTF-8\n");
    put(u"fr_FR.dic"_s, "9\nun\ntrois\nquatre\ncinq\nsept\nhuit\nneuf\nonze\ndouze\n");
    const QString english = u"the word spelling is here correct and of string comment"_s;
    const QString german = u"und Größe Bär laut Füße"_s;
    const QString french = u"un trois quatre cinq sept huit neuf onze douze"_s;
    struct Case {
        QString text;
        QStringList languages;
        QStringList guessed;
    };
    for (const auto &[text, languages, guessed] : {
             Case{english, {u"de"_s, u"en"_s}, {u"en_US"_s}},
             {english + u' ' + german, {u"de"_s, u"en"_s}, {u"en_US"_s, u"de_AT"_s}},
             {english + u" und"_s, {u"de"_s, u"en"_s}, {u"en_US"_s}}, // one word is no language
             {german, {u"en"_s, u"de"_s}, {u"en_US"_s, u"de_AT"_s}},  // too few to tell
             {french, {u"en"_s, u"de"_s}, {u"fr_FR"_s}},
             {english + u' ' + french, {u"en"_s, u"de"_s}, {u"en_US"_s, u"fr_FR"_s}},
             {u"aa bb cc dd ee ff gg hh ii jj"_s, {u"en"_s, u"de"_s}, {u"en_US"_s, u"de_AT"_s}},
         }) {
        const auto spelling = checker(languages);
        QStringList found;
        const BackgroundTask task = spelling->guess(words(text), [&found](const QStringList &names) { found = names; });
        QCoreApplication::processEvents();
        EXPECT_EQ(found, guessed) << qPrintable(text);
    }
}

TEST(SpellDictionaryTest, FindsTheDictionaryOfALanguage)
{
    const TestFolder folder;
    folder.put(u"en_GB.dic"_s, {});
    for (const QString &name : {u"de_CH"_s, u"de_DE"_s, u"fi"_s, u"hyph_sv"_s, u"pt_BR"_s}) {
        folder.put(name + u".aff"_s, {});
        folder.put(name + u".dic"_s, {});
    }
    const auto namesFor = [&](const QStringList &languages) {
        QStringList names;
        for (const auto &files : SpellDictionary::installed({folder.path({}), data}, languages)) {
            names << files.name;
        }
        return names;
    };
    EXPECT_EQ(namesFor({u"de_CH.UTF-8@euro"_s}), QStringList(u"de_CH"_s));
    EXPECT_EQ(namesFor({u"de"_s, u"de-DE"_s}), QStringList(u"de_DE"_s));
    EXPECT_EQ(namesFor({u"de_LU"_s, u"en_GB"_s}), QStringList({u"de_DE"_s, u"en_US"_s}));
    EXPECT_EQ(namesFor({u"fi_FI"_s, u"pt"_s, u"sv"_s, u"C"_s, u""_s}), QStringList({u"fi"_s, u"pt_BR"_s}));

    const QMap<QByteArray, QString> variables = {
        {"DICPATH", u"/one:relative:/two/"_s}, {"HOME", u"/home/ann"_s}, {"XDG_DATA_DIRS", u"/opt/share"_s}};
    const QStringList folders = SpellDictionary::folders([&](const char *name) { return variables.value(name); });
    EXPECT_EQ(folders.first(3), QStringList({u"/one"_s, u"/two"_s, u"/home/ann/.local/share/hunspell"_s}));
    EXPECT_THAT(folders, testing::IsSupersetOf({u"/opt/share/hunspell"_s, u"/usr/share/hunspell"_s, u"/usr/share/myspell/dicts"_s}));
}
