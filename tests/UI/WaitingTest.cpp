// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Disks that take their time: what the window shows meanwhile, and what waits for them.
#include "App/RunningInstance.h"
#include "UI/TabItemView.h"
#include "WindowFixture.h"

#include <QDir>
#include <QSignalSpy>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

class WaitingTest : public WindowTest {
protected:
    void openTyped()
    {
        workers.isHeld = false;
        workspace().open({put(u"disk/a.txt"_s, "text\n")});
        type(u"x"_s);
        workers.isHeld = true;
    }
    void answer()
    {
        workers.isHeld = false;
        workers.finish();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QStringList tabNames()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QStringList names;
        for (const TabItemView *tab : pane(0).tabBar().findChildren<TabItemView *>()) {
            if (!tab->isHidden()) {
                names << tab->accessibleName();
            }
        }
        return names;
    }
};

TEST_F(WaitingTest, SavingIsReportedAndTypingGoesOn)
{
    openTyped();
    send(Actions::saveDocument);
    scheduler.advance(290ms);
    EXPECT_EQ(tabNames(), QStringList{u"a.txt"_s});
    scheduler.advance(10ms);
    EXPECT_EQ(tabNames(), QStringList{u"a.txt, Saving…"_s});
    type(u"y"_s);
    answer();
    EXPECT_EQ(tabNames(), QStringList{u"a.txt"_s});
    EXPECT_EQ(read(u"disk/a.txt"_s), "xtext\n");
    EXPECT_EQ(text(), u"xytext\n"_s);
    EXPECT_TRUE(window().isWindowModified());
}

TEST_F(WaitingTest, WhatClosesWaitsForTheWriteItDependsOn)
{
    const std::pair<const char *, std::function<void()>> ways[] = {
        {"the tab", [this] { send(Actions::closeTab); }},
        {":wq", [this] { send(Actions::saveAndClose); }},
        {":q!", [this] { send(Actions::forceCloseTab); }},
        {"a program that waits", [this] { send(Actions::finishWaiting); }},
    };
    for (const auto &[name, close] : ways) {
        SCOPED_TRACE(name);
        const size_t alerts = presenter.alerts().size();
        openTyped();
        send(Actions::saveDocument);
        close();
        EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
        answer();
        EXPECT_EQ(read(u"disk/a.txt"_s), "xtext\n");
        EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});
        EXPECT_EQ(presenter.alerts().size(), alerts);

        // One that fails keeps the tab and says why.
        openTyped();
        send(Actions::saveDocument);
        close();
        QDir(path(u"disk"_s)).removeRecursively();
        answer();
        EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
        EXPECT_GT(presenter.alerts().size(), alerts);
        EXPECT_TRUE(lastAlert().contains(u"does not exist")) << lastAlert().toStdString();
        send(Actions::forceCloseTab);
        EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});
    }
}

TEST_F(WaitingTest, WhatWasTypedDuringASaveIsAskedAbout)
{
    openTyped();
    presenter.answer(AlertReply::firstButton);
    send(Actions::closeTab);
    type(u"y"_s);
    answer();
    EXPECT_EQ(presenter.alerts().size(), 2U);
    EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
    workers.isHeld = true;
    presenter.answer(AlertReply::firstButton);
    window().close();
    type(u"z"_s);
    presenter.answer(AlertReply::thirdButton);
    answer();
    EXPECT_EQ(read(u"disk/a.txt"_s), "xytext\n");
    EXPECT_EQ(presenter.alerts().size(), 4U);
    EXPECT_TRUE(application.windows().empty());
}

TEST_F(WaitingTest, SeveralTabsStayWhenOneCannotBeWritten)
{
    workers.isHeld = false;
    workspace().open({put(u"b.txt"_s, "b")});
    openTyped();
    send(Actions::saveDocument);
    send(Actions::selectTab1);
    send(Actions::closeOtherTabs);
    QDir(path(u"disk"_s)).removeRecursively();
    answer();
    EXPECT_EQ(tabs(), (QStringList{u"b.txt"_s, u"a.txt"_s}));
}

TEST_F(WaitingTest, NothingGoesToTheTrashThatIsBeingWritten)
{
    openTyped();
    send(Actions::saveDocument);
    const size_t jobs = workers.jobs.size();
    presenter.answer(AlertReply::firstButton);
    send(Actions::moveDocumentToTrash);
    EXPECT_EQ(workers.jobs.size(), jobs);
    answer();
    answer();
    EXPECT_EQ(desktop.trashed, QStringList{path(u"disk/a.txt"_s)});
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});
}

TEST_F(WaitingTest, WhoClosesAgainNeedNotWaitForever)
{
    openTyped();
    send(Actions::saveDocument);
    send(Actions::closeTab);
    EXPECT_TRUE(presenter.alerts().empty());
    send(Actions::closeTab);
    EXPECT_TRUE(lastAlert().contains(u"still being saved"));
    EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
    presenter.answer(AlertReply::secondButton);
    send(Actions::closeTab);
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});

    openTyped();
    send(Actions::saveDocument);
    window().close();
    EXPECT_EQ(application.windows().size(), 1U);
    presenter.answer(AlertReply::secondButton);
    window().close();
    EXPECT_TRUE(application.windows().empty());
    answer();
}

TEST_F(WaitingTest, QuittingWaitsOnceAndKeepsTheText)
{
    const QSignalSpy ends(&application, &AppDelegate::finished);
    openTyped();
    send(Actions::saveDocument);
    application.terminate();
    EXPECT_EQ(ends.size(), 0);
    QDir(path(u"disk"_s)).removeRecursively();
    answer();
    EXPECT_EQ(ends.size(), 0) << "the write failed";

    openTyped();
    send(Actions::saveDocument);
    application.terminate();
    EXPECT_EQ(ends.size(), 0);
    application.terminate();
    EXPECT_EQ(ends.size(), 1) << "it is in a draft";
    EXPECT_EQ(QDir(session.draftsDirectory()).entryList(QDir::Files).size(), 1);
    application.terminateNow();
    EXPECT_EQ(ends.size(), 2);
    answer();
}

TEST_F(WaitingTest, FilesComeLate)
{
    put(u"a.txt"_s, "one\ntwo\n");
    workers.isHeld = true;
    int status = -1;
    application.open(
        OpenRequest{.files = {{path(u"a.txt"_s), LineNumber(2), 2}, {path(u"none"_s)}}, .closed = [&status](int code) { status = code; }});
    EXPECT_EQ(tabNames(), (QStringList{u"a.txt"_s, u"none"_s}));
    scheduler.advance(FileRequests::slowAfter);
    EXPECT_EQ(tabNames(), (QStringList{u"a.txt, Opening…"_s, u"none, Opening…"_s}));
    answer();
    EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
    EXPECT_TRUE(lastAlert().contains(u"none"));
    EXPECT_EQ(textView().selection().caret, 5);
    EXPECT_EQ(recent.entries().size(), 1U);
    EXPECT_EQ(status, -1);
    send(Actions::closeTab);
    EXPECT_EQ(status, 1) << "one of them could not be read";

    // By another name it is the same document, also when that turns out late.
    workspace().open({path(u"a.txt"_s)});
    QFile::link(path(u"a.txt"_s), path(u"link"_s));
    workers.isHeld = true;
    workspace().open({path(u"link"_s)});
    EXPECT_EQ(tabs(), (QStringList{u"a.txt"_s, u"link"_s}));
    answer();
    EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
    EXPECT_EQ(documents.documents().size(), 1U);

    workers.isHeld = true;
    send(Actions::compareWithFileOnDisk);
    EXPECT_TRUE(application.comparisons().empty());
    scheduler.advance(FileRequests::slowAfter);
    EXPECT_EQ(tabNames(), QStringList{u"a.txt, Opening…"_s});
    answer();
    EXPECT_EQ(application.comparisons().size(), 1U);
}

} // namespace
