// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/Rope.h"
#include "Text/StyleRuns.h"
#include "Text/StyleTable.h"
#include "Text/TextEdits.h"
#include "Text/TextRange.h"

#include <QObject>

#include <functional>
#include <span>
#include <vector>

/// A text as it was at one revision; a value that any thread may read and keep.
struct TextSnapshot {
    Rope text;
    quint64 revision = 0;
};

/// The text and attributes of one document, and the only way to change them.
///
/// Main thread only, but for snapshots. All ranges are UTF-16 code units. Observers are notified of a change before apply() or setStyles()
/// returns. None may change the text from there: who wants to does it in a turn of its own. Styles may be set once `changed` has reached
/// everyone, so from `didProcessEditing` on.
class TextStorage final : public QObject {
    Q_OBJECT

public:
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

    /// The one way by which characters change. The edits must lie in the text and may not split a surrogate pair. New text takes the style
    /// of the unit before it. No edits are no change.
    void apply(const TextEdits &edits);

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

    /// For tests and debug builds: O(n).
    [[nodiscard]] bool checkInvariants() const;

signals:
    /// For those who keep places in the text: they map them, and ask nobody else who may not have done so yet.
    void changed(const TextChange &change);
    /// Whoever keeps places in the text has heard of it.
    void didProcessEditing(const TextChange &change);
    /// Ascending and apart.
    void stylesChanged(const std::vector<TextRange> &ranges);

private:
    Rope m_text;
    StyleRuns m_runs;
    StyleTable m_styles;
    quint64 m_revision = 0;
    bool m_isReporting = false;

    [[nodiscard]] bool isValid(const TextEdits &edits) const;
};
