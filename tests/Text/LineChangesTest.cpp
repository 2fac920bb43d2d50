// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineChanges.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace {

[[nodiscard]] std::vector<LineChange> changes(const Rope &base, const Rope &text)
{
    return LineChanges::of(*LineDiff::compare(base, text));
}

/// A letter for each kind, and the lines' numbers in the text from 0.
[[nodiscard]] QString described(const std::vector<LineChange> &found, const Rope &text)
{
    QString result;
    for (const LineChange &change : found) {
        result +=
            u"%1%2-%3 "_s.arg(QChar(u"amd"[int(change.kind)])).arg(text.lineAt(change.range.location)).arg(text.lineAt(change.range.end()));
    }
    return result.trimmed();
}

} // namespace

TEST(LineChangesTest, TellsAddedFromModifiedAndMissingLines)
{
    const Rope base(u"one\ntwo\nthree\nfour\n");
    const auto found = [&base](QStringView text) { return described(changes(base, Rope(text)), Rope(text)); };
    EXPECT_EQ(found(u"one\ntwo\nthree\nfour\n"), u""_s);
    EXPECT_EQ(found(u"one\nnew\ntwo\nthree\n4\nfive\n"), u"a1-2 m4-6"_s);
    EXPECT_EQ(found(u"two\nfour\n"), u"d0-0 d1-1"_s);
    EXPECT_EQ(found(u"one\ntwo\nthree"), u"d2-2"_s) << "at the end, behind the last line";
}

TEST(LineChangesTest, StaysOnItsLinesWhileTheTextIsEdited)
{
    const Rope base(u"a\nb\nc\nd\n");
    const Rope text(u"a\nx\nc\n");
    const auto after = [&](TextRange range, QStringView typed) {
        auto found = changes(base, text);
        const TextEdits edits(range, typed);
        const bool hasOthers = LineChanges::map(found, edits);
        return described(found, edits.applied(text)) + (hasOthers ? u", others"_s : QString());
    };
    EXPECT_EQ(after({0, 0}, u"1\n2\n"), u"m3-4 d5-5"_s);
    EXPECT_EQ(after({2, 0}, u"letter "), u"m1-2 d3-3"_s) << "before the line's first letter";
    EXPECT_EQ(after({4, 0}, u"below\n"), u"m1-2 d4-4"_s);
    EXPECT_EQ(after({2, 2}, u""), u"d1-1 d2-2, others"_s) << "nothing is left of the modified line";
}

TEST(LineChangesTest, FindsThemByKindAndPlace)
{
    const Rope base(u"a\nb\nc\nd\ne\n");
    const auto found = changes(base, Rope(u"1\n2\na\nX\nc\ne\n")); // a0-4, m6-8, d10
    const auto first = [&](LineChange::Kind kind, qsizetype start, qsizetype end) {
        return LineChanges::firstIn(found, kind, TextRange::between(start, end)).has_value();
    };
    ASSERT_EQ(found.size(), 3U);
    EXPECT_TRUE(first(LineChange::Kind::added, 0, 1));
    EXPECT_TRUE(first(LineChange::Kind::added, 3, 12));
    EXPECT_FALSE(first(LineChange::Kind::added, 4, 12));
    EXPECT_TRUE(first(LineChange::Kind::modified, 0, 7));
    EXPECT_FALSE(first(LineChange::Kind::modified, 0, 6));
    EXPECT_TRUE(first(LineChange::Kind::deleted, 10, 11)) << "it has no length, and one place";
    EXPECT_FALSE(first(LineChange::Kind::deleted, 0, 10));
    EXPECT_FALSE(first(LineChange::Kind::deleted, 11, 12));
}

TEST(LineChangesTest, GoesFromOneToTheNext)
{
    const Rope text(u"new\na\nb\nx\ny\nz\ne\n");
    const auto found = changes(Rope(u"a\nb\nc\nd\ne\nf\n"), text); // lines 0 and 3 … 5, and below 6
    const auto index = [](std::optional<size_t> place) { return place ? int(*place) : -1; };
    const auto next = [&](qsizetype line) { return index(LineChanges::next(found, text.lineStart(line))); };
    const auto previous = [&](qsizetype line) { return index(LineChanges::previous(found, text.lineStart(line))); };
    EXPECT_EQ(next(0), 1);
    EXPECT_EQ(next(4), 2);
    EXPECT_EQ(next(7), -1);
    EXPECT_EQ(previous(7), 1);
    EXPECT_EQ(previous(5), 0) << "not to the first line of the same change";
    EXPECT_EQ(previous(0), -1);
    const auto at = [&](qsizetype line) { return index(LineChanges::at(found, text.lineStart(line), text.lineStart(line))); };
    EXPECT_EQ(at(0), 0);
    EXPECT_EQ(at(1), -1);
    EXPECT_EQ(at(4), 1);
    EXPECT_EQ(at(7), 2);
    EXPECT_EQ(index(LineChanges::at(found, text.lineStart(6), text.length())), 2);
}

TEST(LineChangesTest, RestoresOneChangeAndNoOther)
{
    std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same each time
    for (int round = 0; round < 2000; ++round) {
        const auto lines = [&random] {
            QString text;
            for (auto count = random() % 6; count > 0; --count) {
                text += QChar(char16_t(u'a' + random() % 3)) + u"\n"_s;
            }
            return random() % 3 == 0 ? text.chopped(std::min<qsizetype>(text.size(), 1)) : text;
        };
        const Rope base(lines());
        const Rope text(lines());
        const auto before = changes(base, text);
        for (size_t index = 0; index < before.size(); ++index) {
            const Rope restored = LineChanges::restoring(before[index], text, base).applied(text);
            ASSERT_LT(changes(base, restored).size(), before.size()) << qPrintable(base.toString()) << "--\n"
                                                                     << qPrintable(text.toString()) << "--\n"
                                                                     << qPrintable(restored.toString());
        }
        Rope all = text;
        for (size_t index = before.size(); index-- > 0;) {
            all = LineChanges::restoring(before[index], all, base).applied(all);
        }
        const bool endsAlike =
            !before.empty() && before.back().range.end() == text.length() && before.back().baseRange.end() == base.length();
        ASSERT_TRUE(changes(base, all).empty());
        ASSERT_TRUE(!endsAlike || all == base) << "with the break at the end, or without";
    }
}
