// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/Theme.h"
#include "Text/LineChanges.h"
#include "Text/LineNumber.h"
#include "View/Viewport.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <span>

class TextView;

/// The gutter at the left of a text view: the number of each line that is seen, that of the caret's line brighter. It asks the layout for
/// the rows on the screen and for nothing else. Between the numbers and the text it marks lines that changed. A click selects the line,
/// dragging or a click with Shift selects lines.
class LineNumberRulerView final : public QWidget {
    Q_OBJECT

public:
    enum class CurrentLine { plain, highlighted };
    /// What lines are counted from: the text's first, or the caret's, which has the number 0 or, at the left, its own.
    enum class Numbering { fromFirst, fromCaret, fromCaretWithOwn };
    /// A number for each line of the text; none for lines that show none.
    struct Numbers {
        std::function<std::optional<LineNumber>(qsizetype line)> ofLine;
        LineNumber largest = LineNumber::first;
    };

    /// Those of the text as it is now.
    using Changes = std::function<std::span<const LineChange>()>;

    /// `client` must outlive the ruler.
    explicit LineNumberRulerView(TextView &client, QWidget *parent = nullptr);

    void setTheme(const Theme &theme);
    void setEditorFont(const QFont &font);
    void setHighlightsCurrentLine(CurrentLine current);
    void setNumbering(Numbering numbering);
    /// Instead of the lines' own; none goes back to those.
    void setExplicitNumbers(std::optional<Numbers> numbers);

    /// None to begin with. Whoever gives them has the ruler updated when they are others.
    void setChanges(Changes changes);

    /// The largest number to make room for.
    [[nodiscard]] qint64 lineCount() const;
    /// Pixels; room for three digits at least.
    [[nodiscard]] int thickness() const { return m_thickness; }
    [[nodiscard]] QSize sizeHint() const override { return {m_thickness, 0}; }

signals:
    void thicknessChanged();
    /// The mark of one of the changes was clicked.
    void changeClicked(size_t index);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    /// What decides about the picture while nothing wraps.
    struct Shown {
        RowPosition top;
        double above = 0;
        qint64 lines = 0;
        qsizetype currentLine = -1;
        /// That the others are counted from.
        qsizetype origin = -1;

        friend bool operator==(const Shown &, const Shown &) = default;
    };

    /// The width stays unless the number of digits changes.
    void updateThickness();
    /// The text under it scrolled, changed or has another selection; paints only if that can be seen here.
    void refresh();
    [[nodiscard]] Shown shown() const;
    [[nodiscard]] qsizetype currentLine() const;
    /// -1 where lines are not counted from the caret's.
    [[nodiscard]] qsizetype originLine() const;
    [[nodiscard]] QString labelOf(const RowPosition &row, qsizetype origin) const;
    void paintChanges(QPainter &painter, std::span<const Viewport::VisibleRow> rows) const;
    [[nodiscard]] std::optional<size_t> changeAt(QPointF place) const;

    TextView &m_client;
    const Theme *m_theme;
    QFont m_editorFont;
    CurrentLine m_current = CurrentLine::highlighted;
    Numbering m_numbering = Numbering::fromFirst;
    std::optional<Numbers> m_numbers;
    Changes m_changes;
    bool m_isPressingChange = false;
    int m_thickness = 0;
    /// That the thickness has room for.
    qsizetype m_digits = 0;
    std::optional<Shown> m_shown;
};
