// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimPlaces.h"

#include "Vim/VimBuffer.h"

#include <set>

namespace {

bool isAtLineStart(const Rope &text, qsizetype offset)
{
    return text.lineStart(text.lineAt(offset)) == offset;
}

qsizetype contentEnd(const Rope &text, qsizetype line)
{
    qsizetype end = line + 1 < text.lineCount() ? text.lineStart(line + 1) : text.length();
    const qsizetype start = text.lineStart(line);
    while (end > start && isBreak(text.at(end - 1))) {
        --end;
    }
    return end;
}

/// So far from a line's start columns are units: nobody walks along a long line at each key.
constexpr qsizetype farther = 4096;

/// Bytes of UTF-8; a pair of surrogates has four.
constexpr qsizetype bytesOf(char16_t unit)
{
    return unit < 0x80 ? 1 : unit < 0x800 || QChar::isSurrogate(unit) ? 2 : 3;
}

qsizetype columnAt(const Rope &text, qsizetype line, qsizetype offset)
{
    RopeCursor cursor(text);
    qsizetype column = 0;
    qsizetype at = line;
    for (const qsizetype near = std::min(offset, line + farther); at < near; ++at) {
        column += bytesOf(cursor.at(at));
    }
    return column + offset - at;
}

/// On the character that has the column, at most `end`.
qsizetype offsetAt(const Rope &text, qsizetype line, qsizetype end, qsizetype column)
{
    RopeCursor cursor(text);
    qsizetype at = line;
    for (const qsizetype near = std::min(end, line + farther); at < near; ++at) {
        const qsizetype bytes = bytesOf(cursor.at(at));
        if (column < bytes) {
            return QChar::isLowSurrogate(cursor.at(at)) ? at - 1 : at;
        }
        column -= bytes;
    }
    return std::min(at + column, end);
}

/// What one edit makes of the place of a line that it touches.
struct Touch {
    enum class What { nothing, gone, line, joined };

    What what = What::nothing;
    /// The line of the new text, or the offset in it where the place is, in a line that was joined to another.
    qsizetype target = 0;
    /// Its column counts from there on.
    bool keepsColumn = false;
};

class Mover {
public:
    Mover(const TextChange &change, VimPlace::Kind kind, qsizetype offset)
        : m_change(change), m_kind(kind), m_offset(offset), m_line(change.before.lineAt(offset)), m_start(change.before.lineStart(m_line)),
          m_contentEnd(contentEnd(change.before, m_line)),
          m_end(m_line + 1 < change.before.lineCount() ? change.before.lineStart(m_line + 1) : change.before.length())
    {}

    [[nodiscard]] qsizetype start() const { return m_start; }
    [[nodiscard]] qsizetype end() const { return m_end; }

    [[nodiscard]] Touch of(size_t index) const
    {
        const TextEdit &edit = m_change.edits[index];
        const TextRange range = edit.range;
        const qsizetype breaks = edit.text.lineCount() - 1;
        if (m_kind == VimPlace::Kind::undone && isOfOtherLines(edit)) {
            return {Touch::What::gone, m_change.after.lineAt(m_change.edits.newRange(index).location)};
        }
        const bool isWithinLine =
            range.location >= m_start && (range.end() < std::max(m_end, m_start + 1) || (m_start > 0 && range.end() <= m_contentEnd));
        if (isWithinLine || range.isEmpty()) {
            return ofOneWithin(index, breaks);
        }
        if (range.location > m_start || range.end() <= m_start) {
            return range.end() == m_start && range.location < m_start ? ofEnd(index, breaks) : Touch();
        }
        return ofOneAcross(index, breaks);
    }

private:
    /// It makes more or less lines of some, the one of the place among them, other than by bringing or taking whole ones.
    [[nodiscard]] bool isOfOtherLines(const TextEdit &edit) const
    {
        const Rope &before = m_change.before;
        const qsizetype first = before.lineAt(edit.range.location);
        const qsizetype last = before.lineAt(edit.range.end());
        const bool isWhole = before.lineStart(first) == edit.range.location && before.lineStart(last) == edit.range.end() &&
                             (edit.text.isEmpty() || endsWithBreak(edit.text));
        return !isWhole && m_line >= first && m_line <= last && edit.text.lineCount() - 1 != last - first;
    }

    [[nodiscard]] Touch ofOneWithin(size_t index, qsizetype breaks) const
    {
        const TextEdit &edit = m_change.edits[index];
        const bool opensLine =
            edit.range.location == m_contentEnd && !edit.text.isEmpty() && isBreak(edit.text.at(0)) && m_contentEnd > m_start;
        const bool opensEmptyLine =
            m_contentEnd == m_start && !edit.text.isEmpty() && isBreak(edit.text.at(0)) && !endsWithBreak(edit.text);
        if (breaks == 0 || m_offset < edit.range.end() || opensLine || opensEmptyLine) {
            return {};
        }
        if (edit.range.location == m_start && edit.range.isEmpty() && endsWithBreak(edit.text)) {
            return {Touch::What::line, m_change.after.lineAt(m_change.edits.newRange(index).end())};
        }
        return {}; // in what it began with, if it was parted
    }

    /// It begins before the line, and ends where that starts: lines before are deleted, or the line is added to one of them.
    [[nodiscard]] Touch ofEnd(size_t index, qsizetype breaks) const
    {
        const TextEdit &edit = m_change.edits[index];
        const bool joins = !isAtLineStart(m_change.before, edit.range.location) && (breaks == 0 || !endsWithBreak(edit.text));
        return joins ? Touch{Touch::What::joined, m_change.edits.mapped(m_offset, Bias::after)}
                     : Touch{Touch::What::line, m_change.after.lineAt(m_change.edits.newRange(index).end())};
    }

    /// It takes the line's start, and more than is in the line.
    [[nodiscard]] Touch ofOneAcross(size_t index, qsizetype breaks) const
    {
        const TextEdit &edit = m_change.edits[index];
        const bool takesBegun = isAtLineStart(m_change.before, edit.range.location);
        const bool takesAll = edit.range.end() >= m_contentEnd;
        const bool leavesLine = !isAtLineStart(m_change.before, edit.range.end());
        const qsizetype first = m_change.before.lineAt(edit.range.location);
        // Of the lines that it takes so many are left, as others.
        const bool deletesAll = edit.text.isEmpty() && edit.range.end() == m_change.before.length();
        const qsizetype kept = breaks + (takesBegun && leavesLine && !deletesAll ? 1 : 0) + (takesBegun ? 0 : 1);
        const bool takesOnlyBreak = edit.range.location >= contentEnd(m_change.before, first);
        if (takesOnlyBreak && !takesAll && isBlank(TextRange::between(m_start, edit.range.end()))) {
            return {Touch::What::joined, m_change.edits.mapped(m_offset, Bias::after)};
        }
        // What is left of it is joined to the first line, however much went before; a last line without a break goes with the one before
        // it.
        const bool isLastLine = takesOnlyBreak && edit.range.end() == m_change.before.length();
        if (!takesAll || (!takesBegun && edit.range.end() <= m_contentEnd && !isLastLine)) {
            return {Touch::What::joined, m_change.edits.newRange(index).end(), true};
        }
        if (m_line - first >= kept) {
            return {Touch::What::gone, m_change.after.lineAt(m_change.edits.newRange(index).location)};
        }
        return {Touch::What::line, m_change.after.lineAt(m_change.edits.newRange(index).location) + m_line - first};
    }

    [[nodiscard]] bool isBlank(TextRange range) const
    {
        qsizetype place = range.location;
        while (place < range.end() && isSpaceOrTab(m_change.before.at(place))) {
            ++place;
        }
        return place >= range.end();
    }

    const TextChange &m_change;
    VimPlace::Kind m_kind;
    qsizetype m_offset;
    qsizetype m_line;
    qsizetype m_start;
    qsizetype m_contentEnd;
    qsizetype m_end;
};

VimPlace inLine(const Rope &text, qsizetype line, qsizetype column)
{
    const qsizetype start = text.lineStart(line);
    return {offsetAt(text, start, contentEnd(text, line), column), column};
}

} // namespace

std::optional<VimPlace> VimPlace::after(const TextChange &change, WithoutLine without, Kind kind) const
{
    const Mover mover(change, kind, std::min(offset, change.before.length()));
    const qsizetype in = column ? *column : columnAt(change.before, mover.start(), std::min(offset, change.before.length()));
    qsizetype line = change.after.lineAt(change.edits.mapped(mover.start(), Bias::before));
    for (size_t index = change.edits.firstReaching(mover.start());
         index < change.edits.count() && change.edits[index].range.location <= mover.end(); ++index) {
        const Touch touch = mover.of(index);
        switch (touch.what) {
        case Touch::What::nothing:
            break;
        case Touch::What::gone:
            if (without != WithoutLine::staysThere) {
                return std::nullopt;
            }
            return inLine(change.after, touch.target, in);
        case Touch::What::line:
            line = touch.target;
            break;
        case Touch::What::joined: {
            if (without == WithoutLine::goesWhenJoined) {
                return std::nullopt;
            }
            const qsizetype there = change.after.lineAt(touch.target);
            const qsizetype target = columnAt(change.after, change.after.lineStart(there), touch.target);
            return inLine(change.after, there, target + (touch.keepsColumn ? in : 0));
        }
        }
    }
    return inLine(change.after, line, in);
}

VimTouchedLines::VimTouchedLines(const TextChange &change, VimPlace::Kind kind) : m_change(change), m_kind(kind)
{
    const Rope &before = change.before;
    const ReplacedStretch hull = change.edits.hull();
    const qsizetype last = before.lineAt(hull.location + hull.removed);
    m_first = before.lineStart(before.lineAt(hull.location));
    m_behind = last + 1 < before.lineCount() ? before.lineStart(last + 1) : before.length() + 1;
}

std::optional<VimPlace> VimTouchedLines::after(const VimPlace &place, VimPlace::WithoutLine without) const
{
    if (place.offset < m_first) {
        return place;
    }
    return place.offset >= m_behind ? VimPlace{place.offset + m_change.edits.growth(), place.column}
                                    : place.after(m_change, without, m_kind);
}

bool VimPlaces::add(qsizetype place, const Rope &text, qsizetype textWidth)
{
    bool isNear = false;
    constexpr qsizetype usualWidth = 79;
    if (m_kind == Kind::changes && !m_places.empty()) {
        const qsizetype line = text.lineAt(place);
        const qsizetype last = std::min(m_places.back().offset, text.length());
        isNear = text.lineAt(last) == line && std::abs(last - place) < (textWidth > 0 ? textWidth : usualWidth);
        if (isNear) {
            m_places.pop_back();
        }
    }
    m_places.push_back({.offset = place});
    if (m_places.size() > limit) {
        m_places.erase(m_places.begin());
    }
    m_position = m_places.size();
    return !isNear;
}

void VimPlaces::dropRepeats(const Rope &text)
{
    std::set<qsizetype> lines;
    std::vector<VimPlace> kept;
    size_t newer = m_places.size() - m_position;
    for (size_t index = m_places.size(); index-- > 0;) {
        if (lines.insert(text.lineAt(std::min(m_places[index].offset, text.length()))).second) {
            kept.push_back(m_places[index]);
        }
        if (index == m_position) {
            newer = kept.size();
        }
    }
    m_position = kept.size() - std::min(newer, kept.size());
    m_places.assign(kept.rbegin(), kept.rend());
}

std::optional<qsizetype> VimPlaces::older(qsizetype count, qsizetype caret, const Rope &text)
{
    if (m_kind == Kind::changes) {
        // At most the oldest; one who is there already fails.
        return m_position == 0 ? std::nullopt : goTo(std::max<qsizetype>(qsizetype(m_position) - count, 0));
    }
    dropRepeats(text);
    if (qsizetype(m_position) < count) {
        return std::nullopt;
    }
    if (m_position == m_places.size()) {
        add(caret, text);
        m_position = m_places.size() - 1;
    }
    return goTo(qsizetype(m_position) - count);
}

std::optional<qsizetype> VimPlaces::newer(qsizetype count, const Rope &text)
{
    const qsizetype last = qsizetype(m_places.size()) - 1;
    if (m_kind == Kind::changes) {
        return qsizetype(m_position) >= last ? std::nullopt : goTo(std::min(qsizetype(m_position) + count, last));
    }
    dropRepeats(text);
    return goTo(qsizetype(m_position) + count);
}

std::optional<qsizetype> VimPlaces::goTo(qsizetype position)
{
    if (position < 0 || position >= qsizetype(m_places.size())) {
        return std::nullopt;
    }
    m_position = size_t(position);
    return m_places[m_position].offset;
}

void VimPlaces::moveLast(qsizetype place)
{
    if (!m_places.empty()) {
        m_places.back() = {.offset = place};
    }
}

void VimPlaces::follow(const TextChange &change, VimPlace::Kind kind)
{
    const VimTouchedLines lines(change, kind);
    for (VimPlace &place : m_places) {
        place = lines.after(place, VimPlace::WithoutLine::staysThere).value_or(place);
    }
}
