// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Text/LineKey.h"

#include "Text/TextScan.h"

#include <QHash>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

/// Below this, every unit is composed as it stands, whatever is next to it below this too.
constexpr char16_t firstCombining = 0x300;

constexpr bool isNarrowWhitespace(int unit)
{
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20 || unit == 0x85 || unit == 0xA0;
}

constexpr auto narrowWhitespace = [] {
    std::array<bool, 256> table{};
    for (int unit = 0; unit < 256; ++unit) {
        table[size_t(unit)] = isNarrowWhitespace(unit);
    }
    return table;
}();

/// Written into `room` only when it is not so already.
QStringView composed(QStringView units, QString &room)
{
    if (std::ranges::none_of(units, [](QChar unit) { return unit.unicode() >= firstCombining; })) {
        return units;
    }
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2 *const normalizer = unorm2_getNFCInstance(&status);
    if (U_FAILURE(status) || unorm2_isNormalized(normalizer, units.utf16(), int32_t(units.size()), &status) || U_FAILURE(status)) {
        return units;
    }
    // Composing lengthens a few characters, to three times at most.
    room.resize(3 * units.size());
    const int32_t length = unorm2_normalize(normalizer, units.utf16(), int32_t(units.size()), reinterpret_cast<char16_t *>(room.data()),
                                            int32_t(room.size()), &status);
    return U_SUCCESS(status) ? QStringView(room).first(length) : units;
}

} // namespace

size_t LineKey::hash() const
{
    const size_t bytes = size_t(length) * (narrow ? sizeof(uchar) : sizeof(char16_t));
    return qHashBits(narrow ? static_cast<const void *>(narrow) : wide, bytes, QHashSeed::globalSeed());
}

bool operator==(const LineKey &a, const LineKey &b)
{
    if (a.length != b.length || (a.length > 0 && !a.narrow != !b.narrow)) {
        return false;
    }
    return a.length == 0 || (a.narrow ? std::memcmp(a.narrow, b.narrow, size_t(a.length)) == 0
                                      : std::memcmp(a.wide, b.wide, size_t(a.length) * sizeof(char16_t)) == 0);
}

LineKey LineKeyReader::key(TextRange line)
{
    if (line.isEmpty()) {
        return {};
    }
    const Rope::Chunk first = m_chunks.after(line.location, line.end());
    if (first.length == line.length) {
        LineKey key = first.narrow ? narrowKey(first.narrow, first.length) : wideKey(QStringView(first.wide, first.length));
        key.isInPlace = first.narrow ? key.narrow == first.narrow : key.wide == first.wide;
        return key;
    }
    m_bytes.resize(0);
    m_bytes.reserve(line.length);
    qsizetype at = line.location;
    while (at < line.end()) {
        const Rope::Chunk chunk = m_chunks.after(at, line.end());
        if (!chunk.narrow) {
            m_units.resize(line.length);
            m_text->copy(line, reinterpret_cast<char16_t *>(m_units.data()));
            return wideKey(m_units);
        }
        m_bytes.append(reinterpret_cast<const char *>(chunk.narrow), chunk.length);
        at += chunk.length;
    }
    return narrowKey(reinterpret_cast<const uchar *>(m_bytes.constData()), m_bytes.size());
}

LineKey LineKeyReader::narrowKey(const uchar *units, qsizetype length)
{
    if (m_whitespace == Whitespace::counts) {
        return {.narrow = units, .length = length};
    }
    // Longer lines were put together in these bytes and are shortened in place.
    m_bytes.resize(length);
    auto *const out = reinterpret_cast<uchar *>(m_bytes.data());
    const uchar *const from = units;
    qsizetype kept = 0;
    for (qsizetype i = 0; i < length; ++i) {
        out[kept] = from[i];
        kept += narrowWhitespace[from[i]] ? 0 : 1;
    }
    return {.narrow = out, .length = kept};
}

LineKey LineKeyReader::wideKey(QStringView units)
{
    if (m_whitespace == Whitespace::ignored) {
        if (units.utf16() != reinterpret_cast<const char16_t *>(m_units.constData())) {
            m_units = units.toString();
        }
        m_units.removeIf([](QChar unit) { return u_isUWhiteSpace(unit.unicode()); });
        units = m_units;
    }
    units = composed(units, m_composed);
    if (!isNarrowText(units.utf16(), units.size())) {
        return {.wide = units.utf16(), .length = units.size()};
    }
    m_bytes.resize(units.size());
    auto *const out = reinterpret_cast<uchar *>(m_bytes.data());
    narrowText(units.utf16(), units.size(), out);
    return {.narrow = out, .length = units.size()};
}
