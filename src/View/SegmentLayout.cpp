// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "View/SegmentLayout.h"

#include "Text/TextStorage.h"
#include "View/DisplayText.h"

#include <QPainter>

namespace {

// Wider than any segment and far below where the layout's fixed-point numbers overflow (8.4 million pixels).
constexpr double unboundedWidth = 2'000'000;

QTextCharFormat formatOf(const TextAttributes &attributes)
{
    QTextCharFormat format;
    if (attributes.foreground) {
        format.setForeground(QColor::fromRgba(*attributes.foreground));
    }
    if (attributes.background) {
        format.setBackground(QColor::fromRgba(*attributes.background));
    }
    if (attributes.isBold) {
        format.setFontWeight(QFont::Bold);
    }
    if (attributes.isItalic) {
        format.setFontItalic(true);
    }
    if (attributes.isUnderlined) {
        format.setFontUnderline(true);
    }
    return format;
}

/// Positions in a layout count the preedit text, so what stands behind it moves, and what reaches over it is cut in two.
QList<QTextLayout::FormatRange> aroundPreedit(const QList<QTextLayout::FormatRange> &formats, int at, int length)
{
    QList<QTextLayout::FormatRange> moved;
    for (QTextLayout::FormatRange range : formats) {
        const int end = range.start + range.length;
        if (range.start < at && end > at) {
            moved.append({range.start, at - range.start, range.format});
            range = {at, end - at, range.format};
        }
        if (range.start >= at) {
            range.start += length;
        }
        moved.append(range);
    }
    return moved;
}

} // namespace

QList<QTextLayout::FormatRange> SegmentFormats::formats(const TextStorage &storage, TextRange range)
{
    QList<QTextLayout::FormatRange> ranges;
    storage.forEachStyle(range, [&](TextRange run, StyleId style) {
        if (style == plainStyle) {
            return;
        }
        while (m_byStyle.size() <= style) {
            m_byStyle.append(formatOf(storage.styles().attributes(static_cast<StyleId>(m_byStyle.size()))));
        }
        ranges.append({static_cast<int>(run.location - range.location), static_cast<int>(run.length), m_byStyle[style]});
    });
    return ranges;
}

SegmentLayout::SegmentLayout(TextRange range, const QString &text, QList<QTextLayout::FormatRange> formats, const Style &style,
                             const std::optional<Preedit> &preedit)
    : m_range(range), m_layout(text, style.font), m_rowHeight(style.rowHeight), m_indent(style.indent),
      m_mixesDirections(mayRunRightToLeft(text))
{
    QTextOption option;
    option.setWrapMode(style.wrapWidth ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
    option.setTabStopDistance(style.tabStop);
    option.setFlags(QTextOption::IncludeTrailingSpaces);
    option.setTextDirection(Qt::LeftToRight);
    m_layout.setTextOption(option);
    m_layout.setCacheEnabled(true);
    if (preedit) {
        m_preeditAt = preedit->offset - range.location;
        m_preeditLength = preedit->text.length();
        m_layout.setPreeditArea(static_cast<int>(m_preeditAt), preedit->text);
        formats = aroundPreedit(formats, static_cast<int>(m_preeditAt), static_cast<int>(m_preeditLength));
        for (QTextLayout::FormatRange part : preedit->formats) {
            part.start += static_cast<int>(m_preeditAt);
            formats.append(part);
        }
        m_mixesDirections = m_mixesDirections || mayRunRightToLeft(preedit->text);
    }
    if (!formats.isEmpty()) {
        m_layout.setFormats(formats);
    }
    m_layout.beginLayout();
    for (int row = 0;; ++row) {
        QTextLine line = m_layout.createLine();
        if (!line.isValid()) {
            break;
        }
        const double indent = row == 0 ? style.firstIndent : style.indent;
        line.setLineWidth(style.wrapWidth ? *style.wrapWidth - indent : unboundedWidth);
        // Every row has the same height and baseline: a fallback font with taller letters must not push the rows below it.
        line.setPosition({indent, row * style.rowHeight + style.baseline - line.ascent()});
        m_width = std::max(m_width, indent + line.naturalTextWidth());
    }
    m_layout.endLayout();
}

int SegmentLayout::layoutIndex(qsizetype offset) const
{
    const qsizetype index = std::clamp<qsizetype>(offset - m_range.location, 0, m_range.length);
    return static_cast<int>(m_preeditLength > 0 && index > m_preeditAt ? index + m_preeditLength : index);
}

qsizetype SegmentLayout::offset(int layoutIndex) const
{
    qsizetype index = layoutIndex;
    if (m_preeditLength > 0 && index > m_preeditAt) {
        index = std::max(m_preeditAt, index - m_preeditLength);
    }
    return m_range.location + std::clamp<qsizetype>(index, 0, m_range.length);
}

TextRange SegmentLayout::rowRange(int row) const
{
    const QTextLine line = m_layout.lineAt(row);
    return TextRange::between(offset(line.textStart()), offset(line.textStart() + line.textLength()));
}

int SegmentLayout::rowAt(qsizetype offset) const
{
    const QTextLine line = m_layout.lineForTextPosition(layoutIndex(offset));
    return line.isValid() ? line.lineNumber() : rowCount() - 1;
}

double SegmentLayout::rowWidth(int row) const
{
    const QTextLine line = m_layout.lineAt(row);
    // Where the row ends for the caret: the natural width also counts how far the last letter leans out.
    return m_mixesDirections ? line.x() + line.naturalTextWidth() : line.cursorToX(line.textStart() + line.textLength());
}

double SegmentLayout::xOf(int row, qsizetype offset) const
{
    return m_layout.lineAt(row).cursorToX(layoutIndex(offset));
}

double SegmentLayout::xBehind(int row, qsizetype offset) const
{
    return m_layout.lineAt(row).cursorToX(layoutIndex(offset), QTextLine::Trailing);
}

int SegmentLayout::rowInPreedit(qsizetype position) const
{
    const QTextLine line = m_layout.lineForTextPosition(static_cast<int>(m_preeditAt + position));
    return line.isValid() ? line.lineNumber() : rowCount() - 1;
}

double SegmentLayout::xInPreedit(int row, qsizetype position) const
{
    return m_layout.lineAt(row).cursorToX(static_cast<int>(m_preeditAt + position));
}

qsizetype SegmentLayout::offsetAt(int row, double x, QTextLine::CursorPosition how) const
{
    const QTextLine line = m_layout.lineAt(row);
    const int index = line.xToCursor(x, how);
    // The layout never answers with the end of a row that wraps, as if there were always a blank that goes over the edge. A word or
    // a script without blanks may be broken there.
    const int end = line.textStart() + line.textLength();
    if (how == QTextLine::CursorBetweenCharacters && row + 1 < rowCount() && index < end && m_layout.nextCursorPosition(index) == end) {
        const double near = line.cursorToX(index);
        const double far = line.cursorToX(index, QTextLine::Trailing);
        return offset(std::abs(x - far) < std::abs(x - near) ? end : index);
    }
    return offset(index);
}

void SegmentLayout::drawRow(QPainter &painter, int row, double x, double top) const
{
    m_layout.lineAt(row).draw(&painter, {x, top - row * m_rowHeight});
}

void SegmentLayout::drawRow(QPainter &painter, int row, double x, double top, std::span<const TextRange> recolored,
                            const QColor &color) const
{
    QList<QTextLayout::FormatRange> formats;
    for (const TextRange units : recolored) {
        const int start = layoutIndex(units.location);
        formats.append({start, layoutIndex(units.end()) - start, {}});
        formats.last().format.setForeground(color);
    }
    // The layout draws all of its rows, or so many as it thinks the clip is about.
    const QRectF clip(x - m_rowHeight, top, m_width + 2 * m_rowHeight, m_rowHeight);
    painter.save();
    painter.setClipRect(clip, Qt::IntersectClip);
    m_layout.draw(&painter, {x, top - row * m_rowHeight}, formats, clip);
    painter.restore();
}
