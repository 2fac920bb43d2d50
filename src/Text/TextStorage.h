// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"
#include "Text/StyleRuns.h"
#include "Text/StyleTable.h"
#include "Text/TextChangeMap.h"
#include "Text/TextRange.h"

#include <QObject>

#include <deque>
#include <functional>
#include <span>
#include <vector>

/// A text as it was at one revision; a value that any thread may read and keep.
struct TextSnapshot {
    Rope text;
    quint64 revision = 0;
};

/// Is told of every edit of characters while it happens, also inside a batch.
class EditRecorder {
public:
    /// `removed` stood at `position` and `inserted` stands there now. The text is already changed; it may not be edited from here.
    virtual void recordEdit(qsizetype position, const Rope &removed, const Rope &inserted) = 0;

protected:
    ~EditRecorder() = default;
};

/// The text and attributes of one document, and the only way to change them.
///
/// Main thread only, but for snapshots. All ranges are UTF-16 code units. Observers hear of a batch once, when its outermost
/// `endEditing()` is reached: of characters by `changed`, of attributes by `stylesChanged`, of both by `didProcessEditing`, in this order
/// and before `endEditing()` returns. An edit made by an observer takes effect at once and makes a batch of its own, which is
/// reported when the one under way has reached everyone.
class TextStorage final : public QObject {
    Q_OBJECT

public:
    enum EditFlag { editedCharacters = 1, editedAttributes = 2 };
    Q_DECLARE_FLAGS(EditMask, EditFlag)

    explicit TextStorage(QObject *parent = nullptr);
    ~TextStorage() override;

    [[nodiscard]] const Rope &text() const { return m_text; }
    [[nodiscard]] qsizetype length() const { return m_text.length(); }
    /// `range` must lie in the text.
    [[nodiscard]] QString string(TextRange range) const { return m_text.toString(range); }
    [[nodiscard]] QString string() const { return m_text.toString(); }
    /// O(1).
    [[nodiscard]] TextSnapshot snapshot() const { return {m_text, m_revision}; }
    /// Grows with every change of characters.
    [[nodiscard]] quint64 revision() const { return m_revision; }

    /// Batches nest.
    void beginEditing() { ++m_depth; }
    void endEditing();
    [[nodiscard]] bool isEditing() const { return m_depth > 0; }
    /// True while the text is newer than the reports: inside a batch with edits, and when an observer edits during a report.
    [[nodiscard]] bool hasUnreportedChanges() const { return !m_changes.isEmpty() || !m_reports.empty(); }

    /// `range` must lie in the text and may not split a surrogate pair. The new text takes the style of the unit before it.
    /// Outside a batch it makes one. O(log n + text).
    void replaceCharacters(TextRange range, QStringView text);
    /// Shares the leaves of `text`. O(log n) whatever its length.
    void replaceCharacters(TextRange range, const Rope &text);

    /// The attribute sets that style ids of this storage stand for.
    [[nodiscard]] StyleTable &styles() { return m_styles; }
    [[nodiscard]] const StyleTable &styles() const { return m_styles; }
    /// `offset` must be below `length()`.
    [[nodiscard]] StyleId styleAt(qsizetype offset) const { return m_runs.styleAt(offset); }
    /// Calls `visit` for the runs in `range`, cut to it, neighbours differing.
    void forEachStyle(TextRange range, const std::function<void(TextRange, StyleId)> &visit) const { m_runs.forEachRun(range, visit); }
    /// `range` must lie in the text.
    void setStyle(TextRange range, StyleId style);
    /// The lengths of `runs` must add up to `window`, which must lie in the text. Only what really changes is reported.
    void setStyles(TextRange window, std::span<const StyleRun> runs);

    /// Not owned; null for none. There is one at a time.
    void setRecorder(EditRecorder *recorder) { m_recorder = recorder; }

    /// For tests and debug builds: O(n).
    [[nodiscard]] bool checkInvariants() const;

signals:
    void changed(const TextChangeList &changes);
    /// Ascending and apart, in the text after the batch.
    void stylesChanged(const std::vector<TextRange> &ranges);
    /// `range` surrounds all that was edited, in the text after the batch, which is longer than the one before by `changeInLength`.
    void didProcessEditing(TextStorage::EditMask mask, TextRange range, qsizetype changeInLength);

private:
    struct Report {
        TextChangeList changes;
        std::vector<TextRange> styles;
    };

    Rope m_text;
    StyleRuns m_runs;
    StyleTable m_styles;
    quint64 m_revision = 0;
    EditRecorder *m_recorder = nullptr;

    int m_depth = 0;
    TextChangeCollector m_changes;
    std::vector<TextRange> m_styleChanges; ///< in the text as it is now
    std::deque<Report> m_reports;
    bool m_isReporting = false;

    template<class Text>
    void edit(TextRange range, const Text &text, qsizetype textLength);
    void moveStyleChanges(const TextChange &change);
    void addStyleChanges(std::vector<TextRange> ranges);
    void send(const Report &report);
    [[nodiscard]] bool isValid(TextRange range) const;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(TextStorage::EditMask)

/// Batches the edits made while it lives.
class EditBatch final {
public:
    explicit EditBatch(TextStorage &storage) : m_storage(storage) { m_storage.beginEditing(); }
    ~EditBatch() { m_storage.endEditing(); }
    Q_DISABLE_COPY_MOVE(EditBatch)

private:
    TextStorage &m_storage;
};
