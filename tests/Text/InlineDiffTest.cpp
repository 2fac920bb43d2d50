// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/InlineDiff.h"

#include <QString>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using InlineDiff::CharacterRange;

namespace {

/// The changed characters stand in [brackets].
struct SpanCase {
    const char *name;
    QString left;
    QString right;
};

QString marked(const QString &line, const std::vector<CharacterRange> &ranges)
{
    QString result = line;
    for (const CharacterRange range : ranges) {
        const TextRange units = InlineDiff::unitRange(line, range);
        result.insert(units.end(), u']').insert(units.location, u'[');
    }
    return result;
}

} // namespace

TEST(InlineDiff, TrimsWhatBothHaveAtTheirEnds)
{
    const SpanCase cases[] = {
        {"one character", u"[x]"_s, u"[Y]"_s},
        {"an insertion leaves the left alone", u"int x;"_s, u"int [max_]x;"_s},
        {"the prefix goes first", u"aa"_s, u"aa[a]"_s},
        {"so the end takes no more than is left", u"ab[ab]"_s, u"ab"_s},
        {"one stretch for two changes", u"a [b c d] e"_s, u"a [B c D] e"_s},
        {"a carriage return", u"line[\r]"_s, u"line"_s},
        {"both ways to write a letter", u"caf\u00e9 [1]"_s, u"cafe\u0301 [2]"_s},
        {"a mark makes another character", u"caf[e]!"_s, u"caf[e\u0301]!"_s},
        {"marks in another order", u"a\u0323\u0307[x]"_s, u"a\u0307\u0323[y]"_s},
        {"a mark without a letter", u"[\u0301]a"_s, u"a"_s},
        {"pairs are not split", u"[\U0001F600]z"_s, u"[\U0001F601]z"_s},
        {"a family is one", u"\u4e2d[\U0001F469\u200d\U0001F467]\u4e2d"_s, u"\u4e2d[\U0001F469]\u4e2d"_s},
        {"half a pair", u"a[\xd83d]b"_s, u"ab"_s},
    };
    for (const SpanCase &row : cases) {
        const QString old = QString(row.left).remove(u'[').remove(u']');
        const QString newer = QString(row.right).remove(u'[').remove(u']');
        const InlineDiff::Spans spans = InlineDiff::spans(old, newer);
        EXPECT_EQ(marked(old, spans.left), row.left) << row.name;
        EXPECT_EQ(marked(newer, spans.right), row.right) << row.name;
    }
}

TEST(InlineDiff, LooksIntoLinesOfUpTo2000Characters)
{
    const QString letters(2000, u'a');
    EXPECT_EQ(InlineDiff::spans(letters, u"aa"_s), (InlineDiff::Spans{{{2, 2000}}, {}}));
    EXPECT_EQ(InlineDiff::spans(letters + u'a', u"aa"_s), (InlineDiff::Spans{{{0, 2001}}, {{0, 2}}}));
    EXPECT_EQ(InlineDiff::spans(u""_s, letters + u'a'), (InlineDiff::Spans{{}, {{0, 2001}}}));
    // More units than that are still few characters.
    EXPECT_EQ(InlineDiff::spans(u"\U0001F600"_s.repeated(1999) + u'b', u"\U0001F600"_s.repeated(2000)),
              (InlineDiff::Spans{{{1999, 2000}}, {{1999, 2000}}}));
    EXPECT_EQ(InlineDiff::spans(u"e\u0301"_s.repeated(2001), u"e"_s), (InlineDiff::Spans{{{0, 2001}}, {{0, 1}}}));
}
