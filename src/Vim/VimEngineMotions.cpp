// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Where the caret goes in modal editing, and the search.

#include "Text/TextBoundaries.h"
#include "Text/TextSearch.h"
#include "Vim/VimExact.h"
#include "Vim/VimKeyTable.h"
#include "Vim/VimKeys.h"
#include "Vim/VimParts.h"

using namespace Qt::StringLiterals;
using VimMotion::Kind;

void VimEngine::Moving::go(Target target, Unmoved unmoved)
{
    VimBuffer text = m_engine.buffer();
    const qsizetype from = m_engine.caret();
    VimMotion::Result result = target({text, from, m_engine.effectiveCount(), m_engine.m_mode != Mode::normal});
    const bool isUnmoved = TextBoundaries::snapped(text.text(), result.position) == from;
    result.failed = result.failed || (isUnmoved && unmoved == Unmoved::fails);
    applyMotion(result);
}

void VimEngine::Moving::applyMotion(const VimMotion::Result &result)
{
    if (result.failed) {
        m_engine.resetPending();
        return;
    }
    if (!m_engine.m_pendingOperator) {
        m_engine.moveCaret(result.position);
        m_engine.resetPending();
        return;
    }
    VimBuffer text = m_engine.buffer();
    const qsizetype from = m_engine.caret();
    TextRange range = TextRange::spanning(from, result.position);
    switch (result.kind) {
    case Kind::exclusive:
        if (const qsizetype lineEnd = text.lineContentEnd(range.location);
            result.isWordMotion && lineEnd < range.end() && text.lineStart(range.location) != text.lineStart(range.end())) {
            range = TextRange::between(range.location, std::max(lineEnd, range.location));
        }
        break;
    case Kind::inclusive:
        range = TextRange::between(range.location, std::min(range.end() + 1, text.length()));
        break;
    case Kind::linewise:
        m_engine.m_editing->apply(*m_engine.m_pendingOperator, m_engine.linewiseRange(from, result.position), Span::lines);
        return;
    }
    m_engine.m_editing->apply(*m_engine.m_pendingOperator, range, Span::characters);
}

void VimEngine::Moving::applyVertical(qsizetype lines)
{
    VimBuffer text = m_engine.buffer();
    const auto line = text.line(m_engine.caret(), lines);
    if (!line) {
        m_engine.resetPending();
        return;
    }
    if (m_engine.caret() != m_engine.m_lastPlace) {
        m_engine.m_desiredColumn = m_engine.caret() - text.lineStart(m_engine.caret());
    }
    const qsizetype target = std::min(std::max(text.lineContentEnd(*line), *line), *line + m_engine.m_desiredColumn);
    if (m_engine.m_pendingOperator) {
        m_engine.m_editing->apply(*m_engine.m_pendingOperator, m_engine.linewiseRange(m_engine.caret(), target), Span::lines);
        return;
    }
    m_engine.moveCaret(target, Keep::desiredColumn);
    m_engine.resetPending();
}

TextRange VimEngine::linewiseRange(qsizetype from, qsizetype to) const
{
    const VimBuffer text = buffer();
    return text.lineRange(std::min(from, to)).united(text.lineRange(std::max(from, to)));
}

void VimEngine::Moving::goToLine(std::optional<LineNumber> number, qsizetype otherwise)
{
    VimBuffer text = m_engine.buffer();
    const qsizetype line = number ? text.startOfLine(*number) : otherwise;
    applyMotion({.position = text.firstNonBlank(line), .kind = Kind::linewise});
}

void VimEngine::Moving::goToVisibleLine(VisibleLine line)
{
    VimBuffer text = m_engine.buffer();
    const TextRange seen = m_engine.m_view.visibleRange();
    const qsizetype place = line == VisibleLine::first    ? seen.location
                            : line == VisibleLine::middle ? seen.location + seen.length / 2
                                                          : std::max(seen.end() - 1, seen.location);
    applyMotion({.position = text.firstNonBlank(place), .kind = Kind::linewise});
}

void VimEngine::Moving::showSelection(Shown where)
{
    where == Shown::centered ? m_engine.m_view.centerSelection() : m_engine.m_view.revealSelection();
    m_engine.resetPending();
}

void VimEngine::Moving::goToMark(const QString &name, bool isExact)
{
    if (const auto mark = m_marks.find(name); mark != m_marks.end()) {
        VimBuffer text = m_engine.buffer();
        const qsizetype place = std::min(mark->second, text.length());
        m_engine.moveCaret(isExact ? place : text.firstNonBlank(place));
    }
    m_engine.resetPending();
}

void VimEngine::Moving::scrollLines(qsizetype lines)
{
    VimBuffer text = m_engine.buffer();
    const qsizetype line = text.line(m_engine.caret(), lines).value_or(lines < 0 ? 0 : text.lastLineStart());
    m_engine.moveCaret(text.firstNonBlank(line));
}

void VimEngine::Moving::findOnLine(char16_t character, VimMotion::FindKind kind)
{
    VimBuffer text = m_engine.buffer();
    const bool isForward = kind == VimMotion::FindKind::forwardTo || kind == VimMotion::FindKind::forwardBefore;
    const qsizetype from = isForward ? VimMotion::lastUnit(text.text(), m_engine.caret()) : m_engine.caret();
    applyMotion(VimMotion::find(text, from, character, kind, m_engine.effectiveCount()));
}

void VimEngine::Moving::find(char16_t character, VimMotion::FindKind kind)
{
    m_lastFind = LastFind{character, kind};
    findOnLine(character, kind);
}

void VimEngine::Moving::setMark(const QString &name)
{
    m_marks[name] = m_engine.caret();
}

void VimEngine::Moving::repeatFind(bool isReversed)
{
    if (m_lastFind) {
        findOnLine(m_lastFind->character, isReversed ? VimMotion::reversed(m_lastFind->kind) : m_lastFind->kind);
    } else {
        m_engine.resetPending();
    }
}

void VimEngine::moveCaret(qsizetype target, Keep keep)
{
    VimBuffer text = buffer();
    const qsizetype place = TextBoundaries::snapped(text.text(), m_mode == Mode::normal ? text.clampToNormalMode(target)
                                                                                        : std::clamp<qsizetype>(target, 0, text.length()));
    if (isVisual()) {
        updateVisualSelection(place);
    } else {
        m_view.select({place, 0}, place);
    }
    m_lastPlace = place;
    if (keep == Keep::nothing) {
        m_desiredColumn = place - text.lineStart(place);
    }
}

void VimEngine::settleCaret()
{
    if (m_exact && m_mode == Mode::insert) {
        return;
    }
    moveCaret(m_view.selectedRange().location);
}

// Command line and search

void VimEngine::beginCommandLine(char16_t prefix)
{
    m_commandLine.begin(prefix);
    m_searchOrigin.reset();
    if (m_exact && prefix != u':') {
        // An operator waits for it, or a selection grows with it.
        m_modeBefore = m_mode;
        setMode(Mode::commandLine);
        return;
    }
    if (m_exact) {
        m_commandLine.begin(prefix, m_exact->linesToCommand());
    }
    m_modeBefore = Mode::normal;
    setMode(Mode::commandLine);
    if (!m_exact || !m_pendingOperator) {
        resetPending(); // an operator waits for where the command leads
    }
}

/// Back to where it was begun.
void VimEngine::leaveCommandLine()
{
    m_commandLine.clear();
    m_view.showOffer(std::nullopt);
    setMode(m_modeBefore);
    if (isVisual()) {
        m_exact->selecting.select(m_visualHead);
    }
}

void VimEngine::handleCommandLine(const VimKeyEvent &event)
{
    if (m_exact) {
        m_exact->repeating.note(VimKeys::text(event));
    }
    const auto derived = [this](char16_t name) {
        const bool isDerived = m_exact && QStringView(u".:/%#").contains(name);
        return isDerived ? std::optional(m_exact->contents(name).text.toString()) : std::nullopt;
    };
    switch (m_commandLine.handle(event, {m_registers, m_view.text(), caret(), m_history, m_options.isExact, derived})) {
    case VimCommandLine::Outcome::goesOn:
        if (m_exact) {
            m_view.showOffer(m_commandLine.offer());
        }
        break;
    case VimCommandLine::Outcome::isLeft:
        if (m_exact) {
            rememberCommandLine();
            leaveCommandLine();
            resetPending();
        } else {
            leaveToNormal();
        }
        break;
    case VimCommandLine::Outcome::isEntered:
        const VimCommandLine entered = m_commandLine;
        if (m_exact) {
            rememberCommandLine();
            leaveCommandLine();
            m_exact->enterCommandLine(entered);
            break;
        }
        leaveToNormal();
        if (entered.prefix() == u':') {
            m_delegate.vimEngineRunsCommand(*this, entered.text());
        } else {
            m_moving->performSearch(entered.text(), entered.prefix() == u'/' ? SearchDirection::forward : SearchDirection::backward,
                                    std::exchange(m_searchOrigin, std::nullopt).value_or(caret()));
        }
        break;
    }
    notify();
}

void VimEngine::rememberCommandLine()
{
    if (m_history && m_options.isExact && m_mode == Mode::commandLine) {
        m_history->add(m_commandLine.prefix(), m_commandLine.text(), m_historyKept());
    }
}

void VimEngine::hideHits()
{
    m_showsHits = false;
    notify();
}

void VimEngine::completeFiles(const QStringList &names)
{
    m_commandLine.takeFiles(names);
    m_view.showOffer(m_commandLine.offer());
    notify();
}

void VimEngine::Moving::performSearch(const QString &pattern, SearchDirection direction, qsizetype from)
{
    if (!pattern.isEmpty()) {
        m_engine.m_lastSearch = VimSearch{pattern, direction};
        jumpToMatch(*m_engine.m_lastSearch, from);
    }
}

void VimEngine::Moving::repeatSearch(bool isReversed)
{
    if (m_engine.m_lastSearch) {
        const bool isForward = (m_engine.m_lastSearch->direction == SearchDirection::forward) != isReversed;
        jumpToMatch({m_engine.m_lastSearch->pattern, isForward ? SearchDirection::forward : SearchDirection::backward}, m_engine.caret());
    }
    m_engine.resetPending();
}

void VimEngine::Moving::searchWordUnderCaret(SearchDirection direction)
{
    VimBuffer text = m_engine.buffer();
    const auto word = VimTextObject::range(text, m_engine.caret(), u'w', VimTextObject::Extent::inner, 1);
    if (word && !word->range.isEmpty()) {
        const QString escaped = RegularExpression::escapedPattern(text.text().toString(word->range));
        performSearch(u"\\b"_s + escaped + u"\\b"_s, direction, m_engine.caret());
    }
    m_engine.resetPending();
}

void VimEngine::Moving::jumpToMatch(const VimSearch &search, qsizetype from)
{
    const Rope &text = m_engine.m_view.text();
    m_engine.m_showsHits = true;
    if (const auto hit = search.nearHit(text, from)) {
        jumpTo(*hit);
    } else if (text.length() > VimSearch::nearby && search.isValid()) {
        const auto prepare = [this, search, from]() -> VimTextView::Seeking {
            // The text may have become shorter.
            const qsizetype start = std::min(from, m_engine.m_view.text().length());
            return
                [search, all = Rope(m_engine.m_view.text()), start](const std::stop_token &stop) { return search.hit(all, start, stop); };
        };
        m_engine.m_view.seek(prepare, [this](TextRange found) {
            jumpTo(found);
            m_engine.notify();
        });
    }
}

void VimEngine::Moving::jumpTo(TextRange hit)
{
    m_engine.moveCaret(hit.location);
    m_engine.m_view.showIndicator(hit);
}
