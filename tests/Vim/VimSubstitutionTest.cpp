// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimKey.h"
#include "Vim/VimOptions.h"
#include "Vim/VimSubstituteJob.h"

#include "Settings/Settings.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// A text and what commands of exact mode make of it.
struct Editing {
    Rope text;
    qsizetype caret = 0;
    VimOptions options{VimKeymapPreset::plain};
    VimSubstituteMemory memory = {};
    std::optional<VimSearch> lastSearch = std::nullopt;
    QString said = {};

    /// Of the lines that it names by "%", else of the caret's.
    Result<VimSubstituteJob> job(QStringView typed)
    {
        const bool isOfAll = typed.startsWith(u'%');
        const VimSubstituteJob::Lines lines{isOfAll ? 0 : text.lineAt(caret),
                                            isOfAll ? text.lineAt(text.length() - 1) : text.lineAt(caret)};
        const QStringView command = typed.sliced(isOfAll ? 1 : 0);
        EXPECT_TRUE(VimSubstituteCommand::isOne(command));
        const auto parsed = VimSubstituteCommand::parse(command);
        return parsed ? VimSubstituteJob::prepare(*parsed, lines, options, memory, lastSearch) : tl::make_unexpected(parsed.error());
    }
    /// False when it fails.
    bool run(QStringView typed)
    {
        if (typed.startsWith(u'/')) {
            lastSearch = VimSearch::exact(typed.sliced(1).toString(), VimSearch::Direction::forward, options);
            caret = lastSearch->move(text, caret).value_or(VimSearchMove{.hit = {}, .position = caret}).position;
            return true;
        }
        const auto prepared = job(typed);
        if (!prepared) {
            said = prepared.error().message;
            return false;
        }
        const VimSubstituteOutcome outcome = prepared->outcome(text);
        said = prepared->message(outcome);
        text = outcome.edits.applied(text);
        caret = outcome.edits.isEmpty() ? caret : outcome.caret;
        return outcome.hits > 0 || prepared->flags.isQuiet;
    }
    [[nodiscard]] QString marked() const { return text.toString().insert(caret, u'|'); }
};

struct Row {
    QStringView before;
    /// One a line.
    QStringView commands;
    QStringView after;
    QStringView said;
};

/// With Vim's answers; the caret is in the first line.
constexpr Row rows[] = {
    {u"aaa\naba\naa\n", u"s/a/x/", u"|xaa\naba\naa\n", u"1 substitution on 1 line"},
    {u"aaa\naba\naa\n", u"%s/a/x/g", u"xxx\nxbx\n|xx\n", u"7 substitutions on 3 lines"},
    {u"aaa\naba\naa\n", u"%s/a/x/ 2", u"aaa\naba\n|xa\n", u"1 substitution on 1 line"},
    {u"ab\ncd\n", u"s/x*/-/g", u"|-a-b\ncd\n", u"2 substitutions on 1 line"},
    {u"ab\ncd\n", u"%s/$/;/", u"ab;\n|cd;\n", u"2 substitutions on 2 lines"},
    {u"ab\ncd\n", u"%s/^/> /", u"> ab\n|> cd\n", u"2 substitutions on 2 lines"},
    {u"one two\n", u"s/\\(\\w\\+\\) \\(\\w\\+\\)/\\2 \\1\\3/", u"|two one\n", u"1 substitution on 1 line"},
    {u"a/b\n", u"s+a/b+/&/+", u"|/a/b/\n", u"1 substitution on 1 line"},
    {u"a/b\n", u"s/a\\/b/\\//", u"|/\n", u"1 substitution on 1 line"},
    {u"foo bar\n", u"s/\\w\\+/\\u&/g", u"|Foo Bar\n", u"2 substitutions on 1 line"},
    {u"foo bar\n", u"s/foo/\\U&\\E-&/", u"|FOO-foo bar\n", u"1 substitution on 1 line"},
    {u"FOO bar\n", u"s/.*/\\L\\u&/", u"|Foo bar\n", u"1 substitution on 1 line"},
    {u"a,b,c\n", u"s/,/\\r/g", u"a\nb\n|c\n", u"2 substitutions on 1 line"},
    {u"a b\n", u"s/ /\\t/", u"|a\tb\n", u"1 substitution on 1 line"},
    {u"a\nb\nc\n", u"%s/\\n/,/", u"|a,b,c,\n", u"3 substitutions on 1 line"},
    {u"a\nb\nc\n", u"s/\\n//", u"a|b\nc\n", u"1 substitution on 1 line"},
    {u"a\\b&~\n", u"s/\\\\/[\\&\\~\\\\]/", u"|a[&~\\]b&~\n", u"1 substitution on 1 line"},
    {u"foo foo\nfoo\n", u"s/foo/bar/\ns", u"|bar bar\nfoo\n", u"1 substitution on 1 line"},
    {u"foo foo foo\n", u"s/foo/bar/\n&g", u"|bar bar bar\n", u"2 substitutions on 1 line"},
    {u"foo foo\nfoo foo\n", u"s/foo/bar/g\n%&&", u"bar bar\n|bar bar\n", u"2 substitutions on 1 line"},
    {u"foo foo\nfoo foo\n", u"s/foo/bar/g\n%&", u"bar bar\n|bar foo\n", u"1 substitution on 1 line"},
    {u"foo bar\nfoo\n", u"s/foo/x/\ns/bar/~~/", u"|x xx\nfoo\n", u"1 substitution on 1 line"},
    {u"foo bar\nfoo bar\n", u"s/foo/x/\n/bar\ns//~y/", u"|x xy\nfoo bar\n", u"1 substitution on 1 line"},
    {u"foo bar\nfoo bar\n", u"s/foo/x/\n/bar\n~", u"|x x\nfoo bar\n", u"1 substitution on 1 line"},
    {u"foo bar\nfoo bar\n", u"s/foo/x/\n/bar\n&", u"fails", u""},
    {u"foo bar\nfoo bar\n", u"s/foo/x/g\n/bar\n%s//~/&", u"x x\n|foo x\n", u"2 substitutions on 2 lines"},
    {u"Foo foo\n", u"s/foo/x/i", u"|x foo\n", u"1 substitution on 1 line"},
    {u"Foo foo\n", u"s/foo/x/I", u"|Foo x\n", u"1 substitution on 1 line"},
    {u"foo foo\n", u"s/foo/x/n", u"|foo foo\n", u"1 hit on 1 line"},
    {u"foo foo\n", u"s/foo/x/gn", u"|foo foo\n", u"2 hits on 1 line"},
    {u"a\n", u"s/b/x/", u"fails", u""},
    {u"a\n", u"s/b/x/e", u"|a\n", u""},
    {u"a.a\n", u"s/a/x/\nsg", u"|x.x\n", u"1 substitution on 1 line"},
    {u"a.b.c\n", u"s/\\./\\r  /g", u"a\n  b\n  |c\n", u"2 substitutions on 1 line"},
    {u"foobar\n", u"s/foo\\zsbar/X/", u"|fooX\n", u"1 substitution on 1 line"},
    {u"foobar\n", u"s/foo\\ze./<&>/", u"|<foo>bar\n", u"1 substitution on 1 line"},
    {u"a b\n", u"s/a", u" |b\n", u"1 substitution on 1 line"},
    {u"a[b\n", u"s/[/x/", u"fails", u""},
    {u"ab ab\n", u"s/\\(b\\)\\|a/<\\1>/g", u"|<><b> <><b>\n", u"4 substitutions on 1 line"},
    {u"a\n", u"s/a/b/q", u"fails", u""},
    {u"a\n", u"s/\\(/b/", u"fails", u""},
    {u"aXb\n", u"sno/./-/\ns/\\M./-/", u"fails", u""},
    {u"x\ny\n", u"%s/\\_.*/[&]/", u"[x\ny\n|]\n", u"1 substitution on 1 line"},
};

} // namespace

TEST(VimSubstituteJob, DoesWhatVimDoes)
{
    for (const Row &row : rows) {
        Editing editing{.text = Rope(row.before)};
        bool succeeds = true;
        for (const QStringView command : row.commands.split(u'\n')) {
            succeeds = editing.run(command);
        }
        EXPECT_EQ((succeeds ? editing.marked() : u"fails"_s).toStdString(), row.after.toString().toStdString())
            << row.commands.toString().toStdString();
        EXPECT_TRUE(!succeeds || editing.said == row.said) << row.commands.toString().toStdString() << editing.said.toStdString();
    }
}

TEST(VimSubstituteJob, KeepsLineEndsAndBringsManyTogether)
{
    Editing wide{.text = Rope(u"a,b\r\nc\r\n"_s)};
    ASSERT_TRUE(wide.run(u"%s/,\\|\\n/\\r/g"));
    EXPECT_EQ(wide.text.toString(), u"a\r\nb\r\nc\r\n\r\n"_s);

    Editing many{.text = Rope(u"-ab ab\n"_s.repeated(1500))};
    const auto job = many.job(u"%s/ab/xyz/g");
    const auto outcome = job->outcome(many.text);
    EXPECT_EQ(outcome.edits.count(), 1U);
    EXPECT_EQ(outcome.hits, 3000);
    EXPECT_EQ(outcome.edits.applied(many.text).toString(), u"-xyz xyz\n"_s.repeated(1500));
    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_EQ(job->outcome(many.text, {.stop = stopped.get_token()}).hits, 0);
    // Only what is seen is looked through for a preview.
    const auto preview = job->preview(many.text, {70, 14});
    ASSERT_EQ(preview.size(), 4U);
    EXPECT_EQ(preview.front().range, (TextRange{71, 2}));
    EXPECT_EQ(preview.front().text, u"xyz"_s);
}

TEST(VimSubstituteJob, SaysWhatIsWrong)
{
    const std::pair<QStringView, QStringView> cases[] = {
        {u"s", u"There is no substitution yet to repeat"},
        {u"s/a/b/q", u"Not a flag or count: q"},
        {u"s/a/b/ 0", u"A count of lines is at least 1"},
        {u"s xaxbx", u"A pattern cannot be delimited by letters"},
        {u"s\\a", u"“\\” has to be followed by “/”, “?” or “&”"},
        {u"s/a/\\=1/", u"A replacement cannot be computed by an expression here"},
        {u"s/z/b/", u"Pattern not found: z"},
    };
    for (const auto &[typed, message] : cases) {
        Editing editing{.text = Rope(u"a\n")};
        EXPECT_FALSE(editing.run(typed));
        EXPECT_EQ(editing.said.toStdString(), message.toString().toStdString());
    }
    EXPECT_EQ(VimSubstituteCommand::parse(u"s/a|/b|/g|w")->rest, u"w"_s);
    for (const QStringView other : {u"set", u"sil", u"sp", u"scr", u"se", u"x", u"sort", u"sl"}) {
        EXPECT_FALSE(VimSubstituteCommand::isOne(other)) << other.toString().toStdString();
    }
    for (const QStringView one : {u"s", u"su/a/b", u"substitute", u"sno/a", u"sg", u"sci", u"&&", u"~"}) {
        EXPECT_TRUE(VimSubstituteCommand::isOne(one)) << one.toString().toStdString();
    }
    Editing shown{.text = Rope(u"x\n\ta\n")};
    const auto job = shown.job(u"%s/a/b/#l");
    const auto outcome = job->outcome(shown.text);
    EXPECT_EQ(job->shownLine(outcome, outcome.edits.applied(shown.text)), u"  2 ^Ib$"_s);
}

TEST(VimSubstituteConfirmation, TakesAnswers)
{
    struct Case {
        QStringView keys;
        QStringView after;
        qsizetype hits;
        qsizetype lines;
    };
    const Case cases[] = {
        {u"ynyq", u"Xb a\nX|a\n", 2, 2},     {u"nl", u"|ab X\naa\n", 1, 1},   {u"na", u"ab X\n|XX\n", 3, 2},
        {u"zn\u001B", u"ab |a\naa\n", 0, 0}, {u"yyyy", u"Xb X\n|XX\n", 4, 2},
    };
    for (const Case &one : cases) {
        Editing editing{.text = Rope(u"ab a\naa\n")};
        const auto job = editing.job(u"%s/a/X/gc");
        ASSERT_TRUE(job && job->flags.asks);
        VimSubstituteConfirmation asking(*job, editing.text);
        Rope text = editing.text;
        for (const QChar key : one.keys) {
            ASSERT_TRUE(asking.hit());
            EXPECT_EQ(text.toString(*asking.hit()), u"a"_s);
            EXPECT_TRUE(asking.question().contains(u"X"_s));
            text = asking.answer(key.unicode()).applied(text);
        }
        EXPECT_FALSE(asking.hit()) << one.keys.toString().toStdString();
        const auto outcome = asking.outcome();
        EXPECT_EQ(outcome.hits, one.hits);
        EXPECT_EQ(outcome.lines, one.lines);
        EXPECT_EQ(text.toString().insert(outcome.caret, u'|').toStdString(), one.after.toString().toStdString());
    }
}
