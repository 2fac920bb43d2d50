// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/LineCommands.h"

#include "Commands/Actions.h"
#include "EditorFixture.h"
#include "HeldWorkers.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class LineCommandsFixture : public EditorFixture {
public:
    explicit LineCommandsFixture(const QString &marked = {}) : EditorFixture(marked, {4, Indentation::Unit::spaces}) {}

    void finish()
    {
        workers.finish();
        QCoreApplication::processEvents();
    }

    HeldWorkers workers;
    QStringList messages;
    LineCommands commands{
        view, {scheduler, workers, [this] { ++beeps; }, [this](const QString &message, Scheduler::Milliseconds) { messages << message; }}};
};

struct Case {
    const Action &action;
    const char16_t *before;
    const char16_t *after;
};

const Case cases[] = {
    {Actions::moveLinesUp, u"a\nb|c\nd", u"b|c\na\nd"},
    {Actions::moveLinesUp, u"a\n^b\nc|", u"^b\nc|\na"},
    {Actions::moveLinesUp, u"|a\nb", u"|a\nb"},
    {Actions::moveLinesDown, u"a|b^\nc\n", u"c\na|b^\n"},
    {Actions::moveLinesDown, u"a|\n", u"a|\n"},
    {Actions::insertLineAbove, u"a\n  b|c", u"a\n  |\n  bc"},
    {Actions::insertLineBelow, u"  a|b {\nc", u"  ab {\n      |\nc"},
    {Actions::insertLineBelow, u"^a\nb|c", u"a\nbc\n|"},
    {Actions::joinLines, u"a|  \n   b\nc", u"a| b\nc"},
    {Actions::joinLines, u"^f(\n    a,\n    b\n)|;\nc", u"^f(a, b)|;\nc"},
    {Actions::joinLines, u"|a\n\nb", u"a|\nb"},
    {Actions::joinLines, u"a|\n  ", u"a|"},
    {Actions::joinLines, u"a|", u"a|"},
    {Actions::sortLines, u"^b\nÄ\na\nB\n|z\na", u"^a\nÄ\nb\nB\n|z\na"},
    {Actions::sortLines, u"|b\na\nc", u"|a\nb\nc"},
    {Actions::sortLines, u"^a\nb\nc|", u"^c\nb\na|"},
    {Actions::sortLines, u"^\uFDFAb\n\uFDFAa\n\uFDFAc|", u"^\uFDFAa\n\uFDFAb\n\uFDFAc|"},
    {Actions::reverseLines, u"^a\n\nb\n|c", u"^b\n\na\n|c"},
    {Actions::reverseLines, u"|a\nb", u"|b\na"},
    {Actions::reverseLines, u"a|b\n👍🏽", u"|👍🏽\nab"},
    {Actions::uniqueLines, u"a\nb\na\nA\nb\n|c\na", u"a\nb\nA\n|c"},
    {Actions::uniqueLines, u"x\n^a\nx\na\n|x", u"x\n^a\nx\n|x"},
    {Actions::trimTrailingWhitespace, u"a \t\n \n|b  ", u"a\n\n|b"},
    {Actions::trimTrailingWhitespace, u"a \n^b  |\nc ", u"a \n^b|\nc "},
    {Actions::upperCase, u"say ca|fé now", u"say CA|FÉ now"},
    {Actions::upperCase, u"^straße\na|b", u"^STRASSE\nA|b"},
    {Actions::lowerCase, u"|ÀB ÇD^", u"|àb çd^"},
    {Actions::titleCase, u"^don't STOP\nhere|", u"^Don't Stop\nHere|"},
    {Actions::transposeCharacters, u"a|b", u"ba|"},
    {Actions::transposeCharacters, u"xa👍🏽|\n", u"x👍🏽a|\n"},
    {Actions::transposeCharacters, u"a\n|b", u"a\n|b"},
    {Actions::tabsToSpaces, u"\ta\n  \tb\t\n|", u"    a\n    b\t\n|"},
    {Actions::spacesToTabs, u"     a\n^    b|\n    c", u"     a\n^\tb|\n    c"},
    {Actions::spacesToTabs, u"     a\n        b|", u"\t a\n\t\tb|"},
};

} // namespace

TEST(LineCommands, GiveTheTextAndAreOneUndoStep)
{
    for (const Case &tested : cases) {
        const QString before = QString::fromUtf16(tested.before);
        const QString after = QString::fromUtf16(tested.after);
        SCOPED_TRACE(std::string(tested.action.id) + " on " + before.toStdString());
        LineCommandsFixture fixture(before);
        EXPECT_TRUE(fixture.view.perform(tested.action));
        EXPECT_EQ(fixture.marked().toStdString(), after.toStdString());
        EXPECT_EQ(fixture.beeps, before == after ? 1 : 0);
        if (before != after) {
            fixture.view.undo();
            EXPECT_EQ(fixture.marked().toStdString(), before.toStdString());
        }
        EXPECT_FALSE(fixture.undo.canUndo());
        fixture.view.setAccess(TextView::Access::readOnly);
        EXPECT_FALSE(fixture.view.state(tested.action).isEnabled);
    }
}

TEST(LineCommands, ConcernWhatEveryCaretStandsAt)
{
    LineCommandsFixture fixture(u"|a\nbb cc\ndd\nee"_s);
    const auto perform = [&](const Action &action, std::vector<qsizetype> carets) {
        std::vector<CaretSelection> all;
        for (const qsizetype caret : carets) {
            all.push_back(CaretSelection::at({caret}));
        }
        fixture.view.setSelection(Selections::merged(std::move(all), 0));
        fixture.view.perform(action);
        return fixture.storage.string();
    };
    EXPECT_EQ(perform(Actions::upperCase, {3, 6, 12}), u"a\nBB CC\ndd\nEE"_s);
    EXPECT_EQ(perform(Actions::moveLinesUp, {3, 6, 12}), u"BB CC\na\nEE\ndd"_s);
    EXPECT_EQ(fixture.view.selections()[1].ends(), TextSelection::at(4)) << "carets go with their lines";
    EXPECT_EQ(perform(Actions::insertLineBelow, {1, 7}), u"BB CC\n\na\n\nEE\ndd"_s);
    EXPECT_EQ(fixture.view.selections()[1].ends(), TextSelection::at(9));
    EXPECT_EQ(perform(Actions::sortLines, {0, 3}), u"\n\na\nBB CC\ndd\nEE"_s);
}

TEST(LineCommands, HoldNothingUpInALongText)
{
    LineCommandsFixture fixture;
    const QString lines = u"b \na\n"_s.repeated(LineCommands::readAtOnce / 4);
    fixture.storage.apply({{0, 0}, lines});
    fixture.view.setSelection(TextSelection::at(1));
    const quint64 before = fixture.storage.revision();
    fixture.view.perform(Actions::trimTrailingWhitespace);
    EXPECT_EQ(fixture.storage.revision(), before);
    fixture.scheduler.advance(Scheduler::Milliseconds(500));
    EXPECT_EQ(fixture.messages, QStringList{u"Working… Esc stops."_s});
    // The caret may go elsewhere and the text may change meanwhile.
    sendKeys(fixture.view, u"<Down>x"_s);
    fixture.finish();
    fixture.finish();
    EXPECT_EQ(fixture.storage.string(), u"b\nax\n"_s + u"b\na\n"_s.repeated(LineCommands::readAtOnce / 4 - 1));
    EXPECT_EQ(fixture.view.selection(), TextSelection::at(4));
    EXPECT_EQ(fixture.messages.last(), u"Done"_s);

    fixture.view.perform(Actions::reverseLines);
    const quint64 trimmed = fixture.storage.revision();
    sendKeys(fixture.view, u"<Esc>"_s);
    fixture.finish();
    EXPECT_EQ(fixture.storage.revision(), trimmed);
    EXPECT_EQ(fixture.messages.last(), u"Stopped; nothing was changed"_s);
}

TEST(LineCommands, MoveNoSelectionOutOfTheText)
{
    LineCommandsFixture fixture(u"|a\nb"_s);
    fixture.view.setSelection(Selections::merged({CaretSelection::of({0, 0}), CaretSelection::of({1, 2})}, 0));
    EXPECT_TRUE(fixture.view.perform(Actions::moveLinesDown));
    EXPECT_EQ(fixture.storage.string(), u"b\na"_s);
    EXPECT_EQ(fixture.view.selections(), Selections::merged({CaretSelection::of({2, 2}), CaretSelection::of({3, 3})}, 0));
}

TEST(ShiftedLines, EndNoSelectionWithinACharacter)
{
    EditorFixture fixture(u"👍abc^d\n    e|"_s, {4, Indentation::Unit::spaces});
    fixture.view.perform(Actions::insertBacktab);
    EXPECT_EQ(fixture.marked(), u"^👍ab|cd\ne"_s);
}

TEST(ShiftedLines, StayTheSameUntilSomethingElseIsDone)
{
    EditorFixture fixture(u"^a\nb|\nc"_s, {4, Indentation::Unit::spaces});
    for (int times = 0; times < 3; ++times) {
        fixture.view.perform(Actions::insertTab);
    }
    EXPECT_EQ(fixture.storage.string(), u"            a\n            b\nc"_s);
    for (int times = 0; times < 3; ++times) {
        fixture.view.perform(Actions::insertBacktab);
    }
    EXPECT_EQ(fixture.storage.string(), u"a\nb\nc"_s);
    fixture.view.setSelection({0, 4});
    fixture.view.perform(Actions::insertTab);
    fixture.view.setSelection({0, fixture.storage.length()});
    fixture.view.perform(Actions::insertTab);
    EXPECT_EQ(fixture.storage.string(), u"        a\n        b\n    c"_s);
}

TEST(OverwriteMode, PutsWhatIsTypedInPlaceOfWhatIsThere)
{
    EditorFixture fixture(u"a|b👍🏽\ncd"_s);
    fixture.view.perform(Actions::toggleOverwriteMode);
    EXPECT_EQ(fixture.view.state(Actions::toggleOverwriteMode).checkMark, CheckMark::on);
    sendKeys(fixture.view, u"xyz"_s);
    EXPECT_EQ(fixture.marked(), u"axyz|\ncd"_s);
    fixture.view.undo();
    EXPECT_EQ(fixture.marked(), u"a|b👍🏽\ncd"_s);
    sendKeys(fixture.view, u"<CR><S-End>z<Down>e<Tab>"_s);
    EXPECT_EQ(fixture.marked(), u"a\nz\nce  |"_s) << "a break and a tab are inserted, a selection goes";
    fixture.view.perform(Actions::toggleOverwriteMode);
    sendKeys(fixture.view, u"<Home>x"_s);
    EXPECT_EQ(fixture.marked(), u"a\nz\nx|ce  "_s);

    EditorFixture other(u"|abc"_s);
    other.view.perform(Actions::toggleOverwriteMode);
    QInputMethodEvent event;
    event.setCommitString(u"👍🏽"_s);
    QApplication::sendEvent(&other.view, &event);
    EXPECT_EQ(other.marked(), u"👍🏽|bc"_s) << "one for one, whatever it is made of";
}

TEST(BareCopy, TakesTheLineIfThatIsWanted)
{
    EditorFixture fixture(u"ab|c\nd"_s);
    sendKeys(fixture.view, u"<C-x><C-v>"_s);
    EXPECT_EQ(fixture.marked(), u"ab|c\nd"_s);
    EXPECT_FALSE(fixture.view.state(Actions::copy).isEnabled);
    fixture.view.setBareCopy(EditorTextView::BareCopy::line);
    sendKeys(fixture.view, u"<C-x>"_s);
    EXPECT_EQ(fixture.marked(), u"|d"_s);
    EXPECT_EQ(fixture.pasteboard.text(), u"abc\n"_s);
    sendKeys(fixture.view, u"<Right><C-v>"_s);
    EXPECT_EQ(fixture.marked(), u"abc\nd|"_s) << "a line is pasted as one";
    sendKeys(fixture.view, u"<C-c><C-v>"_s);
    EXPECT_EQ(fixture.marked(), u"abc\nd\nd|"_s) << "also one without a break";
    sendKeys(fixture.view, u"<S-Home><C-v>"_s);
    EXPECT_EQ(fixture.marked(), u"abc\nd\nd\n|"_s);
    fixture.pasteboard.setTextFromElsewhere(u"x\n"_s);
    sendKeys(fixture.view, u"<Up><Right><C-v>"_s);
    EXPECT_EQ(fixture.marked(), u"abc\nd\ndx\n|\n"_s) << "what others copied goes to the caret";
}
