// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What the keys of insert mode delete.

#include "Vim/VimExact.h"

#include "Text/TextBoundaries.h"

void VimEngine::Inserting::deleteBefore(VimDeletion what, char16_t key)
{
    const bool isFirstKey = m_isFirstKey;
    startTyping();
    const qsizetype place = caret();
    if (!m_isRepeating && place > 0) {
        m_script += QChar(key);
    }
    if (m_kind == Kind::replace) {
        if (isFirstKey && place > 0) {
            m_exact.changing.beginChange(place); // though the caret only moves
        }
        restoreReplaced(what);
        return;
    }
    const qsizetype from = deletedFrom(what);
    if (from < m_start) {
        gatherBlock();
    }
    if (m_kind == Kind::block) {
        // As many letters in each line as in the first.
        qsizetype letters = 0;
        for (qsizetype at = place; at > from; at = TextBoundaries::previousGrapheme(text(), at)) {
            ++letters;
        }
        while (letters-- > 0) {
            m_engine.m_view.deleteBackward(VimDeletion::letter);
        }
        return;
    }
    if (from == place) {
        return;
    }
    const bool joins = text().lineAt(from) != text().lineAt(place);
    m_hasGivenIndentation = m_hasGivenIndentation && !joins;
    edit(TextRange::between(from, place), {});
    if (joins) {
        m_exact.changing.noteLineBelow(from);
    }
    m_start = std::min(m_start, from);
    setCaret(from);
}

/// To the caret.
qsizetype VimEngine::Inserting::deletedFrom(VimDeletion what) const
{
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    const qsizetype place = caret();
    const qsizetype first = lines.start(place);
    if (place == first) {
        return place == 0 ? place : lines.end(place - 1); // the break
    }
    if (what == VimDeletion::letter) {
        return lines.before(place);
    }
    if (what == VimDeletion::toLineStart) {
        // What was typed first, then all but the indentation.
        qsizetype text = first;
        while (text < place && isSpaceOrTab(lines.at(text))) {
            ++text;
        }
        return m_start < place && m_start >= first ? m_start : text < place ? text : first;
    }
    qsizetype from = place;
    while (from > first && lines.wordClass(lines.before(from)) == 0) {
        from = lines.before(from);
    }
    if (from > first) {
        const int kind = lines.wordClass(lines.before(from));
        while (from > first && lines.wordClass(lines.before(from)) == kind) {
            from = lines.before(from);
        }
    }
    return m_start < place && m_start > from ? m_start : from;
}

/// What was typed over comes back; before that the caret only moves.
void VimEngine::Inserting::restoreReplaced(VimDeletion what)
{
    std::optional<int> word;
    for (bool isFirst = true;; isFirst = false) {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const qsizetype place = caret();
        const bool isAtStart = place == lines.start(place);
        if (place == 0 || (!isFirst && (isAtStart || what == VimDeletion::letter))) {
            return;
        }
        const qsizetype from = isAtStart ? lines.end(place - 1) : lines.before(place);
        if (what == VimDeletion::word && !isAtStart) {
            const int kind = lines.wordClass(from);
            if (word && kind != *word) {
                return;
            }
            word = kind != 0 ? std::optional(kind) : word;
        }
        if (isAtStart) {
            m_exact.marks.set(u'[', from);
        }
        if (m_replaced.empty()) {
            if (!isFirst) {
                return;
            }
            setCaret(from);
            continue;
        }
        const QString before = m_replaced.back();
        m_replaced.pop_back();
        edit(TextRange::between(from, place), before);
        setCaret(from);
    }
}

void VimEngine::Inserting::deleteBehind()
{
    gatherBlock();
    startTyping();
    m_hasGivenIndentation = false;
    const Sight sight = see();
    const qsizetype place = caret();
    const qsizetype end =
        sight.lines.isAtEnd(place) ? (sight.lines.isLast(place) ? place : sight.lines.next(place)) : sight.lines.after(place);
    if (!m_isRepeating) {
        m_script += QChar(VimKey::forwardDelete);
    }
    edit(TextRange::between(place, end), {});
    setCaret(place);
}
