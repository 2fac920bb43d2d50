// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimCommandLine.h"

#include "Text/TextBoundaries.h"
#include "Vim/VimBuffer.h"
#include "Vim/VimCompletion.h"
#include "Vim/VimHistory.h"
#include "Vim/VimKeys.h"
#include "Vim/VimMotion.h"
#include "Vim/VimRegisters.h"
#include "Vim/VimTextObject.h"

#include <algorithm>
#include <array>

namespace {

/// Nobody reads more in one line; what comes in from elsewhere is cut there.
constexpr qsizetype longest = 0x10000;

QString cut(const Rope &text, TextRange range)
{
    return text.toString({range.location, std::min(range.length, longest)});
}

/// What is at the caret, or behind it in its line.
QString objectAt(const Rope &text, qsizetype caret, char16_t object)
{
    VimBuffer buffer(text);
    const qsizetype end = buffer.lineContentEnd(caret);
    using enum VimBuffer::CharacterClass;
    const auto isSought = [&](qsizetype place) {
        const auto kind = buffer.characterClass(place);
        return object == u'w' ? kind == word : kind != blank;
    };
    qsizetype place = std::min(caret, end);
    while (place < end && !isSought(place)) {
        ++place;
    }
    const auto found = place < end ? VimTextObject::range(buffer, place, object, VimTextObject::Extent::inner, 1) : std::nullopt;
    return found ? cut(text, found->range) : QString();
}

QString lineAt(const Rope &text, qsizetype caret)
{
    VimBuffer buffer(text);
    const qsizetype start = buffer.lineStart(caret);
    return cut(text, TextRange::between(start, std::max(start, buffer.lineContentEnd(caret))));
}

} // namespace

/// A key, and who has it.
struct VimCommandLine::KeyRow {
    enum class Chord { plain, withControl, withShift };
    enum class Audience { everyone, usual, exact };

    Chord chord;
    char16_t key;
    Outcome (VimCommandLine::*function)(const Surroundings &around);
    Audience audience = Audience::everyone;

    [[nodiscard]] bool isKey(Chord pressed, char16_t typed, bool isExact) const
    {
        return chord == pressed && key == typed && (audience == Audience::everyone || (audience == Audience::exact) == isExact);
    }

    static const std::array<KeyRow, 38> all;
};

using Line = VimCommandLine;

const std::array<VimCommandLine::KeyRow, 38> VimCommandLine::KeyRow::all = {{
    {Chord::plain, VimKey::backspace, &Line::deleteLetter},
    {Chord::withControl, u'c', &Line::leave},
    {Chord::withControl, u'h', &Line::deleteLetter},
    {Chord::withControl, u'w', &Line::deleteWord},
    {Chord::withControl, u'u', &Line::deleteToStart},
    {Chord::withControl, u'r', &Line::awaitRegister},
    {Chord::withControl, u'v', &Line::paste, Audience::usual},
    {Chord::withControl, u'v', &Line::awaitLiteral, Audience::exact},
    {Chord::withControl, u'q', &Line::awaitLiteral, Audience::exact},
    {Chord::withControl, u'k', &Line::awaitDigraph, Audience::exact},
    {Chord::withControl, u'j', &Line::enter, Audience::exact},
    {Chord::withControl, u'm', &Line::enter, Audience::exact},
    {Chord::withControl, u'b', &Line::goToStart, Audience::exact},
    {Chord::withControl, u'd', &Line::listNames, Audience::exact},
    {Chord::withControl, u'e', &Line::takeBack, Audience::exact},
    {Chord::withControl, u'y', &Line::accept, Audience::exact},
    {Chord::withControl, u'p', &Line::recallOlder, Audience::exact},
    {Chord::withControl, u'n', &Line::recallNewer, Audience::exact},
    {Chord::withControl, u'i', &Line::completeNext, Audience::exact},
    {Chord::withControl, u'g', &Line::showNextHit, Audience::exact},
    {Chord::withControl, u't', &Line::showPreviousHit, Audience::exact},
    {Chord::withControl, VimKey::left, &Line::goWordLeft, Audience::exact},
    {Chord::withControl, VimKey::right, &Line::goWordRight, Audience::exact},
    {Chord::withShift, VimKey::left, &Line::goWordLeft, Audience::exact},
    {Chord::withShift, VimKey::right, &Line::goWordRight, Audience::exact},
    {Chord::withShift, VimKey::up, &Line::recallOlder, Audience::exact},
    {Chord::withShift, VimKey::down, &Line::recallNewer, Audience::exact},
    {Chord::plain, VimKey::backtab, &Line::completePrevious, Audience::exact},
    {Chord::plain, VimKey::forwardDelete, &Line::deleteNextLetter, Audience::exact},
    {Chord::plain, VimKey::left, &Line::goLeft, Audience::exact},
    {Chord::plain, VimKey::right, &Line::goRight, Audience::exact},
    {Chord::plain, VimKey::home, &Line::goToStart, Audience::exact},
    {Chord::plain, VimKey::end, &Line::goToEnd, Audience::exact},
    {Chord::plain, VimKey::up, &Line::recallOlderAlike, Audience::exact},
    {Chord::plain, VimKey::down, &Line::recallNewerAlike, Audience::exact},
    {Chord::plain, VimKey::pageUp, &Line::recallOlder, Audience::exact},
    {Chord::plain, VimKey::pageDown, &Line::recallNewer, Audience::exact},
    {Chord::plain, u'\t', &Line::completeNext, Audience::exact},
}};

void VimCommandLine::begin(char16_t prefix, const QString &text)
{
    *this = {};
    m_prefix = prefix;
    show(text);
}

VimCommandLine::Outcome VimCommandLine::handle(const VimKeyEvent &event, const Surroundings &around)
{
    const char16_t key = event.charactersIgnoringModifiers.isEmpty() ? 0 : event.charactersIgnoringModifiers.front().unicode();
    m_fileQuestion.reset();
    if (m_awaited != Awaited::nothing) {
        return takeAwaited(event, key, around);
    }
    const auto rowOf = [&](KeyRow::Chord chord) {
        const auto row = std::ranges::find_if(KeyRow::all, [&](const KeyRow &known) { return known.isKey(chord, key, around.isExact); });
        return row == KeyRow::all.end() ? nullptr : &*row;
    };
    using enum KeyRow::Chord;
    const KeyRow *row = rowOf(event.control ? withControl : event.shift ? withShift : plain);
    // Shift makes no difference to most.
    if (row || (event.shift && !event.control && (row = rowOf(plain)))) {
        return (this->*row->function)(around);
    }
    if (event.control) {
        return Outcome::goesOn;
    }
    if (event.characters == QChar(u'\r') || event.characters == QChar(u'\n')) {
        return Outcome::isEntered;
    }
    putText(event.characters);
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::takeAwaited(const VimKeyEvent &event, char16_t key, const Surroundings &around)
{
    struct CaretRow {
        char16_t key;
        QString (*text)(const Rope &text, qsizetype caret);
    };
    static constexpr auto atCaret = std::to_array<CaretRow>({
        {u'w', [](const Rope &text, qsizetype caret) { return objectAt(text, caret, u'w'); }},
        {u'a', [](const Rope &text, qsizetype caret) { return objectAt(text, caret, u'W'); }},
        {u'l', &lineAt},
    });
    const Awaited awaited = std::exchange(m_awaited, Awaited::nothing);
    if (awaited == Awaited::literal) {
        const VimLiteral::Taken taken = m_literal.take(event);
        putText(taken.text);
        m_awaited = taken.goesOn ? awaited : Awaited::nothing;
        if (taken.leavesKey) {
            return key == VimKey::escape || (event.control && key == u'[') ? Outcome::isLeft : handle(event, around);
        }
    } else if (awaited == Awaited::digraph) {
        const auto typed = key == VimKey::escape ? std::optional(QString()) : m_digraph.take(VimKeys::text(event));
        putText(typed.value_or(QString()));
        m_awaited = typed ? Awaited::nothing : awaited;
    } else if (awaited == Awaited::exactRegister && event.control) {
        if (key == u'r' || key == u'o') {
            m_awaited = awaited; // its text comes as it is anyway
        } else if (const auto row = std::ranges::find(atCaret, key, &CaretRow::key); row != atCaret.end()) {
            putText(row->text(around.text, around.caret));
        }
    } else if (awaited == Awaited::registerName || key != VimKey::escape) {
        putRegister(around, key);
    }
    return Outcome::goesOn;
}

// Text

void VimCommandLine::show(const QString &text)
{
    m_text = text;
    m_cursor = text.size();
    m_hitSteps = 0;
}

void VimCommandLine::putText(const QString &text)
{
    if (!text.isEmpty()) {
        m_text.insert(m_cursor, text);
        m_cursor += text.size();
        m_hitSteps = 0;
    }
}

/// As into any field of one line: a break at the end goes, others become blanks.
void VimCommandLine::putLine(QString text)
{
    if (text.endsWith(u'\n')) {
        text.chop(1);
    }
    putText(text.replace(u'\n', u' '));
}

void VimCommandLine::putRegister(const Surroundings &around, char16_t name)
{
    if (const auto derived = around.derived ? around.derived(name) : std::nullopt) {
        putLine(*derived);
        return;
    }
    const Rope text = around.registers.contents(name == u'"' ? std::nullopt : std::optional(name)).text;
    putLine(cut(text, {0, text.length()}));
}

void VimCommandLine::erase(TextRange range)
{
    m_text.remove(range.location, range.length);
    m_cursor = range.location;
    m_hitSteps = 0;
}

/// Behind the prefix there is nothing to delete but the line itself.
VimCommandLine::Outcome VimCommandLine::deleteLetter(const Surroundings & /*around*/)
{
    if (m_text.isEmpty()) {
        return Outcome::isLeft;
    }
    erase(TextRange::between(TextBoundaries::previousGrapheme(Rope(m_text), m_cursor), m_cursor));
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::deleteNextLetter(const Surroundings &around)
{
    if (m_cursor == m_text.size()) {
        return deleteLetter(around);
    }
    erase(TextRange::between(m_cursor, TextBoundaries::nextGrapheme(Rope(m_text), m_cursor)));
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::deleteWord(const Surroundings & /*around*/)
{
    using Class = VimBuffer::CharacterClass;
    qsizetype from = m_cursor;
    const auto classBefore = [&] { return VimBuffer::classOf(m_text[from - 1].unicode()); };
    const auto skip = [&](Class kind) {
        while (from > 0 && classBefore() == kind) {
            --from;
        }
    };
    skip(Class::blank);
    if (from > 0) {
        skip(classBefore());
    }
    erase(TextRange::between(from, m_cursor));
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::deleteToStart(const Surroundings & /*around*/)
{
    erase({0, m_cursor});
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::enter(const Surroundings & /*around*/)
{
    return Outcome::isEntered;
}

VimCommandLine::Outcome VimCommandLine::leave(const Surroundings & /*around*/)
{
    return Outcome::isLeft;
}

VimCommandLine::Outcome VimCommandLine::awaitRegister(const Surroundings &around)
{
    m_awaited = around.isExact ? Awaited::exactRegister : Awaited::registerName;
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::awaitLiteral(const Surroundings & /*around*/)
{
    m_awaited = Awaited::literal;
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::awaitDigraph(const Surroundings & /*around*/)
{
    m_awaited = Awaited::digraph;
    m_digraph = {};
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::paste(const Surroundings &around)
{
    putRegister(around, u'+');
    return Outcome::goesOn;
}

// Cursor

VimCommandLine::Outcome VimCommandLine::goLeft(const Surroundings & /*around*/)
{
    m_cursor = TextBoundaries::previousGrapheme(Rope(m_text), m_cursor);
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::goRight(const Surroundings & /*around*/)
{
    m_cursor = TextBoundaries::nextGrapheme(Rope(m_text), m_cursor);
    return Outcome::goesOn;
}

/// Words are what stands between blanks.
VimCommandLine::Outcome VimCommandLine::goWordLeft(const Surroundings & /*around*/)
{
    while (m_cursor > 0 && m_text[m_cursor - 1] == u' ') {
        --m_cursor;
    }
    while (m_cursor > 0 && m_text[m_cursor - 1] != u' ') {
        --m_cursor;
    }
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::goWordRight(const Surroundings & /*around*/)
{
    while (m_cursor < m_text.size() && m_text[m_cursor] != u' ') {
        ++m_cursor;
    }
    while (m_cursor < m_text.size() && m_text[m_cursor] == u' ') {
        ++m_cursor;
    }
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::goToStart(const Surroundings & /*around*/)
{
    m_cursor = 0;
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::goToEnd(const Surroundings & /*around*/)
{
    m_cursor = m_text.size();
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::showNextHit(const Surroundings & /*around*/)
{
    ++m_hitSteps;
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::showPreviousHit(const Surroundings & /*around*/)
{
    --m_hitSteps;
    return Outcome::goesOn;
}

// History

VimCommandLine::Outcome VimCommandLine::recallOlderAlike(const Surroundings &around)
{
    recall(Direction::backward, Among::alike, around);
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::recallNewerAlike(const Surroundings &around)
{
    recall(Direction::forward, Among::alike, around);
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::recallOlder(const Surroundings &around)
{
    hasSeveralCandidates() ? complete(Direction::backward) : recall(Direction::backward, Among::all, around);
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::recallNewer(const Surroundings &around)
{
    hasSeveralCandidates() ? complete(Direction::forward) : recall(Direction::forward, Among::all, around);
    return Outcome::goesOn;
}

void VimCommandLine::recall(Direction direction, Among among, const Surroundings &around)
{
    if (!around.history) {
        return;
    }
    const bool goesOn = m_recall && m_recall->shown == m_text;
    Recall recall = goesOn ? *m_recall : Recall{.sought = m_text.first(m_cursor)};
    const QStringList &entries = around.history->entries(m_prefix);
    // The latest comes first, and before it what was typed.
    const qsizetype step = direction == Direction::backward ? 1 : -1;
    const qsizetype first = std::min(recall.place, entries.size() - 1);
    for (qsizetype place = first + step; place >= -1 && place < entries.size(); place += step) {
        const QString &entry = place < 0 ? recall.sought : entries[place];
        if (among == Among::all || entry.startsWith(recall.sought)) {
            recall.place = place;
            recall.shown = entry;
            show(entry);
            m_recall = recall;
            return;
        }
    }
}

// Completion

VimCommandLine::Outcome VimCommandLine::completeNext(const Surroundings & /*around*/)
{
    complete(Direction::forward);
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::completePrevious(const Surroundings & /*around*/)
{
    complete(Direction::backward);
    return Outcome::goesOn;
}

VimCommandLine::Outcome VimCommandLine::listNames(const Surroundings & /*around*/)
{
    if (m_prefix == u':' && !hasSeveralCandidates()) {
        complete(Direction::nowhere);
    }
    return Outcome::goesOn;
}

/// While there is no choice it goes to the end.
VimCommandLine::Outcome VimCommandLine::takeBack(const Surroundings &around)
{
    if (!hasSeveralCandidates()) {
        return goToEnd(around);
    }
    choose(m_candidates->names.size() - 1);
    return accept(around);
}

VimCommandLine::Outcome VimCommandLine::accept(const Surroundings & /*around*/)
{
    m_candidates.reset();
    return Outcome::goesOn;
}

std::optional<VimOffer> VimCommandLine::offer() const
{
    if (!hasSeveralCandidates()) {
        return std::nullopt;
    }
    VimOffer offer;
    const qsizetype typed = m_candidates->names.size() - 1;
    for (const QString &name : m_candidates->names.first(typed)) {
        // Of a file without its folders.
        offer.words << name.sliced(name.chopped(1).lastIndexOf(u'/') + 1);
    }
    if (m_candidates->chosen < typed) {
        offer.chosen = m_candidates->chosen;
    }
    return offer;
}

bool VimCommandLine::hasSeveralCandidates() const
{
    return m_candidates && m_candidates->names.size() > 2 && m_candidates->shown == m_text.first(m_cursor);
}

void VimCommandLine::complete(Direction direction)
{
    if (m_prefix != u':') {
        putText(direction == Direction::forward ? QStringLiteral("\t") : QString());
        return;
    }
    if (hasSeveralCandidates()) {
        const qsizetype count = m_candidates->names.size();
        choose((m_candidates->chosen + (direction == Direction::forward ? 1 : count - 1)) % count);
        return;
    }
    const QStringView before = QStringView(m_text).first(m_cursor);
    const VimCompletion::Part part = VimCompletion::partOf(before);
    switch (part.kind) {
    case VimCompletion::Kind::nothing:
        return;
    case VimCompletion::Kind::command:
        offer(part.from, VimCompletion::commands(before.sliced(part.from)), direction);
        return;
    case VimCompletion::Kind::option:
        offer(part.from, VimCompletion::options(before.sliced(part.from)), direction);
        return;
    case VimCompletion::Kind::file:
        m_fileQuestion = FileQuestion{part.from, direction};
        return;
    }
}

std::optional<QString> VimCommandLine::awaitedFiles() const
{
    return m_fileQuestion ? std::optional(m_text.sliced(m_fileQuestion->from, m_cursor - m_fileQuestion->from)) : std::nullopt;
}

void VimCommandLine::takeFiles(const QStringList &names)
{
    if (const auto question = std::exchange(m_fileQuestion, std::nullopt)) {
        offer(question->from, names, question->direction);
    }
}

void VimCommandLine::offer(qsizetype from, QStringList names, Direction direction)
{
    if (names.isEmpty()) {
        return;
    }
    names << m_text.sliced(from, m_cursor - from);
    const qsizetype count = names.size();
    m_candidates = Candidates{.from = from, .names = std::move(names)};
    choose(direction == Direction::forward ? 0 : direction == Direction::backward ? count - 2 : count - 1);
}

void VimCommandLine::choose(qsizetype index)
{
    m_candidates->chosen = index;
    erase(TextRange::between(m_candidates->from, m_cursor));
    putText(m_candidates->names[index]);
    m_candidates->shown = m_text.first(m_cursor);
}
