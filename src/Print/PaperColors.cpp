// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Print/PaperColors.h"

PaperColors::PaperColors(const Rope &text, const Language &language, const Theme &theme, Slab slab)
    : m_highlighter(m_storage, language, theme, m_scheduler, m_notifications), m_slabSize(slab)
{
    m_storage.apply(TextEdits({}, text));
    m_highlighter.rehighlightAll();
}

void PaperColors::ensureColored(TextRange range)
{
    if (m_slab.contains(range)) {
        return;
    }
    m_highlighter.rehighlightAll();
    m_slab = TextRange{range.location, std::max(range.length, qsizetype(m_slabSize))}.clampedTo(m_storage.length());
    m_highlighter.ensureHighlighted(m_slab);
}

QList<QTextLayout::FormatRange> PaperColors::formats(TextRange range)
{
    ensureColored(range);
    return m_formats.formats(m_storage, range);
}

void PaperColors::forEachScope(TextRange range, const std::function<void(TextRange, Scope)> &visit)
{
    ensureColored(range);
    m_highlighter.forEachScope(range, visit);
}
