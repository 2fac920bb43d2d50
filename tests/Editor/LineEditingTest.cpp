// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/Actions.h"
#include "EditorFixture.h"
#include "Highlighting/LanguageRegistry.h"

#include <gtest/gtest.h>

#include <variant>

using namespace Qt::StringLiterals;

namespace {

constexpr Indentation fourSpaces{4, Indentation::Unit::spaces};
constexpr Indentation twoSpaces{2, Indentation::Unit::spaces};
constexpr Indentation tabs{4, Indentation::Unit::tab};

struct Case {
    const char *name;
    /// With `|` for the caret and `^` for the other end of the selection.
    const char16_t *before;
    /// Or keys.
    std::variant<const Action *, const char *> command;
    const char16_t *after;
    Indentation indentation = fourSpaces;
};

void PrintTo(const Case &tested, std::ostream *out)
{
    *out << tested.name;
}

class LineEditingCase : public testing::TestWithParam<Case> {};

} // namespace

TEST_P(LineEditingCase, GivesTheTextAndIsOneUndoStep)
{
    const Case &tested = GetParam();
    const QString before = QString::fromUtf16(tested.before);
    const QString after = QString::fromUtf16(tested.after);
    EditorFixture fixture(before, tested.indentation);
    fixture.view.setLanguage(LanguageRegistry::withID(u"c").value());
    if (const auto *const *action = std::get_if<const Action *>(&tested.command)) {
        EXPECT_TRUE(fixture.view.perform(**action));
    } else {
        sendKeys(fixture.view, QString::fromLatin1(std::get<const char *>(tested.command)));
    }
    EXPECT_EQ(fixture.marked().toStdString(), after.toStdString());
    if (MarkedText(before).text == MarkedText(after).text) {
        EXPECT_FALSE(fixture.undo.canUndo());
        return;
    }
    fixture.view.undo();
    EXPECT_EQ(fixture.marked().toStdString(), before.toStdString());
    EXPECT_FALSE(fixture.undo.canUndo());
    fixture.view.redo();
    EXPECT_EQ(fixture.marked().toStdString(), after.toStdString());
}

INSTANTIATE_TEST_SUITE_P(Tab, LineEditingCase,
                         testing::Values(Case{"goes to the next stop", u"ab|c", "<Tab>", u"ab  |c"},
                                         Case{"counts a tab as far as its stop", u"\t|", "<Tab>", u"\t    |"},
                                         Case{"replaces what is selected in the line", u"a^bcd|e", "<Tab>", u"a   |e"},
                                         Case{"is a tab where tabs indent", u"ab|c", "<Tab>", u"ab\t|c", tabs},
                                         Case{"indents lines and keeps them selected", u"a^b\n\ncd|\nefghij", "<Tab>",
                                              u"    a^b\n\n    cd\nefg|hij"},
                                         Case{"indents by a tab, no line behind", u"^a\nb\n|cd", "<Tab>", u"\t^a\n\tb\nc|d", tabs},
                                         Case{"reaches no further than the text", u"^a\nb|", "<Tab>", u"    ^a\n    b|"}));

INSTANTIATE_TEST_SUITE_P(ShiftTab, LineEditingCase,
                         testing::Values(Case{"takes what there is of a level", u"  abcd|e", "<S-Tab>", u"ab|cde"},
                                         Case{"takes a tab, whatever the level", u"\tabcd|", "<S-Tab>", u"a|bcd"},
                                         Case{"takes one level of several lines", u"    ^a\n\n      b\n    cdefgh|ij", "<S-Tab>",
                                              u"^a\n\n  b\ncd|efghij"},
                                         Case{"changes nothing at the margin", u"a|b\n  c", "<S-Tab>", u"a|b\n  c"}));

INSTANTIATE_TEST_SUITE_P(Return, LineEditingCase,
                         testing::Values(Case{"keeps the indentation", u"\tab|", "<CR>", u"\tab\n\t|"},
                                         Case{"goes a level deeper behind a brace", u"    if (a) {|", "<CR>", u"    if (a) {\n        |"},
                                         Case{"looks at the whole line", u"f(|a) {  \nb", "<CR>", u"f(\n    |a) {  \nb"},
                                         Case{"goes deeper behind a colon", u"case 1:|\n", "<CR>", u"case 1:\n\t|\n", tabs},
                                         Case{"replaces the selection", u"  a^bc|d", "<CR>", u"  a\n  |d"},
                                         Case{"adds nothing to an empty text", u"|", "<CR>", u"\n|"}));

INSTANTIATE_TEST_SUITE_P(Backspace, LineEditingCase,
                         testing::Values(Case{"goes back to the last stop", u"      |a", "<BS>", u"    |a"},
                                         Case{"takes a whole level at a stop", u"x\n        |a", "<BS>", u"x\n    |a"},
                                         Case{"takes one space behind letters", u"ab  |", "<BS>", u"ab |"},
                                         Case{"takes one where tabs indent", u"    |", "<BS>", u"   |", tabs},
                                         Case{"takes the break at the margin", u"a\n|b", "<BS>", u"a|b"},
                                         Case{"takes the selection", u"   ^ |a", "<BS>", u"   |a"}));

INSTANTIATE_TEST_SUITE_P(Comment, LineEditingCase,
                         testing::Values(Case{"goes to the smallest indentation", u"  a^b\n\n      c\n    d|", &Actions::toggleComment,
                                              u"^  // ab\n\n  //     c\n  //   d|"},
                                         Case{"comes off with one space", u"^  // ab\n  //c\n|", &Actions::toggleComment, u"^  ab\n  c\n|"},
                                         Case{"doubles in a mixed block", u"^// a\nb|", &Actions::toggleComment, u"^// // a\n// b|"},
                                         Case{"leaves blank lines alone", u" |\n", &Actions::toggleComment, u" |\n"},
                                         Case{"does not touch the line behind the selection", u"^a\n|b", &Actions::toggleComment,
                                              u"^// a\n|b"}));

INSTANTIATE_TEST_SUITE_P(WholeLines, LineEditingCase,
                         testing::Values(Case{"duplicate", u"a|b\nc", &Actions::duplicateLine, u"ab\n|ab\nc"},
                                         Case{"duplicate the last", u"ab\nc|d", &Actions::duplicateLine, u"ab\ncd\n|cd"},
                                         Case{"duplicate several", u"a^b\nc|d\ne", &Actions::duplicateLine, u"ab\ncd\n|ab\ncd\ne"},
                                         Case{"delete", u"a\nb|c\nd", &Actions::deleteLine, u"a\n|d"},
                                         Case{"delete the last", u"a\nb|", &Actions::deleteLine, u"a\n|"},
                                         Case{"delete several", u"a^\nb|c\nd", &Actions::deleteLine, u"|d"},
                                         Case{"delete nothing", u"a\n|", &Actions::deleteLine, u"a\n|"}));

TEST(EditorCommands, AskForWhatTheyNeed)
{
    EditorFixture fixture(u"a|"_s, twoSpaces);
    fixture.view.setLanguage(Language::plainText());
    EXPECT_FALSE(fixture.view.state(Actions::toggleComment).isEnabled);
    fixture.view.toggleComment();
    EXPECT_EQ(fixture.beeps, 1);
    fixture.view.setAutoIndent(EditorTextView::AutoIndent::off);
    sendKeys(fixture.view, u"<Home><Tab><End>{<CR>"_s);
    EXPECT_EQ(fixture.marked(), u"  a{\n|"_s);
    fixture.view.setAccess(TextView::Access::readOnly);
    for (const Action *action : {&Actions::insertTab, &Actions::insertBacktab, &Actions::duplicateLine, &Actions::deleteLine}) {
        EXPECT_FALSE(fixture.view.state(*action).isEnabled) << action->id;
        fixture.view.perform(*action);
    }
    EXPECT_EQ(fixture.marked(), u"  a{\n|"_s);
}
