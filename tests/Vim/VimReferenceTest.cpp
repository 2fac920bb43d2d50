// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimReference.h"
#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Settings/Settings.h"
#include "Vim/VimKeymap.h"
#include "Vim/VimOptions.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

using namespace Qt::StringLiterals;

/// Texts of one word too, which look like no text in the code.
TEST(VimReference, IsAllInGerman)
{
    const auto texts = [](AppLanguage language) {
        Localization::use(language);
        QStringList all;
        VimOptions options(VimKeymapPreset::lazyVim);
        for (const bool isExact : {false, true}) {
            options.isExact = isExact;
            for (const VimReference::Section &section : VimReference::sections(options)) {
                all << section.heading;
                for (const VimReference::Row &row : section.rows) {
                    all << row.text << row.keys.filter(QRegularExpression(u"\\{[A-Za-z]{3,}\\}|/[A-Za-z]{3,}/"_s));
                }
            }
        }
        for (const VimKeymap::Mapping &mapping : VimKeymap::mappings(VimKeymapPreset::lazyVim)) {
            all << mapping.section << mapping.label;
        }
        return all;
    };
    const QStringList english = texts(AppLanguage::english);
    const QStringList german = texts(AppLanguage::german);
    Localization::use(AppLanguage::english);
    ASSERT_EQ(german.size(), english.size());
    for (qsizetype index = 0; index < english.size(); ++index) {
        EXPECT_TRUE(german[index] != english[index] || english[index] == u"Tabs"_s) << english[index].toStdString();
    }
}

TEST(VimReference, HasTheKeysOfTheSettingThatIsOn)
{
    const auto told = [](bool isExact) {
        VimOptions options(VimKeymapPreset::plain);
        options.isExact = isExact;
        QStringList all;
        for (const VimReference::Section &section : VimReference::sections(options)) {
            EXPECT_TRUE(section.heading != u"Windows"_s || section.intro.isEmpty() == isExact) << "h, j, k and l lead elsewhere then";
            for (const VimReference::Row &row : section.rows) {
                EXPECT_FALSE(row.text.isEmpty()) << row.keys.join(u' ').toStdString();
                all << section.heading + u": "_s + row.keys.join(u' ') + u": "_s + row.text;
            }
        }
        return all;
    };
    const QStringList rows = told(true);
    EXPECT_EQ(QSet(rows.begin(), rows.end()).size(), rows.size()) << "none twice";
    const QStringView exactly[] = {u"Editing: q{a-z} @{a-z} @@: record a macro, run it",
                                   u"Motions: f F t T: find a character on the line; ; and , repeat",
                                   u"Motions: { }: paragraph back / forward",
                                   u"Insert mode: ⌃T ⌃D: indent more / less",
                                   u"Editing: g⌃A g⌃X: in a selection: each line one more / less",
                                   u"Motions: zz zt zb: the line in the middle, at the top, at the bottom of the screen",
                                   u"Text objects: it at: tag",
                                   u"Command line: :q!: quit without saving"};
    for (const QStringView row : exactly) {
        EXPECT_TRUE(rows.contains(row)) << rows.join(u'\n').toStdString();
        EXPECT_EQ(told(false).contains(row), row.startsWith(u"Motions: f") || row.contains(u":q!"));
    }
    EXPECT_FALSE(rows.contains(u"Motions: { }: previous / next blank line"_s));
}

TEST(VimReference, HasColumnsThatLineUp)
{
    for (const AppLanguage language : {AppLanguage::english, AppLanguage::german}) {
        Localization::use(language);
        const QString markdown = VimReference::markdown(VimOptions(VimKeymapPreset::lazyVim));
        EXPECT_EQ(markdown, VimReference::aligningTables(markdown));
        EXPECT_TRUE(markdown.contains(localized(u"Currently active.")));
        EXPECT_TRUE(markdown.contains(u"| `<leader>\\|` | "_s));
    }
    Localization::use(AppLanguage::english);
    EXPECT_EQ(VimReference::aligningTables(u"a | b\n| a\\|b | |\n|-|-----|\n| c | d|\n\n| x |"_s).toStdString(),
              "a | b\n| a\\|b |   |\n| ---- | --- |\n| c    | d |\n\n| x |");
}
