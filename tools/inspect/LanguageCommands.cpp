// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Highlighting/LanguageRegistry.h"
#include "Highlighting/Rule.h"

#include <QJsonArray>

#include <array>

using namespace Qt::StringLiterals;

namespace {

template<typename Value>
QJsonValue orNull(const std::optional<Value> &value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QJsonObject describe(const Language &language)
{
    const auto lineComment = language.lineComment();
    const auto blockComment = language.blockComment();
    return {
        {u"id"_s, language.id()},
        {u"name"_s, language.name()},
        {u"lineComment"_s, lineComment ? QJsonValue(lineComment->toString()) : QJsonValue()},
        {u"blockComment"_s,
         blockComment ? QJsonValue(QJsonArray{blockComment->open.toString(), blockComment->close.toString()}) : QJsonValue()},
        {u"indentWidth"_s, orNull(language.defaultIndentWidth())},
        {u"insertSpaces"_s, orNull(language.defaultInsertSpaces())},
    };
}

QJsonObject runDetect(const Arguments &arguments)
{
    const QString &name = arguments.positionals[0];
    return describe(LanguageRegistry::detect(name == u"-" ? QString() : name, arguments.value(u"first-line").value_or(QString())));
}

QJsonObject runLanguages(const Arguments &)
{
    QJsonArray languages;
    for (const Language &language : LanguageRegistry::all()) {
        QJsonObject object = describe(language);
        object[u"extensions"_s] = QJsonArray::fromStringList(language.extensions());
        object[u"filenames"_s] = QJsonArray::fromStringList(language.filenames());
        object[u"shebangPatterns"_s] = QJsonArray::fromStringList(language.shebangPatterns());
        object[u"spans"_s] = qint64(language.spans().size());
        object[u"rules"_s] = qint64(language.rules().size());
        languages.append(object);
    }
    return {{u"languages"_s, languages}};
}

constexpr auto detectOptions = std::to_array<OptionRow>({{u"first-line", u"TEXT"}});

constexpr auto rows = std::to_array<CommandRow>({
    {u"detect", u"NAME", detectOptions, u"the language of a file of that name; - is a text without a name", runDetect},
    {u"languages", u"", {}, u"every language in the order of the registry", runLanguages},
});

} // namespace

std::span<const CommandRow> languageCommands()
{
    return rows;
}
