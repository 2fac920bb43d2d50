// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimReference.h"

#include "Base/Translation.h"
#include "Settings/Preferences.h"
#include "Vim/VimChords.h"
#include "Vim/VimEngine.h"
#include "Vim/VimExCommands.h"
#include "Vim/VimExactObject.h"
#include "Vim/VimTextObject.h"

#include <QKeySequence>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using VimReference::Row;
using VimReference::Section;

struct SectionRow {
    VimKeyHelp::Section section;
    const char16_t *heading;
    const char16_t *intro = nullptr;
};

using enum VimKeyHelp::Section;

constexpr auto sectionRows = std::to_array<SectionRow>({
    {modes, u"Modes"},
    {inserting, u"Insert mode"},
    {motions, u"Motions"},
    {operators, u"Operators", u"Each takes a motion, a text object, or a doubled form for whole lines."},
    {textObjects, u"Text objects"},
    {editing, u"Editing"},
    {windows, u"Windows", u"Panes are a flat list rather than a tree, so h and k mean the pane before this one and j and l the one after."},
    {search, u"Search"},
    {commandLine, u"Command line"},
});

/// The rows of one section, with the keys beside each other that are described together.
std::vector<Row> rowsOf(VimKeyHelp::Section section, const VimKeyHelpEntries &entries)
{
    std::vector<Row> rows;
    bool isHere = false;
    for (const VimKeyHelpEntry &entry : entries) {
        if (!entry.help.isBesideAbove) {
            isHere = entry.help.section == section || entry.help.alsoIn == section;
            if (isHere) {
                rows.push_back({.keys = {}, .text = localized(entry.help.text)});
            }
        }
        if (isHere) {
            // What they stand for, as in ":e {file}", is said in the language of the interface; keys have no text of their own there.
            std::ranges::transform(entry.keys, std::back_inserter(rows.back().keys), [](const QString &key) { return localized(key); });
        }
    }
    return rows;
}

QString escaped(QString text)
{
    return text.replace(u'|', u"\\|"_s);
}

/// A heading of a table, and its rows with the keys of each joined by `between`.
QStringList table(const std::vector<Row> &rows, const QString &between)
{
    QStringList lines{u"| %1 | |"_s.arg(localized(u"Key")), u"|---|---|"_s};
    for (const Row &row : rows) {
        QStringList keys;
        for (const QString &key : row.keys) {
            keys << u'`' + escaped(key) + u'`';
        }
        lines << u"| "_s + keys.join(between) + u" | "_s + escaped(row.text) + u" |"_s;
    }
    return lines;
}

/// One row for each label in each section, with all its keys.
std::vector<Section> sectionsOfKeymap()
{
    std::vector<Section> sections;
    for (const VimKeymap::Mapping &mapping : VimKeymap::mappings(VimKeymapPreset::lazyVim)) {
        auto section = std::ranges::find(sections, mapping.section, &Section::heading);
        if (section == sections.end()) {
            section = sections.insert(section, Section{.heading = mapping.section, .intro = {}, .rows = {}});
        }
        auto row = std::ranges::find(section->rows, mapping.label, &Row::text);
        if (row == section->rows.end()) {
            row = section->rows.insert(row, Row{.keys = {}, .text = mapping.label});
        }
        row->keys << VimKeymap::describe(mapping.keys);
    }
    return sections;
}

Section insertMode(const VimOptions &options)
{
    Section section{.heading = localized(u"Insert mode"), .intro = {}, .rows = {}};
    for (const VimChords::Chord &chord : VimChords::all(options)) {
        if (!chord.inserting.isEmpty()) {
            section.rows.push_back({.keys = {u'⌃' + QString(QChar(chord.key))}, .text = chord.inserting});
        }
    }
    return section;
}

/// "Ctrl+W v" for "⌃w v".
QString asOnTheKeyboard(const QString &keys)
{
    if (keys == "Space"_L1 || keys == "Backspace"_L1) {
        return QKeySequence::fromString(keys, QKeySequence::PortableText).toString(QKeySequence::NativeText);
    }
    QString named;
    for (qsizetype place = 0; place < keys.size(); ++place) {
        const bool isControl = keys[place] == u'⌃';
        if ((isControl || keys[place] == u'⌥') && place + 1 < keys.size()) {
            const QKeyCombination chord(isControl ? Qt::ControlModifier : Qt::AltModifier, Qt::Key(keys[++place].toUpper().unicode()));
            named += QKeySequence(chord).toString(QKeySequence::NativeText);
        } else {
            named += keys[place];
        }
    }
    const QString space = QKeySequence(Qt::Key_Space).toString(QKeySequence::NativeText);
    return named.replace("<leader>"_L1, space + u' ');
}

QStringList presetSection(VimKeymapPreset preset)
{
    QStringList lines{QString(), u"## "_s + localized(u"LazyVim keys"), QString()};
    lines << (preset == VimKeymapPreset::lazyVim ? localized(u"Currently active.")
                                                 : localized(u"Not active - choose the LazyVim keymap in Settings ▸ Editing."))
          << QString()
          << localized(u"<leader> is the space bar. Note that H and L stop meaning screen-top and screen-bottom, exactly as they do in "
                       u"LazyVim.");
    for (const Section &section : sectionsOfKeymap()) {
        lines << QString() << u"### "_s + section.heading << QString() << table(section.rows, u" · "_s);
    }
    lines << QString()
          << localized(u"Deliberately unbound: everything needing a language server, a fuzzy finder, a file tree, git or a terminal. A key "
                       u"that answers “not available” reads as a broken feature rather than an absent one.");
    return lines;
}

/// The trimmed cells of a line that begins with "|".
QStringList splitOnUnescapedPipes(const QString &line)
{
    QStringList cells(1);
    for (qsizetype at = 1; at < line.size(); ++at) {
        if (line[at] == u'|' && line[at - 1] != u'\\') {
            cells.emplace_back();
        } else {
            cells.back() += line[at];
        }
    }
    if (line.endsWith(u'|')) {
        cells.removeLast();
    }
    std::ranges::transform(cells, cells.begin(), [](const QString &cell) { return cell.trimmed(); });
    return cells;
}

bool isSeparator(const QString &cell)
{
    return !cell.isEmpty() && std::ranges::all_of(cell, [](QChar unit) { return unit == u'-'; });
}

void align(std::span<QString> lines)
{
    constexpr qsizetype leastSeparator = 3;
    std::vector<QStringList> rows;
    std::vector<qsizetype> widths;
    for (const QString &line : lines) {
        const QStringList &cells = rows.emplace_back(splitOnUnescapedPipes(line));
        widths.resize(std::max(widths.size(), size_t(cells.size())));
        for (qsizetype column = 0; column < cells.size(); ++column) {
            qsizetype &width = widths[size_t(column)];
            width = std::max(width, isSeparator(cells[column]) ? 0 : cells[column].size());
        }
    }
    for (size_t index = 0; index < lines.size(); ++index) {
        QStringList &cells = rows[index];
        for (qsizetype column = 0; column < cells.size(); ++column) {
            const qsizetype width = widths[size_t(column)];
            cells[column] =
                isSeparator(cells[column]) ? QString(std::max(width, leastSeparator), u'-') : cells[column].leftJustified(width);
        }
        lines[index] = u"| "_s + cells.join(u" | "_s) + u" |"_s;
    }
}

} // namespace

std::vector<Section> VimReference::sections(const VimOptions &options)
{
    VimKeyHelpEntries entries = VimEngine::keyHelp(options);
    std::ranges::move(VimTextObject::keyHelp(), std::back_inserter(entries));
    if (options.isExact) {
        std::ranges::move(VimExactObject::keyHelp(), std::back_inserter(entries));
    }
    std::ranges::move(VimExCommand::keyHelp(options.isExact ? VimExCommand::Audience::exact : VimExCommand::Audience::byDefault),
                      std::back_inserter(entries));
    std::vector<Section> all;
    for (const SectionRow &row : sectionRows) {
        // Exactly like Vim these keys lead to the pane on that side.
        const bool isTold = row.intro && !(options.isExact && row.section == windows);
        all.push_back(
            {.heading = localized(row.heading), .intro = isTold ? localized(row.intro) : QString(), .rows = rowsOf(row.section, entries)});
    }
    std::erase_if(all, [](const Section &section) { return section.rows.empty(); });
    return all;
}

std::vector<Section> VimReference::overview(const VimOptions &options, const VimChords &chords)
{
    std::vector<Section> all = sections(options);
    const Section inserted = insertMode(options);
    std::erase_if(all, [&](const Section &section) { return section.heading == inserted.heading; });
    all.insert(all.begin() + 1, inserted);
    if (options.preset == VimKeymapPreset::lazyVim) {
        std::ranges::move(sectionsOfKeymap(), std::back_inserter(all));
    }
    const auto isNotVims = [&](const QString &key) {
        return key.size() > 1 && key[0] == u'⌃' && chords.owner(key[1].toLower().unicode()) == VimChords::Owner::quillet;
    };
    for (Section &section : all) {
        for (Row &row : section.rows) {
            row.keys.removeIf(isNotVims);
            std::ranges::transform(row.keys, row.keys.begin(), asOnTheKeyboard);
        }
        std::erase_if(section.rows, [](const Row &row) { return row.keys.isEmpty(); });
    }
    std::erase_if(all, [](const Section &section) { return section.rows.empty(); });
    return all;
}

QString VimReference::markdown(const VimOptions &options)
{
    QStringList lines{
        u"# "_s + localized(u"Vim keys"), QString(),
        localized(u"Modal editing is on. The mode shows at the bottom left; Esc always returns to normal mode. Turn it off in "
                  u"Settings ▸ Editing, or with :set novim."),
        QString(), localized(u"Counts work wherever they make sense, on both sides of an operator: 2d3w deletes six words.")};
    for (const Section &section : sections(options)) {
        lines << QString() << u"## "_s + section.heading << QString();
        if (!section.intro.isEmpty()) {
            lines << section.intro << QString();
        }
        lines << table(section.rows, u" "_s);
    }
    lines << presetSection(options.preset);
    if (options.isExact) {
        return aligningTables(lines.join(u'\n'));
    }
    lines << QString() << u"## "_s + localized(u"Not implemented") << QString()
          << localized(
                 u"Macros (q, @), visual block (⌃V), the jump list (⌃O, ⌃I) and :g. Anything unrecognised after : says so in the status "
                 u"bar rather than failing quietly.");
    return aligningTables(lines.join(u'\n'));
}

QString VimReference::aligningTables(const QString &markdown)
{
    QStringList lines = markdown.split(u'\n');
    const auto isRow = [](const QString &line) { return line.startsWith(u'|'); };
    for (auto row = lines.begin(); row != lines.end();) {
        row = std::find_if(row, lines.end(), isRow);
        const auto end = std::find_if_not(row, lines.end(), isRow);
        align({row, end});
        row = end;
    }
    return lines.join(u'\n');
}
