// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/OccurrenceMarker.h"

#include "Text/TextBoundaries.h"
#include "View/MarkedScrollBar.h"
#include "View/TextView.h"

namespace {

/// Units; in more than that, which is lines of many screens, one does not look for what to repaint.
constexpr qsizetype longestLookedThrough = 0x10000;

std::optional<TextSearcher> searcherFor(const QString &word)
{
    auto searcher = TextSearcher::compile({.pattern = word, .matchesCase = true, .matchesWholeWords = true});
    return searcher ? std::optional(std::move(*searcher)) : std::nullopt;
}

bool isWord(const Rope &text, TextRange range)
{
    const QChar first = range.isEmpty() ? QChar() : text.toString({range.location, 1}).front();
    return first.isLetterOrNumber() || first.isSurrogate() || first == u'_';
}

} // namespace

OccurrenceMarker::OccurrenceMarker(TextView &view, Scheduler &scheduler, Workers &workers)
    : QObject(&view), m_view(view), m_scheduler(scheduler), m_workers(workers)
{
    connect(&view, &TextView::selectionChanged, this, &OccurrenceMarker::update);
    connect(&view.storage(), &TextStorage::didProcessEditing, this, [this] {
        if (!m_view.isEditing()) {
            update();
        }
    });
    view.setLook(&TextLooks::occurrences, [this](TextRange seen) { return occurrencesIn(seen); });
    if (MarkedScrollBar *bar = MarkedScrollBar::of(view)) {
        bar->setSource(ScrollMark::occurrence, {.any = [this] { return m_places.has_value(); },
                                                .has = [this](TextRange stretch) { return m_places && m_places->mayHaveHitsIn(stretch); },
                                                .go = [this](TextRange stretch) { goToPlaceIn(stretch); }});
    }
}

void OccurrenceMarker::setMarking(bool isMarking)
{
    if (m_isMarking != isMarking) {
        m_isMarking = isMarking;
        update();
    }
}

TextRange OccurrenceMarker::word() const
{
    const Rope &text = m_view.storage().text();
    const TextRange selected = m_view.selection().range();
    TextRange word = TextBoundaries::wordAt(text, selected.location);
    // Behind the last letter of a word one is still at it, but not in the line below.
    if (selected.isEmpty() && selected.location > 0 && !isWord(text, word)) {
        word = TextBoundaries::wordAt(text, selected.location - 1);
    }
    const bool isThere = selected.isEmpty() ? word.location <= selected.location && selected.location <= word.end() : word == selected;
    return isThere && word.length <= longestWord && isWord(text, word) ? word : TextRange();
}

void OccurrenceMarker::update()
{
    m_rest.cancel();
    const TextRange before = std::exchange(m_word, word());
    if (m_searcher && (!m_isMarking || m_searcher->query().pattern != m_view.storage().string(m_word))) {
        mark({});
    } else if (m_searcher && before != m_word) {
        // The caret is at another of the same: that one loses its mark, and the one before gets one.
        TextViewRepaint(m_view).ranges({before, m_word});
    }
    if (m_isMarking && !m_searcher) {
        m_rest = m_scheduler.after(restTime, [this] { mark(m_view.storage().string(word())); });
    } else if (m_searcher && m_countedRevision != m_view.storage().revision()) {
        m_rest = m_scheduler.after(restTime, [this] { count(); });
    }
}

void OccurrenceMarker::mark(const QString &word)
{
    if (word.isEmpty() && !m_searcher) {
        return;
    }
    repaintMarked();
    m_searcher = word.isEmpty() ? std::nullopt : searcherFor(word);
    repaintMarked();
    count();
}

void OccurrenceMarker::repaintMarked()
{
    TextViewRepaint repaint(m_view);
    const TextRange seen = repaint.seen();
    if (seen.length > longestLookedThrough) {
        m_view.viewport()->update();
    } else {
        repaint.ranges(occurrencesIn(seen));
    }
}

void OccurrenceMarker::count()
{
    m_countedRevision = m_view.storage().revision();
    m_counting.cancel();
    if (!m_searcher || m_view.storage().length() > longestCounted || !MarkedScrollBar::of(m_view)) {
        setPlaces(std::nullopt);
        return;
    }
    m_counting = BackgroundTask::start(
        m_workers,
        [searcher = std::make_shared<TextSearcher>(m_searcher->clone()), text = m_view.storage().text()](const std::stop_token &stop) {
            return HitIndex::make(*searcher, text, {.stop = stop});
        },
        [this](HitIndex found) { setPlaces(found.count() > 1 ? std::optional(std::move(found)) : std::nullopt); });
}

void OccurrenceMarker::setPlaces(std::optional<HitIndex> places)
{
    if (!places && !m_places) {
        return;
    }
    m_places = std::move(places);
    if (MarkedScrollBar *bar = MarkedScrollBar::of(m_view)) {
        bar->placesChanged();
    }
}

void OccurrenceMarker::goToPlaceIn(TextRange stretch)
{
    const Rope &text = m_view.storage().text();
    const qsizetype from = std::min(stretch.location, text.length());
    const auto hit = m_searcher ? m_searcher->firstHit(text, TextRange::between(from, text.length())) : std::nullopt;
    if (hit) {
        m_view.setSelection({hit->location, hit->end()}, TextView::Reveal::nearest);
    }
}

std::vector<TextRange> OccurrenceMarker::occurrencesIn(TextRange seen)
{
    std::vector<TextRange> found;
    if (m_searcher) {
        // One may begin before what is seen.
        const qsizetype from = std::max<qsizetype>(seen.location - longestWord, 0);
        m_searcher->forEachHit(m_view.storage().text(), TextRange::between(from, seen.end()), [&](TextRange hit) {
            // One with a caret would look selected.
            if (!m_view.selections().touching(hit)) {
                found.push_back(hit);
            }
            return true;
        });
    }
    return found;
}
