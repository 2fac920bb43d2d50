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

const Case cases[] = {
    {"goes to the next stop", u"ab|c", "<Tab>", u"ab  |c"},
    {"replaces what is selected in the line", u"a^bcd|e", "<Tab>", u"a   |e"},
    {"is a tab where tabs indent", u"ab|c", "<Tab>", u"ab\t|c", tabs},
    {"indents lines and keeps them selected", u"a^b\n\ncd|\nefghij", "<Tab>", u"    a^b\n\n    cd\nefg|hij"},
    {"indents by a tab, no line behind", u"^a\nb\n|cd", "<Tab>", u"\t^a\n\tb\nc|d", tabs},
    {"reaches no further than the text", u"^a\nb|", "<Tab>", u"    ^a\n    b|"},
    {"takes what there is of a level", u"  abcd|e", "<S-Tab>", u"ab|cde"},
    {"takes a tab, whatever the level", u"\tabcd|", "<S-Tab>", u"a|bcd"},
    {"takes one level of several lines", u"    ^a\n\n      b\n    cdefgh|ij", "<S-Tab>", u"^a\n\n  b\ncd|efghij"},
    {"changes nothing at the margin", u"a|b\n  c", "<S-Tab>", u"a|b\n  c"},
    {"keeps the indentation", u"\tab|", "<CR>", u"\tab\n\t|"},
    {"goes a level deeper behind a brace", u"    if (a) {|", "<CR>", u"    if (a) {\n        |"},
    {"looks at the whole line", u"f(|a) {  \nb", "<CR>", u"f(\n    |a) {  \nb"},
    {"goes deeper behind a colon", u"case 1:|\n", "<CR>", u"case 1:\n\t|\n", tabs},
    {"replaces the selection", u"  a^bc|d", "<CR>", u"  a\n  |d"},
    {"adds nothing to an empty text", u"|", "<CR>", u"\n|"},
    {"goes back to the last stop", u"      |a", "<BS>", u"    |a"},
    {"takes a whole level at a stop", u"x\n        |a", "<BS>", u"x\n    |a"},
    {"takes one where tabs indent", u"    |", "<BS>", u"   |", tabs},
    {"takes the selection", u"   ^ |a", "<BS>", u"   |a"},
    {"goes to the smallest indentation", u"  a^b\n\n      c\n    d|", &Actions::toggleComment, u"^  // ab\n\n  //     c\n  //   d|"},
    {"comes off with one space", u"^  // ab\n  //c\n|", &Actions::toggleComment, u"^  ab\n  c\n|"},
    {"doubles in a mixed block", u"^// a\nb|", &Actions::toggleComment, u"^// // a\n// b|"},
    {"leaves blank lines alone", u" |\n", &Actions::toggleComment, u" |\n"},
    {"does not touch the line behind the selection", u"^a\n|b", &Actions::toggleComment, u"^// a\n|b"},
    {"duplicate", u"a|b\nc", &Actions::duplicateLine, u"ab\n|ab\nc"},
    {"duplicate several", u"a^b\nc|d\ne", &Actions::duplicateLine, u"ab\ncd\n|ab\ncd\ne"},
    {"delete", u"a\nb|c\nd", &Actions::deleteLine, u"a\n|d"},
    {"delete several", u"a^\nb|c\nd", &Actions::deleteLine, u"|d"},
    {"delete nothing", u"a\n|", &Actions::deleteLine, u"a\n|"},
};

} // namespace

TEST(LineEditing, GivesTheTextAndIsOneUndoStep)
{
    for (const Case &tested : cases) {
        SCOPED_TRACE(tested.name);
        const std::string before = QString::fromUtf16(tested.before).toStdString();
        const std::string after = QString::fromUtf16(tested.after).toStdString();
        EditorFixture fixture(QString::fromUtf16(tested.before), tested.indentation);
        fixture.view.setLanguage(LanguageRegistry::withID(u"c").value());
        const QString text = fixture.storage.string();
        if (const auto *const *action = std::get_if<const Action *>(&tested.command)) {
            EXPECT_TRUE(fixture.view.perform(**action));
        } else {
            sendKeys(fixture.view, QString::fromLatin1(std::get<const char *>(tested.command)));
        }
        EXPECT_EQ(fixture.marked().toStdString(), after);
        if (fixture.storage.string() != text) {
            fixture.view.undo();
            EXPECT_EQ(fixture.marked().toStdString(), before);
        }
        EXPECT_FALSE(fixture.undo.canUndo());
        fixture.view.redo();
        EXPECT_EQ(fixture.marked().toStdString(), after);
    }
}

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
