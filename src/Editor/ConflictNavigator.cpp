// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/ConflictNavigator.h"

#include "Text/MergeConflicts.h"
#include "View/MarkedScrollBar.h"
#include "View/TextView.h"

ConflictNavigator::ConflictNavigator(TextView &view, const CommandServices &services)
    : QObject(&view), m_view(view), m_services(services), m_round(view, services.beep)
{
    connect(&view.storage(), &TextStorage::changed, this, &ConflictNavigator::noteEdit);
    if (MarkedScrollBar *bar = MarkedScrollBar::of(view)) {
        bar->setSource(ScrollMark::conflict, {.any = [this] { return hasConflicts(); },
                                              .has = [this](TextRange stretch) { return firstIn(stretch).has_value(); },
                                              .go = [this](TextRange stretch) { arriveAt(firstIn(stretch)); }});
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

std::optional<size_t> ConflictNavigator::firstIn(TextRange stretch) const
{
    return MergeConflicts::firstIn(m_conflicts, stretch);
}

void ConflictNavigator::goToNext()
{
    arriveAt(m_round.next(MergeConflicts::next(m_conflicts, m_view.selection().caret), m_conflicts.size()));
}

void ConflictNavigator::goToPrevious()
{
    arriveAt(m_round.previous(MergeConflicts::previous(m_conflicts, m_view.selection().caret), m_conflicts.size()));
}

void ConflictNavigator::arriveAt(std::optional<size_t> conflict)
{
    if (conflict) {
        m_round.arriveAt(m_conflicts[*conflict]);
    }
}
