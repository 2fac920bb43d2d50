// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Print/PrintedText.h"

#include <QRectF>

#include <atomic>
#include <optional>
#include <stop_token>
#include <vector>

/// Which rows of a text stand on which page.
///
/// A page follows from the offset at which it begins and nothing else, so that pages are laid out one at a time, in any order, and none has
/// to be kept. A row follows in the same way from its own start: it is what fits into the width, cut between words where that is possible,
/// with the indentation of its line. Colours, bold letters included, move nothing. Every unit of the range that is no line break stands in
/// one row, and every line has a row, but for an empty one behind the last line break.
///
/// Lengths are dots, of which an inch has `dotsPerInch` whatever the device: a text has the same pages on all. Any thread.
class PageLayout final {
public:
    static constexpr int dotsPerInch = 1200;

    /// `area` is what can be printed on, headers and line numbers included.
    PageLayout(const PrintedText &text, const PrintStyle &style, QSizeF area);

    struct Row {
        /// Without the line's break.
        TextRange range;
        /// From 0.
        qsizetype line = 0;
        bool startsLine = false;
        /// From the left of the body.
        double indent = 0;
    };
    struct Page {
        std::vector<Row> rows;
        /// Where the next page begins: the end of the range when there is none.
        qsizetype next = 0;
    };
    /// `start` is that of the range or where a page ended.
    [[nodiscard]] Page page(qsizetype start) const;
    [[nodiscard]] qsizetype start() const { return m_text.range.location; }
    [[nodiscard]] qsizetype end() const { return m_text.range.end(); }

    [[nodiscard]] const PrintedText &text() const { return m_text; }
    [[nodiscard]] const QFont &font() const { return m_font; }
    [[nodiscard]] const QFont &headerFont() const { return m_headerFont; }
    [[nodiscard]] QRectF header() const { return m_header; }
    [[nodiscard]] QRectF numbers() const { return m_numbers; }
    [[nodiscard]] QRectF body() const { return m_body; }
    [[nodiscard]] double rowHeight() const { return m_rowHeight; }
    [[nodiscard]] double tabStop() const { return m_tabStop; }
    /// Bold and italic letters are as wide as the others.
    [[nodiscard]] bool hasEqualWidths() const { return m_hasEqualWidths; }

private:
    [[nodiscard]] double indentOf(TextRange line) const;
    [[nodiscard]] qsizetype rowEnd(qsizetype from, qsizetype lineEnd, double indent) const;

    PrintedText m_text;
    QFont m_font;
    QFont m_headerFont;
    QRectF m_header;
    QRectF m_numbers;
    QRectF m_body;
    size_t m_rowsOfPage = 1;
    double m_rowHeight = 0;
    double m_tabStop = 0;
    double m_cellWidth = 0;
    bool m_isFixedPitch = false;
    bool m_hasEqualWidths = false;
};

/// How much of something was done, for those who watch it from another thread.
class PrintProgress final {
public:
    /// Thousandths.
    [[nodiscard]] int done() const { return m_done.load(std::memory_order_relaxed); }
    void set(int done) { m_done.store(done, std::memory_order_relaxed); }

private:
    std::atomic<int> m_done = 0;
};

/// Where the pages begin, one at least, eight bytes for each; none once `stop` says so. `known` are the first of them, which are not laid
/// out again, but for the last. `progress` goes from 0 to `share`.
[[nodiscard]] std::optional<std::vector<qsizetype>> pageStarts(const PageLayout &layout, const std::stop_token &stop,
                                                               PrintProgress &progress, int share, std::vector<qsizetype> known = {});
