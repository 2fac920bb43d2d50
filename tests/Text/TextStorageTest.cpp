// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextStorage.h"
#include "RandomText.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

/// Text and styles as plain vectors.
struct Model {
    std::u16string text;
    std::vector<StyleId> styles;

    void apply(const TextEdits &edits)
    {
        for (size_t i = 0; i < edits.count(); ++i) {
            const auto from = edits.newRange(i).location;
            const qsizetype removed = edits[i].range.length;
            const std::u16string inserted = edits[i].text.toString().toStdU16String();
            const StyleId style = from > 0 ? styles[size_t(from) - 1] : plainStyle;
            text.replace(size_t(from), size_t(removed), inserted);
            styles.erase(styles.begin() + from, styles.begin() + from + removed);
            styles.insert(styles.begin() + from, inserted.size(), style);
        }
    }
};

TEST(TextStorage, RandomChangesAreReportedAsWhatTheyDid)
{
    for (quint32 seed = 1; seed <= 60; ++seed) {
        Random random(seed);
        TextStorage storage;
        const auto wholePair = [&](qsizetype offset) { return storage.text().splitsPair(offset) ? offset + 1 : offset; };
        for (int i = 1; i < 3; ++i)
            (void)storage.styles().intern({.foreground = i});
        Model model;
        int changes = 0;
        int processed = 0;
        std::vector<TextRange> reported;
        QObject::connect(&storage, &TextStorage::changed, [&](const TextChange &change) {
            ++changes;
            EXPECT_EQ(escaped(change.before.toString().toStdU16String()), escaped(model.text));
            EXPECT_EQ(change.after, storage.text());
        });
        QObject::connect(&storage, &TextStorage::didProcessEditing, [&] { EXPECT_EQ(++processed, changes); });
        QObject::connect(&storage, &TextStorage::stylesChanged, [&](const std::vector<TextRange> &ranges) { reported = ranges; });
        for (int step = 0; step < 60; ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            const auto length = qsizetype(model.text.size());
            if (random.oneIn(4)) {
                const qsizetype from = random.below(length + 1);
                const TextRange range{from, random.below(length - from + 1)};
                const auto style = StyleId(random.below(3));
                reported.clear();
                storage.setStyle(range, style);
                for (const TextRange part : reported) {
                    for (qsizetype unit = part.location; unit < part.end(); ++unit)
                        ASSERT_NE(std::exchange(model.styles[size_t(unit)], style), style)
                            << unit << " is reported though it had that style";
                }
            } else {
                TextEdits edits;
                const bool areMany = random.oneIn(5);
                for (qsizetype at = 0; at <= length; at += 1 + random.below(areMany ? 4 : length + 1)) {
                    const qsizetype from = wholePair(std::min(length, at + random.below(3)));
                    at = wholePair(std::min(length, from + random.below(random.oneIn(20) ? 60 : 4)));
                    edits.add(TextRange::between(from, at), Rope(QStringView(random.text(random.below(random.oneIn(20) ? 60 : 3)))));
                }
                storage.apply(edits);
                model.apply(edits);
            }
            ASSERT_TRUE(storage.checkInvariants());
            ASSERT_EQ(escaped(storage.string().toStdU16String()), escaped(model.text));
            std::vector<StyleId> styles;
            storage.forEachStyle({0, storage.length()},
                                 [&](TextRange range, StyleId style) { styles.insert(styles.end(), size_t(range.length), style); });
            ASSERT_EQ(styles, model.styles);
        }
    }
}

TEST(TextStorage, NothingIsNoChange)
{
    TextStorage storage;
    storage.apply({{0, 0}, u"text"});
    const quint64 revision = storage.revision();
    QObject::connect(&storage, &TextStorage::didProcessEditing, [] { ADD_FAILURE(); });
    QObject::connect(&storage, &TextStorage::stylesChanged, [] { ADD_FAILURE(); });
    storage.apply({{2, 0}, Rope()});
    storage.setStyle({0, 4}, plainStyle);
    EXPECT_EQ(storage.revision(), revision);
}

} // namespace
