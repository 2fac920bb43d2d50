// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Commands of exact modal editing that set something up, and those of windows, tabs and files.

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimExFunctions.h"
#include "Vim/VimExOptions.h"
#include "Vim/VimExTarget.h"
#include "Vim/VimKeyNotation.h"
#include "Vim/VimTextView.h"

using namespace Qt::StringLiterals;

namespace VimExFunctions {

Result<void> set(VimExCall &call)
{
    using enum VimExOptions::Lasting;
    const auto shown = VimExOptions::apply(call.argument, call.line.configuration().preferences(), call.line.isForRun() ? thisRun : stored);
    if (!shown) {
        return tl::make_unexpected(shown.error());
    }
    if (shown->size() == 1) {
        call.line.say(shown->front().trimmed());
    } else if (!shown->isEmpty() && !call.line.isForRun()) {
        call.target().list(localized(u"Options"), shown->join(u'\n'));
    }
    return {};
}

/// The leader alone: `let mapleader = " "`, in quotation marks or apostrophes.
Result<void> let(VimExCall &call)
{
    const qsizetype equals = call.argument.indexOf(u'=');
    QString name = call.argument.first(std::max<qsizetype>(equals, 0)).trimmed();
    name = name.startsWith(u"g:"_s) ? name.sliced(2) : name;
    const QString value = call.argument.sliced(equals + 1).trimmed();
    const bool isQuoted = value.size() > 1 && value.back() == value.front() && (value.front() == u'"' || value.front() == u'\'');
    if (name == u"maplocalleader") {
        return {};
    }
    if (name != u"mapleader" || equals < 0 || !isQuoted) {
        return failure(formatted(localized(u"Only mapleader can be set so, to a text in quotation marks: %@"), call.argument));
    }
    QString keys = value.sliced(1, value.size() - 2);
    if (value.front() == u'"') {
        // "\<Space>" is a key, "\\" the backslash.
        keys.replace(u"\\<"_s, u"<"_s).replace(u"\\\\"_s, u"\\"_s);
        keys = VimKeyNotation::parsed(keys, {});
    }
    call.line.configuration().setLeader(keys);
    return {};
}

// Mappings

namespace {

/// What is written before the keys in angle brackets, and what of it there is.
struct MapModifier {
    QStringView name;
    bool isKnown;
};
constexpr auto mapModifiers = std::to_array<MapModifier>({
    {u"<silent>", true},
    {u"<nowait>", true},
    {u"<special>", true},
    {u"<unique>", true},
    {u"<buffer>", false},
    {u"<expr>", false},
    {u"<script>", false},
    {u"<Plug>", false},
});

QString modesOf(VimMappings::Modes modes)
{
    using enum VimMappings::Mode;
    struct Row {
        VimMappings::Mode mode;
        char16_t letter;
    };
    QString letters;
    for (const Row &row : {Row{normal, u'n'}, Row{visual, u'v'}, Row{operatorPending, u'o'}, Row{insert, u'i'}, Row{commandLine, u'c'}}) {
        letters += modes.has(row.mode) ? QString(QChar(row.letter)) : QString();
    }
    return letters;
}

Result<void> listMappings(VimExCall &call, VimMappings::Modes modes, QStringView keys)
{
    QStringList rows;
    for (const VimMappings::Listed &row : call.line.configuration().mappings().list(modes, keys)) {
        const QString result = row.mapping->result.isEmpty() ? u"<Nop>"_s : VimKeyNotation::written(row.mapping->result);
        rows << u"%1  %2 %3 %4"_s.arg(modesOf(row.modes), -5)
                    .arg(VimKeyNotation::written(row.keys), -12)
                    .arg(row.mapping->isRecursive ? u" "_s : u"*"_s)
                    .arg(result);
    }
    if (rows.isEmpty()) {
        call.line.say(localized(u"No mapping"));
    } else if (!call.line.isForRun()) {
        call.target().list(localized(u"Mappings"), rows.join(u'\n'));
    }
    return {};
}

/// Takes the modifiers away; fails for one that there is not. Whether one of them is <silent>.
Result<bool> takeMapModifiers(QString &argument)
{
    bool isSilent = false;
    for (;;) {
        const auto modifier = std::ranges::find_if(
            mapModifiers, [&](const MapModifier &known) { return argument.startsWith(known.name, Qt::CaseInsensitive); });
        if (modifier == mapModifiers.end()) {
            return isSilent;
        }
        if (!modifier->isKnown) {
            return failure(formatted(localized(u"Mappings with %@ are not supported"), modifier->name.toString()));
        }
        isSilent = isSilent || modifier == mapModifiers.begin();
        argument = argument.sliced(modifier->name.size());
        while (argument.startsWith(u' ') || argument.startsWith(u'\t')) {
            argument.remove(0, 1);
        }
    }
}

/// Up to the first blank that no Ctrl+V protects.
qsizetype endOfKeys(QStringView argument)
{
    qsizetype end = 0;
    while (end < argument.size() && !isSpaceOrTab(argument[end].unicode())) {
        end += argument[end] == u'\x16' && end + 1 < argument.size() ? 2 : 1;
    }
    return end;
}

QString withoutProtection(QString keys)
{
    return keys.remove(u'\x16');
}

} // namespace

Result<void> map(VimExCall &call, VimMappings::Modes modes, Mapped mapped)
{
    VimConfiguration &configuration = call.line.configuration();
    QString argument = call.argument;
    const auto isSilent = takeMapModifiers(argument);
    if (!isSilent) {
        return tl::make_unexpected(isSilent.error());
    }
    const qsizetype end = endOfKeys(argument);
    if (const auto unknown = VimKeyNotation::unknownKey(argument)) {
        return failure(formatted(localized(u"There is no such key here: %@"), *unknown));
    }
    const QString keys = VimKeyNotation::parsed(withoutProtection(argument.first(end)), configuration.leader());
    QString result = argument.sliced(end);
    while (result.startsWith(u' ') || result.startsWith(u'\t')) {
        result.remove(0, 1);
    }
    if (result.isEmpty()) {
        return listMappings(call, modes, keys);
    }
    configuration.mappings().set(modes, keys,
                                 {.result = VimKeyNotation::parsed(withoutProtection(result), configuration.leader()),
                                  .isRecursive = mapped == Mapped::recursively,
                                  .isSilent = *isSilent});
    return {};
}

Result<void> unmap(VimExCall &call, VimMappings::Modes modes)
{
    VimConfiguration &configuration = call.line.configuration();
    QString argument = call.argument;
    if (const auto taken = takeMapModifiers(argument); !taken) {
        return tl::make_unexpected(taken.error());
    }
    const QString keys = VimKeyNotation::parsed(withoutProtection(argument), configuration.leader());
    const bool isGone = configuration.mappings().remove(modes, keys) ||
                        configuration.mappings().remove(modes, VimKeyNotation::parsed(argument.trimmed(), configuration.leader()));
    return isGone ? Result<void>() : failure(formatted(localized(u"No such mapping: %@"), argument));
}

Result<void> clearMappings(VimExCall &call, VimMappings::Modes modes)
{
    call.line.configuration().mappings().clear(modes);
    return {};
}

// Windows, tabs and files

namespace {

void perform(VimExCall &call, const Action &action, const QString &argument = {})
{
    call.line.endUndoGroup();
    call.target().perform(action, argument);
}

void openIfNamed(VimExCall &call)
{
    if (!call.argument.trimmed().isEmpty()) {
        perform(call, Actions::editFile, call.argument.trimmed());
    }
}

/// What another program wrote is not written over without a "!".
Result<void> mayWrite(VimExCall &call)
{
    if (!call.hasBang && call.target().name().isInConflict) {
        return failure(localized(u"Not saved: the file was changed by another program (add ! to write over it)"));
    }
    return {};
}

} // namespace

Result<void> edit(VimExCall &call)
{
    const QString name = call.argument.trimmed();
    if (name.isEmpty() && !call.hasBang && call.target().name().isUnsaved) {
        return failure(localized(u"Not saved since the last change (add ! to give that up)"));
    }
    perform(call, Actions::editFile, name);
    return {};
}

Result<void> writeAndClose(VimExCall &call)
{
    return mayWrite(call).map([&] { perform(call, Actions::saveAndClose); });
}

Result<void> writeIfChangedAndClose(VimExCall &call)
{
    if (call.target().name().isUnsaved) {
        return writeAndClose(call);
    }
    perform(call, Actions::closeTab);
    return {};
}

Result<void> write(VimExCall &call)
{
    const QString name = call.argument.trimmed();
    if (name.startsWith(u'!')) {
        return failure(refusalOfProgram(u":w !"_s));
    }
    if (name.startsWith(u">>"_s) || call.written > 0) {
        return failure(localized(u"Only whole texts are written, and only to files"));
    }
    if (!name.isEmpty()) {
        perform(call, call.hasBang ? Actions::writeOver : Actions::saveDocument, name);
        return {};
    }
    return mayWrite(call).map([&] { perform(call, Actions::saveDocument); });
}

Result<void> writeAllAndClose(VimExCall &call)
{
    perform(call, Actions::saveAllDocuments);
    perform(call, Actions::closeWindowFromVim);
    return {};
}

Result<void> newBelow(VimExCall &call)
{
    perform(call, Actions::splitEditorDown);
    return newTab(call);
}

Result<void> newBeside(VimExCall &call)
{
    perform(call, Actions::splitEditorRight);
    return newTab(call);
}

Result<void> newTab(VimExCall &call)
{
    if (call.argument.trimmed().isEmpty()) {
        perform(call, Actions::newDocument);
    }
    openIfNamed(call);
    return {};
}

Result<void> splitBelow(VimExCall &call)
{
    perform(call, Actions::splitEditorDown);
    openIfNamed(call);
    return {};
}

Result<void> splitBeside(VimExCall &call)
{
    perform(call, Actions::splitEditorRight);
    openIfNamed(call);
    return {};
}

Result<void> closeTab(VimExCall &call)
{
    perform(call, call.hasBang ? Actions::forceCloseTab : Actions::closeTab);
    return {};
}

Result<void> nextTab(VimExCall &call)
{
    if (call.count) {
        perform(call, Actions::showTab, QString::number(*call.count));
    } else {
        perform(call, Actions::selectNextTab);
    }
    return {};
}

Result<void> previousTab(VimExCall &call)
{
    constexpr qsizetype mostSteps = 1000;
    for (qsizetype step = 0; step < std::min(call.count.value_or(1), mostSteps); ++step) {
        perform(call, Actions::selectPreviousTab);
    }
    return {};
}

Result<void> insertFile(VimExCall &call)
{
    const QString name = call.argument.trimmed();
    if (name.startsWith(u'!')) {
        return failure(refusalOfProgram(u":r !"_s));
    }
    if (name.isEmpty()) {
        return failure(localized(u"The name of a file is missing"));
    }
    VimExTarget &target = call.target();
    perform(call, Actions::insertFile,
            u"%1 %2"_s.arg(call.written > 0 ? call.lines.last : target.lines().number(target.caret())).arg(name));
    return {};
}

} // namespace VimExFunctions
