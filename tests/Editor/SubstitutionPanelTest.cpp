// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SubstitutionPanel.h"

#include "Text/Rope.h"
#include "Vim/VimSubstituteJob.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(SubstitutionPanel, HasARowForEachLineWithHits)
{
    const Rope text(u"one two\r\nnothing\n\tone\none "_s + QString(300, u'x') + u"one"_s + QString(300, u'y'));
    const std::vector<VimSubstituteHit> hits = {{{0, 3}, u"1"_s}, {{4, 3}, u"2\n3"_s}, {{18, 4}, u"4 "_s}, {{326, 3}, u"5"_s}};
    using Row = SubstitutionPanel::Row;
    const std::vector<Row> rows = {
        {LineNumber(1), u"1 2↵3"_s, {{0, 1}, {2, 3}}},
        {LineNumber(3), u" 4 one "_s + QString(200, u'x').first(196), {{1, 2}}},
        {LineNumber(4), u"…"_s + QString(60, u'x') + u'5' + QString(200, u'y'), {{61, 1}}},
    };
    EXPECT_EQ(SubstitutionPanel::rows(text, hits, 2).size(), 2);
    const auto got = SubstitutionPanel::rows(text, hits, 9);
    ASSERT_EQ(got.size(), 3);
    for (size_t row = 0; row < 3; ++row) {
        EXPECT_EQ(got[row].text, rows[row].text) << row;
        EXPECT_EQ(got[row], rows[row]) << row;
    }
}
