// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/OccurrenceMarker.h"

#include "EditorFixture.h"
#include "HeldWorkers.h"
#include "View/MarkedScrollBar.h"

#include <QTest>

#include <QPaintEvent>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class OccurrenceMarkerTest : public testing::Test, protected EditorFixture {
protected:
    OccurrenceMarkerTest() : EditorFixture(u"word| words sword word_ Word\nword (word)\n"_s) { marker.setMarking(true); }

    [[nodiscard]] QString marked()
    {
        QStringList found;
        for (const TextRange range : marker.occurrencesIn({0, storage.length()})) {
            found << QString::number(range.location);
        }
        return found.join(u' ');
    }
    void rest()
    {
        scheduler.advance(OccurrenceMarker::restTime);
        QCoreApplication::processEvents();
    }

    HeldWorkers workers{HeldWorkers::Mode::atOnce};
    OccurrenceMarker marker{view, scheduler, workers};
};

} // namespace

TEST_F(OccurrenceMarkerTest, MarksTheWordAtTheCaretElsewhere)
{
    EXPECT_EQ(marked(), QString());
    rest();
    EXPECT_EQ(marked(), u"28 34"_s);
    view.setSelection(Selections(TextSelection::at(4)).with(CaretSelection::at({30})).with(CaretSelection::at({4})));
    EXPECT_EQ(marked(), u"34"_s) << "but where there is no caret";
    view.setSelection(TextSelection::at(4));
    sendKeys(view, u"s"_s);
    EXPECT_EQ(marked(), QString()) << "another word";
    rest();
    EXPECT_EQ(marked(), u"6"_s);
    EXPECT_EQ(marker.word(), (TextRange{0, 5})) << "also behind its last letter";
    storage.apply({{0, storage.length()}, u"_a word\n\n<<< word\n"_s});
    for (const auto &[caret, word] : std::initializer_list<std::pair<qsizetype, TextRange>>{
             {0, {0, 2}}, {2, {0, 2}}, {7, {3, 4}}, {8, {}}, {9, {}}, {13, {13, 4}}, {17, {13, 4}}, {18, {}}}) {
        view.setSelection(TextSelection::at(caret));
        EXPECT_EQ(marker.word(), word) << caret;
    }
    marker.setMarking(false);
    EXPECT_EQ(marked(), QString());
}

TEST_F(OccurrenceMarkerTest, PaintsTheRowsOfWhatIsMarkedAndNoOthers)
{
    struct Painted : QObject {
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint) {
                region += static_cast<QPaintEvent *>(event)->region();
            }
            return false;
        }
        QRegion region;
    } painted;
    storage.apply({{0, storage.length()}, u"word\nalone\n\n\nword\n\n\nword\n"_s});
    view.setSelection(TextSelection::at(0));
    QCoreApplication::processEvents();
    view.viewport()->installEventFilter(&painted);
    const double height = view.layoutManager().rowHeight();
    const auto rows = [&](const auto &act) {
        painted.region = {};
        act();
        QCoreApplication::processEvents();
        QString seen;
        for (int row = 0; row < 8; ++row) {
            const double middle = view.textViewport().insets().vertical + (row + 0.5) * height;
            seen += painted.region.contains(QPoint(100, int(middle))) ? QString::number(row) : QString();
        }
        return seen;
    };
    EXPECT_EQ(rows([this] { rest(); }), u"47"_s);
    EXPECT_EQ(rows([this] { view.setSelection(TextSelection::at(15)); }), u"04"_s) << "the same word elsewhere";
    EXPECT_EQ(rows([this] { view.setSelection(TextSelection::at(6)); }), u"047"_s) << "none of these";
    EXPECT_EQ(rows([this] { rest(); }), QString()) << "it stands nowhere else";
}

TEST_F(OccurrenceMarkerTest, MarksTheWholeTextOnTheScrollBar)
{
    storage.apply({{0, storage.length()}, u"word\nalone\n"_s + u"\n"_s.repeated(998) + u"word\n"_s});
    view.resize(400, 600);
    MarkedScrollBar &bar = *MarkedScrollBar::of(view);
    const auto rowsAt = [&](qsizetype caret) {
        view.setSelection(TextSelection::at(caret));
        rest();
        return bar.rowsOf(ScrollMark::occurrence);
    };
    EXPECT_EQ(rowsAt(5), std::vector<int>()) << "it stands nowhere else";
    const auto rows = rowsAt(0);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_GT(rows.back() - rows.front(), bar.height() / 2);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {5, rows.back()});
    EXPECT_EQ(view.selection(), (TextSelection{1009, 1013}));
    EXPECT_EQ(bar.rowsOf(ScrollMark::occurrence), rows) << "it is the same word";
    storage.apply({{5, 0}, u"word\n"_s.repeated(900)});
    rest();
    EXPECT_GT(bar.rowsOf(ScrollMark::occurrence).size(), 100U) << "counted again";
    EXPECT_EQ(rowsAt(4 + 5 * 900 + 5), std::vector<int>());
}
