// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/Workers.h"
#include "Files/TextHash.h"
#include "Files/WatchedPath.h"
#include "HeldWorkers.h"
#include "Model/DocumentStore.h"
#include "Model/SaveTransformation.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

class DocumentTest : public testing::Test {
protected:
    DocumentTest()
    {
        workers.isHeld = false;
        for (const auto &[name, letter] :
             {std::pair(TextDocument::didChangeMetadata, u'm'), std::pair(TextDocument::didReloadFromDisk, u'r'),
              std::pair(TextDocument::didDetectExternalChange, u'x')}) {
            observers.push_back(notifications.observe(name, nullptr, [this, letter = QChar(letter)] { heard += letter; }));
        }
    }
    [[nodiscard]] QString path(const QString &name = u"a.txt"_s) const { return folder.filePath(name); }
    void write(const QByteArray &content, const QString &name = u"a.txt"_s) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
    }
    [[nodiscard]] QByteArray read(const QString &name = u"a.txt"_s) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    TextDocument &open(const QByteArray &content, const QString &name = u"a.txt"_s)
    {
        write(content, name);
        TextDocument &document = store.add(std::make_unique<TextDocument>(store.services(), path(name), *TextFile::read(path(name))));
        settle();
        heard.clear();
        return document;
    }
    /// Lets time pass and what workers and the kernel said arrive.
    void settle(std::chrono::milliseconds time = 1s)
    {
        for (auto passed = 0ms; passed < time; passed += 50ms) {
            QCoreApplication::processEvents();
            scheduler.advance(50ms);
            QCoreApplication::processEvents();
        }
    }
    QString takeHeard() { return std::exchange(heard, {}); }

    QTemporaryDir folder;
    ManualScheduler scheduler;
    NotificationCenter notifications;
    DefaultsStore defaults{QString(), scheduler};
    Preferences preferences{defaults, notifications};
    HeldWorkers workers;
    InlineWorkers lookers;
    FileWatcherQueue watchers{scheduler, WatchCalls::system(), lookers};
    QList<QUuid> discarded;
    DocumentStore store{{scheduler, notifications, preferences, workers, watchers, [this](const QUuid &id) { discarded.append(id); }}, {}};
    std::vector<NotificationCenter::Token> observers;
    QString heard;
};

TEST_F(DocumentTest, IsDirtyFromTheFirstEditAndCleanAgainWhenItIsTakenBack)
{
    TextDocument &document = open("abc\n");
    document.storage().apply({{0, 0}, u"x"_s});
    EXPECT_TRUE(document.isDirty());
    EXPECT_EQ(takeHeard(), u"m"_s);
    document.storage().apply({{0, 1}, QStringView()});
    settle(350ms);
    EXPECT_TRUE(document.isDirty()) << "the comparison waits for a pause";
    settle(100ms);
    EXPECT_FALSE(document.isDirty());
    EXPECT_EQ(takeHeard(), u"m"_s);
    document.setLineEnding(LineEnding::crlf);
    EXPECT_TRUE(document.isDirty());
    EXPECT_EQ(takeHeard(), u"mm"_s);
    document.setEncoding(TextEncoding::utf16);
    EXPECT_EQ(takeHeard(), u"m"_s);
    ASSERT_TRUE(document.save(path()));
    EXPECT_EQ(read(), QByteArray("\xFF\xFE"
                                 "a\0b\0c\0\r\0\n\0",
                                 12));
    EXPECT_FALSE(document.isDirty());
    EXPECT_EQ(takeHeard(), u"mm"_s);
    EXPECT_EQ(discarded.size(), 1);
}

TEST_F(DocumentTest, ALargeTextIsHashedElsewhereAndOldAnswersAreDropped)
{
    const QByteArray content = QByteArray("0123456789abcde\n").repeated(int(TextDocument::largeText / 16) + 1);
    workers.isHeld = true;
    write(content);
    TextDocument &document = store.add(std::make_unique<TextDocument>(store.services(), path(), *TextFile::read(path())));
    document.storage().apply({{0, 0}, u"x"_s});
    document.storage().apply({{0, 1}, QStringView()});
    settle(500ms);
    EXPECT_TRUE(document.isDirty()) << "nobody knows yet";
    workers.finish();
    settle(50ms);
    workers.finish();
    settle(50ms);
    EXPECT_FALSE(document.isDirty());
    document.storage().apply({{5, 0}, u"x"_s});
    document.storage().apply({{5, 1}, QStringView()});
    settle(450ms);
    document.storage().apply({{9, 0}, u"y"_s});
    workers.finish();
    settle(50ms);
    EXPECT_TRUE(document.isDirty()) << "the answer was about a text that is no more";
    const int before = workers.count;
    settle(500ms);
    EXPECT_EQ(workers.count, before) << "a text of another length needs no hash";
}

TEST_F(DocumentTest, AnAnswerAboutAnEarlierSaveCleansNothing)
{
    workers.isHeld = true;
    TextDocument &document = open(QByteArray("0123456789abcde\n").repeated(int(TextDocument::largeText / 16) + 1));
    document.storage().apply({{0, 0}, u"x"_s});
    settle();
    ASSERT_TRUE(document.save(path()));
    document.setLineEnding(LineEnding::crlf);
    workers.finish();
    settle(50ms);
    workers.finish();
    settle(50ms);
    EXPECT_TRUE(document.isDirty()) << "nothing was edited since, so there is nothing to compare";
}

TEST_F(DocumentTest, ALineOfMegabytesIsNotColoured)
{
    TextDocument &document = open("int x;" + QByteArray(1'100'000, ' ') + "int y;\n", u"a.c"_s);
    const auto coloured = [&document] { return document.highlighter()->language().id(); };
    EXPECT_EQ(document.language().id(), u"c"_s);
    EXPECT_EQ(coloured(), u"text"_s);
    document.storage().apply({{7, 1'000'000}, QStringView()});
    EXPECT_EQ(coloured(), u"c"_s) << "the line is short now";
    document.undoManager().undo();
    EXPECT_EQ(coloured(), u"text"_s);
    write("int z;\n", u"a.c"_s);
    ASSERT_TRUE(document.revertToFileOnDisk());
    EXPECT_EQ(coloured(), u"c"_s);
}

TEST_F(DocumentTest, SavesUnderANewNameWithItsLanguage)
{
    TextDocument &document = open("int x;\n");
    EXPECT_EQ(document.language().id(), u"text"_s);
    ASSERT_TRUE(document.save(path(u"b.c"_s)));
    EXPECT_EQ(document.language().id(), u"c"_s);
    EXPECT_EQ(document.displayName(), u"b.c"_s);
    document.languageWasChosenManually = true;
    ASSERT_TRUE(document.save(path(u"b.py"_s)));
    EXPECT_EQ(document.language().id(), u"c"_s);
    takeHeard();
    document.storage().apply({{0, 0}, u"y"_s});
    EXPECT_FALSE(document.save(folder.path() + u"/none/x"_s));
    EXPECT_TRUE(document.isDirty());
    EXPECT_EQ(document.path(), path(u"b.py"_s));
    EXPECT_EQ(takeHeard(), u"m"_s);
}

TEST_F(DocumentTest, RevertingForgetsAndReinterpretingCanBeUndone)
{
    TextDocument &document = open("gr\xC3\xBC\xC3\x9F\n");
    document.storage().apply({{0, 0}, u"x"_s});
    takeHeard();
    ASSERT_TRUE(document.revertToFileOnDisk());
    EXPECT_EQ(document.storage().string(), u"grüß\n"_s);
    EXPECT_FALSE(document.undoManager().canUndo());
    EXPECT_EQ(takeHeard(), u"rm"_s);
    ASSERT_TRUE(document.reinterpret(TextEncoding::isoLatin1));
    EXPECT_EQ(document.storage().string(), u"grÃ¼Ã\u009F\n"_s);
    EXPECT_FALSE(document.isDirty());
    EXPECT_EQ(takeHeard(), u"m"_s);
    EXPECT_FALSE(document.reinterpret(TextEncoding::ascii));
    EXPECT_EQ(document.encoding(), TextEncoding::isoLatin1);
    document.undoManager().undo();
    EXPECT_EQ(document.storage().string(), u"grüß\n"_s);
}

/// What happens to an open file, and what the document makes of it.
struct OutsideCase {
    const char *name;
    bool isEdited;
    bool reloadsClean;
    std::function<void(const QString &path)> act;
    TextDocument::ExternalState state;
    QString text;
    bool isDirty;
    QString heard;
};

void put(const QString &path, const QByteArray &content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
}

TEST_F(DocumentTest, NoticesWhatOthersDo)
{
    using State = TextDocument::ExternalState;
    const auto change = [](const QString &file) { put(file, "other\n"); };
    const auto remove = [](const QString &file) { QFile::remove(file); };
    const auto replace = [](const QString &file) {
        put(file + u'~', "other\n");
        QFile::remove(file);
        QFile::rename(file + u'~', file);
    };
    const auto sameText = [](const QString &file) { put(file, "xtext\n"); };
    const OutsideCase cases[] = {
        {"a clean text follows", false, true, change, State::none, u"other\n"_s, false, u"rm"_s},
        {"unless the user does not want it", false, false, change, State::conflicted, u"text\n"_s, false, u"xm"_s},
        {"edits are kept", true, true, change, State::conflicted, u"xtext\n"_s, true, u"xm"_s},
        {"a file that is gone makes the text the only copy", false, true, remove, State::deleted, u"text\n"_s, true, u"xm"_s},
        {"a file that is replaced is not gone", false, true, replace, State::none, u"other\n"_s, false, u"rm"_s},
        {"the same text saved elsewhere", true, true, sameText, State::none, u"xtext\n"_s, false, u"m"_s},
    };
    int number = 0;
    for (const OutsideCase &c : cases) {
        preferences.set(Settings::reloadCleanFilesAutomatically, c.reloadsClean);
        const QString name = u"file%1.txt"_s.arg(++number);
        TextDocument &document = open("text\n", name);
        if (c.isEdited) {
            document.storage().apply({{0, 0}, u"x"_s});
            settle();
        }
        takeHeard();
        c.act(path(name));
        settle(3s);
        EXPECT_EQ(document.externalState(), c.state) << c.name;
        EXPECT_EQ(document.storage().string(), c.text) << c.name;
        EXPECT_EQ(document.isDirty(), c.isDirty) << c.name;
        EXPECT_EQ(takeHeard(), c.heard) << c.name;
        ASSERT_TRUE(document.save(path(name)));
        settle(3s);
        EXPECT_EQ(document.externalState(), State::none) << c.name << ": its own saving is no news";
        EXPECT_FALSE(document.isDirty()) << c.name;
    }
}

TEST_F(DocumentTest, WhatWasReadBeforeASaveIsNotTakenAfterIt)
{
    TextDocument &document = open("text\n");
    document.storage().apply({{0, 0}, u"x"_s});
    settle();
    workers.isHeld = true;
    put(path(), "other\n");
    settle();
    workers.finish();
    ASSERT_TRUE(document.save(path()));
    takeHeard();
    settle(2s);
    EXPECT_EQ(document.storage().string(), u"xtext\n"_s);
    EXPECT_TRUE(document.undoManager().canUndo());
    EXPECT_EQ(document.externalState(), TextDocument::ExternalState::none);
    EXPECT_EQ(takeHeard(), QString());
}

TEST_F(DocumentTest, AFileThatIsBackIsNotCalledDeleted)
{
    // Each comes when the file was found missing and before that is told.
    const std::pair<const char *, std::function<void(TextDocument &)>> cases[] = {
        {"saved anew", [](TextDocument &document) { ASSERT_TRUE(document.save(document.path())); }},
        {"saved elsewhere", [](TextDocument &document) { ASSERT_TRUE(document.save(document.path() + u"x"_s)); }},
        {"reverted",
         [](TextDocument &document) {
             put(document.path(), "text\n");
             ASSERT_TRUE(document.revertToFileOnDisk());
         }},
        {"reinterpreted",
         [](TextDocument &document) {
             put(document.path(), "text\n");
             ASSERT_TRUE(document.reinterpret(TextEncoding::isoLatin1));
         }},
    };
    int number = 0;
    for (const auto &[name, act] : cases) {
        const QString file = u"file%1.txt"_s.arg(++number);
        workers.isHeld = false;
        TextDocument &document = open("text\n", file);
        workers.isHeld = true;
        QFile::remove(path(file));
        settle();
        workers.finish();
        act(document);
        settle(2s);
        workers.finish();
        settle(50ms);
        EXPECT_EQ(document.externalState(), TextDocument::ExternalState::none) << name;
        EXPECT_FALSE(document.isDirty()) << name;
    }
}

TEST_F(DocumentTest, TheOnlyCopyStaysDirtyUntilItIsSaved)
{
    TextDocument &document = open("text\n");
    QFile::remove(path());
    settle();
    ASSERT_EQ(document.externalState(), TextDocument::ExternalState::deleted);
    document.storage().apply({{0, 0}, u"x"_s});
    document.undoManager().undo();
    settle();
    EXPECT_TRUE(document.isDirty());
    ASSERT_TRUE(document.save(path()));
    document.storage().apply({{0, 0}, u"x"_s});
    document.undoManager().undo();
    settle();
    EXPECT_FALSE(document.isDirty());
}

TEST(SaveTransformation, ReachesTheLastLineOnly)
{
    const auto saved = [](const QString &text, bool trims, bool ends) {
        const Rope rope(text);
        return saveTransformation(rope, {.trimsTrailingWhitespace = trims, .ensuresTrailingNewline = ends}).applied(rope).toString();
    };
    EXPECT_EQ(saved(u"a  \nb \t\n"_s, true, false), u"a  \nb\n"_s);
    EXPECT_EQ(saved(u"a  \nb \t"_s, true, true), u"a  \nb\n"_s);
    EXPECT_EQ(saved(u"a \n\n"_s, true, false), u"a \n\n"_s);
    EXPECT_EQ(saved(u"a"_s, false, true), u"a\n"_s);
    EXPECT_EQ(saved(u"a\n"_s, true, true), u"a\n"_s);
    EXPECT_EQ(saved({}, true, true), QString());
    EXPECT_EQ(saved(u"  "_s, true, true), QString());
}

} // namespace
