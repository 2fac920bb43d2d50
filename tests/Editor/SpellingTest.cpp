// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SpellingController.h"

#include "Controls.h"
#include "Editor/SpellingPanel.h"
#include "EditorFixture.h"
#include "HeldWorkers.h"
#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/SyntaxHighlighter.h"
#include "Spelling/SpellChecker.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using Outcome = SpellingController::Outcome;

namespace {

/// The text with «» around the words that count.
QString withWordsMarked(QString text, TextRange range, SpellingWords::Setting setting)
{
    const std::vector<SpellingWord> words = SpellingWords::touching(Rope(text), range, setting);
    for (auto word = words.rbegin(); word != words.rend(); ++word) {
        EXPECT_EQ(word->text, text.sliced(word->range.location, word->range.length));
        text.insert(word->range.end(), u'»').insert(word->range.location, u'«');
    }
    return text;
}

class SpellingTest : public testing::Test {
protected:
    SpellingTest() { open(u""_s); }

    /// `marked` as EditorFixture takes it.
    void open(const QString &marked, const QString &languageId = {})
    {
        spelling.reset();
        highlighter.reset();
        editor = std::make_unique<EditorFixture>(marked);
        const Language language = LanguageRegistry::withID(languageId).value_or(Language::plainText());
        highlighter = std::make_unique<SyntaxHighlighter>(editor->storage, language, Theme::light(), editor->scheduler, notifications);
        highlighter->ensureHighlighted({0, editor->storage.length()});
        spelling = std::make_unique<SpellingController>(editor->view, highlighter.get(), language,
                                                        SpellingController::Services{editor->scheduler, checker, panel, [this] { ++beeps; },
                                                                                     [this](const QString &text) { reports << text; }});
    }
    void settle()
    {
        for (int turn = 0; turn < 8; ++turn) {
            QCoreApplication::processEvents();
            editor->scheduler.advance(Scheduler::Milliseconds(1));
        }
    }
    /// The words that the view underlines.
    [[nodiscard]] QStringList underlined()
    {
        // The first question has it found out.
        (void)spelling->misspellingsIn({0, editor->storage.length()});
        settle();
        QStringList words;
        for (const TextRange range : spelling->misspellingsIn({0, editor->storage.length()})) {
            words << editor->storage.string(range);
        }
        return words;
    }
    [[nodiscard]] QString afterCheck()
    {
        spelling->checkSpelling();
        settle();
        settle();
        return editor->marked();
    }

    HeldWorkers workers{HeldWorkers::Mode::atOnce};
    QTemporaryDir folder;
    SpellChecker checker{workers, {{QStringLiteral(QUILLET_TEST_DATA "/spelling")}, {u"en"_s, u"de"_s}, folder.filePath(u"words.txt"_s)}};
    NotificationCenter notifications;
    SpellingPanel panel{checker};
    int beeps = 0;
    QStringList reports;
    std::unique_ptr<EditorFixture> editor;
    std::unique_ptr<SyntaxHighlighter> highlighter;
    std::unique_ptr<SpellingController> spelling;
};

} // namespace

TEST(SpellingWordsTest, LeavesAloneWhatNoDictionaryHas)
{
    using enum SpellingWords::Setting;
    for (const auto &[setting, marked] : {
             std::pair{prose, u"«The» «well»-«known» «don't», «don’t» 'a' «Größe» («naïve»)"_s},
             {prose, u"a 2nd v2 x86 HTTP URLs iPhone camelCase snake_case NASA"_s},
             {prose, u"_«stressed» «words»_ *«and»* «more»:«here» «word»."_s},
             {prose, u"«see» https://example.com/a-b?c=d#e, («or» www.example.com/x) «or» «here»"_s},
             {prose, u"«mail» ann.bee@example.com, <bob@example.org> «or» @nick «and» «more»"_s},
             {prose, u"[«text»](https://example.com/teh) «behind»"_s},
             {prose, u"/usr/share ~/notes ./configure ../up a/b/c src/Text/Rope.h «and»/«or» «end»"_s},
             {prose, u"--verbose file.txt .hidden std::string call() `code` &nbsp; $home 100%done «rest»"_s},
             {prose, u"\\section C:\\temp «text»"_s},
             {prose, u"言葉 «слово» «words»"_s},
             {code, u"\"\\n«hello» \\t«you» \\x41bc \\\\«path» %d\""_s},
             {code, u"// @param «wide» «the» «width»"_s},
         }) {
        const QString text = QString(marked).remove(u'«').remove(u'»');
        EXPECT_EQ(withWordsMarked(text, {0, text.size()}, setting), marked);
    }
    // A stretch may begin and end inside a word or an address; only what touches it is reported.
    EXPECT_EQ(withWordsMarked(u"before words here behind"_s, {9, 6}, prose), u"before «words» «here» behind");
    EXPECT_EQ(withWordsMarked(u"https://example.com/words"_s, {21, 2}, prose), u"https://example.com/words");
    EXPECT_EQ(withWordsMarked(QString(100000, u'x') + u" word"_s, {100001, 4}, prose).right(7), u" «word»");
}

TEST_F(SpellingTest, ChecksCommentsAndStringsOfPrograms)
{
    open(u"int speling = wrod; // the wrod is here\nchar *str = \"a strng\\nhere hree\"; /* teh\n\ncommnt */ foo"_s, u"c"_s);
    EXPECT_EQ(underlined(), QStringList({u"wrod"_s, u"strng"_s, u"hree"_s, u"teh"_s, u"commnt"_s}));
    open(u"# the hedding\n\nthe wrod and `teh code` and *hree*\n\n```\nteh code\n```\n<https://teh.example>\n"_s, u"markdown"_s);
    EXPECT_EQ(underlined(), QStringList({u"hedding"_s, u"wrod"_s, u"hree"_s}));
    open(u"teh \"wrod\" // hree\nGröße Grösse"_s);
    EXPECT_EQ(underlined(), QStringList({u"teh"_s, u"wrod"_s, u"hree"_s, u"Grösse"_s}));
}

TEST_F(SpellingTest, UnderlinesInTheViewWhileSwitchedOn)
{
    open(u"the wrod is here|\n"_s);
    const auto look = [this] {
        (void)editor->view.grab();
        settle();
        return editor->view.viewport()->grab().toImage();
    };
    const QImage plain = look();
    EXPECT_FALSE(checker.isInUse());
    spelling->toggleContinuous();
    EXPECT_NE(look(), plain);
    spelling->ignore(u"wrod"_s);
    EXPECT_EQ(look(), plain);
}

TEST_F(SpellingTest, SparesTheWordThatIsBeingTyped)
{
    open(u"teh |"_s);
    for (const auto &[keys, words] : {std::pair(u"wrodx<BS>"_s, u"teh"_s), // still in it
                                      {u"<Left>"_s, u"teh"_s},
                                      {u"<End> "_s, u"teh wrod"_s},
                                      {u"<Left>"_s, u"teh wrod"_s}, // come back, it was not typed now
                                      {u"<End>hree"_s, u"teh wrod"_s},
                                      {u"<Up><Home>"_s, u"teh wrod hree"_s}}) {
        sendKeys(editor->view, keys);
        EXPECT_EQ(underlined().join(u' '), words) << keys.toStdString();
    }
    // Pasted at once, it is not typed.
    editor->view.insertText(u"commnt "_s, {0, 0});
    editor->view.insertText(u"spelingg"_s, {0, 0});
    EXPECT_THAT(underlined(), testing::Contains(u"spelinggcommnt"_s));
}

TEST_F(SpellingTest, GoesFromMistakeToMistake)
{
    open(u"|the wrod is here, teh word\n"_s);
    EXPECT_EQ(afterCheck(), u"the ^wrod| is here, teh word\n");
    EXPECT_EQ(spelling->outcome(), Outcome::found);
    EXPECT_EQ(afterCheck(), u"the wrod is here, ^teh| word\n");
    EXPECT_EQ(afterCheck(), u"the ^wrod| is here, teh word\n");
    EXPECT_EQ(beeps, 0);
    spelling->ignore(u"wrod"_s);
    spelling->ignore(u"teh"_s);
    EXPECT_EQ(afterCheck(), u"the ^wrod| is here, teh word\n");
    EXPECT_EQ(spelling->outcome(), Outcome::nothingFound);
    EXPECT_EQ(beeps, 1);
}

TEST_F(SpellingTest, SearchesALargeTextInSlices)
{
    const QString line = u"the word is here and the spelling of the comment\n"_s;
    const QString text = line.repeated(2000);
    open(text + u"|teh\n"_s);
    editor->view.setSelection(TextSelection::at(0));
    spelling->checkSpelling();
    EXPECT_EQ(spelling->outcome(), Outcome::searching);
    settle();
    settle();
    EXPECT_EQ(editor->view.selection().range(), (TextRange{text.size(), 3}));

    // Who moves or types meanwhile has other plans.
    for (const QString &keys : {u"<Right>"_s, u"<Del>"_s, u""_s}) {
        editor->view.setSelection(TextSelection::at(0));
        spelling->checkSpelling();
        ASSERT_EQ(spelling->outcome(), Outcome::searching);
        sendKeys(editor->view, keys);
        if (keys.isEmpty()) {
            editor->storage.apply({{0, 1}, QStringView()}); // in another view
        }
        const TextSelection selection = editor->view.selection();
        for (int turn = 0; turn < 100; ++turn) {
            settle();
        }
        EXPECT_EQ(spelling->outcome(), Outcome::none);
        EXPECT_EQ(editor->view.selection(), selection);
    }
}

TEST_F(SpellingTest, CorrectsAWordAsOneStep)
{
    open(u"the |wrod is here\n"_s);
    (void)underlined();
    for (const qsizetype offset : {0, 4, 6, 8, 9}) {
        const auto correction = spelling->correctionAt(offset, SpellingController::menuTimeout);
        EXPECT_EQ(correction ? correction->range : TextRange(), (offset % 9 ? TextRange{4, 4} : TextRange())) << offset;
    }
    const auto correction = spelling->correctionAt(4, SpellingController::menuTimeout).value();
    EXPECT_THAT(correction.guesses.value_or(QStringList()), testing::Contains(u"word"_s));
    spelling->replace(correction, u"word"_s);
    EXPECT_EQ(editor->storage.string(), u"the word is here\n");
    editor->view.undo();
    EXPECT_EQ(editor->storage.string(), u"the wrod is here\n");
    EXPECT_FALSE(editor->undo.canUndo());
    editor->view.insertText(u"some"_s, {0, 3});
    spelling->replace(correction, u"word"_s); // the word stands elsewhere by now
    EXPECT_EQ(editor->storage.string(), u"some wrod is here\n");
    EXPECT_EQ(beeps, 1);
}

TEST_F(SpellingTest, OffersCorrectionsInTheContextMenu)
{
    open(u"the |wrod is here\n"_s);
    const auto titles = [this](qsizetype offset) {
        QMenu menu;
        menu.addAction(u"Cut"_s);
        spelling->addCorrections(menu, offset);
        return titlesOf(menu);
    };
    EXPECT_EQ(titles(4), QStringList(u"Cut"_s)); // nobody asked for spelling yet
    spelling->toggleContinuous();
    (void)underlined();
    EXPECT_EQ(titles(0), QStringList(u"Cut"_s));
    EXPECT_EQ(titles(5).first(), u"word");
    EXPECT_EQ(titles(5).last(5), QStringList({u"-"_s, u"&Learn Spelling"_s, u"&Ignore Spelling"_s, u"-"_s, u"Cut"_s}));

    QMenu menu;
    spelling->addCorrections(menu, 5);
    menu.actions().first()->trigger();
    EXPECT_EQ(editor->storage.string(), u"the word is here\n");
}

// A menu that grew would have another entry under the pointer.
TEST_F(SpellingTest, ShowsLateSuggestionsInAMenuOfTheirOwn)
{
    open(u"the |wrod is here\n"_s);
    spelling->toggleContinuous();
    (void)underlined();
    workers.isHeld = true;
    QMenu menu;
    menu.addAction(u"Cut"_s);
    spelling->addCorrections(menu, 5);
    const QStringList titles = titlesOf(menu);
    EXPECT_EQ(titles.first(), u"Suggestions"_s);
    QMenu &late = *menu.actions().first()->menu();
    EXPECT_EQ(titlesOf(late), QStringList(u"(Searching…)"_s));
    workers.finish();
    settle();
    EXPECT_EQ(titlesOf(late).first(), u"word"_s);
    EXPECT_EQ(titlesOf(menu), titles);
    late.actions().first()->trigger();
    EXPECT_EQ(editor->storage.string(), u"the word is here\n");
}

TEST_F(SpellingTest, GoesByTheDictionariesThatTheTextIsIn)
{
    const QString english = u"the word and the spelling of a string is correct here, a comment, \n"_s;
    const QString german = u"Größe, laut, Bär und Füße; "_s;
    open(u"|"_s + english);
    const QSignalSpy changes(spelling.get(), &SpellingController::dictionariesChanged);
    EXPECT_EQ(spelling->dictionaries(), QStringList({u"en_US"_s, u"de_AT"_s}));
    spelling->toggleContinuous();
    settle();
    EXPECT_EQ(spelling->dictionaries(), QStringList(u"en_US"_s));
    editor->view.insertText(german + u"teh "_s, {0, 0});
    EXPECT_EQ(underlined(), QStringList({u"Größe"_s, u"laut"_s, u"Bär"_s, u"und"_s, u"Füße"_s, u"teh"_s}));
    editor->view.insertText(german.repeated(10), {0, 0});
    settle();
    EXPECT_EQ(spelling->dictionaries().size(), 1) << "it may be typed on";
    editor->scheduler.advance(SpellingController::guessDelay);
    settle();
    EXPECT_EQ(spelling->dictionaries(), QStringList({u"en_US"_s, u"de_AT"_s}));
    EXPECT_EQ(underlined(), QStringList(u"teh"_s));

    spelling->setDictionaries({u"de_AT"_s});
    EXPECT_EQ(spelling->dictionaries(), QStringList(u"de_AT"_s));
    EXPECT_THAT(underlined(), testing::Contains(u"word"_s));
    editor->view.insertText(english.repeated(50), {0, 0});
    editor->scheduler.advance(SpellingController::guessDelay);
    settle();
    EXPECT_EQ(spelling->dictionaries(), QStringList(u"de_AT"_s)) << "what was chosen stays";
    EXPECT_GE(changes.count(), 3);
}

TEST_F(SpellingTest, PanelFollowsTheViewAndWorksWithKeys)
{
    open(u"|the wrod is here, teh word and commnt\n"_s);
    spelling->showPanel();
    settle();
    QDialog &window = *panel.window();
    auto &replacement = *window.findChild<QLineEdit *>();
    auto &guesses = *window.findChild<QListWidget *>();
    const auto button = [&window](const QString &title) { return control<QPushButton>(window, title); };
    EXPECT_EQ(editor->view.selectedText(), u"wrod");
    EXPECT_EQ(replacement.text(), u"word");
    QTest::keyClick(&replacement, Qt::Key_Down);
    EXPECT_EQ(replacement.text(), guesses.item(1)->text());
    QTest::keyClick(&replacement, Qt::Key_Up);
    // What is pressed, the text and the next mistake.
    const auto after = [this](const std::function<void()> &press) {
        press();
        settle();
        return editor->storage.string().chopped(1) + u": "_s + editor->view.selectedText();
    };
    EXPECT_EQ(after([&] { QTest::keyClick(&replacement, Qt::Key_Return); }), u"the word is here, teh word and commnt: teh");
    QTest::keyClicks(&replacement, u"that"_s);
    EXPECT_EQ(after([&] { button(u"Change"_s)->click(); }), u"the word is here, that word and commnt: commnt");
    // The small dictionary does not have “that”.
    EXPECT_EQ(after([&] { button(u"Learn"_s)->click(); }), u"the word is here, that word and commnt: that");
    EXPECT_EQ(after([&] { button(u"Ignore"_s)->click(); }), u"the word is here, that word and commnt: that");
    EXPECT_EQ(beeps, 1);
    EXPECT_EQ(spelling->outcome(), Outcome::nothingFound);
    EXPECT_FALSE(button(u"Change"_s)->isEnabled());

    // Another view, then none.
    EditorFixture other(u"^hree|"_s);
    SpellingController second(other.view, nullptr, Language::plainText(),
                              {other.scheduler, checker, panel, [this] { ++beeps; }, [](const QString &) {}});
    panel.follow(second);
    settle();
    EXPECT_FALSE(replacement.isReadOnly());
    EXPECT_TRUE(window.findChild<QLabel *>()->text().contains(u"hree"_s));
    panel.follow(*spelling);
    spelling.reset();
    settle();
    EXPECT_TRUE(replacement.isReadOnly());
    EXPECT_FALSE(button(u"Find Next"_s)->isEnabled());
}

TEST_F(SpellingTest, WithoutADictionaryNothingIsOffered)
{
    checker.setLanguages({u"fi"_s});
    EXPECT_FALSE(spelling->canCheck());
    EXPECT_FALSE(spelling->continuousState().isEnabled);
}
