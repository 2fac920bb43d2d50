// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/BlinkingCaret.h"
#include "View/CaretMotion.h"

#include <QRectF>

#include <optional>

class TextView;

/// The caret of a text view: its place in the text, the other end of the selection, and where it stands in the viewport.
class TextViewCaret final {
public:
    explicit TextViewCaret(TextView &view) : m_view(view) {}

    [[nodiscard]] TextSelection selection() const { return {anchor, place.offset}; }
    /// The offset that it is shown at.
    [[nodiscard]] qsizetype shownOffset() const { return shown.value_or(place.offset); }
    [[nodiscard]] RowPosition row();
    /// Along the row, which must hold it.
    [[nodiscard]] double x(const RowPosition &row);
    /// Empty when it is not on the screen.
    [[nodiscard]] QRectF box();
    /// Of the caret or the start of the selection. Empty while this row has no colour of its own, and when it is not on the screen.
    [[nodiscard]] QRectF rowBox();
    /// While it has the focus it blinks, beginning with on.
    void restartBlinking();
    [[nodiscard]] bool isToBeSeen() const;
    void repaint();

    Caret place;
    qsizetype anchor = 0;
    /// Where it is shown instead of at its place.
    std::optional<qsizetype> shown;
    /// When the view was painted last.
    bool wasSeen = false;
    BlinkingCaret blinking;

private:
    TextView &m_view;
};
