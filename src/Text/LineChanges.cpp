// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineChanges.h"

#include <algorithm>

namespace LineChanges {

namespace {

using Side = LineDiff::Side;
using Kind = LineChange::Kind;

/// The break before `offset`, if there is one, counted in.
qsizetype beforeBreak(const Rope &text, qsizetype offset)
{
    return offset > 0 && text.at(offset - 1) == u'\n' ? offset - 1 : offset;
}

} // namespace

std::vector<LineChange> of(const LineDiff::Result &compared)
{
    std::vector<LineChange> changes;
    const auto rangeOf = [&compared](Side side, qsizetype first, qsizetype end) {
        const LineTable &lines = compared.lines(side);
        return TextRange::between(lines.start(first), lines.start(end));
    };
    const std::vector<LineDiff::Run> &runs = compared.runs();
    for (size_t index = 0; index < runs.size(); ++index) {
        if (runs[index].kind == LineDiff::Row::Kind::equal) {
            continue;
        }
        const LineDiff::Run &first = runs[index];
        while (index + 1 < runs.size() && runs[index + 1].kind != LineDiff::Row::Kind::equal) {
            ++index;
        }
        const LineDiff::Run &last = runs[index];
        const auto endOn = [&last](Side side) { return last.line(side) + (last.has(side) ? last.rowCount : 0); };
        LineChange change{.range = rangeOf(Side::right, first.rightLine, endOn(Side::right)),
                          .baseRange = rangeOf(Side::left, first.leftLine, endOn(Side::left))};
        change.kind = first.leftLine == endOn(Side::left)     ? Kind::added
                      : first.rightLine == endOn(Side::right) ? Kind::deleted
                                                              : Kind::modified;
        changes.push_back(change);
    }
    return changes;
}

bool map(std::vector<LineChange> &changes, const TextEdits &edits)
{
    bool hasOthers = false;
    for (LineChange &change : changes) {
        // What is typed before the first letter of a marked line, or of the line below missing ones, belongs to that line.
        const qsizetype start = edits.mapped(change.range.location, Bias::before);
        const qsizetype end = change.range.isEmpty() ? start : std::max(start, edits.mapped(change.range.end(), Bias::before));
        change.range = TextRange::between(start, end);
        if (change.range.isEmpty() && change.kind == Kind::modified) {
            change.kind = Kind::deleted;
            hasOthers = true;
        }
    }
    const auto gone = std::erase_if(changes, [](const LineChange &change) { return change.range.isEmpty() && change.kind == Kind::added; });
    return hasOthers || gone > 0;
}

std::optional<size_t> next(std::span<const LineChange> changes, qsizetype lineStart)
{
    const auto found = std::ranges::upper_bound(changes, lineStart, {}, [](const LineChange &change) { return change.range.location; });
    return found == changes.end() ? std::nullopt : std::optional(size_t(found - changes.begin()));
}

std::optional<size_t> previous(std::span<const LineChange> changes, qsizetype lineStart)
{
    auto found = std::ranges::lower_bound(changes, lineStart, {}, [](const LineChange &change) { return change.range.location; });
    // Inside a change its first line is no way to go.
    if (found != changes.begin() && std::prev(found)->range.contains(lineStart)) {
        --found;
    }
    return found == changes.begin() ? std::nullopt : std::optional(size_t(found - changes.begin()) - 1);
}

std::optional<size_t> at(std::span<const LineChange> changes, qsizetype lineStart, qsizetype lineEnd)
{
    // Those that begin on the line, and one that began before.
    const auto behind = std::ranges::upper_bound(changes, lineEnd, {}, [](const LineChange &change) { return change.range.location; });
    std::optional<size_t> found;
    for (auto change = behind; change != changes.begin();) {
        --change;
        const bool isMissingBelow = change->kind == Kind::deleted && change->range.location > lineStart;
        if (change->marks(lineStart) || (isMissingBelow && !found)) {
            found = size_t(change - changes.begin());
        } else if (change->range.location <= lineStart) {
            break;
        }
    }
    return found;
}

std::optional<size_t> firstIn(std::span<const LineChange> changes, Kind kind, TextRange stretch)
{
    auto change = std::ranges::partition_point(
        changes, [&stretch](const LineChange &one) { return std::max(one.range.end(), one.range.location + 1) <= stretch.location; });
    for (; change != changes.end() && change->range.location < stretch.end(); ++change) {
        if (change->kind == kind) {
            return size_t(change - changes.begin());
        }
    }
    return std::nullopt;
}

TextEdits restoring(const LineChange &change, const Rope &text, const Rope &base)
{
    TextRange range = change.range;
    TextRange lines = change.baseRange;
    // At the end of both the last break comes and goes with the lines: the text then ends as the base does.
    if (range.end() == text.length() && lines.end() == base.length()) {
        range = TextRange::between(beforeBreak(text, range.location), text.length());
        lines = TextRange::between(beforeBreak(base, lines.location), base.length());
    }
    return {range, base.slice(lines)};
}

} // namespace LineChanges
