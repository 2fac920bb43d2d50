// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What all parts of exact modal editing have, repeating, and macros.

#include "Vim/VimExact.h"

#include "Base/Translation.h"
#include "Text/TextBoundaries.h"
#include "Vim/VimConfiguration.h"
#include "Vim/VimKeys.h"

#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

VimEngine::ExactPart::ExactPart(Exact &exact) : m_engine(exact.engine), m_exact(exact) {}

VimEngine::ExactPart::Form VimEngine::ExactPart::form() const
{
    // Text may be typed behind the last break wherever somebody put the caret.
    const bool isBehindAll = m_engine.m_mode == Mode::insert && m_engine.m_view.selectedRange().location == text().length();
    return {m_engine.m_view.indentation().tabWidth(),
            isBehindAll || m_exact.isUnterminated() ? VimLines::LastLine::mayBeEmpty : VimLines::LastLine::hasText};
}

VimEngine::ExactPart::Sight VimEngine::ExactPart::see() const
{
    const auto [tabWidth, last] = form();
    return Sight(text(), tabWidth, last);
}

const Rope &VimEngine::ExactPart::text() const
{
    return m_engine.m_view.text();
}

qsizetype VimEngine::ExactPart::caret() const
{
    return m_engine.caret();
}

void VimEngine::ExactPart::setCaret(qsizetype place, std::optional<qsizetype> column)
{
    const Sight sight = see();
    qsizetype at = std::clamp<qsizetype>(place, 0, text().length());
    const bool mayStandBehind = m_engine.m_mode == Mode::insert || m_engine.isVisual() || m_exact.inserting.comesBack();
    at = mayStandBehind ? TextBoundaries::snapped(text(), std::min(at, sight.lines.end(at))) : sight.lines.settled(at);
    m_exact.column = column;
    m_exact.columnPlace = at;
    m_engine.m_lastPlace = at;
    if (m_engine.isVisual()) {
        m_exact.selecting.select(at);
    } else {
        m_engine.m_view.select({at, 0}, at);
    }
}

bool VimEngine::ExactPart::edit(const TextEdits &edits)
{
    return m_engine.edit(edits);
}

void VimEngine::ExactPart::finish(Repeatable repeatable)
{
    if (repeatable == Repeatable::yes && !m_exact.repeating.isReplaying()) {
        m_exact.repeating.remember();
    }
    m_engine.resetPending();
    m_exact.marks.arrive(caret());
    m_exact.inserting.comeBack();
}

void VimEngine::ExactPart::fail()
{
    m_exact.repeating.noteFailure();
    finish();
}

VimExactMotion::Request VimEngine::ExactPart::request(const Sight &sight) const
{
    using For = VimExactMotion::For;
    const auto kind = m_engine.m_pendingOperator;
    const bool isKept = m_exact.columnPlace == caret();
    // Where a selection begins at a tab, that is shown as a whole.
    const bool isTabOfSelection = m_engine.isVisual() && caret() < m_engine.m_visualAnchor && sight.lines.at(caret()) == u'\t';
    const auto shown = isTabOfSelection ? std::optional(sight.lines.cells(caret()).first) : std::nullopt;
    return {.lines = sight.lines,
            .caret = caret(),
            .count = m_engine.effectiveCount(),
            .hasCount = m_engine.hasCount(),
            .purpose = m_engine.isVisual()            ? For::selection
                       : !kind                        ? For::caret
                       : kind == OperatorKind::change ? For::change
                       : kind == OperatorKind::remove ? For::remove
                       : kind == OperatorKind::yank   ? For::yank
                                                      : For::operation,
            .column = isKept && m_exact.column ? m_exact.column : shown,
            .keepsColumn = !m_engine.m_options.startsAtFirst};
}

// Repeating

void VimEngine::Repeating::forget()
{
    m_keys.clear();
}

void VimEngine::Repeating::remember()
{
    if (m_isHeld) {
        return;
    }
    push({.keys = m_keys,
          .registerName = m_engine.m_pendingRegister,
          .count = m_engine.hasCount() ? m_engine.effectiveCount() : 0,
          .extent = m_engine.m_extent,
          .script = std::nullopt});
}

void VimEngine::Repeating::push(Redo redo)
{
    m_redoBefore = std::exchange(m_redo, std::move(redo));
}

QString VimEngine::Repeating::hold()
{
    m_isHeld = true;
    return m_keys;
}

void VimEngine::Repeating::release(const QString &keys)
{
    m_isHeld = false;
    m_keys = keys;
}

void VimEngine::Repeating::rememberScript(const QString &script)
{
    if (m_redo && !m_isReplaying) {
        m_redo->script = script;
    }
}

void VimEngine::Repeating::rememberInsertion()
{
    if (!m_isReplaying) {
        push({.keys = u"i"_s, .registerName = std::nullopt, .count = 0, .extent = std::nullopt, .script = QString()});
    }
}

void VimEngine::Repeating::rememberKeys(const QString &keys)
{
    if (m_redo && !m_isReplaying) {
        m_redo->keys = keys;
    }
}

void VimEngine::Repeating::limitCount(qsizetype count)
{
    if (m_isReplaying) {
        m_redo->count = std::min(m_redo->count, count);
    } else if (m_engine.hasCount()) {
        m_engine.m_countBuffer = QString::number(count);
    }
}

void VimEngine::Repeating::repeat()
{
    const bool isEarlier = m_exact.inserting.comesBack() && !m_exact.inserting.isAnew();
    const auto wanted = isEarlier ? m_redoBefore : m_redo;
    if (!wanted || m_isReplaying) {
        fail();
        return;
    }
    push(*wanted);
    if (m_engine.hasCount() && !m_redo->extent) {
        m_redo->count = m_engine.effectiveCount();
    }
    m_engine.resetPending();
    const bool comesBack = m_exact.inserting.comesBack();
    m_exact.inserting.setComesBack(false); // all of the command is the one command
    if (m_redo->registerName && *m_redo->registerName >= u'1' && *m_redo->registerName < u'9') {
        ++*m_redo->registerName;
    }
    const Redo redo = *m_redo;
    const QScopedValueRollback replaying(m_isReplaying, true);
    m_engine.m_view.beginUndoGroup();
    if (redo.extent) {
        m_exact.selecting.selectAgain(*redo.extent);
    }
    m_engine.m_pendingRegister = redo.registerName;
    m_engine.m_countBuffer = redo.count > 0 ? QString::number(redo.count) : QString();
    const bool isDone = run(redo.keys);
    if (!isDone) {
        m_redo = wanted; // the next one has the count of what was done
    }
    if (m_engine.m_mode == Mode::insert) {
        if (redo.script) {
            m_exact.inserting.play(*redo.script);
        }
        m_exact.inserting.leave();
    } else if (m_engine.isVisual()) {
        m_exact.selecting.leave();
    }
    m_engine.resetPending();
    m_engine.m_view.endUndoGroup();
    m_hasFailed = !isDone;
    m_exact.inserting.setComesBack(comesBack);
    m_exact.inserting.comeBack();
}

bool VimEngine::Repeating::run(const QString &keys)
{
    const QString queue = std::exchange(m_queue, keys);
    const qsizetype place = std::exchange(m_queuePlace, 0);
    if (m_depth++ == 0) {
        m_keysRun = 0;
    }
    const VimRunning::Scope running(m_engine.m_view);
    bool isDone = true;
    while (isDone && m_queuePlace < m_queue.size()) {
        if (!m_engine.m_view.goesOn()) {
            isDone = false;
            break;
        }
        if (++m_keysRun > m_engine.m_options.mostKeys) {
            m_engine.m_delegate.vimEngineSays(m_engine, localized(u"Stopped: these keys would go on without an end"));
            isDone = false;
            break;
        }
        const VimKeyEvent event = VimKeys::next(m_queue, m_queuePlace);
        m_hasFailed = false;
        if (!m_engine.handleKey(event) && !event.characters.isEmpty()) {
            m_engine.m_view.insertText(event.characters);
        }
        isDone = !m_hasFailed;
    }
    m_queue = queue;
    m_queuePlace = place;
    --m_depth;
    m_hasFailed = !isDone;
    return isDone;
}

void VimEngine::Repeating::runNext(const QString &keys)
{
    if (m_depth > 0) {
        m_queue = keys + m_queue.sliced(m_queuePlace);
        m_queuePlace = 0;
    } else {
        run(keys);
    }
}

void VimEngine::Repeating::record(const VimKeyEvent &event)
{
    if (m_recording && m_depth == 0) {
        m_recorded += VimKeys::text(event);
    }
}

void VimEngine::Repeating::recordText(const QString &text)
{
    if (m_recording && m_depth == 0) {
        m_recorded += text;
    }
}

void VimEngine::Repeating::beginStep()
{
    if (m_steps++ == 0) {
        m_engine.m_view.beginUndoGroup();
    }
}

void VimEngine::Repeating::endStep()
{
    if (--m_steps == 0) {
        m_engine.m_view.endUndoGroup();
    }
}

void VimEngine::Repeating::outsideStep(const std::function<void()> &replay)
{
    if (m_steps > 0) {
        m_engine.m_view.endUndoGroup();
    }
    replay();
    if (m_steps > 0) {
        m_engine.m_view.beginUndoGroup();
    }
}

void VimEngine::Repeating::beginRecording()
{
    if (m_recording) {
        toggleRecording(0);
    } else {
        m_engine.m_awaiting = Awaited{.what = Awaiting::recordedRegister};
    }
}

void VimEngine::Repeating::toggleRecording(char16_t name)
{
    if (m_recording) {
        m_engine.notify();
        m_recorded.chop(1); // the key that ends it
        m_engine.m_registers.store({.text = Rope(std::exchange(m_recorded, {})), .isPrivate = m_exact.isPrivate()},
                                   *std::exchange(m_recording, std::nullopt));
    } else if (QChar(name).isLetterOrNumber() || name == u'"') {
        m_recording = name;
        m_recorded.clear();
        m_engine.notify();
    } else {
        fail();
        return;
    }
    finish();
}

void VimEngine::Repeating::runMacro(char16_t name)
{
    const char16_t wanted = name == u'@' ? m_lastMacro : name;
    const qsizetype count = m_engine.effectiveCount();
    const QString command = wanted == u':' ? m_exact.lastCommandLine : QString();
    const Rope recorded =
        wanted == 0 || wanted == u':' ? Rope() : m_exact.contents(wanted == u'"' ? std::nullopt : std::optional(wanted)).text;
    m_engine.resetPending();
    m_lastMacro = wanted;
    if ((recorded.isEmpty() && command.isEmpty()) || !m_engine.mayInsert(recorded.length(), count)) {
        fail();
        return;
    }
    QString keys = command.isEmpty() ? recorded.toString() : u':' + command + u'\r';
    keys = keys.repeated(count);
    if (m_depth > 0) {
        runNext(keys);
        return;
    }
    beginStep();
    run(keys);
    endStep();
}

// All of it

VimEngine::Exact::Exact(VimEngine &owner) : engine(owner)
{
    marks.set(u'\'', 0); // as in a text that was just opened
}

void VimEngine::Exact::escape()
{
    const bool endsMode =
        !engine.m_awaiting && !inserting.comesBack() && (engine.m_mode != Mode::commandLine || engine.m_modeBefore == Mode::normal);
    if (endsMode) {
        engine.leaveToNormal();
        return;
    }
    engine.m_keymap.forget();
    if (engine.m_mode == Mode::commandLine) {
        engine.rememberCommandLine();
        engine.leaveCommandLine();
    } else if (engine.isVisual() && !engine.m_awaiting) {
        selecting.leave();
    }
    engine.m_mode == Mode::insert ? engine.m_awaiting.reset() : engine.resetPending();
    inserting.comeBack();
    engine.notify();
}

QString VimEngine::Exact::linesToCommand()
{
    if (engine.isVisual()) {
        selecting.takeExtent();
        engine.m_extent.reset();
        selecting.leaveAtStart();
        return u"'<,'>"_s;
    }
    const qsizetype count = engine.effectiveCount();
    const bool isMotion = engine.m_pendingOperator.has_value();
    return isMotion || !engine.hasCount() ? QString() : count > 1 ? u".,.+%1"_s.arg(count - 1) : u"."_s;
}

void VimEngine::Exact::enterCommandLine(const VimCommandLine &line)
{
    if (line.prefix() != u':') {
        going.search(line.text(), line.prefix() == u'/' ? SearchDirection::forward : SearchDirection::backward);
        return;
    }
    if (!line.text().isEmpty()) {
        lastCommandLine = line.text();
    }
    if (engine.m_pendingOperator) {
        operating.applyOver(line.text());
        return;
    }
    engine.resetPending();
    commanding.run(line.text());
    if (commanding.question().isEmpty()) {
        inserting.comeBack();
    }
}

void VimEngine::Exact::followChange(const TextChange &change)
{
    const bool isOwn = engine.isBusy() || engine.m_mode == Mode::insert;
    if (!isOwn || changing.isUndoing()) {
        m_isEmptied = false;
    }
    if (isOwn && change.after.isEmpty() && endsWithBreak(change.before) && !m_isUnterminated) {
        m_isEmptied = true;
    }
    m_hasEmptyLine = isOwn && !changing.isUndoing();
    const auto isOpen = [](const Rope &text) { return !text.isEmpty() && !endsWithBreak(text); };
    m_isUnterminated = m_isUnterminated || isOpen(change.before) || isOpen(change.after);
    if (!endsWithBreak(change.after)) {
        // It is so, or there is no line at all.
    } else if (!isOwn) {
        m_isUnterminated = false;
    } else if (change.before.isEmpty()) {
        m_isUnterminated = !changing.isUndoing();
    }
    if (!changing.isUndoing()) {
        rememberStep(change, isOwn ? ChangedBy::keys : ChangedBy::others);
    }
    const VimPlace::Kind kind = changing.isReplaying() ? VimPlace::Kind::undone : VimPlace::Kind::change;
    marks.follow(change, kind);
    jumps.follow(change, kind);
    changes.follow(change, kind);
    changing.followChange(change);
    selecting.followChange(change);
}

bool VimEngine::Exact::restoreLastBreak(bool wasTyped)
{
    if ((engine.m_view.text().isEmpty() && !wasTyped) || !std::exchange(m_isEmptied, false)) {
        return false;
    }
    changing.appendBreak();
    terminate();
    return true;
}

void VimEngine::Exact::settleLastBreak(bool wasUnterminated)
{
    if (std::exchange(m_isEmptied, false)) {
        terminate();
    } else if (const Rope &text = engine.m_view.text(); wasUnterminated && endsWithBreak(text)) {
        changing.dropLastBreak();
    }
}

VimRegisterContents VimEngine::Exact::contents(std::optional<char16_t> name) const
{
    if (name == u'.') {
        return {.text = Rope(inserting.lastInserted())};
    }
    if (name == u':') {
        return {.text = Rope(lastCommandLine)};
    }
    if (name == u'/') {
        return {.text = Rope(engine.m_lastSearch ? engine.m_lastSearch->pattern : QString())};
    }
    if (name == u'%') {
        return {.text = Rope(engine.m_view.name().path)};
    }
    if (name == u'#') {
        return {.text = Rope(engine.m_configuration ? engine.m_configuration->alternateFile() : QString())};
    }
    return name == u'_' ? VimRegisterContents() : engine.m_registers.contents(name == u'"' ? std::nullopt : name);
}

void VimEngine::Exact::keep(VimRegisterContents contents, std::optional<char16_t> name, VimRegisters::Taken taken) const
{
    contents.isPrivate = isPrivate();
    engine.m_registers.keep(contents, name, taken);
}

bool VimEngine::Exact::isPrivate() const
{
    return engine.m_historyKept && engine.m_historyKept() == VimHistory::Kept::whileRunning;
}

bool VimEngine::Exact::isSet(std::optional<char16_t> name) const
{
    return name == u'_' || (name && engine.m_registers.named().contains(char16_t(QChar::toLower(*name))));
}
