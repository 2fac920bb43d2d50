// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Repeating, and macros.

#include "Vim/VimExact.h"

#include "Base/Translation.h"
#include "Vim/VimKeys.h"

#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

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
        m_engine.m_registers.store({.text = Rope(std::exchange(m_recorded, {})), .isPrivate = m_engine.isPrivate()},
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
    QString keys = command.isEmpty() ? recorded.toString() : u':' + command + u'\r';
    if (keys.isEmpty() || !m_engine.mayInsert(keys.size(), count)) {
        fail();
        return;
    }
    keys = keys.repeated(count);
    if (m_depth > 0) {
        runNext(keys);
        return;
    }
    beginStep();
    run(keys);
    endStep();
}
