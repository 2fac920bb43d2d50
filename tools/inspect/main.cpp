// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <array>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

enum ExitStatus { answered = 0, failed = 1, wrongArguments = 2 };

constexpr auto subjects = std::to_array<std::span<const CommandRow> (*)()>(
    {commandLineCommands, diffCommands, fileCommands, highlightCommands, indentationCommands, keysCommands, languageCommands,
     menuCommandRows, preferencesCommands, referenceCommands, stringsCommands});

const CommandRow *commandNamed(const QString &name)
{
    for (const auto subject : subjects) {
        for (const CommandRow &command : subject()) {
            if (command.name == name) {
                return &command;
            }
        }
    }
    return nullptr;
}

QString usage(const CommandRow *onlyCommand)
{
    QString text = u"usage:\n"_s;
    for (const auto subject : subjects) {
        for (const CommandRow &command : subject()) {
            if (!onlyCommand || onlyCommand == &command) {
                text += u"  quillet-inspect "_s + usageLine(command) + u"\n      "_s + command.purpose.toString() + u'\n';
            }
        }
    }
    return text;
}

/// Everything that the program keeps for its user goes to folders of our own, made before the application object looks for them.
bool usePrivateFolders(const QTemporaryDir &folder)
{
    struct Place {
        const char *variable;
        QString name;
    };
    const Place places[] = {{"XDG_CONFIG_HOME", u"config"_s},
                            {"XDG_DATA_HOME", u"data"_s},
                            {"XDG_STATE_HOME", u"state"_s},
                            {"XDG_CACHE_HOME", u"cache"_s},
                            {"XDG_RUNTIME_DIR", u"runtime"_s}};
    for (const Place &place : places) {
        if (!folder.isValid() || !QDir(folder.path()).mkdir(place.name, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner) ||
            !qputenv(place.variable, QFile::encodeName(folder.filePath(place.name)))) {
            return false;
        }
    }
    return qputenv("QT_QPA_PLATFORM", "offscreen");
}

bool print(const QJsonObject &answer)
{
    // Sorted keys are the object's own order.
    QFile output;
    const QByteArray json = QJsonDocument(answer).toJson(QJsonDocument::Indented);
    return output.open(stdout, QIODevice::WriteOnly) && output.write(json) == json.size() && output.flush();
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir folder;
    if (!usePrivateFolders(folder)) {
        std::fputs("quillet-inspect: no temporary folder could be made.\n", stderr);
        return failed;
    }
    // The application gets none of the arguments, so that it takes none for itself.
    int applicationArguments = 1;
    const QApplication application(applicationArguments, argv);
    QCoreApplication::setOrganizationName(u"Quillet"_s);
    QCoreApplication::setApplicationName(u"Quillet"_s);

    QStringList given;
    for (int index = 1; index < argc; ++index) {
        given += QFile::decodeName(argv[index]);
    }
    const CommandRow *const command = given.isEmpty() ? nullptr : commandNamed(given.takeFirst());
    const auto arguments = command ? parseArguments(*command, given) : std::nullopt;
    if (!arguments) {
        std::fputs(usage(command).toLocal8Bit().constData(), stderr);
        return wrongArguments;
    }
    const QJsonObject answer = command->run(*arguments);
    if (!print(answer)) {
        std::fputs("quillet-inspect: the answer could not be written.\n", stderr);
        return failed;
    }
    return answer.contains(u"error") ? failed : answered;
}
