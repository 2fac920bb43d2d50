// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/Rope.h"
#include "RandomText.h"
#include "Text/TextTreeCode.h"

#include <gtest/gtest.h>

#include <future>

namespace {

template<class Tree>
std::u16string textOf(const Tree &tree)
{
    std::u16string text(size_t(tree.length()), u'\0');
    tree.copy({0, tree.length()}, text.data());
    return text;
}

std::vector<qsizetype> lineStartsOf(const std::u16string &text)
{
    std::vector<qsizetype> starts{0};
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' || (text[i] == u'\r' && (i + 1 == text.size() || text[i + 1] != u'\n')))
            starts.push_back(qsizetype(i) + 1);
    }
    return starts;
}

bool splitsPair(const std::u16string &text, qsizetype offset)
{
    return offset > 0 && offset < qsizetype(text.size()) && QChar::isHighSurrogate(text[size_t(offset) - 1]) &&
           QChar::isLowSurrogate(text[size_t(offset)]);
}

template<class Tree>
void expectSame(const Tree &tree, const std::u16string &model)
{
    ASSERT_TRUE(tree.checkInvariants());
    ASSERT_EQ(tree.length(), qsizetype(model.size()));
    ASSERT_EQ(escaped(textOf(tree)), escaped(model));
    for (qsizetype at = 0, inLeaf = 0; at < tree.length(); at += tree.leafAt(inLeaf = at).length)
        ASSERT_FALSE(splitsPair(model, at)) << at;
    const std::vector<qsizetype> starts = lineStartsOf(model);
    ASSERT_EQ(tree.lineCount(), qsizetype(starts.size()));
    qsizetype longest = 0;
    qsizetype line = 0;
    qsizetype characters = 0;
    for (qsizetype offset = 0; offset <= qsizetype(model.size()); ++offset) {
        if (offset > 0 && !splitsPair(model, offset - 1))
            ++characters;
        ASSERT_EQ(tree.characterAt(offset), characters) << "offset " << offset;
        if (!splitsPair(model, offset)) {
            ASSERT_EQ(tree.characterStart(characters), offset) << "character " << characters;
        }
        if (line + 1 < qsizetype(starts.size()) && starts[size_t(line) + 1] == offset)
            ++line;
        ASSERT_EQ(tree.lineAt(offset), line) << "offset " << offset;
    }
    for (size_t i = 0; i < starts.size(); ++i) {
        ASSERT_EQ(tree.lineStart(qsizetype(i)), starts[i]) << "line " << i;
        longest = std::max(longest, (i + 1 < starts.size() ? starts[i + 1] : qsizetype(model.size())) - starts[i]);
    }
    ASSERT_EQ(tree.longestLine(), longest);
}

template<class Tree>
class RopeModel : public testing::Test {};
using RealTree = TextTree<4096, 32>;
using Trees = testing::Types<TextTree<8, 4>, TextTree<16, 5>, TextTree<32, 8>, RealTree>;
TYPED_TEST_SUITE(RopeModel, Trees);

using Changes = std::vector<std::pair<TextRange, std::u16string>>;

template<class Tree>
void replaceAll(Tree &tree, const Changes &changes)
{
    std::vector<Tree> texts;
    for (const auto &change : changes)
        texts.emplace_back(QStringView(change.second));
    tree.replace(
        changes.size(), [&changes](size_t i) { return changes[i].first; }, [&texts](size_t i) -> const Tree & { return texts[i]; });
}

/// The same random edits on a tree and on a string; a tenth of the steps keep a snapshot, which must outlive all later ones unchanged.
template<class Tree>
void runScript(quint32 seed, int steps, qsizetype unit)
{
    Random random(seed);
    Tree tree;
    std::u16string model;
    std::vector<std::pair<Tree, std::u16string>> snapshots;
    for (int step = 0; step < steps; ++step) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
        const qsizetype length = qsizetype(model.size());
        qsizetype from = random.below(length + 1);
        qsizetype count = std::min(random.below(random.oneIn(4) ? 12 * unit : 3), length - from);
        if (length > 60 * unit)
            count = std::min(40 * unit, length - from);
        const std::u16string text = random.text(random.below(random.oneIn(5) ? 20 * unit : 4));
        const TextRange range{from, count};
        switch (random.below(6)) {
        case 0: { // A part of the text itself goes elsewhere, with its leaves.
            const qsizetype otherFrom = random.below(length + 1);
            const TextRange other{otherFrom, random.below(length - otherFrom + 1)};
            const Tree part = tree.slice(other);
            const std::u16string partModel = model.substr(size_t(other.location), size_t(other.length));
            ASSERT_NO_FATAL_FAILURE(expectSame(part, partModel));
            tree.replace(range, part);
            model.replace(size_t(from), size_t(count), partModel);
            break;
        }
        case 1: {
            typename Tree::Builder builder;
            while (builder.length() < qsizetype(text.size()))
                builder.append(QStringView(text).mid(builder.length(), 1 + random.below(9 * unit)));
            tree.replace(range, builder.build());
            model.replace(size_t(from), size_t(count), text);
            break;
        }
        case 2: { // In many places at once.
            Changes changes;
            const qsizetype farthest = random.oneIn(2) ? 3 : 3 * unit;
            for (qsizetype at = random.below(farthest); at <= length; at += 1 + random.below(farthest)) {
                const TextRange place{at, std::min(random.below(random.oneIn(6) ? 5 * unit : 3), length - at)};
                changes.emplace_back(place, random.text(random.below(random.oneIn(8) ? 4 * unit : 3)));
                at = place.end();
            }
            replaceAll(tree, changes);
            for (auto change = changes.rbegin(); change != changes.rend(); ++change)
                model.replace(size_t(change->first.location), size_t(change->first.length), change->second);
            break;
        }
        default:
            tree.replace(range, QStringView(text));
            model.replace(size_t(from), size_t(count), text);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(tree, model));
        if (random.oneIn(10))
            snapshots.emplace_back(tree, model);
    }
    for (const auto &[snapshot, text] : snapshots) {
        ASSERT_NO_FATAL_FAILURE(expectSame(snapshot, text));
        ASSERT_TRUE(snapshot == Tree(QStringView(text)));
        ASSERT_EQ(snapshot == tree, text == model);
    }
}

TYPED_TEST(RopeModel, RandomEditsEqualThoseOfAString)
{
    for (quint32 seed = 1; seed <= 60 && !testing::Test::HasFatalFailure(); ++seed)
        runScript<TypeParam>(seed, 120, 4);
}

TEST(Rope, RandomEditsOfTextsOfManyRealLeaves)
{
    for (quint32 seed = 1; seed <= 3 && !testing::Test::HasFatalFailure(); ++seed)
        runScript<RealTree>(seed, 30, 500);
}

std::u16string proseOf(qsizetype length)
{
    std::u16string text;
    while (qsizetype(text.size()) < length)
        text += u"The quick brown fox jumps over the lazy dog.\n";
    text.resize(size_t(length));
    return text;
}

TEST(Rope, LatinPortionsOfAnyLengthMakeFullNarrowLeaves)
{
    const std::u16string text = proseOf(100'000);
    std::string bytes(text.begin(), text.end());
    for (const size_t portion : std::initializer_list<size_t>{1, 4095, 4096, 65'536, 100'000}) {
        RopeBuilder builder;
        for (size_t at = 0; at < bytes.size(); at += portion)
            builder.appendLatin1(reinterpret_cast<const uchar *>(&bytes[at]), qsizetype(std::min(portion, bytes.size() - at)));
        const Rope rope = builder.build();
        std::u16string read;
        qsizetype chunks = 0;
        rope.forEachChunk({0, rope.length()}, [&](const Rope::Chunk &chunk) {
            EXPECT_EQ(chunk.location, qsizetype(read.size()));
            read.append(chunk.narrow, chunk.narrow + chunk.length);
            return ++chunks < 1000;
        });
        ASSERT_EQ(read, text);
        EXPECT_LE(chunks, rope.length() / 4096 + 2);
    }
}

TEST(Rope, CursorsReadWhatIsThere)
{
    const std::u16string text = proseOf(20'000) + Random(3).text(20'000);
    const Rope rope{QStringView(text)};
    RopeCursor cursor(rope);
    for (qsizetype i = 0; i < rope.length(); i += 7)
        ASSERT_EQ(cursor.at(i), text[size_t(i)]);
    for (qsizetype i = rope.length() - 1; i >= 0; i -= 911)
        ASSERT_EQ(cursor.at(i), text[size_t(i)]);
}

/// Workers read and drop snapshots while the text goes on changing in place.
TEST(Rope, SnapshotsMayBeReadAndDroppedOnAnotherThread)
{
    Rope rope{QStringView(proseOf(50'000))};
    Random random(5);
    std::future<bool> reading;
    for (int i = 0; i < 5000; ++i) {
        rope.replace({random.below(rope.length() - 10), random.below(10)}, QStringView(i % 3 ? u"a\n" : u"\u4e2d"));
        if (i % 16 != 0)
            continue;
        EXPECT_TRUE(!reading.valid() || reading.get());
        reading = std::async(std::launch::async, [snapshot = rope]() mutable {
            const Rope read = std::exchange(snapshot, Rope());
            return std::ranges::count(textOf(read), u'\n') + 1 == read.lineCount();
        });
    }
    EXPECT_TRUE(reading.get());
    EXPECT_TRUE(rope.checkInvariants());
}

/// What an operation did to the trees.
TreeCounters costOf(const std::function<void()> &operation)
{
    treeCounters = {};
    operation();
    return treeCounters;
}

TEST(Rope, EditsCostAFewLeavesWhateverTheLength)
{
    const std::u16string text = proseOf(5'000'000);
    Rope rope{QStringView(text)};
    const QStringView letter(u"x");
    rope.replace({2'500'000, 0}, letter); // Splits a leaf that loading filled, and leaves room in it.
    TreeCounters cost = costOf([&] {
        for (qsizetype i = 0; i < 100; ++i)
            rope.replace({2'500'000 + i, 0}, letter);
    });
    EXPECT_LE(cost.leavesMade, 1U);
    EXPECT_EQ(cost.nodesMade, 0U);
    EXPECT_LE(cost.leavesReached, 200U);

    Rope snapshot = rope;
    cost = costOf([&] { rope.replace({2'500'000, 1}, letter); });
    EXPECT_LE(cost.leavesMade, 1U);
    EXPECT_LE(cost.nodesMade, 4U);

    const Rope other{QStringView(text)};
    cost = costOf([&] {
        rope.replace({1'000'000, 2'000'000}, other);
        rope = rope.slice({500'000, 4'000'000});
    });
    EXPECT_LE(cost.leavesMade, 12U);
    EXPECT_LE(cost.nodesMade, 80U);
}

} // namespace
