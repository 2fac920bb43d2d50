// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/DisplayText.h"

#include "Text/Rope.h"

#include <unicode/uchar.h>

#include <cstring>

namespace {

constexpr char16_t replacement = 0xFFFD;

char16_t standIn(char16_t unit)
{
    switch (unit) {
    case u'\t':
        return unit;
    case 0x7F:
        return 0x2421;
    case 0x85:
        return 0x2424;
    case 0x2028:
        return 0x21B5;
    case 0x2029:
        return 0x00B6;
    default:
        break;
    }
    if (unit < 0x20) {
        return static_cast<char16_t>(0x2400 + unit);
    }
    return unit >= 0x80 && unit < 0xA0 ? replacement : unit;
}

bool needsStandIn(char16_t unit)
{
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
}

bool isWide(char16_t unit)
{
    // The ideographs, syllables and kana that most wide text consists of; the rest is looked up.
    if ((unit >= 0x4E00 && unit < 0xA000) || (unit >= 0xAC00 && unit < 0xD7A4) || (unit >= 0x3041 && unit < 0x3097) ||
        (unit >= 0x30A1 && unit < 0x30FB)) {
        return true;
    }
    const int width = u_getIntPropertyValue(unit, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH;
}

bool takesNoCell(char16_t unit)
{
    const int8_t type = u_charType(unit);
    return type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_FORMAT_CHAR;
}

} // namespace

QString displayText(const Rope &text, TextRange range)
{
    QString shown(range.length, Qt::Uninitialized);
    auto *units = reinterpret_cast<char16_t *>(shown.data());
    text.copy(range, units);
    for (qsizetype i = 0; i < range.length; ++i) {
        if (needsStandIn(units[i])) {
            units[i] = standIn(units[i]);
        } else if (QChar::isSurrogate(units[i])) {
            const bool isPair = QChar::isHighSurrogate(units[i]) && i + 1 < range.length && QChar::isLowSurrogate(units[i + 1]);
            if (isPair) {
                ++i;
            } else {
                units[i] = replacement;
            }
        }
    }
    return shown;
}

bool mayRunRightToLeft(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        const char16_t unit = c.unicode();
        return unit >= 0x590 &&
               (unit < 0x900 || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069) ||
                (unit >= 0xD802 && unit <= 0xD83B) || (unit >= 0xFB1D && unit < 0xFE00) || (unit >= 0xFE70 && unit < 0xFF00));
    });
}

namespace {

/// True when all eight bytes are printable ASCII.
bool areAllPrintable(const uchar *bytes)
{
    quint64 word = 0;
    std::memcpy(&word, bytes, sizeof word);
    constexpr quint64 ones = 0x0101010101010101;
    constexpr quint64 highs = 0x8080808080808080;
    // A high bit comes up for bytes below 0x20, for 0x7F and for those that have it already.
    return (((word - 0x20 * ones) | (word + ones) | word) & highs) == 0;
}

/// Counts the cells of one line at a time, unit by unit or a chunk at once.
class CellCounter {
public:
    explicit CellCounter(int tabWidth) : m_tabWidth(tabWidth) {}

    /// Counts up to the next line break; gives the index of the break, or the chunk's length.
    qsizetype countUntilBreak(const Rope::Chunk &chunk, qsizetype index)
    {
        index = countIndent(chunk, index);
        while (index < chunk.length) {
            if (chunk.narrow && index + 8 <= chunk.length && areAllPrintable(chunk.narrow + index)) {
                cells.narrow += 8;
                index += 8;
                continue;
            }
            const char16_t unit = chunk.at(index);
            if (unit == u'\n' || unit == u'\r') {
                break;
            }
            countUnit(unit);
            ++index;
        }
        return index;
    }

    CellCount cells;
    /// Of the blanks and tabs before anything else.
    qsizetype indent = 0;

private:
    qsizetype countIndent(const Rope::Chunk &chunk, qsizetype index)
    {
        for (; m_isInIndent && index < chunk.length; ++index) {
            const char16_t unit = chunk.at(index);
            m_isInIndent = unit == u' ' || unit == u'\t';
            if (!m_isInIndent) {
                break;
            }
            countUnit(unit);
            indent = cells.narrow;
        }
        return index;
    }

    void countUnit(char16_t unit)
    {
        if (unit >= 0x20 && unit < 0x7F) {
            ++cells.narrow;
        } else if (unit == u'\t') {
            cells.narrow += m_tabWidth - (cells.narrow + 2 * cells.wide) % m_tabWidth;
        } else {
            cells.isExact = false;
            if (QChar::isHighSurrogate(unit) || (unit >= 0x1100 && isWide(unit))) {
                ++cells.wide;
            } else if (unit < 0x300 || (!QChar::isLowSurrogate(unit) && !takesNoCell(unit))) {
                ++cells.narrow;
            }
        }
    }

    int m_tabWidth;
    bool m_isInIndent = true;
};

} // namespace

CellCount countCells(const Rope &text, TextRange range, int tabWidth)
{
    CellCounter counter(tabWidth);
    text.forEachChunk(range, [&](const Rope::Chunk &chunk) {
        counter.countUntilBreak(chunk, 0);
        return true;
    });
    return counter.cells;
}

std::vector<LineCells> countCellsOfLines(const Rope &text, qsizetype start, qsizetype mostLines, qsizetype unitBudget, int tabWidth)
{
    std::vector<LineCells> lines;
    CellCounter counter(tabWidth);
    const auto endLine = [&] {
        const qsizetype cells = counter.cells.narrow + 2 * counter.cells.wide;
        lines.push_back({cells, std::min(cells, counter.indent)});
        counter = CellCounter(tabWidth);
    };
    bool isAfterReturn = false;
    bool isDone = false;
    text.forEachChunk(TextRange::between(start, text.length()), [&](const Rope::Chunk &chunk) {
        for (qsizetype index = 0; index < chunk.length && !isDone; ++index) {
            if (isAfterReturn && chunk.at(index) == u'\n') {
                isAfterReturn = false;
                continue;
            }
            index = counter.countUntilBreak(chunk, index);
            isAfterReturn = index < chunk.length && chunk.at(index) == u'\r';
            if (index < chunk.length) {
                endLine();
                isDone = std::ssize(lines) >= mostLines || chunk.location + index - start >= unitBudget;
            }
        }
        return !isDone;
    });
    if (!isDone) {
        endLine();
    }
    return lines;
}
