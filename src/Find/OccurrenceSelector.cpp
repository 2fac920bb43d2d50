// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/OccurrenceSelector.h"

#include "Base/Translation.h"
#include "Text/TextBoundaries.h"
#include "Text/TextStorage.h"
#include "View/TextView.h"

#include <algorithm>

namespace {

/// Units that are searched at once.
constexpr qsizetype near = qsizetype(1) << 20;
constexpr Scheduler::Milliseconds toBeRead{5000};

bool isWord(const Rope &text, TextRange range)
{
    const QString word = text.toString(range);
    return std::ranges::any_of(word, [](QChar unit) { return unit.isLetterOrNumber() || unit == u'_' || unit.isSurrogate(); });
}

/// For a word of the text.
TextSearcher searcherFor(const Rope &text, TextRange word)
{
    return TextSearcher::compile({.pattern = text.toString(word), .matchesCase = true, .matchesWholeWords = true}).value();
}

/// The first hit that begins in `range` and meets none of the selections.
std::optional<TextRange> freshHit(TextSearcher &searcher, const Rope &text, TextRange range, const Selections &taken,
                                  const SearchControl &control = {})
{
    std::optional<TextRange> found;
    const auto visit = [&](TextRange hit) {
        const auto other = taken.touching(hit);
        const bool isFree = !other || taken[*other].range().intersected(hit).isEmpty();
        if (isFree) {
            found = hit;
        }
        return !isFree;
    };
    searcher.forEachHit(text, range, visit, control);
    return found;
}

std::vector<TextRange> allHits(TextSearcher &searcher, const Rope &text, const SearchControl &control = {})
{
    std::vector<TextRange> hits;
    searcher.forEachHit(
        text, {0, text.length() + 1},
        [&hits](TextRange hit) {
            hits.push_back(hit);
            return qsizetype(hits.size()) <= OccurrenceSelector::mostSelections;
        },
        control);
    return hits;
}

} // namespace

bool OccurrenceSelector::settleQuery()
{
    const Rope &text = m_view.storage().text();
    if (m_searcher && m_revision == m_view.storage().revision() && m_made == m_view.selections()) {
        return true;
    }
    m_searcher.reset();
    const Selections &selections = m_view.selections();
    const bool hasBare = std::ranges::any_of(selections, &CaretSelection::isEmpty);
    const TextRange range = selections.primary().range();
    if (!hasBare && range.length <= TextSearcher::reach) {
        m_searcher = TextSearcher::compile({.pattern = text.toString(range), .matchesCase = true}).value();
        show(selections);
    }
    return m_searcher.has_value();
}

void OccurrenceSelector::selectWords()
{
    const Rope &text = m_view.storage().text();
    const Selections &selections = m_view.selections();
    std::vector<CaretSelection> all(selections.begin(), selections.end());
    for (CaretSelection &one : all) {
        const TextRange word = TextBoundaries::wordAt(text, one.caret.offset);
        if (one.isEmpty() && isWord(text, word)) {
            one = CaretSelection::of({word.location, word.end()});
        }
    }
    const Selections words = Selections::merged(std::move(all), selections.primaryIndex());
    if (words.primary().isEmpty() || words == selections || words.primary().range().length > TextSearcher::reach) {
        m_services.beep();
        return;
    }
    m_searcher = searcherFor(text, words.primary().range());
    show(words);
}

void OccurrenceSelector::selectNext()
{
    if (settleQuery()) {
        seek(m_made, [this](const CaretSelection &found) { show(m_made.with(found)); });
    } else {
        selectWords();
    }
}

void OccurrenceSelector::skip()
{
    if (settleQuery()) {
        seek(m_made, [this](const CaretSelection &found) {
            show(m_made.isSingle() ? Selections(found) : m_made.without(m_made.primaryIndex()).with(found));
        });
    } else {
        selectWords();
    }
}

void OccurrenceSelector::goToNext(TextRange word)
{
    if (word.isEmpty()) {
        m_services.beep();
        return;
    }
    m_seeking.cancel();
    m_searcher = searcherFor(m_view.storage().text(), word);
    seek(TextSelection{word.location, word.end()}, [this](const CaretSelection &found) { show(Selections(found)); });
}

void OccurrenceSelector::seek(const Selections &taken, std::function<void(const CaretSelection &)> then)
{
    if (m_seeking.isPending()) {
        return;
    }
    const auto arrive = [this, then = std::move(then), revision = m_view.storage().revision(),
                         selections = m_view.selections()](const std::optional<TextRange> &hit) {
        if (revision != m_view.storage().revision() || selections != m_view.selections()) {
            return;
        }
        if (hit) {
            then(CaretSelection::of({hit->location, hit->end()}));
        } else {
            m_services.beep();
        }
    };
    const Rope text = m_view.storage().text();
    const qsizetype from = taken.primary().range().end();
    const qsizetype nearEnd = std::min(text.length(), from + near);
    if (const auto hit = freshHit(*m_searcher, text, TextRange::between(from, nearEnd), taken)) {
        arrive(hit);
        return;
    }
    const auto search = [text, from, nearEnd, taken](TextSearcher &searcher, const SearchControl &control) {
        const auto behind = freshHit(searcher, text, TextRange::between(nearEnd, text.length()), taken, control);
        return behind ? behind : freshHit(searcher, text, TextRange::between(0, from), taken, control);
    };
    if (text.length() <= near) {
        arrive(search(*m_searcher, {}));
        return;
    }
    m_seeking = BackgroundTask::start(
        m_services.workers,
        [search, searcher = std::make_shared<TextSearcher>(m_searcher->clone())](const std::stop_token &stop) {
            return search(*searcher, {.stop = stop});
        },
        arrive);
}

void OccurrenceSelector::selectAll()
{
    if (!settleQuery()) {
        selectWords();
    }
    if (m_searcher) {
        selectAllHits(m_searcher->query());
    }
}

void OccurrenceSelector::selectAllHits(const SearchQuery &query)
{
    Result<TextSearcher> searcher = TextSearcher::compile(query);
    if (!searcher) {
        m_services.beep();
        return;
    }
    const Rope text = m_view.storage().text();
    if (text.length() <= near) {
        showAll(allHits(*searcher, text));
        return;
    }
    m_seeking = BackgroundTask::start(
        m_services.workers,
        [text, found = std::make_shared<TextSearcher>(std::move(searcher).value())](const std::stop_token &stop) {
            return allHits(*found, text, {.stop = stop});
        },
        [this, revision = m_view.storage().revision()](const std::vector<TextRange> &hits) {
            if (revision == m_view.storage().revision()) {
                showAll(hits);
            }
        });
}

void OccurrenceSelector::showAll(const std::vector<TextRange> &hits)
{
    if (hits.empty()) {
        m_services.beep();
        return;
    }
    if (qsizetype(hits.size()) > mostSelections) {
        m_services.beep();
        m_services.showMessage(formatted(localized(u"There are more than %d places"), mostSelections), toBeRead);
        return;
    }
    std::vector<CaretSelection> all;
    all.reserve(hits.size());
    std::ranges::transform(hits, std::back_inserter(all), [](TextRange hit) { return CaretSelection::of({hit.location, hit.end()}); });
    // The primary is the one that was, or the next.
    const qsizetype was = m_view.selection().range().location;
    const auto next = std::ranges::lower_bound(hits, was, {}, &TextRange::location);
    show(Selections::merged(std::move(all), next == hits.end() ? hits.size() - 1 : size_t(next - hits.begin())));
}

void OccurrenceSelector::show(const Selections &selections)
{
    m_view.setSelection(selections, TextView::Reveal::nearest);
    m_made = m_view.selections();
    m_revision = m_view.storage().revision();
}
