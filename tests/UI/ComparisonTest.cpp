// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Diff/DiffOverview.h"
#include "Diff/DiffText.h"
#include "Diff/DiffWindowController.h"
#include "WindowFixture.h"

#include <QCheckBox>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

class ComparisonTest : public WindowTest {
protected:
    /// A file with the first text on disk and the second in the editor.
    DiffViewController &compare(const QByteArray &old, const QString &edited)
    {
        workspace().open({put(u"a.txt"_s, old)});
        TextStorage &storage = workspace().currentDocument()->storage();
        storage.apply({{0, storage.length()}, edited});
        EXPECT_TRUE(send(Actions::compareWithFileOnDisk));
        return application.comparisons().back()->content();
    }
    [[nodiscard]] static QString shown(const DiffTextView &view) { return view.storage().string(); }
    [[nodiscard]] QStringList compareMenu() const
    {
        return titlesOf(*menuItem(u"File"_s, u"Compare"_s)->menu()).replaceInStrings(u"&"_s, QString());
    }
};

} // namespace

TEST_F(ComparisonTest, PutsTheRowsSideBySide)
{
    DiffViewController &content = compare("same\nonly old\nold too\nchanged one\nend\n", u"same\nchanged two\nend\nonly new\n"_s);
    EXPECT_EQ(shown(content.leftView()), u"same\nonly old\nold too\nchanged one\nend\n\n"_s);
    EXPECT_EQ(shown(content.rightView()), u"same\nchanged two\n\n\nend\nonly new\n"_s);
    EXPECT_EQ(application.comparisons().back()->windowTitle(), u"a.txt \u2194 a.txt"_s);
    EXPECT_EQ(content.leftView().accessibleName(), u"a.txt  ·  on disk"_s);
    EXPECT_EQ(content.rightView().accessibleName(), u"a.txt  ·  in the editor (unsaved)"_s);
    EXPECT_EQ(content.summary(), u"2 changes   +2  \u22123"_s);
    type(u"x"_s);
    QTest::keyClicks(&content.rightView(), u"xyz\b"_s);
    EXPECT_EQ(shown(content.rightView()), u"same\nchanged two\n\n\nend\nonly new\n"_s) << "it stays as it was";
    application.comparisons().back()->close();
    EXPECT_TRUE(application.comparisons().empty());
}

TEST_F(ComparisonTest, GoesThroughTheChangesByKeysAndButtons)
{
    const QByteArray lines = QByteArray("line\n").repeated(100);
    DiffViewController &content =
        compare("a\n" + lines + "b\n" + lines + "c\n" + lines, QString::fromUtf8("A\n" + lines + "B\n" + lines + "C\n" + lines));
    const auto place = [&content] { return content.summary().section(u"   "_s, 0, 0); };
    EXPECT_EQ(place(), u"3 changes"_s);
    QTest::keyClick(&content.rightView(), Qt::Key_P);
    EXPECT_EQ(place(), u"3 of 3 changes"_s);
    QTest::keyClick(&content.leftView(), Qt::Key_N);
    EXPECT_EQ(place(), u"1 of 3 changes"_s);
    control<QPushButton>(content, u"Next"_s)->click();
    EXPECT_EQ(place(), u"2 of 3 changes"_s);
    for (const DiffTextView *view : {&content.leftView(), &content.rightView()}) {
        EXPECT_EQ(view->storage().text().lineAt(view->selection().caret), 101);
    }
    EXPECT_NEAR(content.leftView().scrollOffset(), content.leftView().topOfRow(101) - content.leftView().viewport()->height() / 3.0, 1);
    EXPECT_EQ(content.leftView().scrollOffset(), content.rightView().scrollOffset());
    control<QPushButton>(content, u"Previous"_s)->click();
    EXPECT_EQ(place(), u"1 of 3 changes"_s);
    ASSERT_TRUE(QTest::qWaitForWindowActive(application.comparisons().back()));
    QTest::keyClick(&content.leftView(), Qt::Key_F7);
    EXPECT_EQ(place(), u"2 of 3 changes"_s);
    QTest::keyClick(&content.rightView(), Qt::Key_F8);
    EXPECT_EQ(place(), u"1 of 3 changes"_s);
    QTest::keyClick(&content.leftView(), Qt::Key_P);
    EXPECT_EQ(place(), u"3 of 3 changes"_s);
    // The strip, in the middle of it.
    auto *strip = content.findChild<DiffOverview *>();
    QTest::mouseClick(strip, Qt::LeftButton, {}, {5, strip->height() / 2});
    EXPECT_NEAR(double(content.leftView().topRow()), 151 - double(content.leftView().textViewport().rowsPerPage()) / 2, 2);
}

TEST_F(ComparisonTest, ReportsThatThereIsNothingToSee)
{
    DiffViewController &content = compare("a b\n", u" ab\n"_s);
    EXPECT_EQ(content.summary(), u"1 change   +1  \u22121"_s);
    content.nextChange();
    content.findChild<QCheckBox *>()->click();
    EXPECT_EQ(content.summary(), u"Identical, ignoring whitespace"_s);
    EXPECT_EQ(shown(content.rightView()), u" ab\n"_s);
    EXPECT_FALSE(control<QPushButton>(content, u"Next"_s)->isEnabled());
    const int beeps = presenter.beepCount();
    QTest::keyClick(&content.leftView(), Qt::Key_N);
    EXPECT_EQ(presenter.beepCount(), beeps + 1);
    content.findChild<QCheckBox *>()->click();
    EXPECT_EQ(content.summary(), u"1 change   +1  \u22121"_s);
    EXPECT_EQ(content.currentChange(), -1);
    workspace().currentDocument()->storage().apply({{0, 4}, u"a b\n"});
    send(Actions::compareWithFileOnDisk);
    EXPECT_EQ(application.comparisons().back()->content().summary(), u"The two files are identical"_s);
}

TEST_F(ComparisonTest, ScrollsBothColumnsTogether)
{
    const QByteArray lines = QByteArray("line\n").repeated(300);
    DiffViewController &content = compare(lines, QString(300, u'x') + u'\n' + QString::fromUtf8(lines) + u"more\n"_s);
    QCoreApplication::processEvents();
    const auto y = [](DiffTextView &view) { return view.textViewport().position().y(); };
    const auto x = [](DiffTextView &view) { return view.horizontalScrollBar()->value(); };
    content.leftView().setScrollOffset(1000);
    EXPECT_EQ(y(content.rightView()), y(content.leftView()));
    content.rightView().setScrollOffset(1e9);
    EXPECT_EQ(y(content.rightView()), y(content.leftView())) << "to the very end, although one has less to be scrolled aside";
    content.rightView().setScrollOffset(0);
    content.rightView().horizontalScrollBar()->setValue(50);
    EXPECT_EQ(y(content.leftView()), 0);
    EXPECT_EQ(x(content.rightView()), 50) << "the narrow one does not hold it back";
    emit content.leftView().visibleRowsChanged();
    EXPECT_EQ(x(content.rightView()), 50) << "nor when it reports something else";
    content.leftView().setScrollOffset(500);
    content.nextChange();
    EXPECT_EQ(y(content.rightView()), y(content.leftView()));
    EXPECT_EQ(x(content.rightView()), 50) << "nor when it is scrolled up and down";
    // Another font moves nothing but by its own size.
    content.rightView().setScrollOffset(content.rightView().topOfRow(100));
    preferences.set(Settings::fontSize, 20);
    EXPECT_EQ(content.leftView().topRow(), 100);
    EXPECT_EQ(content.rightView().topRow(), 100);
    EXPECT_EQ(y(content.rightView()), y(content.leftView()));
    // Finding in one of them leaves the rows side by side.
    content.leftView().setFocus();
    content.perform(Actions::find);
    QCoreApplication::processEvents();
    EXPECT_EQ(content.leftView().mapTo(&content, QPoint()).y(), content.rightView().mapTo(&content, QPoint()).y());
}

TEST_F(ComparisonTest, AnotherAppearanceIsTakenUpOnceByAll)
{
    compare("int a;\n", u"int b;\n"_s);
    send(Actions::splitEditorRight);
    workspace().open({put(u"c.cpp"_s, "int c;\n")});
    size_t recolored = 0;
    const auto colors = notifications.observe(SyntaxHighlighter::needsVisibleRefresh, nullptr, [&recolored] { ++recolored; });
    desktopAppearance = Appearance::dark;
    appearanceQueries = 0;
    documents.refreshAppearance();
    EXPECT_EQ(appearanceQueries, 1);
    EXPECT_EQ(recolored, 2U) << "each document once";
    preferences.set(Settings::wrapLines, true);
    EXPECT_EQ(recolored, 2U) << "the theme is the same";
    preferences.set(Settings::themeName, Theme::solarizedDark().name.toString());
    EXPECT_EQ(recolored, 4U);
}

TEST_F(ComparisonTest, ComparesWithOtherFilesAndTexts)
{
    workspace().open({put(u"a.cpp"_s, "int a;\n")});
    EXPECT_EQ(compareMenu(), (QStringList{u"With File on Disk"_s, u"With File…"_s}));
    presenter.answerOpen({put(u"b.cpp"_s, "int b;\n")});
    send(Actions::compareWithFile);
    EXPECT_EQ(presenter.openPanels().back().title, u"Choose a file to compare with “a.cpp”."_s);
    EXPECT_EQ(application.comparisons().back()->windowTitle(), u"b.cpp \u2194 a.cpp"_s);
    EXPECT_TRUE(application.comparisons().back()->content().leftView().accessibleName().endsWith(path({})));
    presenter.answerOpen({path(u"missing"_s)});
    send(Actions::compareWithFile);
    EXPECT_EQ(presenter.alerts().size(), 1U);
    EXPECT_FALSE(isEnabled(Actions::compareWithOpenDocument));

    const QString id = workspace().currentDocument()->id().toString();
    send(Actions::newDocument);
    const QStringList titles{u"(With File on Disk)"_s, u"With File…"_s, u"-"_s, u"(Other Open Files)"_s, u"    a.cpp"_s};
    EXPECT_EQ(compareMenu(), titles);
    EXPECT_EQ(compareMenu(), titles) << "opened once more";
    const int beeps = presenter.beepCount();
    send(Actions::compareWithOpenDocument);
    send(Actions::compareWithFileOnDisk);
    EXPECT_EQ(presenter.beepCount(), beeps + 2);
    send(Actions::compareWithOpenDocument, id);
    EXPECT_EQ(application.comparisons().back()->windowTitle(), u"a.cpp \u2194 Untitled"_s);
    EXPECT_EQ(application.comparisons().size(), 2U);
    QTest::keyClick(application.comparisons().back(), Qt::Key_Escape);
    EXPECT_EQ(application.comparisons().size(), 1U);
}

TEST_F(ComparisonTest, TheBarOfARecoveredTextComparesItWithItsFile)
{
    const QString file = put(u"a.cpp"_s, "int a;\n");
    auto older = TextDocument::fromDraft(documents.services(), QString(), {.text = Rope(u"int b;\n"_s)}, QUuid::createUuid());
    older->origin = TextOrigin{TextOrigin::Kind::otherVersion, file};
    TextDocument &text = documents.add(std::move(older));
    workspace().adopt(text);
    const auto banner = [this] { return workspace().currentEditor()->banner(); };
    ASSERT_TRUE(banner());
    EXPECT_TRUE(banner()->accessibleName().contains(u"another unsaved version of “a.cpp”"_s));
    control<QPushButton>(*banner(), u"Compare"_s)->click();
    EXPECT_EQ(application.comparisons().back()->windowTitle(), u"a.cpp \u2194 a.cpp (recovered)"_s) << "as it is on disk";
    workspace().open({file});
    workspace().focusPaneShowing(text);
    workspace().adopt(text);
    control<QPushButton>(*banner(), u"Compare"_s)->click();
    EXPECT_EQ(application.comparisons().size(), 2U);
    control<QPushButton>(*banner(), u"Dismiss"_s)->click();
    EXPECT_FALSE(banner());
    EXPECT_EQ(text.displayName(), u"Untitled"_s);
    EXPECT_TRUE(text.hasUnsavedText());
    text.origin = TextOrigin{TextOrigin::Kind::otherVersion, file};
    presenter.answerSave(path(u"b.cpp"_s));
    send(Actions::saveDocumentAs);
    EXPECT_FALSE(banner()) << "it is a file of its own";
}

TEST_F(ComparisonTest, IsThereWhileLongTextsAreCompared)
{
    const QString lines = u"a line of some length\n"_s.repeated(20'000);
    HeldWorkers held;
    EditorServices slow{scheduler, notifications, preferences, pasteboard, presenter, documents, held, find, registers, keyboard};
    DiffWindowController comparison(slow, {u"a"_s, {}, Rope(lines)}, {u"b"_s, {}, Rope(lines + u"more\n"_s)}, Language::plainText());
    DiffViewController &content = comparison.content();
    EXPECT_EQ(content.result(), nullptr);
    EXPECT_EQ(content.summary(), u"Comparing… 0 %"_s);
    content.nextChange();
    held.finish();
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(content.summary(), u"1 change   +1  \u22120"_s);
    EXPECT_EQ(shown(content.leftView()), lines + u"\n"_s);
}

TEST_F(ComparisonTest, MayBeAllThatTheProgramShows)
{
    window().close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QSignalSpy finished(&application, &AppDelegate::finished);
    application.compare(put(u"a.c"_s, "int a;\n"), put(u"b.c"_s, "int b;\n"));
    ASSERT_EQ(application.comparisons().size(), 1U);
    EXPECT_TRUE(application.windows().empty());
    EXPECT_EQ(application.comparisons().back()->windowTitle(), u"a.c \u2194 b.c"_s);
    application.comparisons().back()->close();
    EXPECT_EQ(finished.size(), 1);
    application.compare(path(u"a.c"_s), path(u"missing"_s));
    EXPECT_EQ(presenter.alerts().size(), 1U);
    EXPECT_EQ(finished.size(), 2);
}

TEST(DiffOverview, MarksWhereChangesAre)
{
    const auto marks = [](const QString &old, const QString &newer, int height) {
        QString all;
        for (const DiffOverview::Mark &mark : DiffOverview::marks(*LineDiff::compare(Rope(old), Rope(newer)), height)) {
            all += u"%1:%2-%3 "_s.arg(int(mark.kind)).arg(mark.top).arg(mark.bottom);
        }
        return all.trimmed();
    };
    const QString lines = u"x\n"_s.repeated(98);
    EXPECT_EQ(marks(u"a\n"_s + lines + u"b\n"_s, u"A\n"_s + lines + u"b\n"_s, 100), u"3:0-2"_s);
    EXPECT_EQ(marks(lines + u"a\nb\n"_s, lines, 100), u"1:98-100"_s);
    EXPECT_EQ(marks(lines, lines + u"a\nb\n"_s, 50), u"2:48-50"_s);
    EXPECT_EQ(marks(u"a\n"_s, u"b\n"_s, 1), u"3:0-1"_s);
    // More changes than pixels: no more marks than there is room for.
    EXPECT_LE(marks(u"same\nold\n"_s.repeated(500), u"same\nnew\n"_s.repeated(500), 40).count(u' ') + 1, 40);
}

TEST(DiffText, EmphasisesWhatDiffersInARow)
{
    using LineDiff::Side;
    const auto result = LineDiff::compare(Rope(u"a \U0001F600 b\u0301 c\n"_s), Rope(u"a \U0001F600 d\u0301\u0301 c\n"_s));
    EXPECT_EQ(DiffText::emphasis(*result, Side::left, 0), (std::vector<TextRange>{{5, 2}}));
    EXPECT_EQ(DiffText::emphasis(*result, Side::right, 0), (std::vector<TextRange>{{5, 3}}));
    // A line of megabytes is not taken apart to be painted, whatever it consists of.
    const QString composed = (u'e' + QString(99, u'\u0301')).repeated(1000);
    const auto ofLong = LineDiff::compare(Rope(composed + u"a\n"_s), Rope(composed + u"b\n"_s));
    EXPECT_EQ(DiffText::emphasis(*ofLong, Side::left, 0), (std::vector<TextRange>{{0, composed.size() + 1}}));
}
