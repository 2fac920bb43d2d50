// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/ShortcutOverview.h"

#include "Base/Translation.h"
#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Vim/VimReference.h"

#include <set>

using namespace Qt::StringLiterals;

namespace {

QString keysText(const Action &action)
{
    QString text;
    for (const QKeySequence &key : keySequences(action)) {
        const QString shown = key.toString(QKeySequence::NativeText);
        text = text.isEmpty() ? shown : formatted(localized(u"%@ or %@"), text, shown);
    }
    return text;
}

/// Commands that differ by their number only are one line.
Alert::Group::Line lineOf(std::span<const MenuRow> row)
{
    const Action &first = *row.front().action;
    const Action &last = *row.back().action;
    if (&first == &last) {
        return {formatted(localized(first.title), first.tag), keysText(first)};
    }
    const QString numbers = u"%1…%2"_s.arg(first.tag).arg(last.tag);
    return {localized(first.title).replace("%d"_L1, numbers), keysText(first) + u"…"_s + keysText(last)};
}

class Overview {
public:
    void add(const MenuLayout &menu)
    {
        const size_t place = m_groups.size();
        m_groups.push_back({.title = localized(menu.title)});
        for (auto row = menu.rows.begin(); row != menu.rows.end();) {
            const auto end = std::find_if(row + 1, menu.rows.end(), [row](const MenuRow &other) { return !areAlike(*row, other); });
            if (row->submenu) {
                add(*row->submenu);
            } else if (row->action && *row->action->keys && m_listed.insert(row->action).second) {
                m_groups[place].lines.push_back(lineOf({row, end}));
            }
            row = end;
        }
        if (m_groups[place].lines.empty()) {
            m_groups.erase(m_groups.begin() + std::ptrdiff_t(place));
        }
    }
    [[nodiscard]] const std::vector<Alert::Group> &groups() const { return m_groups; }

private:
    static bool areAlike(const MenuRow &one, const MenuRow &other)
    {
        return one.action && other.action && one.action->isNamedLike(*other.action) &&
               QStringView(one.action->title) == other.action->title;
    }

    std::vector<Alert::Group> m_groups;
    std::set<const Action *> m_listed;
};

} // namespace

std::vector<Alert::Group> shortcutOverview()
{
    Overview overview;
    for (const MenuLayout &menu : Actions::Menus::bar) {
        overview.add(menu);
    }
    return overview.groups();
}

std::vector<Alert::Group> vimKeyOverview(const VimOptions &options, const VimChords &chords)
{
    std::vector<Alert::Group> groups;
    for (const VimReference::Section &section : VimReference::overview(options, chords)) {
        Alert::Group &group = groups.emplace_back(Alert::Group{.title = section.heading});
        for (const VimReference::Row &row : section.rows) {
            group.lines.push_back({row.text, row.keys.join(u"  "_s)});
        }
    }
    return groups;
}
