// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimIdleSteps.h"

void VimIdleSteps::add(qsizetype steps, const Step &step)
{
    m_undone.clear();
    m_done.push_back({steps, step});
    m_last = steps;
}

std::optional<VimIdleSteps::Step> VimIdleSteps::undo(qsizetype steps)
{
    // Others may have undone what was before them.
    while (!m_done.empty() && m_done.back().steps > steps) {
        m_undone.push_back(m_done.back());
        m_done.pop_back();
    }
    if (m_done.empty() || m_done.back().steps < steps) {
        return std::nullopt;
    }
    m_undone.push_back(m_done.back());
    m_done.pop_back();
    return m_undone.back().step;
}

std::optional<VimIdleSteps::Step> VimIdleSteps::redo(qsizetype steps)
{
    while (!m_undone.empty() && m_undone.back().steps < steps) {
        m_done.push_back(m_undone.back());
        m_undone.pop_back();
    }
    if (m_undone.empty() || m_undone.back().steps > steps) {
        return std::nullopt;
    }
    m_done.push_back(m_undone.back());
    m_undone.pop_back();
    return m_done.back().step;
}

void VimIdleSteps::forgetUndone()
{
    m_undone.clear();
    m_last.reset();
}
