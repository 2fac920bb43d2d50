// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/TextEncoding.h"

#include "Base/Translation.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/uset.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

struct EncodingRow {
    TextEncoding encoding;
    /// Empty: the converter's standard name.
    QStringView displayName;
    /// The library's canonical name; its aliases are ambiguous for the Windows code pages.
    const char *converter;
    /// Bytes without a character are mapped to C1 controls by the converter, which would make any byte valid.
    bool hasUndefinedBytes = false;
    bool isUnicode = false;
};

constexpr auto encodingRows = std::to_array<EncodingRow>({
    {TextEncoding::utf8, u"UTF-8", "UTF-8", false, true},
    {TextEncoding::utf16, u"UTF-16", "UTF-16", false, true},
    {TextEncoding::utf16BigEndian, u"UTF-16 BE", "UTF-16BE", false, true},
    {TextEncoding::utf16LittleEndian, u"UTF-16 LE", "UTF-16LE", false, true},
    {TextEncoding::utf32BigEndian, u"UTF-32 BE", "UTF-32BE", false, true},
    {TextEncoding::utf32LittleEndian, u"UTF-32 LE", "UTF-32LE", false, true},
    {TextEncoding::isoLatin1, u"ISO-8859-1", "ISO-8859-1"},
    {TextEncoding::isoLatin2, u"ISO-8859-2", "ibm-912_P100-1995"},
    {TextEncoding::windows1250, u"Windows-1250", "ibm-5346_P100-1998", true},
    {TextEncoding::windows1251, u"Windows-1251", "ibm-5347_P100-1998", true},
    {TextEncoding::windows1252, u"Windows-1252", "ibm-5348_P100-1997", true},
    {TextEncoding::macOSRoman, u"Mac OS Roman", "macos-0_2-10.2"},
    {TextEncoding::ascii, u"ASCII", "US-ASCII"},
    // Only for those who look for them, and for sessions brought along from elsewhere.
    {TextEncoding::isoLatin9, u"ISO-8859-15", "ibm-923_P100-1998"},
    {TextEncoding::isoCyrillic, u"ISO-8859-5", "ibm-915_P100-1995"},
    {TextEncoding::isoGreek, u"ISO-8859-7", "ibm-9005_X110-2007"},
    {TextEncoding::isoLatin5, u"ISO-8859-9", "ibm-920_P100-1995"},
    {TextEncoding::windows1253, u"Windows-1253", "ibm-5349_P100-1998", true},
    {TextEncoding::windows1254, u"Windows-1254", "ibm-5350_P100-1998", true},
    {TextEncoding::koi8R, u"KOI8-R", "ibm-878_P100-1996"},
    {TextEncoding::dosLatin1, u"IBM850", "ibm-850_P100-1995"},
    {TextEncoding::gb18030, u"GB18030", "gb18030", false, true},
    {TextEncoding::big5, u"Big5", "windows-950-2000"},
    {TextEncoding::eucKr, u"EUC-KR", "ibm-970_P110_P110-2006_U2"},
    {TextEncoding::eucJp, {}, "euc-jp-2007"},
    {TextEncoding::shiftJis, {}, "ibm-943_P15A-2003"},
    {TextEncoding::iso2022Jp, {}, "ISO_2022,locale=ja,version=0"},
    {TextEncoding(0x8C000100), {}, "UTF-32", false, true},
});

const EncodingRow *rowOf(TextEncoding encoding)
{
    const auto row = std::find_if(encodingRows.begin(), encodingRows.end(), [=](const EncodingRow &r) { return r.encoding == encoding; });
    return row == encodingRows.end() ? nullptr : &*row;
}

struct CloseConverter {
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter openConverter(const EncodingRow &row)
{
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(row.converter, &status));
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

bool isC1(char16_t unit)
{
    return unit >= 0x80 && unit < 0xA0;
}

/// How many bytes `text` begins with that are below 0x80.
size_t asciiPrefix(std::span<const uchar> text)
{
    constexpr size_t step = 64;
    constexpr quint64 highBits = 0x8080808080808080;
    size_t at = 0;
    for (; at + step <= text.size(); at += step) {
        std::array<quint64, step / sizeof(quint64)> words;
        std::memcpy(words.data(), text.data() + at, step);
        quint64 all = 0;
        for (const quint64 word : words) {
            all |= word;
        }
        if (all & highBits) {
            break;
        }
    }
    while (at < text.size() && text[at] < 0x80) {
        ++at;
    }
    return at;
}

/// Stretches of plain ASCII go to the sink where they lie; only what is around other characters is decoded, in short blocks.
class Utf8Decoder final : public TextDecoder {
public:
    enum class Mode { strict, lossy };

    explicit Utf8Decoder(Mode mode) : m_mode(mode) {}

    bool decode(std::span<uchar> bytes, TextSink &sink) override
    {
        if (!decodeCarry(bytes, sink)) {
            return false;
        }
        while (!bytes.empty()) {
            const size_t plain = asciiPrefix(bytes);
            if (plain == bytes.size() || plain >= worthwhileRun) {
                sink.append(bytes.first(plain));
                bytes = bytes.subspan(plain);
            } else if (!decodeBlock(bytes, sink)) {
                return false;
            }
        }
        return true;
    }

    bool finish(TextSink &sink) override
    {
        if (m_carryLength == 0) {
            return true;
        }
        if (m_mode == Mode::strict) {
            return false;
        }
        m_carryLength = 0;
        char16_t replacement = 0xFFFD;
        sink.append(std::span(&replacement, 1));
        return true;
    }

private:
    static constexpr size_t blockSize = 4096;
    static constexpr size_t worthwhileRun = 1024;

    /// True when `text`, on which `U8_NEXT` failed and went up to its end, is the beginning of a character.
    static bool isCutOff(std::span<const uchar> text) { return size_t(U8_COUNT_TRAIL_BYTES(text[0])) >= text.size(); }

    /// Appends to the block; false when that is an error.
    bool put(UChar32 c)
    {
        if (c < 0) {
            if (m_mode == Mode::strict) {
                return false;
            }
            c = 0xFFFD;
        }
        if (U_IS_BMP(c)) {
            m_block[m_blockLength++] = char16_t(c);
        } else {
            m_block[m_blockLength++] = U16_LEAD(c);
            m_block[m_blockLength++] = U16_TRAIL(c);
        }
        return true;
    }

    void flush(TextSink &sink)
    {
        if (m_blockLength > 0) {
            sink.append(std::span(m_block.data(), m_blockLength));
            m_blockLength = 0;
        }
    }

    /// Completes the character that the last portion ended in, byte by byte.
    bool decodeCarry(std::span<uchar> &bytes, TextSink &sink)
    {
        while (m_carryLength > 0 && !bytes.empty()) {
            m_carry[m_carryLength++] = bytes.front();
            bytes = bytes.subspan(1);
            size_t used = 0;
            UChar32 c = 0;
            U8_NEXT(m_carry.data(), used, m_carryLength, c);
            if (c < 0 && used == m_carryLength && isCutOff(std::span(m_carry).first(m_carryLength))) {
                continue;
            }
            if (!put(c)) {
                return false;
            }
            std::copy(m_carry.begin() + std::ptrdiff_t(used), m_carry.begin() + std::ptrdiff_t(m_carryLength), m_carry.begin());
            m_carryLength -= used;
            // What is left of an ill-formed sequence is one byte, which may itself be the whole of a character.
            if (m_carryLength == 1 && U8_COUNT_TRAIL_BYTES(m_carry[0]) == 0) {
                m_carryLength = 0;
                if (!put(m_carry[0] < 0x80 ? UChar32(m_carry[0]) : U_SENTINEL)) {
                    return false;
                }
            }
        }
        flush(sink);
        return true;
    }

    bool decodeBlock(std::span<uchar> &bytes, TextSink &sink)
    {
        const uchar *const text = bytes.data();
        const size_t length = bytes.size();
        const size_t softEnd = std::min(blockSize, length);
        size_t at = 0;
        while (at < softEnd) {
            if (text[at] < 0x80) {
                m_block[m_blockLength++] = text[at++];
                continue;
            }
            const size_t start = at;
            UChar32 c = 0;
            U8_NEXT(text, at, length, c);
            if (c < 0 && at == length && isCutOff(bytes.subspan(start))) {
                m_carryLength = length - start;
                std::copy(bytes.begin() + std::ptrdiff_t(start), bytes.end(), m_carry.begin());
                break;
            }
            if (!put(c)) {
                return false;
            }
        }
        bytes = bytes.subspan(at);
        flush(sink);
        return true;
    }

    Mode m_mode;
    size_t m_carryLength = 0;
    size_t m_blockLength = 0;
    std::array<uchar, 4> m_carry = {};
    /// No byte makes more than one unit, and the last character of a block may reach 3 bytes beyond it.
    std::array<char16_t, blockSize + 4> m_block;
};

/// Every byte is a unit; `limit` says how many of them are characters.
class ByteDecoder final : public TextDecoder {
public:
    enum class Limit { ascii, latin1 };

    explicit ByteDecoder(Limit limit) : m_limit(limit) {}

    bool decode(std::span<uchar> bytes, TextSink &sink) override
    {
        if (m_limit == Limit::ascii && asciiPrefix(bytes) < bytes.size()) {
            return false;
        }
        sink.append(bytes);
        return true;
    }

    bool finish(TextSink &) override { return true; }

private:
    Limit m_limit;
};

class ConverterDecoder final : public TextDecoder {
public:
    ConverterDecoder(Converter converter, const EncodingRow &row) : m_converter(std::move(converter)), m_row(row)
    {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setToUCallBack(m_converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
        Q_ASSERT(U_SUCCESS(status));
    }

    bool decode(std::span<uchar> bytes, TextSink &sink) override { return convert(bytes, false, sink); }
    bool finish(TextSink &sink) override { return convert({}, true, sink); }

private:
    bool convert(std::span<const uchar> bytes, UBool isLast, TextSink &sink)
    {
        const char *source = reinterpret_cast<const char *>(bytes.data());
        const char *const end = source + bytes.size();
        UErrorCode status = U_ZERO_ERROR;
        do {
            status = U_ZERO_ERROR;
            char16_t *target = m_block.data();
            ucnv_toUnicode(m_converter.get(), &target, m_block.data() + m_block.size(), &source, end, nullptr, isLast, &status);
            if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR) {
                return false;
            }
            const std::span units(m_block.data(), target);
            if (m_row.hasUndefinedBytes && std::any_of(units.begin(), units.end(), isC1)) {
                return false;
            }
            if (!units.empty()) {
                append(units, sink);
            }
        } while (status == U_BUFFER_OVERFLOW_ERROR);
        return true;
    }

    /// A full block may end inside a pair; its first half waits for the next block.
    void append(std::span<char16_t> units, TextSink &sink)
    {
        if (m_pendingLead != 0) {
            std::array<char16_t, 2> pair = {m_pendingLead, units.front()};
            m_pendingLead = 0;
            sink.append(std::span<char16_t>(pair));
            units = units.subspan(1);
        }
        if (!units.empty() && U16_IS_LEAD(units.back())) {
            m_pendingLead = units.back();
            units = units.first(units.size() - 1);
        }
        if (!units.empty()) {
            sink.append(units);
        }
    }

    Converter m_converter;
    const EncodingRow &m_row;
    char16_t m_pendingLead = 0;
    std::array<char16_t, 8192> m_block;
};

class Utf8Encoder final : public TextEncoder {
public:
    explicit Utf8Encoder(Mode mode) : m_mode(mode) {}

    bool encode(QStringView text, QByteArray &out) override
    {
        // Three bytes a unit at most: a pair makes four of two.
        uchar *const begin = grow(out, 3 * (text.size() + 1));
        uchar *at = begin;
        bool isValid = true;
        for (const QChar unit : text) {
            isValid = put(unit.unicode(), at) && isValid;
        }
        out.truncate(out.size() - (reinterpret_cast<uchar *>(out.end()) - at));
        return isValid;
    }

    bool encode(std::span<const uchar> latin1, QByteArray &out) override
    {
        bool isValid = true;
        if (m_pendingLead != 0) {
            isValid = endPending(out);
        }
        if (asciiPrefix(latin1) == latin1.size()) {
            out.append(reinterpret_cast<const char *>(latin1.data()), qsizetype(latin1.size()));
            return isValid;
        }
        uchar *at = grow(out, 2 * qsizetype(latin1.size()));
        for (const uchar unit : latin1) {
            if (unit < 0x80) {
                *at++ = unit;
            } else {
                *at++ = uchar(0xC0 | unit >> 6);
                *at++ = uchar(0x80 | (unit & 0x3F));
            }
        }
        out.truncate(out.size() - (reinterpret_cast<uchar *>(out.end()) - at));
        return isValid;
    }

    bool finish(QByteArray &out) override { return m_pendingLead == 0 || endPending(out); }

private:
    static uchar *grow(QByteArray &out, qsizetype bytes)
    {
        const qsizetype length = out.size();
        out.resize(length + bytes);
        return reinterpret_cast<uchar *>(out.data()) + length;
    }

    static void putCharacter(UChar32 c, uchar *&at)
    {
        qsizetype length = 0;
        U8_APPEND_UNSAFE(at, length, c);
        at += length;
    }

    bool put(char16_t unit, uchar *&at)
    {
        if (unit < 0x80 && m_pendingLead == 0) {
            *at++ = uchar(unit);
            return true;
        }
        const char16_t lead = std::exchange(m_pendingLead, u'\0');
        if (lead != 0 && U16_IS_TRAIL(unit)) {
            putCharacter(U16_GET_SUPPLEMENTARY(lead, unit), at);
            return true;
        }
        bool isValid = true;
        if (lead != 0) {
            isValid = putUnpaired(at);
        }
        if (U16_IS_LEAD(unit)) {
            m_pendingLead = unit;
        } else if (U16_IS_TRAIL(unit)) {
            isValid = putUnpaired(at);
        } else {
            putCharacter(unit, at);
        }
        return isValid;
    }

    bool putUnpaired(uchar *&at)
    {
        putCharacter(0xFFFD, at);
        return m_mode == Mode::lossy;
    }

    bool endPending(QByteArray &out)
    {
        m_pendingLead = 0;
        uchar *at = grow(out, 3);
        return putUnpaired(at);
    }

    Mode m_mode;
    char16_t m_pendingLead = 0;
};

/// The library's own callbacks drop invisible characters that an encoding lacks without a word; these treat them like any other.
void U_CALLCONV stopAtMissing(const void *, UConverterFromUnicodeArgs *, const UChar *, int32_t, UChar32, UConverterCallbackReason,
                              UErrorCode *)
{}

void U_CALLCONV substituteMissing(const void *, UConverterFromUnicodeArgs *args, const UChar *, int32_t, UChar32,
                                  UConverterCallbackReason reason, UErrorCode *status)
{
    if (reason <= UCNV_IRREGULAR) {
        *status = U_ZERO_ERROR;
        ucnv_cbFromUWriteSub(args, 0, status);
    }
}

class ConverterEncoder final : public TextEncoder {
public:
    ConverterEncoder(Converter converter, const EncodingRow &row, Mode mode) : m_converter(std::move(converter)), m_row(row), m_mode(mode)
    {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setFromUCallBack(m_converter.get(), mode == Mode::strict ? stopAtMissing : substituteMissing, nullptr, nullptr, nullptr,
                              &status);
        const UConverterType type = ucnv_getType(m_converter.get());
        if (type == UCNV_SBCS || type == UCNV_MBCS || type == UCNV_LATIN_1 || type == UCNV_US_ASCII) {
            ucnv_setSubstChars(m_converter.get(), "?", 1, &status);
        }
        Q_ASSERT(U_SUCCESS(status));
    }

    bool encode(QStringView text, QByteArray &out) override
    {
        while (!text.isEmpty()) {
            const auto length = size_t(std::min<qsizetype>(text.size(), qsizetype(m_block.size())));
            std::copy_n(text.utf16(), length, m_block.begin());
            if (!convertBlock(length, out)) {
                return false;
            }
            text = text.sliced(qsizetype(length));
        }
        return true;
    }

    bool encode(std::span<const uchar> latin1, QByteArray &out) override
    {
        while (!latin1.empty()) {
            const size_t length = std::min(latin1.size(), m_block.size());
            std::copy_n(latin1.begin(), length, m_block.begin());
            if (!convertBlock(length, out)) {
                return false;
            }
            latin1 = latin1.subspan(length);
        }
        return true;
    }

    bool finish(QByteArray &out) override { return convert(0, true, out); }

private:
    bool convertBlock(size_t length, QByteArray &out)
    {
        if (m_row.hasUndefinedBytes) {
            const std::span units = std::span(m_block).first(length);
            if (m_mode == Mode::strict && std::any_of(units.begin(), units.end(), isC1)) {
                return false;
            }
            std::replace_if(units.begin(), units.end(), isC1, u'\uFFFD');
        }
        return convert(length, false, out);
    }

    bool convert(size_t length, UBool isLast, QByteArray &out)
    {
        const char16_t *source = m_block.data();
        const char16_t *const end = source + length;
        UErrorCode status = U_ZERO_ERROR;
        do {
            status = U_ZERO_ERROR;
            const qsizetype before = out.size();
            out.resize(before + 2 * (end - source) + 16);
            char *target = out.data() + before;
            ucnv_fromUnicode(m_converter.get(), &target, out.data() + out.size(), &source, end, nullptr, isLast, &status);
            out.truncate(target - out.data());
        } while (status == U_BUFFER_OVERFLOW_ERROR);
        return U_SUCCESS(status);
    }

    Converter m_converter;
    const EncodingRow &m_row;
    Mode m_mode;
    std::array<char16_t, 4096> m_block;
};

class StringSink final : public TextSink {
public:
    void append(std::span<uchar> latin1) override
    {
        text += QLatin1StringView(reinterpret_cast<const char *>(latin1.data()), qsizetype(latin1.size()));
    }
    void append(std::span<char16_t> units) override { text += QStringView(units.data(), qsizetype(units.size())); }

    QString text;
};

} // namespace

bool isSupported(TextEncoding encoding)
{
    return rowOf(encoding) != nullptr;
}

std::vector<TextEncoding> supportedEncodings()
{
    std::vector<TextEncoding> all;
    std::ranges::transform(encodingRows, std::back_inserter(all), &EncodingRow::encoding);
    return all;
}

bool isUnicode(TextEncoding encoding)
{
    const EncodingRow *row = rowOf(encoding);
    return row && row->isUnicode;
}

void forEachCharacter(TextEncoding encoding, const std::function<void(char32_t first, char32_t last)> &visit)
{
    const EncodingRow &row = *rowOf(encoding);
    const Converter converter = openConverter(row);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<USet, decltype(&uset_close)> set(uset_openEmpty(), uset_close);
    ucnv_getUnicodeSet(converter.get(), set.get(), UCNV_ROUNDTRIP_SET, &status);
    Q_ASSERT(U_SUCCESS(status));
    if (row.hasUndefinedBytes) {
        uset_removeRange(set.get(), 0x80, 0x9F);
    }
    for (int32_t item = 0; item < uset_getItemCount(set.get()); ++item) {
        UChar32 first = 0;
        UChar32 last = 0;
        // A stretch, where this gives 0, or a sequence of several characters.
        if (uset_getItem(set.get(), item, &first, &last, nullptr, 0, &status) == 0) {
            visit(char32_t(first), char32_t(last));
        }
        status = U_ZERO_ERROR;
    }
}

QString displayName(TextEncoding encoding)
{
    const EncodingRow *row = rowOf(encoding);
    if (!row) {
        return formatted(localized(u"Encoding %d"), quint32(encoding));
    }
    if (!row->displayName.isEmpty()) {
        return row->displayName.toString();
    }
    UErrorCode status = U_ZERO_ERROR;
    const char *standard = ucnv_getStandardName(row->converter, "MIME", &status);
    return QString::fromLatin1(standard ? standard : row->converter);
}

std::unique_ptr<TextDecoder> TextDecoder::strict(TextEncoding encoding)
{
    switch (encoding) {
    case TextEncoding::utf8:
        return std::make_unique<Utf8Decoder>(Utf8Decoder::Mode::strict);
    case TextEncoding::isoLatin1:
        return std::make_unique<ByteDecoder>(ByteDecoder::Limit::latin1);
    case TextEncoding::ascii:
        return std::make_unique<ByteDecoder>(ByteDecoder::Limit::ascii);
    default:
        break;
    }
    const EncodingRow *row = rowOf(encoding);
    Converter converter = row ? openConverter(*row) : nullptr;
    return converter ? std::make_unique<ConverterDecoder>(std::move(converter), *row) : nullptr;
}

std::unique_ptr<TextDecoder> TextDecoder::lossyUtf8()
{
    return std::make_unique<Utf8Decoder>(Utf8Decoder::Mode::lossy);
}

std::unique_ptr<TextEncoder> TextEncoder::make(TextEncoding encoding, Mode mode)
{
    if (encoding == TextEncoding::utf8) {
        return std::make_unique<Utf8Encoder>(mode);
    }
    const EncodingRow *row = rowOf(encoding);
    Converter converter = row ? openConverter(*row) : nullptr;
    return converter ? std::make_unique<ConverterEncoder>(std::move(converter), *row, mode) : nullptr;
}

std::optional<QString> decodedStrictly(QByteArrayView bytes, TextEncoding encoding)
{
    const auto decoder = TextDecoder::strict(encoding);
    std::vector<uchar> copy(bytes.begin(), bytes.end());
    StringSink sink;
    if (!decoder || !decoder->decode(copy, sink) || !decoder->finish(sink)) {
        return std::nullopt;
    }
    return sink.text;
}

std::optional<QByteArray> encoded(QStringView text, TextEncoding encoding, TextEncoder::Mode mode)
{
    const auto encoder = TextEncoder::make(encoding, mode);
    QByteArray bytes;
    if (!encoder || !encoder->encode(text, bytes) || !encoder->finish(bytes)) {
        return std::nullopt;
    }
    return bytes;
}
