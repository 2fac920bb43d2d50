// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/Scheduler.h"
#include "View/Viewport.h"

#include <QColor>
#include <QRectF>

#include <functional>
#include <optional>
#include <vector>

class QPainter;

/// How the text of one view looks.
struct TextLooks {
    enum class CaretShape { bar, block, underline };
    enum class Visibility { hidden, shown };
    /// Invalid ones are not drawn: `currentLine`, which is behind the row of the caret, and `currentLineBorder`, above and below it; with
    /// an invalid `selectedText` selected text keeps its colours.
    struct Colors {
        QColor background;
        QColor text;
        QColor selection;
        QColor caret;
        QColor currentLine;
        QColor invisibles;
        QColor mark;
        QColor selectedText = {};
        QColor currentLineBorder = {};
    };
    /// Asked for stretches within what is seen of a row, ascending.
    using MarkProvider = std::function<std::vector<TextRange>(TextRange visible)>;

    Colors colors;
    CaretShape caretShape = CaretShape::bar;
    Visibility invisibles = Visibility::hidden;
    /// A faint line behind so many columns, where lines are not to go further; none for no line.
    std::optional<int> rulerColumn;
    /// So many rows above and below the caret are revealed with it.
    int revealMargin = 0;
    /// Where one searches, when that is not all of the text.
    MarkProvider searched;
    /// Search hits.
    MarkProvider marks;
    /// Those of modal editing, and of them the one that is looked at.
    MarkProvider modalHits;
    std::optional<TextRange> shownHit;
    /// What a substitution that is typed would replace.
    MarkProvider replacedHits;
    /// What is underlined with a wavy line.
    MarkProvider misspellings;
    /// Characters that cannot be saved as they are: on a ground and above a thick line, both of one colour.
    MarkProvider unsavable;
    /// The word at the caret, elsewhere.
    MarkProvider occurrences;
    /// Characters that have a frame.
    MarkProvider brackets;
};

/// Draws the eye to a stretch of the text, and fades within a second.
class TextIndicator final {
public:
    /// `repaint` is called for what looks different now.
    void show(TextRange range, Scheduler &scheduler, std::function<void(TextRange)> repaint);
    void textChanged(const TextChange &change) { m_range = change.mapped(m_range); }

    [[nodiscard]] TextRange range() const { return m_range; }
    /// 0, when it is not seen, to 1.
    [[nodiscard]] double strength() const { return std::min(1.0, m_strength); }

private:
    void fade();

    TextRange m_range;
    double m_strength = 0;
    RepeatingTimer m_fades;
    std::function<void(TextRange)> m_repaint;
};

/// Paints the rows of a view. From back to front: background, the caret's row, marks, selection, text, underlines, invisibles, caret. Only
/// the rows in the region asked for are touched, and nothing is laid out that cannot be seen. Coordinates are the viewport's.
class TextViewPainter final {
public:
    struct Frame {
        const Selections &selections;
        /// Empty when it has no colour of its own.
        QRectF caretRow;
        /// Those that are to be seen.
        std::vector<QRectF> carets;
        /// Where a drag would leave its text.
        std::optional<qsizetype> dropCaret;
        /// Of one row, behind all but the background; `visible` is along the row.
        std::function<void(const Viewport::VisibleRow &row, Span visible)> paintBehind;
    };

    TextViewPainter(LayoutManager &layout, Viewport &port) : m_layout(layout), m_port(port) {}

    void paint(QPainter &painter, QRectF area, const Rope &text, const Frame &frame);
    /// The units of the row that can be seen.
    [[nodiscard]] TextRange seenOf(const Viewport::VisibleRow &row, Span visible);

    TextLooks looks;
    TextIndicator indicator;

private:
    /// A row while it is painted.
    struct Row {
        RowPosition position;
        double top = 0;
        Span visible;
        /// Those of the row, and of them those that can be seen.
        TextRange units;
        TextRange seen;
    };

    [[nodiscard]] QRectF box(const Row &row, Span span) const;
    void paintMarks(QPainter &painter, const Row &row);
    void paintSelections(QPainter &painter, const Row &row, const Selections &selections);
    void paintSelection(QPainter &painter, const Row &row, TextRange selected);
    void paintIndicator(QPainter &painter, const Row &row);
    void paintIndicator(QPainter &painter, const Row &row, TextRange range, double strength);
    void fillRanges(QPainter &painter, const Row &row, const TextLooks::MarkProvider &provider, const QColor &color);
    void paintMisspellings(QPainter &painter, const Row &row);
    void paintOccurrences(QPainter &painter, const Row &row);
    void paintBrackets(QPainter &painter, const Row &row);
    void paintFrame(QPainter &painter, const QRectF &rect);
    /// Only what is selected can be read on the selection's colour then.
    [[nodiscard]] bool invertsSelected() const { return looks.colors.selectedText.isValid(); }
    void paintUnsavable(QPainter &painter, const Row &row);
    void paintInvisibles(QPainter &painter, const Row &row, const Rope &text);
    void paintText(QPainter &painter, const Row &row, const Selections &selections);
    void paintRuler(QPainter &painter, QRectF area);
    void paintRowBorder(QPainter &painter, QRectF caretRow);
    void paintDropCaret(QPainter &painter, qsizetype offset);
    void paintCaret(QPainter &painter, QRectF caret);

    LayoutManager &m_layout;
    Viewport &m_port;
};
