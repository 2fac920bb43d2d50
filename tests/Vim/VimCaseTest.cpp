// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "VimFixture.h"

#include <random>

using namespace Qt::StringLiterals;

namespace {

struct Case {
    const char16_t *before;
    const char16_t *keys;
    const char16_t *after;
};

constexpr Case cases[] = {
    // Motions
    {u"|one two\n", u"w", u"one |two\n"},
    {u"one two|\nthree\n", u"hb", u"one |two\nthree\n"},
    {u"|a.b c\n", u"W", u"a.b |c\n"},
    {u"|one two\n", u"e", u"on|e two\n"},
    {u"|a b c d e\n", u"3l", u"a b| c d e\n"},
    {u"|a\U0001F600b", u"ll", u"a\U0001F600|b"},
    {u"|abc\nd\nefg\n", u"$jj", u"abc\nd\nef|g\n"},
    {u"|a\nb\nc\n", u"2j", u"a\nb\n|c\n"},
    {u"|a\nb\nc\n", u"5j", u"|a\nb\nc\n"},
    {u"|a\nb\nc\n", u"G", u"a\nb\n|c\n"},
    {u"a\nb\n|c\n", u"2gg", u"a\n|b\nc\n"},
    {u"|a\nb\n\nc\n", u"}", u"a\nb\n|\nc\n"},
    {u"a\n\nb\n|c\n", u"{", u"a\n|\nb\nc\n"},
    {u"|if (a[(1)]) x\n", u"%", u"if (a[(1)]|) x\n"},
    {u"|axbxc\n", u"fx;", u"axb|xc\n"},
    {u"|axbxc\n", u"tx;", u"ax|bxc\n"},
    {u"axbx|c\n", u"Fx,", u"axb|xc\n"},
    {u"|foo a foo b xfoo\n", u"*", u"foo a |foo b xfoo\n"},
    {u"|foo a foo\n", u"/f.o<CR>", u"foo a |foo\n"},
    // Operators
    {u"|a b c d e f g\n", u"2d3w", u"|g\n"},
    {u"one |two\n  three\n", u"dw", u"one| \n  three\n"},
    {u"|one\ntwo\n", u"dd", u"|two\n"},
    {u"one\n|two\n", u"3dd", u"on|e\n"},
    {u"one |two three\n", u"d$", u"one| \n"},
    {u"|one\ntwo\nthree\n", u"dj", u"|three\n"},
    {u"|(a (b) c) d\n", u"d%", u"| d\n"},
    {u"|one two\n", u"cwnew <Esc>", u"new| two\n"},
    {u"  |one\ntwo\n", u"ccx<Esc>", u"  |x\ntwo\n"},
    {u"|one two\n", u"gUw", u"|ONE two\n"},
    {u"|One\n", u"g~~", u"|oNE\n"},
    {u"|a\n\nb\n", u"3>>", u"    |a\n\n    b\n"},
    {u"      |a\n", u"<lt><lt>", u"  |a\n"},
    // Objects
    {u"one t|wo three\n", u"diw", u"one | three\n"},
    {u"one t|wo\n", u"daw", u"on|e\n"},
    {u"|f(\"a b\") \n", u"ci\"x<Esc>", u"f(\"|x\") \n"},
    {u"f(a, |(b))\n", u"di(", u"f(a, (|))\n"},
    {u"|a\nb\n\nc\n", u"dap", u"|c\n"},
    {u"|a {\n b\n}\n", u"fadiB", u"|a {\n b\n}\n"},
    // Commands
    {u"|ab\n", u"xp", u"b|a\n"},
    {u"a|bc\n", u"X", u"|bc\n"},
    {u"a|bc\nd\n", u"D", u"|a\nd\n"},
    {u"|abc\n", u"2sx<Esc>", u"|xc\n"},
    {u"|abc\n", u"2rx", u"x|xc\n"},
    {u"|aBc\n", u"3~", u"Ab|C\n"},
    {u"|a\n  b\nc\n", u"3J", u"a b| c\n"},
    {u"|a\nb\n", u"ox<Esc>", u"a\n|x\nb\n"},
    {u"a\n|b\n", u"Ox<Esc>", u"a\n|x\nb\n"},
    {u"|ab\n", u"A;<Esc>", u"ab|;\n"},
    {u"|one\ntwo\n", u"yyjp", u"one\ntwo\n|one\n"},
    {u"|ab\n", u"yl3p", u"aaa|ab\n"},
    {u"|a\nb\n", u"\"ayyj\"Ayy\"ap", u"a\nb\n|a\nb\n"},
    {u"|a\nb\nc\n", u"majj`aD", u"|\nb\nc\n"},
    // Visual
    {u"|one two\n", u"ved", u"| two\n"},
    {u"|a\nb\nc\n", u"Vjd", u"|c\n"},
    {u"|one two\n", u"viwU", u"^one| two\n"},
    {u"|a b\n", u"wv0y", u"|a b\n"},
};

QString withoutMarks(const QString &text)
{
    QString plain = text;
    return plain.remove(u'|').remove(u'^');
}

} // namespace

TEST(VimCase, KeysDoWhatTheyDoAndAreUndoneAndRedone)
{
    for (const auto &[before, keys, after] : cases) {
        const QString start(QStringView(before).toString());
        const QString goal(QStringView(after).toString());
        SCOPED_TRACE("keys " + QStringView(keys).toString().toStdString() + " on " + start.toStdString());
        VimView view(withoutMarks(start));
        view.select({start.indexOf(u'|'), 0}, start.indexOf(u'|'));
        view.press(QStringView(keys).toString());
        EXPECT_EQ(view.marked().toStdString(), goal.toStdString());
        const QString changed = view.string();
        view.press(u"<Esc>"_s);
        int steps = 0;
        for (; view.undoManager.canUndo(); ++steps) {
            view.press(u"u"_s);
        }
        EXPECT_EQ(view.string().toStdString(), withoutMarks(start).toStdString());
        while (steps-- > 0) {
            view.press(u"<C-r>"_s);
        }
        EXPECT_EQ(view.string().toStdString(), changed.toStdString());
    }
}

TEST(VimCase, TheDotRepeatsTheLastChangeAsOneStep)
{
    for (const auto &[before, keys, after] : std::to_array<Case>({
             {u"a b c d e f g h\n", u"3dw.", u"g h\n"},
             {u"a b c d e f g h\n", u"3dw5.", u"g h\n"},
             {u"one two\n", u"ciwx<Esc>w.", u"x x\n"},
             {u"a\nb\n", u"A;<Esc>j.", u"a;\nb;\n"},
             {u"a\nb\nc\nd\n", u"J.", u"a b c\nd\n"},
             {u"abc\n", u"rxl.", u"xxc\n"},
             {u"a\nb\n", u">>j.", u"    a\n    b\n"},
             {u"a\nb\n", u"\"xyyp\"xp.", u"a\na\na\na\nb\n"},
         })) {
        VimView view(QStringView(before).toString());
        const QString all = QStringView(keys).toString();
        view.press(all.chopped(1));
        const QString first = view.string();
        view.press(all.last(1));
        EXPECT_EQ(view.string().toStdString(), QStringView(after).toString().toStdString()) << all.toStdString();
        view.press(u"u"_s);
        EXPECT_EQ(view.string().toStdString(), first.toStdString()) << all.toStdString();
    }
}

TEST(VimCase, RegistersClipboardModesAndActions)
{
    VimView view(u"one two\n"_s);
    EXPECT_EQ(view.caretLook, VimCaret::block);
    view.press(u"\"+yiw"_s);
    EXPECT_EQ(view.pasteboard.text(), u"one"_s);
    view.press(u"wyiw"_s);
    EXPECT_EQ(view.pasteboard.text(), u"one"_s) << "the unnamed one is not shared";
    view.preferences.setVimSharesClipboard(true);
    view.press(u"yy"_s);
    EXPECT_EQ(view.pasteboard.text(), u"one two\n"_s);
    view.pasteboard.setTextFromElsewhere(u"X"_s);
    view.press(u"0P"_s);
    EXPECT_EQ(view.string(), u"Xone two\n"_s);
    view.press(u"<C-w>l<C-w>x"_s);
    EXPECT_EQ(view.actions, QStringList{u"focusNextPane:"_s});
    EXPECT_EQ(view.beeps, 1);
    view.press(u"i"_s);
    EXPECT_EQ(view.caretLook, VimCaret::bar);
    view.press(u"<C-c>2d"_s);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    EXPECT_EQ(view.engine.pendingDescription(), u"2d"_s);
    view.press(u"<Esc>"_s);
    view.isReadOnly = true;
    const QString before = view.string();
    view.press(u"ddxpJ~rxo<Esc>cwa<Esc>>>gUU."_s);
    EXPECT_EQ(view.string(), before);

    VimView lazy(u"a\nb\nc\n"_s, VimKeymapPreset::lazyVim);
    lazy.press(u" b"_s);
    EXPECT_EQ(lazy.engine.pendingDescription(), u"␣b"_s);
    lazy.press(u"dLgccG"_s);
    EXPECT_EQ(lazy.actions, (QStringList{u"closeTab:"_s, u"selectNextTab:"_s, u"toggleComment"_s}));
    lazy.press(u"gg x<A-j>"_s);
    EXPECT_EQ(lazy.marked(), u"b\n|\nc\n"_s);
    lazy.press(u"Vj<A-k>"_s);
    EXPECT_EQ(lazy.marked(), u"^\nc\n|b\n"_s);
}

TEST(VimWalk, RandomKeysKeepTheCaretInPlaceAndAreUndone)
{
    const QStringList keys = {
        u"h"_s,   u"j"_s,     u"k"_s,   u"l"_s,  u"w"_s,  u"b"_s,  u"e"_s,     u"0"_s,     u"$"_s,     u"^"_s,    u"G"_s,  u"gg"_s, u"{"_s,
        u"}"_s,   u"%"_s,     u"fa"_s,  u";"_s,  u","_s,  u"d"_s,  u"c"_s,     u"y"_s,     u">"_s,     u"<lt>"_s, u"iw"_s, u"ap"_s, u"i("_s,
        u"a\""_s, u"x"_s,     u"X"_s,   u"D"_s,  u"C"_s,  u"s"_s,  u"S"_s,     u"Y"_s,     u"rZ"_s,    u"~"_s,    u"J"_s,  u"p"_s,  u"P"_s,
        u"u"_s,   u"<C-r>"_s, u"v"_s,   u"V"_s,  u"."_s,  u"n"_s,  u"*"_s,     u"#"_s,     u"ma"_s,    u"`a"_s,   u"o"_s,  u"O"_s,  u"A"_s,
        u"2"_s,   u"3"_s,     u"\"a"_s, u"g~"_s, u"gu"_s, u"gU"_s, u"<Esc>"_s, u"<Esc>"_s, u"x y\n"_s, u"<C-d>"_s};
    for (unsigned seed = 1; seed <= 6; ++seed) {
        std::mt19937 random(seed);
        const QString start = u"one (two) \"three\"\n\n  a\U0001F600b e\u0301\n{ x; }\nlast"_s;
        VimView view(start);
        for (int step = 0; step < 1500; ++step) {
            const QString &key = keys[qsizetype(random() % size_t(keys.size()))];
            view.press(key);
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step) + ", key " + key.toStdString());
            ASSERT_LE(view.selected.end(), view.text().length());
            ASSERT_FALSE(view.text().splitsPair(view.selected.location) || view.text().splitsPair(view.selected.end()));
            if (view.engine.mode() == VimEngine::Mode::normal && view.selected.isEmpty()) {
                VimBuffer buffer(view.text());
                ASSERT_EQ(TextBoundaries::snapped(view.text(), buffer.clampToNormalMode(view.selected.location)), view.selected.location);
            }
            if (view.text().length() > 20000) {
                view.press(u"<Esc>Gdgg"_s);
            }
        }
        view.press(u"<Esc>"_s);
        ASSERT_TRUE(view.text().checkInvariants());
        while (view.undoManager.canUndo()) {
            view.press(u"u"_s);
        }
        EXPECT_EQ(view.string(), start) << "seed " << seed;
    }
}
