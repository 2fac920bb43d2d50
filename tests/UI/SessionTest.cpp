// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Commands/Actions.h"
#include "Editor/ExternalChangeBanner.h"
#include "FileAnswers.h"
#include "HeldWorkers.h"
#include "WindowFixture.h"

#include <QDir>
#include <QSignalSpy>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

/// The program over a folder for its data that stays when it is gone.
struct Life : Surroundings {
    explicit Life(const QString &data) : Surroundings(data) { presenter.hold(); }

    [[nodiscard]] WorkspaceViewController &workspace(size_t index = 0) const { return application.windows().at(index)->workspace(); }
    [[nodiscard]] PaneViewController &pane(size_t index) const { return *workspace().panes().at(index); }
    [[nodiscard]] static QStringList titles(const PaneViewController &pane)
    {
        QStringList titles;
        for (const auto &document : pane.documents()) {
            titles << document->displayName();
        }
        return titles;
    }
    [[nodiscard]] QStringList texts(size_t index = 0) const
    {
        QStringList texts;
        for (const auto &document : workspace(index).paneLayout().documents()) {
            texts << document->storage().string();
        }
        return texts;
    }
    void type(const QString &text) const { type(text, workspace()); }
    static void type(const QString &text, WorkspaceViewController &workspace)
    {
        QTest::keyClicks(&workspace.currentEditor()->textView(), text);
    }
    void send(const Action &action) const { application.windows().front()->firstResponder().perform(action); }
    /// As long as it takes for everything typed to be kept; then the program may be killed.
    void tick()
    {
        scheduler.advance(3s);
        ASSERT_TRUE(session.waitUntilWritten(1min));
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QStringList drafts() const { return QDir(session.draftsDirectory()).entryList(QDir::Files | QDir::Hidden); }
    [[nodiscard]] QString lastAlert() const { return presenter.alerts().empty() ? QString() : presenter.alerts().back().messageText; }

    AppDelegate application{services};
};

class SessionTest : public testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<Life> start(const QStringList &paths = {})
    {
        auto run = std::make_unique<Life>(data());
        run->application.launch(paths);
        return run;
    }
    [[nodiscard]] QString data() const { return folder.filePath(u"data"_s); }
    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    [[nodiscard]] QByteArray read(const QString &name) const
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(SessionTest, AProgramThatWasKilledComesBackAsItWas)
{
    QByteArray lines;
    for (int line = 0; line < 300; ++line) {
        lines += "line " + QByteArray::number(line) + '\n';
    }
    const QString path = write(u"lines.txt"_s, lines);
    double offset = 0;
    {
        auto run = start({path, write(u"b.c"_s, "int b;\n")});
        run->application.windows().front()->resize(700, 500);
        run->send(Actions::newDocument);
        run->type(u"typed"_s);
        run->send(Actions::newDocument);
        run->send(Actions::selectTab1);
        run->send(Actions::splitEditorDown);
        run->workspace().currentEditor()->scrollToLine(200);
        run->type(u"x"_s);
        offset = run->workspace().currentEditor()->textView().scrollOffset();
        run->tick();
        EXPECT_EQ(run->drafts().size(), 2);
    }
    auto run = start();
    ASSERT_EQ(run->workspace().panes().size(), 2U);
    EXPECT_EQ(run->workspace().paneLayout().orientation(), Qt::Vertical);
    EXPECT_EQ(run->application.windows().front()->size(), QSize(700, 500));
    EXPECT_EQ(Life::titles(run->pane(0)), (QStringList{u"lines.txt"_s, u"b.c"_s, u"Untitled"_s})) << "an empty one does not";
    EXPECT_EQ(run->pane(0).selectedIndex(), 0);
    EXPECT_EQ(run->workspace().activePane(), &run->pane(1));
    EXPECT_EQ(&run->pane(1).currentEditor()->document(), &run->pane(0).currentEditor()->document());
    EXPECT_EQ(run->pane(0).documents()[2]->storage().string(), u"typed"_s);
    EXPECT_EQ(run->pane(0).documents()[1]->storage().string(), u"int b;\n"_s);
    EXPECT_TRUE(run->pane(1).currentEditor()->document().storage().string().contains(u"xline 199\n"));
    EXPECT_EQ(run->workspace().currentEditor()->textView().selection().caret, lines.indexOf("line 199") + 1);
    run->scheduler.advance(1ms);
    EXPECT_EQ(run->workspace().currentEditor()->textView().scrollOffset(), offset);
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
    ASSERT_TRUE(saved(*run->pane(0).documents()[0], path));
    run->tick();
    EXPECT_EQ(run->drafts().size(), 1);
}

TEST_F(SessionTest, QuittingAsksNothingAndLosesNothing)
{
    {
        auto run = start({write(u"a.txt"_s, "a")});
        QSignalSpy finished(&run->application, &AppDelegate::finished);
        run->type(u"1"_s);
        // The session is that of one window, the texts of all are kept.
        run->send(Actions::newWindow);
        ASSERT_EQ(run->application.windows().size(), 2U);
        Life::type(u"2"_s, run->workspace(1));
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
    EXPECT_EQ(finished.count(), 0);
    EXPECT_TRUE(run->lastAlert().contains(u"2 documents"));
    EXPECT_TRUE(run->presenter.alerts().back().informativeText.contains(u"will be lost"));
    run->application.terminateNow();
    EXPECT_EQ(finished.count(), 1);
}

TEST_F(SessionTest, AClosedWindowsTextsComeBack)
{
    {
        auto run = start({write(u"a.txt"_s, "a")});
        run->type(u"1"_s);
        run->send(Actions::newDocument);
        run->type(u"2"_s);
        run->send(Actions::newWindow);
        run->application.windows().front()->close();
        EXPECT_TRUE(run->presenter.alerts().back().informativeText.contains(u"restored the next time"));
        run->presenter.answer(AlertReply::thirdButton);
        run->presenter.answerHeld();
        ASSERT_EQ(run->application.windows().size(), 1U);
        ASSERT_TRUE(run->session.waitUntilWritten(1min));
        const auto kept = SessionSnapshot::fromJson(read(u"data/session.json"_s)).value_or(SessionSnapshot());
        EXPECT_EQ(kept.panes.value(0).documentIDs, QList{run->workspace().currentDocument()->id()}) << "the window that is left";
        Life::type(u"3"_s, run->workspace());
        run->tick();
        run->application.windows().front()->close();
        run->presenter.answer(AlertReply::thirdButton);
        run->presenter.answerHeld();
        EXPECT_TRUE(run->application.windows().empty());
    }
    auto run = start();
    EXPECT_EQ(run->texts(), (QStringList{u"3"_s, u"1a"_s, u"2"_s}));
    // What the user does not want goes.
    run->workspace().focusPaneShowing(*run->workspace().paneLayout().documents()[2]);
    run->send(Actions::closeTab);
    run->presenter.answer(AlertReply::thirdButton);
    run->presenter.answerHeld();
    run->tick();
    EXPECT_EQ(run->drafts().size(), 2);
    run.reset();
    EXPECT_EQ(start()->texts(), (QStringList{u"3"_s, u"1a"_s}));
}

TEST_F(SessionTest, FilesOpenBesideTheSessionOrInItsPlace)
{
    const QString path = write(u"b.txt"_s, "b");
    {
        auto run = start({write(u"a.txt"_s, "a")});
        run->send(Actions::newDocument);
        run->type(u"typed"_s);
        run->tick();
    }
    EXPECT_EQ(start({path})->texts(), (QStringList{u"a"_s, u"typed"_s, u"b"_s}));
    {
        auto run = std::make_unique<Life>(data());
        run->preferences.set(Settings::restoreSessionWhenOpeningFiles, false);
        run->application.launch({path});
        EXPECT_EQ(run->texts(), QStringList{u"b"_s});
        run->tick();
    }
    {
        auto run = std::make_unique<Life>(data());
        run->preferences.set(Settings::restoreSession, false);
        const QByteArray before = read(u"data/session.json"_s);
        run->application.launch({});
        EXPECT_EQ(run->texts(), QStringList{QString()});
        run->tick();
        EXPECT_EQ(read(u"data/session.json"_s), before);
    }
    EXPECT_EQ(start()->texts(), (QStringList{u"b"_s, u"typed"_s})) << "the unsaved text was carried over";
}

TEST_F(SessionTest, SaysWhatCannotBeKept)
{
    {
        auto first = start();
        auto second = start();
        EXPECT_EQ(second->presenter.alerts().size(), 1U);
        EXPECT_TRUE(second->lastAlert().contains(u"running already"));
        EXPECT_TRUE(first->presenter.alerts().empty());
        second->type(u"typed"_s);
        second->tick();
        second->application.terminate();
        EXPECT_TRUE(second->lastAlert().contains(u"save the changes")) << "it would be lost";
    }
    {
        QFile session(data() + u"/session.json"_s);
        ASSERT_TRUE(session.open(QIODevice::WriteOnly));
        session.write("[]");
    }
    auto run = start();
    run->scheduler.advance(1ms);
    ASSERT_EQ(run->presenter.alerts().size(), 1U);
    EXPECT_TRUE(run->lastAlert().contains(u"last session could not be read"));
    EXPECT_TRUE(run->presenter.alerts().back().informativeText.contains(data() + u"/Unreadable session"_s));
    EXPECT_EQ(run->texts(), QStringList{QString()});
    // A folder in the way of the drafts stands for any disk that cannot be written to.
    QDir(run->session.draftsDirectory()).removeRecursively();
    QFile inTheWay(run->session.draftsDirectory());
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
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
    const QString path = write(u"slow.txt"_s, "first\nsecond\n");
    {
        auto run = start({path, write(u"b.txt"_s, "b"), write(u"gone.txt"_s, "c")});
        run->send(Actions::selectTab1);
        run->workspace().currentEditor()->textView().setSelection(TextSelection::at(8));
        run->tick();
    }
    Surroundings surroundings(data());
    HeldWorkers held;
    DocumentStore documents({surroundings.scheduler, surroundings.notifications, surroundings.preferences, held, surroundings.watchers, {}},
                            {});
    SessionKeeper keeper(surroundings.scheduler, surroundings.notifications, surroundings.preferences, documents, surroundings.session);
    AppDelegate application({{surroundings.scheduler, surroundings.notifications, surroundings.preferences, surroundings.pasteboard,
                              surroundings.presenter, documents, held, surroundings.find, surroundings.registers, surroundings.keyboard},
                             surroundings.defaults,
                             surroundings.desktop,
                             surroundings.session,
                             keeper,
                             surroundings.recent});
    application.launch({});
    WorkspaceViewController &workspace = application.windows().front()->workspace();
    PaneViewController &pane = *workspace.panes().front();
    EditorTextView &view = workspace.currentEditor()->textView();
    EXPECT_FALSE(workspace.currentEditor()->banner()) << "a quick disk needs no words";
    surroundings.scheduler.advance(FileRequests::slowAfter);
    ASSERT_TRUE(workspace.currentEditor()->banner());
    EXPECT_TRUE(workspace.currentEditor()->banner()->accessibleName().contains(u"Waiting for “slow.txt”"));
    QTest::keyClicks(&view, u"typed"_s);
    EXPECT_EQ(workspace.currentDocument()->storage().length(), 0);
    // What is kept of it meanwhile is what was known.
    surroundings.scheduler.advance(3s);
    EXPECT_EQ(workspace.currentDocument()->lastSelectedRange, (TextRange{8, 0}));
    workspace.perform(Actions::selectTab2);
    EXPECT_TRUE(workspace.currentDocument()->isWaiting());
    workspace.perform(Actions::closeTab);
    EXPECT_EQ(pane.documents().size(), 2U);
    workspace.perform(Actions::selectTab1);
    QFile::remove(folder.filePath(u"gone.txt"_s));

    held.finish();
    QCoreApplication::processEvents();
    EXPECT_EQ(pane.documents().size(), 1U) << "what cannot be read goes";
    EXPECT_FALSE(workspace.currentEditor()->banner());
    EXPECT_EQ(view.selection().caret, 8);
    QTest::keyClicks(&view, u"x"_s);
    EXPECT_EQ(workspace.currentDocument()->storage().string(), u"first\nsexcond\n"_s);
}

TEST_F(SessionTest, PanesComeBackWithEqualShares)
{
    {
        auto run = start();
        run->type(u"text"_s);
        run->send(Actions::splitEditorRight);
        run->send(Actions::newDocument);
        run->type(u"other"_s);
        run->tick();
    }
    auto run = start();
    QCoreApplication::processEvents();
    ASSERT_EQ(run->workspace().panes().size(), 2U);
    EXPECT_LE(std::abs(run->pane(0).width() - run->pane(1).width()), 1);
}
