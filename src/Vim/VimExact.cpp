// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What all parts of exact modal editing have, and what is about all of them.

#include "Vim/VimExact.h"

#include "Text/TextBoundaries.h"
#include "Vim/VimConfiguration.h"

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

// What the engine has of it

void VimEngine::textChanged(const TextChange &change)
{
    if (m_exact) {
        m_exact->followChange(change);
    }
}

void VimEngine::textReloaded()
{
    if (m_exact) {
        m_exact->changing.forgetLine();
    }
}

bool VimEngine::run(const QString &keys)
{
    return m_exact && m_exact->repeating.run(keys);
}

std::optional<char16_t> VimEngine::recording() const
{
    return m_exact ? m_exact->repeating.recording() : std::nullopt;
}

bool VimEngine::isReplacing() const
{
    return m_exact && m_mode == Mode::insert && m_exact->inserting.isReplacing();
}

QString VimEngine::question() const
{
    return m_exact ? m_exact->commanding.question() : QString();
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
    contents.isPrivate = engine.isPrivate();
    engine.m_registers.keep(contents, name, taken);
}

bool VimEngine::Exact::isSet(std::optional<char16_t> name) const
{
    return name == u'_' || (name && engine.m_registers.named().contains(char16_t(QChar::toLower(*name))));
}
