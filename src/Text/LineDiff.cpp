// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineDiff.h"

#include "Text/EditSearch.h"
#include "Text/LineKey.h"

#include <algorithm>
#include <array>
#include <bit>

namespace {

/// Units from which a line is certain to lie in several leaves.
constexpr qsizetype longLine = 4096;

/// Stands for every line that the other text has nowhere.
constexpr quint32 unmatched = ~quint32(0);

enum class End { first, last };

/// A text as the comparison reads it. From `begin` to `end`, the end of its last line, it has `lineCount` lines that are still to be
/// compared.
struct Reading {
    Reading(const LineTable &table, Whitespace whitespace)
        : chunks(table.text()), keys(table.text(), whitespace), end(table.end()), lineCount(table.count())
    {}

    [[nodiscard]] TextRange lineAt(qsizetype start) { return TextRange::between(start, chunks.lineEnd(start, end)); }
    [[nodiscard]] TextRange lastLine() { return TextRange::between(chunks.lineStart(begin, end), end); }

    [[nodiscard]] bool isNarrow(TextRange range);
    void take(End from, qsizetype lines, qsizetype units);

    ChunkReader chunks;
    LineKeyReader keys;
    qsizetype begin = 0;
    qsizetype end = 0;
    qsizetype lineCount = 0;
};

bool Reading::isNarrow(TextRange range)
{
    for (qsizetype at = range.location; at < range.end();) {
        const Rope::Chunk chunk = chunks.after(at, range.end());
        if (!chunk.narrow) {
            return false;
        }
        at += chunk.length;
    }
    return true;
}

void Reading::take(End from, qsizetype lines, qsizetype units)
{
    lineCount -= lines;
    if (from == End::first) {
        begin += units;
    } else {
        end -= units;
    }
}

/// Equal units of two texts: up to and with the outermost LF in them.
struct CommonLines {
    qsizetype lines = 0;
    qsizetype units = 0;
};

/// The lines of one text by their content: equal ones have the same number, numbers go up from 0.
class LineNumbers {
public:
    /// Of the lines that `text` has left. None when stopped.
    [[nodiscard]] static std::optional<LineNumbers> make(Reading &text, const DiffControl &control);

    [[nodiscard]] std::span<const quint32> numbers() const { return m_numbers; }
    [[nodiscard]] qsizetype start(qsizetype line) const { return m_starts[size_t(line)]; }
    /// The first line of a number.
    [[nodiscard]] qsizetype firstLine(quint32 number) const { return m_contents[number].line; }
    /// The number of the lines that equal `key`, or `unmatched`.
    [[nodiscard]] quint32 find(const LineKey &key) { return slotFor(key, quint32(key.hash())).number; }

private:
    /// Linear probing from the place that the hash says.
    struct Slot {
        quint32 hash = 0;
        quint32 number = unmatched;
    };
    struct Content {
        /// The units in their leaf, so that they need not be looked for; null where the key is made of them.
        const void *units = nullptr;
        quint32 line = 0;
        quint32 length : 31 = 0;
        quint32 isWide : 1 = 0;
    };
    /// Lines whose slots are fetched from memory together.
    static constexpr size_t batch = 32;

    explicit LineNumbers(Reading &text);
    void makeRoom();
    [[nodiscard]] Slot &slotFor(const LineKey &key, quint32 hash);
    [[nodiscard]] bool isSame(const Content &content, const LineKey &key);
    void add(Slot &slot, const LineKey &key, quint32 hash);
    [[nodiscard]] size_t placeOf(size_t hash) const { return hash & (m_slots.size() - 1); }
    [[nodiscard]] TextRange range(qsizetype line) const { return TextRange::between(start(line), start(line + 1) - 1); }

    /// And, behind the last, where one more would begin.
    std::vector<quint32> m_starts;
    std::vector<quint32> m_numbers;
    std::vector<Content> m_contents;
    std::vector<Slot> m_slots;
    LineKeyReader m_keys;
};

LineNumbers::LineNumbers(Reading &text) : m_slots(4 * batch), m_keys(text.keys)
{
    m_starts.reserve(size_t(text.lineCount) + 1);
    m_starts.push_back(quint32(text.begin));
    m_numbers.reserve(size_t(text.lineCount));
}

std::optional<LineNumbers> LineNumbers::make(Reading &text, const DiffControl &control)
{
    std::array<quint32, batch> hashes{};
    LineNumbers result(text);
    const auto count = size_t(text.lineCount);
    for (size_t first = 0; first < count; first += batch) {
        result.makeRoom();
        const size_t size = std::min(batch, count - first);
        const qsizetype batchStart = result.m_starts.back();
        for (size_t i = 0; i < size; ++i) {
            const TextRange line = text.lineAt(result.m_starts.back());
            hashes[i] = quint32(text.keys.key(line).hash());
            __builtin_prefetch(&result.m_slots[result.placeOf(hashes[i])]);
            result.m_starts.push_back(quint32(line.end() + 1));
        }
        for (size_t i = 0; i < size; ++i) {
            const LineKey key = text.keys.key(result.range(qsizetype(result.m_numbers.size())));
            Slot &slot = result.slotFor(key, hashes[i]);
            if (slot.number == unmatched) {
                result.add(slot, key, hashes[i]);
            }
            result.m_numbers.push_back(slot.number);
        }
        if (!control.advance(result.m_starts.back() - batchStart)) {
            return std::nullopt;
        }
    }
    return result;
}

/// For one more batch; an eighth of the slots at least stays empty.
void LineNumbers::makeRoom()
{
    if (8 * (m_contents.size() + batch) <= 7 * m_slots.size()) {
        return;
    }
    std::vector<Slot> grown(2 * m_slots.size());
    grown.swap(m_slots);
    for (const Slot &slot : grown) {
        if (slot.number != unmatched) {
            size_t at = placeOf(slot.hash);
            while (m_slots[at].number != unmatched) {
                at = placeOf(at + 1);
            }
            m_slots[at] = slot;
        }
    }
}

LineNumbers::Slot &LineNumbers::slotFor(const LineKey &key, quint32 hash)
{
    size_t at = placeOf(hash);
    while (m_slots[at].number != unmatched && (m_slots[at].hash != hash || !isSame(m_contents[m_slots[at].number], key))) {
        at = placeOf(at + 1);
    }
    return m_slots[at];
}

bool LineNumbers::isSame(const Content &content, const LineKey &key)
{
    if (!content.units) {
        return m_keys.key(range(content.line)) == key;
    }
    return LineKey{.narrow = content.isWide ? nullptr : static_cast<const uchar *>(content.units),
                   .wide = content.isWide ? static_cast<const char16_t *>(content.units) : nullptr,
                   .length = content.length} == key;
}

void LineNumbers::add(Slot &slot, const LineKey &key, quint32 hash)
{
    slot = {.hash = hash, .number = quint32(m_contents.size())};
    Content content{.line = quint32(m_numbers.size())};
    if (key.isInPlace && key.length < qsizetype(1) << 31) {
        content.units = key.narrow ? static_cast<const void *>(key.narrow) : key.wide;
        content.length = quint32(key.length) & 0x7fffffff;
        content.isWide = !key.narrow;
    }
    m_contents.push_back(content);
}

/// Two texts from both ends towards the middle.
class Comparison {
public:
    Comparison(const LineTable &left, const LineTable &right, Whitespace whitespace, const DiffControl &control)
        : m_old(left, whitespace), m_new(right, whitespace), m_whitespace(whitespace), m_control(control)
    {}

    /// None when stopped.
    [[nodiscard]] std::optional<std::vector<LineDiff::Result::Match>> run();

private:
    [[nodiscard]] bool isOnePair() const { return m_old.lineCount == 1 && m_new.lineCount == 1; }
    [[nodiscard]] bool isStopped() const { return m_control.stop.stop_requested(); }
    [[nodiscard]] CommonLines commonStartLines(qsizetype old, qsizetype newer);
    [[nodiscard]] CommonLines commonEndLines();
    [[nodiscard]] bool isSame(TextRange old, TextRange newer);
    /// False when stopped.
    [[nodiscard]] bool take(End from, qsizetype lines, qsizetype oldUnits, qsizetype newUnits);
    qsizetype takeStart();
    qsizetype takeEnd();
    [[nodiscard]] std::optional<std::vector<quint32>> numbersOfNew(LineNumbers &old);

    Reading m_old;
    Reading m_new;
    Whitespace m_whitespace;
    const DiffControl &m_control;
};

CommonLines Comparison::commonStartLines(qsizetype old, qsizetype newer)
{
    CommonLines common;
    qsizetype units = 0;
    while (old + units < m_old.end && newer + units < m_new.end) {
        const Rope::Chunk a = m_old.chunks.after(old + units, m_old.end);
        const Rope::Chunk b = m_new.chunks.after(newer + units, m_new.end);
        const qsizetype same = commonStart(a, b);
        const Rope::Chunk equal = cut(a, 0, same);
        if (const qsizetype last = lastLineFeed(equal); last >= 0) {
            common.lines += countLineFeeds(equal);
            common.units = units + last + 1;
        }
        units += same;
        if (same < std::min(a.length, b.length) || isStopped()) {
            break;
        }
    }
    return common;
}

CommonLines Comparison::commonEndLines()
{
    CommonLines common;
    qsizetype units = 0;
    while (m_old.end - units > m_old.begin && m_new.end - units > m_new.begin) {
        const Rope::Chunk a = m_old.chunks.before(m_old.begin, m_old.end - units);
        const Rope::Chunk b = m_new.chunks.before(m_new.begin, m_new.end - units);
        const qsizetype same = commonEnd(a, b);
        const Rope::Chunk equal = cut(a, a.length - same, same);
        if (const qsizetype first = firstLineFeed(equal); first >= 0) {
            common.lines += countLineFeeds(equal);
            common.units = units + same - first;
        }
        units += same;
        if (same < std::min(a.length, b.length) || isStopped()) {
            break;
        }
    }
    return common;
}

bool Comparison::isSame(TextRange old, TextRange newer)
{
    // Lines of many leaves are not put together when it can be helped.
    const bool isLong = std::max(old.length, newer.length) > longLine;
    if (m_whitespace == Whitespace::ignored || !isLong || !m_old.isNarrow(old) || !m_new.isNarrow(newer)) {
        return m_old.keys.key(old) == m_new.keys.key(newer);
    }
    qsizetype units = 0;
    while (old.length == newer.length && units < old.length) {
        const Rope::Chunk a = m_old.chunks.after(old.location + units, old.end());
        const Rope::Chunk b = m_new.chunks.after(newer.location + units, newer.end());
        const qsizetype same = commonStart(a, b);
        if (same < std::min(a.length, b.length)) {
            return false;
        }
        units += same;
    }
    return old.length == newer.length;
}

bool Comparison::take(End from, qsizetype lines, qsizetype oldUnits, qsizetype newUnits)
{
    m_old.take(from, lines, oldUnits);
    m_new.take(from, lines, newUnits);
    return m_control.advance(oldUnits + newUnits);
}

/// Takes the lines that both begin with off them and returns how many there are.
qsizetype Comparison::takeStart()
{
    const qsizetype before = m_old.lineCount;
    while (m_old.lineCount > 0 && m_new.lineCount > 0) {
        const CommonLines common = commonStartLines(m_old.begin, m_new.begin);
        if (!take(End::first, common.lines, common.units, common.units)) {
            break;
        }
        // Lines may be equal and not have the same units, and no LF shows where the last one ends.
        const TextRange old = m_old.lineAt(m_old.begin);
        const TextRange newer = m_new.lineAt(m_new.begin);
        if (!isSame(old, newer) || !take(End::first, 1, old.length + 1, newer.length + 1)) {
            break;
        }
    }
    return before - m_old.lineCount;
}

qsizetype Comparison::takeEnd()
{
    const qsizetype before = m_old.lineCount;
    while (m_old.lineCount > 0 && m_new.lineCount > 0) {
        const CommonLines common = commonEndLines();
        // Two lines that are left alone were compared from the other side.
        if (!take(End::last, common.lines, common.units, common.units) || isOnePair()) {
            break;
        }
        const TextRange old = m_old.lastLine();
        const TextRange newer = m_new.lastLine();
        if (!isSame(old, newer) || !take(End::last, 1, old.length + 1, newer.length + 1)) {
            break;
        }
    }
    return before - m_old.lineCount;
}

std::optional<std::vector<quint32>> Comparison::numbersOfNew(LineNumbers &old)
{
    std::vector<quint32> numbers;
    numbers.reserve(size_t(m_new.lineCount));
    qsizetype at = m_new.begin;
    // The old line that this one is most likely to equal.
    qsizetype likely = 0;
    while (qsizetype(numbers.size()) < m_new.lineCount) {
        const qsizetype from = at;
        if (likely < m_old.lineCount) {
            const CommonLines common = commonStartLines(old.start(likely), at);
            const auto known = old.numbers().subspan(size_t(likely), size_t(common.lines));
            numbers.insert(numbers.end(), known.begin(), known.end());
            likely += common.lines;
            at += common.units;
        }
        const TextRange line = m_new.lineAt(at);
        const quint32 number = old.find(m_new.keys.key(line));
        numbers.push_back(number);
        const bool isLikely = likely < m_old.lineCount && (number == unmatched || old.numbers()[size_t(likely)] == number);
        likely = isLikely || number == unmatched ? likely + 1 : old.firstLine(number) + 1;
        at = line.end() + 1;
        if (!m_control.advance(at - from)) {
            return std::nullopt;
        }
    }
    return numbers;
}

std::optional<std::vector<LineDiff::Result::Match>> Comparison::run()
{
    std::vector<LineDiff::Result::Match> matches;
    const qsizetype start = takeStart();
    const qsizetype ends = takeEnd();
    const qsizetype oldCount = m_old.lineCount;
    const qsizetype newCount = m_new.lineCount;
    matches.push_back({0, 0, start});
    if (oldCount > 0 && newCount > 0 && !isOnePair()) {
        auto oldNumbers = LineNumbers::make(m_old, m_control);
        const auto newNumbers = oldNumbers ? numbersOfNew(*oldNumbers) : std::nullopt;
        const auto found = newNumbers ? EditSearch::matches(oldNumbers->numbers(), *newNumbers, m_control.stop) : std::nullopt;
        if (!found) {
            return std::nullopt;
        }
        for (const EditSearch::Match &match : *found) {
            matches.push_back({start + match.old, start + match.newer, match.count});
        }
    }
    matches.push_back({start + oldCount, start + newCount, ends});
    return isStopped() ? std::nullopt : std::optional(std::move(matches));
}

} // namespace

std::optional<LineDiff::Result> LineDiff::compare(const Rope &old, const Rope &newer, Whitespace whitespace, const DiffControl &control)
{
    const qsizetype before = control.processed ? control.processed->load(std::memory_order_relaxed) : 0;
    auto left = LineTable::make(old, control);
    auto right = left ? LineTable::make(newer, control) : std::nullopt;
    if (!right) {
        return std::nullopt;
    }
    const auto matches = Comparison(*left, *right, whitespace, control).run();
    if (!matches) {
        return std::nullopt;
    }
    if (control.processed) {
        control.processed->store(before + 2 * (old.length() + newer.length()), std::memory_order_relaxed);
    }
    return Result(std::move(*left), std::move(*right), *matches);
}
