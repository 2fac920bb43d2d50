// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextEdits.h"

#include <QVarLengthArray>

#include <optional>
#include <utility>
#include <vector>

/// Where a caret between two rows of one wrapped line belongs: at the end of the upper or at the start of the lower row.
enum class Affinity : quint8 { downstream, upstream };

/// Where a caret stands. Moving up and down keeps `preferredX` (pixels along the row), so that short rows do not pull it left for good.
struct Caret {
    qsizetype offset = 0;
    Affinity affinity = Affinity::downstream;
    std::optional<double> preferredX = {};
};

/// One of the selections of a view: the caret, and the other end of what is selected.
struct CaretSelection {
    Caret caret;
    qsizetype anchor = 0;
    /// How many cells behind the end of its line the caret stands, which then selects nothing: what is typed begins with as many blanks.
    qsizetype cellsBehind = 0;

    [[nodiscard]] static CaretSelection of(TextSelection ends) { return {.caret = {ends.caret}, .anchor = ends.anchor}; }
    [[nodiscard]] static CaretSelection at(const Caret &caret) { return {.caret = caret, .anchor = caret.offset}; }

    [[nodiscard]] TextSelection ends() const { return {anchor, caret.offset}; }
    [[nodiscard]] TextRange range() const { return ends().range(); }
    [[nodiscard]] bool isEmpty() const { return ends().isEmpty(); }
};

/// All selections of a view, one at least: ascending and apart, one of them the primary, which is what is meant where there can be only
/// one. Selections that overlap become one, and so does a bare caret with a selection that it touches. Offsets are UTF-16 units. One
/// selection costs no memory of its own.
class Selections final {
public:
    /// Only one. Implicit: what takes several takes one.
    Selections(TextSelection only = {}) : Selections(CaretSelection::of(only)) {} // NOLINT(google-explicit-constructor)
    Selections(qsizetype anchor, qsizetype caret) : Selections(TextSelection{anchor, caret}) {}
    explicit Selections(const CaretSelection &only) : m_all{only} {}
    Selections(const Selections &) = default;
    Selections(Selections &&) = default;
    Selections &operator=(const Selections &) = default;
    // The array of Qt 6.4 forgets memory of its own when another is moved into it.
    Selections &operator=(Selections &&other) noexcept { return *this = std::as_const(other); }
    ~Selections() = default;
    /// `all` in any order, at least one; `primary` is an index of it, or of what it becomes part of. O(n log n), O(n) if they ascend.
    [[nodiscard]] static Selections merged(std::vector<CaretSelection> all, size_t primary);

    [[nodiscard]] size_t count() const { return size_t(m_all.size()); }
    [[nodiscard]] bool isSingle() const { return m_all.size() == 1; }
    [[nodiscard]] const CaretSelection &operator[](size_t index) const { return m_all[qsizetype(index)]; }
    [[nodiscard]] const CaretSelection *begin() const { return m_all.begin(); }
    [[nodiscard]] const CaretSelection *end() const { return m_all.end(); }
    [[nodiscard]] size_t primaryIndex() const { return m_primary; }
    [[nodiscard]] const CaretSelection &primary() const { return m_all[qsizetype(m_primary)]; }
    /// The first that ends at `offset` or behind it; count() when there is none. O(log n).
    [[nodiscard]] size_t firstReaching(qsizetype offset) const;
    /// The one of which `range` holds a part or meets an end, if there is one. O(log n).
    [[nodiscard]] std::optional<size_t> touching(TextRange range) const;
    /// Units that are selected, by all of them.
    [[nodiscard]] qsizetype selectedUnits() const;
    [[nodiscard]] bool hasSelected() const;

    /// Together with `added`, which is the primary then. O(n).
    [[nodiscard]] Selections with(const CaretSelection &added) const;
    /// All but one of several. If that was the primary, the one before it is, or the first.
    [[nodiscard]] Selections without(size_t index) const;
    /// Where the change takes them.
    [[nodiscard]] Selections mapped(const TextChange &change) const;

    /// The same places, whatever the carets remember besides.
    friend bool operator==(const Selections &one, const Selections &other);

private:
    QVarLengthArray<CaretSelection, 1> m_all;
    size_t m_primary = 0;
};
