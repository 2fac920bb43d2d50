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
    preferences.setFontSize(200);
    EXPECT_EQ(store.real("editor.fontSize"_L1), 96);
    preferences.setFontSize(2);
    EXPECT_EQ(store.real("editor.fontSize"_L1), 6);
    preferences.setFontSize(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(store.real("editor.fontSize"_L1), 6);
    preferences.setTabWidth(0);
    EXPECT_EQ(store.integer("editor.tabWidth"_L1), 1);
    preferences.setTabWidth(40);
    EXPECT_EQ(store.integer("editor.tabWidth"_L1), 16);
    preferences.setAutosaveInterval(0.1);
    EXPECT_EQ(store.real("session.autosaveInterval"_L1), 0.5);
    preferences.setAutosaveInterval(3600);
    EXPECT_EQ(store.real("session.autosaveInterval"_L1), 3600);
    // Written by hand.
    store.set("editor.tabWidth"_L1, 0);
    EXPECT_EQ(preferences.tabWidth(), 1);
}

TEST_F(PreferencesTest, UnknownChoicesStandForTheFirst)
{
    store.set("toolbar.style"_L1, u"sideways"_s);
    store.set("editor.vimKeymapPreset"_L1, u"emacs"_s);
    store.set("app.language"_L1, u"fr"_s);
    EXPECT_EQ(preferences.toolbarStyle(), ToolbarStyle::combined);
    EXPECT_EQ(preferences.vimKeymapPreset(), VimKeymapPreset::plain);
    EXPECT_EQ(preferences.language(), AppLanguage::system);
    preferences.setToolbarStyle(ToolbarStyle::hidden);
    preferences.setVimKeymapPreset(VimKeymapPreset::lazyVim);
    preferences.setLanguage(AppLanguage::german);
    EXPECT_EQ(store.string("toolbar.style"_L1), u"hidden"_s);
    EXPECT_EQ(store.string("editor.vimKeymapPreset"_L1), u"lazyvim"_s);
    EXPECT_EQ(store.string("app.language"_L1), u"de"_s);
    EXPECT_EQ(preferences.language(), AppLanguage::german);
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
    preferences.setWrapLines(true);
    preferences.setWrapLines(true);
    EXPECT_EQ(heard, QStringList({u"changed"_s, u"changed"_s}));
    heard.clear();
    preferences.setLanguage(AppLanguage::english);
    EXPECT_EQ(heard, QStringList({u"resolved"_s, u"language"_s, u"changed"_s}));
    heard.clear();
    preferences.setToolbarStyle(ToolbarStyle::separate);
    preferences.setToolbarItemIDs({});
    preferences.setToolbarShowsLabels(false);
    preferences.setWindowShowsTitle(true);
    EXPECT_EQ(heard, QStringList(4, u"toolbar"_s));
    EXPECT_EQ(preferences.toolbarItemIDs(), QStringList());
}

TEST_F(PreferencesTest, TheTableIsConsistent)
{
    QSet<QString> keys;
    for (const PreferenceRow &row : Preferences::table()) {
        SCOPED_TRACE(row.key.latin1());
        keys << QString(row.key);
        EXPECT_EQ(Preferences::rowForKey(QString(row.key)), &row);
        // What a preference answers can be set again, and gives the same.
        const QVariant value = preferences.value(row.preference);
        const QString text = row.type == PreferenceType::list ? value.toStringList().join(u',') : value.toString();
        EXPECT_TRUE(preferences.setFromText(row, text));
        EXPECT_TRUE(store.isSet(row.key));
        EXPECT_EQ(preferences.value(row.preference), value);
        EXPECT_EQ(preferences.setFromText(row, u"no value"_s), row.type <= PreferenceType::list && row.choices.empty());
    }
    EXPECT_EQ(size_t(keys.size()), Preferences::table().size());
    EXPECT_EQ(Preferences::rowForKey(u"editor.unknown"), nullptr);
    EXPECT_EQ(preferences.value(Preference::toolbarItemIDs).toStringList().size(), 1);
    EXPECT_FALSE(preferences.setFromText(Preferences::row(Preference::fontSize), u"inf"_s));
}
