// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What modal editing does to the text: operators, commands, registers, repeating.

#include "Commands/Actions.h"
#include "Text/TextBoundaries.h"
#include "Vim/VimEngine.h"
#include "Vim/VimKeyTable.h"

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

bool endsWithBreak(const Rope &text)
{
    return !text.isEmpty() && text.at(text.length() - 1) == u'\n';
}

} // namespace

// Editing

bool VimEngine::edit(const TextEdits &edits)
{
    const bool isDone = !edits.isEmpty() && m_view.apply(edits);
    m_changedBuffer = m_changedBuffer || isDone;
    return isDone;
}

bool VimEngine::edit(TextRange range, const Rope &text)
{
    return edit(TextEdits(wholeCharacters(m_view.text(), range.clampedTo(m_view.text().length())), text));
}

TextRange VimEngine::charactersFrom(qsizetype caret, qsizetype count) const
{
    const qsizetype end = std::min(caret + count, buffer().lineContentEnd(caret));
    return wholeCharacters(m_view.text(), TextRange::between(caret, std::max(end, caret)));
}

void VimEngine::store(TextRange range, Span span)
{
    m_registers.set({.text = m_view.text().slice(range), .isLinewise = span == Span::lines}, m_pendingRegister);
}

// Operators

void VimEngine::apply(OperatorKind kind, TextRange given, Span span)
{
    const TextRange range = wholeCharacters(m_view.text(), given);
    if (kind == OperatorKind::change) {
        changeRange(range, span);
        return;
    }
    if (!range.isEmpty()) {
        switch (kind) {
        case OperatorKind::remove:
            store(range, span);
            edit(range, Rope());
            moveCaret(span == Span::lines ? buffer().firstNonBlank(range.location) : range.location);
            break;
        case OperatorKind::yank:
            store(range, span);
            moveCaret(range.location);
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
        case OperatorKind::change:
            break;
        }
    }
    resetPending();
}

void VimEngine::applyLinewiseOperator(OperatorKind kind, qsizetype count)
{
    const VimBuffer text = buffer();
    const qsizetype last = text.line(caret(), count - 1).value_or(text.lastLineStart());
    apply(kind, linewiseRange(caret(), std::max(last, caret())), Span::lines);
}

void VimEngine::applyToSelection(OperatorKind kind)
{
    const Span span = m_mode == Mode::visualLine ? Span::lines : Span::characters;
    const TextRange selected = m_view.selectedRange();
    m_extent = selectedExtent();
    setMode(Mode::normal);
    moveCaret(selected.location);
    apply(kind, selected, span);
}

void VimEngine::changeRange(TextRange range, Span span)
{
    const QString indentation = span == Span::lines ? LineEditing::leadingBlanks(m_view.text(), range.location) : QString();
    beginInsertSession();
    if (!range.isEmpty()) {
        store(range, span);
        edit(range, span == Span::lines ? Rope(QString(indentation + u'\n')) : Rope());
    }
    moveCaret(range.location + indentation.size());
    resetPending();
}

void VimEngine::shiftLines(TextRange range, OperatorKind kind)
{
    const TextRange block = selectedLines(m_view.text(), range);
    const QString level = m_view.indentation().level();
    edit(kind == OperatorKind::indent ? LineEditing::indentation(m_view.text(), block, level, Breaks::all)
                                      : LineEditing::outdentation(m_view.text(), block, level.size(), Breaks::all));
    moveCaret(buffer().firstNonBlank(block.location));
}

void VimEngine::changeCase(TextRange range, OperatorKind kind)
{
    const Rope text = m_view.text().slice(range);
    const QString changed = kind == OperatorKind::toggleCase  ? withFlippedCase(text)
                            : kind == OperatorKind::uppercase ? text.toString().toUpper()
                                                              : text.toString().toLower();
    edit(range, Rope(changed));
    moveCaret(range.location);
}

/// The view does so with the lines of its selection.
void VimEngine::changeComments(TextRange range)
{
    const qsizetype before = m_view.text().length();
    m_view.select(range, range.location);
    m_view.toggleComment();
    m_changedBuffer = m_changedBuffer || m_view.text().length() != before;
    moveCaret(buffer().firstNonBlank(range.location));
}

// Commands

void VimEngine::enterInsert(qsizetype place)
{
    beginInsertSession();
    moveCaret(place);
    resetPending();
}

void VimEngine::openLine(Side side)
{
    const TextRange line = buffer().lineRange(caret());
    const QString indentation = LineEditing::leadingBlanks(m_view.text(), line.location);
    const qsizetype place = side == Side::after ? line.end() : line.location;
    beginInsertSession();
    edit({place, 0}, Rope(QString(indentation + u'\n')));
    moveCaret(place + indentation.size());
    resetPending();
}

void VimEngine::toggleCaseUnderCaret(qsizetype count)
{
    const TextRange range = charactersFrom(caret(), count);
    if (!range.isEmpty()) {
        const QString flipped = withFlippedCase(m_view.text().slice(range));
        edit(range, Rope(flipped));
        moveCaret(range.location + flipped.size());
    }
    resetPending();
}

void VimEngine::joinLines(qsizetype count)
{
    if (const auto step = LineEditing::joined(m_view.text(), caret(), count); step && edit(step->edits)) {
        moveCaret(step->after.caret);
    }
    resetPending();
}

void VimEngine::replaceCharacter(QStringView key, qsizetype count)
{
    const TextRange range = charactersFrom(caret(), count);
    if (range.isEmpty() || key == QChar(VimKey::backspace)) {
        resetPending();
        return;
    }
    if (key == QChar(u'\r')) {
        // However many characters go, one line break comes.
        edit(range, Rope(u"\n"));
        moveCaret(range.location + 1);
    } else {
        qsizetype characters = 0;
        for (qsizetype place = range.location; place < range.end(); place = TextBoundaries::nextGrapheme(m_view.text(), place)) {
            ++characters;
        }
        edit(range, repeatedText(Rope(key), characters));
        moveCaret(range.location + characters * key.size() - 1);
    }
    resetPending();
}

void VimEngine::paste(Side side, qsizetype count)
{
    const VimRegisterContents contents = m_registers.contents(m_pendingRegister);
    if (!contents.text.isEmpty() && mayInsert(contents.text.length(), count)) {
        Rope text = repeatedText(contents.text, count);
        VimBuffer before = buffer();
        if (contents.isLinewise) {
            if (!endsWithBreak(text)) {
                text.replace({text.length(), 0}, u"\n");
            }
            const TextRange line = before.lineRange(caret());
            const qsizetype place = side == Side::after ? line.end() : line.location;
            edit({place, 0}, text);
            moveCaret(buffer().firstNonBlank(place));
        } else {
            const qsizetype place = side == Side::after ? charactersFrom(caret(), 1).end() : caret();
            edit({place, 0}, text);
            moveCaret(place + text.length() - 1);
        }
    }
    resetPending();
}

void VimEngine::repeatLastChange()
{
    resetPending();
    if (m_isReplaying || !m_lastChange) {
        return;
    }
    m_isReplaying = true;
    m_view.beginUndoGroup();
    const Change change = *m_lastChange;
    if (change.extent) {
        selectAgain(*change.extent);
    }
    for (qsizetype place = 0; place < change.keys.size();) {
        const qsizetype length = change.keys[place].isHighSurrogate() && place + 1 < change.keys.size() ? 2 : 1;
        handleNormal(QStringView(change.keys).sliced(place, length));
        place += length;
    }
    if (m_mode == Mode::insert) {
        if (change.insertedText && !change.insertedText->isEmpty()) {
            m_view.insertText(*change.insertedText);
        }
        leaveToNormal();
    }
    // Where the keys come to nothing, they leave nothing that waits.
    resetPending();
    m_view.endUndoGroup();
    m_isReplaying = false;
}

VimEngine::Extent VimEngine::selectedExtent() const
{
    const Rope &text = m_view.text();
    const TextRange selected = m_view.selectedRange();
    const qsizetype first = text.lineAt(selected.location);
    const qsizetype last = text.lineAt(std::max(selected.end() - 1, selected.location));
    return {.mode = m_mode, .lines = last - first + 1, .units = selected.end() - std::max(selected.location, text.lineStart(last))};
}

/// As much from the caret on, as far as there is so much.
void VimEngine::selectAgain(const Extent &extent)
{
    VimBuffer text = buffer();
    const qsizetype place = caret();
    const qsizetype start = extent.lines > 1 ? text.line(place, extent.lines - 1).value_or(text.lastLineStart()) : place;
    m_visualAnchor = place;
    setMode(extent.mode);
    updateVisualSelection(std::max(std::min(start + extent.units, text.lineContentEnd(start)) - 1, start));
}

void VimEngine::copySelection()
{
    if (isVisual()) {
        m_view.perform(Actions::copy);
        leaveToNormal();
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
