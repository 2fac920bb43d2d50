// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Files/TextFile.h"

#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>
#include <span>

class Preferences;
class QFile;

/// One option of a command, "--name" or "--name VALUE".
struct OptionRow {
    /// Without the dashes.
    QStringView name;
    /// What the usage calls the value; empty for an option that has none.
    QStringView value = {};
    /// What a value must look like, checked before the command runs; null for any.
    bool (*isValid)(const QString &value) = nullptr;
};

/// What was given to a command; everything in it fits the command's row.
class Arguments {
public:
    QStringList positionals;
    QHash<QString, QStringList> options;

    [[nodiscard]] bool has(QStringView option) const { return options.contains(option.toString()); }
    /// Of an option given more than once, the last value; none when it was not given.
    [[nodiscard]] std::optional<QString> value(QStringView option) const;
    [[nodiscard]] QStringList values(QStringView option) const { return options.value(option.toString()); }
};

/// One thing that the tool can be asked.
struct CommandRow {
    QStringView name;
    /// As the usage names them; all of them are needed.
    QStringView positionals;
    std::span<const OptionRow> options;
    /// What it answers, in a few words for the usage.
    QStringView purpose;
    /// The object to print. One that holds "error" says that the operation failed.
    QJsonObject (*run)(const Arguments &arguments);
};

/// The rows of each subject; `main.cpp` lists the subjects.
[[nodiscard]] std::span<const CommandRow> diffCommands();
[[nodiscard]] std::span<const CommandRow> commandLineCommands();
[[nodiscard]] std::span<const CommandRow> fileCommands();
[[nodiscard]] std::span<const CommandRow> highlightCommands();
[[nodiscard]] std::span<const CommandRow> indentationCommands();
[[nodiscard]] std::span<const CommandRow> keysCommands();
[[nodiscard]] std::span<const CommandRow> languageCommands();
[[nodiscard]] std::span<const CommandRow> menuCommandRows();
[[nodiscard]] std::span<const CommandRow> preferencesCommands();
[[nodiscard]] std::span<const CommandRow> referenceCommands();
[[nodiscard]] std::span<const CommandRow> stringsCommands();

/// The arguments by the row, or none when they do not fit it.
[[nodiscard]] std::optional<Arguments> parseArguments(const CommandRow &command, const QStringList &given);
[[nodiscard]] QString usageLine(const CommandRow &command);

/// The file as UTF-8 text as it stands, breaks included; none when it cannot be read or is not, then `file` tells which.
[[nodiscard]] std::optional<QString> utf8TextOf(QFile &file);
/// The answer when that gave none.
[[nodiscard]] QJsonObject answerOfUtf8(const QFile &file);
/// The answer when a file could not be opened as text.
[[nodiscard]] QJsonObject answerOf(const TextFile::ReadError &error);

/// "en" or "de".
[[nodiscard]] bool isInterfaceLanguage(const QString &value);
inline constexpr OptionRow interfaceLanguageOption{u"language", u"en|de", isInterfaceLanguage};
/// The answer is in the language that was asked for, else in English.
void useInterfaceLanguage(const Arguments &arguments);

/// "LOCATION,LENGTH" as it was given, or none.
[[nodiscard]] std::optional<TextRange> toRange(const QString &value);
[[nodiscard]] bool isRange(const QString &value);
[[nodiscard]] bool isLanguageID(const QString &value);

/// "KEY=VALUE" for one of the preferences: what it says, through the typed setter. False, and nothing set, when it says nothing.
bool setPreference(Preferences &preferences, const QString &setting);
/// All of them; those that say nothing are returned.
QStringList setPreferences(Preferences &preferences, const QStringList &settings);
[[nodiscard]] bool isPreferenceSetting(const QString &setting);

/// A whole number, decimal or with 0x in front, that fits into 32 bits.
[[nodiscard]] bool isNumber(const QString &value);
[[nodiscard]] quint32 toNumber(const QString &value);
