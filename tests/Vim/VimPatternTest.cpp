// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimMatcher.h"
#include "Vim/VimOptions.h"
#include "Vim/VimSearch.h"

#include "Settings/Settings.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype none = -1;

VimSearch searchFor(QStringView typed, const VimOptions &options)
{
    const auto direction = typed.startsWith(u'/') ? VimSearch::Direction::forward : VimSearch::Direction::backward;
    return VimSearch::exact(typed.sliced(1).toString(), direction, options);
}

/// Where what was typed leads from `caret`.
qsizetype placeOf(QStringView typed, const Rope &text, qsizetype caret, qsizetype count = 1)
{
    const auto steps = VimSearch::parse(typed.sliced(1), searchFor(typed, VimOptions(VimKeymapPreset::plain)), std::nullopt);
    for (const VimSearch &step : *steps) {
        const auto move = step.move(text, caret, count);
        if (!move) {
            return none;
        }
        caret = move->position;
    }
    return caret;
}

struct Row {
    QStringView typed;
    qsizetype place;
};

/// With Vim's answers.
constexpr Row searches[] = {
    {u"/foo", 8},
    {u"/bar\\>", 12},
    {u"/\\<bar", 12},
    {u"/FOO\\c", 8},
    {u"/\\cfoo_X", 29},
    {u"/b\\zsar$", 20},
    {u"/^\\s*$", 23},
    {u"/^B\\w\\+", 24},
    {u"/\\u\\{3}", 29},
    {u"/o\\{2}\\zs \\a\\+", 11},
    {u"/\\v(o+) bar f\\1", 9},
    {u"/\\V.", none},
    {u"/\\Mo\\.\\ze\\.b", 9},
    {u"/[^a-z ]\\+", 24},
    {u"/[[:digit:]]\\+", 37},
    {u"/[]\\x3d]", 35},
    {u"/\\d\\+\\zs;\\=", 39},
    {u"/two\\nfoo", 4},
    {u"/two\\_s\\+foo", 4},
    {u"/o\\n\\n\\=B", none},
    {u"/\\%^.", 0},
    {u"/;\\_.\\{-}d\\%$", 39},
    {u"/x\\|end", 33},
    {u"/.*bar\\&.*foo", 8},
    {u"/\\(foo\\)\\@<=bar", 19},
    {u"/\\(foo\\)\\@<!bar", 12},
    {u"/foo\\(bar\\)\\@!", 8},
    {u"/f\\%[oobar]\\>", 8},
    {u"/\\%x66\\%d111", 8},
    {u"/\\v<f.{-}r>", 8},
    {u"/\\_$\\n\\_^B", 23},
    {u"/\\~", none},
    {u"/[", none},
    {u"/foo/e", 10},
    {u"/foo/e+1;/a", 13},
    {u"/bar/s-2", 10},
    {u"/two/+1", 8},
    {u"/foo/b+2", 10},
    {u"?one?e", 2},
    {u"?FOO?-1", 23},
    {u"/end/;?o", 18},
};

} // namespace

TEST(VimPattern, FindsWhatVimFinds)
{
    const QString text = u"one two\nfoo bar foobar\n\nBar: FOO_x = 12;\tend\n"_s;
    for (const Row &row : searches) {
        const qsizetype caret = row.typed.startsWith(u'/') ? 0 : 25;
        EXPECT_EQ(placeOf(row.typed, Rope(text), caret), row.place) << row.typed.toString().toStdString();
        // Breaks of two units are no other lines.
        const QString before = text.first(qMax<qsizetype>(row.place, 0));
        const qsizetype place = row.place + (row.place < 0 ? 0 : before.count(u'\n'));
        QString wide = text;
        EXPECT_EQ(placeOf(row.typed, Rope(wide.replace(u"\n"_s, u"\r\n"_s)), caret + (caret ? 3 : 0), 1), place)
            << row.typed.toString().toStdString();
    }
}

TEST(VimPattern, SaysWhatIsWrong)
{
    const std::pair<QStringView, QStringView> rows[] = {
        {u"a**", u"“*” has nothing to repeat"},
        {u"\\v+", u"“+” has nothing to repeat"},
        {u"\\%(a", u"“\\%(” has no counterpart"},
        {u"b\\)", u"“\\)” has no counterpart"},
        {u"[b-a]", u"A range in “[b-a]” runs backwards"},
        {u"\\1", u"“\\1” refers to a group that does not exist"},
        {u"a\\%V", u"“\\%V” cannot be looked for here"},
        {u"\\%>23lx", u"“\\%>23l” cannot be looked for here"},
        {u"\\zs*", u"“\\zs*” cannot be repeated"},
        {u"~", u"There was no substitution yet for “~” to stand for"},
        {u"\\%[a", u"“\\%[a” is incomplete"},
        {u"a\\{x}", u"“\\{x}” is no count of repetitions"},
        {u"\\%u", u"“\\%u” names no character"},
    };
    for (const auto &[pattern, message] : rows) {
        const auto translated = VimPattern::translate(pattern, {});
        ASSERT_FALSE(translated) << pattern.toString().toStdString();
        EXPECT_EQ(translated.error().message.toStdString(), message.toString().toStdString());
    }
    EXPECT_FALSE(VimPattern::translate(u"\\("_s.repeated(5000), {}));
    EXPECT_FALSE(VimPattern::translate(u"\\%("_s.repeated(5000), {}));
}

TEST(VimPattern, KnowsWhetherCaseCounts)
{
    struct Case {
        QStringView pattern;
        VimPattern::Options options;
        bool ignoresCase;
    };
    const VimPattern::Options ignoring{.ignoresCase = true};
    const VimPattern::Options smart{.ignoresCase = true, .smartCase = true};
    const Case cases[] = {
        {u"a", {}, false},
        {u"A", ignoring, true},
        {u"a", smart, true},
        {u"aB", smart, false},
        {u"a\\S", smart, true},
        {u"A\\c", smart, true},
        {u"\\Ca", smart, false},
        {u"a\\c", {.matchesCase = true}, true},
        {u"A", {.matchesCase = false}, true},
    };
    for (const Case &one : cases) {
        EXPECT_EQ(VimPattern::translate(one.pattern, one.options)->ignoresCase, one.ignoresCase) << one.pattern.toString().toStdString();
    }
    // Classes keep to theirs, and "ss" is no other "ß".
    const auto place = [](QStringView pattern, const QString &text) { return placeOf(u"/"_s + pattern.toString(), Rope(text), 0); };
    EXPECT_EQ(place(u"\\c\\u", u"abC"_s), 2);
    EXPECT_EQ(place(u"\\cÄ[b]", u"-ßäB"_s), 2);
    EXPECT_EQ(place(u"\\css", u"-ß"_s), none);
    EXPECT_EQ(place(u"\\c\\(b\\)\\1", u"-bB"_s), 1);
}

TEST(VimSearch, WrapsOrStops)
{
    VimOptions options(VimKeymapPreset::plain);
    const Rope text(u"a b\na b\n"_s);
    EXPECT_FALSE(searchFor(u"/b", options).move(text, 0, 2)->hasWrapped);
    const auto wrapped = searchFor(u"/b", options).move(text, 6, 2);
    EXPECT_TRUE(wrapped->hasWrapped);
    EXPECT_EQ(wrapped->position, 6);
    EXPECT_TRUE(searchFor(u"?b", options).move(text, 0)->hasWrapped);
    options.wrapsSearch = false;
    EXPECT_FALSE(searchFor(u"/b", options).move(text, 6));
    EXPECT_FALSE(searchFor(u"?b", options).move(text, 0));
    EXPECT_EQ(searchFor(u"/b", options).messageForNone(), u"Not found before the end of the text: b"_s);
    // A hit of the caret's own place is one when it has come round; an offset does not hold it there.
    const auto ended = VimSearch::parse(u"a/s+2", searchFor(u"/", VimOptions(VimKeymapPreset::plain)), std::nullopt)->front();
    EXPECT_EQ(ended.repeated(text, 2, 1)->position, 6);
    EXPECT_EQ(ended.move(text, 2)->kind, VimMotion::Kind::exclusive);
    // Far from the caret nothing is found at once.
    const Rope large(u"x"_s + u"-\n"_s.repeated(VimSearch::nearby) + u"x\n"_s);
    EXPECT_FALSE(searchFor(u"/x", options).nearHit(large, 0));
    EXPECT_EQ(searchFor(u"/x", options).hit(large, 0)->location, large.length() - 2);
    EXPECT_EQ(searchFor(u"?x", options).hit(large, large.length() - 2)->location, 0);
}

TEST(VimSearch, ReadsWhatIsTyped)
{
    const VimSearch common = searchFor(u"/", VimOptions(VimKeymapPreset::plain));
    const auto last = VimSearch::parse(u"x/e-1", common, std::nullopt)->front();
    const auto told = [&](QStringView typed) {
        const auto steps = VimSearch::parse(typed, common, last);
        QString all = steps ? QString() : steps.error().message;
        for (qsizetype index = 0; steps && index < qsizetype(steps->size()); ++index) {
            const VimSearch &step = (*steps)[size_t(index)];
            all += u"%1 %2%3;"_s.arg(step.pattern).arg(u"sel"_s[int(step.offset.base)]).arg(step.offset.amount);
        }
        return all;
    };
    const std::pair<QStringView, QStringView> rows[] = {
        {u"", u"x e-1;"},
        {u"/", u"x s0;"},
        {u"a", u"a s0;"},
        {u"/e", u"x e0;"},
        {u"a\\/b/-", u"a\\/b l-1;"},
        {u"[/]/2", u"[/] l2;"},
        {u"a/b+;?c?s", u"a s1;c s0;"},
        {u"a/;//e", u"a s0;a e0;"},
        {u"a/;b", u"“/” or “?” has to follow “;”"},
    };
    for (const auto &[typed, expected] : rows) {
        EXPECT_EQ(told(typed).toStdString(), expected.toString().toStdString()) << typed.toString().toStdString();
    }
    EXPECT_FALSE(VimSearch::parse(u"", common, std::nullopt));

    const auto word = [](const QString &text, qsizetype caret, VimSearch::Words words) {
        return VimSearch::patternOfWord(Rope(text), caret, words).value_or(u"none"_s).toStdString();
    };
    using enum VimSearch::Words;
    EXPECT_EQ(word(u"a foo_1.b"_s, 4, whole), "\\<foo_1\\>");
    EXPECT_EQ(word(u" -> *"_s, 0, whole), "->");
    EXPECT_EQ(word(u"-- a.*b"_s, 0, parts), "a");
    EXPECT_EQ(word(u" .*~"_s, 0, parts), "\\.\\*\\~");
    EXPECT_EQ(word(u"  \na"_s, 0, whole), "none");
}
