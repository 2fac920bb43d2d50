// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/MergeConflicts.h"

#include "Text/TextSearch.h"

#include <algorithm>

namespace MergeConflicts {

namespace {

/// Where lines begin that are `marker`, alone or with words behind a blank.
std::vector<qsizetype> linesOf(const Rope &text, const QString &marker, const std::stop_token &token)
{
    std::vector<qsizetype> lines;
    const auto isOneOf = [&text](qsizetype offset, std::initializer_list<char16_t> wanted) {
        return std::ranges::find(wanted, text.at(offset)) != wanted.end();
    };
    auto searcher = TextSearcher::compile({.pattern = marker, .matchesCase = true});
    if (searcher) {
        searcher->forEachHit(text, {0, text.length()},
                             [&](TextRange hit) {
                                 if ((hit.location == 0 || isOneOf(hit.location - 1, {u'\n'})) &&
                                     (hit.end() == text.length() || isOneOf(hit.end(), {u'\n', u' '}))) {
                                     lines.push_back(hit.location);
                                 }
                                 return lines.size() < mostMarkers;
                             },
                             {.stop = token});
    }
    return lines;
}

} // namespace

std::vector<TextRange> in(const Rope &text, const std::stop_token &stop)
{
    const std::vector<qsizetype> starts = linesOf(text, QString(7, u'<'), stop);
    const std::vector<qsizetype> ends = starts.empty() ? starts : linesOf(text, QString(7, u'>'), stop);
    const std::vector<qsizetype> middles = ends.empty() ? ends : linesOf(text, QString(7, u'='), stop);
    std::vector<TextRange> conflicts;
    for (size_t index = 0; index < starts.size(); ++index) {
        const qsizetype nextStart = index + 1 < starts.size() ? starts[index + 1] : text.length();
        const auto middle = std::ranges::upper_bound(middles, starts[index]);
        const auto end = middle == middles.end() ? ends.end() : std::ranges::upper_bound(ends, *middle);
        if (end != ends.end() && *end < nextStart) {
            const qsizetype below = text.lineAt(*end) + 1;
            conflicts.push_back(TextRange::between(starts[index], below < text.lineCount() ? text.lineStart(below) : text.length()));
        }
    }
    return conflicts;
}

void map(std::vector<TextRange> &conflicts, const TextEdits &edits)
{
    for (TextRange &conflict : conflicts) {
        const qsizetype start = edits.mapped(conflict.location, Bias::before);
        conflict = TextRange::between(start, std::max(start, edits.mapped(conflict.end(), Bias::before)));
    }
    std::erase_if(conflicts, [](TextRange conflict) { return conflict.isEmpty(); });
}

std::optional<size_t> next(std::span<const TextRange> conflicts, qsizetype place)
{
    const auto found = std::ranges::upper_bound(conflicts, place, {}, &TextRange::location);
    return found == conflicts.end() ? std::nullopt : std::optional(size_t(found - conflicts.begin()));
}

std::optional<size_t> previous(std::span<const TextRange> conflicts, qsizetype place)
{
    const auto behind = std::ranges::lower_bound(conflicts, place, {}, &TextRange::location);
    return behind == conflicts.begin() ? std::nullopt : std::optional(size_t(behind - conflicts.begin()) - 1);
}

std::optional<size_t> firstIn(std::span<const TextRange> conflicts, TextRange stretch)
{
    const auto found = std::ranges::upper_bound(conflicts, stretch.location, {}, &TextRange::end);
    return found != conflicts.end() && found->location < stretch.end() ? std::optional(size_t(found - conflicts.begin())) : std::nullopt;
}

} // namespace MergeConflicts
