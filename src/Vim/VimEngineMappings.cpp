// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What mappings make of keys.

#include "Vim/VimExact.h"

#include "Base/Translation.h"

#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

namespace {

/// As often one mapping may lead to another before a key comes of it.
constexpr int deepestMapping = 1000;

VimKeyEvent eventOf(const VimKeyStroke &stroke)
{
    const QString key = QString(QChar(stroke.character));
    return {.characters = stroke.control || stroke.option || VimKey::isNamed(stroke.character) ? QString() : key,
            .charactersIgnoringModifiers = key,
            .control = stroke.control,
            .option = stroke.option};
}

} // namespace

bool VimEngine::takeOutcome(const VimKeymap::Outcome &outcome, const VimKeyEvent &event)
{
    if (const auto *action = std::get_if<VimKeymapAction>(&outcome)) {
        perform(*action);
    } else if (const auto *strokes = std::get_if<VimKeymap::Passthrough>(&outcome)) {
        // Those that waited are keys of mappings, of one unit each.
        std::for_each(strokes->begin(), std::prev(strokes->end()),
                      [this](const VimKeyStroke &earlier) { handleStroke(earlier, QString(QChar(earlier.character))); });
        if (m_mode == Mode::insert) {
            return handleInsert(event);
        }
        handleStroke(strokes->back(), event.charactersIgnoringModifiers);
    } else {
        notify();
    }
    return true;
}

void VimEngine::takeExactly(const VimKeymap::Outcome &outcome)
{
    if (const auto *fed = std::get_if<VimKeymap::Fed>(&outcome)) {
        feed(*fed);
    } else if (const auto *strokes = std::get_if<VimKeymap::Passthrough>(&outcome)) {
        const QScopedValueRollback mapping(m_usesMappings, false);
        handleStrokes(*strokes);
    } else if (const auto *action = std::get_if<VimKeymapAction>(&outcome)) {
        perform(*action);
    }
    notify();
}

VimKeymap::Table VimEngine::table() const
{
    if (m_mode == Mode::insert) {
        return VimKeymap::Table::insert;
    }
    if (m_mode == Mode::commandLine) {
        return VimKeymap::Table::commandLine;
    }
    return isVisual() ? VimKeymap::Table::visual : m_pendingOperator ? VimKeymap::Table::operatorPending : VimKeymap::Table::normal;
}

void VimEngine::handleStrokes(const VimKeymap::Passthrough &strokes)
{
    for (const VimKeyStroke &stroke : strokes) {
        const VimKeyEvent event = eventOf(stroke);
        if (!handleKey(event) && !event.characters.isEmpty()) {
            m_view.insertText(event.characters);
        }
    }
}

void VimEngine::feed(const VimKeymap::Fed &fed)
{
    {
        const QScopedValueRollback mapping(m_usesMappings, false);
        handleStrokes(fed.before);
    }
    if (++m_mappingDepth > deepestMapping) {
        m_delegate.vimEngineSays(*this, localized(u"Stopped: a mapping leads to itself"));
        m_exact->repeating.noteFailure();
    } else if (fed.action) {
        perform(*fed.action);
    } else {
        bool isDone = true;
        m_exact->repeating.beginStep();
        {
            const QScopedValueRollback mapping(m_usesMappings, false);
            isDone = m_exact->repeating.run(fed.keys.first(fed.unmapped));
        }
        if (isDone && m_exact->repeating.run(fed.keys.sliced(fed.unmapped))) {
            handleStrokes(fed.rest);
        }
        m_exact->repeating.endStep();
    }
    --m_mappingDepth;
    notify();
}

void VimEngine::expireMapping()
{
    carryOut([this] {
        if (const auto outcome = m_keymap.expire(table())) {
            takeExactly(*outcome);
        }
        return true;
    });
}

void VimEngine::settleMapping()
{
    carryOut([this] {
        if (m_keymap.awaitsUsers(table())) {
            releaseKeys();
        }
        return true;
    });
}

/// As often as there are keys: what they lead to may wait once more.
void VimEngine::releaseKeys()
{
    for (qsizetype left = m_keymap.waiting(); left > 0 && m_keymap.isWaiting(); --left) {
        takeExactly(m_keymap.release(table()));
    }
}

void VimEngine::perform(const VimKeymapAction &action)
{
    if (action == VimKeymapAction(&VimEngine::toggleCommentFromKeymap) && !isVisual() && hasCount() && !m_pendingOperator) {
        // With a count it is the operator of so many lines.
        for (const QChar key : u"gcc"_s) {
            handleNormal(QStringView(&key, 1));
        }
        return;
    }
    resetPending();
    if (const auto *const *command = std::get_if<const Action *>(&action)) {
        m_view.perform(**command);
    } else {
        (this->*std::get<void (VimEngine::*)()>(action))();
    }
    notify();
}
