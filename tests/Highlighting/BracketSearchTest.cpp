// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/BracketSearch.h"

#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/ScopedText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// C, coloured and searched as a whole.
struct Searched {
    explicit Searched(const QString &code, TextRange within = {0, 1 << 30})
        : text(Rope(code), *LanguageRegistry::withID(u"c")),
          search(
              text.text(), Language::plainText().bracketPairs(),
              [this](TextRange range, const auto &visit) { text.forEachScope(range, visit); }, within)
    {}
    ScopedText text;
    BracketSearch search;
};

} // namespace

TEST(BracketSearch, FindsThePartnerAmongItsOwnKind)
{
    // The bracket before "|" or behind it, and its partner "^"; none where there is no "^".
    for (const QString &marked : {u"|(a[(b)]^)"_s, u"(|a[(b)]^)"_s, u"^(a[(b)])|"_s, u"(a^[(b)|])"_s, u"|{ (] ^}"_s, u"|(("_s, u"a|]"_s,
                                  u"if |(a == ')' /* ) */ ^) // )"_s, u"|{ \"}}\" ^}"_s, u"x = \"a |(b\" ) + \"c ^)\";"_s,
                                  u"/* |( */ ) // ^)"_s, u"\"\\\"|( \\\\ ^)\""_s}) {
        QString code = marked;
        const qsizetype caretMark = code.indexOf(u'|');
        const qsizetype partnerMark = code.indexOf(u'^');
        code.remove(u'|').remove(u'^');
        Searched c(code);
        const auto bracket = c.search.beside(caretMark - (partnerMark >= 0 && partnerMark < caretMark ? 1 : 0));
        ASSERT_TRUE(bracket) << marked.toStdString();
        const qsizetype expected = partnerMark < 0 ? -1 : partnerMark - (caretMark < partnerMark ? 1 : 0);
        EXPECT_EQ(c.search.partnerOf(*bracket).value_or(-1), expected) << marked.toStdString();
    }
}

TEST(BracketSearch, GoesAsFarAsItMay)
{
    const QString filling = u"int a(int b);\n\")\"; /* ) */\n"_s.repeated(2000);
    const QString code = u"("_s + filling + u")"_s;
    EXPECT_EQ(Searched(code).search.partnerOf(0), code.size() - 1);
    EXPECT_EQ(Searched(code).search.partnerOf(code.size() - 1), 0);
    EXPECT_FALSE(Searched(code, {0, code.size() - 1}).search.partnerOf(0));
    EXPECT_FALSE(Searched(code, {1, code.size()}).search.partnerOf(code.size() - 1));
    EXPECT_EQ(Searched(code).search.around({code.size() / 2, 0}), (TextRange{0, code.size()}));
}

TEST(BracketSearch, FindsThePairAroundASelection)
{
    const QString code = u"{ f(a, \"(x)\", [b]); } )"_s;
    const auto around = [&code](qsizetype from, qsizetype length) {
        const auto found = Searched(code).search.around({from, length});
        return found ? code.sliced(found->location, found->length) : u"none"_s;
    };
    EXPECT_EQ(around(code.indexOf(u'b'), 1), u"[b]"_s);
    EXPECT_EQ(around(code.indexOf(u"[b]"_s), 3), u"(a, \"(x)\", [b])"_s);
    EXPECT_EQ(around(code.indexOf(u'x'), 0), u"(x)"_s);
    EXPECT_EQ(around(code.indexOf(u'a'), 3), u"(a, \"(x)\", [b])"_s);
    EXPECT_EQ(around(2, 1), u"{ f(a, \"(x)\", [b]); }"_s);
    EXPECT_EQ(around(0, 3), u"none"_s);
}
