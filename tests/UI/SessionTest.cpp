// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "FileAnswers.h"
#include "WindowFixture.h"

#include <QDir>
#include <QSignalSpy>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

/// The program over a folder for its data that stays when it is gone.
struct Life : WholeProgram {
    explicit Life(const QString &data) : WholeProgram(data) { presenter.hold(); }

    [[nodiscard]] QStringList texts() const
    {
        QStringList texts;
        for (const auto &document : workspace().paneLayout().documents()) {
            texts << document->storage().string();
        }
        return texts;
    }
    /// As long as it takes for everything typed to be kept; then the program may be killed.
    void tick()
    {
        scheduler.advance(3s);
        ASSERT_TRUE(session.waitUntilWritten(1min));
        QCoreApplication::processEvents();
    }
    /// As long as it takes to hear of what others have written.
    void look()
    {
        for (int turn = 0; turn < 20; ++turn) {
            QCoreApplication::processEvents();
            scheduler.advance(50ms);
        }
        QCoreApplication::processEvents();
    }
    void answer(int button)
    {
        presenter.answer(button);
        presenter.answerHeld();
    }
    [[nodiscard]] QStringList drafts() const { return QDir(session.draftsDirectory()).entryList(QDir::Files | QDir::Hidden); }
};

class SessionTest : public testing::Test, protected TestFolder {
protected:
    [[nodiscard]] std::unique_ptr<Life> start(
        const QStringList &paths = {}, const std::function<void(Life &)> &prepare = [](Life &) {})
    {
        auto run = std::make_unique<Life>(path(u"data"_s));
        prepare(*run);
        run->application.launch(paths);
        return run;
    }
};

} // namespace

TEST_F(SessionTest, AProgramThatWasKilledComesBackAsItWas)
{
    QByteArray lines;
    for (int line = 0; line < 300; ++line) {
        lines += "line " + QByteArray::number(line) + '\n';
    }
    const QString file = put(u"lines.txt"_s, lines);
    double offset = 0;
    {
        auto run = start({file, put(u"b.c"_s, "int b;\n")});
        run->window().resize(700, 500);
        run->send(Actions::newDocument);
        run->type(u"typed"_s);
        run->send(Actions::newDocument);
        run->send(Actions::selectTab1);
        run->send(Actions::splitEditorDown);
        run->workspace().currentEditor()->scrollToLine(LineNumber(200));
        run->type(u"x"_s);
        offset = run->textView().scrollOffset();
        run->tick();
        EXPECT_EQ(run->drafts().size(), 2);
    }
    auto run = start();
    ASSERT_EQ(run->workspace().panes().size(), 2U);
    EXPECT_EQ(run->workspace().paneLayout().orientation(), Qt::Vertical);
    QCoreApplication::processEvents();
    EXPECT_LE(std::abs(run->pane(0).height() - run->pane(1).height()), 1) << "equal shares";
    EXPECT_EQ(run->window().size(), QSize(700, 500));
    EXPECT_EQ(Life::tabs(run->pane(0)), (QStringList{u"lines.txt"_s, u"b.c"_s, u"Untitled"_s})) << "an empty one does not";
    EXPECT_EQ(run->pane(0).selectedIndex(), 0);
    EXPECT_EQ(run->workspace().activePane(), &run->pane(1));
    EXPECT_EQ(&run->pane(1).currentEditor()->document(), &run->pane(0).currentEditor()->document());
    EXPECT_EQ(run->pane(0).documents()[2]->storage().string(), u"typed"_s);
    EXPECT_EQ(run->pane(0).documents()[1]->storage().string(), u"int b;\n"_s);
    EXPECT_TRUE(run->pane(1).currentEditor()->document().storage().string().contains(u"xline 199\n"));
    EXPECT_EQ(run->textView().selection().caret, lines.indexOf("line 199") + 1);
    run->scheduler.advance(1ms);
    EXPECT_EQ(run->textView().scrollOffset(), offset);
    EXPECT_TRUE(run->presenter.alerts().empty());

    // Until it is saved, a text that came back is asked about like any other, and comes back again.
    run->tick();
    EXPECT_EQ(run->drafts().size(), 2);
    run->workspace().focusPaneShowing(*run->pane(0).documents()[2]);
    run->send(Actions::closeTab);
    EXPECT_TRUE(run->lastAlert().contains(u"Untitled"));
    run.reset();
    run = start();
    EXPECT_EQ(run->drafts().size(), 2);
    ASSERT_TRUE(saved(*run->pane(0).documents()[0], file));
    run->tick();
    EXPECT_EQ(run->drafts().size(), 1);
}

TEST_F(SessionTest, AFileThatWasJustMadeComesBack)
{
    {
        auto run = start();
        run->type(u"typed"_s);
        run->tick();
        run->presenter.answerSave(path(u"a.txt"_s));
        run->send(Actions::saveDocumentAs);
        run->presenter.answerHeld();
        ASSERT_TRUE(run->session.waitUntilWritten(1min));
        EXPECT_EQ(run->drafts(), QStringList());
    }
    EXPECT_EQ(start()->workspace().currentDocument()->path(), path(u"a.txt"_s));
}

TEST_F(SessionTest, QuittingAsksNothingAndLosesNothing)
{
    {
        auto run = start({put(u"a.txt"_s, "a")});
        QSignalSpy finished(&run->application, &AppDelegate::finished);
        run->type(u"1"_s);
        // The session is that of one window, the texts of all are kept.
        run->send(Actions::newWindow);
        ASSERT_EQ(run->application.windows().size(), 2U);
        run->type(u"2"_s, 1);
        run->application.terminate();
        EXPECT_EQ(finished.count(), 1);
        EXPECT_TRUE(run->presenter.alerts().empty());
    }
    {
        auto run = start();
        EXPECT_EQ(run->texts(), (QStringList{u"2"_s, u"1a"_s}));
        run->application.terminateNow();
        EXPECT_TRUE(run->presenter.alerts().empty());
    }
    // Where nothing is kept, it asks.
    auto run = start();
    EXPECT_EQ(run->texts(), (QStringList{u"2"_s, u"1a"_s}));
    run->preferences.set(Settings::autosaveDrafts, false);
    QSignalSpy finished(&run->application, &AppDelegate::finished);
    run->application.terminate();
    ASSERT_EQ(finished.count(), 0);
    EXPECT_TRUE(run->lastAlert().contains(u"2 documents"));
    EXPECT_TRUE(run->presenter.alerts().back().informativeText.contains(u"will be lost"));
    run->answer(AlertReply::secondButton);
    run->send(Actions::newWindow);
    run->window(1).close();
    EXPECT_EQ(run->presenter.alerts().size(), 1U) << "it does not go on ending";
    run->application.terminateNow();
    EXPECT_EQ(finished.count(), 1);
}

TEST_F(SessionTest, AClosedWindowsTextsComeBack)
{
    {
        auto run = start({put(u"a.txt"_s, "a")});
        run->type(u"1"_s);
        run->send(Actions::newDocument);
        run->type(u"2"_s);
        run->send(Actions::newWindow);
        run->window().close();
        EXPECT_TRUE(run->presenter.alerts().back().informativeText.contains(u"restored the next time"));
        run->answer(AlertReply::thirdButton);
        ASSERT_EQ(run->application.windows().size(), 1U);
        ASSERT_TRUE(run->session.waitUntilWritten(1min));
        const auto kept = SessionSnapshot::fromJson(read(u"data/session.json"_s)).value_or(SessionSnapshot());
        EXPECT_EQ(kept.panes.value(0).documentIDs, QList{run->workspace().currentDocument()->id()}) << "the window that is left";
        run->type(u"3"_s);
        run->workspace().open({put(u"b.txt"_s, "b")});
        run->window().close();
        run->answer(AlertReply::thirdButton);
        EXPECT_TRUE(run->application.windows().empty());
    }
    auto run = start();
    EXPECT_EQ(run->texts(), (QStringList{u"3"_s, u"b"_s, u"1a"_s, u"2"_s}));
    // What the user does not want goes.
    run->workspace().focusPaneShowing(*run->workspace().paneLayout().documents()[3]);
    run->send(Actions::closeTab);
    run->answer(AlertReply::thirdButton);
    run->tick();
    EXPECT_EQ(run->drafts().size(), 2);
    run.reset();
    EXPECT_EQ(start()->texts(), (QStringList{u"3"_s, u"b"_s, u"1a"_s}));
}

TEST_F(SessionTest, FilesOpenBesideTheSessionOrInItsPlace)
{
    const QString file = put(u"b.txt"_s, "b");
    {
        auto run = start({put(u"a.txt"_s, "a")});
        run->send(Actions::newDocument);
        run->type(u"typed"_s);
        run->tick();
    }
    EXPECT_EQ(start({file})->texts(), (QStringList{u"a"_s, u"typed"_s, u"b"_s}));
    {
        auto run = start({file}, [](Life &life) { life.preferences.set(Settings::restoreSessionWhenOpeningFiles, false); });
        EXPECT_EQ(run->texts(), QStringList{u"b"_s});
        run->tick();
    }
    {
        const QByteArray before = read(u"data/session.json"_s);
        auto run = start({}, [](Life &life) { life.preferences.set(Settings::restoreSession, false); });
        EXPECT_EQ(run->texts(), QStringList{QString()});
        run->tick();
        EXPECT_EQ(read(u"data/session.json"_s), before);
    }
    EXPECT_EQ(start()->texts(), (QStringList{u"b"_s, u"typed"_s})) << "the unsaved text was carried over";
}

TEST_F(SessionTest, AFileWithUnsavedTextOpensWithThat)
{
    const QString file = put(u"a.txt"_s, "a");
    {
        auto run = start({file});
        run->type(u"typed "_s);
        run->tick();
    }
    put(u"a.txt"_s, "theirs");
    auto run = start({file}, [](Life &life) { life.preferences.set(Settings::restoreSessionWhenOpeningFiles, false); });
    EXPECT_EQ(run->texts(), QStringList{u"typed a"_s});
    run->tick();
    run->tick();
    EXPECT_EQ(run->workspace().currentDocument()->externalState(), TextDocument::ExternalState::conflicted);
    run->workspace().open({file});
    EXPECT_EQ(run->texts(), QStringList{u"typed a"_s}) << "one tab";
    EXPECT_TRUE(run->window().isWindowModified());
    put(u"a.txt"_s, "typed a");
    run->look();
    EXPECT_FALSE(run->window().isWindowModified()) << "others have written the same";
}

TEST_F(SessionTest, ATextOfAClosedWindowGoesWhenItIsInItsFile)
{
    const QString file = put(u"a.txt"_s, "a");
    auto run = start({file});
    run->type(u"1"_s);
    run->send(Actions::newWindow);
    run->window().close();
    run->answer(AlertReply::thirdButton);
    ASSERT_EQ(run->application.windows().size(), 1U);
    run->tick();
    EXPECT_NE(run->documents.documentAt(file), nullptr) << "opening it brings it back";
    put(u"a.txt"_s, "1a");
    run->look();
    EXPECT_EQ(run->documents.documentAt(file), nullptr);
    run->tick();
    EXPECT_EQ(run->drafts(), QStringList());
}

TEST_F(SessionTest, WhatASecondProgramWasKilledWithComesBackWhenNoOtherRuns)
{
    const QString file = put(u"a.txt"_s, "a");
    const QString second = put(u"b.txt"_s, "b");
    auto owner = start({file});
    {
        auto other = start({file, second});
        other->type(u"other "_s);
        other->send(Actions::selectTab1);
        other->type(u"typed "_s);
        other->send(Actions::newDocument);
        other->type(u"new"_s);
        other->tick();
        EXPECT_EQ(start()->texts(), QStringList{QString()}) << "both run";
    }
    owner->tick();
    owner.reset();
    for (int time = 0; time < 2; ++time) {
        auto run = start();
        EXPECT_EQ(run->texts(), (QStringList{u"typed a"_s, u"other b"_s, u"new"_s})) << "in the tab of the file, too";
        EXPECT_EQ(Life::tabs(run->pane(0)).first(2), (QStringList{u"a.txt"_s, u"b.txt"_s}));
        run->tick();
        EXPECT_FALSE(QDir(path(u"data/Guests"_s)).exists());
    }
}

TEST_F(SessionTest, SaysWhatCannotBeKept)
{
    {
        auto first = start();
        auto second = start({put(u"s.txt"_s, "s")});
        EXPECT_EQ(second->presenter.alerts().size(), 1U);
        EXPECT_TRUE(second->lastAlert().contains(u"running already"));
        second->presenter.answerHeld();
        EXPECT_TRUE(first->presenter.alerts().empty());
        second->type(u"typed"_s);
        second->tick();
        second->application.terminate();
        EXPECT_TRUE(second->lastAlert().contains(u"save the changes")) << "it would not be seen for long";
        second->answer(AlertReply::thirdButton);
    }
    EXPECT_FALSE(QDir(path(u"data/Guests"_s)).exists()) << "what was not wanted does not come back";
    put(u"data/session.json"_s, "[]");
    auto run = start();
    run->scheduler.advance(1ms);
    ASSERT_EQ(run->presenter.alerts().size(), 1U);
    EXPECT_TRUE(run->lastAlert().contains(u"last session could not be read"));
    EXPECT_TRUE(run->presenter.alerts().back().informativeText.contains(path(u"data"_s) + u"/Unreadable session"_s));
    EXPECT_EQ(run->texts(), QStringList{QString()});
    // A file in the way of the drafts stands for any disk that cannot be written to.
    QDir(run->session.draftsDirectory()).removeRecursively();
    put(run->session.draftsDirectory(), "");
    run->type(u"typed"_s);
    run->tick();
    run->tick();
    run->scheduler.advance(1ms);
    ASSERT_EQ(run->presenter.alerts().size(), 2U);
    EXPECT_TRUE(run->lastAlert().contains(u"cannot be kept"));
    run->application.terminate();
    EXPECT_TRUE(run->lastAlert().contains(u"save the changes"));
}

TEST_F(SessionTest, ATabWhoseFileDoesNotComeSaysSo)
{
    {
        auto run = start({put(u"slow.txt"_s, "first\nsecond\n"), put(u"b.txt"_s, "b"), put(u"gone.txt"_s, "c")});
        run->send(Actions::selectTab1);
        run->textView().setSelection(TextSelection::at(8));
        run->tick();
    }
    auto run = start({}, [](Life &life) { life.workers.isHeld = true; });
    WorkspaceViewController &workspace = run->workspace();
    EXPECT_FALSE(workspace.currentEditor()->banner()) << "a quick disk needs no words";
    run->scheduler.advance(FileRequests::slowAfter);
    ASSERT_TRUE(workspace.currentEditor()->banner());
    EXPECT_TRUE(workspace.currentEditor()->banner()->accessibleName().contains(u"Waiting for “slow.txt”"));
    run->type(u"typed"_s);
    EXPECT_EQ(run->text(), QString());
    run->send(Actions::saveDocument);
    EXPECT_TRUE(run->lastAlert().contains(u"has not been read yet"));
    run->answer(AlertReply::firstButton);
    // What is kept of it meanwhile is what was known.
    run->scheduler.advance(3s);
    EXPECT_EQ(workspace.currentDocument()->lastSelectedRange, (TextRange{8, 0}));
    run->send(Actions::selectTab2);
    EXPECT_TRUE(workspace.currentDocument()->arrival().isPending());
    run->send(Actions::closeTab);
    EXPECT_EQ(run->tabs().size(), 2);
    run->send(Actions::selectTab1);
    QFile::remove(path(u"gone.txt"_s));

    run->workers.finish();
    QCoreApplication::processEvents();
    EXPECT_EQ(run->tabs(), QStringList{u"slow.txt"_s}) << "what cannot be read goes";
    EXPECT_FALSE(workspace.currentEditor()->banner());
    EXPECT_EQ(run->textView().selection().caret, 8);
    run->type(u"x"_s);
    EXPECT_EQ(run->text(), u"first\nsexcond\n"_s);
}
