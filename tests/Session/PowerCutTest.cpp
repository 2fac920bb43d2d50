// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// The power goes after any call that the store makes, and the disk may have kept any of what it was not told to flush. What comes back then
// is what was typed, at least as far as it was said to be written.
#include "Base/AtomicFile.h"
#include "FileAnswers.h"
#include "Session/DiskModel.h"
#include "Session/SessionFixture.h"
#include "Session/SessionRestoration.h"
#include "Text/RandomText.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;
using Snapshot = SessionStore::Snapshot;

namespace {

const QUuid oddId(u"{1b4e28ba-2fa1-11d2-883f-0016d3cca427}"_s);
const QString oddName = u"odd name.draft"_s;

/// Of documents; the texts that each one had are counted from 0.
using Versions = std::map<QUuid, qsizetype>;

struct HandedOver {
    Snapshot snapshot;
    /// What the drafts that it names have at least.
    Versions drafts;
};

/// What holds after a call, until the next one of these.
struct Expectation {
    size_t callCount = 0;
    qsizetype snapshotCount = 0;
    /// The latest snapshot that is on disk for certain.
    std::optional<qsizetype> certainSnapshot;
    /// What comes back for certain.
    Versions certainTexts;
    /// For a text that was not wanted any more, or was safe in its file: how many snapshots there were then.
    std::map<QUuid, qsizetype> discards;
    /// Of what may come back.
    std::set<QUuid> ids;
};

/// What a program found.
struct Found {
    std::optional<Snapshot> snapshot;
    bool isSetAside = false;
    std::vector<std::pair<QUuid, QString>> texts;
};

class PowerCutTest : public testing::TestWithParam<quint32>, protected DocumentSurroundings {
protected:
    PowerCutTest() : DocumentSurroundings(calls) {}
    [[nodiscard]] QString disk() const { return folder.filePath(u"disk"_s); }
    [[nodiscard]] QString root() const { return disk() + u"/data/Quillet"_s; }
    [[nodiscard]] std::unique_ptr<SessionStore> open(FileCalls &fileCalls) const
    {
        return std::make_unique<SessionStore>(SessionStore::Places{root(), folder.path()}, preferences, fileCalls);
    }

    // The history

    /// Half of the histories begin with a draft whose name is not its document's.
    void prepare()
    {
        ASSERT_TRUE(QDir().mkpath(disk() + u"/files"_s));
        if (GetParam() % 2 == 0) {
            return;
        }
        makePrivateFolder(root() + u"/Drafts"_s, calls);
        typed[oddId] << u"odd"_s;
        ASSERT_TRUE(DraftFile::write(Rope(u"odd"_s), root() + u"/Drafts/"_s + oddName, calls));
        const Snapshot snapshot{.documents = {{.id = oddId, .draftFilename = oddName, .encodingRawValue = quint32(TextEncoding::utf8)}},
                                .windowFrame = WindowFrame{0, 0, 1, 1}.toString()};
        ASSERT_TRUE(writeAtomically(root() + u"/session.json"_s, snapshot.toJson(), AtomicFile::NewFile::privateToUser, calls));
        snapshots.push_back({snapshot, {{oddId, 0}}});
        expectation.snapshotCount = 1;
        expectation.certainSnapshot = 0;
        expectation.certainTexts[oddId] = 0;
    }
    void start()
    {
        store = open(calls);
        documents = std::make_unique<DocumentStore>(services, DocumentStore::AppearanceQuery());
        const auto restored = restoreDocuments(store->read(), *store, *documents);
        for (const auto &[id, document] : restored) {
            expectation.ids.insert(document->id());
            noteVersion(*document);
        }
        note();
    }
    void step()
    {
        const auto &open = documents->documents();
        TextDocument *any = open.empty() ? nullptr : open[size_t(random.below(qsizetype(open.size())))].get();
        const auto close = [&] {
            expectation.certainTexts.erase(any->id());
            note();
            documents->remove(*any);
        };
        const qsizetype choice = any ? random.below(20) : 0;
        if (choice < 3) {
            auto document = std::make_unique<TextDocument>(services, QString(), TextFile::Contents{});
            edit(*document);
            expectation.ids.insert(document->id());
            documents->add(std::move(document));
            note();
        } else if (choice < 9) {
            edit(*any);
        } else if (choice < 14) {
            writeSnapshot();
        } else if (choice < 15) {
            edit(*any);
            handOver(*any);
        } else if (choice < 17) {
            save(*any);
        } else if (choice < 18) {
            const QUuid id = any->id();
            close();
            discard(id);
        } else if (choice < 19) {
            // Without a word: the next snapshot just does not have it.
            close();
        } else {
            waitUntilWritten();
            store.reset();
            start();
        }
        calls.letPass(int(random.below(16)), [&] { return store->waitUntilWritten(1ms); });
        if (random.oneIn(6)) {
            waitUntilWritten();
        }
    }
    void handOver(TextDocument &document)
    {
        if (document.hasUnsavedText()) {
            noteVersion(document);
            drafted.insert(document.id());
        }
        store->writeDraft(document);
    }
    void writeSnapshot()
    {
        // What else there was is pruned.
        drafted.clear();
        std::vector<TextDocument *> all;
        for (const auto &document : documents->documents()) {
            handOver(*document);
            all.push_back(document.get());
        }
        HandedOver next{.snapshot = sessionOf(*store, all), .drafts = {}};
        next.snapshot.windowFrame = WindowFrame{int(snapshots.size()), 0, 1, 1}.toString();
        for (const Snapshot::Document &entry : next.snapshot.documents) {
            if (entry.draftFilename) {
                next.drafts[entry.id] = typed[entry.id].size() - 1;
            }
        }
        snapshots.push_back(next);
        expectation.snapshotCount = qsizetype(snapshots.size());
        note();
        store->write(next.snapshot);
    }
    /// From now on it is all there.
    void waitUntilWritten()
    {
        calls.letAllPass(true);
        ASSERT_TRUE(store->waitUntilWritten(1min));
        calls.letAllPass(false);
        expectation.ids.clear();
        if (!snapshots.empty()) {
            expectation.certainSnapshot = snapshots.size() - 1;
            for (const Snapshot::Document &entry : snapshots.back().snapshot.documents) {
                expectation.ids.insert(entry.id);
            }
        }
        expectation.ids.insert(drafted.begin(), drafted.end());
        expectation.certainTexts.clear();
        for (const auto &document : documents->documents()) {
            expectation.ids.insert(document->id());
            if (drafted.contains(document->id()) || isCertain(*document)) {
                expectation.certainTexts[document->id()] = typed[document->id()].size() - 1;
            }
        }
        note();
    }
    /// Its file is in the snapshot that is on disk for certain.
    [[nodiscard]] bool isCertain(const TextDocument &document) const
    {
        const auto isOfFile = [&](const Snapshot::Document &entry) {
            return entry.id == document.id() && entry.filePath == document.path();
        };
        return expectation.certainSnapshot &&
               std::ranges::any_of(snapshots[size_t(*expectation.certainSnapshot)].snapshot.documents, isOfFile);
    }
    void discard(const QUuid &id)
    {
        drafted.erase(id);
        expectation.discards[id] = expectation.snapshotCount;
        note();
        store->discardDraft(id);
    }
    void save(TextDocument &document)
    {
        const QString path = document.isUntitled() ? disk() + u"/files/%1.txt"_s.arg(++lastFile) : document.path();
        auto result = saved(document, path);
        if (!result && result.error().code == AtomicFile::changedError) {
            // Saved after the snapshot from which it came back.
            result = saved(document, path);
        }
        ASSERT_TRUE(result) << result.error().message.toStdString();
        noteVersion(document);
        if (!isCertain(document)) {
            // No snapshot knows of the file yet.
            expectation.certainTexts.erase(document.id());
        }
        discard(document.id());
    }
    void note()
    {
        expectation.callCount = calls.count();
        expectations.push_back(expectation);
    }
    qsizetype noteVersion(const TextDocument &document)
    {
        QStringList &versions = typed[document.id()];
        if (const QString text = document.storage().string(); versions.isEmpty() || versions.last() != text) {
            versions << text;
        }
        return versions.size() - 1;
    }
    void edit(TextDocument &document)
    {
        const QString text = u"%1 %2\n"_s.arg(++lastText).arg(QString(random.below(60), u'ä'));
        document.storage().apply({{0, document.storage().length() / 2}, text});
    }

    // The cuts

    [[nodiscard]] Found find(const DiskModel::Tree &tree)
    {
        QDir(disk()).removeRecursively();
        QDir().mkpath(disk());
        for (const auto &[path, content] : tree) {
            const QString name = QFile::decodeName(path);
            if (!content) {
                QDir().mkdir(name);
                continue;
            }
            QFile file(name);
            EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(*content) == content->size());
        }
        Found found;
        const auto next = open(FileCalls::system());
        next->onSetAside([&found](const QString &) { found.isSetAside = true; });
        const auto saved = next->read();
        found.snapshot = saved.snapshot;
        DocumentStore restored(
            {scheduler, notifications, preferences, workers, watchers, [&next](const QUuid &id) { next->discardDraft(id); }}, {});
        for (const auto &[id, document] : restoreDocuments(saved, *next, restored)) {
            // Until the draft under the old name goes, its text may come back twice, as two documents.
            const QString text = document->storage().string();
            const bool isOdd = !typed.contains(document->id()) && typed[oddId].contains(text);
            found.texts.emplace_back(isOdd ? oddId : document->id(), text);
        }
        return found;
    }
    void check(const Expectation &expected, const Found &found) const
    {
        EXPECT_FALSE(found.isSetAside) << "a snapshot that cannot be read";
        for (const auto &[id, text] : found.texts) {
            EXPECT_TRUE(expected.ids.contains(id)) << "gone for certain: " << text.toStdString();
            EXPECT_TRUE(typed.contains(id) && typed.at(id).contains(text)) << "was never typed: " << text.toStdString();
        }
        const auto expectAtLeast = [&](const QUuid &id, qsizetype version, const char *what) {
            qsizetype latest = -1;
            for (const auto &[foundId, text] : found.texts) {
                latest = std::max(latest, foundId == id ? typed.at(id).lastIndexOf(text) : -1);
            }
            EXPECT_GE(latest, version) << what << ": lost " << typed.at(id).at(version).toStdString();
        };
        for (const auto &[id, version] : expected.certainTexts) {
            expectAtLeast(id, version, "a text that was written");
        }
        EXPECT_TRUE(found.snapshot || !expected.certainSnapshot) << "no snapshot";
        if (!found.snapshot) {
            return;
        }
        const auto index = WindowFrame::fromString(found.snapshot->windowFrame.value_or(QString())).value_or(WindowFrame{-1}).x;
        ASSERT_GE(index, expected.certainSnapshot.value_or(0)) << "an old snapshot";
        ASSERT_LT(index, expected.snapshotCount);
        Snapshot handedOver = snapshots[size_t(index)].snapshot;
        handedOver.savedAt = found.snapshot->savedAt;
        EXPECT_EQ(handedOver, *found.snapshot);
        for (const auto &[id, version] : snapshots[size_t(index)].drafts) {
            if (const auto discarded = expected.discards.find(id); discarded == expected.discards.end() || discarded->second <= index) {
                expectAtLeast(id, version, "a draft that the snapshot names");
            }
        }
    }

    // In memory where there is such a folder.
    QTemporaryDir folder{(QDir(u"/dev/shm"_s).exists() ? u"/dev/shm"_s : QDir::tempPath()) + u"/quillet-cut-XXXXXX"_s};
    Random random{GetParam()};

    RecordingCalls calls;
    std::unique_ptr<SessionStore> store;
    std::unique_ptr<DocumentStore> documents;
    int lastText = 0;
    int lastFile = 0;
    std::map<QUuid, QStringList> typed;
    std::set<QUuid> drafted;
    std::vector<HandedOver> snapshots;
    Expectation expectation;
    std::vector<Expectation> expectations;
};

TEST_P(PowerCutTest, LosesNothing)
{
    ASSERT_NO_FATAL_FAILURE(prepare());
    const size_t firstCut = calls.count();
    start();
    for (int count = 0; count < 150 && !HasFatalFailure(); ++count) {
        step();
    }
    waitUntilWritten();
    store.reset();

    int variants = 0;
    DiskModel model(QFile::encodeName(disk()), {QFile::encodeName(disk() + u"/files"_s)});
    std::mt19937 choices(GetParam());
    auto next = expectations.begin();
    for (size_t cut = 0; cut <= calls.calls().size() && !HasFailure(); ++cut) {
        if (cut > 0) {
            model.apply(calls.calls()[cut - 1]);
        }
        // What was true before, and what became so until the next call.
        const auto first = next == expectations.begin() ? next : next - 1;
        next = std::find_if(next, expectations.end(), [&](const Expectation &each) { return each.callCount > cut; });
        if (cut < firstCut) {
            continue;
        }
        model.forEachTree(choices, [&](const DiskModel::Tree &tree) {
            ++variants;
            const Found found = find(tree);
            for (auto expected = first; expected != next && !HasFailure(); ++expected) {
                SCOPED_TRACE("after call " + std::to_string(cut) + ", variant " + std::to_string(variants));
                check(*expected, found);
            }
        });
        QCoreApplication::processEvents();
    }
    RecordProperty("cuts", int(calls.calls().size() - firstCut + 1));
    RecordProperty("variants", variants);
    EXPECT_GT(variants, 500);
}

INSTANTIATE_TEST_SUITE_P(Histories, PowerCutTest, testing::Range(1U, 9U));

} // namespace
