// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimMatcher.h"

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype windowLength = qsizetype(128) * 1024;
/// What look-around sees beyond what can be matched.
constexpr qsizetype context = 1024;
/// Lines one behind the other that may be too hard before the rest of a window is left out.
constexpr int mostHardLines = 8;

} // namespace

Result<VimMatcher> VimMatcher::compile(const VimPattern &pattern, const Rope &text)
{
    auto expression = RegularExpression::compile(pattern.expression);
    if (!expression) {
        return tl::make_unexpected(expression.error());
    }
    return VimMatcher(pattern, std::move(*expression), text);
}

VimMatcher::VimMatcher(const VimPattern &pattern, RegularExpression expression, const Rope &text)
    : m_pattern(pattern), m_expression(std::move(expression)), m_text(text)
{}

/// Where the line ends that holds what is before `offset`; its break is part of it.
qsizetype VimMatcher::lineEndBehind(qsizetype offset) const
{
    const qsizetype line = m_text.lineAt(std::max<qsizetype>(offset - 1, 0));
    return line + 1 < m_text.lineCount() ? m_text.lineStart(line + 1) : m_text.length();
}

void VimMatcher::readWindow(qsizetype at)
{
    qsizetype end = std::min(at + windowLength, m_text.length());
    if (m_isHard) {
        end = std::min(end, lineEndBehind(at + 1));
    } else if (end < m_text.length()) {
        const qsizetype line = m_text.lineStart(m_text.lineAt(end));
        end = line > at ? line : end;
    }
    m_window = TextRange::between(at, end);
    const qsizetype furthest = std::min(m_text.length(), end + TextSearcher::reach);
    m_matchableEnd = m_pattern.staysInLine ? std::min(furthest, lineEndBehind(end)) : furthest;
    const auto legal = [this](qsizetype offset) { return m_text.splitsPair(offset) ? offset - 1 : offset; };
    m_matchableEnd = std::max(legal(m_matchableEnd), end);
    m_start = legal(std::max<qsizetype>(0, at - context));
    m_units = m_text.toString(TextRange::between(m_start, legal(std::min(m_text.length(), m_matchableEnd + context))));
}

VimMatch VimMatcher::match() const
{
    const auto moved = [this](TextRange range) { return TextRange{range.location + m_start, range.length}; };
    const TextRange whole = moved(m_expression.range());
    const auto furthest = [&](const std::vector<int> &groups) {
        std::optional<qsizetype> place;
        for (const int group : groups) {
            if (const auto found = m_expression.group(group)) {
                place = std::max(place.value_or(0), moved(*found).location);
            }
        }
        return place;
    };
    const qsizetype from = furthest(m_pattern.starts).value_or(whole.location);
    const qsizetype to = furthest(m_pattern.ends).value_or(whole.end());
    VimMatch match{.hit = TextRange::between(from, std::max(from, to)), .start = whole.location, .groups = {}};
    for (const int group : m_pattern.groups) {
        const auto found = m_expression.group(group);
        match.groups.push_back(found ? std::optional(moved(*found)) : std::nullopt);
    }
    return match;
}

bool VimMatcher::isLegal(const VimMatch &match) const
{
    const qsizetype length = m_text.length();
    const auto isWithin = [this, length](qsizetype place) {
        return place > 0 && place < length && (m_text.splitsPair(place) || (m_text.at(place) == u'\n' && m_text.at(place - 1) == u'\r'));
    };
    if (isWithin(match.start)) {
        return false;
    }
    const bool isBehindLast = match.hit.location == length && length > 0 && m_text.lineStart(m_text.lineCount() - 1) == length;
    return !isBehindLast;
}

std::optional<VimMatch> VimMatcher::next(TextRange range, const SearchControl &control)
{
    const qsizetype length = m_text.length();
    qsizetype at = std::max<qsizetype>(range.location, 0);
    while (at < range.end() && at <= length && !control.stop.stop_requested()) {
        if (!m_window.contains(at) && !(at == length && m_window.end() == length && m_window.location >= 0)) {
            readWindow(at);
        }
        const int limitHits = m_expression.limitHits();
        m_expression.begin(m_units, TextRange::between(at - m_start, m_matchableEnd - m_start), RegularExpression::Bounds::window());
        const bool isFound = m_expression.findNext();
        if (m_expression.limitHits() > limitHits) {
            if (!m_isHard) {
                m_isHard = true;
                m_window = {-1, 0};
                continue;
            }
            m_gaveUp = true;
            const bool leavesMore = ++m_hardLines >= mostHardLines;
            at = leavesMore ? lineEndBehind(std::min(length, at + windowLength)) : m_window.end();
            m_hardLines = leavesMore ? 0 : m_hardLines;
            if (at >= length) {
                return std::nullopt;
            }
            continue;
        }
        const bool isLastWindow = m_window.end() == length;
        const VimMatch found = isFound ? match() : VimMatch{.hit = {}, .start = length + 1, .groups = {}};
        if (found.start >= m_window.end() && !(isLastWindow && found.start == length)) {
            if (isLastWindow) {
                return std::nullopt;
            }
            m_hardLines = 0;
            at = m_window.end();
            continue;
        }
        if (found.start >= range.end()) {
            return std::nullopt;
        }
        if (isLegal(found)) {
            return found;
        }
        at = found.start + 1;
    }
    return std::nullopt;
}

qsizetype VimMatcher::behind(const VimMatch &match) const
{
    const qsizetype line = m_text.lineAt(match.start);
    const qsizetype lineEnd = line + 1 < m_text.lineCount() ? m_text.lineStart(line + 1) : m_text.length() + 1;
    qsizetype at = match.hit.end();
    if (match.hit.isEmpty()) {
        at += 1 + (at + 1 < m_text.length() && m_text.splitsPair(at + 1) ? 1 : 0);
    }
    return std::clamp(at, std::min(match.start + 1, lineEnd), lineEnd);
}
