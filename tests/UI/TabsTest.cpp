// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabPlace.h"
#include "WindowFixture.h"

#include <QContextMenuEvent>
#include <QDir>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto save = AlertReply::firstButton;
constexpr auto cancel = AlertReply::secondButton;
constexpr auto dontSave = AlertReply::thirdButton;

class TabsTest : public WindowTest {
protected:
    /// What a tab's menu items stand for.
    [[nodiscard]] QVariant place(int tab, size_t inPane = 0) const
    {
        return QVariant::fromValue(TabPlace{pane(inPane).id(), pane(inPane).documents()[size_t(tab)]->id()});
    }
    /// The texts of one pane, with what is typed into some.
    void openTexts(const QStringList &edited)
    {
        workspace().open({put(u"a"_s, "1"), put(u"b"_s, "2"), put(u"c"_s, "3"), put(u"d"_s, "4")});
        for (int tab = 0; tab < 4; ++tab) {
            send(*std::to_array({&Actions::selectTab1, &Actions::selectTab2, &Actions::selectTab3, &Actions::selectTab4})[size_t(tab)]);
            if (edited.contains(tabs()[tab])) {
                type(u"x"_s);
            }
        }
    }
    [[nodiscard]] QString shown() const { return workspace().currentDocument()->displayName(); }
    [[nodiscard]] QStringList asked() const
    {
        QStringList names;
        for (const Alert &alert : presenter.alerts()) {
            names << alert.messageText.section(u'“', 1).section(u'”', 0, 0);
        }
        return names;
    }
    /// What stands in the tabs of a pane, as it is read out.
    [[nodiscard]] QStringList titles(size_t inPane = 0) const
    {
        QStringList names;
        for (const TabItemView *item : pane(inPane).tabBar().findChildren<TabItemView *>()) {
            names << (item->isHidden() ? QString() : item->accessibleName());
        }
        names.removeAll(QString());
        return names;
    }
};

} // namespace

TEST_F(TabsTest, TheMenuIsAboutItsTab)
{
    openTexts({u"b"_s});
    TabItemView *item = pane(0).tabBar().findChildren<TabItemView *>().at(1);
    QContextMenuEvent press(QContextMenuEvent::Keyboard, {5, 5}, {5, 5});
    QApplication::sendEvent(item, &press);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    EXPECT_EQ(
        titlesOf(*menu).replaceInStrings(u"&"_s, QString()),
        (QStringList{u"Close Tab"_s, u"Close Others"_s, u"Close to the Right"_s, u"Close Saved"_s, u"(Reopen Closed Tab)"_s, u"-"_s,
                     u"Split Right"_s, u"Split Down"_s, u"Move Tab to New Window"_s, u"-"_s, u"Copy Path"_s, u"Show in File Manager"_s}));
    menu->actions()[10]->trigger();
    EXPECT_EQ(pasteboard.text(), path(u"b"_s));
    EXPECT_EQ(shown(), u"d"_s) << "nothing else has changed";
    menu->close();
    EXPECT_FALSE(window().firstResponder().state(Actions::closeTabsToTheRight, place(3)).isEnabled);
    send(Actions::splitEditorDown, place(0));
    EXPECT_EQ(tabs(1), QStringList{u"a"_s});
    send(Actions::moveTabToNewWindow, place(2));
    EXPECT_EQ(application.windows()[1]->workspace().currentDocument()->displayName(), u"c"_s);
    EXPECT_EQ(tabs(), (QStringList{u"a"_s, u"b"_s, u"d"_s}));
    send(Actions::closeTab, place(0));
    EXPECT_EQ(tabs(), (QStringList{u"b"_s, u"d"_s}));
    workspace().focusPaneShowing(*pane(0).documents()[1]);
    textView().setSelection(TextSelection::at(1));
    send(Actions::moveTabToNewWindow);
    EXPECT_EQ(text(2), u"4"_s);
    EXPECT_EQ(textView(2).selection().caret, 1);
}

TEST_F(TabsTest, ClosingSeveralAsksAboutEachUnsavedTextUntilCancel)
{
    openTexts({u"a"_s, u"c"_s});
    presenter.answer(dontSave);
    presenter.answer(cancel);
    send(Actions::closeOtherTabs, place(3));
    EXPECT_EQ(asked(), (QStringList{u"a"_s, u"c"_s}));
    EXPECT_EQ(tabs(), (QStringList{u"b"_s, u"c"_s, u"d"_s})) << "also what needs no question stays";
    EXPECT_EQ(shown(), u"c"_s) << "it is seen when it is asked about";
    send(Actions::closeSavedTabs);
    EXPECT_EQ(tabs(), QStringList{u"c"_s});
    send(Actions::reopenClosedTab);
    send(Actions::reopenClosedTab);
    send(Actions::reopenClosedTab);
    EXPECT_EQ(tabs(), (QStringList{u"a"_s, u"b"_s, u"c"_s, u"d"_s})) << "where they were";
    presenter.answer(save);
    send(Actions::closeTabsToTheRight, place(0));
    EXPECT_EQ(read(u"c"_s), "x3");
    EXPECT_EQ(tabs(), QStringList{u"a"_s});
    presenter.answer(dontSave);
    send(Actions::closeTab);
    send(Actions::closeSavedTabs);
    EXPECT_EQ(tabs(), QStringList{u"Untitled"_s}) << "a window has a tab";
}

TEST_F(TabsTest, AClosedTabOpensAgainWithAllThatWasInIt)
{
    openTexts({});
    send(Actions::splitEditorRight, place(1));
    send(Actions::newDocument);
    type(u"given up"_s);
    textView().setSelection(TextSelection::at(5));
    presenter.answer(dontSave);
    send(Actions::closeTab);
    EXPECT_EQ(tabs(1), QStringList{u"b"_s});
    pane(0).focusEditor();
    press(u"<C-S-t>"_s);
    EXPECT_EQ(tabs(1), (QStringList{u"b"_s, u"Untitled"_s}));
    EXPECT_EQ(text(), u"given up"_s);
    ASSERT_TRUE(session.waitUntilWritten(1min));
    EXPECT_EQ(QDir(session.draftsDirectory()).entryList(QDir::Files).size(), 1) << "it is no closed tab any more";
    EXPECT_EQ(textView().selection().range(), (TextRange{5, 0}));
    EXPECT_TRUE(textView().hasFocus());
    send(Actions::undo);
    EXPECT_EQ(text(), QString());
    send(Actions::redo);
    EXPECT_FALSE(isEnabled(Actions::reopenClosedTab));
    send(Actions::reopenClosedTab);
    EXPECT_EQ(presenter.beepCount(), 1);

    // Its pane is gone by then, the window is another, and what is empty goes.
    presenter.answer(dontSave);
    send(Actions::closeTab);
    send(Actions::closeTab);
    send(Actions::newWindow);
    workspace(1).perform(Actions::reopenClosedTab);
    EXPECT_EQ(tabs(*workspace(1).panes().front()), QStringList{u"Untitled"_s});
    EXPECT_EQ(text(1), u"given up"_s);
    workspace(1).open({put(u"e"_s, "5")});
    presenter.answer(dontSave);
    window(1).close();
    EXPECT_TRUE(isEnabled(Actions::reopenClosedTab)) << "a window that closes is tabs that close";
    send(Actions::clearRecentDocuments);
    EXPECT_FALSE(isEnabled(Actions::reopenClosedTab));
}

TEST_F(TabsTest, EqualNamesAreToldApart)
{
    workspace().open({put(u"lib/main.c"_s, "1"), put(u"a"_s, "2"), put(u"app/main.c"_s, "3")});
    EXPECT_EQ(titles(), (QStringList{u"main.c – lib"_s, u"a"_s, u"main.c – app"_s}));
    EXPECT_EQ(tabs()[0], u"main.c"_s);
    send(Actions::splitEditorRight);
    EXPECT_EQ(titles(1), QStringList{u"main.c – app"_s}) << "they are alike in the whole window";
    presenter.answerSave(path(u"app/other.c"_s));
    send(Actions::saveDocumentAs);
    scheduler.advance(1s);
    EXPECT_EQ(titles(), (QStringList{u"main.c"_s, u"a"_s, u"other.c"_s}));

    send(Actions::newDocument);
    pasteboard.setText(u"\n  To: me/you\nmore"_s);
    send(Actions::paste);
    scheduler.advance(1s);
    EXPECT_EQ(titles(1).last(), u"Untitled – To: me/you"_s);
    send(Actions::saveDocumentAs);
    EXPECT_EQ(presenter.savePanels().back().suggestedName, u"Untitled"_s);
    preferences.set(Settings::nameByFirstLine, true);
    send(Actions::undo);
    send(Actions::redo);
    scheduler.advance(1s);
    EXPECT_EQ(titles(1).last(), u"To: me/you"_s);
    EXPECT_EQ(window().windowTitle(), u"To: me/you[*]"_s);
    send(Actions::saveDocumentAs);
    EXPECT_EQ(presenter.savePanels().back().suggestedName, u"To: me-you"_s);
}

TEST_F(TabsTest, SaveAllSavesFilesAndAsksForNames)
{
    openTexts({u"a"_s, u"c"_s, u"d"_s});
    QFile::remove(path(u"a"_s));
    QDir().mkdir(path(u"a"_s));
    put(u"d"_s, "theirs");
    send(Actions::saveDocument);
    EXPECT_EQ(workspace().currentDocument()->externalState(), TextDocument::ExternalState::conflicted);
    for (const QString &words : {u"first"_s, u"second"_s, u"third"_s}) {
        send(Actions::newDocument);
        type(words);
    }
    QStringList seen;
    QObject::connect(&workspace(), &WorkspaceViewController::currentDocumentChanged, &window(), [&] { seen << text(); });
    presenter.answerSave(path(u"first"_s));
    send(Actions::saveAllDocuments);
    EXPECT_EQ(read(u"c"_s), "x3");
    EXPECT_EQ(read(u"d"_s), "theirs");
    ASSERT_EQ(presenter.alerts().size(), 1U);
    EXPECT_EQ(lastAlert(), u"2 files could not be saved."_s);
    EXPECT_TRUE(presenter.alerts()[0].informativeText.contains(u"“a”"_s) && presenter.alerts()[0].informativeText.contains(u"“d”"_s));
    EXPECT_EQ(read(u"first"_s), "first");
    EXPECT_EQ(presenter.savePanels().size(), 2U) << "the third is not asked about after Cancel";
    EXPECT_EQ(text(), u"second"_s) << "it was shown";
    EXPECT_TRUE(seen.contains(u"first"_s));
}
