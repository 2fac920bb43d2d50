// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/OccurrenceMarker.h"

#include "EditorFixture.h"

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
    void rest() { scheduler.advance(OccurrenceMarker::restTime); }

    OccurrenceMarker marker{view, scheduler};
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
    marker.setMarking(false);
    EXPECT_EQ(marked(), QString());
    sendKeys(view, u"<C-End>"_s);
    EXPECT_TRUE(marker.word().isEmpty());
}
