// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What modal editing does to the text: operators, commands, registers, repeating.

#include "Commands/Actions.h"
#include "Text/TextBoundaries.h"
#include "Vim/VimExact.h"
#include "Vim/VimKeyTable.h"
#include "Vim/VimParts.h"

using namespace Qt::StringLiterals;

namespace {

/// Upper case becomes lower, all else upper, character by character.
QString withFlippedCase(const Rope &text)
{
    QString flipped;
    for (qsizetype place = 0; place < text.length();) {
        const qsizetype end = TextBoundaries::nextGrapheme(text, place);
        const QString character = text.toString(TextRange::between(place, end));
        const QString lower = character.toLower();
        flipped += character == character.toUpper() && character != lower ? lower : character.toUpper();
        place = end;
    }
    return flipped;
}

Rope repeatedText(const Rope &text, qsizetype count)
{
    Rope result;
    Rope power = text;
    for (qsizetype left = count; left > 0; left /= 2) {
        if (left % 2 == 1) {
            result.replace({result.length(), 0}, power);
        }
        power.replace({power.length(), 0}, Rope(power));
    }
    return result;
}

bool endsWithLineFeed(const Rope &text)
{
    return !text.isEmpty() && text.at(text.length() - 1) == u'\n';
}

} // namespace

// Editing

bool VimEngine::edit(const TextEdits &edits)
{
    if (m_exact && !edits.isEmpty()) {
        m_exact->changing.noteCaret(m_view.selectedRange().location);
    }
    const bool isDone = !edits.isEmpty() && m_view.apply(edits);
    m_changedBuffer = m_changedBuffer || isDone;
    return isDone;
}

bool VimEngine::edit(TextRange range, const Rope &text)
{
    return edit(TextEdits(wholeCharacters(m_view.text(), range.clampedTo(m_view.text().length())), text));
}

TextRange VimEngine::Editing::charactersFrom(qsizetype caret, qsizetype count) const
{
    const qsizetype end = std::min(caret + count, m_engine.buffer().lineContentEnd(caret));
    return wholeCharacters(m_engine.m_view.text(), TextRange::between(caret, std::max(end, caret)));
}

void VimEngine::Editing::store(TextRange range, Span span)
{
    const Rope text = m_engine.m_view.text().slice(range);
    // Exact modal editing, which may be switched on later, keeps registers for the next start.
    m_engine.m_registers.set({.text = text, .isLinewise = span == Span::lines, .isPrivate = m_engine.isPrivate()},
                             m_engine.m_pendingRegister);
}

// Operators

void VimEngine::Editing::apply(OperatorKind kind, TextRange given, Span span)
{
    const TextRange range = wholeCharacters(m_engine.m_view.text(), given);
    if (kind == OperatorKind::change) {
        changeRange(range, span);
        return;
    }
    if (!range.isEmpty()) {
        switch (kind) {
        case OperatorKind::remove:
            store(range, span);
            m_engine.edit(range, Rope());
            m_engine.moveCaret(span == Span::lines ? m_engine.buffer().firstNonBlank(range.location) : range.location);
            break;
        case OperatorKind::yank:
            store(range, span);
            m_engine.moveCaret(range.location);
            break;
        case OperatorKind::indent:
        case OperatorKind::outdent:
            shiftLines(range, kind);
            break;
        case OperatorKind::lowercase:
        case OperatorKind::uppercase:
        case OperatorKind::toggleCase:
            changeCase(range, kind);
            break;
        case OperatorKind::toggleComment:
            changeComments(range);
            break;
        default: // those that only exact modal editing has
            break;
        }
    }
    m_engine.resetPending();
}

void VimEngine::Editing::applyLinewiseOperator(OperatorKind kind, qsizetype count)
{
    const VimBuffer text = m_engine.buffer();
    const qsizetype last = text.line(m_engine.caret(), count - 1).value_or(text.lastLineStart());
    apply(kind, m_engine.linewiseRange(m_engine.caret(), std::max(last, m_engine.caret())), Span::lines);
}

void VimEngine::Editing::applyToSelection(OperatorKind kind)
{
    const Span span = m_engine.m_mode == Mode::visualLine ? Span::lines : Span::characters;
    const TextRange selected = m_engine.m_view.selectedRange();
    m_engine.m_extent = selectedExtent();
    m_engine.setMode(Mode::normal);
    m_engine.moveCaret(selected.location);
    apply(kind, selected, span);
}

void VimEngine::Editing::changeRange(TextRange range, Span span)
{
    const QString indentation = span == Span::lines ? LineEditing::leadingBlanks(m_engine.m_view.text(), range.location) : QString();
    beginInsertSession();
    if (!range.isEmpty()) {
        store(range, span);
        m_engine.edit(range, span == Span::lines ? Rope(QString(indentation + u'\n')) : Rope());
    }
    m_engine.moveCaret(range.location + indentation.size());
    m_engine.resetPending();
}

void VimEngine::Editing::shiftLines(TextRange range, OperatorKind kind)
{
    const TextRange block = selectedLines(m_engine.m_view.text(), range);
    const QString level = m_engine.m_view.indentation().level();
    m_engine.edit(kind == OperatorKind::indent ? LineEditing::indentation(m_engine.m_view.text(), block, level, Breaks::all)
                                               : LineEditing::outdentation(m_engine.m_view.text(), block, level.size(), Breaks::all));
    m_engine.moveCaret(m_engine.buffer().firstNonBlank(block.location));
}

void VimEngine::Editing::changeCase(TextRange range, OperatorKind kind)
{
    const Rope text = m_engine.m_view.text().slice(range);
    const QString changed = kind == OperatorKind::toggleCase  ? withFlippedCase(text)
                            : kind == OperatorKind::uppercase ? text.toString().toUpper()
                                                              : text.toString().toLower();
    m_engine.edit(range, Rope(changed));
    m_engine.moveCaret(range.location);
}

/// The view does so with the lines of its selection.
void VimEngine::Editing::changeComments(TextRange range)
{
    const qsizetype before = m_engine.m_view.text().length();
    m_engine.m_view.select(range, range.location);
    m_engine.m_view.toggleComment();
    m_engine.m_changedBuffer = m_engine.m_changedBuffer || m_engine.m_view.text().length() != before;
    m_engine.moveCaret(m_engine.buffer().firstNonBlank(range.location));
}

// Commands

void VimEngine::Editing::enterInsert(qsizetype place)
{
    beginInsertSession();
    m_engine.moveCaret(place);
    m_engine.resetPending();
}

void VimEngine::Editing::openLine(Side side)
{
    const TextRange line = m_engine.buffer().lineRange(m_engine.caret());
    const QString indentation = LineEditing::leadingBlanks(m_engine.m_view.text(), line.location);
    const qsizetype place = side == Side::after ? line.end() : line.location;
    beginInsertSession();
    m_engine.edit({place, 0}, Rope(QString(indentation + u'\n')));
    m_engine.moveCaret(place + indentation.size());
    m_engine.resetPending();
}

void VimEngine::Editing::toggleCaseUnderCaret(qsizetype count)
{
    const TextRange range = charactersFrom(m_engine.caret(), count);
    if (!range.isEmpty()) {
        const QString flipped = withFlippedCase(m_engine.m_view.text().slice(range));
        m_engine.edit(range, Rope(flipped));
        m_engine.moveCaret(range.location + flipped.size());
    }
    m_engine.resetPending();
}

void VimEngine::Editing::joinLines(qsizetype count)
{
    if (const auto step = LineEditing::joined(m_engine.m_view.text(), m_engine.caret(), count); step && m_engine.edit(step->edits)) {
        m_engine.moveCaret(step->after.caret);
    }
    m_engine.resetPending();
}

void VimEngine::Editing::replaceCharacter(QStringView key, qsizetype count)
{
    const TextRange range = charactersFrom(m_engine.caret(), count);
    if (range.isEmpty() || key == QChar(VimKey::backspace)) {
        m_engine.resetPending();
        return;
    }
    if (key == QChar(u'\r')) {
        // However many characters go, one line break comes.
        m_engine.edit(range, Rope(u"\n"));
        m_engine.moveCaret(range.location + 1);
    } else {
        qsizetype characters = 0;
        for (qsizetype place = range.location; place < range.end(); place = TextBoundaries::nextGrapheme(m_engine.m_view.text(), place)) {
            ++characters;
        }
        m_engine.edit(range, repeatedText(Rope(key), characters));
        m_engine.moveCaret(range.location + characters * key.size() - 1);
    }
    m_engine.resetPending();
}

void VimEngine::Editing::paste(Side side, qsizetype count)
{
    const VimRegisterContents contents = m_engine.m_registers.contents(m_engine.m_pendingRegister);
    if (!contents.text.isEmpty() && m_engine.mayInsert(contents.text.length(), count)) {
        Rope text = repeatedText(contents.text, count);
        VimBuffer before = m_engine.buffer();
        if (contents.isLinewise) {
            if (!endsWithLineFeed(text)) {
                text.replace({text.length(), 0}, u"\n");
            }
            const TextRange line = before.lineRange(m_engine.caret());
            const qsizetype place = side == Side::after ? line.end() : line.location;
            m_engine.edit({place, 0}, text);
            m_engine.moveCaret(m_engine.buffer().firstNonBlank(place));
        } else {
            const qsizetype place = side == Side::after ? charactersFrom(m_engine.caret(), 1).end() : m_engine.caret();
            m_engine.edit({place, 0}, text);
            m_engine.moveCaret(place + text.length() - 1);
        }
    }
    m_engine.resetPending();
}

void VimEngine::Editing::noteChange()
{
    if (m_engine.m_changedBuffer && !m_isReplaying && m_engine.m_mode != Mode::insert) {
        m_lastChange = Change{.keys = m_engine.m_pendingKeys, .extent = m_engine.m_extent};
    }
}

void VimEngine::Editing::repeatLastChange()
{
    m_engine.resetPending();
    if (m_isReplaying || !m_lastChange) {
        return;
    }
    m_isReplaying = true;
    m_engine.m_view.beginUndoGroup();
    const Change change = *m_lastChange;
    if (change.extent) {
        selectAgain(*change.extent);
    }
    for (qsizetype place = 0; place < change.keys.size();) {
        const qsizetype length = change.keys[place].isHighSurrogate() && place + 1 < change.keys.size() ? 2 : 1;
        m_engine.handleNormal(QStringView(change.keys).sliced(place, length));
        place += length;
    }
    if (m_engine.m_mode == Mode::insert) {
        if (change.insertedText && !change.insertedText->isEmpty()) {
            m_engine.m_view.insertText(*change.insertedText);
        }
        m_engine.leaveToNormal();
    }
    // Where the keys come to nothing, they leave nothing that waits.
    m_engine.resetPending();
    m_engine.m_view.endUndoGroup();
    m_isReplaying = false;
}

VimEngine::Extent VimEngine::Editing::selectedExtent() const
{
    const Rope &text = m_engine.m_view.text();
    const TextRange selected = m_engine.m_view.selectedRange();
    const qsizetype first = text.lineAt(selected.location);
    const qsizetype last = text.lineAt(std::max(selected.end() - 1, selected.location));
    return {
        .mode = m_engine.m_mode, .lines = last - first + 1, .units = selected.end() - std::max(selected.location, text.lineStart(last))};
}

/// As much from the caret on, as far as there is so much.
void VimEngine::Editing::selectAgain(const Extent &extent)
{
    VimBuffer text = m_engine.buffer();
    const qsizetype place = m_engine.caret();
    const qsizetype start = extent.lines > 1 ? text.line(place, extent.lines - 1).value_or(text.lastLineStart()) : place;
    m_engine.m_visualAnchor = place;
    m_engine.setMode(extent.mode);
    m_engine.updateVisualSelection(std::max(std::min(start + extent.units, text.lineContentEnd(start)) - 1, start));
}

void VimEngine::Editing::copySelection()
{
    if (m_engine.isVisual()) {
        m_engine.m_view.perform(Actions::copy);
        m_engine.leaveToNormal();
    }
}

// For key maps

void VimEngine::toggleCommentFromKeymap()
{
    m_view.toggleComment();
    if (isVisual()) {
        setMode(Mode::normal);
    }
    moveCaret(m_view.selectedRange().location);
    resetPending();
}

void VimEngine::moveLines(int by)
{
    const VimBuffer text = buffer();
    const TextRange selected = m_view.selectedRange();
    const TextRange block =
        isVisual() ? linewiseRange(selected.location, std::max(selected.end() - 1, selected.location)) : text.lineRange(caret());
    const auto step = LineEditing::moved(text.text(), block, by < 1 ? LineEditing::Neighbour::before : LineEditing::Neighbour::behind);
    if (!step) {
        resetPending();
        return;
    }
    const qsizetype start = step->after.anchor;
    const bool wasVisual = isVisual();
    edit(step->edits);
    if (wasVisual) {
        m_visualAnchor = start;
        moveCaret(std::max(start + block.length - 1, start));
    } else {
        moveCaret(buffer().firstNonBlank(start));
    }
    resetPending();
}

// Insert sessions

void VimEngine::Editing::deleteInserted(VimDeletion what)
{
    const qsizetype before = m_engine.m_view.text().length();
    m_engine.m_view.deleteBackward(what);
    m_insertedText.chop(std::clamp<qsizetype>(before - m_engine.m_view.text().length(), 0, m_insertedText.size()));
}

void VimEngine::Editing::insertRegister(char16_t name)
{
    const Rope text = m_engine.m_registers.contents(name == u'"' ? std::nullopt : std::optional(name)).text;
    if (!text.isEmpty() && m_engine.mayInsert(text.length(), 1)) {
        const QString inserted = text.toString();
        m_engine.m_view.putText(inserted);
        m_insertedText += inserted;
    }
}

/// What the command itself changes first belongs to the session as well.
void VimEngine::Editing::beginInsertSession()
{
    m_insertCommand = Change{.keys = m_engine.m_pendingKeys, .extent = m_engine.m_extent};
    m_insertedText.clear();
    m_engine.setMode(Mode::insert);
    m_engine.resumeInsertSession();
}

void VimEngine::Editing::endInsertSession()
{
    if (!m_isReplaying) {
        m_lastChange = m_insertCommand;
        m_lastChange->insertedText = m_insertedText;
    }
    m_insertedText.clear();
    m_engine.m_changedBuffer = false;
    m_engine.pauseInsertSession();
}
