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

void VimMarks::set(char16_t name, const VimPlace &place)
{
    if (isName(name)) {
        m_places.insert_or_assign(named(name), place);
    }
}

void VimMarks::leave(qsizetype place)
{
    const auto left = m_places.find(u'\'');
    m_leftBefore = left == m_places.end() ? std::nullopt : std::optional(left->second);
    set(u'\'', place);
}

void VimMarks::arrive(qsizetype caret)
{
    const auto before = std::exchange(m_leftBefore, std::nullopt);
    if (before && place(u'\'').value_or(caret) == caret) {
        set(u'\'', *before);
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

void VimMarks::follow(const TextChange &change, VimPlace::Kind kind)
{
    const VimTouchedLines lines(change, kind);
    std::map<char16_t, VimPlace> left;
    for (const auto &[name, place] : m_places) {
        using enum VimPlace::WithoutLine;
        if (const auto moved = lines.after(place, lasting.contains(QChar(name)) ? staysThere : goes)) {
            left.emplace(name, *moved);
        }
    }
    m_places = std::move(left);
    if (m_leftBefore) {
        m_leftBefore = lines.after(*m_leftBefore, VimPlace::WithoutLine::goes);
    }
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
