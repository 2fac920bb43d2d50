// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Desktop/Terminals.h"

#include "TestFolder.h"

using namespace Qt::StringLiterals;

namespace {

class TerminalLookupTest : public testing::Test, protected TestFolder {
protected:
    TerminalLookupTest()
    {
        lookup.applicationFolders = {path(u"home/applications"_s), path(u"usr/applications"_s)};
        lookup.programFolders = {path(u"bin"_s)};
    }

    void makeProgram(const QString &name)
    {
        QFile::setPermissions(put(u"bin/"_s + name, ""), QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
    }
    void makeEntry(const QString &name, const QByteArray &keys)
    {
        put(name + u".desktop"_s,
            "# comment\n[Desktop Action x]\nExec=none\n[Desktop Entry]\nName=x\n" + keys + "\n[Other]\nHidden=true\n");
    }
    [[nodiscard]] QString found(const QString &preferred = {}) const
    {
        return lookup.terminal(preferred).value_or(u"none"_s).remove(path({}) + u'/');
    }

    TerminalLookup lookup;
};

} // namespace

TEST_F(TerminalLookupTest, TheOrderIsKept)
{
    EXPECT_EQ(found(), u"none"_s);
    const auto install = [&](const QString &id) {
        makeProgram(id);
        makeEntry(u"usr/applications/"_s + id, "Exec=" + id.toUtf8() + " %F");
    };
    install(u"org.gnome.Terminal"_s);
    EXPECT_EQ(found(), u"usr/applications/org.gnome.Terminal.desktop"_s) << "better a strange one than none";
    makeProgram(u"x-terminal-emulator"_s);
    EXPECT_EQ(found(), u"bin/x-terminal-emulator"_s);
    install(u"org.kde.konsole"_s);
    lookup.desktops = {u"plasma"_s, u"KDE"_s};
    EXPECT_EQ(found(), u"usr/applications/org.kde.konsole.desktop"_s);
    makeProgram(u"st"_s);
    lookup.terminalVariable = u"st -f mono"_s;
    EXPECT_EQ(found(), u"bin/st"_s);
    makeProgram(u"xdg-terminal-exec"_s);
    EXPECT_EQ(found(), u"bin/xdg-terminal-exec"_s);
    for (const QString &id : {u"hyper"_s, u"Alacritty"_s, u"kitty"_s, u"dev.warp.Warp"_s, u"com.mitchellh.ghostty"_s}) {
        install(id);
        EXPECT_EQ(found(), u"usr/applications/"_s + id + u".desktop"_s);
    }
    EXPECT_EQ(found(u"kitty"_s), u"usr/applications/kitty.desktop"_s);
    EXPECT_EQ(found(u"kitty.desktop"_s), u"usr/applications/kitty.desktop"_s);
    EXPECT_EQ(found(u"not.installed"_s), u"usr/applications/com.mitchellh.ghostty.desktop"_s);
}

TEST_F(TerminalLookupTest, AnEntryCountsWhenItsProgramIsThere)
{
    makeEntry(u"usr/applications/kitty"_s, "Exec=kitty");
    EXPECT_EQ(found(), u"none"_s) << "no program";
    put(u"bin/kitty"_s, "");
    EXPECT_EQ(found(), u"none"_s) << "not executable";
    makeProgram(u"kitty"_s);
    EXPECT_EQ(found(), u"usr/applications/kitty.desktop"_s);
    makeEntry(u"usr/applications/kitty"_s, "TryExec=missing\nExec=kitty");
    EXPECT_EQ(found(), u"none"_s);
    makeProgram(u"with space"_s);
    makeEntry(u"usr/applications/kitty"_s, "Exec=\"" + path(u"bin/with space"_s).toUtf8() + "\" -x");
    EXPECT_EQ(found(), u"usr/applications/kitty.desktop"_s);
    // The user's own entry hides the system's.
    makeEntry(u"home/applications/kitty"_s, "Hidden=true\nExec=kitty");
    EXPECT_EQ(found(), u"none"_s);

    makeEntry(u"usr/applications/vendor/my-term"_s, "Exec=kitty");
    EXPECT_EQ(found(u"vendor-my-term"_s), u"usr/applications/vendor/my-term.desktop"_s);
    EXPECT_EQ(found(u"../usr/applications/vendor/my-term"_s), u"none"_s);
    EXPECT_EQ(found(u"-"_s), u"none"_s);
}
