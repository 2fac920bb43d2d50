// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// What a stretch of text adds to its document, so that two stretches can be put together without being read again.
///
/// Lines end after LF, CR LF or a lone CR. A CR at the very end may be half of a pair whose LF has yet to come: `breaks` leaves it
/// out and the line it ends stays open, until the next stretch shows what it was. All counts are UTF-16 code units.
struct TextSummary {
    quint32 units = 0;
    quint32 breaks = 0;
    /// To the end of the first break; `units` when there is none.
    quint32 firstLine = 0;
    /// From the end of the last break.
    quint32 lastLine = 0;
    quint32 longestLine = 0;
    bool startsWithLf = false;
    bool endsWithCr = false;

    /// Breaks when nothing follows.
    [[nodiscard]] quint32 closedBreaks() const { return breaks + (endsWithCr ? 1 : 0); }
    TextSummary &operator+=(const TextSummary &next);

    friend bool operator==(const TextSummary &, const TextSummary &) = default;
};

[[nodiscard]] TextSummary summarizeText(const uchar *text, qsizetype length);
[[nodiscard]] TextSummary summarizeText(const char16_t *text, qsizetype length);

/// The offset after the `number`th break (from 1), counted as in TextSummary; there must be so many.
[[nodiscard]] qsizetype endOfBreak(const uchar *text, qsizetype length, qsizetype number);
[[nodiscard]] qsizetype endOfBreak(const char16_t *text, qsizetype length, qsizetype number);

/// Whether all units are below U+0100.
[[nodiscard]] bool isNarrowText(const char16_t *text, qsizetype length);
void widenText(const uchar *text, qsizetype length, char16_t *out);
/// The units must be narrow.
void narrowText(const char16_t *text, qsizetype length, uchar *out);

inline TextSummary &TextSummary::operator+=(const TextSummary &next)
{
    if (next.units == 0)
        return *this;
    if (units == 0)
        return *this = next;
    quint32 open = lastLine;
    if (endsWithCr && !next.startsWithLf) {
        ++breaks;
        open = 0;
    }
    const quint32 middle = open + next.firstLine;
    if (breaks == 0)
        firstLine += next.firstLine;
    lastLine = next.breaks == 0 ? middle : next.lastLine;
    longestLine = qMax(qMax(longestLine, next.longestLine), middle);
    units += next.units;
    breaks += next.breaks;
    endsWithCr = next.endsWithCr;
    return *this;
}
