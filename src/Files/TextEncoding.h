// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

/// A text encoding by the number that session files keep. Any number may come from a file; the ones that have no name here
/// may still be known to `isSupported`.
enum class TextEncoding : quint32 {
    ascii = 1,
    eucJp = 3,
    utf8 = 4,
    isoLatin1 = 5,
    shiftJis = 8,
    isoLatin2 = 9,
    /// Either byte order: as its mark says, else big-endian. Written in the machine's order with a mark.
    utf16 = 10,
    windows1251 = 11,
    windows1252 = 12,
    windows1253 = 13,
    windows1254 = 14,
    windows1250 = 15,
    iso2022Jp = 21,
    macOSRoman = 30,
    isoCyrillic = 0x80000205,
    isoGreek = 0x80000207,
    isoLatin5 = 0x80000209,
    isoLatin9 = 0x8000020F,
    dosLatin1 = 0x80000410,
    gb18030 = 0x80000632,
    eucKr = 0x80000940,
    koi8R = 0x80000A02,
    big5 = 0x80000A03,
    utf16BigEndian = 0x90000100,
    utf16LittleEndian = 0x94000100,
    utf32BigEndian = 0x98000100,
    utf32LittleEndian = 0x9C000100,
};

/// True when text can be decoded from and encoded in it.
[[nodiscard]] bool isSupported(TextEncoding encoding);
/// All of them, Unicode first.
[[nodiscard]] std::vector<TextEncoding> supportedEncodings();
/// True when it has every character.
[[nodiscard]] bool isUnicode(TextEncoding encoding);
/// Calls `visit` for the stretches of characters, both ends included, that can be written in it and read again. `encoding` must be
/// supported. Takes milliseconds.
void forEachCharacter(TextEncoding encoding, const std::function<void(char32_t first, char32_t last)> &visit);
/// The name that the interface shows: ours, else the converter's own, else one made of the number.
[[nodiscard]] QString displayName(TextEncoding encoding);

/// Takes decoded text front to back. The units are the sink's to overwrite until it returns.
class TextSink {
public:
    virtual ~TextSink() = default;
    /// Units below U+0100, one byte each.
    virtual void append(std::span<uchar> latin1) = 0;
    /// A surrogate pair is never split between two calls.
    virtual void append(std::span<char16_t> units) = 0;
};

/// Turns bytes into text, in any portions. One use, one thread at a time.
class TextDecoder {
public:
    /// Fails at the first byte sequence that is not valid in the encoding; null when the encoding is not supported.
    /// `TextEncoding::utf16` takes its byte-order mark off; in every other encoding one is text like any other (U+FEFF).
    [[nodiscard]] static std::unique_ptr<TextDecoder> strict(TextEncoding encoding);
    /// UTF-8 with U+FFFD for every ill-formed sequence (the longest one that could have begun a character counts as one). Never fails.
    [[nodiscard]] static std::unique_ptr<TextDecoder> lossyUtf8();

    virtual ~TextDecoder() = default;
    /// False when `bytes`, after those before, cannot be text in the encoding. `bytes` may be overwritten.
    [[nodiscard]] virtual bool decode(std::span<uchar> bytes, TextSink &sink) = 0;
    /// Ends the text; false when it ends inside a character.
    [[nodiscard]] virtual bool finish(TextSink &sink) = 0;
};

/// Turns text into bytes, in any portions. One use, one thread at a time.
class TextEncoder {
public:
    enum class Mode {
        /// Fails at the first character that the encoding does not have, unpaired surrogates among them.
        strict,
        /// Writes U+FFFD for it in the Unicode encodings and "?" in the others. Never fails.
        lossy,
    };

    /// Null when the encoding is not supported.
    [[nodiscard]] static std::unique_ptr<TextEncoder> make(TextEncoding encoding, Mode mode);

    virtual ~TextEncoder() = default;
    /// Appends the bytes to `out`; false when a character cannot be represented.
    [[nodiscard]] virtual bool encode(QStringView text, QByteArray &out) = 0;
    [[nodiscard]] virtual bool encode(std::span<const uchar> latin1, QByteArray &out) = 0;
    /// Ends the text: what it still owes goes to `out`.
    [[nodiscard]] virtual bool finish(QByteArray &out) = 0;
};

/// For texts that are in memory anyway. None when a strict conversion fails or the encoding is not supported.
[[nodiscard]] std::optional<QString> decodedStrictly(QByteArrayView bytes, TextEncoding encoding);
[[nodiscard]] std::optional<QByteArray> encoded(QStringView text, TextEncoding encoding, TextEncoder::Mode mode);
