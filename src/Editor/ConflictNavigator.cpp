// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/ConflictNavigator.h"

#include "Text/MergeConflicts.h"
#include "View/MarkedScrollBar.h"
#include "View/TextView.h"

#include <algorithm>

ConflictNavigator::ConflictNavigator(TextView &view, const CommandServices &services) : QObject(&view), m_view(view), m_services(services)
{
    connect(&view.storage(), &TextStorage::changed, this, &ConflictNavigator::noteEdit);
    if (MarkedScrollBar *bar = MarkedScrollBar::of(view)) {
        bar->setSource(ScrollMark::conflict, {.any = [this] { return hasConflicts(); },
                                              .has = [this](TextRange stretch) { return firstIn(stretch).has_value(); },
                                              .go = [this](TextRange stretch) { goTo(firstIn(stretch)); }});
    }
    searchSoon();
}

void ConflictNavigator::noteEdit(const TextChange &change)
{
    MergeConflicts::map(m_conflicts, change.edits);
    searchSoon();
}

void ConflictNavigator::searchSoon()
{
    m_searching.cancel();
    m_rest = m_services.scheduler.after(restTime, [this] { search(); });
}

void ConflictNavigator::search()
{
    const Rope &text = m_view.storage().text();
    if (text.isEmpty() || text.length() > longestText) {
        take({});
        return;
    }
    m_searching = BackgroundTask::start(
        m_services.workers, [text](const std::stop_token &stop) { return MergeConflicts::in(text, stop); },
        // An edit meanwhile has cancelled it.
        [this](std::vector<TextRange> found) { take(std::move(found)); });
}

void ConflictNavigator::take(std::vector<TextRange> conflicts)
{
    if (m_conflicts == conflicts) {
        return;
    }
    m_conflicts = std::move(conflicts);
    if (MarkedScrollBar *bar = MarkedScrollBar::of(m_view)) {
        bar->placesChanged();
    }
}

std::optional<TextRange> ConflictNavigator::firstIn(TextRange stretch) const
{
    const auto found = std::ranges::upper_bound(m_conflicts, stretch.location, {}, &TextRange::end);
    return found != m_conflicts.end() && found->location < stretch.end() ? std::optional(*found) : std::nullopt;
}

void ConflictNavigator::goToNext()
{
    const auto next = std::ranges::upper_bound(m_conflicts, m_view.selection().caret, {}, &TextRange::location);
    goTo(m_conflicts.empty() ? std::nullopt : std::optional(next == m_conflicts.end() ? m_conflicts.front() : *next));
}

void ConflictNavigator::goToPrevious()
{
    const auto behind = std::ranges::lower_bound(m_conflicts, m_view.selection().caret, {}, &TextRange::location);
    goTo(m_conflicts.empty() ? std::nullopt : std::optional(behind == m_conflicts.begin() ? m_conflicts.back() : *std::prev(behind)));
}

void ConflictNavigator::goTo(std::optional<TextRange> conflict)
{
    if (!conflict) {
        m_services.beep();
        return;
    }
    m_view.setSelection(TextSelection::at(conflict->location), TextView::Reveal::nearest);
    m_view.showIndicator(*conflict);
}
