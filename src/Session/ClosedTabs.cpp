// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/ClosedTabs.h"

#include "Base/AtomicFile.h"
#include "Highlighting/LanguageRegistry.h"
#include "Model/DocumentStore.h"
#include "Session/DraftFile.h"
#include "Session/SessionRestoration.h"
#include "Session/SessionStore.h"
#include "Session/WindowLayout.h"
#include "Settings/Preferences.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <map>

using namespace Qt::StringLiterals;

namespace {

constexpr auto listName = "closed-tabs.json"_L1;
/// Bytes; twenty tabs have a hundredth of it.
constexpr qint64 largestList = 1024 * 1024;

/// What the list and its texts are to be on disk.
struct Contents {
    QByteArray list;
    /// By their names; none for those that are there already.
    std::map<QString, std::optional<Rope>> drafts;
};

void write(const QString &folder, const Contents &contents, FileCalls &calls)
{
    if (!contents.list.isEmpty()) {
        makePrivateFolder(folder, calls);
    }
    for (const auto &[name, text] : contents.drafts) {
        const QString path = folder + u'/' + name;
        if (text && !QFile::exists(path)) {
            std::ignore = DraftFile::write(*text, path, calls);
        }
    }
    const QString list = folder + u'/' + listName;
    if (!contents.list.isEmpty() && !writeAtomically(list, contents.list, AtomicFile::NewFile::privateToUser, calls)) {
        return; // the list that is there needs its texts
    }
    if (contents.list.isEmpty()) {
        calls.unlink(QFile::encodeName(list).constData());
    }
    for (const QString &name : QDir(folder).entryList({u"*.draft"_s, u".quillet-*"_s}, QDir::Files | QDir::Hidden)) {
        if (!contents.drafts.contains(name)) {
            calls.unlink(QFile::encodeName(folder + u'/' + name).constData());
        }
    }
}

int numberIn(const QJsonObject &object, QLatin1StringView key)
{
    return std::max(0, object.value(key).toInt());
}

} // namespace

ClosedTabs::ClosedTabs(NotificationCenter &notifications, const Preferences &preferences, DocumentStore &documents, SessionStore &session,
                       qsizetype largestSize)
    : m_preferences(preferences), m_documents(documents), m_session(session), m_largestSize(largestSize),
      m_preferencesObserver(notifications.observe(Preferences::didChange, nullptr, [this, wasKept = isKept()]() mutable {
          if (std::exchange(wasKept, isKept()) != wasKept) {
              keep();
          }
      }))
{}

bool ClosedTabs::isKept() const
{
    return m_preferences.value(Settings::restoreSession);
}

QString ClosedTabs::folder() const
{
    return m_session.rootDirectory() + u"/Closed"_s;
}

void ClosedTabs::load()
{
    if (std::exchange(m_isLoaded, true) || !isKept() || !m_session.isOwner()) {
        return;
    }
    QFile file(folder() + u'/' + listName);
    if (file.size() > largestList || !file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QJsonArray list = QJsonDocument::fromJson(file.readAll()).object().value("tabs"_L1).toArray();
    for (const QJsonValue &value : list) {
        const QJsonObject object = value.toObject();
        if (const auto entry = SessionSnapshot::Document::fromValue(object.value("document"_L1))) {
            m_tabs.push_back({*entry, {.pane = numberIn(object, "pane"_L1), .tab = numberIn(object, "tab"_L1)}});
        }
    }
    limit();
}

void ClosedTabs::note(const std::shared_ptr<TextDocument> &document, const ClosedPlace &place)
{
    load();
    if (document->isUntitled() && document->storage().length() == 0) {
        return;
    }
    const qsizetype length = document->storage().length();
    if (length + document->undoManager().units() > m_largestSize) {
        document->undoManager().removeAllActions();
    }
    const bool hasText = document->hasUnsavedText() && length <= m_largestSize;
    const DraftNames drafts = hasText ? DraftNames{{document->id(), DraftFile::nameFor(document->id())}} : DraftNames();
    Tab tab{entryOf(*document, drafts), place};
    if (document->arrival().isPending() || length > m_largestSize) {
        if (document->isUntitled()) {
            return;
        }
    } else {
        tab.size = length + document->undoManager().units();
        tab.text = hasText ? std::optional(document->storage().text()) : std::nullopt;
        tab.document = document->saves().isActive() ? nullptr : document;
        document->setFollowingFile(false);
    }
    // One that was opened again and closed once more.
    std::erase_if(m_tabs, [&](const Tab &other) { return other.entry.id == tab.entry.id; });
    m_tabs.push_back(std::move(tab));
    limit();
    keep();
}

/// Those that were closed last have precedence.
void ClosedTabs::limit()
{
    while (m_tabs.size() > largestCount) {
        m_tabs.pop_front();
    }
    qsizetype size = 0;
    for (auto tab = m_tabs.rbegin(); tab != m_tabs.rend(); ++tab) {
        size += tab->size;
        if (size > m_largestSize && tab->size > 0) {
            tab->document.reset();
            tab->text.reset();
            tab->entry.draftFilename.reset();
            tab->size = 0;
        }
    }
    std::erase_if(m_tabs, [](const Tab &tab) { return !tab.document && !tab.entry.filePath && !tab.entry.draftFilename; });
}

bool ClosedTabs::isEmpty()
{
    load();
    return m_tabs.empty();
}

std::optional<ClosedTabs::Reopened> ClosedTabs::reopen()
{
    load();
    if (m_tabs.empty()) {
        return std::nullopt;
    }
    const Tab tab = std::move(m_tabs.back());
    m_tabs.pop_back();
    return Reopened{documentOf(tab), tab.entry.filePath.value_or(QString()), tab.place};
}

/// Where another document has the file by now, that is the one, and text that was not saved is one without a file.
std::shared_ptr<TextDocument> ClosedTabs::documentOf(const Tab &tab) const
{
    const QString path = tab.entry.filePath.value_or(QString());
    const auto known = path.isEmpty() ? nullptr : m_documents.documentAt(path);
    if (tab.document && !known) {
        m_documents.takeBack(tab.document);
        return tab.document;
    }
    if (tab.entry.draftFilename) {
        if (auto restored = madeOf(tab, known ? FileOf::otherDocument : FileOf::text)) {
            return restored;
        }
    }
    if (known || path.isEmpty()) {
        return known;
    }
    SessionSnapshot::Document entry = tab.entry;
    entry.draftFilename.reset();
    const auto restored = restoreDocuments({.snapshot = SessionSnapshot{.documents = {entry}}}, m_session, m_documents);
    const auto found = std::ranges::find(restored, entry.id, &RestoredDocument::idInSnapshot);
    return found == restored.end() ? nullptr : found->document;
}

std::shared_ptr<TextDocument> ClosedTabs::madeOf(const Tab &tab, FileOf file) const
{
    const SessionSnapshot::Document &entry = tab.entry;
    const QString named = entry.filePath.value_or(QString());
    const QString path = file == FileOf::text ? named : QString();
    const auto &open = m_documents.documents();
    const bool isOpen = std::ranges::any_of(open, [&](const auto &document) { return document->id() == entry.id; });
    const auto text = isOpen ? std::nullopt : tab.text ? tab.text : DraftFile::read(folder() + u'/' + DraftFile::nameFor(entry.id));
    if (!text) {
        return nullptr;
    }
    using MissingFile = TextDocument::MissingFile;
    const TextFile::Contents contents{.text = *text,
                                      .encoding = TextEncoding(entry.encodingRawValue),
                                      .lineEnding = lineEndingWithRawValue(entry.lineEnding).value_or(LineEnding::lf),
                                      .state = entry.fileState};
    auto document = TextDocument::fromDraft(m_documents.services(), path, contents, entry.id, std::nullopt,
                                            entry.fileState ? MissingFile::isError : MissingFile::isMade);
    document->origin = file == FileOf::text ? entry.origin : TextOrigin{TextOrigin::Kind::otherVersion, named};
    if (const auto language = LanguageRegistry::withID(entry.languageID.value_or(QString()))) {
        document->languageWasChosenManually = true;
        document->setLanguage(*language);
    }
    const TextRange selection = entry.selection;
    if (selection.location >= 0 && selection.length >= 0 && selection.location <= text->length() - selection.length) {
        document->lastSelectedRange = selection;
    }
    document->lastScrollOffset = std::max(0.0, entry.scrollOffset);
    return m_documents.add(std::move(document)).shared_from_this();
}

void ClosedTabs::keep()
{
    load();
    if (!m_session.isOwner()) {
        return;
    }
    Contents contents;
    QJsonArray list;
    for (const Tab &tab : m_tabs) {
        const bool isGenerated = tab.document && tab.document->isGenerated();
        const bool hasDraft = tab.entry.draftFilename && m_preferences.value(Settings::autosaveDrafts);
        if (!isKept() || isGenerated || (!tab.entry.filePath && !hasDraft)) {
            continue;
        }
        SessionSnapshot::Document entry = tab.entry;
        if (hasDraft) {
            contents.drafts.emplace(*entry.draftFilename, tab.text);
        } else {
            entry.draftFilename.reset();
            entry.fileState.reset();
        }
        list << QJsonObject{{"document"_L1, entry.toObject()}, {"pane"_L1, tab.place.pane}, {"tab"_L1, tab.place.tab}};
    }
    if (!list.isEmpty()) {
        contents.list = QJsonDocument(QJsonObject{{"tabs"_L1, list}}).toJson();
    }
    m_session.runInOrder([folder = folder(), contents, &calls = m_documents.services().files] { write(folder, contents, calls); });
}

void ClosedTabs::clear()
{
    m_isLoaded = true;
    m_tabs.clear();
    keep();
}
