// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "View/LayoutManager.h"

#include <QAccessibleWidget>

class TextView;

/// A TextView for screen readers: text, caret, selections, editing and where each character is on the screen.
///
/// Answers come from storage and layout piece by piece; nothing copies the whole text. Readers count characters, of which a surrogate pair
/// is one: the bridge to the bus passes offsets on as they are, and who cuts a line out of what was reported with units for characters
/// never says the end of a line with two emoji. −1 stands for the text's length and −2 for the caret, as the interface has it.
class TextViewAccessible final : public QAccessibleWidget, public QAccessibleTextInterface, public QAccessibleEditableTextInterface {
public:
    /// Makes every TextView answer through this class; the first call counts.
    static void install();

    explicit TextViewAccessible(TextView &view);

    // What a view reports to screen readers.
    static void reportChange(TextView &view, const TextChange &change);
    static void reportSelection(TextView &view, TextSelection before);

    void *interface_cast(QAccessible::InterfaceType type) override;
    /// None: gutter and viewport are how the text is made, and have nothing to report.
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text kind, const QString &text) override;

    void selection(int index, int *start, int *end) const override;
    [[nodiscard]] int selectionCount() const override;
    void addSelection(int start, int end) override;
    void removeSelection(int index) override;
    void setSelection(int index, int start, int end) override;
    [[nodiscard]] int cursorPosition() const override;
    void setCursorPosition(int position) override;
    [[nodiscard]] QString text(int start, int end) const override;
    [[nodiscard]] QString textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary, int *start, int *end) const override;
    [[nodiscard]] QString textAfterOffset(int offset, QAccessible::TextBoundaryType boundary, int *start, int *end) const override;
    [[nodiscard]] QString textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int *start, int *end) const override;
    [[nodiscard]] int characterCount() const override;
    [[nodiscard]] QRect characterRect(int offset) const override;
    [[nodiscard]] int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int start, int end) override;
    [[nodiscard]] QString attributes(int offset, int *start, int *end) const override;

    void deleteText(int start, int end) override;
    void insertText(int offset, const QString &text) override;
    void replaceText(int start, int end, const QString &text) override;

private:
    [[nodiscard]] TextView &view() const;
    /// In units, what a reader counts in characters.
    [[nodiscard]] qsizetype resolved(int character) const;
    /// In characters, what is counted in units.
    [[nodiscard]] int characterOffset(qsizetype offset) const;
    [[nodiscard]] std::optional<size_t> selectionNumber(int index) const;
    [[nodiscard]] TextRange wholePieceAt(qsizetype offset, QAccessible::TextBoundaryType boundary) const;
    /// The same, but for a huge one that part of it which holds the offset; the parts follow one another.
    [[nodiscard]] TextRange pieceAt(qsizetype offset, QAccessible::TextBoundaryType boundary) const;
    [[nodiscard]] QString answer(TextRange piece, int *start, int *end) const;
};
