// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/EditSteps.h"

#include <algorithm>
#include <utility>

void EditSteps::add(TextEdits step)
{
    m_steps.push_back(std::move(step));
    while (m_steps.size() > 1 && m_steps[m_steps.size() - 2].count() <= 2 * std::max<size_t>(m_steps.back().count(), 1)) {
        joinLastTwo();
    }
}

TextEdits EditSteps::take()
{
    while (m_steps.size() > 1) {
        joinLastTwo();
    }
    TextEdits all = isEmpty() ? TextEdits() : std::move(m_steps.back());
    m_steps.clear();
    return all;
}

void EditSteps::joinLastTwo()
{
    const TextEdits last = std::move(m_steps.back());
    m_steps.pop_back();
    m_steps.back() = m_order == Order::behind ? m_steps.back().followedBy(last) : last.followedBy(m_steps.back());
}
