// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Texts and their encodings: characters that cannot be saved, what becomes of them, and where they are listed.
#include "UI/MissingCharactersPanel.h"
#include "WindowFixture.h"

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

} // namespace
