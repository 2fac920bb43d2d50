// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Insert and replace mode as Vim has them.

#include "Vim/VimExact.h"

#include "Text/LineEditing.h"
#include "Text/TextBoundaries.h"
#include "Vim/VimKeys.h"

#include <QScopedValueRollback>

#include <array>

using namespace Qt::StringLiterals;

namespace {

bool isMove(char16_t key)
{
    return key == VimKey::left || key == VimKey::right || key == VimKey::up || key == VimKey::down || key == VimKey::home ||
           key == VimKey::end || key == VimKey::pageUp || key == VimKey::pageDown;
}

/// Keys of a script that are no text.
constexpr char16_t deleteLetterKey = 0x08;
/// What follows is put into the text whatever it is.
constexpr char16_t literalKey = 0x16;

/// A key that types itself.
bool isText(QChar key)
{
    return key >= u' ' && key != QChar(VimKey::backspace) && (key < QChar(VimKeys::alt) || key > QChar(VimKey::pageDown));
}

bool isText(const QString &script)
{
    return std::ranges::all_of(script, [](QChar key) { return isText(key); });
}

/// `part`, which begins with a break, in place of `range`. At the start of a line it says so that the line stays where it is, with its
/// marks, rather than goes below a new one.
TextEdits parting(const VimLines &lines, TextRange range, const QString &part)
{
    const qsizetype place = range.location;
    if (!range.isEmpty() || place != lines.start(place)) {
        return TextEdits(range, part);
    }
    if (lines.isEmpty(place)) {
        const qsizetype next = lines.next(place);
        return next > place ? TextEdits({next, 0}, part.sliced(1) + u'\n') : TextEdits(range, part);
    }
    const TextRange first = TextRange::between(place, lines.after(place));
    return TextEdits(first, part + lines.text().toString(first));
}

} // namespace

void VimEngine::Inserting::begin()
{
    if (m_engine.m_mode == Mode::insert) {
        return;
    }
    if (!m_exact.repeating.isReplaying()) {
        m_exact.repeating.remember();
    }
    m_engine.setMode(Mode::insert);
    m_engine.resumeInsertSession();
    m_script.clear();
    m_completing.reset();
    m_replaced.clear();
    m_opened.reset();
    m_count = 1;
    m_kind = Kind::insert;
    m_hasGivenIndentation = false;
    m_nextIndentation.reset();
    m_comesBack = false;
    m_isAnew = false;
    m_isFirstKey = true;
}

void VimEngine::Inserting::startTyping()
{
    if (std::exchange(m_isFirstKey, false) && m_kind != Kind::block) {
        m_exact.changing.keepLine(caret());
    }
    if (std::exchange(m_isAnew, false)) {
        m_exact.repeating.rememberInsertion();
        m_script.clear();
        m_start = caret();
    }
}

void VimEngine::Inserting::enter(qsizetype place, qsizetype count, Kind kind)
{
    if (m_engine.m_mode != Mode::insert) {
        const qsizetype at = std::clamp<qsizetype>(place, 0, text().length());
        m_engine.m_view.select({at, 0}, at); // where undoing it leads back to
    }
    begin();
    m_count = count;
    m_kind = kind;
    if (kind == Kind::replace) {
        m_engine.m_view.setCaretLook(VimCaret::underline);
    }
    setCaret(place);
    m_start = caret();
    m_exact.marks.set(u'[', m_start);
    m_engine.resetPending();
}

void VimEngine::Inserting::append(qsizetype count)
{
    const qsizetype place = see().lines.after(caret());
    enter(place, count);
}

void VimEngine::Inserting::enterAtFirst(qsizetype count)
{
    const qsizetype place = [&] {
        const Sight sight = see();
        const qsizetype first = sight.lines.firstNonBlank(caret());
        return sight.lines.isBlankFrom(first) ? sight.lines.end(first) : first;
    }();
    enter(place, count);
}

void VimEngine::Inserting::enterAtStart(qsizetype count)
{
    const qsizetype place = see().lines.start(caret());
    enter(place, count);
}

void VimEngine::Inserting::enterAtEnd(qsizetype count)
{
    const qsizetype place = see().lines.end(caret());
    enter(place, count);
}

void VimEngine::Inserting::enterWhereLeft(qsizetype count)
{
    const qsizetype place = std::min(m_exact.marks.place(u'^').value_or(caret()), text().length());
    if (m_engine.m_pendingOperator || m_engine.isVisual()) {
        setCaret(place); // and no further
        fail();
        return;
    }
    enter(place, count);
    m_exact.repeating.rememberKeys(u"i"_s);
}

/// As wide as that of the line, in what the text is indented with.
QString VimEngine::Inserting::indentationFor(qsizetype place) const
{
    const Sight sight = see();
    const QString blanks = LineEditing::leadingBlanks(text(), place);
    return m_exact.operating.blanks(sight.lines.cells(sight.lines.start(place) + blanks.size()).first);
}

void VimEngine::Inserting::openLine(Side side, qsizetype count)
{
    const qsizetype from = caret();
    begin();
    m_opened = side;
    m_count = count;
    const Sight sight = see();
    const QString indentation = indentationFor(sight.lines.start(from));
    const qsizetype place = side == Side::after ? sight.lines.next(from) : sight.lines.start(from);
    // A text without a break at its end goes on without one.
    const bool isBehindAll = side == Side::after && place == sight.lines.end(from);
    edit({place, 0}, isBehindAll ? u'\n' + indentation : indentation + u'\n');
    m_exact.changing.forgetLine();
    const qsizetype line = place + (isBehindAll ? 1 : 0);
    m_exact.marks.set(u'[', line);
    m_exact.changing.noteChange(line);
    setCaret(line + indentation.size());
    m_start = caret();
    m_hasGivenIndentation = true;
    m_engine.resetPending();
}

// Keys

bool VimEngine::Inserting::handle(const VimKeyEvent &event)
{
    const QString &key = event.charactersIgnoringModifiers;
    const char16_t unit = key.isEmpty() ? 0 : key.front().unicode();
    if (m_engine.m_awaiting && !key.isEmpty()) {
        const Awaited awaited = *std::exchange(m_engine.m_awaiting, std::nullopt);
        if (awaited.digraph) {
            takeDigraph(event, *awaited.digraph);
        } else if (awaited.what == Awaiting::literal) {
            takeLiteral(event);
        } else if (event.control && (unit == u'r' || unit == u'o' || unit == u'p')) {
            m_engine.m_awaiting = awaited;
            m_engine.m_awaiting->isExact = true;
        } else {
            insertRegister(unit, awaited.isExact ? Inserted::asIs : Inserted::asTyped);
        }
        return true;
    }
    if (m_completing && takeCompletionKey(event)) {
        return true;
    }
    if (event.control) {
        return key.size() == 1 && m_engine.takeKey(KeyPlace::whileInserting, unit);
    }
    if (isMove(unit)) {
        move(unit);
        return true;
    }
    if (unit == VimKey::backspace) {
        deleteBefore(VimDeletion::letter, deleteLetterKey);
        return true;
    }
    if (unit == VimKey::forwardDelete) {
        deleteBehind();
        return true;
    }
    if (unit == u'\r') {
        newLine();
        return true;
    }
    if (event.characters.isEmpty()) {
        return false;
    }
    breakBeforeWidth(event.characters);
    if (m_kind == Kind::replace) {
        overwrite(event.characters);
        return true;
    }
    noteTyped(event.characters);
    return false;
}

void VimEngine::Inserting::takeLiteral(const VimKeyEvent &event)
{
    const VimLiteral::Taken taken = m_literal.take(event);
    if (taken.goesOn) {
        awaitLiteral();
        return;
    }
    putLiteral(taken.text);
    if (taken.leavesKey && !m_engine.handleKey(event) && !event.characters.isEmpty()) {
        m_engine.m_view.insertText(event.characters);
    }
}

void VimEngine::Inserting::takeDigraph(const VimKeyEvent &event, VimDigraph digraph)
{
    if (const auto typed = digraph.take(VimKeys::text(event))) {
        putLiteral(*typed);
    } else {
        m_engine.m_awaiting = Awaited{.what = Awaiting::literal, .digraph = digraph};
    }
}

void VimEngine::Inserting::putLiteral(const QString &text)
{
    if (text.isEmpty()) {
        return;
    }
    const bool isCommand = text.size() == 1 && (text.front() < u' ' || text.front() == QChar(VimKey::backspace));
    noteTyped(isCommand ? QChar(literalKey) + text : text);
    put(text);
}

/// What was noted already.
void VimEngine::Inserting::put(const QString &text)
{
    if (m_kind == Kind::replace) {
        const bool isRepeating = std::exchange(m_isRepeating, true);
        overwrite(text);
        m_isRepeating = isRepeating;
    } else {
        m_engine.m_view.putText(text);
    }
}

/// As many blanks as lead to the next tab stop, where the text is indented with blanks.
void VimEngine::Inserting::insertTab()
{
    QString blanks = u"\t"_s;
    if (const Indentation indentation = m_engine.m_view.indentation(); indentation.unit == Indentation::Unit::spaces) {
        const Sight sight = see();
        blanks = QString(indentation.tabWidth() - sight.lines.cells(caret()).first % indentation.tabWidth(), u' ');
    }
    noteTyped(u"\t"_s);
    if (m_kind != Kind::replace) {
        put(blanks);
        return;
    }
    // It takes the place of one character, however wide it is.
    put(blanks.first(1));
    if (blanks.size() > 1) {
        const qsizetype place = caret();
        m_replaced.insert(m_replaced.end(), size_t(blanks.size() - 1), QString());
        edit({place, 0}, blanks.sliced(1));
        setCaret(place + blanks.size() - 1);
    }
}

void VimEngine::Inserting::noteTyped(const QString &text)
{
    startTyping();
    if (!m_isRepeating) {
        m_script += text;
    }
    m_hasGivenIndentation = false;
}

void VimEngine::Inserting::overwrite(const QString &typed)
{
    const Sight sight = see();
    const qsizetype place = caret();
    const qsizetype end = sight.lines.isAtEnd(place) ? place : sight.lines.after(place);
    m_replaced.push_back(text().toString(TextRange::between(place, end)));
    noteTyped(typed);
    edit(TextRange::between(place, end), typed);
    setCaret(place + typed.size());
}

void VimEngine::Inserting::newLine()
{
    gatherBlock();
    const Sight sight = see();
    const qsizetype place = caret();
    const qsizetype line = sight.lines.start(place);
    qsizetype first = line;
    while (first < place && isSpaceOrTab(sight.lines.at(first))) {
        ++first;
    }
    const bool isGivenAway = std::exchange(m_hasGivenIndentation, false) && first >= place;
    noteTyped(u"\r"_s);
    if (m_kind == Kind::replace) {
        m_replaced.emplace_back();
    }
    const QString before = LineEditing::leadingBlanks(text(), line);
    const qsizetype cells = sight.lines.cells(std::min(line + before.size(), place)).first;
    const QString indentation = std::exchange(m_nextIndentation, std::nullopt).value_or(m_exact.operating.blanks(cells));
    qsizetype end = place;
    while (!sight.lines.isAtEnd(end) && isSpaceOrTab(sight.lines.at(end))) {
        ++end; // the indentation stands for them
    }
    const qsizetype from = isGivenAway ? line : place;
    edit(parting(sight.lines, TextRange::between(from, end), u'\n' + indentation));
    m_exact.changing.noteChange(from);
    m_exact.changing.forgetLine();
    setCaret(from + 1 + indentation.size());
    m_hasGivenIndentation = true;
}

void VimEngine::Inserting::move(char16_t key)
{
    struct Row {
        char16_t key;
        VimExactMotion::Motion motion;
    };
    static constexpr Row rows[] = {
        {VimKey::up, VimExactMotion::up}, {VimKey::down, VimExactMotion::down}, {VimKey::home, VimExactMotion::lineStart}};
    const bool leavesLine = key == VimKey::up || key == VimKey::down;
    std::optional<qsizetype> cell;
    {
        const Sight sight = see();
        const qsizetype place = caret();
        cell = leavesLine && m_hasGivenIndentation ? std::optional(sight.lines.cells(place).first) : std::nullopt;
        const bool isStuck = (key == VimKey::left && place == sight.lines.start(place)) ||
                             (key == VimKey::right && sight.lines.isAtEnd(place)) || (key == VimKey::up && sight.lines.isFirst(place)) ||
                             (key == VimKey::down && sight.lines.isLast(place));
        if (isStuck) {
            return;
        }
    }
    gatherBlock();
    if (leavesLine) {
        dropGivenIndentation();
    }
    if (const qsizetype at = caret(); m_exact.restoreLastBreak(!m_script.isEmpty())) {
        setCaret(at);
    }
    m_engine.pauseInsertSession();
    finishReplay();
    m_isAnew = true;
    m_isFirstKey = true;
    m_script.clear();
    m_replaced.clear();
    m_count = 1;
    m_opened.reset();
    m_hasGivenIndentation = false;
    {
        const Sight sight = see();
        qsizetype place = caret();
        std::optional<qsizetype> column;
        if (key == VimKey::left) {
            place = sight.lines.before(place);
        } else if (key == VimKey::right) {
            place = sight.lines.after(place);
        } else if (key == VimKey::end) {
            place = sight.lines.end(place);
            column = VimLines::endless;
        } else if (const auto *row = std::ranges::find(rows, key, &Row::key); row != std::end(rows)) {
            VimExactMotion::Request wanted = request(sight);
            wanted.purpose = VimExactMotion::For::selection; // it may stand behind a line
            wanted.column = cell ? cell : wanted.column.value_or(sight.lines.cells(place).first);
            if (const auto result = row->motion(wanted); !result.failed) {
                place = result.place;
                column = result.column;
            }
        }
        setCaret(place, column);
    }
    m_start = caret();
    m_exact.marks.set(u'[', m_start);
    m_engine.resumeInsertSession();
}

void VimEngine::Inserting::insertRegister(char16_t name, Inserted how)
{
    const VimRegisterContents contents = m_exact.contents(name);
    if (contents.text.isEmpty() || !m_engine.mayInsert(contents.text.length(), 1)) {
        return;
    }
    const QString inserted = contents.text.toString();
    // What was deleted last is put there, which takes the place of nothing and leaves the indentation that goes with Escape.
    const bool isPut = name == u'-';
    const bool hasGivenIndentation = m_hasGivenIndentation;
    const auto isKey = [how](QChar unit) { return how == Inserted::asTyped && unit != u'\n' && unit != u'\t' && !isText(unit); };
    for (qsizetype from = 0; from < inserted.size();) {
        qsizetype end = from;
        while (end < inserted.size() && inserted[end] != u'\n' && inserted[end] != u'\t' && !isKey(inserted[end])) {
            ++end;
        }
        if (end > from) {
            const QString stretch = inserted.sliced(from, end - from);
            noteTyped(stretch);
            m_hasGivenIndentation = isPut && hasGivenIndentation;
            if (m_kind == Kind::replace && !isPut) {
                for (qsizetype at = 0; at < stretch.size();) {
                    const qsizetype next = TextBoundaries::nextGrapheme(Rope(stretch), at);
                    put(stretch.sliced(at, next - at));
                    at = next;
                }
            } else {
                m_engine.m_view.putText(stretch);
            }
        }
        if (end < inserted.size() && isKey(inserted[end])) {
            m_exact.repeating.runNext(inserted.sliced(end));
            return;
        }
        if (end < inserted.size()) {
            inserted[end] == u'\n' ? newLine() : insertTab();
        }
        from = end + 1;
    }
}

void VimEngine::Inserting::insertLast(bool leaves)
{
    const QString last = m_lastInserted;
    play(last);
    if (leaves) {
        leave();
    }
}

void VimEngine::Inserting::insertNeighbour(qsizetype by)
{
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    const qsizetype place = caret();
    if (by < 0 ? lines.isFirst(place) : lines.isLast(place)) {
        return;
    }
    const qsizetype line = lines.startNear(place, by);
    const qsizetype other = lines.placeAt(line, lines.cells(place).first);
    if (lines.isAtEnd(other)) {
        return;
    }
    putLiteral(QString::fromUcs4(std::array{lines.codePoint(other)}.data(), 1)); // without what combines with it
}

/// Behind "0" or "^" that was just typed, the key that takes indentation takes all of it, and that character.
bool VimEngine::Inserting::dropsIndentation(qsizetype place) const
{
    const QChar last = place > m_start ? QChar(text().at(place - 1)) : QChar();
    return m_kind == Kind::insert && (last == u'0' || last == u'^') && (m_isRepeating || m_script.endsWith(last));
}

void VimEngine::Inserting::shiftLine(OperatorKind kind, char16_t key)
{
    gatherBlock();
    startTyping();
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    const qsizetype place = caret();
    const qsizetype line = lines.start(place);
    const QString before = LineEditing::leadingBlanks(text(), line);
    if (kind == OperatorKind::outdent && dropsIndentation(place)) {
        m_nextIndentation = text().at(place - 1) == u'^' ? std::optional(before) : std::nullopt;
        m_script += m_isRepeating ? QString() : QString(QChar(key));
        TextEdits edits;
        if (!before.isEmpty()) {
            edits.add({line, before.size()}, Rope());
        }
        edits.add({place - 1, 1}, Rope());
        edit(edits);
        setCaret(place - 1 - before.size());
        return;
    }
    const int width = m_engine.m_view.indentation().width;
    const qsizetype cells = lines.cells(line + before.size()).first;
    const qsizetype cellBefore = lines.cells(place).first;
    // To the next or previous level.
    const qsizetype levels = kind == OperatorKind::indent ? cells / width + 1 : (cells + width - 1) / width - 1;
    const QString after = m_exact.operating.blanks(std::max<qsizetype>(levels, 0) * width);
    if (!m_isRepeating) {
        m_script += QChar(key);
    }
    if (before == after) {
        return;
    }
    if (m_start <= line + before.size()) {
        m_exact.marks.set(u'[', line);
    }
    edit({line, before.size()}, after);
    if (place >= line + before.size()) {
        setCaret(std::max(place + after.size() - before.size(), line));
        return;
    }
    // Within the blanks it goes as far as what follows them.
    const qsizetype cell = std::max<qsizetype>(cellBefore + std::max<qsizetype>(levels, 0) * width - cells, 0);
    const Sight now = see();
    setCaret(std::min(now.lines.placeAt(line, cell), line + after.size()));
}

void VimEngine::Inserting::oneCommand()
{
    const qsizetype place = dropGivenIndentation();
    bool isBehind = false;
    qsizetype cell = 0;
    {
        const Sight sight = see();
        isBehind = sight.lines.isAtEnd(place);
        cell = sight.lines.cells(place).first;
    }
    const Kind kind = m_kind == Kind::replace ? Kind::replace : Kind::insert;
    m_count = 1;
    leave();
    setCaret(place, isBehind ? std::optional(cell) : std::nullopt);
    m_comesBack = true;
    m_returnsBehind = isBehind ? std::optional(text().lineAt(place)) : std::nullopt;
    m_returnsTo = kind;
}

void VimEngine::Inserting::comeBack()
{
    if (!m_comesBack || m_engine.m_mode != Mode::normal || m_engine.m_pendingOperator || m_engine.m_awaiting || m_engine.hasCount()) {
        return;
    }
    m_comesBack = false;
    const Sight sight = see();
    const qsizetype place = caret();
    const bool isLast = place == sight.lines.last(place) && !sight.lines.isEmpty(place);
    const auto column = m_exact.columnPlace == place ? m_exact.column : std::nullopt;
    const bool wasBehind = m_returnsBehind == text().lineAt(place);
    const bool wantsMore = m_exact.column && m_exact.columnPlace == place && *m_exact.column > sight.lines.cells(place).last;
    const QString keys = m_exact.repeating.hold();
    enter((wasBehind || wantsMore) && isLast ? sight.lines.end(place) : place, 1, m_returnsTo);
    m_exact.column = column;
    m_exact.repeating.release(keys);
    m_isAnew = true;
}

void VimEngine::Inserting::awaitLiteral()
{
    m_engine.m_awaiting = Awaited{.what = Awaiting::literal};
}

void VimEngine::Inserting::awaitDigraph()
{
    m_engine.m_awaiting = Awaited{.what = Awaiting::literal, .digraph = VimDigraph()};
}

/// Before `next` comes behind a line that is as wide as it may be, its last word goes to a line of its own.
void VimEngine::Inserting::breakBeforeWidth(const QString &next)
{
    const int width = m_engine.m_options.textWidth;
    if (width <= 0 || m_kind != Kind::insert || next.isEmpty() || next.front().isSpace()) {
        return;
    }
    const Sight sight = see();
    const VimLines &lines = sight.lines;
    const qsizetype place = caret();
    const qsizetype line = lines.start(place);
    // So far behind its start nobody counts cells for each letter.
    constexpr qsizetype farther = 1 << 16;
    if (place - line < farther && lines.cells(place).first < width) {
        return;
    }
    const QString indentation = indentationFor(line);
    std::optional<TextRange> blanks;
    for (qsizetype at = line + indentation.size(); at < place; ++at) {
        if (!isSpaceOrTab(lines.at(at))) {
            continue;
        }
        const qsizetype start = at;
        while (at < place && isSpaceOrTab(lines.at(at))) {
            ++at;
        }
        if (blanks && lines.cells(start).first > width) {
            break;
        }
        blanks = TextRange::between(start, at);
    }
    if (blanks && blanks->location > line + indentation.size()) {
        edit(*blanks, u'\n' + indentation);
        setCaret(place - blanks->length + 1 + indentation.size());
    }
}

// The end

void VimEngine::Inserting::play(const QString &script)
{
    for (qsizetype place = 0; place < script.size();) {
        if (script[place] == QChar(literalKey) && place + 1 < script.size()) {
            putLiteral(script.sliced(place + 1, 1));
            place += 2;
            continue;
        }
        if (script[place] == u'\t') {
            insertTab();
            ++place;
            continue;
        }
        const VimKeyEvent event = VimKeys::next(script, place);
        if (!handle(event)) {
            m_engine.m_view.insertText(event.characters);
        }
    }
}

void VimEngine::Inserting::finishReplay()
{
    if (m_isAnew) {
        return;
    }
    m_exact.repeating.rememberScript(m_script);
    m_lastInserted = m_script;
}

/// Indentation that nothing was typed behind; where the caret is then.
qsizetype VimEngine::Inserting::dropGivenIndentation()
{
    const qsizetype place = caret();
    qsizetype line = 0;
    TextRange blanks;
    {
        const Sight sight = see();
        line = sight.lines.start(place);
        blanks = TextRange::between(line, sight.lines.end(line));
        if (!std::exchange(m_hasGivenIndentation, false) || place == line || !sight.lines.isBlankFrom(line)) {
            return place;
        }
    }
    edit(blanks, {});
    setCaret(line);
    return line;
}

VimEngine::Inserting::End VimEngine::Inserting::endAtGivenIndentation()
{
    const qsizetype before = caret();
    if (!m_hasGivenIndentation) {
        return {.place = before};
    }
    const qsizetype cell = see().lines.cells(before).first;
    const qsizetype place = dropGivenIndentation();
    return place < before ? End{.place = place, .column = cell} : End{.place = endBehindGiven(see().lines, place)};
}

qsizetype VimEngine::Inserting::endBehindGiven(const VimLines &lines, qsizetype place)
{
    const qsizetype behind = lines.after(place);
    const bool isAscii = lines.at(place) < 0x80; // others are several bytes, of which the first is not the last
    return lines.isAtEnd(behind) && !lines.isBlankFrom(place) && isAscii ? behind : place;
}

void VimEngine::Inserting::leave()
{
    if (m_engine.m_mode != Mode::insert) {
        return;
    }
    endCompletion();
    const QString script = m_script;
    m_isRepeating = true;
    if (m_kind == Kind::replace) {
        for (qsizetype left = m_count - 1; left > 0 && !script.isEmpty() && m_engine.mayInsert(script.size(), m_count); --left) {
            play(script);
        }
    } else if (m_count > 1 && !script.isEmpty() && !m_opened && m_kind != Kind::replace && isText(script) &&
               m_engine.mayInsert(script.size(), m_count)) {
        m_engine.m_view.putText(script.repeated(m_count - 1));
        m_exact.changing.noteChange(TextBoundaries::previousGrapheme(text(), caret()));
    } else if (m_count > 1 && (m_opened || !script.isEmpty()) && m_engine.mayInsert(script.size() + 1, m_count)) {
        for (qsizetype left = m_count - 1; left > 0; --left) {
            if (m_opened) {
                newLine();
            }
            play(script);
        }
    }
    m_isRepeating = false;
    finishReplay();
    if (const qsizetype at = caret(); m_exact.restoreLastBreak(!script.isEmpty())) {
        setCaret(at);
    }
    const qsizetype typedUpTo = caret();
    const bool endsElsewhere = m_block && leaveBlock() && m_block->endsAt;
    if (m_block) {
        const qsizetype place = endsElsewhere ? std::min(*m_block->endsAt, m_start) : caret();
        m_engine.m_view.select({place, 0}, place);
    }
    const auto [place, column] = endAtGivenIndentation();
    m_exact.marks.set(u'^', endsElsewhere ? typedUpTo : place);
    if (!m_block) {
        m_exact.marks.set(u']', place);
    }
    m_engine.m_changedBuffer = false;
    m_engine.pauseInsertSession();
    m_script.clear();
    m_replaced.clear();
    m_block.reset();
    m_kind = Kind::insert;
    m_opened.reset();
    m_count = 1;
    const Sight sight = see();
    m_engine.setMode(Mode::normal);
    setCaret(endsElsewhere || place == sight.lines.start(place) ? place : sight.lines.before(place), column);
    m_exact.marks.arrive(caret());
}
