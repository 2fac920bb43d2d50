// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Print/PagePainter.h"

#include "Base/Translation.h"
#include "View/DisplayText.h"

#include <QGlyphRun>
#include <QPaintEngine>
#include <QPainter>
#include <QRawFont>

using namespace Qt::StringLiterals;

namespace {

// Wider than any row and far below where the numbers of a layout overflow.
constexpr double unboundedWidth = 2'000'000;
/// Of the line below a header, in dots.
constexpr double ruleWidth = PageLayout::dotsPerInch / 144.0;
/// Of a row's height, between a header and that line.
constexpr double ruleGap = 0.25;

/// Dots of a page for one of a picture: 300 to the inch.
constexpr double pictureScale = PageLayout::dotsPerInch / 300.0;

/// Emoji are mostly pictures, of which a PDF file cannot embed the font: what it draws of them is nothing.
void paintPictures(QPainter &painter, const QString &text, const QTextLine &line, QPointF place)
{
    constexpr char16_t leastOfEmoji = 0x2000; // or a mark behind it is
    const bool mayHavePictures = std::ranges::any_of(text, [](QChar unit) { return unit >= QChar(leastOfEmoji); });
    if (!mayHavePictures || painter.paintEngine()->type() != QPaintEngine::Pdf) {
        return;
    }
    for (const QGlyphRun &run : line.glyphRuns()) {
        // The index of a font's pictures.
        if (run.rawFont().fontTable("CBLC").isEmpty()) {
            continue;
        }
        const QRectF box = run.boundingRect();
        QImage picture((box.size() / pictureScale).toSize().expandedTo({1, 1}), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter drawing(&picture);
        drawing.setRenderHint(QPainter::SmoothPixmapTransform);
        drawing.scale(1 / pictureScale, 1 / pictureScale);
        drawing.drawGlyphRun(-box.topLeft(), run);
        drawing.end();
        painter.drawImage(box.translated(place), picture);
    }
}

/// On white paper, with nothing that would make letters wider.
Theme paperTheme(const PageLayout &layout)
{
    Theme theme = Theme::light();
    if (!layout.hasEqualWidths()) {
        theme.bold = {};
        theme.italic = {};
    }
    return theme;
}

} // namespace

PagePainter::PagePainter(const PrintedText &text, const PrintStyle &style, QSizeF area, PaperColors::Slab slab)
    : m_layout(text, style, area)
{
    if (style.hasColors) {
        m_colors.emplace(text.text, text.language, paperTheme(m_layout), slab);
    }
}

qsizetype PagePainter::paint(QPainter &painter, qsizetype start, int number, std::optional<int> count)
{
    if (!m_layout.header().isEmpty()) {
        paintHeader(painter, number, count);
    }
    const PageLayout::Page page = m_layout.page(start);
    double baseline = m_layout.body().top() + QFontMetricsF(m_layout.font()).ascent();
    for (const PageLayout::Row &row : page.rows) {
        paintRow(painter, row, baseline);
        baseline += m_layout.rowHeight();
    }
    return page.next;
}

void PagePainter::paintHeader(QPainter &painter, int number, std::optional<int> count) const
{
    const QRectF area = m_layout.header();
    const QFontMetricsF metrics(m_layout.headerFont());
    const QString page = count ? formatted(localized(u"Page %1$d of %2$d"), number, *count) : formatted(localized(u"Page %d"), number);
    const QString right = m_layout.text().date.isEmpty() ? page : m_layout.text().date + u"  ·  "_s + page;
    const double left = area.width() - metrics.horizontalAdvance(right) - 2 * metrics.averageCharWidth();
    painter.setFont(m_layout.headerFont());
    painter.setPen(QColor::fromRgb(paperSideColor));
    painter.drawText(area, Qt::AlignRight | Qt::AlignTop | Qt::TextSingleLine, right);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                     metrics.elidedText(m_layout.text().title, Qt::ElideMiddle, std::max(left, 0.0)));
    painter.setPen(QPen(QColor::fromRgb(paperSideColor), ruleWidth));
    const double y = area.bottom() + ruleGap * m_layout.rowHeight();
    painter.drawLine(QPointF(0, y), QPointF(area.width(), y));
}

void PagePainter::paintRow(QPainter &painter, const PageLayout::Row &row, double baseline)
{
    if (!m_layout.numbers().isEmpty() && row.startsLine) {
        const QString number = QString::number(row.line + 1);
        painter.setFont(m_layout.font());
        painter.setPen(QColor::fromRgb(paperSideColor));
        painter.drawText(QPointF(m_layout.numbers().right() - QFontMetricsF(m_layout.font()).horizontalAdvance(number), baseline), number);
    }
    if (row.range.isEmpty()) {
        return;
    }
    const QString shown = displayText(m_layout.text().text, row.range);
    QTextLayout layout(shown, m_layout.font());
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTabStopDistance(m_layout.tabStop());
    option.setTextDirection(Qt::LeftToRight);
    layout.setTextOption(option);
    if (m_colors) {
        layout.setFormats(m_colors->formats(row.range));
    }
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(unboundedWidth);
    layout.endLayout();
    painter.setPen(m_colors ? QColor::fromRgb(m_colors->theme().foreground) : QColor(Qt::black));
    // A fallback font with taller letters stands on the same line.
    const QPointF place(m_layout.body().left() + row.indent, baseline - line.ascent());
    line.draw(&painter, place);
    paintPictures(painter, shown, line, place);
}
