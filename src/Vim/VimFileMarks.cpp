// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimFileMarks.h"

void VimFileMarks::set(char16_t name, const Holder &holder)
{
    m_marks.insert_or_assign(name, Kept{.holder = &holder});
}

void VimFileMarks::release(const Holder &holder)
{
    for (auto mark = m_marks.begin(); mark != m_marks.end();) {
        const bool isItsOwn = mark->second.holder == &holder;
        const auto place = isItsOwn ? holder.heldMark(mark->first) : std::nullopt;
        if (place) {
            mark->second = {.place = *place};
        }
        mark = isItsOwn && !place ? m_marks.erase(mark) : std::next(mark);
    }
}

const VimFileMarks::Holder *VimFileMarks::holder(char16_t name) const
{
    const auto mark = m_marks.find(name);
    return mark == m_marks.end() ? nullptr : mark->second.holder;
}

std::optional<VimFileMarks::Place> VimFileMarks::place(char16_t name) const
{
    const auto mark = m_marks.find(name);
    if (mark == m_marks.end()) {
        return std::nullopt;
    }
    return mark->second.holder ? mark->second.holder->heldMark(name) : std::optional(mark->second.place);
}

std::vector<VimFileMarks::Mark> VimFileMarks::all() const
{
    std::vector<Mark> all;
    for (const auto &mark : m_marks) {
        if (const auto where = place(mark.first)) {
            all.push_back({mark.first, *where});
        }
    }
    return all;
}
