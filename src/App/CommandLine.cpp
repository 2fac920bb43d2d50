// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/CommandLine.h"

#include "Platform/FilePath.h"
#include "Platform/Translation.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct OptionRow {
    QLatin1StringView longName;
    QLatin1StringView shortName;
    CommandLine::Request request;
    const char16_t *purpose;
};

constexpr auto options = std::to_array<OptionRow>({
    {"--help"_L1, "-h"_L1, CommandLine::Request::showHelp, u"show this help and end"},
    {"--version"_L1, "-v"_L1, CommandLine::Request::showVersion, u"show the version and end"},
});

} // namespace

CommandLine CommandLine::parse(const QStringList &arguments, const QString &folder)
{
    CommandLine line;
    bool mayBeOption = true;
    for (const QString &argument : arguments) {
        if (mayBeOption && argument == "--"_L1) {
            mayBeOption = false;
            continue;
        }
        if (mayBeOption && argument.startsWith(u'-')) {
            const auto option =
                std::ranges::find_if(options, [&](const OptionRow &row) { return argument == row.longName || argument == row.shortName; });
            if (option == options.end()) {
                return {
                    .request = Request::refuse, .files = {}, .complaints = {formatted(localized(u"There is no option “%@”."), argument)}};
            }
            return {.request = option->request, .files = {}, .complaints = {}};
        }
        const QString path = absoluteFilePath(argument, folder);
        const QFileInfo file(path);
        if (!file.exists()) {
            line.complaints << formatted(localized(u"“%@” does not exist."), argument);
        } else if (file.isDir()) {
            line.complaints << formatted(localized(u"“%@” is a folder."), argument);
        } else {
            line.files << path;
        }
    }
    return line;
}

QString CommandLine::help()
{
    QString text = localized(u"Usage: quillet [OPTION] [FILE…]") + u"\n\n"_s;
    for (const OptionRow &option : options) {
        text += u"  %1, %2  %3\n"_s.arg(option.shortName).arg(option.longName, -10).arg(localized(option.purpose));
    }
    return text;
}
