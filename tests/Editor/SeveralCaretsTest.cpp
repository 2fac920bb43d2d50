// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What the editor's own keys and its commands of lines do at several carets.

#include "Commands/Actions.h"
#include "EditorFixture.h"
#include "Highlighting/LanguageRegistry.h"
#include "View/SeveralMarks.h"

#include <gtest/gtest.h>

#include <variant>

using namespace Qt::StringLiterals;

TEST(EditorWithSeveralCarets, TakesLinesOnce)
{
    struct Case {
        const char16_t *before;
        std::variant<const Action *, const char *> command;
        const char16_t *after;
    };
    const Case cases[] = {
        {u"a|b\nc|d", "<Tab>", u"a   |b\nc   |d"},
        {u"^a\nb|\nc|", "<Tab>", u"    ^a\n    b|\n    c|"},
        {u"  {|\n  x|", "<CR>", u"  {\n      |\n  x\n  |"},
        {u"      |a\nb|c", "<BS>", u"    |a\n|c"},
        {u"|a|b\nc\n|d", &Actions::toggleComment, u"// |a|b\nc\n^// d|"},
        {u"a|b|\nc\nd|", &Actions::duplicateLine, u"a|b|\nab\nc\nd\n|d"},
        {u"a|b|\nc\nd|", &Actions::deleteLine, u"|c\n|"},
        {u"  a|\n  |b\n\n  c|", "<S-Tab>", u"a|\n|b\n\n|c"},
    };
    for (const Case &tested : cases) {
        EditorFixture fixture(QString(), {4, Indentation::Unit::spaces});
        fixture.view.setLanguage(LanguageRegistry::withID(u"c").value());
        setMarked(fixture.view, QString::fromUtf16(tested.before));
        SCOPED_TRACE(QString::fromUtf16(tested.before).toStdString());
        if (const auto *const *action = std::get_if<const Action *>(&tested.command)) {
            EXPECT_TRUE(fixture.view.perform(**action));
        } else {
            sendKeys(fixture.view, QString::fromLatin1(std::get<const char *>(tested.command)));
        }
        EXPECT_EQ(marked(fixture.view), QString::fromUtf16(tested.after));
        fixture.view.undo();
        EXPECT_EQ(marked(fixture.view), QString::fromUtf16(tested.before));
        EXPECT_FALSE(fixture.undo.canUndo());
    }
}
