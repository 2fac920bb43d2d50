// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What is typed behind ":" in exact modal editing.

#include "Vim/VimExact.h"

#include "Base/Translation.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimExEdits.h"
#include "Vim/VimExFunctions.h"
#include "Vim/VimExLine.h"
#include "Vim/VimExRange.h"

#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

bool VimEngine::Commanding::run(const QString &typed)
{
    if (typed == u"'<,'>") {
        return true; // what a visual mode begins the line with, and nothing else
    }
    if (!m_engine.m_configuration) {
        m_engine.m_delegate.vimEngineRunsCommand(m_engine, typed);
        return true;
    }
    const bool isDone = VimExLine(*this, *m_engine.m_configuration).run(typed);
    VimOptions options = m_engine.m_configuration->options();
    options.longestLine = m_engine.m_options.longestLine;
    options.mostKeys = m_engine.m_options.mostKeys;
    options.isExact = true; // where it was switched off, whoever has the engine does that later
    m_engine.configure(options);
    if (!isDone) {
        m_exact.repeating.noteFailure();
    }
    if (m_engine.m_mode == Mode::normal && !m_confirmation) {
        setCaret(ExactPart::caret(), m_exact.column);
    }
    m_exact.marks.arrive(ExactPart::caret());
    return isDone;
}

void VimEngine::Commanding::runFromKey(const QString &command)
{
    m_engine.resetPending();
    run(command);
    finish();
}

void VimEngine::Commanding::refuseProgram(const QString &key)
{
    say(VimExFunctions::refusalOfProgram(key));
    fail();
}

void VimEngine::Commanding::substituteAgain(bool inAllLines)
{
    const qsizetype more = m_engine.effectiveCount() - 1;
    m_engine.resetPending();
    run(inAllLines ? u"%s//~/&"_s : more > 0 ? u".,.+%1s"_s.arg(more) : u"s"_s);
    m_exact.inserting.comeBack();
}

// For commands

VimLines::LastLine VimEngine::Commanding::lastLine() const
{
    return m_exact.isUnterminated() ? VimLines::LastLine::mayBeEmpty : VimLines::LastLine::hasText;
}

void VimEngine::Commanding::moveCaret(qsizetype place)
{
    setCaret(place);
}

bool VimEngine::Commanding::apply(const TextEdits &edits)
{
    if (edits.isEmpty()) {
        m_exact.changing.beginChange(ExactPart::caret());
        return true;
    }
    const bool wasEmpty = text().isEmpty();
    const bool wasUnterminated = m_exact.isUnterminated();
    const bool isDone = edit(edits);
    if (wasEmpty && isDone) {
        m_exact.settleLastBreak(wasUnterminated);
    }
    m_engine.m_changedBuffer = false;
    if (isDone) {
        m_exact.changing.noteLine(edits.newRange(0).location);
    }
    return isDone;
}

void VimEngine::Commanding::beginChange(std::optional<TextRange> taken)
{
    using enum Changing::Reach;
    const bool isInLine = taken && text().lineAt(taken->location) == text().lineAt(std::max(taken->end() - 1, taken->location));
    const auto reach = taken && taken->isEmpty() ? between : isInLine ? line : lines;
    m_exact.changing.beginChange(ExactPart::caret(), reach, taken);
}

void VimEngine::Commanding::beginUndoGroup()
{
    m_engine.m_view.beginUndoGroup();
}

void VimEngine::Commanding::endUndoGroup()
{
    m_engine.m_view.endUndoGroup();
}

void VimEngine::Commanding::undo()
{
    const qsizetype column = [&] {
        const Sight sight = see();
        const bool isKept = m_exact.column && m_exact.columnPlace == ExactPart::caret();
        return isKept ? *m_exact.column : sight.lines.cells(ExactPart::caret()).first;
    }();
    m_exact.changing.undo(1);
    m_exact.column = column; // `j` goes on in it
}

void VimEngine::Commanding::redo()
{
    m_exact.changing.redo(1);
}

void VimEngine::Commanding::noteChange(qsizetype place)
{
    m_exact.changing.noteChange(place);
}

qsizetype VimEngine::Commanding::undoSteps() const
{
    return m_exact.changing.undoSteps();
}

void VimEngine::Commanding::forgetLine()
{
    m_exact.changing.forgetLine();
    m_exact.setHasEmptyLine(false); // what is deleted here is lines
}

VimTextName VimEngine::Commanding::name() const
{
    return m_engine.m_view.name();
}

VimMarks &VimEngine::Commanding::marks()
{
    m_exact.marking.update();
    return m_exact.marks;
}

void VimEngine::Commanding::setMark(char16_t name, qsizetype place)
{
    m_exact.marking.set(name, place);
}

void VimEngine::Commanding::removeMark(char16_t name)
{
    m_exact.marking.remove(name);
}

std::vector<VimFileMarks::Mark> VimEngine::Commanding::marksElsewhere() const
{
    return m_exact.marking.elsewhere();
}

VimPlaces &VimEngine::Commanding::jumps()
{
    return m_exact.jumps;
}

VimPlaces &VimEngine::Commanding::changes()
{
    return m_exact.changes;
}

const VimRegisters &VimEngine::Commanding::registers() const
{
    return m_engine.m_registers;
}

void VimEngine::Commanding::keep(const VimRegisterContents &contents, std::optional<char16_t> name, VimRegisters::Taken taken)
{
    m_exact.keep(contents, name, taken);
}

bool VimEngine::Commanding::runNormal(const QString &keys, bool usesMappings)
{
    const QScopedValueRollback mapping(m_engine.m_usesMappings, usesMappings);
    const bool isDone = m_exact.repeating.run(keys);
    m_engine.releaseKeys();
    if (m_engine.m_mode == Mode::commandLine) {
        m_engine.leaveCommandLine();
    }
    if (m_engine.m_mode != Mode::normal) {
        m_engine.leaveToNormal();
    }
    m_engine.resetPending();
    return isDone;
}

std::optional<VimSearch> &VimEngine::Commanding::lastSearch()
{
    return m_engine.m_lastSearch;
}

Indentation VimEngine::Commanding::indentation() const
{
    return m_engine.m_view.indentation();
}

const VimOptions &VimEngine::Commanding::options() const
{
    return m_engine.m_options;
}

void VimEngine::Commanding::hideHits()
{
    m_engine.hideHits();
}

void VimEngine::Commanding::say(const QString &message)
{
    m_engine.m_delegate.vimEngineSays(m_engine, message);
}

void VimEngine::Commanding::list(const QString &title, const QString &text)
{
    m_engine.m_delegate.vimEngineLists(m_engine, title, text);
}

void VimEngine::Commanding::perform(const Action &action, const QString &argument)
{
    m_engine.m_delegate.vimEnginePerforms(m_engine, action, argument);
}

// Substitutions

std::optional<VimTypedSubstitution> VimEngine::typedSubstitution() const
{
    const bool isTyped = m_exact && m_mode == Mode::commandLine && m_commandLine.prefix() == u':' && m_options.searchesWhileTyping;
    return isTyped ? m_exact->commanding.typedSubstitution() : std::nullopt;
}

std::optional<VimTypedSubstitution> VimEngine::Commanding::typedSubstitution() const
{
    const Rope &all = ExactPart::text();
    const QStringView typed = m_engine.m_commandLine.text();
    // Lines told by patterns are looked for at every key.
    const QStringView before = typed.first(std::max<qsizetype>(typed.indexOf(u's'), 0));
    if (all.length() > VimSearch::nearby && (before.contains(u'/') || before.contains(u'?') || before.contains(u'\\'))) {
        return std::nullopt;
    }
    auto search = m_engine.m_lastSearch;
    VimExRange::Trace trace;
    const auto range = VimExRange::parse(typed,
                                         {.text = all,
                                          .lastLine = lastLine(),
                                          .caret = ExactPart::caret(),
                                          .marks = m_exact.marks,
                                          .options = m_engine.m_options,
                                          .lastPattern = search ? search->pattern : QString(),
                                          .lastSubstituted = m_substitution.pattern.value_or(QString())},
                                         trace);
    if (!range || range->first < 0 || range->last > lines().count()) {
        return std::nullopt;
    }
    const QStringView rest = typed.sliced(range->length);
    const auto command = VimSubstituteCommand::isOne(rest) ? VimSubstituteCommand::parse(rest) : failure(QString());
    const bool isAgain = rest.startsWith(u'&') || rest.startsWith(u'~');
    if (!command || !(isAgain || command->hasReplacement || command->patternKind == VimSubstituteCommand::Pattern::typed)) {
        return std::nullopt; // ":s" alone may become another command
    }
    // What it remembers is forgotten with it.
    VimSubstituteMemory memory = m_substitution;
    const VimSubstituteJob::Lines lines{std::max<qsizetype>(range->first, 1) - 1, std::max<qsizetype>(range->last, 1) - 1};
    auto job = VimSubstituteJob::prepare(*command, lines, m_engine.m_options, memory, search);
    return job ? std::optional(VimTypedSubstitution{*std::move(job), isAgain || command->hasReplacement}) : std::nullopt;
}

bool VimEngine::Commanding::substituteElsewhere(const VimSubstituteJob &job)
{
    if (ExactPart::text().length() <= VimSearch::nearby || m_exact.repeating.isRunning() || job.flags.onlyCounts) {
        return false;
    }
    m_engine.m_delegate.vimEngineSubstitutes(m_engine, job);
    return true;
}

bool VimEngine::Commanding::confirm(const VimSubstituteJob &job)
{
    m_job = std::make_unique<VimSubstituteJob>(job);
    m_confirmation = std::make_unique<VimSubstituteConfirmation>(*m_job, ExactPart::text());
    m_engine.m_view.beginUndoGroup();
    ask();
    return true;
}

void VimEngine::Commanding::ask()
{
    const auto hit = m_confirmation->hit();
    if (!hit) {
        endQuestions();
        return;
    }
    setCaret(hit->location);
    m_engine.m_view.select(*hit, hit->location); // seen while it is asked about
    m_engine.m_view.showIndicator(*hit);
    m_engine.notify();
}

bool VimEngine::Commanding::takeAnswer(const VimKeyEvent &event)
{
    if (!m_confirmation) {
        return false;
    }
    const QString &key = event.charactersIgnoringModifiers;
    if (const TextEdits edits = m_confirmation->answer(key.size() == 1 ? key.front().unicode() : u'\0'); !edits.isEmpty()) {
        beginChange(std::nullopt);
        apply(edits);
    }
    ask();
    return true;
}

void VimEngine::Commanding::endQuestions()
{
    const VimSubstituteOutcome outcome = m_confirmation->outcome();
    m_confirmation.reset();
    m_engine.notify();
    m_engine.m_view.select({m_engine.m_view.selectedRange().location, 0}, m_engine.m_view.selectedRange().location);
    m_engine.m_view.endUndoGroup();
    if (outcome.hits > 0) {
        setCaret(outcome.caret);
    }
    say(m_job->message(outcome));
    m_job.reset();
    finish();
}
