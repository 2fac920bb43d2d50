// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Base/FileCalls.h"
#include "Base/Result.h"
#include "Print/PageLayout.h"

#include <QPageLayout>

class QPrinter;

// What takes a text to paper, to a PDF file or to a web page. Each goes through the text once, holds a page or a stretch of it at a time,
// and is for a worker: `progress` reaches 1000 at the end, and once `stop` says so it returns soon, with whatever, and there is no file. A
// file is replaced as AtomicFile does it. What was written to a file that could not be finished is gone.

/// Which pages, counted from 1, are wanted in which order.
struct PageOrder {
    /// 0 for the first, and for the last.
    int first = 0;
    int last = 0;
    int copies = 1;
    /// A copy comes as a whole before the next one.
    bool isCollated = true;
    bool isReversed = false;

    /// What was set in a printer; copies that it makes itself count as one.
    [[nodiscard]] static PageOrder of(const QPrinter &printer);
    /// Of `count` pages, which are one at least; those that there are.
    [[nodiscard]] std::vector<int> pages(int count) const;
};

/// One document with searchable text.
[[nodiscard]] Result<void> writePdf(const PrintedText &text, const PrintStyle &style, const QPageLayout &paper, const PageOrder &order,
                                    const QString &path, FileCalls &files, const std::stop_token &stop, PrintProgress &progress);

/// One page in UTF-8 that needs no other file. Characters that cannot stand in it are replaced as in the editor, line breaks are LF.
[[nodiscard]] Result<void> writeHtml(const PrintedText &text, const PrintStyle &style, const QString &path, FileCalls &files,
                                     const std::stop_token &stop, PrintProgress &progress);

/// As it was set in `printer`, which nobody else may use meanwhile.
[[nodiscard]] Result<void> printText(const PrintedText &text, const PrintStyle &style, QPrinter &printer, const std::stop_token &stop,
                                     PrintProgress &progress);
