// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>
#include <vector>

/// Characters that Unicode takes for the same: "é" is one character, or "e" and an accent behind it. Any thread; all offsets are UTF-16
/// units.
namespace CanonicalEquivalence {

/// Whether `text` can be written with other characters: some of it is composed, or joins what is before it.
[[nodiscard]] bool hasEquivalents(QStringView text);

/// Whether the marks at a letter have an order in which this is one of them.
[[nodiscard]] bool isMark(char32_t character);

/// A regular expression for what `expression` matches and all that is equivalent to the letters that stand in it, also in simple sets such
/// as "[äöü]". Itself when there are none. Ranges, excluding sets and what the expression computes stay as they are.
[[nodiscard]] QString expressionWithEquivalents(const QString &expression);

} // namespace CanonicalEquivalence

/// A text in the one form that all equivalent texts have: decomposed, with the marks of each letter in order; and the way back.
class DecomposedText final {
public:
    /// O(text), one copy of which is made where nothing is decomposed.
    explicit DecomposedText(const QString &text);

    [[nodiscard]] const QString &units() const { return m_units; }
    [[nodiscard]] QString &units() { return m_units; }
    /// Where in the text the units from `index` on come from, and all before it from what is before that; none where no such place is.
    [[nodiscard]] std::optional<qsizetype> origin(qsizetype index) const;
    /// The first index whose origin is `offset` or behind.
    [[nodiscard]] qsizetype indexOf(qsizetype offset) const;

private:
    QString m_units;
    /// -1 for none; empty when each unit comes from its own place.
    std::vector<qint32> m_origins;
};
