// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimSubstituteJob.h"

#include "Base/Translation.h"
#include "Vim/VimKey.h"
#include "Vim/VimOptions.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// What a new line of `text` is begun with.
QString lineBreakOf(const Rope &text)
{
    const qsizetype second = text.lineCount() > 1 ? text.lineStart(1) : 0;
    const bool hasReturn = second > 0 && text.at(second - 1) == u'\n' && second > 1 && text.at(second - 2) == u'\r';
    return hasReturn ? u"\r\n"_s : second > 0 && text.at(second - 1) == u'\r' ? u"\r"_s : u"\n"_s;
}

bool endsLine(char16_t unit)
{
    return unit == u'\n' || unit == u'\r';
}

/// Collects hits as edits, and of very many one stretch that shares what is between them.
class Gatherer {
public:
    explicit Gatherer(const Rope &text) : m_text(text) {}

    qsizetype count = 0;
    /// Behind the text of the last hit, in the text afterwards.
    qsizetype lastEnd = 0;

    void add(const VimSubstituteHit &hit)
    {
        m_hull = count == 0 ? hit.range : TextRange::between(m_hull.location, hit.range.end());
        ++count;
        m_shift += hit.text.size() - hit.range.length;
        lastEnd = hit.range.end() + m_shift;
        if (count <= TextReplacement::mostHits) {
            m_edits.add(hit.range, Rope(hit.text));
            return;
        }
        if (count == TextReplacement::mostHits + 1) {
            for (const TextEdit &edit : std::exchange(m_edits, {})) {
                append(edit.range, edit.text);
            }
        }
        append(hit.range, Rope(hit.text));
    }
    [[nodiscard]] TextEdits edits()
    {
        if (count > TextReplacement::mostHits) {
            m_edits.add(m_hull, m_builder.build());
        }
        return m_edits;
    }

private:
    void append(TextRange range, const Rope &text)
    {
        if (m_behind >= 0) {
            m_builder.append(m_text.slice(TextRange::between(m_behind, range.location)));
        }
        m_builder.append(text);
        m_behind = range.end();
    }

    const Rope &m_text;
    TextEdits m_edits;
    TextRange m_hull;
    qsizetype m_shift = 0;
    RopeBuilder m_builder;
    qsizetype m_behind = -1;
};

/// The first character of the line of `place` that is no blank, or its last.
qsizetype firstNonBlank(const Rope &text, qsizetype place)
{
    qsizetype at = text.lineStart(text.lineAt(place));
    while (at < text.length() && (text.at(at) == u' ' || text.at(at) == u'\t')) {
        ++at;
    }
    return at;
}

} // namespace

Result<VimSubstituteJob> VimSubstituteJob::prepare(const VimSubstituteCommand &command, Lines lines, const VimOptions &options,
                                                   VimSubstituteMemory &memory, std::optional<VimSearch> &lastSearch)
{
    using Pattern = VimSubstituteCommand::Pattern;
    VimSubstituteJob job;
    const auto used = lastSearch ? std::optional(lastSearch->pattern) : memory.pattern;
    const auto repeated = command.patternKind == Pattern::lastSubstituted && memory.pattern ? memory.pattern : used;
    if ((command.patternKind != Pattern::typed && !repeated) || (!command.replacement && !memory.typed)) {
        return failure(localized(u"There is no substitution yet to repeat"));
    }
    job.typedPattern = command.patternKind == Pattern::typed ? command.pattern : *repeated;
    job.flags = command.resolved(memory.flags, options.substitutesAll ? VimSubstituteCommand::Default::allOfLine
                                                                      : VimSubstituteCommand::Default::firstOfLine);
    auto pattern = VimPattern::translate(job.typedPattern, {.ignoresCase = options.ignoresCase,
                                                            .smartCase = options.smartCase,
                                                            .lastSubstitute = memory.replacement,
                                                            .matchesCase = job.flags.matchesCase});
    if (!pattern) {
        return tl::make_unexpected(pattern.error());
    }
    if (!VimMatcher::compile(*pattern, {})) {
        return failure(formatted(localized(u"Bad pattern: %@"), job.typedPattern));
    }
    job.pattern = std::move(*pattern);
    const QString replacement = command.replacement ? *command.replacement : *memory.typed;
    const QString written = VimReplacement::withLast(replacement, memory.replacement.value_or(QString()));
    auto parsed = VimReplacement::parse(written);
    if (!parsed) {
        return tl::make_unexpected(parsed.error());
    }
    job.replacement = std::move(*parsed);
    job.firstLine = command.count ? lines.last : lines.first;
    job.lastLine = command.count ? lines.last + *command.count - 1 : lines.last;
    memory = {.pattern = job.typedPattern, .typed = replacement, .replacement = written, .flags = job.flags};
    if (lastSearch) {
        lastSearch->pattern = job.typedPattern;
    } else {
        lastSearch = VimSearch::exact(job.typedPattern, VimSearch::Direction::forward, options);
    }
    return job;
}

VimSubstituteOutcome VimSubstituteJob::outcome(const Rope &text, const SearchControl &control) const
{
    VimSubstituteWalk walk(*this, text);
    Gatherer gatherer(text);
    while (const auto hit = walk.next(control)) {
        gatherer.add(*hit);
    }
    VimSubstituteOutcome outcome{.edits = {}, .hits = gatherer.count, .lines = walk.lines(), .isIncomplete = walk.gaveUp()};
    if (!flags.onlyCounts && gatherer.count > 0) {
        outcome.edits = gatherer.edits();
        // Lines that are joined leave the caret where they were.
        const bool joins = typedPattern == "\\n"_L1 && replacement.isEmpty();
        outcome.caret = joins ? gatherer.lastEnd : firstNonBlank(outcome.edits.applied(text), gatherer.lastEnd);
    }
    return outcome;
}

std::vector<VimSubstituteHit> VimSubstituteJob::preview(const Rope &text, TextRange visible) const
{
    std::vector<VimSubstituteHit> hits;
    VimSubstituteWalk walk(*this, text, text.lineStart(text.lineAt(visible.location)));
    for (auto hit = walk.next(); hit && hit->range.location <= visible.end(); hit = walk.next()) {
        hits.push_back(std::move(*hit));
    }
    return hits;
}

QString VimSubstituteJob::counted(qsizetype hits, qsizetype lines, bool onlyCounts)
{
    const auto say = [&](QStringView one, QStringView onOne, QStringView onMany) {
        return hits == 1 ? localized(one) : lines == 1 ? formatted(localized(onOne), hits) : formatted(localized(onMany), hits, lines);
    };
    return onlyCounts ? say(u"1 hit on 1 line", u"%d hits on 1 line", u"%d hits on %d lines")
                      : say(u"1 substitution on 1 line", u"%d substitutions on 1 line", u"%d substitutions on %d lines");
}

QString VimSubstituteJob::message(const VimSubstituteOutcome &outcome) const
{
    QString said;
    if (outcome.hits > 0) {
        said = counted(outcome.hits, outcome.lines, flags.onlyCounts);
    } else if (!flags.isQuiet && !outcome.isIncomplete) {
        return formatted(localized(u"Pattern not found: %@"), typedPattern);
    }
    if (outcome.isIncomplete) {
        said += (said.isEmpty() ? QString() : u". "_s) +
                localized(u"The expression is too hard for parts of this text. There may be more hits.");
    }
    return said;
}

QString VimSubstituteJob::shownLine(const VimSubstituteOutcome &outcome, const Rope &text) const
{
    if (!flags.shows || outcome.hits == 0) {
        return {};
    }
    const qsizetype line = text.lineAt(outcome.caret);
    const qsizetype end = line + 1 < text.lineCount() ? text.lineStart(line + 1) : text.length();
    QString shown = text.toString(TextRange::between(text.lineStart(line), end));
    while (!shown.isEmpty() && endsLine(shown.back().unicode())) {
        shown.chop(1);
    }
    if (flags.showsBlanks) {
        shown = shown.replace(u'\t', "^I"_L1) + u'$';
    }
    return flags.showsNumber ? QString::number(line + 1).rightJustified(3) + u' ' + shown : shown;
}

// From hit to hit

VimSubstituteWalk::VimSubstituteWalk(const VimSubstituteJob &job, const Rope &text, qsizetype from)
    : m_replacement(job.replacement), m_takesAll(job.flags.takesAll), m_onlyCounts(job.flags.onlyCounts),
      m_staysInLine(job.pattern.staysInLine), m_text(text), m_lineBreak(lineBreakOf(text))
{
    if (auto matcher = VimMatcher::compile(job.pattern, text)) {
        m_matcher.emplace(std::move(*matcher));
    }
    const qsizetype last = text.lineCount() - 1;
    m_at = std::max(from, job.firstLine > last ? text.length() + 1 : text.lineStart(job.firstLine));
    m_end = lineEnd(std::min(job.lastLine, last));
}

/// The start of the next line; behind the text that of the one behind the last.
qsizetype VimSubstituteWalk::lineEnd(qsizetype line) const
{
    return line + 1 < m_text.lineCount() ? m_text.lineStart(line + 1) : m_text.length() + 1;
}

bool VimSubstituteWalk::isAtLineEnd(qsizetype place) const
{
    return place >= m_text.length() || endsLine(m_text.at(place));
}

std::optional<VimSubstituteHit> VimSubstituteWalk::next(const SearchControl &control)
{
    while (m_matcher && m_at < m_end) {
        const auto match = m_matcher->next(TextRange::between(m_at, m_end), control);
        if (!match) {
            return std::nullopt;
        }
        // Nothing right behind a hit is no other hit, nor is what begins in one, by "\zs" behind "\@<=".
        if ((match->hit.isEmpty() && match->hit.location == m_previousEnd) || match->hit.location < m_behindAll) {
            m_line = m_text.lineAt(match->start);
            m_previousEnd = -1;
            goTo(m_matcher->behind(*match));
            continue;
        }
        m_line = m_text.lineAt(match->start);
        m_lines += m_line != m_chainLine ? 1 : 0;
        m_chainLine = m_text.lineAt(match->hit.end());
        VimSubstituteHit hit{match->hit, m_replacement.of(*match, m_text, m_lineBreak)};
        // The last line keeps its end.
        const qsizetype length = m_text.length();
        if (hit.range.end() == length && !hit.range.isEmpty() && endsLine(m_text.at(length - 1))) {
            hit.range.length -=
                length > 1 && hit.range.length > 1 && m_text.at(length - 1) == u'\n' && m_text.at(length - 2) == u'\r' ? 2 : 1;
        }
        goOn(*match);
        if (m_onlyCounts) {
            skip();
        }
        return hit;
    }
    return std::nullopt;
}

void VimSubstituteWalk::skip()
{
    if (m_chainLine > m_line) {
        m_at = lineEnd(m_line);
        m_chainLine = m_line;
    }
}

void VimSubstituteWalk::goOn(const VimMatch &match)
{
    const qsizetype behind = std::max(match.hit.end(), match.start);
    m_previousEnd = behind;
    m_behindAll = std::max(m_behindAll, behind);
    const bool isSpanning = m_chainLine > m_line;
    if (!m_takesAll && !isSpanning) {
        m_at = lineEnd(m_line);
        return;
    }
    goTo(match.hit.isEmpty() ? m_matcher->behind(match) : behind);
}

/// Behind what was found in a line its end is no place of another hit, but for patterns of more lines.
void VimSubstituteWalk::goTo(qsizetype place)
{
    m_at = m_staysInLine && isAtLineEnd(place) && m_text.lineAt(place) == m_line ? lineEnd(m_line) : place;
}

// Confirming

VimSubstituteConfirmation::VimSubstituteConfirmation(const VimSubstituteJob &job, const Rope &text) : m_walk(job, text), m_text(text)
{
    advance();
}

void VimSubstituteConfirmation::advance()
{
    m_hit = m_walk.next();
}

std::optional<TextRange> VimSubstituteConfirmation::hit() const
{
    return m_hit ? std::optional(TextRange{m_hit->range.location + m_shift, m_hit->range.length}) : std::nullopt;
}

QString VimSubstituteConfirmation::question() const
{
    return m_hit ? formatted(localized(u"Replace by “%@”? y: yes, n: no, a: all, l: this one last, q: stop"), m_hit->text) : QString();
}

/// Adds the hit to edits of the text as it was when it had grown by `shift`.
void VimSubstituteConfirmation::take(TextEdits &edits, qsizetype shift)
{
    edits.add({m_hit->range.location + shift, m_hit->range.length}, Rope(m_hit->text));
    m_outcome.caret = hit()->location + m_hit->text.size();
    m_shift += m_hit->text.size() - m_hit->range.length;
    ++m_outcome.hits;
    m_outcome.lines += std::exchange(m_countedLine, m_walk.lines()) != m_walk.lines() ? 1 : 0;
}

TextEdits VimSubstituteConfirmation::answer(char16_t key)
{
    if (!m_hit) {
        return {};
    }
    TextEdits edits;
    const qsizetype place = hit()->location;
    switch (key) {
    case u'y':
        take(edits, m_shift);
        advance();
        break;
    case u'n':
        m_walk.skip();
        advance();
        break;
    case u'a':
        for (const qsizetype shift = m_shift; m_hit; advance()) {
            take(edits, shift);
        }
        break;
    case u'l':
        take(edits, m_shift);
        m_hit.reset();
        break;
    case u'q':
    case VimKey::escape:
        m_hit.reset();
        break;
    default:
        return {};
    }
    m_text = edits.applied(m_text);
    // It stays where was asked, but for a hit that was the last one to be replaced.
    const bool isAsked = key == u'n' || key == u'q' || key == VimKey::escape || m_hit;
    m_outcome.caret = isAsked ? place : firstNonBlank(m_text, m_outcome.caret);
    return edits;
}

VimSubstituteOutcome VimSubstituteConfirmation::outcome() const
{
    VimSubstituteOutcome outcome = m_outcome;
    outcome.isIncomplete = m_walk.gaveUp();
    return outcome;
}
