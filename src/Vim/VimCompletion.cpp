// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimCompletion.h"

#include "Base/FilePath.h"
#include "Settings/Settings.h"
#include "Vim/VimExCommands.h"

#include <QDir>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

/// Nobody goes through more of them.
constexpr qsizetype mostFiles = 1000;
/// Shorter names are short forms.
constexpr qsizetype shortestName = 4;

bool isLetter(QChar unit)
{
    return unit.isLetter() && unit.unicode() < 0x80;
}

/// Behind lines that a command is for, and blanks.
qsizetype nameStart(QStringView line)
{
    qsizetype place = 0;
    while (place < line.size() && !isLetter(line[place])) {
        const QChar unit = line[place++];
        if (unit == u'\'' && place < line.size()) {
            ++place; // a mark's name
        } else if (unit == u'/' || unit == u'?') {
            const qsizetype end = line.indexOf(unit, place);
            place = end < 0 ? line.size() : end + 1;
        }
    }
    return place;
}

QStringList sorted(QStringList names)
{
    names.sort();
    names.removeDuplicates();
    return names;
}

} // namespace

VimCompletion::Part VimCompletion::partOf(QStringView line)
{
    const qsizetype start = nameStart(line);
    qsizetype end = start;
    while (end < line.size() && isLetter(line[end])) {
        ++end;
    }
    if (end == line.size()) {
        return {Kind::command, start};
    }
    const QStringView name = line.sliced(start, end - start);
    end += line[end] == u'!' ? 1 : 0;
    if (end == line.size() || line[end] != u' ') {
        return {};
    }
    const VimExCommand *command = VimExCommand::namedExactly(name);
    const unsigned takes = command ? command->takes : VimExCommand::nothing;
    if ((takes & VimExCommand::optionNames) != 0) {
        return {Kind::option, line.lastIndexOf(u' ') + 1};
    }
    while (end < line.size() && line[end] == u' ') {
        ++end;
    }
    return {(takes & VimExCommand::fileName) != 0 ? Kind::file : Kind::nothing, end};
}

QStringList VimCompletion::commands(QStringView typed)
{
    QStringList names = VimExCommand::allNames(VimExCommand::Audience::exact);
    names.removeIf([typed](const QString &name) { return !name.startsWith(typed) || !isLetter(name.back()); });
    return sorted(std::move(names));
}

QStringList VimCompletion::options(QStringView typed)
{
    constexpr auto off = "no"_L1;
    QStringList names;
    for (const AnySetting *setting : Settings::all()) {
        const ExOption &option = setting->details.option;
        for (const QStringView name : option.names) {
            if (name.isEmpty() || !isLetter(name.back()) || (name.size() < shortestName && name != option.names.front())) {
                continue;
            }
            if (name.startsWith(typed) && option.direction == ExOption::Direction::both) {
                names << name.toString();
            }
            if (typed.startsWith(off) && setting->as<bool>() && name.startsWith(typed.sliced(off.size()))) {
                names << off + name.toString();
            }
        }
    }
    return sorted(std::move(names));
}

QStringList VimCompletion::files(const QString &typed, const QString &folder)
{
    const qsizetype nameFrom = typed.lastIndexOf(u'/') + 1;
    const QString before = typed.first(nameFrom);
    const QString name = typed.sliced(nameFrom);
    const bool showsHidden = name.startsWith(u'.');
    const QDir::Filters hidden = showsHidden ? QDir::Hidden : QDir::Filters();
    QStringList found;
    if (typed == "~"_L1) {
        return {u"~/"_s};
    }
    const QDir place(before.isEmpty() ? folder : absoluteFilePath(before, folder));
    for (const QFileInfo &entry : place.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | hidden, QDir::NoSort)) {
        if (entry.fileName().startsWith(name)) {
            found << before + entry.fileName() + (entry.isDir() ? u"/"_s : QString());
        }
    }
    found = sorted(std::move(found));
    found.resize(std::min(found.size(), mostFiles));
    return found;
}
