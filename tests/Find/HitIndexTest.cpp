// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/HitIndex.h"

#include "Text/RandomText.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// In one line of overlapping candidates every hit depends on all before it.
TEST(HitIndex, FindsEveryHitOfTheListAgain)
{
    const QString run = QString(50'000, u'a');
    const QString mixed = QString::fromStdU16String(Random(7).text(60'000));
    const std::vector<std::pair<SearchQuery, QString>> cases{
        {{.pattern = u"aaa"_s}, run + u'b' + run},
        {{.pattern = u"a+b"_s, .isRegularExpression = true}, QString(20'000, u'a') + u'b' + QString(50'000, u'.')},
        {{.pattern = u"\"[^\"]*\""_s, .isRegularExpression = true}, QString(u"say \"one\ntwo\" and\n"_s).repeated(4000)},
        {{.pattern = u"x"_s}, mixed},
        {{.pattern = u"none"_s}, mixed},
        {{.pattern = u"a"_s}, QString()}};
    for (const auto &[query, string] : cases) {
        TextSearcher searcher = *TextSearcher::compile(query);
        const Rope text(string);
        std::vector<TextRange> hits;
        searcher.forEachHit(text, {0, text.length()}, [&hits](TextRange hit) {
            hits.push_back(hit);
            return true;
        });
        const HitIndex index = HitIndex::make(searcher, text);
        const std::string name = query.pattern.toStdString();
        // Each hit is in one stretch, that in which its piece begins.
        const qsizetype piece = text.length() / HitIndex::mostPieces + 1;
        for (qsizetype from = 0; from < text.length(); from += 997) {
            const TextRange stretch{from, 997};
            const auto first = std::ranges::lower_bound(hits, (from + piece - 1) / piece * piece, {}, &TextRange::location);
            const bool hasHits = first != hits.end() && first->location / piece * piece < stretch.end();
            ASSERT_EQ(index.mayHaveHitsIn(stretch), hasHits) << name << " from " << from;
        }
        EXPECT_FALSE(index.mayHaveHitsIn({text.length() + 2 * piece, 10})) << "a text that was longer";
        ASSERT_EQ(index.count(), qsizetype(hits.size())) << name;
        Random random(3);
        for (int i = 0; i < 40; ++i) {
            const qsizetype offset = random.below(text.length() + 1);
            const auto behind = std::ranges::lower_bound(hits, offset, {}, &TextRange::location);
            ASSERT_EQ(index.next(offset, searcher, text), behind == hits.end() ? std::nullopt : std::optional(*behind))
                << name << " at " << offset;
            ASSERT_EQ(index.previous(offset, searcher, text), behind == hits.begin() ? std::nullopt : std::optional(*std::prev(behind)))
                << name << " at " << offset;
            if (behind != hits.end()) {
                ASSERT_EQ(index.indexOf(*behind, searcher, text), behind - hits.begin()) << name << " at " << offset;
                ASSERT_EQ(index.indexOf({behind->location, behind->length + 1}, searcher, text), std::nullopt) << name;
            }
        }
    }
}

} // namespace
