// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/EditorViewController.h"

#include "Commands/Actions.h"
#include "Controls.h"
#include "Editor/BracketMarker.h"
#include "Editor/LineNumberRulerView.h"
#include "Editor/OutOfSightHint.h"
#include "Editor/SpellingController.h"
#include "Editor/SpellingPanel.h"
#include "FileAnswers.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/FileMemory.h"
#include "Spelling/SpellChecker.h"
#include "Surroundings.h"
#include "View/ViewFixture.h"

#include <QFontDatabase>
#include <QJsonArray>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class EditorTest : public testing::Test, protected Surroundings {
protected:
    [[nodiscard]] TextDocument &document(const QString &text)
    {
        auto made = std::make_unique<TextDocument>(documents.services(), QString(), TextFile::Contents{.text = Rope(text)});
        return documents.add(std::move(made));
    }
    void write(const QByteArray &bytes) const { put(u"a.c"_s, bytes); }
    [[nodiscard]] TextDocument &openFile(const QByteArray &bytes)
    {
        write(bytes);
        return *documents.open({path(u"a.c"_s)}, {}).front()->document;
    }
    [[nodiscard]] std::unique_ptr<EditorViewController> open(TextDocument &document)
    {
        auto editor = std::make_unique<EditorViewController>(services, document);
        editor->resize(600, 400);
        editor->show();
        editor->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(editor.get()));
        pass(Scheduler::Milliseconds(100));
        return editor;
    }
    void pass(Scheduler::Milliseconds time)
    {
        for (int turn = 0; turn < 16; ++turn) {
            QCoreApplication::processEvents();
            scheduler.advance(time / 16);
        }
    }
    [[nodiscard]] static QPushButton *button(const EditorViewController &editor, const QString &title)
    {
        return control<QPushButton>(*editor.banner(), title);
    }
    /// Of the unit at `offset`, whether it is coloured.
    [[nodiscard]] static bool isColoured(TextDocument &document, qsizetype offset)
    {
        return document.storage().styleAt(offset) != plainStyle;
    }
};

QString lines(int count)
{
    QString text;
    for (int line = 1; line <= count; ++line) {
        text += u"int line%1; // a comment of some length, so that it wraps in a narrow view\n"_s.arg(line);
    }
    return text;
}

} // namespace

TEST_F(EditorTest, FollowsThePreferences)
{
    TextDocument &text = document(u"a\tb\n"_s);
    const auto editor = open(text);
    EditorTextView &view = editor->textView();
    preferences.set(Settings::wrapLines, false);
    EXPECT_EQ(view.horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    preferences.set(Settings::wrapLines, true);
    EXPECT_TRUE(view.layoutManager().settings().indentsWrappedRows);
    preferences.set(Settings::indentWrappedRows, false);
    EXPECT_FALSE(view.layoutManager().settings().indentsWrappedRows);
    EXPECT_TRUE(view.layoutManager().settings().wrapWidth);
    EXPECT_EQ(view.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    const int width = view.viewport()->width();
    preferences.set(Settings::showLineNumbers, false);
    EXPECT_EQ(view.viewport()->width(), width + view.ruler().thickness());
    preferences.set(Settings::showLineNumbers, true);
    EXPECT_EQ(view.viewport()->width(), width);
    preferences.set(Settings::tabWidth, 3);
    preferences.set(Settings::insertSpaces, true);
    EXPECT_EQ(view.indentation().width, 3);
    // A Makefile wants its tabs whatever the user likes.
    text.setLanguage(LanguageRegistry::withID(u"makefile").value());
    EXPECT_EQ(view.indentation().unit, Indentation::Unit::tab);
    EXPECT_TRUE(view.state(Actions::toggleComment).isEnabled);
    preferences.set(Settings::themeName, u"Solarized Dark"_s);
    EXPECT_EQ(view.colors().background, QColor::fromRgb(Theme::solarizedDark().background));
    preferences.set(Settings::highlightCurrentLine, false);
    EXPECT_FALSE(view.colors().currentLine.isValid());
    preferences.set(Settings::fontSize, 20);
    EXPECT_EQ(view.textFont().pointSizeF(), 20);
    preferences.set(Settings::fontName, u"No Such Font"_s);
    EXPECT_EQ(view.textFont().families(), QFontDatabase::systemFont(QFontDatabase::FixedFont).families());
}

TEST_F(EditorTest, ColoursWhatIsSeenOnceThingsAreQuiet)
{
    TextDocument &text = document(lines(20000));
    text.setLanguage(LanguageRegistry::withID(u"c").value());
    const auto editor = open(text);
    const qsizetype far = text.storage().text().lineStart(15000);
    EXPECT_TRUE(isColoured(text, 0));
    editor->textView().setSelection(TextSelection::at(far), TextView::Reveal::center);
    EXPECT_FALSE(isColoured(text, far));
    scheduler.advance(EditorViewController::highlightDelay);
    EXPECT_TRUE(isColoured(text, far));
    EXPECT_TRUE(isColoured(text, text.storage().text().lineStart(14992))) << "half a view more, above and below";
}

TEST_F(EditorTest, TheBannerSaysWhatHappenedAndDoesItsWork)
{
    TextDocument &text = openFile("one");
    const auto editor = open(text);
    const auto becomes = [this](const char *bytes) {
        bytes ? write(bytes) : void(QFile::remove(path(u"a.c"_s)));
        pass(Scheduler::Milliseconds(1600));
    };
    sendKeys(editor->textView(), u"my "_s);
    EXPECT_FALSE(editor->banner());
    becomes("their version");
    ASSERT_TRUE(editor->banner());
    EXPECT_EQ(editor->banner()->accessibleName(), u"“a.c” changed on disk and has unsaved edits here."_s);
    const QPointer<QPushButton> keep = button(*editor, u"Keep Mine"_s);
    QPushButton *reload = button(*editor, u"Reload from Disk"_s);
    for (const int width : {170, 330, 800}) {
        editor->resize(width, 300);
        pass(Scheduler::Milliseconds(100));
        for (const QPushButton *shown : {keep.get(), reload}) {
            EXPECT_GE(shown->width(), shown->sizeHint().width()) << "cut off at " << width;
            EXPECT_TRUE(editor->banner()->rect().contains({shown->mapTo(editor->banner(), QPoint()), shown->size()})) << width;
        }
        const bool isBeside = editor->banner()->height() < 2 * keep->height();
        EXPECT_EQ(isBeside, width == 800) << width << ": the sentence would be too short to tell what happened";
    }
    keep->setFocus();
    text.storage().apply({{0, 2}, u"My"});
    becomes("their other version");
    ASSERT_EQ(button(*editor, u"Keep Mine"_s), keep) << "a button that is being pressed stays";
    EXPECT_TRUE(keep->hasFocus());
    keep->click();
    EXPECT_FALSE(editor->banner());
    EXPECT_EQ(text.storage().string(), u"My one"_s);
    EXPECT_TRUE(text.isDirty());

    becomes("their second version");
    button(*editor, u"Reload from Disk"_s)->click();
    EXPECT_FALSE(editor->banner());
    EXPECT_EQ(text.storage().string(), u"their second version"_s);
    EXPECT_FALSE(text.isDirty());

    becomes(nullptr);
    ASSERT_TRUE(editor->banner());
    EXPECT_EQ(editor->banner()->accessibleName(), u"“a.c” was deleted or moved."_s);
    const auto second = open(text);
    EXPECT_TRUE(second->banner());
    button(*second, u"Dismiss"_s)->click();
    EXPECT_FALSE(editor->banner());
    EXPECT_TRUE(text.isDirty());

    becomes("back");
    becomes(nullptr);
    button(*editor, u"Save Again"_s)->click();
    EXPECT_TRUE(QFile::exists(path(u"a.c"_s)));
    EXPECT_FALSE(editor->banner());
}

TEST_F(EditorTest, FollowsALogFromItsEndOnly)
{
    TextDocument &log = openFile("one\ntwo\n");
    const auto editor = open(log);
    TextView &view = editor->textView();
    const auto caretAfter = [&](qsizetype caret, const QByteArray &content) {
        view.setSelection(TextSelection::at(caret));
        write(content);
        EXPECT_TRUE(isReverted(log));
        return view.selection().caret;
    };
    EXPECT_EQ(caretAfter(8, "one\ntwo\nthree\n"), 14);
    EXPECT_EQ(caretAfter(3, "one\ntwo\nthree\nfour\n"), 3) << "who reads further up is not disturbed";
    // What comes between does not push the caret out of the view.
    const QByteArray above = "one\n" + QByteArray("line\n").repeated(200);
    (void)view.grab();
    EXPECT_EQ(caretAfter(6, above + "two\nthree\nfour\n"), above.size() + 2);
    EXPECT_FALSE(view.caretRectangle().isEmpty());
}

TEST_F(EditorTest, TheRulerIsAsWideAsItsLargestNumber)
{
    TextDocument &text = document(QString());
    const auto editor = open(text);
    LineNumberRulerView &ruler = editor->textView().ruler();
    const int three = ruler.thickness();
    const auto insert = [&text](int count) { text.storage().apply({{0, 0}, QString(count, u'\n')}); };
    insert(998);
    EXPECT_EQ(ruler.thickness(), three);
    insert(1);
    EXPECT_GT(ruler.thickness(), three);
    EXPECT_EQ(editor->textView().viewport()->x(), ruler.thickness());
    text.storage().apply({{0, 1}, QStringView()});
    EXPECT_EQ(ruler.thickness(), three);
}

TEST_F(EditorTest, AClickOnANumberSelectsItsLine)
{
    TextDocument &text = document(lines(20));
    preferences.set(Settings::wrapLines, false);
    const auto editor = open(text);
    EditorTextView &view = editor->textView();
    const double height = view.layoutManager().rowHeight();
    const auto at = [&](int line) { return QPoint(5, int(view.textViewport().insets().vertical + (line - 0.5) * height)); };
    const auto linesFrom = [&](qsizetype first, qsizetype last) {
        return TextSelection{text.storage().text().lineStart(first), text.storage().text().lineStart(last)};
    };
    QTest::mousePress(&view.ruler(), Qt::LeftButton, {}, at(3));
    EXPECT_EQ(view.selection(), linesFrom(2, 3));
    QTest::mouseMove(&view.ruler(), at(5));
    EXPECT_EQ(view.selection(), linesFrom(2, 5));
    QTest::mouseMove(&view.ruler(), at(1));
    EXPECT_EQ(view.selection(), linesFrom(3, 0));
    QTest::mouseRelease(&view.ruler(), Qt::LeftButton, {}, at(1));
    QTest::mouseClick(&view.ruler(), Qt::LeftButton, Qt::ShiftModifier, at(4));
    EXPECT_EQ(view.selection(), linesFrom(2, 4)) << "from where the selection began";

    QTest::mousePress(&view.ruler(), Qt::LeftButton, {}, at(3));
    QTest::mouseMove(&view.ruler(), QPoint(5, view.ruler().height() + 20));
    pass(Scheduler::Milliseconds(1000));
    EXPECT_EQ(view.selection(), linesFrom(2, 20)) << "scrolls while the pointer rests outside";
    EXPECT_GT(view.scrollOffset(), 0);
}

TEST_F(EditorTest, InHighContrastTheScrollBarStandsOut)
{
    const auto editor = open(document(QString(u"line\n"_s).repeated(1000)));
    QScrollBar *bar = editor->textView().verticalScrollBar();
    const auto shows = [&](quint32 color) {
        const QImage picture = bar->grab().toImage();
        int count = 0;
        for (int y = 0; y < picture.height(); ++y) {
            count += picture.pixel(picture.width() / 2, y) == color ? 1 : 0;
        }
        return count;
    };
    documents.setHighContrast(true);
    const Theme &theme = documents.theme();
    EXPECT_EQ(theme, Theme::shown(Theme::light(), Contrast::high));
    EXPECT_GT(shows(theme.foreground), 10);
    EXPECT_GT(shows(theme.background), bar->height() / 2);
    documents.setHighContrast(false);
    EXPECT_LT(shows(theme.foreground), 10) << "the style's";
    preferences.set(Settings::strengthenColors, false);
    EXPECT_EQ(&documents.theme(), &Theme::light());
}

TEST_F(EditorTest, ChecksSpellingWhereThereIsAChecker)
{
    TextDocument &text = document(u"the wrod\n"_s);
    EXPECT_FALSE(open(text)->state(Actions::checkSpelling).isEnabled);

    SpellChecker checker(workers, {{QStringLiteral(QUILLET_TEST_DATA "/spelling")}, {u"en"_s}, {}});
    SpellingPanel panel(checker);
    services.spellChecker = &checker;
    services.spellingPanel = &panel;
    const auto one = open(text);
    const auto other = open(text);
    one->textView().perform(Actions::toggleContinuousSpellChecking);
    EXPECT_EQ(other->textView().state(Actions::toggleContinuousSpellChecking).checkMark, CheckMark::none);
    EXPECT_TRUE(other->textView().perform(Actions::checkSpelling));
    pass(Scheduler::Milliseconds(100));
    EXPECT_EQ(other->textView().selectedText(), u"wrod");
    QMenu menu;
    emit other->textView().contextMenuRequested(&menu, 5);
    EXPECT_FALSE(menu.isEmpty());

    one->chooseDictionaries({u"de_AT"_s});
    EXPECT_EQ(other->spelling()->dictionaries(), QStringList(u"de_AT"_s));
}

TEST_F(EditorTest, RemembersHowTheSpellingOfAFileIsChecked)
{
    SpellChecker checker(workers, {{QStringLiteral(QUILLET_TEST_DATA "/spelling")}, {u"en"_s}, {}});
    SpellingPanel panel(checker);
    const QString kept = path(u"memory/files.json"_s);
    const auto isOnIn = [](EditorViewController &editor) { return editor.spelling()->isContinuous(); };
    FileMemory memory(kept);
    services.spellChecker = &checker;
    services.spellingPanel = &panel;
    services.fileMemory = &memory;
    {
        const auto editor = open(openFile("the word"));
        EXPECT_FALSE(isOnIn(*editor)) << "as the settings have it";
        editor->textView().perform(Actions::toggleContinuousSpellChecking);
        editor->chooseDictionaries({u"de_AT"_s, u"en_US"_s});
        documents.remove(editor->document());
    }
    FileMemory later(kept);
    services.fileMemory = &later;
    const auto again = open(openFile("the word"));
    EXPECT_TRUE(isOnIn(*again));
    EXPECT_EQ(again->spelling()->chosenDictionaries(), QStringList({u"de_AT"_s, u"en_US"_s}));

    // A text that gets a file takes along what was chosen for it.
    const auto unnamed = open(document(u"some text"_s));
    unnamed->chooseDictionaries({u"de_AT"_s});
    unnamed->document().save(path(u"b"_s));
    pass(Scheduler::Milliseconds(100));
    EXPECT_EQ(later.value(path(u"b"_s), FileMemory::dictionaries).toArray().size(), 1);
    preferences.set(Settings::checkSpelling, true);
    EXPECT_TRUE(isOnIn(*open(document(u"another"_s))));
    EXPECT_FALSE(isOnIn(*unnamed));

    // What is chosen for many files is forgotten one by one, and a damaged file is no harm.
    for (size_t count = 0; count < FileMemory::largestCount; ++count) {
        later.set(u"/file%1"_s.arg(count), FileMemory::checksSpelling, true);
    }
    EXPECT_TRUE(later.value(path(u"b"_s), FileMemory::dictionaries).isUndefined());
    put(u"memory/files.json"_s, "[{\"path\":\"relative\",\"checksSpelling\":true},7,{\"path\":\"/a\",\"x\":1}]");
    FileMemory damaged(kept);
    damaged.set(u"/a"_s, FileMemory::checksSpelling, true);
    damaged.set(u"/a"_s, FileMemory::checksSpelling, QJsonValue(QJsonValue::Undefined));
    EXPECT_EQ(read(u"memory/files.json"_s), "[{\"path\":\"/a\",\"x\":1}]");
}

TEST_F(EditorTest, MarksTheOtherBracketWhereverItIs)
{
    const QString filling = u"x;\n"_s.repeated(30000);
    TextDocument &text = document(u"int main() {\n{\n\n\n"_s + u"x;\n"_s.repeated(1000) + u"}\n"_s + filling + u"}\n"_s);
    const auto editor = open(text);
    EditorTextView &view = editor->textView();
    const auto hint = [&view]() -> QString {
        const auto *const found = view.viewport()->findChild<OutOfSightHint *>();
        return found && found->isVisible() ? found->accessibleName() : QString();
    };
    const qsizetype opening = 11;
    const qsizetype closing = text.storage().length() - 2;
    view.setSelection(TextSelection::at(opening + 2), TextView::Reveal::nearest);
    EXPECT_EQ(hint(), u"Line 1,005: x; }"_s) << "out of view, but coloured";
    view.setSelection(TextSelection::at(opening), TextView::Reveal::nearest);
    EXPECT_EQ(hint(), QString()) << "a worker has not been asked";
    pass(2 * BracketMarker::restTime);
    EXPECT_EQ(hint(), u"Line 31,006: x; }"_s);
    EXPECT_TRUE(view.perform(Actions::goToMatchingBracket));
    pass(2 * BracketMarker::restTime);
    EXPECT_EQ(view.selection(), TextSelection::at(closing));
    pass(2 * BracketMarker::restTime);
    EXPECT_EQ(hint(), u"Line 1: int main() {"_s);
    sendKeys(view, u"<Up>"_s);
    EXPECT_EQ(hint(), QString());
}
