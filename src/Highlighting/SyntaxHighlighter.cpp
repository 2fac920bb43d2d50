// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Highlighting/SyntaxHighlighter.h"

#include "Highlighting/Rule.h"
#include "Text/LineRange.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <utility>

namespace {

/// Spans are looked for so many units before the lines at work, and in a window longer than these by twice as many: where the text's
/// start cuts the window short, it reaches further down instead.
constexpr qsizetype spanMargin = 0x20000;

} // namespace

/// A rule of the language at work in this text.
struct SyntaxHighlighter::Rule {
    Scope scope;
    RegularExpression regex;
    int group = 0;
    const WordList *words = nullptr; ///< the language's; null where it has to be searched
    int givenUp = 0;

    [[nodiscard]] bool isOff() const { return givenUp >= mostGivenUp; }
};

/// A part of the text in one piece, which is what expressions search quickest. Positions are still those of the text.
class SyntaxHighlighter::Excerpt {
public:
    void load(const Rope &text, TextRange range)
    {
        if (m_units && m_range.contains(range)) {
            return;
        }
        m_units = std::make_unique_for_overwrite<char16_t[]>(size_t(range.length));
        m_range = range;
        text.copy(range, m_units.get());
    }

    enum class Rest { isLeft, isTriedByLine };
    /// Calls `visit(group)` for the rule's group in every match in `range`, which must be loaded; nothing outside it is seen. `rest` says
    /// what becomes of what is left when that costs too much.
    template<typename Visitor>
    void forEachMatch(Rule &rule, TextRange range, Rest rest, Visitor &&visit) const
    {
        const TextRange all{range.location - m_range.location, range.length};
        if (rule.words) {
            rule.words->forEachIn(units().sliced(all.location, all.length), rule.regex, [&](TextRange word) {
                visit(TextRange{word.location + range.location, word.length});
            });
            return;
        }
        qsizetype done = search(rule, all, {}, visit);
        if (done == all.end()) {
            return;
        }
        if (rest == Rest::isLeft || lineEnd(all.location, all.end()) == all.end()) {
            ++rule.givenUp;
            return;
        }
        // Lines begin and end here as they do in the text, but look-around sees nothing of the others.
        constexpr RegularExpression::Bounds line{.areAnchoring = false, .areTransparent = false};
        bool isGivenUp = false;
        for (int ticks = 0; done < all.end(); ticks += rule.regex.ticks()) {
            if (ticks >= mostTicksByLine) {
                isGivenUp = true;
                break;
            }
            const qsizetype end = lineEnd(done, all.end());
            isGivenUp |= search(rule, TextRange::between(done, end), line, visit) != end;
            done = end;
        }
        rule.givenUp += isGivenUp ? 1 : 0;
    }

private:
    [[nodiscard]] QStringView units() const { return {m_units.get(), m_range.length}; }

    /// Like the following one in the excerpt: behind the line break, or `end`.
    [[nodiscard]] qsizetype lineEnd(qsizetype from, qsizetype end) const
    {
        const qsizetype lineBreak = units().indexOf(u'\n', from);
        return lineBreak < 0 ? end : std::min(lineBreak + 1, end);
    }

    /// Returns how far it came: the end of `range`, or where the last match before it was given up ends. Positions in the excerpt.
    template<typename Visitor>
    qsizetype search(Rule &rule, TextRange range, RegularExpression::Bounds bounds, Visitor &visit) const
    {
        qsizetype done = range.location;
        const int limitHits = rule.regex.limitHits();
        rule.regex.forEachMatch(units(), range, bounds, [&](const RegularExpression &match) {
            if (const auto found = match.group(rule.group); found && !found->isEmpty()) {
                visit(TextRange{found->location + m_range.location, found->length});
            }
            done = match.range().end();
            return true;
        });
        return rule.regex.limitHits() == limitHits ? range.end() : done;
    }

    std::unique_ptr<char16_t[]> m_units;
    TextRange m_range;
};

/// The colours of one pass, a byte for each unit: at once the map of what is taken, which is asked for every match and mostly for a few
/// units, and the result.
class SyntaxHighlighter::Paint {
public:
    explicit Paint(TextRange range) : m_range(range), m_claims(size_t(range.length), unclaimed) {}

    [[nodiscard]] TextRange range() const { return m_range; }

    /// Both of these want a part of `range()`.
    [[nodiscard]] bool isFree(TextRange range) const
    {
        const auto from = m_claims.begin() + (range.location - m_range.location);
        return std::all_of(from, from + range.length, [](quint8 claim) { return claim == unclaimed; });
    }
    void claim(TextRange range, Scope scope)
    {
        std::fill_n(m_claims.begin() + (range.location - m_range.location), range.length, quint8(size_t(scope) + 1));
    }

    [[nodiscard]] std::vector<StyleRun> runs(const std::vector<StyleId> &styles) const
    {
        std::vector<StyleRun> runs;
        for (auto from = m_claims.begin(); from != m_claims.end();) {
            const auto to = std::find_if(from, m_claims.end(), [claim = *from](quint8 other) { return other != claim; });
            runs.push_back({to - from, *from == unclaimed ? plainStyle : styles[*from - 1]});
            from = to;
        }
        return runs;
    }

private:
    static constexpr quint8 unclaimed = 0;

    TextRange m_range;
    std::vector<quint8> m_claims; ///< else the scope's number plus one
};

SyntaxHighlighter::SyntaxHighlighter(TextStorage &storage, const Language &language, const Theme &theme, Scheduler &scheduler,
                                     NotificationCenter &notifications)
    : m_storage(storage), m_scheduler(scheduler), m_notifications(notifications), m_language(language), m_theme(theme)
{
    rebuildAttributeCache();
    m_edits = QObject::connect(&storage, &TextStorage::didProcessEditing, &storage,
                               [this](const TextChange &change) { noteEdits(change.edits); });
}

SyntaxHighlighter::~SyntaxHighlighter()
{
    QObject::disconnect(m_edits);
}

void SyntaxHighlighter::setLanguage(const Language &language)
{
    if (language == m_language) {
        return;
    }
    m_language = language;
    rehighlightAll();
}

void SyntaxHighlighter::setTheme(const Theme &theme)
{
    if (theme == m_theme) {
        return;
    }
    m_theme = theme;
    rebuildAttributeCache();
    rehighlightAll();
}

void SyntaxHighlighter::rebuildAttributeCache()
{
    m_styles.clear();
    for (const ScopeRow &row : scopes) {
        m_styles.push_back(m_storage.styles().intern(m_theme.attributes(row.scope)));
    }
}

/// Searching changes an expression, and the clones count for this text alone how often they were too slow.
void SyntaxHighlighter::cloneRules()
{
    if (std::exchange(m_hasRules, true)) {
        return;
    }
    for (const SpanRule &rule : m_language.spans()) {
        m_spanRules.push_back({rule.scope, rule.regex.clone()});
    }
    for (const TokenRule &rule : m_language.rules()) {
        m_tokenRules.push_back({rule.scope, rule.regex.clone(), rule.group, rule.words.isEmpty() ? nullptr : &rule.words});
    }
}

void SyntaxHighlighter::rehighlightAll()
{
    m_pendingWork.cancel();
    m_spansAreStale = true;
    m_spanWindow = {};
    m_spans.clear();
    m_editSinceSpans.reset();
    m_uncolouredEdit.reset();
    m_freshChunks.clear();
    m_spanRules.clear();
    m_tokenRules.clear();
    m_hasRules = false;
    applyBaseAttributes({0, m_storage.length()});
    m_notifications.post(needsVisibleRefresh, this);
}

void SyntaxHighlighter::applyBaseAttributes(TextRange range)
{
    m_storage.setStyle(range.clampedTo(m_storage.length()), plainStyle);
}

void SyntaxHighlighter::ensureHighlighted(TextRange range)
{
    range = range.clampedTo(m_storage.length());
    if (range.isEmpty()) {
        return;
    }
    const qsizetype first = range.location / chunkSize;
    const qsizetype last = (range.end() - 1) / chunkSize;
    bool isMissing = false;
    for (qsizetype chunk = first; chunk <= last && !isMissing; ++chunk) {
        isMissing = !isFresh(chunk);
    }
    if (!isMissing) {
        return;
    }
    const auto stretch = TextRange::between(first * chunkSize, std::min((last + 1) * chunkSize, m_storage.length()));
    std::vector<TextRange> outdated;
    const TextRange done = highlight(stretch, outdated);
    markFresh(stretch, stretch.united(done));
    markStale(outdated, done);
}

TextRange SyntaxHighlighter::colouredAround(TextRange range, qsizetype margin) const
{
    const auto reach = [this](qsizetype chunk, qsizetype last, qsizetype step) {
        while (chunk != last && isFresh(chunk)) {
            chunk += step;
        }
        return chunk;
    };
    const qsizetype first = reach(range.location / chunkSize, std::max<qsizetype>((range.location - margin) / chunkSize, 0) - 1, -1) + 1;
    const qsizetype end = reach(range.end() / chunkSize, (range.end() + margin) / chunkSize + 1, 1);
    return TextRange::between(std::min(range.location, first * chunkSize),
                              std::clamp(end * chunkSize, range.end(), std::max(range.end(), m_storage.length())));
}

void SyntaxHighlighter::noteEdits(const TextEdits &edits)
{
    const ReplacedStretch edit = edits.hull();
    m_spansAreStale = true;
    m_editSinceSpans = m_editSinceSpans ? m_editSinceSpans->followedBy(edit) : edit;
    addUncoloured(edit);
    m_freshChunks.resize(std::min(m_freshChunks.size(), size_t(edit.location / chunkSize)));
    if (edits.count() > mostEditsAtOnce && edit.inserted > chunkSize) {
        // Most of what is between the many places is out of view: whoever shows a part will ask.
        m_uncolouredEdit.reset();
        m_pendingWork = m_scheduler.after(editDebounce, [this] { m_notifications.post(needsVisibleRefresh, this); });
        return;
    }
    if (m_storage.length() <= largeTextThreshold) {
        rehighlightEdit();
        return;
    }
    m_pendingWork = m_scheduler.after(editDebounce, [this] {
        rehighlightEdit();
        m_notifications.post(needsVisibleRefresh, this);
    });
}

/// Keeps what is known of the text around the edit, as its chunks are about to count as stale.
void SyntaxHighlighter::addUncoloured(const ReplacedStretch &edit)
{
    const qsizetype chunk = edit.location / chunkSize;
    const qsizetype end = edit.location + edit.removed;
    const qsizetype change = edit.growth();
    UncolouredEdit all{{edit.location, edit.removed}, end, edit.location % chunkSize == 0 || isFresh(chunk)};
    if (const auto &before = m_uncolouredEdit) {
        all.range = before->range.united(all.range);
        all.knownEnd = std::max(before->knownEnd, end);
        if (chunk >= before->range.location / chunkSize) {
            all.isKnownBefore = before->isKnownBefore;
        }
    } else {
        for (qsizetype known = end / chunkSize; isFresh(known); ++known) {
            all.knownEnd = std::min((known + 1) * chunkSize, m_storage.length() - change);
        }
    }
    all.range.length += change;
    all.knownEnd += change;
    m_uncolouredEdit = all;
}

void SyntaxHighlighter::rehighlightEdit()
{
    const auto edit = std::exchange(m_uncolouredEdit, std::nullopt);
    if (!edit || edit->range.length > largeTextThreshold) {
        return; // too much for one pass: whoever shows a part of it will ask
    }
    const TextRange range = edit->range;
    std::vector<TextRange> outdated;
    const TextRange done = highlight(range, outdated);
    const qsizetype knownFrom = edit->isKnownBefore ? range.location / chunkSize * chunkSize : range.location;
    markFresh(range, done.united(TextRange::between(knownFrom, std::max(edit->knownEnd, range.end()))));
    markStale(outdated, done);
}

/// Colours the lines of `range` and the spans in them; returns what was coloured. `outdated` gets where spans came or went since the last
/// search, which may be elsewhere.
TextRange SyntaxHighlighter::highlight(TextRange range, std::vector<TextRange> &outdated)
{
    const Rope &text = m_storage.text();
    if (text.isEmpty()) {
        return {};
    }
    range = range.clampedTo(text.length());
    if (range.isEmpty()) {
        range = {std::min(text.length() - 1, range.location), 0};
    }
    range = lineRange(text, range);
    cloneRules();
    Excerpt excerpt;
    refreshSpans(range, excerpt, outdated);
    for (const Span &span : m_spans) {
        if (!span.range.intersected(range).isEmpty()) {
            range = range.united(span.range);
        }
    }
    if (m_spanRules.empty() && m_tokenRules.empty()) {
        // There is nothing to look for, in a line that may have megabytes.
        m_storage.setStyles(range, std::vector{StyleRun{range.length, plainStyle}});
        return range;
    }
    excerpt.load(text, range);
    Paint paint(range);
    paintSpans(paint);
    paintTokens(paint, excerpt);
    m_storage.setStyles(range, paint.runs(m_styles));
    return range;
}

void SyntaxHighlighter::refreshSpans(TextRange range, Excerpt &excerpt, std::vector<TextRange> &outdated)
{
    const qsizetype windowStart = std::max<qsizetype>(range.location - spanMargin, 0);
    const TextRange window = TextRange{windowStart, range.length + 2 * spanMargin}.clampedTo(m_storage.length());
    if (!m_spansAreStale && m_spanWindow.contains(window)) {
        return;
    }
    const auto edit = std::exchange(m_editSinceSpans, std::nullopt);
    std::vector<Span> before = std::exchange(m_spans, {});
    const TextRange windowBefore = std::exchange(m_spanWindow, window);
    m_spansAreStale = false;
    if (!m_spanRules.empty() && !window.isEmpty()) {
        excerpt.load(m_storage.text(), window);
        findSpans(excerpt);
    }
    if (edit) {
        findOutdated(before, windowBefore, *edit, outdated);
    }
}

void SyntaxHighlighter::findSpans(const Excerpt &excerpt)
{
    for (Rule &rule : m_spanRules) {
        if (!rule.isOff()) {
            excerpt.forEachMatch(rule, m_spanWindow, Excerpt::Rest::isLeft, [&](TextRange found) {
                m_spans.push_back({found, rule.scope});
            });
        }
    }
    // Stable, so that of two that begin together the earlier rule's is the first; it then stays and the other goes.
    std::ranges::stable_sort(m_spans, {}, [](const Span &span) { return span.range.location; });
    qsizetype end = 0;
    std::erase_if(m_spans, [&end](const Span &span) {
        const bool overlaps = span.range.location < end;
        end = overlaps ? end : span.range.end();
        return overlaps;
    });
}

/// Where the spans from before `edit` and those of now differ, as far as both were looked for: what is coloured there is out of date.
void SyntaxHighlighter::findOutdated(const std::vector<Span> &before, TextRange windowBefore, const ReplacedStretch &edit,
                                     std::vector<TextRange> &outdated) const
{
    const auto moved = [&edit](qsizetype offset) {
        return offset < edit.location + edit.removed ? std::min(offset, edit.location) : offset - edit.removed + edit.inserted;
    };
    const TextRange common = m_spanWindow.intersected(TextRange::between(moved(windowBefore.location), moved(windowBefore.end())));
    const auto add = [&](TextRange range) {
        if (const TextRange part = range.intersected(common); !part.isEmpty()) {
            outdated.push_back(part);
        }
    };
    if (!m_spanRules.empty()) {
        // Above the edit a span may have come or gone where one of the windows did not reach.
        const auto above = TextRange::between(std::max<qsizetype>(edit.location - spanMargin, 0), edit.location);
        outdated.push_back(above.intersected({0, common.location}));
        outdated.push_back(above.intersected(TextRange::between(common.end(), std::max(common.end(), above.end()))));
    }
    auto now = m_spans.begin();
    for (const Span &old : before) {
        const bool isUntouched = old.range.end() <= edit.location || old.range.location >= edit.location + edit.removed;
        const qsizetype from = old.range.end() <= edit.location ? old.range.location : moved(old.range.location);
        const qsizetype to = old.range.end() <= edit.location ? old.range.end() : moved(old.range.end());
        const Span expected{TextRange::between(from, to), old.scope};
        for (; now != m_spans.end() && now->range.location < from; ++now) {
            add(now->range);
        }
        if (isUntouched && now != m_spans.end() && *now == expected) {
            ++now;
        } else {
            add(expected.range);
        }
    }
    for (; now != m_spans.end(); ++now) {
        add(now->range);
    }
}

void SyntaxHighlighter::paintSpans(Paint &paint) const
{
    for (const Span &span : m_spans) {
        if (const TextRange part = span.range.intersected(paint.range()); !part.isEmpty()) {
            paint.claim(part, span.scope);
        }
    }
}

void SyntaxHighlighter::paintTokens(Paint &paint, const Excerpt &excerpt)
{
    for (Rule &rule : m_tokenRules) {
        if (rule.isOff()) {
            continue;
        }
        excerpt.forEachMatch(rule, paint.range(), Excerpt::Rest::isTriedByLine, [&](TextRange found) {
            if (paint.isFree(found)) {
                paint.claim(found, rule.scope);
            }
        });
    }
}

bool SyntaxHighlighter::isFresh(qsizetype chunk) const
{
    return size_t(chunk) < m_freshChunks.size() && m_freshChunks[size_t(chunk)];
}

/// The chunks that `range` touches, as far as they are whole in `coloured`.
void SyntaxHighlighter::markFresh(TextRange range, TextRange coloured)
{
    range = range.clampedTo(m_storage.length());
    if (range.isEmpty()) {
        return;
    }
    qsizetype first = range.location / chunkSize;
    qsizetype last = (range.end() - 1) / chunkSize;
    // Every chunk inside one line has the same pass, over the line as a whole: it need not be done again for the others.
    const TextRange line = lineRange(m_storage.text(), {range.location, 0});
    const bool isLastLine = line.end() == m_storage.length();
    if (range.end() < line.end() || isLastLine) {
        first = std::min(first, (line.location + chunkSize - 1) / chunkSize);
        last = std::max(last, (line.end() - 1) / chunkSize - (isLastLine ? 0 : 1));
    }
    first = std::max(first, (coloured.location + chunkSize - 1) / chunkSize);
    last = coloured.end() < m_storage.length() ? std::min(last, coloured.end() / chunkSize - 1) : last;
    if (first > last) {
        return;
    }
    if (m_freshChunks.size() <= size_t(last)) {
        m_freshChunks.resize(size_t(last) + 1);
    }
    std::fill(m_freshChunks.begin() + first, m_freshChunks.begin() + last + 1, true);
}

/// Outdated text outside `except` has to be asked for again.
void SyntaxHighlighter::markStale(const std::vector<TextRange> &ranges, TextRange except)
{
    const auto mark = [this](TextRange range) {
        const qsizetype end = range.isEmpty() ? 0 : std::min((range.end() - 1) / chunkSize + 1, qsizetype(m_freshChunks.size()));
        for (qsizetype chunk = range.location / chunkSize; chunk < end; ++chunk) {
            m_freshChunks[size_t(chunk)] = false;
        }
    };
    for (const TextRange range : ranges) {
        if (m_uncolouredEdit && !range.isEmpty()) {
            m_uncolouredEdit->isKnownBefore = false;
            m_uncolouredEdit->knownEnd = m_uncolouredEdit->range.end();
        }
        mark(range.intersected({0, except.location}));
        mark(range.intersected(TextRange::between(except.end(), std::max(except.end(), range.end()))));
    }
}

void SyntaxHighlighter::forEachScope(TextRange range, const std::function<void(TextRange, Scope)> &visit) const
{
    m_storage.forEachStyle(range, [&](TextRange run, StyleId style) {
        const auto found = std::ranges::find(m_styles, style);
        const bool isPlain = style == plainStyle || found == m_styles.end();
        visit(run, isPlain ? Scope::plain : scopes[size_t(found - m_styles.begin())].scope);
    });
}

int SyntaxHighlighter::givenUpSearches() const
{
    const auto sum = [](const std::vector<Rule> &rules) {
        return std::accumulate(rules.begin(), rules.end(), 0, [](int count, const Rule &rule) { return count + rule.givenUp; });
    };
    return sum(m_spanRules) + sum(m_tokenRules);
}

int SyntaxHighlighter::rulesSwitchedOff() const
{
    return int(std::ranges::count_if(m_spanRules, &Rule::isOff) + std::ranges::count_if(m_tokenRules, &Rule::isOff));
}
