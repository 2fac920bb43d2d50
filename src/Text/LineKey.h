// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/ChunkReader.h"
#include "Text/DiffControl.h"

#include <QByteArray>
#include <QString>

/// What of a line is compared: the same units exactly when two lines count as equal. One byte a unit when all units are below U+0100.
struct LineKey {
    const uchar *narrow = nullptr;
    const char16_t *wide = nullptr;
    qsizetype length = 0;
    /// The units are the text's own and stay where they are as long as it.
    bool isInPlace = false;

    [[nodiscard]] size_t hash() const;
    friend bool operator==(const LineKey &a, const LineKey &b);
};

/// Makes the keys of a text's lines: canonically composed (NFC), without the characters of Unicode's White_Space if those are ignored.
/// A line without anything to change, in one leaf, is read where it stands. The rope must outlive this unchanged; one thread at a time.
class LineKeyReader final {
public:
    LineKeyReader(const Rope &text, Whitespace whitespace) : m_text(&text), m_chunks(text), m_whitespace(whitespace) {}

    /// Of the line in these units, which hold no LF. Valid until the next call.
    [[nodiscard]] LineKey key(TextRange line);

private:
    [[nodiscard]] LineKey narrowKey(const uchar *units, qsizetype length);
    [[nodiscard]] LineKey wideKey(QStringView units);

    const Rope *m_text;
    ChunkReader m_chunks;
    Whitespace m_whitespace;
    QByteArray m_bytes;
    QString m_units;
    QString m_composed;
};
