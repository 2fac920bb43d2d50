// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/LineEndings.h"
#include "Files/TextEncoding.h"
#include "Text/Rope.h"

/// Folds line breaks and passes the text on to a rope.
class FoldingSink final : public TextSink {
public:
    /// After a text with these breaks.
    explicit FoldingSink(const LineBreakCounter &before = {}) : m_breaks(before) {}

    void append(std::span<uchar> latin1) override
    {
        m_builder.appendLatin1(latin1.data(), qsizetype(m_breaks.addAndFold(latin1, m_recorder)));
    }
    void append(std::span<char16_t> units) override
    {
        m_builder.append(QStringView(units.data(), qsizetype(m_breaks.addAndFold(units, m_recorder))));
    }

    /// Ends the text.
    [[nodiscard]] Rope text() { return m_builder.build(); }
    [[nodiscard]] const LineBreakCounter &breaks() const { return m_breaks; }
    /// Of the text that ended; with that of the text before if it ended with CR, since it may have gone on.
    [[nodiscard]] LineEndings lineEndings()
    {
        m_recorder.add(LineEnding::cr, m_breaks.endsWithCr() ? 1 : 0);
        return m_recorder.build();
    }

private:
    RopeBuilder m_builder;
    LineBreakCounter m_breaks;
    LineEndingRecorder m_recorder;
};
