// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/DiffControl.h"

#include <QStringList>

/// A comparison of texts in the plainest words, by lists of strings and of operations, for holding the real one against. Slow.
struct NaiveDiff {
    /// As `describedRow` writes them.
    QStringList rows;
    QList<qsizetype> changeStarts;
    qsizetype addedCount = 0;
    qsizetype removedCount = 0;

    [[nodiscard]] static NaiveDiff compare(const QString &old, const QString &newer, Whitespace whitespace);
};

/// What lines are compared by, one for each line of `text`.
[[nodiscard]] QStringList naiveKeys(const QString &text, Whitespace whitespace);
[[nodiscard]] QStringList naiveLines(const QString &text);

/// A row in one line: its kind as = - + ~, both numbers (0 for none), both texts, and the changed characters of each as "[lower,upper]".
[[nodiscard]] QString describedRow(QChar kind, qsizetype left, qsizetype right, const QString &leftText, const QString &rightText,
                                   const QString &leftEmphasis, const QString &rightEmphasis);
