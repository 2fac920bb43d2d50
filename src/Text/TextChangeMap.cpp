// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextChangeMap.h"

#include "Text/Rope.h"

namespace {

/// Maps ascending offsets, going through the changes once.
class ChangeWalk {
public:
    ChangeWalk(const TextChangeList &changes, Bias bias) : m_next(changes.begin()), m_end(changes.end()), m_bias(bias) {}

    qsizetype map(qsizetype offset)
    {
        for (; m_next != m_end; ++m_next) {
            const qsizetype start = m_next->position - m_shift;
            const qsizetype end = start + m_next->removed;
            if (offset < start)
                break;
            if (offset <= end) {
                const bool isInside = m_next->removed == 0 || (offset > start && offset < end);
                const bool goesToEnd = isInside ? m_bias == Bias::after : offset == end;
                return m_next->position + (goesToEnd ? m_next->inserted : 0);
            }
            m_shift += m_next->inserted - m_next->removed;
        }
        return offset + m_shift;
    }

private:
    TextChangeList::const_iterator m_next;
    TextChangeList::const_iterator m_end;
    Bias m_bias;
    qsizetype m_shift = 0;
};

} // namespace

qsizetype mappedOffset(qsizetype offset, const TextChangeList &changes, Bias bias)
{
    return ChangeWalk(changes, bias).map(offset);
}

LinePlace LinePlace::of(const Rope &text, qsizetype offset)
{
    const qsizetype line = text.lineAt(offset);
    return {line, offset - text.lineStart(line)};
}

qsizetype mappedPlace(qsizetype offset, LinePlace before, const Rope &text, const TextChangeList &changes, Bias bias)
{
    qsizetype shift = 0;
    qsizetype lineShift = 0;
    for (const TextChange &change : changes) {
        const qsizetype start = change.position - shift;
        if (offset <= start)
            break;
        const bool isInside = offset < start + change.removed;
        if (isInside && change.removedLines > 0 && change.insertedLines > 0) {
            const qsizetype first = text.lineAt(change.position);
            const auto share = double(change.insertedLines) / double(change.removedLines);
            const qsizetype inChange = qsizetype(double(before.line + lineShift - first) * share);
            const qsizetype line = first + std::clamp<qsizetype>(inChange, 0, change.insertedLines);
            const qsizetype lineStart = text.lineStart(line);
            const qsizetype lineEnd = line + 1 < text.lineCount() ? text.lineStart(line + 1) - 1 : text.length();
            const qsizetype place = std::clamp(lineStart + before.column, lineStart, std::max(lineStart, lineEnd));
            return std::clamp(place, change.position, change.position + change.inserted);
        }
        shift += change.inserted - change.removed;
        lineShift += change.insertedLines - change.removedLines;
    }
    return mappedOffset(offset, changes, bias);
}

TextSelection mappedSelection(TextSelection selection, const TextChangeList &changes, Bias bias)
{
    return {mappedOffset(selection.anchor, changes, bias), mappedOffset(selection.caret, changes, bias)};
}

TextRange mappedRange(TextRange range, const TextChangeList &changes)
{
    const qsizetype from = mappedOffset(range.location, changes, Bias::after);
    return TextRange::between(from, std::max(from, mappedOffset(range.end(), changes, Bias::before)));
}

void mapOffsets(std::span<qsizetype> offsets, const TextChangeList &changes, Bias bias)
{
    ChangeWalk walk(changes, bias);
    for (qsizetype &offset : offsets)
        offset = walk.map(offset);
}

void TextChangeCollector::add(const Edit &edit)
{
    const auto endsBefore = [](const Entry &entry, qsizetype position) { return entry.change.position + entry.change.inserted < position; };
    const auto beginsAfter = [](qsizetype position, const Entry &entry) { return position < entry.change.position; };
    const qsizetype editEnd = edit.position + edit.removed;
    auto first = m_isHull ? m_entries.begin() : std::lower_bound(m_entries.begin(), m_entries.end(), edit.position, endsBefore);
    const auto last = m_isHull ? m_entries.end() : std::upper_bound(first, m_entries.end(), editEnd, beginsAfter);

    // All in the text as it was just before this edit; what lies between the entries met is old text that becomes part of the change.
    Entry merged{{}, edit.addedLines, edit.startsAtLf};
    qsizetype start = edit.position;
    qsizetype end = editEnd;
    qsizetype surplus = 0;
    if (first != last) {
        if (first->change.position <= start)
            merged.startedAtLf = first->startedAtLf;
        start = std::min(start, first->change.position);
        end = std::max(end, std::prev(last)->change.position + std::prev(last)->change.inserted);
    }
    for (auto entry = first; entry != last; ++entry) {
        surplus += entry->change.inserted - entry->change.removed;
        merged.addedLines += entry->addedLines;
    }
    merged.change = {.position = start, .removed = end - start - surplus, .inserted = end - start - edit.removed + edit.inserted};

    for (auto later = last; later != m_entries.end(); ++later)
        later->change.position += edit.inserted - edit.removed;
    if (first == last) {
        m_entries.insert(first, merged);
    } else {
        *first = merged;
        m_entries.erase(std::next(first), last);
    }
    if (m_entries.size() > mostChanges)
        collapse();
}

void TextChangeCollector::collapse()
{
    const TextChange &first = m_entries.front().change;
    const TextChange &last = m_entries.back().change;
    Entry hull{{.position = first.position, .inserted = last.position + last.inserted - first.position}, 0, m_entries.front().startedAtLf};
    hull.change.removed = hull.change.inserted;
    for (const Entry &entry : m_entries) {
        hull.change.removed -= entry.change.inserted - entry.change.removed;
        hull.addedLines += entry.addedLines;
    }
    m_entries.assign(1, hull);
    m_isHull = true;
}

/// A line that begins inside or at the end of a change was gained by it. So was one that begins at its start, right behind a CR, if
/// only the change parted the CR from a LF. What was lost follows from that and from how many breaks the edits added.
TextChangeList TextChangeCollector::finish(const Rope &text)
{
    TextChangeList changes;
    changes.reserve(m_entries.size());
    for (const Entry &entry : m_entries) {
        TextChange change = entry.change;
        const qsizetype end = change.position + change.inserted;
        change.insertedLines = text.lineAt(end) - text.lineAt(change.position);
        if (change.position > 0 && text.at(change.position - 1) == u'\r') {
            const bool startsAtLf = change.position < text.length() && text.at(change.position) == u'\n';
            if (entry.startedAtLf && !startsAtLf)
                ++change.insertedLines;
        }
        change.removedLines = change.insertedLines - entry.addedLines;
        changes.push_back(change);
    }
    m_entries.clear();
    m_isHull = false;
    return changes;
}
