// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/CaretEditing.h"

#include "Text/LineRange.h"

#include <algorithm>

namespace {

const Rope &blanks(qsizetype count)
{
    static thread_local Rope last;
    if (last.length() != count)
        last = Rope(QString(count, u' '));
    return last;
}

Rope behindBlanks(const CaretSelection &one, const Rope &text)
{
    if (one.cellsBehind == 0 || text.isEmpty())
        return text;
    Rope result = blanks(one.cellsBehind);
    result.replace({result.length(), 0}, text);
    return result;
}

} // namespace

namespace CaretEditing {

CaretStep replaced(const Selections &selections, const std::function<Replacement(const CaretSelection &, size_t)> &replacementOf)
{
    CaretStep step;
    std::vector<Replacement> all;
    all.reserve(selections.count());
    for (size_t i = 0; i < selections.count(); ++i)
        all.push_back(replacementOf(selections[i], i));
    // One that begins before its predecessors takes what is between them too.
    for (size_t i = all.size() - 1; i > 0; --i) {
        TextRange &previous = all[i - 1].range;
        const qsizetype location = std::min(previous.location, all[i].range.location);
        previous = TextRange::between(location, previous.end());
    }
    std::vector<CaretSelection> after;
    after.reserve(all.size());
    qsizetype shift = 0;
    qsizetype done = 0;
    for (const Replacement &one : all) {
        const qsizetype from = std::max(one.range.location, done);
        const TextRange range = TextRange::between(from, std::max(from, one.range.end()));
        step.edits.add(range, one.text);
        done = range.end();
        const qsizetype place = range.location + shift + one.text.length();
        shift += one.text.length() - range.length;
        after.push_back({.caret = {place}, .anchor = place, .cellsBehind = one.cellsBehind});
    }
    step.after = Selections::merged(std::move(after), selections.primaryIndex());
    return step;
}

CaretStep typed(const Selections &selections, const Rope &text)
{
    return replaced(selections, [&](const CaretSelection &one, size_t) { return Replacement{one.range(), behindBlanks(one, text)}; });
}

CaretStep typed(const Selections &selections, const std::vector<Rope> &texts)
{
    return replaced(selections, [&](const CaretSelection &one, size_t index) {
        return Replacement{one.range(), behindBlanks(one, texts[index])};
    });
}

TextStep typedAt(const CaretSelection &one, const Rope &text)
{
    const Rope added = behindBlanks(one, text);
    return {{one.range(), added}, TextSelection::at(one.range().location + added.length())};
}

Replacement removal(const CaretSelection &one, Direction direction, const std::function<qsizetype(const CaretSelection &)> &otherEnd)
{
    if (!one.isEmpty())
        return {.range = one.range()};
    if (one.cellsBehind > 0)
        return {.range = one.range(), .cellsBehind = one.cellsBehind - (direction == Direction::backward ? 1 : 0)};
    return {.range = TextRange::spanning(one.caret.offset, otherEnd(one))};
}

CaretStep removed(const Selections &selections, Direction direction, const std::function<qsizetype(const CaretSelection &)> &otherEnd)
{
    return replaced(selections, [&](const CaretSelection &one, size_t) { return removal(one, direction, otherEnd); });
}

CaretStep atEach(const Selections &selections, const CaretCommand &command)
{
    CaretStep result;
    std::vector<CaretSelection> after;
    after.reserve(selections.count());
    qsizetype done = 0;
    for (const CaretSelection &one : selections) {
        const qsizetype shift = result.edits.growth();
        const std::optional<TextStep> step = command(one);
        const bool isDone = step && (step->edits.isEmpty() || step->edits[0].range.location >= done);
        const TextSelection ends = isDone ? step->after : one.ends();
        after.push_back(CaretSelection::of({ends.anchor + shift, ends.caret + shift}));
        if (isDone) {
            for (const TextEdit &edit : step->edits) {
                result.edits.add(edit.range, edit.text);
                done = edit.range.end();
            }
        }
    }
    result.after = Selections::merged(std::move(after), selections.primaryIndex());
    return result;
}

CaretStep withoutSelected(const Selections &selections)
{
    return replaced(selections, [](const CaretSelection &one, size_t) -> Replacement {
        return {.range = one.range(), .cellsBehind = one.cellsBehind};
    });
}

namespace {

/// Selections that share lines or have lines that meet.
struct Block {
    TextRange lines;
    size_t first = 0;
    size_t behind = 0;
};

std::vector<Block> blocksOf(const Rope &text, const Selections &selections)
{
    std::vector<Block> blocks;
    for (size_t i = 0; i < selections.count(); ++i) {
        const TextRange range = selections[i].range();
        if (!blocks.empty() && range.end() < blocks.back().lines.end()) {
            blocks.back().behind = i + 1;
            continue;
        }
        const TextRange lines = selectedLines(text, range);
        if (blocks.empty() || !blocks.back().lines.touches(lines)) {
            blocks.push_back({lines, i, i + 1});
        } else {
            blocks.back().lines = blocks.back().lines.united(lines);
            blocks.back().behind = i + 1;
        }
    }
    return blocks;
}

} // namespace

std::optional<CaretStep> atLines(const Rope &text, const Selections &selections, const LineCommand &command, Places places)
{
    CaretStep result;
    std::vector<CaretSelection> after;
    after.reserve(selections.count());
    qsizetype done = 0;
    const auto place = [&](TextSelection ends, qsizetype distance) {
        after.push_back(CaretSelection::of({ends.anchor + distance, ends.caret + distance}));
    };
    for (const Block &block : blocksOf(text, selections)) {
        const bool isAlone = block.behind == block.first + 1;
        const TextSelection ends = selections[block.first].ends();
        const TextSelection hull{selections[block.first].range().location, selections[block.behind - 1].range().end()};
        std::optional<TextStep> step = command(isAlone ? ends : hull);
        const qsizetype shift = result.edits.growth();
        if (!step || step->edits.isEmpty() || step->edits[0].range.location < done) {
            for (size_t i = block.first; i < block.behind; ++i)
                place(selections[i].ends(), shift);
            continue;
        }
        for (const TextEdit &edit : step->edits)
            result.edits.add(edit.range, edit.text);
        done = step->edits[step->edits.count() - 1].range.end();
        // The break that was selected last may be gone from there.
        const auto moved = [&](qsizetype offset) {
            return std::min(step->after.range().location + offset - hull.anchor, step->after.range().end());
        };
        for (size_t i = block.first; i < block.behind; ++i) {
            const TextSelection one = selections[i].ends();
            if (isAlone)
                place(step->after, shift);
            else if (places == Places::withLines)
                place({moved(one.anchor), moved(one.caret)}, shift);
            else
                place({step->edits.mapped(one.anchor, Bias::after), step->edits.mapped(one.caret, Bias::after)}, shift);
        }
    }
    if (result.edits.isEmpty())
        return std::nullopt;
    result.after = Selections::merged(std::move(after), selections.primaryIndex());
    return result;
}

Selections splitIntoLines(const Rope &text, const Selections &selections)
{
    std::vector<CaretSelection> all;
    size_t primary = 0;
    RopeCursor cursor(text);
    const auto endOfLine = [&](qsizetype line) {
        qsizetype end = line + 1 < text.lineCount() ? text.lineStart(line + 1) : text.length();
        while (end > text.lineStart(line) && (cursor.at(end - 1) == u'\n' || cursor.at(end - 1) == u'\r'))
            --end;
        return end;
    };
    for (size_t i = 0; i < selections.count(); ++i) {
        const TextRange range = selections[i].range();
        const qsizetype last = text.lineAt(range.end());
        // Behind the last break that is selected there is nothing of the next line.
        const bool endsAtStart = !range.isEmpty() && range.end() == text.lineStart(last);
        for (qsizetype line = text.lineAt(range.location); line < last + (endsAtStart ? 0 : 1); ++line) {
            const qsizetype from = std::max(range.location, text.lineStart(line));
            all.push_back(CaretSelection::of({from, std::max(from, std::min(range.end(), endOfLine(line)))}));
        }
        if (i == selections.primaryIndex())
            primary = all.size() - 1;
    }
    return Selections::merged(std::move(all), primary);
}

Rope joinedPieces(const Rope &text, const Selections &selections)
{
    RopeBuilder builder;
    bool isFirst = true;
    for (const CaretSelection &one : selections) {
        if (!isFirst)
            builder.append(u"\n");
        isFirst = false;
        builder.append(text.slice(one.range()));
    }
    return builder.build();
}

} // namespace CaretEditing
