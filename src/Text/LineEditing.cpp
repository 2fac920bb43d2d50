// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineEditing.h"

#include "Text/LineRange.h"

#include <algorithm>

namespace {

constexpr bool isIndent(QChar unit)
{
    return unit == u' ' || unit == u'\t';
}

constexpr bool isLineEnd(char16_t unit)
{
    return unit == u'\n' || unit == u'\r' || isLineSeparator(unit);
}

/// Calls `visit` for the lines of `block`, their breaks included.
template<class Visit>
void forEachLine(const Rope &text, TextRange block, LineEditing::Breaks breaks, Visit visit)
{
    RopeCursor cursor(text);
    qsizetype start = block.location;
    for (qsizetype at = start; at < block.end(); ++at) {
        const char16_t unit = cursor.at(at);
        const bool isInPair = unit == u'\r' && at + 1 < text.length() && cursor.at(at + 1) == u'\n';
        if (unit == u'\n' || (breaks == LineEditing::Breaks::all && isLineEnd(unit) && !isInPair)) {
            visit(TextRange::between(start, at + 1));
            start = at + 1;
        }
    }
    if (start < block.end()) {
        visit(TextRange::between(start, block.end()));
    }
}

/// Where the blanks end that the line begins with.
qsizetype indentEnd(const Rope &text, TextRange line)
{
    RopeCursor cursor(text);
    qsizetype end = line.location;
    while (end < line.end() && isIndent(cursor.at(end))) {
        ++end;
    }
    return end;
}

/// Where the break of the line begins.
qsizetype contentEnd(const Rope &text, TextRange line)
{
    RopeCursor cursor(text);
    qsizetype end = line.end();
    if (end == line.location || !isLineEnd(cursor.at(end - 1))) {
        return end;
    }
    --end;
    const bool isPair = cursor.at(end) == u'\n' && end > line.location && cursor.at(end - 1) == u'\r';
    return isPair ? end - 1 : end;
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

std::optional<TextStep> shifted(const Rope &text, TextRange selection, Shift shift, Indentation style)
{
    const TextRange block = selectedLines(text, selection);
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

TextStep tabbed(const Rope &text, TextRange selection, int tabWidth)
{
    RopeCursor cursor(text);
    qsizetype column = 0;
    for (qsizetype offset = lineRange(text, {selection.location, 0}).location; offset < selection.location; ++offset) {
        column = cursor.at(offset) == u'\t' ? (column / tabWidth + 1) * tabWidth : column + 1;
    }
    const qsizetype count = tabWidth - column % tabWidth;
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

std::optional<TextStep> joined(const Rope &text, qsizetype offset, qsizetype count)
{
    TextStep step;
    RopeCursor cursor(text);
    TextRange line = lineRange(text, {offset, 0});
    qsizetype contentStart = line.location;
    // What the line ends with, as far as it was put together; none while it is empty.
    std::optional<char16_t> last;
    for (qsizetype lines = 1; lines < count && line.end() < text.length(); ++lines) {
        const qsizetype end = contentEnd(text, line);
        if (end > contentStart) {
            last = cursor.at(end - 1);
        }
        const TextRange next = lineRange(text, {line.end(), 0});
        const qsizetype nextContent = indentEnd(text, next);
        const bool isNextBlank = nextContent < text.length() && (cursor.at(nextContent) == u'\n' || cursor.at(nextContent) == u'\r');
        const bool isGlued = !last || isIndent(*last) || isNextBlank;
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

QString leadingBlanks(const Rope &text, qsizetype offset)
{
    const TextRange line = lineRange(text, {offset, 0});
    return text.toString(TextRange::between(line.location, indentEnd(text, line)));
}

} // namespace LineEditing
