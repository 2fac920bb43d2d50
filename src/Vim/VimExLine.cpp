// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExLine.h"

#include "Base/Translation.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimExFunctions.h"
#include "Vim/VimExTarget.h"
#include "Vim/VimMarks.h"
#include "Vim/VimOptions.h"
#include "Vim/VimRegisters.h"
#include "Vim/VimSearch.h"
#include "Vim/VimSubstituteCommand.h"
#include "Vim/VimSubstituteJob.h"

#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

namespace {

/// Words before a command that change how it is carried out; but for the first they change nothing here.
constexpr auto modifiers = std::to_array<QStringView>({
    u"sil[ent]",
    u"keepa[lt]",
    u"kee[pmarks]",
    u"keepj[umps]",
    u"keepp[atterns]",
    u"loc[kmarks]",
    u"noa[utocmd]",
    u"nos[wapfile]",
    u"conf[irm]",
    u"vert[ical]",
    u"abo[veleft]",
    u"bel[owright]",
    u"to[pleft]",
    u"bo[tright]",
});

bool isLetter(QChar unit)
{
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

bool isDigit(QChar unit)
{
    return unit >= u'0' && unit <= u'9';
}

qsizetype lettersAt(QStringView text)
{
    return std::ranges::find_if_not(text, isLetter) - text.begin();
}

QStringView withoutBlanksBefore(QStringView text)
{
    while (!text.isEmpty() && isSpaceOrTab(text.front().unicode())) {
        text = text.sliced(1);
    }
    return text;
}

QString withoutBlanksBehind(QString text)
{
    while (text.endsWith(u' ') || text.endsWith(u'\t')) {
        text.chop(1);
    }
    return text;
}

/// Up to the next "|" that no "\" protects; `commands` goes on behind it.
QString takeArgument(QStringView &commands, bool mayHaveComment)
{
    QString argument;
    qsizetype at = 0;
    for (; at < commands.size() && commands[at] != u'|'; ++at) {
        const bool isComment = mayHaveComment && commands[at] == u'"' && (at == 0 || isSpaceOrTab(commands[at - 1].unicode()));
        if (isComment) {
            at = commands.size();
            break;
        }
        const bool isProtected = (commands[at] == u'\\' || commands[at] == u'\x16') && at + 1 < commands.size() && commands[at + 1] == u'|';
        at += isProtected ? 1 : 0;
        argument += commands[at];
    }
    commands = commands.sliced(std::min(at + 1, commands.size()));
    return argument;
}

std::optional<qsizetype> takeCount(QString &argument)
{
    const qsizetype digits = std::ranges::find_if_not(argument, isDigit) - argument.begin();
    if (digits == 0) {
        return std::nullopt;
    }
    constexpr qsizetype mostDigits = 9;
    const qsizetype count = digits > mostDigits ? 1'000'000'000 : argument.first(digits).toInt();
    argument = withoutBlanksBefore(QStringView(argument).sliced(digits)).toString();
    return count;
}

/// Each ">" behind ">" shifts once more.
void takeShifts(VimExCall &call, QString &argument)
{
    if (call.name == u">" || call.name == u"<") {
        while (argument.startsWith(call.name.front())) {
            call.name += call.name.front();
            argument.remove(0, 1);
        }
        argument = withoutBlanksBefore(argument).toString();
    }
}

/// "s" and "sgin", but not "syntax", as in Vim.
bool isSubstitution(QStringView letters)
{
    const auto isFlag = [](QChar letter) { return QStringView(u"cegiIlnpr").contains(letter); };
    return letters.startsWith(u's') && (letters.size() == 1 || QStringView(u"cgiIr").contains(letters[1])) &&
           std::ranges::all_of(letters.sliced(1), isFlag);
}

bool isRegister(QChar name)
{
    return !name.isDigit() && VimRegisters::isExactName(name.unicode()); // a digit is a count
}

} // namespace

bool VimExLine::run(const QString &typed)
{
    m_isSilent = false;
    const auto done = carryOut(typed);
    endUndoGroup();
    if (!done) {
        m_isSilent = false;
        say(done.error().message);
    }
    return done.has_value();
}

Result<void> VimExLine::configure(const QString &line, VimConfiguration &configuration)
{
    return VimExLine(configuration).carryOut(line);
}

Result<void> VimExLine::carryOut(QStringView commands)
{
    Result<void> done;
    while (!commands.isEmpty() && done) {
        done = carryOutNext(commands);
    }
    return done;
}

Result<void> VimExLine::carryOutNext(QStringView &commands)
{
    while (!commands.isEmpty() && (commands.front() == u':' || isSpaceOrTab(commands.front().unicode()))) {
        commands = commands.sliced(1);
    }
    if (commands.startsWith(u'"')) {
        commands = {};
    }
    const QScopedValueRollback silence(m_isSilent);
    takeModifiers(commands);
    VimExRange range;
    if (m_target) {
        VimExRange::Trace trace;
        const auto parsed = VimExRange::parse(commands, scope(), trace);
        note(trace);
        if (!parsed) {
            return tl::make_unexpected(parsed.error());
        }
        range = *parsed;
        range.hasPlace = std::ranges::any_of(commands.first(range.length), [](QChar unit) { return QStringView(u"'/?\\").contains(unit); });
        commands = commands.sliced(range.length);
    }
    if (commands.isEmpty() || commands.front() == u'|' || commands.front() == u'"') {
        commands = commands.startsWith(u'|') ? commands.sliced(1) : QStringView();
        return range.written > 0 ? goToLine(range) : Result<void>();
    }
    const auto parsed = takeName(commands);
    if (!parsed) {
        return tl::make_unexpected(parsed.error());
    }
    const unsigned takes = parsed->command->takes;
    if ((takes & VimExCommand::anyNumber) != 0 && range.hasPlace) {
        return failure(localized(u"Invalid range"));
    }
    QString argument;
    if ((takes & VimExCommand::rest) != 0) {
        argument = std::exchange(commands, {}).toString();
    } else {
        argument = takeArgument(commands, (takes & VimExCommand::argument) == 0);
    }
    return perform(*parsed, range, std::move(argument));
}

void VimExLine::takeModifiers(QStringView &commands)
{
    for (;;) {
        const QStringView word = commands.first(lettersAt(commands));
        const auto modifier =
            std::ranges::find_if(modifiers, [word](QStringView name) { return VimExCommand::isAbbreviation(word, name); });
        if (modifier == modifiers.end()) {
            return;
        }
        m_isSilent = m_isSilent || modifier == modifiers.begin();
        commands = commands.sliced(word.size());
        commands = withoutBlanksBefore(commands.startsWith(u'!') ? commands.sliced(1) : commands);
    }
}

Result<void> VimExLine::goToLine(const VimExRange &range)
{
    if (range.first < 0) {
        return failure(localized(u"Invalid range"));
    }
    const VimLines lines = m_target->lines();
    m_target->moveCaret(lines.firstNonBlank(lines.startOf(std::min(range.target, lines.count()))));
    return {};
}

/// Letters, with "!" where there is a command of that name, or one of the marks that are commands.
Result<VimExLine::Parsed> VimExLine::takeName(QStringView &commands) const
{
    const QStringView all = commands;
    const QStringView letters = commands.first(lettersAt(commands));
    const auto named = [&](QStringView name) { return VimExCommand::namedExactly(name); };
    QString name = letters.toString();
    if (letters.isEmpty()) {
        name = commands.startsWith(u"&&") ? u"&&"_s : commands.first(1).toString();
    } else if (letters.startsWith(u'k') && !named(letters)) {
        name = u"k"_s;
    } else if (isSubstitution(letters) && !named(letters)) {
        name = u"s"_s;
    }
    commands = commands.sliced(name.size());
    const bool hasBang = commands.startsWith(u'!');
    if (const VimExCommand *command = hasBang ? named(name + u'!') : nullptr) {
        commands = commands.sliced(1);
        return Parsed{command, name, true};
    }
    const VimExCommand *command = named(name);
    if (!command) {
        return failure(formatted(localized(u"Not a command: %@"), all.toString()));
    }
    if (hasBang && (command->takes & VimExCommand::bang) == 0) {
        return failure(formatted(localized(u"Takes no “!”: %@"), name));
    }
    commands = commands.sliced(hasBang ? 1 : 0);
    return Parsed{command, name, hasBang};
}

Result<void> VimExLine::perform(const Parsed &parsed, const VimExRange &range, QString argument)
{
    using Takes = VimExCommand;
    const VimExCommand &command = *parsed.command;
    if (!m_target && (command.takes & Takes::configures) == 0) {
        return failure(formatted(localized(u"Not for a file of commands: %@"), parsed.name));
    }
    if (range.isTurned && m_isRepeating) {
        return failure(localized(u"Invalid range"));
    }
    if (range.written > 0 && (command.takes & Takes::range) == 0) {
        return failure(formatted(localized(u"Takes no lines: %@"), parsed.name));
    }
    VimExCall call{
        .line = *this, .lines = {range.first, range.last}, .name = parsed.name, .written = range.written, .hasBang = parsed.hasBang};
    const qsizetype last = m_target ? m_target->lines().count() : 1;
    if ((command.takes & Takes::all) != 0 && range.written == 0) {
        call.lines = {1, last};
    }
    const bool isAnyNumber = (command.takes & Takes::anyNumber) != 0;
    if (!isAnyNumber && (call.lines.first < 0 || call.lines.last > last)) {
        return failure(localized(u"Invalid range"));
    }
    if ((command.takes & Takes::lineZero) == 0) {
        call.lines = {std::max<qsizetype>(call.lines.first, 1), std::max<qsizetype>(call.lines.last, 1)};
    }
    if ((command.takes & (Takes::rest | Takes::argument)) == 0) {
        argument = withoutBlanksBehind(argument);
    }
    // A mapping begins behind its name and means every blank.
    argument = withoutBlanksBefore(argument).toString();
    takeShifts(call, argument);
    if ((command.takes & Takes::registerName) != 0 && !argument.isEmpty() && isRegister(argument.front())) {
        call.registerName = argument.front().unicode();
        argument = withoutBlanksBefore(QStringView(argument).sliced(1)).toString();
    }
    if ((command.takes & Takes::count) != 0) {
        call.count = takeCount(argument);
        if (call.count == 0) {
            return failure(localized(u"A count is 1 or more"));
        }
        if (call.count) {
            ++call.written;
            call.lines = {call.lines.last, std::min(last, call.lines.last + *call.count - 1)};
        }
    }
    if (!argument.isEmpty() && (command.takes & (Takes::rest | Takes::argument)) == 0) {
        return failure(formatted(localized(u"More than the command takes: %@"), argument));
    }
    call.argument = argument;
    if (command.exact) {
        return command.exact(call);
    }
    if (const auto *action = std::get_if<const Action *>(&command.function)) {
        endUndoGroup();
        m_target->perform(**action, withoutBlanksBehind(argument));
    }
    return {};
}

void VimExLine::note(const VimExRange::Trace &trace)
{
    if (trace.pattern) {
        using enum VimSearch::Direction;
        noteSearch(*trace.pattern, trace.isBackward ? backward : forward);
    }
    if (trace.caretLine) {
        moveToLine(*trace.caretLine);
    }
}

void VimExLine::saySubstituted()
{
    if (const Substituted all = std::exchange(m_substituted, {}); all.hits > 0) {
        say(VimSubstituteJob::counted(all.hits, all.lines));
    }
}

void VimExLine::moveToLine(qsizetype line)
{
    const VimLines lines = m_target->lines();
    const qsizetype start = lines.startOf(line);
    const auto bytes = byteColumn(lines, m_target->caret());
    m_target->moveCaret(bytes ? placeAtByte(lines, start, *bytes) : lines.endOf(line));
}

void VimExLine::beginUndoGroup()
{
    if (m_target && !std::exchange(m_isInUndoGroup, true)) {
        m_target->beginUndoGroup();
    }
}

void VimExLine::endUndoGroup()
{
    if (std::exchange(m_isInUndoGroup, false)) {
        m_target->endUndoGroup();
    }
}

void VimExLine::say(const QString &message) const
{
    if (m_target && !m_isSilent) {
        m_target->say(message);
    }
}

Result<VimPattern> VimExLine::pattern(const QString &written) const
{
    return VimPattern::translate(written, search(written).options);
}

VimSearch VimExLine::search(const QString &pattern) const
{
    return VimSearch::exact(pattern, VimSearch::Direction::forward, m_target->options(), m_target->lastSubstitution().replacement);
}

void VimExLine::noteSearch(const QString &pattern, std::optional<VimSearch::Direction> direction)
{
    auto &last = m_target->lastSearch();
    const auto kept = last ? last->direction : VimSearch::Direction::forward;
    last = search(pattern);
    last->direction = direction.value_or(kept);
}

VimExScope VimExLine::scope() const
{
    const auto &last = m_target->lastSearch();
    return {.text = m_target->text(),
            .lastLine = m_target->lastLine(),
            .caret = m_target->caret(),
            .marks = m_target->marks(),
            .options = m_target->options(),
            .lastPattern = last ? last->pattern : QString(),
            .lastSubstituted = m_target->lastSubstitution().pattern.value_or(QString())};
}
