// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimMarks.h"

#include "Vim/VimMarkedLines.h"

#include <QStringView>

namespace {

/// As `:marks` lists them.
constexpr QStringView names = u"'abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ\"[]^.<>";
/// These stay in the text whatever is deleted.
constexpr QStringView lasting = u"[]<>";

char16_t named(char16_t name)
{
    return name == u'`' ? u'\'' : name;
}

} // namespace

bool VimMarks::isName(char16_t name)
{
    return names.contains(QChar(named(name)));
}

bool VimMarks::isUsers(char16_t name)
{
    return (name >= u'a' && name <= u'z') || (name >= u'A' && name <= u'Z');
}

std::optional<qsizetype> VimMarks::place(char16_t name) const
{
    const auto known = m_places.find(named(name));
    return known == m_places.end() ? std::nullopt : std::optional(known->second.offset);
}

void VimMarks::set(char16_t name, qsizetype place)
{
    if (isName(name)) {
        m_places.insert_or_assign(named(name), VimPlace{.offset = place});
    }
}

void VimMarks::remove(char16_t name)
{
    m_places.erase(named(name));
}

void VimMarks::deleteAll()
{
    std::erase_if(m_places, [](const auto &mark) { return mark.first >= u'a' && mark.first <= u'z'; });
}

void VimMarks::follow(const TextChange &change)
{
    const VimTouchedLines lines(change);
    std::map<char16_t, VimPlace> left;
    for (const auto &[name, place] : m_places) {
        using enum VimPlace::WithoutLine;
        if (const auto moved = lines.after(place, lasting.contains(QChar(name)) ? staysThere : goes)) {
            left.emplace(name, *moved);
        }
    }
    m_places = std::move(left);
    if (m_lines) {
        m_lines->follow(change);
    }
}

void VimMarks::noteJoined(qsizetype start)
{
    if (m_lines) {
        m_lines->passOver(start);
    }
}

std::vector<VimMarks::Mark> VimMarks::all() const
{
    std::vector<Mark> all;
    for (const QChar name : names) {
        if (const auto where = place(name.unicode())) {
            all.push_back({name.unicode(), *where});
        }
    }
    return all;
}
