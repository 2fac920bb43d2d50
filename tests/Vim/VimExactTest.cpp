// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What exact modal editing does that Vim cannot be asked about; all else is in the corpus of its answers.

#include "Vim/VimDigraphs.h"
#include "Vim/VimWordCompletion.h"
#include "VimFixture.h"

using namespace Qt::StringLiterals;

namespace {

VimOptions exact(VimKeymapPreset preset = VimKeymapPreset::plain)
{
    VimOptions options(preset);
    options.isExact = true;
    return options;
}

} // namespace

TEST(VimExact, CountsGraphemes)
{
    VimView view(u"\U0001F469\u200D\U0001F680\U0001F44D\U0001F3FDe\u0301abc\n"_s, exact());
    view.press(u"3x"_s);
    EXPECT_EQ(view.string(), u"abc\n"_s);
    view.press(u"u2l2rz"_s);
    EXPECT_EQ(view.string(), u"\U0001F469\u200D\U0001F680\U0001F44D\U0001F3FDzzbc\n"_s);
}

TEST(VimExact, HasTheRegistersOfItsSurroundings)
{
    VimView view(u"ab\n"_s, exact());
    view.press(u"\"%P"_s);
    EXPECT_EQ(view.string(), u"/folder/fileab\n"_s);
    view.pasteboard.setText(u"pasted"_s);
    view.press(u"0D\"+p"_s);
    EXPECT_EQ(view.string(), u"pasted\n"_s);
    view.press(u"\"+yiw\"_dd"_s);
    EXPECT_EQ(view.pasteboard.text(), u"pasted"_s);
}

TEST(VimExact, EndsKeysThatWouldGoOnForever)
{
    VimOptions options = exact();
    options.mostKeys = 2000;
    VimView view(u"a\nb\n"_s, options);
    view.press(u"qaihop<Esc>@aq@a"_s);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    EXPECT_EQ(view.messages.size(), 1) << view.messages.join(u'|').toStdString();
    view.messages.clear();
    view.press(u":nmap x xx<CR>x"_s);
    EXPECT_EQ(view.messages.size(), 1);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    for (const char16_t *keys : {u"yy999999999p", u":k a<CR>999999999@:", u"V999999999>", u"yyV999999999p", u"yyGp<C-v>gg$y9999999p"}) {
        VimView other(QString(40, u'a') + u"\nb\n"_s, options);
        other.press(QString::fromUtf16(keys));
        EXPECT_EQ(other.messages.size(), 1) << QString::fromUtf16(keys).toStdString() << other.messages.join(u'|').toStdString();
        EXPECT_LT(other.string().size(), 200) << QString::fromUtf16(keys).toStdString();
    }
}

TEST(VimExact, GivesKeysBackWhenAMappingIsNotTyped)
{
    VimView view(u"ab\n"_s, exact());
    view.press(u":imap jk <lt>Esc><CR>ij"_s);
    EXPECT_EQ(view.string(), u"ab\n"_s);
    EXPECT_TRUE(view.engine.awaitsMapping());
    view.engine.expireMapping();
    EXPECT_EQ(view.string(), u"jab\n"_s);
    view.press(u"jjkx"_s);
    EXPECT_EQ(view.string(), u"jab\n"_s);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
}

TEST(VimExact, LosesNoKeyThatWaitsForAMapping)
{
    const std::pair<QString, QString> rows[] = {
        {u"ij<Esc>"_s, u"jab\n"_s},
        {u"Rxj<Esc>"_s, u"xj\n"_s},
        {u"ij\U0001F600"_s, u"j\U0001F600ab\n"_s},
        {u"D\U0001F600"_s, u"\n"_s},
        {u":g/a/normal Aj<CR>"_s, u"abj\n"_s},
        {u"qqAj<Esc>q@q"_s, u"abjj\n"_s},
        {u"ijE<Esc>"_s, u"jEab\n"_s},
        {u":inoremap j<lt>Esc> X<CR>ij<Esc>"_s, u"Xab\n"_s},
        {u":nnoremap <lt>Esc> ~<CR><Esc>"_s, u"Ab\n"_s},
    };
    for (const auto &[keys, after] : rows) {
        VimView view(u"ab\n"_s, exact());
        view.press(u":inoremap jk -<CR>:nnoremap Dx -<CR>"_s + keys);
        EXPECT_EQ(view.string().toStdString(), after.toStdString()) << keys.toStdString();
        EXPECT_FALSE(view.engine.awaitsMapping());
    }
    VimView view(u"ab\n"_s, exact(VimKeymapPreset::lazyVim));
    view.preferences.set(Settings::vimKeymapPreset, VimKeymapPreset::lazyVim);
    view.press(u":inoremap jk X<CR>ij"_s);
    view.engine.settleMapping();
    EXPECT_EQ(view.string(), u"jab\n"_s);
    view.press(u"<Esc>0 <Esc>x"_s);
    EXPECT_EQ(view.string(), u"ab\n"_s) << "the space bar that begins keys of the preset is called off";
}

TEST(VimExact, WritesOverAndGivesUpNothingWithoutAsking)
{
    struct Row {
        QString typed;
        bool isUnsaved;
        bool isInConflict;
        QString action;
    };
    const Row rows[] = {
        {u":e"_s, true, false, {}},
        {u":e!"_s, true, false, u"editFile:"_s},
        {u":e"_s, false, false, u"editFile:"_s},
        {u":e other"_s, true, true, u"editFile:other"_s},
        {u":w"_s, true, false, u"saveDocument:"_s},
        {u":w"_s, true, true, {}},
        {u":w!"_s, true, true, u"saveDocument:"_s},
        {u":w other"_s, true, true, u"saveDocument:other"_s},
        {u":wq"_s, true, true, {}},
        {u":wq!"_s, true, true, u"saveAndClose:"_s},
        {u":x"_s, true, true, {}},
        {u"ZZ"_s, true, true, {}},
        {u"ZZ"_s, true, false, u"saveAndClose:"_s},
        {u":x"_s, false, false, u"closeTab:"_s},
    };
    for (const Row &row : rows) {
        VimView view(u"ab\n"_s, exact());
        view.textName.isUnsaved = row.isUnsaved;
        view.textName.isInConflict = row.isInConflict;
        view.press(row.typed.startsWith(u':') ? row.typed + u"<CR>"_s : row.typed);
        EXPECT_EQ(view.actions.join(u'|').toStdString(), row.action.toStdString()) << row.typed.toStdString();
        EXPECT_EQ(view.messages.isEmpty(), !row.action.isEmpty()) << row.typed.toStdString();
    }
}

TEST(VimExact, ForgetsTheLineOfATextThatWasReadAnew)
{
    VimView view(u"abc\n"_s, exact());
    view.press(u"x"_s);
    view.engine.textReloaded();
    view.press(u"U"_s);
    EXPECT_EQ(view.string(), u"bc\n"_s);
    view.press(u"xU"_s);
    EXPECT_EQ(view.string(), u"bc\n"_s);
}

TEST(VimExact, CountsBeyondNumbersAsVimDoes)
{
    const std::pair<QString, QString> rows[] = {
        {u"9223372036854775807<C-a>"_s, u"9223372036854775808"_s},
        {u"-9223372036854775808<C-a>"_s, u"-9223372036854775807"_s},
        {u"-9223372036854775808<C-x>"_s, u"-9223372036854775809"_s},
        {u"18446744073709551615<C-a>"_s, u"-18446744073709551615"_s},
        {u"-3<C-a><C-a><C-a><C-a>"_s, u"1"_s},
        {u"2<C-x><C-x>"_s, u"0"_s},
    };
    for (const auto &[keys, after] : rows) {
        VimView view(keys.section(u'<', 0, 0) + u'\n', exact());
        view.press(keys.sliced(keys.indexOf(u'<')));
        EXPECT_EQ(view.string().trimmed().toStdString(), after.toStdString()) << keys.toStdString();
    }
}

TEST(VimExact, HasTheKeysOfThePresetToo)
{
    VimView view(u"a\nb\nc\nd\n"_s, exact(VimKeymapPreset::lazyVim));
    view.press(u"gcj2j."_s);
    EXPECT_EQ(view.string(), u"// a\n// b\n// c\n// d\n"_s);
    view.press(u"gg3gccHL"_s);
    EXPECT_EQ(view.string(), u"a\nb\nc\n// d\n"_s);
    EXPECT_EQ(view.actions.mid(view.actions.size() - 2), QStringList({u"selectPreviousTab:"_s, u"selectNextTab:"_s}));
}

TEST(VimExact, GivesWhatAwaitsACharacterTheKeysOfMappingsToo)
{
    VimView view(u"a H x\n"_s, exact(VimKeymapPreset::lazyVim));
    view.press(u":nnoremap x dd<CR>fHrx"_s);
    EXPECT_EQ(view.string(), u"a x x\n"_s);
    EXPECT_TRUE(view.actions.isEmpty()) << view.actions.join(u'|').toStdString();
}

TEST(VimExact, AsksBeforeEachHitInOneStep)
{
    VimView view(u"a a a a\n"_s, exact());
    view.press(u":s/a/b/gc<CR>"_s);
    EXPECT_EQ(view.indicator, (TextRange{0, 1}));
    view.press(u"ynl"_s);
    EXPECT_EQ(view.string(), u"b a b a\n"_s);
    view.press(u"u"_s);
    EXPECT_EQ(view.string(), u"a a a a\n"_s);
    view.press(u":s/a/b/gc<CR>y<Esc>x"_s);
    EXPECT_EQ(view.string(), u"b  a a\n"_s) << "the caret is left on the hit that was asked about";
    view.press(u"u:s/a/c/gc<CR>y"_s);
    view.select({6, 0}, 6);
    view.engine.takeSelection(TextSelection::at(6));
    EXPECT_EQ(view.engine.question(), QString()) << "one click elsewhere ends it";
    view.press(u"x"_s);
    EXPECT_EQ(view.string(), u"b c a \n"_s);
}

TEST(VimExact, SaysOnceWhatSubstitutionsOfManyLinesDid)
{
    VimView view(u"a a\nb\na\na\n"_s, exact());
    view.press(u":g/a/s/a/c/g<CR>"_s);
    EXPECT_EQ(view.string(), u"c c\nb\nc\nc\n"_s);
    EXPECT_EQ(view.messages, QStringList(u"4 substitutions on 3 lines"_s));
}

TEST(VimExact, GoesOnWithWhatOthersSelect)
{
    VimView view(u"one two three\n"_s, exact());
    view.select({4, 3}, 6);
    view.engine.takeSelection({4, 7});
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::visual);
    view.press(u"d"_s);
    EXPECT_EQ(view.string(), u"one  three\n"_s);
    view.press(u"<C-v>l"_s);
    view.select({2, 0}, 2);
    view.engine.takeSelection({2, 2});
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    view.press(u"x"_s);
    EXPECT_EQ(view.string(), u"on  three\n"_s);
}

TEST(VimExact, KnowsEachDigraphByOnePair)
{
    EXPECT_EQ(VimDigraphs::all().size(), 1362U);
    for (const VimDigraphs::Digraph &digraph : VimDigraphs::all()) {
        EXPECT_EQ(VimDigraphs::character(digraph.first, digraph.second), char32_t(digraph.character));
    }
}

TEST(VimExact, OffersWordsOfThisTextAndOfOthers)
{
    VimView view(u"foobar\n\nfoam\n"_s, exact());
    view.others = {Rope(u"foam food foo-d"_s), Rope(u"xfoo fo\u00F6"_s)};
    view.press(u"jifo<C-p>"_s);
    const QStringList words{u"fo\u00F6"_s, u"food"_s, u"foo"_s, u"foam"_s, u"foobar"_s};
    EXPECT_EQ(view.offer, (VimOffer{.place = 7, .words = words, .chosen = 4}));
    view.press(u"<Up><Up>"_s);
    EXPECT_EQ(view.offer->chosen, 2);
    EXPECT_EQ(view.string(), u"foobar\nfoobar\nfoam\n"_s) << "arrows leave the text as it is";
    view.press(u"<CR>"_s);
    EXPECT_EQ(view.string(), u"foobar\nfoo\nfoam\n"_s);
    EXPECT_FALSE(view.offer);
    view.press(u"<CR><C-n><C-n><C-y>.<C-n><C-e>"_s);
    EXPECT_EQ(view.string(), u"foobar\nfoo\nfoobar.\nfoam\n"_s);
    view.press(u"fo<C-n>"_s);
    view.select({0, 0}, 0); // somebody clicks
    view.press(u"<C-n>"_s);
    EXPECT_EQ(view.string().first(8), u"foofooba"_s) << "from there on";
}

TEST(VimExact, LooksForWordsAsFarAsThereIsTime)
{
    const QString far(VimWordCompletion::longestSearch, u'.');
    const Rope text(u"abfar"_s + far + u"ab abnear"_s + far + u" abfar"_s);
    const qsizetype caret = 5 + far.size() + 2;
    using enum VimWordCompletion::Direction;
    EXPECT_EQ(VimWordCompletion({text, caret}, {text}, forward).listed(), QStringList({u"abnear"_s, u"abfar"_s}));
    EXPECT_EQ(VimWordCompletion({text, caret}, {}, backward).listed(), QStringList(u"abfar"_s));
}

TEST(VimExact, IsSwitchedOnAndOff)
{
    VimView view(u"one two\n"_s, VimOptions(VimKeymapPreset::plain));
    view.press(u"cwx"_s);
    view.engine.configure(exact());
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    view.press(u"0cwy<Esc>"_s);
    view.press(u"<C-v>"_s);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::visualBlock);
    view.engine.configure(VimOptions(VimKeymapPreset::plain));
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
    view.press(u"<C-v>"_s);
    EXPECT_EQ(view.engine.mode(), VimEngine::Mode::normal);
}

TEST(VimExact, KeepsLinesThatGetWordsAndStaysAtTheLastNumber)
{
    VimView view(u"ab\ncd\n"_s, exact());
    view.press(u"\"ayyj\"Ayiw\"ap"_s);
    EXPECT_EQ(view.string(), u"ab\ncd\nab\ncd\n"_s);
    VimView lines(u"1\n2\n3\n4\n5\n6\n7\n8\n9\nx\n"_s, exact());
    lines.press(u"dddddddddddddddddd\"8p..."_s);
    EXPECT_EQ(lines.string(), u"x\n2\n1\n1\n1\n"_s);
}

TEST(VimExact, PutsABlockIntoATabWithItsWholeWidth)
{
    VimView view(u"ab\nc\n    x\n\ty\n"_s, exact());
    view.press(u"j<C-v>kly2j2lP"_s);
    EXPECT_EQ(view.string().toStdString(), "ab\nc\n  ab  x\n  c   y\n");
}

TEST(VimExact, FillsALineOfAnyLengthInOneWalk)
{
    VimView view(u"  word \U0001F600 longer,\t"_s.repeated(40'000) + u"\n"_s, exact());
    const QString typed = view.string();
    view.press(u":set textwidth=30<CR>gqq"_s);
    const QStringList lines = view.string().split(u'\n');
    EXPECT_EQ(view.string().simplified(), typed.simplified());
    EXPECT_GT(lines.size(), 20'000);
    EXPECT_TRUE(
        std::ranges::all_of(lines, [](const QString &line) { return line.size() <= 31 && (line.isEmpty() || line.startsWith(u"  ")); }));
}
