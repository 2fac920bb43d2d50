// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimReference.h"
#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Vim/VimExCommands.h"
#include "Vim/VimSubstitution.h"
#include "VimFixture.h"

using namespace Qt::StringLiterals;

namespace {

bool isCommand(const QString &typed)
{
    ManualScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    const QString word = typed.section(u' ', 0, 0);
    const QString argument = typed.section(u' ', 1);
    const VimExCommand *command = VimExCommand::named(word);
    if (typed == u"{number}"_s || VimSubstitution::isOne(typed)) {
        return typed == u"{number}"_s || VimSubstitution::parse(typed);
    }
    if (command && std::holds_alternative<VimExCommand::Set>(command->function)) {
        return applyExOption(argument, preferences);
    }
    return command && argument.isEmpty() != (argument == u"{file}"_s);
}

} // namespace

TEST(VimReference, NamesCommandsAndOptionsThatThereAre)
{
    for (const VimReference::Section &section : VimReference::sections()) {
        for (const VimReference::Row &row : section.rows) {
            for (const QString &key : row.keys) {
                EXPECT_TRUE(!key.startsWith(u':') || key.size() == 1 || isCommand(key.sliced(1))) << key.toStdString();
            }
        }
    }
    EXPECT_FALSE(isCommand(u"new"_s));
    EXPECT_FALSE(isCommand(u"set width"_s));
}

/// Texts of one word too, which look like no text in the code.
TEST(VimReference, IsAllInGerman)
{
    const auto texts = [](AppLanguage language) {
        Localization::use(language);
        QStringList all;
        for (const VimReference::Section &section : VimReference::sections()) {
            all << section.heading;
            for (const VimReference::Row &row : section.rows) {
                all << row.text;
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
    for (qsizetype index = 0; index < english.size(); ++index) {
        EXPECT_TRUE(german[index] != english[index] || english[index] == u"Tabs"_s) << english[index].toStdString();
    }
}

TEST(VimReference, HasColumnsThatLineUp)
{
    for (const AppLanguage language : {AppLanguage::english, AppLanguage::german}) {
        Localization::use(language);
        for (const VimKeymapPreset preset : {VimKeymapPreset::plain, VimKeymapPreset::lazyVim}) {
            const QString markdown = VimReference::markdown(preset);
            EXPECT_EQ(VimReference::aligningTables(markdown), markdown);
            EXPECT_EQ(markdown.count(u"\n## "_s), 10);
            const QStringList lines = markdown.split(u'\n');
            for (qsizetype line = 1; line < lines.size(); ++line) {
                if (lines[line].startsWith(u'|') && lines[line - 1].startsWith(u'|')) {
                    EXPECT_EQ(lines[line].size(), lines[line - 1].size()) << lines[line].toStdString();
                }
            }
            const bool isActive = preset == VimKeymapPreset::lazyVim;
            EXPECT_EQ(markdown.contains(localized(u"Currently active.")), isActive);
            EXPECT_NE(markdown.contains(localized(u"Not active - choose the LazyVim keymap in Settings ▸ Editing.")), isActive);
            EXPECT_TRUE(markdown.contains(u"| `<leader>\\|` | "_s));
            EXPECT_TRUE(markdown.contains(u"| `H` · `[b` "_s));
        }
    }
    Localization::use(AppLanguage::english);
    EXPECT_EQ(VimReference::aligningTables(u"a | b\n| a\\|b | |\n|-|-----|\n| c | d|\n\n| x |"_s).toStdString(),
              "a | b\n| a\\|b |   |\n| ---- | --- |\n| c    | d |\n\n| x |");
}
