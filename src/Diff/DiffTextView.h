// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Editor/NumberedTextView.h"
#include "Text/LineDiff.h"

#include <QHash>

#include <memory>

/// One column of a comparison: a text of one line a row, which is only read, with the rows' colours behind it and its own line numbers.
class DiffTextView final : public NumberedTextView {
    Q_OBJECT

public:
    using Result = std::shared_ptr<const LineDiff::Result>;

    DiffTextView(TextStorage &storage, UndoManager &undoManager, Services services, const QFont &font, LineDiff::Side side,
                 QWidget *parent = nullptr);

    /// The storage holds the composed text of `result`, or is about to.
    void setResult(Result result);
    void applyTheme(const Theme &theme);
    /// Where the row's top is, from the top of the content.
    [[nodiscard]] double topOfRow(qsizetype row);
    /// The row that has its top in the view or above, nearest to the view's top.
    [[nodiscard]] qsizetype topRow();

signals:
    /// The key for it was pressed: 1 is the next, -1 the one before.
    void changeWanted(int step);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;
    void paintBehind(QPainter &painter, const Viewport::VisibleRow &row, Span visible) override;

private:
    [[nodiscard]] const std::vector<TextRange> &emphasisOf(qsizetype row);

    LineDiff::Side m_side;
    Result m_result;
    const Theme *m_theme;
    /// Of the rows that were painted lately.
    QHash<qsizetype, std::vector<TextRange>> m_emphasis;
};
