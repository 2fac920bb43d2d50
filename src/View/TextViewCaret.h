// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/BlinkingCaret.h"
#include "View/CaretMotion.h"

#include <QRectF>

#include <optional>
#include <vector>

class TextView;

/// The carets of a text view: their places in the text, what is selected, and where they stand in the viewport. One of several is the
/// primary, and alone what input methods, scrolling and the row of the caret are about.
class TextViewCaret final {
public:
    explicit TextViewCaret(TextView &view) : m_view(view) {}

    [[nodiscard]] const Caret &place() const { return selections.primary().caret; }
    [[nodiscard]] qsizetype anchor() const { return selections.primary().anchor; }
    [[nodiscard]] TextSelection selection() const { return selections.primary().ends(); }
    /// The offset that it is shown at.
    [[nodiscard]] qsizetype shownOffset() const { return shown.value_or(place().offset); }
    [[nodiscard]] RowPosition row();
    /// Along the row, which must hold it.
    [[nodiscard]] double x(const RowPosition &row);
    /// Empty when it is not on the screen.
    [[nodiscard]] QRectF box();
    /// Of the others, as far as they are on the screen. O(seen · log carets).
    [[nodiscard]] std::vector<QRectF> otherBoxes();
    /// Of the caret or the start of the selection. Empty while this row has no colour of its own, and when it is not on the screen.
    [[nodiscard]] QRectF rowBox();
    /// While it has the focus it blinks, beginning with on.
    void restartBlinking();
    [[nodiscard]] bool isToBeSeen() const;
    void repaint();

    Selections selections;
    /// Where it is shown instead of at its place, and no other is.
    std::optional<qsizetype> shown;
    /// When the view was painted last.
    bool wasSeen = false;
    BlinkingCaret blinking;

private:
    [[nodiscard]] QRectF boxAt(const RowPosition &row, double top, double x, qsizetype offset);

    TextView &m_view;
};
