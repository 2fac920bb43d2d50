// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>
#include <random>
#include <span>
#include <string>

/// Random choices that are the same on every machine for a seed, or those of a fuzzer.
class Random {
public:
    explicit Random(quint32 seed) : m_engine(seed) {}
    explicit Random(std::span<const uint8_t> choices) : m_choices(choices) {}

    /// Whether the fuzzer's choices are all made; what is asked for then is the first there is.
    [[nodiscard]] bool isUsedUp() const { return m_choices->size() < 2; }

    /// 0 … limit - 1.
    qsizetype below(qsizetype limit)
    {
        if (!m_choices) {
            return qsizetype(m_engine() % quint64(limit));
        }
        const int choice = isUsedUp() ? 0 : m_choices->front() + 256 * (*m_choices)[1];
        m_choices = m_choices->subspan(std::min<size_t>(m_choices->size(), 2));
        return choice % limit;
    }
    template<class Choices>
    const auto &of(const Choices &choices)
    {
        return std::begin(choices)[below(std::ssize(choices))];
    }
    bool oneIn(qsizetype chances) { return below(chances) == 0; }

    /// Text rich in line breaks of all kinds, narrow, wide and paired units, combining marks and, rarely, half pairs.
    std::u16string text(qsizetype length)
    {
        static const std::u16string alphabet[] = {u"\n",     u"\r",      u"\r\n",   u"\n",     u"a",          u"b",         u"c ",
                                                  u"\u00e9", u"\u00ff",  u"\u4e2d", u"x",      u"y",          u"\t",        u"z",
                                                  u"0",      u"e\u0301", u"-",      u"\u2028", u"\U0001F600", u"\U0001F469"};
        // Whole stretches of one sort, so that narrow and wide leaves both come up.
        const qsizetype narrowOnly = below(3);
        std::u16string result;
        while (qsizetype(result.size()) < length) {
            const std::u16string &piece = alphabet[below(std::size(alphabet))];
            if (narrowOnly == 0 || piece[0] < 0x100)
                result += piece;
            else if (narrowOnly == 1 && oneIn(8))
                result += piece;
            if (oneIn(60))
                result += oneIn(2) ? char16_t(0xd83d) : char16_t(0xde00);
        }
        result.resize(size_t(length));
        return result;
    }

private:
    std::mt19937 m_engine;
    std::optional<std::span<const uint8_t>> m_choices;
};

/// As it would stand in C++, so that a failure can be replayed.
inline std::string escaped(std::u16string_view text)
{
    std::string result = "u\"";
    for (const char16_t unit : text) {
        char buffer[12];
        std::snprintf(buffer, sizeof buffer, unit >= 0x20 && unit < 0x7f ? "%c" : "\\x%04x\" u\"", unit);
        result += buffer;
    }
    return result + "\"";
}
