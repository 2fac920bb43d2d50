// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/SearchPreview.h"

#include "View/TextView.h"
#include "Vim/VimEngine.h"

namespace {

/// Units. A hit that begins so far before what is seen is not looked for.
constexpr qsizetype farthest = 0x4000;

VimSearch::Direction opposite(VimSearch::Direction direction)
{
    using enum VimSearch::Direction;
    return direction == forward ? backward : forward;
}

/// None while nothing that can be looked for is typed.
std::optional<VimSearch> typedSearch(const VimEngine &engine)
{
    const VimCommandLine &line = engine.commandLine();
    if (line.text().isEmpty() || !engine.options().searchesWhileTyping) {
        return std::nullopt;
    }
    using enum VimSearch::Direction;
    const VimSearch common = VimSearch::exact({}, line.prefix() == u'/' ? forward : backward, engine.options());
    const auto searches = VimSearch::parse(line.text(), common, engine.lastSearch());
    return searches && searches->front().isValid() ? std::optional(searches->front()) : std::nullopt;
}

bool isSame(const VimSearch &a, const VimSearch &b)
{
    return a.pattern == b.pattern && a.isExact == b.isExact && a.options == b.options;
}

} // namespace

SearchPreview::SearchPreview(TextView &view, Workers &workers) : m_view(view), m_workers(workers) {}

SearchPreview::~SearchPreview()
{
    mark(std::nullopt);
    m_view.setLook(&TextLooks::shownHit, std::nullopt);
}

void SearchPreview::follow(VimEngine &engine)
{
    const bool isExact = engine.options().isExact;
    const bool isTyping = isExact && engine.mode() == VimEngine::Mode::commandLine && engine.commandLine().prefix() != u':';
    const auto typed = isTyping ? typedSearch(engine) : std::nullopt;
    if (isTyping && !m_typing) {
        m_typing = Typing{.place = m_view.textViewport().place(), .caret = m_view.caret().shownOffset()};
    }
    if (!isTyping) {
        endTyping();
    } else if (const VimCommandLine &line = engine.commandLine(); line.text() != m_typing->line || line.hitSteps() != m_typing->steps) {
        m_typing->line = line.text();
        m_typing->steps = line.hitSteps();
        m_looking.cancel();
        typed ? look(engine, *typed) : show(engine, std::nullopt);
    }
    const bool marks = isExact && engine.options().marksHits;
    mark(!marks ? std::nullopt : typed ? typed : engine.showsHits() ? engine.lastSearch() : std::nullopt);
}

// What is typed

/// From the hit that a search leads to, `steps` hits on in its direction, or back.
std::optional<SearchPreview::Found> SearchPreview::find(const VimSearch &search, const Rope &text, qsizetype from, int steps,
                                                        const std::stop_token &stop)
{
    const auto first = search.move(text, from, 1, stop);
    if (!first) {
        return std::nullopt;
    }
    VimSearch back = search;
    back.direction = opposite(search.direction);
    Found found{first->hit, first->position, from};
    for (int step = 0; step < steps; ++step) {
        const auto next = search.move(text, found.position, 1, stop);
        if (!next) {
            return found;
        }
        found = {next->hit, next->position, found.position};
    }
    for (int step = 0; step > steps; --step) {
        const auto before = back.move(text, found.position, 1, stop);
        const auto origin = before ? back.move(text, before->position, 1, stop) : std::nullopt;
        if (!origin) {
            return found;
        }
        found = {before->hit, before->position, origin->position};
    }
    return found;
}

void SearchPreview::look(VimEngine &engine, const VimSearch &search)
{
    const Rope &text = m_view.storage().text();
    const qsizetype from = m_typing->caret;
    const int steps = m_typing->steps;
    if (text.length() <= VimSearch::nearby) {
        show(engine, find(search, text, from, steps, {}));
        return;
    }
    if (const auto near = steps == 0 ? search.move(text, from, 1, {}, VimSearch::nearby) : std::nullopt) {
        show(engine, Found{near->hit, near->position, from});
        return;
    }
    m_looking = BackgroundTask::start(
        m_workers, [search, text, from, steps](const std::stop_token &stop) { return find(search, text, from, steps, stop); },
        [this, &engine, revision = m_view.storage().revision()](const std::optional<Found> &found) {
            show(engine, m_view.storage().revision() == revision ? found : std::nullopt);
        });
}

void SearchPreview::show(VimEngine &engine, const std::optional<Found> &found)
{
    engine.setSearchOrigin(found && m_typing->steps != 0 ? std::optional(found->origin) : std::nullopt);
    m_shown = found;
    m_view.setLook(&TextLooks::shownHit, found ? std::optional(found->hit) : std::nullopt);
    // The same hit is seen at the same place, whatever was typed on the way.
    m_view.scrollTo(m_typing->place);
    if (m_shown) {
        m_view.revealOffset(m_shown->hit.location);
    }
}

/// What was seen comes back, unless the caret has gone to the hit that is.
void SearchPreview::endTyping()
{
    const auto typing = std::exchange(m_typing, std::nullopt);
    if (!typing) {
        return;
    }
    m_looking.cancel();
    const auto shown = std::exchange(m_shown, std::nullopt);
    m_view.setLook(&TextLooks::shownHit, std::nullopt);
    const qsizetype caret = m_view.caret().shownOffset();
    const bool isThere = shown && caret == shown->position;
    if (isThere || caret == typing->caret) {
        m_view.scrollTo(typing->place);
    }
    if (isThere) {
        m_view.revealOffset(shown->hit.location);
        m_view.revealCaret();
    }
}

// All hits

void SearchPreview::mark(const std::optional<VimSearch> &search)
{
    if (search ? m_marked && isSame(*search, *m_marked) : !m_marked) {
        return;
    }
    m_marked = search;
    makeMatcher();
    const bool hasHits = m_matcher || m_searcher;
    m_view.setLook(&TextLooks::modalHits, hasHits ? [this](TextRange seen) { return hitsIn(seen); } : TextLooks::MarkProvider());
}

void SearchPreview::makeMatcher()
{
    m_matcher.reset();
    m_searcher.reset();
    m_revision = m_view.storage().revision();
    if (m_marked && m_marked->isExact) {
        if (const auto pattern = VimPattern::translate(m_marked->pattern, m_marked->options)) {
            auto matcher = VimMatcher::compile(*pattern, m_view.storage().text());
            m_matcher = matcher ? std::optional(std::move(*matcher)) : std::nullopt;
        }
    } else if (m_marked) {
        auto searcher = TextSearcher::compile(
            {.pattern = m_marked->pattern, .matchesCase = true, .isRegularExpression = true, .isBareExpression = true});
        m_searcher = searcher ? std::optional(std::move(*searcher)) : std::nullopt;
    }
}

/// One may begin in an earlier row, and which ones there are depends on where a line is begun.
std::vector<TextRange> SearchPreview::hitsIn(TextRange seen)
{
    if (m_matcher && m_revision != m_view.storage().revision()) {
        makeMatcher();
    }
    const Rope &text = m_view.storage().text();
    const qsizetype line = text.lineStart(text.lineAt(seen.location));
    qsizetype from = std::max(line, seen.location - farthest);
    std::vector<TextRange> found;
    const auto take = [&](TextRange hit) {
        if (hit.touches(seen)) {
            found.push_back(hit);
        }
        return true;
    };
    if (m_searcher) {
        m_searcher->forEachHit(text, TextRange::between(from, seen.end()), take);
    }
    while (const auto match = m_matcher && from < seen.end() ? m_matcher->next(TextRange::between(from, seen.end())) : std::nullopt) {
        take(match->hit);
        from = std::max(m_matcher->behind(*match), from + 1);
    }
    return found;
}
