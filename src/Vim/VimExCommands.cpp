// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExCommands.h"

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Settings/Preferences.h"
#include "Vim/VimSubstitution.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto commands = std::to_array<VimExCommand>({
    {{u"write", u"w"}, &Actions::saveDocument},
    {{u"wq", u"x", u"wqa", u"xa"}, &Actions::saveAndClose},
    {{u"close", u"q"}, &Actions::closeTab},
    {{u"q!"}, &Actions::forceCloseTab},
    {{u"qa", u"qa!"}, &Actions::closeWindowFromVim},
    {{u"edit", u"e", u"e!"}, &Actions::editFile},
    // A search leaves nothing marked.
    {{u"nohlsearch", u"nohl", u"noh"}, VimExCommand::Ignored{}},
    {{u"set"}, VimExCommand::Set{}},
    {{u"vsplit", u"vs"}, &Actions::splitEditorRight},
    {{u"split", u"sp"}, &Actions::splitEditorDown},
    {{u"only", u"on"}, &Actions::closeOtherSplits},
});

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
    } else if (const auto *action = std::get_if<const Action *>(&command->function)) {
        host.performCommand(**action, argument);
    } else if (std::holds_alternative<Set>(command->function) && !applyExOption(argument, preferences)) {
        host.showVimMessage(formatted(localized(u"Not an option: %@"), argument));
    }
}

bool applyExOption(QStringView typed, Preferences &preferences)
{
    return std::ranges::any_of(Settings::all(), [&](const AnySetting *setting) {
        if (const auto *onOff = setting->as<bool>()) {
            return apply(*onOff, typed, preferences);
        }
        const auto *number = setting->as<int>();
        return number && apply(*number, typed, preferences);
    });
}
