// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/SessionRestoration.h"

#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentStore.h"
#include "Session/DraftFile.h"

#include <QDir>

#include <algorithm>
#include <set>

namespace {

/// Gives each of `rescued` the one of `paths` that leads to its file as its target, where one is known to until `deadline`.
void nameByPaths(std::vector<RescuedFile> &rescued, const std::set<QString> &paths, Workers &workers,
                 std::chrono::steady_clock::time_point deadline)
{
    if (rescued.empty()) {
        return;
    }
    std::map<QString, QString> pathsOfFiles;
    std::vector<BackgroundTask> looking;
    for (const QString &path : paths) {
        pathsOfFiles.emplace(QDir::cleanPath(path), path);
        looking.push_back(BackgroundTask::start(
            workers, [path](const std::stop_token &) { return DocumentFile::identityOf(path); },
            [&pathsOfFiles, path](const QString &file) { pathsOfFiles.emplace(file, path); }));
    }
    for (BackgroundTask &each : looking) {
        std::ignore = each.waitUntil(deadline);
    }
    for (RescuedFile &each : rescued) {
        if (const auto found = pathsOfFiles.find(each.target); found != pathsOfFiles.end()) {
            each.target = found->second;
        }
    }
}

class Restoration final {
public:
    Restoration(const SessionStore::Saved &saved, SessionStore &store, DocumentStore &documents, std::chrono::milliseconds timeout)
        : m_saved(saved), m_store(store), m_documents(documents), m_timeout(timeout),
          m_otherDrafts(saved.otherDrafts.begin(), saved.otherDrafts.end())
    {}

    std::vector<RestoredDocument> run(const RecoveryReport &report)
    {
        using Clock = std::chrono::steady_clock;
        m_later->report = report;
        collectSources();
        // Each with a deadline of its own: a share that is gone leaves the time that files on other disks need.
        collectRescued(Clock::now() + m_timeout);
        m_deadline = Clock::now() + m_timeout;
        for (const Source &source : m_sources) {
            restore(source);
        }
        while (!m_rescued.empty()) {
            const QString path = m_rescued.begin()->first;
            restoreRescued(path);
        }
        std::ranges::for_each(m_made, [this](Made &made) { finish(made); });
        for (TextDocument &document : recoverInsertions(m_store, m_documents)) {
            m_restored.push_back({{}, document.shared_from_this()});
        }
        m_later->isNow = true;
        return std::move(m_restored);
    }

private:
    using MissingFile = TextDocument::MissingFile;
    /// What may become a document.
    struct Source {
        SessionSnapshot::Document entry;
        /// Absolute; empty for none.
        QString path;
        /// Its name; empty for none.
        QString draft;
        /// Nobody asks for it but for what was typed into it.
        bool isForEdits = false;
        /// See SessionStore::changedAt().
        qint64 changedAt = 0;
    };
    struct Made {
        QUuid idInSnapshot;
        /// Null for the file of another entry.
        std::unique_ptr<TextDocument> document;
        QString path;
        bool isForEdits = false;
    };
    /// For files that come when all else is restored.
    struct Later {
        bool isNow = false;
        RecoveryReport report;
    };

    /// But for those whose files have the whole text. One that does not answer, as when a share that is gone was being written, is not
    /// known to.
    void collectRescued(std::chrono::steady_clock::time_point deadline)
    {
        struct Looked {
            bool isWritten = false;
            BackgroundTask looking = {};
        };
        const DocumentServices &services = m_documents.services();
        std::vector<RescuedFile> rescued = m_saved.rescued;
        std::vector<Looked> looked(rescued.size());
        std::vector<std::optional<TextFile::Contents>> contents;
        for (size_t index = 0; index < rescued.size(); ++index) {
            auto content = TextFile::read(rescued[index].content);
            if (content && content->state) {
                looked[index].looking = BackgroundTask::start(
                    services.workers,
                    [target = rescued[index].target, text = *content->state, &files = services.files](const std::stop_token &) {
                        return DocumentFile::hasContent(target, text, files);
                    },
                    [&one = looked[index]](bool hasContent) { one.isWritten = hasContent; });
            }
            contents.push_back(content ? std::optional(*std::move(content)) : std::nullopt);
        }
        std::set<QString> paths;
        std::ranges::transform(m_sources, std::inserter(paths, paths.end()), &Source::path);
        paths.erase(QString());
        nameByPaths(rescued, paths, services.workers, deadline);
        for (size_t index = 0; index < rescued.size(); ++index) {
            std::ignore = looked[index].looking.waitUntil(deadline);
            if (looked[index].isWritten) {
                removeRescued(rescued[index]);
            } else if (contents[index]) {
                m_rescuedTexts.push_back(contents[index]->text);
                Rescued &one = m_rescued[rescued[index].target];
                one.files.push_back(rescued[index]);
                one.contents = *std::move(contents[index]);
            }
        }
    }

    void collectSources()
    {
        std::set<QUuid> ids;
        const auto add = [&](const SessionSnapshot::Document &entry, const QString &draft, bool isForEdits) {
            const QString path = entry.filePath && QDir::isAbsolutePath(*entry.filePath) ? *entry.filePath : QString();
            m_sources.push_back({entry, path, draft, isForEdits, m_store.changedAt(entry.id, draft)});
            ids.insert(entry.id);
        };
        for (const auto &entry : m_saved.snapshot.value_or(SessionSnapshot()).documents) {
            // From the draft that it names, or from one of its own that was written just before the program was killed.
            const QString own = DraftFile::nameFor(entry.id);
            const bool hasOwn = !entry.draftFilename && m_otherDrafts.erase(own) != 0;
            add(entry, entry.draftFilename.value_or(hasOwn ? own : QString()), false);
        }
        for (const QString &name : m_saved.otherDrafts) {
            const QUuid id = DraftFile::documentOf(name);
            const auto known = std::ranges::find(m_saved.edited, id, &SessionSnapshot::Document::id);
            const bool isKnown = known != m_saved.edited.end() && !ids.contains(id);
            if (m_otherDrafts.contains(name)) {
                add(isKnown ? *known : SessionSnapshot::Document{.id = id, .encodingRawValue = quint32(TextEncoding::utf8)}, name, false);
            }
        }
        // What was typed into texts that no snapshot and no draft knew yet.
        for (const SessionSnapshot::Document &entry : m_saved.edited) {
            if (!ids.contains(entry.id)) {
                add(entry, {}, true);
            }
        }
    }

    /// Ids that were damaged into copies of each other still are texts of their own.
    QUuid unusedId(const QUuid &id)
    {
        const bool isUsable = !id.isNull() && !m_store.hasUnreadableDraft(id);
        return isUsable && m_ids.insert(id).second ? id : QUuid::createUuid();
    }

    [[nodiscard]] bool wasTypedBeforeItsFile(const QUuid &id) const
    {
        const auto edited = m_store.edited(id, Rope());
        return edited && !edited->isEmpty();
    }

    /// A file has one tab, with what was changed last; what else was kept of it has tabs of its own.
    void restore(const Source &source)
    {
        if (source.path.isEmpty()) {
            addMade(source.entry.id, source, untitledOf(source), source.isForEdits);
            return;
        }
        const Source &newest = newestOf(source.path);
        if (m_paths.contains(source.path)) {
            m_made.push_back({.idInSnapshot = source.entry.id, .document = nullptr, .path = source.path});
        } else {
            addMade(source.entry.id, newest, documentOf(newest), source.isForEdits);
        }
        if (&source != &newest && source.changedAt != 0) {
            addMade({}, source, otherVersionOf(source), false);
        }
    }

    /// Of those of a file, the one that was changed last, or else the first.
    [[nodiscard]] const Source &newestOf(const QString &path) const
    {
        const Source *newest = nullptr;
        for (const Source &source : m_sources) {
            if (source.path == path && (!newest || newest->changedAt < source.changedAt)) {
                newest = &source;
            }
        }
        return *newest;
    }

    void addMade(const QUuid &idInSnapshot, const Source &source, std::unique_ptr<TextDocument> document, bool isForEdits)
    {
        if (!document) {
            return;
        }
        const SessionSnapshot::Document &entry = source.entry;
        if (const auto language = LanguageRegistry::withID(entry.languageID.value_or(QString()))) {
            document->languageWasChosenManually = true;
            document->setLanguage(*language);
        }
        const qsizetype length = document->storage().length();
        const TextRange selection = entry.selection;
        const bool isRange = selection.location >= 0 && selection.length >= 0;
        if (isRange &&
            (document->arrival().isPending() || (selection.location <= length && selection.length <= length - selection.location))) {
            document->lastSelectedRange = selection;
        }
        document->lastScrollOffset = std::max(0.0, entry.scrollOffset);
        const QString path = document->path();
        add(idInSnapshot, std::move(document), path);
        m_made.back().isForEdits = isForEdits;
    }

    /// Where the file has a draft of another text, it has a tab beside that.
    void restoreRescued(const QString &path)
    {
        const bool isOther = m_paths.contains(path);
        if (isOther && isMade(path, m_rescued[path].contents.text)) {
            const Rescued known = m_rescued.extract(path).mapped();
            std::ranges::for_each(known.files, [](const RescuedFile &each) { removeRescued(each); });
            return;
        }
        auto document = rescuedOf(path, QUuid::createUuid(), isOther ? QString() : path);
        if (isOther) {
            document->origin = TextOrigin{TextOrigin::Kind::otherVersion, path};
        }
        add({}, std::move(document), isOther ? QString() : path);
    }

    [[nodiscard]] bool isMade(const QString &path, const Rope &text) const
    {
        return std::ranges::any_of(
            m_made, [&](const Made &made) { return made.document && made.path == path && made.document->storage().text() == text; });
    }

    [[nodiscard]] static TextFile::Contents emptyOf(const SessionSnapshot::Document &entry)
    {
        return {.text = {},
                .encoding = TextEncoding(entry.encodingRawValue),
                .lineEnding = lineEndingWithRawValue(entry.lineEnding).value_or(LineEnding::lf)};
    }

    std::unique_ptr<TextDocument> documentOf(const Source &source)
    {
        std::unique_ptr<TextDocument> document = draftOf(source, source.path);
        if (!document && m_rescued.contains(source.path)) {
            document = rescuedOf(source.path, unusedId(source.entry.id), source.path);
        }
        if (!document) {
            const TextFile::Contents empty = emptyOf(source.entry);
            document =
                TextDocument::awaiting(m_documents.services(), source.path, empty.encoding, empty.lineEnding, unusedId(source.entry.id),
                                       wasTypedBeforeItsFile(source.entry.id) ? MissingFile::isMade : MissingFile::isError);
            document->arrival().whenOver(
                [&store = m_store, &documents = m_documents, later = m_later, arrived = document.get(), id = source.entry.id] {
                    editArrived(store, *arrived, id);
                    if (later->isNow) {
                        std::ranges::for_each(recoverInsertions(store, documents), later->report);
                    }
                });
        }
        return document;
    }

    std::unique_ptr<TextDocument> untitledOf(const Source &source)
    {
        std::unique_ptr<TextDocument> document = draftOf(source, {});
        const bool isUnnamed = m_otherDrafts.contains(source.draft);
        // Of a rescued text when the program was killed before its session knew the draft.
        const auto isRescued = [this](const Rope &text) { return std::ranges::find(m_rescuedTexts, text) != m_rescuedTexts.end(); };
        if (document && isUnnamed && (document->storage().length() == 0 || isRescued(document->storage().text()))) {
            return nullptr;
        }
        if (!document) {
            document = withEdits(source.entry.id, emptyOf(source.entry));
        }
        if (document) {
            document->origin = source.entry.origin;
        }
        return document;
    }

    /// None when it is the text of the file's tab, or empty.
    std::unique_ptr<TextDocument> otherVersionOf(const Source &source)
    {
        auto document = draftOf(source, {});
        if (!document) {
            m_store.setAsideEdits(source.entry.id);
            return nullptr;
        }
        const Rope &text = document->storage().text();
        if (text.isEmpty() || isMade(source.path, text)) {
            m_store.discardDraft(document->id());
            return nullptr;
        }
        document->origin = TextOrigin{TextOrigin::Kind::otherVersion, source.path};
        document->setLanguage(LanguageRegistry::detect(source.path, {}));
        return document;
    }

    std::unique_ptr<TextDocument> draftOf(const Source &source, const QString &path)
    {
        const QUuid &id = source.entry.id;
        const auto text = source.draft.isEmpty() ? std::nullopt : m_store.draft(source.draft);
        if (!text) {
            return nullptr;
        }
        const auto edited = m_store.edited(id, *text);
        TextFile::Contents contents = emptyOf(source.entry);
        contents.text = edited.value_or(*text);
        contents.state = path.isEmpty() ? std::nullopt : source.entry.fileState;
        // Where no file is remembered, there was none.
        auto document = TextDocument::fromDraft(m_documents.services(), path, contents, unusedId(id), m_store.draftStamp(source.draft),
                                                contents.state ? MissingFile::isError : MissingFile::isMade);
        if (edited) {
            m_store.adoptEdits(*document);
        } else {
            m_store.setAsideEdits(id, *text);
            m_store.adoptDraft(*document, source.draft);
        }
        return document;
    }

    /// Unsaved text of the file at `shownPath`, or of none where the file has a draft too.
    std::unique_ptr<TextDocument> rescuedOf(const QString &path, const QUuid &id, const QString &shownPath)
    {
        Rescued rescued = std::move(m_rescued.extract(path).mapped());
        rescued.contents.state.reset();
        auto document = TextDocument::fromDraft(m_documents.services(), shownPath, rescued.contents, id, FileStamp());
        m_store.adoptRescued(*document, rescued.files);
        return document;
    }

    /// Typed into an empty text.
    std::unique_ptr<TextDocument> withEdits(const QUuid &id, TextFile::Contents contents)
    {
        const auto edited = m_store.edited(id, Rope());
        if (!edited) {
            m_store.setAsideEdits(id);
            return nullptr;
        }
        if (edited->isEmpty()) {
            m_store.discardEdits(id);
            return nullptr;
        }
        contents.text = *edited;
        auto document = TextDocument::fromDraft(m_documents.services(), QString(), contents, unusedId(id));
        m_store.adoptEdits(*document);
        return document;
    }

    /// A step that can be undone, as it was.
    static void editArrived(SessionStore &store, TextDocument &document, const QUuid &id)
    {
        const auto &[error, twin] = document.arrival().failure();
        if (error && error->found != PathKind::missing) {
            return; // it may be readable again at the next start
        }
        if (error || twin) {
            store.setAsideEdits(id);
        } else if (const auto edited = store.edited(document.id(), document.storage().text())) {
            store.replayEdits(document, *edited);
        } else {
            store.setAsideEdits(id, document.storage().text());
        }
    }

    /// What was typed into texts that are others now gets texts of its own.
    static std::vector<std::reference_wrapper<TextDocument>> recoverInsertions(SessionStore &store, DocumentStore &documents)
    {
        std::vector<std::reference_wrapper<TextDocument>> made;
        for (const SessionStore::SetAside &setAside : store.takeSetAside()) {
            TextFile::Contents contents = emptyOf(setAside.entry);
            contents.text = Rope(setAside.text);
            auto document = TextDocument::fromDraft(documents.services(), QString(), contents, setAside.id);
            document->origin = TextOrigin{TextOrigin::Kind::insertions, setAside.entry.filePath.value_or(QString())};
            TextDocument &added = documents.add(std::move(document));
            store.adoptSetAside(added, setAside);
            made.emplace_back(added);
        }
        return made;
    }

    void add(const QUuid &id, std::unique_ptr<TextDocument> document, const QString &path)
    {
        m_paths.insert(path);
        m_made.push_back({.idInSnapshot = id, .document = std::move(document), .path = path});
    }

    /// The store gets the document when it has its text: a highlighter would colour all of that as an edit.
    void finish(Made &made)
    {
        if (made.document) {
            std::ignore = made.document->requests().waitUntil(FileRequests::Kind::arrival, m_deadline);
            if (made.document->arrival().failure().error) {
                return;
            }
            if (const auto &twin = made.document->arrival().failure().twin) {
                m_restored.push_back({made.idInSnapshot, twin});
                return;
            }
            if (made.isForEdits && !made.document->arrival().isPending() && !made.document->hasUnsavedText()) {
                m_store.discardEdits(made.document->id());
                return;
            }
            const auto added = m_documents.add(std::move(made.document)).shared_from_this();
            m_restored.push_back({made.idInSnapshot, added});
            m_files.emplace(made.path, added);
        } else if (const auto same = m_files.find(made.path); same != m_files.end()) {
            m_restored.push_back({made.idInSnapshot, same->second});
        }
    }

    struct Rescued {
        /// The latest is the last.
        std::vector<RescuedFile> files = {};
        TextFile::Contents contents = {};
    };

    const SessionStore::Saved &m_saved;
    SessionStore &m_store;
    DocumentStore &m_documents;
    std::chrono::milliseconds m_timeout;
    /// For files that are waited for, all together.
    std::chrono::steady_clock::time_point m_deadline = {};
    std::set<QString> m_otherDrafts;
    std::vector<Source> m_sources;
    std::shared_ptr<Later> m_later = std::make_shared<Later>();
    /// By their targets.
    std::map<QString, Rescued> m_rescued;
    std::vector<Rope> m_rescuedTexts;
    std::set<QUuid> m_ids;
    std::set<QString> m_paths;
    std::vector<Made> m_made;
    std::map<QString, std::shared_ptr<TextDocument>> m_files;
    std::vector<RestoredDocument> m_restored;
};

} // namespace

std::vector<RescuedFile> rescuedAt(const QString &path, std::vector<RescuedFile> rescued, const DocumentStore &documents,
                                   std::chrono::milliseconds timeout)
{
    const QString shown = QDir::cleanPath(path);
    std::erase_if(rescued, [&](const RescuedFile &each) { return documents.documentAt(each.target) != nullptr; });
    nameByPaths(rescued, {shown}, documents.services().workers, std::chrono::steady_clock::now() + timeout);
    std::erase_if(rescued, [&](const RescuedFile &each) { return each.target != shown; });
    return rescued;
}

std::vector<RestoredDocument> restoreDocuments(const SessionStore::Saved &saved, SessionStore &store, DocumentStore &documents,
                                               std::chrono::milliseconds timeout, const RecoveryReport &report)
{
    return Restoration(saved, store, documents, timeout).run(report);
}
