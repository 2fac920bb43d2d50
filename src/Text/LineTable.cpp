// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineTable.h"

#include "Text/ChunkReader.h"

#include <algorithm>

std::optional<LineTable> LineTable::make(const Rope &text, const DiffControl &control)
{
    LineTable table;
    table.m_text = text;
    qsizetype breaks = 0;
    bool goesOn = true;
    text.forEachChunk({0, text.length()}, [&](const Rope::Chunk &chunk) {
        if (const qsizetype first = firstLineFeed(chunk); first >= 0) {
            table.m_entries.push_back({quint32(breaks + 1), quint32(chunk.location + first + 1)});
            breaks += countLineFeeds(chunk);
        }
        goesOn = control.advance(chunk.length);
        return goesOn;
    });
    if (!goesOn) {
        return std::nullopt;
    }
    const bool endsInBreak = !text.isEmpty() && text.at(text.length() - 1) == u'\n';
    table.m_end = text.length() - (endsInBreak ? 1 : 0);
    table.m_count = text.isEmpty() ? 0 : breaks + (endsInBreak ? 0 : 1);
    return table;
}

TextRange LineTable::range(qsizetype line) const
{
    const qsizetype from = start(line);
    return TextRange::between(from, ChunkReader(m_text).lineEnd(from, m_end));
}

qsizetype LineTable::start(qsizetype line) const
{
    if (line == m_count) {
        return m_text.length();
    }
    const auto next = std::ranges::upper_bound(m_entries, line, {}, [](const Entry &entry) { return qsizetype(entry.line); });
    if (next == m_entries.begin()) {
        return 0;
    }
    const Entry &entry = *std::prev(next);
    ChunkReader chunks(m_text);
    qsizetype start = entry.start;
    for (qsizetype left = line - entry.line; left > 0; --left) {
        start = chunks.lineEnd(start, m_text.length()) + 1;
    }
    return start;
}
