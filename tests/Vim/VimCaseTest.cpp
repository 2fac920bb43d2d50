// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "VimFixture.h"

#include <span>

using namespace Qt::StringLiterals;

namespace {

struct Case {
    const char16_t *before;
    const char16_t *keys;
    const char16_t *after;
};

constexpr Case motionCases[] = {
    {u"a\nbc|d\n", u"9h", u"a\n|bcd\n"},
    {u"|abc\nd\n", u"9l", u"ab|c\nd\n"},
    {u"|a\U0001F600b", u"ll", u"a\U0001F600|b"},
    {u"|a\U0001F600\nabc\n", u"$j", u"a\U0001F600\na|bc\n"},
    {u"|\u26a0\ufe0f warn\n", u"w", u"\u26a0\ufe0f |warn\n"},
    {u"|cafe\u0301 bar\n", u"2e", u"cafe\u0301 ba|r\n"},
    {u"|a\U0001F600-b-\n", u"t-;", u"a\U0001F600-|b-\n"},
    {u"|abc\nd\nefg\n", u"$jj", u"abc\nd\nef|g\n"},
    {u"abc\nd\nef|g\n", u"kk", u"ab|c\nd\nefg\n"},
    {u"|ab\ncd", u"<Down><Right><Up><Left>", u"|ab\ncd"},
    {u"a|b c", u"<End>x<Home><Del>", u"|b "},
    {u"one |two", u"w", u"one tw|o"},
    {u"a.b |c\n", u"2b", u"a|.b c\n"},
    {u"a.b |c\n", u"B", u"|a.b c\n"},
    {u"|a.b c\n", u"E", u"a.|b c\n"},
    {u"  a|b\n", u"0", u"|  ab\n"},
    {u" \t a|b\n", u"^", u" \t |ab\n"},
    {u"|a\n  b\nc\n", u"2G", u"a\n  |b\nc\n"},
    {u" a\nb\n|c\n", u"gg", u" |a\nb\nc\n"},
    {u"|a\n \n\nc\n\nd\n", u"2}", u"a\n \n\nc\n|\nd\n"},
    {u"a\n\nb\n\n|c\n", u"2{", u"a\n|\nb\n\nc\n"},
    {u"|if (a[(1)]) x\n", u"%", u"if (a[(1)]|) x\n"},
    {u"|a-b-c\n", u"2f-,", u"a|-b-c\n"},
    {u"|a-b-c\n", u"t-;", u"a-|b-c\n"},
    {u"a|-b-c\n", u"t-,", u"a-|b-c\n"},
    {u"a-b-|c\n", u"F-;", u"a|-b-c\n"},
    {u"a-b|-c\n", u"T-;", u"a-|b-c\n"},
    {u"|a\U0001F600", u"f\U0001F600;", u"|a\U0001F600"},
    {u"|ab\n", u"2;", u"|ab\n"},
    {u" a\n b|c\n", u"magg`a", u" a\n b|c\n"},
    {u" a\n b|c\n", u"magg'a", u" a\n |bc\n"},
    {u" a\nb\n| c\n", u"9H", u" |a\nb\n c\n"},
    {u"|ab\r\ncd", u"$", u"a|b\r\ncd"},
    {u"|ab\r\n\r\ncd", u"jj", u"ab\r\n\r\n|cd"},
    {u"|a\u2028b_1 c", u"jw", u"a\u2028b_1 |c"},
};

constexpr Case searchCases[] = {
    {u"|foo a foo\n", u"/f.o<CR>", u"foo a |foo\n"},
    {u"|a b a b\n", u"2/b<CR>n", u"a b a |b\n"},
    {u"|a b a b\n", u"/b<CR>N", u"a b a |b\n"},
    {u"|aaaaa\n", u"/aa<CR>", u"aa|aaa\n"},
    {u"|b\na\nb\n", u"/^b<CR>", u"|b\na\nb\n"},
    {u"a\n|b\nb\n", u"?(?m)^a|^<CR>", u"|a\nb\nb\n"},
    {u"|ab\n", u"/x*<CR>", u"a|b\n"},
    {u"|ab\ncd", u"/$<CR>", u"ab\nc|d"},
    {u"a b a |b\n", u"?b<CR>n", u"a b a |b\n"},
    {u"|ab B\n", u"/x<BS>B<CR>", u"ab |B\n"},
    {u"|ab\n", u"/b<Esc>n", u"|ab\n"},
    {u"|a (b\n", u"/(<CR>n", u"|a (b\n"},
    {u"|a b\n", u"/b<CR>0/<CR>n", u"a |b\n"},
    {u"|foo a foo b xfoo\n", u"*", u"foo a |foo b xfoo\n"},
    {u"fo|o xfoo foo a\n", u"2*", u"foo xfoo |foo a\n"},
    {u"foo a foo |foo\n", u"#N", u"foo a foo |foo\n"},
    {u"|a.b axb a.b\n", u"W*", u"a.b |axb a.b\n"},
    {u"|e\u0301a\n", u"/.<CR>", u"e\u0301|a\n"},
};

constexpr Case operatorCases[] = {
    {u"one |two\n  three\n", u"dw", u"one| \n  three\n"},
    {u"a |b.c d\n", u"dW", u"a |d\n"},
    {u"|one two\n", u"de", u"| two\n"},
    {u"a|\U0001F600\n", u"dl", u"a|\U0001F600\n"},
    {u"|cafe\u0301 bar\n", u"de", u"| bar\n"},
    {u"one |two three\n", u"d$", u"one| \n"},
    {u"a|b\ncd\ne\n", u"d2$", u"|a\ne\n"},
    {u"a\nb|c\nd\n\ne\n", u"d}", u"a\n|b\ne\n"},
    {u"one\ntwo\n|three\n", u"2dk", u"|"},
    {u"|one\ntwo\n", u"d2j", u"|one\ntwo\n"},
    {u"a\n|b\n  c\nd\n", u"d3G", u"a\n|d\n"},
    {u"|a-b-c\n", u"df-", u"|b-c\n"},
    {u"a-b-|c\n", u"dF-", u"a-b|c\n"},
    {u"|one\ntwo\n", u"dd", u"|two\n"},
    {u"one\n|two\n", u"3dd", u"on|e\n"},
    {u"|a\nb\nc\nd\ne\n", u"2d2d", u"|e\n"},
    {u"|a", u"dd", u"|"},
    {u"a\r\n|b\r\nc", u"dd", u"a\r\n|c"},
    {u"|one two\n", u"cwnew <Esc>", u"new| two\n"},
    {u"  |one\ntwo\n", u"ccx<Esc>", u"  |x\ntwo\n"},
    {u"a\n  |b\nc\n", u"ckx<Esc>", u"|x\nc\n"},
    {u"|one Two\n", u"gU2w", u"|ONE TWO\n"},
    {u"|aB cD\n", u"g~$", u"|Ab Cd\n"},
    {u"a|b\ncd\n", u"gU2U", u"|AB\nCD\n"},
    {u"|a\n\nb\n", u"3>>", u"    |a\n\n    b\n"},
    {u"      |a\n\tb\nc\n", u"3<lt><lt>", u"  |a\nb\nc\n"},
    {u"    |x y\nc d\n", u"<lt>e", u"|x y\nc d\n"},
};

constexpr Case objectCases[] = {
    {u"one t|wo three\n", u"diw", u"one | three\n"},
    {u"one t|wo\n", u"daw", u"on|e\n"},
    {u"|a b c d\n", u"2d2aw", u"|c d\n"},
    {u"|a\nb\n\nc\n", u"dap", u"|c\n"},
    {u"|f(\"a b\") \n", u"ci\"x<Esc>", u"f(\"|x\") \n"},
    {u"'a\\'|b' c\n", u"da'", u"| c\n"},
    {u"`a` b |`c`\n", u"di`", u"`a` b `|`\n"},
    {u"f(a, |(b))\n", u"di(", u"f(a, (|))\n"},
    {u"f {\n  |x;\n}\n", u"di{", u"f {|}\n"},
    {u"|a {\n b\n}\n", u"diB", u"|a {\n b\n}\n"},
    {u"f(|)\n", u"ci(x<Esc>", u"f(|x)\n"},
    {u"|ab\n", u"diz", u"|ab\n"},
};

constexpr Case commandCases[] = {
    {u"|ab\n", u"ix<Esc>", u"|xab\n"},
    {u"  a|b\n", u"Ix<Esc>", u"  |xab\n"},
    {u"|ab\n", u"A;<Esc>", u"ab|;\n"},
    {u" |a\nb\n", u"ox<Esc>", u" a\n |x\nb\n"},
    {u"a\n |b\n", u"Ox<Esc>", u"a\n |x\n b\n"},
    {u"a|bc\nd\n", u"9x", u"|a\nd\n"},
    {u"a\nbc|d\n", u"9X", u"a\n|d\n"},
    {u"a|bc\nd\n", u"2Cx<Esc>", u"a|x\nd\n"},
    {u"|abc\n", u"2sx<Esc>", u"|xc\n"},
    {u" |a\nb\nc\n", u"2Sx<Esc>", u" |x\nc\n"},
    {u"a|bc\nd\n", u"9rx", u"ax|x\nd\n"},
    {u"a|\U0001F600e\u0301b\n", u"4rx", u"ax|xb\n"},
    {u"|abc\n", u"2r\U0001F600", u"\U0001F600|\U0001F600c\n"},
    {u"|aBc\n", u"3~", u"Ab|C\n"},
    {u"|a\n  b\nc\n", u"3J", u"a b| c\n"},
    {u"|a\nb\nc\n", u"J", u"a| b\nc\n"},
    {u"|\n a\n", u"J", u"|a\n"},
    {u"|a\n \nb\n", u"J", u"|a\nb\n"},
    {u"a|b c\n", u"r<CR>", u"a\n| c\n"},
    {u"|abc\n", u"3r<CR>", u"\n|\n"},
    {u"|x\n", u"iab cd<C-w>e<Esc>", u"ab |ex\n"},
    {u"|x\n", u"iab<C-u>c<Esc>", u"|cx\n"},
    {u"|x\n", u"iab<C-h>c<Esc>", u"a|cx\n"},
};

/// More than one command, or one that is not to be repeated.
constexpr Case sequenceCases[] = {
    {u"|ab\n", u"yl3p", u"aaa|ab\n"},
    {u"|one\ntwo\n", u"yyjp", u"one\ntwo\n|one\n"},
    {u"|a\n b\n", u"jY3P", u"a\n |b\n b\n b\n b\n"},
    {u"|a\nb", u"yyGp", u"a\n|ba\n"},
    {u"a\n|b", u"yyggp", u"a\n|b\nb"},
    {u"|a\nb\n", u"\"ayyj\"Ayy\"ap", u"a\nb\n|a\nb\n"},
    {u"|ab\n", u"\"xx\"xp", u"b|a\n"},
    {u"|a\nb\nc\n", u"majj`aD", u"|\nb\nc\n"},
    {u"a |b\n", u"ybP", u"a| a b\n"},
    {u"a\n|b\n", u"ykP", u"|a\nb\na\nb\n"},
    {u"|a b c\n", u"wma0d`a", u"a |b c\n"},
    {u"|a\nb\n", u"jlmakOx<Esc>`ax", u"x\n|\nb\n"},
    {u"|abc\n", u"xu", u"|abc\n"},
    {u"|abcd\n", u"xxuu<C-r>x", u"|cd\n"},
    {u"|a b\n", u"dgUw", u"a |b\n"},
    {u"|ab\n", u"gvx", u"|b\n"},
    {u"|ab\n", u"3:<BS>x", u"|b\n"},
    {u"|ab\n", u"ix<C-[>l<C-c>x", u"x|b\n"},
    {u"|ab\n", u"r<BS>x", u"|b\n"},
    {u"|ab cd\n", u"yiwA <C-r>\"<Esc>", u"ab cd a|b\n"},
    {u"|abcd\nxy\n", u"vld.j", u"\n|xy\n"},
    {u"|abc\nxy\n", u"vld.x", u"|\nxy\n"},
    {u"|a\nb\nc\nd\ne\n", u"Vjd.", u"|e\n"},
    {u"|ab cd\nab cd\n", u"vlcx<Esc>j.", u"x cd\n|x cd\n"},
    {u"|ab\ncd\nef\ngh\nij\n", u"lvjd0.", u"|\ngh\nij\n"},
};

constexpr Case visualCases[] = {
    {u"|one two\n", u"ve", u"^one| two\n"},
    {u"one |two\n", u"vb", u"|one t^wo\n"},
    {u"|ab\nc\n", u"lvj", u"a^b\nc\n|"},
    {u"a|b\nc\n", u"v9l", u"a^b\n|c\n"},
    {u"a|b\nc\nd\n", u"Vj", u"^ab\nc\n|d\n"},
    {u"|ab\ncd\n", u"vjV", u"ab\n|cd\n^"},
    {u"|ab\ncd\n", u"Vjv", u"ab\n^c|d\n"},
    {u"|one two\n", u"wve<Esc>", u"one |two\n"},
    {u"a b|c d\n", u"v2aw", u"a^ bc |d\n"},
    {u"|a\n\nb\n", u"Vap", u"^a\n\n|b\n"},
    {u"f {\n  |x;\n}\n", u"vi{", u"f {^\n  x;\n|}\n"},
    {u"|a b\n", u"vizl", u"^a |b\n"},
    {u"|one two\n", u"vecx<Esc>", u"|x two\n"},
    {u"|a\nb\nc\n", u"Vjd", u"|c\n"},
    {u"|ab cd\n", u"vegU", u"|AB cd\n"},
    {u"|ab\ncd\n", u"Vjg~", u"|AB\nCD\n"},
    {u" |a\nb\nc\n", u"Vjcx<Esc>", u" |x\nc\n"},
    {u"a |b\n", u"vhy$p", u"a b |b\n"},
    {u"a|b\nc\n", u"vj>", u"    |ab\n    c\n"},
    {u"|ab\n", u"vl\"xyx\"xP", u"a|bb\n"},
    {u"|a b a b\n", u"v/b<CR>", u"a |b a b\n"},
    {u"a |b c\n", u"vl/x<CR>", u"a |b c\n"},
    {u"a |b c\n", u"vl:<BS>", u"a |b c\n"},
    {u"|a b a b\n", u"/b<CR>0vn", u"^a b| a b\n"},
    {u"a |b c\n", u"ma0v`a", u"^a b| c\n"},
    {u"|a\U0001F600\nb\n", u"ylv$P", u"^aa|\U0001F600\nb\n"},
    {u"|\U0001F600 \U0001F600 b\n", u"vee", u"^\U0001F600 \U0001F600 b|\n"},
};

QString withoutMarks(const QString &text)
{
    QString plain = text;
    return plain.remove(u'|').remove(u'^');
}

QString plain(const char16_t *text)
{
    return QStringView(text).toString();
}

enum class Dot { repeats, differs };

/// Does what the case says, takes all of it back, and does it again; once more by the dot where that repeats it.
void check(const Case &given, Dot dot)
{
    const QString start = plain(given.before);
    const QString goal = plain(given.after);
    const QString keys = plain(given.keys);
    SCOPED_TRACE("keys " + keys.toStdString() + " on " + start.toStdString());
    VimView view(withoutMarks(start));
    view.select({start.indexOf(u'|'), 0}, start.indexOf(u'|'));
    view.press(keys);
    EXPECT_EQ(view.marked().toStdString(), goal.toStdString());
    EXPECT_EQ(view.engine.pendingDescription(), QString());
    const QString changed = view.string();
    view.press(u"<Esc>"_s);
    int steps = 0;
    for (; view.undoManager.canUndo(); ++steps) {
        view.press(u"u"_s);
    }
    EXPECT_EQ(view.string().toStdString(), withoutMarks(start).toStdString());
    for (int step = 0; step < steps; ++step) {
        view.press(u"<C-r>"_s);
    }
    EXPECT_EQ(view.string().toStdString(), changed.toStdString());
    if (dot == Dot::repeats && changed != withoutMarks(start)) {
        EXPECT_EQ(steps, 1);
        view.press(u"u"_s);
        view.select({start.indexOf(u'|'), 0}, start.indexOf(u'|'));
        view.press(u"."_s);
        EXPECT_EQ(view.marked().toStdString(), goal.toStdString()) << "by the dot";
    }
}

} // namespace

TEST(VimCase, DoTheirWorkAndAreUndone)
{
    for (const auto &cases : std::to_array<std::span<const Case>>({motionCases, searchCases, sequenceCases, visualCases})) {
        std::ranges::for_each(cases, [](const Case &one) { check(one, Dot::differs); });
    }
    for (const auto &cases : std::to_array<std::span<const Case>>({operatorCases, objectCases, commandCases})) {
        std::ranges::for_each(cases, [](const Case &one) { check(one, Dot::repeats); });
    }
}

TEST(VimCase, WhatIsNearIsFoundAtOnceAndTheSameAsFromAfar)
{
    const QString lines = QString(u"aba ab\nxx "_s.repeated(200) + u'\n').repeated(700);
    const qsizetype length = lines.size();
    ASSERT_GT(length, VimSearch::nearby);
    const Rope text(QString(u"far away\n"_s + lines + u"end"_s));
    using enum VimSearch::Direction;
    for (const QString &pattern : {u"aba|ab\\nxx"_s, u"b\\s+xx a"_s, u"far"_s, u"end$"_s, u"$"_s, u"a{2}"_s}) {
        for (const auto direction : {forward, backward}) {
            for (const qsizetype from : {qsizetype(0), qsizetype(3), qsizetype(12), length / 2 + 5, length - 9, length + 11}) {
                const VimSearch search{pattern, direction};
                if (const auto near = search.nearHit(text, from)) {
                    EXPECT_EQ(near, search.hit(text, from)) << pattern.toStdString() << " from " << from;
                }
            }
        }
    }
    const VimSearch back{u"far"_s, backward};
    EXPECT_TRUE(back.nearHit(text, 100) && !back.nearHit(text, length));
    const VimSearch around{u"far"_s, forward};
    EXPECT_TRUE(around.nearHit(text, length) && !around.nearHit(text, 100));
}

TEST(VimCase, TheDotRepeatsTheLastChangeAsOneStep)
{
    for (const auto &[before, keys, after] : std::to_array<Case>({
             {u"a b c d e f g h\n", u"3dw5.", u"g h\n"},
             {u"one two\n", u"ciwx<Esc>w.", u"x x\n"},
             {u"a\nb\n", u"A;<Esc>j.", u"a;\nb;\n"},
             {u"abc\n", u"xywufcmanNl.", u"ab\n"},
             {u"a\nb\n", u">>j.", u"    a\n    b\n"},
             {u"a\nb\n", u"\"xyyp\"xp.", u"a\na\na\na\nb\n"},
             {u"ab\n", u"r\U0001F600l.", u"\U0001F600\U0001F600\n"},
         })) {
        VimView view(plain(before));
        const QString all = plain(keys);
        view.press(all.chopped(1));
        const QString first = view.string();
        view.press(all.last(1));
        EXPECT_EQ(view.string().toStdString(), plain(after).toStdString()) << all.toStdString();
        view.press(u"u"_s);
        EXPECT_EQ(view.string().toStdString(), first.toStdString()) << all.toStdString();
    }
}

TEST(VimCase, Scrolling)
{
    QString text;
    for (int line = 1; line <= 60; ++line) {
        text += u" %1\n"_s.arg(line);
    }
    VimView view(text);
    const auto line = [&] { return view.string().left(view.selected.location).count(u'\n') + 1; };
    const auto lineAfter = [&](const QString &keys) {
        view.press(keys);
        EXPECT_EQ(view.selected.location, VimBuffer(view.text()).firstNonBlank(view.selected.location)) << keys.toStdString();
        return line();
    };
    EXPECT_EQ(lineAfter(u"<C-d>"_s), 11);
    EXPECT_EQ(lineAfter(u"5<C-f>"_s), 31) << "counts are for what follows";
    EXPECT_EQ(view.engine.pendingDescription(), u"5"_s);
    EXPECT_EQ(lineAfter(u"<Esc><PageDown><PageDown>"_s), 60);
    EXPECT_EQ(lineAfter(u"<C-u>"_s), 50);
    EXPECT_EQ(lineAfter(u"<C-b>"_s), 30);
    view.visible = TextRange::between(text.indexOf(u" 20"), text.indexOf(u" 41"));
    EXPECT_EQ(lineAfter(u"3H"_s), 20);
    EXPECT_EQ(lineAfter(u"M"_s), 30);
    EXPECT_EQ(lineAfter(u"L"_s), 40);
    EXPECT_EQ(lineAfter(u"<PageUp><PageUp><PageUp>"_s), 1);
    view.press(u"zzztzbzx"_s);
    EXPECT_EQ(view.actions, (QStringList{u"center"_s, u"reveal"_s, u"reveal"_s}));
}

TEST(VimCase, SomeKeysWait)
{
    VimView view(u"one two one\n"_s);
    for (const auto &[keys, pending] : std::to_array<std::pair<QString, QString>>({{u"2d3"_s, u"2d3"_s},
                                                                                   {u"<Esc>\"a3y"_s, u"\"a3y"_s},
                                                                                   {u"i"_s, u"\"a3yi"_s},
                                                                                   {u"w"_s, u""_s},
                                                                                   {u"gU"_s, u"gU"_s},
                                                                                   {u"g"_s, u"gUg"_s},
                                                                                   {u"v"_s, u""_s},
                                                                                   {u"z"_s, u"z"_s},
                                                                                   {u"<Esc>m"_s, u"m"_s},
                                                                                   {u"a3<C-w>"_s, u"^w"_s},
                                                                                   {u"<Esc>"_s, u""_s}})) {
        view.press(keys);
        EXPECT_EQ(view.engine.pendingDescription(), pending) << keys.toStdString();
    }
    view.press(u"/on"_s);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::commandLine);
    EXPECT_EQ(view.engine.commandLine().prefix(), u'/');
    EXPECT_EQ(view.engine.commandLine().text(), u"on"_s);
    view.press(u"e<CR>"_s);
    EXPECT_EQ(view.indicator, (TextRange{8, 3}));
    view.press(u":w x<CR>"_s);
    EXPECT_EQ(view.commandLines, QStringList{u"w x"_s});
}

TEST(VimCase, KeysBelongToWhatWaitsForThem)
{
    VimView view(u"a[b] gx\n"_s, VimKeymapPreset::lazyVim);
    view.select({2, 0}, 2);
    view.press(u"ci[X<Esc>"_s);
    EXPECT_EQ(view.string(), u"a[X] gx\n"_s) << "a mapping begins with [";
    view.press(u"fgr x"_s);
    EXPECT_EQ(view.string(), u"a[X] x\n"_s) << "others with g and the leader";
    EXPECT_EQ(view.actions, QStringList());
    view.press(u"H<C-w>"_s);
    EXPECT_TRUE(view.engine.wants({.charactersIgnoringModifiers = u"k"_s, .control = true}));
    view.press(u"<C-j>"_s);
    EXPECT_EQ(view.actions, (QStringList{u"selectPreviousTab:"_s, u"focusNextPane:"_s}));
}

TEST(VimCase, TheCommandLineHasKeysOfItsOwn)
{
    VimView view(u"two\n"_s);
    view.pasteboard.setText(u"a\nb\n"_s);
    view.press(u"\"zyiw"_s);
    for (const auto &[keys, line] : std::to_array<std::pair<QString, QString>>({{u"one  two-"_s, u"one  two-"_s},
                                                                                {u"<C-w>"_s, u"one  two"_s},
                                                                                {u"<C-w>"_s, u"one  "_s},
                                                                                {u"<C-w>x"_s, u"x"_s},
                                                                                {u"<C-n><C-a><C-t>y<C-h>"_s, u"x"_s},
                                                                                {u"<C-v>"_s, u"xa b"_s},
                                                                                {u"<C-r>z<C-r>?"_s, u"xa btwo"_s},
                                                                                {u"<C-u>"_s, u""_s}})) {
        view.press((view.engine.mode() == VimEngine::Mode::commandLine ? u""_s : u":"_s) + keys);
        EXPECT_EQ(view.engine.commandLine().text(), line) << keys.toStdString();
        EXPECT_TRUE(view.engine.wants({.charactersIgnoringModifiers = u"w"_s, .control = true}));
    }
    view.press(u"<C-h>"_s);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    view.press(u":x<C-c>"_s);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    EXPECT_EQ(view.commandLines, QStringList());
}

TEST(VimCase, WhatOthersSelectIsTheModesOwn)
{
    VimView view(u"ab cd\nef\n"_s);
    const auto take = [&view](TextSelection selection) {
        view.select(selection.range(), selection.caret);
        view.engine.takeSelection(selection);
    };
    view.press(u"ve"_s);
    take(TextSelection::at(8));
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    EXPECT_EQ(view.marked(), u"ab cd\ne|f\n"_s) << "a caret rests on a character";
    take({0, 2});
    view.press(u"l"_s);
    EXPECT_EQ(view.marked(), u"^ab |cd\nef\n"_s);
    take({5, 3});
    view.press(u"h"_s);
    EXPECT_EQ(view.marked(), u"ab| cd^\nef\n"_s);
    view.press(u"d"_s);
    EXPECT_EQ(view.string(), u"ab\nef\n"_s);
    view.press(u"vl<C-c>"_s);
    EXPECT_EQ(view.actions, QStringList{u"copy:"_s});
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    view.press(u"vd:"_s);
    take({0, 2});
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::commandLine);
}

TEST(VimCase, RegistersAndTheClipboard)
{
    VimView view(u"one two\n"_s);
    view.press(u"\"+yiw"_s);
    EXPECT_EQ(view.pasteboard.text(), u"one"_s);
    view.press(u"wyiw"_s);
    EXPECT_EQ(view.pasteboard.text(), u"one"_s) << "the unnamed one is not shared";
    view.pasteboard.setTextFromElsewhere(u"L\r\n"_s);
    view.press(u"\"*p"_s);
    EXPECT_EQ(view.marked(), u"one two\n|L\n"_s);
    view.preferences.set(Settings::vimSharesClipboard, true);
    view.press(u"yy"_s);
    EXPECT_EQ(view.pasteboard.text(), u"L\n"_s);
    view.pasteboard.setTextFromElsewhere(u"X"_s);
    view.press(u"0P"_s);
    EXPECT_EQ(view.string(), u"one two\nXL\n"_s);
    view.press(u"ggyyp"_s);
    EXPECT_EQ(view.marked(), u"one two\n|one two\nXL\n"_s);
    VimView last(u"a\nb"_s);
    last.preferences.set(Settings::vimSharesClipboard, true);
    last.press(u"jyykp"_s);
    EXPECT_EQ(last.marked(), u"a\n|b\nb"_s) << "what was yanked here is still a line";

    VimRegisters &registers = view.registers;
    registers.set({Rope(u"a"_s), false}, u'Q');
    registers.set({Rope(u"b\n"_s), true}, u'Q');
    EXPECT_EQ(registers.contents(u'q').text.toString(), u"ab\n"_s);
    EXPECT_TRUE(registers.contents(u'q').isLinewise);
    EXPECT_EQ(registers.unnamed().text.toString(), u"b\n"_s);
    EXPECT_TRUE(registers.contents(u'_').text.isEmpty());
    registers.set({Rope(), false}, u'+');
    EXPECT_EQ(view.pasteboard.text(), u"one two\n"_s) << "nothing does not replace what is there";
}

TEST(VimCase, ModesActionsAndRefusedChanges)
{
    VimView view(u"one two\n"_s);
    EXPECT_EQ(view.caretLook, VimCaret::block);
    view.press(u"<C-w>v<C-w>W"_s);
    EXPECT_EQ(view.actions, (QStringList{Actions::splitEditorRight.name(), Actions::focusPreviousPane.name()}));
    EXPECT_EQ(view.beeps, 0);
    view.press(u"<C-w>x"_s);
    EXPECT_EQ(view.beeps, 1);
    view.press(u"yl999999999p999999999rx"_s);
    EXPECT_EQ(view.string(), u"xxxxxxx\n"_s);
    EXPECT_EQ(view.messages.size(), 1) << "a paste that large is refused";
    view.press(u"ui"_s);
    EXPECT_EQ(view.caretLook, VimCaret::bar);
    EXPECT_FALSE(view.engine.handle({.characters = {}, .charactersIgnoringModifiers = u"d"_s, .control = true}));
    view.press(u"<C-c>"_s);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    EXPECT_EQ(view.caretLook, VimCaret::block);

    view.isReadOnly = true;
    const QString before = view.string();
    view.press(u"ddxpJ~rxo<Esc>cwa<Esc>>>gUU.yyP"_s);
    EXPECT_EQ(view.string(), before);

    VimView nothing{QString()};
    nothing.press(u"dwxXD~JddyyrxpP>>gUUhjklwbe0^$G{}%fxn*ggdiwdapvy"_s);
    EXPECT_EQ(nothing.string(), QString());
    EXPECT_EQ(nothing.engine.mode(), VimEngine::Mode::normal);
}

TEST(VimCase, KeyMaps)
{
    VimView lazy(u"a\nb\nc\n"_s, VimKeymapPreset::lazyVim);
    for (const VimKeymap::Mapping &mapping : VimKeymap::mappings(VimKeymapPreset::lazyVim)) {
        QString keys;
        for (const VimKeyStroke &key : mapping.keys) {
            keys += (key.control ? u"<C-%1>"_s : key.option ? u"<A-%1>"_s : u"%1"_s).arg(QChar(key.character));
        }
        lazy.press(keys == u"gc" ? u"vgc"_s : keys);
        const auto *const *action = std::get_if<const Action *>(&mapping.action);
        const QString wanted = action ? (*action)->name() : keys.startsWith(u'g') ? u"toggleComment"_s : QString();
        EXPECT_EQ(lazy.actions.value(0), wanted) << keys.toStdString();
        EXPECT_EQ(lazy.engine.mode(), VimEngine::Mode::normal);
        lazy.actions.clear();
    }
    lazy.press(u"gg b"_s);
    EXPECT_EQ(lazy.engine.pendingDescription(), u"␣b"_s);
    EXPECT_EQ(VimKeymap::describe({{u' '}, {u'x'}, {.character = u'h', .control = true}, {.character = u'j', .option = true}}),
              u"<leader>x⌃h⌥j"_s);
    lazy.press(u"<Esc>fHG<A-j>gg<A-k>"_s);
    EXPECT_EQ(lazy.actions, QStringList{Actions::selectPreviousTab.name()}) << "a mapping goes before what a command waits for";
    EXPECT_EQ(lazy.marked(), u"|a\nb\nc\n"_s);
    lazy.press(u"jVj<A-k>"_s);
    EXPECT_EQ(lazy.marked(), u"^b\nc\n|a\n"_s);
    lazy.press(u"<A-j>"_s);
    EXPECT_EQ(lazy.marked(), u"a\n^b\nc\n|"_s);
    lazy.press(u"<Esc>gg xgUU"_s);
    EXPECT_EQ(lazy.marked(), u"|\nb\nc\n"_s);
    VimView plainKeys(u"a\nb"_s);
    plainKeys.press(u"<A-j> GH xiL gcc<Esc>"_s);
    EXPECT_EQ(plainKeys.string(), u"L gcc\nb"_s);
    EXPECT_EQ(plainKeys.actions, QStringList());

    for (const auto &[before, keys, after] : std::to_array<Case>({{u"a\n  b", u"<A-j>", u"  b\n|a"},
                                                                  {u"ab\n", u" s:x<Esc>", u":|xb\n"},
                                                                  {u"a\U0001F601\n", u" f\U0001F600x", u"|\U0001F601\n"},
                                                                  {u"a\n  b", u"G<A-k>", u"  |b\na"},
                                                                  {u"a\nb\u2028c\n", u"j<A-k>", u"|b\u2028a\nc\n"},
                                                                  {u"a\nb\n\nc\n", u"jgcip", u"|// a\n// b\n\nc\n"},
                                                                  {u"  a\n  b\nc\n", u"gcj", u"  |// a\n  // b\nc\n"},
                                                                  {u"a\nb\nc\nd\n", u"j2gcc", u"a\n|// b\n// c\nd\n"},
                                                                  {u"a\nb\nc\n", u"jgcgg", u"|// a\n// b\nc\n"},
                                                                  {u"ab\nc\n", u"gcx", u"|b\nc\n"},
                                                                  {u"a\n", u"v}V<A-k>", u"^\n|a"},
                                                                  {u"a\nb\n", u"Vj<A-j>", u"^a\nb\n|"},
                                                                  {u"a\nb\nc\n", u"Vj<A-j>", u"c\n^a\nb\n|"}})) {
        VimView view(plain(before), VimKeymapPreset::lazyVim);
        view.press(plain(keys));
        EXPECT_EQ(view.marked().toStdString(), plain(after).toStdString()) << plain(keys).toStdString();
        view.press(u"<Esc>u"_s);
        EXPECT_EQ(view.string(), plain(before));
    }
    VimView again(u"a\nb\nc\nd\n"_s, VimKeymapPreset::lazyVim);
    again.press(u"gcj2j."_s);
    EXPECT_EQ(again.marked(), u"// a\n// b\n|// c\n// d\n"_s);
    again.press(u"gg2gcc3G."_s);
    EXPECT_EQ(again.marked(), u"a\nb\n|c\nd\n"_s);
    VimView plainComments(u"a\nb\n"_s);
    plainComments.press(u"gcj"_s);
    EXPECT_EQ(plainComments.marked(), u"a\n|b\n"_s);
}
