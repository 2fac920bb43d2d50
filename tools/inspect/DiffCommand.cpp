// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Text/LineDiff.h"

#include <QFile>
#include <QJsonArray>

#include <array>

using namespace Qt::StringLiterals;

namespace {

QString nameOf(LineDiff::Row::Kind kind)
{
    using enum LineDiff::Row::Kind;
    switch (kind) {
    case equal:
        return u"equal"_s;
    case deleted:
        return u"deleted"_s;
    case inserted:
        return u"inserted"_s;
    case modified:
        return u"modified"_s;
    }
    Q_UNREACHABLE();
}

QJsonValue valueOf(std::optional<LineNumber> number)
{
    return number ? QJsonValue(qint64(*number)) : QJsonValue();
}

QJsonArray arrayOf(const std::vector<InlineDiff::CharacterRange> &ranges)
{
    QJsonArray array;
    for (const InlineDiff::CharacterRange range : ranges) {
        array.append(QJsonArray{qint64(range.lower), qint64(range.upper)});
    }
    return array;
}

QJsonArray rowsOf(const LineDiff::Result &result)
{
    QJsonArray rows;
    for (qsizetype index = 0; index < result.rowCount(); ++index) {
        const LineDiff::Row row = result.row(index);
        const InlineDiff::Spans emphasis = result.emphasis(index);
        rows.append(QJsonObject{{u"kind"_s, nameOf(row.kind)},
                                {u"leftNumber"_s, valueOf(row.leftNumber)},
                                {u"rightNumber"_s, valueOf(row.rightNumber)},
                                {u"leftText"_s, result.leftText(index)},
                                {u"rightText"_s, result.rightText(index)},
                                {u"leftEmphasis"_s, arrayOf(emphasis.left)},
                                {u"rightEmphasis"_s, arrayOf(emphasis.right)}});
    }
    return rows;
}

QJsonObject runDiff(const Arguments &arguments)
{
    std::array<Rope, 2> texts;
    for (size_t side = 0; side < texts.size(); ++side) {
        QFile file(arguments.positionals[qsizetype(side)]);
        const auto text = utf8TextOf(file);
        if (!text) {
            return answerOfUtf8(file);
        }
        texts[side] = Rope(*text);
    }
    const Whitespace whitespace = arguments.has(u"ignore-whitespace") ? Whitespace::ignored : Whitespace::counts;
    // Nobody stops it.
    const LineDiff::Result result = *LineDiff::compare(texts[0], texts[1], whitespace);
    QJsonArray changeStarts;
    for (const qsizetype row : result.changeStarts()) {
        changeStarts.append(qint64(row));
    }
    return {{u"rows"_s, rowsOf(result)},
            {u"changeStarts"_s, changeStarts},
            {u"addedCount"_s, qint64(result.addedCount())},
            {u"removedCount"_s, qint64(result.removedCount())}};
}

constexpr auto diffOptions = std::to_array<OptionRow>({{u"ignore-whitespace"}});

constexpr auto rows = std::to_array<CommandRow>({
    {u"diff", u"OLD NEW", diffOptions, u"the rows of comparing two files line by line", runDiff},
});

} // namespace

std::span<const CommandRow> diffCommands()
{
    return rows;
}
