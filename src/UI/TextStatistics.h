// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextCounts.h"

#include <QString>

#include <vector>

/// How much text there is in a document and in its selection, and how that is told to the user.
struct TextStatistics {
    struct Column {
        /// None while they are found out.
        std::optional<TextCounts> counts;
        qsizetype lines = 0;
    };
    struct Row {
        QString title;
        QString text;
        /// Empty without a selection.
        QString selection;
    };

    Column text;
    std::optional<Column> selection;

    /// As a table, from words to the time that reading takes.
    [[nodiscard]] std::vector<Row> rows() const;
};

/// In a few words: how many there are.
[[nodiscard]] QString summary(const TextStatistics &statistics);
/// How long it takes to read so many words, in whole minutes.
[[nodiscard]] QString readingTime(qsizetype words);
