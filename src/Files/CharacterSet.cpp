// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/CharacterSet.h"

#include <unicode/utf16.h>

#include <map>
#include <memory>
#include <mutex>

namespace {

/// Of a pair also where only its first half lies in the range.
TextRange characterAt(const Rope &text, qsizetype offset)
{
    const bool isPair = U16_IS_LEAD(text.at(offset)) && offset + 1 < text.length() && U16_IS_TRAIL(text.at(offset + 1));
    return {offset, isPair ? 2 : 1};
}

} // namespace

CharacterSet::CharacterSet(TextEncoding encoding)
{
    forEachCharacter(encoding, [this](char32_t first, char32_t last) {
        for (char32_t character = first; character <= last && character < unitCount; ++character) {
            m_units.set(character);
        }
    });
    for (size_t trail = 0xDC00; trail <= 0xDFFF; ++trail) {
        m_units.set(trail); // their first halves are missing
    }
    m_hasLatin1 = true;
    for (size_t unit = 0; unit < 0x100; ++unit) {
        m_hasLatin1 = m_hasLatin1 && m_units[unit];
    }
}

const CharacterSet *CharacterSet::of(TextEncoding encoding)
{
    if (!isSupported(encoding) || isUnicode(encoding)) {
        return nullptr;
    }
    static std::mutex mutex;
    static auto &sets = *new std::map<TextEncoding, std::unique_ptr<const CharacterSet>>;
    const std::lock_guard lock(mutex);
    auto &set = sets[encoding];
    if (!set) {
        set.reset(new CharacterSet(encoding));
    }
    return set.get();
}

qsizetype CharacterSet::countMissing(const Rope &text, TextRange range, const std::stop_token &stop) const
{
    qsizetype count = 0;
    text.forEachChunk(range, [&](const Rope::Chunk &chunk) {
        if (chunk.narrow && m_hasLatin1) {
            return !stop.stop_requested();
        }
        for (qsizetype index = 0; index < chunk.length; ++index) {
            count += has(chunk.at(index)) ? 0 : 1;
        }
        return !stop.stop_requested();
    });
    return count;
}

std::vector<TextRange> CharacterSet::missingIn(const Rope &text, TextRange range, size_t most) const
{
    std::vector<TextRange> found;
    text.forEachChunk(range, [&](const Rope::Chunk &chunk) {
        if (chunk.narrow && m_hasLatin1) {
            return true;
        }
        for (qsizetype index = 0; index < chunk.length && found.size() < most; ++index) {
            if (!has(chunk.at(index))) {
                found.push_back(characterAt(text, chunk.location + index));
            }
        }
        return found.size() < most;
    });
    return found;
}
