// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/EditJournal.h"

#include "Base/FileState.h"
#include "FileAnswers.h"
#include "Files/TextHash.h"
#include "Session/SessionFixture.h"
#include "Session/SessionKeeper.h"
#include "Session/SessionRestoration.h"
#include "Text/RandomText.h"

#include <QDirIterator>
#include <QtEndian>

#include <array>
#include <semaphore>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

TextEdits randomEdits(Random &random, const Rope &text)
{
    TextEdits edits;
    qsizetype at = 0;
    for (qsizetype count = 1 + random.below(3); count > 0; --count) {
        const qsizetype location = at + random.below(text.length() - at + 1);
        const qsizetype length = random.below(std::min<qsizetype>(text.length() - location, 5) + 1);
        static const QStringList pieces = {QString(), u"a"_s, u"ä\n"_s, u"\U0001F600"_s, u"\xD800 "_s};
        edits.add({location, length}, Rope(random.of(pieces)));
        at = location + length;
    }
    return edits.withWholePairs(text);
}

/// A program that types, and what another one finds after it was killed.
class EditJournalTest : public SessionFixture, public testing::WithParamInterface<quint32>, private SessionWindows {
protected:
    EditJournalTest()
    {
        services.discardDraft = [this](const QUuid &id) { store->discardDraft(id); };
        start();
    }
    void start()
    {
        open = std::make_unique<DocumentStore>(services, DocumentStore::AppearanceQuery());
        keeper = std::make_unique<SessionKeeper>(scheduler, notifications, preferences, *open, *store);
        keeper->setWindows(this);
    }
    TextDocument &add(const QString &text, const QString &path = {}) { return open->add(document(text, QUuid::createUuid(), path)); }
    TextDocument &addFile(const QString &name, const QString &text) { return add(text, TestFolder::put(name, text.toUtf8())); }

    [[nodiscard]] QStringList journals() const { return names(u"Quillet/Journal"_s); }
    /// Path and text of each document that comes back when the program is killed now.
    [[nodiscard]] std::map<QUuid, std::pair<QString, QString>> killed()
    {
        expectWritten(*store);
        return killedNow();
    }
    [[nodiscard]] std::map<QUuid, std::pair<QString, QString>> killedNow()
    {
        const QString copy = path(u"copy"_s);
        QDir(copy).removeRecursively();
        for (QDirIterator files(root(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); files.hasNext();) {
            const QString file = files.next();
            TestFolder::put(copy + file.sliced(root().size()), TestFolder::read(file));
        }
        SessionStore next({copy, {}}, preferences);
        DocumentStore restored({scheduler, notifications, preferences, workers, watchers}, {});
        std::map<QUuid, std::pair<QString, QString>> found;
        for (const auto &[id, document] : restoreDocuments(next.read(), next, restored)) {
            found[document->id()] = {document->path(), document->storage().string()};
        }
        expectWritten(next);
        leftAside = QDir(copy + u"/Journal/Unused"_s).entryList(QDir::Files).size();
        return found;
    }
    void expectAllBack(const char *when)
    {
        const auto found = killed();
        EXPECT_EQ(leftAside, 0) << when;
        for (const auto &document : open->documents()) {
            if (document->hasUnsavedText()) {
                const Rope &text = document->storage().text();
                EXPECT_TRUE(found.contains(document->id())) << when << ": lost " << text.toString().toStdString();
                const auto &[path, back] = found.contains(document->id()) ? found.at(document->id()) : std::pair<QString, QString>();
                // But for halves of pairs.
                EXPECT_EQ(textHash(Rope(back)), textHash(text)) << when << ": " << back.toStdString() << "\ninstead of\n"
                                                                << text.toString().toStdString();
                EXPECT_EQ(path, document->path()) << when;
            }
        }
        for (const auto &[id, text] : found) {
            const auto isIt = [&wanted = id](const auto &document) { return document->id() == wanted; };
            EXPECT_TRUE(std::ranges::any_of(open->documents(), isIt)) << when << ": back " << text.second.toStdString();
        }
    }

    void rememberPlaces() override {}
    [[nodiscard]] std::vector<WindowLayout> layouts() const override { return {{.panes = PaneLayout().addingPane(open->documents(), 0)}}; }
    [[nodiscard]] size_t frontmostLayout() const override { return 0; }
    void showBehind(TextDocument & /*document*/) override {}

    std::unique_ptr<SessionStore> store = SessionFixture::open();
    std::unique_ptr<DocumentStore> open;
    std::unique_ptr<SessionKeeper> keeper;
    qsizetype leftAside = 0;
};

} // namespace

TEST(EditJournal, GivesWhatIsWholeOfAFileThatWasCutOff)
{
    Random random(1);
    Rope text(u"one\ntwo\n"_s);
    QList<Rope> versions{text};
    const SessionSnapshot::Document entry{.id = QUuid::createUuid(), .filePath = u"/a.txt"_s, .lineEnding = u"\n"_s};
    QByteArray bytes = EditJournal::beginning(EditJournal::hashOf(text), entry);
    QList<qsizetype> ends{bytes.size()};
    for (int count = 0; count < 20; ++count) {
        const TextEdits edits = randomEdits(random, text);
        text = edits.applied(text);
        versions << text;
        bytes += EditJournal::record(edits);
        ends << bytes.size();
    }
    for (qsizetype length = 0; length <= bytes.size(); ++length) {
        const qsizetype whole = std::ranges::upper_bound(ends, length) - ends.begin();
        const auto cut = EditJournal::parse(bytes.first(length));
        ASSERT_EQ(cut.has_value(), whole > 0) << length;
        if (!cut) {
            continue;
        }
        ASSERT_EQ(replayed({*cut}, versions[0]), versions[whole - 1]) << length;
        QByteArray damaged = bytes;
        damaged[length % bytes.size()] = char(damaged[length % bytes.size()] ^ 0x10);
        if (const auto rest = EditJournal::parse(damaged)) {
            const auto back = replayed({*rest}, versions[0]);
            ASSERT_TRUE(back && versions.contains(*back)) << length;
        }
    }
    EXPECT_EQ(EditJournal::parse(bytes)->entry, entry);
    // Whole, and with more units than any file has.
    for (const quint64 length : {quint64(1) << 63, ~quint64(0), quint64(1) << 31, quint64(1)}) {
        const std::array<quint64, 3> numbers{0, 0, qToLittleEndian(length)};
        const QByteArray forged(reinterpret_cast<const char *>(numbers.data()), sizeof numbers);
        const auto size = qToLittleEndian(quint32(forged.size()));
        const auto hash = qToLittleEndian(quint64(ContentHash::of(forged.data(), size_t(forged.size()))));
        const QByteArray record = QByteArray(reinterpret_cast<const char *>(&size), sizeof size) +
                                  QByteArray(reinterpret_cast<const char *>(&hash), sizeof hash) + forged;
        EXPECT_EQ(EditJournal::parse(bytes + record)->changes.size(), 20) << length;
    }
    // Of another text it is nothing.
    EXPECT_FALSE(replayed({*EditJournal::parse(bytes)}, Rope(u"one\ntwo"_s)));
    const EditJournal beyond{.baseHash = EditJournal::hashOf(Rope()), .entry = entry, .changes = {TextEdits({5, 1}, u"x")}};
    EXPECT_EQ(replayed({beyond}, Rope()), Rope());
    // A file that is missing between two ends it.
    const EditJournal first{.baseHash = EditJournal::hashOf(Rope()), .entry = entry, .changes = {TextEdits({0, 0}, u"a")}};
    const EditJournal third{.baseHash = EditJournal::hashOf(Rope(u"ab"_s)), .entry = entry, .changes = {TextEdits({2, 0}, u"c")}};
    EXPECT_EQ(replayed({first, third}, Rope()), Rope(u"a"_s));
    EXPECT_EQ(replayed({first, third}, Rope(u"ab"_s)), Rope(u"abc"_s));
}

TEST(EditJournal, SaysWhatWasTypedIntoWhateverText)
{
    const auto journal = [](const std::vector<TextEdits> &changes) { return EditJournal{.entry = {}, .changes = changes}; };
    const EditJournal typed =
        journal({{{50, 0}, u"a"}, {{51, 0}, u"bc"}, {{52, 1}, u""}, {{10, 5}, u"x\n"}, {{30, 3}, u""}, {{70, 0}, u"y"}, {{70, 1}, u""}});
    EXPECT_EQ(insertionsOf({typed}), u"x\nab"_s);
    EXPECT_EQ(insertionsOf({typed, journal({{{0, 0}, u"later"}})}), u"x\nab\nlater"_s);
    EXPECT_EQ(insertionsOf({journal({{{3, 4}, u""}})}), QString());
    EXPECT_TRUE(areContained({typed}, Rope(QString(10, u'.') + u"x\n"_s + QString(32, u'.') + u"ab"_s)));
    EXPECT_FALSE(areContained({typed}, Rope(QString(10, u'.') + u"x\n"_s + QString(31, u'.') + u"ab"_s)));
    EXPECT_TRUE(EditJournal::isCutOff(QByteArray(14, '\1')));
    EXPECT_FALSE(EditJournal::isCutOff(QByteArray(14, '\0')));
}

TEST_F(EditJournalTest, WhatIsTypedComesBackBeforeAnyTick)
{
    TextDocument &file = addFile(u"a.txt"_s, u"in the file"_s);
    TextDocument &untitled = add({});
    TextDocument &notMadeYet = add({}, path(u"new.txt"_s));
    expectAllBack("nothing typed");
    for (int count = 0; count < 3; ++count) {
        file.storage().apply({{2, 1}, u"x"_s});
        untitled.storage().apply({{0, 0}, u"ä\U0001F600"_s});
        notMadeYet.storage().apply({{0, 0}, u"z"_s});
        expectAllBack("no draft yet");
    }
    file.setLineEnding(LineEnding::crlf);
    keeper->performAutosave();
    expectWritten(*store);
    EXPECT_EQ(journals(), QStringList()) << "it is all in the drafts";
    expectAllBack("all in drafts");
    file.storage().apply({{0, 0}, u"1"_s});
    expectAllBack("edits of a draft");
    EXPECT_EQ(journals().size(), 1);
    // More than fits is written as a draft at once.
    untitled.storage().apply({{1, 0}, QString(600'000, u'y')});
    expectAllBack("much");
    EXPECT_EQ(journals().size(), 1);
    EXPECT_GT(draftOf(untitled.id()).size(), 600'000);
    ASSERT_TRUE(saved(file, file.path()));
    expectAllBack("saved");
    EXPECT_EQ(journals(), QStringList());
    // Not when it is not wanted.
    preferences.set(Settings::autosaveDrafts, false);
    file.storage().apply({{0, 0}, u"2"_s});
    expectWritten(*store);
    EXPECT_EQ(journals(), QStringList());
}

TEST_F(EditJournalTest, WhatWasTypedIntoAFileThatOthersWroteGetsATextOfItsOwn)
{
    TextDocument &file = addFile(u"a.txt"_s, u"text"_s);
    keeper->performAutosave();
    file.storage().apply({{4, 0}, u" typed"_s});
    const auto textsWith = [this](const QByteArray &content) {
        TestFolder::put(u"a.txt"_s, content);
        std::set<QString> texts;
        for (const auto &[id, text] : killed()) {
            texts.insert(text.second);
        }
        EXPECT_EQ(leftAside, 0) << "it is in a draft";
        return texts;
    };
    EXPECT_EQ(textsWith("by another program"), (std::set{u"by another program"_s, u" typed"_s}));
    EXPECT_EQ(textsWith("text typed"), std::set{u"text typed"_s}) << "saved, and killed before the edits went";
    QFile::remove(path(u"a.txt"_s));
    EXPECT_TRUE(killed().size() == 1 && killed().begin()->second.second == u" typed"_s);
}

TEST_F(EditJournalTest, ADamagedJournalIsKeptForAMonth)
{
    store.reset();
    QStringList kept;
    for (const int days : {29, 31}) {
        const QString name = EditJournal::nameFor(QUuid::createUuid(), 1);
        kept << (days < 30 ? QStringList{name} : QStringList());
        QFile journal(SessionFixture::put(u"Journal/Unused/"_s + name, "damaged by a disk"));
        ASSERT_TRUE(journal.open(QIODevice::ReadWrite) &&
                    journal.setFileTime(QDateTime::currentDateTime().addDays(-days), QFile::FileModificationTime));
    }
    store = SessionFixture::open();
    std::ignore = store->read();
    EXPECT_EQ(names(u"Quillet/Journal/Unused"_s), kept);
}

TEST_F(EditJournalTest, EditsOfAFileThatCannotBeReadWaitForIt)
{
    addFile(u"a.txt"_s, u"text"_s).storage().apply({{0, 0}, u"1"_s});
    expectWritten(*store);
    keeper.reset();
    open.reset();
    store.reset();
    TestFolder::put(u"a.txt"_s, QByteArray("te\0t", 4));
    store = SessionFixture::open();
    start();
    std::ignore = restoreDocuments(store->read(), *store, *open);
    EXPECT_TRUE(open->documents().empty());
    TestFolder::put(u"a.txt"_s, "text");
    const auto found = killed();
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.begin()->second.second, u"1text"_s);
}

TEST_F(EditJournalTest, BringsNoFileBackForEditsThatWereTakenBack)
{
    TextDocument &file = addFile(u"a.txt"_s, u"text"_s);
    file.storage().apply({{0, 0}, u"1"_s});
    EXPECT_EQ(killed().size(), 1U) << "no session knows of it";
    file.storage().apply({{0, 1}, u""_s});
    EXPECT_TRUE(killed().empty());
}

TEST_F(EditJournalTest, EditsGoAfterTheDraftThatTheyBuildOn)
{
    TextDocument &file = addFile(u"a.txt"_s, u"text"_s);
    file.storage().apply({{0, 0}, u"1"_s});
    keeper->performAutosave();
    expectWritten(*store);
    file.storage().apply({{0, 1}, u""_s});
    settle(500ms);
    ASSERT_FALSE(file.hasUnsavedText());
    expectWritten(*store);
    // The session is being written, and the draft that it does not name is there as long as it takes.
    std::counting_semaphore<1000> mayGoOn(0);
    calls.before = [&](const char *call) {
        if (std::string(call) == "rename") {
            mayGoOn.acquire();
        }
        return 0;
    };
    keeper->performAutosave();
    file.storage().apply({{0, 0}, u"2"_s});
    const auto isJournalled = [this] {
        return std::ranges::any_of(journals(), [this](const QString &name) {
            const auto journal = EditJournal::parse(TestFolder::read(u"Quillet/Journal/"_s + name));
            return journal && !journal->changes.empty() && journal->changes.back()[0].text == Rope(u"2"_s);
        });
    };
    while (!isJournalled()) {
    }
    const auto found = killedNow();
    mayGoOn.release(1000);
    expectWritten(*store); // the thread is still at the semaphore
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.begin()->second.second, u"2text"_s);
}

TEST_F(EditJournalTest, WhatIsTypedDuringASaveFitsOnBothFiles)
{
    TextDocument &file = addFile(u"a.txt"_s, u"text"_s);
    file.storage().apply({{0, 0}, u"1"_s});
    workers.isHeld = true;
    file.save(file.path());
    file.storage().apply({{0, 0}, u"2"_s});
    workers.isHeld = false;
    for (const char *content : {"text", "1text"}) {
        TestFolder::put(u"a.txt"_s, content);
        const auto found = killed();
        EXPECT_EQ(found.begin()->second.second, u"21text"_s) << content;
    }
    workers.finish();
    QCoreApplication::processEvents();
    expectWritten(*store);
    EXPECT_EQ(draftOf(file.id()), "21text") << "at once";
}

TEST_F(EditJournalTest, IsOnDiskWithinASecond)
{
    TextDocument &text = add({});
    text.storage().apply({{0, 0}, u"1"_s});
    scheduler.advance(800ms);
    expectWritten(*store);
    std::atomic<int> flushes = 0;
    calls.before = [&flushes](const char *call) {
        flushes += std::string(call) == "fsync" ? 1 : 0;
        return 0;
    };
    for (int key = 0; key < 20; ++key) {
        text.storage().apply({{0, 0}, u"x"_s});
        scheduler.advance(10ms);
    }
    expectWritten(*store);
    EXPECT_EQ(flushes, 0);
    scheduler.advance(800ms);
    expectWritten(*store);
    EXPECT_EQ(flushes, 2) << "the file and its folder";
    calls.before = {};
}

TEST_P(EditJournalTest, LosesNothingAtAnyMoment)
{
    Random random(GetParam());
    for (int step = 0; step < 120 && !HasFailure(); ++step) {
        const auto &all = open->documents();
        TextDocument *any = all.empty() ? nullptr : all[size_t(random.below(qsizetype(all.size())))].get();
        const qsizetype choice = any ? random.below(20) : random.below(2);
        if (choice == 0) {
            add({});
        } else if (choice == 1) {
            addFile(u"%1.txt"_s.arg(step), u"file\n"_s.repeated(random.below(3)));
        } else if (choice < 13) {
            any->storage().apply(randomEdits(random, any->storage().text()));
        } else if (choice < 15) {
            any->undoManager().undo();
        } else if (choice < 17) {
            keeper->performAutosave();
        } else if (choice < 18) {
            ASSERT_TRUE(saved(*any, any->isUntitled() ? path(u"%1.txt"_s.arg(step)) : any->path()));
        } else if (choice < 19) {
            open->remove(*any);
            keeper->performAutosave();
        } else {
            // Killed, and the next one goes on with what came back.
            expectWritten(*store);
            keeper.reset();
            open.reset();
            store.reset();
            store = SessionFixture::open();
            start();
            std::ignore = restoreDocuments(store->read(), *store, *open);
        }
        expectAllBack(("step " + std::to_string(step) + ", choice " + std::to_string(choice)).c_str());
    }
}

INSTANTIATE_TEST_SUITE_P(Histories, EditJournalTest, testing::Range(1U, 6U));
