// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "HighlighterFixture.h"

#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/Languages/LanguageRow.h"
#include "Text/RandomText.h"
#include "Text/TextBoundaries.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using enum RuleTraits;

constexpr qsizetype chunk = SyntaxHighlighter::chunkSize;

// No token goes over the end of a line, so that the colours of a line depend on nothing but it and the spans.
constexpr auto plainSpans = std::to_array<RuleRow>({
    {Scope::comment, none, uR"(/\*(?:[^*]|\*(?!/))*\*/)"},
    {Scope::string, none, uR"("""[\s\S]*?""")"},
    {Scope::variable, none, u"/\\*\\*\\*"},
});
constexpr auto plainTokens = std::to_array<RuleRow>({
    {Scope::comment, lines, u"//.*$"},
    {Scope::string, none, u"'[^'\\n\\r\\u2028]*'"},
    {Scope::keyword, words, u"if|for"},
    {Scope::function, group1, u"\\b(\\w+)[ ]*[(]"},
    {Scope::number, group1, u"x(\\d+)?;"},
    {Scope::type, none, u"\\b[A-Z]\\w*\\b"},
    {Scope::escape, none, u"ab|bcd"},
    {Scope::builtin, none, u"bcde"},
    {Scope::preprocessor, lines, u"\\A#.*$"},
    {Scope::attribute, lines, u"^@.*$"},
});
constexpr LanguageRules plainRules = {plainSpans, plainTokens};
constexpr LanguageRow plainRow = {.id = u"example", .name = u"Example", .rules = &plainRules};

// Both take ages over a row of a's; the rule between them does not.
constexpr auto slowSpans = std::to_array<RuleRow>({{Scope::comment, none, u"<(?:a+)+>"}});
constexpr auto slowTokens = std::to_array<RuleRow>({
    {Scope::string, none, u"(a+)+b"},
    {Scope::number, none, u"\\d+"},
    {Scope::keyword, none, u"(?:a|aa)+$"},
});
constexpr LanguageRules slowRules = {slowSpans, slowTokens};
constexpr LanguageRow slowRow = {.id = u"slow", .name = u"Slow", .rules = &slowRules};

QString filled(qsizetype length)
{
    return u"if line x1;\n"_s.repeated(length / 12 + 1).left(length);
}

struct Case {
    const char *name;
    QStringView text;
    std::string colours;
};

} // namespace

TEST(SyntaxHighlighter, GivesEachUnitToTheFirstThatClaimsIt)
{
    const auto cases = std::to_array<Case>({
        {"a span before every token", u"/* if 'a' */ if", "cccccccccccc.kk"},
        {"the span that begins first", u"/* \"\"\" */ \"\"\" */", "ccccccccc......."},
        {"a span that begins in another is dropped whole", u"\"\"\" /* \"\"\" */", "ssssssssss..."},
        {"a span that begins where another ends", u"/*1*//*2*/", "cccccccccc"},
        {"of two that begin together the earlier rule's", u"/***/", "ccccc"},
        {"an earlier rule, though it begins later", u"'a//b'", "..cccc"},
        {"a match that is partly taken is left out", u"abcde", "ee..."},
        {"the earlier match of one rule", u"bcdab", "eeeee"},
        {"a keyword before a function", u"if(for (on (", "kk.kkk..ff.."},
        {"text outside the group stays free", u"x12;x;", ".nn..."},
        {"a group that took no part", u"x;Xyz", "..ttt"},
        {"a token across a span", u"'/**/'", ".cccc."},
        {"an anchor at the start of the text only", u"#a\n#b", "pp..."},
        {"an anchor at every line", u"@a\n@b", "aa.aa"},
    });
    for (const Case &row : cases) {
        Document document(Language(plainRow), row.text.toString());
        document.ensureAll();
        EXPECT_EQ(document.colours(), row.colours) << row.name << ": " << row.text.toString().toStdString();
    }
}

TEST(SyntaxHighlighter, ColoursWholeChunksAndWholeLines)
{
    // A line ends where the separators say, also over the border of a chunk.
    for (const QString &end : {u"\n"_s, u"\r\n"_s, u"\r"_s, u"\u2028"_s, u"\u2029"_s}) {
        const QString first = filled(chunk - 4);
        Document document(Language(plainRow), first + end + u"'abc if def'"_s + end + filled(chunk));
        const qsizetype line = first.size() + end.size();
        document.highlighter.ensureHighlighted({0, 1});
        EXPECT_EQ(document.colours({line, 12}), "ssssssssssss");
        EXPECT_EQ(document.colours({line + 12 + end.size(), 2}), "..");
        EXPECT_TRUE(document.isFresh(0));
        EXPECT_FALSE(document.isFresh(chunk + 1000));
        EXPECT_EQ(document.colours({line + 12 + end.size(), 2}), "kk");
    }
    Document document(Language(plainRow), filled(5 * chunk));
    document.highlighter.ensureHighlighted({chunk + 5, chunk});
    EXPECT_THAT(document.colours(), testing::StartsWith(std::string(size_t(chunk) - 24, '.')));
    EXPECT_TRUE(document.isFresh(chunk) && document.isFresh(2 * chunk));
    EXPECT_FALSE(document.isFresh(0) || document.isFresh(3 * chunk));
    document.restyled.clear();
    document.highlighter.ensureHighlighted({chunk, 2 * chunk});
    document.highlighter.ensureHighlighted({7 * chunk, 10});
    document.highlighter.ensureHighlighted({3, 0});
    EXPECT_THAT(document.restyled, IsEmpty());

    // One pass does for all chunks of a line.
    Document longLine(Language(plainRow), u"if x "_s.repeated(5 * chunk / 5) + u"\nif\n"_s + filled(chunk));
    longLine.highlighter.ensureHighlighted({2 * chunk, 1});
    EXPECT_TRUE(longLine.isFresh(0) && longLine.isFresh(chunk) && longLine.isFresh(4 * chunk - 1));
    EXPECT_FALSE(longLine.isFresh(5 * chunk + 100));
}

TEST(SyntaxHighlighter, ColoursASpanAsAWhole)
{
    const QString code = filled(2 * chunk);
    Document document(Language(plainRow), code + u"/*"_s + code + u"*/"_s + code);
    const qsizetype from = code.size();
    const qsizetype length = code.size() + 4;
    document.highlighter.ensureHighlighted({from + chunk + 10, 1});
    EXPECT_EQ(document.colours({from, length}), std::string(size_t(length), 'c'));
    EXPECT_EQ(document.colours({from - 12, 12}), document.colours({0, 12}));

    // An edit of its middle keeps the whole; without its end there is none, and what it coloured is asked for again.
    document.ensureAll();
    document.type(from + 100, u"if"_s);
    EXPECT_EQ(document.colours({from, length + 2}), std::string(size_t(length) + 2, 'c'));
    document.erase(from + length, 2);
    EXPECT_FALSE(document.isFresh(from + chunk));
    document.ensureAll();
    EXPECT_EQ(document.colours().find('c'), std::string::npos);

    // The window reaches 128 Ki units up from the lines at work.
    const QString far = filled(0x20000 + 240);
    Document window(Language(plainRow), u"\n/*"_s + far + u"*/\n"_s + filled(chunk));
    window.highlighter.ensureHighlighted({window.storage.length() - 1, 1});
    EXPECT_EQ(window.colours().find('c'), std::string::npos);
    window.highlighter.ensureHighlighted({0, 1});
    EXPECT_EQ(window.colours({1, far.size() + 4}), std::string(size_t(far.size()) + 4, 'c'));
}

TEST(SyntaxHighlighter, ColoursTheLinesOfAnEditAtOnce)
{
    Document document(Language(plainRow), u"one\ntwo\nthree\n"_s);
    document.ensureAll();
    document.type(4, u"if 'a' "_s);
    EXPECT_EQ(document.colours(), "....kk.sss...........");
    EXPECT_EQ(document.refreshCount, 0);

    // Only what is really another is reported: here one unit in the middle of a comment, which has the colour before it is asked for.
    document.storage.apply({{0, document.storage.length()}, u"/* comment */ if\n"});
    document.restyled.clear();
    document.type(5, u"x"_s);
    EXPECT_THAT(document.restyled, IsEmpty());
    document.erase(0, 1);
    EXPECT_EQ(document.colours(), "..............kk.");
    EXPECT_THAT(document.restyled, ElementsAre(TextRange{0, 13}));

    // What was inserted has its neighbour's look only until the line is coloured.
    document.storage.apply({{0, document.storage.length()}, u"if a\n"});
    document.type(2, u" b"_s);
    EXPECT_EQ(document.colours(), "kk.....");

    // Looks that others give are left alone.
    document.storage.setStyle({5, 1}, document.storage.styles().intern({.background = 0xFF00FF00}));
    EXPECT_EQ(document.colours(), "kk...?.");
}

TEST(SyntaxHighlighter, WaitsForAPauseInALargeText)
{
    Document document(Language(plainRow), filled(300000));
    document.highlighter.ensureHighlighted({0, 3 * chunk});
    document.restyled.clear();
    for (int key = 0; key < 5; ++key) {
        document.type(chunk + 16, u"if "_s);
        document.scheduler.advance(100ms);
    }
    EXPECT_THAT(document.restyled, IsEmpty());
    EXPECT_EQ(document.refreshCount, 0);
    EXPECT_EQ(document.scheduler.pendingCount(), 1);
    document.scheduler.advance(19ms);
    EXPECT_EQ(document.refreshCount, 0);
    document.scheduler.advance(1ms);
    EXPECT_EQ(document.refreshCount, 1);
    EXPECT_EQ(document.colours({chunk + 16, 15}), "kk.kk.kk.kk.kk.");
    EXPECT_EQ(document.scheduler.pendingCount(), 0);
    EXPECT_TRUE(document.isFresh(0) && document.isFresh(chunk));
    EXPECT_FALSE(document.isFresh(2 * chunk));

    // A reset, or the end of the highlighter, takes back what was to be done.
    document.type(0, u"if "_s);
    document.highlighter.rehighlightAll();
    EXPECT_EQ(document.refreshCount, 2);
    EXPECT_EQ(document.scheduler.pendingCount(), 0);
    {
        SyntaxHighlighter other(document.storage, Language(plainRow), Theme::light(), document.scheduler, document.notifications);
        document.type(0, u"if "_s);
        EXPECT_EQ(document.scheduler.pendingCount(), 2);
    }
    EXPECT_EQ(document.scheduler.pendingCount(), 1);
    document.type(0, u"if "_s);
}

TEST(SyntaxHighlighter, ColoursNoneOfManyPlacesBeforeAPause)
{
    Document document(Language(plainRow), filled(3 * chunk));
    document.ensureAll();
    document.restyled.clear();
    TextEdits edits;
    for (qsizetype offset = chunk; offset < 3 * chunk; offset += chunk / 64) {
        edits.add({offset, 0}, Rope(u"\nif "_s));
    }
    document.storage.apply(edits);
    EXPECT_THAT(document.restyled, IsEmpty());
    EXPECT_EQ(document.refreshCount, 0);
    document.scheduler.advance(120ms);
    EXPECT_EQ(document.refreshCount, 1);
    EXPECT_TRUE(document.isFresh(0));
    EXPECT_FALSE(document.isFresh(chunk));
    EXPECT_EQ(document.colours({chunk, 4}), ".kk.");
}

TEST(SyntaxHighlighter, BeginsAnewForAnotherThemeOrLanguage)
{
    Document document(Language(plainRow), u"if 1"_s);
    document.ensureAll();
    document.highlighter.setTheme(Theme::light());
    EXPECT_EQ(document.refreshCount, 1);
    document.ensureAll();
    EXPECT_EQ(document.storage.styles().attributes(document.storage.styleAt(0)), Theme::light().attributes(Scope::keyword));
    document.highlighter.setTheme(Theme::dark());
    document.highlighter.setLanguage(Language(slowRow));
    document.ensureAll();
    EXPECT_EQ(document.colours(), "...n");
}

TEST(SyntaxHighlighter, AfterEditsIsAsIfTheTextHadJustBeenOpened)
{
    using Pieces = std::vector<QString>;
    const Pieces all = {u"/*"_s,  u"*/"_s, u"\"\"\""_s, u"//"_s,   u"'"_s,    u"if"_s,     u"for ("_s, u" "_s, u"\n"_s, u"Xy"_s,
                        u"x7;"_s, u"@"_s,  u"("_s,      u"abcd"_s, u"\r\n"_s, u"\u2028"_s, u"日本"_s,  u"é"_s, u"\""_s, u"😀"_s};
    const Pieces spans = {u"/*"_s, u"*/\n"_s, u"\n"_s, u"if"_s, u"x7;"_s};
    // A window does not reach over the whole of the largest text, so what is a span in it depends on it: it gets none.
    const Pieces tokens = {u"'"_s, u"if"_s, u"for ("_s, u"\n"_s, u"Xy"_s, u"x7;"_s, u"@"_s, u"\n\n//"_s};
    const std::pair<qsizetype, const Pieces &> texts[] = {{300, all}, {chunk + 2000, all}, {3 * chunk, spans}, {17 * chunk, tokens}};
    for (quint32 seed = 1; seed <= 16; ++seed) {
        Random random(seed);
        const auto &[length, pieces] = texts[seed % 4];
        const bool isLong = length > 2 * chunk;
        Document edited(Language(plainRow), filled(length));
        for (int step = 0; step < 60; ++step) {
            const qsizetype end = edited.storage.length();
            if (!isLong) {
                edited.ensureAll();
            } else if (random.oneIn(3)) {
                edited.highlighter.ensureHighlighted({random.below(end), random.below(2 * chunk)});
            }
            const auto place = [&](qsizetype offset) { return TextBoundaries::snapped(edited.storage.text(), std::min(offset, end)); };
            TextEdits batch;
            qsizetype at = random.below(isLong ? end - 3 * chunk / 2 : end + 1);
            const bool areMany = isLong && random.oneIn(6);
            for (qsizetype edits = areMany ? 100 : 1 + random.below(3); edits > 0; --edits) {
                const qsizetype from = place(at + random.below(isLong && !areMany ? chunk / 4 : 30));
                at = place(from + (random.oneIn(4) ? random.below(isLong ? 600 : 40) : 0));
                batch.add(TextRange::between(from, at), Rope(isLong && random.oneIn(8) ? filled(random.below(900)) : random.of(pieces)));
            }
            edited.storage.apply(batch);
            if (random.oneIn(4)) {
                edited.scheduler.advance(120ms);
            }
            if (step % (isLong ? 10 : 4) == 3) {
                edited.scheduler.advance(120ms);
                edited.ensureEach();
                Document opened(Language(plainRow), edited.storage.string());
                opened.ensureAll();
                const std::string is = edited.colours();
                const std::string ought = opened.colours();
                const auto wrong = std::ranges::mismatch(is, ought).in1;
                ASSERT_EQ(wrong, is.end()) << "seed " << seed << " step " << step << " at " << wrong - is.begin();
                if (isLong) {
                    edited.highlighter.rehighlightAll();
                }
            }
        }
    }
}

TEST(SyntaxHighlighter, ColoursAllThatWasTypedSinceTheLastPause)
{
    Document document(Language(plainRow), u"\n"_s + filled(300000));
    document.highlighter.ensureHighlighted({0, chunk});
    document.type(0, u"if"_s);
    document.scheduler.advance(100ms);
    document.type(2, u"\n"_s);
    document.type(3, u"for"_s);
    document.scheduler.advance(120ms);
    EXPECT_EQ(document.colours({0, 6}), "kk.kkk");

    // What is too long for one pass is left to those who show it, and what shrinks to nothing meanwhile does no harm.
    document.storage.apply({{0, document.storage.length()}, filled(2'000'000)});
    document.scheduler.advance(120ms);
    EXPECT_FALSE(document.isFresh(1'000'000));
    document.type(1'000'000, u"if"_s);
    document.erase(0, document.storage.length());
    document.scheduler.advance(120ms);
    EXPECT_EQ(document.colours(), "");
}

TEST(SyntaxHighlighter, ASpanThatEndsFarFromWhatIsShownIsNoticed)
{
    const QString code = filled(3 * chunk);
    Document document(Language(plainRow), u"/*"_s + code + u"*/\n"_s + filled(40 * chunk));
    document.ensureAll();
    document.highlighter.rehighlightAll();
    document.highlighter.ensureHighlighted({0, 4 * chunk});
    document.highlighter.ensureHighlighted({35 * chunk, chunk});
    document.erase(2 + code.size(), 2);
    document.highlighter.ensureHighlighted({35 * chunk, chunk});
    document.scheduler.advance(120ms);
    document.ensureEach();
    EXPECT_EQ(document.colours().find('c'), std::string::npos);
}

TEST(SyntaxHighlighter, GivesUpRulesThatCostTooMuch)
{
    Document document(Language(slowRow), u"<"_s + u"a"_s.repeated(4000) + u"c 12\n"_s);
    document.ensureAll();
    EXPECT_EQ(document.colours({4000, 5}), "...nn");
    EXPECT_GT(document.highlighter.givenUpSearches(), 0);
    for (int edit = 0; edit < 10; ++edit) {
        document.type(0, u"<"_s);
    }
    EXPECT_EQ(document.colours({4010, 5}), "...nn");
    const int rules = document.highlighter.rulesSwitchedOff();
    EXPECT_GE(rules, 2);
    EXPECT_EQ(document.highlighter.givenUpSearches(), rules * SyntaxHighlighter::mostGivenUp);

    // A rule that is off finds nothing, until all begins anew.
    document.storage.apply({{0, document.storage.length()}, u"aab\n"});
    EXPECT_EQ(document.colours(), "....");
    document.highlighter.rehighlightAll();
    EXPECT_EQ(document.highlighter.givenUpSearches(), 0);
    document.ensureAll();
    EXPECT_EQ(document.colours(), "sss.");
}

TEST(SyntaxHighlighter, ColoursDeeplyIndentedKeys)
{
    // Keys that go back over each blank from each other one: no line costs much, a screen of them more than a search may.
    static constexpr auto keyTokens = std::to_array<RuleRow>({{Scope::attribute, lines | group1, uR"(^\s*([^=\n\[;#]+?)\s*(?==))"}});
    static constexpr LanguageRules keyRules = {{}, keyTokens};
    static constexpr LanguageRow keyRow = {.id = u"keys", .name = u"Keys", .rules = &keyRules};
    for (const auto &[language, depth] : {std::pair(Language(keyRow), 30), std::pair(*LanguageRegistry::withID(u"ini"), 200)}) {
        SCOPED_TRACE(language.id().toStdString());
        const QString indentation = u" "_s.repeated(depth);
        QString text;
        for (int key = 0; key < 150; ++key) {
            text += indentation + u"key%1 = value\n"_s.arg(key) + indentation + u"goes on in the next line\n"_s;
        }
        Document document(language, text);
        document.ensureAll();
        const std::string colours = document.colours();
        for (int key = 0; key < 150; ++key) {
            EXPECT_EQ(colours[size_t(text.indexOf(u"key%1 "_s.arg(key)))], 'a') << key;
        }
        EXPECT_EQ(document.highlighter.givenUpSearches(), 0);
    }
}

TEST(SyntaxHighlighter, EndsWithConstructsThatDoNot)
{
    const QStringList openers = {u"/* "_s,     u"\"\"\" "_s, u"\""_s,    u"'"_s,        u"`"_s,    u"<!-- "_s, u"<![CDATA["_s,
                                 u"<<EOT\n"_s, u"--[[ "_s,   u"```\n"_s, u"=begin\n"_s, u"r#\""_s, u"@\""_s,   u"${"_s,
                                 u"\\("_s,     u"a("_s,      u"\n"_s,    u"**"_s,       u"["_s};
    for (const Language &language : LanguageRegistry::all()) {
        QString text;
        for (const QString &opener : openers) {
            text += opener.repeated(2000 / opener.size()) + u'\n';
        }
        Document document(language, text);
        document.ensureAll();
        document.type(0, u"x"_s);
        EXPECT_LE(document.highlighter.rulesSwitchedOff(), document.highlighter.givenUpSearches() / SyntaxHighlighter::mostGivenUp);
        EXPECT_EQ(document.colours().find('?'), std::string::npos) << language.id().toStdString();
    }
    // One string of a megabyte without an end, in one line.
    Document document(*LanguageRegistry::withID(u"json"), u"{\"a\": 1, \""_s + u"x"_s.repeated(1'000'000));
    document.highlighter.ensureHighlighted({0, 1});
    EXPECT_EQ(document.colours({0, 12}), "uaaau.nu....");
}
