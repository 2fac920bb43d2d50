// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/TextHash.h"

#include "Text/Rope.h"

#include <QChar>

namespace {

constexpr quint64 startValue = 0xCBF29CE484222325;
constexpr quint64 prime = 0x100000001B3;

constexpr quint64 withByte(quint64 hash, quint32 byte)
{
    return (hash ^ byte) * prime;
}

constexpr quint64 withCharacter(quint64 hash, char32_t character)
{
    const auto continuation = [character](int shift) { return 0x80 | ((character >> shift) & 0x3F); };
    if (character < 0x80) {
        return withByte(hash, character);
    }
    if (character < 0x800) {
        return withByte(withByte(hash, 0xC0 | character >> 6), continuation(0));
    }
    if (character < 0x10000) {
        return withByte(withByte(withByte(hash, 0xE0 | character >> 12), continuation(6)), continuation(0));
    }
    return withByte(withByte(withByte(withByte(hash, 0xF0 | character >> 18), continuation(12)), continuation(6)), continuation(0));
}

quint64 withLatin1(quint64 hash, const uchar *text, qsizetype length)
{
    for (const uchar *end = text + length; text != end; ++text) {
        hash = withCharacter(hash, *text);
    }
    return hash;
}

/// No surrogate pair may be split at either end.
quint64 withUtf16(quint64 hash, const char16_t *text, qsizetype length)
{
    for (qsizetype i = 0; i < length; ++i) {
        char32_t character = text[i];
        if (QChar::isSurrogate(character)) {
            const bool isPair = QChar::isHighSurrogate(character) && i + 1 < length && QChar::isLowSurrogate(text[i + 1]);
            character = isPair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : char32_t(QChar::ReplacementCharacter);
            i += isPair ? 1 : 0;
        }
        hash = withCharacter(hash, character);
    }
    return hash;
}

} // namespace

quint64 textHash(const Rope &text)
{
    return *textHash(text, std::stop_token());
}

std::optional<quint64> textHash(const Rope &text, const std::stop_token &stop)
{
    return textHash(text, stop, startValue);
}

std::optional<quint64> textHash(const Rope &added, const std::stop_token &stop, quint64 before)
{
    quint64 hash = before;
    bool isStopped = false;
    added.forEachChunk({0, added.length()}, [&](const Rope::Chunk &chunk) {
        isStopped = stop.stop_requested();
        if (!isStopped) {
            hash = chunk.narrow ? withLatin1(hash, chunk.narrow, chunk.length) : withUtf16(hash, chunk.wide, chunk.length);
        }
        return !isStopped;
    });
    return isStopped ? std::nullopt : std::optional(hash);
}
