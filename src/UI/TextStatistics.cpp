// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "UI/TextStatistics.h"

#include "Base/Localization.h"
#include "Base/Translation.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype wordsPerMinute = 200;
constexpr qsizetype minutesPerHour = 60;

QString number(qsizetype count)
{
    return Localization::current().locale().toString(count);
}

struct RowKind {
    const char16_t *title;
    QString (*value)(const TextCounts &counts, qsizetype lines);
    /// Known without counting.
    bool isImmediate = false;
};
constexpr auto rowKinds = std::to_array<RowKind>({
    {u"Words", [](const TextCounts &counts, qsizetype /*lines*/) { return number(counts.words); }},
    {u"Characters", [](const TextCounts &counts, qsizetype /*lines*/) { return number(counts.characters); }},
    {u"Characters without spaces", [](const TextCounts &counts, qsizetype /*lines*/) { return number(counts.characters - counts.blanks); }},
    {u"Lines", [](const TextCounts & /*counts*/, qsizetype lines) { return number(lines); }, true},
    {u"Reading time", [](const TextCounts &counts, qsizetype /*lines*/) { return readingTime(counts.words); }},
});

QString valueOf(const RowKind &row, const TextStatistics::Column &column)
{
    return column.counts || row.isImmediate ? row.value(column.counts.value_or(TextCounts()), column.lines) : u"…"_s;
}

} // namespace

QString readingTime(qsizetype words)
{
    const qsizetype minutes = (words + wordsPerMinute / 2) / wordsPerMinute;
    if (minutes == 0) {
        return localized(u"less than 1 min");
    }
    return minutes < minutesPerHour ? formatted(localized(u"%d min"), minutes)
                                    : formatted(localized(u"%d h %d min"), minutes / minutesPerHour, minutes % minutesPerHour);
}

QString summary(const TextStatistics &statistics)
{
    const auto words = [](const TextStatistics::Column &column) { return column.counts ? number(column.counts->words) : u"…"_s; };
    if (statistics.selection) {
        return formatted(localized(u"%@ of %@ words"), words(*statistics.selection), words(statistics.text));
    }
    const bool isOne = statistics.text.counts && statistics.text.counts->words == 1;
    return isOne ? localized(u"1 word") : formatted(localized(u"%@ words"), words(statistics.text));
}

std::vector<TextStatistics::Row> TextStatistics::rows() const
{
    std::vector<Row> rows;
    for (const RowKind &row : rowKinds) {
        rows.push_back({localized(row.title), valueOf(row, text), selection ? valueOf(row, *selection) : QString()});
    }
    return rows;
}
