// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Editor/AutoPairs.h"

#include "Editor/EditorTextView.h"
#include "Highlighting/ScopedText.h"
#include "Text/LineWalk.h"

#include <algorithm>
#include <array>

namespace {

constexpr auto allQuotes = std::to_array<char16_t>({u'"', u'\'', u'`'});

/// Texts of several letters between two of them are strings, which tells quotes from the signs of a language that look like them.
bool isQuote(const Language &language, char16_t unit)
{
    const QString sample = unit + QStringLiteral("ab c") + unit;
    bool isString = true;
    ScopedText(Rope(sample), language).forEachScope({0, sample.size()}, [&isString](TextRange /*range*/, Scope scope) {
        isString = isString && BracketSearch::kindOf(scope) == BracketSearch::Kind::string;
    });
    return isString;
}

TypingPairs pairsOf(const Language &language)
{
    TypingPairs pairs;
    for (const DelimiterPair &pair : language.bracketPairs()) {
        pairs.push_back({pair.open.front().unicode(), pair.close.front().unicode()});
    }
    for (const char16_t unit : allQuotes) {
        if (unit == u'"' || isQuote(language, unit)) {
            pairs.push_back({unit, unit});
        }
    }
    return pairs;
}

} // namespace

AutoPairs::AutoPairs(EditorTextView &view, BracketSearch::Scopes scopesOf)
    : m_view(view), m_scopes(std::move(scopesOf)), m_language(view.language()), m_pairs(pairsOf(m_language))
{
    connect(&view.storage(), &TextStorage::changed, this, &AutoPairs::follow);
    connect(&view, &TextView::selectionChanged, this, &AutoPairs::forgetLeft);
}

void AutoPairs::beginKey()
{
    if (m_language != m_view.language()) {
        m_language = m_view.language();
        m_pairs = pairsOf(m_language);
    }
    m_quotes.emplace(m_view.storage().text(), m_pairs);
    m_scoped = {};
    m_unitsScoped = 0;
}

bool AutoPairs::type(QStringView text)
{
    if (text.size() != 1) {
        return false;
    }
    beginKey();
    const char16_t typed = text.front().unicode();
    if (std::ranges::none_of(m_pairs, [typed](const TypingPair &pair) { return pair.open == typed || pair.close == typed; })) {
        return false;
    }
    bool isOther = false;
    std::vector<qsizetype> completed;
    const Rope plain(text);
    const CaretStep step = CaretEditing::atEach(m_view.selections(), [&](const CaretSelection &one) -> std::optional<TextStep> {
        auto own = stepAt(one, typed);
        if (!own) {
            return CaretEditing::typedAt(one, plain);
        }
        isOther = true;
        if (one.isEmpty() && !own->edits.isEmpty()) {
            completed.push_back(one.caret.offset);
        }
        return own;
    });
    if (!isOther || !m_view.apply(step.edits, GroupKind::typing, step.after)) {
        return false;
    }
    for (const qsizetype caret : completed) {
        const qsizetype behind = step.edits.mapped(caret, Bias::after);
        m_written.push_back({behind - 2, behind - 1});
    }
    std::ranges::sort(m_written, {}, &Pair::closing);
    return true;
}

std::optional<TextStep> AutoPairs::stepAt(const CaretSelection &one, char16_t typed)
{
    const Rope &text = m_view.storage().text();
    if (one.isEmpty() && isWritten(one.caret.offset, typed)) {
        return TextStep{{}, TextSelection::at(one.caret.offset + 1)};
    }
    auto step = PairTyping::opened(text, one.ends(), typed, m_pairs, *m_quotes);
    if (!step || !isCode(one.range().location) || !isCode(one.range().end())) {
        return std::nullopt;
    }
    if (one.cellsBehind > 0) {
        const QString both = QString(one.cellsBehind, u' ') + step->edits[0].text.toString();
        return TextStep{{one.range(), both}, TextSelection::at(one.caret.offset + both.size() - 1)};
    }
    return step;
}

bool AutoPairs::isWritten(qsizetype closing, char16_t typed) const
{
    const Rope &text = m_view.storage().text();
    const auto found = std::ranges::lower_bound(m_written, closing, {}, &Pair::closing);
    return found != m_written.end() && found->closing == closing && closing < text.length() && text.at(closing) == typed &&
           !PairTyping::isEscaped(text, closing);
}

CaretStep AutoPairs::removed(const std::function<qsizetype(const CaretSelection &)> &otherEnd)
{
    beginKey();
    return CaretEditing::replaced(m_view.selections(), [&](const CaretSelection &one, size_t) -> CaretEditing::Replacement {
        const qsizetype caret = one.caret.offset;
        const bool isBare = one.isEmpty() && one.cellsBehind == 0;
        if (isBare && PairTyping::isBetween(m_view.storage().text(), caret, m_pairs, *m_quotes) && (isCode(caret - 1) || isCode(caret))) {
            return {.range = {caret - 1, 2}};
        }
        return CaretEditing::removal(one, CaretEditing::Direction::backward, otherEnd);
    });
}

CaretStep AutoPairs::broken(Indentation indentation, const std::function<TextStep(TextRange)> &otherwise)
{
    beginKey();
    const Rope &text = m_view.storage().text();
    return CaretEditing::atEach(m_view.selections(), [&](const CaretSelection &one) -> std::optional<TextStep> {
        const qsizetype caret = one.caret.offset;
        const bool isBetween = one.isEmpty() && PairTyping::isBetween(text, caret, m_pairs, *m_quotes);
        const bool opensBlock = isBetween && text.at(caret) != text.at(caret - 1) && isCode(caret);
        return opensBlock ? LineEditing::brokenPair(text, caret, indentation) : otherwise(one.range());
    });
}

// What the text is

bool AutoPairs::isCode(qsizetype offset)
{
    using Kind = BracketSearch::Kind;
    const Rope &text = m_view.storage().text();
    const auto beside = TextRange::between(offset - 1, offset + 1).intersected({0, text.length()});
    if (!m_scopes || beside.isEmpty()) {
        return true;
    }
    constexpr qsizetype chunk = SyntaxHighlighter::chunkSize;
    if (!m_scoped.touches(beside)) {
        m_scoped = {offset / chunk * chunk, chunk};
        m_unitsScoped += chunk;
    }
    if (m_unitsScoped > mostScoped) {
        return false;
    }
    Kind before = Kind::code;
    Kind behind = Kind::code;
    m_scopes(beside, [&](TextRange run, Scope scope) {
        before = run.location < offset ? BracketSearch::kindOf(scope) : before;
        behind = run.end() > offset ? BracketSearch::kindOf(scope) : behind;
    });
    if (before == Kind::code || offset == 0) {
        return true;
    }
    const bool endsLine = offset == text.length() || isLineEnd(text.at(offset));
    return before != behind && !(endsLine && endsOpen(offset, before));
}

/// Whether the comment or string that ends with the line or with the text would go on with what is typed there.
bool AutoPairs::endsOpen(qsizetype offset, BracketSearch::Kind kind) const
{
    const Rope &text = m_view.storage().text();
    if (kind == BracketSearch::Kind::string) {
        return std::ranges::find(allQuotes, text.at(offset - 1)) == allQuotes.end();
    }
    const auto delimiters = m_language.blockComment();
    const qsizetype length = delimiters ? delimiters->close.size() : 0;
    return length == 0 || length > offset || text.toString({offset - length, length}) != delimiters->close;
}

// Those that were written

void AutoPairs::follow(const TextChange &change)
{
    for (Pair &pair : m_written) {
        pair.opening = change.edits.mapped(pair.opening, Bias::after);
        pair.closing = change.edits.mapped(pair.closing, Bias::after);
    }
}

void AutoPairs::forgetLeft()
{
    std::erase_if(m_written, [&selections = m_view.selections()](const Pair &pair) {
        const size_t index = selections.firstReaching(pair.opening + 1);
        return index == selections.count() || selections[index].range().location <= pair.opening ||
               selections[index].range().end() > pair.closing;
    });
}
