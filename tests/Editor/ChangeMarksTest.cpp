// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/ColorContrast.h"
#include "Commands/Actions.h"
#include "Controls.h"
#include "Editor/ChangeNavigator.h"
#include "Editor/EditorViewController.h"
#include "GitRepository.h"
#include "Surroundings.h"
#include "View/ViewFixture.h"

#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class ChangeMarksTest : public testing::Test, protected Surroundings {
protected:
    void open(const QByteArray &bytes)
    {
        put(u"a.txt"_s, bytes);
        document = documents.open({path(u"a.txt"_s)}, {}).front()->document;
        editor = std::make_unique<EditorViewController>(services, *document);
        editor->resize(600, 400);
        editor->show();
        editor->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(editor.get()));
        rest();
    }
    void rest()
    {
        for (int turn = 0; turn < 8; ++turn) {
            scheduler.advance(ChangeMarks::restTime);
            QCoreApplication::processEvents();
        }
    }
    void edit(TextRange range, QStringView text)
    {
        document->storage().apply({range, text});
        rest();
    }
    /// A letter for each kind and the offset of each mark.
    [[nodiscard]] QString marks() const
    {
        QString result;
        for (const LineChange &change : editor->changes().marks().changes()) {
            result += u"%1%2 "_s.arg(QChar(u"amd"[int(change.kind)])).arg(change.range.location);
        }
        return result.trimmed();
    }
    /// Clicks beside the text, at that part of the row's height.
    void clickMark(int row, double part = 0.5)
    {
        LineNumberRulerView &ruler = editor->textView().ruler();
        const double height = editor->textView().layoutManager().rowHeight();
        const double top = editor->textView().textViewport().rows(0, 300).front().top;
        QTest::mouseClick(&ruler, Qt::LeftButton, {}, {ruler.width() - 4, int(top + (row + part) * height)});
    }
    [[nodiscard]] QString text() const { return document->storage().string(); }

    std::shared_ptr<TextDocument> document;
    std::unique_ptr<EditorViewController> editor;
};

} // namespace

TEST_F(ChangeMarksTest, ComparesWithTheFileWhenEditsHaveComeToRest)
{
    open("one\ntwo\nthree\n");
    EXPECT_EQ(workers.jobs.size(), 0u);
    document->storage().apply({{4, 3}, u"2"});
    EXPECT_EQ(marks(), u""_s);
    rest();
    EXPECT_EQ(marks(), u"m4"_s);
    document->storage().apply({{0, 0}, u"new\n"});
    EXPECT_EQ(marks(), u"m8"_s) << "it stays on its line at once";
    rest();
    EXPECT_EQ(marks(), u"a0 m8"_s);
    document->undoManager().undo();
    rest();
    EXPECT_EQ(marks(), u"m4"_s);
    preferences.set(Settings::markChanges, false);
    rest();
    EXPECT_EQ(marks(), u""_s);
    preferences.set(Settings::markChanges, true);
    rest();
    EXPECT_EQ(marks(), u"m4"_s);
    document->save(document->path());
    rest();
    EXPECT_EQ(marks(), u""_s);
    edit({4, 1}, u"two");
    EXPECT_EQ(marks(), u"m4"_s) << "against what was saved last";
    document->revertToFileOnDisk();
    rest();
    EXPECT_EQ(marks(), u""_s);
}

TEST_F(ChangeMarksTest, ComparesWhatWasNotReadFromAFileWithTheFileThereIs)
{
    open("one\n");
    const auto show = [this](std::unique_ptr<TextDocument> made) {
        editor.reset();
        document = documents.add(std::move(made)).shared_from_this();
        editor = std::make_unique<EditorViewController>(services, *document);
    };
    const auto textWithoutFile = [&](std::unique_ptr<TextDocument> made) {
        show(std::move(made));
        edit({0, 0}, u"typed\n");
        return marks();
    };
    EXPECT_EQ(textWithoutFile(std::make_unique<TextDocument>(documents.services(), QString(), std::nullopt)), u""_s);
    EXPECT_EQ(textWithoutFile(
                  TextDocument::fromDraft(documents.services(), path(u"gone.txt"_s), {.text = Rope(u"draft\n")}, QUuid::createUuid())),
              u""_s);
    put(u"kept.txt"_s, "one\ntwo\n");
    TextFile::Contents kept = TextFile::readRemembered(path(u"kept.txt"_s), std::nullopt, files).value();
    kept.text = Rope(u"one\n2\n");
    show(TextDocument::fromDraft(documents.services(), path(u"kept.txt"_s), kept, QUuid::createUuid()));
    rest();
    EXPECT_EQ(marks(), u"m4"_s) << "though it counts as unchanged";
    edit({0, 0}, u"typed\n");
    EXPECT_EQ(marks(), u"a0 m10"_s);
    document->save(document->path());
    rest();
    EXPECT_EQ(marks(), u""_s);
}

TEST_F(ChangeMarksTest, TellsOfMarksThatAnEditTookAway)
{
    open("one\n");
    edit({4, 0}, u"x");
    ASSERT_EQ(marks(), u"a4"_s);
    int told = 0;
    QObject::connect(&editor->changes().marks(), &ChangeMarks::changed, editor.get(), [&told] { ++told; });
    edit({4, 1}, u"");
    EXPECT_EQ(marks(), u""_s);
    EXPECT_EQ(told, 1);
}

TEST_F(ChangeMarksTest, ComparesWithTheLastCommitWhereThereIsOne)
{
    const GitRepository repository(path(QString()));
    put(u"a.txt"_s, "one\ntwo\n");
    repository.commit({"a.txt"});
    open("one\n2\n");
    EXPECT_EQ(marks(), u"m4"_s) << "without an edit";
    edit({0, 0}, u"new\n");
    document->save(document->path());
    rest();
    EXPECT_EQ(marks(), u"a0 m8"_s);
    clickMark(2);
    ASSERT_TRUE(editor->changes().panel());
    EXPECT_EQ(editor->changes().panel()->accessibleName(), u"Changed since the last commit"_s);
    preferences.set(Settings::compareWithCommit, false);
    rest();
    EXPECT_EQ(marks(), u""_s);
    preferences.set(Settings::compareWithCommit, true);
    rest();
    EXPECT_EQ(marks(), u"a0 m8"_s);
    repository.commit({"a.txt"});
    QEvent activated(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&editor->textView(), &activated);
    rest();
    EXPECT_EQ(marks(), u""_s);
}

TEST_F(ChangeMarksTest, ShowsWhatWasThereAndBringsItBackInOneStep)
{
    open("one\ntwo\nthree\nfour\n");
    edit({4, 10}, u"2\n3\n"); // instead of two and three
    editor->textView().setSelection(TextSelection::at(0));
    EXPECT_FALSE(editor->changes().panel());
    clickMark(1);
    ASSERT_TRUE(editor->changes().panel());
    EXPECT_EQ(control<NumberedTextView>(*editor->changes().panel(), u"Lines as they were"_s)->storage().string(), u"two\nthree"_s);
    EXPECT_EQ(editor->textView().selection(), TextSelection::at(0)) << "the line is not selected";
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(editor->changes().panel());
    EXPECT_TRUE(editor->textView().hasFocus());
    // The same with keys alone.
    editor->perform(Actions::goToNextChange);
    EXPECT_EQ(editor->textView().selection(), TextSelection::at(4));
    editor->perform(Actions::showChange);
    ASSERT_TRUE(editor->changes().panel());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_A);
    EXPECT_EQ(text(), u"one\n2\n3\nfour\n"_s) << "keys are not for the text behind";
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(text(), u"one\ntwo\nthree\nfour\n"_s);
    EXPECT_FALSE(editor->changes().panel());
    EXPECT_TRUE(editor->textView().hasFocus());
    editor->textView().undo();
    EXPECT_EQ(text(), u"one\n2\n3\nfour\n"_s);
}

TEST_F(ChangeMarksTest, GoesRoundTheChangesAndFindsMissingLinesBetweenOthers)
{
    open("one\ntwo\nthree\nfour\n");
    edit({0, 3}, u"1");
    edit({2, 4}, u""); // two
    EXPECT_EQ(marks(), u"m0"_s) << "neighbours are one change";
    edit({text().size() - 5, 5}, u""); // four
    ASSERT_EQ(marks(), u"m0 d8"_s);
    editor->textView().setSelection(TextSelection::at(0));
    for (const qsizetype place : {8, 0, 8}) {
        editor->perform(Actions::goToNextChange);
        EXPECT_EQ(editor->textView().selection(), TextSelection::at(place));
    }
    editor->perform(Actions::goToPreviousChange);
    EXPECT_EQ(editor->textView().selection(), TextSelection::at(0));
    clickMark(1, 0.9);
    ASSERT_TRUE(editor->changes().panel());
    EXPECT_EQ(editor->changes().panel()->accessibleName(), u"Deleted since the last save"_s);
}

TEST_F(ChangeMarksTest, MarksEachKindOnTheScrollBar)
{
    QByteArray lines;
    for (int line = 1000; line < 2000; ++line) {
        lines += QByteArray::number(line) + '\n';
    }
    open(lines);
    document->storage().apply({{2500, 4}, u"other"_s});
    document->storage().apply({{4501, 5}, u""_s});
    edit({5, 0}, u"new\n"_s);
    ASSERT_EQ(marks(), u"a5 m2504 d4505"_s);
    MarkedScrollBar &bar = *MarkedScrollBar::of(editor->textView());
    const auto rowOf = [&](ScrollMark mark) {
        const auto rows = bar.rowsOf(mark);
        return rows.size() == 1 ? rows.front() : -1;
    };
    EXPECT_LT(rowOf(ScrollMark::added), 30);
    EXPECT_NEAR(rowOf(ScrollMark::changed), bar.height() / 2, 5);
    EXPECT_GT(rowOf(ScrollMark::deleted), rowOf(ScrollMark::changed) + 100);
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {3, rowOf(ScrollMark::deleted)});
    EXPECT_EQ(editor->textView().selection(), TextSelection::at(4505));
    editor->textView().undo();
    editor->textView().undo();
    editor->textView().undo();
    rest();
    EXPECT_EQ(rowOf(ScrollMark::changed), -1);
}

TEST(ChangeColorTest, StandsOutInEveryTheme)
{
    for (const Theme &builtIn : Theme::all()) {
        for (const Contrast wanted : {Contrast::own, Contrast::legible, Contrast::high}) {
            const Theme &theme = Theme::shown(builtIn, wanted);
            for (const auto kind : {LineChange::Kind::added, LineChange::Kind::modified, LineChange::Kind::deleted}) {
                EXPECT_GE(contrast(changeColor(theme, kind), theme.gutterBackground), wanted == Contrast::high ? 7 : 3)
                    << qPrintable(theme.name.toString()) << int(wanted) << int(kind);
            }
        }
    }
}
