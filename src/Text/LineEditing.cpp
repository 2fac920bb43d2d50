// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineEditing.h"

#include "Text/LineRange.h"

#include <QStringList>

#include <algorithm>

namespace {

constexpr bool isIndent(QChar unit)
{
    return unit == u' ' || unit == u'\t';
}

/// A block of lines in pieces at its line feeds; the last piece is not empty but where the block is.
class Lines final {
public:
    explicit Lines(const QString &block) : m_pieces(block.split(u'\n'))
    {
        if (m_pieces.size() > 1 && m_pieces.back().isEmpty()) {
            m_pieces.removeLast();
            m_endsWithBreak = true;
        }
    }
    [[nodiscard]] QStringList &pieces() { return m_pieces; }
    [[nodiscard]] QString joined() const { return m_endsWithBreak ? m_pieces.join(u'\n') + u'\n' : m_pieces.join(u'\n'); }

private:
    QStringList m_pieces;
    bool m_endsWithBreak = false;
};

qsizetype indentLength(QStringView line)
{
    return std::ranges::find_if_not(line, isIndent) - line.begin();
}

bool isBlank(QStringView line)
{
    return line.trimmed().isEmpty();
}

void outdent(QString &line, int width)
{
    if (line.startsWith(u'\t')) {
        line.remove(0, 1);
        return;
    }
    qsizetype spaces = 0;
    while (spaces < std::min<qsizetype>(width, line.size()) && line[spaces] == u' ') {
        ++spaces;
    }
    line.remove(0, spaces);
}

/// The blanks that the line at `start` begins with.
QString indentAt(const Rope &text, TextRange line)
{
    RopeCursor cursor(text);
    qsizetype end = line.location;
    while (end < line.end() && isIndent(cursor.at(end))) {
        ++end;
    }
    return text.toString(TextRange::between(line.location, end));
}

bool opensBlock(const Rope &text, TextRange line)
{
    RopeCursor cursor(text);
    qsizetype end = line.end();
    while (end > line.location && QChar(cursor.at(end - 1)).isSpace()) {
        --end;
    }
    return end > line.location && QStringView(u"{[(:").contains(QChar(cursor.at(end - 1)));
}

} // namespace

namespace LineEditing {

std::optional<LineEdit> shifted(const Rope &text, TextRange selection, Shift shift, Indentation indentation)
{
    const TextRange block = selectedLines(text, selection);
    const QString before = text.toString(block);
    const QString level = indentation.level();
    Lines lines(before);
    for (QString &line : lines.pieces()) {
        if (shift == Shift::outdent) {
            outdent(line, indentation.width);
        } else if (!line.isEmpty()) {
            line.prepend(level);
        }
    }
    const QString after = lines.joined();
    if (after == before) {
        return std::nullopt;
    }
    const qsizetype grown = after.size() - before.size();
    const qsizetype moved = shift == Shift::indent ? level.size() : -std::min<qsizetype>(selection.location - block.location, level.size());
    const qsizetype length = text.length() + grown;
    const qsizetype start = std::clamp(selection.location + moved, block.location, length);
    const qsizetype end = std::min(start + std::max<qsizetype>(selection.length + grown, 0), length);
    return LineEdit{block, after, {start, end}};
}

LineEdit tabbed(const Rope &text, TextRange selection, int tabWidth)
{
    RopeCursor cursor(text);
    qsizetype column = 0;
    for (qsizetype offset = lineRange(text, {selection.location, 0}).location; offset < selection.location; ++offset) {
        column = cursor.at(offset) == u'\t' ? (column / tabWidth + 1) * tabWidth : column + 1;
    }
    const qsizetype count = tabWidth - column % tabWidth;
    return {selection, QString(count, u' '), TextSelection::at(selection.location + count)};
}

LineEdit brokenLine(const Rope &text, TextRange selection, Indentation indentation)
{
    const TextRange line = lineRange(text, {selection.location, 0});
    QString inserted = u'\n' + indentAt(text, line);
    if (opensBlock(text, line)) {
        inserted += indentation.level();
    }
    const qsizetype caret = selection.location + inserted.size();
    return {selection, std::move(inserted), TextSelection::at(caret)};
}

std::optional<LineEdit> unindented(const Rope &text, qsizetype caret, int tabWidth)
{
    RopeCursor cursor(text);
    const qsizetype start = lineRange(text, {caret, 0}).location;
    qsizetype spaces = 0;
    while (caret - spaces > start && cursor.at(caret - spaces - 1) == u' ') {
        ++spaces;
    }
    if (spaces == 0 || caret - spaces > start) {
        return std::nullopt;
    }
    const qsizetype rest = spaces % tabWidth;
    const qsizetype count = rest == 0 ? std::min<qsizetype>(tabWidth, spaces) : rest;
    return LineEdit{{caret - count, count}, QString(), TextSelection::at(caret - count)};
}

std::optional<LineEdit> commentToggled(const Rope &text, TextRange selection, QStringView token)
{
    const TextRange block = selectedLines(text, selection);
    const QString before = text.toString(block);
    Lines lines(before);
    bool isCommented = true;
    qsizetype column = std::numeric_limits<qsizetype>::max();
    for (const QString &line : lines.pieces()) {
        if (!isBlank(line)) {
            const qsizetype indent = indentLength(line);
            isCommented = isCommented && QStringView(line).sliced(indent).startsWith(token);
            column = std::min(column, indent);
        }
    }
    for (QString &line : lines.pieces()) {
        if (isBlank(line)) {
            continue;
        }
        if (isCommented) {
            const qsizetype indent = indentLength(line);
            const bool hasSpace = line.size() > indent + token.size() && line[indent + token.size()] == u' ';
            line.remove(indent, token.size() + (hasSpace ? 1 : 0));
        } else {
            line.insert(column, token.toString() + u' ');
        }
    }
    const QString after = lines.joined();
    if (after == before) {
        return std::nullopt;
    }
    return LineEdit{block, after, {block.location, block.location + after.size()}};
}

LineEdit duplicated(const Rope &text, TextRange selection)
{
    const TextRange block = selectedLines(text, selection);
    QString copy = text.toString(block);
    qsizetype caret = block.end();
    if (!copy.endsWith(u'\n')) {
        copy.prepend(u'\n');
        ++caret;
    }
    return {{block.end(), 0}, copy, TextSelection::at(caret)};
}

std::optional<LineEdit> deleted(const Rope &text, TextRange selection)
{
    const TextRange block = selectedLines(text, selection);
    if (block.isEmpty()) {
        return std::nullopt;
    }
    return LineEdit{block, QString(), TextSelection::at(block.location)};
}

} // namespace LineEditing
