// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextEdits.h"
#include "RandomText.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

/// Edits as a list of units: for each of the text before whether it stays, and what is inserted before it (the last: at the end).
struct Model {
    std::u16string before;
    std::vector<bool> stays;
    std::vector<std::u16string> inserted;

    explicit Model(const std::u16string &text) : before(text), stays(text.size(), true), inserted(text.size() + 1) {}

    [[nodiscard]] std::u16string after() const
    {
        std::u16string text;
        for (size_t i = 0; i <= before.size(); ++i) {
            text += inserted[i];
            if (i < before.size() && stays[i])
                text += before[i];
        }
        return text;
    }
    /// From the nearest units on both sides that stay.
    [[nodiscard]] qsizetype mapped(size_t offset, Bias bias) const
    {
        size_t left = offset;
        while (left > 0 && !stays[left - 1])
            --left;
        size_t right = offset;
        while (right < before.size() && !stays[right])
            ++right;
        qsizetype start = 0; // behind the unit that stays on the left
        for (size_t i = 0; i < left; ++i)
            start += qsizetype(inserted[i].size()) + (stays[i] ? 1 : 0);
        qsizetype end = start;
        for (size_t i = left; i <= right; ++i)
            end += qsizetype(inserted[i].size());
        if ((left == offset) != (right == offset))
            return left == offset ? start : end;
        return bias == Bias::before ? start : end;
    }
};

TextEdits randomEdits(Random &random, Model &model)
{
    TextEdits edits;
    const auto length = qsizetype(model.before.size());
    for (qsizetype from = random.below(8); from <= length; from += random.below(random.oneIn(3) ? 4 : 31)) {
        const qsizetype end = random.oneIn(3) ? from : std::min(length, from + random.below(random.oneIn(10) ? 40 : 5));
        const std::u16string text = random.oneIn(3) ? std::u16string() : random.text(random.below(5));
        edits.add(TextRange::between(from, end), Rope(text));
        // Text in place of what goes stands where that began.
        model.inserted[size_t(from)] += text;
        std::fill(model.stays.begin() + from, model.stays.begin() + end, false);
        from = end;
        if (random.oneIn(40))
            break;
    }
    return edits;
}

TEST(TextEdits, RandomEditsDoWhatTheyWouldOneByOne)
{
    for (quint32 seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        Model model(random.text(random.below(200)));
        const Rope before{QStringView(model.before)};
        const TextEdits edits = randomEdits(random, model);
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + escaped(model.before));
        const Rope after = edits.applied(before);
        ASSERT_EQ(escaped(after.toString().toStdU16String()), escaped(model.after()));
        ASSERT_TRUE(after.checkInvariants());
        ASSERT_EQ(edits.growth(), after.length() - before.length());
        const TextEdits inverse = edits.inverse(before);
        ASSERT_EQ(inverse.applied(after), before);
        ASSERT_EQ(inverse.count(), edits.count());
        for (size_t i = 0; i < edits.count(); ++i) {
            ASSERT_EQ(after.slice(edits.newRange(i)), edits[i].text);
            ASSERT_TRUE(i == 0 || edits[i - 1].range.end() < edits[i].range.location);
        }
        for (size_t offset = 0; offset <= model.before.size(); ++offset) {
            for (const Bias bias : {Bias::before, Bias::after})
                ASSERT_EQ(edits.mapped(qsizetype(offset), bias), model.mapped(offset, bias)) << offset;
        }
        Model then(model.after());
        const TextEdits next = randomEdits(random, then);
        const TextEdits both = edits.followedBy(next);
        ASSERT_EQ(escaped(both.applied(before).toString().toStdU16String()), escaped(then.after()));
        ASSERT_EQ(next.inverse(after).followedBy(inverse).applied(next.applied(after)), before);
        ASSERT_EQ(TextEdits::difference(before, after).applied(before), after);
    }
}

TEST(TextEdits, ADifferencePartsNoPair)
{
    // The first shares the high half, the second the low one.
    for (const QString &other : {u"a\U0001F601b"_s, u"a\U0001FA00b"_s})
        EXPECT_EQ(TextEdits::difference(Rope(u"a\U0001F600b"), Rope(other))[0].range, (TextRange{1, 2}));
}

TEST(TextEdits, RangesKeepOutWhatIsInsertedAtTheirEnds)
{
    TextEdits edits({2, 0}, u"abc");
    edits.add({5, 0}, Rope(u"d"));
    EXPECT_EQ(edits.mapped(TextRange{2, 3}), (TextRange{5, 3}));
    EXPECT_EQ(edits.mapped(TextRange{2, 0}), (TextRange{5, 0}));
}

TEST(TextEdits, APlaceInReplacedLinesKeepsItsLineAndColumn)
{
    const Rope before(u"one\ntwo two\nthree\nfour");
    const TextEdits edits({1, 19}, u"x\nTWO\nTHREE THREE\nF");
    const Rope after = edits.applied(before);
    const TextChange change{edits, before, after};
    const auto placeAfter = [&](qsizetype offset) {
        const qsizetype line = after.lineAt(change.mapped(offset, Bias::before));
        return std::pair(line, change.mapped(offset, Bias::before) - after.lineStart(line));
    };
    EXPECT_EQ(placeAfter(14), std::pair(qsizetype(2), qsizetype(2)));
    EXPECT_EQ(placeAfter(10), std::pair(qsizetype(1), qsizetype(3))) << "its line is shorter now";
    EXPECT_EQ(placeAfter(22), std::pair(qsizetype(3), qsizetype(3)));
}

} // namespace
