// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"
#include "View/ScrollMark.h"
#include "View/TextScrollBar.h"

#include <QColor>
#include <QRect>
#include <QStyle>

#include <array>
#include <functional>
#include <optional>
#include <vector>

class TextView;

/// The vertical scroll bar of a text, with thin marks where something is in the text; a click on one goes there.
///
/// Marks are made of rows of pixels: the stretches of text behind halves of the bar are asked for, then those behind their halves, down to
/// single rows, so that their cost depends on the bar's height, or on how few there are to be marked. They are made anew when they are
/// painted and the text, its rows or the places are others; scrolling and moving the caret ask for nothing. Main thread only.
class MarkedScrollBar final : public TextScrollBar {
    Q_OBJECT

public:
    /// Pixels of a mark.
    static constexpr int markHeight = 2;

    struct Source {
        /// Whether there may be something anywhere, without which scrolling asks for nothing else. May be empty.
        std::function<bool()> any = {};
        /// Whether something is in `stretch`, which may end one behind the text. What is in one is in one of any two that it is cut into.
        std::function<bool(TextRange stretch)> has;
        /// Goes to the first that is in `stretch`.
        std::function<void(TextRange stretch)> go;
    };

    /// To be given to `view`, which then owns it.
    explicit MarkedScrollBar(TextView &view);
    /// That of `view`; null when it has another.
    [[nodiscard]] static MarkedScrollBar *of(const TextView &view);

    /// One without `has` takes the marks away.
    void setSource(ScrollMark mark, Source source);
    /// 0xFFRRGGBB, instead of that of the table; made darker or brighter as that is.
    void setBaseColor(ScrollMark mark, quint32 color);
    void setColors(const QColor &ground, const QColor &handle) override;
    /// Something is elsewhere now.
    void placesChanged();

    /// The rows of pixels with a mark of this kind, from the top of the bar; for tests.
    [[nodiscard]] std::vector<int> rowsOf(ScrollMark mark);
    /// As it is drawn.
    [[nodiscard]] QColor colorOf(ScrollMark mark);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    /// What the rows were made for.
    struct Made {
        quint64 revision = 0;
        qint64 rowCount = 0;
        double contentHeight = 0;
        QRect groove;

        friend bool operator==(const Made &, const Made &) = default;
    };
    struct Mark {
        size_t kind = 0;
        int row = 0;
    };

    [[nodiscard]] bool mayHave(size_t kind) const;
    [[nodiscard]] bool mayHaveMarks() const;
    [[nodiscard]] bool has(int row, size_t kind) const { return (m_rows[static_cast<size_t>(row)] >> kind & 1U) != 0; }
    [[nodiscard]] QRect placeOf(QStyle::SubControl part) const;
    [[nodiscard]] Made wanted();
    [[nodiscard]] qsizetype offsetAt(int row, const Made &made);
    struct Rows {
        int first = 0;
        int end = 0;
        /// Behind them.
        TextRange text;
    };
    void makeRows();
    void markRows(const Rows &rows, quint8 kinds);
    void paintMarks(QPainter &painter, const ScrollMarkKind &kind) const;
    [[nodiscard]] std::optional<Mark> markAt(QPoint place);

    TextView &m_view;
    std::array<Source, scrollMarkKinds.size()> m_sources;
    std::optional<Made> m_made;
    /// For each row of pixels of the groove, a bit for each kind.
    std::vector<quint8> m_rows;
    /// Those that are in one of them.
    quint8 m_kinds = 0;
    std::array<quint32, scrollMarkKinds.size()> m_baseColors;
    std::optional<std::array<QColor, scrollMarkKinds.size()>> m_colors;
    bool m_isOnMark = false;
};
