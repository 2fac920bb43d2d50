// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimFileMarks.h"

#include "Vim/VimMarks.h"

#include <algorithm>

namespace {

void copyMark(char16_t name, const VimMarks &from, VimMarks &to)
{
    if (const auto place = from.place(name)) {
        to.set(name, *place);
    } else {
        to.remove(name);
    }
}

bool showTheSame(const VimFileMarks::Holder &one, const VimFileMarks::Holder &other)
{
    return &one != &other && !one.heldText().isEmpty() && one.heldText() == other.heldText();
}

} // namespace

void VimFileMarks::join(Holder &holder)
{
    const auto other = std::ranges::find_if(m_holders, [&](const Holder *known) { return showTheSame(*known, holder); });
    for (char16_t name = u'a'; other != m_holders.end() && name <= u'z'; ++name) {
        copyMark(name, (*other)->heldMarks(), holder.heldMarks());
    }
    if (std::ranges::find(m_holders, &holder) == m_holders.end()) {
        m_holders.push_back(&holder);
    }
}

bool VimFileMarks::isShared(const Holder &holder) const
{
    return std::ranges::any_of(m_holders, [&](const Holder *other) { return showTheSame(*other, holder); });
}

void VimFileMarks::share(char16_t name, Holder &holder)
{
    for (Holder *other : m_holders) {
        if (showTheSame(*other, holder)) {
            copyMark(name, holder.heldMarks(), other->heldMarks());
        }
    }
}

void VimFileMarks::set(char16_t name, const Holder &holder)
{
    m_marks.insert_or_assign(name, Kept{.holder = &holder});
    noteChange();
}

void VimFileMarks::remove(char16_t name)
{
    m_marks.erase(name);
    noteChange();
}

void VimFileMarks::restore(char16_t name, const Place &place)
{
    if (isName(name)) {
        m_marks.try_emplace(name, Kept{.place = place});
    }
}

void VimFileMarks::noteChange() const
{
    if (m_changed) {
        m_changed();
    }
}

void VimFileMarks::release(const Holder &holder)
{
    std::erase(m_holders, &holder);
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
