// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Texts and their encodings: characters that cannot be saved, what becomes of them, and where they are listed.
#include "UI/MissingCharactersPanel.h"
#include "Widgets/PopUpButton.h"
#include "WindowFixture.h"

#include <QPushButton>
#include <QTreeWidget>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

class EncodingTest : public WindowTest {
protected:
    /// In ISO Latin 1, for which its length has to be odd.
    void openLatin1(const QByteArray &content = "gr\xFC\xDF dich.\n")
    {
        workspace().open({put(u"a.txt"_s, content)});
        ASSERT_EQ(document().encoding(), TextEncoding::isoLatin1);
    }
    [[nodiscard]] TextDocument &document() { return *workspace().currentDocument(); }
    [[nodiscard]] QString warning()
    {
        const auto buttons = workspace().statusBar().findChildren<QAbstractButton *>();
        const auto found = std::ranges::find_if(
            buttons, [](const QAbstractButton *button) { return !button->isHidden() && button->text().contains(u" not in "); });
        return found == buttons.end() ? QString() : (*found)->text();
    }
    [[nodiscard]] qsizetype underlinedPixels()
    {
        const QImage seen = textView().viewport()->grab().toImage();
        qsizetype count = 0;
        for (int y = 0; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                count += seen.pixelColor(x, y).rgb() == 0xFFE07B00 ? 1 : 0;
            }
        }
        return count;
    }
};

TEST_F(EncodingTest, CharactersThatTheEncodingLacksAreCountedAndUnderlinedWhileTyping)
{
    openLatin1();
    EXPECT_EQ(warning(), QString());
    textView().insertText(u"“€\U0001F600”", {0, 0});
    EXPECT_EQ(warning(), u"4 not in ISO-8859-1"_s);
    EXPECT_GT(underlinedPixels(), 0);
    textView().insertText(u"", {0, 4});
    EXPECT_EQ(warning(), u"1 not in ISO-8859-1"_s);
    document().setEncoding(TextEncoding::windows1252);
    EXPECT_EQ(warning(), QString());
    EXPECT_EQ(underlinedPixels(), 0);
    document().setEncoding(TextEncoding::ascii);
    EXPECT_EQ(warning(), u"3 not in ASCII"_s);
}

TEST_F(EncodingTest, NothingBecomesAQuestionMarkUnlessTheUserSaysSo)
{
    struct Case {
        const char *name;
        int button;
        QByteArray file;
        QString text;
        TextEncoding encoding;
    };
    const QByteArray before = "gr\xFC\xDF dich.\n";
    for (const Case &c : {Case{"cancel", 1001, before, u"€grüß dich.\n"_s, TextEncoding::isoLatin1},
                          Case{"replace", 1002, "?" + before, u"?grüß dich.\n"_s, TextEncoding::isoLatin1},
                          Case{"UTF-8", 1000, "€grüß dich.\n", u"€grüß dich.\n"_s, TextEncoding::utf8}}) {
        SCOPED_TRACE(c.name);
        openLatin1(before);
        const QString path = document().path();
        textView().insertText(u"€", {0, 0});
        presenter.answer(c.button);
        send(Actions::saveDocument);
        EXPECT_EQ(lastAlert(), u"“a.txt” has a character that ISO-8859-1 does not have."_s);
        EXPECT_TRUE(presenter.alerts().back().informativeText.startsWith(u"“€” in line 1"_s));
        EXPECT_EQ(read(path), c.file);
        EXPECT_EQ(text(), c.text);
        EXPECT_EQ(document().encoding(), c.encoding);
        EXPECT_EQ(document().isDirty(), c.button == AlertReply::secondButton);
        EXPECT_EQ(document().externalState(), TextDocument::ExternalState::none) << "nobody else wrote it";
        if (c.button == AlertReply::thirdButton) {
            send(Actions::undo);
            EXPECT_EQ(text(), u"€grüß dich.\n"_s);
        }
        send(Actions::forceCloseTab);
    }
}

TEST_F(EncodingTest, WhatSavesByItselfLeavesSuchATextToItsDraft)
{
    openLatin1();
    const QString path = document().path();
    preferences.set(Settings::autosaveToDisk, true);
    textView().insertText(u"€", {0, 0});
    keeper.performAutosave();
    EXPECT_EQ(read(path), "gr\xFC\xDF dich.\n");
    EXPECT_TRUE(document().isDirty());
    EXPECT_TRUE(presenter.alerts().empty());
    textView().insertText(u"", {0, 1});
    type(u"x"_s);
    keeper.performAutosave();
    EXPECT_EQ(read(path), "xgr\xFC\xDF dich.\n");
}

TEST_F(EncodingTest, ClosingAndBackupsAskAsWell)
{
    openLatin1();
    const QString path = document().path();
    textView().insertText(u"€", {0, 0});
    presenter.answer(AlertReply::firstButton);
    send(Actions::makeBackup);
    EXPECT_EQ(read(this->path(u"a 2.txt"_s)), "€grüß dich.\n");
    EXPECT_EQ(document().encoding(), TextEncoding::isoLatin1);
    presenter.answer(AlertReply::firstButton); // of the question whether to save
    presenter.answer(AlertReply::secondButton);
    send(Actions::closeTab);
    EXPECT_EQ(read(path), "gr\xFC\xDF dich.\n");
    EXPECT_EQ(text(), u"€grüß dich.\n"_s);
    // So does saving again what is gone.
    QFile::remove(path);
    for (int turn = 0; turn < 40; ++turn) {
        QCoreApplication::processEvents();
        scheduler.advance(50ms);
    }
    presenter.answer(AlertReply::firstButton);
    control<QPushButton>(*workspace().currentEditor(), u"Save Again"_s)->click();
    EXPECT_EQ(read(path), "€grüß dich.\n");
}

TEST_F(EncodingTest, ListedCharactersAreShownInTheText)
{
    openLatin1();
    EXPECT_FALSE(isEnabled(Actions::listMissingCharacters));
    textView().insertText(u"\u2013\U0001F600", {11, 0});
    send(Actions::listMissingCharacters);
    const auto *list = workspace().findChild<QTreeWidget *>();
    const auto row = [list](int index) {
        QStringList texts;
        for (int column = 0; column < list->columnCount(); ++column) {
            texts << list->topLevelItem(index)->text(column);
        }
        return texts;
    };
    ASSERT_EQ(list->topLevelItemCount(), 2);
    EXPECT_EQ(row(0), (QStringList{u"2"_s, u"1"_s, u"\u2013"_s, u"U+2013 EN DASH"_s}));
    EXPECT_EQ(row(1), (QStringList{u"2"_s, u"2"_s, u"\U0001F600"_s, u"U+1F600 GRINNING FACE"_s}));
    EXPECT_EQ(textView().selection().range(), (TextRange{11, 1}));
    QTest::keyClick(const_cast<QTreeWidget *>(list), Qt::Key_Down);
    EXPECT_EQ(textView().selection().range(), (TextRange{12, 2}));
    textView().insertText(u"", {11, 1});
    scheduler.advance(MissingCharactersPanel::updateDelay);
    EXPECT_EQ(list->topLevelItemCount(), 1);
}

TEST_F(EncodingTest, WhatLooksLikeAnotherEncodingIsReopenedAndReadSoFromThenOn)
{
    const QString russian = u"Привет, мир!\nЭто обычный русский текст в старой кодировке.\n"_s;
    const QByteArray bytes = encoded(russian, TextEncoding::windows1251, TextEncoder::Mode::strict).value();
    workspace().open({put(u"ru.txt"_s, bytes)});
    const auto banner = [this] { return workspace().currentEditor()->banner(); };
    ASSERT_TRUE(banner());
    EXPECT_EQ(banner()->accessibleName(), u"This looks like Windows-1251."_s);
    QTest::mouseClick(control<QPushButton>(*banner(), u"Reopen"_s), Qt::LeftButton);
    EXPECT_EQ(text(), russian);
    EXPECT_FALSE(banner());
    send(Actions::revertWithoutAsking);
    EXPECT_EQ(text(), russian);
    send(Actions::closeTab);
    workspace().open({path(u"ru.txt"_s)});
    EXPECT_EQ(text(), russian);
    EXPECT_FALSE(banner());
}

TEST_F(EncodingTest, AKeptTextIsNotAskedAboutAgain)
{
    workspace().open({put(u"a.txt"_s, "\x84Zitat\x93 \x80 5.\n")});
    EXPECT_EQ(workspace().currentEditor()->banner()->accessibleName(), u"This looks like Windows-1252."_s);
    QTest::mouseClick(control<QPushButton>(*workspace().currentEditor()->banner(), u"Keep"_s), Qt::LeftButton);
    EXPECT_FALSE(workspace().currentEditor()->banner());
    send(Actions::revertWithoutAsking);
    EXPECT_FALSE(workspace().currentEditor()->banner());
    EXPECT_EQ(document().encoding(), TextEncoding::isoLatin1);
}

TEST_F(EncodingTest, FilesAreOpenedAndReopenedInTheEncodingThatIsChosen)
{
    openLatin1();
    presenter.answerChoice(u"Windows-1250"_s);
    send(Actions::reopenWithEncoding);
    EXPECT_EQ(document().encoding(), TextEncoding::windows1250);
    const ChoicePanel &panel = presenter.choicePanels().back();
    EXPECT_EQ(panel.choices.size(), supportedEncodings().size());
    EXPECT_FALSE(panel.choices.back().isEnabled) << "UTF-8 is not possible";
    // One that looks binary.
    presenter.answerOpen({put(u"b.txt"_s, QByteArray("\xFF\xFE"
                                                     "a\0\n\0",
                                                     6))});
    presenter.answerChoice(u"UTF-16"_s);
    send(Actions::openWithEncoding);
    EXPECT_EQ(text(), u"a\n"_s);
    // The same without knowing that there is such a command.
    presenter.answer(AlertReply::secondButton);
    presenter.answerChoice(u"UTF-16"_s);
    workspace().open({put(u"c.txt"_s, QByteArray("\xFF\xFE"
                                                 "b\0\n\0",
                                                 6))});
    EXPECT_EQ(text(), u"b\n"_s);
    EXPECT_EQ(presenter.choicePanels().back().choices.front().title, u"UTF-16"_s) << "as the mark says, which others keep as text";
}

TEST_F(EncodingTest, MarksAndMixedLineEndingsAreShown)
{
    workspace().open({put(u"a.txt"_s, "\xEF\xBB\xBF"
                                      "a\r\nb\nc\r\n")});
    StatusBarView &bar = workspace().statusBar();
    EXPECT_EQ(control<PopUpButton>(bar, u"Text Encoding"_s)->text(), u"UTF-8 with BOM"_s);
    EXPECT_EQ(control<PopUpButton>(bar, u"Line Endings"_s)->text(), u"mixed: 2 CRLF, 1 LF"_s);
    send(Actions::saveDocument);
    EXPECT_EQ(control<PopUpButton>(bar, u"Text Encoding"_s)->text(), u"UTF-8"_s);
    EXPECT_EQ(control<PopUpButton>(bar, u"Line Endings"_s)->text(), u"CRLF"_s);
}

} // namespace
