// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Highlighting/Language.h"
#include "Text/Rope.h"

#include <QFont>
#include <QString>

/// A text on its way to paper or into a file of another kind, as it was when that was asked for. A value; any thread.
struct PrintedText {
    Rope text;
    /// What is wanted of it, in UTF-16 units; lies in the text.
    TextRange range;
    Language language;
    /// What the text is called.
    QString title;
    /// Its letters; their size is the style's.
    QFont font;
    /// Columns.
    int tabWidth = 4;
    /// For the headers of pages, in the language of the interface.
    QString date;
};

/// A line of it, as far as it lies in the range.
struct PrintedLine {
    /// Without the break.
    TextRange range;
    /// Behind the break: the start of the next line, or the end of the range.
    qsizetype next = 0;
};
/// `line` counts from 0 and must be one of the text that is touched by its range.
[[nodiscard]] PrintedLine printedLine(const PrintedText &text, qsizetype line);

/// How a text is put on paper.
struct PrintStyle {
    /// Of letters, in points.
    double fontSize = 10;
    bool hasLineNumbers = false;
    /// The text's title, the date and the number of the page above each page.
    bool hasHeader = true;
    /// Those of a light theme; else all is black.
    bool hasColors = true;
};
