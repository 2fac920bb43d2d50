// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/MainWindow.h"

#include "App/MenuBar.h"
#include "Model/DocumentStore.h"
#include "Model/Preferences.h"
#include "Model/WatchedPath.h"
#include "Platform/AlertPresenter.h"
#include "Platform/DefaultsStore.h"
#include "Platform/Pasteboard.h"
#include "Text/FindState.h"
#include "Text/TextView.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMenuBar>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class MainWindowTest : public testing::Test {
protected:
    void SetUp() override { showActive(); }

    /// Shortcuts belong to the active window.
    void showActive()
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }
    [[nodiscard]] QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    [[nodiscard]] QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    [[nodiscard]] QString text() { return window.document().storage().string(); }
    void type(const QString &keys) { QTest::keyClicks(&window.textView(), keys); }
    void press(const char *keys) { QTest::keySequence(&window.textView(), QKeySequence(QString::fromLatin1(keys))); }

    [[nodiscard]] QMenu *menu(const QString &title) const
    {
        for (const QAction *action : window.menuBar()->actions()) {
            if (action->text().remove(u'&') == title) {
                return action->menu();
            }
        }
        return nullptr;
    }
    /// The item as an open menu shows it.
    [[nodiscard]] QAction *item(const QString &menuTitle, const QString &title) const
    {
        QMenu *opened = menu(menuTitle);
        emit opened->aboutToShow();
        for (QAction *action : opened->actions()) {
            if (action->text().remove(u'&') == title) {
                return action;
            }
        }
        return nullptr;
    }

    QTemporaryDir folder;
    ManualScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    MemoryPasteboard pasteboard;
    ScriptedAlertPresenter presenter;
    InlineWorkers workers;
    FileWatcherQueue watchers{scheduler, WatchCalls::system(), workers};
    DocumentStore documents{{scheduler, notifications, defaults, workers, watchers, {}}, {}};
    FindState find;
    MainWindow window{{scheduler, notifications, defaults, preferences, pasteboard, presenter, documents, workers, find}};
};

} // namespace

TEST_F(MainWindowTest, OpensEditsAndSaves)
{
    EXPECT_EQ(window.windowTitle(), u"Untitled[*]"_s);
    window.open(write(u"a [*].txt"_s, "one\r\ntwo\r\n"));
    EXPECT_EQ(text(), u"one\ntwo\n"_s);
    EXPECT_EQ(window.windowTitle(), u"a [*][*].txt[*]"_s);
    EXPECT_EQ(window.windowFilePath(), path(u"a [*].txt"_s));
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_FALSE(window.document().undoManager().canUndo()) << "opening is no edit";
    press("Ctrl+S");
    EXPECT_EQ(read(u"a [*].txt"_s), "one\r\ntwo\r\n");

    type(u"x"_s);
    EXPECT_TRUE(window.isWindowModified());
    press("Ctrl+Z");
    scheduler.advance(std::chrono::milliseconds(500));
    EXPECT_FALSE(window.isWindowModified()) << "back at the text on the disk";
    type(u"y"_s);
    press("Ctrl+S");
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_EQ(read(u"a [*].txt"_s), "yone\r\ntwo\r\n");
    EXPECT_TRUE(presenter.alerts().empty());

    presenter.answerSave(path(u"b.txt"_s));
    press("Ctrl+Shift+S");
    ASSERT_EQ(presenter.savePanels().size(), 1U);
    EXPECT_EQ(presenter.savePanels()[0].suggestedName, u"a [*].txt"_s);
    EXPECT_EQ(presenter.savePanels()[0].startFolder, folder.path());
    EXPECT_EQ(read(u"b.txt"_s), "yone\r\ntwo\r\n");
    EXPECT_EQ(window.windowTitle(), u"b.txt[*]"_s);
}

TEST_F(MainWindowTest, ClosingAsksAboutUnsavedText)
{
    type(u"x"_s);
    EXPECT_FALSE(window.close()) << "cancelled";
    ASSERT_EQ(presenter.alerts().size(), 1U);
    EXPECT_EQ(presenter.alerts()[0].messageText, u"Do you want to save the changes made to “Untitled”?"_s);
    EXPECT_EQ(presenter.alerts()[0].buttons.size(), 3);

    presenter.answer(1000);
    EXPECT_FALSE(window.close()) << "the save panel was cancelled";
    presenter.answer(1000);
    presenter.answerSave(path(u"no/such/folder"_s));
    EXPECT_FALSE(window.close()) << "the text could not be written";
    EXPECT_EQ(presenter.alerts().back().style, AlertStyle::critical);
    EXPECT_EQ(text(), u"x"_s);
    EXPECT_TRUE(window.isWindowModified());
    EXPECT_EQ(window.windowTitle(), u"Untitled[*]"_s);

    presenter.answer(1002);
    press("Ctrl+Q");
    EXPECT_FALSE(window.isVisible());
    showActive();
    presenter.answer(1000);
    presenter.answerSave(path(u"c.txt"_s));
    EXPECT_TRUE(window.close()) << "asked anew, since the agreement was for one closing";
    EXPECT_EQ(read(u"c.txt"_s), "x");
    const size_t asked = presenter.alerts().size();
    EXPECT_TRUE(window.close());
    EXPECT_EQ(presenter.alerts().size(), asked) << "nothing is unsaved";
}

TEST_F(MainWindowTest, OpeningKeepsUnsavedTextUntilItIsGivenUp)
{
    const QString file = write(u"a.txt"_s, "a");
    type(u"x"_s);
    presenter.answerOpen({file});
    press("Ctrl+O");
    EXPECT_EQ(text(), u"x"_s) << "cancelled";
    EXPECT_EQ(presenter.openPanels().front().startFolder, QDir::homePath());
    presenter.answerOpen({file});
    presenter.answer(1002);
    press("Ctrl+O");
    EXPECT_EQ(presenter.openPanels().back().startFolder, folder.path()) << "where the panel was before";
    EXPECT_EQ(text(), u"a"_s);
    press("Ctrl+O");
    EXPECT_EQ(text(), u"a"_s);

    window.open(write(u"binary"_s, QByteArray("\0\1\2\0\3", 5)));
    EXPECT_EQ(text(), u"a"_s);
    const Alert &alert = presenter.alerts().back();
    EXPECT_EQ(alert.messageText, u"“binary” appears to be a binary file."_s);
    EXPECT_FALSE(alert.informativeText.isEmpty());
    EXPECT_EQ(window.windowFilePath(), file);
    type(u"b"_s);
    EXPECT_EQ(text(), u"ba"_s) << "the keys still reach the text";
}

TEST_F(MainWindowTest, TheMenuShowsAndDoesWhatTheFocusTakes)
{
    EXPECT_FALSE(item(u"Edit"_s, u"Undo"_s)->isEnabled());
    EXPECT_FALSE(item(u"Edit"_s, u"Paste"_s)->isEnabled());
    EXPECT_TRUE(item(u"Edit"_s, u"Select All"_s)->isEnabled());
    type(u"abc"_s);
    item(u"Edit"_s, u"Select All"_s)->trigger();
    item(u"Edit"_s, u"Cut"_s)->trigger();
    EXPECT_EQ(text(), QString());
    EXPECT_EQ(pasteboard.text(), u"abc"_s);
    // Used with keys, the menu bar has the focus itself.
    window.menuBar()->setFocus(Qt::MenuBarFocusReason);
    EXPECT_TRUE(item(u"Edit"_s, u"Paste"_s)->isEnabled());
    item(u"Edit"_s, u"Undo"_s)->trigger();
    EXPECT_EQ(text(), u"abc"_s);
    window.textView().setFocus();

    QAction *wrap = item(u"View"_s, u"Wrap Lines"_s);
    EXPECT_FALSE(wrap->isChecked());
    wrap->trigger();
    EXPECT_TRUE(preferences.wrapLines());
    EXPECT_EQ(window.textView().wrapMode(), TextView::WrapMode::viewWidth);
    EXPECT_TRUE(item(u"View"_s, u"Wrap Lines"_s)->isChecked());

    // A key that can do nothing now is heard.
    window.textView().setSelection(TextSelection::at(0));
    QAction *cut = item(u"Edit"_s, u"Cut"_s);
    EXPECT_FALSE(cut->isEnabled());
    emit menu(u"Edit"_s)->aboutToHide();
    cut->trigger();
    EXPECT_EQ(presenter.beepCount(), 1);
    EXPECT_EQ(text(), u"abc"_s);
}

TEST_F(MainWindowTest, AnotherEncodingReadsACleanFileAnewAndOnlySavesAChangedOne)
{
    const QString titleOfLatin1 = displayName(TextEncoding::isoLatin1);
    window.show(write(u"a.txt"_s, "caf\xC3\xA9"));
    EXPECT_TRUE(item(u"Text Encoding"_s, displayName(TextEncoding::utf8))->isChecked());
    item(u"Text Encoding"_s, titleOfLatin1)->trigger();
    EXPECT_EQ(text(), u"cafÃ©"_s);
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_TRUE(item(u"Text Encoding"_s, titleOfLatin1)->isChecked());
    press("Ctrl+Z");
    EXPECT_EQ(text(), u"café"_s);
    EXPECT_TRUE(window.isWindowModified());
    item(u"Text Encoding"_s, displayName(TextEncoding::utf16BigEndian))->trigger();
    EXPECT_EQ(text(), u"café"_s);
    press("Ctrl+S");
    EXPECT_EQ(read(u"a.txt"_s), QByteArray("\0c\0a\0f\0\xE9", 8));

    std::ignore = write(u"a.txt"_s, "\xFF\xFE\xFF");
    item(u"Text Encoding"_s, displayName(TextEncoding::utf8))->trigger();
    EXPECT_EQ(presenter.alerts().size(), 1U);
    EXPECT_EQ(text(), u"café"_s);
}

TEST_F(MainWindowTest, ZoomingIsAPreference)
{
    const double size = window.textView().textFont().pointSizeF();
    press("Ctrl++");
    press("Ctrl+=");
    EXPECT_EQ(window.textView().textFont().pointSizeF(), size + 2);
    EXPECT_EQ(preferences.fontSize(), size + 2);
    press("Ctrl+-");
    EXPECT_EQ(window.textView().textFont().pointSizeF(), size + 1);
    press("Ctrl+0");
    EXPECT_EQ(window.textView().textFont().pointSizeF(), 13);
}

TEST_F(MainWindowTest, EveryCommandHasATakerAndItsOwnKeys)
{
    QSet<QString> keys;
    qsizetype count = 0;
    Responder *first = nearestResponder(&window.textView());
    for (const MenuCommand &command : menuCommands()) {
        EXPECT_NE(first->target(command.selector), nullptr) << command.selector.name();
        for (const QKeySequence &sequence : command.keySequences()) {
            EXPECT_FALSE(sequence.isEmpty()) << command.shortcuts;
            keys << sequence.toString();
            ++count;
        }
    }
    EXPECT_EQ(keys.size(), count);
    for (const QAction *top : window.menuBar()->actions()) {
        QSet<QChar> letters;
        for (const QAction *action : top->menu()->actions()) {
            const qsizetype mark = action->text().indexOf(u'&');
            if (mark >= 0) {
                const QChar letter = action->text()[mark + 1].toLower();
                EXPECT_FALSE(letters.contains(letter)) << action->text().toStdString();
                letters << letter;
            }
        }
    }
}
