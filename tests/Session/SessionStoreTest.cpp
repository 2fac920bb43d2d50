// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "FileAnswers.h"
#include "Session/SessionFixture.h"

#include "Session/SessionLock.h"
#include "Session/SessionRestoration.h"
#include "Session/WindowLayout.h"

#include <QDateTime>
#include <QJsonDocument>

#include <atomic>
#include <filesystem>
#include <semaphore>
#include <set>
#include <unistd.h>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using Snapshot = SessionStore::Snapshot;

namespace {

const QUuid firstId(u"{1b4e28ba-2fa1-11d2-883f-0016d3cca427}"_s);
const QUuid secondId(u"{2b4e28ba-2fa1-11d2-883f-0016d3cca427}"_s);
const QUuid thirdId(u"{3b4e28ba-2fa1-11d2-883f-0016d3cca427}"_s);

class SessionStoreTest : public SessionFixture {
protected:
    [[nodiscard]] Snapshot::Document entry(const QUuid &id, const std::optional<QString> &file = {}) const
    {
        return {.id = id, .filePath = file ? std::optional(path(*file)) : file, .draftFilename = DraftFile::nameFor(id)};
    }
    void putSession(const QList<Snapshot::Document> &entries) const { put(u"session.json"_s, Snapshot{.documents = entries}.toJson()); }
};

const QByteArray wholeSnapshot = QJsonDocument::fromJson(R"({
    "documents": [{"draftFilename": "1B4E28BA-2FA1-11D2-883F-0016D3CCA427.draft", "encodingRawValue": 2415919360,
                   "filePath": "/tmp/ä \" b.c", "id": "1B4E28BA-2FA1-11D2-883F-0016D3CCA427", "languageID": "c", "lineEnding": "\r\n",
                   "scrollOffset": 12.5, "selectionLength": 2, "selectionLocation": 1}],
    "focusedPaneIndex": 0, "panes": [{"documentIDs": ["1B4E28BA-2FA1-11D2-883F-0016D3CCA427"], "selectedIndex": 0}],
    "savedAt": 817287000.25, "splitIsVertical": false, "windowFrame": "{{10, -20}, {1040, 700}}"})")
                                     .toJson();

} // namespace

TEST(SessionSnapshot, IsReadAndWrittenToTheLetter)
{
    const auto snapshot = Snapshot::fromJson(wholeSnapshot);
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->toJson().toStdString(), wholeSnapshot.toStdString());
    EXPECT_EQ(snapshot->documents.front().id, firstId);
    EXPECT_EQ(snapshot->documents.front().encodingRawValue, quint32(TextEncoding::utf16BigEndian));
    EXPECT_EQ(snapshot->documents.front().selection, (TextRange{1, 2}));

    const Snapshot least{.documents = {{.id = firstId}}, .panes = {{.documentIDs = {secondId}}}};
    QByteArray json = least.toJson();
    EXPECT_FALSE(json.contains("null") || json.contains("filePath") || json.contains("windowFrame"));
    EXPECT_EQ(Snapshot::fromJson(json), least);
    EXPECT_TRUE(
        Snapshot::fromJson(json.replace("\"id\"", "\"bookmark\": \"AAAA\", \"id\"").replace("\"panes\"", "\"later\": [{}], \"panes\"")));
}

TEST(SessionSnapshot, AnythingElseIsNone)
{
    const auto expectNone = [](QByteArray damaged, const QByteArray &from, const QByteArray &to) {
        damaged.replace(from, to);
        ASSERT_NE(damaged, wholeSnapshot) << from.constData();
        EXPECT_FALSE(Snapshot::fromJson(damaged)) << from.constData() << " → " << to.constData();
    };
    // Every key but the optional ones is needed.
    for (const QByteArray key :
         {"documents", "encodingRawValue", "id", "lineEnding", "scrollOffset", "selectionLength", "selectionLocation", "focusedPaneIndex",
          "panes", "documentIDs", "selectedIndex", "savedAt", "splitIsVertical"}) {
        expectNone(wholeSnapshot, '"' + key + '"', "\"x\"");
    }
    for (const auto &[from, to] : std::to_array<std::pair<const char *, const char *>>({
             {"2415919360", "-1"},
             {"2415919360", "4294967300"},
             {"2415919360", "1.5"},
             {"\"selectionLocation\": 1", "\"selectionLocation\": 1e300"},
             {"12.5", "1e999"},
             {"\"lineEnding\": \"\\r\\n\"", "\"lineEnding\": 13"},
             {"false", "0"},
             {"\"{{10, -20}, {1040, 700}}\"", "{}"},
             {"\"id\": \"1B", "\"id\": \"XX"},
         })) {
        expectNone(wholeSnapshot, from, to);
    }
    for (qsizetype length = 0; length < wholeSnapshot.size() - 1; length += 7) {
        EXPECT_FALSE(Snapshot::fromJson(wholeSnapshot.first(length)));
    }
    EXPECT_FALSE(Snapshot::fromJson(QByteArray(100000, '[')));
}

TEST(WindowFrame, IsWhatItIsWrittenAs)
{
    const WindowFrame frame{-5, 10, 800, 600};
    EXPECT_EQ(WindowFrame::fromString(frame.toString()), frame);
    EXPECT_EQ(WindowFrame::fromString(u" {{-5.2,1e1},{ 799.6, 600}}"_s), frame);
    for (const auto &text : {u""_s, u"{{1, 2}, {3}}"_s, u"{{1, 2}, {0, 4}}"_s, u"{{1, nan}, {3, 4}}"_s, u"{{1e30, 2}, {3, 4}}"_s,
                             u"{{1, 2}, {3, 4}} x"_s, u"{{1, 2}, {x, 4}}"_s, u"{{inf, 2}, {3, 4}}"_s}) {
        EXPECT_FALSE(WindowFrame::fromString(text)) << text.toStdString();
    }
}

TEST_F(SessionStoreTest, AFileThatWasWrittenAfterItsDraftIsComparedWithIt)
{
    using enum TextDocument::ExternalState;
    struct Case {
        const char *content;
        int secondsLater;
        TextDocument::ExternalState state;
        bool isUnsaved;
    };
    // The program may have been killed when the file was saved and the draft was still there.
    for (const auto &[content, secondsLater, state, isUnsaved] :
         std::to_array<Case>({{"saved later", 5, conflicted, true}, {"typed", 5, none, false}, {"old", -5, none, true}})) {
        put(u"a.txt"_s, content);
        put(draftName(firstId), "typed");
        QFile file(root() + u"/a.txt"_s);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(secondsLater), QFileDevice::FileModificationTime));
        file.close();
        auto store = open();
        const Snapshot snapshot{.documents = {entry(firstId, file.fileName())}};
        TextDocument &text = *restoreDocuments({.snapshot = snapshot}, *store, documents).front().document;
        settle();
        EXPECT_EQ(text.externalState(), state) << content;
        EXPECT_EQ(text.hasUnsavedText(), isUnsaved) << content;
        EXPECT_EQ(text.storage().string(), u"typed"_s);
        if (isUnsaved) {
            // It counts as clean, but is not replaced by what others write.
            put(u"a.txt"_s, "by another program\n");
            settle();
            EXPECT_EQ(text.externalState(), conflicted);
            EXPECT_EQ(text.storage().string(), u"typed"_s);
        }
        documents.remove(text);
    }
}

TEST_F(SessionStoreTest, DamagedEntriesLoseNoText)
{
    for (const auto &[name, content] : std::to_array<std::pair<QString, QByteArray>>({
             {u"a.txt"_s, "file"},
             {u"b.txt"_s, "older"},
             {draftName(firstId), "typed \xFF\xC3"},
             {draftName(secondId), "just before the end"},
             {draftName(thirdId), "newer"},
             {u"Drafts/odd name.draft"_s, "odd"},
             {u"Drafts/empty.draft"_s, ""},
             {u"secret.draft"_s, "outside"},
         })) {
        put(name, content);
    }
    const QString file = root() + u"/a.txt"_s;
    putSession({{.id = firstId, .draftFilename = DraftFile::nameFor(firstId), .lineEnding = u"?"_s},
                {.id = firstId, .draftFilename = u"odd name.draft"_s, .selection = {-5, 1}},
                {.id = QUuid::createUuid(), .draftFilename = u"../secret.draft"_s},
                {.id = QUuid::createUuid(), .filePath = file, .selection = {2, 1}},
                {.id = QUuid::createUuid(), .filePath = file},
                {.id = thirdId, .filePath = root() + u"/b.txt"_s},
                {.id = QUuid::createUuid(), .filePath = root() + u"/gone.txt"_s},
                {.id = QUuid::createUuid(), .filePath = u"relative"_s}});
    auto store = open();
    const auto restored = restoreDocuments(store->read(), *store, documents);
    QStringList texts;
    for (const auto &[id, restoredText] : restored) {
        texts << restoredText->storage().string();
    }
    EXPECT_EQ(texts, (QStringList{u"typed \uFFFD\uFFFD"_s, u"odd"_s, u"file"_s, u"file"_s, u"newer"_s, u"just before the end"_s}));
    EXPECT_NE(restored[0].document->id(), restored[1].document->id());
    EXPECT_EQ(restored[2].document, restored[3].document) << "one file, one text";
    EXPECT_EQ(restored[2].document->lastSelectedRange, (TextRange{2, 1}));
    EXPECT_EQ(restored[4].document->path(), root() + u"/b.txt"_s) << "its entry did not name its draft yet";
    EXPECT_EQ(restored[5].document->id(), secondId);
    EXPECT_EQ(documents.documents().size(), 5U);
    // The odd one gets a name of its own before the old one goes.
    std::vector<TextDocument *> all;
    std::ranges::transform(documents.documents(), std::back_inserter(all), &std::shared_ptr<TextDocument>::get);
    keep(*store, all);
    EXPECT_EQ(drafts().size(), 4);
    EXPECT_FALSE(drafts().contains(u"odd name.draft"_s));
    EXPECT_EQ(draftOf(restored[1].document->id()), "odd");
}

TEST_F(SessionStoreTest, ADraftThatCannotBeReadIsLeftWhereItIs)
{
    const QString file = put(u"a.txt"_s, "file");
    put(u"Drafts/other.draft"_s, "other");
    const QString broken = DraftFile::nameFor(firstId);
    // Reading it fails, also for the superuser.
    ASSERT_TRUE(QFile::link(u"/proc/self/mem"_s, root() + u"/Drafts/"_s + broken));
    putSession({entry(firstId, file)});
    auto store = open();
    auto restored = restoreDocuments(store->read(), *store, documents);
    ASSERT_EQ(restored.size(), 2U);
    EXPECT_EQ(restored.front().idInSnapshot, firstId);
    TextDocument &text = *restored.front().document;
    EXPECT_EQ(text.storage().string(), u"file"_s);
    store->write(sessionOf(*store, {&text}));
    edit(text, u"new"_s);
    store->write(sessionOf(*store, {&text}));
    store->discardDraft(text.id());
    expectWritten(*store);
    EXPECT_EQ(drafts(), QStringList{broken});

    // One that is missing is nothing that may be readable again.
    store.reset();
    putSession({entry(secondId, file)});
    store = open();
    for (const RestoredDocument &before : std::exchange(restored, {})) {
        documents.remove(*before.document);
    }
    restored = restoreDocuments(store->read(), *store, documents);
    ASSERT_EQ(restored.size(), 1U);
    edit(*restored.front().document, u"newer"_s);
    keep(*store, {restored.front().document.get()});
    EXPECT_EQ(restored.front().document->id(), secondId);
    EXPECT_EQ(drafts().size(), 2);
    keep(*store, {});
    EXPECT_EQ(drafts(), QStringList{broken});
}

TEST_F(SessionStoreTest, AnUnreadableSnapshotIsSetAsideWithItsDrafts)
{
    const auto untitled = document(u"new"_s);
    for (const QByteArray &garbage : {QByteArray("{\"documents\": 3}"), QByteArray(50 * 1024 * 1024, '{'), QByteArray()}) {
        QDir(root()).removeRecursively();
        put(u"session.json"_s, garbage);
        put(u"Drafts/one.draft"_s, "text");
        put(u".quillet-cutoff"_s, "half");
        auto store = open();
        std::optional<QString> setAside;
        store->onSetAside([&](const QString &where) { setAside = where; });
        const auto saved = store->read();
        ASSERT_TRUE(setAside && !saved.snapshot && saved.otherDrafts.isEmpty());
        EXPECT_FALSE(QFile::exists(root() + u"/.quillet-cutoff"_s));
        keep(*store, {untitled.get()});
        EXPECT_EQ(drafts().size(), 1);
        EXPECT_EQ(read(*setAside + u"/session.json"_s), garbage);
        EXPECT_EQ(read(*setAside + u"/Drafts/one.draft"_s), "text");
    }
    // It cannot be moved: nothing is written over it.
    QDir(root()).removeRecursively();
    put(u"session.json"_s, "garbage");
    put(u"Drafts/one.draft"_s, "text");
    calls.before = [](const char *call) { return std::string(call) == "rename" ? EROFS : 0; };
    auto store = open();
    EXPECT_FALSE(store->read().snapshot);
    EXPECT_FALSE(store->keepsUnsavedText());
    calls.before = nullptr;
    keep(*store, {untitled.get()});
    EXPECT_EQ(read(u"Quillet/session.json"_s), "garbage");
    EXPECT_EQ(drafts(), QStringList{u"one.draft"_s});
}

TEST_F(SessionStoreTest, WhatIsNotBroughtBackIsCarriedOver)
{
    put(draftName(firstId), "typed");
    put(draftName(secondId), "just before the end");
    putSession({entry(firstId, u"/a.txt"_s), {.id = QUuid::createUuid(), .filePath = u"/b.txt"_s}});
    const auto text = document(u"another"_s);
    for (int start = 0; start < 2; ++start) {
        auto store = open();
        store->writeDraft(*text);
        expectWritten(*store);
        store->write(sessionOf(*store, {text.get()}));
        keep(*store, {});
        EXPECT_EQ(drafts().size(), 2);
    }
    auto store = open();
    const auto restored = restoreDocuments(store->read(), *store, documents);
    ASSERT_EQ(restored.size(), 2U);
    EXPECT_EQ(restored[0].document->path(), u"/a.txt"_s);
    EXPECT_EQ(restored[0].document->storage().string(), u"typed"_s);
    EXPECT_EQ(restored[1].document->id(), secondId);

    // What cannot be read goes away without the drafts of this program.
    store.reset();
    put(u"session.json"_s, "garbage");
    store = open();
    store->writeDraft(*text);
    expectWritten(*store);
    keep(*store, {text.get()});
    EXPECT_EQ(drafts(), QStringList{DraftFile::nameFor(text->id())});
}

TEST_F(SessionStoreTest, OnlyOneProgramOwnsTheFolder)
{
    auto first = open();
    const auto untitled = document(u"text"_s, firstId);
    keep(*first, {untitled.get()});
    const auto draftsOfGuests = [this] { return QDir(root() + u"/Guests"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(); };
    {
        auto second = open();
        EXPECT_FALSE(second->isOwner() || second->keepsUnsavedText() || second->read().snapshot);
        keep(*second, {});
        second->discardDraft(firstId);
        EXPECT_EQ(draftsOfGuests(), 0) << "it has nothing to keep";
        keep(*second, {untitled.get()});
        EXPECT_TRUE(second->keepsDrafts());
        EXPECT_EQ(draftsOfGuests(), 1);
        second->discardDraft(firstId);
    }
    EXPECT_EQ(draftsOfGuests(), 0);
    EXPECT_EQ(drafts(), QStringList{DraftFile::nameFor(firstId)});
    // Another folder is nobody else's; this one is, wherever the other program has what runs.
    EXPECT_TRUE(SessionStore({path(u"other"_s), path({})}, preferences).isOwner());
    EXPECT_FALSE(SessionStore({root(), {}}, preferences).isOwner());
    EXPECT_FALSE(SessionStore({root(), path(u"other"_s)}, preferences).isOwner());
    first.reset();
    {
        SessionStore guest({root(), path({}), SessionStore::Role::guest}, preferences);
        EXPECT_FALSE(guest.isOwner() || guest.isHeldByOther());
        EXPECT_TRUE(open()->isOwner());
    }
    EXPECT_TRUE(open()->read().snapshot);
}

TEST_F(SessionStoreTest, WhatAnotherProgramLeftIsTakenOverWhateverCutsThatOff)
{
    const QString file = path(u"Quillet/a.txt"_s);
    for (int step = 1; step < 100; ++step) {
        QDir(root()).removeRecursively();
        put(u"a.txt"_s, "file");
        auto owner = open();
        const auto clean = document(u"file"_s, firstId, file);
        keep(*owner, {clean.get()});
        {
            auto other = open();
            const auto edited = document(u"file"_s, secondId, file);
            edit(*edited, u"edited"_s);
            const auto untitled = document(u"untitled"_s, thirdId);
            keep(*other, {edited.get(), untitled.get()});
        }
        owner.reset();
        calls.steps = 0;
        calls.killAt = step;
        std::ignore = open()->read();
        const bool isOver = calls.steps < step;
        calls.killAt = 0;
        auto next = open();
        DocumentStore restored(services, {});
        QStringList texts;
        std::ignore = restoreDocuments(next->read(), *next, restored);
        for (const auto &document : restored.documents()) {
            texts << document->storage().string() + u' ' + document->displayName();
        }
        EXPECT_EQ(texts, (QStringList{u"edited a.txt"_s, u"untitled Untitled"_s})) << "cut off at call " << step;
        if (isOver) {
            EXPECT_FALSE(QFile::exists(root() + u"/Guests"_s));
            return;
        }
    }
    FAIL() << "it never ends";
}

TEST_F(SessionStoreTest, NothingIsLostOfWhatASecondProgramLeftInOddShape)
{
    const QString file = put(u"a.txt"_s, "file");
    auto owner = open();
    auto other = open();
    // It ends with nothing but a journal, and a draft has the name of another one.
    const auto edited = document(u"file"_s, secondId, file);
    QObject::connect(&edited->storage(), &TextStorage::didProcessEditing,
                     [&](const TextChange &change) { other->noteEdit(*edited, change, SessionStore::Before::saved); });
    edit(*edited, u"edited"_s);
    expectWritten(*other);
    put(draftName(firstId), "own");
    put(u"Guests/odd/"_s + draftName(firstId), "other");
    other.reset();
    owner.reset();
    const auto next = open();
    DocumentStore restored(services, {});
    QStringList texts;
    std::ignore = restoreDocuments(next->read(), *next, restored);
    for (const auto &document : restored.documents()) {
        texts << document->storage().string();
    }
    texts.sort();
    EXPECT_EQ(texts, (QStringList{u"edited"_s, u"other"_s, u"own"_s}));
}

TEST_F(SessionStoreTest, OfSeveralUnsavedTextsOfAFileTheLatestHasItsTab)
{
    const QString file = path(u"Quillet/a.txt"_s);
    put(u"a.txt"_s, "file");
    auto owner = open();
    const auto own = document(u"file"_s, firstId, file);
    edit(*own, u"own"_s);
    keep(*owner, {own.get()});
    auto other = open();
    const auto edited = document(u"file"_s, secondId, file);
    edit(*edited, u"its"_s);
    const auto same = document(u"file"_s, thirdId, file);
    edit(*same, u"own"_s);
    keep(*other, {edited.get(), same.get()});
    other.reset();
    owner.reset();
    for (const auto &[latest, texts] : {std::pair(firstId, QStringList{u"own a.txt"_s, u"its a.txt (recovered)"_s}),
                                        std::pair(secondId, QStringList{u"its a.txt"_s, u"own a.txt (recovered)"_s})}) {
        auto store = open();
        const auto saved = store->read();
        for (const QUuid &id : {firstId, secondId, thirdId}) {
            std::error_code isGone; // the same text once more
            std::filesystem::last_write_time((root() + u'/' + draftName(id)).toStdString(),
                                             std::filesystem::file_time_type::clock::now() - (id == latest ? 1h : 2h), isGone);
        }
        DocumentStore restored(services, {});
        const auto found = restoreDocuments(saved, *store, restored);
        QStringList names;
        for (const auto &each : restored.documents()) {
            names << each->storage().string() + u' ' + each->displayName();
        }
        EXPECT_EQ(names, texts);
        // What has come by itself is in front, and says so again at the next start.
        const PaneLayout panes = layoutOf(*saved.snapshot, found).panes;
        ASSERT_TRUE(panes.current()->origin);
        EXPECT_EQ(panes.current()->origin, (TextOrigin{TextOrigin::Kind::otherVersion, file}));
        EXPECT_EQ(SessionSnapshot::fromJson(snapshotOf({panes, {}}, restored.documents(), {}).toJson())->documents.back().origin,
                  panes.current()->origin);
    }
}

TEST_F(SessionStoreTest, WhatFitsNowhereComesBackOnceWhateverCutsThatOff)
{
    const QString file = path(u"Quillet/a.txt"_s);
    const SessionSnapshot::Document entry{.id = firstId, .filePath = file, .lineEnding = u"\n"_s};
    for (int step = 1; step < 100; ++step) {
        QDir(root()).removeRecursively();
        put(u"a.txt"_s, "by somebody else");
        put(u"Journal/"_s + EditJournal::nameFor(firstId, 7), EditJournal::beginning(1, entry) + EditJournal::record({{3, 0}, u"typed"}));
        QStringList texts;
        bool isOver = false;
        for (const int killAt : {step, 0}) {
            calls.steps = 0;
            calls.killAt = killAt;
            auto store = open();
            DocumentStore restored(services, {});
            std::ignore = restoreDocuments(store->read(), *store, restored);
            expectWritten(*store);
            isOver = isOver || calls.steps < killAt;
            texts.clear();
            for (const auto &each : restored.documents()) {
                texts << each->storage().string();
            }
        }
        EXPECT_EQ(texts, QStringList{u"typed"_s}) << "cut off at call " << step;
        EXPECT_EQ(names(u"Quillet/Journal"_s) + names(u"Quillet/Journal/Unused"_s), QStringList{u"Unused"_s});
        if (isOver) {
            return;
        }
    }
    FAIL() << "it never ends";
}

TEST_F(SessionStoreTest, AFolderThatIsNotTheUsersAloneIsRefused)
{
    struct Foreign final : FileCalls {
        uid_t owner = ::geteuid();
        int stat(const char *path, struct stat *status) override
        {
            const int result = FileCalls::stat(path, status);
            status->st_uid = owner;
            return result;
        }
    } foreign;
    const auto text = document(u"text"_s, firstId);
    put(draftName(secondId), "planted");
    const auto problemsOf = [&](SessionStore &store) {
        std::vector<SessionStore::Problem::Kind> kinds;
        store.onProblem([&](const SessionStore::Problem &problem) { kinds.push_back(problem.kind); });
        keep(store, {text.get()});
        EXPECT_TRUE(store.read().otherDrafts.isEmpty());
        return kinds;
    };
    const std::vector refused{SessionStore::Problem::Kind::sharedFolder};
    ASSERT_TRUE(QDir().mkpath(root() + u"/Guests"_s));
    for (const QString &folder : {root(), root() + u"/Drafts"_s, root() + u"/Guests"_s}) {
        ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0775), 0);
        auto store = open();
        EXPECT_EQ(problemsOf(*store), refused);
        EXPECT_FALSE(store->isOwner() || store->keepsDrafts() || store->isHeldByOther());
        ASSERT_EQ(::chmod(QFile::encodeName(folder).constData(), 0755), 0);
    }
    foreign.owner += 1;
    SessionStore store({root(), {}}, preferences, foreign);
    EXPECT_EQ(problemsOf(store), refused);
    EXPECT_EQ(names(u"Quillet"_s), (QStringList{u"Drafts"_s, u"Guests"_s})) << "nothing is written";
    EXPECT_TRUE(open()->isOwner());
}

TEST_F(SessionStoreTest, ADraftThatIsALinkIsNotWrittenThrough)
{
    const QString target = put(u"profile"_s, "the user's");
    put(u"Drafts/x"_s, "");
    ASSERT_TRUE(QFile::link(target, root() + u'/' + draftName(firstId)));
    auto store = open();
    const auto text = document(u"text"_s, firstId);
    keep(*store, {text.get()});
    EXPECT_EQ(read(target), "the user's");
    EXPECT_EQ(draftOf(firstId), "text");
    // Nor is it one that others put there later.
    ASSERT_TRUE(QFile::remove(root() + u'/' + draftName(firstId)) && QFile::link(target, root() + u'/' + draftName(firstId)));
    keep(*store, {text.get()});
    EXPECT_FALSE(QFileInfo(root() + u'/' + draftName(firstId)).isSymLink());
    EXPECT_EQ(read(target), "the user's");
}

TEST_F(SessionStoreTest, HasALockOnAnyFileSystem)
{
    using enum SessionLock::State;
    const QString lock = path(u"lock"_s);
    const auto state = [&] { return SessionLock(lock, calls).state(); };
    // Without flock() there is that of fcntl(), without either a file.
    std::set<std::string> refused;
    calls.before = [&](const char *call) { return refused.contains(call) ? ENOLCK : 0; };
    for (const char *without : {"", "flock", "fcntl"}) {
        refused.insert(without);
        {
            const SessionLock first(lock, calls);
            EXPECT_EQ(first.state(), held) << without;
            EXPECT_EQ(state(), heldByOther) << without;
        }
        EXPECT_EQ(state(), held) << without;
    }
    EXPECT_EQ(names(), QStringList{u"lock"_s});

    QByteArrayList holder;
    {
        const SessionLock first(lock, calls);
        holder = read(u"lock.holder"_s).split('\n');
    }
    ASSERT_EQ(holder.size(), 6);
    enum { computer, boot, processes, process, start };
    for (const auto &[line, text, wanted] : std::to_array<std::tuple<int, QByteArray, SessionLock::State>>({
             {process, holder[process], heldByOther},
             {start, "1", held},
             {process, "4194305", held},
             {boot, "another", held},
             {computer, "another", heldByOther},
             {processes, "of a container", heldByOther},
         })) {
        QByteArrayList other = holder;
        other[line] = text;
        put(u"../lock.holder"_s, other.join('\n'));
        EXPECT_EQ(state(), wanted) << line << ' ' << text.constData();
    }
    // It was killed before it could write who it is, perhaps.
    QFile half(put(u"../lock.holder"_s, "half"));
    EXPECT_EQ(state(), heldByOther);
    ASSERT_TRUE(half.open(QIODevice::ReadWrite));
    ASSERT_TRUE(half.setFileTime(QDateTime::currentDateTime().addSecs(-90), QFileDevice::FileModificationTime));
    EXPECT_EQ(state(), held);
    refused.insert("open");
    EXPECT_EQ(state(), unavailable);

    // Whoever removes the file before it is locked leaves a lock of nothing.
    calls.before = [&, isFirst = true](const char *call) mutable {
        if (std::string(call) == "flock" && std::exchange(isFirst, false)) {
            QFile::remove(lock);
        }
        return 0;
    };
    const SessionLock first(lock, calls);
    EXPECT_EQ(first.state(), held);
    EXPECT_EQ(state(), heldByOther);
}

TEST_F(SessionStoreTest, WritesTheLatestTextOnceAndNothingThatIsThere)
{
    auto store = open();
    const auto text = document(u"1"_s, firstId);
    // The thread is busy with another text meanwhile.
    const auto other = document(u"other"_s);
    std::binary_semaphore hasBegun(0);
    std::binary_semaphore mayGoOn(0);
    calls.before = [&, isFirst = true](const char *) mutable {
        if (std::exchange(isFirst, false)) {
            hasBegun.release();
            mayGoOn.acquire();
        }
        return 0;
    };
    store->writeDraft(*other);
    hasBegun.acquire();
    store->writeDraft(*text);
    // What waits is overtaken, discarded, and comes anew.
    store->discardDraft(firstId);
    for (const auto &version : {u"2"_s, u"3"_s, u"4"_s}) {
        edit(*text, version);
        store->write(sessionOf(*store, {text.get(), other.get()}));
    }
    mayGoOn.release();
    expectWritten(*store);
    EXPECT_EQ(draftOf(firstId), "4");
    int renames = 0;
    calls.before = [&](const char *call) {
        renames += std::string(call) == "rename" ? 1 : 0;
        return 0;
    };
    std::ignore = sessionOf(*store, {text.get(), other.get()});
    expectWritten(*store);
    EXPECT_EQ(renames, 0) << "both are there";
    // Without the other one its draft goes.
    keep(*store, {text.get()});
    EXPECT_EQ(renames, 1);
    EXPECT_EQ(drafts(), QStringList{DraftFile::nameFor(firstId)});
    // Drafts that are not wanted are not touched.
    preferences.set(Settings::autosaveDrafts, false);
    EXPECT_FALSE(store->keepsUnsavedText());
    edit(*text, u"5"_s);
    EXPECT_EQ(store->writeDraft(*text), std::nullopt);
    expectWritten(*store);
    EXPECT_EQ(draftOf(firstId), "4");
    calls.before = nullptr;
}

TEST_F(SessionStoreTest, AFullDiskIsReportedOnceAndTriedAgain)
{
    auto store = open();
    std::vector<int> problems;
    store->onProblem([&](const SessionStore::Problem &problem) { problems.push_back(problem.error.code); });
    const auto text = document(u"old"_s, firstId);
    keep(*store, {text.get()});
    calls.before = [](const char *call) { return std::string(call) == "write" ? ENOSPC : 0; };
    edit(*text, u"new"_s);
    const auto other = document(u"other"_s, secondId);
    for (int tick = 0; tick < 3; ++tick) {
        keep(*store, {text.get(), other.get()});
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(problems, std::vector{ENOSPC});
    EXPECT_FALSE(store->keepsUnsavedText());
    EXPECT_EQ(draftOf(firstId), "old") << "better than none";
    calls.before = nullptr;
    keep(*store, {text.get(), other.get()});
    QCoreApplication::processEvents();
    EXPECT_TRUE(store->keepsUnsavedText());
    EXPECT_EQ(draftOf(firstId), "new");
    EXPECT_EQ(drafts().size(), 2);
    EXPECT_EQ(problems.size(), 1U);
}

TEST_F(SessionStoreTest, WhatOthersRemovedIsWrittenAgain)
{
    const auto text = document(u"typed"_s, firstId);
    const auto other = document(u"other"_s, secondId);
    {
        auto store = open();
        keep(*store, {text.get(), other.get()});
    }
    auto store = open();
    DocumentStore restored(services, {});
    std::vector<TextDocument *> back;
    for (const auto &[id, document] : restoreDocuments(store->read(), *store, restored)) {
        back.push_back(document.get());
    }
    keep(*store, back);
    for (const QString &gone : {draftName(firstId), u"session.json"_s, u"Drafts"_s, QString()}) {
        const QString path = QDir::cleanPath(root() + u'/' + gone);
        ASSERT_TRUE(QFileInfo(path).isDir() ? QDir(path).removeRecursively() : QFile::remove(path));
        keep(*store, back);
        EXPECT_EQ(draftOf(firstId), "typed") << gone.toStdString();
        EXPECT_EQ(drafts().size(), 2);
        EXPECT_TRUE(SessionSnapshot::fromJson(read(store->snapshotPath()))) << gone.toStdString();
    }
    // One that cannot be is not safe.
    ASSERT_TRUE(QDir(store->draftsDirectory()).removeRecursively());
    put(u"Drafts"_s, "in the way");
    EXPECT_TRUE(store->keepsUnsavedText());
    keep(*store, back);
    EXPECT_FALSE(store->keepsUnsavedText());
}

TEST_F(SessionStoreTest, ASnapshotThatCannotBeWrittenWhileDraftsCanIsTold)
{
    auto store = open();
    std::vector<SessionStore::Problem> problems;
    store->onProblem([&](const SessionStore::Problem &problem) { problems.push_back(problem); });
    const auto text = document(u"1"_s, firstId);
    keep(*store, {});
    ASSERT_TRUE(QFile::remove(store->snapshotPath()) && QDir().mkpath(store->snapshotPath() + u"/in the way"_s));
    for (int tick = 0; tick < 2; ++tick) {
        keep(*store, {text.get()});
    }
    QCoreApplication::processEvents();
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].kind, SessionStore::Problem::Kind::session);
    EXPECT_EQ(problems[0].path, store->snapshotPath());
    EXPECT_EQ(draftOf(firstId), "1");
    EXPECT_FALSE(store->keepsUnsavedText());
}

TEST_F(SessionStoreTest, FilesThatDoNotAnswerAreWaitedForInTheirTabs)
{
    put(u"slow.txt"_s, "first\r\nsecond\r\n");
    const QString file = root() + u"/slow.txt"_s;
    workers.isHeld = true;
    int failures = 0;
    const auto observer = notifications.observe(TextDocument::didFailToArrive, nullptr, [&] { ++failures; });
    constexpr auto utf8 = quint32(TextEncoding::utf8);
    const Snapshot snapshot{.documents = {{.id = firstId, .filePath = file, .encodingRawValue = utf8, .selection = {7, 3}},
                                          {.id = secondId, .filePath = root() + u"/gone.txt"_s, .encodingRawValue = utf8}}};
    auto store = open();
    const auto restored = restoreDocuments({.snapshot = snapshot}, *store, documents, 0ms);
    ASSERT_EQ(restored.size(), 2U);
    TextDocument &text = *restored.front().document;
    EXPECT_TRUE(text.arrival().isPending());
    EXPECT_FALSE(text.hasUnsavedText());
    // Nothing may come of the empty text that is there meanwhile.
    text.setLineEnding(LineEnding::cr);
    EXPECT_FALSE(saved(text, file));
    EXPECT_FALSE(text.isDirty());
    EXPECT_EQ(read(file), "first\r\nsecond\r\n");

    workers.finish();
    QCoreApplication::processEvents();
    EXPECT_FALSE(text.arrival().isPending());
    EXPECT_EQ(text.storage().string(), u"first\nsecond\n"_s);
    EXPECT_EQ(text.lineEnding(), LineEnding::crlf);
    EXPECT_FALSE(text.isDirty() || text.hasUnsavedText() || text.undoManager().canUndo());
    EXPECT_EQ(text.lastSelectedRange, (TextRange{7, 3}));
    EXPECT_EQ(documents.documentAt(file).get(), &text);
    EXPECT_EQ(failures, 1);
    EXPECT_TRUE(restored.back().document->arrival().failure().error);
    settle();
    workers.isHeld = false;
    EXPECT_TRUE(saved(text, file));
}

TEST_F(SessionStoreTest, AShareThatIsGoneLeavesOtherFilesTheirTime)
{
    /// The first job is of a disk that does not answer, the others are of one that does not at once.
    struct Disks final : Workers {
        std::function<void()> hanging;
        std::atomic_bool isReady = false;
        DetachedWorkers healthy;

        void run(std::function<void()> job) override
        {
            if (!hanging) {
                hanging = std::move(job);
                return;
            }
            healthy.run([this, job = std::move(job)] {
                isReady.wait(false);
                job();
            });
        }
    };
    const QString gone = path(u"share/a.txt"_s);
    putRescued(u"1"_s, gone, "whole");
    const QString large = put(u"b.txt"_s, QByteArray("text\n").repeated(200'000));
    constexpr auto utf8 = quint32(TextEncoding::utf8);
    const Snapshot snapshot{.documents = {{.id = firstId, .filePath = gone, .encodingRawValue = utf8},
                                          {.id = secondId, .filePath = large, .encodingRawValue = utf8}}};
    auto store = open();
    SessionStore::Saved saved = store->read();
    saved.snapshot = snapshot;
    Disks disks;
    DocumentStore restored({.scheduler = scheduler,
                            .notifications = notifications,
                            .preferences = preferences,
                            .workers = disks,
                            .watchers = watchers,
                            .discardDraft = {}},
                           {});
    // The first is there, and the second is waited for.
    const auto observer = notifications.observe(DocumentStore::didChange, &restored, [&disks] {
        disks.isReady = true;
        disks.isReady.notify_all();
    });
    const auto all = restoreDocuments(saved, *store, restored, 1s);
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all.front().document->storage().string(), u"whole"_s);
    EXPECT_FALSE(all.back().document->arrival().isPending());
}

TEST_F(SessionStoreTest, NobodyWaitsForAFileThatWasBeingWritten)
{
    putRescued(u"1"_s, put(u"a.txt"_s, "whole"), "whole");
    workers.isHeld = true;
    auto store = open();
    const auto restored = restoreDocuments(store->read(), *store, documents, 0ms);
    ASSERT_EQ(restored.size(), 1U) << "what is on a share that is gone nobody knows";
    EXPECT_TRUE(restored.front().document->hasUnsavedText());
    EXPECT_EQ(restored.front().document->storage().string(), u"whole"_s);
    workers.finish();
}
