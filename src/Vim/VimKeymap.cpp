// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimKeymap.h"

#include "Base/Translation.h"
#include "Commands/Actions.h"
#include "Settings/Preferences.h"
#include "Vim/VimEngine.h"
#include "Vim/VimKeyNotation.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

enum class Modes { both, normal, visual };

struct MappingRow {
    /// " " is the leader; "^" and "~" before a key stand for Control and Option.
    QStringView keys;
    const char16_t *label;
    const char16_t *section;
    VimKeymapAction action;
    Modes modes = Modes::both;
    /// Instead, in exact modal editing.
    const Action *exactly = nullptr;
};

const auto lazyVim = std::to_array<MappingRow>({
    {u"H", u"previous tab", u"Tabs", &Actions::selectPreviousTab},
    {u"L", u"next tab", u"Tabs", &Actions::selectNextTab},
    {u"[b", u"previous tab", u"Tabs", &Actions::selectPreviousTab},
    {u"]b", u"next tab", u"Tabs", &Actions::selectNextTab},
    {u" bd", u"close tab", u"Tabs", &Actions::closeTab},
    {u" bb", u"other tab", u"Tabs", &Actions::selectPreviousTab},
    {u"^h", u"previous pane", u"Panes", &Actions::focusPreviousPane, Modes::both, &Actions::focusPaneLeft},
    {u"^k", u"previous pane", u"Panes", &Actions::focusPreviousPane, Modes::both, &Actions::focusPaneAbove},
    {u"^l", u"next pane", u"Panes", &Actions::focusNextPane, Modes::both, &Actions::focusPaneRight},
    {u"^j", u"next pane", u"Panes", &Actions::focusNextPane, Modes::both, &Actions::focusPaneBelow},
    {u" |", u"split right", u"Panes", &Actions::splitEditorRight},
    {u" -", u"split down", u"Panes", &Actions::splitEditorDown},
    {u" wd", u"close split", u"Panes", &Actions::closeSplit},
    {u" ww", u"other pane", u"Panes", &Actions::focusNextPane},
    {u"^s", u"save", u"Files", &Actions::saveDocument},
    {u" ff", u"open…", u"Files", &Actions::openDocument},
    {u" fn", u"new tab", u"Files", &Actions::newDocument},
    {u" qq", u"close window", u"Files", &Actions::closeWindowFromVim},
    {u" ss", u"find", u"Files", &Actions::showFindInterface},
    {u"gcc", u"toggle comment on the line", u"Editing", &VimEngine::toggleCommentFromKeymap, Modes::normal},
    {u"gc", u"toggle comment on the selection", u"Editing", &VimEngine::toggleCommentFromKeymap, Modes::visual},
    {u"~j", u"move line down", u"Editing", &VimEngine::moveLinesDown},
    {u"~k", u"move line up", u"Editing", &VimEngine::moveLinesUp},
});

QList<VimKeyStroke> strokesOf(QStringView keys)
{
    QList<VimKeyStroke> strokes;
    VimKeyStroke next;
    for (const QChar key : keys) {
        if (key == u'^' || key == u'~') {
            (key == u'^' ? next.control : next.option) = true;
            continue;
        }
        next.character = key.unicode();
        strokes << std::exchange(next, {});
    }
    return strokes;
}

QString written(const QList<VimKeyStroke> &keys, QStringView space, QStringView control)
{
    QString text;
    for (const VimKeyStroke &key : keys) {
        if (key.control) {
            text += control;
        } else if (key.option) {
            text += u"⌥"_s;
        }
        text += key.character == u' ' ? space.toString() : QString(QChar(key.character));
    }
    return text;
}

QString unitsOf(const QList<VimKeyStroke> &keys)
{
    QString units;
    for (const VimKeyStroke &key : keys) {
        units += QChar(VimKey::unit(key));
    }
    return units;
}

/// Whether `keys` begin with `start`, and are more.
bool goesOn(const QList<VimKeyStroke> &keys, const QList<VimKeyStroke> &start)
{
    return keys.size() > start.size() && std::equal(start.begin(), start.end(), keys.begin());
}

} // namespace

VimKeymap::VimKeymap(VimKeymapPreset preset, std::shared_ptr<const VimMappings> users) : m_preset(preset), m_users(std::move(users))
{
    if (preset != VimKeymapPreset::lazyVim) {
        return;
    }
    for (const MappingRow &row : lazyVim) {
        const VimKeymapAction action = m_users && row.exactly ? VimKeymapAction(row.exactly) : row.action;
        if (row.modes != Modes::visual) {
            m_normal.insert_or_assign(strokesOf(row.keys), action);
        }
        if (row.modes != Modes::normal) {
            m_visual.insert_or_assign(strokesOf(row.keys), action);
        }
    }
}

bool VimKeymap::hasLonger(const Mappings &mappings, const QList<VimKeyStroke> &keys)
{
    return std::ranges::any_of(mappings, [&](const auto &mapping) { return goesOn(mapping.first, keys); });
}

const VimKeymap::Mappings &VimKeymap::mappingsOf(Table table) const
{
    static const Mappings none;
    switch (table) {
    case Table::normal:
    case Table::operatorPending:
        return m_normal;
    case Table::visual:
        return m_visual;
    case Table::insert:
    case Table::commandLine:
        break;
    }
    return none;
}

VimKeymap::Outcome VimKeymap::consume(const VimKeyStroke &stroke, Table table)
{
    const Mappings &mappings = mappingsOf(table);
    const bool hasUsers = this->hasUsers(table);
    if (mappings.empty() && !hasUsers) {
        return Passthrough{stroke};
    }
    m_buffer << stroke;
    if (const VimMapping *mapping = users(m_buffer, table); mapping && !usersGoOn(m_buffer, table)) {
        return fed(*mapping, m_buffer.size());
    }
    if (usersGoOn(m_buffer, table)) {
        return Pending();
    }
    if (const auto mapping = mappings.find(m_buffer); mapping != mappings.end()) {
        m_buffer.clear();
        return mapping->second;
    }
    if (hasLonger(mappings, m_buffer)) {
        return Pending();
    }
    return release(table);
}

std::optional<VimKeymap::Outcome> VimKeymap::expire(Table table)
{
    return awaitsUsers(table) ? std::optional(longestOfUsers(table)) : std::nullopt;
}

VimKeymap::Outcome VimKeymap::release(Table table)
{
    return hasUsers(table) ? longestOfUsers(table) : Outcome(std::exchange(m_buffer, {}));
}

bool VimKeymap::awaitsUsers(Table table) const
{
    return isWaiting() && (users(m_buffer, table) || usersGoOn(m_buffer, table));
}

/// No mapping has all the keys: the longest one that they begin with, or the first key as it is.
VimKeymap::Outcome VimKeymap::longestOfUsers(Table table)
{
    for (qsizetype length = m_buffer.size(); length > 0; --length) {
        const QList<VimKeyStroke> keys = m_buffer.first(length);
        if (const VimMapping *mapping = users(keys, table)) {
            return fed(*mapping, length);
        }
        if (const auto preset = mappingsOf(table).find(keys); preset != mappingsOf(table).end()) {
            return Fed{.action = preset->second, .rest = std::exchange(m_buffer, {}).sliced(length)};
        }
    }
    QList<VimKeyStroke> rest = std::exchange(m_buffer, {});
    const VimKeyStroke first = rest.takeFirst();
    return rest.isEmpty() ? Outcome(Passthrough{first}) : Outcome(Fed{.before = {first}, .rest = rest});
}

VimKeymap::Fed VimKeymap::fed(const VimMapping &mapping, qsizetype length)
{
    const QList<VimKeyStroke> keys = std::exchange(m_buffer, {});
    // A mapping that begins with its own keys means them as they are.
    const bool beginsWithItself = mapping.result.startsWith(unitsOf(keys.first(length)));
    const qsizetype unmapped = !mapping.isRecursive ? mapping.result.size() : beginsWithItself ? length : 0;
    return {.keys = mapping.result, .unmapped = unmapped, .rest = keys.sliced(length)};
}

const VimMapping *VimKeymap::users(const QList<VimKeyStroke> &keys, Table table) const
{
    return hasUsers(table) ? m_users->find(VimMappings::Mode(table), unitsOf(keys)) : nullptr;
}

bool VimKeymap::usersGoOn(const QList<VimKeyStroke> &keys, Table table) const
{
    return hasUsers(table) && m_users->goOn(VimMappings::Mode(table), unitsOf(keys));
}

bool VimKeymap::wants(const VimKeyStroke &stroke, Table table) const
{
    const QList<VimKeyStroke> keys = m_buffer + QList{stroke};
    return completes(stroke, table) || hasLonger(mappingsOf(table), keys) || usersGoOn(keys, table);
}

bool VimKeymap::completes(const VimKeyStroke &stroke, Table table) const
{
    const QList<VimKeyStroke> keys = m_buffer + QList{stroke};
    return mappingsOf(table).contains(keys) || users(keys, table);
}

std::vector<VimKeymap::Mapping> VimKeymap::continuations(Table table) const
{
    if (!isWaiting()) {
        return {};
    }
    std::vector<Mapping> found = mappings(m_preset);
    std::erase_if(found,
                  [&](const Mapping &mapping) { return !goesOn(mapping.keys, m_buffer) || !mappingsOf(table).contains(mapping.keys); });
    for (Mapping &mapping : found) {
        mapping.keys.remove(0, m_buffer.size());
    }
    if (hasUsers(table)) {
        for (const VimMappings::Listed &listed : m_users->list(VimMappings::Mode(table), unitsOf(m_buffer))) {
            QList<VimKeyStroke> keys;
            for (const QChar unit : QStringView(listed.keys).sliced(m_buffer.size())) {
                keys << VimKey::stroke(unit.unicode());
            }
            if (!keys.isEmpty()) {
                found.push_back({.keys = keys, .label = VimKeyNotation::written(listed.mapping->result), .action = {}, .section = {}});
            }
        }
    }
    return found;
}

QString VimKeymap::pendingDescription() const
{
    return written(m_buffer, u"␣", u"^");
}

std::vector<VimKeymap::Mapping> VimKeymap::mappings(VimKeymapPreset preset)
{
    std::vector<Mapping> all;
    if (preset != VimKeymapPreset::lazyVim) {
        return all;
    }
    for (const bool isOnlyVisual : {false, true}) {
        for (const MappingRow &row : lazyVim) {
            if ((row.modes == Modes::visual) == isOnlyVisual) {
                all.push_back({strokesOf(row.keys), localized(row.label), row.action, localized(row.section)});
            }
        }
    }
    return all;
}

QString VimKeymap::describe(const QList<VimKeyStroke> &keys)
{
    return written(keys, u"<leader>", u"⌃");
}
