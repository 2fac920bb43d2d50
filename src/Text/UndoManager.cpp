// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/UndoManager.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::milliseconds longestPause(1000);
constexpr qsizetype unitsPerSelection = sizeof(CaretSelection) / sizeof(char16_t);

/// Behind what was changed, for want of a selection.
std::optional<TextSelection> behind(const TextEdits &inverse)
{
    return inverse.isEmpty() ? std::nullopt : std::optional(TextSelection::at(inverse[inverse.count() - 1].range.end()));
}

} // namespace

UndoManager::UndoManager(TextStorage &storage, Clock clock, QObject *parent)
    : QObject(parent), m_storage(storage), m_clock(std::move(clock))
{
    connect(&m_storage, &TextStorage::changed, this, &UndoManager::record);
    connect(&m_storage, &TextStorage::didProcessEditing, this, &UndoManager::notifyState);
}

UndoManager::~UndoManager() = default;

void UndoManager::beginGroup(GroupKind kind, const Selections &before, const void *view)
{
    if (m_depth++ > 0)
        return;
    m_next = {.kind = kind, .view = view, .before = before, .after = {}, .edits = {}};
}

void UndoManager::endGroup(const Selections &after)
{
    Q_ASSERT(m_depth > 0);
    if (--m_depth > 0)
        return;
    if (m_isOpen)
        closeGroup(after);
    notifyState();
}

void UndoManager::record(const TextChange &change)
{
    if (m_isReplaying)
        return;
    if (m_pauses > 0) {
        m_savePoint = -1;
        forgetAll();
        return;
    }
    TextEdits inverse = change.edits.inverse(change.before);
    const TextSelection after = *behind(inverse);
    if (!m_isOpen)
        openGroup(change);
    lastDone().time = m_clock();
    m_bringsLine = m_bringsLine || std::ranges::any_of(change.edits, [](const TextEdit &edit) { return edit.text.lineCount() > 1; });
    m_steps.add(std::move(inverse));
    if (m_depth == 0)
        closeGroup(after);
}

/// Makes the last group take the changes to come, a new one or, when they go on with it, the one there is.
void UndoManager::openGroup(const TextChange &first)
{
    dropRedo();
    if (m_depth == 0) {
        const TextRange edited = first.edits[0].range;
        m_next = {
            .kind = GroupKind::other, .view = nullptr, .before = TextSelection{edited.location, edited.end()}, .after = {}, .edits = {}};
    }
    m_isOpen = true;
    m_bringsLine = false;
    if (continuesLastGroup(first.edits)) {
        m_steps.add(std::move(lastDone().edits));
    } else {
        m_groups.push_back(m_next);
        m_groups.back().number = ++m_lastNumber;
        ++m_done;
    }
}

/// Each edit begins where one of the group ended, and so for as many carets as there are.
bool UndoManager::continuesLastGroup(const TextEdits &first) const
{
    if (!m_mayCoalesce || m_done == 0)
        return false;
    const Group &group = m_groups[size_t(m_done) - 1];
    if (group.kind != m_next.kind || group.view != m_next.view || m_clock() - group.time >= longestPause)
        return false;
    const auto continues = [kind = group.kind](const TextEdit &next, const TextEdit &inverse) {
        switch (kind) {
        case GroupKind::typing:
            return next.range.location == inverse.range.end();
        case GroupKind::deletingBackward:
            return next.text.isEmpty() && next.range.end() == inverse.range.location;
        case GroupKind::deletingForward:
            return next.text.isEmpty() && next.range.location == inverse.range.location;
        case GroupKind::other:
            break;
        }
        return false;
    };
    return std::ranges::equal(first, group.edits, continues);
}

void UndoManager::closeGroup(const Selections &after)
{
    m_isOpen = false;
    Group &group = lastDone();
    m_mayCoalesce = group.kind != GroupKind::typing || !m_bringsLine;
    group.after = after;
    group.edits = m_steps.take();
    m_units -= group.units;
    group.units = qsizetype(group.before.count() + group.after.count() - 2) * unitsPerSelection;
    for (const TextEdit &edit : group.edits)
        group.units += edit.range.length + edit.text.length();
    m_units += group.units;
    dropOldGroups();
}

std::optional<Selections> UndoManager::undo()
{
    if (!canUndo() || isGrouping())
        return std::nullopt;
    Group &group = lastDone();
    replay(group, m_done - 1);
    return group.before;
}

std::optional<Selections> UndoManager::redo()
{
    if (!canRedo() || isGrouping())
        return std::nullopt;
    Group &group = m_groups[size_t(m_done)];
    replay(group, m_done + 1);
    return group.after;
}

void UndoManager::replay(Group &group, qsizetype done)
{
    m_mayCoalesce = false;
    m_done = done;
    // Halves of pairs that were apart may have met by what is taken back now.
    const TextEdits edits = group.edits.withWholePairs(m_storage.text());
    group.edits = edits.inverse(m_storage.text());
    const QScopedValueRollback replaying(m_isReplaying, true);
    m_storage.apply(edits);
    notifyState();
}

void UndoManager::removeAllActions()
{
    const quint64 current = state(); // the text stays as it is
    forgetAll();
    m_firstState = current;
    notifyState();
}

void UndoManager::forgetAll()
{
    m_savePoint = isAtSavePoint() ? 0 : -1;
    m_firstState = ++m_lastNumber;
    m_groups.clear();
    m_steps.clear();
    m_done = 0;
    m_units = 0;
    m_isOpen = false;
    m_mayCoalesce = false;
}

void UndoManager::markSavePoint()
{
    if (m_isOpen) {
        // What the caller's group still brings is not saved, so it becomes a group behind this one.
        if (const auto place = behind(m_steps.last()))
            m_next.before = *place;
        const Selections after = m_next.before;
        closeGroup(after);
    }
    m_savePoint = m_done;
    m_mayCoalesce = false;
    notifyState();
}

void UndoManager::forgetSavePoint()
{
    m_savePoint = -1;
    notifyState();
}

void UndoManager::setUnitLimit(qsizetype limit)
{
    m_unitLimit = limit;
    dropOldGroups();
    notifyState();
}

void UndoManager::dropRedo()
{
    while (canRedo()) {
        m_units -= m_groups.back().units;
        m_groups.pop_back();
    }
    if (m_savePoint > m_done)
        m_savePoint = -1;
}

void UndoManager::dropOldGroups()
{
    while (m_units > m_unitLimit && m_done > 1) {
        m_units -= m_groups.front().units;
        m_firstState = m_groups.front().number;
        m_groups.pop_front();
        --m_done;
        m_savePoint = std::max<qsizetype>(m_savePoint - 1, -1);
    }
}

void UndoManager::notifyState()
{
    const State state{canUndo(), canRedo(), isAtSavePoint()};
    if (std::exchange(m_lastState, state) != state)
        emit stateChanged();
}
