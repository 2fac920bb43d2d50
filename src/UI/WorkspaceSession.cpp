// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// A window in the session: how it is kept, and how it comes back.

#include "Model/DocumentStore.h"
#include "Session/SessionRestoration.h"
#include "Session/SessionStore.h"
#include "Settings/Preferences.h"
#include "UI/PaneSplitter.h"
#include "UI/WorkspaceViewController.h"

#include <QGuiApplication>
#include <QScreen>

#include <set>

using namespace Qt::StringLiterals;

namespace {

constexpr double shortestInterval = 0.5;
constexpr double longestInterval = 24 * 60 * 60;
/// Of the interval: a pause of that length is taken for the end of typing.
constexpr int pauseShare = 3;
/// Of a window that is put where it was, this much has to be seen.
constexpr QSize leastVisible(100, 50);

/// Clients of Wayland neither know nor choose where their windows stand.
bool hasWindowPositions()
{
    return !QGuiApplication::platformName().startsWith("wayland"_L1);
}

int screenBottom()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry().bottom() + 1 : 0;
}

bool isInSight(const QRect &frame)
{
    return std::ranges::any_of(QGuiApplication::screens(), [&](const QScreen *screen) {
        const QSize shown = frame.intersected(screen->availableGeometry()).size();
        return shown.width() >= leastVisible.width() && shown.height() >= leastVisible.height();
    });
}

std::optional<QUuid> at(const QList<QUuid> &ids, qint64 index)
{
    return index >= 0 && index < ids.size() ? std::optional(ids[qsizetype(index)]) : std::nullopt;
}

SessionSnapshot::Document entryOf(const TextDocument &document, SessionStore &store)
{
    return {
        .id = document.id(),
        .filePath = document.isUntitled() ? std::nullopt : std::optional(document.path()),
        .draftFilename = document.hasUnsavedText() ? store.writeDraft(document) : std::nullopt,
        .languageID = document.languageWasChosenManually ? std::optional(document.language().id()) : std::nullopt,
        .encodingRawValue = quint32(document.encoding()),
        .lineEnding = rawValue(document.lineEnding()).toString(),
        .selection = document.lastSelectedRange,
        .scrollOffset = document.lastScrollOffset,
    };
}

} // namespace

// Keeping

void WorkspaceViewController::startAutosaveTimer()
{
    const double seconds = std::clamp(m_services.preferences.value(Settings::autosaveInterval), shortestInterval, longestInterval);
    m_autosaveInterval = Scheduler::Milliseconds(qint64(seconds * 1000));
    m_autosaveTimer = m_services.scheduler.every(m_autosaveInterval, m_autosaveInterval / 2, [this] { performAutosave(); });
}

void WorkspaceViewController::autosaveSoon()
{
    m_lastActivity = m_services.scheduler.now();
    if (!m_autosaveSoon.isPending()) {
        m_autosaveSoon = m_services.scheduler.after(m_autosaveInterval / pauseShare, [this] { autosaveIfQuiet(); });
    }
}

void WorkspaceViewController::autosaveIfQuiet()
{
    const Scheduler::Milliseconds left = m_lastActivity + m_autosaveInterval / pauseShare - m_services.scheduler.now();
    if (left > Scheduler::Milliseconds(0)) {
        m_autosaveSoon = m_services.scheduler.after(left, [this] { autosaveIfQuiet(); });
    } else {
        performAutosave();
    }
}

void WorkspaceViewController::performAutosave()
{
    for (const auto &document : std::vector(m_services.documents.documents())) {
        if (!document->isDirty()) {
            continue;
        }
        const bool hasQuietFile = !document->isUntitled() && document->externalState() == TextDocument::ExternalState::none;
        if (!m_services.preferences.value(Settings::autosaveToDisk) || !hasQuietFile || !document->save(document->path())) {
            m_services.session.writeDraft(*document);
        }
    }
    if (!m_services.preferences.value(Settings::restoreSession)) {
        return;
    }
    // With several windows the session is that of the one in which something changed last.
    SessionSnapshot snapshot = sessionSnapshot();
    if (snapshot != m_lastSnapshot || !m_services.session.isHealthy()) {
        m_lastSnapshot = snapshot;
        m_services.session.write(std::move(snapshot));
    }
}

void WorkspaceViewController::writeSessionSnapshot()
{
    if (m_services.preferences.value(Settings::restoreSession)) {
        m_lastSnapshot = sessionSnapshot();
        m_services.session.write(*m_lastSnapshot);
    }
}

SessionSnapshot WorkspaceViewController::sessionSnapshot()
{
    SessionSnapshot snapshot{.documents = {},
                             .panes = {},
                             .focusedPaneIndex = m_activePane ? indexOf(*m_activePane) : 0,
                             .splitIsVertical = orientation() == Qt::Horizontal,
                             .windowFrame = windowFrame()};
    for (const PaneViewController *pane : m_panes) {
        SessionSnapshot::Pane entry{.documentIDs = {}, .selectedIndex = pane->selectedIndex()};
        for (const auto &document : pane->documents()) {
            entry.documentIDs << document->id();
        }
        snapshot.panes << entry;
    }
    // Of a document in several panes, what is remembered is where the user was last.
    std::ranges::for_each(m_panes, &PaneViewController::saveViewState);
    if (m_activePane) {
        m_activePane->saveViewState();
    }
    std::set<const TextDocument *> named;
    const auto add = [&](const std::shared_ptr<TextDocument> &document) {
        if (!document->isGenerated() && named.insert(document.get()).second) {
            snapshot.documents << entryOf(*document, m_services.session);
        }
    };
    for (const PaneViewController *pane : m_panes) {
        std::ranges::for_each(pane->documents(), add);
    }
    // The store keeps the session of one window, but no text of another one may be lost for that.
    for (const auto &document : m_services.documents.documents()) {
        if (document->hasUnsavedText()) {
            add(document);
        }
    }
    return snapshot;
}

QString WorkspaceViewController::windowFrame() const
{
    const QWidget *shown = window();
    const QRect normal = shown->isMaximized() || shown->isFullScreen() ? shown->normalGeometry() : shown->geometry();
    const QPoint place = hasWindowPositions() ? shown->pos() : QPoint();
    const WindowFrame frame{place.x(), screenBottom() - place.y() - normal.height(), normal.width(), normal.height()};
    return frame.toString();
}

// Bringing back

bool WorkspaceViewController::restoreSession()
{
    if (!m_services.preferences.value(Settings::restoreSession)) {
        return false;
    }
    const SessionStore::Saved saved = m_services.session.read();
    const std::vector<RestoredDocument> restored = restoreDocuments(saved, m_services.session, m_services.documents);
    if (restored.empty()) {
        return false;
    }
    restorePanes(saved.snapshot.value_or(SessionSnapshot()), restored);
    return true;
}

void WorkspaceViewController::restorePanes(const SessionSnapshot &snapshot, const std::vector<RestoredDocument> &restored)
{
    setOrientation(snapshot.splitIsVertical ? Qt::Horizontal : Qt::Vertical);
    std::map<QUuid, std::shared_ptr<TextDocument>> byId;
    for (const RestoredDocument &document : restored) {
        byId.emplace(document.idInSnapshot, document.document);
    }
    byId.erase(QUuid());
    std::set<const TextDocument *> shown;
    PaneViewController *focused = nullptr;
    for (qsizetype index = 0; index < snapshot.panes.size(); ++index) {
        const SessionSnapshot::Pane &entry = snapshot.panes[index];
        const auto wanted = at(entry.documentIDs, entry.selectedIndex);
        PaneViewController::Documents documents;
        int selected = 0;
        for (const QUuid &id : entry.documentIDs) {
            const auto known = byId.find(id);
            if (known == byId.end() || std::ranges::find(documents, known->second) != documents.end()) {
                continue;
            }
            selected = id == wanted ? int(documents.size()) : selected;
            documents.push_back(known->second);
            shown.insert(known->second.get());
        }
        if (!documents.empty()) {
            PaneViewController &pane = addPane(documents, selected);
            focused = index == snapshot.focusedPaneIndex || !focused ? &pane : focused;
        }
    }
    // Texts of windows that are gone.
    PaneViewController::Documents others;
    for (const RestoredDocument &document : restored) {
        if (shown.insert(document.document.get()).second) {
            others.push_back(document.document);
        }
    }
    if (!focused) {
        focused = &addPane(std::exchange(others, {}), 0);
    } else if (!others.empty()) {
        focused->append(others);
    }
    setActivePane(*focused);
    focused->focusEditor();
    applyWindowFrame(snapshot.windowFrame.value_or(QString()));
}

void WorkspaceViewController::applyWindowFrame(const QString &text)
{
    const auto frame = WindowFrame::fromString(text);
    if (!frame) {
        return;
    }
    QWidget *shown = window();
    const QScreen *screen = shown->screen();
    const QSize room = screen ? screen->availableSize() : QSize(frame->width, frame->height);
    shown->resize(QSize(frame->width, frame->height).boundedTo(room).expandedTo(shown->minimumSize()));
    const QRect place(QPoint(frame->x, screenBottom() - frame->y - frame->height), shown->size());
    if (hasWindowPositions() && isInSight(place)) {
        shown->move(place.topLeft());
    }
}

void WorkspaceViewController::dropDocumentsThatCannotBeRead()
{
    for (const auto &document : documents()) {
        if (document->arrivalError()) {
            m_services.documents.remove(*document);
            removeFromAllPanes(*document);
        }
    }
}
