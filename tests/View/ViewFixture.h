// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Pasteboard.h"
#include "Base/Scheduler.h"
#include "Text/TextStorage.h"
#include "Text/UndoManager.h"
#include "View/TextView.h"

#include <QString>

/// Text with marks: `|` is the caret, `^` the other end of the selection when there is one.
struct MarkedText {
    QString text;
    TextSelection selection;

    explicit MarkedText(const QString &marked);
    [[nodiscard]] static QString marked(QString text, TextSelection selection);
};

/// A font that every test machine has, 10 points at 96 dpi.
[[nodiscard]] QFont testFont();

/// Keys as Vim users write them: `abc<Left><C-S-Right><BS><CR><Tab>`.
void sendKeys(QWidget &widget, const QString &keys);

/// Puts the row of `offset` so many pixels above the top edge.
inline void scrollTo(Viewport &port, LayoutManager &layout, qsizetype offset, double pixelsAbove)
{
    const RowPosition row = layout.rowOf(offset);
    port.reveal(row, Viewport::Reveal::center);
    port.scrollBy(port.topOf(row).value_or(0) + pixelsAbove);
}

/// The middle of the letter at `offset` from its left edge, in the viewport's pixels.
[[nodiscard]] QPoint pointIn(TextView &view, qsizetype offset);

/// Moves the mouse over it with the left button down.
void dragMouse(TextView &view, QPoint point);

/// A view on a storage with everything around it injected; shown offscreen and active.
class ViewFixture {
public:
    explicit ViewFixture(const QString &text = {}, QSize size = {400, 300});

    void keys(const QString &keys) { sendKeys(view, keys); }
    /// In place of all, and nothing to be undone.
    void setText(const QString &marked);
    [[nodiscard]] QString text() const { return storage.string(); }
    void dragTo(QPoint point) { dragMouse(view, point); }
    [[nodiscard]] QString marked() { return MarkedText::marked(storage.text().toString(), view.selection()); }
    [[nodiscard]] QPoint pointOf(qsizetype offset) { return pointIn(view, offset); }
    /// Paints and gives what is seen.
    [[nodiscard]] QImage image() { return view.viewport()->grab().toImage(); }

    TextStorage storage;
    ManualScheduler scheduler;
    UndoManager undo{storage, [this] { return scheduler.now(); }};
    MemoryPasteboard pasteboard;
    TextView view{storage, undo, {scheduler, pasteboard}, testFont()};
};
