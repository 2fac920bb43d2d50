// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimExEdits.h"

#include "Vim/VimFormatting.h"

#include "Vim/VimMatcher.h"

#include <unicode/uchar.h>

#include <charconv>
#include <numeric>

using namespace Qt::StringLiterals;

namespace VimExEdits {

namespace {

TextRange whole(const VimLines &lines, LineSpan span)
{
    return TextRange::between(lines.startOf(span.first), lines.startOf(span.last + 1));
}

/// The empty line behind a last break is one of them if that is the one that a command takes.
VimLines linesOf(const Rope &text, qsizetype taken)
{
    using enum VimLines::LastLine;
    return VimLines(text, 1, taken > VimLines(text).count() ? mayBeEmpty : hasText);
}

/// Columns of a character behind others.
qsizetype widthOf(char32_t character, qsizetype column, int tabWidth)
{
    if (character == U'\t') {
        return tabWidth - column % tabWidth;
    }
    if (character < 0x20 || character == 0x7F) {
        return 2;
    }
    if (character < 0x300) {
        return 1;
    }
    const auto type = u_charType(UChar32(character));
    if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_FORMAT_CHAR) {
        return 0;
    }
    const int width = u_getIntPropertyValue(UChar32(character), UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

/// From one column to another.
} // namespace

QString lineBreak(const Rope &text)
{
    const VimLines lines(text);
    const QString first = text.toString(TextRange::between(lines.end(0), lines.next(0)));
    return first.isEmpty() ? u"\n"_s : first;
}

Rope content(const Rope &text, LineSpan lines)
{
    const VimLines all = linesOf(text, lines.last);
    Rope block = text.slice(whole(all, lines));
    if (block.isEmpty() || !isBreak(block.at(block.length() - 1))) {
        block.replace({block.length(), 0}, lineBreak(text));
    }
    return block;
}

TextEdits removed(const Rope &text, LineSpan lines)
{
    const VimLines all = linesOf(text, lines.last);
    const bool takesBreakBefore = all.endOf(lines.last) == text.length() && lines.last == all.count() && lines.first > 1;
    return {takesBreakBefore ? TextRange::between(all.endOf(lines.first - 1), text.length()) : whole(all, lines), Rope()};
}

TextEdits inserted(const Rope &text, qsizetype after, const Rope &block)
{
    const VimLines all = linesOf(text, after);
    const QString wanted = lineBreak(text);
    Rope added = block;
    if (text.isEmpty()) {
        // There is an empty line, before or behind.
        added.replace({after == 0 ? added.length() : 0, 0}, wanted);
    } else if (after == all.count() && all.endOf(after) == text.length()) {
        const qsizetype length = block.length();
        const bool isPair = length > 1 && block.at(length - 1) == u'\n' && block.at(length - 2) == u'\r';
        added = block.slice({0, length - (isPair ? 2 : 1)});
        added.replace({0, 0}, wanted);
    }
    return {{all.startOf(after + 1), 0}, added};
}

TextEdits moved(const Rope &text, LineSpan lines, qsizetype after)
{
    if (after >= lines.first - 1 && after <= lines.last) {
        return {};
    }
    const TextEdits removal = removed(text, lines);
    const TextEdits insertion = inserted(text, after, content(text, lines));
    const bool isUp = after < lines.first;
    TextEdits edits;
    for (const TextEdits &part : isUp ? std::array{insertion, removal} : std::array{removal, insertion}) {
        edits.add(part[0].range, part[0].text);
    }
    return edits;
}

TextEdits joined(const Rope &text, LineSpan lines, Blanks blanks)
{
    const VimLines all = linesOf(text, lines.last);
    const auto glue = blanks == Blanks::one ? VimFormatting::Glue::blank : VimFormatting::Glue::nothing;
    return VimFormatting::joined(all, all.startOf(lines.first), lines.last - lines.first + 1, glue).edits;
}

TextEdits shifted(const Rope &text, LineSpan lines, qsizetype levels, Indentation indentation)
{
    const VimLines all = linesOf(text, lines.last);
    TextEdits edits;
    for (qsizetype line = lines.first; line <= lines.last; ++line) {
        const qsizetype start = all.startOf(line);
        const qsizetype end = all.endOf(line);
        qsizetype at = start;
        qsizetype column = 0;
        for (; at < end && isSpaceOrTab(text.at(at)); ++at) {
            column += widthOf(text.at(at), column, indentation.tabWidth());
        }
        if (start < end) {
            const QString wanted = VimFormatting::blanks(0, std::max<qsizetype>(column + levels * indentation.width, 0), indentation);
            const TextRange old = TextRange::between(start, at);
            if (text.toString(old) != wanted) {
                edits.add(old, Rope(wanted));
            }
        }
    }
    return edits;
}

TextEdits retabbed(const Rope &text, LineSpan lines, int oldWidth, Indentation wanted, Runs runs)
{
    const VimLines all = linesOf(text, lines.last);
    RopeCursor cursor(text);
    TextEdits edits;
    for (qsizetype line = lines.first; line <= lines.last; ++line) {
        const qsizetype end = all.endOf(line);
        qsizetype column = 0;
        for (qsizetype at = all.startOf(line); at < end;) {
            if (!isSpaceOrTab(cursor.at(at))) {
                const char16_t unit = cursor.at(at++);
                const bool isPair = QChar::isHighSurrogate(unit) && at < end && QChar::isLowSurrogate(cursor.at(at));
                column += widthOf(isPair ? QChar::surrogateToUcs4(unit, cursor.at(at++)) : unit, column, oldWidth);
                continue;
            }
            const qsizetype start = at;
            const qsizetype startColumn = column;
            bool hasTab = false;
            for (; at < end && isSpaceOrTab(cursor.at(at)); ++at) {
                hasTab = hasTab || cursor.at(at) == u'\t';
                column += widthOf(cursor.at(at), column, oldWidth);
            }
            if (!hasTab && (runs == Runs::withTabs || at - start < 2)) {
                continue;
            }
            const QString anew = VimFormatting::blanks(startColumn, column, wanted);
            const TextRange old = TextRange::between(start, at);
            const bool isShorter = hasTab || anew.size() < old.length;
            if (isShorter && text.toString(old) != anew) {
                edits.add(old, Rope(anew));
            }
        }
    }
    return edits;
}

// Sorting

namespace {

struct SortKey {
    QString line;
    QString text;
    double number = 0;
    bool hasNumber = false;
};

QString lowered(const QString &text)
{
    QString lower = text;
    for (QChar &unit : lower) {
        unit = unit.toLower();
    }
    return lower;
}

/// By code points, as bytes of UTF-8 would be.
int compare(const QString &one, const QString &other)
{
    const qsizetype length = std::min(one.size(), other.size());
    for (qsizetype at = 0; at < length; ++at) {
        const char16_t a = one[at].unicode();
        const char16_t b = other[at].unicode();
        if (a != b) {
            const bool isPairA = QChar::isSurrogate(a);
            const bool isPairB = QChar::isSurrogate(b);
            return isPairA != isPairB ? (isPairA ? 1 : -1) : (a < b ? -1 : 1);
        }
    }
    return one.size() < other.size() ? -1 : int(one.size() > other.size());
}

bool isDigit(QChar unit, int base)
{
    const ushort code = unit.toLower().unicode();
    const int value = code >= u'0' && code <= u'9' ? code - u'0' : code >= u'a' && code <= u'f' ? code - u'a' + 10 : base;
    return value < base;
}

void findNumber(SortKey &key, Sorting::By by)
{
    const QString &text = key.text;
    if (by == Sorting::By::real) {
        // Whatever begins with no number is 0, but before all numbers when there is nothing.
        const std::string digits = QStringView(text).trimmed().toLatin1().toStdString();
        const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
        const char *start = digits.data() + (isHexadecimal ? 2 : digits.starts_with('+') ? 1 : 0);
        std::from_chars(start, digits.data() + digits.size(), key.number,
                        isHexadecimal ? std::chars_format::hex : std::chars_format::general);
        key.hasNumber = !digits.empty();
        return;
    }
    const int base = by == Sorting::By::hexadecimal ? 16 : by == Sorting::By::octal ? 8 : by == Sorting::By::binary ? 2 : 10;
    qsizetype at = 0;
    while (at < text.size() && !isDigit(text[at], base)) {
        ++at;
    }
    if (at == text.size()) {
        return;
    }
    const bool isNegative = at > 0 && text[at - 1] == u'-' && base != 2 && base != 8;
    if (base == 16 && text[at] == u'0' && at + 2 < text.size() && text[at + 1].toLower() == u'x' && isDigit(text[at + 2], 16)) {
        at += 2;
    }
    double value = 0;
    for (; at < text.size() && isDigit(text[at], base); ++at) {
        value = value * base + (text[at].isDigit() ? text[at].digitValue() : text[at].toLower().unicode() - u'a' + 10);
    }
    key.number = isNegative ? -value : value;
    key.hasNumber = true;
}

/// `hit` is what the pattern matched in the line, none where it did not.
SortKey keyOf(const QString &line, const Sorting &sorting, std::optional<TextRange> hit)
{
    SortKey key{.line = line, .text = line};
    if (sorting.pattern) {
        key.text = !hit ? QString() : sorting.takesMatch ? line.sliced(hit->location, hit->length) : line.sliced(hit->end());
    }
    if (sorting.by != Sorting::By::text) {
        findNumber(key, sorting.by);
    }
    return key;
}

} // namespace

TextEdits sorted(const Rope &text, LineSpan lines, const Sorting &sorting, const std::stop_token &stop)
{
    const VimLines all = linesOf(text, lines.last);
    std::optional<VimMatcher> matcher;
    if (auto compiled = sorting.pattern ? VimMatcher::compile(*sorting.pattern, text) : failure({})) {
        matcher = *std::move(compiled);
    }
    std::vector<SortKey> keys;
    for (qsizetype line = lines.first; line <= lines.last; ++line) {
        if (stop.stop_requested()) {
            return {};
        }
        const TextRange range = TextRange::between(all.startOf(line), all.endOf(line));
        std::optional<TextRange> hit;
        if (const auto match = matcher ? matcher->next({range.location, range.length + 1}) : std::nullopt) {
            hit = match->hit.intersected(range);
            hit->location -= range.location;
        }
        keys.push_back(keyOf(text.toString(range), sorting, hit));
        if (sorting.ignoresCase) {
            keys.back().text = lowered(keys.back().text);
        }
    }
    std::vector<size_t> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    const bool isByNumber = sorting.by != Sorting::By::text;
    std::ranges::stable_sort(order, [&](size_t a, size_t b) {
        if (isByNumber) {
            return keys[a].hasNumber != keys[b].hasNumber ? keys[b].hasNumber : keys[a].number < keys[b].number;
        }
        return compare(keys[a].text, keys[b].text) < 0;
    });
    if (sorting.isReversed) {
        std::ranges::reverse(order);
    }
    QString block;
    const QString wanted = lineBreak(text);
    const QString *last = nullptr;
    for (const size_t index : order) {
        const QString &line = keys[index].line;
        const bool isRepeat = last && (sorting.ignoresCase ? lowered(line) == lowered(*last) : line == *last);
        if (!sorting.dropsRepeats || !isRepeat) {
            block += (last ? wanted : QString()) + line;
            last = &line;
        }
    }
    const TextRange range = TextRange::between(all.startOf(lines.first), all.endOf(lines.last));
    TextEdits edits;
    if (text.toString(range) != block) {
        edits.add(range, Rope(block));
    }
    return edits;
}

} // namespace VimExEdits
