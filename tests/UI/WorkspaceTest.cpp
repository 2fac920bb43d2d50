// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/RunningInstance.h"
#include "Base/FilePath.h"
#include "WindowFixture.h"

#include <QDir>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class WorkspaceTest : public WindowTest {
protected:
    /// What happened to files has been noticed.
    void waitForWatchers()
    {
        for (int turn = 0; turn < 20; ++turn) {
            scheduler.advance(100ms);
            QCoreApplication::processEvents();
        }
    }
};

constexpr auto save = AlertReply::firstButton;
constexpr auto cancel = AlertReply::secondButton;
constexpr auto dontSave = AlertReply::thirdButton;

} // namespace

TEST_F(WorkspaceTest, OpensFilesInPlaceOfAnEmptyTab)
{
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});
    workspace().open({put(u"a.c"_s, "int a;\n"), path(u"missing.c"_s), put(u"b.c"_s, "int b;\n"), path(u"gone.c"_s)});
    EXPECT_EQ(tabs(), (QStringList{u"a.c"_s, u"b.c"_s}));
    EXPECT_EQ(presenter.alerts().size(), 1U);
    EXPECT_TRUE(lastAlert().contains(u"missing.c"));
    EXPECT_EQ(text(), u"int b;\n"_s);
    EXPECT_TRUE(textView().hasFocus());
    EXPECT_EQ(window().windowTitle(), u"b.c[*]"_s);
    EXPECT_EQ(documents.documents().size(), 2U);

    send(Actions::newDocument);
    type(u"x"_s);
    workspace().open({put(u"c.c"_s, "c")});
    EXPECT_EQ(tabs(), (QStringList{u"a.c"_s, u"b.c"_s, u"Untitled"_s, u"c.c"_s})) << "it is not empty";
}

TEST_F(WorkspaceTest, AHundredFilesCostNoHundredUpdates)
{
    QStringList files;
    for (int number = 0; number < 100; ++number) {
        files << put(u"%1.txt"_s.arg(number), "a");
    }
    int updates = 0;
    QObject::connect(&workspace(), &WorkspaceViewController::currentDocumentChanged, [&] { ++updates; });
    workspace().open(files + files);
    EXPECT_EQ(tabs().size(), 100);
    EXPECT_EQ(workspace().currentDocument()->displayName(), u"99.txt"_s);
    EXPECT_LT(updates, 10);
}

TEST_F(WorkspaceTest, ATextOpenInAnotherWindowIsShared)
{
    workspace().open({put(u"a.c"_s, "int a;\n")});
    type(u"x"_s);
    send(Actions::newWindow);
    workspace(1).open({path(u"a.c"_s)});
    EXPECT_EQ(workspace(1).currentDocument(), workspace().currentDocument());
    // It is safe there, so nobody is asked here.
    workspace(1).perform(Actions::closeTab);
    EXPECT_TRUE(presenter.alerts().empty());
    EXPECT_EQ(text(), u"xint a;\n"_s);
    // Shown there by the time of the answer, it stays open.
    presenter.hold();
    send(Actions::closeTab);
    workspace(1).open({path(u"a.c"_s)});
    presenter.answer(dontSave);
    presenter.answerHeld();
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});
    EXPECT_EQ(text(1), u"xint a;\n"_s);
    EXPECT_EQ(documents.documentAt(path(u"a.c"_s)).get(), workspace(1).currentDocument());
}

TEST_F(WorkspaceTest, ClosingATabAsksAboutUnsavedText)
{
    workspace().open({put(u"a.c"_s, "a")});
    type(u"x"_s);
    presenter.answer(cancel);
    send(Actions::closeTab);
    EXPECT_EQ(lastAlert(), u"Do you want to save the changes made to “a.c”?"_s);
    EXPECT_EQ(tabs(), QStringList{u"a.c"_s});
    presenter.answer(save);
    send(Actions::closeTab);
    EXPECT_EQ(read(u"a.c"_s), "xa");
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});

    type(u"lost"_s);
    // A cancelled panel is no answer, a refused folder neither.
    presenter.answer(save);
    send(Actions::closeTab);
    presenter.answer(save);
    presenter.answerSave(path(u"no/such/folder"_s));
    send(Actions::closeTab);
    EXPECT_EQ(text(), u"lost"_s);
    presenter.answer(dontSave);
    send(Actions::closeTab);
    EXPECT_EQ(text(), QString());
    EXPECT_EQ(documents.documents().size(), 1U);
}

TEST_F(WorkspaceTest, QuittingAsksEachWindowOnceWhereNothingIsKept)
{
    preferences.set(Settings::autosaveDrafts, false);
    const QSignalSpy finished(&application, &AppDelegate::finished);
    type(u"one"_s);
    send(Actions::newWindow);
    presenter.hold();
    application.terminate();
    application.terminate();
    EXPECT_EQ(presenter.alerts().size(), 1U) << "the question is on the screen";
    presenter.answer(cancel);
    presenter.answerHeld();
    EXPECT_EQ(application.windows().size(), 2U);
    // It was given up: the next closing is only its own.
    send(Actions::newWindow);
    window(2).close();
    EXPECT_EQ(finished.size(), 0);
    application.terminate();
    EXPECT_EQ(presenter.alerts().size(), 2U) << "the request came again";
    presenter.answer(dontSave);
    presenter.answerHeld();
    EXPECT_EQ(finished.size(), 1) << "the other window has nothing to lose";
}

TEST_F(WorkspaceTest, PanesAreFoundByWhereTheyAre)
{
    workspace().open({put(u"a"_s, "aaa")});
    send(Actions::splitEditorRight);
    send(Actions::splitEditorRight);
    const auto active = [this](const Action &action) {
        send(action);
        EXPECT_TRUE(textView().hasFocus());
        return pane(0).isActive() ? 0 : pane(1).isActive() ? 1 : 2;
    };
    EXPECT_EQ(active(Actions::focusPaneRight), 2);
    EXPECT_EQ(active(Actions::focusPaneAbove), 2);
    EXPECT_EQ(active(Actions::focusPaneLeft), 1);
    EXPECT_EQ(active(Actions::focusPaneLeft), 0);
    EXPECT_EQ(active(Actions::focusPaneLeft), 0);
    EXPECT_EQ(active(Actions::focusLastPane), 1);
    EXPECT_EQ(active(Actions::focusLastPane), 0);
    send(Actions::toggleSplitOrientation);
    EXPECT_EQ(active(Actions::focusPaneRight), 0);
    EXPECT_EQ(active(Actions::focusPaneBelow), 1);
    EXPECT_EQ(active(Actions::focusPaneAbove), 0);
}

TEST_F(WorkspaceTest, PanesHandTheKeyboardOn)
{
    workspace().open({put(u"a"_s, "aaa"), put(u"b"_s, "bbb")});
    textView().setSelection({1, 3});
    send(Actions::splitEditorRight);
    EXPECT_EQ(textView().selection(), TextSelection::at(1)) << "the other caret, without the selection";
    type(u"x"_s);
    send(Actions::newDocument);
    send(Actions::splitEditorDown);
    ASSERT_EQ(workspace().panes().size(), 3U);
    send(Actions::focusNextPane);
    EXPECT_TRUE(pane(0).isActive());
    EXPECT_EQ(text(), u"bxbb"_s);
    send(Actions::focusPreviousPane);
    EXPECT_TRUE(pane(2).isActive());
    // The text that is closed has the keyboard; shown in the other pane as well, nobody is asked.
    send(Actions::closeTab);
    EXPECT_TRUE(pane(1).isActive());
    EXPECT_TRUE(textView().hasFocus());
    send(Actions::closeSplit);
    EXPECT_EQ(tabs(), (QStringList{u"a"_s, u"b"_s, u"Untitled"_s}));
    EXPECT_TRUE(textView().hasFocus());
    EXPECT_TRUE(presenter.alerts().empty());
    const int beeps = presenter.beepCount();
    send(Actions::closeSplit);
    send(Actions::closeOtherSplits);
    EXPECT_EQ(presenter.beepCount(), beeps + 2);
    send(Actions::splitEditorRight);
    send(Actions::splitEditorRight);
    PaneViewController *kept = &pane(1);
    QTest::mouseClick(kept->currentEditor()->textView().viewport(), Qt::LeftButton);
    send(Actions::closeOtherSplits);
    EXPECT_EQ(workspace().panes(), std::vector{kept});
    EXPECT_TRUE(textView().hasFocus());
    // What only a pane that goes has shown keeps its caret.
    send(Actions::splitEditorRight);
    workspace().open({put(u"c"_s, "ccc")});
    textView().setSelection(TextSelection::at(2));
    send(Actions::closeSplit);
    workspace().focusPaneShowing(*documents.documentAt(path(u"c"_s)));
    EXPECT_EQ(textView().selection(), TextSelection::at(2));
}

TEST_F(WorkspaceTest, PanesAreEquallyWide)
{
    window().resize(1001, 600);
    QCoreApplication::processEvents();
    send(Actions::splitEditorRight);
    send(Actions::splitEditorRight);
    const auto *split = workspace().findChild<QSplitter *>();
    const int width = (split->width() - 2) / 3;
    EXPECT_EQ(split->sizes(), (QList<int>{width, width, split->width() - 2 - 2 * width}));
    send(Actions::toggleSplitOrientation);
    EXPECT_EQ(split->orientation(), Qt::Vertical);
    // A window stays as small as it may be, however many panes there are.
    for (int count = 0; count < 6; ++count) {
        send(Actions::splitEditorRight);
    }
    window().resize(480, 300);
    QCoreApplication::processEvents();
    EXPECT_EQ(window().size(), QSize(480, 300));
}

TEST_F(WorkspaceTest, ASplitKeepsTheCaretInSight)
{
    workspace().open({put(u"long"_s, QByteArray("line\n").repeated(200))});
    const auto seesCaret = [this](size_t index) {
        EditorTextView &view = pane(index).currentEditor()->textView();
        const auto top = view.textViewport().topOf(view.layoutManager().rowOf(view.selection().caret));
        return top && *top >= 0 && *top + view.layoutManager().rowHeight() <= view.viewport()->height();
    };
    const auto split = [this] {
        textView().viewport()->grab();
        send(Actions::splitEditorDown);
        scheduler.advance(0ms);
        QCoreApplication::processEvents();
    };
    press(u"<C-End>"_s);
    split();
    EXPECT_TRUE(seesCaret(0));
    EXPECT_TRUE(seesCaret(1));
    textView().setScrollOffset(0);
    split();
    EXPECT_EQ(pane(1).currentEditor()->textView().scrollOffset(), 0) << "where the user was reading";
    EXPECT_EQ(pane(2).currentEditor()->textView().scrollOffset(), 0);
}

TEST_F(WorkspaceTest, TypingGoesOnInTheTabThatIsShown)
{
    workspace().open({put(u"a"_s, "a"), put(u"b"_s, "b"), put(u"c"_s, "c"), put(u"d"_s, "d")});
    textView().setSelection({1, 0});
    for (const auto &[action, shown] :
         {std::pair(&Actions::selectNextTab, u"a"_s), {&Actions::selectTab2, u"b"_s}, {&Actions::selectLastTab, u"d"_s}}) {
        send(*action);
        EXPECT_EQ(text(), shown);
        EXPECT_TRUE(textView().hasFocus());
    }
    EXPECT_EQ(textView().selection(), (TextSelection{1, 0})) << "as it was left";
    EXPECT_EQ(presenter.beepCount(), 0);
    send(Actions::selectTab5);
    EXPECT_EQ(presenter.beepCount(), 1);
    emit pane(0).tabBar().moveRequested(0, 2);
    EXPECT_EQ(tabs(), (QStringList{u"b"_s, u"c"_s, u"a"_s, u"d"_s}));
    // In what comes into the place of a closed one, too; another pane keeps the keyboard that it has.
    send(Actions::closeTab);
    EXPECT_EQ(text(), u"a"_s);
    EXPECT_TRUE(textView().hasFocus());
    send(Actions::splitEditorRight);
    const QWidget *right = &textView();
    emit pane(0).tabBar().closeRequested(1);
    EXPECT_EQ(tabs(), (QStringList{u"b"_s, u"a"_s}));
    EXPECT_TRUE(right->hasFocus());
}

TEST_F(WorkspaceTest, FilesAreDroppedAnywhere)
{
    workspace().open({put(u"a"_s, "a")});
    send(Actions::splitEditorRight);
    const auto dropUrls = [](QWidget &target, const QList<QUrl> &urls) {
        QMimeData data;
        data.setUrls(urls);
        return drop(target, data);
    };
    const QUrl inFolder = QUrl::fromLocalFile(path({}));
    const QUrl file = QUrl::fromLocalFile(put(u"b"_s, "b"));
    EXPECT_FALSE(dropUrls(workspace(), {inFolder, QUrl(u"https://example.org/x"_s), QUrl::fromLocalFile(path(u"gone"_s))}));
    EXPECT_EQ(dropUrls(workspace(), {inFolder, file}), Qt::CopyAction) << "the file stays where it was";
    EXPECT_EQ(tabs(1), (QStringList{u"a"_s, u"b"_s}));
    // On a text they come to its pane.
    EXPECT_TRUE(dropUrls(*pane(0).currentEditor()->textView().viewport(), {QUrl::fromLocalFile(put(u"c"_s, "c"))}));
    EXPECT_EQ(tabs(0), (QStringList{u"a"_s, u"c"_s}));
    EXPECT_TRUE(pane(0).isActive());
    EXPECT_TRUE(presenter.alerts().empty());
}

TEST_F(WorkspaceTest, AFileThatIsNotThereYetIsMadeByItsFirstSave)
{
    const QString file = path(u"none/yet/new.c"_s);
    application.open(OpenRequest{.files = {{file}}});
    EXPECT_EQ(lastAlert(), u"“new.c” could not be read."_s) << "the desktop does not make files";
    application.open(OpenRequest{.files = {{path(u"empty"_s)}, {path({})}, {file, LineNumber(3)}}, .mayNameNewFiles = true});
    EXPECT_EQ(lastAlert(), u"“%1” is a folder."_s.arg(QFileInfo(path({})).fileName()));
    EXPECT_EQ(tabs(), (QStringList{u"empty"_s, u"new.c"_s}));
    ASSERT_FALSE(flashes.isEmpty());
    EXPECT_TRUE(flashes.last().contains(u"new.c"_s));
    EXPECT_EQ(workspace().currentDocument()->language().id(), u"c"_s);
    EXPECT_TRUE(recent.entries().empty());
    presenter.answer(AlertReply::secondButton);
    type(u"int x;"_s);
    send(Actions::saveDocument);
    EXPECT_TRUE(lastAlert().contains(path(u"none/yet"_s))) << lastAlert().toStdString();
    EXPECT_FALSE(QFileInfo::exists(path(u"none"_s)));
    EXPECT_TRUE(workspace().currentDocument()->isDirty());
    waitForWatchers();
    EXPECT_FALSE(workspace().currentEditor()->banner()) << "it was never there";
    presenter.answer(AlertReply::firstButton);
    send(Actions::saveDocument);
    EXPECT_EQ(read(file), "int x;");
    // Nor need its folder be there any more.
    QDir(path(u"none"_s)).removeRecursively();
    waitForWatchers();
    ASSERT_TRUE(workspace().currentEditor()->banner());
    presenter.answer(AlertReply::firstButton);
    control<QPushButton>(*workspace().currentEditor()->banner(), u"Save Again"_s)->click();
    EXPECT_TRUE(lastAlert().contains(path(u"none/yet"_s))) << lastAlert().toStdString();
    EXPECT_EQ(read(file), "int x;");
    EXPECT_FALSE(workspace().currentEditor()->banner());
    EXPECT_EQ(recent.entries().front().path, file);
    const size_t alerts = presenter.alerts().size();
    send(Actions::closeTab);
    send(Actions::closeTab);
    EXPECT_EQ(presenter.alerts().size(), alerts) << "what is empty and was never saved is no loss";
    EXPECT_FALSE(QFileInfo::exists(path(u"empty"_s)));
    // Somebody else was faster.
    application.open(OpenRequest{.files = {{path(u"race"_s)}}, .mayNameNewFiles = true});
    type(u"mine"_s);
    put(u"race"_s, "theirs");
    send(Actions::saveDocument);
    EXPECT_EQ(read(u"race"_s), "theirs");
}

TEST_F(WorkspaceTest, ANameNeedNotBeText)
{
    const QString file = path(decodedPath("caf\xE9.txt"));
    ASSERT_TRUE(writeAtomically(file, "one", AtomicFile::NewFile::privateToUser));
    EXPECT_EQ(::access((path({}).toUtf8() + "/caf\xE9.txt").constData(), F_OK), 0);
    application.open(OpenRequest{.files = {{file}}});
    EXPECT_EQ(tabs(), QStringList(u"caf\uFFFD.txt"_s));
    type(u"more "_s);
    send(Actions::saveDocument);
    EXPECT_EQ(TextFile::read(file)->text.toString(), u"more one"_s);
    EXPECT_EQ(recent.reachable().front().path, file);
    // Others write to it.
    ASSERT_TRUE(writeAtomically(file, "theirs", AtomicFile::NewFile::privateToUser));
    for (int turn = 0; turn < 20; ++turn) {
        QCoreApplication::processEvents();
        scheduler.advance(Scheduler::Milliseconds(100));
    }
    EXPECT_EQ(text(), u"theirs"_s);
    // The folder's own clearing cannot.
    EXPECT_EQ(::unlink(encodedPath(file).constData()), 0);
}

TEST_F(WorkspaceTest, ProblemsOfTheCommandLineAreShownWhereNobodyReadsThem)
{
    application.open(OpenRequest{.problems = {u"“a” is a folder."_s, u"“b:7” does not exist."_s}});
    EXPECT_EQ(lastAlert(), u"“a” is a folder.\n“b:7” does not exist."_s);
}

TEST_F(WorkspaceTest, GoesToPlacesInFiles)
{
    workspace().open({put(u"a.txt"_s, "one\ntwo three\nfour"), put(u"b.txt"_s, "x")});
    constexpr auto most = std::numeric_limits<qsizetype>::max();
    const std::tuple<qsizetype, qsizetype, qsizetype> places[] = {{2, 0, 4}, {2, 5, 8}, {2, 99, 13}, {99, 3, 16}, {most, most, 18}};
    for (const auto &[line, column, place] : places) {
        application.open(OpenRequest{.files = {{path(u"a.txt"_s), LineNumber(line), column}}});
        EXPECT_EQ(textView().selection().caret, place) << line << ':' << column;
    }
    EXPECT_EQ(tabs().at(pane(0).selectedIndex()), u"a.txt"_s);
    application.open(OpenRequest{.files = {{path(u"missing"_s), LineNumber(1), 1}}});
    EXPECT_EQ(textView().selection().caret, 18);
}

TEST_F(WorkspaceTest, NotifiesThoseWhoWaitForFiles)
{
    std::vector<int> statuses;
    const auto open = [&](const std::vector<CommandLine::File> &files) {
        application.open({.files = files, .closed = [&statuses](int status) { statuses.push_back(status); }});
    };
    const auto statusesAfter = [&](const QString &typed, const std::function<void()> &end) {
        type(typed);
        end();
        return std::exchange(statuses, {});
    };
    const auto close = [this] { send(Actions::closeTab); };
    const auto press = [this](const QString &title) {
        return [this, title] { control<QPushButton>(*workspace().currentEditor(), title)->click(); };
    };
    const CommandLine::File a{put(u"a.txt"_s, "a")};
    const CommandLine::File b{put(u"b.txt"_s, "b"), LineNumber(1), 2};
    open({a, b});
    EXPECT_EQ(statusesAfter({}, close), std::vector<int>()) << "the other one is open";
    presenter.answer(save);
    EXPECT_EQ(statusesAfter(u"x"_s, close), std::vector{0}) << "saved";
    EXPECT_EQ(read(u"a.txt"_s), "xa");
    open({b});
    presenter.answer(dontSave);
    EXPECT_EQ(statusesAfter(u"x"_s, close), std::vector{1}) << "not saved";
    // The bar that reports it.
    open({b});
    EXPECT_EQ(statusesAfter(u"y"_s, press(u"Done"_s)), std::vector{0});
    EXPECT_EQ(read(u"b.txt"_s), "by") << "from the place that was given";
    open({b});
    EXPECT_EQ(statusesAfter({}, press(u"Abort"_s)), std::vector{1}) << "although nothing was edited";
    open({{path(u"missing"_s)}});
    EXPECT_EQ(statusesAfter({}, [] {}), std::vector{1}) << "not opened";
    // Of two who wait one ends, then the other.
    for (const QString &waiter : {u":1.7"_s, u":1.8"_s}) {
        application.open({.files = {b}, .closed = [](int) { ADD_FAILURE(); }, .waiter = waiter});
    }
    application.forgetWaiter(u":1.7"_s);
    EXPECT_NE(workspace().currentEditor()->banner(), nullptr);
    application.forgetWaiter(u":1.8"_s);
    EXPECT_EQ(workspace().currentEditor()->banner(), nullptr);
    close();
    application.open(OpenRequest{.opensNewTab = true});
    EXPECT_EQ(tabs().size(), 2);
    application.open({.files = {a}, .opensNewWindow = true});
    EXPECT_EQ(workspace(1).currentDocument()->path(), path(u"a.txt"_s));
}

TEST_F(WorkspaceTest, AWindowIsAsLargeAsTheLastOneThatDidNotFillTheScreen)
{
    for (const Qt::WindowState state : {Qt::WindowNoState, Qt::WindowMaximized, Qt::WindowFullScreen}) {
        send(Actions::newWindow);
        if (state == Qt::WindowNoState) {
            window(1).resize(600, 400);
        }
        window(1).setWindowState(state);
        QCoreApplication::processEvents();
        EXPECT_EQ(window(1).size() == QSize(600, 400), state == Qt::WindowNoState);
        window(1).close();
        send(Actions::newWindow);
        EXPECT_EQ(window(1).size(), QSize(600, 400));
        window(1).close();
    }
}
