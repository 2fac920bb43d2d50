// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/ShortcutOverview.h"
#include "Commands/ActionKeys.h"
#include "Desktop/SystemDesktop.h"
#include "Vim/VimChords.h"
#include "Vim/VimOptions.h"
#include "WindowFixture.h"

#include <QSignalSpy>
#include <QToolButton>

#include <gmock/gmock.h>

#include <set>

using namespace Qt::StringLiterals;

namespace {

using CommandsTest = WindowTest;

} // namespace

TEST_F(CommandsTest, SaveSaysWhatItDid)
{
    presenter.answerSave(path(u"new.c"_s));
    EXPECT_EQ(textView().accessibleName(), u"Untitled"_s);
    type(u"text"_s);
    QTest::keySequence(&textView(), QKeySequence(u"Ctrl+S"_s));
    EXPECT_EQ(read(u"new.c"_s), "text");
    EXPECT_EQ(window().windowTitle(), u"new.c[*]"_s);
    EXPECT_EQ(textView().accessibleName(), u"new.c"_s);
    EXPECT_FALSE(window().isWindowModified());
    type(u"!"_s);
    EXPECT_TRUE(window().isWindowModified());
    send(Actions::saveDocument);
    EXPECT_EQ(flashes, (QStringList{u"Saved as “new.c”"_s, u"Saved"_s}));
    EXPECT_EQ(defaults.string("io.panels.lastDirectory"_L1), path({}));
}

TEST_F(CommandsTest, WhatNeedsAFileBeepsWithoutOne)
{
    for (const Action *action : {&Actions::makeBackup, &Actions::openInTerminal, &Actions::moveDocumentToTrash, &Actions::revealInFinder,
                                 &Actions::copyFilePath}) {
        const int beeps = presenter.beepCount();
        EXPECT_FALSE(isEnabled(*action)) << action->id;
        send(*action);
        EXPECT_EQ(presenter.beepCount(), beeps + 1) << action->id;
    }
    const QString file = put(u"a.txt"_s, "a\r\n");
    workspace().open({file});
    type(u"x"_s);
    send(Actions::makeBackup);
    send(Actions::makeBackup);
    EXPECT_EQ(read(u"a 2.txt"_s), "xa\r\n");
    EXPECT_EQ(flashes, (QStringList{u"Copied to “a 2.txt”"_s, u"Copied to “a 3.txt”"_s}));
    EXPECT_TRUE(window().isWindowModified());
    send(Actions::openInTerminal);
    send(Actions::revealInFinder);
    send(Actions::copyFilePath);
    EXPECT_EQ(desktop.terminals, QStringList{path({})});
    EXPECT_EQ(desktop.revealed, QStringList{file});
    EXPECT_EQ(pasteboard.text(), file);
    EXPECT_TRUE(presenter.alerts().empty());
    desktop.result = failure(u"No file manager was found."_s);
    send(Actions::revealInFinder);
    EXPECT_EQ(lastAlert(), u"No file manager was found."_s);
}

TEST_F(CommandsTest, TheTrashAsksFirstAndKeepsTheTabWhenItFails)
{
    const QString file = put(u"a.txt"_s, "a");
    workspace().open({file, put(u"b.txt"_s, "b")});
    send(Actions::selectPreviousTab);
    send(Actions::splitEditorRight);
    send(Actions::moveDocumentToTrash);
    EXPECT_EQ(lastAlert(), u"Move “a.txt” to the Trash?"_s);
    EXPECT_TRUE(desktop.trashed.isEmpty());
    presenter.answer(AlertReply::firstButton);
    desktop.result = failure(u"no room"_s);
    send(Actions::moveDocumentToTrash);
    EXPECT_EQ(lastAlert(), u"no room"_s);
    EXPECT_EQ(workspace().panes().size(), 2U);
    presenter.answer(AlertReply::firstButton);
    desktop.result = {};
    send(Actions::moveDocumentToTrash);
    EXPECT_EQ(desktop.trashed, (QStringList{file, file}));
    EXPECT_EQ(workspace().panes().size(), 1U);
    EXPECT_EQ(tabs(), QStringList{u"b.txt"_s});
    EXPECT_EQ(documents.documents().size(), 1U);

    // Saved under another name while the question was open, it is not the file that was asked about.
    presenter.hold();
    send(Actions::moveDocumentToTrash);
    workspace().currentDocument()->save(path(u"c.txt"_s));
    presenter.answer(AlertReply::firstButton);
    presenter.answerHeld();
    EXPECT_EQ(desktop.trashed.size(), 2);
    EXPECT_EQ(tabs(), QStringList{u"c.txt"_s});
}

TEST_F(CommandsTest, RevertAsksAndIsThereOnlyForEditedFiles)
{
    workspace().open({put(u"a.txt"_s, "a")});
    EXPECT_FALSE(isEnabled(Actions::revertDocumentToSaved));
    type(u"x"_s);
    EXPECT_TRUE(isEnabled(Actions::revertDocumentToSaved));
    send(Actions::revertDocumentToSaved);
    EXPECT_EQ(text(), u"xa"_s);
    presenter.answer(AlertReply::firstButton);
    send(Actions::revertDocumentToSaved);
    EXPECT_EQ(text(), u"a"_s);
    EXPECT_FALSE(window().isWindowModified());
}

TEST_F(CommandsTest, GoToLineTakesWholeNumbersOnly)
{
    workspace().open({put(u"a.txt"_s, QByteArray("x\n").repeated(30))});
    for (const auto &[entered, line] :
         {std::pair(" 12 ", 12), {"+13", 13}, {"0", 1}, {"-3", 1}, {"12:4", 1}, {"x", 1}, {"99", 31}, {"99999999999999999999", 1}}) {
        textView().setSelection(TextSelection::at(0));
        presenter.answer(AlertReply::firstButton, QString::fromLatin1(entered));
        send(Actions::goToLine);
        EXPECT_EQ(textView().selection().caret, 2 * (line - 1)) << entered;
        EXPECT_EQ(presenter.alerts().back().informativeText, u"A line number from 1 to 31:"_s);
    }
}

TEST_F(CommandsTest, WhatIsChosenIsShownInMenusAndStatusBar)
{
    workspace().open({put(u"a.txt"_s, "x")});
    const auto isOn = [this](const Action &action, const QVariant &represented = {}) {
        return window().firstResponder().state(action, represented).checkMark == CheckMark::on;
    };
    const auto choose = [this](const QString &kind, const QString &title) {
        const auto *popUp = control<QToolButton>(workspace().statusBar(), kind);
        const QList<QAction *> entries = popUp->menu()->actions();
        (*std::ranges::find(entries, title, &QAction::text))->trigger();
        return popUp->text();
    };
    EXPECT_TRUE(isOn(Actions::selectLanguage, u"text"_s));
    for (const QString &title : {u"Tabs: 8"_s, u"Tabs: 2"_s, u"Spaces: 2"_s}) {
        EXPECT_EQ(choose(u"Indentation"_s, title), title);
    }
    EXPECT_EQ(choose(u"Line Endings"_s, u"CRLF"_s), u"CRLF"_s);
    EXPECT_EQ(choose(u"Text Encoding"_s, u"UTF-16"_s), u"UTF-16"_s);
    EXPECT_EQ(choose(u"Syntax"_s, u"Python"_s), u"Python"_s);
    EXPECT_TRUE(control<QToolButton>(workspace().statusBar(), u"Spaces: 4"_s)) << "the language has its own";
    EXPECT_TRUE(isOn(Actions::selectLanguage, u"python"_s));
    EXPECT_TRUE(workspace().currentDocument()->languageWasChosenManually);
    send(Actions::selectTheme, u"Solarized Dark"_s);
    EXPECT_TRUE(isOn(Actions::selectTheme, u"Solarized Dark"_s));
    for (const Action *action :
         {&Actions::toggleLineNumbers, &Actions::toggleLineWrap, &Actions::toggleInvisibles, &Actions::toggleCurrentLineHighlight}) {
        const bool before = isOn(*action);
        send(*action);
        EXPECT_EQ(isOn(*action), !before) << action->id;
    }
    send(Actions::increaseFontSize);
    EXPECT_EQ(preferences.value(Settings::fontSize), 14);
    send(Actions::resetFontSize);
    EXPECT_EQ(preferences.value(Settings::fontSize), 13);
}

TEST_F(CommandsTest, ATextIsIndentedAsItsLinesAreUnlessSomethingElseIsChosenForIt)
{
    workspace().open({put(u"a.py"_s, "if a:\n  b\n  c\n  d\n  e\n  if f:\n    g\n")});
    QToolButton &popUp = *control<QToolButton>(workspace().statusBar(), u"Indentation"_s);
    const auto choose = [&popUp](const QString &title, QMenu &menu) {
        const QList<QAction *> entries = menu.actions();
        (*std::ranges::find(entries, title, &QAction::text))->trigger();
        QFocusEvent focus(QEvent::FocusIn);
        QApplication::sendEvent(&popUp, &focus);
        return popUp.text() + u", "_s + popUp.accessibleDescription();
    };
    QMenu &forAll = *popUp.menu();
    QMenu &forText = *forAll.actions().last()->menu();
    EXPECT_EQ(choose(u"Automatic"_s, forText), u"Spaces: 2, Found in this text"_s);
    EXPECT_EQ(choose(u"Tabs: 8"_s, forAll), u"Spaces: 2, Found in this text"_s);
    EXPECT_EQ(flashes.last(), u"This text stays with Spaces: 2 (Found in this text). “This Text” in the same menu changes it."_s);
    EXPECT_EQ(choose(u"Tabs: 4"_s, forText), u"Tabs: 4, Chosen for this text"_s);
    EXPECT_EQ(titlesOf(forText).filter(u"*"_s), QStringList{u"*Tabs: 4"_s});
    EXPECT_EQ(choose(u"Automatic"_s, forText), u"Spaces: 2, Found in this text"_s);
    textView().setSelection(TextSelection{8, 9});
    EXPECT_EQ(choose(u"Convert to Tabs"_s, forText), u"Tabs: 2, Chosen for this text"_s);
    EXPECT_EQ(textView().storage().string(), u"if a:\n\tb\n\tc\n\td\n\te\n\tif f:\n\t\tg\n"_s) << "all lines, whatever is selected";
    EXPECT_EQ(textView().selectedText(), u"b"_s);
    preferences.set(Settings::detectIndentation, false);
    EXPECT_EQ(choose(u"Automatic"_s, forText), u"Spaces: 4, Usual for Python"_s);
    workspace().currentDocument()->setLanguage(Language::plainText());
    EXPECT_EQ(choose(u"Spaces: 8"_s, forAll), u"Spaces: 8, From the settings"_s);
}

TEST_F(CommandsTest, ADamagedEditorConfigIsTold)
{
    put(u".editorconfig"_s, "nonsense\n");
    workspace().open({put(u"a.txt"_s, "x")});
    scheduler.advance(std::chrono::milliseconds(0));
    EXPECT_TRUE(flashes.filter(u".editorconfig is ignored: line 1 of"_s).size() == 1) << flashes.join(u'\n').toStdString();
}

TEST_F(CommandsTest, ClosingAWindowAsksOnceForAllItsTexts)
{
    send(Actions::newWindow);
    workspace(1).open({put(u"a"_s, "a"), put(u"b"_s, "b")});
    for (const auto &document : workspace(1).paneLayout().documents()) {
        document->storage().apply({{}, u"x"_s});
    }
    window(1).close();
    EXPECT_EQ(lastAlert(), u"You have 2 documents with unsaved changes."_s);
    EXPECT_EQ(application.windows().size(), 2U);
    presenter.answer(AlertReply::firstButton);
    window(1).close();
    EXPECT_EQ(application.windows().size(), 1U);
    EXPECT_EQ(read(u"a"_s) + read(u"b"_s), "xaxb");
    EXPECT_EQ(documents.documents().size(), 1U);
    // The only one left is clean.
    const QSignalSpy finished(&application, &AppDelegate::finished);
    send(Actions::terminate);
    EXPECT_EQ(finished.size(), 1);
}

TEST_F(CommandsTest, AMinimisedWindowComesForwardWhenItIsNeeded)
{
    type(u"x"_s);
    presenter.hold();
    for (int attempt = 0; attempt < 2; ++attempt) {
        window().showMinimized();
        window().close();
        EXPECT_FALSE(window().isMinimized()) << "nobody would see the question";
    }
    presenter.answerHeld();
    window().showMinimized();
    application.open({put(u"a.txt"_s, "a")});
    EXPECT_FALSE(window().isMinimized());
    EXPECT_EQ(tabs().last(), u"a.txt"_s);
}

TEST_F(CommandsTest, TheMenusFollowFocusAndLanguage)
{
    EXPECT_FALSE(menuItem(u"File"_s, u"Backup"_s)->isEnabled());
    workspace().open({put(u"a.txt"_s, "x")});
    EXPECT_TRUE(menuItem(u"File"_s, u"Backup"_s)->isEnabled());
    EXPECT_TRUE(menuItem(u"View"_s, u"Show Line Numbers"_s)->isChecked());
    menuItem(u"File"_s, u"New Tab"_s)->trigger();
    EXPECT_EQ(tabs().size(), 2);
    QTest::keySequence(&textView(), QKeySequence(u"Ctrl+Shift+N"_s));
    EXPECT_EQ(application.windows().size(), 2U) << "two items have these keys";
    preferences.set(Settings::language, AppLanguage::german);
    EXPECT_TRUE(menuItem(u"Datei"_s, u"Sicherungskopie"_s));
    EXPECT_EQ(tabs().last(), u"Unbenannt"_s);
    // Every menu has a letter of its own.
    for (const AppLanguage language : {AppLanguage::german, AppLanguage::english}) {
        preferences.set(Settings::language, language);
        QStringList letters;
        for (const QAction *menu : window().menuBar()->actions()) {
            letters << QKeySequence::mnemonic(menu->text()).toString();
        }
        EXPECT_FALSE(letters.contains(QString()));
        EXPECT_EQ(letters.removeDuplicates(), 0);
    }
}

TEST_F(CommandsTest, BarsThatHaveTheFocusActOnTheText)
{
    workspace().open({put(u"a.txt"_s, "x"), put(u"b.txt"_s, "y")});
    QWidget *text = &textView();
    using Bars = std::initializer_list<const QWidget *>;
    for (const QWidget *bar : Bars{&pane(0).tabBar(), &workspace().statusBar(), window().menuBar()->cornerWidget()}) {
        QTest::keySequence(window().focusWidget(), QKeySequence(Qt::Key_F6));
        EXPECT_TRUE(bar->isAncestorOf(window().focusWidget())) << bar->metaObject()->className();
        EXPECT_TRUE(isEnabled(Actions::selectAll) && isEnabled(Actions::closeTab)) << bar->metaObject()->className();
        const QPointer<QWidget> focused = window().focusWidget();
        QTest::keyClick(focused, Qt::Key_Escape);
        EXPECT_TRUE(text->hasFocus()) << bar->metaObject()->className();
        focused->setFocus();
    }
    QTest::keySequence(window().focusWidget(), QKeySequence(u"Shift+F6"_s));
    EXPECT_TRUE(workspace().statusBar().isAncestorOf(window().focusWidget()));
    QTest::keySequence(window().focusWidget(), QKeySequence(Qt::Key_F6));
    // Beside the menu bar, it does not leave letters to the menus.
    QTest::keyClick(window().focusWidget(), Qt::Key_N);
    EXPECT_FALSE(QApplication::activePopupWidget());
    // The text behind goes, and its neighbour takes its place.
    send(Actions::closeTab);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(tabs(), QStringList{u"a.txt"_s});
    EXPECT_TRUE(isEnabled(Actions::selectAll) && isEnabled(Actions::closeTab));
    QTest::keySequence(&textView(), QKeySequence(Qt::Key_F10));
    EXPECT_EQ(QApplication::activePopupWidget(), window().menuBar()->actions().first()->menu());
    window().menuBar()->actions().first()->menu()->close();
}

// Recent documents

namespace {

class RecentDocumentsMenu : public WindowTest {
protected:
    [[nodiscard]] QMenu *recentMenu() const { return menuItem(u"File"_s, u"Open Recent"_s)->menu(); }
    [[nodiscard]] std::string opened() const
    {
        QMenu *menu = recentMenu();
        const QStringList titles = titlesOf(*menu);
        emit menu->aboutToHide();
        return titles.join(u" | "_s).toStdString();
    }
    void choose(qsizetype index) const { recentMenu()->actions().at(index)->trigger(); }
};

} // namespace

TEST_F(RecentDocumentsMenu, ShowsWhatWasOpenedAndSaved)
{
    EXPECT_EQ(opened(), "(No Recent Files) | - | (&Clear Menu)");
    const QStringList files{put(u"a&b\tc <i>.txt"_s, "1"), path(u"missing.txt"_s), put(u"clear.txt"_s, "2")};
    workspace().open(files);
    workspace().open({files[0]});
    presenter.answerSave(path(u"saved.txt"_s));
    send(Actions::saveDocumentAs);
    EXPECT_EQ(opened(), "saved.txt | clear.txt | a&&b c <i>.txt | - | &Clear Menu") << "what was open already was not opened again";
    EXPECT_TRUE(recentMenu()->toolTipsVisible());
    EXPECT_EQ(recentMenu()->actions()[0]->toolTip(), path(u"saved.txt"_s));
    EXPECT_TRUE(recentMenu()->actions()[2]->toolTip().contains(u"&lt;i&gt;"_s));
    presenter.answerSave(u"/missing/folder/x"_s);
    send(Actions::saveDocumentAs);
    QFile::remove(path(u"saved.txt"_s));
    EXPECT_TRUE(opened().starts_with("clear.txt | a&&b"));
    QFile::remove(files[0]);
    QFile::remove(files[2]);
    EXPECT_EQ(opened(), "(No Recent Files) | - | &Clear Menu") << "hidden, and still to be cleared";
    choose(2);
    EXPECT_TRUE(recent.entries().empty());
    EXPECT_TRUE(opened().ends_with("(&Clear Menu)"));
}

TEST_F(RecentDocumentsMenu, TellsFilesOfOneNameApart)
{
    workspace().open({put(u"a/x/main.c"_s, "1"), put(u"a/y/main.c"_s, "2"), put(u"b/y/main.c"_s, "3"), put(u"b/main.h"_s, "4"),
                      put(u"n"_s.repeated(200), "5")});
    EXPECT_THAT(opened(), testing::MatchesRegex("n+…n+ . main.h . main.c – b/y . main.c – a/y . main.c – x . - . &Clear Menu"));
}

TEST_F(RecentDocumentsMenu, OpensInTheWindowInFront)
{
    const QString file = put(u"a.txt"_s, "a");
    recent.note({file, path(u"gone.txt"_s)});
    EXPECT_EQ(opened(), "a.txt | - | &Clear Menu");
    send(Actions::newWindow);
    choose(0);
    EXPECT_EQ(application.frontmostWindow()->workspace().currentDocument()->path(), file);
    EXPECT_EQ(application.windows().size(), 2U);
    EXPECT_EQ(presenter.beepCount(), 0);
    QFile::remove(file);
    choose(0);
    send(Actions::openRecentDocument, path(u"gone.txt"_s));
    send(Actions::openRecentDocument, put(u"unknown.txt"_s, "b"));
    send(Actions::openRecentDocument);
    EXPECT_EQ(presenter.beepCount(), 4);
    EXPECT_TRUE(presenter.alerts().empty());
}

TEST(Actions, HaveTheirOwnNamesAndKeys)
{
    std::set<std::pair<std::string_view, int>> names;
    for (const Action *action : Actions::all()) {
        EXPECT_TRUE(names.emplace(action->id, action->tag).second) << action->id;
    }
    // One key press with Shift is both of these on an American or a German keyboard, and then it does neither.
    const QStringList shifted = {u"\\|"_s, u"=+"_s, u"-_"_s, u"[{"_s, u"]}"_s, u";:"_s, u"/?"_s, u",<"_s, u".>"_s, u"<>"_s,
                                 u",;"_s,  u".:"_s, u"#'"_s, u"+*"_s, u"7/"_s, u"0="_s, u"8*"_s, u"9("_s, u"1!"_s};
    QStringList keys;
    for (const Action *action : Actions::inMenus()) {
        for (const QKeySequence &key : keySequences(*action)) {
            EXPECT_FALSE(keys.contains(key.toString())) << key.toString().toStdString();
            EXPECT_EQ(key.count(), 1) << action->keys;
            keys << key.toString();
        }
    }
    for (const QString &key : keys) {
        for (const QString &pair : shifted) {
            const QString same = QString(key).replace(u"Shift+"_s + pair[0], pair.last(1));
            EXPECT_FALSE(key.endsWith(u"+Shift+"_s + pair[0]) && keys.contains(same)) << key.toStdString() << " and " << same.toStdString();
        }
    }
}

TEST(Actions, TheOverviewHasEveryKeyOnce)
{
    QStringList lines;
    for (const Alert::Group &group : shortcutOverview()) {
        for (const Alert::Group::Line &line : group.lines) {
            lines << group.title + u": "_s + line.text + u" "_s + line.detail;
        }
    }
    const auto keyed = std::ranges::count_if(Actions::inMenus(), [](const Action *action) { return *action->keys != '\0'; });
    EXPECT_EQ(lines.size(), keyed - 7) << "eight tabs are one line";
    EXPECT_TRUE(lines.contains(u"Navigate: Tab 1…8 Ctrl+1…Ctrl+8"_s)) << lines.join(u'\n').toStdString();
}

TEST(Actions, TheOverviewOfVimHasKeysAsTheKeyboardHasThem)
{
    const auto shown = [](VimKeymapPreset preset) {
        QStringList lines;
        for (const Alert::Group &group : vimKeyOverview(VimOptions(preset), VimChords({u"f=quillet"_s, u"h=quillet"_s}))) {
            for (const Alert::Group::Line &line : group.lines) {
                lines << group.title + u": "_s + line.text + u" "_s + line.detail;
            }
        }
        return lines;
    };
    const QStringList plain = shown(VimKeymapPreset::plain);
    const QStringList lazy = shown(VimKeymapPreset::lazyVim);
    EXPECT_TRUE(plain.contains(u"Editing: undo, redo u  Ctrl+R"_s)) << plain.join(u'\n').toStdString();
    EXPECT_TRUE(plain.contains(u"Motions: half page / page down and up Ctrl+D  Ctrl+U  Ctrl+B"_s)) << "Ctrl+F is the menus’";
    EXPECT_TRUE(plain.contains(u"Insert mode: delete a word Ctrl+W"_s));
    EXPECT_TRUE(plain.filter(u"Ctrl+H"_s).isEmpty());
    EXPECT_TRUE(plain.contains(u"Windows: split right / down Ctrl+W v  Ctrl+W s"_s));
    EXPECT_TRUE(lazy.contains(u"Editing: move line down Alt+J"_s)) << lazy.join(u'\n').toStdString();
    EXPECT_TRUE(lazy.filter(u"<leader>"_s).isEmpty() && lazy.filter(u"⌃"_s).isEmpty() && lazy.filter(u"⌥"_s).isEmpty());
    EXPECT_GT(lazy.size(), plain.size());
}

TEST(SystemDesktop, ReadsTheCommandOfAnEntry)
{
    for (const auto &[exec, command] :
         {std::pair(u"kitty"_s, QStringList{u"kitty"_s}),
          {u"gnome-terminal --wait %U"_s, {u"gnome-terminal"_s, u"--wait"_s}},
          {u"\"/opt/my term/run\" -e \"a \\\"b\\\"\" 50%%"_s, {u"/opt/my term/run"_s, u"-e"_s, u"a \"b\""_s, u"50%"_s}},
          {u"\"unclosed"_s, {}},
          {u""_s, {}}}) {
        EXPECT_EQ(SystemDesktop::commandOf(exec), command) << exec.toStdString();
    }
}
