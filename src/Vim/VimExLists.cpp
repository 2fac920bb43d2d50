// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// What commands behind ":" show: lines, registers, marks, places.

#include "Vim/VimExFunctions.h"

#include "Base/FilePath.h"
#include "Base/Translation.h"
#include "Text/TextBoundaries.h"
#include "Vim/VimDigraphs.h"
#include "Vim/VimExTarget.h"
#include "Vim/VimMarks.h"
#include "Vim/VimRegisters.h"
#include "Vim/VimTextView.h"

using namespace Qt::StringLiterals;

namespace VimExFunctions {

namespace {

void show(VimExCall &call, const QString &title, const QStringList &lines)
{
    if (lines.size() == 1) {
        call.line.say(lines.front());
    } else if (!lines.isEmpty()) {
        call.target().list(title, lines.join(u'\n'));
    }
}

enum class Numbers { none, shown };

Result<void> printLines(VimExCall &call, Numbers numbers)
{
    VimExTarget &target = call.target();
    const VimLines text = target.lines();
    constexpr int width = 3;
    QStringList lines;
    for (qsizetype line = call.lines.first; line <= call.lines.last; ++line) {
        lines << (numbers == Numbers::shown ? u"%1 "_s.arg(line, width) : QString()) + text.string(line);
    }
    target.moveCaret(text.firstNonBlank(text.startOf(call.lines.last)));
    show(call, localized(u"Lines"), lines);
    return {};
}

/// A line of a list, in which what is no letter shows.
QString shown(const Rope &text)
{
    constexpr qsizetype longest = 200;
    QString line;
    for (const QChar unit : text.toString({0, std::min(text.length(), longest)})) {
        const char16_t code = unit.unicode();
        line += code < 0x20 && code != u'\t' ? u'^' + QString(QChar(code + 0x40)) : QString(unit);
    }
    return line;
}

/// A character as Vim shows it where that is none to be seen.
QString shownAlone(char16_t character)
{
    constexpr char16_t toLetter = 0x40;
    const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
    return !isControl ? QString(QChar(character))
                      : QString(character < 0x80 ? u'^' : u'~') + QChar(char16_t((character ^ toLetter) & 0x7F));
}

QStringList places(const VimPlaces &places, const VimLines &lines)
{
    QStringList rows{localized(u"    line  column  text")};
    size_t index = 0;
    for (const VimPlace &place : places.places()) {
        const qsizetype line = lines.number(place.offset);
        rows << u"%1%2 %3  %4"_s.arg(index == places.position() ? u">"_s : u" "_s)
                    .arg(line, 7)
                    .arg(place.offset - lines.startOf(line), 7)
                    .arg(lines.string(line).trimmed());
        ++index;
    }
    return rows;
}

} // namespace

Result<void> print(VimExCall &call)
{
    return printLines(call, Numbers::none);
}

Result<void> printNumbered(VimExCall &call)
{
    return printLines(call, Numbers::shown);
}

Result<void> lineNumber(VimExCall &call)
{
    call.line.say(QString::number(call.written > 0 ? call.lines.last : call.target().lines().count()));
    return {};
}

Result<void> listRegisters(VimExCall &call)
{
    const VimRegisters &registers = call.target().registers();
    QStringList rows{localized(u"Type Name Content")};
    const auto add = [&](char16_t name, const VimRegisterContents &contents) {
        const bool isWanted = call.argument.isEmpty() || call.argument.contains(QChar(name));
        if (isWanted && !contents.text.isEmpty()) {
            const QChar type = contents.isLinewise ? u'l' : contents.isBlock ? u'b' : u'c';
            rows << u"  %1  \"%2   %3"_s.arg(type).arg(QChar(name)).arg(shown(contents.text));
        }
    };
    add(u'"', registers.unnamed());
    for (const auto &[name, contents] : registers.named()) {
        add(name, contents);
    }
    add(u'+', registers.contents(u'+'));
    call.target().list(localized(u"Registers"), rows.join(u'\n'));
    return {};
}

Result<void> listMarks(VimExCall &call)
{
    const VimLines lines = call.target().lines();
    QStringList rows{localized(u"mark line  column  text")};
    for (const VimMarks::Mark &mark : call.target().marks().all()) {
        const qsizetype line = lines.number(mark.place);
        if (call.argument.isEmpty() || call.argument.contains(QChar(mark.name))) {
            rows << u" %1%2 %3  %4"_s.arg(QChar(mark.name))
                        .arg(line, 7)
                        .arg(mark.place - lines.startOf(line), 7)
                        .arg(lines.string(line).trimmed());
        }
    }
    for (const VimFileMarks::Mark &mark : call.target().marksElsewhere()) {
        if (call.argument.isEmpty() || call.argument.contains(QChar(mark.name))) {
            rows << u" %1%2 %3  %4"_s.arg(QChar(mark.name))
                        .arg(mark.place.line, 7)
                        .arg(mark.place.column, 7)
                        .arg(mark.place.text.startsWith(u'/') ? shownPath(mark.place.text) : mark.place.title);
        }
    }
    if (rows.size() == 1) {
        return failure(formatted(localized(u"Mark not set: %@"), call.argument));
    }
    call.target().list(localized(u"Marks"), rows.join(u'\n'));
    return {};
}

Result<void> listJumps(VimExCall &call)
{
    call.target().list(localized(u"Jumps"), places(call.target().jumps(), call.target().lines()).join(u'\n'));
    return {};
}

Result<void> listChanges(VimExCall &call)
{
    call.target().list(localized(u"Changes"), places(call.target().changes(), call.target().lines()).join(u'\n'));
    return {};
}

Result<void> workingFolder(VimExCall &call)
{
    call.line.say(shownPath(::workingFolder()));
    return {};
}

Result<void> tellPlace(VimExCall &call)
{
    VimExTarget &target = call.target();
    const VimLines lines = target.lines();
    const qsizetype line = lines.number(target.caret());
    const VimTextName name = target.name();
    call.line.say(formatted(localized(u"“%@”, line %d of %d, column %d"), name.path.isEmpty() ? name.title : shownPath(name.path), line,
                            lines.count(), target.caret() - lines.startOf(line) + 1));
    return {};
}

/// Of all that is shown as one.
Result<void> tellCharacter(VimExCall &call)
{
    VimExTarget &target = call.target();
    const VimLines lines = target.lines();
    const qsizetype caret = target.caret();
    if (caret >= lines.endOf(lines.number(caret))) {
        return failure(localized(u"No character here"));
    }
    QStringList codes;
    for (const uint code : target.text().toString(TextRange::between(caret, TextBoundaries::nextGrapheme(target.text(), caret))).toUcs4()) {
        const char32_t character = code;
        constexpr int fewestDigits = 4;
        codes << formatted(localized(u"<%@> U+%@, decimal %d"), shown(Rope(QString::fromUcs4(&character, 1))),
                           u"%1"_s.arg(code, fewestDigits, 16, QChar(u'0')).toUpper(), code);
    }
    call.line.say(codes.join(u"; "_s));
    return {};
}

Result<void> listDigraphs(VimExCall &call)
{
    constexpr qsizetype columns = 6;
    QStringList rows;
    QString row;
    qsizetype count = 0;
    for (const VimDigraphs::Digraph &digraph : VimDigraphs::all()) {
        const QString character = shownAlone(digraph.character);
        constexpr qsizetype width = 13;
        row += QString(QChar(digraph.first) + QString(QChar(digraph.second)) + u' ' + character + u' ' + QString::number(digraph.character))
                   .leftJustified(width);
        if (++count % columns == 0) {
            rows << std::exchange(row, {});
        }
    }
    rows << row;
    call.target().list(localized(u"Digraphs"), rows.join(u'\n'));
    return {};
}

QString refusalOfProgram(const QString &name)
{
    return formatted(localized(u"%@ runs other programs, which this editor does not"), name);
}

Result<void> refuseProgram(VimExCall &call)
{
    return failure(refusalOfProgram(u':' + call.name));
}

} // namespace VimExFunctions
