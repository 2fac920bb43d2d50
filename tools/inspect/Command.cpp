// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "Highlighting/LanguageRegistry.h"
#include "Settings/DefaultsStore.h"
#include "Settings/Preferences.h"

#include <algorithm>

using namespace Qt::StringLiterals;

std::optional<QString> Arguments::value(QStringView option) const
{
    const auto found = options.find(option.toString());
    return found == options.end() || found->isEmpty() ? std::nullopt : std::optional(found->last());
}

std::optional<Arguments> parseArguments(const CommandRow &command, const QStringList &given)
{
    Arguments arguments;
    bool mayBeOption = true;
    for (qsizetype index = 0; index < given.size(); ++index) {
        const QString &argument = given[index];
        if (mayBeOption && argument == u"--") {
            mayBeOption = false;
            continue;
        }
        // A dash alone is a name like any other.
        if (!mayBeOption || !argument.startsWith(u'-') || argument.size() == 1) {
            arguments.positionals += argument;
            continue;
        }
        const auto row = std::find_if(command.options.begin(), command.options.end(), [&](const OptionRow &option) {
            return argument.startsWith(u"--") && option.name == QStringView(argument).sliced(2);
        });
        if (row == command.options.end()) {
            return std::nullopt;
        }
        QStringList &values = arguments.options[row->name.toString()];
        if (row->value.isEmpty()) {
            continue;
        }
        if (++index == given.size() || (row->isValid && !row->isValid(given[index]))) {
            return std::nullopt;
        }
        values += given[index];
    }
    const qsizetype wanted = command.positionals.isEmpty() ? 0 : command.positionals.count(u' ') + 1;
    return arguments.positionals.size() == wanted ? std::optional(arguments) : std::nullopt;
}

QString usageLine(const CommandRow &command)
{
    QString line = command.name.toString();
    if (!command.positionals.isEmpty()) {
        line += u' ' + command.positionals.toString();
    }
    for (const OptionRow &option : command.options) {
        line += u" [--"_s + option.name.toString() + (option.value.isEmpty() ? QString() : u' ' + option.value.toString()) + u']';
    }
    return line;
}

bool isNumber(const QString &value)
{
    bool isOk = false;
    (void)value.toUInt(&isOk, 0);
    return isOk;
}

quint32 toNumber(const QString &value)
{
    return value.toUInt(nullptr, 0);
}

bool isInterfaceLanguage(const QString &value)
{
    return value == u"en"_s || value == u"de"_s;
}

void useInterfaceLanguage(const Arguments &arguments)
{
    Localization::use(arguments.value(u"language") == u"de"_s ? AppLanguage::german : AppLanguage::english);
}

std::optional<TextRange> toRange(const QString &value)
{
    const qsizetype comma = value.indexOf(u',');
    bool isLocation = false;
    bool isLength = false;
    const quint32 location = value.left(std::max<qsizetype>(comma, 0)).toUInt(&isLocation);
    const quint32 length = value.mid(comma + 1).toUInt(&isLength);
    return comma > 0 && isLocation && isLength ? std::optional(TextRange{location, length}) : std::nullopt;
}

bool isRange(const QString &value)
{
    return toRange(value).has_value();
}

bool isLanguageID(const QString &value)
{
    return LanguageRegistry::withID(value).has_value();
}

bool setPreference(Preferences &preferences, const QString &setting)
{
    const qsizetype equals = setting.indexOf(u'=');
    const AnySetting *known = equals < 0 ? nullptr : Settings::withKey(QStringView(setting).left(equals));
    return known && preferences.setFromText(*known, setting.mid(equals + 1));
}

QStringList setPreferences(Preferences &preferences, const QStringList &settings)
{
    QStringList others = settings;
    others.removeIf([&](const QString &setting) { return setPreference(preferences, setting); });
    return others;
}

bool isPreferenceSetting(const QString &setting)
{
    ManualScheduler scheduler;
    DefaultsStore defaults(QString(), scheduler);
    NotificationCenter notifications;
    Preferences preferences(defaults, notifications);
    return setPreference(preferences, setting);
}
