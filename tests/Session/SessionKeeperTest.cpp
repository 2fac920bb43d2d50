// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/SessionKeeper.h"

#include "FileAnswers.h"
#include "Highlighting/LanguageRegistry.h"
#include "Session/SessionFixture.h"

#include <filesystem>
#include <semaphore>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

using Documents = std::vector<std::shared_ptr<TextDocument>>;

struct Windows final : SessionWindows {
    std::vector<WindowLayout> shown;
    size_t frontmost = 0;

    void rememberPlaces() override {}
    [[nodiscard]] std::vector<WindowLayout> layouts() const override { return shown; }
    [[nodiscard]] size_t frontmostLayout() const override { return frontmost; }
    void showBehind(TextDocument & /*document*/) override {}
};

class SessionKeeperTest : public SessionFixture {
protected:
    SessionKeeperTest() { keeper.setWindows(&windows); }

    std::shared_ptr<TextDocument> add(const QString &text, const QString &path = {})
    {
        return documents.add(document(text, QUuid::createUuid(), path)).shared_from_this();
    }
    std::shared_ptr<TextDocument> addFile(const QString &name, const QString &text) { return add(text, put(name, text.toUtf8())); }
    [[nodiscard]] static QList<QUuid> ids(const Documents &all)
    {
        QList<QUuid> ids;
        std::ranges::transform(all, std::back_inserter(ids), &TextDocument::id);
        return ids;
    }
    void showInWindow(const Documents &tabs) { windows.shown.push_back({.panes = PaneLayout().addingPane(tabs, 0)}); }
    /// As it is on disk.
    SessionSnapshot kept()
    {
        expectWritten(*store);
        return SessionSnapshot::fromJson(read(store->snapshotPath())).value_or(SessionSnapshot());
    }
    [[nodiscard]] QByteArray draftOf(const TextDocument &document) const
    {
        expectWritten(*store);
        return SessionFixture::draftOf(document.id());
    }

    /// Another start of the program, without a window, which is killed when this goes.
    struct Start {
        Start(SessionKeeperTest &test, SessionStore::Role role)
            : store({test.root(), test.path({}), role}, test.preferences, test.calls), documents(test.servicesOf(store), {}),
              keeper(test.scheduler, test.notifications, test.preferences, documents, store)
        {}

        SessionStore store;
        DocumentStore documents;
        SessionKeeper keeper;
    };
    [[nodiscard]] DocumentServices servicesOf(SessionStore &ofStart) const
    {
        DocumentServices result = services;
        result.discardDraft = [&ofStart](const QUuid &id) { ofStart.discardDraft(id); };
        return result;
    }

    std::unique_ptr<SessionStore> store = open();
    Windows windows;
    /// Goes before a store that is closed while time goes on.
    std::unique_ptr<SessionKeeper> owned = std::make_unique<SessionKeeper>(scheduler, notifications, preferences, documents, *store);
    SessionKeeper &keeper = *owned;
};

} // namespace

TEST_F(SessionKeeperTest, WhatWasTypedComesBackAsItWas)
{
    const auto text = add({});
    edit(*text, u"\uFEFFä\u2028\r\U0001F600\n\xD800 end"_s);
    text->setEncoding(TextEncoding::windows1252);
    text->setLineEnding(LineEnding::cr);
    text->setLanguage(*LanguageRegistry::withID(u"python"_s));
    text->languageWasChosenManually = true;
    text->lastSelectedRange = {3, 2};
    const auto file = addFile(u"a.txt"_s, u"in the file"_s);
    edit(*file, u"changed"_s);
    file->lastScrollOffset = 7;
    const auto empty = add({});
    edit(*empty, u"x"_s);
    edit(*empty, {});
    const auto clean = addFile(u"b.txt"_s, u"b"_s);
    clean->lastSelectedRange = {1, 500};
    const auto keys = documents.add(TextDocument::generated(services, u"Keys"_s, u"text"_s, Language::plainText())).shared_from_this();
    const auto other = add(u"of another window"_s);
    const WindowLayout window{
        .panes = PaneLayout().turned(Qt::Vertical).addingPane({keys, text, file}, 2).addingPane({file, empty, clean}, 0).activating(1),
        .frame = WindowFrame{1, 2, 300, 400}};
    windows.shown = {window};
    keeper.performAutosave();
    expectWritten(*store);
    EXPECT_EQ(drafts().size(), 3);
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeGroup | QFile::ExeOther;
    for (const QString &name : {root(), root() + u"/Drafts"_s, root() + u"/session.json"_s, root() + u"/Drafts/"_s + drafts().front()}) {
        EXPECT_FALSE(QFileInfo(name).permissions() & others) << name.toStdString();
    }

    owned.reset();
    store.reset();
    store = open();
    DocumentStore restored(services, {});
    SessionKeeper next(scheduler, notifications, preferences, restored, *store);
    const std::optional<WindowLayout> back = next.restore();
    ASSERT_TRUE(back && back->panes.paneCount() == 2);
    const std::vector<PaneLayout::Pane> &panes = back->panes.panes();
    EXPECT_EQ(ids(panes[0].tabs), ids({text, file}));
    EXPECT_EQ(ids(panes[1].tabs), ids({file, clean, other})) << "its window does not come back, its text does";
    EXPECT_EQ(panes[0].selected, 1);
    EXPECT_EQ(back->panes.activeIndex(), 1);
    EXPECT_EQ(back->panes.orientation(), Qt::Vertical);
    EXPECT_EQ(back->frame, window.frame);
    const TextDocument &first = *panes[0].tabs[0];
    EXPECT_EQ(first.storage().string(), u"\uFEFFä\u2028\r\U0001F600\n\uFFFD end"_s);
    EXPECT_EQ(first.encoding(), TextEncoding::windows1252);
    EXPECT_EQ(first.lineEnding(), LineEnding::cr);
    EXPECT_EQ(first.language().id(), u"python"_s);
    EXPECT_TRUE(first.languageWasChosenManually);
    EXPECT_EQ(first.lastSelectedRange, (TextRange{3, 2}));
    EXPECT_EQ(panes[1].tabs[1]->lastSelectedRange, TextRange()) << "beyond the text";
    TextDocument &second = *panes[0].tabs[1];
    EXPECT_EQ(second.path(), file->path());
    EXPECT_EQ(second.storage().string(), u"changed"_s);
    EXPECT_EQ(second.lastScrollOffset, 7);
    // It counts as clean, but until it is saved it is kept.
    EXPECT_FALSE(second.isDirty());
    EXPECT_TRUE(second.hasUnsavedText());
    EXPECT_EQ(store->writeDraft(second), DraftFile::nameFor(second.id()));
    ASSERT_TRUE(saved(second, second.path()));
    EXPECT_EQ(store->writeDraft(second), std::nullopt);
    expectWritten(*store);
    EXPECT_EQ(drafts().size(), 2);
}

TEST_F(SessionKeeperTest, WhatOthersDidToAFileIsKnownAfterTheNextStart)
{
    using State = TextDocument::ExternalState;
    const std::pair<const char *, State> cases[] = {{"untouched", State::none},
                                                    {"written with the same bytes", State::none},
                                                    {"replaced by an older file", State::conflicted},
                                                    {"written, shown and not saved over", State::conflicted},
                                                    {"gone", State::deleted},
                                                    {"never there", State::none}};
    Documents all;
    for (const auto &[what, state] : cases) {
        const QString name = QString::fromUtf8(what);
        all.push_back(all.size() < 5 ? addFile(name, u"theirs"_s) : add({}, path(name)));
        edit(*all.back(), u"mine"_s);
    }
    showInWindow(all);
    put(QString::fromUtf8(cases[3].first), "more");
    EXPECT_FALSE(saved(*all[3], all[3]->path()));
    keeper.performAutosave();
    expectWritten(*store);
    put(QString::fromUtf8(cases[1].first), "theirs");
    put(QString::fromUtf8(cases[2].first), "before");
    std::filesystem::last_write_time(all[2]->path().toStdString(), std::filesystem::file_time_type() - 9999h);
    QFile::remove(all[4]->path());

    owned.reset();
    store.reset();
    store = open();
    DocumentStore restored(services, {});
    SessionKeeper next(scheduler, notifications, preferences, restored, *store);
    const std::optional<WindowLayout> back = next.restore();
    settle();
    ASSERT_EQ(restored.documents().size(), std::size(cases));
    for (size_t index = 0; index < std::size(cases); ++index) {
        TextDocument &document = *restored.documents()[index];
        EXPECT_EQ(document.externalState(), cases[index].second) << cases[index].first;
        EXPECT_TRUE(document.isDirty() || document.hasUnsavedText()) << cases[index].first;
        EXPECT_TRUE(saved(document, document.path())) << "the user knows: " << cases[index].first;
    }
}

TEST_F(SessionKeeperTest, AFileThatWasBeingWrittenInPlaceComesBackWhole)
{
    const QString target = QFileInfo(put(u"a.txt"_s, "theirs")).canonicalFilePath();
    ASSERT_TRUE(QFile::link(target, path(u"link.txt"_s)));
    const auto file = add(u"theirs"_s, path(u"link.txt"_s));
    const QString other = put(u"b.txt"_s, "written to its end");
    const auto edited = addFile(u"c.txt"_s, u"theirs"_s);
    edit(*edited, u"mine"_s);
    showInWindow({file, edited});
    keeper.performAutosave();
    expectWritten(*store);
    putRescued(u"1"_s, target, "the whole text");
    putRescued(u"2"_s, other, "written to its end");
    putRescued(u"3"_s, path(u"gone.txt"_s), "of a file that is gone");
    putRescued(u"4"_s, edited->path(), "mine");
    put(u"a.txt"_s, "the wh");
    put(u"c.txt"_s, "mi");
    owned.reset();
    store.reset();
    for (const bool isKept : {false, true}) {
        Start start(*this, SessionStore::Role::owner);
        std::ignore = start.keeper.restore();
        settle(100ms);
        QStringList texts;
        for (const auto &document : start.documents.documents()) {
            texts << QFileInfo(document->path()).fileName() + u": "_s + document->storage().string();
            EXPECT_TRUE(document->hasUnsavedText());
            EXPECT_TRUE(isKept || document->externalState() != TextDocument::ExternalState::none) << "the banner asks";
        }
        EXPECT_EQ(texts, (QStringList{u"link.txt: the whole text"_s, u"c.txt: mine"_s, u"gone.txt: of a file that is gone"_s}));
        expectWritten(start.store);
        Windows shown;
        shown.shown.push_back({.panes = PaneLayout().addingPane(start.documents.documents(), 0)});
        if (isKept) {
            start.keeper.setWindows(&shown);
            start.keeper.keep();
            expectWritten(start.store);
            EXPECT_EQ(names(u"Quillet/Rescue"_s), QStringList());
            EXPECT_EQ(drafts().size(), 3);
            start.keeper.setWindows(nullptr);
        }
    }
}

TEST_F(SessionKeeperTest, AFileThatWasBeingWrittenInPlaceOpensWithItsText)
{
    const QString file = QFileInfo(put(u"a.txt"_s, "the wh")).canonicalFilePath();
    ASSERT_TRUE(QFile::link(file, path(u"link.txt"_s)) && QFile::link(root(), path(u"folder"_s)));
    putRescued(u"1"_s, path(u"other.txt"_s), "of another file");
    preferences.set(Settings::restoreSession, false);
    owned.reset();
    store.reset();
    // However it is reached, whoever opens it, and however often the program is killed before it is saved.
    using Role = SessionStore::Role;
    const std::pair<QString, Role> starts[] = {{file, Role::owner},
                                               {file, Role::owner},
                                               {path(u"link.txt"_s), Role::owner},
                                               {path(u"folder/a.txt"_s), Role::owner},
                                               {file, Role::guest}};
    for (const auto &[opened, role] : starts) {
        Start start(*this, role);
        std::ignore = start.store.read();
        // Perhaps by a program beside it.
        putRescued(u"2"_s, file, "the whole text");
        start.keeper.bringBack(opened);
        start.keeper.bringBack(opened);
        ASSERT_EQ(start.documents.documents().size(), 1U) << opened.toStdString();
        EXPECT_EQ(start.documents.documentAt(opened)->storage().string(), u"the whole text"_s);
        EXPECT_TRUE(start.documents.documentAt(opened)->hasUnsavedText());
        start.keeper.performAutosave();
        expectWritten(start.store);
        EXPECT_EQ(names(u"Quillet/Rescue"_s).size(), 4);
    }
}

TEST_F(SessionKeeperTest, ATextOfAFileThatWasBeingWrittenGoesWhenTheFileIsWholeOrNobodyWantsIt)
{
    const QString file = QFileInfo(put(u"a.txt"_s, "the wh")).canonicalFilePath();
    putRescued(u"1"_s, path(u"other.txt"_s), "of another file");
    preferences.set(Settings::restoreSession, false);
    owned.reset();
    store.reset();
    for (const bool isSaved : {true, false}) {
        putRescued(u"2"_s, file, "the whole text");
        Start start(*this, SessionStore::Role::owner);
        start.keeper.bringBack(file);
        const auto document = start.documents.documentAt(file);
        ASSERT_TRUE(document);
        settle();
        if (isSaved) {
            workers.isHeld = true;
            document->save(file, {});
            edit(*document, u"typed meanwhile"_s);
            workers.finish();
            workers.isHeld = false;
            settle();
            EXPECT_EQ(read(file), "the whole text");
            EXPECT_TRUE(document->isDirty());
        } else {
            start.documents.remove(*document);
        }
        expectWritten(start.store);
        EXPECT_EQ(names(u"Quillet/Rescue"_s).size(), 2) << isSaved;
        put(u"a.txt"_s, "the wh");
    }
}

TEST_F(SessionKeeperTest, WhatWasBeingWrittenStaysUntilItsDraftIsThere)
{
    const QString file = put(u"a.txt"_s, "the wh");
    putRescued(u"1"_s, file, "the whole text");
    calls.before = [](const char *call) { return std::string(call) == "write" ? ENOSPC : 0; };
    keeper.bringBack(file);
    expectWritten(*store);
    EXPECT_EQ(names(u"Quillet/Rescue"_s).size(), 2);
    calls.before = nullptr;
}

TEST_F(SessionKeeperTest, ADiskThatDoesNotAnswerKeepsNothing)
{
    const auto text = add(u"1"_s);
    showInWindow({text});
    std::counting_semaphore<1000> mayGoOn(0);
    calls.before = [&](const char *call) {
        if (std::string(call) == "write") {
            mayGoOn.acquire();
        }
        return 0;
    };
    EXPECT_EQ(keeper.keepAndWait(1ms), SessionKeeper::Kept::notAll);
    mayGoOn.release(1000);
    EXPECT_EQ(keeper.keepAndWait(1min), SessionKeeper::Kept::all);
    expectWritten(*store); // the thread is still at the semaphore
}

TEST_F(SessionKeeperTest, NonsenseInASnapshotLosesNoText)
{
    const Documents all = {add(u"a"_s), add(u"b"_s), add(u"c"_s)};
    const QUuid unknown = QUuid::createUuid();
    const QUuid a = all[0]->id();
    const QUuid b = all[1]->id();
    // One text has lost its entry: nothing names it.
    const std::vector<RestoredDocument> restored = {{a, all[0]}, {b, all[1]}, {{}, all[2]}};
    struct Case {
        const char *what;
        QList<SessionSnapshot::Pane> panes;
        qint64 focused;
        std::vector<std::pair<Documents, int>> wanted;
        int active;
    };
    for (const auto &[what, panes, focused, wanted, active] : std::to_array<Case>({
             {"no panes", {}, 3, {{all, 0}}, 0},
             {"unknown and doubled tabs", {{{unknown, b, QUuid(), a, b}, 3}}, 0, {{{all[1], all[0], all[2]}, 1}}, 0},
             {"an empty pane in front", {{{unknown}, 0}, {{a}, 0}, {{b}, 0}}, 0, {{{all[0], all[2]}, 0}, {{all[1]}, 0}}, 0},
             {"the pane behind it is active", {{{unknown}, 0}, {{a}, 0}, {{a, b}, 1}}, 2, {{{all[0]}, 0}, {all, 1}}, 1},
             {"indexes beyond everything", {{{a, b}, 9}}, -1, {{all, 0}}, 0},
         })) {
        const WindowLayout window = layoutOf({.panes = panes, .focusedPaneIndex = focused, .windowFrame = u"?"_s}, restored);
        std::vector<std::pair<Documents, int>> shown;
        for (const PaneLayout::Pane &pane : window.panes.panes()) {
            shown.emplace_back(pane.tabs, pane.selected);
        }
        EXPECT_EQ(shown, wanted) << what;
        EXPECT_EQ(window.panes.activeIndex(), active) << what;
        EXPECT_FALSE(window.frame) << what;
    }
    EXPECT_TRUE(layoutOf({}, {}).panes.isEmpty());
}

TEST_F(SessionKeeperTest, TheSessionIsThatOfOneWindow)
{
    const auto file = addFile(u"a.txt"_s, u"a"_s);
    const auto unsaved = add(u"typed"_s);
    const auto other = addFile(u"b.txt"_s, u"b"_s);
    showInWindow({file, unsaved});
    showInWindow({other});
    const auto tabs = [this] { return kept().panes.value(0).documentIDs; };
    keeper.performAutosave();
    EXPECT_EQ(tabs(), ids({file, unsaved}));
    windows.frontmost = 1;
    keeper.performAutosave();
    EXPECT_EQ(tabs(), ids({other}));
    EXPECT_EQ(kept().documents.size(), 2) << "the text of the other window is kept as well";
    EXPECT_EQ(draftOf(*unsaved), "typed");
    // The one that is left is the session, although nothing happened in it.
    windows.shown.pop_back();
    windows.frontmost = 0;
    keeper.keep();
    EXPECT_EQ(tabs(), ids({file, unsaved}));
    // At the end it is that of the last one.
    showInWindow({other});
    EXPECT_EQ(keeper.keepAndWait(1min), SessionKeeper::Kept::all);
    EXPECT_EQ(tabs(), ids({other}));
    preferences.set(Settings::autosaveDrafts, false);
    EXPECT_EQ(keeper.keepAndWait(1min), SessionKeeper::Kept::notAll) << "a text would be lost";
    // Without a window the session stays as it was.
    windows.shown.clear();
    keeper.performAutosave();
    EXPECT_EQ(keeper.keepAndWait(1min), SessionKeeper::Kept::all);
    EXPECT_EQ(tabs(), ids({other}));
}

TEST_F(SessionKeeperTest, WritesAtItsTicksAfterAPauseAndNothingWhenIdle)
{
    const auto text = add(u"1"_s);
    showInWindow({text});
    const auto expectKept = [&](const QByteArray &wanted, Scheduler::Milliseconds passed) {
        scheduler.advance(passed);
        EXPECT_EQ(draftOf(*text), wanted) << passed.count();
    };
    expectKept("unreadable", 2999ms);
    expectKept("1", 1ms);
    edit(*text, u"2"_s);
    keeper.noteActivity();
    scheduler.advance(900ms);
    keeper.noteActivity();
    expectKept("1", 999ms);
    expectKept("2", 1ms);
    // But that it looks whether all is there.
    QStringList idle;
    calls.before = [&idle](const char *call) {
        idle << QString::fromLatin1(call);
        return 0;
    };
    scheduler.advance(10s);
    expectWritten(*store);
    EXPECT_EQ(idle.count(u"lstat"_s) + idle.count(u"access"_s), idle.size());
    calls.before = nullptr;
    // However the interval is set, it is half a second at least.
    for (const double absurd : {1e300, -1.0, 0.1}) {
        defaults.set("session.autosaveInterval"_L1, absurd);
        preferences.set(Settings::showInvisibles, absurd > 0);
    }
    edit(*text, u"3"_s);
    expectKept("2", 499ms);
    expectKept("3", 1ms);
    // Without a session there still are drafts.
    preferences.set(Settings::restoreSession, false);
    const SessionSnapshot before = kept();
    showInWindow({add({})});
    windows.frontmost = 1;
    edit(*text, u"4"_s);
    expectKept("4", 500ms);
    keeper.keep();
    EXPECT_EQ(kept(), before);
}

TEST_F(SessionKeeperTest, SavesToTheFilesThemselvesWhenThatIsWanted)
{
    const auto saved = addFile(u"a.txt"_s, u"a"_s);
    const auto failing = addFile(u"gone/b.txt"_s, u"b"_s);
    const auto untitled = add({});
    preferences.set(Settings::autosaveToDisk, true);
    for (const auto &each : {saved, failing, untitled}) {
        edit(*each, u"typed"_s);
    }
    ASSERT_TRUE(QFile::remove(failing->path()) && QDir(root()).rmdir(u"gone"_s));
    keeper.performAutosave();
    EXPECT_EQ(read(saved->path()), "typed");
    EXPECT_FALSE(saved->hasUnsavedText());
    edit(*saved, u"typed on"_s);
    put(u"a.txt"_s, "by others");
    settle();
    keeper.performAutosave();
    EXPECT_EQ(read(saved->path()), "by others") << "it is for the user to say";
    EXPECT_EQ(draftOf(*failing), "typed");
    EXPECT_EQ(draftOf(*untitled), "typed");
    EXPECT_EQ(draftOf(*saved), "typed on");
    EXPECT_EQ(drafts().size(), 3);
}
