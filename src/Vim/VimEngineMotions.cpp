// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Where the caret goes in modal editing, and the search.

#include "Text/TextBoundaries.h"
#include "Text/TextSearch.h"
#include "Vim/VimExact.h"
#include "Vim/VimKeyTable.h"
#include "Vim/VimKeys.h"

using namespace Qt::StringLiterals;
using VimMotion::Kind;

void VimEngine::go(Target target, Unmoved unmoved)
{
    VimBuffer text = buffer();
    const qsizetype from = caret();
    VimMotion::Result result = target({text, from, effectiveCount(), m_mode != Mode::normal});
    const bool isUnmoved = TextBoundaries::snapped(text.text(), result.position) == from;
    result.failed = result.failed || (isUnmoved && unmoved == Unmoved::fails);
    applyMotion(result);
}

void VimEngine::applyMotion(const VimMotion::Result &result)
{
    if (result.failed) {
        resetPending();
        return;
    }
    if (!m_pendingOperator) {
        moveCaret(result.position);
        resetPending();
        return;
    }
    VimBuffer text = buffer();
    const qsizetype from = caret();
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
        apply(*m_pendingOperator, linewiseRange(from, result.position), Span::lines);
        return;
    }
    apply(*m_pendingOperator, range, Span::characters);
}

void VimEngine::applyVertical(qsizetype lines)
{
    VimBuffer text = buffer();
    const auto line = text.line(caret(), lines);
    if (!line) {
        resetPending();
        return;
    }
    if (caret() != m_lastPlace) {
        m_desiredColumn = caret() - text.lineStart(caret());
    }
    const qsizetype target = std::min(std::max(text.lineContentEnd(*line), *line), *line + m_desiredColumn);
    if (m_pendingOperator) {
        apply(*m_pendingOperator, linewiseRange(caret(), target), Span::lines);
        return;
    }
    moveCaret(target, Keep::desiredColumn);
    resetPending();
}

TextRange VimEngine::linewiseRange(qsizetype from, qsizetype to) const
{
    const VimBuffer text = buffer();
    return text.lineRange(std::min(from, to)).united(text.lineRange(std::max(from, to)));
}

void VimEngine::goToLine(std::optional<LineNumber> number, qsizetype otherwise)
{
    VimBuffer text = buffer();
    const qsizetype line = number ? text.startOfLine(*number) : otherwise;
    applyMotion({.position = text.firstNonBlank(line), .kind = Kind::linewise});
}

void VimEngine::goToVisibleLine(VisibleLine line)
{
    VimBuffer text = buffer();
    const TextRange seen = m_view.visibleRange();
    const qsizetype place = line == VisibleLine::first    ? seen.location
                            : line == VisibleLine::middle ? seen.location + seen.length / 2
                                                          : std::max(seen.end() - 1, seen.location);
    applyMotion({.position = text.firstNonBlank(place), .kind = Kind::linewise});
}

void VimEngine::showSelection(Shown where)
{
    where == Shown::centered ? m_view.centerSelection() : m_view.revealSelection();
    resetPending();
}

void VimEngine::goToMark(const QString &name, bool isExact)
{
    if (const auto mark = m_marks.find(name); mark != m_marks.end()) {
        VimBuffer text = buffer();
        const qsizetype place = std::min(mark->second, text.length());
        moveCaret(isExact ? place : text.firstNonBlank(place));
    }
    resetPending();
}

void VimEngine::scrollLines(qsizetype lines)
{
    VimBuffer text = buffer();
    const qsizetype line = text.line(caret(), lines).value_or(lines < 0 ? 0 : text.lastLineStart());
    moveCaret(text.firstNonBlank(line));
}

void VimEngine::findOnLine(char16_t character, VimMotion::FindKind kind)
{
    VimBuffer text = buffer();
    const bool isForward = kind == VimMotion::FindKind::forwardTo || kind == VimMotion::FindKind::forwardBefore;
    const qsizetype from = isForward ? VimMotion::lastUnit(text.text(), caret()) : caret();
    applyMotion(VimMotion::find(text, from, character, kind, effectiveCount()));
}

void VimEngine::repeatFind(bool isReversed)
{
    if (m_lastFind) {
        findOnLine(m_lastFind->character, isReversed ? VimMotion::reversed(m_lastFind->kind) : m_lastFind->kind);
    } else {
        resetPending();
    }
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
    resetPending();
}

/// Back to where it was begun.
void VimEngine::leaveCommandLine()
{
    m_commandLine.clear();
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
    switch (m_commandLine.handle(event, {m_registers, m_view.text(), caret(), m_history, m_options.isExact})) {
    case VimCommandLine::Outcome::goesOn:
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
            performSearch(entered.text(), entered.prefix() == u'/' ? SearchDirection::forward : SearchDirection::backward,
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
    notify();
}

void VimEngine::performSearch(const QString &pattern, SearchDirection direction, qsizetype from)
{
    if (!pattern.isEmpty()) {
        m_lastSearch = VimSearch{pattern, direction};
        jumpToMatch(*m_lastSearch, from);
    }
}

void VimEngine::repeatSearch(bool isReversed)
{
    if (m_lastSearch) {
        const bool isForward = (m_lastSearch->direction == SearchDirection::forward) != isReversed;
        jumpToMatch({m_lastSearch->pattern, isForward ? SearchDirection::forward : SearchDirection::backward}, caret());
    }
    resetPending();
}

void VimEngine::searchWordUnderCaret(SearchDirection direction)
{
    VimBuffer text = buffer();
    const auto word = VimTextObject::range(text, caret(), u'w', VimTextObject::Extent::inner, 1);
    if (word && !word->range.isEmpty()) {
        const QString escaped = RegularExpression::escapedPattern(text.text().toString(word->range));
        performSearch(u"\\b"_s + escaped + u"\\b"_s, direction, caret());
    }
    resetPending();
}

void VimEngine::jumpToMatch(const VimSearch &search, qsizetype from)
{
    const Rope &text = m_view.text();
    m_showsHits = true;
    if (const auto hit = search.nearHit(text, from)) {
        jumpTo(*hit);
    } else if (text.length() > VimSearch::nearby && search.isValid()) {
        const auto prepare = [this, search, from]() -> VimTextView::Seeking {
            // The text may have become shorter.
            const qsizetype start = std::min(from, m_view.text().length());
            return [search, all = Rope(m_view.text()), start](const std::stop_token &stop) { return search.hit(all, start, stop); };
        };
        m_view.seek(prepare, [this](TextRange found) {
            jumpTo(found);
            notify();
        });
    }
}

void VimEngine::jumpTo(TextRange hit)
{
    moveCaret(hit.location);
    m_view.showIndicator(hit);
}
