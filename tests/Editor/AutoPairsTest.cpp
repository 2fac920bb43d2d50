// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/AutoPairs.h"

#include "Base/NotificationCenter.h"
#include "Commands/Actions.h"
#include "Editor/EditorViewController.h"
#include "EditorFixture.h"
#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/SyntaxHighlighter.h"
#include "Settings/Preferences.h"
#include "Surroundings.h"
#include "View/SeveralMarks.h"

#include <QInputMethodEvent>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class AutoPairsTest : public testing::Test, protected EditorFixture {
protected:
    AutoPairsTest() : EditorFixture(QString(), {4, Indentation::Unit::spaces})
    {
        view.setAutoPairs(std::make_unique<AutoPairs>(view, scopesOf(&highlighter)));
    }
    void begin(QStringView language, const QString &before)
    {
        view.setLanguage(LanguageRegistry::withID(language).value());
        highlighter.setLanguage(view.language());
        setMarked(view, before);
        undo.removeAllActions();
    }
    [[nodiscard]] QString after(const QString &keys)
    {
        sendKeys(view, keys);
        return ::marked(view);
    }

    NotificationCenter notifications;
    SyntaxHighlighter highlighter{storage, Language::plainText(), Theme::dark(), scheduler, notifications};
};

struct Case {
    const char16_t *language;
    const char16_t *before;
    const char16_t *keys;
    const char16_t *after;
};

} // namespace

TEST_F(AutoPairsTest, AreCompletedTypedOverDeletedAndPutAround)
{
    const Case cases[] = {
        // Before a blank, an end, or what closes.
        {u"c", u"f|", u"(", u"f(|)"},
        {u"c", u"f| + 1", u"(", u"f(|) + 1"},
        {u"c", u"a[|]", u"(", u"a[(|)]"},
        {u"c", u"|x", u"(", u"(|x"},
        {u"c", u"if (a) |\nb", u"{", u"if (a) {|}\nb"},
        {u"text", u"say |", u"\"", u"say \"|\""},
        {u"text", u"say |", u"\"a (b", u"say \"a (b|)\""},
        {u"text", u"don|", u"'", u"don'|"},
        {u"text", u"|", u"'", u"'|"},
        {u"c", u"= |;", u"'", u"= '|;"},
        {u"c", u"= |", u"'", u"= '|'"},
        {u"c", u"don|", u"'", u"don'|"},
        {u"c", u"L|", u"\"", u"L\"|\""},
        {u"rust", u"fn f<T: |", u"'", u"fn f<T: '|"},
        {u"javascript", u"= |", u"`", u"= `|`"},
        // One that is open in the line is closed.
        {u"c", u"= \"abc|", u"\"", u"= \"abc\"|"},
        {u"c", u"= \"it's\" + |", u"'", u"= \"it's\" + '|'"},
        {u"c", u"= \"a\\\"b|", u"\"", u"= \"a\\\"b\"|"},
        {u"c", u"= \\|", u"\"", u"= \\\"|"},
        {u"c", u"\"\nx = |", u"\"", u"\"\nx = \"|\""},
        {u"python", u"|", u"\"\"\"", u"\"\"\"|"},
        // Only what was put there is typed over, until the caret has left.
        {u"c", u"f|", u"(a)", u"f(a)|"},
        {u"c", u"f|", u"([{}])", u"f([{}])|"},
        {u"c", u"f|", u"(\"a\"", u"f(\"a\"|)"},
        {u"c", u"f|", u"(<Right><Left>)", u"f()|)"},
        {u"c", u"f(|)", u")", u"f()|)"},
        {u"c", u"= |", u"\"\\\"", u"= \"\\\"|\""},
        // Backspace between two.
        {u"c", u"f|", u"(<BS>", u"f|"},
        {u"c", u"f(|)", u"<BS>", u"f|"},
        {u"c", u"f([|)", u"<BS>", u"f(|)"},
        {u"c", u"= \"|\"", u"<BS>", u"= |"},
        {u"c", u"= \"a\"|\"b\"", u"<BS>", u"= \"a|\"b\""},
        {u"c", u"    (|)", u"<BS>", u"    |"},
        {u"c", u"      |", u"<BS>", u"    |"},
        // Around what is selected, which stays selected.
        {u"c", u"f ^a\nb|;", u"(", u"f (^a\nb|);"},
        {u"c", u"f ^ab|;", u"\"", u"f \"^ab|\";"},
        {u"text", u"f ^ab|", u"'", u"f '|"},
        {u"c", u"^ab|", u")", u")|"},
        // Nothing of it in comments and strings.
        {u"c", u"// a |", u"(", u"// a (|"},
        {u"c", u"// a |\nb", u"\"", u"// a \"|\nb"},
        {u"c", u"/* | */", u"(", u"/* (| */"},
        {u"c", u"/* (|) */", u"<BS>", u"/* |) */"},
        {u"c", u"/* a */|", u"(", u"/* a */(|)"},
        {u"c", u"\"a | b\"", u"[", u"\"a [| b\""},
        {u"c", u"\"a ^b| c\"", u"[", u"\"a [| c\""},
        {u"c", u"\"a\"|", u"[", u"\"a\"[|]"},
        {u"python", u"# a |", u"(", u"# a (|"},
        // A line between two brackets.
        {u"c", u"  f() |", u"{<CR>x", u"  f() {\n      x|\n  }"},
        {u"c", u"// {|}", u"<CR>", u"// {\n|}"},
        {u"c", u"\"|\"", u"<CR>", u"\"\n|\""},
        // Every caret by itself.
        {u"c", u"f|\ng|x\n// |", u"(", u"f(|)\ng(|x\n// (|"},
        {u"c", u"f|\ng|", u"(1)", u"f(1)|\ng(1)|"},
        {u"c", u"f|\n^g|", u"[", u"f[|]\n[^g|]"},
        {u"c", u"f(|)\n  |g", u"<BS>", u"f|\n|g"},
        {u"c", u"f {|}\n  g {|}", u"<CR>", u"f {\n    |\n}\n  g {\n      |\n  }"},
    };
    for (const Case &tested : cases) {
        const QString before = QString::fromUtf16(tested.before);
        const QString keys = QString::fromUtf16(tested.keys);
        SCOPED_TRACE((before + u"  "_s + keys).toStdString());
        begin(tested.language, before);
        EXPECT_EQ(after(keys), QString::fromUtf16(tested.after));
        const QString text = storage.string();
        int steps = 0;
        for (; undo.canUndo(); ++steps) {
            view.undo();
        }
        EXPECT_LE(steps, keys.startsWith(u'<') && keys.count(u'<') == 1 ? 1 : keys.size());
        EXPECT_EQ(::marked(view), before);
        while (undo.canRedo()) {
            view.redo();
        }
        EXPECT_EQ(storage.string(), text);
    }
}

TEST_F(AutoPairsTest, ComeWithInputMethodsButNotWhileOverwriting)
{
    begin(u"c", u"= |"_s);
    QInputMethodEvent composing(u"\""_s, {});
    QCoreApplication::sendEvent(&view, &composing);
    EXPECT_EQ(storage.string(), u"= "_s);
    QInputMethodEvent quote; // as a dead key and the space bar give it
    quote.setCommitString(u"\""_s);
    QCoreApplication::sendEvent(&view, &quote);
    EXPECT_EQ(::marked(view), u"= \"|\""_s);

    ASSERT_TRUE(view.perform(Actions::toggleOverwriteMode));
    begin(u"c", u"f|"_s);
    EXPECT_EQ(after(u"(a)"_s), u"f(a)|"_s);
    ASSERT_TRUE(view.perform(Actions::toggleOverwriteMode));

    view.setSelection(Selections(CaretSelection{.caret = {4}, .anchor = 4, .cellsBehind = 2}));
    EXPECT_EQ(after(u"["_s), u"f(a)  [|]"_s);

    view.setAutoPairs(nullptr);
    begin(u"c", u"f|"_s);
    EXPECT_EQ(after(u"(a)<BS>"_s), u"f(a|"_s);
}

/// What is far apart is not all coloured for one key.
TEST_F(AutoPairsTest, ReadABoundedAmountPerKey)
{
    qsizetype asked = 0;
    qsizetype units = 0;
    view.setAutoPairs(std::make_unique<AutoPairs>(view, [&](TextRange range, const auto & /*visit*/) {
        ++asked;
        units += range.length;
    }));
    QString text;
    for (int line = 0; line < 800; ++line) {
        text += QString(999, u'a') + u"|\n"_s;
    }
    begin(u"c", text);
    (void)after(u"("_s);
    EXPECT_LE(asked, 2 * AutoPairs::mostScoped / 1000 + 4);
    EXPECT_GE(asked, AutoPairs::mostScoped / 1000);
    EXPECT_LE(units, 2 * asked);
    EXPECT_TRUE(storage.string().startsWith(QString(999, u'a') + u"()\n"_s));
    EXPECT_TRUE(storage.string().endsWith(QString(999, u'a') + u"(\n"_s));
}

namespace {

class AutoPairsPreferenceTest : public testing::Test, protected Surroundings {};

} // namespace

TEST_F(AutoPairsPreferenceTest, IsFollowedAndWhatModalEditingRepeatsIsTheSame)
{
    auto made = std::make_unique<TextDocument>(documents.services(), QString(), TextFile::Contents{});
    TextDocument &document = documents.add(std::move(made));
    document.setLanguage(LanguageRegistry::withID(u"c").value());
    EditorViewController editor(services, document);
    editor.resize(600, 400);
    editor.show();
    editor.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&editor));
    EditorTextView &view = editor.textView();
    const auto typed = [&view](const QString &before, const QString &keys) {
        setMarked(view, before);
        sendKeys(view, keys);
        return ::marked(view);
    };
    EXPECT_EQ(typed(u"|"_s, u"f(// ("_s), u"f(// (|"_s);
    preferences.set(Settings::autoPairs, true);
    EXPECT_EQ(typed(u"|"_s, u"f(// ("_s), u"f(// (|)"_s);
    EXPECT_EQ(typed(u"// |\n"_s, u"("_s), u"// (|\n"_s);
    preferences.set(Settings::vimMode, true);
    const std::tuple<QString, QString, QString> cases[] = {
        {u"|\n\n"_s, u"if(a)b<Esc>j."_s, u"f(a)b\nf(a)|b\n"_s},
        {u"|f \ng "_s, u"A{<CR>x;<BS><Esc>Gk0jA<Esc>"_s, u"f {\n    x\n}\ng| "_s},
        {u"|f \ng "_s, u"A{<CR>x;<BS><Esc>G."_s, u"f {\n    x\n}\ng {\n    |x\n}"_s},
        {u"|f \n"_s, u"r("_s, u"|( \n"_s},
    };
    for (const auto &[before, keys, result] : cases) {
        SCOPED_TRACE(keys.toStdString());
        EXPECT_EQ(typed(before, keys), result);
    }
    sendKeys(view, u"u"_s);
    EXPECT_EQ(view.storage().string(), u"f \n"_s);
    preferences.set(Settings::autoPairs, false);
    EXPECT_EQ(typed(u"|\n\n"_s, u"if(a)b<Esc>j."_s), u"f(a)b\nf(a)|b\n"_s);
}
