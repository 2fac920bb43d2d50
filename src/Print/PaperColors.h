// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/NotificationCenter.h"
#include "Base/Scheduler.h"
#include "Highlighting/SyntaxHighlighter.h"
#include "View/SegmentLayout.h"

/// The colours of a text that nobody edits, with a highlighter of its own. They are found for a slab of the text when a part of it is
/// asked about, and forgotten when another one is: memory is bounded by the slab, and asking from front to back costs one pass.
///
/// Belongs to the thread that made it, whichever that is. Offsets are UTF-16 units.
class PaperColors final {
public:
    /// Units that are coloured at once: many for those who go through the text, few for those who look here and there.
    enum class Slab : qsizetype { wholeText = 0x80000, pages = 0x4000 };

    PaperColors(const Rope &text, const Language &language, const Theme &theme, Slab slab);

    [[nodiscard]] const Theme &theme() const { return m_highlighter.theme(); }
    /// As a layout of `range` wants them.
    [[nodiscard]] QList<QTextLayout::FormatRange> formats(TextRange range);
    /// The parts of `range` in order.
    void forEachScope(TextRange range, const std::function<void(TextRange, Scope)> &visit);

private:
    void ensureColored(TextRange range);

    // Nothing is edited, and so nothing delayed or posted.
    ManualScheduler m_scheduler;
    NotificationCenter m_notifications;
    TextStorage m_storage;
    SyntaxHighlighter m_highlighter;
    SegmentFormats m_formats;
    Slab m_slabSize;
    TextRange m_slab;
};
