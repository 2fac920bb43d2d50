// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineEditing.h"

#include "Text/LineWalk.h"
#include "Text/TextBoundaries.h"

#include <algorithm>

namespace {

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

TextEdits indentation(const Rope &text, TextRange block, const QString &level, Breaks breaks)
{
    TextEdits edits;
    RopeCursor cursor(text);
    const Rope inserted(level);
    forEachLine(text, block, breaks, [&](TextRange line) {
        const char16_t first = cursor.at(line.location);
        if (breaks == Breaks::all ? !isLineEnd(first) : first != u'\n') {
            edits.add({line.location, 0}, inserted);
        }
    });
    return edits;
}

TextEdits outdentation(const Rope &text, TextRange block, qsizetype mostSpaces, Breaks breaks)
{
    TextEdits edits;
    RopeCursor cursor(text);
    forEachLine(text, block, breaks, [&](TextRange line) {
        qsizetype removed = cursor.at(line.location) == u'\t' ? 1 : 0;
        if (removed == 0) {
            while (removed < std::min(mostSpaces, line.length) && cursor.at(line.location + removed) == u' ') {
                ++removed;
            }
        }
        edits.add({line.location, removed}, Rope());
    });
    return edits;
}

std::optional<TextStep> shifted(const Rope &text, TextRange selection, Shift shift, Indentation style, std::optional<TextRange> lines)
{
    const TextRange block = lines.value_or(selectedLines(text, selection));
    const QString level = style.level();
    TextEdits edits = shift == Shift::indent ? indentation(text, block, level, Breaks::lineFeeds)
                                             : outdentation(text, block, style.width, Breaks::lineFeeds);
    if (edits.isEmpty()) {
        return std::nullopt;
    }
    const qsizetype moved = shift == Shift::indent ? level.size() : -std::min<qsizetype>(selection.location - block.location, level.size());
    const qsizetype length = text.length() + edits.growth();
    const qsizetype start = std::clamp(selection.location + moved, block.location, length);
    const qsizetype end = std::min(start + std::max<qsizetype>(selection.length + edits.growth(), 0), length);
    return TextStep{std::move(edits), {start, end}};
}

TextStep tabbed(const Rope &text, TextRange selection, Indentation indentation)
{
    const int tabWidth = indentation.tabWidth();
    RopeCursor cursor(text);
    qsizetype column = 0;
    for (qsizetype offset = lineRange(text, {selection.location, 0}).location; offset < selection.location; ++offset) {
        column = cursor.at(offset) == u'\t' ? (column / tabWidth + 1) * tabWidth : column + 1;
    }
    const qsizetype count = indentation.width - column % indentation.width;
    return {{selection, QString(count, u' ')}, TextSelection::at(selection.location + count)};
}

TextStep brokenLine(const Rope &text, TextRange selection, Indentation indentation)
{
    QString inserted = u'\n' + leadingBlanks(text, selection.location);
    if (opensBlock(text, lineRange(text, {selection.location, 0}))) {
        inserted += indentation.level();
    }
    return {{selection, inserted}, TextSelection::at(selection.location + inserted.size())};
}

TextStep brokenPair(const Rope &text, qsizetype caret, Indentation indentation)
{
    const QString behind = u'\n' + leadingBlanks(text, caret);
    const QString inside = behind + indentation.level();
    return {{{caret, 0}, QString(inside + behind)}, TextSelection::at(caret + inside.size())};
}

std::optional<TextStep> unindented(const Rope &text, qsizetype caret, int tabWidth)
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
    return TextStep{{{caret - count, count}, Rope()}, TextSelection::at(caret - count)};
}

std::optional<TextStep> commentToggled(const Rope &text, TextRange selection, QStringView token)
{
    struct Line {
        qsizetype start = 0;
        qsizetype indent = 0;
        qsizetype commentLength = 0;
    };
    const TextRange block = selectedLines(text, selection);
    std::vector<Line> lines;
    bool isCommented = true;
    qsizetype column = std::numeric_limits<qsizetype>::max();
    forEachLine(text, block, Breaks::lineFeeds, [&](TextRange line) {
        const QString content = text.toString(line);
        if (QStringView(content).trimmed().isEmpty()) {
            return;
        }
        const qsizetype indent = indentEnd(text, line) - line.location;
        const QStringView behind = QStringView(content).sliced(indent);
        const bool hasToken = behind.startsWith(token);
        const bool hasSpace = hasToken && behind.sliced(token.size()).startsWith(u' ');
        lines.push_back({line.location, indent, token.size() + (hasSpace ? 1 : 0)});
        isCommented = isCommented && hasToken;
        column = std::min(column, indent);
    });
    TextEdits edits;
    const Rope inserted(QString(token.toString() + u' '));
    for (const Line &line : lines) {
        if (isCommented) {
            edits.add({line.start + line.indent, line.commentLength}, Rope());
        } else {
            edits.add({line.start + column, 0}, inserted);
        }
    }
    if (edits.isEmpty()) {
        return std::nullopt;
    }
    const TextSelection after{block.location, block.end() + edits.growth()};
    return TextStep{std::move(edits), after};
}

TextStep duplicated(const Rope &text, TextRange selection)
{
    const TextRange block = selectedLines(text, selection);
    Rope copy = text.slice(block);
    const bool endsInLineFeed = !copy.isEmpty() && copy.at(copy.length() - 1) == u'\n';
    if (!endsInLineFeed) {
        copy.replace({0, 0}, u"\n");
    }
    return {{{block.end(), 0}, copy}, TextSelection::at(block.end() + (endsInLineFeed ? 0 : 1))};
}

std::optional<TextStep> deleted(const Rope &text, TextRange selection)
{
    const TextRange block = selectedLines(text, selection);
    if (block.isEmpty()) {
        return std::nullopt;
    }
    return TextStep{{block, Rope()}, TextSelection::at(block.location)};
}

std::optional<TextStep> joined(const Rope &text, qsizetype offset, qsizetype count, Glue glue)
{
    TextStep step;
    RopeCursor cursor(text);
    TextRange line = lineRange(text, {offset, 0});
    qsizetype contentStart = line.location;
    // What the line ends with, as far as it was put together; none while it is empty.
    std::optional<char16_t> last;
    for (qsizetype lines = 1; lines < count && line.end() < text.length(); ++lines) {
        qsizetype end = contentEnd(text, line);
        while (glue == Glue::oneBlank && end > contentStart && isIndent(cursor.at(end - 1))) {
            --end;
        }
        if (end > contentStart) {
            last = cursor.at(end - 1);
        }
        const TextRange next = lineRange(text, {line.end(), 0});
        const qsizetype nextContent = indentEnd(text, next);
        const char16_t first = nextContent < text.length() ? cursor.at(nextContent) : u'\0';
        const bool isNextBlank = nextContent == text.length() ? glue == Glue::oneBlank : first == u'\n' || first == u'\r';
        const bool isInBrackets =
            glue == Glue::oneBlank && last && (QStringView(u"([{").contains(QChar(*last)) || QStringView(u")]}").contains(QChar(first)));
        const bool isGlued = !last || isIndent(*last) || isNextBlank || isInBrackets;
        step.after = TextSelection::at(end + step.edits.growth());
        step.edits.add(TextRange::between(end, nextContent), isGlued ? Rope() : Rope(u" "));
        if (!isGlued) {
            last = u' ';
        }
        contentStart = nextContent;
        line = next;
    }
    return step.edits.isEmpty() ? std::nullopt : std::optional(std::move(step));
}

std::optional<TextStep> joinedLines(const Rope &text, TextRange selection)
{
    const TextRange block = selectedLines(text, selection);
    qsizetype count = 0;
    forEachLine(text, block, Breaks::all, [&count](TextRange) { ++count; });
    auto step = joined(text, block.location, std::max<qsizetype>(count, 2), Glue::oneBlank);
    if (step && !selection.isEmpty()) {
        const TextRange kept = step->edits.mapped(selection);
        step->after = {kept.location, kept.end()};
    }
    return step;
}

std::optional<TextStep> moved(const Rope &text, TextRange block, Neighbour neighbour)
{
    const bool isUp = neighbour == Neighbour::before;
    if (isUp ? block.location == 0 : block.end() >= text.length()) {
        return std::nullopt;
    }
    const TextRange other = lineRange(text, {isUp ? block.location - 1 : block.end(), 0});
    Rope swapped = text.slice(isUp ? block : other);
    // The last line of a text may have no break: it gets that of the line that is the last one now.
    const bool hasBreak = !swapped.isEmpty() && isLineEnd(swapped.at(swapped.length() - 1));
    if (!hasBreak) {
        swapped.replace({swapped.length(), 0}, u"\n");
    }
    const qsizetype start = block.united(other).location + (isUp ? 0 : swapped.length());
    swapped.replace({swapped.length(), 0}, text.slice(isUp ? other : block));
    if (!hasBreak) {
        swapped.replace({swapped.length() - 1, 1}, QStringView());
    }
    return TextStep{{block.united(other), swapped}, {start, start + block.length}};
}

std::optional<TextStep> movedLines(const Rope &text, TextRange selection, Neighbour neighbour)
{
    const TextRange block = selectedLines(text, selection);
    auto step = moved(text, block, neighbour);
    if (step) {
        const qsizetype start = step->after.anchor + selection.location - block.location;
        const qsizetype end = std::min(start + selection.length, text.length());
        step->after = {start, end};
    }
    return step;
}

TextStep openedLine(const Rope &text, TextRange selection, Neighbour neighbour, std::optional<Indentation> indentation)
{
    const TextRange block = selectedLines(text, selection);
    if (neighbour == Neighbour::behind) {
        const qsizetype end = contentEnd(text, block);
        return indentation ? brokenLine(text, {end, 0}, *indentation) : TextStep{{{end, 0}, u"\n"}, TextSelection::at(end + 1)};
    }
    const QString blanks = indentation ? leadingBlanks(text, block.location) : QString();
    return {{{block.location, 0}, QString(blanks + u'\n')}, TextSelection::at(block.location + blanks.size())};
}

std::optional<TextStep> transposed(const Rope &text, TextRange selection)
{
    const TextRange line = lineRange(text, {selection.location, 0});
    const bool isAtEnd = selection.location == contentEnd(text, line);
    const qsizetype middle = isAtEnd ? TextBoundaries::previousGrapheme(text, selection.location) : selection.location;
    if (!selection.isEmpty() || middle <= line.location) {
        return std::nullopt;
    }
    const qsizetype start = TextBoundaries::previousGrapheme(text, middle);
    const qsizetype end = TextBoundaries::nextGrapheme(text, middle);
    const QString swapped = text.toString(TextRange::between(middle, end)) + text.toString(TextRange::between(start, middle));
    return TextStep{{TextRange::between(start, end), swapped}, TextSelection::at(end)};
}

QString leadingBlanks(const Rope &text, qsizetype offset)
{
    const TextRange line = lineRange(text, {offset, 0});
    return text.toString(TextRange::between(line.location, indentEnd(text, line)));
}

} // namespace LineEditing
