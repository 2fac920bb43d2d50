// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/LayoutManager.h"
#include "Text/RandomText.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/Viewport.h"
#include "ViewFixture.h"

#include <gtest/gtest.h>

#include <set>

using namespace Qt::StringLiterals;

namespace {

LayoutManager::Settings settings(std::optional<double> wrapWidth = {})
{
    return {.font = testFont(), .tabWidth = 4, .wrapWidth = wrapWidth, .devicePixelRatio = 1};
}

const QString mixedText =
    u"int main(int argc) {\n\treturn 0; // läuft\n\n  e\u0301te\u0301\t水曜日は emoji \U0001F600 and more words to wrap around\n"
    u"עברית and then العربية mixed with English\nlast line without a break"_s;

QString randomText(Random &random, qsizetype pieces)
{
    static const QString alphabet[] = {
        u"word "_s, u"x"_s, u"\n"_s, u"\t"_s, u" "_s, u"é"_s, u"水"_s, u"\U0001F600"_s, u"averylongwordwithoutblanks"_s, u"\r\n"_s};
    QString text;
    for (qsizetype i = 0; i < pieces; ++i) {
        text += random.of(alphabet);
    }
    return text;
}

class LayoutWidths : public testing::TestWithParam<double> {
protected:
    static std::optional<double> width() { return GetParam() > 0 ? std::optional(GetParam()) : std::nullopt; }
};

/// Below the segment limit a line looks like one layout of the whole line.
TEST_P(LayoutWidths, RowsMatchAPlainLayout)
{
    TextStorage storage;
    storage.apply({{0, 0}, mixedText});
    LayoutManager layout(storage, settings(width()));
    std::optional<RowPosition> row = layout.rowOf(0);
    for (qsizetype line = 0; line < storage.text().lineCount(); ++line) {
        const qsizetype start = storage.text().lineStart(line);
        const QString plain = mixedText.mid(start, mixedText.indexOf(u'\n', start) - start);
        QTextLayout reference(plain, testFont());
        QTextOption option;
        option.setWrapMode(width() ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
        option.setTabStopDistance(4 * layout.cellWidth());
        option.setFlags(QTextOption::IncludeTrailingSpaces);
        option.setTextDirection(Qt::LeftToRight);
        reference.setTextOption(option);
        reference.beginLayout();
        for (QTextLine shown = reference.createLine(); shown.isValid(); shown = reference.createLine()) {
            shown.setLineWidth(width().value_or(100'000));
        }
        reference.endLayout();
        for (int number = 0; number < reference.lineCount(); ++number) {
            const QTextLine shown = reference.lineAt(number);
            ASSERT_TRUE(row.has_value());
            const TextRange range = layout.rangeOf(*row);
            EXPECT_EQ(range, (TextRange{start + shown.textStart(), shown.textLength()})) << "line " << line;
            for (qsizetype offset = range.location; offset < range.end(); ++offset) {
                EXPECT_NEAR(layout.xOf(*row, offset), shown.cursorToX(static_cast<int>(offset - start)), 0.02);
            }
            for (double x = -5; x < shown.naturalTextWidth() + 20; x += 3.7) {
                const bool isLastOfWrap = number + 1 < reference.lineCount() &&
                                          reference.nextCursorPosition(shown.xToCursor(x)) == shown.textStart() + shown.textLength();
                if (!isLastOfWrap) { // The plain layout never answers with the end of such a row.
                    EXPECT_EQ(layout.offsetAt(*row, x), start + shown.xToCursor(x)) << "x " << x << " of line " << line;
                }
            }
            row = layout.next(*row);
        }
    }
    EXPECT_FALSE(row.has_value());
}

TEST_P(LayoutWidths, StepsDownAndUpMeetTheSameRows)
{
    Random random(3);
    TextStorage storage;
    storage.apply({{0, 0}, randomText(random, 800)});
    LayoutManager layout(storage, settings(width()));
    std::vector<RowPosition> down;
    for (std::optional<RowPosition> row = layout.rowOf(0); row; row = layout.next(*row)) {
        down.push_back(*row);
    }
    ASSERT_EQ(layout.rowCount(), std::ssize(down)) << "all rows are laid out by now";
    std::optional<RowPosition> row = down.back();
    for (size_t i = down.size(); i-- > 0; row = layout.previous(*row)) {
        ASSERT_EQ(row, down[i]);
        EXPECT_EQ(layout.numberOf(down[i]), qint64(i));
        EXPECT_EQ(layout.rowNumber(qint64(i)), down[i]);
    }
    EXPECT_FALSE(row.has_value());
}

INSTANTIATE_TEST_SUITE_P(Widths, LayoutWidths, testing::Values(0.0, 150.0, 333.3));

TEST(LayoutManager, RefiningFindsTheRowsOfEveryLineAndNeverMovesTheAnchor)
{
    Random random(11);
    TextStorage storage;
    storage.apply({{0, 0}, randomText(random, 4000) + u"\n"_s + QString(9000, u'y') + u"\n"_s + randomText(random, 500)});
    LayoutManager fresh(storage, settings(200));
    qint64 rows = 0;
    for (std::optional<RowPosition> row = fresh.rowOf(0); row; row = fresh.next(*row)) {
        ++rows;
    }
    LayoutManager layout(storage, settings(200));
    Viewport port(layout);
    port.setSize({220, 300});
    scrollTo(port, layout, storage.length() / 2, 3);
    const auto before = port.rows(0, 300);
    int slices = 0;
    for (; layout.refine(port.topRow().line, 2000); ++slices) {
        const auto now = port.rows(0, 300);
        ASSERT_TRUE(std::ranges::equal(now, before, [](const auto &a, const auto &b) { return a.row == b.row && a.top == b.top; }));
    }
    EXPECT_GT(slices, 5);
    layout.checkInvariants();
    // Counted by width and not laid out: words that do not fit leave some rows shorter.
    EXPECT_GT(layout.rowCount(), rows * 3 / 4);
    EXPECT_LE(layout.rowCount(), rows + 2);
}

/// Layouts that live through edits answer like new ones; two of different widths stay apart.
TEST(LayoutManager, EditedLayoutsEqualFreshOnes)
{
    for (quint32 seed = 1; seed <= 3; ++seed) {
        Random random(seed);
        TextStorage storage;
        storage.apply({{0, 0}, randomText(random, 300)});
        LayoutManager narrow(storage, settings(160));
        LayoutManager unwrapped(storage, settings());
        LayoutManager::Settings below = settings(160);
        below.indentsWrappedRows = true;
        LayoutManager indented(storage, below);
        QObject::connect(&storage, &TextStorage::changed, &storage, [&](const TextChange &change) {
            narrow.textChanged(change);
            unwrapped.textChanged(change);
            indented.textChanged(change);
        });
        for (int step = 0; step < 60; ++step) {
            TextEdits edits;
            qsizetype end = 0;
            const auto place = [&](qsizetype offset) {
                return TextBoundaries::snapped(storage.text(), std::min(offset, storage.length()));
            };
            for (qsizetype count = step % 10 == 0 ? 200 : 1 + random.below(3); count > 0; --count) {
                const qsizetype from = place(end + random.below((storage.length() - end) / count + 1));
                end = std::max(from, place(from + random.below(count > 3 ? 3 : 40)));
                edits.add(TextRange::between(from, end), Rope(randomText(random, random.below(8))));
            }
            storage.apply(edits);
            for (LayoutManager *layout : {&narrow, &unwrapped, &indented}) {
                layout->checkInvariants();
                LayoutManager fresh(storage, layout->settings());
                std::optional<RowPosition> row = layout->rowOf(0);
                for (std::optional<RowPosition> expected = fresh.rowOf(0); expected; expected = fresh.next(*expected)) {
                    ASSERT_EQ(row, expected) << "seed " << seed << " step " << step;
                    ASSERT_EQ(layout->rangeOf(*row), fresh.rangeOf(*expected));
                    ASSERT_EQ(layout->widthOf(*row), fresh.widthOf(*expected));
                    row = layout->next(*row);
                }
                ASSERT_FALSE(row.has_value());
            }
        }
    }
}

TEST(LayoutManager, RowsOfAWrappedLineBeginBelowItsFirstLetter)
{
    const QString words = u"word "_s.repeated(40);
    const auto leftEdges = [](LayoutManager &layout, qsizetype line, const TextStorage &storage) {
        std::set<double> edges;
        RowPosition row = layout.rowOf(storage.text().lineStart(line));
        while (const auto next = layout.next(row)) {
            if (next->line != line) {
                break;
            }
            row = *next;
            edges.insert(std::round(layout.xOf(row, layout.rangeOf(row).location) / layout.cellWidth() * 10) / 10);
            EXPECT_LE(layout.widthOf(row), *layout.settings().wrapWidth + 2 * layout.cellWidth());
            EXPECT_EQ(layout.offsetAt(row, 0), layout.rangeOf(row).location) << "a click beside it";
        }
        return edges;
    };
    TextStorage storage;
    storage.apply(
        {{0, 0}, words + u"\n   "_s + words + u"\n\t  "_s + words + u"\n"_s + QString(100, u' ') + words + u"\n  "_s + words.repeated(50)});
    LayoutManager::Settings indented = settings(50 * LayoutManager(storage, settings()).cellWidth() + 1);
    indented.indentsWrappedRows = true;
    LayoutManager layout(storage, indented);
    LayoutManager unread(storage, indented);
    using Edges = std::set<double>;
    EXPECT_EQ(leftEdges(layout, 0, storage), Edges{0});
    EXPECT_EQ(leftEdges(layout, 1, storage), Edges{3});
    EXPECT_EQ(leftEdges(layout, 2, storage), Edges{6});
    EXPECT_EQ(leftEdges(layout, 3, storage), Edges{25}) << "half of the width is left for the text";
    EXPECT_EQ(leftEdges(layout, 4, storage), Edges{2});
    while (unread.refine(0, 100'000)) {
    }
    EXPECT_NEAR(double(unread.rowCount()), double(layout.rowCount()), 0.15 * double(layout.rowCount())) << "estimated alike";
    // Another indentation moves all of a long line's rows, also those far from the change.
    QObject::connect(&storage, &TextStorage::changed, &storage, [&](const TextChange &change) { layout.textChanged(change); });
    storage.apply({{storage.text().lineStart(4), 0}, u"  "});
    EXPECT_EQ(leftEdges(layout, 4, storage), Edges{4});
}

TEST(LayoutManager, SpansFollowTheDirectionOfTheText)
{
    TextStorage storage;
    storage.apply({{0, 0}, u"abc אבג def"_s});
    LayoutManager layout(storage, settings());
    // "c " runs to the right; the first two Hebrew letters stand at the right end of their word.
    const auto spans = layout.spansOf(layout.rowOf(0), {2, 4}, {0, 1000});
    ASSERT_EQ(spans.size(), 2U);
    EXPECT_NEAR(spans[0].left, 2 * layout.cellWidth(), 0.1);
    EXPECT_NEAR(spans[0].right, 4 * layout.cellWidth(), 0.1);
    EXPECT_GT(std::max(spans[1].left, spans[1].right), 5 * layout.cellWidth());
}

} // namespace
