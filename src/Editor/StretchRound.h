// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include "Text/TextRange.h"
#include "View/TextView.h"

#include <algorithm>
#include <functional>
#include <optional>

/// The way from one marked stretch of a view's text to the next, in a list in their order: behind the last one comes the first, and before
/// the first the last. With none there is a beep. Main thread only.
class StretchRound final {
public:
    /// The view must outlive it.
    StretchRound(TextView &view, std::function<void()> beep) : m_view(view), m_beep(std::move(beep)) {}

    /// `found` is the one beside the caret on that side, in a list of so many.
    [[nodiscard]] std::optional<size_t> next(std::optional<size_t> found, size_t count) const { return of(found, 0, count); }
    [[nodiscard]] std::optional<size_t> previous(std::optional<size_t> found, size_t count) const { return of(found, count - 1, count); }
    /// At an edge of the view nothing of it but a row would be seen.
    void arriveAt(TextRange stretch) const
    {
        const bool wasSeen = isSeen(stretch.location) && isSeen(std::max(stretch.location, stretch.end() - 1));
        m_view.setSelection(TextSelection::at(stretch.location), wasSeen ? TextView::Reveal::nearest : TextView::Reveal::center);
        m_view.showIndicator(stretch);
    }
    void beep() const { m_beep(); }

private:
    [[nodiscard]] bool isSeen(qsizetype offset) const
    {
        const auto top = m_view.textViewport().topOf(m_view.layoutManager().rowOf(offset));
        return top && *top >= 0 && *top + m_view.layoutManager().rowHeight() <= m_view.viewport()->height();
    }
    [[nodiscard]] std::optional<size_t> of(std::optional<size_t> found, size_t otherwise, size_t count) const
    {
        if (count == 0) {
            m_beep();
            return std::nullopt;
        }
        return found.value_or(otherwise);
    }

    TextView &m_view;
    std::function<void()> m_beep;
};
