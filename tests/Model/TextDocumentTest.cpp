// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Base/FaultyCalls.h"
#include "DocumentSurroundings.h"
#include "FileAnswers.h"
#include "Model/SaveTransformation.h"
#include "TestFolder.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

class DocumentTest : public testing::Test, protected TestFolder, protected DocumentSurroundings {
protected:
    DocumentTest() : DocumentSurroundings(files, [this](const QUuid &id) { discarded.append(id); })
    {
        for (const auto &[name, letter] :
             {std::pair(TextDocument::didChangeMetadata, u'm'), std::pair(TextDocument::didReloadFromDisk, u'r'),
              std::pair(TextDocument::didDetectExternalChange, u'x')}) {
            observers.push_back(notifications.observe(name, nullptr, [this, letter = QChar(letter)] { heard += letter; }));
        }
    }
    TextDocument &open(const QByteArray &content, const QString &name = u"a.txt"_s)
    {
        workers.isHeld = false;
        TextDocument &document = *store.open({put(name, content)}, 0ms).front()->document;
        settle();
        heard.clear();
        return document;
    }
    static void type(TextDocument &document, const QString &text) { document.storage().apply({{0, 0}, text}); }
    /// What was asked of workers until now, and what follows from that.
    void finishWork()
    {
        workers.finish();
        settle(50ms);
    }
    QString takeHeard() { return std::exchange(heard, {}); }

    const QString file = path(u"a.txt"_s);
    QList<QUuid> discarded;
    FaultyCalls files;
    DocumentStore store{services, {}};
    std::vector<NotificationCenter::Token> observers;
    QString heard;
};

TEST_F(DocumentTest, IsDirtyFromTheFirstEditAndCleanAgainWhenItIsTakenBack)
{
    TextDocument &document = open("abc\n");
    type(document, u"x"_s);
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
    ASSERT_TRUE(saved(document, file));
    EXPECT_EQ(read(file), QByteArray("\xFF\xFE"
                                     "a\0b\0c\0\r\0\n\0",
                                     12));
    EXPECT_FALSE(document.isDirty());
    EXPECT_EQ(takeHeard(), u"m"_s);
    EXPECT_EQ(discarded.size(), 1);
}

TEST_F(DocumentTest, ALargeTextIsHashedElsewhereAndOldAnswersAreDropped)
{
    const QByteArray content = QByteArray("0123456789abcde\n").repeated(int(SavedText::largeText / 16) + 1);
    TextDocument &document = open(content);
    workers.isHeld = true;
    type(document, u"x"_s);
    document.storage().apply({{0, 1}, QStringView()});
    settle(500ms);
    EXPECT_TRUE(document.isDirty()) << "nobody knows yet";
    finishWork();
    finishWork();
    EXPECT_FALSE(document.isDirty());
    document.storage().apply({{5, 0}, u"x"_s});
    document.storage().apply({{5, 1}, QStringView()});
    settle(450ms);
    document.storage().apply({{9, 0}, u"y"_s});
    finishWork();
    EXPECT_TRUE(document.isDirty()) << "the answer was about a text that is no more";
    const int before = workers.count;
    settle(500ms);
    EXPECT_EQ(workers.count, before) << "a text of another length needs no hash";
    document.storage().apply({{9, 2}, u"z"});
    document.save(file);
    EXPECT_TRUE(document.hasUnsavedText()) << "until it is in the file";
}

TEST_F(DocumentTest, WhatIsDecidedBeforeTheComparisonKnowsWhatWasTakenBack)
{
    const QByteArray line = "0123456789abcde\n";
    for (const int lines : {3, int(SavedText::largeText / line.size()) + 1}) {
        TextDocument &document = open(line.repeated(lines), u"of%1.txt"_s.arg(lines));
        // Written over with as many letters, so that the length says nothing.
        document.storage().apply({{0, 1}, u"x"_s});
        EXPECT_TRUE(document.hasUnsavedText());
        std::ignore = document.undoManager().undo();
        EXPECT_TRUE(document.isDirty());
        EXPECT_FALSE(document.hasUnsavedText()) << lines;
        std::ignore = document.undoManager().redo();
        files.before = [](std::string_view call) { return call.starts_with("rename") ? EIO : 0; };
        EXPECT_FALSE(saved(document, document.path()));
        files.before = {};
        type(document, u"y"_s);
        std::ignore = document.undoManager().undo();
        EXPECT_TRUE(document.hasUnsavedText()) << "what could not be written was not saved";
    }
}

TEST_F(DocumentTest, AnAnswerAboutAnEarlierSaveCleansNothing)
{
    TextDocument &document = open(QByteArray("0123456789abcde\n").repeated(int(SavedText::largeText / 16) + 1));
    type(document, u"x"_s);
    document.storage().apply({{0, 1}, u""_s});
    workers.isHeld = true;
    settle();
    workers.finish();
    workers.isHeld = false;
    ASSERT_TRUE(saved(document, file));
    workers.isHeld = true;
    document.setLineEnding(LineEnding::crlf);
    finishWork();
    finishWork();
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
    put(u"a.c"_s, "int z;\n");
    ASSERT_TRUE(isReverted(document));
    EXPECT_EQ(coloured(), u"c"_s);
}

TEST_F(DocumentTest, SavesUnderANewNameWithItsLanguage)
{
    TextDocument &document = open("int x;\n");
    EXPECT_EQ(document.language().id(), u"text"_s);
    ASSERT_TRUE(saved(document, path(u"b.c"_s)));
    EXPECT_EQ(document.language().id(), u"c"_s);
    EXPECT_EQ(document.displayName(), u"b.c"_s);
    document.languageWasChosenManually = true;
    ASSERT_TRUE(saved(document, path(u"b.py"_s)));
    EXPECT_EQ(document.language().id(), u"c"_s);
    takeHeard();
    type(document, u"y"_s);
    EXPECT_FALSE(saved(document, path(u"none/x"_s)));
    EXPECT_TRUE(document.isDirty());
    EXPECT_EQ(document.path(), path(u"b.py"_s));
    EXPECT_EQ(takeHeard(), u"m"_s);
}

TEST_F(DocumentTest, RevertingForgetsAndReinterpretingCanBeUndone)
{
    TextDocument &document = open("gr\xC3\xBC\xC3\x9F\n");
    type(document, u"x"_s);
    takeHeard();
    ASSERT_TRUE(isReverted(document));
    EXPECT_EQ(document.storage().string(), u"grüß\n"_s);
    EXPECT_FALSE(document.undoManager().canUndo());
    EXPECT_EQ(takeHeard(), u"rm"_s);
    ASSERT_TRUE(isReinterpreted(document, TextEncoding::isoLatin1));
    EXPECT_EQ(document.storage().string(), u"grÃ¼Ã\u009F\n"_s);
    EXPECT_FALSE(document.isDirty());
    EXPECT_EQ(takeHeard(), u"m"_s);
    EXPECT_FALSE(isReinterpreted(document, TextEncoding::ascii));
    EXPECT_EQ(document.encoding(), TextEncoding::isoLatin1);
    document.undoManager().undo();
    EXPECT_EQ(document.storage().string(), u"grüß\n"_s);
}

/// What happens to an open file, and what the document makes of it.
struct OutsideCase {
    const char *name;
    bool isEdited;
    bool reloadsClean;
    std::function<void(const QString &file)> act;
    TextDocument::ExternalState state;
    QString text;
    bool isDirty;
    QString heard;
};

TEST_F(DocumentTest, NoticesWhatOthersDo)
{
    using State = TextDocument::ExternalState;
    const auto change = [this](const QString &name) { put(name, "other\n"); };
    const auto remove = [this](const QString &name) { QFile::remove(path(name)); };
    const auto replace = [this](const QString &name) {
        const QString other = put(name + u'~', "other\n");
        QFile::remove(path(name));
        QFile::rename(other, path(name));
    };
    const auto sameText = [this](const QString &name) { put(name, "xtext\n"); };
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
            type(document, u"x"_s);
            settle();
        }
        takeHeard();
        c.act(name);
        settle(3s);
        EXPECT_EQ(document.externalState(), c.state) << c.name;
        EXPECT_EQ(document.storage().string(), c.text) << c.name;
        EXPECT_EQ(document.isDirty(), c.isDirty) << c.name;
        EXPECT_EQ(takeHeard(), c.heard) << c.name;
        ASSERT_TRUE(saved(document, path(name)));
        settle(3s);
        EXPECT_EQ(document.externalState(), State::none) << c.name << ": its own saving is no news";
        EXPECT_FALSE(document.isDirty()) << c.name;
    }
}

TEST_F(DocumentTest, WhatWasReadBeforeASaveOrAnEditIsNotTakenAfterIt)
{
    TextDocument &document = open("text\n");
    type(document, u"x"_s);
    settle();
    workers.isHeld = true;
    put(file, "other\n");
    settle();
    workers.finish();
    workers.isHeld = false;
    ASSERT_FALSE(saved(document, file));
    ASSERT_TRUE(saved(document, file));
    takeHeard();
    settle(2s);
    EXPECT_EQ(document.storage().string(), u"xtext\n"_s);
    EXPECT_TRUE(document.undoManager().canUndo());
    EXPECT_EQ(document.externalState(), TextDocument::ExternalState::none);
    EXPECT_EQ(takeHeard(), QString());

    workers.isHeld = true;
    put(file, "xtext\n");
    settle();
    type(document, u"y"_s);
    finishWork();
    finishWork();
    EXPECT_EQ(document.externalState(), TextDocument::ExternalState::conflicted) << "compared anew, with what is there now";
}

TEST_F(DocumentTest, WritesOverNothingThatTheUserWasNotShown)
{
    TextDocument &document = open("text\n");
    type(document, u"x"_s);
    // As long as before, and so soon after that its time may be the same.
    for (const char *theirs : {"next\n", "text\nand more\n", "less"}) {
        put(file, theirs);
        const auto refused = saved(document, file);
        ASSERT_FALSE(refused) << theirs;
        EXPECT_EQ(refused.error().code, AtomicFile::changedError);
        EXPECT_EQ(read(file), theirs);
        EXPECT_EQ(document.externalState(), TextDocument::ExternalState::conflicted);
        EXPECT_TRUE(document.isDirty());
        EXPECT_TRUE(takeHeard().contains(u'x')) << "the banner says it";
    }
    settle();
    ASSERT_TRUE(saved(document, file)) << "the user knows";
    EXPECT_EQ(read(file), "xtext\n");
    EXPECT_EQ(document.externalState(), TextDocument::ExternalState::none);

    type(document, u"y"_s);
    put(file, "xtext\n");
    ASSERT_TRUE(saved(document, file)) << "written again as it was";
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
    ASSERT_TRUE(saved(document, file));
    ASSERT_TRUE(QFile::remove(file));
    EXPECT_TRUE(saved(document, file)) << "nobody has anything to lose";
    const auto copy = DocumentFile::copy(snapshotOf(document, file), files);
    ASSERT_TRUE(copy);
    for (const QString &name : {file, *copy}) {
        EXPECT_FALSE(QFile::permissions(name) & (QFile::ReadGroup | QFile::ReadOther)) << "as private as it was";
    }
    const auto elsewhere = path(u"b.txt"_s);
    put(elsewhere, "asked about");
    EXPECT_TRUE(saved(document, elsewhere));
    type(document, u"z"_s);
    put(elsewhere, "theirs");
    EXPECT_FALSE(saved(document, elsewhere));
}

class LogTest : public DocumentTest {
protected:
    void write(qint64 offset, const QByteArray &bytes)
    {
        QFile log(file);
        ASSERT_TRUE(log.open(QIODevice::ReadWrite) && log.seek(offset) && log.write(bytes) == bytes.size());
    }
    void append(const QByteArray &line) { write(QFile(file).size(), line); }
    /// In no sample, while the file grows.
    void changeMiddle()
    {
        put(file, content);
        settle();
        write(changedAt, "changed");
        append("more\n");
        settle();
    }
    [[nodiscard]] static bool showsChange(const TextDocument &document) { return document.storage().string({changedAt, 7}) == u"changed"; }

    static constexpr qint64 changedAt = 3 * FilePrefix::stretchLength + 2 * FilePrefix::sampleLength;
    const QByteArray content = QByteArray("a line like any other in a log\n").repeated(64 * 1024);
};

TEST_F(LogTest, WhatIsAppendedIsReadAlone)
{
    TextDocument &document = open(content);
    type(document, u"x"_s); // and so the hash of the text will be known
    document.undoManager().undo();
    append("first\n");
    settle();
    files.bytesRead = 0;
    const int lines = 1000;
    for (int line = 0; line < lines; ++line) {
        const qsizetype end = document.storage().length();
        append("and another line\r\n");
        settle(300ms);
        ASSERT_EQ(document.endBeforeReload(), end) << line;
    }
    const qint64 looks = lines * (FilePrefix::tailLength + 8 * FilePrefix::sampleLength);
    const qint64 checks = 300'000 / FileFollower::longestUnchecked.count() + 1;
    EXPECT_LE(files.bytesRead, looks + checks * (content.size() + 19 * lines));

    append("of long ago\n");
    QFile log(file);
    ASSERT_TRUE(log.open(QIODevice::ReadWrite) && log.setFileTime(QDateTime(QDate(2020, 1, 1), QTime()), QFile::FileModificationTime));
    settle();
    EXPECT_TRUE(document.file().state()->isFresh);
    settle(FileFollower::growthCheckDelay);
    const auto all = TextFile::read(file);
    EXPECT_EQ(document.file().state(), all->state) << "all of it was looked at";
    EXPECT_TRUE(document.storage().text() == all->text && document.lineEnding() == all->lineEnding);
    type(document, u"x"_s);
    document.storage().apply({{0, 1}, u""_s});
    settle();
    EXPECT_FALSE(document.isDirty()) << "the hash of the text that was read goes on too";
}

TEST_F(LogTest, WhatChangedBeforeTheOldEndIsNotWrittenOverAndFoundInTime)
{
    TextDocument &document = open(content);
    changeMiddle();
    EXPECT_FALSE(showsChange(document)) << "it cannot be known yet";
    document.setLineEnding(LineEnding::crlf);
    EXPECT_FALSE(saved(document, file));
    EXPECT_EQ(document.externalState(), TextDocument::ExternalState::conflicted);
    ASSERT_TRUE(isReverted(document));

    changeMiddle();
    settle(FileFollower::growthCheckDelay);
    EXPECT_TRUE(showsChange(document)) << "it rests";

    changeMiddle();
    for (auto time = 0ms; time < FileFollower::longestUnchecked; time += 250ms) {
        ASSERT_TRUE(time > FileFollower::longestUnchecked - 2s || !showsChange(document)) << time.count();
        append("and more\n");
        settle(250ms);
    }
    EXPECT_TRUE(showsChange(document)) << "it never rests";
}

TEST_F(LogTest, WhatWasReadKeepsItsColours)
{
    TextDocument &document = open("int a;\n", u"a.c"_s);
    document.highlighter()->ensureHighlighted({0, 6});
    put(u"a.c"_s, "int a;\nint b;\n");
    settle();
    ASSERT_EQ(document.storage().length(), 14);
    EXPECT_NE(document.storage().styleAt(0), plainStyle);
}

TEST_F(DocumentTest, AFileThatIsBackIsNotCalledDeleted)
{
    // Each comes when the file was found missing and before that is reported.
    const std::pair<const char *, std::function<void(TextDocument &)>> cases[] = {
        {"saved anew", [](TextDocument &document) { document.save(document.path()); }},
        {"saved elsewhere", [](TextDocument &document) { document.save(document.path() + u"x"_s); }},
        {"reverted",
         [this](TextDocument &document) {
             put(document.path(), "text\n");
             document.revertToFileOnDisk();
         }},
        {"reinterpreted",
         [this](TextDocument &document) {
             put(document.path(), "text\n");
             document.reinterpret(TextEncoding::isoLatin1);
         }},
    };
    int number = 0;
    for (const auto &[name, act] : cases) {
        TextDocument &document = open("text\n", u"file%1.txt"_s.arg(++number));
        workers.isHeld = true;
        QFile::remove(document.path());
        settle();
        workers.finish();
        workers.isHeld = false;
        act(document);
        settle(2s);
        finishWork();
        EXPECT_EQ(document.externalState(), TextDocument::ExternalState::none) << name;
        EXPECT_FALSE(document.isDirty()) << name;
    }
}

TEST_F(DocumentTest, TheOnlyCopyStaysDirtyUntilItIsSaved)
{
    TextDocument &document = open("text\n");
    QFile::remove(file);
    settle();
    ASSERT_EQ(document.externalState(), TextDocument::ExternalState::deleted);
    type(document, u"x"_s);
    document.undoManager().undo();
    settle();
    EXPECT_TRUE(document.isDirty());
    ASSERT_TRUE(saved(document, file));
    type(document, u"x"_s);
    document.undoManager().undo();
    settle();
    EXPECT_FALSE(document.isDirty());
}

TEST_F(DocumentTest, WhatIsSavedIsTheTextOfThatMoment)
{
    TextDocument &document = open("text\n");
    QStringList answers;
    const auto save = [&](const QString &name) {
        document.save(file,
                      [&answers, name](const Result<AtomicFile::InPlace> &saved) { answers << (saved ? name : saved.error().message); });
    };
    type(document, u"a"_s);
    workers.isHeld = true;
    save(u"first"_s);
    type(document, u"b"_s);
    save(u"second"_s);
    type(document, u"c"_s);
    save(u"third"_s);
    type(document, u"d"_s);
    document.saves().whenOver([&](bool isWritten) { answers << (isWritten ? u"all"_s : u"not all"_s); });
    EXPECT_TRUE(document.saves().isActive());
    scheduler.advance(FileRequests::slowAfter);
    EXPECT_EQ(document.requests().activity(), FileRequests::Activity::saving);

    workers.finish();
    QCoreApplication::processEvents();
    EXPECT_EQ(read(file), "atext\n");
    EXPECT_EQ(answers, QStringList{u"first"_s});
    EXPECT_TRUE(document.isDirty() && document.saves().isActive() && discarded.isEmpty());
    workers.finish();
    QCoreApplication::processEvents();
    EXPECT_EQ(read(file), "cbatext\n") << "what was overtaken is not written";
    EXPECT_EQ(answers, (QStringList{u"first"_s, u"second"_s, u"third"_s, u"all"_s}));
    EXPECT_FALSE(document.saves().isActive());
    EXPECT_EQ(document.requests().activity(), FileRequests::Activity::none);
    EXPECT_TRUE(document.isDirty());
    document.storage().apply({{0, 1}, QStringView()});
    settle(3s);
    EXPECT_FALSE(document.isDirty()) << "what was typed meanwhile was taken back";
    EXPECT_EQ(document.externalState(), TextDocument::ExternalState::none) << "its own writes are no news";
}

TEST_F(DocumentTest, AWriteThatFailsForgetsNothing)
{
    TextDocument &document = open("text\n");
    type(document, u"x"_s);
    workers.isHeld = true;
    put(file, "other\n");
    settle(1s);
    ASSERT_EQ(document.externalState(), TextDocument::ExternalState::none) << "its file is still being read";
    files.before = [](const char *call) { return std::strcmp(call, "fsync") == 0 ? EIO : 0; };
    bool isWritten = true;
    document.save(file);
    document.saves().whenOver([&isWritten](bool answer) { isWritten = answer; });
    workers.isHeld = false;
    workers.finish();
    settle();
    EXPECT_FALSE(isWritten);
    EXPECT_TRUE(document.isDirty());
    EXPECT_EQ(read(file), "other\n");
    EXPECT_EQ(document.externalState(), TextDocument::ExternalState::conflicted);
}

TEST_F(DocumentTest, RevertingComesAfterSavingAndNotAfterTyping)
{
    TextDocument &document = open("text\n");
    workers.isHeld = true;
    type(document, u"x"_s);
    document.save(file);
    document.revertToFileOnDisk();
    EXPECT_FALSE(document.requests().isPending(FileRequests::Kind::reading));
    workers.finish();
    QCoreApplication::processEvents();
    workers.finish();
    settle();
    EXPECT_EQ(document.storage().string(), u"xtext\n"_s);
    EXPECT_FALSE(document.undoManager().canUndo()) << "it was reverted to what was saved";

    EXPECT_EQ(discarded.count(document.id()), 2) << "its draft, by both";

    type(document, u"y"_s);
    document.revertToFileOnDisk();
    scheduler.advance(FileRequests::slowAfter);
    EXPECT_EQ(document.requests().activity(), FileRequests::Activity::opening);
    type(document, u"z"_s);
    workers.finish();
    settle();
    EXPECT_EQ(document.storage().string(), u"zyxtext\n"_s);
    EXPECT_EQ(document.requests().activity(), FileRequests::Activity::none);

    document.revertToFileOnDisk();
    document.save(file);
    finishWork();
    EXPECT_EQ(document.storage().string(), u"zyxtext\n"_s);
    EXPECT_EQ(read(file), "zyxtext\n");
}

TEST_F(DocumentTest, WhatIsChosenDuringASaveIsNotInTheFileYet)
{
    const std::pair<void (*)(TextDocument &), QByteArray> choices[] = {
        {[](TextDocument &document) { document.setLineEnding(LineEnding::crlf); }, "xa\r\n"},
        {[](TextDocument &document) { document.setEncoding(TextEncoding::utf16BigEndian); }, QByteArray("\0x\0a\0\n", 6)},
    };
    for (const auto &[choose, content] : choices) {
        TextDocument &document = open("a\n", u"b%1.txt"_s.arg(content.size()));
        workers.isHeld = true;
        type(document, u"x"_s);
        document.save(document.path());
        choose(document);
        finishWork();
        EXPECT_TRUE(document.isDirty() && document.hasUnsavedText());
        workers.isHeld = false;
        ASSERT_TRUE(saved(document, document.path()));
        EXPECT_EQ(read(document.path()), content);
        EXPECT_FALSE(document.isDirty());
    }
}

TEST_F(DocumentTest, AFileIsOneDocumentWhateverItIsCalledAndWheneverItComes)
{
    TextDocument &document = open("text\n");
    QFile::link(file, path(u"link"_s));
    put(u"b.txt"_s, "b");
    const auto found = store.open({path(u"link"_s), path(u"b.txt"_s), path(u"./b.txt"_s), path(u"none"_s)}, 0ms);
    EXPECT_EQ(found[0]->document.get(), &document);
    EXPECT_TRUE(found[1]->isNew && !found[2]->isNew && found[1]->document == found[2]->document);
    EXPECT_FALSE(found[3]);
    EXPECT_EQ(store.documents().size(), 2U);

    int failures = 0;
    observers.push_back(notifications.observe(TextDocument::didFailToArrive, nullptr, [&failures] { ++failures; }));
    workers.isHeld = true;
    const auto late = store.open({path(u"link"_s), path(u"none"_s)}, 0ms);
    int arrivals = 0;
    for (const auto &each : late) {
        ASSERT_TRUE(each->isNew && each->document->arrival().isPending());
        each->document->arrival().whenOver([&arrivals] { ++arrivals; });
    }
    workers.finish();
    QCoreApplication::processEvents();
    EXPECT_EQ(late[0]->document->arrival().failure().twin.get(), &document);
    EXPECT_TRUE(late[1]->document->arrival().failure().error);
    EXPECT_EQ(failures, 2);
    EXPECT_EQ(arrivals, 2);

    workers.isHeld = false;
    QStringList many;
    for (int number = 0; number < 40; ++number) {
        many << put(u"many/%1"_s.arg(number), "text");
    }
    const auto all = store.open(many, 0ms);
    ASSERT_EQ(all.size(), size_t(many.size()));
    for (size_t index = 0; index < all.size(); ++index) {
        EXPECT_EQ(all[index]->document->path(), many[qsizetype(index)]);
    }
}

TEST(SaveTransformation, TrimsAndEndsTheText)
{
    using enum SaveOptions::Trimmed;
    struct Case {
        QString before;
        SaveOptions options;
        QString after;
    };
    const Case cases[] = {
        {u"a  \nb \t\n"_s, {lastLine}, u"a  \nb\n"_s},
        {u"a  \nb \t"_s, {lastLine, true}, u"a  \nb\n"_s},
        {u"a \n\n"_s, {lastLine}, u"a \n\n"_s},
        {u"a\n  "_s, {lastLine, true}, u"a\n"_s},
        {u"a"_s, {nothing, true}, u"a\n"_s},
        {u"a\n"_s, {lastLine, true}, u"a\n"_s},
        {{}, {lastLine, true}, {}},
        {u"  "_s, {lastLine, true}, {}},
        {u"a  \n\t\n b \tc\t"_s, {everyLine}, u"a\n\n b \tc"_s},
        {u"a \n  "_s, {everyLine, true}, u"a\n"_s},
        {u"a \nb"_s, {everyLine, true}, u"a\nb\n"_s},
    };
    for (const Case &one : cases) {
        const Rope rope(one.before);
        EXPECT_EQ(saveTransformation(rope, one.options).applied(rope).toString(), one.after) << one.before.toStdString();
    }
}

} // namespace
