// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/EditSteps.h"
#include "Text/Selections.h"
#include "Text/TextStorage.h"

#include <QObject>

#include <chrono>
#include <deque>
#include <functional>
#include <optional>

/// What the changes of a group have in common; all but `other` let groups grow together.
enum class GroupKind { typing, deletingBackward, deletingForward, other };

/// The changes of one document in groups that are undone and redone as one. Main thread only.
///
/// It records whatever is changed in its storage. Changes inside beginGroup() … endGroup() belong to that group, one outside any makes one
/// of its own. Groups of the same view and kind that follow each other within a second, each beginning where the last ended, become one,
/// unless breakCoalescing() or, while typing, a line break came between them. A group is kept as the one change that takes it back, or
/// makes it again, and shares its text with the document. When the groups keep more units than the limit, the oldest go.
class UndoManager final : public QObject {
    Q_OBJECT

public:
    /// Time since any fixed moment; never runs backwards.
    using Clock = std::function<std::chrono::milliseconds()>;

    /// Follows `storage`, which must outlive it.
    UndoManager(TextStorage &storage, Clock clock, QObject *parent = nullptr);
    ~UndoManager() override;

    /// `view` only tells groups of different views apart. Calls nest, and the outermost ones count. A group without changes leaves no
    /// trace.
    void beginGroup(GroupKind kind, const Selections &before, const void *view);
    void endGroup(const Selections &after);
    [[nodiscard]] bool isGrouping() const { return m_depth > 0; }
    /// The next group begins anew: to be called when the caret jumps, the focus changes, the document is saved.
    void breakCoalescing() { m_mayCoalesce = false; }

    [[nodiscard]] bool canUndo() const { return m_done > 0; }
    /// Groups that can be undone.
    [[nodiscard]] qsizetype steps() const { return m_done; }
    [[nodiscard]] bool canRedo() const { return m_done < qsizetype(m_groups.size()); }
    /// Takes back the last group in one change and returns the selections from before it. Nothing when there is none, or a group is open.
    std::optional<Selections> undo();
    /// Repeats the group taken back last and returns the selections from after it.
    std::optional<Selections> redo();

    /// Forgets all groups; the text stays at the save point if it is there now.
    void removeAllActions();
    /// The text as it is now is the one saved. A group that is open ends here; its further changes make another.
    void markSavePoint();
    /// Nothing was saved after all.
    void forgetSavePoint();
    [[nodiscard]] bool isAtSavePoint() const { return m_savePoint == m_done; }
    /// Names the text between the groups: it has the same number again after undo() and redo(), a new one after each group, and the same
    /// while a group grows. Numbers grow.
    [[nodiscard]] quint64 state() const { return m_done > 0 ? m_groups[size_t(m_done) - 1].number : m_firstState; }
    /// The change under way takes the text to a state that it had before, or had after a group that was undone.
    [[nodiscard]] bool isReplaying() const { return m_isReplaying; }

    /// UTF-16 code units of removed and inserted text that are kept, and as many as take the place of the selections beside the primary.
    [[nodiscard]] qsizetype units() const { return m_units; }
    /// How many UTF-16 code units of removed and inserted text are kept at most, 256 Mi without a call; the last group is kept whatever
    /// its size.
    void setUnitLimit(qsizetype limit);

    /// While it lives changes are not recorded. The groups recorded before do not fit the text after such a change, so they go with it,
    /// and so does the save point.
    class Pause final {
    public:
        explicit Pause(UndoManager &manager) : m_manager(manager) { ++m_manager.m_pauses; }
        ~Pause() { --m_manager.m_pauses; }
        Q_DISABLE_COPY_MOVE(Pause)

    private:
        UndoManager &m_manager;
    };

signals:
    /// canUndo(), canRedo() or isAtSavePoint() gives another answer than before.
    void stateChanged();

private:
    struct Group {
        GroupKind kind = GroupKind::other;
        const void *view = nullptr;
        Selections before;
        Selections after;
        std::chrono::milliseconds time{0};
        /// Takes the group back while it is done, makes it again while it is not.
        TextEdits edits;
        qsizetype units = 0;
        quint64 number = 0;
    };
    struct State {
        bool canUndo = false;
        bool canRedo = false;
        bool isAtSavePoint = true;
        friend bool operator==(const State &, const State &) = default;
    };

    TextStorage &m_storage;
    Clock m_clock;
    std::deque<Group> m_groups;
    qsizetype m_done = 0;      ///< groups applied to the text; those behind can be redone
    qsizetype m_savePoint = 0; ///< the number done at the last save, -1 when that text cannot be reached any more
    qsizetype m_units = 0;
    quint64 m_firstState = 0; ///< before the first group that is left
    quint64 m_lastNumber = 0;
    qsizetype m_unitLimit = qsizetype(256) * 1024 * 1024;

    int m_depth = 0;
    int m_pauses = 0;
    bool m_isReplaying = false;
    bool m_mayCoalesce = false;
    Group m_next;          ///< what begins with the next change
    bool m_isOpen = false; ///< m_groups[m_done - 1] still takes changes
    bool m_bringsLine = false;
    /// What takes back the changes of the group that is open.
    EditSteps m_steps{EditSteps::Order::before};
    State m_lastState;

    void record(const TextChange &change);
    void openGroup(const TextChange &first);
    [[nodiscard]] bool continuesLastGroup(const TextEdits &first) const;
    void closeGroup(const Selections &after);
    [[nodiscard]] Group &lastDone() { return m_groups[size_t(m_done) - 1]; }
    void replay(Group &group, qsizetype done);
    void forgetAll();
    void dropRedo();
    void dropOldGroups();
    void notifyState();
};
