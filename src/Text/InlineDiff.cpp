// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/InlineDiff.h"

#include <unicode/ubrk.h>
#include <unicode/unorm.h>

#include <algorithm>
#include <memory>

namespace {

struct BreakIteratorCloser {
    void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
};
using BreakIterator = std::unique_ptr<UBreakIterator, BreakIteratorCloser>;

UBreakIterator *graphemeIterator(QStringView line)
{
    thread_local const BreakIterator iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        BreakIterator made(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
        return U_SUCCESS(status) ? std::move(made) : nullptr;
    }();
    UErrorCode status = U_ZERO_ERROR;
    if (iterator) {
        ubrk_setText(iterator.get(), line.utf16(), int32_t(line.size()), &status);
    }
    return U_SUCCESS(status) ? iterator.get() : nullptr;
}

/// The characters of a line and where they begin.
class Characters {
public:
    explicit Characters(QStringView line) : m_line(line)
    {
        // Below the first combining mark every unit is a character but for CR LF.
        if (std::ranges::all_of(line, [](QChar unit) { return unit.unicode() < 0x300 && unit != u'\r'; })) {
            m_count = line.size();
            return;
        }
        // Without ICU's data every unit is a character.
        UBreakIterator *const iterator = graphemeIterator(line);
        m_starts.push_back(0);
        while (m_starts.back() < line.size()) {
            m_starts.push_back(iterator ? ubrk_next(iterator) : m_starts.back() + 1);
        }
        m_count = qsizetype(m_starts.size()) - 1;
    }

    [[nodiscard]] qsizetype count() const { return m_count; }
    /// Where character `index` (0 … count) begins, in units.
    [[nodiscard]] qsizetype start(qsizetype index) const { return m_starts.empty() ? index : m_starts[size_t(index)]; }
    [[nodiscard]] QStringView at(qsizetype index) const { return m_line.sliced(start(index), start(index + 1) - start(index)); }

private:
    QStringView m_line;
    /// And where the last ends; empty when every unit is a character.
    std::vector<int32_t> m_starts;
    qsizetype m_count = 0;
};

bool isSame(QStringView a, QStringView b)
{
    if (a == b) {
        return true;
    }
    UErrorCode status = U_ZERO_ERROR;
    return unorm_compare(a.utf16(), int32_t(a.size()), b.utf16(), int32_t(b.size()), 0, &status) == 0 && U_SUCCESS(status);
}

std::vector<InlineDiff::CharacterRange> rangeOf(qsizetype lower, qsizetype upper)
{
    return lower < upper ? std::vector{InlineDiff::CharacterRange{lower, upper}} : std::vector<InlineDiff::CharacterRange>();
}

} // namespace

InlineDiff::Spans InlineDiff::spans(QStringView old, QStringView newer)
{
    const Characters left(old);
    const Characters right(newer);
    if (left.count() > mostCharacters || right.count() > mostCharacters) {
        return {rangeOf(0, left.count()), rangeOf(0, right.count())};
    }
    const qsizetype shorter = std::min(left.count(), right.count());
    qsizetype prefix = 0;
    while (prefix < shorter && isSame(left.at(prefix), right.at(prefix))) {
        ++prefix;
    }
    qsizetype suffix = 0;
    while (suffix < shorter - prefix && isSame(left.at(left.count() - suffix - 1), right.at(right.count() - suffix - 1))) {
        ++suffix;
    }
    return {rangeOf(prefix, left.count() - suffix), rangeOf(prefix, right.count() - suffix)};
}

TextRange InlineDiff::unitRange(QStringView line, CharacterRange range)
{
    const Characters characters(line);
    return TextRange::between(characters.start(range.lower), characters.start(range.upper));
}
