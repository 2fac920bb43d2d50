// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimNumber.h"

#include <algorithm>

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

/// Where a number may stand in a line.
struct Stretch {
    const VimLines &lines;
    qsizetype first;
    qsizetype behind;

    [[nodiscard]] bool hasDigit(qsizetype at, int base) const { return at >= first && at < behind && isDigit(lines.at(at), base); }
    [[nodiscard]] bool hasPrefix(qsizetype at, Prefix prefix) const
    {
        return at >= first && lines.at(at) == u'0' && at + 2 < behind && (lines.at(at + 1) | 0x20) == prefix.letter &&
               hasDigit(at + 2, prefix.base);
    }
    /// Of the number that begins there.
    [[nodiscard]] int baseAt(qsizetype at) const
    {
        const auto *const found = std::ranges::find_if(prefixes, [&](Prefix prefix) { return hasPrefix(at, prefix); });
        return found == std::end(prefixes) ? 10 : found->base;
    }
    /// The start of the number with such a prefix that has `place` in it, or else `place`.
    [[nodiscard]] qsizetype startAround(qsizetype place, Prefix prefix) const
    {
        qsizetype start = place;
        while (hasDigit(start, prefix.base) && hasDigit(start - 1, prefix.base)) {
            --start;
        }
        for (const qsizetype at : {start - 2, start - 1, start}) {
            if (hasPrefix(at, prefix) && at <= place && place < endOfDigits(at + 2, prefix.base)) {
                return at;
            }
        }
        return place;
    }
    [[nodiscard]] qsizetype endOfDigits(qsizetype at, int base) const
    {
        while (hasDigit(at, base)) {
            ++at;
        }
        return at;
    }
};

} // namespace

std::optional<VimNumber> VimNumber::added(const VimLines &lines, qsizetype from, qsizetype behind, bool isBounded, qint64 by)
{
    const Stretch stretch{lines, isBounded ? from : lines.start(from), behind};
    for (const Prefix prefix : prefixes) {
        from = stretch.startAround(from, prefix);
    }
    qsizetype start = from;
    while (start < behind && !isDigit(lines.at(start), 10)) {
        ++start;
    }
    if (start >= behind) {
        return std::nullopt;
    }
    if (stretch.baseAt(start) == 10) {
        while (stretch.hasDigit(start - 1, 10)) {
            --start;
        }
    }
    const int base = stretch.baseAt(start);
    const qsizetype digits = start + (base == 10 ? 0 : 2);
    const qsizetype end = stretch.endOfDigits(digits, base);
    const QString text = lines.text().toString(TextRange::between(digits, end));
    bool fits = false;
    quint64 value = text.toULongLong(&fits, base);
    value = fits ? value : std::numeric_limits<quint64>::max();
    if (base != 10) {
        const auto letter = std::find_if(text.rbegin(), text.rend(), [](QChar unit) { return unit > u'9'; });
        const bool isUpper = letter != text.rend() && *letter < u'a';
        const QString number = QString::number(value + quint64(by), base);
        return VimNumber{TextRange::between(digits, end), (isUpper ? number.toUpper() : number).rightJustified(text.size(), u'0')};
    }
    const bool isNegative = start > stretch.first && lines.at(start - 1) == u'-';
    // Beyond zero and beyond 64 bits it goes on with the other sign, as in Vim.
    const quint64 amount = by < 0 ? 0 - quint64(by) : quint64(by);
    const bool isTowardsZero = (by < 0) != isNegative;
    quint64 size = isTowardsZero ? value - amount : value + amount;
    bool isBelowZero = isNegative;
    if (isTowardsZero ? size > value : size < value) {
        size = ~size + (isTowardsZero ? 1 : 0);
        isBelowZero = !isBelowZero;
    }
    QString number = QString::number(size);
    if (text.startsWith(u'0')) {
        number = number.rightJustified(text.size(), u'0');
    }
    return VimNumber{TextRange::between(start - (isNegative ? 1 : 0), end), (isBelowZero && size != 0 ? u"-"_s : QString()) + number};
}
