// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TabActions.h"

#include "Commands/Actions.h"
#include "Session/ClosedTabs.h"
#include "Session/SessionKeeper.h"
#include "UI/WorkspaceViewController.h"
#include "Widgets/AlertPresenter.h"

#include <algorithm>
#include <array>

namespace {

/// Nothing of it is lost when it is closed.
bool isSaved(const PaneLayout::Document &document)
{
    return !document->isDirty() && !document->hasUnsavedText();
}

} // namespace

TabActions::TabActions(const WorkspaceServices &services, WorkspaceViewController &workspace) : m_services(services), m_workspace(workspace)
{}

const ActionRow *TabActions::actionFor(const Action &wanted) const
{
    using Self = TabActions;
    static constexpr auto rows = std::to_array<ActionRow>({
        action<&Self::closeTab, &Self::hasTab>(Actions::closeTab),
        action<&Self::closeOtherTabs, &Self::hasOtherTabs>(Actions::closeOtherTabs),
        action<&Self::closeTabsToTheRight, &Self::hasTabsToTheRight>(Actions::closeTabsToTheRight),
        action<&Self::closeSavedTabs, &Self::hasSavedTabs>(Actions::closeSavedTabs),
        action<&Self::reopenClosedTab, &Self::hasClosedTabs>(Actions::reopenClosedTab),
        action<&Self::saveAndClose, &Self::hasTab>(Actions::saveAndClose),
        action<&Self::forceCloseTab, &Self::hasTab>(Actions::forceCloseTab),
        action<&Self::finishWaiting, &Self::hasTab>(Actions::finishWaiting),
        action<&Self::abortWaiting, &Self::hasTab>(Actions::abortWaiting),
    });
    return findAction(rows, wanted);
}

const PaneLayout &TabActions::layout() const
{
    return m_workspace.paneLayout();
}

const PaneLayout::Pane *TabActions::paneOf(const ActionSender &sender) const
{
    const TabIndex index = tabOf(layout(), sender);
    return index.exists() ? &layout().panes()[size_t(index.pane)] : nullptr;
}

// Enabling

bool TabActions::hasOtherTabs(const ActionSender &sender) const
{
    const PaneLayout::Pane *pane = paneOf(sender);
    return pane && pane->count() > 1;
}

bool TabActions::hasTabsToTheRight(const ActionSender &sender) const
{
    const PaneLayout::Pane *pane = paneOf(sender);
    return pane && tabOf(layout(), sender).tab + 1 < pane->count();
}

bool TabActions::hasSavedTabs(const ActionSender &sender) const
{
    const PaneLayout::Pane *pane = paneOf(sender);
    return pane && std::ranges::any_of(pane->tabs, isSaved);
}

bool TabActions::hasClosedTabs() const
{
    return !m_services.closedTabs.isEmpty();
}

// One tab

void TabActions::requestClose(int pane, int tab)
{
    if (pane < 0 || tab < 0 || tab >= layout().panes()[size_t(pane)].count()) {
        return;
    }
    const auto document = layout().panes()[size_t(pane)].tabs[size_t(tab)];
    const auto close = [this, id = layout().panes()[size_t(pane)].id, document](bool mayClose) {
        if (mayClose) {
            m_workspace.takeTab(layout().paneWithId(id), *document);
        }
    };
    if (m_workspace.isShownBeside(pane, *document)) {
        close(true);
        return;
    }
    m_writes.await({document}, m_workspace.window(), [this, document, close](PendingWrites::Outcome outcome) {
        if (outcome == PendingWrites::Outcome::written && document->hasUnsavedText()) {
            m_workspace.documentActions().confirmClose(*document, close);
        } else {
            close(outcome != PendingWrites::Outcome::failed);
        }
    });
}

void TabActions::closeTab(const ActionSender &sender)
{
    const TabIndex index = tabOf(layout(), sender);
    requestClose(index.pane, index.tab);
}

void TabActions::saveAndClose()
{
    const auto document = layout().current();
    if (!document) {
        return;
    }
    m_workspace.documentActions().save(*document, [this, id = layout().active()->id, document](bool isSaved) {
        if (const int pane = layout().paneWithId(id); isSaved && pane >= 0) {
            requestClose(pane, layout().panes()[size_t(pane)].indexOf(*document));
        }
    });
}

/// Without a question.
void TabActions::forceCloseTab()
{
    const auto document = layout().current();
    if (!document) {
        return;
    }
    // But not before it is known what became of what is being written.
    m_writes.await({document}, m_workspace.window(), [this, id = layout().active()->id, document](PendingWrites::Outcome outcome) {
        if (outcome != PendingWrites::Outcome::failed) {
            m_workspace.takeTab(layout().paneWithId(id), *document);
        }
    });
}

/// The program that waits for the current document goes on with what was written.
void TabActions::finishWaiting()
{
    if (const auto document = layout().current()) {
        document->setAwaited(TextDocument::Awaited::yes);
        document->hasUnsavedText() ? saveAndClose() : closeTab({});
    }
}

/// It is notified that nothing came of it.
void TabActions::abortWaiting()
{
    if (const auto document = layout().current()) {
        document->setAwaited(TextDocument::Awaited::aborted);
        closeTab({});
    }
}

// Several tabs

void TabActions::closeOtherTabs(const ActionSender &sender)
{
    if (const PaneLayout::Pane *pane = paneOf(sender)) {
        const auto kept = documentOf(layout(), sender);
        Documents others = pane->tabs;
        std::erase(others, kept);
        closeSeveral(pane->id, others, kept);
    }
}

void TabActions::closeTabsToTheRight(const ActionSender &sender)
{
    if (const PaneLayout::Pane *pane = paneOf(sender)) {
        const int tab = tabOf(layout(), sender).tab;
        closeSeveral(pane->id, Documents(pane->tabs.begin() + tab + 1, pane->tabs.end()),
                     pane->tabs[size_t(std::min(tab, pane->selected))]);
    }
}

/// What is in front then is the nearest to what was.
void TabActions::closeSavedTabs(const ActionSender &sender)
{
    const PaneLayout::Pane *pane = paneOf(sender);
    if (!pane) {
        return;
    }
    Documents saved;
    std::ranges::copy_if(pane->tabs, std::back_inserter(saved), isSaved);
    const auto selected = pane->tabs.begin() + pane->selected;
    auto front = std::find_if_not(selected, pane->tabs.end(), isSaved);
    if (front == pane->tabs.end()) {
        const auto before = std::find_if_not(std::reverse_iterator(selected), pane->tabs.rend(), isSaved);
        front = before == pane->tabs.rend() ? front : before.base() - 1;
    }
    closeSeveral(pane->id, saved, front == pane->tabs.end() ? nullptr : *front);
}

void TabActions::closeSeveral(int pane, const Documents &documents, const PaneLayout::Document &front)
{
    m_writes.await(documents, m_workspace.window(), [this, pane, documents, front](PendingWrites::Outcome outcome) {
        if (outcome == PendingWrites::Outcome::failed) {
            return;
        }
        Closing closing{.pane = pane, .front = front};
        for (const auto &document : documents) {
            const bool isAsked = outcome == PendingWrites::Outcome::written && document->hasUnsavedText() &&
                                 !m_workspace.isShownBeside(layout().paneWithId(pane), *document);
            (isAsked ? closing.asked : closing.others).push_back(document);
        }
        goOn(std::move(closing));
    });
}

/// Shows each text while it is asked about. After a Cancel all that is left stays, also what would not be asked about.
void TabActions::goOn(Closing closing)
{
    const auto isGone = [&](const auto &document) {
        const int pane = layout().paneWithId(closing.pane);
        return pane < 0 || !layout().panes()[size_t(pane)].holds(*document);
    };
    std::erase_if(closing.asked, isGone);
    if (!closing.asked.empty()) {
        const auto document = closing.asked.front();
        closing.asked.erase(closing.asked.begin());
        select(closing.pane, *document);
        m_workspace.documentActions().confirmClose(*document, [this, document, closing](bool mayClose) {
            if (mayClose) {
                m_workspace.takeTab(layout().paneWithId(closing.pane), *document);
                goOn(closing);
            }
        });
        return;
    }
    std::erase_if(closing.others, isGone);
    if (closing.front) {
        select(closing.pane, *closing.front);
    }
    if (closing.others.empty()) {
        return;
    }
    // What is in front goes last, so that none of the others comes in its place for a moment.
    const auto shown = layout().panes()[size_t(layout().paneWithId(closing.pane))].selectedTab();
    std::stable_partition(closing.others.begin(), closing.others.end(), [&](const auto &document) { return document != shown; });
    for (const auto &document : closing.others) {
        m_workspace.takeTab(layout().paneWithId(closing.pane), *document);
    }
}

void TabActions::select(int pane, const TextDocument &document)
{
    const int index = layout().paneWithId(pane);
    if (index >= 0 && layout().panes()[size_t(index)].holds(document)) {
        m_workspace.setPaneLayout(layout().activating(index).selecting(index, layout().panes()[size_t(index)].indexOf(document)));
    }
}

// Opening again

void TabActions::reopenClosedTab()
{
    while (const auto reopened = m_services.closedTabs.reopen()) {
        if (reopened->document) {
            m_workspace.showReopened(*reopened->document, reopened->place);
        } else if (!reopened->path.isEmpty()) {
            // It is not there, which is said.
            m_workspace.open({reopened->path});
        } else {
            continue;
        }
        // In its draft first.
        m_services.keeper.keep();
        m_services.closedTabs.keep();
        return;
    }
    m_services.presenter.beep();
}
