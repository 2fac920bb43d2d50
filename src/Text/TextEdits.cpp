// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextEdits.h"

#include "Text/ChunkReader.h"
#include "Text/TextBoundaries.h"

#include <algorithm>

TextEdits TextEdits::difference(const Rope &before, const Rope &after)
{
    const qsizetype shorter = std::min(before.length(), after.length());
    ChunkReader old(before);
    ChunkReader fresh(after);
    qsizetype head = 0;
    for (bool isSame = true; isSame && head < shorter;) {
        const Rope::Chunk a = old.after(head, shorter);
        const Rope::Chunk b = fresh.after(head, shorter);
        const qsizetype common = commonStart(a, b);
        isSame = common == std::min(a.length, b.length);
        head += common;
    }
    qsizetype tail = 0;
    for (bool isSame = true; isSame && tail < shorter - head;) {
        const Rope::Chunk a = old.before(before.length() - (shorter - head), before.length() - tail);
        const Rope::Chunk b = fresh.before(after.length() - (shorter - head), after.length() - tail);
        const qsizetype common = commonEnd(a, b);
        isSame = common == std::min(a.length, b.length);
        tail += common;
    }
    // Neither edge may part a surrogate pair.
    if (head > 0 && QChar::isHighSurrogate(before.at(head - 1)))
        --head;
    if (tail > 0 && QChar::isLowSurrogate(before.at(before.length() - tail)))
        --tail;
    return {TextRange::between(head, before.length() - tail), after.slice(TextRange::between(head, after.length() - tail))};
}

void TextEdits::add(TextRange range, const Rope &text)
{
    Q_ASSERT(range.location >= 0 && range.length >= 0);
    Q_ASSERT(isEmpty() || range.location >= m_edits.back().range.end());
    if (range.isEmpty() && text.isEmpty())
        return;
    if (!isEmpty() && m_edits.back().range.end() == range.location) {
        TextEdit &last = m_edits.back();
        last.range.length += range.length;
        last.text.replace({last.text.length(), 0}, text);
    } else {
        m_edits.push_back({range, text});
        m_shifts.push_back(m_growth);
    }
    m_growth += text.length() - range.length;
}

ReplacedStretch TextEdits::hull() const
{
    if (isEmpty())
        return {};
    const qsizetype from = m_edits.front().range.location;
    const qsizetype removed = m_edits.back().range.end() - from;
    return {from, removed, removed + m_growth};
}

size_t TextEdits::firstReaching(qsizetype offset) const
{
    const auto first = std::ranges::partition_point(m_edits, [offset](const TextEdit &edit) { return edit.range.end() < offset; });
    return size_t(first - m_edits.begin());
}

Rope TextEdits::applied(Rope before) const
{
    before.replace(m_edits);
    return before;
}

TextEdits TextEdits::inverse(const Rope &before) const
{
    TextEdits result;
    for (size_t i = 0; i < m_edits.size(); ++i)
        result.add(newRange(i), m_edits[i].range.isEmpty() ? Rope() : before.slice(m_edits[i].range));
    return result;
}

TextEdits TextEdits::followedBy(const TextEdits &next) const
{
    TextEdits result;
    size_t mine = 0;
    size_t theirs = 0;
    while (mine < count() || theirs < next.count()) {
        // Edits of both lists that touch, in the text between them, make one. All that lies in it was inserted or will be replaced.
        const bool beginsHere = mine < count() && (theirs == next.count() || newRange(mine).location <= next[theirs].range.location);
        const qsizetype start = beginsHere ? newRange(mine).location : next[theirs].range.location;
        const size_t first = mine;
        qsizetype end = start;
        qsizetype copied = start;
        Rope text;
        // What this list inserted up to `to` and the other does not replace.
        const auto copyInserted = [&](size_t from, size_t behind, qsizetype to) {
            for (size_t i = from; i < behind; ++i) {
                const TextRange stays = newRange(i).intersected(TextRange::between(copied, std::max(copied, to)));
                if (!stays.isEmpty())
                    text.replace({text.length(), 0}, m_edits[i].text.slice({stays.location - newRange(i).location, stays.length}));
            }
        };
        size_t kept = mine;
        for (bool grows = true; grows;) {
            grows = false;
            while (mine < count() && newRange(mine).location <= end) {
                end = std::max(end, newRange(mine++).end());
                grows = true;
            }
            while (theirs < next.count() && next[theirs].range.location <= end) {
                const TextEdit &edit = next[theirs++];
                while (kept < mine && newRange(kept).end() <= copied)
                    ++kept;
                copyInserted(kept, mine, edit.range.location);
                text.replace({text.length(), 0}, edit.text);
                copied = edit.range.end();
                end = std::max(end, copied);
                grows = true;
            }
        }
        copyInserted(kept, mine, end);
        const auto shiftAt = [this](size_t index) { return index < count() ? m_shifts[index] : m_growth; };
        result.add(TextRange::between(start - shiftAt(first), end - shiftAt(mine)), text);
    }
    return result;
}

TextEdits TextEdits::movedBy(qsizetype distance) const
{
    TextEdits result = *this;
    for (TextEdit &edit : result.m_edits)
        edit.range.location += distance;
    return result;
}

TextEdits TextEdits::withWholePairs(const Rope &before) const
{
    if (before.characterCount() == before.length())
        return *this;
    TextEdits result;
    for (const TextEdit &edit : m_edits) {
        TextRange range = edit.range;
        Rope text = edit.text;
        if (before.splitsPair(range.location)) {
            range = {range.location - 1, range.length + 1};
            text.replace({0, 0}, before.slice({range.location, 1}));
        }
        if (before.splitsPair(range.end())) {
            text.replace({text.length(), 0}, before.slice({range.end(), 1}));
            ++range.length;
        }
        result.add(range, text);
    }
    return result;
}

qsizetype TextEdits::mapped(qsizetype offset, Bias bias) const
{
    const size_t index = firstReaching(offset);
    if (index == count())
        return offset + m_growth;
    const TextRange range = m_edits[index].range;
    if (offset < range.location)
        return offset + m_shifts[index];
    const bool isInside = range.isEmpty() || (offset > range.location && offset < range.end());
    const bool goesToEnd = isInside ? bias == Bias::after : offset == range.end();
    return goesToEnd ? newRange(index).end() : newRange(index).location;
}

TextRange TextEdits::mapped(TextRange range) const
{
    const qsizetype from = mapped(range.location, Bias::after);
    return TextRange::between(from, std::max(from, mapped(range.end(), Bias::before)));
}

namespace {

qsizetype breaksIn(const Rope &text, TextRange range)
{
    return range.isEmpty() ? 0 : text.lineAt(range.end()) - text.lineAt(range.location);
}

} // namespace

qsizetype TextChange::removedLines(size_t index) const
{
    return breaksIn(before, edits[index].range);
}

qsizetype TextChange::insertedLines(size_t index) const
{
    return breaksIn(after, edits.newRange(index));
}

bool TextChange::isWithinLines() const
{
    if (before.lineCount() != after.lineCount())
        return false;
    for (size_t index = 0; index < edits.count(); ++index) {
        if (removedLines(index) != 0 || insertedLines(index) != 0)
            return false;
    }
    return true;
}

qsizetype TextChange::mapped(qsizetype offset, Bias bias) const
{
    const size_t index = edits.firstReaching(offset);
    if (index < edits.count()) {
        const TextRange range = edits[index].range;
        const bool isInside = range.location < offset && offset < range.end();
        const qsizetype removed = isInside ? removedLines(index) : 0;
        const qsizetype inserted = removed > 0 ? insertedLines(index) : 0;
        if (inserted > 0) {
            const TextRange fresh = edits.newRange(index);
            const qsizetype oldLine = before.lineAt(offset);
            const qsizetype column = offset - before.lineStart(oldLine);
            const auto share = double(inserted) / double(removed);
            const auto inChange = qsizetype(double(oldLine - before.lineAt(range.location)) * share);
            const qsizetype line = after.lineAt(fresh.location) + std::clamp<qsizetype>(inChange, 0, inserted);
            const qsizetype lineStart = after.lineStart(line);
            const qsizetype lineEnd = line + 1 < after.lineCount() ? after.lineStart(line + 1) - 1 : after.length();
            const qsizetype place = std::clamp(lineStart + column, lineStart, std::max(lineStart, lineEnd));
            return std::clamp(place, fresh.location, fresh.end());
        }
    }
    return edits.mapped(offset, bias);
}

TextSelection TextChange::mapped(TextSelection selection) const
{
    const auto place = [this](qsizetype offset, qsizetype other) {
        return TextBoundaries::snapped(after, mapped(offset, offset < other ? Bias::after : Bias::before));
    };
    return {place(selection.anchor, selection.caret), place(selection.caret, selection.anchor)};
}
