// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"
#include "Vim/VimExCommands.h"
#include "Vim/VimSubstitution.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Records what it is asked to do.
class RecordingHost final : public VimCommandHost {
public:
    QStringList calls;

private:
    void showVimMessage(const QString &message) override { calls << message; }
    void scrollToLine(LineNumber number) override { calls << u"line %1"_s.arg(qsizetype(number)); }
    void substitute(const VimSubstitution &substitution) override
    {
        calls << u"%1 by %2"_s.arg(substitution.pattern, substitution.replacement) +
                     (substitution.isOfWholeText ? u" in all"_s : QString()) + (substitution.isGlobal ? u" g"_s : QString()) +
                     (substitution.ignoresCase ? u" i"_s : QString());
    }
    void hideSearchHits() override { calls << u"no hits"_s; }
    void performCommand(const Action &action, const QString &argument) override { calls << action.name() + argument; }
};

struct Fixture {
    ManualScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    RecordingHost host;

    QString run(const QString &typed)
    {
        host.calls.clear();
        VimExCommand::run(typed, host, preferences);
        return host.calls.join(u", ");
    }
};

} // namespace

TEST(VimExCommand, DoesWhatIsTyped)
{
    struct Row {
        QStringView typed;
        QStringView done;
    };
    constexpr Row rows[] = {
        {u"", u""},
        {u"\t12 ", u"line 12"},
        {u"+3", u"line 3"},
        {u"+-3", u"Not a command: +-3"},
        {u"\u0661", u"Not a command: \u0661"},
        {u"99999999999999999999", u"Not a command: 99999999999999999999"},
        {u" w ", u"saveDocument:"},
        {u"w!", u"Not a command: w!"},
        {u"w  a b", u"saveDocument: a b"},
        {u"w! a", u"saveDocument:a"},
        {u"q!", u"forceCloseTab:"},
        {u"e  a", u"editFile: a"},
        {u"e\ta", u"Not a command: e\ta"},
        {u"set ts=x", u"Not an option: ts=x"},
        {u"set width=4", u"Not an option: width=4"},
        {u"set vim", u"Not an option: vim"},
        {u"s/a/b", u"a by b"},
        {u"%s/a/b/gi", u"a by b in all g i"},
        {u"s/a/b/xig/more", u"a by b g i"},
        {u"s/a\\/b/c\\/d/", u"a/b by c/d"},
        {u"s/\\d\\\\/x\\", u"\\d\\\\ by x"},
        {u"s/a//", u"a by "},
        {u"s/a", u"Malformed substitution"},
        {u"s//x/", u"Malformed substitution"},
    };
    Fixture fixture;
    for (const Row &row : rows) {
        EXPECT_EQ(fixture.run(row.typed.toString()).toStdString(), row.done.toString().toStdString())
            << '"' << row.typed.toString().toStdString() << '"';
    }
}

TEST(VimExCommand, SetsOptions)
{
    Fixture fixture;
    const auto set = [&fixture](const QString &option) {
        EXPECT_EQ(fixture.run(u"set "_s + option), QString()) << option.toStdString();
        const Preferences &now = fixture.preferences;
        return u"%1%2%3%4%5 %6"_s.arg(now.value(Settings::showLineNumbers))
            .arg(now.value(Settings::wrapLines))
            .arg(now.value(Settings::showInvisibles))
            .arg(now.value(Settings::insertSpaces))
            .arg(now.value(Settings::vimMode))
            .arg(now.value(Settings::tabWidth));
    };
    fixture.preferences.set(Settings::vimMode, true);
    const std::pair<QStringView, QStringView> rows[] = {
        {u"nonumber", u"00011 4"},       {u"nu", u"10011 4"},
        {u"wrap", u"11011 4"},           {u"nowrap", u"10011 4"},
        {u"list", u"10111 4"},           {u"nolist", u"10011 4"},
        {u"noet", u"10001 4"},           {u"et", u"10011 4"},
        {u"tabstop=+2", u"10011 2"},     {u"sw=0", u"10011 1"},
        {u"shiftwidth=40", u"10011 16"}, {u"tsx=4", u"10011 4"},
        {u"ts=x=5", u"10011 5"},         {u"sw=9000000000", u"10011 16"},
        {u"novim", u"10010 16"},
    };
    for (const auto &[option, expected] : rows) {
        EXPECT_EQ(set(option.toString()).toStdString(), expected.toString().toStdString()) << option.toString().toStdString();
    }
}

TEST(VimSubstitution, ReplacesInTheLineOrEverywhere)
{
    struct Row {
        QStringView before;
        QStringView command;
        QStringView after;
        qsizetype count;
    };
    const QString many = u"|"_s + u"-ab ab\n"_s.repeated(1500);
    const QString once = u"-x ab\n"_s.repeated(1500);
    const QString all = u"-x x\n"_s.repeated(1500);
    const Row rows[] = {
        {u"aaa\n|aba\naa", u"s/a/x/g", u"aaa\nxbx\naa", 2},
        {u"aaa\n|aba\naa", u"%s/a/x/g", u"xxx\nxbx\nxx", 7},
        {u"|aA\rAb\r\nA", u"%s/a/x/i", u"xA\rxb\r\nx", 3},
        {u"|a\u2028a\n", u"%s/a/x/", u"x\u2028x\n", 2},
        {u"|one two\nthree four\n", u"%s/(\\w+) (\\w+)/$2 \\$1$3/", u"two $1\nfour $1\n", 2},
        {u"|a.b\n", u"s/\\./\\n\\t\\//", u"ant/b\n", 1},
        // Ends are those of what is searched.
        {u"a\n|a\na\n", u"s/^/> /", u"a\n> a\na\n", 1},
        {u"|a\na", u"%s/(?m)^/> /", u"> a\n> a", 2},
        {u"|", u"s/^/x/", u"x", 1},
        {u"a\n|", u"s/x*/x/g", u"a\nx", 1},
        {u"|ab", u"s/x*/-/g", u"-a-b-", 3},
        {u"|a\nb\n", u"%s/\\n//g", u"ab", 2},
        {u"|foobar foo\n", u"s/foo(?=bar)/x/", u"xbar foo\n", 1},
        // So many that they are one stretch.
        {many, u"%s/ab/x/", once, 1500},
        {many, u"%s/ab/x/g", all, 3000},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.command.toString().toStdString());
        const qsizetype caret = row.before.indexOf(u'|');
        const Rope text(row.before.toString().remove(caret, 1));
        const auto substitution = *VimSubstitution::parse(row.command);
        auto searcher = *substitution.searcher();
        const TextReplacement replacement = substitution.replacementIn(text, caret, searcher);
        EXPECT_EQ(replacement.edits.applied(text).toString().toStdString(), row.after.toString().toStdString());
        EXPECT_EQ(replacement.count, row.count);
        EXPECT_TRUE(row.count < 1000 || replacement.edits.count() == 1);
    }
    EXPECT_FALSE(VimSubstitution{.pattern = u"("_s}.searcher());
}
