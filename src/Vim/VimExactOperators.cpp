// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What Vim's operators and commands do to the text.

#include "Vim/VimExact.h"

#include "Text/TextBoundaries.h"
#include "Vim/VimExactObject.h"
#include "Vim/VimNumber.h"
#include "Vim/VimParts.h"

using namespace Qt::StringLiterals;
using VimMotion::Kind;

namespace {

bool isUpper(const QString &character)
{
    return character != character.toLower();
}

QString withFlippedLetters(const QString &text)
{
    QString flipped;
    for (qsizetype place = 0; place < text.size();) {
        const qsizetype length = text[place].isHighSurrogate() && place + 1 < text.size() ? 2 : 1;
        const QString character = text.sliced(place, length);
        flipped += isUpper(character) ? character.toLower() : character.toUpper();
        place += length;
    }
    return flipped;
}

QString rotated(QString text)
{
    for (QChar &unit : text) {
        const char16_t lower = unit.unicode() | 0x20;
        if (unit.unicode() < 0x80 && lower >= u'a' && lower <= u'z') {
            unit = QChar(char16_t(unit.unicode() + (lower < u'n' ? 13 : -13)));
        }
    }
    return text;
}

/// Nothing but blanks before `place` in its line.
bool isInIndentation(const VimLines &lines, qsizetype place)
{
    qsizetype at = lines.start(place);
    while (at < place && isSpaceOrTab(lines.at(at))) {
        ++at;
    }
    return at >= place;
}

/// The same for other operators.
QString withLetters(const QString &text, VimEngine::OperatorKind kind)
{
    switch (kind) {
    case VimEngine::OperatorKind::lowercase:
        return text.toLower();
    case VimEngine::OperatorKind::uppercase:
        return text.toUpper();
    case VimEngine::OperatorKind::toggleCase:
        return withFlippedLetters(text);
    case VimEngine::OperatorKind::rotate:
        return rotated(text);
    default:
        return text;
    }
}

bool changesLetters(VimEngine::OperatorKind kind)
{
    using enum VimEngine::OperatorKind;
    return kind == uppercase || kind == lowercase || kind == toggleCase || kind == rotate;
}

bool fillsLines(VimEngine::OperatorKind kind)
{
    return kind == VimEngine::OperatorKind::format || kind == VimEngine::OperatorKind::formatInPlace;
}

} // namespace

// With a motion

void VimEngine::Operating::force(Mode mode)
{
    m_forced = mode;
}

void VimEngine::Operating::arrive(const VimExactMotion::Result &result)
{
    const auto forced = std::exchange(m_forced, std::nullopt);
    if (result.failed) {
        if (result.goesNonetheless) {
            setCaret(result.place, result.column);
        }
        fail();
        return;
    }
    if (result.isJump) {
        m_exact.going.rememberJump();
    }
    if (!m_engine.m_pendingOperator) {
        setCaret(result.place, result.column);
        finish();
        return;
    }
    const OperatorKind kind = *m_engine.m_pendingOperator;
    const Sight sight = see();
    const Stretch stretch = stretchTo(sight.lines, caret(), result);
    if (forced == Mode::visualBlock) {
        const VimBlock block = VimBlock::between(sight.lines, stretch.low, stretch.high, false);
        m_exact.selecting.setSelected({Mode::visualBlock, {caret()}, {result.place}, false});
        applyToBlock(kind, block);
        return;
    }
    apply(kind, regionOf(sight.lines, kind, stretch, result, forced));
}

/// What the operator takes.
VimEngine::Operating::Region VimEngine::Operating::regionOf(const VimLines &lines, OperatorKind kind, const Stretch &stretch,
                                                            const VimExactMotion::Result &motion, std::optional<Mode> forced)
{
    auto [low, high, isInclusive] = stretch;
    bool isLinewise = motion.kind == Kind::linewise;
    if (forced == Mode::visualLine) {
        isLinewise = true;
    } else if (forced == Mode::visual) {
        isInclusive = !isLinewise && !isInclusive;
        isLinewise = false;
    }
    const bool endsBelow = !motion.takesBreak && !isLinewise && !isInclusive && high > low && high == lines.start(high);
    if (endsBelow) {
        // Up to the start of a line is up to the end of the one before, and whole lines if it began with one.
        const qsizetype last = lines.start(high - 1);
        isLinewise = isInIndentation(lines, low);
        high = isLinewise ? last : lines.end(last);
    }
    if (isLinewise || fillsLines(kind)) {
        Region whole = Region::ofLines(lines, low, high, low);
        whole.endsBelow = endsBelow;
        return whole;
    }
    qsizetype end = isInclusive && !lines.isAtEnd(high) ? lines.after(high) : high;
    if (changesLetters(kind) && !isInclusive && high == lines.start(low)) {
        // A motion that leads nowhere from the start of a line has all of it, but one character of the first line.
        end = lines.isFirst(high) ? lines.after(high) : lines.end(high);
    }
    if (kind == OperatorKind::remove && !forced && lines.start(low) != lines.start(high) && lines.isBlankFrom(end) &&
        isInIndentation(lines, low)) {
        return Region::ofLines(lines, low, high, low);
    }
    const bool isOfLines = lines.start(low) != lines.start(std::max(low, end > low ? end - 1 : end)) || isBreak(lines.at(end - 1));
    return {.range = TextRange::between(low, end),
            .start = low,
            .isOfLines = isOfLines && end > low,
            .isLarge = motion.isLarge,
            .isInclusive = isInclusive,
            .markEnd = isInclusive || (endsBelow && end > low) ? std::nullopt : std::optional(high)};
}

/// What lies between the caret and where a motion leads.
VimEngine::Operating::Stretch VimEngine::Operating::stretchTo(const VimLines &lines, qsizetype caret, const VimExactMotion::Result &motion)
{
    Stretch stretch{std::min(caret, motion.place), std::max(caret, motion.place), motion.kind == Kind::inclusive};
    const qsizetype line = lines.start(stretch.high);
    const qsizetype behind = stretch.isInclusive ? lines.after(stretch.high) : stretch.high;
    if (motion.isWordMotion && line != lines.start(stretch.low) && isInIndentation(lines, behind)) {
        // The last word's line is the last one.
        qsizetype before = line - 1;
        while (lines.start(before) > stretch.low && !lines.isEmpty(before) && lines.isBlankFrom(lines.start(before))) {
            before = lines.start(before) - 1;
        }
        stretch.isInclusive = !lines.isEmpty(before);
        stretch.high = stretch.isInclusive ? lines.last(before) : stretch.high;
    }
    return stretch;
}

void VimEngine::Operating::applyOver(const QString &command)
{
    const auto kind = m_engine.m_pendingOperator;
    const auto name = m_engine.m_pendingRegister;
    const auto forced = m_forced;
    const qsizetype line = see().lines.number(caret());
    const qsizetype column = caret() - see().lines.start(caret());
    const QString keys = m_exact.repeating.hold() + command + u'\r';
    m_engine.resetPending();
    const bool isDone = m_exact.commanding.run(command);
    const qsizetype to = caret();
    m_engine.m_pendingOperator = kind;
    m_engine.m_pendingRegister = name;
    m_forced = forced;
    m_exact.repeating.release(keys);
    const Sight sight = see();
    const qsizetype from = sight.lines.startOf(line) + column;
    if (!isDone || line > sight.lines.count() || from > sight.lines.endOf(line)) {
        fail(); // where the caret was there is nothing any more
        return;
    }
    m_engine.m_view.select({from, 0}, from);
    arrive({.place = to});
}

void VimEngine::Operating::takeObject(VimTextObject::Extent extent, char16_t key)
{
    m_exact.going.rememberObject(key);
    const Sight sight = see();
    const auto object = VimExactObject::range(
        {.lines = sight.lines, .caret = caret(), .count = m_engine.effectiveCount(), .extent = extent, .anchor = caret()}, key);
    if (!object || object->failed) {
        m_forced.reset();
        setCaret(object ? object->place : caret());
        fail();
        return;
    }
    m_objectCaret = caret();
    m_engine.m_view.select({object->from, 0}, object->from);
    arrive({.place = object->place, .kind = object->kind});
}

void VimEngine::Operating::applyLines(OperatorKind kind, qsizetype count)
{
    m_forced.reset();
    const Sight sight = see();
    const qsizetype from = caret();
    if (count > 1 && sight.lines.isLast(from)) {
        fail();
        return;
    }
    const qsizetype last = sight.lines.startNear(from, count - 1);
    const bool isInLine = last == sight.lines.start(from);
    const qsizetype start = kind == OperatorKind::yank || !isInLine ? from : std::min(from, sight.lines.firstNonBlank(from));
    apply(kind, Region::ofLines(sight.lines, from, last, start));
}

// Operators

VimEngine::Operating::Region VimEngine::Operating::Region::ofLines(const VimLines &lines, qsizetype first, qsizetype last, qsizetype start)
{
    return {.range = lines.lines(first, last),
            .span = Span::lines,
            .start = start,
            .isOfLines = true,
            .takesOpenLine = lines.isOpenLine(std::max(first, last))};
}

void VimEngine::Operating::keep(const VimRegisterContents &contents, VimRegisters::Taken taken)
{
    m_exact.keep(contents, m_engine.m_pendingRegister, taken);
}

void VimEngine::Operating::keepRange(const Region &region, VimRegisters::Taken taken)
{
    Rope kept = text().slice(region.range);
    const bool isOfLines = region.span == Span::lines;
    if (isOfLines && (!endsWithBreak(kept) || region.takesOpenLine)) {
        kept.replace({kept.length(), 0}, u"\n");
    }
    keep({.text = kept, .isLinewise = isOfLines}, taken);
}

void VimEngine::Operating::apply(OperatorKind kind, const Region &region)
{
    if (kind == OperatorKind::filter) {
        m_exact.commanding.refuseProgram(u"!"_s);
        return;
    }
    const qsizetype place = placeBefore(kind, region);
    m_engine.m_view.select({place, 0}, place); // where undoing it leads back to
    const bool comesToNothing = kind == OperatorKind::remove && (text().isEmpty() || (region.range.isEmpty() && region.isInclusive));
    const bool takesBreak = region.span == Span::characters && (kind == OperatorKind::change || kind == OperatorKind::remove);
    const qsizetype behind = region.range.end() - (takesBreak || region.range.isEmpty() ? 0 : 1);
    const bool isInLine = text().lineAt(region.range.location) == text().lineAt(behind);
    const bool isCut = kind == OperatorKind::remove && region.span == Span::lines;
    if (kind != OperatorKind::yank && !comesToNothing) {
        m_exact.changing.beginChange(caret(), isInLine && !isCut ? Changing::Reach::line : Changing::Reach::lines,
                                     fillsLines(kind) ? std::nullopt : std::optional(region.range));
    }
    if (kind != OperatorKind::remove || !region.range.isEmpty()) {
        m_exact.changing.setChangeMarks(fillsLines(kind) ? region.start : region.range.location,
                                        std::max(region.range.end() - 1, region.range.location));
    }
    switch (kind) {
    case OperatorKind::change:
        change(region);
        return;
    case OperatorKind::remove:
        remove(region);
        break;
    case OperatorKind::yank:
        yank(region);
        return;
    case OperatorKind::indent:
    case OperatorKind::outdent:
        shift(region, kind);
        break;
    case OperatorKind::lowercase:
    case OperatorKind::uppercase:
    case OperatorKind::toggleCase:
    case OperatorKind::rotate:
        changeCase(region, kind);
        break;
    case OperatorKind::toggleComment:
        m_engine.m_editing->changeComments(region.range);
        break;
    case OperatorKind::format:
    case OperatorKind::formatInPlace:
        format(region, kind == OperatorKind::formatInPlace);
        break;
    case OperatorKind::filter:
        break;
    }
    finish(Repeatable::yes);
}

/// Where undoing leads back to: of several lines that are changed the second one, as the others go first.
qsizetype VimEngine::Operating::placeBefore(OperatorKind kind, const Region &region) const
{
    if (fillsLines(kind)) {
        return m_objectCaret.value_or(caret());
    }
    if (kind != OperatorKind::change || region.span != Span::lines) {
        return region.start;
    }
    const Sight sight = see();
    const qsizetype second = sight.lines.next(region.range.location);
    return second < region.range.end() ? placeAtByte(sight.lines, second, byteColumn(sight.lines, region.start).value_or(0)) : region.start;
}

void VimEngine::Operating::yank(const Region &region)
{
    keepRange(region, VimRegisters::Taken::yanked);
    if (region.markEnd) {
        m_exact.changing.setChangeMarks(region.range.location, std::max(*region.markEnd, region.range.location));
    }
    setCaret(region.start);
    finish();
}

void VimEngine::Operating::remove(const Region &region)
{
    using enum VimRegisters::Taken;
    const bool hasNoLine = text().isEmpty() && !m_exact.hasEmptyLine();
    if (hasNoLine || (region.range.isEmpty() && region.span == Span::characters)) {
        setCaret(region.range.location);
        return;
    }
    keepRange(region, region.isOfLines ? removedLines : region.isLarge ? removedFar : removedPart);
    if (region.span == Span::characters) {
        edit(region.range, {});
        m_exact.changing.setChangeMarks(region.range.location, region.range.location);
        if (region.isOfLines) {
            m_exact.changing.noteLineBelow(region.range.location);
        }
        setCaret(region.range.location);
        return;
    }
    TextRange range = region.range;
    bool leavesOpenLine = false;
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        leavesOpenLine = lines.isOpenLine(lines.lastStart()) && !region.takesOpenLine;
        range = region.takesOpenLine && range.location > 0 ? TextRange::between(lines.end(range.location - 1), range.end())
                                                           : lines.removable(range);
    }
    edit(range, {});
    m_exact.changing.forgetLine();
    m_exact.setHasEmptyLine(leavesOpenLine);
    const Sight sight = see();
    // There need be no such line any more.
    const qsizetype line = std::min(region.range.location, text().length());
    const qsizetype end = std::max(sight.lines.end(line), line);
    const qsizetype place = std::min(line + std::max<qsizetype>(region.start - region.range.location, 0), end);
    m_exact.changing.setChangeMarks(place, place);
    m_exact.changing.noteChange(line);
    setCaret(sight.lines.firstNonBlank(std::min(line, sight.lines.lastStart())));
}

void VimEngine::Operating::change(const Region &region)
{
    using enum VimRegisters::Taken;
    TextRange range = region.range;
    m_exact.inserting.begin();
    bool isGiven = false;
    TextEdits edits;
    const bool hasLine = !text().isEmpty() || m_exact.hasEmptyLine();
    if (region.span == Span::lines) {
        if (hasLine) {
            keepRange(region, removedLines);
        }
        const Sight sight = see();
        if (sight.lines.start(range.location) != sight.lines.start(std::max(range.end() - 1, range.location))) {
            m_exact.changing.forgetLine();
        }
        qsizetype from = range.location;
        const qsizetype first = sight.lines.end(from);
        while (from < first && isSpaceOrTab(sight.lines.at(from))) {
            ++from;
        }
        isGiven = from > range.location;
        // The first line is emptied, the others are deleted.
        const TextRange emptied = TextRange::between(from, first);
        const TextRange others = sight.lines.removable(TextRange::between(sight.lines.next(first), range.end()));
        if (range.end() > sight.lines.next(first) && others.location > first && !region.takesOpenLine) {
            edits.add(emptied, Rope());
            edits.add(others, Rope());
            range = emptied;
        } else {
            const qsizetype last = region.takesOpenLine ? range.end() : std::max(range.end() - 1, range.location);
            range = TextRange::between(from, sight.lines.end(last));
        }
    } else if (hasLine && (!range.isEmpty() || region.isInclusive)) {
        keepRange(region, region.isOfLines ? removedLines : region.isLarge ? removedFar : removedPart);
    }
    if (edits.isEmpty() && !range.isEmpty()) {
        edits.add(range, Rope());
    }
    edit(edits);
    if (region.span == Span::characters && region.isOfLines) {
        m_exact.changing.noteLineBelow(range.location);
    }
    m_exact.inserting.enter(range.location);
    m_exact.inserting.noteIndentation(isGiven);
}

QString VimEngine::Operating::blanks(qsizetype cells) const
{
    return VimFormatting::blanks(0, cells, m_engine.m_view.indentation());
}

void VimEngine::Operating::changeCase(const Region &region, OperatorKind kind)
{
    const TextRange range = region.range;
    const auto edits = computed(range, [range, kind](const VimLines &lines) {
        // The last line apart, so that places in it keep their columns.
        const qsizetype last = std::max(lines.start(range.end()), range.location);
        TextEdits all;
        for (const TextRange part : {TextRange::between(range.location, last), TextRange::between(last, range.end())}) {
            const Rope before = lines.text().slice(part);
            const Rope after(withLetters(before.toString(), kind));
            for (const TextEdit &change : TextEdits::difference(before, after).movedBy(part.location)) {
                all.add(change.range, change.text);
            }
        }
        return all;
    });
    if (edits && !edits->isEmpty()) {
        edit(*edits);
        m_exact.changing.noteChange(range.location);
    }
    const Sight sight = see();
    const qsizetype last = std::max(range.end() - 1, range.location);
    // Nothing at the start of a line ends behind the line before.
    const bool isEmpty = region.markEnd == range.location && last > 0 && sight.lines.start(last) == last;
    m_exact.changing.setChangeMarks(range.location, region.span == Span::lines ? sight.lines.last(last) : isEmpty ? last - 1 : last);
    setCaret(region.start);
}

namespace {

bool fillsRegister(VimEngine::OperatorKind kind)
{
    using enum VimEngine::OperatorKind;
    return kind == remove || kind == change || kind == yank;
}

/// What an operator makes of a rectangle.
struct BlockChange {
    TextEdits edits;
    /// What is typed in place of it goes there, in the text after them.
    std::vector<qsizetype> places;
    /// By how much the rows above have moved the last one.
    qsizetype shiftOfLast = 0;
};

BlockChange changeOf(VimEngine::OperatorKind kind, const Rope &text, const std::vector<VimBlock::Row> &rows)
{
    using enum VimEngine::OperatorKind;
    BlockChange made;
    for (const VimBlock::Row &row : rows) {
        made.shiftOfLast = made.edits.growth();
        if (row.isShort || (row.range.isEmpty() && kind != change)) {
            continue;
        }
        const bool isEmptied = kind == remove || kind == change;
        if (isEmptied) {
            made.places.push_back(row.range.location + row.cellsBefore + made.edits.growth());
        }
        const QString before = text.toString(row.range);
        const QString now = isEmptied ? QString(row.cellsBefore + row.cellsBehind, u' ') : withLetters(before, kind);
        if (now != before) {
            made.edits.add(row.range, Rope(now));
        }
    }
    return made;
}

} // namespace

void VimEngine::Operating::keepBlock(OperatorKind kind, const VimBlock &block, const VimLines &lines, bool isOfOneLine)
{
    using enum VimRegisters::Taken;
    keep({.text = Rope(block.text(lines).join(u'\n')),
          .isBlock = true,
          .blockWidth = block.goesToEnds() ? block.widthToEnds(lines) : block.width()},
         kind == OperatorKind::yank ? yanked
         : isOfOneLine              ? removedPart
                                    : removedLines);
}

void VimEngine::Operating::applyToBlock(OperatorKind kind, const VimBlock &block)
{
    const bool isRemoved = kind == OperatorKind::remove;
    BlockChange made;
    qsizetype start = 0;
    qsizetype last = 0;
    qsizetype below = 0;
    qsizetype cellsLeft = 0; // before it, of a tab in the first line
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        const std::vector<VimBlock::Row> rows = block.rows(lines);
        start = rows.front().range.location;
        cellsLeft = isRemoved && !rows.front().isShort ? rows.front().cellsBefore : 0;
        below = qsizetype(rows.size()) - 1;
        last = isRemoved ? rows.back().range.location : rows.back().range.end() - (rows.back().range.isEmpty() ? 0 : 1);
        const bool isNothing = isRemoved ? text().isEmpty() || (below == 0 && lines.isEmpty(start))
                                         : kind == OperatorKind::change && text().isEmpty() && !m_exact.hasEmptyLine();
        if (fillsRegister(kind) && !isNothing) {
            keepBlock(kind, block, lines, below == 0);
        }
        if (kind != OperatorKind::yank) {
            made = changeOf(kind, text(), rows);
        }
    }
    if (kind != OperatorKind::yank) {
        m_engine.m_view.select({start, 0}, start); // where undoing it leads back to
        if (!isRemoved || !made.edits.isEmpty()) {
            m_exact.changing.beginChange(start,
                                         text().lineAt(start) == text().lineAt(last) ? Changing::Reach::line : Changing::Reach::lines,
                                         TextRange::between(start, last));
        }
    }
    if (kind == OperatorKind::change) {
        m_exact.inserting.begin();
        edit(made.edits);
        const std::vector<qsizetype> places = made.places.empty() ? std::vector{start} : std::move(made.places);
        m_exact.changing.keepLine(places.front());
        m_exact.inserting.enterBlock({.places = places});
        return;
    }
    edit(made.edits);
    if (isRemoved) {
        // In the column of the first line.
        const Sight sight = see();
        const qsizetype line = sight.lines.startNear(start, below);
        m_exact.changing.setChangeMarks(start, std::min(line + start - sight.lines.start(start), sight.lines.end(line)));
    } else {
        m_exact.changing.setChangeMarks(start, last + made.shiftOfLast);
    }
    if (!made.edits.isEmpty()) {
        isRemoved ? m_exact.changing.noteChange(see().lines.settled(start + cellsLeft)) : m_exact.changing.noteLine(start);
    }
    if (kind == OperatorKind::indent || kind == OperatorKind::outdent) {
        shiftBlock(kind, block);
        m_exact.changing.noteLine(start);
        const Sight sight = see();
        m_exact.changing.setChangeMarks(start, sight.lines.last(sight.lines.startNear(start, below)));
    }
    setCaret(start + cellsLeft);
    finish(kind == OperatorKind::yank ? Repeatable::no : Repeatable::yes);
}

/// At the rectangle's left side, where blanks on both sides of it are written anew.
void VimEngine::Operating::shiftBlock(OperatorKind kind, const VimBlock &block)
{
    TextEdits shifts;
    const Indentation indentation = m_engine.m_view.indentation();
    const qsizetype by = indentation.width * m_engine.effectiveCount();
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        for (const VimBlock::Row &row : block.rows(lines)) {
            if (row.isShort || (row.range.isEmpty() && lines.isEmpty(row.line))) {
                continue;
            }
            qsizetype from = row.range.location;
            qsizetype behind = from;
            while (!lines.isAtEnd(behind) && isSpaceOrTab(lines.at(behind))) {
                ++behind;
            }
            const qsizetype text = lines.cells(behind).first;
            if (kind == OperatorKind::indent) {
                while (from > row.line && isSpaceOrTab(lines.at(from - 1))) {
                    --from;
                }
                const qsizetype cell = lines.cells(from).first;
                shifts.add(TextRange::between(from, behind), Rope(VimFormatting::blanks(cell, text + by, indentation)));
            } else if (const qsizetype target = text - std::min(by, text - block.left); target < text) {
                qsizetype cell = lines.cells(from).first;
                while (from < behind && cell + lines.width(from, cell) <= target) {
                    cell += lines.width(from, cell);
                    from = lines.after(from);
                }
                shifts.add(TextRange::between(from, behind), Rope(QString(std::max<qsizetype>(target - cell, 0), u' ')));
            }
        }
    }
    edit(shifts);
}

// Commands

void VimEngine::Operating::deleteCharacters(Side side, qsizetype count)
{
    TextRange range;
    {
        const Sight sight = see();
        const qsizetype place = caret();
        range = side == Side::after ? TextRange::between(place, sight.lines.after(place, count))
                                    : TextRange::between(sight.lines.before(place, count), place);
    }
    if (range.isEmpty()) {
        if (!text().isEmpty()) {
            m_exact.changing.beginChange(caret());
        }
        setCaret(caret());
        finish(Repeatable::yes); // as "dl" and "dh" do
        return;
    }
    apply(OperatorKind::remove, {.range = range, .start = range.location});
}

void VimEngine::Operating::substituteCharacters(qsizetype count)
{
    const TextRange range = TextRange::between(caret(), see().lines.after(caret(), count));
    apply(OperatorKind::change, {.range = range, .start = range.location});
}

void VimEngine::Operating::toRestOfLine(OperatorKind kind, qsizetype count)
{
    TextRange range;
    bool isOfLines = false;
    {
        const Sight sight = see();
        const qsizetype place = caret();
        if (count > 1 && sight.lines.isLast(place)) {
            m_exact.column = VimLines::endless; // of "$", which it stands for
            fail();
            return;
        }
        const qsizetype line = sight.lines.startNear(place, count - 1);
        range = TextRange::between(place, sight.lines.end(line));
        isOfLines = line > place;
        if (isOfLines && kind == OperatorKind::remove && isInIndentation(sight.lines, place)) {
            apply(kind, Region::ofLines(sight.lines, place, line, place));
            return;
        }
    }
    apply(kind, {.range = range, .start = range.location, .isOfLines = isOfLines, .isInclusive = true});
}

void VimEngine::Operating::toggleCase(qsizetype count)
{
    const qsizetype place = caret();
    const TextRange range = TextRange::between(place, see().lines.after(place, count));
    if (range.isEmpty()) {
        fail();
        return;
    }
    m_exact.changing.beginChange(place);
    const QString before = text().toString(range);
    const QString flipped = withFlippedLetters(before);
    if (flipped != before) {
        edit(range, flipped);
    }
    setCaret(place + flipped.size());
    if (flipped != before) {
        m_exact.changing.setChangeMarks(place, see().lines.before(caret()));
    }
    finish(Repeatable::yes);
}

void VimEngine::Operating::replaceCharacter(QStringView key, qsizetype count)
{
    if (key == QChar(VimKey::backspace) || key == QChar(VimKey::escape)) {
        fail();
        return;
    }
    const qsizetype place = caret();
    TextRange range;
    {
        const Sight sight = see();
        range = TextRange::between(place, sight.lines.after(place, count));
        qsizetype characters = 0;
        for (qsizetype at = place; at < range.end(); at = sight.lines.after(at)) {
            ++characters;
        }
        if (characters < count || !m_engine.mayInsert(key.size(), count)) {
            fail();
            return;
        }
    }
    if (key == QChar(u'\r')) {
        replaceByBreak(range);
        return;
    }
    edit(range, key.toString().repeated(count));
    m_exact.changing.noteChange(place + (count - 1) * key.size());
    m_exact.changing.setChangeMarks(place, place + (count - 1) * key.size());
    m_exact.inserting.setLastInserted(key.toString());
    setCaret(place + (count - 1) * key.size());
    finish(Repeatable::yes);
}

/// As if it was typed, and insert mode left.
void VimEngine::Operating::replaceByBreak(TextRange range)
{
    const qsizetype place = range.location;
    qsizetype behind = range.end();
    qsizetype cells = 0;
    bool hasRest = false;
    {
        const Sight sight = see();
        const VimLines &lines = sight.lines;
        cells = lines.cells(std::min(lines.firstNonBlank(place), place)).first;
        // The indentation stands for the blanks that the rest begins with, if there is a rest.
        while (!lines.isAtEnd(behind) && isSpaceOrTab(lines.at(behind))) {
            ++behind;
        }
        hasRest = !lines.isAtEnd(behind);
    }
    const QString indentation = hasRest ? blanks(cells) : QString();
    edit(TextRange::between(place, behind), u'\n' + indentation);
    m_exact.changing.forgetLine();
    const qsizetype given = place + 1 + indentation.size();
    const qsizetype left = Inserting::endBehindGiven(see().lines, given);
    m_exact.changing.setChangeMarks(place, left);
    if (!hasRest && cells > 0) {
        m_exact.changing.noteChange(given); // indentation went again
    }
    m_exact.marks.set(u'^', left);
    m_exact.inserting.setLastInserted(u"\r"_s);
    setCaret(left - (left > place + 1 ? 1 : 0), hasRest ? std::nullopt : std::optional(cells));
    finish(Repeatable::yes);
}

// Numbers

void VimEngine::Operating::add(qint64 by)
{
    m_exact.changing.beginChange(caret());
    std::optional<VimNumber> number;
    {
        const Sight sight = see();
        number = VimNumber::added(sight.lines, caret(), sight.lines.end(caret()), false, by);
    }
    if (!number) {
        if (!m_exact.repeating.isReplaying()) {
            m_exact.repeating.remember();
        }
        fail();
        return;
    }
    edit(number->range, number->text);
    m_exact.changing.setChangeMarks(number->range.location, number->range.location + number->text.size() - 1);
    m_exact.changing.noteLine(number->range.location);
    setCaret(number->range.location + number->text.size() - 1);
    finish(Repeatable::yes);
}
