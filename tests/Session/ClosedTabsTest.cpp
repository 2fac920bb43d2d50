// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/ClosedTabs.h"

#include "SessionFixture.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

using State = TextDocument::ExternalState;

class ClosedTabsTest : public SessionFixture {
protected:
    void SetUp() override { start(); }
    /// As after a restart.
    void start(qsizetype size = ClosedTabs::usualSize)
    {
        closed.reset();
        opened.reset();
        store.reset();
        store = open();
        opened = std::make_unique<DocumentStore>(services, nullptr);
        closed = std::make_unique<ClosedTabs>(notifications, preferences, *opened, *store, size);
    }
    std::shared_ptr<TextDocument> add(const QString &text, const QString &file = {})
    {
        return opened->add(document(text, QUuid::createUuid(), file)).shared_from_this();
    }
    void close(const std::shared_ptr<TextDocument> &text, const ClosedPlace &was = {})
    {
        closed->note(text, was);
        opened->remove(*text);
        expectWritten(*store);
    }
    std::shared_ptr<TextDocument> reopen()
    {
        const auto reopened = closed->reopen();
        closed->keep();
        expectWritten(*store);
        place = reopened ? reopened->place : ClosedPlace();
        settle();
        return reopened ? reopened->document : nullptr;
    }
    [[nodiscard]] std::string textOf(const std::shared_ptr<TextDocument> &text)
    {
        return text ? text->storage().string().toStdString() : "none";
    }
    [[nodiscard]] mode_t modeOf(const QString &name) const
    {
        struct stat status = {};
        return ::stat(QFile::encodeName(root() + u'/' + name).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    }
    [[nodiscard]] QStringList kept() const { return names(u"Quillet/Closed"_s); }

    std::unique_ptr<SessionStore> store;
    std::unique_ptr<DocumentStore> opened;
    std::unique_ptr<ClosedTabs> closed;
    ClosedPlace place;
};

} // namespace

TEST_F(ClosedTabsTest, WhatWasClosedComesBackAsItWas)
{
    const QString file = TestFolder::put(u"a.txt"_s, "theirs");
    const auto clean = add(u"theirs"_s, file);
    const auto edited = add(u"theirs"_s, TestFolder::put(u"b.txt"_s, "theirs"));
    const auto untitled = add({});
    edit(*edited, u"mine"_s);
    edit(*untitled, u"note"_s);
    untitled->lastSelectedRange = {2, 1};
    close(add({}));
    close(clean);
    close(edited);
    close(untitled, {.paneId = 4, .pane = 1, .tab = 3});
    EXPECT_TRUE(opened->documents().empty());
    TestFolder::put(u"a.txt"_s, "theirs again");
    TestFolder::put(u"b.txt"_s, "theirs again");

    EXPECT_EQ(reopen(), untitled);
    EXPECT_EQ(place, (ClosedPlace{.paneId = 4, .pane = 1, .tab = 3}));
    EXPECT_EQ(untitled->lastSelectedRange, (TextRange{2, 1}));
    EXPECT_TRUE(untitled->hasUnsavedText());
    EXPECT_TRUE(untitled->undoManager().undo());
    EXPECT_EQ(textOf(untitled), "");
    EXPECT_EQ(textOf(reopen()), "mine");
    EXPECT_EQ(edited->externalState(), State::conflicted) << "nobody was shown what others wrote";
    EXPECT_EQ(textOf(reopen()), "theirs again");
    EXPECT_FALSE(clean->hasUnsavedText());
    EXPECT_EQ(reopen(), nullptr) << "an empty text is nothing to be had back";
}

TEST_F(ClosedTabsTest, AFileThatIsOpenAgainKeepsItsText)
{
    const QString file = TestFolder::put(u"a.txt"_s, "theirs");
    const auto edited = add(u"theirs"_s, file);
    edit(*edited, u"mine"_s);
    close(add(u"theirs"_s, file));
    close(edited);
    const auto again = add(u"theirs"_s, file);
    const auto mine = reopen();
    EXPECT_EQ(textOf(mine), "mine");
    EXPECT_TRUE(mine->isUntitled() && mine->hasUnsavedText());
    EXPECT_EQ(mine->displayName(), u"a.txt (recovered)"_s);
    EXPECT_EQ(reopen(), again);
    EXPECT_EQ(textOf(again), "theirs");
}

TEST_F(ClosedTabsTest, ComesBackAfterARestart)
{
    const auto clean = add(u"some text"_s, TestFolder::put(u"a.txt"_s, "some text"));
    clean->lastSelectedRange = {5, 0};
    const auto edited = add(u"theirs"_s, TestFolder::put(u"b.txt"_s, "theirs"));
    edit(*edited, u"mine"_s);
    edited->lastSelectedRange = {4, 0};
    const auto gone = add(u"x"_s, TestFolder::put(u"c.txt"_s, "x"));
    close(gone);
    close(clean, {.pane = 1, .tab = 2});
    close(edited);
    close(add(u"note"_s));
    EXPECT_EQ(kept().size(), 3) << "the list and two texts";
    EXPECT_EQ(modeOf(u"Closed"_s), 0700U);
    for (const QString &name : kept()) {
        EXPECT_EQ(modeOf(u"Closed/"_s + name), 0600U) << name.toStdString();
    }
    TestFolder::put(u"b.txt"_s, "theirs again");
    QFile::remove(path(u"c.txt"_s));
    start();
    EXPECT_EQ(textOf(reopen()), "note");
    const auto mine = reopen();
    EXPECT_EQ(textOf(mine), "mine");
    EXPECT_EQ(mine->lastSelectedRange, (TextRange{4, 0}));
    EXPECT_EQ(mine->externalState(), State::conflicted);
    const auto text = reopen();
    EXPECT_EQ(textOf(text), "some text");
    EXPECT_EQ(text->lastSelectedRange, (TextRange{5, 0}));
    EXPECT_EQ(place, (ClosedPlace{.pane = 1, .tab = 2}));
    const auto missing = closed->reopen();
    ASSERT_TRUE(missing);
    EXPECT_TRUE(!missing->document && missing->path == path(u"c.txt"_s)) << "to be told about";
    closed->keep();
    expectWritten(*store);
    EXPECT_EQ(kept(), QStringList());
    TestFolder::put(u"Quillet/Closed/closed-tabs.json"_s, R"({"tabs": [1, {"document": {}}, {"tab": -1}]})");
    start();
    EXPECT_TRUE(closed->isEmpty());
}

TEST_F(ClosedTabsTest, HasItsLimits)
{
    for (int number = 0; number < 25; ++number) {
        close(add(QString::number(number)));
    }
    EXPECT_EQ(kept().size(), 21);
    for (int number = 24; number >= 5; --number) {
        EXPECT_EQ(textOf(reopen()), std::to_string(number));
    }
    EXPECT_TRUE(closed->isEmpty());

    start(10);
    const auto large = add(u"0123456"_s, TestFolder::put(u"a.txt"_s, "0123456"));
    edit(*large, u"6543210"_s);
    close(add(u"789"_s));
    close(large);
    EXPECT_FALSE(large->undoManager().canUndo()) << "the text is worth more";
    close(add(u"1"_s));
    close(add(u"too large for all"_s));
    start(10);
    EXPECT_EQ(textOf(reopen()), "1");
    EXPECT_EQ(textOf(reopen()), "6543210");
    EXPECT_EQ(textOf(reopen()), "none");
}

TEST_F(ClosedTabsTest, KeepsNothingThatIsNotWanted)
{
    close(add(u"one"_s));
    EXPECT_EQ(kept().size(), 2);
    preferences.set(Settings::restoreSession, false);
    expectWritten(*store);
    EXPECT_EQ(kept(), QStringList());
    EXPECT_FALSE(closed->isEmpty()) << "while the program runs";
    preferences.set(Settings::restoreSession, true);
    close(add(u"two"_s));
    closed->clear();
    expectWritten(*store);
    EXPECT_EQ(kept(), QStringList());
    preferences.set(Settings::autosaveDrafts, false);
    close(add(u"three"_s));
    EXPECT_EQ(kept(), QStringList()) << "texts are not to be written anywhere";
    EXPECT_EQ(textOf(reopen()), "three");
}
