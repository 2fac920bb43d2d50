// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Find/TextFinder.h"

#include "Find/FindState.h"
#include "Text/TextBoundaries.h"
#include "View/MarkedScrollBar.h"
#include "View/TextView.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace {

// Some milliseconds each.
constexpr qsizetype literalAtOnce = qsizetype(256) * 1024;
constexpr qsizetype expressionAtOnce = qsizetype(16) * 1024;
/// Units of a pattern that a field can show.
constexpr qsizetype longestPattern = 10'000;
constexpr auto countDelay = 80ms;
constexpr auto progressInterval = 100ms;
/// Marks are looked for in so much text around what is asked for.
constexpr qsizetype markedBefore = 4096;
constexpr qsizetype markedBehind = 16384;

/// A copy that a worker's task may carry.
std::shared_ptr<TextSearcher> copyOf(const TextSearcher &searcher)
{
    return std::make_shared<TextSearcher>(searcher.clone());
}

} // namespace

TextFinder::TextFinder(TextView &view, Services services, QObject *parent)
    : QObject(parent), m_view(&view), m_services(std::move(services)), m_chosen(view.selection().range()),
      m_searched(std::make_shared<std::atomic<qsizetype>>(0)), m_origin(view.selection()), m_seenRevision(view.storage().revision())
{
    connect(&view.storage(), &TextStorage::changed, this, &TextFinder::storageChanged);
    connect(&view, &TextView::selectionChanged, this, &TextFinder::selectionChanged);
    view.setLook(&TextLooks::marks, [this](TextRange seen) { return marksIn(seen); });
    if (MarkedScrollBar *bar = MarkedScrollBar::of(view)) {
        bar->setSource(ScrollMark::hit, {.any = [this] { return m_index && m_index->count() > 0; },
                                         .has = [this](TextRange stretch) { return m_index && m_index->mayHaveHitsIn(stretch); },
                                         .go = [this](TextRange stretch) { goToHitIn(stretch); }});
    }
    view.setLook(&TextLooks::searched, [this](TextRange seen) {
        const TextRange searched = m_scope ? m_scope->intersected(seen) : TextRange();
        return searched.isEmpty() ? std::vector<TextRange>() : std::vector{searched};
    });
}

TextFinder::~TextFinder()
{
    if (m_view) {
        m_view->setLook(&TextLooks::marks, {});
        m_view->setLook(&TextLooks::searched, {});
        if (MarkedScrollBar *bar = MarkedScrollBar::of(*m_view)) {
            bar->setSource(ScrollMark::hit, {});
        }
    }
}

TextView *TextFinder::view() const
{
    return m_view;
}

// The query

void TextFinder::setQuery(const SearchQuery &query)
{
    if (query == m_query) {
        return;
    }
    m_query = query;
    m_patternError.clear();
    m_replacementError.clear();
    compile();
}

void TextFinder::compile()
{
    m_searcher.reset();
    forgetOutcome();
    m_wanted.reset();
    m_seeking.cancel();
    m_replacing.cancel();
    if (!m_query.pattern.isEmpty()) {
        if (auto searcher = TextSearcher::compile(m_query)) {
            m_searcher = *std::move(searcher);
            m_searcher->setScope(m_scope);
        } else {
            m_patternError = searcher.error().message;
        }
    }
    refresh();
}

void TextFinder::setScope(std::optional<TextRange> scope)
{
    if (std::exchange(m_scope, scope) == scope) {
        return;
    }
    if (scope && m_view) {
        m_origin = TextSelection::at(scope->location);
    }
    compile();
    if (m_view) {
        m_view->viewport()->update();
    }
}

std::optional<TextRange> TextFinder::chosenScope() const
{
    // What is sought is no place to seek in.
    const bool isPattern =
        m_view && m_chosen.length == m_query.pattern.size() && m_view->storage().text().toString(m_chosen) == m_query.pattern;
    return m_chosen.isEmpty() || isPattern ? std::nullopt : std::optional(m_chosen);
}

void TextFinder::forgetReplacementError()
{
    if (!m_replacementError.isEmpty()) {
        m_replacementError.clear();
        emit statusChanged();
    }
}

void TextFinder::share()
{
    m_services.shared.setQuery(m_query, m_services.kept());
}

void TextFinder::useShared()
{
    if (m_marking == Marking::hidden) {
        setQuery(m_services.shared.query());
    }
}

bool TextFinder::hasUsableSelection(Lines most) const
{
    if (!m_view) {
        return false;
    }
    const TextRange range = m_view->selection().range();
    const Rope &text = m_view->storage().text();
    const bool isOneLine = text.lineAt(range.location) == text.lineAt(range.end());
    return !range.isEmpty() && range.length <= longestPattern && (isOneLine || most == Lines::several);
}

bool TextFinder::useSelection(Lines most)
{
    if (!hasUsableSelection(most)) {
        return false;
    }
    SearchQuery query = m_services.shared.query();
    const QString selected = m_view->selectedText();
    query.pattern = query.isRegularExpression ? RegularExpression::escapedPattern(selected) : selected;
    m_services.shared.setQuery(query, m_services.kept());
    setQuery(query);
    return true;
}

qsizetype TextFinder::searchedAtOnce() const
{
    return m_query.isRegularExpression ? expressionAtOnce : literalAtOnce;
}

bool TextFinder::isSmall() const
{
    return m_view->storage().length() <= searchedAtOnce();
}

// Counting

void TextFinder::setMarking(Marking marking)
{
    if (std::exchange(m_marking, marking) != marking) {
        forgetOutcome();
        refresh();
    }
}

bool TextFinder::hasIndex() const
{
    return m_view && m_index && m_indexRevision == m_view->storage().revision();
}

/// Query, text or marking has changed. Until a text that has changed is counted, the marks on its scroll bar stay about where they are.
void TextFinder::refresh(Places places)
{
    if (places == Places::gone || m_marking == Marking::hidden || !m_searcher) {
        m_index.reset();
    }
    m_marked.reset();
    m_countSoon.cancel();
    m_counting.cancel();
    if (m_view) {
        const bool counts = m_marking == Marking::shown && m_searcher;
        if (counts && isSmall()) {
            m_index = HitIndex::make(*m_searcher, m_view->storage().text());
            m_indexRevision = m_view->storage().revision();
        } else if (counts) {
            m_countSoon = m_services.scheduler.after(countDelay, [this] { startCounting(); });
        }
        markPlaces();
        // With nothing marked, before and now, a key paints no more than its row.
        if (std::exchange(m_hasMarks, counts) || counts) {
            m_view->viewport()->update();
        }
    }
    emit statusChanged();
}

void TextFinder::startCounting()
{
    if (!m_view || !m_searcher) {
        return;
    }
    struct Counted {
        HitIndex index;
        bool gaveUp;
    };
    restartProgress();
    m_counting = BackgroundTask::start(
        m_services.workers,
        [searcher = copyOf(*m_searcher), snapshot = m_view->storage().snapshot(), searched = m_searched](const std::stop_token &stop) {
            HitIndex index = HitIndex::make(*searcher, snapshot.text, {.stop = stop, .searched = searched});
            return Counted{std::move(index), searcher->gaveUp()};
        },
        [this, revision = m_view->storage().revision()](const Counted &counted) {
            // An edit would have cancelled it.
            m_index = counted.index;
            m_indexRevision = revision;
            m_marked.reset();
            m_outcome.isIncomplete = counted.gaveUp;
            markPlaces();
            if (m_view) {
                m_view->viewport()->update();
            }
            emit statusChanged();
            if (m_view && m_wanted && m_seeking.isPending()) {
                seek(Seek(*m_wanted));
            }
        });
}

void TextFinder::markPlaces()
{
    MarkedScrollBar *bar = m_view ? MarkedScrollBar::of(*m_view) : nullptr;
    // With nothing to be marked, before and now, a key does not paint the bar.
    if (bar && (std::exchange(m_hasPlaces, m_index.has_value()) || m_index)) {
        bar->placesChanged();
    }
}

bool TextFinder::isBusy() const
{
    return m_counting.isPending() || m_seeking.isPending() || m_replacing.isPending();
}

/// What goes on is reported when it takes longer than a moment.
void TextFinder::restartProgress()
{
    m_searched = std::make_shared<std::atomic<qsizetype>>(0);
    m_isSlow = false;
    m_progressTimer = m_services.scheduler.every(progressInterval, progressInterval / 2, [this] {
        m_isSlow = isBusy();
        if (!m_isSlow) {
            m_progressTimer.cancel();
        }
        emit statusChanged();
    });
}

bool TextFinder::cancel()
{
    const bool wasBusy = isBusy() || m_countSoon.isPending();
    m_countSoon.cancel();
    m_counting.cancel();
    m_wanted.reset();
    m_seeking.cancel();
    m_replacing.cancel();
    m_progressTimer.cancel();
    m_isSlow = false;
    if (wasBusy) {
        emit statusChanged();
    }
    return wasBusy;
}

TextFinder::Status TextFinder::status()
{
    Status status = m_outcome;
    if (!m_view) {
        return status;
    }
    status.isReplacing = m_replacing.isPending();
    if (m_isSlow && isBusy()) {
        const auto length = static_cast<double>(std::max<qsizetype>(1, m_view->storage().length()));
        status.progress = std::clamp(static_cast<double>(m_searched->load(std::memory_order_relaxed)) / length, 0.0, 1.0);
    }
    if (hasIndex()) {
        status.count = m_index->count();
        if (const auto hit = selectedHit()) {
            if (const auto index = m_index->indexOf(*hit, *m_searcher, m_view->storage().text())) {
                status.selected = *index + 1;
            }
        }
    }
    status.isIncomplete = status.isIncomplete || (m_searcher && m_searcher->gaveUp());
    return status;
}

// Going from hit to hit

void TextFinder::findNext()
{
    go(Direction::forward);
}

void TextFinder::findPrevious()
{
    go(Direction::backward);
}

void TextFinder::go(Direction direction)
{
    useShared();
    forgetOutcome();
    if (!m_view || !m_searcher) {
        m_services.beep();
        emit statusChanged();
        return;
    }
    share();
    if (m_seeking.isPending() && m_wanted && m_wanted->direction == direction) {
        return;
    }
    const TextRange place = selectedHit().value_or(m_view->selection().range());
    seek({.direction = direction, .from = direction == Direction::forward ? place.end() : place.location});
}

void TextFinder::goToHitIn(TextRange stretch)
{
    forgetOutcome();
    if (m_view && m_searcher) {
        seek({.direction = Direction::forward, .from = stretch.location});
    }
}

void TextFinder::findWhileTyping()
{
    forgetOutcome();
    if (!m_view) {
        return;
    }
    if (!m_searcher) {
        arrive(std::nullopt, Purpose::typing);
        return;
    }
    seek({.direction = Direction::forward, .purpose = Purpose::typing, .from = m_origin.range().location});
}

std::optional<TextFinder::Found> TextFinder::foundByIndex(const Seek &wanted)
{
    const Rope &text = m_view->storage().text();
    const bool isForward = wanted.direction == Direction::forward;
    const auto find = [&](qsizetype from) {
        return isForward ? m_index->next(from, *m_searcher, text) : m_index->previous(from, *m_searcher, text);
    };
    auto hit = find(wanted.from);
    const bool hasWrapped = !hit;
    if (hasWrapped) {
        hit = find(isForward ? 0 : text.length());
    }
    return hit ? std::optional(Found{*hit, hasWrapped}) : std::nullopt;
}

void TextFinder::seek(const Seek &wanted)
{
    m_seeking.cancel();
    m_wanted.reset();
    if (hasIndex()) {
        arrive(foundByIndex(wanted), wanted.purpose);
        return;
    }
    // Most hits are near.
    const Rope &text = m_view->storage().text();
    const qsizetype near = searchedAtOnce();
    const auto hit = wanted.direction == Direction::forward
                         ? m_searcher->firstHit(text, TextRange{wanted.from, near}.clampedTo(text.length()))
                         : m_searcher->lastHit(text, TextRange::between(std::max<qsizetype>(0, wanted.from - near), wanted.from));
    if (hit) {
        arrive(Found{*hit}, wanted.purpose);
        return;
    }
    m_wanted = wanted;
    seekInBackground();
}

void TextFinder::seekInBackground()
{
    struct Search {
        std::shared_ptr<TextSearcher> searcher;
        Rope text;
        Seek wanted;
        SearchControl control;

        [[nodiscard]] std::optional<TextRange> in(TextRange range) const
        {
            return wanted.direction == Direction::forward ? searcher->firstHit(text, range, control)
                                                          : searcher->lastHit(text, range, control);
        }
        [[nodiscard]] std::optional<Found> run() const
        {
            const bool isForward = wanted.direction == Direction::forward;
            const TextRange before = TextRange::between(0, wanted.from);
            const TextRange behind = TextRange::between(wanted.from, text.length());
            if (const auto hit = in(isForward ? behind : before)) {
                return Found{*hit};
            }
            const auto hit = in(isForward ? before : behind);
            return hit ? std::optional(Found{*hit, true}) : std::nullopt;
        }
    };
    const Search search{copyOf(*m_searcher), m_view->storage().text(), *m_wanted, {.searched = nullptr}};
    const auto purpose = m_wanted->purpose;
    if (isSmall()) {
        m_wanted.reset();
        arrive(search.run(), purpose);
        return;
    }
    restartProgress();
    m_seeking = BackgroundTask::start(
        m_services.workers,
        [search, searched = m_searched](const std::stop_token &stop) {
            Search stoppable = search;
            stoppable.control = {.stop = stop, .searched = searched};
            return stoppable.run();
        },
        [this, purpose](const std::optional<Found> &found) {
            m_wanted.reset();
            if (m_view) {
                arrive(found, purpose);
            }
        });
}

void TextFinder::arrive(const std::optional<Found> &found, Purpose purpose)
{
    if (found) {
        m_outcome.hasWrapped = found->hasWrapped;
        select(found->hit, purpose);
    } else if (purpose == Purpose::going) {
        m_outcome.isNotFound = true;
        m_services.beep();
    } else {
        m_outcome.isNotFound = m_searcher.has_value();
        if (selectedHit()) {
            const QScopedValueRollback<bool> selecting(m_isSelecting, true);
            m_view->setSelection(m_origin, TextView::Reveal::nearest);
        }
    }
    emit statusChanged();
}

void TextFinder::select(TextRange hit, Purpose purpose)
{
    const Rope &text = m_view->storage().text();
    // A hit may end inside what the caret takes as one character; all of that is selected then.
    const qsizetype from = TextBoundaries::snapped(text, hit.location);
    const qsizetype end =
        TextBoundaries::snapped(text, hit.end()) == hit.end() ? hit.end() : TextBoundaries::nextGrapheme(text, hit.end() - 1);
    const auto isSeen = [this](qsizetype offset) {
        const auto top = m_view->textViewport().topOf(m_view->layoutManager().rowOf(offset));
        return top && *top >= 0 && *top + m_view->layoutManager().rowHeight() <= m_view->viewport()->height();
    };
    const bool wasSeen = isSeen(from) && isSeen(end);
    {
        const QScopedValueRollback<bool> selecting(m_isSelecting, true);
        m_view->setSelection({from, end}, wasSeen ? TextView::Reveal::nearest : TextView::Reveal::center);
    }
    // The caret is behind the hit; the hit's start is to be seen too.
    m_view->revealOffset(from);
    m_view->revealCaret();
    m_selected = {.hit = hit, .selection = m_view->selection(), .revision = m_view->storage().revision()};
    if (purpose == Purpose::going) {
        m_origin = m_view->selection();
        m_view->showIndicator(TextRange::between(from, end));
    }
}

/// What is selected, which may be a hit; the hit itself when it was this finder that selected it.
std::optional<TextRange> TextFinder::selectedHit() const
{
    const TextSelection selection = m_view->selection();
    if (m_selected && m_selected->selection == selection && m_selected->revision == m_view->storage().revision()) {
        return m_selected->hit;
    }
    return selection.isEmpty() ? std::nullopt : std::optional(selection.range());
}

// Replacing

bool TextFinder::canReplace() const
{
    return m_view && !m_view->isReadOnly();
}

std::optional<ReplacementTemplate> TextFinder::checkedTemplate(const QString &typed)
{
    forgetOutcome();
    m_replacementError.clear();
    if (!canReplace() || !m_searcher) {
        m_services.beep();
        emit statusChanged();
        return std::nullopt;
    }
    auto checked = m_searcher->replacementTemplate(typed);
    if (!checked) {
        m_replacementError = checked.error().message;
        m_services.beep();
        emit statusChanged();
        return std::nullopt;
    }
    m_services.shared.history().add(FindHistory::Kind::replacements, typed, m_services.kept());
    return ReplacementTemplate(*std::move(checked), m_services.shared.letterCase());
}

void TextFinder::replaceSelectedHit(const ReplacementTemplate &replacementTemplate)
{
    if (const auto hit = selectedHit()) {
        if (const auto text = m_searcher->replacement(m_view->storage().text(), *hit, replacementTemplate)) {
            m_view->insertText(*text, *hit);
        }
    }
}

std::optional<TextFinder::Preview> TextFinder::preview(const QString &typed)
{
    if (!canReplace() || !m_searcher) {
        return std::nullopt;
    }
    const auto hit = selectedHit();
    const auto checked = m_searcher->replacementTemplate(typed);
    if (!hit || !checked) {
        return std::nullopt;
    }
    const auto replacement = m_searcher->replacement(m_view->storage().text(), *hit, {*checked, m_services.shared.letterCase()});
    return replacement ? std::optional(Preview{*hit, *replacement}) : std::nullopt;
}

void TextFinder::replace(const QString &typed)
{
    const auto checked = checkedTemplate(typed);
    if (!checked) {
        return;
    }
    share();
    replaceSelectedHit(*checked);
    // Who is notified of the edit may close the view.
    if (!m_view) {
        return;
    }
    const TextRange place = selectedHit().value_or(m_view->selection().range());
    seek({.direction = Direction::forward, .from = place.end()});
}

void TextFinder::replaceAll(const QString &typed)
{
    const auto checked = checkedTemplate(typed);
    if (!checked) {
        return;
    }
    share();
    m_seeking.cancel();
    m_wanted.reset();
    if (isSmall()) {
        const Rope &text = m_view->storage().text();
        applyReplacement(m_searcher->replacementOfAll(text, {0, text.length()}, *checked));
    } else {
        startReplacing(*checked);
    }
}

void TextFinder::startReplacing(const ReplacementTemplate &replacementTemplate)
{
    restartProgress();
    m_template = replacementTemplate;
    const auto search = [searcher = copyOf(*m_searcher), searched = m_searched, replacementTemplate](const Rope &text,
                                                                                                     const std::stop_token &stop) {
        using enum TextReplacement::Occurrences;
        return ReplacementSearch::Found{
            searcher->replacementOfAll(text, {0, text.length()}, replacementTemplate, all, {.stop = stop, .searched = searched})};
    };
    m_replacing.start(m_view->storage(), m_services.workers, search, [this](const ReplacementSearch::Found &found) {
        if (canReplace()) {
            applyReplacement(found.replacement);
        }
    });
}

void TextFinder::applyReplacement(const TextReplacement &replacement)
{
    if (replacement.count == 0) {
        m_outcome.isNotFound = true;
        m_services.beep();
        emit statusChanged();
        return;
    }
    m_view->apply(replacement.edits, GroupKind::other, replacement.selectionAfter(m_view->storage().text(), m_view->selection()),
                  TextView::Reveal::no);
    m_outcome.replaced = replacement.count;
    emit statusChanged();
}

// Following the view

void TextFinder::selectAllHits()
{
    share();
    if (m_searcher) {
        emit allHitsWanted();
    }
}

void TextFinder::storageChanged(const TextChange &change)
{
    if (!m_view) {
        return;
    }
    m_seenRevision = m_view->storage().revision();
    m_origin = change.mapped(m_origin);
    m_chosen = change.mapped(m_chosen);
    if (m_scope) {
        m_scope = TextRange::between(change.mapped(m_scope->location, Bias::before), change.mapped(m_scope->end(), Bias::after));
        if (m_searcher) {
            m_searcher->setScope(m_scope);
        }
    }
    refresh(Places::kept);
    if (m_scope && m_replacing.isPending()) {
        startReplacing(ReplacementTemplate(*m_template)); // elsewhere now
    }
    if (m_wanted && m_seeking.isPending()) {
        m_wanted->from = change.mapped(m_wanted->from, Bias::before);
        seekInBackground();
    }
}

void TextFinder::selectionChanged()
{
    // An edit elsewhere, of which this is about to be notified, moves the selection along with its text.
    const bool isMoved = m_view && m_view->storage().revision() != m_seenRevision;
    if (m_isSelecting || !m_view || isMoved) {
        return;
    }
    // Whoever goes elsewhere does not wait for the hit any more.
    m_wanted.reset();
    m_seeking.cancel();
    m_origin = m_view->selection();
    m_chosen = m_origin.range();
    m_outcome.hasWrapped = false;
    m_outcome.isNotFound = false;
    m_outcome.replaced.reset();
    emit statusChanged();
}

void TextFinder::forgetOutcome()
{
    m_outcome = {.isIncomplete = m_outcome.isIncomplete && hasIndex()};
}

// Marks

std::vector<TextRange> TextFinder::marksIn(TextRange seen)
{
    if (m_marking == Marking::hidden || !m_searcher || !m_view) {
        return {};
    }
    const bool isKnown = m_marked && m_marked->revision == m_view->storage().revision() && m_marked->range.location <= seen.location &&
                         seen.end() <= m_marked->range.end();
    if (!isKnown) {
        markSurroundings(seen);
    }
    const std::vector<TextRange> &hits = m_marked->hits;
    const auto first = std::ranges::lower_bound(hits, seen.location + 1, {}, &TextRange::end);
    const auto last = std::ranges::lower_bound(hits, std::max(seen.end(), seen.location + 1), {}, &TextRange::location);
    return first < last ? std::vector<TextRange>(first, last) : std::vector<TextRange>();
}

void TextFinder::markSurroundings(TextRange seen)
{
    const Rope &text = m_view->storage().text();
    qsizetype from = std::max<qsizetype>(0, seen.location - markedBefore);
    qsizetype start = from;
    if (hasIndex()) {
        start = m_index->searchStart(from);
    } else if (const qsizetype line = text.lineStart(text.lineAt(from)); from - line <= markedBefore) {
        start = line;
    }
    const qsizetype end = std::min(text.length(), seen.end() + markedBehind);
    m_marked = {.range = TextRange::between(from, end), .revision = m_view->storage().revision(), .hits = {}};
    m_searcher->forEachHit(text, TextRange::between(start, end), [this](TextRange hit) {
        m_marked->hits.push_back(hit);
        return true;
    });
}
