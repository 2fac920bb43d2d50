// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimReference.h"
#include "Base/Localization.h"
#include "Base/Translation.h"
#include "Vim/VimExCommands.h"
#include "Vim/VimSubstitution.h"
#include "Vim/VimTextObject.h"
#include "VimFixture.h"
#include "VimTables.h"

using namespace Qt::StringLiterals;

namespace {

bool isObject(QStringView key)
{
    const Rope content(u"a\"<({['x']})>\""_s);
    VimBuffer text(content);
    return key.size() == 2 && u"ia"_s.contains(key[0]) && VimTextObject::range(text, 8, key[1].unicode(), VimTextObject::Extent::inner, 1);
}

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

/// Whether the engine has the key of a row; what it has of its own is ticked off in `rest`.
bool isKnown(const QString &key, std::set<QString> &rest)
{
    QString plain = QString(key).remove(u"{n}"_s).remove(u"{a-z}"_s);
    if (plain.startsWith(u'⌃') && plain.size() == 2) {
        plain = plain.toLower();
    }
    if (plain.startsWith(u':') && plain.size() > 1) {
        return isCommand(plain.sliced(1));
    }
    const bool isDoubled = plain.size() == 2 && plain[0] == plain[1];
    return rest.erase(plain) > 0 || plain == u"Esc"_s || isObject(plain) ||
           (isDoubled && VimTables::operators().contains(plain[0].unicode()));
}

/// All keys of the engine as the reference writes them.
std::set<QString> keysOfTheEngine()
{
    std::set<QString> all;
    const auto add = [&all](const std::set<char16_t> &keys, const QString &before) {
        for (const char16_t key : keys) {
            all.insert(before + QChar(key));
        }
    };
    add(VimTables::motions(), {});
    add(VimTables::commands(), {});
    add(VimTables::prefixes(), {});
    add(VimTables::operators(), {});
    add(VimTables::controls(), u"⌃"_s);
    add(VimTables::windows(), u"⌃w "_s);
    add(VimTables::operatorsBehindG(), u"g"_s);
    all.insert(u"gg"_s);
    return all;
}

} // namespace

TEST(VimReference, NamesTheKeysThatThereAre)
{
    const std::set<QString> engine = keysOfTheEngine();
    std::set<QString> rest = engine;
    for (const VimReference::Section &section : VimReference::sections()) {
        for (const VimReference::Row &row : section.rows) {
            for (const QString &key : row.keys) {
                // Some are in two sections.
                std::set<QString> all = engine;
                EXPECT_TRUE(isKnown(key, all)) << key.toStdString();
                isKnown(key, rest);
            }
        }
    }
    // Prefixes whose commands are there, the other names of what is there, and what is told of in a text.
    const std::set<QString> untold = {u"g"_s,    u"z"_s,    u";"_s,    u","_s,  u"U"_s, u"⌃w"_s,
                                      u"⌃w S"_s, u"⌃w q"_s, u"⌃w p"_s, u"\""_s, u"m"_s, u"`"_s};
    std::set<QString> missing;
    std::ranges::set_difference(rest, untold, std::inserter(missing, missing.end()));
    for (const QString &key : missing) {
        ADD_FAILURE() << key.toStdString() << " is not in the reference";
    }
    EXPECT_FALSE(isCommand(u"new"_s));
    EXPECT_FALSE(isCommand(u"set width"_s));
    EXPECT_FALSE(isObject(u"iz"_s));
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
