// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExCommands.h"

#include "Base/Translation.h"
#include "Settings/Preferences.h"
#include "Vim/VimSubstitution.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Host = VimCommandHost;

constexpr auto commands = std::to_array<VimExCommand>({
    {{u"write", u"w"}, &Host::saveDocument},
    {{u"wq", u"x", u"wqa", u"xa"}, &Host::saveAndClose},
    {{u"close", u"q"}, &Host::closeTab},
    {{u"q!"}, &Host::forceCloseCurrentTab},
    {{u"qa", u"qa!"}, &Host::closeWindowFromVim},
    {{u"edit", u"e", u"e!"}, &Host::editFile},
    // A search leaves nothing marked.
    {{u"nohlsearch", u"nohl", u"noh"}, VimExCommand::Ignored{}},
    {{u"set"}, VimExCommand::Setting{}},
    {{u"vsplit", u"vs"}, &Host::splitEditorRight},
    {{u"split", u"sp"}, &Host::splitEditorDown},
    {{u"only", u"on"}, &Host::closeOtherSplits},
});

constexpr auto options = std::to_array<VimOption>({
    {{u"number", u"nu"}, &Preferences::setShowLineNumbers, u"line numbers"},
    {{u"wrap"}, &Preferences::setWrapLines, u"line wrapping"},
    {{u"list"}, &Preferences::setShowInvisibles, u"invisible characters"},
    {{u"expandtab", u"et"}, &Preferences::setInsertSpaces, u"spaces or tabs"},
});

/// One setting under four names, and under all that begin with them.
constexpr std::array<QStringView, 4> widthOptions = {u"ts", u"tabstop", u"sw", u"shiftwidth"};

template<size_t count>
bool isAmong(const std::array<QStringView, count> &names, QStringView name)
{
    return !name.isEmpty() && std::ranges::find(names, name) != names.end();
}

/// Decimal digits, with a sign perhaps.
std::optional<qint64> integer(QStringView text)
{
    const QStringView digits = text.startsWith(u'+') || text.startsWith(u'-') ? text.sliced(1) : text;
    const bool areDigits = !digits.isEmpty() && std::ranges::all_of(digits, [](QChar unit) { return unit >= u'0' && unit <= u'9'; });
    bool fits = false;
    const qint64 value = text.toLongLong(&fits);
    return areDigits && fits ? std::optional(value) : std::nullopt;
}

bool setWidth(QStringView option, Preferences &preferences)
{
    const bool isWidth = std::ranges::any_of(widthOptions, [option](QStringView name) { return option.startsWith(name); });
    const auto width = option.contains(u'=') ? integer(option.sliced(option.lastIndexOf(u'=') + 1)) : std::nullopt;
    if (isWidth && width) {
        preferences.setTabWidth(int(std::clamp<qint64>(*width, 0, std::numeric_limits<int>::max())));
    }
    return isWidth && width;
}

void substitute(QStringView command, VimCommandHost &host)
{
    if (const auto substitution = VimSubstitution::parse(command)) {
        host.substitute(*substitution);
    } else {
        host.showVimMessage(localized(u"Malformed substitution"));
    }
}

QStringView withoutBlanksAround(QStringView text)
{
    const auto isBlank = [](QChar unit) { return unit == u' ' || unit == u'\t'; };
    while (!text.isEmpty() && isBlank(text.front())) {
        text = text.sliced(1);
    }
    while (!text.isEmpty() && isBlank(text.back())) {
        text.chop(1);
    }
    return text;
}

} // namespace

std::span<const VimExCommand> VimExCommand::table()
{
    return commands;
}

const VimExCommand *VimExCommand::named(QStringView name)
{
    const auto found = std::ranges::find_if(commands, [name](const VimExCommand &command) { return isAmong(command.names, name); });
    return found == commands.end() ? nullptr : &*found;
}

void VimExCommand::run(const QString &typed, VimCommandHost &host, Preferences &preferences)
{
    const QStringView text = withoutBlanksAround(typed);
    if (text.isEmpty()) {
        return;
    }
    if (const auto line = integer(text)) {
        host.scrollToLine(qsizetype(*line));
        return;
    }
    if (VimSubstitution::isOne(text)) {
        ::substitute(text, host);
        return;
    }
    const qsizetype blank = text.indexOf(u' ');
    const VimExCommand *command = named(blank < 0 ? text : text.first(blank));
    const QString argument = blank < 0 ? QString() : text.sliced(blank + 1).toString();
    if (!command) {
        host.showVimMessage(formatted(localized(u"Not a command: %@"), text.toString()));
    } else if (const auto *plain = std::get_if<Plain>(&command->function)) {
        (host.**plain)();
    } else if (const auto *withFile = std::get_if<WithFile>(&command->function)) {
        (host.**withFile)(argument);
    } else if (std::holds_alternative<Setting>(command->function) && !VimOption::apply(argument, preferences)) {
        host.showVimMessage(formatted(localized(u"Not an option: %@"), argument));
    }
}

std::span<const VimOption> VimOption::table()
{
    return options;
}

bool VimOption::apply(QStringView option, Preferences &preferences)
{
    constexpr auto off = "no"_L1;
    for (const VimOption &row : options) {
        const bool isOff = option.startsWith(off) && isAmong(row.names, option.sliced(off.size()));
        if (isOff || isAmong(row.names, option)) {
            (preferences.*row.set)(!isOff);
            return true;
        }
    }
    if (option == "novim"_L1 || option == "novim!"_L1) {
        preferences.setVimMode(false);
        return true;
    }
    return setWidth(option, preferences);
}
