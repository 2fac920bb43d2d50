// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Settings/Preferences.h"

#include "Settings/DefaultsStore.h"

#include <QSet>

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

class PreferencesTest : public testing::Test {
protected:
    ManualScheduler scheduler;
    DefaultsStore store{QString(), scheduler};
    NotificationCenter center;
    Preferences preferences{store, center};
};

} // namespace

TEST_F(PreferencesTest, NumbersAreMovedWithinTheirLimits)
{
    preferences.set(Settings::fontSize, 200);
    EXPECT_EQ(store.real("editor.fontSize"_L1), 96);
    preferences.set(Settings::fontSize, 2);
    EXPECT_EQ(store.real("editor.fontSize"_L1), 6);
    preferences.set(Settings::fontSize, std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(store.real("editor.fontSize"_L1), 6);
    preferences.set(Settings::tabWidth, 0);
    EXPECT_EQ(store.integer("editor.tabWidth"_L1), 1);
    preferences.set(Settings::tabWidth, 40);
    EXPECT_EQ(store.integer("editor.tabWidth"_L1), 16);
    preferences.set(Settings::autosaveInterval, 0.1);
    EXPECT_EQ(store.real("session.autosaveInterval"_L1), 0.5);
    preferences.set(Settings::autosaveInterval, 3600);
    EXPECT_EQ(store.real("session.autosaveInterval"_L1), 3600);
    // Written by hand.
    store.set("editor.tabWidth"_L1, 0);
    EXPECT_EQ(preferences.value(Settings::tabWidth), 1);
}

TEST_F(PreferencesTest, UnknownChoicesStandForTheFirst)
{
    store.set("toolbar.style"_L1, u"sideways"_s);
    store.set("editor.vimKeymapPreset"_L1, u"emacs"_s);
    store.set("app.language"_L1, u"fr"_s);
    EXPECT_EQ(preferences.value(Settings::toolbarStyle), ToolbarStyle::combined);
    EXPECT_EQ(preferences.value(Settings::vimKeymapPreset), VimKeymapPreset::plain);
    EXPECT_EQ(preferences.value(Settings::language), AppLanguage::system);
    preferences.set(Settings::toolbarStyle, ToolbarStyle::hidden);
    preferences.set(Settings::vimKeymapPreset, VimKeymapPreset::lazyVim);
    preferences.set(Settings::language, AppLanguage::german);
    EXPECT_EQ(store.string("toolbar.style"_L1), u"hidden"_s);
    EXPECT_EQ(store.string("editor.vimKeymapPreset"_L1), u"lazyvim"_s);
    EXPECT_EQ(store.string("app.language"_L1), u"de"_s);
    EXPECT_EQ(preferences.value(Settings::language), AppLanguage::german);
}

TEST_F(PreferencesTest, EveryChangeIsAnnounced)
{
    QStringList heard;
    const auto changed = center.observe(Preferences::didChange, &preferences, [&] { heard << u"changed"_s; });
    const auto toolbar = center.observe(Preferences::toolbarConfigurationDidChange, &preferences, [&] { heard << u"toolbar"_s; });
    const auto language = center.observe(Preferences::languageDidChange, nullptr, [&](const void *object) {
        EXPECT_EQ(object, nullptr);
        heard << u"language"_s;
    });
    preferences.setLanguageResolver([&](AppLanguage chosen) {
        EXPECT_EQ(chosen, AppLanguage::english);
        heard << u"resolved"_s;
    });
    preferences.set(Settings::wrapLines, true);
    preferences.set(Settings::wrapLines, true);
    EXPECT_EQ(heard, QStringList({u"changed"_s, u"changed"_s}));
    heard.clear();
    preferences.set(Settings::language, AppLanguage::english);
    EXPECT_EQ(heard, QStringList({u"resolved"_s, u"language"_s, u"changed"_s}));
    heard.clear();
    preferences.set(Settings::toolbarStyle, ToolbarStyle::separate);
    preferences.set(Settings::toolbarItemIDs, {});
    preferences.set(Settings::toolbarShowsLabels, false);
    preferences.set(Settings::windowShowsTitle, true);
    EXPECT_EQ(heard, QStringList(4, u"toolbar"_s));
    EXPECT_EQ(preferences.value(Settings::toolbarItemIDs), QStringList());
}

TEST_F(PreferencesTest, WhatASettingAnswersCanBeSetAgain)
{
    QSet<QString> keys;
    for (const AnySetting *setting : Settings::all()) {
        SCOPED_TRACE(setting->key.latin1());
        keys << QString(setting->key);
        EXPECT_EQ(Settings::withKey(QString(setting->key)), setting);
        const QVariant value = preferences.storedValue(*setting);
        const QString text = setting->type == SettingType::list ? value.toStringList().join(u',') : value.toString();
        EXPECT_TRUE(preferences.setFromText(*setting, text));
        EXPECT_TRUE(store.isSet(setting->key));
        EXPECT_EQ(preferences.storedValue(*setting), value);
        const bool takesAnyText = setting->type == SettingType::text || setting->type == SettingType::list;
        EXPECT_EQ(preferences.setFromText(*setting, u"no value"_s), takesAnyText);
        preferences.reset(*setting);
        EXPECT_EQ(preferences.storedValue(*setting), value);
    }
    EXPECT_EQ(size_t(keys.size()), Settings::all().size());
    EXPECT_EQ(Settings::withKey(u"editor.unknown"), nullptr);
    EXPECT_FALSE(preferences.setFromText(Settings::fontSize, u"inf"_s));
}
