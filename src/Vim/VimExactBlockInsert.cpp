// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What is typed into the lines of a rectangle: into all of them at once, or, where keys do more than that, into the first one, from which
// the others get it in the end.

#include "Vim/VimExact.h"

void VimEngine::Inserting::enterBlock(const BlockInsertion &block)
{
    begin();
    m_kind = block.places.size() > 1 ? Kind::block : Kind::insert;
    m_block = block;
    m_block->before = text();
    m_count = block.count;
    std::vector<TextRange> ranges;
    for (const qsizetype place : block.places) {
        ranges.push_back({place, 0});
    }
    m_start = block.places.front();
    m_engine.m_view.selectSeveral(ranges, 0);
    m_engine.resetPending();
}

void VimEngine::Inserting::gatherBlock()
{
    if (m_kind != Kind::block) {
        return;
    }
    m_kind = Kind::insert;
    const qsizetype place = caret();
    const qsizetype typed = place - m_start;
    TextEdits others;
    for (size_t row = 1; row < m_block->places.size() && typed > 0; ++row) {
        others.add({m_block->places[row] + qsizetype(row) * typed, typed}, Rope());
    }
    edit(others);
    m_engine.m_view.select({place, 0}, place);
}

/// By how much the first line has grown where it was typed into, and from where on; nothing of lines that it was parted into.
TextRange VimEngine::Inserting::typedIntoBlock() const
{
    const Rope &before = m_block->before;
    const qsizetype start = m_block->places.front();
    const VimLines linesBefore(before);
    if (VimLines(text()).count() != linesBefore.count()) {
        return {start, 0};
    }
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    const qsizetype line = linesBefore.start(start);
    const auto indentation = [line](const VimLines &in) {
        qsizetype at = line;
        while (!in.isAtEnd(at) && isSpaceOrTab(in.at(at))) {
            ++at;
        }
        return at - line;
    };
    // Behind the indentation that does not count.
    const qsizetype indented = start - line > indentation(linesBefore) ? indentation(lines) - indentation(linesBefore) : 0;
    const qsizetype grown = lines.end(line) - linesBefore.end(line) - indented;
    return wholeCharacters(text(), {start + indented, std::max<qsizetype>(grown, 0)});
}

/// Its lines are as they are to be, and the marks of what was typed. False when the others have got nothing.
bool VimEngine::Inserting::leaveBlock()
{
    const bool isGathered = m_kind != Kind::block;
    const std::vector<qsizetype> &places = m_block->places;
    const TextRange first = isGathered ? typedIntoBlock() : TextRange::between(m_start, std::max(caret(), m_start));
    const qsizetype typed = first.length;
    const qsizetype place = caret();
    const qsizetype shift = isGathered ? text().length() - m_block->before.length() : 0;
    TextEdits edits;
    if (typed == 0) {
        for (const TextEdit &each : m_block->unfilling) {
            edits.add({each.range.location + shift, each.range.length}, each.text);
        }
    } else if (isGathered) {
        const Rope inserted = text().slice(first);
        for (size_t row = 1; row < places.size(); ++row) {
            edits.add({places[row] + shift, 0}, inserted);
        }
    }
    if (!edits.isEmpty()) {
        edit(edits);
        m_engine.m_view.select({place, 0}, place);
    }
    const auto rows = qsizetype(places.size());
    const bool wasThere = !m_block->endsAt; // it was changed
    if (typed != 0 && (rows > 1 || !wasThere)) {
        m_exact.changing.noteLineBelow(m_start);
    }
    const qsizetype last = std::clamp<qsizetype>(wasThere || typed == 0 ? place : places.back() + rows * typed, 0, text().length());
    m_exact.changing.setChangeMarks(std::min(m_start, last), last);
    return typed > 0;
}
