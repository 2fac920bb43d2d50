// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/Selections.h"

#include <algorithm>
#include <numeric>

namespace {

/// Whether `next`, which does not begin before `one`, becomes part of it.
bool meet(const CaretSelection &one, const CaretSelection &next)
{
    const qsizetype end = one.range().end();
    const qsizetype start = next.range().location;
    return start < end || (start == end && (one.isEmpty() || next.isEmpty()));
}

/// Both and what lies between them, as `leading` looks.
CaretSelection united(const CaretSelection &leading, const CaretSelection &other)
{
    const TextRange range = leading.range().united(other.range());
    if (range == leading.range())
        return leading;
    const bool isBackward = (leading.isEmpty() ? other : leading).ends().caret < (leading.isEmpty() ? other : leading).anchor;
    return CaretSelection::of(isBackward ? TextSelection{range.end(), range.location} : TextSelection{range.location, range.end()});
}

bool ascends(const CaretSelection &one, const CaretSelection &other)
{
    const TextRange a = one.range();
    const TextRange b = other.range();
    return a.location != b.location ? a.location < b.location : a.length < b.length;
}

} // namespace

Selections Selections::merged(std::vector<CaretSelection> all, size_t primary)
{
    Q_ASSERT(primary < all.size());
    if (!std::ranges::is_sorted(all, ascends)) {
        std::vector<size_t> order(all.size());
        std::iota(order.begin(), order.end(), size_t(0));
        std::ranges::stable_sort(order, [&all](size_t a, size_t b) { return ascends(all[a], all[b]); });
        std::vector<CaretSelection> sorted;
        sorted.reserve(all.size());
        for (const size_t index : order)
            sorted.push_back(all[index]);
        primary = size_t(std::ranges::find(order, primary) - order.begin());
        all = std::move(sorted);
    }
    Selections result(all.front());
    result.m_all.reserve(qsizetype(all.size()));
    for (size_t i = 1; i < all.size(); ++i) {
        CaretSelection &last = result.m_all.last();
        if (!meet(last, all[i]))
            result.m_all.append(all[i]);
        else
            last = i == primary ? united(all[i], last) : united(last, all[i]);
        if (i == primary)
            result.m_primary = result.count() - 1;
    }
    return result;
}

size_t Selections::firstReaching(qsizetype offset) const
{
    const auto *first = std::ranges::partition_point(*this, [offset](const CaretSelection &one) { return one.range().end() < offset; });
    return size_t(first - begin());
}

std::optional<size_t> Selections::touching(TextRange range) const
{
    const size_t index = firstReaching(range.location);
    return index < count() && (*this)[index].range().location <= range.end() ? std::optional(index) : std::nullopt;
}

qsizetype Selections::selectedUnits() const
{
    return std::accumulate(begin(), end(), qsizetype(0), [](qsizetype sum, const CaretSelection &one) { return sum + one.range().length; });
}

bool Selections::hasSelected() const
{
    return std::ranges::any_of(*this, [](const CaretSelection &one) { return !one.isEmpty(); });
}

Selections Selections::with(const CaretSelection &added) const
{
    std::vector<CaretSelection> all(begin(), end());
    const auto place = std::ranges::upper_bound(all, added, ascends);
    const auto index = size_t(place - all.begin());
    all.insert(place, added);
    return merged(std::move(all), index);
}

Selections Selections::without(size_t index) const
{
    Q_ASSERT(count() > 1 && index < count());
    Selections rest = *this;
    rest.m_all.remove(qsizetype(index));
    if (index <= m_primary && m_primary > 0)
        --rest.m_primary;
    return rest;
}

Selections Selections::mapped(const TextChange &change) const
{
    if (isSingle())
        return change.mapped(primary().ends());
    std::vector<CaretSelection> all;
    all.reserve(count());
    for (const CaretSelection &one : *this)
        all.push_back(CaretSelection::of(change.mapped(one.ends())));
    return merged(std::move(all), m_primary);
}

bool operator==(const Selections &one, const Selections &other)
{
    return one.m_primary == other.m_primary && std::ranges::equal(one, other, {}, &CaretSelection::ends, &CaretSelection::ends);
}
