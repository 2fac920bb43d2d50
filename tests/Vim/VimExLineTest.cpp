// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExFixture.h"
#include "Vim/VimExOptions.h"
#include "Vim/VimKeyNotation.h"
#include "VimFixture.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

/// What Vim 9 makes of each, with "|" at its caret.
TEST(VimExLine, DoesAsVimDoes)
{
    constexpr QStringView lines = u"  one\n  two\n\tthree\n    four x\nfive\n\nsix\n";
    constexpr QStringView items = u"b 10\na -3\nB 7\na -3\nc\n";
    struct Row {
        QStringView text;
        qsizetype line;
        QStringView typed;
        QStringView after;
    };
    // clang-format off
    const Row rows[] = {
        {lines, 4, u"2,3d", u"  one\n    |four x\nfive\n\nsix\n"},
        {lines, 4, u"d x 2", u"  one\n  two\n\tthree\n|\nsix\n"},
        {lines, 1, u".,/four/-1d", u"    |four x\nfive\n\nsix\n"},
        {lines, 1, u"2;+1d", u"  one\n    |four x\nfive\n\nsix\n"},
        {lines, 4, u"?two?,$d", u"  |one\n"},
        {lines, 7, u"5,2d", u"  one\n|\nsix\n"},
        {lines, 4, u"2,9d", u"  one\n  two\n\tthree\n|    four x\nfive\n\nsix\n"},
        {lines, 4, u"-9d", u"  one\n  two\n\tthree\n|    four x\nfive\n\nsix\n"},
        {lines, 4, u"%d|pu", u"\n  one\n  two\n\tthree\n    four x\nfive\n\n|six\n"},
        {lines, 2, u"1,2y|$pu!", u"  one\n  two\n\tthree\n    four x\nfive\n\n  one\n  |two\nsix\n"},
        {lines, 1, u"3,1,2d", u"\t|three\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"/six/+5d", u"  one\n  two\n\tthree\n    four x\nfive\n|\n"},
        {lines, 1, u"2ka|4kb|'a,'bd", u"  one\n|five\n\nsix\n"},
        {lines, 1, u"'ad", u"|  one\n  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 4, u"2 2d", u"  one\n  two\n\tthree\n|five\n\nsix\n"},
        {lines, 4, u"$-1,$d", u"  one\n  two\n\tthree\n    four x\n|five\n"},
        {lines, 4, u"y a|pu A", u"  one\n  two\n\tthree\n    four x\n    |four x\nfive\n\nsix\n"},
        {lines, 1, u"pu", u"|  one\n  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 5, u"2y|0pu", u"  |two\n  one\n  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"2m$", u"  one\n\tthree\n    four x\nfive\n\nsix\n  |two\n"},
        {lines, 1, u"2,3m0", u"  two\n\t|three\n  one\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"2,3m2", u"|  one\n  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"3t0", u"\t|three\n  one\n  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"1,2co4|t.", u"  one\n  two\n\tthree\n    four x\n  one\n  two\n  |two\nfive\n\nsix\n"},
        {lines, 2, u"m /five/+", u"  one\n\tthree\n    four x\nfive\n\n  |two\nsix\n"},
        {lines, 1, u"%j", u"  |one two three four x five six\n"},
        {lines, 1, u"2j!", u"  one\n  |two\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 3, u"j3", u"  one\n  two\n\t|three four x five\n\nsix\n"},
        {lines, 7, u"j", u"  one\n  two\n\tthree\n    four x\nfive\n\n|six\n"},
        {lines, 4, u"2,2j", u"  one\n|  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"2,3>", u"  one\n      two\n        |three\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"3>>|4<", u"  one\n  two\n            three\n|four x\nfive\n\nsix\n"},
        {lines, 4, u"< 2", u"  one\n  two\n\tthree\nfour x\n|five\n\nsix\n"},
        {lines, 1, u"%<<<", u"one\ntwo\nthree\nfour x\nfive\n\n|six\n"},
        {lines, 1, u"g/o/d", u"\tthree\n|five\n\nsix\n"},
        {lines, 1, u"v/o/d", u"  one\n  two\n    |four x\n"},
        {lines, 1, u"g/^/m0", u"|six\n\nfive\n    four x\n\tthree\n  two\n  one\n"},
        {lines, 1, u"g/o/t.|>", u"  one\n      one\n  two\n      two\n\tthree\n    four x\n        |four x\nfive\n\nsix\n"},
        {lines, 1, u"g/o/j", u"  one two\n\tthree\n    |four x five\n\nsix\n"},
        {lines, 1, u"g!/e/2", u"  one\n  |two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 4, u"g/nope/d", u"  one\n  two\n\tthree\n|    four x\nfive\n\nsix\n"},
        {lines, 1, u"g/t/.,+1d|1", u"  |one\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"g/two/s", u"  one\n|  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"2,4norm A!", u"  one\n  two!\n\tthree!\n    four x|!\nfive\n\nsix\n"},
        {lines, 4, u"norm! x", u"  one\n  two\n\tthree\n|   four x\nfive\n\nsix\n"},
        {lines, 5, u"5|.+2", u"  one\n  two\n\tthree\n    four x\nfive\n\n|six\n"},
        {lines, 5, u"9", u"  one\n  two\n\tthree\n    four x\nfive\n\n|six\n"},
        {lines, 4, u"mark b|1|'bd", u"  one\n  two\n\tthree\n|five\n\nsix\n"},
        {lines, 1, u"2delm", u"|  one\n  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 4, u"5k", u"  one\n  two\n\tthree\n|    four x\nfive\n\nsix\n"},
        {lines, 1, u"ret 4", u"|  one\n  two\n    three\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"silent! 3|d", u"  one\n  two\n    |four x\nfive\n\nsix\n"},
        {lines, 1, u"\"d", u"|  one\n  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"d \" the line", u"  |two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"bogus", u"|  one\n  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"d 0", u"|  one\n  two\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"2,3p|d", u"  one\n  two\n    |four x\nfive\n\nsix\n"},
        {lines, 1, u"%s/o/0/g", u"  0ne\n  tw0\n\tthree\n    |f0ur x\nfive\n\nsix\n"},
        {lines, 2, u"s/o/0/|&&|3,4s//x/", u"  one\n  |tw0\n\tthree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"g/o/s//<&>/", u"  <o>ne\n  tw<o>\n\tthree\n    |f<o>ur x\nfive\n\nsix\n"},
        {lines, 1, u"s/one/x/|2,4s/t/T/e|~", u"  x\n  Two\n\t|Three\n    four x\nfive\n\nsix\n"},
        {lines, 4, u"2,3s/\\(\\w\\)\\(\\w\\)/\\2\\1/", u"  one\n  wto\n\t|htree\n    four x\nfive\n\nsix\n"},
        {lines, 1, u"g/o/g/x/d", u"  one\n  two\n\tthree\n|five\n\nsix\n"},
        {lines, 1, u"s/e\\zs/\\r/|-|\\&d", u"  one\n\n  two\n    |four x\nfive\n\nsix\n"},
        {lines, 1, u"2s/t.*/a|b/|$d", u"  one\n  a|b\n\tthree\n    four x\nfive\n|\n"},
        {items, 1, u"sort", u"|B 7\na -3\na -3\nb 10\nc\n"},
        {items, 1, u"sort!", u"|c\nb 10\na -3\na -3\nB 7\n"},
        {items, 1, u"sort i", u"|a -3\na -3\nb 10\nB 7\nc\n"},
        {items, 1, u"sort n", u"|c\na -3\na -3\nB 7\nb 10\n"},
        {items, 1, u"sort! n", u"|b 10\nB 7\na -3\na -3\nc\n"},
        {items, 1, u"sort u", u"|B 7\na -3\nb 10\nc\n"},
        {items, 1, u"sort iu", u"|a -3\nb 10\nB 7\nc\n"},
        {items, 1, u"2,4sort", u"b 10\n|B 7\na -3\na -3\nc\n"},
        {items, 1, u"sort /\\a /", u"|c\na -3\na -3\nb 10\nB 7\n"},
        {items, 1, u"sort /[0-9]/ r", u"|c\nb 10\na -3\na -3\nB 7\n"},
        {items, 1, u"sort n x", u"|b 10\na -3\nB 7\na -3\nc\n"},
        {items, 1, u"sort n /-/", u"|b 10\nB 7\nc\na -3\na -3\n"},
        {items, 1, u"sort f", u"|b 10\na -3\nB 7\na -3\nc\n"},
    };
    // clang-format on
    for (const Row &row : rows) {
        VimExText text(row.text.toString());
        text.moveCaret(VimLines(text.text()).startOf(row.line));
        text.run(row.typed.toString());
        QString after = text.text().toString();
        EXPECT_EQ(after.insert(text.caret(), u'|').toStdString(), row.after.toString().toStdString()) << row.typed.toString().toStdString();
        text.undo();
        EXPECT_TRUE(row.typed.contains(u'u') || text.text().toString() == row.text)
            << "one step of undo: " << row.typed.toString().toStdString();
    }
}

TEST(VimExLine, SaysWhatIsWrong)
{
    const std::pair<QStringView, QStringView> rows[] = {
        {u"9d", u"Invalid range"},
        {u"'xd", u"Mark not set: x"},
        {u"/nope/d", u"Pattern not found: nope"},
        {u"pu q", u"Nothing in register q"},
        {u"1,2m1", u"Lines cannot be moved into themselves"},
        {u"d 2 x", u"More than the command takes: x"},
        {u"d!", u"Takes no “!”: d"},
        {u"1reg", u"Takes no lines: reg"},
        {u"frob 1", u"Not a command: frob 1"},
        {u"syntax on", u"Not a command: syntax on"},
        {u"sort q", u"Not a way to sort: q"},
        {u"marks x", u"Mark not set: x"},
        {u"set nonsense", u"Not an option: nonsense"},
        {u"set sw=x", u"Needs a number: sw=x"},
        {u"w >>x", u"Only whole texts are written, and only to files"},
        {u"sil d!|d", u"Takes no “!”: d"},
        {u"%!sort", u":! runs other programs, which this editor does not"},
        {u"mak all|d", u":mak runs other programs, which this editor does not"},
        {u"r !date", u":r ! runs other programs, which this editor does not"},
        {u"w !cat", u":w ! runs other programs, which this editor does not"},
        {u"undo 3", u"There is no change 3"},
        {u"nmap <C-Left> b", u"There is no such key here: <C-Left>"},
        {u"file x", u"More than the command takes: x"},
        {u"s/nope/x/", u"Pattern not found: nope"},
        {u"%s/o/x/gc", u"Substitutions are not confirmed here"},
    };
    for (const auto &[typed, said] : rows) {
        VimExText text(u"one\ntwo\n"_s);
        EXPECT_FALSE(text.run(typed.toString()));
        EXPECT_EQ(text.said.join(u'|').toStdString(), said.toString().toStdString());
        EXPECT_EQ(text.text().toString(), u"one\ntwo\n"_s);
    }
}

TEST(VimExLine, AsksTheWindow)
{
    const std::pair<QStringView, QStringView> rows[] = {
        {u"wri", u"saveDocument:"},
        {u"w! a b ", u"saveDocument:a b"},
        {u"wqa", u"saveAllDocuments:|closeWindowFromVim:"},
        {u"q", u"closeTab:"},
        {u"quit!", u"forceCloseTab:"},
        {u"clo", u"closeSplit:"},
        {u"vs x.txt", u"splitEditorRight:|editFile:x.txt"},
        {u"new", u"splitEditorDown:|newDocument:"},
        {u"bd!", u"forceCloseTab:"},
        {u"tabn 3", u"showTab:3"},
        {u"2r x.txt", u"insertFile:2 x.txt"},
        {u"noh", u"hits hidden"},
        {u"=", u"2"},
        {u"f", u"“Untitled”, line 1 of 2, column 1"},
        {u"ascii", u"<o> U+006F, decimal 111"},
        {u"1nu", u"  1 one"},
        {u"w|bn", u"saveDocument:|selectNextTab:"},
    };
    for (const auto &[typed, asked] : rows) {
        VimExText text(u"one\ntwo\n"_s);
        EXPECT_TRUE(text.run(typed.toString()));
        EXPECT_EQ(text.said.join(u'|').toStdString(), asked.toString().toStdString());
    }
}

TEST(VimExOptions, AreSetInEveryForm)
{
    VimExText text({});
    const std::pair<QStringView, QStringView> rows[] = {
        {u"sw=2 ts?", u"  shiftwidth=2"},
        {u"ts+=3 ts-=1 ts?", u"  shiftwidth=4"},
        {u"ts:8 sw&", u""},
        {u"sw", u"  shiftwidth=4"},
        {u"noic invic ic?", u"  ignorecase"},
        {u"ic! ic?", u"noignorecase"},
        {u"clipboard=unnamedplus cb?", u"  clipboard=unnamedplus"},
        {u"cb-=unnamedplus cb", u"  clipboard="},
        {u"so=99999 so?", u"  scrolloff=1000"},
    };
    for (const auto &[typed, shown] : rows) {
        const auto applied = VimExOptions::apply(typed, text.preferences, VimExOptions::Lasting::stored);
        EXPECT_EQ(applied.value_or(QStringList(u"failed"_s)).join(u'|').toStdString(), shown.toString().toStdString())
            << typed.toString().toStdString();
    }
}

TEST(VimKeyNotation, GoesBothWays)
{
    const std::pair<QStringView, QStringView> rows[] = {
        {u"<C-W>j", u"\x17j"},
        {u"<CR><Esc><BS><Tab>", u"\r\x1b\x7F\t"},
        {u"<Space><Bar>x<lt>a>", u" |x<a>"},
        {u"<Up><F1><S-Tab>", u"\xF700\xF704\xF8FF"},
        {u"<A-j>", u"\xF66A"},
    };
    for (const auto &[written, keys] : rows) {
        EXPECT_EQ(VimKeyNotation::parsed(written, u","), keys) << written.toString().toStdString();
        EXPECT_EQ(VimKeyNotation::parsed(VimKeyNotation::written(keys), {}), keys) << written.toString().toStdString();
    }
    EXPECT_EQ(VimKeyNotation::parsed(u"<leader>x<Nop><x><", u","), u",x<x><"_s);
    EXPECT_EQ(VimKeyNotation::unknownKey(u"<F12><C-w><x-y><S-F1>"), u"<S-F1>"_s);
}

TEST(VimMappings, StandForOtherKeys)
{
    const QString lines = u"let mapleader = \"\\<Space>\"\nnmap <leader>w x\nnnoremap j w\nnmap x xl\nnmap a bc\nnmap bc x\nnmap jk D\n"
                          "nmap L M\nnmap M L\nnmap <silent> q <Nop>\nnmap K i\\|<Esc>"_s;
    // "…" waits till the time for the next key is over.
    const std::pair<const char16_t *, const char16_t *> rows[] = {
        {u" w", u" |b c\n"},  {u"jx", u"a  |c\n"}, {u"a", u" |b c\n"},  {u"jk", u"|\n"},      {u"j", u"|a b c\n"},
        {u"j…", u"a |b c\n"}, {u"jjk", u"a| \n"},  {u"q", u"|a b c\n"}, {u"K", u"||a b c\n"}, {u"L", u"|a b c\n"},
    };
    for (const auto &[typed, after] : rows) {
        VimOptions options(VimKeymapPreset::plain);
        options.isExact = true;
        VimView view(u"a b c\n"_s, options);
        EXPECT_TRUE(view.configuration.read(lines, u"file"_s).isEmpty());
        options.mappings = view.configuration.options().mappings;
        view.engine.configure(options);
        const QString keys = QString::fromUtf16(typed);
        view.press(QString(keys).remove(u'…'));
        if (keys.endsWith(u'…')) {
            view.engine.expireMapping();
        }
        EXPECT_EQ(view.marked().toStdString(), QString::fromUtf16(after).toStdString()) << keys.toStdString();
        EXPECT_EQ(view.messages.size(), keys == u"L" ? 1 : 0) << "mappings that lead to each other";
    }
    VimExText text({});
    EXPECT_TRUE(text.run(u"imap jk <Esc>"_s));
    EXPECT_FALSE(text.run(u"nunmap j"_s));
    EXPECT_FALSE(text.run(u"nmap <expr> a b"_s));
    text.said.clear();
    EXPECT_TRUE(text.run(u"imap"_s));
    EXPECT_EQ(text.said.join(u'|').toStdString(), "Mappings\ni      jk             <Esc>");
}

TEST(VimConfiguration, ReadsAFileOfCommands)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"vimrc"_s);
    VimExText text({});
    EXPECT_TRUE(text.configuration.follow(path).isEmpty()) << "there is none";
    const auto read = [&](const QByteArray &content) {
        text.preferences.set(Settings::vimExact, false);
        EXPECT_TRUE(text.configuration.follow(path).isEmpty());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        text.preferences.set(Settings::vimExact, true);
        return text.configuration.follow(path).join(u'|').toStdString();
    };
    EXPECT_EQ(read("\" mine\n:set sw=2 nowrap \" narrow\r\nfrob\nset ic\n \\ scs\n\nlet mapleader=','\nnmap <leader>a b\nd\nset sw=z"),
              "vimrc, line 3: Not a command: frob|vimrc, line 9: Not for a file of commands: d|vimrc, line 10: Needs a number: sw=z");
    EXPECT_EQ(text.preferences.value(Settings::tabWidth), 2);
    EXPECT_TRUE(text.preferences.value(Settings::vimSmartCase));
    const auto isMapped = [&] { return text.configuration.mappings().find(VimMappings::Mode::normal, u",a"_s) != nullptr; };
    EXPECT_TRUE(isMapped());
    EXPECT_FALSE(text.defaults.isSet(Settings::tabWidth.key)) << "nothing is stored";
    text.preferences.set(Settings::tabWidth, 8);
    EXPECT_EQ(text.preferences.value(Settings::tabWidth), 8);
    EXPECT_EQ(read(QByteArray(VimConfiguration::largestFile + 1, ' ')),
              u"“%1” is too large to be a file of commands"_s.arg(path).toStdString());
    EXPECT_FALSE(text.preferences.value(Settings::vimSmartCase)) << "back to what is stored";
    EXPECT_FALSE(isMapped());
}

TEST(VimExLine, ListsRegistersWithWhatTheyAre)
{
    VimExText text(u"a\n"_s);
    text.keep({.text = Rope(u"x\ny"_s), .isBlock = true, .blockWidth = 1}, u'b', VimRegisters::Taken::yanked);
    text.run(u"reg b"_s);
    EXPECT_EQ(text.said.join(u'|').toStdString(), "Registers\nType Name Content\n  b  \"b   x^Jy");
}
