// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What changes the text and its marks. What is shown is in VimExLists.cpp, windows and what is set up in VimExSetup.cpp.

#include "Vim/VimExFunctions.h"

#include "Base/Translation.h"
#include "Vim/VimExTarget.h"
#include "Vim/VimMarkedLines.h"
#include "Vim/VimMarks.h"
#include "Vim/VimMatcher.h"
#include "Vim/VimRegisters.h"
#include "Vim/VimRunning.h"
#include "Vim/VimSubstituteJob.h"
#include "Vim/VimTextView.h"

using namespace Qt::StringLiterals;

namespace VimExFunctions {

using VimExEdits::LineSpan;

namespace {

void goTo(VimExTarget &target, qsizetype line)
{
    const VimLines lines = target.lines();
    target.moveCaret(lines.firstNonBlank(lines.startOf(std::min(line, lines.count()))));
}

TextRange whole(const VimExTarget &target, LineSpan span)
{
    const VimLines lines = target.lines();
    return TextRange::between(lines.startOf(span.first), lines.startOf(span.last + 1));
}

/// Has "[" and "]" around what was changed.
void noteChanged(VimExTarget &target, LineSpan lines)
{
    const VimLines text = target.lines();
    target.marks().set(u'[', text.startOf(std::min(lines.first, text.count())));
    target.marks().set(u']', text.startOf(std::clamp<qsizetype>(lines.last, 1, text.count())));
}

/// What was changed goes as far as that of a line.
void noteLastCharacter(VimExTarget &target, qsizetype line)
{
    const VimLines lines = target.lines();
    target.marks().set(u']', lines.last(lines.startOf(line)));
}

/// The caret is about to jump.
void noteJump(VimExTarget &target)
{
    target.marks().leave(target.caret());
    target.jumps().add(target.caret(), target.text());
}

/// What was refused was said where it was.
bool apply(VimExCall &call, const TextEdits &edits)
{
    if (edits.isEmpty()) {
        return true;
    }
    call.line.beginUndoGroup();
    call.target().beginChange();
    return call.target().apply(edits);
}

/// What `function` makes of these lines of the text, on a worker where they are many; none when the user has stopped it.
template<class Function>
auto computed(VimExTarget &target, LineSpan read, Function function)
{
    // The text may have become shorter by then.
    auto make = [read, last = target.lastLine(), function = std::move(function)](const Rope &text, const std::stop_token &stop) {
        const qsizetype count = VimLines(text, 1, last).count();
        return function(text, LineSpan{std::min(read.first, count), std::min(read.last, count)}, stop);
    };
    const VimLines lines = target.lines();
    return target.running().computed(target.text(), lines.startOf(read.last + 1) - lines.startOf(read.first), std::move(make));
}

void store(VimExCall &call, VimRegisters::Taken taken)
{
    call.target().keep({.text = VimExEdits::content(call.target().text(), call.lines), .isLinewise = true}, call.registerName, taken);
}

tl::unexpected<Error> trailing(const QString &argument)
{
    return failure(formatted(localized(u"More than the command takes: %@"), argument));
}

} // namespace

Result<void> remove(VimExCall &call)
{
    VimExTarget &target = call.target();
    if (target.text().isEmpty()) {
        return {};
    }
    store(call, VimRegisters::Taken::removedLines);
    noteJump(target);
    goTo(target, call.lines.first);
    if (call.lines.count() == target.lines().count()) {
        target.marks().deleteAll();
    }
    const bool isDone = apply(call, VimExEdits::removed(target.text(), call.lines));
    target.forgetLine();
    if (isDone) {
        goTo(target, call.lines.first);
        noteChanged(target, {call.lines.first, call.lines.first});
    }
    return {};
}

Result<void> yank(VimExCall &call)
{
    store(call, VimRegisters::Taken::yanked);
    noteChanged(call.target(), call.lines);
    noteLastCharacter(call.target(), call.lines.last);
    return {};
}

Result<void> put(VimExCall &call)
{
    VimExTarget &target = call.target();
    const VimRegisterContents contents = target.registers().contents(call.registerName);
    Rope block = contents.text;
    call.line.moveToLine(std::max<qsizetype>(call.lines.last, 1));
    if (block.isEmpty()) {
        target.beginChange(TextRange{target.caret(), 0});
        target.marks().set(u'[', target.caret());
        target.marks().set(u']', target.caret());
        return failure(formatted(localized(u"Nothing in register %@"), QString(QChar(call.registerName.value_or(u'"')))));
    }
    if (!contents.isLinewise) {
        block.replace({block.length(), 0}, VimExEdits::lineBreak(target.text()));
    }
    const qsizetype after = call.hasBang ? std::max<qsizetype>(call.lines.last - 1, 0) : call.lines.last;
    if (apply(call, VimExEdits::inserted(target.text(), after, block))) {
        const LineSpan added{after + 1, after + block.lineCount() - 1};
        goTo(target, added.last);
        noteChanged(target, added);
        noteLastCharacter(target, added.last);
    }
    return {};
}

namespace {

/// The line that `:m` and `:t` go behind.
Result<qsizetype> destination(VimExCall &call)
{
    VimExRange::Trace trace;
    const auto address = VimExRange::parseAddress(call.argument, call.line.scope(), trace);
    call.line.note(trace);
    if (!address) {
        return tl::make_unexpected(address.error());
    }
    if (!address->line || *address->line < 0 || *address->line > call.target().lines().count()) {
        return failure(localized(u"Invalid range"));
    }
    const QStringView rest = QStringView(call.argument).sliced(address->length);
    return rest.trimmed().isEmpty() ? Result<qsizetype>(*address->line) : trailing(rest.toString());
}

} // namespace

Result<void> move(VimExCall &call)
{
    const auto to = destination(call);
    if (!to) {
        return tl::make_unexpected(to.error());
    }
    const LineSpan lines = call.lines;
    call.target().forgetLine();
    if (*to >= lines.first && *to < lines.last) {
        return failure(localized(u"Lines cannot be moved into themselves"));
    }
    VimExTarget &target = call.target();
    if (*to == lines.last || *to == lines.first - 1) {
        goTo(target, lines.last); // they are there already
        return {};
    }
    // Marks go with their lines, which to all others are gone from where they were.
    const VimLines before = target.lines();
    struct Kept {
        char16_t name;
        qsizetype line;
        qsizetype column;
    };
    std::vector<Kept> kept;
    for (const VimMarks::Mark &mark : target.marks().all()) {
        const qsizetype line = before.number(mark.place);
        if (line >= lines.first && line <= lines.last && mark.name != u'.') {
            kept.push_back({mark.name, line - lines.first, mark.place - before.startOf(line)});
        }
    }
    if (!apply(call, VimExEdits::moved(target.text(), lines, *to))) {
        return {};
    }
    const qsizetype first = *to >= lines.last ? *to - lines.count() + 1 : *to + 1;
    const VimLines after = target.lines();
    for (const Kept &mark : kept) {
        target.marks().set(mark.name, after.startOf(first + mark.line) + mark.column);
    }
    goTo(target, first + lines.count() - 1);
    noteChanged(target, {first, first + lines.count() - 1});
    return {};
}

Result<void> copy(VimExCall &call)
{
    const auto to = destination(call);
    if (!to) {
        return tl::make_unexpected(to.error());
    }
    VimExTarget &target = call.target();
    target.forgetLine();
    const Rope &text = target.text();
    if (apply(call, VimExEdits::inserted(text, *to, VimExEdits::content(text, call.lines)))) {
        goTo(target, *to + call.lines.count());
        noteChanged(target, {*to + 1, *to + call.lines.count()});
    }
    return {};
}

Result<void> join(VimExCall &call)
{
    VimExTarget &target = call.target();
    LineSpan lines = call.lines;
    call.line.moveToLine(lines.first);
    if (lines.first == lines.last) {
        if (call.written > 1 || lines.last == target.lines().count()) {
            return {};
        }
        ++lines.last;
    }
    using enum VimExEdits::Blanks;
    const auto edits =
        computed(target, lines, [blanks = call.hasBang ? kept : one](const Rope &text, LineSpan span, const auto & /*stop*/) {
            return VimExEdits::joined(text, span, blanks);
        });
    if (!edits) {
        return {};
    }
    std::vector<VimMarks::Mark> marks = target.marks().all();
    const VimLines before = target.lines();
    std::erase_if(marks, [&](const VimMarks::Mark &mark) {
        const qsizetype line = before.number(mark.place);
        return line < lines.first || line > lines.last;
    });
    if (apply(call, *edits)) {
        target.marks().noteJoined(target.lines().startOf(lines.first));
        // Of blank lines too, of which nothing is left.
        for (const VimMarks::Mark &mark : marks) {
            target.marks().set(mark.name, edits->mapped(mark.place, Bias::after));
        }
        const VimLines after(target.text());
        const qsizetype end = after.endOf(lines.first);
        target.marks().set(u'[', std::min((*edits)[0].range.location, end));
        target.marks().set(u']', end);
        target.noteChange(after.startOf(lines.first + 1));
        goTo(target, lines.first);
    }
    return {};
}

Result<void> shift(VimExCall &call)
{
    VimExTarget &target = call.target();
    noteJump(target);
    goTo(target, call.lines.first);
    const qsizetype levels = call.name.startsWith(u'>') ? call.name.size() : -call.name.size();
    const auto edits =
        computed(target, call.lines, [levels, indentation = target.indentation()](const Rope &text, LineSpan span, const auto & /*stop*/) {
            return VimExEdits::shifted(text, span, levels, indentation);
        });
    if (!edits) {
        return {};
    }
    call.line.beginUndoGroup();
    target.beginChange(whole(target, call.lines));
    if (target.apply(*edits)) {
        goTo(target, call.lines.last);
        noteChanged(target, call.lines);
        noteLastCharacter(target, call.lines.last);
    }
    return {};
}

namespace {

struct SortFlag {
    char16_t name;
    VimExEdits::Sorting::By by;
};
constexpr auto sortFlags = std::to_array<SortFlag>({
    {u'n', VimExEdits::Sorting::By::decimal},
    {u'f', VimExEdits::Sorting::By::real},
    {u'x', VimExEdits::Sorting::By::hexadecimal},
    {u'o', VimExEdits::Sorting::By::octal},
    {u'b', VimExEdits::Sorting::By::binary},
});

Result<VimExEdits::Sorting> sorting(VimExCall &call)
{
    VimExEdits::Sorting sorting{.isReversed = call.hasBang};
    const QStringView typed = call.argument;
    int kinds = 0;
    for (qsizetype at = 0; at < typed.size(); ++at) {
        const QChar flag = typed[at];
        const auto kind = std::ranges::find(sortFlags, flag.unicode(), &SortFlag::name);
        if (kind != sortFlags.end()) {
            sorting.by = kind->by;
            ++kinds;
        } else if (flag == u'i') {
            sorting.ignoresCase = true;
        } else if (flag == u'u') {
            sorting.dropsRepeats = true;
        } else if (flag == u'r') {
            sorting.takesMatch = true;
        } else if (isSpaceOrTab(flag.unicode())) {
            continue;
        } else if (flag.isLetterOrNumber() || sorting.pattern) {
            return failure(formatted(localized(u"Not a way to sort: %@"), call.argument));
        } else {
            VimExPart part = VimExPart::upTo(flag, typed.sliced(at + 1));
            const auto &last = call.target().lastSearch();
            if (part.text.isEmpty() && !last) {
                return failure(localized(u"Nothing was searched for yet"));
            }
            if (!part.isEnded) {
                return failure(formatted(localized(u"Not a way to sort: %@"), call.argument));
            }
            part.text = part.text.isEmpty() ? last->pattern : part.text;
            auto pattern = call.line.pattern(part.text);
            if (!pattern) {
                return tl::make_unexpected(pattern.error());
            }
            call.line.noteSearch(part.text);
            sorting.pattern = *std::move(pattern);
            at += part.end;
        }
    }
    return kinds > 1 ? Result<VimExEdits::Sorting>(failure(formatted(localized(u"Not a way to sort: %@"), call.argument)))
                     : Result<VimExEdits::Sorting>(std::move(sorting));
}

} // namespace

Result<void> sort(VimExCall &call)
{
    auto wanted = sorting(call);
    if (!wanted) {
        return tl::make_unexpected(wanted.error());
    }
    VimExTarget &target = call.target();
    if (call.lines.count() < 2) {
        return {};
    }
    const auto edits =
        computed(target, call.lines, [sorting = *std::move(wanted)](const Rope &text, LineSpan span, const std::stop_token &stop) {
            return VimExEdits::sorted(text, span, sorting, stop);
        });
    if (!edits) {
        return {};
    }
    target.beginChange(whole(target, call.lines));
    if (apply(call, *edits)) {
        goTo(target, call.lines.first);
    }
    return {};
}

Result<void> retab(VimExCall &call)
{
    VimExTarget &target = call.target();
    bool isNumber = call.argument.isEmpty();
    const int width = isNumber ? 0 : call.argument.toInt(&isNumber);
    constexpr int widest = 9999;
    if (!isNumber || width < 0 || width > widest) {
        return failure(formatted(localized(u"Needs a number: %@"), call.argument));
    }
    const Indentation now = target.indentation();
    Indentation wanted = now;
    if (width > 0) {
        wanted.width = width;
        wanted.otherTabStops = 0;
    }
    using enum VimExEdits::Runs;
    const auto edits = computed(
        target, call.lines,
        [old = now.tabWidth(), wanted, runs = call.hasBang ? VimExEdits::Runs::all : withTabs](
            const Rope &text, LineSpan span, const auto & /*stop*/) { return VimExEdits::retabbed(text, span, old, wanted, runs); });
    if (!edits) {
        return {};
    }
    // On a tab the caret is at its last column.
    const bool isOnBlank = target.caret() < target.text().length() && isSpaceOrTab(target.text().at(target.caret()));
    const qsizetype place = isOnBlank ? edits->mapped(target.caret() + 1, Bias::after) - 1 : edits->mapped(target.caret(), Bias::after);
    if (!apply(call, *edits)) {
        return {};
    }
    target.moveCaret(place);
    if (width > 0) {
        call.argument = u"tabstop=%1"_s.arg(width);
        return set(call);
    }
    return {};
}

Result<void> substitute(VimExCall &call)
{
    VimExTarget &target = call.target();
    const auto command = VimSubstituteCommand::parse(QString(call.name + call.argument));
    if (!command) {
        return tl::make_unexpected(command.error());
    }
    LineSpan lines = call.lines;
    if (command->count) {
        lines = {lines.last, std::min(target.lines().count(), lines.last + *command->count - 1)};
    }
    auto job = VimSubstituteJob::prepare(*command, {lines.first - 1, lines.last - 1}, target.options(), target.lastSubstitution(),
                                         target.lastSearch());
    if (!job) {
        return tl::make_unexpected(job.error());
    }
    if (job->flags.asks && !job->flags.onlyCounts) {
        return call.line.isRepeating() || !target.confirm(*job) ? failure(localized(u"Substitutions are not confirmed here"))
                                                                : Result<void>();
    }
    job->flags.isQuiet = job->flags.isQuiet || call.line.isRepeating();
    if (!call.line.isRepeating() && command->rest.isEmpty() && target.substituteElsewhere(*job)) {
        return {};
    }
    const auto found = computed(target, lines, [job = *job](const Rope &text, LineSpan /*span*/, const std::stop_token &stop) {
        return job.outcome(text, {.stop = stop, .searched = nullptr});
    });
    if (!found) {
        return {};
    }
    const VimSubstituteOutcome &outcome = *found;
    const QString message = job->message(outcome);
    if (outcome.hits == 0 && !job->flags.isQuiet) {
        return failure(message);
    }
    if (outcome.hits > 0 && job->flags.onlyCounts) {
        goTo(target, target.lines().number(target.caret()));
    } else if (outcome.hits > 0) {
        if (!call.line.isRepeating()) {
            noteJump(target);
        }
        if (!outcome.edits.isEmpty()) {
            target.moveCaret(target.text().lineStart(target.text().lineAt(outcome.edits[0].range.location)));
        }
        const qsizetype more = VimLines(target.text()).count() - lines.last;
        if (apply(call, outcome.edits)) {
            target.moveCaret(outcome.caret);
            noteChanged(target, {lines.first, VimLines(target.text()).count() - more});
        }
    }
    const QString line = job->shownLine(outcome, target.text());
    if (call.line.isRepeating() && !job->flags.onlyCounts) {
        call.line.noteSubstituted({outcome.hits, outcome.lines});
    }
    if (!call.line.isRepeating() || !line.isEmpty() || job->flags.onlyCounts) {
        call.line.say(line.isEmpty() ? message : line);
    }
    return call.line.carryOut(command->rest);
}

// Lines gone through

namespace {

enum class Lines { matching, others };

/// A pattern and commands, as they stand behind `:g`.
struct Repeated {
    QString pattern;
    QStringView commands;
};

Result<Repeated> repeated(const VimExCall &call)
{
    const QStringView typed = call.argument;
    const auto &last = call.target().lastSearch();
    const QString lastPattern = last ? last->pattern : QString();
    Repeated repeated;
    if (typed.size() > 1 && typed[0] == u'\\' && QStringView(u"/?&").contains(typed[1])) {
        const QString lastSubstituted = call.target().lastSubstitution().pattern.value_or(QString());
        repeated = {typed[1] == u'&' ? lastSubstituted : lastPattern, typed.sliced(2)};
    } else if (typed.isEmpty() || typed[0].isLetterOrNumber() || QStringView(u"\"|\\").contains(typed[0])) {
        return failure(localized(u"A pattern between slashes is missing"));
    } else {
        const VimExPart part = VimExPart::upTo(typed[0], typed.sliced(1));
        repeated = {part.text.isEmpty() ? lastPattern : part.text, typed.sliced(1 + part.end)};
    }
    if (repeated.pattern.isEmpty()) {
        return failure(localized(u"Nothing was searched for yet"));
    }
    return repeated;
}

/// Where those of `span` begin.
std::vector<qsizetype> linesToTake(const VimLines &lines, LineSpan span, const VimPattern &pattern, Lines which,
                                   const std::stop_token &stop)
{
    const Rope &text = lines.text();
    auto matcher = VimMatcher::compile(pattern, text);
    const SearchControl control{.stop = stop, .searched = nullptr};
    std::vector<qsizetype> hits;
    // An empty line at the end begins where the text ends.
    const qsizetype behind =
        span.last < lines.count() ? lines.startOf(span.last + 1) : text.length() + (lines.endOf(span.last) < text.length() ? 0 : 1);
    qsizetype from = lines.startOf(span.first);
    while (const auto match = matcher && from < behind ? matcher->next(TextRange::between(from, behind), control) : std::nullopt) {
        const qsizetype line = lines.number(match->start);
        hits.push_back(lines.startOf(line));
        from = line < lines.count() ? lines.startOf(line + 1) : behind;
    }
    if (which == Lines::matching) {
        return hits;
    }
    std::vector<qsizetype> others;
    auto hit = hits.begin();
    for (qsizetype line = span.first; line <= span.last; ++line) {
        const qsizetype start = lines.startOf(line);
        if (hit != hits.end() && *hit == start) {
            ++hit;
        } else {
            others.push_back(start);
        }
    }
    return others;
}

/// Deletes all of these lines at once but those that the registers keep, which are left for the command itself.
std::vector<qsizetype> withoutForgotten(VimExCall &call, std::vector<qsizetype> starts)
{
    constexpr size_t kept = 10;
    if (starts.size() <= kept) {
        return starts;
    }
    const VimLines lines = call.target().lines();
    const auto rest = starts.end() - kept;
    TextEdits edits;
    qsizetype taken = 0;
    for (auto start = starts.begin(); start != rest;) {
        const qsizetype from = *start;
        qsizetype end = from;
        for (; start != rest && *start == end; ++start) {
            end = lines.startOf(lines.number(*start) + 1);
        }
        edits.add(TextRange::between(from, end), Rope());
        taken += end - from;
    }
    if (apply(call, edits)) {
        starts.erase(starts.begin(), rest);
        std::ranges::for_each(starts, [taken](qsizetype &start) { start -= taken; });
    }
    return starts;
}

Result<void> repeat(VimExCall &call, Lines which)
{
    VimExTarget &target = call.target();
    if (call.line.isRepeating()) {
        // Within itself it is a condition for the one line.
        if (call.written > 0) {
            return failure(localized(u"This command takes no lines within itself"));
        }
        const qsizetype here = target.lines().number(target.caret());
        call.lines = {here, here};
    }
    const auto wanted = repeated(call);
    if (!wanted) {
        return tl::make_unexpected(wanted.error());
    }
    call.line.noteSearch(wanted->pattern);
    target.lastSubstitution().pattern = wanted->pattern;
    const auto pattern = call.line.pattern(wanted->pattern);
    if (const auto matcher = pattern ? VimMatcher::compile(*pattern, Rope()) : tl::make_unexpected(pattern.error()); !matcher) {
        return tl::make_unexpected(matcher.error());
    }
    auto starts =
        computed(target, call.lines,
                 [pattern = *pattern, which, last = target.lastLine()](const Rope &text, LineSpan span, const std::stop_token &stop) {
                     return linesToTake(VimLines(text, 1, last), span, pattern, which, stop);
                 });
    if (!starts) {
        return {};
    }
    const QString commands = wanted->commands.isEmpty() ? u"p"_s : wanted->commands.toString();
    if (call.line.isRepeating()) {
        return starts->empty() ? Result<void>() : call.line.carryOut(commands);
    }
    if (starts->empty()) {
        call.line.say(
            formatted(which == Lines::matching ? localized(u"Pattern not found: %@") : localized(u"Pattern found in every line: %@"),
                      wanted->pattern));
        return {};
    }
    noteJump(target);
    if (const QStringView command = QStringView(commands).trimmed(); !command.isEmpty() && u"delete"_s.startsWith(command)) {
        starts = withoutForgotten(call, *std::move(starts));
    }
    VimMarkedLines lines(*std::move(starts));
    const VimExLine::Repetition repetition(call.line);
    const VimMarks::Following following(target.marks(), lines);
    const VimRunning::Scope running(target.running());
    while (const auto start = target.running().goesOn() ? lines.take() : std::nullopt) {
        target.moveCaret(std::min(*start, target.text().length()));
        if (const auto done = call.line.carryOut(commands); !done) {
            return done;
        }
    }
    call.line.saySubstituted();
    return {};
}

} // namespace

Result<void> repeatOnLines(VimExCall &call)
{
    return repeat(call, call.hasBang ? Lines::others : Lines::matching);
}

Result<void> repeatOnOtherLines(VimExCall &call)
{
    return repeat(call, Lines::others);
}

Result<void> normal(VimExCall &call)
{
    VimExTarget &target = call.target();
    if (call.argument.isEmpty()) {
        return failure(localized(u"Keys are missing"));
    }
    if (call.written == 0) {
        call.line.beginUndoGroup();
        target.runNormal(call.argument, !call.hasBang);
        return {};
    }
    const VimRunning::Scope running(target.running());
    for (qsizetype line = call.lines.first; line <= call.lines.last && target.running().goesOn(); ++line) {
        const VimLines lines = target.lines();
        target.moveCaret(lines.startOf(std::min(line, lines.count())));
        call.line.beginUndoGroup();
        target.runNormal(call.argument, !call.hasBang);
    }
    return {};
}

Result<void> undo(VimExCall &call)
{
    VimExTarget &target = call.target();
    const QString wanted = call.written == 1 ? QString::number(call.lines.last) : call.argument.trimmed();
    call.line.endUndoGroup();
    if (wanted.isEmpty()) {
        target.undo();
        return {};
    }
    bool isNumber = false;
    const qsizetype number = wanted.toLongLong(&isNumber);
    if (!isNumber || number < 0) {
        return failure(formatted(localized(u"Needs a number: %@"), wanted));
    }
    for (qsizetype steps = target.undoSteps(); steps != number; steps = target.undoSteps()) {
        steps > number ? target.undo() : target.redo();
        if (target.undoSteps() == steps) {
            return failure(formatted(localized(u"There is no change %d"), number));
        }
    }
    return {};
}

Result<void> redo(VimExCall &call)
{
    call.line.endUndoGroup();
    call.target().redo();
    return {};
}

// Marks

Result<void> hideHits(VimExCall &call)
{
    call.target().hideHits();
    return {};
}

Result<void> mark(VimExCall &call)
{
    VimExTarget &target = call.target();
    const QString name = call.argument.trimmed();
    if (name.size() != 1 || !(VimMarks::isUsers(name.front().unicode()) || QStringView(u"'`[]<>").contains(name))) {
        return failure(formatted(localized(u"Not a mark: %@"), name));
    }
    const VimLines lines = target.lines();
    target.setMark(name.front().unicode(), lines.firstNonBlank(lines.startOf(call.lines.last)));
    return {};
}

Result<void> deleteMarks(VimExCall &call)
{
    const QStringView names = call.argument;
    if (call.hasBang != names.isEmpty()) {
        return failure(call.hasBang ? formatted(localized(u"More than the command takes: %@"), call.argument)
                                    : localized(u"The names of marks are missing"));
    }
    if (call.hasBang) {
        for (char16_t name = u'a'; name <= u'z'; ++name) {
            call.target().removeMark(name);
        }
        return {};
    }
    for (qsizetype at = 0; at < names.size(); ++at) {
        const char16_t first = names[at].unicode();
        if (isSpaceOrTab(first)) {
            continue;
        }
        const bool isSpan = at + 2 < names.size() && names[at + 1] == u'-';
        const char16_t last = isSpan ? names[at + 2].unicode() : first;
        const bool isKind = VimMarks::isUsers(first) && VimMarks::isUsers(last) && QChar::isUpper(first) == QChar::isUpper(last);
        if (!VimMarks::isName(first) || first == u'\'' || first == u'`' || last < first || (isSpan && !isKind)) {
            return failure(formatted(localized(u"Not a mark: %@"), names.sliced(at).toString()));
        }
        for (char16_t name = first; name <= last; ++name) {
            call.target().removeMark(name);
        }
        at += isSpan ? 2 : 0;
    }
    return {};
}

} // namespace VimExFunctions
