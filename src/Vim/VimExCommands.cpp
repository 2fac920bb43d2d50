// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExCommands.h"

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Settings/Preferences.h"
#include "Vim/VimExFunctions.h"
#include "Vim/VimSubstitution.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

using enum VimKeyHelp::Section;
using enum VimExCommand::Takes;
using Modes = VimMappings::Modes;
using Mode = VimMappings::Mode;

constexpr Modes typing = Modes(Mode::insert) | Modes(Mode::commandLine);
constexpr Modes commanded = Modes(Mode::normal) | Modes(Mode::visual) | Modes(Mode::operatorPending);

template<Modes (*modes)()>
Result<void> mapRecursively(VimExCall &call)
{
    return VimExFunctions::map(call, modes(), VimExFunctions::Mapped::recursively);
}
template<Modes (*modes)()>
Result<void> mapOnce(VimExCall &call)
{
    return VimExFunctions::map(call, modes(), VimExFunctions::Mapped::once);
}
template<Modes (*modes)()>
Result<void> unmap(VimExCall &call)
{
    return VimExFunctions::unmap(call, modes());
}
template<Modes (*modes)()>
Result<void> clearMappings(VimExCall &call)
{
    return VimExFunctions::clearMappings(call, modes());
}
template<Mode mode>
Modes only()
{
    return mode;
}
Modes allTyped()
{
    return typing;
}
Modes allCommanded()
{
    return commanded;
}

using ExactNames = std::array<QStringView, 4>;

/// A command that only exact modal editing has.
constexpr VimExCommand exactly(const ExactNames &names, unsigned takes, VimExCommand::Function function, const VimKeyHelp &help = {})
{
    return {{}, VimExCommand::Exact{}, help, 1, names, takes, function};
}
constexpr VimExCommand exactly(const ExactNames &names, unsigned takes, const Action &action, const VimKeyHelp &help = {})
{
    return {{}, &action, help, 1, names, takes};
}

namespace Ex = VimExFunctions;

constexpr unsigned lines = range | count;
constexpr unsigned linesAndRegister = lines | registerName;
constexpr unsigned optionalName = argument | bang;
constexpr unsigned mapping = argument | configures;

constexpr auto commands = std::to_array<VimExCommand>({
    {{u"w", u"write"},
     &Actions::saveDocument,
     {commandLine, u"write, quit, both"},
     1,
     {u"w[rite]", u"up[date]"},
     range | optionalName | fileName,
     &Ex::write},
    {{u"q", u"close"}, &Actions::closeTab, besideAbove, 1, {u"q[uit]"}},
    {{u"wq", u"x", u"wqa", u"xa"}, &Actions::saveAndClose, besideAbove, 2, {u"wq"}, bang, &Ex::writeAndClose},
    {{u"q!"}, &Actions::forceCloseTab, {commandLine, u"quit without saving"}, 1, {u"q[uit]!"}},
    {{u"qa", u"qa!"}, &Actions::closeWindowFromVim, {}, 1, {u"qa[ll]", u"quita[ll]"}, bang},
    {{u"e", u"edit", u"e!"},
     &Actions::editFile,
     {commandLine, u"reload, or open a file", {u":e", u":e {file}"sv}},
     1,
     {u"e[dit]"},
     optionalName | fileName,
     &Ex::edit},
    {{}, VimExCommand::Line{}, {commandLine, u"go to a line", {u":{number}"}}},
    {{}, VimExCommand::Substitute{}, {commandLine, u"substitute; flags g and i", {u":s/old/new/"sv, u":%s/old/new/g"sv}}},
    {{u"hardcopy", u"ha"}, &Actions::printDocument, {}, 1, {u"ha[rdcopy]"}, bang},
    {{u"vs", u"vsplit"},
     &Actions::splitEditorRight,
     {commandLine, u"split right, split down, close the others"},
     1,
     {u"vs[plit]"},
     argument | fileName,
     &Ex::splitBeside},
    {{u"sp", u"split"}, &Actions::splitEditorDown, besideAbove, 1, {u"sp[lit]"}, argument | fileName, &Ex::splitBelow},
    {{u"only", u"on"}, &Actions::closeOtherSplits, besideAbove, 1, {u"only", u"on[ly]"}, bang},
    {{u"set"}, VimExCommand::Set{}, {}, 1, {u"se[t]", u"setl[ocal]", u"setg[lobal]"}, argument | configures | optionNames, &Ex::set},
    {{u"nohlsearch", u"nohl", u"noh"}, VimExCommand::HideHits{}, {}, 1, {u"noh[lsearch]"}, 0, &Ex::hideHits},

    exactly({u"x[it]", u"exi[t]"}, bang, &Ex::writeIfChangedAndClose, {commandLine, u"save if there are changes, and close"}),
    exactly({u"d[elete]"}, linesAndRegister, &Ex::remove, {commandLine, u"delete, yank lines", {u":{range}d x"sv}}),
    exactly({u"y[ank]"}, linesAndRegister, &Ex::yank, besideAbove),
    exactly({u"pu[t]"}, range | lineZero | registerName | bang, &Ex::put,
            {commandLine, u"put lines of a register below, above", {u":pu x"sv, u":pu! x"sv}}),
    exactly({u"m[ove]"}, range | argument, &Ex::move, {commandLine, u"move, copy lines behind another", {u":m {line}"sv}}),
    exactly({u"t", u"co[py]"}, range | argument, &Ex::copy, {.forms = {u":t {line}"sv}, .isBesideAbove = true}),
    exactly({u"j[oin]"}, lines | bang, &Ex::join, {commandLine, u"join lines, as they are", {u":j"sv, u":j!"sv}}),
    exactly({u">"}, lines, &Ex::shift, {commandLine, u"indent, outdent lines"}),
    exactly({u"<"}, lines, &Ex::shift, besideAbove),
    exactly({u"g[lobal]"}, range | all | bang | rest, &Ex::repeatOnLines,
            {commandLine, u"do a command on all lines that match, that do not", {u":g/pattern/command"sv}}),
    exactly({u"v[global]"}, range | all | rest, &Ex::repeatOnOtherLines, {.forms = {u":v/pattern/command"sv}, .isBesideAbove = true}),
    exactly({u"norm[al]"}, range | bang | rest, &Ex::normal,
            {commandLine, u"type keys of normal mode, on every line of a range", {u":norm {keys}"sv}}),
    exactly({u"sor[t]"}, range | all | bang | argument, &Ex::sort,
            {commandLine, u"sort lines; flags n f x o b i r u, ! for the other way round", {u":sort"sv}}),
    exactly({u"s[ubstitute]", u"&", u"&&", u"~"}, range | rest, &Ex::substitute,
            {commandLine, u"substitute; the same again", {u":s/old/new/g"sv, u":&&"sv}}),
    exactly({u"ret[ab]"}, range | all | bang | argument, &Ex::retab, {commandLine, u"write tabs and spaces anew", {u":retab"sv}}),
    exactly({u"u[ndo]"}, range | lineZero | anyNumber | argument, &Ex::undo, {commandLine, u"undo, redo"}),
    exactly({u"red[o]"}, nothing, &Ex::redo, besideAbove),
    exactly({u"k"}, range | argument, &Ex::mark, {commandLine, u"set, delete marks", {u":k x"sv}}),
    exactly({u"ma[rk]"}, range | argument, &Ex::mark),
    exactly({u"delm[arks]"}, bang | argument, &Ex::deleteMarks, {.forms = {u":delm a-c"sv}, .isBesideAbove = true}),
    exactly({u"reg[isters]", u"di[splay]"}, argument, &Ex::listRegisters, {commandLine, u"show registers, marks, jumps, changes"}),
    exactly({u"marks"}, argument, &Ex::listMarks, besideAbove),
    exactly({u"ju[mps]"}, nothing, &Ex::listJumps, besideAbove),
    exactly({u"changes"}, nothing, &Ex::listChanges, besideAbove),
    exactly({u"p[rint]", u"P[rint]"}, lines, &Ex::print, {commandLine, u"show lines, with their numbers, the last number"}),
    exactly({u"nu[mber]", u"#"}, lines, &Ex::printNumbered, besideAbove),
    exactly({u"="}, range, &Ex::lineNumber, besideAbove),
    exactly({u"pw[d]"}, nothing, &Ex::workingFolder),
    exactly({u"f[ile]"}, nothing, &Ex::tellPlace, {commandLine, u"name of the text and place in it, the character’s code"}),
    exactly({u"as[cii]"}, nothing, &Ex::tellCharacter, besideAbove),
    exactly({u"dig[raphs]"}, nothing, &Ex::listDigraphs, {commandLine, u"the characters that two others stand for"}),
    exactly({u"!", u"sh[ell]", u"ter[minal]", u"mak[e]"}, range | bang | rest, &Ex::refuseProgram),
    exactly({u"gr[ep]", u"lgr[ep]", u"lmak[e]"}, bang | rest, &Ex::refuseProgram),
    exactly({u"wa[ll]"}, bang, Actions::saveAllDocuments,
            {commandLine, u"write all; write all and close the window", {u":wa"sv, u":wqa"sv}}),
    exactly({u"wqa[ll]", u"xa[ll]"}, bang, &Ex::writeAllAndClose),
    exactly({u"ene[w]"}, bang, Actions::newDocument),
    exactly({u"new"}, argument | fileName, &Ex::newBelow, {commandLine, u"new text below, beside, in a tab"}),
    exactly({u"vne[w]"}, argument | fileName, &Ex::newBeside, besideAbove),
    exactly({u"tabe[dit]", u"tabnew"}, argument | fileName, &Ex::newTab, besideAbove),
    exactly({u"clo[se]"}, bang, Actions::closeSplit),
    exactly({u"bd[elete]", u"tabc[lose]", u"bw[ipeout]", u"bun[load]"}, bang, &Ex::closeTab),
    exactly({u"tabo[nly]"}, bang, Actions::closeOtherTabs),
    exactly({u"bn[ext]"}, bang, Actions::selectNextTab, {commandLine, u"next, previous tab, that of a number or name"}),
    exactly({u"bp[revious]", u"bN[ext]"}, bang, Actions::selectPreviousTab, besideAbove),
    exactly({u"b[uffer]"}, optionalName, Actions::showTab, {.forms = {u":b {number}"sv}, .isBesideAbove = true}),
    exactly({u"tabn[ext]"}, count, &Ex::nextTab),
    exactly({u"tabp[revious]", u"tabN[ext]"}, count, &Ex::previousTab),
    exactly({u"ls", u"buffers", u"files", u"tabs"}, bang, Actions::listTabs, {commandLine, u"list tabs"}),
    exactly({u"r[ead]"}, range | lineZero | argument | fileName, &Ex::insertFile,
            {commandLine, u"put a file’s text below the line", {u":r {file}"sv}}),
    exactly({u"so[urce]"}, argument | fileName, Actions::sourceFile,
            {commandLine, u"carry out a file of :set and :map", {u":so {file}"sv}}),
    exactly({u"h[elp]"}, argument, Actions::showVimKeyReference),

    exactly({u"let"}, argument | configures, &Ex::let, {commandLine, u"what <leader> stands for", {u":let mapleader = \"\\<Space>\""sv}}),
    exactly({u"map"}, mapping, &mapRecursively<allCommanded>,
            {commandLine,
             u"what keys stand for; n v o i c before it for one mode, nore for no other mapping",
             {u":map {keys} {others}"sv, u":unmap {keys}"sv}}),
    exactly({u"nm[ap]"}, mapping, &mapRecursively<only<Mode::normal>>),
    exactly({u"vm[ap]", u"xm[ap]"}, mapping, &mapRecursively<only<Mode::visual>>),
    exactly({u"om[ap]"}, mapping, &mapRecursively<only<Mode::operatorPending>>),
    exactly({u"map!"}, mapping, &mapRecursively<allTyped>),
    exactly({u"im[ap]"}, mapping, &mapRecursively<only<Mode::insert>>),
    exactly({u"cm[ap]"}, mapping, &mapRecursively<only<Mode::commandLine>>),
    exactly({u"no[remap]"}, mapping, &mapOnce<allCommanded>),
    exactly({u"nn[oremap]"}, mapping, &mapOnce<only<Mode::normal>>),
    exactly({u"vn[oremap]", u"xn[oremap]"}, mapping, &mapOnce<only<Mode::visual>>),
    exactly({u"ono[remap]"}, mapping, &mapOnce<only<Mode::operatorPending>>),
    exactly({u"no[remap]!"}, mapping, &mapOnce<allTyped>),
    exactly({u"ino[remap]"}, mapping, &mapOnce<only<Mode::insert>>),
    exactly({u"cno[remap]"}, mapping, &mapOnce<only<Mode::commandLine>>),
    exactly({u"unm[ap]"}, mapping, &unmap<allCommanded>),
    exactly({u"nun[map]"}, mapping, &unmap<only<Mode::normal>>),
    exactly({u"vu[nmap]", u"xu[nmap]"}, mapping, &unmap<only<Mode::visual>>),
    exactly({u"ou[nmap]"}, mapping, &unmap<only<Mode::operatorPending>>),
    exactly({u"unm[ap]!"}, mapping, &unmap<allTyped>),
    exactly({u"iu[nmap]"}, mapping, &unmap<only<Mode::insert>>),
    exactly({u"cu[nmap]"}, mapping, &unmap<only<Mode::commandLine>>),
    exactly({u"mapc[lear]"}, configures, &clearMappings<allCommanded>),
    exactly({u"nmapc[lear]"}, configures, &clearMappings<only<Mode::normal>>),
    exactly({u"vmapc[lear]", u"xmapc[lear]"}, configures, &clearMappings<only<Mode::visual>>),
    exactly({u"omapc[lear]"}, configures, &clearMappings<only<Mode::operatorPending>>),
    exactly({u"mapc[lear]!"}, configures, &clearMappings<allTyped>),
    exactly({u"imapc[lear]"}, configures, &clearMappings<only<Mode::insert>>),
    exactly({u"cmapc[lear]"}, configures, &clearMappings<only<Mode::commandLine>>),
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
VimKeyHelpEntries helpOfOptions(VimExCommand::Audience audience)
{
    VimKeyHelpEntries switches;
    VimKeyHelpEntries others;
    for (const AnySetting *setting : Settings::all()) {
        const ExOption &option = setting->details.option;
        const bool isForExact = option.audience == ExOption::Audience::exact;
        if (!option.exists() || (isForExact && audience == VimExCommand::Audience::byDefault)) {
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

namespace {

/// "w" of "w[rite]".
QStringView shortest(QStringView exactName)
{
    const qsizetype bracket = exactName.indexOf(u'[');
    return bracket < 0 ? exactName : exactName.first(bracket);
}

/// "w" of it, "q!" of "q[uit]!".
QString told(QStringView exactName)
{
    const bool isCut = exactName.contains(u'[') && exactName.endsWith(u'!');
    return u':' + shortest(exactName).toString() + (isCut ? u"!"_s : QString());
}

/// "write" of it.
QString longest(QStringView exactName)
{
    return exactName.toString().remove(u'[').remove(u']');
}

} // namespace

bool VimExCommand::isAbbreviation(QStringView typed, QStringView name)
{
    const QString full = longest(name);
    const QStringView ending = name.endsWith(u'!') ? QStringView(u"!") : QStringView();
    const QStringView letters = QStringView(full).chopped(ending.size());
    return typed.size() >= shortest(name).size() && typed.endsWith(ending) && letters.startsWith(typed.chopped(ending.size())) &&
           (typed.size() > ending.size() || name == ending);
}

const VimExCommand *VimExCommand::namedExactly(QStringView name)
{
    const auto found = std::ranges::find_if(commands, [name](const VimExCommand &command) {
        return std::ranges::any_of(command.exactNames,
                                   [name](QStringView known) { return !known.isEmpty() && isAbbreviation(name, known); });
    });
    return found == commands.end() ? nullptr : &*found;
}

QStringList VimExCommand::allNames(Audience audience)
{
    QStringList names;
    for (const VimExCommand &command : commands) {
        for (const QStringView name : audience == Audience::exact ? command.exactNames : command.names) {
            if (!name.isEmpty()) {
                names << longest(name);
            }
        }
    }
    std::ranges::sort(names);
    return names;
}

VimKeyHelpEntries VimExCommand::keyHelp(Audience audience)
{
    VimKeyHelpEntries entries;
    for (const VimExCommand &command : commands) {
        const auto &names = audience == Audience::exact ? command.exactNames : command.names;
        const bool isNamed = !names.front().isEmpty();
        const bool isSubstitution = std::holds_alternative<Substitute>(command.function) && audience == Audience::byDefault;
        const bool isNameless = std::holds_alternative<Line>(command.function) || isSubstitution;
        if (!command.help.exists() || !(isNamed || isNameless)) {
            continue;
        }
        VimKeyHelpEntry &entry = entries.emplace_back(told(names.front()), command.help);
        for (size_t name = 1; name < command.toldNames; ++name) {
            entry.keys << told(names[name]);
        }
    }
    std::ranges::move(helpOfOptions(audience), std::back_inserter(entries));
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
