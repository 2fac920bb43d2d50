// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/UndoManager.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr std::chrono::milliseconds longestPause(1000);
constexpr size_t mostEdits = 10'000;

/// Widens the stretch that was changed by an edit of the text as it is after that change.
void widen(TextChange &hull, qsizetype position, qsizetype removed, qsizetype inserted)
{
    const qsizetype from = std::min(hull.position, position);
    const qsizetype to = std::max(hull.position + hull.inserted, position + removed);
    hull = {.position = from, .removed = hull.removed + to - from - hull.inserted, .inserted = to - from - removed + inserted};
}

/// Halves of pairs that were apart may have met by the edit that is now taken back; the storage is given such a pair as a whole.
void replaceWholePairs(TextStorage &storage, TextRange range, Rope text)
{
    const Rope &old = storage.text();
    if (old.splitsPair(range.location)) {
        text.replace({0, 0}, old.slice({range.location - 1, 1}));
        range = {range.location - 1, range.length + 1};
    }
    if (old.splitsPair(range.end())) {
        text.replace({text.length(), 0}, old.slice({range.end(), 1}));
        ++range.length;
    }
    storage.replaceCharacters(range, text);
}

} // namespace

UndoManager::UndoManager(TextStorage &storage, Clock clock, QObject *parent)
    : QObject(parent), m_storage(storage), m_clock(std::move(clock))
{
    m_storage.setRecorder(this);
    connect(&m_storage, &TextStorage::changed, this, [this] {
        closeGroupOfBatch();
        tellState();
    });
}

UndoManager::~UndoManager()
{
    m_storage.setRecorder(nullptr);
}

void UndoManager::beginGroup(GroupKind kind, TextSelection before, const void *view)
{
    if (m_depth++ > 0)
        return;
    closeGroupOfBatch();
    m_next.kind = kind;
    m_next.view = view;
    m_next.before = before;
}

void UndoManager::endGroup(TextSelection after)
{
    Q_ASSERT(m_depth > 0);
    if (--m_depth > 0)
        return;
    if (m_opened == Opened::byCaller)
        closeGroup(after);
    tellState();
}

void UndoManager::recordEdit(qsizetype position, const Rope &removed, const Rope &inserted)
{
    if (m_isReplaying)
        return;
    if (m_pauses > 0) {
        m_savePoint = -1;
        removeAllActions();
        return;
    }
    Edit edit{position, removed, inserted};
    if (m_opened == Opened::none)
        openGroup(edit);
    Group &group = m_groups[size_t(m_done) - 1];
    group.time = m_clock();
    if (group.textBefore) {
        widen(group.hull, position, removed.length(), inserted.length());
        return;
    }
    if (group.edits.empty() || !extendEdit(group.edits.back(), edit))
        group.edits.push_back(std::move(edit));
    if (group.edits.size() > mostEdits)
        keepHull(group);
}

/// Makes the last group take the edits to come, a new one or, when they go on with it, the one there is.
void UndoManager::openGroup(const Edit &first)
{
    dropRedo();
    const bool isOfBatch = m_depth == 0;
    if (isOfBatch) {
        m_next.kind = GroupKind::other;
        m_next.view = nullptr;
        m_next.before = {first.position, first.position + first.removed.length()};
    }
    m_opened = isOfBatch ? Opened::byEdit : Opened::byCaller;
    if (!continuesLastGroup(first)) {
        m_groups.push_back(m_next);
        ++m_done;
    }
}

bool UndoManager::continuesLastGroup(const Edit &first) const
{
    if (!m_mayCoalesce || m_done == 0)
        return false;
    const Group &group = m_groups[size_t(m_done) - 1];
    if (group.kind != m_next.kind || group.view != m_next.view || m_clock() - group.time >= longestPause)
        return false;
    const Edit &last = group.edits.back();
    switch (group.kind) {
    case GroupKind::typing:
        return first.removed.isEmpty() && first.position == last.position + last.inserted.length();
    case GroupKind::deletingBackward:
        return first.inserted.isEmpty() && first.position + first.removed.length() == last.position;
    case GroupKind::deletingForward:
        return first.inserted.isEmpty() && first.position == last.position;
    case GroupKind::other:
        break;
    }
    return false;
}

/// Makes one edit of two when the second touches the first; false when it does not.
bool UndoManager::extendEdit(Edit &last, const Edit &next)
{
    const qsizetype lastEnd = last.position + last.inserted.length();
    const qsizetype nextEnd = next.position + next.removed.length();
    if (next.position == lastEnd) {
        last.removed.replace({last.removed.length(), 0}, next.removed);
        last.inserted.replace({last.inserted.length(), 0}, next.inserted);
    } else if (nextEnd == last.position) {
        last.removed.replace({0, 0}, next.removed);
        last.inserted.replace({0, 0}, next.inserted);
        last.position = next.position;
    } else if (next.position >= last.position && nextEnd <= lastEnd) {
        last.inserted.replace({next.position - last.position, next.removed.length()}, next.inserted);
    } else {
        return false;
    }
    return true;
}

/// Goes on with the text before the group instead of its edits; the leaves they did not touch are shared with the document.
void UndoManager::keepHull(Group &group)
{
    const Edit &first = group.edits.front();
    group.hull = {.position = first.position, .removed = first.removed.length(), .inserted = first.inserted.length()};
    std::for_each(std::next(group.edits.begin()), group.edits.end(),
                  [&group](const Edit &edit) { widen(group.hull, edit.position, edit.removed.length(), edit.inserted.length()); });
    Rope text = m_storage.text();
    std::for_each(group.edits.rbegin(), group.edits.rend(), [&text](const Edit &edit) {
        text.replace({edit.position, edit.inserted.length()}, edit.removed);
    });
    group.textBefore = std::move(text);
    group.edits.clear();
    group.edits.shrink_to_fit();
}

void UndoManager::closeGroup(TextSelection after)
{
    m_opened = Opened::none;
    m_mayCoalesce = true;
    Group &group = m_groups[size_t(m_done) - 1];
    group.after = after;
    if (const std::optional<Rope> before = std::exchange(group.textBefore, std::nullopt)) {
        const TextChange &hull = group.hull;
        group.edits.assign(
            1, {hull.position, before->slice({hull.position, hull.removed}), m_storage.text().slice({hull.position, hull.inserted})});
    }
    m_units -= group.units;
    group.units = 0;
    for (const Edit &edit : group.edits)
        group.units += edit.removed.length() + edit.inserted.length();
    m_units += group.units;
    dropOldGroups();
}

void UndoManager::closeGroupOfBatch()
{
    if (m_opened == Opened::byEdit)
        closeGroup(selectionAfterEdits());
}

/// Behind what the open group edited last, for want of a selection.
TextSelection UndoManager::selectionAfterEdits() const
{
    const Group &group = m_groups[size_t(m_done) - 1];
    if (group.textBefore)
        return TextSelection::at(group.hull.position + group.hull.inserted);
    const Edit &last = group.edits.back();
    return TextSelection::at(last.position + last.inserted.length());
}

std::optional<TextSelection> UndoManager::undo()
{
    closeGroupOfBatch();
    if (!canUndo() || isGrouping())
        return std::nullopt;
    // An observer may edit and thereby drop the group.
    const Group group = m_groups[size_t(m_done) - 1];
    replay(
        [&] {
            std::for_each(group.edits.rbegin(), group.edits.rend(), [this](const Edit &edit) {
                replaceWholePairs(m_storage, {edit.position, edit.inserted.length()}, edit.removed);
            });
        },
        m_done - 1);
    return group.before;
}

std::optional<TextSelection> UndoManager::redo()
{
    closeGroupOfBatch();
    if (!canRedo() || isGrouping())
        return std::nullopt;
    const Group group = m_groups[size_t(m_done)];
    replay(
        [&] {
            for (const Edit &edit : group.edits)
                replaceWholePairs(m_storage, {edit.position, edit.removed.length()}, edit.inserted);
        },
        m_done + 1);
    return group.after;
}

void UndoManager::replay(const std::function<void()> &edits, qsizetype done)
{
    m_mayCoalesce = false;
    {
        const EditBatch batch(m_storage);
        m_isReplaying = true;
        edits();
        m_isReplaying = false;
        m_done = done;
    }
    tellState();
}

void UndoManager::removeAllActions()
{
    m_savePoint = isAtSavePoint() ? 0 : -1;
    m_groups.clear();
    m_done = 0;
    m_units = 0;
    m_opened = Opened::none;
    m_mayCoalesce = false;
    tellState();
}

void UndoManager::markSavePoint()
{
    if (m_opened != Opened::none) {
        // What the caller's group still brings is not saved, so it becomes a group behind this one.
        m_next.before = selectionAfterEdits();
        closeGroup(m_next.before);
    }
    m_savePoint = m_done;
    m_mayCoalesce = false;
    tellState();
}

void UndoManager::setUnitLimit(qsizetype limit)
{
    m_unitLimit = limit;
    dropOldGroups();
    tellState();
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
        m_groups.pop_front();
        --m_done;
        m_savePoint = std::max<qsizetype>(m_savePoint - 1, -1);
    }
}

/// In the middle of a batch it waits for the end, when the text can be read.
void UndoManager::tellState()
{
    if (m_storage.isEditing())
        return;
    const State state{canUndo(), canRedo(), isAtSavePoint()};
    if (std::exchange(m_lastState, state) != state)
        emit stateChanged();
}
