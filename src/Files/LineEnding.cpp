// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/LineEnding.h"

#include "Files/LineEndings.h"

#include <algorithm>
#include <cstring>

static_assert(std::all_of(lineEndings.begin(), lineEndings.end(),
                          [](const LineEndingRow &row) { return &row == &lineEndings[size_t(row.ending)]; }));

namespace {

struct Breaks {
    qsizetype lineFeeds = 0;
    qsizetype carriageReturns = 0;
};

/// In blocks short enough for counters as narrow as the units, which compilers turn into a few instructions for 16 bytes.
template<typename Unit>
Breaks countBreaks(std::span<const Unit> units)
{
    constexpr size_t blockSize = 128;
    Breaks breaks;
    while (!units.empty()) {
        const std::span block = units.first(std::min(units.size(), blockSize));
        Unit lineFeeds = 0;
        Unit carriageReturns = 0;
        for (const Unit unit : block) {
            lineFeeds = Unit(lineFeeds + (unit == u'\n' ? 1 : 0));
            carriageReturns = Unit(carriageReturns + (unit == u'\r' ? 1 : 0));
        }
        breaks.lineFeeds += lineFeeds;
        breaks.carriageReturns += carriageReturns;
        units = units.subspan(block.size());
    }
    return breaks;
}

const uchar *findCr(const uchar *from, const uchar *end)
{
    const void *found = std::memchr(from, '\r', size_t(end - from));
    return found ? static_cast<const uchar *>(found) : end;
}

const char16_t *findCr(const char16_t *from, const char16_t *end)
{
    return std::find(from, end, u'\r');
}

} // namespace

std::optional<LineEnding> lineEndingWithRawValue(QStringView rawValue)
{
    for (const LineEndingRow &row : lineEndings) {
        if (row.rawValue == rawValue) {
            return row.ending;
        }
    }
    return std::nullopt;
}

size_t LineBreakCounter::addAndFold(std::span<uchar> latin1, LineEndingRecorder &recorder)
{
    return fold(latin1, recorder);
}

size_t LineBreakCounter::addAndFold(std::span<char16_t> units, LineEndingRecorder &recorder)
{
    return fold(units, recorder);
}

/// True when the portion has a CR, so that there may be pairs in it.
template<typename Unit>
bool LineBreakCounter::countAllButPairs(std::span<const Unit> units)
{
    const Breaks breaks = countBreaks(units);
    m_lineFeeds += breaks.lineFeeds;
    m_carriageReturns += breaks.carriageReturns;
    m_pairs += m_endsWithCr && units.front() == u'\n' ? 1 : 0;
    m_endsWithCr = units.back() == u'\r';
    return breaks.carriageReturns > 0;
}

template<typename Unit>
size_t LineBreakCounter::fold(std::span<Unit> units, LineEndingRecorder &recorder)
{
    if (units.empty()) {
        return 0;
    }
    const bool dropsFirst = m_endsWithCr && units.front() == u'\n';
    if (m_endsWithCr) {
        recorder.add(dropsFirst ? LineEnding::crlf : LineEnding::cr, 1);
    }
    const qsizetype lineFeedsBefore = m_lineFeeds;
    if (!countAllButPairs(std::span<const Unit>(units)) && !dropsFirst) {
        recorder.add(LineEnding::lf, m_lineFeeds - lineFeedsBefore);
        return units.size();
    }
    const Unit *in = units.data() + (dropsFirst ? 1 : 0);
    const Unit *const end = units.data() + units.size();
    Unit *out = units.data();
    while (in < end) {
        const Unit *const cr = findCr(in, end);
        recorder.add(LineEnding::lf, std::count(in, cr, Unit(u'\n')));
        std::memmove(out, in, size_t(cr - in) * sizeof(Unit));
        out += cr - in;
        in = cr;
        if (in < end) {
            const bool isPair = end - in > 1 && in[1] == u'\n';
            m_pairs += isPair ? 1 : 0;
            if (isPair || in + 1 < end) {
                recorder.add(isPair ? LineEnding::crlf : LineEnding::cr, 1);
            }
            in += isPair ? 2 : 1;
            *out++ = Unit(u'\n');
        }
    }
    return size_t(out - units.data());
}

LineEnding LineBreakCounter::ending() const
{
    const qsizetype loneLf = m_lineFeeds - m_pairs;
    const qsizetype loneCr = m_carriageReturns - m_pairs;
    if (m_pairs >= 1 && m_pairs >= loneLf && m_pairs >= loneCr) {
        return LineEnding::crlf;
    }
    return loneCr >= 1 && loneCr > loneLf ? LineEnding::cr : LineEnding::lf;
}
