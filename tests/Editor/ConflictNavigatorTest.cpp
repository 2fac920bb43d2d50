// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/ConflictNavigator.h"

#include "EditorFixture.h"
#include "HeldWorkers.h"
#include "View/MarkedScrollBar.h"

#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString conflict = u"<<<<<<< a\nours\n=======\ntheirs\n>>>>>>> b\n"_s;

class ConflictNavigatorTest : public testing::Test, protected EditorFixture {
protected:
    ConflictNavigatorTest() : EditorFixture(u"\n"_s.repeated(500) + conflict + u"\n"_s.repeated(500)) { view.resize(400, 600); }

    void rest()
    {
        scheduler.advance(ConflictNavigator::restTime);
        QCoreApplication::processEvents();
    }

    HeldWorkers workers{HeldWorkers::Mode::atOnce};
    ConflictNavigator &conflicts = *new ConflictNavigator(view, {scheduler, workers, [this] { ++beeps; }});
    MarkedScrollBar &bar = *MarkedScrollBar::of(view);
};

} // namespace

TEST_F(ConflictNavigatorTest, MarksThemAndGoesThere)
{
    conflicts.goToNext();
    EXPECT_EQ(beeps, 1) << "they are being looked for";
    rest();
    const auto rows = bar.rowsOf(ScrollMark::conflict);
    ASSERT_FALSE(rows.empty());
    EXPECT_NEAR(rows.front(), bar.height() / 2, 5);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {3, rows.front()});
    EXPECT_EQ(view.selection(), TextSelection::at(500));

    storage.apply({{0, 0}, conflict});
    rest();
    const qsizetype second = 500 + conflict.size();
    view.setSelection(TextSelection::at(second - 1));
    for (const qsizetype place : {second, qsizetype(0), second}) {
        conflicts.goToNext();
        EXPECT_EQ(view.selection(), TextSelection::at(place));
    }
    for (const qsizetype place : {qsizetype(0), second}) {
        conflicts.goToPrevious();
        EXPECT_EQ(view.selection(), TextSelection::at(place));
    }
    // Just below what is seen it comes with all of its lines.
    view.setSelection(TextSelection::at(second - 1));
    const double height = view.layoutManager().rowHeight();
    view.setScrollOffset(double(storage.text().lineAt(second) - view.textViewport().rowsPerPage()) * height);
    conflicts.goToNext();
    const auto last = view.textViewport().topOf(view.layoutManager().rowOf(second + conflict.size() - 1));
    ASSERT_TRUE(last);
    EXPECT_LE(*last + height, view.viewport()->height());

    storage.apply({{0, storage.length()}, u"decided\n"_s});
    rest();
    EXPECT_FALSE(conflicts.hasConflicts());
    EXPECT_TRUE(bar.rowsOf(ScrollMark::conflict).empty());
}
