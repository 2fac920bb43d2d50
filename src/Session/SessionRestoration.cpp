// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/SessionRestoration.h"

#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentStore.h"
#include "Session/DraftFile.h"

#include <QDir>

#include <set>

namespace {

class Restoration final {
public:
    Restoration(const SessionStore::Saved &saved, SessionStore &store, DocumentStore &documents)
        : m_saved(saved), m_store(store), m_documents(documents), m_otherDrafts(saved.otherDrafts.begin(), saved.otherDrafts.end())
    {
        // What killed programs were writing in place, unless they had come to the end.
        for (const RescuedFile &rescued : rescuedFiles(store.rescueDirectory())) {
            const auto content = TextFile::read(rescued.content);
            if (rescued.isBeingWritten || !content) {
                continue;
            }
            if (content->state && DocumentFile::hasContent(rescued.target, *content->state)) {
                removeRescued(rescued);
            } else {
                m_rescued.insert_or_assign(rescued.target, Rescued{rescued, *content});
            }
        }
    }

    std::vector<RestoredDocument> run(std::chrono::milliseconds timeout)
    {
        if (m_saved.snapshot) {
            for (const SessionSnapshot::Document &entry : m_saved.snapshot->documents) {
                restore(entry);
            }
        }
        for (const QString &name : m_saved.otherDrafts) {
            if (m_otherDrafts.contains(name)) {
                restoreDraft(name);
            }
        }
        // What was typed into texts that no snapshot and no draft knew yet.
        for (const SessionSnapshot::Document &entry : m_saved.edited) {
            const size_t before = m_made.size();
            if (!m_ids.contains(entry.id)) {
                restore(entry);
            }
            std::for_each(m_made.begin() + qsizetype(before), m_made.end(), [](Made &made) { made.isForEdits = true; });
        }
        while (!m_rescued.empty()) {
            const QString path = m_rescued.begin()->first;
            add({}, rescuedOf(path, QUuid::createUuid(), m_paths.contains(path) ? QString() : path), path);
        }
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        for (Made &made : m_made) {
            finish(made, deadline);
        }
        return std::move(m_restored);
    }

private:
    using MissingFile = TextDocument::MissingFile;
    struct Made {
        QUuid idInSnapshot;
        /// Null for the file of another entry.
        std::unique_ptr<TextDocument> document;
        QString path;
        /// Nobody asks for it but for what was typed into it.
        bool isForEdits = false;
    };

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

    void restore(const SessionSnapshot::Document &entry)
    {
        const QString path = entry.filePath && QDir::isAbsolutePath(*entry.filePath) ? *entry.filePath : QString();
        const TextFile::Contents empty{.text = {},
                                       .encoding = TextEncoding(entry.encodingRawValue),
                                       .lineEnding = lineEndingWithRawValue(entry.lineEnding).value_or(LineEnding::lf)};
        std::unique_ptr<TextDocument> document = draftOf(entry, path, empty);
        if (!document && m_rescued.contains(path)) {
            document = rescuedOf(path, unusedId(entry.id), path);
        }
        if (!document) {
            document = path.isEmpty() ? withEdits(entry.id, empty) : nullptr;
        }
        if (!document) {
            if (path.isEmpty()) {
                return;
            }
            if (m_paths.contains(path)) {
                m_made.push_back({.idInSnapshot = entry.id, .document = nullptr, .path = path});
                return;
            }
            document = TextDocument::awaiting(m_documents.services(), path, empty.encoding, empty.lineEnding, unusedId(entry.id),
                                              wasTypedBeforeItsFile(entry.id) ? MissingFile::isMade : MissingFile::isError);
            document->whenArrived([&store = m_store, arrived = document.get()] { editArrived(store, *arrived); });
        }
        if (const auto language = LanguageRegistry::withID(entry.languageID.value_or(QString()))) {
            document->languageWasChosenManually = true;
            document->setLanguage(*language);
        }
        const qsizetype length = document->storage().length();
        const TextRange selection = entry.selection;
        const bool isRange = selection.location >= 0 && selection.length >= 0;
        if (isRange && (document->isWaiting() || (selection.location <= length && selection.length <= length - selection.location))) {
            document->lastSelectedRange = selection;
        }
        document->lastScrollOffset = std::max(0.0, entry.scrollOffset);
        add(entry.id, std::move(document), path);
    }

    /// From the draft that the entry names, or from one of its own that was written just before the program was killed.
    std::unique_ptr<TextDocument> draftOf(const SessionSnapshot::Document &entry, const QString &path, TextFile::Contents contents)
    {
        const QString own = DraftFile::nameFor(entry.id);
        QString name = entry.draftFilename.value_or(QString());
        if (name.isEmpty() && m_otherDrafts.erase(own) != 0) {
            name = own;
        }
        const auto text = name.isEmpty() ? std::nullopt : m_store.draft(name);
        if (!text) {
            return nullptr;
        }
        const auto edited = m_store.edited(entry.id, *text);
        contents.text = edited.value_or(*text);
        contents.state = entry.fileState;
        // Where no file is remembered, there was none.
        auto document = TextDocument::fromDraft(m_documents.services(), path, contents, unusedId(entry.id), m_store.draftStamp(name),
                                                contents.state ? MissingFile::isError : MissingFile::isMade);
        if (edited) {
            m_store.adoptEdits(*document);
        } else {
            m_store.setAsideEdits(entry.id);
            m_store.adoptDraft(*document, name);
        }
        return document;
    }

    /// Unsaved text of the file at `shownPath`, or of none where the file has a draft too.
    std::unique_ptr<TextDocument> rescuedOf(const QString &path, const QUuid &id, const QString &shownPath)
    {
        Rescued rescued = std::move(m_rescued.extract(path).mapped());
        rescued.contents.state.reset();
        auto document = TextDocument::fromDraft(m_documents.services(), shownPath, rescued.contents, id, FileStamp());
        m_store.adoptRescued(*document, rescued.file);
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
    static void editArrived(SessionStore &store, TextDocument &document)
    {
        if (document.arrivalFailure().error || document.arrivalFailure().twin) {
            return;
        }
        if (const auto edited = store.edited(document.id(), document.storage().text())) {
            store.replayEdits(document, *edited);
        } else {
            store.setAsideEdits(document.id());
        }
    }

    void restoreDraft(const QString &name)
    {
        const auto known = std::ranges::find(m_saved.edited, DraftFile::documentOf(name), &SessionSnapshot::Document::id);
        if (known != m_saved.edited.end() && !m_ids.contains(known->id)) {
            restore(*known);
            return;
        }
        const auto text = m_store.draft(name);
        if (!text || text->isEmpty()) {
            return;
        }
        auto document = TextDocument::fromDraft(m_documents.services(), QString(), {.text = *text}, unusedId(DraftFile::documentOf(name)));
        m_store.adoptDraft(*document, name);
        add({}, std::move(document), {});
    }

    void add(const QUuid &id, std::unique_ptr<TextDocument> document, const QString &path)
    {
        m_paths.insert(path);
        m_made.push_back({.idInSnapshot = id, .document = std::move(document), .path = path});
    }

    /// The store gets the document when it has its text: a highlighter would colour all of that as an edit.
    void finish(Made &made, std::chrono::steady_clock::time_point deadline)
    {
        if (made.document) {
            std::ignore = made.document->requests().waitUntil(FileRequests::Kind::arrival, deadline);
            if (made.document->arrivalFailure().error) {
                return;
            }
            if (const auto &twin = made.document->arrivalFailure().twin) {
                m_restored.push_back({made.idInSnapshot, twin});
                return;
            }
            if (made.isForEdits && !made.document->isWaiting() && !made.document->hasUnsavedText()) {
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
        RescuedFile file;
        TextFile::Contents contents;
    };

    const SessionStore::Saved &m_saved;
    SessionStore &m_store;
    DocumentStore &m_documents;
    std::set<QString> m_otherDrafts;
    /// By their targets.
    std::map<QString, Rescued> m_rescued;
    std::set<QUuid> m_ids;
    std::set<QString> m_paths;
    std::vector<Made> m_made;
    std::map<QString, std::shared_ptr<TextDocument>> m_files;
    std::vector<RestoredDocument> m_restored;
};

} // namespace

std::vector<RestoredDocument> restoreDocuments(const SessionStore::Saved &saved, SessionStore &store, DocumentStore &documents,
                                               std::chrono::milliseconds timeout)
{
    return Restoration(saved, store, documents).run(timeout);
}
