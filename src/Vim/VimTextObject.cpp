// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Vim/VimTextObject.h"

#include <array>

namespace {

using VimTextObject::Extent;
using VimTextObject::Result;
using CharacterClass = VimBuffer::CharacterClass;

struct Request {
    VimBuffer &text;
    qsizetype caret;
    Extent extent;
    qsizetype count;
};

std::optional<Result> word(const Request &request, bool isBig)
{
    VimBuffer &text = request.text;
    if (text.length() == 0) {
        return std::nullopt;
    }
    const auto classAt = [&](qsizetype offset) {
        const CharacterClass here = text.characterClass(offset);
        return isBig && here == CharacterClass::punctuation ? CharacterClass::word : here;
    };
    const qsizetype last = text.length() - 1;
    qsizetype start = request.caret;
    qsizetype end = std::min(start, last);
    const CharacterClass first = classAt(start);
    while (start > 0 && classAt(start - 1) == first) {
        --start;
    }
    for (qsizetype run = 0; run < request.count; ++run) {
        const qsizetype place = run == 0 ? end : std::min(end + 1, last);
        const CharacterClass here = classAt(place);
        end = place;
        while (end < last && classAt(end + 1) == here) {
            ++end;
        }
        if (end == last) {
            break; // further runs find nothing more
        }
    }
    if (request.extent == Extent::around) {
        const auto isBlankAt = [&](qsizetype offset) { return offset >= 0 && offset <= last && isSpaceOrTab(text.at(offset)); };
        if (isBlankAt(end + 1)) {
            while (isBlankAt(end + 1)) {
                ++end;
            }
        } else {
            while (isBlankAt(start - 1)) {
                --start;
            }
        }
    }
    return Result{.range = TextRange::between(start, end + 1)};
}

std::optional<Result> smallWord(const Request &request)
{
    return word(request, false);
}

std::optional<Result> bigWord(const Request &request)
{
    return word(request, true);
}

std::optional<Result> paragraph(const Request &request)
{
    VimBuffer &text = request.text;
    TextRange first = text.lineRange(request.caret);
    TextRange last = first;
    const bool isEmpty = text.isEmptyLine(first);
    const auto extendDown = [&](bool overEmpty) {
        while (last.end() < text.length()) {
            const TextRange next = text.lineRange(last.end());
            if (text.isEmptyLine(next) != overEmpty) {
                break;
            }
            last = next;
        }
    };
    while (first.location > 0) {
        const TextRange previous = text.lineRange(first.location - 1);
        if (text.isEmptyLine(previous) != isEmpty) {
            break;
        }
        first = previous;
    }
    extendDown(isEmpty);
    if (request.extent == Extent::around) {
        extendDown(!isEmpty);
    }
    return Result{.range = TextRange::between(first.location, last.end()), .linewise = true};
}

template<char16_t quote>
std::optional<Result> quoted(const Request &request)
{
    VimBuffer &text = request.text;
    const qsizetype start = text.lineStart(request.caret);
    const qsizetype end = text.lineContentEnd(request.caret);
    std::optional<qsizetype> open;
    for (qsizetype place = start; place < end; ++place) {
        if (text.at(place) != quote || (place > start && text.at(place - 1) == u'\\')) {
            continue;
        }
        if (!open) {
            open = place;
        } else if (place >= request.caret) {
            return Result{.range = request.extent == Extent::around ? TextRange::between(*open, place + 1)
                                                                    : TextRange::between(*open + 1, place)};
        } else {
            open.reset();
        }
    }
    return std::nullopt;
}

/// The bracket `wanted` in a direction, those that belong to an `other` on the way left out.
std::optional<qsizetype> bracket(VimBuffer &text, qsizetype caret, char16_t wanted, char16_t other, qsizetype step)
{
    if (caret < text.length() && text.at(caret) == wanted) {
        return caret;
    }
    qsizetype depth = 0;
    for (qsizetype place = caret + step; place >= 0 && place < text.length(); place += step) {
        const char16_t unit = text.at(place);
        if (unit == other) {
            ++depth;
        } else if (unit == wanted && depth-- == 0) {
            return place;
        }
    }
    return std::nullopt;
}

template<char16_t open, char16_t close>
std::optional<Result> delimited(const Request &request)
{
    const auto from = bracket(request.text, request.caret, open, close, -1);
    const auto to = bracket(request.text, request.caret, close, open, 1);
    if (!from || !to) {
        return std::nullopt;
    }
    return Result{.range = request.extent == Extent::around ? TextRange::between(*from, *to + 1) : TextRange::between(*from + 1, *to)};
}

struct ObjectRow {
    char16_t key;
    std::optional<Result> (*find)(const Request &request);
    VimKeyHelp help = {};
};

using enum VimKeyHelp::Section;

constexpr auto objects = std::to_array<ObjectRow>({
    {u'w', smallWord, {textObjects, u"word, WORD"}},
    {u'W', bigWord, besideAbove},
    {u'p', paragraph, {textObjects, u"paragraph"}},
    {u'"', quoted<u'"'>, {textObjects, u"quoted string"}},
    {u'\'', quoted<u'\''>, besideAbove},
    {u'`', quoted<u'`'>},
    {u'(', delimited<u'(', u')'>, {textObjects, u"brackets"}},
    {u')', delimited<u'(', u')'>},
    {u'b', delimited<u'(', u')'>},
    {u'[', delimited<u'[', u']'>, besideAbove},
    {u']', delimited<u'[', u']'>},
    {u'{', delimited<u'{', u'}'>, besideAbove},
    {u'}', delimited<u'{', u'}'>},
    {u'B', delimited<u'{', u'}'>},
    {u'<', delimited<u'<', u'>'>},
    {u'>', delimited<u'<', u'>'>},
});

} // namespace

std::optional<Result> VimTextObject::range(VimBuffer &text, qsizetype caret, char16_t object, Extent extent, qsizetype count)
{
    const auto row = std::ranges::find(objects, object, &ObjectRow::key);
    return row == objects.end() ? std::nullopt : row->find({text, caret, extent, std::max<qsizetype>(count, 1)});
}

VimKeyHelpEntries VimTextObject::keyHelp()
{
    VimKeyHelpEntries entries;
    for (const ObjectRow &row : objects) {
        if (row.help.exists()) {
            VimKeyHelpEntry &entry = entries.emplace_back(QString(QChar(u'i')) + QChar(row.key), row.help);
            entry.keys << QString(QChar(u'a')) + QChar(row.key);
        }
    }
    return entries;
}
