// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/BackgroundTask.h"
#include "Text/Selections.h"
#include "Text/TextSearch.h"
#include "View/CommandServices.h"

#include <functional>
#include <optional>

class TextView;

/// Selects what is selected in a text view in further places too, each with a caret of its own: the next place, or all there are; or goes
/// from one place of a word to the next.
///
/// With bare carets it begins with the words at them, which are then sought as whole words; case always counts. What lies near is looked
/// for at once, what does not on a worker, and dropped when the text or the selections are others by then. Main thread only; the view and
/// the services must outlive it.
class OccurrenceSelector final {
public:
    /// More places than that are not selected; the user is told.
    static constexpr qsizetype mostSelections = 1'000'000;

    OccurrenceSelector(TextView &view, CommandServices services) : m_view(view), m_services(std::move(services)) {}

    /// The place behind the primary selection, at the end of the text on from its start, becomes selected too.
    void selectNext();
    /// The same, but the primary selection is given up for it.
    void skip();
    /// Selects the next place of a word and nothing else. There is none of an empty range.
    void goToNext(TextRange word);
    void selectAll();
    /// All hits of a search.
    void selectAllHits(const SearchQuery &query);

private:
    /// True when it is known what is sought; else the words at the carets may be selected now.
    bool settleQuery();
    void selectWords();
    /// `then` gets the first place behind the primary one of `taken`, at the end of the text on from its start, that meets none of these.
    void seek(const Selections &taken, std::function<void(const CaretSelection &)> then);
    void show(const Selections &selections);
    void showAll(const std::vector<TextRange> &hits);

    TextView &m_view;
    CommandServices m_services;
    std::optional<TextSearcher> m_searcher;
    /// As this left them; others mean another search.
    Selections m_made;
    quint64 m_revision = 0;
    BackgroundTask m_seeking;
};
