// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimMarkedLines.h"

#include "Vim/VimPlaces.h"

std::optional<qsizetype> VimMarkedLines::take()
{
    return isEmpty() ? std::nullopt : std::optional(m_starts[m_next++] + m_shift);
}

void VimMarkedLines::passOver(qsizetype start)
{
    if (!isEmpty() && m_starts[m_next] + m_shift == start) {
        ++m_next;
    }
}

void VimMarkedLines::follow(const TextChange &change)
{
    if (isEmpty() || change.edits.isEmpty()) {
        return;
    }
    const qsizetype last = m_starts.back() + m_shift;
    // Edits behind the last line concern none.
    size_t concerning = change.edits.count();
    while (concerning > 0 && change.edits[concerning - 1].range.location > last) {
        --concerning;
    }
    if (concerning == 0) {
        return;
    }
    const TextEdit &behind = change.edits[concerning - 1];
    const qsizetype shift = change.edits.newRange(concerning - 1).end() - behind.range.end();
    // Those that the edits may touch, one by one; all others are moved alike.
    std::vector<qsizetype> touched;
    size_t index = m_next;
    for (; index < m_starts.size() && m_starts[index] + m_shift <= behind.range.end(); ++index) {
        const VimPlace place{.offset = m_starts[index] + m_shift};
        if (const auto after = place.after(change, VimPlace::WithoutLine::goesWhenJoined)) {
            touched.push_back(change.after.lineStart(change.after.lineAt(after->offset)));
        }
    }
    m_shift += shift;
    m_next = index - touched.size();
    for (size_t place = 0; place < touched.size(); ++place) {
        m_starts[m_next + place] = touched[place] - m_shift;
    }
}
