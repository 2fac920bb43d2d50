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
    const std::tuple<const AnySetting &, double, double> cases[] = {
        {Settings::fontSize, 200, 96},
        {Settings::fontSize, 2, 6},
        {Settings::tabWidth, 0, 1},
        {Settings::tabWidth, 40, 16},
        {Settings::autosaveInterval, 0.1, 0.5},
        {Settings::autosaveInterval, 3600, 3600},
    };
    for (const auto &[setting, value, stored] : cases) {
        EXPECT_TRUE(preferences.setFromText(setting, QString::number(value)));
        EXPECT_EQ(preferences.storedValue(setting).toDouble(), stored) << setting.key.latin1() << ' ' << value;
    }
    preferences.set(Settings::fontSize, std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(preferences.value(Settings::fontSize), 6);
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
    preferences.set(Settings::language, AppLanguage::german);
    EXPECT_EQ(store.string("app.language"_L1), u"de"_s);
}

TEST_F(PreferencesTest, EveryChangeIsAnnounced)
{
    QStringList heard;
    const auto changed = center.observe(Preferences::didChange, &preferences, [&] { heard << u"changed"_s; });
    const auto toolbar = center.observe(Preferences::toolbarConfigurationDidChange, &preferences, [&] { heard << u"toolbar"_s; });
    const auto language = center.observe(Preferences::languageDidChange, nullptr, [&] { heard << u"language"_s; });
    preferences.setLanguageResolver([&](AppLanguage chosen) { heard << (chosen == AppLanguage::english ? u"resolved"_s : u"wrong"_s); });
    preferences.set(Settings::wrapLines, true);
    preferences.set(Settings::wrapLines, true);
    preferences.set(Settings::language, AppLanguage::english);
    preferences.set(Settings::toolbarItemIDs, {});
    EXPECT_EQ(heard.join(u' '), u"changed changed resolved language changed toolbar"_s);
    EXPECT_EQ(preferences.value(Settings::toolbarItemIDs), QStringList());
}

TEST_F(PreferencesTest, TheDesktopKnowsBetterThanTheDefaultUntilTheUserChooses)
{
    int changes = 0;
    const auto observer = center.observe(Preferences::didChange, nullptr, [&changes] { ++changes; });
    const auto desktopHas = [this](double size) {
        preferences.setDesktopValues({{Settings::fontName, u"Mono"_s}, {Settings::fontSize, size}});
    };
    desktopHas(11);
    EXPECT_EQ(preferences.value(Settings::fontSize), 11);
    EXPECT_EQ(changes, 1) << "one for all";
    EXPECT_FALSE(preferences.isSet(Settings::fontSize));
    preferences.set(Settings::fontSize, 13);
    preferences.set(Settings::fontName, u"SFMono-Regular"_s);
    changes = 0;
    desktopHas(12);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(preferences.value(Settings::fontSize), 13) << "chosen, even if it is the default";
    preferences.unset(Settings::fontSize);
    EXPECT_EQ(preferences.value(Settings::fontSize), 12);
    EXPECT_EQ(changes, 1);
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
