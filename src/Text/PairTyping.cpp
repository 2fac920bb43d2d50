// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/PairTyping.h"

#include "Text/LineWalk.h"

#include <algorithm>

char16_t OpenQuotes::at(qsizetype offset)
{
    const qsizetype from = std::max(m_text.lineStart(m_text.lineAt(offset)), offset - farthest);
    if (m_read.location > from || m_read.end() < from || m_read.end() > offset || m_read.isEmpty()) {
        m_read = {from, 0};
        m_open = 0;
        m_isEscaped = false;
    }
    RopeCursor cursor(m_text);
    for (qsizetype place = m_read.end(); place < offset; ++place) {
        const char16_t unit = cursor.at(place);
        if (isLineEnd(unit)) {
            m_open = 0;
            m_isEscaped = false;
        } else if (m_isEscaped) {
            m_isEscaped = false;
        } else if (unit == u'\\') {
            m_isEscaped = true;
        } else if (m_open) {
            m_open = unit == m_open ? u'\0' : m_open;
        } else if (std::ranges::any_of(m_pairs, [unit](const TypingPair &pair) { return pair.isQuote() && pair.open == unit; })) {
            m_open = unit;
        }
    }
    m_read = TextRange::between(m_read.location, offset);
    return m_open;
}

namespace PairTyping {

namespace {

bool isInWord(const Rope &text, qsizetype offset)
{
    return offset >= 0 && (QChar::isLetterOrNumber(text.at(offset)) || QChar::isSurrogate(text.at(offset)));
}

/// Nothing stands behind the caret that what is typed could be meant to go around.
bool mayClose(const Rope &text, qsizetype caret, const TypingPairs &pairs, char16_t openQuote)
{
    if (caret == text.length() || QChar::isSpace(text.at(caret)) || isLineEnd(text.at(caret))) {
        return true;
    }
    return std::ranges::any_of(pairs, [unit = text.at(caret), openQuote](const TypingPair &pair) {
        return pair.close == unit && (!pair.isQuote() || unit == openQuote);
    });
}

bool mayOpenQuote(const Rope &text, qsizetype caret, char16_t quote, char16_t openQuote)
{
    const bool isThird = caret > 0 && text.at(caret - 1) == quote;
    const bool isApostrophe = quote == u'\'' && isInWord(text, caret - 1);
    return !openQuote && !isThird && !isApostrophe && !isEscaped(text, caret);
}

} // namespace

std::optional<TextStep> opened(const Rope &text, TextSelection selection, char16_t typed, const TypingPairs &pairs, OpenQuotes &quotes)
{
    const auto pair = std::ranges::find(pairs, typed, &TypingPair::open);
    if (pair == pairs.end()) {
        return std::nullopt;
    }
    const TextRange range = selection.range();
    if (range.isEmpty()) {
        const char16_t openQuote = quotes.at(range.location);
        if (!mayClose(text, range.location, pairs, openQuote) ||
            (pair->isQuote() && !mayOpenQuote(text, range.location, pair->open, openQuote))) {
            return std::nullopt;
        }
    }
    TextStep step{.edits = {}, .after = {selection.anchor + 1, selection.caret + 1}};
    step.edits.add({range.location, 0}, Rope(QStringView(&pair->open, 1)));
    step.edits.add({range.end(), 0}, Rope(QStringView(&pair->close, 1)));
    return step;
}

bool isBetween(const Rope &text, qsizetype caret, const TypingPairs &pairs, OpenQuotes &quotes)
{
    if (caret == 0 || caret == text.length()) {
        return false;
    }
    return std::ranges::any_of(pairs, [&](const TypingPair &pair) {
        return pair.open == text.at(caret - 1) && pair.close == text.at(caret) && (!pair.isQuote() || quotes.at(caret) == pair.open);
    });
}

bool isEscaped(const Rope &text, qsizetype offset)
{
    qsizetype start = offset;
    while (start > 0 && text.at(start - 1) == u'\\') {
        --start;
    }
    return (offset - start) % 2 != 0;
}

} // namespace PairTyping
