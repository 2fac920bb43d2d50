// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <array>
#include <optional>
#include <span>

/// How a file breaks its lines. In memory every break is a single LF; the file's own is applied when it is written.
enum class LineEnding { lf, crlf, cr };

struct LineEndingRow {
    LineEnding ending;
    /// The break itself, which is also what session files keep.
    QStringView rawValue;
};

/// In the order of menus, which is also that of the cases.
inline constexpr auto lineEndings = std::to_array<LineEndingRow>({
    {LineEnding::lf, u"\n"},
    {LineEnding::crlf, u"\r\n"},
    {LineEnding::cr, u"\r"},
});

[[nodiscard]] constexpr QStringView rawValue(LineEnding ending)
{
    return lineEndings[size_t(ending)].rawValue;
}
[[nodiscard]] std::optional<LineEnding> lineEndingWithRawValue(QStringView rawValue);

class LineEndingRecorder;

/// Counts the breaks of a text that comes in portions; a pair may be split between two of them.
class LineBreakCounter {
public:
    /// Turns CR LF and lone CR into LF in place as well. Returns how many units are left at the front of the portion.
    /// The recorder hears of every break but for a CR at the portion's end, which the next portion decides about.
    [[nodiscard]] size_t addAndFold(std::span<uchar> latin1, LineEndingRecorder &recorder);
    [[nodiscard]] size_t addAndFold(std::span<char16_t> units, LineEndingRecorder &recorder);
    [[nodiscard]] bool endsWithCr() const { return m_endsWithCr; }

    /// The convention of a text that ends here: CR LF wins every tie, LF wins one with CR, and is that of a text without breaks.
    [[nodiscard]] LineEnding ending() const;

private:
    template<typename Unit>
    bool countAllButPairs(std::span<const Unit> units);
    template<typename Unit>
    size_t fold(std::span<Unit> units, LineEndingRecorder &recorder);

    qsizetype m_pairs = 0;
    /// LFs of pairs included.
    qsizetype m_lineFeeds = 0;
    qsizetype m_carriageReturns = 0;
    bool m_endsWithCr = false;
};
