// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimChords.h"

#include "Base/Translation.h"
#include "Commands/ActionKeys.h"
#include "Commands/Actions.h"
#include "Vim/VimEngine.h"

#include <algorithm>
#include <array>
#include <map>

using namespace Qt::StringLiterals;
using enum VimChordUse::When;

namespace {

constexpr QLatin1StringView suffix("=quillet");

QString entryFor(char16_t key)
{
    return QChar(key) + QString(suffix);
}

/// Where there is more to say, or less, than what the reference says of several keys.
constexpr auto descriptions = std::to_array<VimChordUse>({
    {u'a', commanding, u"add to the number"},
    {u'a', inserting, u"insert what was typed last"},
    {u'b', commanding, u"a page up"},
    {u'c', commanding, u"copy the selection"},
    {u'c', inserting, u"back to normal mode"},
    {u'd', commanding, u"half a page down"},
    {u'd', inserting, u"outdent the line"},
    {u'e', commanding, u"scroll down by a line"},
    {u'e', inserting, u"the character below the caret"},
    {u'f', commanding, u"a page down"},
    {u'g', commanding, u"name of the file and place in it"},
    {u'h', commanding, u"to the left"},
    {u'h', inserting, u"delete a letter"},
    {u'i', commanding, u"forward in the jump list"},
    {u'i', inserting, u"a tab"},
    {u'j', commanding, u"a line down"},
    {u'j', inserting, u"a new line"},
    {u'k', inserting, u"a digraph"},
    {u'm', commanding, u"to the start of the next line"},
    {u'm', inserting, u"a new line"},
    {u'n', commanding, u"a line down"},
    {u'n', inserting, u"complete the word, next"},
    {u'o', commanding, u"back in the jump list"},
    {u'o', inserting, u"one command of normal mode"},
    {u'p', commanding, u"a line up"},
    {u'p', inserting, u"complete the word, previous"},
    {u'q', commanding, u"visual block"},
    {u'q', inserting, u"insert the next key as it is"},
    {u'r', commanding, u"redo"},
    {u'r', inserting, u"insert a register"},
    {u't', inserting, u"indent the line"},
    {u'u', commanding, u"half a page up"},
    {u'u', inserting, u"delete to the line’s start"},
    {u'v', commanding, u"visual block"},
    {u'v', inserting, u"insert the next key as it is"},
    {u'w', commanding, u"split, close and choose panes"},
    {u'w', inserting, u"delete a word"},
    {u'x', commanding, u"subtract from the number"},
    {u'y', commanding, u"scroll up by a line"},
    {u'y', inserting, u"the character above the caret"},
    {u'^', commanding, u"the file before this one"},
    {u'@', inserting, u"insert what was typed last, and end"},
});

QString described(const VimChordUse &use)
{
    const auto isSame = [&](const VimChordUse &row) { return row.key == use.key && row.when == use.when; };
    const auto found = std::ranges::find_if(descriptions, isSame);
    const char16_t *text = found != descriptions.end() ? found->text : use.text;
    return localized(text ? text : u"what it does in Vim");
}

QKeySequence sequence(char16_t key)
{
    return Qt::CTRL | Qt::Key(QChar(key).toUpper().unicode());
}

QString commandWith(const QKeySequence &keys)
{
    for (const Action *action : Actions::inMenus()) {
        if (action->title && keySequences(*action).contains(keys)) {
            return formatted(localized(action->title), action->tag);
        }
    }
    return {};
}

} // namespace

VimChords::Owner VimChords::owner(char16_t key) const
{
    return m_entries.contains(entryFor(key)) ? Owner::quillet : Owner::vim;
}

void VimChords::setOwner(char16_t key, Owner owner)
{
    m_entries.removeAll(entryFor(key));
    if (owner == Owner::quillet) {
        m_entries << entryFor(key);
    }
}

void VimChords::restore()
{
    m_entries.removeIf([](const QString &entry) { return entry.size() == suffix.size() + 1 && entry.endsWith(suffix); });
}

bool VimChords::isVims(const VimKeyEvent &key) const
{
    const QString &text = key.charactersIgnoringModifiers;
    return !key.control || text.isEmpty() || owner(text.front().unicode()) == Owner::vim;
}

std::vector<VimChords::Chord> VimChords::all(const VimOptions &options)
{
    std::map<char16_t, Chord> found;
    for (const VimChordUse &use : VimEngine::controlChords(options)) {
        (use.when == inserting ? found[use.key].inserting : found[use.key].commanding) = described(use);
    }
    for (const VimKeymap::Mapping &mapping : VimKeymap::mappings(options.preset)) {
        if (const VimKeyStroke &first = mapping.keys.front(); first.control) {
            found[first.character].commanding = mapping.label;
        }
    }
    std::vector<Chord> chords;
    for (auto &[key, chord] : found) {
        const QKeySequence keys = sequence(key);
        chord.key = key;
        chord.name = keys.toString(QKeySequence::NativeText);
        chord.quillet = commandWith(keys);
        chords.push_back(std::move(chord));
    }
    std::stable_partition(chords.begin(), chords.end(), [](const Chord &chord) { return QChar(chord.key).isLetter(); });
    return chords;
}
