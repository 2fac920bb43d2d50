// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "RandomText.h"
#include "Text/TextEdits.h"
#include "Text/TextTreeCode.h"

#include <gtest/gtest.h>

#include <mutex>
#include <sstream>
#include <thread>

namespace {

template<class Tree>
struct BuilderOf {
    using Type = typename Tree::Builder;
};
template<>
struct BuilderOf<Rope> {
    using Type = RopeBuilder;
};

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

qsizetype leafLengthAt(const Rope &rope, qsizetype offset)
{
    return rope.chunkAt(offset).length;
}

template<int leafBytes, int fanout>
qsizetype leafLengthAt(const TextTree<leafBytes, fanout> &tree, qsizetype offset)
{
    return tree.leafAt(offset).length;
}

template<class Tree>
void expectSame(const Tree &tree, const std::u16string &model)
{
    ASSERT_TRUE(tree.checkInvariants());
    ASSERT_EQ(tree.length(), qsizetype(model.size()));
    ASSERT_EQ(escaped(textOf(tree)), escaped(model));
    for (qsizetype at = 0; at < tree.length(); at += leafLengthAt(tree, at))
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
        if (!splitsPair(model, offset))
            ASSERT_EQ(tree.characterStart(characters), offset) << "character " << characters;
        if (line + 1 < qsizetype(starts.size()) && starts[size_t(line) + 1] == offset)
            ++line;
        ASSERT_EQ(tree.lineAt(offset), line) << "offset " << offset;
    }
    for (size_t i = 0; i < starts.size(); ++i) {
        ASSERT_EQ(tree.lineStart(qsizetype(i)), starts[i]) << "line " << i;
        longest = std::max(longest, (i + 1 < starts.size() ? starts[i + 1] : qsizetype(model.size())) - starts[i]);
    }
    ASSERT_EQ(tree.longestLine(), longest);
    ASSERT_EQ(tree.lineStart(qsizetype(starts.size()) + 5), starts.back());
    ASSERT_EQ(tree.lineStart(-1), 0);
}

template<class Tree>
class RopeModel : public testing::Test {};
using Trees = testing::Types<TextTree<8, 4>, TextTree<16, 5>, TextTree<32, 8>, Rope>;

struct TreeNames {
    template<class Tree>
    static std::string GetName(int index)
    {
        static const char *const names[] = {"leaves8", "leaves16", "leaves32", "real"};
        return names[index];
    }
};
TYPED_TEST_SUITE(RopeModel, Trees, TreeNames);

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

void replaceAll(Rope &rope, const Changes &changes)
{
    std::vector<TextEdit> edits;
    for (const auto &[range, text] : changes)
        edits.push_back({range, Rope(QStringView(text))});
    rope.replace(edits);
}

/// The same random edits on a tree and on a string; a tenth of the steps keep a snapshot, which must outlive all later ones unchanged.
template<class Tree>
void runScript(quint32 seed, int steps, qsizetype unit)
{
    Random random(seed);
    std::ostringstream script;
    Tree tree;
    std::u16string model;
    std::vector<std::pair<Tree, std::u16string>> snapshots;
    for (int step = 0; step < steps; ++step) {
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
            script << "replace({" << from << "," << count << "}, slice({" << other.location << "," << other.length << "}));\n";
            const Tree part = tree.slice(other);
            const std::u16string partModel = model.substr(size_t(other.location), size_t(other.length));
            ASSERT_NO_FATAL_FAILURE(expectSame(part, partModel)) << script.str();
            tree.replace(range, part);
            model.replace(size_t(from), size_t(count), partModel);
            break;
        }
        case 1: {
            typename BuilderOf<Tree>::Type builder;
            for (size_t at = 0; at < text.size();) {
                const size_t portion = std::min(text.size() - at, size_t(1 + random.below(9 * unit)));
                builder.append(QStringView(text).mid(qsizetype(at), qsizetype(portion)));
                at += portion;
            }
            ASSERT_EQ(builder.length(), qsizetype(text.size()));
            script << "replace({" << from << "," << count << "}, built(" << escaped(text) << "));\n";
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
            for (const auto &[place, inserted] : changes)
                script << "{" << place.location << "," << place.length << "}, " << escaped(inserted) << "\n";
            replaceAll(tree, changes);
            for (auto change = changes.rbegin(); change != changes.rend(); ++change)
                model.replace(size_t(change->first.location), size_t(change->first.length), change->second);
            break;
        }
        default:
            script << "replace({" << from << "," << count << "}, " << escaped(text) << ");\n";
            tree.replace(range, QStringView(text));
            model.replace(size_t(from), size_t(count), text);
        }
        ASSERT_NO_FATAL_FAILURE(expectSame(tree, model)) << "seed " << seed << "\n" << script.str();
        if (random.oneIn(10))
            snapshots.emplace_back(tree, model);
    }
    for (const auto &[snapshot, text] : snapshots) {
        ASSERT_NO_FATAL_FAILURE(expectSame(snapshot, text)) << "seed " << seed << "\n" << script.str();
        ASSERT_TRUE(snapshot == Tree(QStringView(text)));
        ASSERT_EQ(snapshot == tree, text == model);
    }
}

TYPED_TEST(RopeModel, RandomEditsEqualThoseOfAString)
{
    for (quint32 seed = 1; seed <= 60; ++seed) {
        runScript<TypeParam>(seed, 120, 4);
        if (testing::Test::HasFatalFailure())
            return;
    }
}

TEST(Rope, RandomEditsOfTextsOfManyRealLeaves)
{
    for (quint32 seed = 1; seed <= 3 && !testing::Test::HasFatalFailure(); ++seed)
        runScript<Rope>(seed, 30, 500);
}

/// All places where a leaf may end, with the pairs of units that may not be torn or counted twice there.
TYPED_TEST(RopeModel, PairsAtLeafEdges)
{
    const std::u16string pairs[] = {u"\r\n", u"\U0001F600", u"\r\r", u"\n\r", u"\xd83d\xd83d"};
    for (const std::u16string &pair : pairs) {
        for (const char16_t filler : {u'a', u'\u4e2d'}) {
            for (qsizetype before = 0; before < 40; ++before) {
                std::u16string model = std::u16string(size_t(before), filler) + pair + std::u16string(30, u'b');
                TypeParam tree{QStringView(model)};
                ASSERT_NO_FATAL_FAILURE(expectSame(tree, model));
                // Torn by an insertion, joined again by deletions inside a leaf and by one that spans leaves.
                const std::u16string wedge(25, filler);
                tree.replace({before + 1, 0}, QStringView(wedge));
                model.insert(size_t(before) + 1, wedge);
                ASSERT_NO_FATAL_FAILURE(expectSame(tree, model));
                const TypeParam torn = tree;
                tree.replace({before + 1, 25}, QStringView());
                model.erase(size_t(before) + 1, 25);
                ASSERT_NO_FATAL_FAILURE(expectSame(tree, model)) << before << escaped(pair);
                tree = torn;
                for (int i = 25; i > 0; --i)
                    tree.replace({before + 1 + (i % 2 ? 0 : i - 1), 1}, QStringView());
                ASSERT_NO_FATAL_FAILURE(expectSame(tree, model)) << before << escaped(pair);
            }
        }
    }
}

std::u16string proseOf(qsizetype length)
{
    std::u16string text;
    while (qsizetype(text.size()) < length)
        text += u"The quick brown fox jumps over the lazy dog.\n";
    text.resize(size_t(length));
    return text;
}

/// Leaves as full as they get, the halves of a pair where they meet.
TYPED_TEST(RopeModel, HalvesOfAPairMeetBetweenFullLeaves)
{
    std::vector<size_t> lengths;
    for (const size_t fullest : {4, 8, 16, 2048}) {
        for (size_t length = fullest - 2; length <= fullest + 1; ++length)
            lengths.push_back(length);
    }
    for (const size_t before : lengths) {
        for (const size_t after : lengths) {
            const std::u16string left = std::u16string(before - 1, u'\u4e2d') + char16_t(0xd83d);
            const std::u16string right = char16_t(0xde00) + std::u16string(after - 1, u'\u4e2d');
            TypeParam tree{QStringView(left)};
            tree.replace({tree.length(), 0}, TypeParam(QStringView(right)));
            ASSERT_TRUE(tree.checkInvariants()) << before << " and " << after;
            ASSERT_TRUE(textOf(tree) == left + right);
        }
    }
}

TEST(Rope, LatinPortionsOfAnyLengthMakeFullNarrowLeaves)
{
    const std::u16string text = proseOf(100'000);
    const QByteArray bytes = QStringView(text).toLatin1();
    Random random(7);
    for (const qsizetype portion : {1, 4095, 4096, 65'536, 100'000}) {
        RopeBuilder builder;
        const bool hasWideStart = portion == 4095;
        if (hasWideStart)
            builder.append(u"\u4e2d");
        for (qsizetype at = 0; at < bytes.size(); at += portion)
            builder.appendLatin1(reinterpret_cast<const uchar *>(bytes.data()) + at, std::min(portion, qsizetype(bytes.size()) - at));
        const Rope rope = builder.build();
        EXPECT_EQ(builder.length(), 0);
        ASSERT_TRUE(rope.checkInvariants());
        ASSERT_EQ(textOf(rope), hasWideStart ? u"\u4e2d" + text : text);
        qsizetype chunks = 0;
        rope.forEachChunk({0, rope.length()}, [&](const Rope::Chunk &chunk) {
            EXPECT_EQ(chunk.narrow == nullptr, hasWideStart && chunk.location == 0);
            return ++chunks < 1000;
        });
        EXPECT_LE(chunks, rope.length() / 4096 + 2);
    }
}

TEST(Rope, ChunksAndCursorsReadWhatIsThere)
{
    Random random(3);
    const std::u16string text = proseOf(20'000) + random.text(20'000);
    const Rope rope{QStringView(text)};
    RopeCursor cursor(rope);
    for (qsizetype i = 0; i < rope.length(); i += 7)
        ASSERT_EQ(cursor.at(i), text[size_t(i)]);
    for (qsizetype i = rope.length() - 1; i >= 0; i -= 911)
        ASSERT_EQ(cursor.at(i), rope.at(i));
    const TextRange range{3, 30'001};
    std::u16string read;
    rope.forEachChunk(range, [&](const Rope::Chunk &chunk) {
        EXPECT_EQ(chunk.location, range.location + qsizetype(read.size()));
        for (qsizetype i = 0; i < chunk.length; ++i)
            read += chunk.at(i);
        return true;
    });
    EXPECT_EQ(read, text.substr(3, 30'001));
    EXPECT_EQ(rope.toString({100, 50}), QStringView(text).mid(100, 50));
}

/// Workers read and drop snapshots while the text goes on changing in place.
TEST(Rope, SnapshotsMayBeReadAndDroppedOnAnotherThread)
{
    Rope rope{QStringView(proseOf(50'000))};
    std::mutex mutex;
    Rope shared = rope;
    bool isDone = false;
    int wrong = 0;
    std::thread worker([&] {
        for (bool isLast = false; !isLast;) {
            Rope snapshot;
            {
                const std::lock_guard lock(mutex);
                snapshot = std::exchange(shared, Rope());
                isLast = isDone;
            }
            qsizetype breaks = 0;
            snapshot.forEachChunk({0, snapshot.length()}, [&breaks](const Rope::Chunk &chunk) {
                for (qsizetype i = 0; i < chunk.length; ++i)
                    breaks += chunk.at(i) == u'\n';
                return true;
            });
            wrong += breaks + 1 != snapshot.lineCount();
        }
    });
    Random random(5);
    for (int i = 0; i < 5000; ++i) {
        rope.replace({random.below(rope.length() - 10), random.below(10)}, QStringView(i % 3 ? u"a\n" : u"\u4e2d"));
        if (i % 16 == 0) {
            const std::lock_guard lock(mutex);
            shared = rope;
        }
    }
    {
        const std::lock_guard lock(mutex);
        isDone = true;
    }
    worker.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(rope.checkInvariants());
}

/// What an operation did to the trees.
TreeCounters costOf(const std::function<void()> &operation)
{
    const TreeCounters before = treeCounters;
    operation();
    return {treeCounters.leavesMade - before.leavesMade, treeCounters.nodesMade - before.nodesMade,
            treeCounters.leavesReached - before.leavesReached};
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
    EXPECT_TRUE(rope.checkInvariants());

    cost = costOf([&] { EXPECT_TRUE(snapshot.slice({10'000, 1}).length() == 1); });
    EXPECT_LE(cost.leavesMade, 1U);
    EXPECT_EQ(cost.nodesMade, 0U);
}

} // namespace
