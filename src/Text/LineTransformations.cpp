// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineTransformations.h"

#include "Text/LineKey.h"
#include "Text/LineWalk.h"
#include "Text/TextBoundaries.h"

#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <numeric>
#include <string_view>
#include <unordered_map>

namespace {

/// Between two looks at the token.
constexpr size_t linesAtOnce = 4096;

/// The lines of a block without their breaks, which stay where they are when lines change places.
std::vector<TextRange> contentsOf(const Rope &text, TextRange block)
{
    std::vector<TextRange> contents;
    forEachLine(text, block, Breaks::all,
                [&](TextRange line) { contents.push_back(TextRange::between(line.location, contentEnd(text, line))); });
    return contents;
}

/// An empty selection stays, any other becomes the lines that were changed.
TextSelection selectionAfter(TextRange block, TextRange selection, const TextEdits &edits)
{
    if (selection.isEmpty()) {
        return TextSelection::at(edits.mapped(selection.location, Bias::after));
    }
    return {block.location, block.end() + edits.growth()};
}

/// The lines of the block in another order; `places` says which comes where.
std::optional<TextStep> arranged(const Rope &text, TextRange block, TextRange selection, const std::vector<TextRange> &contents,
                                 const std::vector<size_t> &places, const std::stop_token &stop)
{
    if (stop.stop_requested() || std::ranges::is_sorted(places)) {
        return std::nullopt;
    }
    RopeBuilder builder;
    for (size_t index = 0; index < places.size(); ++index) {
        builder.append(text.toString(contents[places[index]]));
        const qsizetype next = index + 1 < contents.size() ? contents[index + 1].location : block.end();
        builder.append(text.toString(TextRange::between(contents[index].end(), next)));
        if (index % linesAtOnce == 0 && stop.stop_requested()) {
            return std::nullopt;
        }
    }
    const Rope arranged = builder.build();
    if (arranged == text.slice(block)) {
        return std::nullopt;
    }
    // The caret stays where it is, which may be within a letter of another line.
    const qsizetype caret = block.location + TextBoundaries::snapped(arranged, selection.location - block.location);
    return TextStep{{block, arranged}, selection.isEmpty() ? TextSelection::at(caret) : TextSelection{block.location, block.end()}};
}

/// What lines are compared by: one after another, so that a text of millions has one piece of memory.
class SortKeys final {
public:
    explicit SortKeys(const QByteArray &language)
    {
        UErrorCode status = U_ZERO_ERROR;
        m_collator.reset(ucol_open(language.constData(), &status));
    }

    void add(const QString &line)
    {
        m_starts.push_back(m_bytes.size());
        const auto *units = reinterpret_cast<const UChar *>(line.utf16());
        const auto length = int32_t(line.size());
        m_bytes.resize(m_starts.back() + size_t(line.size()) * 2 + 16);
        const auto room = [this] { return int32_t(m_bytes.size() - m_starts.back()); };
        const auto write = [&] { return ucol_getSortKey(m_collator.get(), units, length, m_bytes.data() + m_starts.back(), room()); };
        int32_t written = write();
        if (written > room()) {
            m_bytes.resize(m_starts.back() + size_t(written));
            written = write();
        }
        m_bytes.resize(m_starts.back() + size_t(written));
    }

    [[nodiscard]] std::basic_string_view<uint8_t> operator[](size_t line) const
    {
        const size_t end = line + 1 < m_starts.size() ? m_starts[line + 1] : m_bytes.size();
        return {m_bytes.data() + m_starts[line], end - m_starts[line]};
    }

private:
    struct Closer {
        void operator()(UCollator *collator) const { ucol_close(collator); }
    };
    std::unique_ptr<UCollator, Closer> m_collator;
    std::vector<uint8_t> m_bytes;
    std::vector<size_t> m_starts;
};

using Mapping = int32_t (*)(UChar *to, int32_t capacity, const UChar *from, int32_t length);

int32_t toUpper(UChar *to, int32_t capacity, const UChar *from, int32_t length)
{
    UErrorCode status = U_ZERO_ERROR;
    return u_strToUpper(to, capacity, from, length, "", &status);
}

int32_t toLower(UChar *to, int32_t capacity, const UChar *from, int32_t length)
{
    UErrorCode status = U_ZERO_ERROR;
    return u_strToLower(to, capacity, from, length, "", &status);
}

int32_t toTitle(UChar *to, int32_t capacity, const UChar *from, int32_t length)
{
    UErrorCode status = U_ZERO_ERROR;
    return u_strToTitle(to, capacity, from, length, nullptr, "", &status);
}

constexpr auto mappings = std::to_array<Mapping>({toUpper, toLower, toTitle});

QString mapped(const QString &text, Mapping mapping)
{
    const auto *from = reinterpret_cast<const UChar *>(text.utf16());
    std::u16string to(size_t(text.size()) + 16, u'\0');
    const int32_t length = mapping(to.data(), int32_t(to.size()), from, int32_t(text.size()));
    if (size_t(length) > to.size()) {
        to.resize(size_t(length));
        mapping(to.data(), length, from, int32_t(text.size()));
    }
    return QString::fromUtf16(to.data(), length);
}

} // namespace

namespace LineTransformations {

TextRange linesToArrange(const Rope &text, TextRange selection)
{
    const TextRange block = selectedLines(text, selection);
    return lineRange(text, {block.location, 0}).end() < block.end() ? block : TextRange{0, text.length()};
}

TextRange linesToTidy(const Rope &text, TextRange selection)
{
    return selection.isEmpty() ? TextRange{0, text.length()} : selectedLines(text, selection);
}

std::optional<TextStep> sorted(const Rope &text, TextRange selection, const QByteArray &language, const std::stop_token &stop)
{
    const TextRange block = linesToArrange(text, selection);
    const std::vector<TextRange> contents = contentsOf(text, block);
    SortKeys keys(language);
    for (size_t index = 0; index < contents.size(); ++index) {
        keys.add(text.toString(contents[index]));
        if (index % linesAtOnce == 0 && stop.stop_requested()) {
            return std::nullopt;
        }
    }
    std::vector<size_t> places(contents.size());
    std::iota(places.begin(), places.end(), size_t(0));
    const auto isBefore = [&keys](size_t one, size_t other) { return keys[one] < keys[other]; };
    if (std::ranges::is_sorted(places, isBefore)) {
        std::ranges::stable_sort(places, [&isBefore](size_t one, size_t other) { return isBefore(other, one); });
    } else {
        std::ranges::stable_sort(places, isBefore);
    }
    return arranged(text, block, selection, contents, places, stop);
}

std::optional<TextStep> reversed(const Rope &text, TextRange selection, const std::stop_token &stop)
{
    const TextRange block = linesToArrange(text, selection);
    const std::vector<TextRange> contents = contentsOf(text, block);
    std::vector<size_t> places(contents.size());
    std::iota(places.rbegin(), places.rend(), size_t(0));
    return arranged(text, block, selection, contents, places, stop);
}

std::optional<TextStep> withoutRepeats(const Rope &text, TextRange selection, const std::stop_token &stop)
{
    const TextRange block = linesToArrange(text, selection);
    LineKeyReader keys(text, Whitespace::counts);
    std::unordered_multimap<size_t, TextRange> seen;
    std::vector<TextRange> repeats;
    qsizetype keptEnd = block.location;
    size_t count = 0;
    forEachLine(text, block, Breaks::all, [&](TextRange line) {
        if (++count % linesAtOnce == 0 && stop.stop_requested()) {
            return;
        }
        const TextRange content = TextRange::between(line.location, contentEnd(text, line));
        const size_t hash = keys.key(content).hash();
        const auto [first, last] = seen.equal_range(hash);
        const bool isRepeat = std::any_of(first, last, [&](const auto &one) {
            return one.second.length == content.length && text.slice(one.second) == text.slice(content);
        });
        if (!isRepeat) {
            seen.emplace(hash, content);
            keptEnd = content.end();
        } else if (!repeats.empty() && repeats.back().end() == line.location) {
            repeats.back().length += line.length;
        } else {
            repeats.push_back(line);
        }
    });
    if (stop.stop_requested() || repeats.empty()) {
        return std::nullopt;
    }
    // A text without a break at its end has none afterwards.
    if (repeats.back().end() == text.length() && contentEnd(text, repeats.back()) == text.length()) {
        repeats.back() = TextRange::between(keptEnd, text.length());
    }
    TextEdits edits;
    for (const TextRange &repeat : repeats) {
        edits.add(repeat, Rope());
    }
    const TextSelection after = selectionAfter(block, selection, edits);
    return TextStep{std::move(edits), after};
}

std::optional<TextStep> trimmed(const Rope &text, TextRange selection, const std::stop_token &stop)
{
    TextEdits edits;
    RopeCursor cursor(text);
    size_t count = 0;
    forEachLine(text, linesToTidy(text, selection), Breaks::all, [&](TextRange line) {
        if (++count % linesAtOnce == 0 && stop.stop_requested()) {
            return;
        }
        const qsizetype end = contentEnd(text, line);
        qsizetype start = end;
        while (start > line.location && isIndent(cursor.at(start - 1))) {
            --start;
        }
        edits.add(TextRange::between(start, end), Rope());
    });
    if (stop.stop_requested() || edits.isEmpty()) {
        return std::nullopt;
    }
    const TextRange kept = edits.mapped(selection);
    return TextStep{std::move(edits), {kept.location, kept.end()}};
}

std::optional<TextStep> reindented(const Rope &text, TextRange selection, Indentation indentation, const std::stop_token &stop)
{
    const int tabWidth = indentation.tabWidth();
    TextEdits edits;
    size_t count = 0;
    forEachLine(text, linesToTidy(text, selection), Breaks::all, [&](TextRange line) {
        if (++count % linesAtOnce == 0 && stop.stop_requested()) {
            return;
        }
        const TextRange blanks = TextRange::between(line.location, indentEnd(text, line));
        const QString before = text.toString(blanks);
        qsizetype column = 0;
        for (const QChar unit : before) {
            column = unit == u'\t' ? (column / tabWidth + 1) * tabWidth : column + 1;
        }
        const qsizetype tabs = indentation.unit == Indentation::Unit::tab ? column / tabWidth : 0;
        const QString after = QString(tabs, u'\t') + QString(column - tabs * tabWidth, u' ');
        if (after != before) {
            edits.add(blanks, Rope(after));
        }
    });
    if (stop.stop_requested() || edits.isEmpty()) {
        return std::nullopt;
    }
    const TextRange kept = edits.mapped(selection);
    return TextStep{std::move(edits), {kept.location, kept.end()}};
}

TextRange lettersToChange(const Rope &text, TextRange selection)
{
    return selection.isEmpty() ? TextBoundaries::wordAt(text, selection.location) : selection;
}

std::optional<TextStep> recased(const Rope &text, TextRange selection, LetterCase letters, const std::stop_token &stop)
{
    const TextRange range = lettersToChange(text, selection);
    RopeBuilder builder;
    forEachLine(text, range, Breaks::all, [&](TextRange line) {
        if (!stop.stop_requested()) {
            builder.append(mapped(text.toString(line), mappings[size_t(letters)]));
        }
    });
    const Rope changed = builder.build();
    if (stop.stop_requested() || changed == text.slice(range)) {
        return std::nullopt;
    }
    const qsizetype end = range.location + changed.length();
    const TextSelection after =
        selection.isEmpty() ? TextSelection::at(std::min(selection.location, end)) : TextSelection{range.location, end};
    return TextStep{{range, changed}, after};
}

} // namespace LineTransformations
