// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/DiffControl.h"
#include "Text/Rope.h"

#include <optional>
#include <vector>

/// The lines of a text as a comparison counts them: LF alone ends a line, so a CR is part of its line, and one at the text's end begins no
/// further line. A text without anything has no lines.
///
/// Keeps the text, which shares its leaves with the original, and about 8 bytes for each leaf. Lines are numbered from 0, offsets and
/// lengths are UTF-16 units. Any thread; never changes.
class LineTable final {
public:
    LineTable() = default;
    /// One pass over the text; none soon after a stop was requested. `control` advances by the text's length.
    [[nodiscard]] static std::optional<LineTable> make(const Rope &text, const DiffControl &control = {});

    [[nodiscard]] const Rope &text() const { return m_text; }
    [[nodiscard]] qsizetype count() const { return m_count; }
    /// Where the last line ends: the text's length, or the place of the LF at its end.
    [[nodiscard]] qsizetype end() const { return m_end; }
    /// Line `line` (0 … count - 1) without its LF. O(log n).
    [[nodiscard]] TextRange range(qsizetype line) const;
    /// Where line `line` begins, 0 … count; that of `count` is behind the last line and its LF. O(log n).
    [[nodiscard]] qsizetype start(qsizetype line) const;

private:
    /// The first line that begins behind an LF of a leaf; the leaf's other LFs follow it.
    struct Entry {
        quint32 line = 0;
        quint32 start = 0;
    };

    Rope m_text;
    std::vector<Entry> m_entries;
    qsizetype m_count = 0;
    qsizetype m_end = 0;
};
