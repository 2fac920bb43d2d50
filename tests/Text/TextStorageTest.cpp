// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextStorage.h"
#include "RandomText.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace {

using namespace Qt::StringLiterals;

std::set<qsizetype> lineStartsOf(const std::u16string &text)
{
    std::set<qsizetype> starts;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n' || (text[i] == u'\r' && (i + 1 == text.size() || text[i + 1] != u'\n')))
            starts.insert(qsizetype(i) + 1);
    }
    return starts;
}

qsizetype countBetween(const std::set<qsizetype> &starts, qsizetype after, qsizetype upTo)
{
    return std::distance(starts.upper_bound(after), starts.upper_bound(upTo));
}

/// Ascending, apart, giving `now` when applied to `before`, with the lines lost and gained.
void expectLeadsTo(const TextChangeList &changes, const std::u16string &before, const std::u16string &now)
{
    const std::set<qsizetype> oldStarts = lineStartsOf(before);
    const std::set<qsizetype> newStarts = lineStartsOf(now);
    std::u16string text = before;
    qsizetype shift = 0;
    qsizetype end = -1;
    for (const TextChange &change : changes) {
        ASSERT_GT(change.position, end);
        end = change.position + change.inserted;
        text.replace(size_t(change.position), size_t(change.removed), now, size_t(change.position), size_t(change.inserted));
        const qsizetype old = change.position - shift;
        shift += change.inserted - change.removed;
        const bool hadStart = oldStarts.contains(old);
        const bool hasStart = newStarts.contains(change.position);
        ASSERT_EQ(change.removedLines, countBetween(oldStarts, old, old + change.removed) + (hadStart && !hasStart));
        ASSERT_EQ(change.insertedLines, countBetween(newStarts, change.position, end) + (hasStart && !hadStart));
    }
    ASSERT_EQ(escaped(text), escaped(now));
}

/// Where the unit of the text before is in the text after; -1 when it was removed.
std::vector<qsizetype> survivors(const TextChangeList &changes, qsizetype oldLength)
{
    std::vector<qsizetype> places;
    qsizetype place = 0;
    for (const TextChange &change : changes) {
        while (place < change.position)
            places.push_back(place++);
        places.insert(places.end(), size_t(change.removed), -1);
        place += change.inserted;
    }
    while (qsizetype(places.size()) < oldLength)
        places.push_back(place++);
    return places;
}

/// From the units on both sides of the offset and what became of them.
qsizetype mapByNeighbours(const std::vector<qsizetype> &places, qsizetype newLength, qsizetype offset, Bias bias)
{
    const qsizetype oldLength = qsizetype(places.size());
    qsizetype left = offset - 1;
    qsizetype right = offset;
    while (left >= 0 && places[size_t(left)] < 0)
        --left;
    while (right < oldLength && places[size_t(right)] < 0)
        ++right;
    const qsizetype start = left < 0 ? 0 : places[size_t(left)] + 1;
    const qsizetype end = right == oldLength ? newLength : places[size_t(right)];
    const bool leftIsThere = left == offset - 1;
    const bool rightIsThere = right == offset;
    if (leftIsThere != rightIsThere)
        return leftIsThere ? start : end;
    return bias == Bias::before ? start : end;
}

void expectMapsAnchors(const TextChangeList &changes, qsizetype oldLength, qsizetype newLength)
{
    const std::vector<qsizetype> places = survivors(changes, oldLength);
    for (const Bias bias : {Bias::before, Bias::after}) {
        std::vector<qsizetype> offsets;
        std::vector<qsizetype> expected;
        for (qsizetype offset = 0; offset <= oldLength; ++offset) {
            offsets.insert(offsets.end(), 2, offset);
            expected.insert(expected.end(), 2, mapByNeighbours(places, newLength, offset, bias));
            ASSERT_EQ(mappedOffset(offset, changes, bias), expected.back()) << offset;
        }
        mapOffsets(offsets, changes, bias);
        ASSERT_EQ(offsets, expected);
    }
}

struct Observed {
    TextChangeList changes;
    std::vector<TextRange> styles;
    int changedCalls = 0;
    int stylesCalls = 0;
    TextStorage::EditMask mask;
    TextRange range;
    qsizetype changeInLength = 0;
    int processed = 0;

    explicit Observed(TextStorage &storage)
    {
        QObject::connect(&storage, &TextStorage::changed, [this](const TextChangeList &list) {
            changes = list;
            ++changedCalls;
            EXPECT_EQ(stylesCalls, 0);
        });
        QObject::connect(&storage, &TextStorage::stylesChanged, [this](const std::vector<TextRange> &ranges) {
            styles = ranges;
            ++stylesCalls;
            EXPECT_EQ(processed, 0);
        });
        QObject::connect(&storage, &TextStorage::didProcessEditing, [this](TextStorage::EditMask edited, TextRange where, qsizetype added) {
            mask = edited;
            range = where;
            changeInLength = added;
            ++processed;
        });
    }
    void reset()
    {
        changes.clear();
        styles.clear();
        changedCalls = stylesCalls = processed = 0;
        mask = {};
        changeInLength = 0;
    }
};

struct StorageModel {
    std::u16string text;
    std::vector<StyleId> styles;
};

/// Every unit that survived has its old style or lies in a reported range, and every range is inside the hull.
void expectReportsStyles(const Observed &observed, const StorageModel &before, const StorageModel &now)
{
    std::vector<bool> isReported(now.styles.size());
    qsizetype end = -1;
    for (const TextRange range : observed.styles) {
        ASSERT_GT(range.location, end);
        end = range.end();
        ASSERT_LE(end, qsizetype(now.styles.size()));
        ASSERT_TRUE(observed.range.location <= range.location && range.end() <= observed.range.end());
        std::fill_n(isReported.begin() + range.location, range.length, true);
    }
    const std::vector<qsizetype> places = survivors(observed.changes, qsizetype(before.text.size()));
    for (size_t i = 0; i < places.size(); ++i) {
        ASSERT_TRUE(places[i] < 0 || isReported[size_t(places[i])] || before.styles[i] == now.styles[size_t(places[i])]) << i;
    }
}

bool splitsPair(const std::u16string &text, qsizetype offset)
{
    return offset > 0 && offset < qsizetype(text.size()) && QChar::isLowSurrogate(text[size_t(offset)]) &&
           QChar::isHighSurrogate(text[size_t(offset) - 1]);
}

void runBatch(Random &random, TextStorage &storage, StorageModel &model, std::ostringstream &script)
{
    const EditBatch batch(storage);
    for (qsizetype edits = random.below(12); edits >= 0; --edits) {
        const qsizetype length = qsizetype(model.text.size());
        qsizetype from = random.below(length + 1);
        qsizetype to = std::min(from + random.below(random.oneIn(20) ? 120 : 4), length);
        from -= splitsPair(model.text, from);
        to += splitsPair(model.text, to);
        const auto range = TextRange::between(from, to);
        if (random.oneIn(4)) {
            const auto style = StyleId(random.below(3));
            script << "setStyle({" << from << "," << range.length << "}, " << style << ");\n";
            storage.setStyle(range, style);
            std::fill_n(model.styles.begin() + from, range.length, style);
            continue;
        }
        const std::u16string text = random.text(random.below(random.oneIn(20) ? 60 : 4));
        script << "replaceCharacters({" << from << "," << range.length << "}, " << escaped(text) << ");\n";
        if (random.oneIn(2))
            storage.replaceCharacters(range, QStringView(text));
        else
            storage.replaceCharacters(range, Rope(QStringView(text)));
        const StyleId style = from > 0 ? model.styles[size_t(from) - 1] : plainStyle;
        model.text.replace(size_t(from), size_t(range.length), text);
        model.styles.erase(model.styles.begin() + from, model.styles.begin() + to);
        model.styles.insert(model.styles.begin() + from, text.size(), style);
    }
}

TEST(TextStorage, RandomBatchesAreReportedAsWhatTheyDid)
{
    for (quint32 seed = 1; seed <= 80; ++seed) {
        Random random(seed);
        std::ostringstream script;
        TextStorage storage;
        Observed observed(storage);
        for (int i = 1; i < 3; ++i)
            (void)storage.styles().intern({.foreground = i});
        StorageModel model;
        std::vector<std::pair<TextSnapshot, std::u16string>> snapshots;
        for (int step = 0; step < 40; ++step) {
            const StorageModel before = model;
            observed.reset();
            script << "// batch\n";
            const quint64 revision = storage.revision();
            runBatch(random, storage, model, script);
            SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + script.str());
            ASSERT_TRUE(storage.checkInvariants());
            ASSERT_EQ(escaped(storage.string().toStdU16String()), escaped(model.text));
            std::vector<StyleId> styles;
            storage.forEachStyle({0, storage.length()},
                                 [&](TextRange range, StyleId style) { styles.insert(styles.end(), size_t(range.length), style); });
            ASSERT_EQ(styles, model.styles);
            ASSERT_EQ(observed.changedCalls, storage.revision() == revision ? 0 : 1);
            ASSERT_EQ(observed.processed, std::max(observed.changedCalls, observed.stylesCalls));
            ASSERT_EQ(observed.mask.testFlag(TextStorage::editedCharacters), observed.changedCalls == 1);
            ASSERT_EQ(observed.mask.testFlag(TextStorage::editedAttributes), observed.stylesCalls == 1);
            ASSERT_NO_FATAL_FAILURE(expectLeadsTo(observed.changes, before.text, model.text));
            ASSERT_NO_FATAL_FAILURE(expectReportsStyles(observed, before, model));
            ASSERT_NO_FATAL_FAILURE(expectMapsAnchors(observed.changes, qsizetype(before.text.size()), storage.length()));
            ASSERT_EQ(observed.changeInLength, storage.length() - qsizetype(before.text.size()));
            snapshots.emplace_back(storage.snapshot(), model.text);
        }
        for (const auto &[snapshot, text] : snapshots)
            ASSERT_EQ(snapshot.text.toString().toStdU16String(), text);
    }
}

TEST(TextStorage, ManyScatteredEditsAreReportedAsOne)
{
    TextStorage storage;
    const QString before = u"a\r\nb "_s.repeated(3000);
    storage.replaceCharacters({0, 0}, QStringView(before));
    Observed observed(storage);
    for (const bool isForward : {true, false}) {
        const std::u16string old = storage.string().toStdU16String();
        observed.reset();
        storage.beginEditing();
        for (qsizetype i = 0; i < 2500; ++i) {
            const qsizetype position = 5 * (isForward ? i : 2499 - i) + 1;
            storage.replaceCharacters({position, 1}, isForward ? QStringView(u"x") : QStringView(u"\r"));
        }
        EXPECT_EQ(observed.changedCalls, 0);
        storage.endEditing();
        ASSERT_EQ(observed.changes.size(), 1U);
        EXPECT_EQ(observed.changes[0].position, 1);
        EXPECT_EQ(observed.changes[0].removed, 2499 * 5 + 1);
        expectLeadsTo(observed.changes, old, storage.string().toStdU16String());
    }
    EXPECT_EQ(storage.string(), before);
}

TEST(TextStorage, AnObserversEditIsReportedAfterTheOneUnderWay)
{
    TextStorage storage;
    QStringList heard;
    bool hasEdited = false;
    QObject::connect(&storage, &TextStorage::changed, [&](const TextChangeList &changes) {
        heard << u"first %1"_s.arg(changes[0].inserted);
        if (!std::exchange(hasEdited, true)) {
            const EditBatch batch(storage);
            storage.replaceCharacters({0, 0}, QStringView(u"ab"));
            storage.replaceCharacters({2, 0}, QStringView(u"cd"));
        }
    });
    QObject::connect(&storage, &TextStorage::changed,
                     [&](const TextChangeList &changes) { heard << u"second %1"_s.arg(changes[0].inserted); });
    QObject::connect(&storage, &TextStorage::didProcessEditing, [&] { heard << u"done"_s; });
    storage.replaceCharacters({0, 0}, QStringView(u"xyz"));
    EXPECT_EQ(heard, (QStringList{u"first 3"_s, u"second 3"_s, u"done"_s, u"first 4"_s, u"second 4"_s, u"done"_s}));
    EXPECT_EQ(storage.string(), u"abcdxyz"_s);
}

TEST(TextStorage, BatchesThatChangeNothingAreNotReported)
{
    TextStorage storage;
    storage.replaceCharacters({0, 0}, QStringView(u"text"));
    Observed observed(storage);
    const quint64 revision = storage.revision();
    storage.beginEditing();
    storage.replaceCharacters({2, 0}, QStringView());
    storage.setStyle({0, 4}, plainStyle);
    storage.endEditing();
    EXPECT_EQ(observed.processed, 0);
    EXPECT_EQ(storage.revision(), revision);
}

TEST(TextChangeMap, RangesKeepOutWhatIsInsertedAtTheirEnds)
{
    const TextChangeList changes{{.position = 2, .inserted = 3}, {.position = 8, .inserted = 1}, {.position = 12, .removed = 4}};
    // Old text 0123456789…: insertions at 2 and 5, removal of 8 … 12.
    EXPECT_EQ(mappedRange({2, 3}, changes), (TextRange{5, 3}));
    EXPECT_EQ(mappedRange({2, 0}, changes), (TextRange{5, 0}));
    EXPECT_EQ(mappedRange({4, 6}, changes), (TextRange{7, 5}));
    EXPECT_EQ(mappedRange({9, 2}, changes), (TextRange{12, 0}));
}

} // namespace
