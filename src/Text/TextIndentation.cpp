// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/TextIndentation.h"

#include "Text/LineWalk.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr int mostIndented = 1000;
constexpr qsizetype mostLines = 10'000;
constexpr int fewestIndented = 5;
/// Units of a line that are looked at; what is indented further is no indentation.
constexpr qsizetype furthest = 240;
constexpr qsizetype leastLevel = 2;
constexpr qsizetype mostLevel = 8;

bool areNineInTen(int part, int all)
{
    return part * 10 >= all * 9;
}

/// What of a line matters here.
struct Line {
    qsizetype blanks = 0;
    bool beginsWithTab = false;
    bool hasTabBehindSpace = false;
    bool continuesComment = false;
    bool endsWithComma = false;
};

/// None for a line without anything in it.
std::optional<Line> lookAt(RopeCursor &cursor, TextRange line)
{
    Line seen;
    const qsizetype end = line.location + std::min(line.length, furthest);
    qsizetype at = line.location;
    for (; at < end && isIndent(cursor.at(at)); ++at) {
        seen.beginsWithTab |= at == line.location && cursor.at(at) == u'\t';
        seen.hasTabBehindSpace |= at > line.location && cursor.at(at) == u'\t' && cursor.at(at - 1) == u' ';
    }
    if (at == end || isLineEnd(cursor.at(at))) {
        return std::nullopt;
    }
    seen.blanks = at - line.location;
    seen.continuesComment = cursor.at(at) == u'*';
    qsizetype last = line.end() - 1;
    while (last > at && (isLineEnd(cursor.at(last)) || isIndent(cursor.at(last)))) {
        --last;
    }
    seen.endsWithComma = cursor.at(last) == u',';
    return seen;
}

/// Counts the lines of a text from its first to its last.
class Tally {
public:
    [[nodiscard]] int indented() const { return m_indented; }

    void add(const Line &line)
    {
        if (line.blanks == 0) {
            m_levels.clear();
            m_alignedAt = 0;
        } else if (++m_indented; line.continuesComment) {
            return;
        } else if (line.hasTabBehindSpace) {
            ++m_mixed;
        } else if (line.beginsWithTab) {
            ++m_tabs;
        } else {
            addSpaces(line.blanks);
        }
        m_afterComma = line.endsWithComma;
    }

    [[nodiscard]] std::optional<TextIndentation> result() const
    {
        const int all = m_tabs + m_spaces + m_mixed;
        if (all < fewestIndented) {
            return std::nullopt;
        }
        if (areNineInTen(m_tabs, all)) {
            return TextIndentation{Indentation::Unit::tab};
        }
        const auto commonest = std::ranges::max_element(m_steps);
        const qsizetype width = commonest - m_steps.begin();
        if (*commonest == 0) {
            return std::nullopt;
        }
        int agreeing = 0;
        for (qsizetype blanks = width; blanks <= furthest; blanks += width) {
            agreeing += m_linesWith[size_t(blanks)];
        }
        return areNineInTen(agreeing, all) ? std::optional(TextIndentation{Indentation::Unit::spaces, int(width)}) : std::nullopt;
    }

private:
    void addSpaces(qsizetype blanks)
    {
        if (m_alignedAt != 0 && blanks >= m_alignedAt) {
            return;
        }
        m_alignedAt = 0;
        while (!m_levels.empty() && m_levels.back() > blanks) {
            m_levels.pop_back();
        }
        const qsizetype step = blanks - (m_levels.empty() ? 0 : m_levels.back());
        if (step > mostLevel || (step > 0 && m_afterComma)) {
            m_alignedAt = blanks;
            return;
        }
        ++m_spaces;
        ++m_linesWith[size_t(blanks)];
        if (step > 0) {
            m_levels.push_back(blanks);
            m_steps[size_t(step)] += step >= leastLevel ? 1 : 0;
        }
    }

    int m_indented = 0;
    int m_tabs = 0;
    int m_spaces = 0;
    int m_mixed = 0;
    /// By the number of spaces that they begin with.
    std::array<int, furthest + 1> m_linesWith = {};
    /// How often lines went further in, by how much.
    std::array<int, mostLevel + 1> m_steps = {};
    /// Those that the last line is in, ascending.
    std::vector<qsizetype> m_levels;
    /// Lines from here on stand below something; 0 for none.
    qsizetype m_alignedAt = 0;
    bool m_afterComma = false;
};

} // namespace

std::optional<TextIndentation> indentationOf(const Rope &text)
{
    RopeCursor cursor(text);
    Tally tally;
    const qsizetype lines = std::min(text.lineCount(), mostLines);
    qsizetype start = 0;
    for (qsizetype number = 1; number <= lines && tally.indented() < mostIndented; ++number) {
        const qsizetype end = number == text.lineCount() ? text.length() : text.lineStart(number);
        if (const auto line = lookAt(cursor, TextRange::between(start, end))) {
            tally.add(*line);
        }
        start = end;
    }
    return tally.result();
}
