// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "Text/TextEdits.h"
#include "View/CaretMotion.h"

#include <QPointF>

#include <optional>

class QDragMoveEvent;
class QDropEvent;
class QEvent;
class QMouseEvent;
class QWheelEvent;
class TextView;

/// What pointer and wheel do in a text view, and drag and drop. Points are those of its viewport.
class TextViewPointer final {
public:
    explicit TextViewPointer(TextView &view) : m_view(view) {}

    /// An event of the viewport; false when it is nothing of the pointer's.
    bool handle(QEvent &event);
    void textChanged(const TextChange &change);

    [[nodiscard]] bool isSelecting() const { return m_isSelecting; }
    /// There is selected text to take hold of.
    [[nodiscard]] bool isOverSelection(QPointF point) const;
    [[nodiscard]] Caret caretAt(QPointF point) const;
    [[nodiscard]] qsizetype graphemeUnder(QPointF point) const;
    /// Where a drag that is under way would leave its text; none when it would not.
    [[nodiscard]] std::optional<qsizetype> dropCaret() const { return m_dropCaret; }
    void setDropCaret(std::optional<qsizetype> offset);
    /// Offers the selection to other programs as what was selected last.
    void publishPrimarySelection();

    // For a gutter beside the text, which selects whole lines by a press and by dragging on.
    enum class LineSelection { anew, extended };
    void beginSelectingLines(QPointF point, LineSelection how);
    /// Scrolls by itself as long as the pointer is outside.
    void goOnSelecting(QPointF point);
    void endSelecting();

private:
    enum class Granularity { character, word, line };
    /// Where a column begins: a unit of its row, and pixels along that.
    struct ColumnOrigin {
        qsizetype offset = 0;
        double x = 0;
    };

    void press(QMouseEvent &event);
    void doubleClick(QMouseEvent &event);
    void move(QMouseEvent &event);
    void release(QMouseEvent &event);
    void wheel(QWheelEvent &event);
    void dragEnter(QDragMoveEvent &event);
    void dragMove(QDragMoveEvent &event);
    void drop(QDropEvent &event);

    [[nodiscard]] TextRange granule(qsizetype offset, Granularity granularity) const;
    void selectAt(const Caret &caret, Granularity granularity);
    void extendSelection(QPointF point);
    /// Together with the selections that stay.
    void show(const CaretSelection &selection);
    void addOrRemove(const Caret &caret);
    void beginColumn(QPointF point);
    void extendColumn(QPointF point);
    [[nodiscard]] bool isNearPress(const QMouseEvent &event) const;
    [[nodiscard]] bool goesOnClicking(const QMouseEvent &event) const;
    void autoScroll();
    void pastePrimary(qsizetype offset);
    void startDrag();
    /// False when it was refused. `taken` is what goes away where the text came from.
    bool dropText(const QString &text, qsizetype offset, TextRange taken);

    TextView &m_view;
    Granularity m_granularity = Granularity::character;
    TextRange m_origin;
    /// Those beside the one that the pointer makes.
    std::optional<Selections> m_others;
    std::optional<ColumnOrigin> m_column;
    QPointF m_pressed;
    QPointF m_last;
    bool m_isSelecting = false;
    bool m_mayDrag = false;
    /// Of the last click that was more than a single one; 0 for none.
    qint64 m_clickedTwiceAt = 0;
    RepeatingTimer m_autoScroll;
    DelayedTask m_primarySettles;
    QPointF m_wheelRest;
    int m_zoomRest = 0;
    /// What is being dragged away; nothing any more once it was dropped in a view of the same text.
    TextRange m_dragged;
    std::optional<qsizetype> m_dropCaret;
};
