// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Commands behind ":" and what keys have of them, with the engine that carries them out.

#include "VimFixture.h"

#include "Vim/VimSubstituteJob.h"

using namespace Qt::StringLiterals;

namespace {

VimOptions exactly()
{
    VimOptions options(VimKeymapPreset::plain);
    options.isExact = true;
    options.searchesWhileTyping = true;
    return options;
}

} // namespace

TEST(VimExactCommand, KnowsTheSubstitutionThatIsTyped)
{
    VimView view(u"one bar\n  two\n"_s, exactly());
    view.preferences.set(Settings::vimExact, true);
    view.press(u":2s/o/0/g<CR>ggma"_s);
    const auto told = [&](const QString &typed) {
        view.press(u':' + typed);
        const auto substitution = view.engine.typedSubstitution();
        QString hits = u"none"_s;
        if (substitution) {
            hits = u"%1-%2"_s.arg(substitution->job.firstLine).arg(substitution->job.lastLine);
            for (const VimSubstituteHit &hit : substitution->job.preview(view.text(), {0, view.text().length()})) {
                hits += u' ' + view.text().toString(hit.range) + (substitution->hasReplacement ? u'>' + hit.text : QString());
            }
        }
        view.press(u"<Esc>"_s);
        return hits.toStdString();
    };
    const std::pair<QStringView, std::string> rows[] = {
        {u"s", "none"},
        {u"s/", "none"},
        {u"se", "none"},
        {u"9s/o/x", "none"},
        {u"s/n", "0-0 n"},
        {u"s//~~/", "0-0 o>00"},
        {u"&&", "0-0 o>0"},
        {u"s/a/x/", "0-0 a>x"},
        {u"'a,/two/s/b/~", "none"},
        {u"'a,/tw/s/b/~", "0-1 b>0"},
        {u"/tw/,'as/o/x", "0-1 o>x"},
    };
    for (const auto &[typed, hits] : rows) {
        EXPECT_EQ(told(typed.toString()), hits) << typed.toString().toStdString();
    }
    view.press(u":s//1/<CR>"_s);
    EXPECT_EQ(view.string().toStdString(), "1ne bar\n  tw0\n") << "what was only typed is not remembered";
}

TEST(VimExactCommand, DoesWhatKeysAndCommandsSay)
{
    struct Row {
        QString keys;
        std::string text;
        std::string said = {};
    };
    const std::string before = "a1\na2\na3\na4\n";
    const Row rows[] = {
        {u":g/a/norm J<CR>"_s, "a1 a2\na3 a4\n"},
        {u"xjxjx:undo 1<CR>"_s, "1\na2\na3\na4\n"},
        {u"xjxjx:undo 0<CR>:undo 2<CR>"_s, "1\n2\na3\na4\n"},
        {u"x:undo 2<CR>"_s, "1\na2\na3\na4\n", "There is no change 2"},
        {u"!jx"_s, "1\na2\na3\na4\n", "! runs other programs, which this editor does not"},
        {u"Vj!x"_s, "1\na2\na3\na4\n", "! runs other programs, which this editor does not"},
        {u"Kx"_s, "1\na2\na3\na4\n", "K runs other programs, which this editor does not"},
        {u"jl<C-g>"_s, before, "“Notes”, line 2 of 4, column 2"},
        {u"ie\u0301<Esc>ga"_s, "e\u0301" + before, "<e> U+0065, decimal 101; <\u0301> U+0301, decimal 769"},
        {u"i<C-v>u00e9<C-v>74<Esc>x"_s, "\u00e9" + before},
        {u":nmap <lt>F5> x<CR>:imap <lt>S-Tab> y<CR><F5>i<Backtab>"_s, "y1\na2\na3\na4\n"},
    };
    for (const Row &row : rows) {
        VimView view(QString::fromStdString(before), exactly());
        view.preferences.set(Settings::vimExact, true);
        view.engine.configure(view.configuration.options());
        view.textName = {.path = {}, .title = u"Notes"_s};
        view.press(row.keys);
        EXPECT_EQ(view.string().toStdString(), row.text) << row.keys.toStdString();
        EXPECT_EQ(view.messages.join(u'|').toStdString(), row.said) << row.keys.toStdString();
    }
}

TEST(VimExactCommand, GoesToMarksOfOtherTexts)
{
    VimView one(u"one\n  two\nthree\n"_s, exactly());
    one.textName = {.path = u"/folder/one.txt"_s, .title = u"one.txt"_s, .id = {}};
    const auto open = [&](VimView &view) { view.engine.setConfiguration(&one.configuration); };
    const auto came = [](VimView &view, const QString &keys) {
        view.actions.clear();
        view.press(keys);
        return view.actions.join(u'|').toStdString();
    };
    VimView other(u"x\ny\n"_s, exactly());
    other.textName = {.path = {}, .title = u"Untitled"_s, .id = u"{1}"_s};
    open(other);
    one.press(u"jllmAggOzero<Esc>"_s);
    EXPECT_EQ(came(other, u"`A"_s), "goToPlace:3 3 /folder/one.txt") << "it has moved";
    EXPECT_EQ(came(other, u"'A"_s), "goToPlace:3 0 /folder/one.txt");
    EXPECT_EQ(came(other, u"d'A"_s), "");
    EXPECT_EQ(other.messages, QStringList{u"The mark A is in another text"_s});
    EXPECT_EQ(other.string(), u"x\ny\n"_s);
    {
        VimView again(one.string(), exactly());
        again.textName = one.textName;
        open(again);
        again.press(u"d'A"_s);
        EXPECT_EQ(again.string(), u"three\n"_s) << "the same file in another pane";
        again.press(u"mB"_s);
    }
    EXPECT_EQ(came(other, u"`B"_s), "goToPlace:1 1 /folder/one.txt") << "whoever had it is gone";
    other.press(u"jmA"_s);
    EXPECT_EQ(came(one, u"'A"_s), "goToPlace:2 0 {1}");
    EXPECT_EQ(came(one, u":marks AB<CR>"_s + u":delm A<CR>"_s + u"'A"_s), "");
    EXPECT_EQ(one.messages, (QStringList{u"Marks"_s, u"Mark not set"_s}));
}

TEST(VimExactCommand, HasTheMarksOfATextInAllItsViews)
{
    VimView one(u"one\ntwo\nthree\n"_s, exactly());
    one.textName = {.path = {}, .title = u"Untitled"_s, .id = u"{1}"_s};
    one.press(u"jma"_s);
    const auto open = [&](VimView &view, const QString &id) {
        view.textName = {.path = {}, .title = u"Untitled"_s, .id = id};
        view.engine.setConfiguration(&one.configuration);
    };
    VimView again(one.string(), exactly());
    open(again, u"{1}"_s);
    VimView other(one.string(), exactly());
    open(other, u"{2}"_s);
    again.press(u"'aDgg:mark b<CR>"_s);
    EXPECT_EQ(again.string(), u"one\n\nthree\n"_s);
    one.press(u"G'bx"_s);
    EXPECT_EQ(one.string(), u"ne\ntwo\nthree\n"_s);
    other.press(u"mbG'a"_s);
    EXPECT_EQ(other.messages, QStringList{u"Mark not set"_s});
    again.press(u":delm!<CR>"_s);
    one.press(u"'b"_s);
    EXPECT_EQ(one.messages, QStringList{u"Mark not set"_s});
}

TEST(VimExactCommand, FindsPanesByWhereTheyAre)
{
    VimView view(u"one\ntwo\n"_s);
    view.preferences.set(Settings::vimExact, true);
    view.preferences.set(Settings::vimKeymapPreset, VimKeymapPreset::lazyVim);
    view.engine.configure(view.configuration.options());
    view.press(u"<C-w>h<C-w>p<C-h><C-j>"_s);
    EXPECT_EQ(view.actions.join(u' ').toStdString(), "focusPaneLeft: focusLastPane: focusPaneLeft: focusPaneBelow:");
}
