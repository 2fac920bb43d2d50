// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextSearch.h"

#include "RandomText.h"

#include <gmock/gmock.h>

#include <tuple>

using namespace Qt::StringLiterals;
using testing::HasSubstr;

namespace {

/// Switches as letters: c matches case, w whole words, r regular expression. Hits stand in [brackets].
struct SearchCase {
    std::string name;
    QString pattern;
    QString switches;
    QString marked;
};

SearchQuery queryOf(const QString &pattern, const QString &switches)
{
    return {.pattern = pattern,
            .matchesCase = switches.contains(u'c'),
            .matchesWholeWords = switches.contains(u'w'),
            .isRegularExpression = switches.contains(u'r') || switches.contains(u'b'),
            .isBareExpression = switches.contains(u'b')};
}

TextSearcher searcherOf(const QString &pattern, const QString &switches)
{
    auto searcher = TextSearcher::compile(queryOf(pattern, switches));
    EXPECT_TRUE(searcher) << pattern.toStdString();
    return *std::move(searcher);
}

std::vector<TextRange> hitsOf(TextSearcher &searcher, const Rope &text)
{
    std::vector<TextRange> hits;
    searcher.forEachHit(text, {0, text.length() + 1}, [&hits](TextRange hit) {
        hits.push_back(hit);
        return true;
    });
    return hits;
}

QString marked(QString text, const std::vector<TextRange> &hits)
{
    for (auto hit = hits.rbegin(); hit != hits.rend(); ++hit) {
        text.insert(hit->end(), u']').insert(hit->location, u'[');
    }
    return text;
}

const SearchCase cases[] = {
    {"in any case", u"ab"_s, u""_s, u"[ab] [AB] [aB] ba"_s},
    {"in this case", u"aB"_s, u"c"_s, u"ab AB [aB]"_s},
    {"nothing is no hit", u""_s, u""_s, u"abc"_s},
    {"specials stand for themselves", u"a.*$\\"_s, u""_s, u"ab [a.*$\\]"_s},
    {"sharp s is not two", u"ss"_s, u""_s, u"ß ẞ [SS]"_s},
    {"sharp s has a capital", u"ß"_s, u""_s, u"[ß][ẞ] ss"_s},
    {"dotted capital is its own letter", u"i"_s, u""_s, u"İ[I][i]ı"_s},
    {"final sigma", u"ΟΔΟΣ"_s, u""_s, u"[οδος] [οδοσ]"_s},
    {"Kelvin sign and micro sign", u"kµ"_s, u""_s, u"[\u212Aμ][KΜ]"_s},
    {"capitals beyond 16 bits", u"\U00010428"_s, u""_s, u"[\U00010400][\U00010428]\U00010429"_s},
    {"which differ with case", u"\U00010428"_s, u"c"_s, u"\U00010400[\U00010428]"_s},
    {"no halves of pairs", QString(QChar(0xDE00)), u"c"_s, u"\U0001F600"_s},
    {"whole words", u"foo"_s, u"w"_s, u"[foo] foot _foo [Foo]-bar foo1 (foo\u0301) \u00e9foo"_s},
    {"words next to marks only", u"-x"_s, u"w"_s, u"a[-x] -xy [-x]"_s},
    {"words by dictionary", u"中国"_s, u"w"_s, u"我爱[中国]。"_s},
    {"a later word after one that goes on", u"aa"_s, u"w"_s, u"aaa [aa]"_s},
    {"composed letters", u"caf\u00e9"_s, u""_s, u"[caf\u00e9] [cafe\u0301] [CAFE\u0301]s cafe"_s},
    {"decomposed letters", u"e\u0301"_s, u"c"_s, u"[\u00e9] [e\u0301] E\u0301 e \u1eb9\u0301"_s},
    {"marks in any order", u"e\u0301\u0323x"_s, u""_s, u"[e\u0323\u0301x] [\u1eb9\u0301x] [\u00e9\u0323x] \u00e9x"_s},
    {"syllables", u"\ud558\ud55c"_s, u""_s, u"[\ud558\ud55c] [\u1112\u1161\u1112\u1161\u11ab] \ud55c\ud55c"_s},
    {"signs that are letters", u"Ω\u00c5"_s, u"c"_s, u"[\u2126\u212b] [ΩA\u030a]"_s},
    {"beyond 16 bits", u"\u4e3d"_s, u""_s, u"[\U0002f800][\u4e3d]\U0001F600"_s},
    {"composed words", u"\u00e9t\u00e9"_s, u"w"_s, u"[e\u0301te\u0301] e\u0301te\u0301\u0301"_s},
    {"composed in expressions", u"(\u00e9)+s\\.|\\Q\u00e4\\E"_s, u"r"_s, u"[\u00e9E\u0301e\u0301s.] [\u00e4] a\u0308"_s},
    {"composed in sets", u"x[\u00e9\u0301\\u00f6\u00ef-\u00f0]y"_s, u"r"_s, u"[xe\u0301y] [x\u00e9y] xey xi\u0308y"_s},
    {"composed in whole words", u"\u1ebf?\u00e9"_s, u"rw"_s, u"[e\u0302\u0301e\u0301] [\u00ea\u0301e\u0301] ee\u0301e"_s},
    {"lines", u"^b.$"_s, u"r"_s, u"[bb]\nabb\nbbb\n[ba]"_s},
    {"line ends of all kinds", u"b$"_s, u"r"_s, u"a[b]\r\na[b]\ra[b]\na[b]"_s},
    {"empty matches are no hits", u"x*"_s, u"r"_s, u"a[xx]b\n"_s},
    {"expressions in any case", u"stra.e"_s, u"r"_s, u"[STRAẞE] [strase]"_s},
    {"over lines", u"a\\s+b"_s, u"r"_s, u"[a\n\nb] ab"_s},
    {"look-around sees other lines", u"(?<=a\\n)b(?=\\nc)"_s, u"r"_s, u"a\n[b]\nc\nb\nc"_s},
    {"start and end of the text", u"\\Aa|a\\z"_s, u"r"_s, u"[a]a\na[a]"_s},
    {"whole words take another way", u"foo|foobar"_s, u"rw"_s, u"[foobar] foox [foo]"_s},
    {"whole words with a comment", u"(?x) a+ # letters"_s, u"rw"_s, u"[aa] aab"_s},
    {"pairs are characters", u"."_s, u"r"_s, u"[\U0001F600][a]"_s},
    {"bare: as it stands", u"\u00e9"_s, u"cb"_s, u"[\u00e9] e\u0301"_s},
    {"bare: ends of the text", u"^a|a$"_s, u"cb"_s, u"[a]a\na\na[a]\n"_s},
    {"bare: nothing is a hit", u"x*"_s, u"cb"_s, u"[]a[xx][]b[]\n[]"_s},
    {"bare: nothing in nothing", u"$"_s, u"cb"_s, u"[]"_s},
};

TEST(TextSearch, FindsWhatIsMarked)
{
    for (const SearchCase &c : cases) {
        SCOPED_TRACE(c.name + (": " + c.pattern.toStdString()));
        const QString text = QString(c.marked).remove(u'[').remove(u']');
        const Rope rope(text);
        TextSearcher searcher = searcherOf(c.pattern, c.switches).clone();
        const auto hits = hitsOf(searcher, rope);
        EXPECT_EQ(marked(text, hits).toStdString(), c.marked.toStdString());
        EXPECT_EQ(searcher.firstHit(rope, {0, rope.length() + 1}), hits.empty() ? std::nullopt : std::optional(hits.front()));
        EXPECT_EQ(searcher.lastHit(rope, {0, rope.length() + 1}), hits.empty() ? std::nullopt : std::optional(hits.back()));
    }
}

/// Empty matches at the ends of windows are neither left out nor found twice.
TEST(TextSearch, FindsEveryEmptyMatchOnce)
{
    const QString line = QString(999, u'a') + u'\n';
    for (const auto &[pattern, perLine] : {std::pair{u"(?<=\\n)"_s, 1}, std::pair{u"(?<=a)(?=\\n)|(?<=\\n)(?=a)"_s, 2}}) {
        TextSearcher searcher = searcherOf(pattern, u"cb"_s);
        const int lines = 700;
        const auto hits = hitsOf(searcher, Rope(line.repeated(lines)));
        EXPECT_EQ(std::ssize(hits), lines * perLine - (perLine - 1)) << pattern.toStdString();
        EXPECT_TRUE(std::ranges::is_sorted(hits, std::ranges::less_equal(), &TextRange::location)) << "none is there twice";
    }
}

/// How much of the start of `text` is equivalent to `pattern`.
qsizetype equivalentLength(QStringView text, const QString &pattern)
{
    const QString wanted = pattern.normalized(QString::NormalizationForm_D);
    if (QString(text.front()).normalized(QString::NormalizationForm_D).front() != wanted.front()) {
        return 0;
    }
    for (qsizetype length = 1; length <= std::min(text.size(), wanted.size()); ++length) {
        if (text.first(length).toString().normalized(QString::NormalizationForm_D) == wanted) {
            return length;
        }
    }
    return 0;
}

TEST(TextSearch, FindsLettersThatAWindowWouldCut)
{
    TextSearcher searcher = searcherOf(u"caf\u1ec7"_s, u""_s);
    for (int shift = 0; shift < 8; ++shift) {
        const QString line = QString(32 * 1024 - shift, u'x') + u"cafe\u0302\u0323"_s;
        const Rope text(line.repeated(9));
        EXPECT_EQ(hitsOf(searcher, text).size(), 9U) << shift;
        EXPECT_EQ(searcher.lastHit(text, {0, text.length()}), (TextRange{text.length() - 6, 6})) << shift;
    }
}

/// Whatever the size of windows and chunks, what is found is what is found in one piece.
TEST(TextSearch, FindsWhatABlindSearchFindsAcrossChunksAndWindows)
{
    for (quint32 seed = 1; seed <= 40; ++seed) {
        Random random(seed);
        const std::u16string units = random.text(1000 + random.below(90'000));
        const QString text = QString::fromStdU16String(units);
        const qsizetype at = random.below(text.size() - 20);
        const QString pattern = text.mid(at, 1 + random.below(12));
        const Rope rope(text);
        TextSearcher literal = searcherOf(pattern, u"c"_s);
        std::vector<TextRange> expected;
        for (qsizetype from = 0; from < text.size();) {
            const qsizetype length = rope.splitsPair(from) ? 0 : equivalentLength(QStringView(text).sliced(from), pattern);
            const bool isHit = length > 0 && !rope.splitsPair(from + length);
            if (isHit) {
                expected.push_back({from, length});
            }
            from += isHit ? length : 1;
        }
        EXPECT_EQ(hitsOf(literal, rope), expected) << "seed " << seed << ", pattern " << escaped(pattern.toStdU16String());
        // From the end back, hit by hit, one never comes to a place where none is.
        for (const TextRange hit : expected) {
            ASSERT_EQ(literal.firstHit(rope, {hit.location, rope.length()}), hit) << "seed " << seed;
            ASSERT_EQ(literal.lastHit(rope, {0, hit.location + 1})->location, hit.location) << "seed " << seed;
        }
    }
}

TEST(TextSearch, ExpressionsFindHitsAcrossTheirWindows)
{
    // Lines, then one line that is longer than any window; hits every 1001 units, some at every kind of border.
    QString text;
    std::vector<TextRange> expected;
    for (int i = 0; i < 700; ++i) {
        text += QString(i < 300 ? 990 : 995, u'.') + (i < 300 ? u"\n1234"_s : u"1234"_s);
        expected.push_back({text.size() - 4, 4});
        text += i < 300 ? u"x\nyyyy"_s : u"-"_s;
    }
    const Rope rope(text);
    for (const QString &pattern : {u"\\d+"_s, u"(?s)\\d+"_s, u"12[^a]4"_s}) {
        TextSearcher searcher = searcherOf(pattern, u"r"_s);
        EXPECT_EQ(hitsOf(searcher, rope), expected) << pattern.toStdString();
        EXPECT_FALSE(searcher.gaveUp());
    }
    TextSearcher over = searcherOf(u"x\\n\\w"_s, u"r"_s);
    EXPECT_EQ(hitsOf(over, rope).size(), 300U);
    TextSearcher starts = searcherOf(u"^\\d"_s, u"r"_s);
    EXPECT_EQ(hitsOf(starts, rope).size(), 300U) << "the middle of a line is no start";
}

TEST(TextSearch, AnEvilExpressionIsGivenUpAndHarmlessLinesAreStillSearched)
{
    const QString evil = QString(60, u'a') + u"!\n"_s;
    TextSearcher searcher = searcherOf(u"(a+)+$"_s, u"r"_s);
    const QString text = u"xa\n"_s + evil + u"aa\n"_s;
    EXPECT_EQ(marked(text, hitsOf(searcher, Rope(text))), u"x[a]\n"_s + evil + u"[aa]\n"_s);
    EXPECT_TRUE(searcher.gaveUp());
    EXPECT_TRUE(hitsOf(searcher, Rope(evil.repeated(20'000))).empty()) << "and it ends";
    EXPECT_FALSE(searcher.clone().gaveUp());
}

TEST(TextSearch, StopsAndReportsHowFarItCame)
{
    const Rope text(QString(u"ab"_s).repeated(200'000));
    std::stop_source stop;
    const auto searched = std::make_shared<std::atomic<qsizetype>>(0);
    TextSearcher searcher = searcherOf(u"a"_s, u""_s);
    qsizetype count = 0;
    const auto visit = [&](TextRange) { return ++count != 1000 || stop.request_stop(); };
    searcher.forEachHit(text, {0, text.length()}, visit, {.stop = stop.get_token(), .searched = searched});
    EXPECT_LT(count, 100'000);
    EXPECT_EQ(*searched, 2 * count);
}

TEST(TextSearch, SaysWhatIsWrong)
{
    const auto error = [](const QString &pattern) {
        return TextSearcher::compile(queryOf(pattern, u"rw"_s)).error().message.toStdString();
    };
    EXPECT_THAT(error(u"(a"_s), testing::AllOf(HasSubstr("“(a”"), HasSubstr("parenthesis")));
    EXPECT_THAT(error(u"a)|(b"_s), HasSubstr("parenthesis"));

    const TextSearcher searcher = searcherOf(u"(a)"_s, u"r"_s);
    for (const QString &bad : {u"$"_s, u"$a"_s, u"$2"_s, u"a\\"_s}) {
        EXPECT_FALSE(searcher.replacementTemplate(bad)) << bad.toStdString();
    }
    EXPECT_EQ(searcher.replacementTemplate(u"\\n\\t\\\\n\\$$1"_s), u"\n\t\\\\n\\$$1"_s);
    EXPECT_EQ(searcher.replacementTemplate(u"\\1\\0"_s), u"$1$0"_s);
    EXPECT_FALSE(searcher.replacementTemplate(u"\\2"_s));
    EXPECT_EQ(searcherOf(u"(a)"_s.repeated(10), u"r"_s).replacementTemplate(u"\\12"_s), u"$012"_s) << "the 2 is a digit";
    EXPECT_EQ(searcherOf(u"a"_s, u""_s).replacementTemplate(u"$9\\n"_s), u"$9\\n"_s) << "literally";
}

TEST(TextSearch, Replaces)
{
    struct Row {
        QString pattern;
        QString switches;
        QString typed;
        QString before;
        QString after;
    };
    const Row rows[] = {{u"a"_s, u""_s, u"$1\\"_s, u"aXA"_s, u"$1\\X$1\\"_s},
                        {u"(\\w+) (\\w+)"_s, u"r"_s, u"$2\\n$1"_s, u"one two, a b"_s, u"two\none, b\na"_s},
                        {u"(\\w+) (\\w+)"_s, u"r"_s, u"\\2 \\1"_s, u"one two"_s, u"two one"_s},
                        {u"\u00e9"_s, u""_s, u"ee"_s, u"e\u0301\u00e9e"_s, u"eeeee"_s},
                        {u"^"_s, u"r"_s, u"x"_s, u"a\nb"_s, u"a\nb"_s},
                        {u"[ \\t]+$"_s, u"r"_s, u""_s, u"a  \nb\t"_s, u"a\nb"_s}};
    for (const Row &row : rows) {
        TextSearcher searcher = searcherOf(row.pattern, row.switches);
        const QString replacement = *searcher.replacementTemplate(row.typed);
        for (const int copies : {1, 1500}) {
            const Rope text(QString(row.before + u'\n').repeated(copies));
            const TextReplacement all = searcher.replacementOfAll(text, {0, text.length()}, replacement);
            EXPECT_EQ(all.edits.applied(text).toString(), QString(row.after + u'\n').repeated(copies)) << row.pattern.toStdString();
        }
    }
    TextSearcher searcher = searcherOf(u"(?<=x)(a)"_s, u"r"_s);
    EXPECT_EQ(searcher.replacement(Rope(u"axa"_s), {2, 1}, u"<$1>"_s), u"<a>"_s);
    EXPECT_EQ(searcher.replacement(Rope(u"axa"_s), {0, 1}, u"<$1>"_s), std::nullopt) << "no hit there";
}

TEST(TextSearch, StaysInItsScope)
{
    const std::tuple<QString, QString, QString> rows[] = {
        {u"a"_s, u""_s, u"a {[a]b[a]} a"_s},
        {u"ab"_s, u""_s, u"a{b[ab]a}b"_s},
        {u"\u00e9"_s, u""_s, u"\u00e9{[e\u0301][\u00e9]e}\u0301"_s},
        {u"a+"_s, u"r"_s, u"a{[aa]b[aa]}aa"_s},
        {u"^.*$"_s, u"r"_s, u"{[one]\n[two]\nthr}ee"_s},
        {u"(?<=a)b(?=c)"_s, u"r"_s, u"a{[b]ca[b]}c"_s},
        {u"a"_s, u"w"_s, u"a{a [a] a}a"_s},
        {u"a"_s, u""_s, u"a{}a"_s},
    };
    for (const auto &[pattern, switches, written] : rows) {
        QString bare = QString(written).remove(u'[').remove(u']');
        const qsizetype from = bare.indexOf(u'{');
        const qsizetype end = bare.indexOf(u'}') - 1;
        const Rope text(bare.remove(u'{').remove(u'}'));
        TextSearcher whole = searcherOf(pattern, switches);
        whole.setScope(TextRange::between(from, end));
        TextSearcher searcher = whole.clone();
        const auto hits = hitsOf(searcher, text);
        EXPECT_EQ(marked(bare, hits), QString(written).remove(u'{').remove(u'}'));
        const auto last = searcher.lastHit(text, {0, text.length()});
        EXPECT_EQ(last, hits.empty() ? std::nullopt : std::optional(hits.back())) << written.toStdString();
        EXPECT_EQ(searcher.replacementOfAll(text, {0, text.length()}, u"x"_s).count, std::ssize(hits));
    }
}

TEST(TextSearch, KeepsTheCaseOfWhatItReplaces)
{
    const std::tuple<QString, QString, QString> rows[] = {
        {u"foo"_s, u"bar"_s, u"foo Foo FOO fOO → bar Bar BAR bar"_s},
        {u"foo"_s, u"iPhone"_s, u"foo Foo FOO fOo → iphone IPhone IPHONE iPhone"_s},
        {u"i"_s, u"\u00fcber"_s, u"i I → \u00fcber \u00dcber"_s},
        {u"ab-cd"_s, u"one_two"_s, u"ab-cd Ab-Cd AB-cd → one_two One_Two ONE_two"_s},
        {u"ab-cd"_s, u"«one"_s, u"Ab-cd AB-CD → «One «ONE"_s},
        {u"12"_s, u"Twelve"_s, u"12 → Twelve"_s},
        {u"\u00e9t\u00e9"_s, u"hiver"_s, u"E\u0301te\u0301 E\u0301TE\u0301 → Hiver HIVER"_s},
        {u"foo"_s, u""_s, u"FOO → "_s}};
    for (const auto &[pattern, typed, expected] : rows) {
        TextSearcher searcher = searcherOf(pattern, u""_s);
        const QStringList sides = expected.split(u" → "_s);
        const Rope text(sides[0]);
        const ReplacementTemplate format(*searcher.replacementTemplate(typed), ReplacementTemplate::LetterCase::asFound);
        EXPECT_EQ(searcher.replacementOfAll(text, {0, text.length()}, format).edits.applied(text).toString(), sides[1]);
        EXPECT_EQ(*searcher.replacement(text, *searcher.firstHit(text, {0, text.length()}), format), sides[1].section(u' ', 0, 0));
    }
}

} // namespace
