// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Localization.h"
#include "Base/ToolkitTexts.h"
#include "Base/Translation.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QMap>

#include <future>

using namespace Qt::StringLiterals;

namespace {

class LocalizationTest : public testing::Test {
protected:
    ~LocalizationTest() override { Localization::use(AppLanguage::english); }
};

} // namespace

TEST_F(LocalizationTest, TheFirstOfTheUsersLanguagesThatThereIsDecides)
{
    using Environment = QMap<QString, QString>;
    using enum AppLanguage;
    const std::pair<Environment, AppLanguage> cases[] = {
        {{}, english},
        {{{u"LANG"_s, u"de_AT.UTF-8"_s}}, german},
        {{{u"LANG"_s, u"de-CH@euro"_s}}, german},
        {{{u"LANG"_s, u"deu_X"_s}}, english},
        {{{u"LANG"_s, u"de_DE"_s}, {u"LC_MESSAGES"_s, u"fr_FR"_s}}, english},
        {{{u"LC_ALL"_s, u"en_GB"_s}, {u"LC_MESSAGES"_s, u"de_DE"_s}, {u"LANG"_s, u"de_DE"_s}}, english},
        {{{u"LC_ALL"_s, QString()}, {u"LC_MESSAGES"_s, u"de_DE"_s}}, german},
        {{{u"LANGUAGE"_s, u"fr:de:en"_s}, {u"LANG"_s, u"en_US"_s}}, german},
        {{{u"LANGUAGE"_s, u"fr::it"_s}, {u"LANG"_s, u"de_DE"_s}}, german},
        {{{u"LANGUAGE"_s, u"de"_s}, {u"LANG"_s, u"POSIX"_s}}, english},
    };
    for (const auto &[environment, expected] : cases) {
        const auto lookUp = [&environment = environment](const char *name) { return environment.value(QString::fromLatin1(name)); };
        EXPECT_EQ(Localization::languageFor(Localization::systemLanguages(lookUp)), expected)
            << environment.keys().join(u' ').toStdString() << " = " << environment.values().join(u' ').toStdString();
    }
}

TEST_F(LocalizationTest, AChoiceCountsAtOnceOnEveryThread)
{
    std::atomic<bool> isOver = false;
    auto reader = std::async(std::launch::async, [&] {
        bool isEither = true;
        while (!isOver) {
            const QString text = localized(u"Save");
            isEither &= text == u"Save" || text == u"Speichern";
        }
        return isEither && localized(u"Save") == u"Save";
    });
    for (int turn = 0; turn < 1000; ++turn) {
        Localization::use(AppLanguage::german);
        EXPECT_EQ(localized(u"Save"), u"Speichern");
        Localization::use(AppLanguage::english);
    }
    isOver = true;
    EXPECT_TRUE(reader.get());
    EXPECT_EQ(localized(u"Reveal in Finder"), u"Show in File Manager");
    EXPECT_EQ(formattedByteCount(104'857'601), u"104.9 MB");
    Localization::use(AppLanguage::german);
    EXPECT_EQ(formattedByteCount(104'857'601), u"104,9 MB");
    EXPECT_EQ(formattedByteCount(999), u"999 Byte");
}

TEST_F(LocalizationTest, WhatATableLacksShowsInEnglish)
{
    Localization::use(AppLanguage::german);
    EXPECT_EQ(localized(u"Nobody ever translated this: %@"), u"Nobody ever translated this: %@");
    EXPECT_EQ(localized(QStringView()), QString());

    const QHash<QString, QString> one{{u"Save"_s, u"Speichern"_s}};
    EXPECT_EQ(StringBundle::parse(R"({"a": {"Save": "Speichern", "Open": 1}, "b": "Close", "c": [{"Copy": "Kopieren"}]})"), one);
    for (const char *damaged : {"", "{", R"(["Save"])", R"({"a": {"Save": "Spei)"}) {
        EXPECT_EQ(StringBundle::parse(damaged), (QHash<QString, QString>())) << damaged;
    }
    EXPECT_EQ(StringBundle(QLocale::c(), {}).text(u"Save"), u"Save");
}

TEST(ToolkitTexts, FollowTheLanguage)
{
    const auto control = [] { return QCoreApplication::translate("QShortcut", "Ctrl"); };
    {
        ToolkitTexts texts;
        texts.use(QLocale(QLocale::German));
        EXPECT_EQ(control(), u"Strg");
        texts.use(QLocale(QLocale::English));
        EXPECT_EQ(control(), u"Ctrl");
        texts.use(QLocale(QLocale::German));
    }
    EXPECT_EQ(control(), u"Ctrl");
}
