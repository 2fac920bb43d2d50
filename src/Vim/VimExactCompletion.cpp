// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Ctrl+N and Ctrl+P in insert mode.

#include "Vim/VimExact.h"

#include "Text/TextBoundaries.h"

#include <QScopedValueRollback>

namespace {

/// Of a script: Backspace.
constexpr char16_t deleteLetterKey = 0x08;

qsizetype charactersOf(const QString &text)
{
    const Rope rope(text);
    qsizetype count = 0;
    for (qsizetype at = 0; at < rope.length(); at = TextBoundaries::nextGrapheme(rope, at)) {
        ++count;
    }
    return count;
}

/// Characters that both begin with.
qsizetype commonStart(const QString &one, const QString &other)
{
    const auto difference = std::ranges::mismatch(one, other);
    return TextBoundaries::snapped(Rope(one), difference.in1 - one.begin());
}

} // namespace

void VimEngine::Inserting::complete(VimWordCompletion::Direction direction)
{
    const bool goesOn = m_completing && caret() == m_completing->words.start() + m_completing->shown.size() &&
                        text().toString(TextRange::between(m_completing->words.start(), caret())) == m_completing->shown;
    if (!goesOn) {
        const VimWordCompletion words({text(), caret(), m_engine.m_options.ignoresCase}, m_engine.m_view.otherTexts(), direction);
        m_completing = Completing{words, words.typed()};
    }
    if (m_completing->words.isEmpty()) {
        m_completing.reset();
        m_engine.m_view.beep();
        return;
    }
    m_completing->words.step(direction);
    putCompletion(m_completing->words.chosen());
    showCompletion();
}

bool VimEngine::Inserting::takeCompletionKey(const VimKeyEvent &event)
{
    using enum VimWordCompletion::Direction;
    const QString &key = event.charactersIgnoringModifiers;
    const char16_t unit = key.size() == 1 ? key.front().unicode() : 0;
    if (event.control && (unit == u'n' || unit == u'p')) {
        return false;
    }
    if (event.control && (unit == u'e' || unit == u'y')) {
        putCompletion(unit == u'e' ? m_completing->words.typed() : m_completing->words.chosen());
        endCompletion();
        return true;
    }
    if (!event.control && (unit == VimKey::up || unit == VimKey::down)) {
        m_completing->words.step(unit == VimKey::down ? forward : backward);
        m_completing->isOnlyShown = true;
        showCompletion();
        return true;
    }
    const bool takesShown = !event.control && unit == u'\r' && m_completing->isOnlyShown;
    if (takesShown) {
        putCompletion(m_completing->words.chosen());
    }
    endCompletion();
    return takesShown;
}

void VimEngine::Inserting::endCompletion()
{
    if (std::exchange(m_completing, std::nullopt)) {
        m_engine.m_view.showOffer(std::nullopt);
    }
}

/// In place of what stands there, as if it had been typed.
void VimEngine::Inserting::putCompletion(const QString &word)
{
    const QString before = std::exchange(m_completing->shown, word);
    m_completing->isOnlyShown = false;
    const qsizetype kept = commonStart(before, word);
    const QString removed = before.sliced(kept);
    const QString added = word.sliced(kept);
    if (!m_isRepeating) {
        if (m_script.endsWith(removed)) {
            m_script.chop(removed.size());
        } else {
            m_script += QString(charactersOf(removed), QChar(deleteLetterKey));
        }
        m_script += added;
    }
    m_hasGivenIndentation = false;
    const QScopedValueRollback repeating(m_isRepeating, true);
    if (m_kind == Kind::insert) {
        const qsizetype from = caret() - removed.size();
        if (!removed.isEmpty() || !added.isEmpty()) {
            edit({from, removed.size()}, added);
        }
        m_start = std::min(m_start, from);
        setCaret(from + added.size());
        return;
    }
    for (qsizetype left = charactersOf(removed); left > 0; --left) {
        deleteBefore(VimDeletion::letter, deleteLetterKey);
    }
    const Rope rope(added);
    for (qsizetype at = 0; at < added.size();) {
        const qsizetype next = TextBoundaries::nextGrapheme(rope, at);
        put(added.sliced(at, next - at));
        at = next;
    }
}

/// One alone needs no list, nor do keys that nobody types.
void VimEngine::Inserting::showCompletion()
{
    const VimWordCompletion &words = m_completing->words;
    const QStringList listed = words.listed();
    if (listed.size() < 2 || m_exact.repeating.isRunning()) {
        return;
    }
    const qsizetype row = words.chosenRow();
    m_engine.m_view.showOffer(VimOffer{words.start(), listed, row < 0 ? std::nullopt : std::optional(row)});
}
