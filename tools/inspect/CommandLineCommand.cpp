// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Command.h"

#include "App/CommandLine.h"
#include "App/CommandLineDocuments.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

QJsonObject runCommandLine(const Arguments &arguments)
{
    useInterfaceLanguage(arguments);
    return {{u"help"_s, CommandLine::help()},
            {u"man"_s, CommandLineDocuments::manPage()},
            {u"bash"_s, CommandLineDocuments::bashCompletion()},
            {u"zsh"_s, CommandLineDocuments::zshCompletion()},
            {u"fish"_s, CommandLineDocuments::fishCompletion()}};
}

constexpr std::array options = {interfaceLanguageOption};

constexpr auto rows = std::to_array<CommandRow>({
    {u"command-line", u"", options, u"what is installed about the program's options", runCommandLine},
});

} // namespace

std::span<const CommandRow> commandLineCommands()
{
    return rows;
}
