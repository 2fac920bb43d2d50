// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/SessionKeeper.h"

#include "Model/DocumentStore.h"
#include "Session/SessionStore.h"
#include "Settings/Preferences.h"

namespace {

/// A power cut takes no more than that of what was typed.
constexpr Scheduler::Milliseconds flushInterval{800};
constexpr double shortestInterval = 0.5;
constexpr double longestInterval = 24 * 60 * 60;
/// Of the interval: a pause of that length is taken for the end of typing.
constexpr int pauseShare = 3;

} // namespace

SessionKeeper::SessionKeeper(Scheduler &scheduler, NotificationCenter &notifications, const Preferences &preferences,
                             DocumentStore &documents, SessionStore &store)
    : m_scheduler(scheduler), m_preferences(preferences), m_documents(documents), m_store(store),
      m_preferencesObserver(notifications.observe(Preferences::didChange, nullptr, [this] { startTimer(); }))
{
    m_documentsObserver = notifications.observe(DocumentStore::didChange, &documents, [this] { followDocuments(); });
    QObject::connect(&documents, &DocumentStore::removed, &m_context, [this](const TextDocument &document) {
        m_followed.erase(&document);
        m_editedWhileSaved.erase(&document);
        QObject::disconnect(&document.storage(), nullptr, &m_context, nullptr);
    });
    startTimer();
}

void SessionKeeper::followDocuments()
{
    for (const auto &document : m_documents.documents()) {
        if (m_followed.insert(document.get()).second) {
            follow(*document);
        }
    }
}

/// What is typed into it is safe at once.
void SessionKeeper::follow(TextDocument &document)
{
    QObject::connect(&document.storage(), &TextStorage::changed, &m_context, [this, &document] { m_wasDirty = document.isDirty(); });
    // The document itself has heard of it then.
    QObject::connect(&document.storage(), &TextStorage::didProcessEditing, &m_context, [this, &document](const TextChange &change) {
        m_store.noteEdit(document, change, m_wasDirty ? SessionStore::Before::dirty : SessionStore::Before::saved);
        if (document.saves().isActive() && m_editedWhileSaved.insert(&document).second) {
            // What the edits build on goes with the old content of the file.
            document.saves().whenOver([this, &document](bool isWritten) {
                if (m_editedWhileSaved.erase(&document) == 0) {
                    return;
                }
                if (isWritten) {
                    m_store.dropRescued(document.id());
                }
                m_store.writeDraft(document);
            });
        }
        if (!m_flush.isPending()) {
            m_flush = m_scheduler.after(flushInterval, [this] { m_store.flushEdits(); });
        }
    });
}

void SessionKeeper::startTimer()
{
    const double seconds = std::clamp(m_preferences.value(Settings::autosaveInterval), shortestInterval, longestInterval);
    m_interval = Scheduler::Milliseconds(qint64(seconds * 1000));
    m_timer = m_scheduler.every(m_interval, m_interval / 2, [this] { performAutosave(); });
}

void SessionKeeper::noteActivity()
{
    m_lastActivity = m_scheduler.now();
    if (!m_pause.isPending()) {
        m_pause = m_scheduler.after(m_interval / pauseShare, [this] { autosaveIfQuiet(); });
    }
}

void SessionKeeper::autosaveIfQuiet()
{
    const Scheduler::Milliseconds left = m_lastActivity + m_interval / pauseShare - m_scheduler.now();
    if (left > Scheduler::Milliseconds(0)) {
        m_pause = m_scheduler.after(left, [this] { autosaveIfQuiet(); });
    } else {
        performAutosave();
    }
}

void SessionKeeper::performAutosave()
{
    if (m_preferences.value(Settings::autosaveToDisk)) {
        saveToFiles();
    }
    keep();
}

void SessionKeeper::keep()
{
    const auto windows = layouts();
    write(windows.empty() ? nullptr : &windows[m_windows->frontmostLayout()]);
}

SessionKeeper::Kept SessionKeeper::keepAndWait(std::chrono::milliseconds timeout)
{
    const auto windows = layouts();
    write(windows.empty() ? nullptr : &windows.back());
    const bool isWritten = m_store.waitUntilWritten(timeout);
    const bool hasUnsavedText = std::ranges::any_of(windows, [](const WindowLayout &window) {
        return std::ranges::any_of(window.panes.documents(), [](const auto &document) { return document->hasUnsavedText(); });
    });
    if (!hasUnsavedText || (isWritten && m_store.keepsUnsavedText())) {
        return Kept::all;
    }
    const bool isForLater = isWritten && !m_store.isOwner() && wantsSession() && m_store.keepsDrafts();
    return isForLater ? Kept::forLater : Kept::notAll;
}

std::vector<WindowLayout> SessionKeeper::layouts() const
{
    return m_windows ? m_windows->layouts() : std::vector<WindowLayout>();
}

bool SessionKeeper::wantsSession() const
{
    return m_preferences.value(Settings::restoreSession);
}

void SessionKeeper::saveToFiles()
{
    for (const auto &document : std::vector(m_documents.documents())) {
        const bool hasQuietFile = !document->isUntitled() && document->externalState() == TextDocument::ExternalState::none;
        // What becomes of characters that the encoding lacks is for the user to say, in a save that was asked for.
        const bool isComplete = document->encodingDetails().missing().count() == 0;
        if (document->hasUnsavedEdits() && hasQuietFile && isComplete && !document->saves().isActive()) {
            // One that fails or takes its time leaves the text dirty, and so it gets a draft.
            document->save(document->path(), {}, {.occasion = DocumentFile::Occasion::byItself});
        }
    }
}

DraftNames SessionKeeper::writeDrafts()
{
    DraftNames drafts;
    for (const auto &document : m_documents.documents()) {
        if (!document->isDirty() && !document->hasUnsavedText()) {
            m_store.forgetEdits(document->id());
            continue;
        }
        if (const auto name = m_store.writeDraft(*document)) {
            drafts.emplace(document->id(), *name);
        }
    }
    return drafts;
}

/// Drafts, and then the session, if it is wanted and there is a window.
void SessionKeeper::write(const WindowLayout *window)
{
    const DraftNames drafts = writeDrafts();
    if (wantsSession() && window) {
        m_windows->rememberPlaces();
        m_store.write(snapshotOf(*window, m_documents.documents(), drafts));
    }
}

std::optional<WindowLayout> SessionKeeper::restore()
{
    if (!wantsSession()) {
        return std::nullopt;
    }
    const SessionStore::Saved saved = m_store.read();
    const std::vector<RestoredDocument> restored =
        restoreDocuments(saved, m_store, m_documents, restorationTimeout, [this](TextDocument &document) { showBehind(document); });
    return restored.empty() ? std::nullopt : std::optional(layoutOf(saved.snapshot.value_or(SessionSnapshot()), restored));
}

void SessionKeeper::bringBack(const QString &path)
{
    SessionStore::Saved saved;
    if (wantsSession()) {
        saved = m_store.takeCarriedOver(path);
    }
    // A file that was not written to its end gets its text back, whatever is wanted of sessions.
    saved.rescued = rescuedAt(path, m_store.rescued(), m_documents, restorationTimeout);
    if (saved.isEmpty()) {
        return;
    }
    const auto show = [this](TextDocument &document) { showBehind(document); };
    for (const RestoredDocument &restored : restoreDocuments(saved, m_store, m_documents, restorationTimeout, show)) {
        if (restored.document->origin) {
            show(*restored.document);
        }
    }
}

void SessionKeeper::showBehind(TextDocument &document)
{
    if (m_windows) {
        m_windows->showBehind(document);
    }
}
