// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimNumber.h"

using namespace Qt::StringLiterals;

namespace {

bool isDigit(char16_t unit, int base)
{
    const char16_t lower = unit | 0x20;
    return (unit >= u'0' && unit < u'0' + std::min(base, 10)) || (base == 16 && lower >= u'a' && lower <= u'f');
}

struct Prefix {
    char16_t letter;
    int base;
};
constexpr Prefix prefixes[] = {{u'x', 16}, {u'b', 2}};

} // namespace

std::optional<VimNumber> VimNumber::added(const VimLines &lines, qsizetype from, qsizetype behind, bool isBounded, qint64 by)
{
    const qsizetype first = isBounded ? from : lines.start(from);
    const auto isDigitAt = [&](qsizetype at, int base) { return at >= first && at < behind && isDigit(lines.at(at), base); };
    const auto isPrefixAt = [&](qsizetype at, Prefix prefix) {
        return at >= first && lines.at(at) == u'0' && at + 2 < behind && (lines.at(at + 1) | 0x20) == prefix.letter &&
               isDigitAt(at + 2, prefix.base);
    };
    // Within a number with a prefix?
    for (const Prefix prefix : prefixes) {
        qsizetype start = from;
        while (isDigitAt(start, prefix.base) && isDigitAt(start - 1, prefix.base)) {
            --start;
        }
        const qsizetype candidates[] = {start - 2, start - 1, start};
        for (const qsizetype at : candidates) {
            const bool isInside = isPrefixAt(at, prefix) && at <= from;
            if (!isInside) {
                continue;
            }
            qsizetype end = at + 2;
            while (isDigitAt(end, prefix.base)) {
                ++end;
            }
            if (from < end) {
                from = at;
                break;
            }
        }
    }
    qsizetype start = from;
    while (start < behind && !isDigit(lines.at(start), 10)) {
        ++start;
    }
    if (start >= behind) {
        return std::nullopt;
    }
    int base = 10;
    for (const Prefix prefix : prefixes) {
        base = isPrefixAt(start, prefix) ? prefix.base : base;
    }
    if (base == 10) {
        while (isDigitAt(start - 1, 10)) {
            --start;
        }
        for (const Prefix prefix : prefixes) {
            base = isPrefixAt(start, prefix) ? prefix.base : base;
        }
    }
    const qsizetype digits = start + (base == 10 ? 0 : 2);
    qsizetype end = digits;
    bool isUpper = false;
    QString text;
    while (isDigitAt(end, base)) {
        const char16_t unit = lines.at(end++);
        text += QChar(unit);
        if (unit > u'9') {
            isUpper = unit < u'a';
        }
    }
    bool fits = false;
    quint64 value = text.toULongLong(&fits, base);
    value = fits ? value : std::numeric_limits<quint64>::max();
    const qsizetype width = end - digits;
    if (base != 10) {
        QString number = QString::number(value + quint64(by), base);
        number = (isUpper ? number.toUpper() : number).rightJustified(width, u'0');
        return VimNumber{TextRange::between(digits, end), number};
    }
    const bool isNegative = start > first && lines.at(start - 1) == u'-';
    const qint64 sum = (isNegative ? -qint64(value) : qint64(value)) + by;
    QString number = QString::number(sum < 0 ? 0 - quint64(sum) : quint64(sum));
    if (text.startsWith(u'0')) {
        number = number.rightJustified(width, u'0');
    }
    return VimNumber{TextRange::between(start - (isNegative ? 1 : 0), end), (sum < 0 ? u"-"_s : QString()) + number};
}
