// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Files that the user may not write to: how they are marked, and who saves them.
#include "UI/TabItemView.h"
#include "WindowFixture.h"

#include <QLabel>
#include <QSignalSpy>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

class AdministratorTest : public WindowTest {
protected:
    void openGuarded()
    {
        files.guarded = put(u"a.txt"_s, "text\n");
        workspace().open({files.guarded});
        type(u"x"_s);
    }
    /// Saves, and takes that button of the alert.
    void saveTaking(int button)
    {
        presenter.answer(button);
        send(Actions::saveDocument);
    }
    [[nodiscard]] QString tabName()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return pane(0).tabBar().findChild<TabItemView *>()->accessibleName();
    }
    /// When what is said for a moment has been said.
    [[nodiscard]] bool showsLock()
    {
        scheduler.advance(10s);
        const auto labels = workspace().statusBar().findChildren<QLabel *>();
        return std::ranges::any_of(labels, [](const QLabel *label) {
            return label->accessibleName() == u"read-only" && label->isVisibleTo(label->parentWidget());
        });
    }
    [[nodiscard]] QStringList lastButtons() const
    {
        QStringList titles;
        for (const AlertButton &button : presenter.alerts().back().buttons) {
            titles << button.title;
        }
        return titles;
    }
    [[nodiscard]] const TextDocument &document() { return *workspace().currentDocument(); }
};

TEST_F(AdministratorTest, WhatMayNotBeReadSaysSo)
{
    files.secret = put(u"secret"_s, "text\n");
    workspace().open({files.secret});
    EXPECT_EQ(presenter.alerts().back().informativeText, u"You do not have permission to read it."_s);
}

TEST_F(AdministratorTest, ReadOnlyFilesHaveALockBeforeTheFirstAttempt)
{
    openGuarded();
    EXPECT_EQ(tabName(), u"a.txt, read-only"_s);
    EXPECT_TRUE(showsLock());
    workspace().open({put(u"b.txt"_s, "text\n")});
    EXPECT_FALSE(showsLock());
    send(Actions::closeTab);

    EXPECT_TRUE(showsLock());
    files.guarded.clear();
    presenter.answer(AlertReply::firstButton);
    send(Actions::revertDocumentToSaved);
    EXPECT_EQ(tabName(), u"a.txt"_s) << "it was read again";
    EXPECT_FALSE(showsLock());

    files.guarded = document().path();
    type(u"y"_s);
    send(Actions::saveDocument);
    EXPECT_TRUE(showsLock()) << "an attempt failed";
    presenter.answerSave(path(u"c.txt"_s));
    send(Actions::saveDocumentAs);
    EXPECT_FALSE(showsLock()) << "it has another file";
    files.guarded = path({}) + u'/';
    workspace().open({path(u"new.txt"_s)}, TextDocument::MissingFile::isMade);
    EXPECT_TRUE(showsLock()) << "it cannot be made";
}

TEST_F(AdministratorTest, AnAdministratorIsOfferedAndSaves)
{
    openGuarded();
    saveTaking(AlertReply::thirdButton);
    EXPECT_EQ(lastButtons(), QStringList({u"Save as Administrator…"_s, u"Save As…"_s, u"Cancel"_s}));
    EXPECT_TRUE(lastAlert().contains(u"permission")) << lastAlert().toStdString();
    EXPECT_EQ(administrator.writes, 0);

    saveTaking(AlertReply::firstButton);
    EXPECT_EQ(read(u"a.txt"_s), "xtext\n");
    EXPECT_FALSE(document().hasUnsavedText());
    EXPECT_EQ(flashes.back(), u"Saved as administrator"_s);
    EXPECT_TRUE(showsLock()) << "it is what it was";

    // Also where a name is chosen, and where it closes; the next one is asked about again.
    type(u"y"_s);
    presenter.answer(AlertReply::firstButton);
    presenter.answer(AlertReply::firstButton);
    send(Actions::closeTab);
    EXPECT_EQ(read(u"a.txt"_s), "xytext\n");
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});
    type(u"z"_s);
    presenter.answerSave(path(u"a.txt"_s));
    presenter.answer(AlertReply::firstButton);
    send(Actions::saveDocumentAs);
    EXPECT_EQ(read(u"a.txt"_s), "z");
    EXPECT_EQ(administrator.writes, 3);
}

TEST_F(AdministratorTest, AFolderThatTheUserMayNotMakeIsMade)
{
    files.guarded = path(u"etc"_s);
    workspace().open({path(u"etc/new/x.conf"_s)}, TextDocument::MissingFile::isMade);
    type(u"x"_s);
    presenter.answer(AlertReply::firstButton);
    saveTaking(AlertReply::firstButton);
    EXPECT_EQ(lastButtons().value(0), u"Save as Administrator…"_s) << lastAlert().toStdString();
    EXPECT_EQ(read(u"etc/new/x.conf"_s), "x");
    EXPECT_EQ(document().hasUnsavedText(), false);
}

TEST_F(AdministratorTest, WhatComesToAFreeNameMeanwhileIsNotReplaced)
{
    type(u"mine"_s);
    files.guarded = path({}) + u'/';
    administrator.beforeWriting = [this] { put(u"a.txt"_s, "theirs"); };
    presenter.answerSave(path(u"a.txt"_s));
    presenter.answer(AlertReply::firstButton);
    send(Actions::saveDocumentAs);
    EXPECT_EQ(administrator.writes, 1);
    EXPECT_EQ(read(u"a.txt"_s), "theirs");
    EXPECT_TRUE(lastAlert().contains(u"a.txt"_s)) << lastAlert().toStdString();
    EXPECT_TRUE(document().isUntitled());
    EXPECT_EQ(document().externalState(), TextDocument::ExternalState::none);
}

TEST_F(AdministratorTest, WhatComesOfItIsSaid)
{
    openGuarded();
    administrator.error = AtomicFile::WriteError{{u"Not saved"_s, Administrator::dismissedError}};
    saveTaking(AlertReply::firstButton);
    EXPECT_EQ(presenter.alerts().size(), 1U) << "the user knows";
    EXPECT_EQ(flashes.back(), u"Not saved"_s);
    administrator.error = AtomicFile::WriteError{{u"not authorized"_s, EPERM}};
    saveTaking(AlertReply::firstButton);
    EXPECT_EQ(lastAlert(), u"not authorized"_s);
    EXPECT_TRUE(lastButtons().isEmpty()) << "it is not offered once more";
    EXPECT_TRUE(document().hasUnsavedText());

    administrator.error.reset();
    put(u"a.txt"_s, "theirs\n");
    saveTaking(AlertReply::firstButton);
    EXPECT_EQ(read(u"a.txt"_s), "theirs\n");
    EXPECT_EQ(document().externalState(), TextDocument::ExternalState::conflicted);

    administrator.isThere = false;
    presenter.answerSave(path(u"b.txt"_s));
    saveTaking(AlertReply::firstButton);
    EXPECT_EQ(lastButtons(), QStringList({u"Save As…"_s, u"Cancel"_s}));
    EXPECT_EQ(read(u"b.txt"_s), "xtext\n");
}

TEST_F(AdministratorTest, NothingWaitsForeverForThePassword)
{
    openGuarded();
    workers.isHeld = true;
    send(Actions::saveDocument);
    presenter.answer(AlertReply::firstButton);
    workers.finish();
    QCoreApplication::processEvents();
    scheduler.advance(300ms);
    EXPECT_EQ(tabName(), u"a.txt, read-only, Waiting for the password…"_s);
    type(u"y"_s);
    EXPECT_EQ(text(), u"xytext\n"_s);
    send(Actions::closeTab);
    EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
    presenter.answer(AlertReply::secondButton);
    send(Actions::closeTab);
    EXPECT_TRUE(presenter.alerts().back().informativeText.contains(u"password"));
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    workers.finish();
    EXPECT_EQ(administrator.writes, 0) << "it was called off";
    EXPECT_EQ(read(u"a.txt"_s), "text\n");
}

TEST_F(AdministratorTest, RootIsToldOnce)
{
    application.remarkOnRoot();
    application.remarkOnRoot();
    EXPECT_TRUE(flashes.size() == 1 && flashes.back().contains(u"root"));
}

} // namespace
