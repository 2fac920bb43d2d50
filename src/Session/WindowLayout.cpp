// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/WindowLayout.h"

#include "Model/TextDocument.h"

#include <set>

namespace {

SessionSnapshot::Document entryOf(const TextDocument &document, const DraftNames &drafts)
{
    const auto draft = drafts.find(document.id());
    return {
        .id = document.id(),
        .filePath = document.isUntitled() ? std::nullopt : std::optional(document.path()),
        .draftFilename = draft == drafts.end() ? std::nullopt : std::optional(draft->second),
        .languageID = document.languageWasChosenManually ? std::optional(document.language().id()) : std::nullopt,
        .encodingRawValue = quint32(document.encoding()),
        .lineEnding = rawValue(document.lineEnding()).toString(),
        .selection = document.lastSelectedRange,
        .scrollOffset = document.lastScrollOffset,
    };
}

/// Of a pane that names only what did not come back there is none.
std::optional<WindowLayout::Pane> paneOf(const SessionSnapshot::Pane &entry, const std::map<QUuid, std::shared_ptr<TextDocument>> &byId)
{
    const qint64 wanted = entry.selectedIndex;
    WindowLayout::Pane pane;
    for (qsizetype index = 0; index < entry.documentIDs.size(); ++index) {
        const auto known = byId.find(entry.documentIDs[index]);
        if (known != byId.end() && std::ranges::find(pane.documents, known->second) == pane.documents.end()) {
            pane.selectedIndex = index == wanted ? int(pane.documents.size()) : pane.selectedIndex;
            pane.documents.push_back(known->second);
        }
    }
    return pane.documents.empty() ? std::nullopt : std::optional(pane);
}

} // namespace

SessionSnapshot snapshotOf(const WindowLayout &window, const std::vector<std::shared_ptr<TextDocument>> &documents,
                           const DraftNames &drafts)
{
    SessionSnapshot snapshot{.documents = {},
                             .panes = {},
                             .focusedPaneIndex = qint64(window.activePane),
                             .splitIsVertical = window.orientation == Qt::Horizontal,
                             .windowFrame = window.frame ? std::optional(window.frame->toString()) : std::nullopt};
    std::set<const TextDocument *> named;
    const auto add = [&](const std::shared_ptr<TextDocument> &document) {
        if (!document->isGenerated() && named.insert(document.get()).second) {
            snapshot.documents << entryOf(*document, drafts);
        }
    };
    for (const WindowLayout::Pane &pane : window.panes) {
        SessionSnapshot::Pane &entry = snapshot.panes.emplaceBack(SessionSnapshot::Pane{.selectedIndex = pane.selectedIndex});
        for (const auto &document : pane.documents) {
            entry.documentIDs << document->id();
            add(document);
        }
    }
    for (const auto &document : documents) {
        if (document->hasUnsavedText()) {
            add(document);
        }
    }
    return snapshot;
}

WindowLayout layoutOf(const SessionSnapshot &snapshot, const std::vector<RestoredDocument> &restored)
{
    std::map<QUuid, std::shared_ptr<TextDocument>> byId;
    for (const RestoredDocument &document : restored) {
        byId.emplace(document.idInSnapshot, document.document);
    }
    byId.erase(QUuid());
    WindowLayout window{.panes = {},
                        .orientation = snapshot.splitIsVertical ? Qt::Horizontal : Qt::Vertical,
                        .frame = WindowFrame::fromString(snapshot.windowFrame.value_or(QString()))};
    std::set<const TextDocument *> shown;
    for (qsizetype index = 0; index < snapshot.panes.size(); ++index) {
        if (const auto pane = paneOf(snapshot.panes[index], byId)) {
            window.activePane = index == snapshot.focusedPaneIndex ? window.panes.size() : window.activePane;
            window.panes.push_back(*pane);
            std::ranges::transform(pane->documents, std::inserter(shown, shown.end()), &std::shared_ptr<TextDocument>::get);
        }
    }
    for (const RestoredDocument &document : restored) {
        if (shown.insert(document.document.get()).second) {
            if (window.panes.empty()) {
                window.panes.emplace_back();
            }
            window.panes[window.activePane].documents.push_back(document.document);
        }
    }
    return window;
}
