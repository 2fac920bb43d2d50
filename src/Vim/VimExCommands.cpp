// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExCommands.h"

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Settings/Preferences.h"
#include "Vim/VimSubstitution.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

using enum VimKeyHelp::Section;

constexpr auto commands = std::to_array<VimExCommand>({
    {{u"w", u"write"}, &Actions::saveDocument, {commandLine, u"write, quit, both"}},
    {{u"q", u"close"}, &Actions::closeTab, besideAbove},
    {{u"wq", u"x", u"wqa", u"xa"}, &Actions::saveAndClose, besideAbove, 2},
    {{u"q!"}, &Actions::forceCloseTab, {commandLine, u"quit without saving"}},
    {{u"qa", u"qa!"}, &Actions::closeWindowFromVim},
    {{u"e", u"edit", u"e!"}, &Actions::editFile, {commandLine, u"reload, or open a file", {u":e", u":e {file}"sv}}},
    {{}, VimExCommand::Line{}, {commandLine, u"go to a line", {u":{number}"}}},
    {{}, VimExCommand::Substitute{}, {commandLine, u"substitute; flags g and i", {u":s/old/new/"sv, u":%s/old/new/g"sv}}},
    {{u"hardcopy", u"ha"}, &Actions::printDocument},
    {{u"vs", u"vsplit"}, &Actions::splitEditorRight, {commandLine, u"split right, split down, close the others"}},
    {{u"sp", u"split"}, &Actions::splitEditorDown, besideAbove},
    {{u"only", u"on"}, &Actions::closeOtherSplits, besideAbove},
    {{u"set"}, VimExCommand::Set{}},
    {{u"nohlsearch", u"nohl", u"noh"}, VimExCommand::HideHits{}},
});

/// Commands only with the name of a file.
constexpr auto writingOver = std::to_array<QStringView>({u"w!", u"write!"});

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

bool apply(const Setting<bool> &setting, QStringView typed, Preferences &preferences)
{
    constexpr auto off = "no"_L1;
    const ExOption &option = setting.details.option;
    const bool isOff = typed.startsWith(off) && isAmong(option.names, typed.sliced(off.size()));
    const bool isOn = option.direction == ExOption::Direction::both && isAmong(option.names, typed);
    if (isOff || isOn) {
        preferences.set(setting, !isOff);
    }
    return isOff || isOn;
}

bool apply(const Setting<int> &setting, QStringView typed, Preferences &preferences)
{
    const bool isMeant =
        std::ranges::any_of(setting.details.option.names, [typed](QStringView name) { return !name.isEmpty() && typed.startsWith(name); });
    const auto number = typed.contains(u'=') ? integer(typed.sliced(typed.lastIndexOf(u'=') + 1)) : std::nullopt;
    if (isMeant && number) {
        preferences.set(setting, int(std::clamp<qint64>(*number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max())));
    }
    return isMeant && number;
}

/// Switches first.
VimKeyHelpEntries helpOfOptions()
{
    VimKeyHelpEntries switches;
    VimKeyHelpEntries others;
    for (const AnySetting *setting : Settings::all()) {
        const ExOption &option = setting->details.option;
        if (!option.exists() || option.audience == ExOption::Audience::exact) {
            continue;
        }
        const VimKeyHelp help{commandLine, option.purpose};
        const QString name = option.names.front().toString();
        if (const auto *number = std::get_if<int>(&setting->byDefault)) {
            others.emplace_back(u":set %1=%2"_s.arg(name).arg(*number), help);
        } else if (option.direction == ExOption::Direction::onlyOff) {
            others.emplace_back(u":set no"_s + name, help);
        } else {
            switches.emplace_back(u":set "_s + name, help).keys << u":set no"_s + name;
        }
    }
    std::ranges::move(others, std::back_inserter(switches));
    return switches;
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

VimKeyHelpEntries VimExCommand::keyHelp()
{
    VimKeyHelpEntries entries;
    for (const VimExCommand &command : commands) {
        if (!command.help.exists()) {
            continue;
        }
        VimKeyHelpEntry &entry = entries.emplace_back(u':' + command.names.front().toString(), command.help);
        for (size_t name = 1; name < command.toldNames; ++name) {
            entry.keys << u':' + command.names[name].toString();
        }
    }
    std::ranges::move(helpOfOptions(), std::back_inserter(entries));
    return entries;
}

void VimExCommand::run(const QString &typed, VimCommandHost &host, Preferences &preferences)
{
    const QStringView text = withoutBlanksAround(typed);
    if (text.isEmpty()) {
        return;
    }
    if (const auto line = integer(text)) {
        host.scrollToLine(static_cast<LineNumber>(*line));
        return;
    }
    if (VimSubstitution::isOne(text)) {
        ::substitute(text, host);
        return;
    }
    const qsizetype blank = text.indexOf(u' ');
    const VimExCommand *command = named(blank < 0 ? text : text.first(blank));
    const QString argument = blank < 0 ? QString() : text.sliced(blank + 1).toString();
    if (!command && isAmong(writingOver, text.first(std::max<qsizetype>(blank, 0)))) {
        host.performCommand(Actions::writeOver, argument);
    } else if (!command) {
        host.showVimMessage(formatted(localized(u"Not a command: %@"), text.toString()));
    } else if (const auto *action = std::get_if<const Action *>(&command->function)) {
        host.performCommand(**action, argument);
    } else if (std::holds_alternative<HideHits>(command->function)) {
        host.hideSearchHits();
    } else if (std::holds_alternative<Set>(command->function) && !applyExOption(argument, preferences)) {
        host.showVimMessage(formatted(localized(u"Not an option: %@"), argument));
    }
}

bool applyExOption(QStringView typed, Preferences &preferences)
{
    const bool isExact = preferences.value(Settings::vimExact);
    return std::ranges::any_of(Settings::all(), [&](const AnySetting *setting) {
        if (setting->details.option.audience == ExOption::Audience::exact && !isExact) {
            return false;
        }
        if (const auto *onOff = setting->as<bool>()) {
            return apply(*onOff, typed, preferences);
        }
        const auto *number = setting->as<int>();
        return number && apply(*number, typed, preferences);
    });
}
