// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Print/PageLayout.h"

#include "View/DisplayText.h"

#include <QFontMetricsF>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace {

constexpr double pointsPerInch = 72;
/// Of the height of a row, between header and body.
constexpr double headerGap = 1.2;
/// Between the line numbers and the text, in digits.
constexpr double numberGap = 2;
/// Letters of a header are smaller than those of the text by this, and not larger than so many points.
constexpr double headerShare = 0.9;
constexpr double mostHeaderPoints = 9;
/// Rows of a wrapped line keep at least this share of the body's width.
constexpr double leastRowShare = 0.5;
/// No row has more units, whatever their width.
constexpr qsizetype longestRow = 4096;

/// Narrow and wide ones: fonts in which these are alike have cells.
constexpr auto sampleLetters = std::to_array({u'M', u'i', u'l', u'.', u'0', u'@', u' '});

QFont sized(QFont font, double points)
{
    font.setPixelSize(std::max(1, int(std::lround(points * PageLayout::dotsPerInch / pointsPerInch))));
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

bool areEquallyWide(const QFont &font, const QFont &other)
{
    const QFontMetricsF metrics(font);
    const QFontMetricsF others(other);
    return std::ranges::all_of(sampleLetters, [&](char16_t letter) {
        return std::abs(metrics.horizontalAdvance(QChar(letter)) - others.horizontalAdvance(QChar(letter))) < 0.5;
    });
}

int digits(qsizetype number)
{
    return int(QString::number(number).size());
}

} // namespace

PageLayout::PageLayout(const PrintedText &text, const PrintStyle &style, QSizeF area)
    : m_text(text), m_font(sized(text.font, style.fontSize)),
      m_headerFont(sized(text.font, std::min(style.fontSize * headerShare, mostHeaderPoints)))
{
    const QFontMetricsF metrics(m_font);
    m_rowHeight = metrics.lineSpacing();
    m_cellWidth = metrics.horizontalAdvance(u' ');
    m_tabStop = m_text.tabWidth * m_cellWidth;
    m_isFixedPitch = std::ranges::all_of(
        sampleLetters, [&](char16_t letter) { return std::abs(metrics.horizontalAdvance(QChar(letter)) - m_cellWidth) < 0.01; });
    QFont bold = m_font;
    bold.setBold(true);
    QFont italic = m_font;
    italic.setItalic(true);
    m_hasEqualWidths = areEquallyWide(m_font, bold) && areEquallyWide(m_font, italic);

    double top = 0;
    if (style.hasHeader) {
        m_header = QRectF(0, 0, area.width(), QFontMetricsF(m_headerFont).lineSpacing());
        top = m_header.height() + headerGap * m_rowHeight;
    }
    const double height = std::max(area.height() - top, m_rowHeight);
    double left = 0;
    if (style.hasLineNumbers) {
        const double digit = metrics.horizontalAdvance(u'0');
        m_numbers = QRectF(0, top, digit * digits(m_text.text.lineAt(end()) + 1), height);
        left = m_numbers.width() + numberGap * digit;
    }
    m_body = QRectF(left, top, std::max(area.width() - left, metrics.maxWidth()), height);
    m_rowsOfPage = std::max<size_t>(1, size_t(std::floor(height / m_rowHeight)));
}

PageLayout::Page PageLayout::page(qsizetype start) const
{
    Page page{.rows = {}, .next = start};
    qsizetype line = m_text.text.lineAt(start);
    while (page.rows.size() < m_rowsOfPage && page.next < end()) {
        const PrintedLine whole = printedLine(m_text, line);
        const bool startsLine = page.next <= whole.range.location;
        const double indent = startsLine ? 0 : indentOf(whole.range);
        const qsizetype to = rowEnd(page.next, whole.range.end(), indent);
        page.rows.push_back({TextRange::between(page.next, to), line, startsLine, indent});
        page.next = to;
        if (to == whole.range.end()) {
            page.next = whole.next;
            ++line;
        }
    }
    return page;
}

double PageLayout::indentOf(TextRange line) const
{
    const double most = m_body.width() * (1 - leastRowShare);
    double indent = 0;
    for (qsizetype offset = line.location; offset < line.end() && indent < most; ++offset) {
        const char16_t unit = m_text.text.at(offset);
        if (unit == u'\t') {
            indent = (std::floor(indent / m_tabStop) + 1) * m_tabStop;
        } else if (unit == u' ') {
            indent += m_cellWidth;
        } else {
            break;
        }
    }
    return std::min(indent, most);
}

qsizetype PageLayout::rowEnd(qsizetype from, qsizetype lineEnd, double indent) const
{
    const double width = m_body.width() - indent;
    const auto columns = qsizetype(std::floor(width / m_cellWidth));
    if (m_isFixedPitch && lineEnd - from <= columns) {
        const CellCount cells = countCells(m_text.text, TextRange::between(from, lineEnd), m_text.tabWidth);
        if (cells.isExact && cells.narrow <= columns) {
            return lineEnd;
        }
    }
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTabStopDistance(m_tabStop);
    option.setFlags(QTextOption::IncludeTrailingSpaces);
    option.setTextDirection(Qt::LeftToRight);
    for (qsizetype room = columns + columns / 2;; room *= 2) {
        qsizetype to = std::min(lineEnd, from + std::min(room, longestRow));
        to += m_text.text.splitsPair(to) ? 1 : 0;
        QTextLayout layout(displayText(m_text.text, TextRange::between(from, to)), m_font);
        layout.setTextOption(option);
        layout.beginLayout();
        QTextLine row = layout.createLine();
        row.setLineWidth(width);
        const qsizetype taken = std::max(1, row.textLength());
        layout.endLayout();
        // What was laid out may be shorter than the row.
        if (from + taken < to || to == lineEnd || room >= longestRow) {
            return std::min(from + taken, to);
        }
    }
}

std::optional<std::vector<qsizetype>> pageStarts(const PageLayout &layout, const std::stop_token &stop, PrintProgress &progress, int share,
                                                 std::vector<qsizetype> known)
{
    std::vector<qsizetype> starts = known.empty() ? std::vector{layout.start()} : std::move(known);
    const qsizetype length = std::max<qsizetype>(1, layout.end() - layout.start());
    for (qsizetype next = layout.page(starts.back()).next; next < layout.end(); next = layout.page(next).next) {
        if (stop.stop_requested()) {
            return std::nullopt;
        }
        starts.push_back(next);
        progress.set(int((next - layout.start()) * share / length));
    }
    progress.set(share);
    return starts;
}
