// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Session/WindowLayout.h"

#include "Model/TextDocument.h"

#include <set>

namespace {

/// Of those that came back, the tabs of a pane, and which one was selected.
std::pair<PaneLayout::Documents, int> tabsOf(const SessionSnapshot::Pane &entry, const std::map<QUuid, std::shared_ptr<TextDocument>> &byId)
{
    PaneLayout::Documents tabs;
    int selected = 0;
    for (qsizetype index = 0; index < entry.documentIDs.size(); ++index) {
        const auto known = byId.find(entry.documentIDs[index]);
        if (known != byId.end() && std::ranges::find(tabs, known->second) == tabs.end()) {
            selected = index == entry.selectedIndex ? int(tabs.size()) : selected;
            tabs.push_back(known->second);
        }
    }
    return {tabs, selected};
}

} // namespace

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
        .fileState = draft == drafts.end() ? std::nullopt : document.file().state(),
        .origin = document.isUntitled() ? document.origin : std::nullopt,
    };
}

SessionSnapshot snapshotOf(const WindowLayout &window, const std::vector<std::shared_ptr<TextDocument>> &documents,
                           const DraftNames &drafts)
{
    SessionSnapshot snapshot{.documents = {},
                             .panes = {},
                             .focusedPaneIndex = std::max(window.panes.activeIndex(), 0),
                             .splitIsVertical = window.panes.orientation() == Qt::Horizontal,
                             .windowFrame = window.frame ? std::optional(window.frame->toString()) : std::nullopt};
    std::set<const TextDocument *> named;
    const auto add = [&](const std::shared_ptr<TextDocument> &document) {
        if (!document->isGenerated() && named.insert(document.get()).second) {
            snapshot.documents << entryOf(*document, drafts);
        }
    };
    for (const PaneLayout::Pane &pane : window.panes.panes()) {
        SessionSnapshot::Pane &entry = snapshot.panes.emplaceBack(SessionSnapshot::Pane{.selectedIndex = pane.selected});
        for (const auto &document : pane.tabs) {
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
    PaneLayout panes = PaneLayout().turned(snapshot.splitIsVertical ? Qt::Horizontal : Qt::Vertical);
    int active = 0;
    for (qsizetype index = 0; index < snapshot.panes.size(); ++index) {
        if (const auto [tabs, selected] = tabsOf(snapshot.panes[index], byId); !tabs.empty()) {
            active = index == snapshot.focusedPaneIndex ? panes.paneCount() : active;
            panes = panes.addingPane(tabs, selected);
        }
    }
    panes = panes.activating(active);
    PaneLayout::Documents others;
    for (const RestoredDocument &document : restored) {
        if (panes.paneShowing(*document.document) < 0 && std::ranges::find(others, document.document) == others.end()) {
            others.push_back(document.document);
        }
    }
    if (!others.empty()) {
        panes = panes.isEmpty() ? panes.addingPane(others, 0) : panes.appending(others);
    }
    // What has come to its tab just now tells the user so.
    const auto news = std::ranges::find_if(
        restored, [](const RestoredDocument &document) { return document.idInSnapshot.isNull() && document.document->origin; });
    if (news != restored.end()) {
        panes = panes.adding(news->document);
    }
    return {panes, WindowFrame::fromString(snapshot.windowFrame.value_or(QString()))};
}
