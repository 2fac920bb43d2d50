// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimSearch.h"

#include "Text/TextSearch.h"
#include "Vim/VimMotion.h"

namespace {

Result<TextSearcher> searcherFor(const QString &pattern)
{
    return TextSearcher::compile({.pattern = pattern, .matchesCase = true, .isRegularExpression = true, .isBareExpression = true});
}

/// The first hit behind `last` of those from the start of its line on: of hits that could overlap it is always the same ones, wherever the
/// caret is.
std::optional<TextRange> firstBehind(qsizetype last, const Rope &text, TextRange range, TextSearcher &searcher,
                                     const SearchControl &control)
{
    std::optional<TextRange> hit;
    const auto take = [&](TextRange found) {
        if (found.location > last) {
            hit = found;
        }
        return !hit;
    };
    searcher.forEachHit(text, range, take, control);
    return hit;
}

} // namespace

bool VimSearch::isValid() const
{
    return searcherFor(pattern).has_value();
}

std::optional<TextRange> VimSearch::hit(const Rope &text, qsizetype from, const std::stop_token &stop) const
{
    auto searcher = searcherFor(pattern);
    if (!searcher) {
        return std::nullopt;
    }
    const SearchControl control{.stop = stop};
    const TextRange all{0, text.length() + 1};
    std::optional<TextRange> hit;
    if (direction == Direction::forward) {
        const TextRange behind = TextRange::between(text.lineStart(text.lineAt(from)), text.length() + 1);
        hit = firstBehind(VimMotion::lastUnit(text, from), text, behind, *searcher, control);
        hit = hit ? hit : searcher->firstHit(text, all, control);
    } else {
        hit = searcher->lastHit(text, {0, from}, control);
        hit = hit ? hit : searcher->lastHit(text, all, control);
    }
    return stop.stop_requested() ? std::nullopt : hit;
}

std::optional<TextRange> VimSearch::nearHit(const Rope &text, qsizetype from) const
{
    if (text.length() <= nearby) {
        return hit(text, from);
    }
    auto searcher = searcherFor(pattern);
    if (!searcher) {
        return std::nullopt;
    }
    if (direction == Direction::forward) {
        const qsizetype line = text.lineStart(text.lineAt(from));
        if (from - line > nearby) {
            return std::nullopt;
        }
        const qsizetype end = from + nearby;
        const qsizetype rest = end - text.length();
        const auto hit =
            firstBehind(VimMotion::lastUnit(text, from), text, TextRange::between(line, std::min(end, text.length() + 1)), *searcher, {});
        return hit || rest <= 0 ? hit : searcher->firstHit(text, {0, rest});
    }
    const auto hit = searcher->lastHit(text, {0, from}, {}, nearby);
    return hit || from >= nearby ? hit : searcher->lastHit(text, {0, text.length() + 1}, {}, nearby - from);
}
