// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <span>

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
    /// Surrogate pairs that lie in the stretch as a whole.
    quint32 pairs = 0;
    bool startsWithLf = false;
    bool endsWithCr = false;

    /// Breaks when nothing follows.
    [[nodiscard]] quint32 closedBreaks() const { return breaks + (endsWithCr ? 1 : 0); }
    /// The sum of one or more stretches that are not empty.
    [[nodiscard]] static TextSummary total(std::span<const TextSummary> parts);
    /// One of the stretches that this is the sum of changed. False when the new sum does not follow from that.
    bool follow(const TextSummary &before, const TextSummary &after);

    friend bool operator==(const TextSummary &, const TextSummary &) = default;
};

[[nodiscard]] TextSummary summarizeText(const uchar *text, qsizetype length);
[[nodiscard]] TextSummary summarizeText(const char16_t *text, qsizetype length);

/// The offset after the `number`th break (from 1), counted as in TextSummary; there must be so many.
[[nodiscard]] qsizetype endOfBreak(const uchar *text, qsizetype length, qsizetype number);
[[nodiscard]] qsizetype endOfBreak(const char16_t *text, qsizetype length, qsizetype number);

/// The offset of the character of this number (from 0), where a surrogate pair is one; `length` when there are not so many.
[[nodiscard]] qsizetype startOfCharacter(const char16_t *text, qsizetype length, qsizetype number);

/// Whether all units are below U+0100.
[[nodiscard]] bool isNarrowText(const char16_t *text, qsizetype length);
void widenText(const uchar *text, qsizetype length, char16_t *out);
/// The units must be narrow.
void narrowText(const char16_t *text, qsizetype length, uchar *out);

inline bool TextSummary::follow(const TextSummary &before, const TextSummary &after)
{
    // As long as the lines at both ends of the stretch are as they were, what lies around it sees no difference.
    const bool hasSameEnds = before.breaks > 0 && after.breaks > 0 && before.firstLine == after.firstLine &&
                             before.lastLine == after.lastLine && before.startsWithLf == after.startsWithLf &&
                             before.endsWithCr == after.endsWithCr;
    const bool mayLoseLongest = after.longestLine < before.longestLine && before.longestLine == longestLine;
    if (!hasSameEnds || mayLoseLongest)
        return false;
    units += after.units - before.units;
    breaks += after.breaks - before.breaks;
    pairs += after.pairs - before.pairs;
    longestLine = qMax(longestLine, after.longestLine);
    return true;
}

inline TextSummary TextSummary::total(std::span<const TextSummary> parts)
{
    TextSummary sum;
    quint32 open = 0;
    bool endsInCr = false;
    for (const TextSummary &part : parts) {
        if (endsInCr && !part.startsWithLf) {
            if (sum.breaks++ == 0)
                sum.firstLine = open;
            open = 0;
        }
        open += part.firstLine;
        sum.longestLine = qMax(sum.longestLine, qMax(part.longestLine, open));
        if (part.breaks > 0) {
            if (sum.breaks == 0)
                sum.firstLine = open;
            open = part.lastLine;
        }
        sum.units += part.units;
        sum.breaks += part.breaks;
        sum.pairs += part.pairs;
        endsInCr = part.endsWithCr;
    }
    if (sum.breaks == 0)
        sum.firstLine = open;
    sum.lastLine = open;
    sum.startsWithLf = parts.front().startsWithLf;
    sum.endsWithCr = endsInCr;
    return sum;
}
