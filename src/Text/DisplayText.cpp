// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/DisplayText.h"

#include "Text/Rope.h"

#include <unicode/uchar.h>

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
    // The first wide character is a Hangul letter; the look-up costs more than all else here.
    if (unit < 0x1100) {
        return false;
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

bool isPlain(char16_t unit)
{
    return unit >= 0x20 && unit < 0x7F;
}

/// The ideographs, syllables and kana that most wide text consists of; the rest is looked up.
bool isSurelyWide(char16_t unit)
{
    return (unit >= 0x4E00 && unit < 0xA000) || (unit >= 0xAC00 && unit < 0xD7A4) || (unit >= 0x3041 && unit < 0x3097) ||
           (unit >= 0x30A1 && unit < 0x30FB);
}

template<class Unit, class CountUnit>
void countUnits(const Unit *units, qsizetype length, qsizetype &plain, const CountUnit &countUnit)
{
    // A whole block at a time, without a branch for each unit: opening a line of megabytes is mostly this.
    constexpr qsizetype block = 64;
    qsizetype i = 0;
    while (i < length) {
        const qsizetype end = std::min(i + block, length);
        if (end - i == block) {
            unsigned others = 0;
            for (qsizetype k = 0; k < block; ++k) {
                others |= static_cast<unsigned>(!isPlain(units[i + k]));
            }
            if (others == 0) {
                plain += block;
                i = end;
                continue;
            }
        }
        for (; i < end; ++i) {
            countUnit(units[i]);
        }
    }
}

} // namespace

CellCount countCells(const Rope &text, TextRange range, int tabWidth)
{
    CellCount cells;
    const auto countUnit = [&](char16_t unit) {
        if (isPlain(unit)) {
            ++cells.narrow;
            return;
        }
        if (isSurelyWide(unit)) {
            ++cells.wide;
            cells.isExact = false;
            return;
        }
        if (unit == u'\t') {
            const qsizetype column = cells.narrow + 2 * cells.wide;
            cells.narrow += tabWidth - column % tabWidth;
            return;
        }
        cells.isExact = false;
        if (QChar::isLowSurrogate(unit)) {
            return;
        }
        if (unit < 0x300) {
            ++cells.narrow;
        } else if (QChar::isHighSurrogate(unit) || isWide(unit)) {
            ++cells.wide;
        } else if (!takesNoCell(unit)) {
            ++cells.narrow;
        }
    };
    text.forEachChunk(range, [&](const Rope::Chunk &chunk) {
        if (chunk.narrow) {
            countUnits(chunk.narrow, chunk.length, cells.narrow, countUnit);
        } else {
            countUnits(chunk.wide, chunk.length, cells.narrow, countUnit);
        }
        return true;
    });
    return cells;
}
