// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Text/LineIndex.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include <array>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

struct LineEndingName {
    QStringView name;
    LineEnding ending;
};
constexpr auto lineEndingNames =
    std::to_array<LineEndingName>({{u"lf", LineEnding::lf}, {u"crlf", LineEnding::crlf}, {u"cr", LineEnding::cr}});

QString nameOf(LineEnding ending)
{
    return lineEndingNames[size_t(ending)].name.toString();
}

std::optional<LineEnding> lineEndingNamed(const QString &name)
{
    for (const LineEndingName &row : lineEndingNames) {
        if (row.name == name) {
            return row.ending;
        }
    }
    return std::nullopt;
}

bool isLineEndingName(const QString &name)
{
    return lineEndingNamed(name).has_value();
}

QString nameOf(TextFile::ReadError::Kind kind)
{
    switch (kind) {
    case TextFile::ReadError::Kind::notReadable:
        return u"notReadable"_s;
    case TextFile::ReadError::Kind::tooLarge:
        return u"tooLarge"_s;
    case TextFile::ReadError::Kind::undecodable:
        return u"undecodable"_s;
    case TextFile::ReadError::Kind::binary:
        return u"binary"_s;
    }
    Q_UNREACHABLE();
}

QJsonArray lineStartsOf(const Rope &text)
{
    QJsonArray starts;
    for (const qsizetype start : TextMetrics::lineStarts(text)) {
        starts.append(qint64(start));
    }
    return starts;
}

std::optional<TextEncoding> encodingOption(const Arguments &arguments)
{
    const auto number = arguments.value(u"encoding");
    return number ? std::optional(TextEncoding(toNumber(*number))) : std::nullopt;
}

QJsonObject runText(const Arguments &arguments)
{
    const auto contents = TextFile::read(arguments.positionals[0], encodingOption(arguments));
    if (!contents) {
        return answerOf(contents.error());
    }
    QJsonObject answer{{u"text"_s, contents->text.toString()},
                       {u"encoding"_s, qint64(contents->encoding)},
                       {u"encodingName"_s, displayName(contents->encoding)},
                       {u"lineEnding"_s, nameOf(contents->lineEnding)},
                       {u"isLossyDecode"_s, contents->isLossyDecode},
                       {u"length"_s, qint64(contents->text.length())},
                       {u"lineCount"_s, qint64(contents->text.lineCount())}};
    if (arguments.has(u"suggestion")) {
        const auto suggested = contents->suggestedEncoding;
        answer[u"suggestedEncodingName"_s] = suggested ? QJsonValue(displayName(*suggested)) : QJsonValue();
    }
    if (arguments.has(u"line-starts")) {
        answer[u"lineStarts"_s] = lineStartsOf(contents->text);
    }
    return answer;
}

QJsonObject runWrite(const Arguments &arguments)
{
    const QString &path = arguments.positionals[0];
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) {
        return {{u"error"_s, u"notReadable"_s}, {u"description"_s, u"Standard input could not be read."_s}};
    }
    const auto text = utf8TextOf(input);
    if (!text) {
        return {{u"error"_s, u"undecodable"_s}, {u"description"_s, u"Standard input is not UTF-8 text."_s}};
    }
    const auto ending = lineEndingNamed(arguments.value(u"line-ending").value_or(u"lf"_s));
    const auto result = TextFile::write(Rope(*text), path, encodingOption(arguments).value_or(TextEncoding::utf8), *ending);
    if (!result) {
        const bool isEncoding = result.error().code == TextFile::inapplicableEncodingError;
        return {{u"error"_s, isEncoding ? u"inapplicableEncoding"_s : u"notWritable"_s}, {u"description"_s, result.error().message}};
    }
    return {{u"bytes"_s, QFileInfo(path).size()}};
}

QJsonObject runLineStarts(const Arguments &arguments)
{
    QFile file(arguments.positionals[0]);
    const auto text = utf8TextOf(file);
    if (!text) {
        return answerOfUtf8(file);
    }
    return {{u"lineStarts"_s, lineStartsOf(Rope(*text))}, {u"length"_s, qint64(text->size())}};
}

QJsonObject runCopyName(const Arguments &arguments)
{
    const auto copy = TextFile::nextAvailableCopy(arguments.positionals[0]);
    return {{u"copy"_s, copy ? QJsonValue(*copy) : QJsonValue()}};
}

constexpr OptionRow encoding = {u"encoding", u"NUMBER", isNumber};
constexpr auto textOptions = std::to_array<OptionRow>({encoding, {u"line-starts"}, {u"suggestion"}});
constexpr auto writeOptions = std::to_array<OptionRow>({encoding, {u"line-ending", u"lf|crlf|cr", isLineEndingName}});

constexpr auto rows = std::to_array<CommandRow>({
    {u"text", u"FILE", textOptions, u"what opening the file gives", runText},
    {u"write", u"OUT", writeOptions, u"save standard input (UTF-8) as that file", runWrite},
    {u"line-starts", u"FILE", {}, u"where the lines of the file begin, breaks as they stand", runLineStarts},
    {u"copy-name", u"FILE", {}, u"the path that a copy of the file would get", runCopyName},
});

} // namespace

std::optional<QString> utf8TextOf(QFile &file)
{
    if (!file.isOpen() && !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    return file.error() == QFile::NoError ? decodedStrictly(bytes, TextEncoding::utf8) : std::nullopt;
}

QJsonObject answerOfUtf8(const QFile &file)
{
    return answerOf({file.error() == QFile::NoError ? TextFile::ReadError::Kind::undecodable : TextFile::ReadError::Kind::notReadable,
                     file.fileName()});
}

QJsonObject answerOf(const TextFile::ReadError &error)
{
    const auto suggestion = error.recoverySuggestion();
    return {{u"error"_s, nameOf(error.kind)},
            {u"description"_s, error.description()},
            {u"recoverySuggestion"_s, suggestion ? QJsonValue(*suggestion) : QJsonValue()}};
}

std::span<const CommandRow> fileCommands()
{
    return rows;
}
