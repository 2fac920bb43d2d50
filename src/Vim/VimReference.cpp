// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimReference.h"

#include "Base/Translation.h"
#include "Settings/Preferences.h"
#include "Vim/VimExCommands.h"
#include "Vim/VimKeymap.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;

namespace {

using VimReference::Row;
using VimReference::Section;

struct KeyRow {
    std::array<QStringView, 6> keys;
    const char16_t *text;
};

constexpr auto modes = std::to_array<KeyRow>({
    {{u"i", u"a"}, u"insert before / after the cursor"},
    {{u"I", u"A"}, u"insert at the first non-blank / end of line"},
    {{u"o", u"O"}, u"open a line below / above"},
    {{u"v", u"V"}, u"visual, visual line"},
    {{u":"}, u"command line"},
    {{u"/", u"?"}, u"search forward / backward"},
    {{u"Esc"sv}, u"back to normal mode"},
});

constexpr auto motions = std::to_array<KeyRow>({
    {{u"h", u"j", u"k", u"l"}, u"left, down, up, right - arrows work too"},
    {{u"w", u"W", u"b", u"B"}, u"word / WORD forward and back"},
    {{u"e", u"E"}, u"end of word"},
    {{u"0", u"^", u"$"}, u"start of line, first non-blank, end of line"},
    {{u"gg", u"G", u"{n}G"}, u"first line, last line, line n"},
    {{u"f", u"F", u"t", u"T"}, u"find a character on the line; ; and , repeat"},
    {{u"{", u"}"}, u"previous / next blank line"},
    {{u"%"}, u"matching bracket"},
    {{u"H", u"M", u"L"}, u"top, middle, bottom of the screen"},
    {{u"⌃D", u"⌃U", u"⌃F", u"⌃B"}, u"half page / page down and up"},
    {{u"`", u"'"}, u"jump to a mark, exactly / to its line"},
});

constexpr auto operators = std::to_array<KeyRow>({
    {{u"d", u"dd"}, u"delete"},
    {{u"c", u"cc"}, u"change"},
    {{u"y", u"yy"}, u"yank"},
    {{u">", u"<"}, u"indent, outdent"},
    {{u"gu", u"gU", u"g~"}, u"lower case, upper case, toggle case"},
});

constexpr auto textObjects = std::to_array<KeyRow>({
    {{u"iw", u"aw", u"iW", u"aW"}, u"word, WORD"},
    {{u"ip", u"ap"}, u"paragraph"},
    {{u"i\"", u"a\"", u"i'", u"a'"}, u"quoted string"},
    {{u"i(", u"a(", u"i[", u"a[", u"i{", u"a{"}, u"brackets"},
});

constexpr auto editing = std::to_array<KeyRow>({
    {{u"x", u"X"}, u"delete character forward / back"},
    {{u"s", u"S"}, u"substitute character / line"},
    {{u"D", u"C", u"Y"}, u"to end of line: delete, change, yank"},
    {{u"r"}, u"replace one character"},
    {{u"~"}, u"toggle case"},
    {{u"J"}, u"join lines"},
    {{u"p", u"P"}, u"paste after / before"},
    {{u"u", u"⌃R"}, u"undo, redo"},
    {{u"."}, u"repeat the last change"},
    {{u"m{a-z}"}, u"set a mark"},
    {{u"\"{a-z}"}, u"choose a register; \"+ is the system clipboard"},
});

constexpr auto windows = std::to_array<KeyRow>({
    {{u"⌃w v"sv, u"⌃w s"sv}, u"split right / down"},
    {{u"⌃w c"sv, u"⌃w o"sv}, u"close this split / close the others"},
    {{u"⌃w w"sv, u"⌃w W"sv}, u"cycle forward / back"},
    {{u"⌃w h"sv, u"⌃w j"sv, u"⌃w k"sv, u"⌃w l"sv}, u"move between panes"},
});

constexpr auto searching = std::to_array<KeyRow>({
    {{u"/", u"?"}, u"search forward / backward"},
    {{u"n", u"N"}, u"next / previous match"},
    {{u"*", u"#"}, u"search the word under the cursor"},
});

constexpr auto commandLine = std::to_array<KeyRow>({
    {{u":w", u":q", u":wq", u":x"}, u"write, quit, both"},
    {{u":q!"}, u"quit without saving"},
    {{u":e", u":e {file}"sv}, u"reload, or open a file"},
    {{u":{number}"sv}, u"go to a line"},
    {{u":s/old/new/"sv, u":%s/old/new/g"sv}, u"substitute; flags g and i"},
    {{u":vs", u":sp", u":only"sv}, u"split right, split down, close the others"},
});

struct SectionRow {
    const char16_t *heading;
    std::span<const KeyRow> rows;
    const char16_t *intro = nullptr;
};

constexpr auto sectionRows = std::to_array<SectionRow>({
    {u"Modes", modes},
    {u"Motions", motions},
    {u"Operators", operators, u"Each takes a motion, a text object, or a doubled form for whole lines."},
    {u"Text objects", textObjects},
    {u"Editing", editing},
    {u"Windows", windows, u"Panes are a flat list rather than a tree, so h and k mean the pane before this one and j and l the one after."},
    {u"Search", searching},
    {u"Command line", commandLine},
});

void append(std::vector<Row> &rows, std::span<const KeyRow> source)
{
    for (const KeyRow &row : source) {
        Row &added = rows.emplace_back(Row{.keys = {}, .text = localized(row.text)});
        for (const QStringView key : row.keys) {
            if (!key.isEmpty()) {
                added.keys << key.toString();
            }
        }
    }
}

/// The options of `:set`: switches first.
std::vector<Row> optionRows()
{
    std::vector<Row> switches;
    std::vector<Row> others;
    for (const AnySetting *setting : Settings::all()) {
        const ExOption &option = setting->details.option;
        if (!option.exists()) {
            continue;
        }
        const QString name = option.names.front().toString();
        const QString text = localized(option.purpose);
        if (const auto *number = std::get_if<int>(&setting->byDefault)) {
            others.push_back({{u":set %1=%2"_s.arg(name).arg(*number)}, text});
        } else if (option.direction == ExOption::Direction::onlyOff) {
            others.push_back({{u":set no"_s + name}, text});
        } else {
            switches.push_back({{u":set "_s + name, u":set no"_s + name}, text});
        }
    }
    std::ranges::move(others, std::back_inserter(switches));
    return switches;
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

std::vector<Section> VimReference::sections()
{
    std::vector<Section> all;
    for (const SectionRow &row : sectionRows) {
        Section &section =
            all.emplace_back(Section{.heading = localized(row.heading), .intro = row.intro ? localized(row.intro) : QString(), .rows = {}});
        append(section.rows, row.rows);
    }
    std::ranges::move(optionRows(), std::back_inserter(all.back().rows));
    return all;
}

QString VimReference::markdown(VimKeymapPreset preset)
{
    QStringList lines{
        u"# "_s + localized(u"Vim keys"), QString(),
        localized(u"Modal editing is on. The mode shows at the bottom left; Esc always returns to normal mode. Turn it off in "
                  u"Settings ▸ Editing, or with :set novim."),
        QString(), localized(u"Counts work wherever they make sense, on both sides of an operator: 2d3w deletes six words.")};
    for (const Section &section : sections()) {
        lines << QString() << u"## "_s + section.heading << QString();
        if (!section.intro.isEmpty()) {
            lines << section.intro << QString();
        }
        lines << table(section.rows, u" "_s);
    }
    lines << presetSection(preset);
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
