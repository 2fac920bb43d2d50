// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"

#include <QTextLayout>

#include <span>

#include <optional>

class TextStorage;

/// The character formats of the storage's styles, made once each.
class SegmentFormats final {
public:
    /// The formats of `range` as a layout of that range wants them; plain stretches are left out.
    [[nodiscard]] QList<QTextLayout::FormatRange> formats(const TextStorage &storage, TextRange range);

private:
    QList<QTextCharFormat> m_byStyle;
};

/// A stretch of one line that is laid out as a whole, at most a few thousand units (a QTextLayout of a million overflows).
///
/// A preedit text may stand in it: then the layout has more characters than the storage, and `layoutIndex` and `offset` translate.
class SegmentLayout final {
public:
    struct Style {
        QFont font;
        double tabStop = 0;
        std::optional<double> wrapWidth;
        double rowHeight = 0;
        double baseline = 0;
        /// Where the first row begins, and where those that continue it do.
        double firstIndent = 0;
        double indent = 0;
    };
    /// Text that an input method composes; shown in the view but not part of the storage.
    struct Preedit {
        qsizetype offset = 0;
        QString text;
        QList<QTextLayout::FormatRange> formats;
    };

    /// `text` is shown for `range` and as long as it.
    SegmentLayout(TextRange range, const QString &text, QList<QTextLayout::FormatRange> formats, const Style &style,
                  const std::optional<Preedit> &preedit);

    [[nodiscard]] TextRange range() const { return m_range; }
    void moveBy(qsizetype distance) { m_range.location += distance; }
    [[nodiscard]] int rowCount() const { return m_layout.lineCount(); }
    /// Units of a row, the preedit text not counted.
    [[nodiscard]] TextRange rowRange(int row) const;
    [[nodiscard]] int rowAt(qsizetype offset) const;
    [[nodiscard]] double width() const { return m_width; }
    [[nodiscard]] double rowWidth(int row) const;
    [[nodiscard]] double indent() const { return m_indent; }
    [[nodiscard]] bool mixesDirections() const { return m_mixesDirections; }

    [[nodiscard]] double xOf(int row, qsizetype offset) const;
    /// The far edge of the character at `offset`; where directions meet that is not the near edge of the next one.
    [[nodiscard]] double xBehind(int row, qsizetype offset) const;
    [[nodiscard]] qsizetype offsetAt(int row, double x, QTextLine::CursorPosition how) const;
    /// The row of a position in the preedit text, counted in its units.
    [[nodiscard]] int rowInPreedit(qsizetype position) const;
    /// Where in the preedit text, x of a position counted in its units.
    [[nodiscard]] double xInPreedit(int row, qsizetype position) const;

    /// Draws one row with its top at `top` and its left edge at `x`.
    void drawRow(QPainter &painter, int row, double x, double top) const;
    /// The same with `recolored`, which lie in the range, in `color`.
    void drawRow(QPainter &painter, int row, double x, double top, std::span<const TextRange> recolored, const QColor &color) const;

    quint64 lastUse = 0;

private:
    [[nodiscard]] int layoutIndex(qsizetype offset) const;
    [[nodiscard]] qsizetype offset(int layoutIndex) const;

    TextRange m_range;
    QTextLayout m_layout;
    double m_rowHeight = 0;
    double m_indent = 0;
    double m_width = 0;
    qsizetype m_preeditAt = -1;
    qsizetype m_preeditLength = 0;
    bool m_mixesDirections = false;
};
