// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Model/PaneLayout.h"

#include <algorithm>
#include <unordered_set>

int PaneLayout::Pane::indexOf(const TextDocument &document) const
{
    const auto found = std::ranges::find(tabs, &document, [](const Document &tab) { return tab.get(); });
    return found == tabs.end() ? -1 : int(found - tabs.begin());
}

int PaneLayout::tabCount() const
{
    int count = 0;
    for (const Pane &pane : m_panes) {
        count += pane.count();
    }
    return count;
}

PaneLayout::Documents PaneLayout::documents() const
{
    Documents all;
    std::unordered_set<const TextDocument *> seen;
    for (const Pane &pane : m_panes) {
        std::ranges::copy_if(pane.tabs, std::back_inserter(all), [&](const Document &tab) { return seen.insert(tab.get()).second; });
    }
    return all;
}

int PaneLayout::paneShowing(const TextDocument &document) const
{
    const auto found = std::ranges::find_if(m_panes, [&](const Pane &pane) { return pane.holds(document); });
    return found == m_panes.end() ? -1 : int(found - m_panes.begin());
}

int PaneLayout::countOf(const TextDocument &document) const
{
    return int(std::ranges::count_if(m_panes, [&](const Pane &pane) { return pane.holds(document); }));
}

int PaneLayout::paneWithId(int id) const
{
    const auto found = std::ranges::find(m_panes, id, &Pane::id);
    return found == m_panes.end() ? -1 : int(found - m_panes.begin());
}

// Changing a copy

void PaneLayout::addPane(const Documents &documents, int selected)
{
    m_panes.push_back({.id = ++m_lastId, .tabs = documents, .selected = std::clamp(selected, 0, int(documents.size()) - 1)});
    m_active = std::max(m_active, 0);
}

void PaneLayout::show(const Document &document)
{
    if (const int index = paneShowing(*document); index >= 0) {
        m_active = index;
        at(index).selected = at(index).indexOf(*document);
    } else if (isEmpty()) {
        addPane({document}, 0);
    } else {
        Pane &pane = at(m_active);
        pane.tabs.push_back(document);
        pane.selected = pane.count() - 1;
    }
}

void PaneLayout::erase(int pane)
{
    m_panes.erase(m_panes.begin() + pane);
    m_active = isEmpty() ? -1 : std::max(pane - 1, 0);
}

void PaneLayout::closeTab(int pane, int tab, Selected kept)
{
    Pane &changed = at(pane);
    if (changed.count() == 1) {
        erase(pane);
        return;
    }
    changed.tabs.erase(changed.tabs.begin() + tab);
    const bool goesLeft = kept == Selected::tab && tab < changed.selected;
    changed.selected = std::min(changed.selected - (goesLeft ? 1 : 0), changed.count() - 1);
}

void PaneLayout::remove(int pane)
{
    const Documents homeless = std::move(at(pane).tabs);
    erase(pane);
    for (const Document &document : homeless) {
        if (paneShowing(*document) < 0) {
            at(m_active).tabs.push_back(document);
        }
    }
}

// Operations

PaneLayout PaneLayout::showing(const Documents &documents) const
{
    PaneLayout next = *this;
    std::ranges::for_each(documents, [&next](const Document &document) { next.show(document); });
    return next;
}

PaneLayout PaneLayout::adding(const Document &document) const
{
    if (isEmpty()) {
        return showing({document});
    }
    PaneLayout next = appending({document});
    Pane &pane = next.at(m_active);
    pane.selected = pane.indexOf(*document);
    return next;
}

PaneLayout PaneLayout::inserting(const Document &document, int pane, int tab) const
{
    const PaneLayout here = activating(pane);
    const PaneLayout next = here.adding(document);
    if (!hasPane(pane) || here.active()->holds(*document)) {
        return next;
    }
    const int last = next.active()->count() - 1;
    return next.moving(pane, last, std::clamp(tab, 0, last));
}

PaneLayout PaneLayout::addingPane(const Documents &documents, int selected) const
{
    PaneLayout next = *this;
    next.addPane(documents, selected);
    return next;
}

PaneLayout PaneLayout::appending(const Documents &documents) const
{
    PaneLayout next = *this;
    Documents &tabs = next.at(m_active).tabs;
    std::ranges::copy_if(documents, std::back_inserter(tabs), [this](const Document &document) { return !active()->holds(*document); });
    return next;
}

PaneLayout PaneLayout::split(Qt::Orientation orientation) const
{
    PaneLayout next = turned(orientation);
    if (!isEmpty()) {
        next.addPane({current()}, 0);
        next.m_active = next.paneCount() - 1;
    }
    return next;
}

PaneLayout PaneLayout::turned(Qt::Orientation orientation) const
{
    PaneLayout next = *this;
    next.m_orientation = orientation;
    return next;
}

PaneLayout PaneLayout::activating(int pane) const
{
    PaneLayout next = *this;
    next.m_active = hasPane(pane) ? pane : m_active;
    return next;
}

PaneLayout PaneLayout::activatingNext(int step) const
{
    return isEmpty() ? *this : activating((m_active + step + paneCount()) % paneCount());
}

PaneLayout PaneLayout::selecting(int pane, int tab) const
{
    PaneLayout next = *this;
    if (hasPane(pane) && tab >= 0 && tab < next.at(pane).count()) {
        next.at(pane).selected = tab;
    }
    return next;
}

PaneLayout PaneLayout::selectingNext(int step) const
{
    return isEmpty() ? *this : selecting(m_active, (active()->selected + step + active()->count()) % active()->count());
}

PaneLayout PaneLayout::moving(int pane, int from, int to) const
{
    PaneLayout next = *this;
    const auto isTab = [&](int index) { return index >= 0 && index < m_panes[size_t(pane)].count(); };
    if (!hasPane(pane) || !isTab(from) || !isTab(to)) {
        return next;
    }
    Pane &changed = next.at(pane);
    const Document selected = changed.selectedTab();
    const Document moved = changed.tabs[size_t(from)];
    changed.tabs.erase(changed.tabs.begin() + from);
    changed.tabs.insert(changed.tabs.begin() + to, moved);
    changed.selected = changed.indexOf(*selected);
    return next;
}

PaneLayout PaneLayout::closing(int pane, int tab, Selected kept) const
{
    PaneLayout next = *this;
    if (hasPane(pane) && tab >= 0 && tab < next.at(pane).count()) {
        next.closeTab(pane, tab, kept);
    }
    return next;
}

PaneLayout PaneLayout::closing(const TextDocument &document, Selected kept) const
{
    PaneLayout next = *this;
    for (int pane = next.paneShowing(document); pane >= 0; pane = next.paneShowing(document)) {
        next.closeTab(pane, next.at(pane).indexOf(document), kept);
    }
    return next;
}

PaneLayout PaneLayout::removing(int pane) const
{
    PaneLayout next = *this;
    if (hasPane(pane) && paneCount() > 1) {
        next.remove(pane);
    }
    return next;
}

PaneLayout PaneLayout::removingOthers() const
{
    PaneLayout next = *this;
    for (const Pane &pane : m_panes) {
        if (pane.id != active()->id) {
            next.remove(next.paneWithId(pane.id));
        }
    }
    return next;
}

bool PaneLayout::checkInvariants() const
{
    const auto isSound = [this](const Pane &pane) {
        bool areTabsUnique = true;
        for (int tab = 0; tab < pane.count(); ++tab) {
            areTabsUnique = areTabsUnique && pane.tabs[size_t(tab)] && pane.indexOf(*pane.tabs[size_t(tab)]) == tab;
        }
        return areTabsUnique && pane.selected >= 0 && pane.selected < pane.count() && pane.id <= m_lastId &&
               &pane == &m_panes[size_t(paneWithId(pane.id))];
    };
    return (isEmpty() ? m_active == -1 : hasPane(m_active)) && std::ranges::all_of(m_panes, isSound);
}

int PaneLayouts::countOf(const TextDocument &document) const
{
    int count = 0;
    for (const PaneLayout *layout : m_layouts) {
        count += layout->countOf(document);
    }
    return count;
}
