// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT

// Bytes as files: nothing crashes whatever they are, portions do not matter, and what was read without loss is written as it was.
#include "Files/TextFile.h"
#include "Require.h"

#include <QFile>
#include <QTemporaryDir>

#include <fuzzer/FuzzedDataProvider.h>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr auto encodings = std::to_array<TextEncoding>(
    {TextEncoding::ascii, TextEncoding::utf8, TextEncoding::isoLatin1, TextEncoding::isoLatin2, TextEncoding::utf16,
     TextEncoding::windows1251, TextEncoding::windows1252, TextEncoding::windows1250, TextEncoding::macOSRoman,
     TextEncoding::utf16BigEndian, TextEncoding::utf16LittleEndian, TextEncoding::utf32BigEndian, TextEncoding::utf32LittleEndian});

class StringSink final : public TextSink {
public:
    void append(std::span<uchar> latin1) override
    {
        text += QLatin1StringView(reinterpret_cast<const char *>(latin1.data()), qsizetype(latin1.size()));
    }
    void append(std::span<char16_t> units) override
    {
        REQUIRE(units.empty() || !QChar::isHighSurrogate(units.back()));
        text += QStringView(units.data(), qsizetype(units.size()));
    }

    QString text;
};

std::optional<QString> decodedInPortions(TextDecoder &decoder, const QByteArray &bytes, const std::vector<uint8_t> &portions)
{
    StringSink sink;
    std::vector<uchar> rest(bytes.begin(), bytes.end());
    size_t at = 0;
    for (size_t i = 0; at < rest.size(); ++i) {
        const size_t length = std::min(rest.size() - at, size_t(portions.empty() ? 7 : portions[i % portions.size()] + 1));
        // A copy of its own, so that reading beyond the portion is seen.
        std::vector<uchar> portion(rest.begin() + ptrdiff_t(at), rest.begin() + ptrdiff_t(at + length));
        if (!decoder.decode(portion, sink)) {
            return std::nullopt;
        }
        at += length;
    }
    return decoder.finish(sink) ? std::optional(sink.text) : std::nullopt;
}

void checkEncoding(TextEncoding encoding, const QByteArray &bytes, const std::vector<uint8_t> &portions)
{
    const auto text = decodedStrictly(bytes, encoding);
    const auto decoder = TextDecoder::strict(encoding);
    REQUIRE(decodedInPortions(*decoder, bytes, portions) == text);
    if (!text) {
        return;
    }
    const auto again = encoded(*text, encoding, TextEncoder::Mode::strict);
    REQUIRE(again.has_value());
    REQUIRE(encoding == TextEncoding::utf16 ? decodedStrictly(*again, encoding) == text : *again == bytes);
}

/// Line breaks in the form they have in memory.
QString folded(QString text)
{
    return text.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n');
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    REQUIRE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// A byte-order mark is no text and is not written again.
QByteArray withoutMark(const QByteArray &bytes, TextEncoding encoding, std::optional<TextEncoding> forced)
{
    const auto marked = [&](TextEncoding marks, QByteArrayView mark) { return encoding == marks && bytes.startsWith(mark); };
    if (marked(TextEncoding::utf8, {"\xEF\xBB\xBF", 3})) {
        return bytes.mid(3);
    }
    if (!forced && (marked(TextEncoding::utf16BigEndian, {"\xFE\xFF", 2}) || marked(TextEncoding::utf16LittleEndian, {"\xFF\xFE", 2}))) {
        return bytes.mid(2);
    }
    return bytes;
}

void checkFile(std::optional<TextEncoding> forced, const QByteArray &bytes)
{
    // In memory where there is such a folder: AtomicFile waits for the disk.
    static const QTemporaryDir folder(u"/dev/shm/quillet-fuzz-XXXXXX"_s);
    const QString source = folder.filePath(u"source.txt"_s);
    const QString target = folder.filePath(u"target.txt"_s);
    QFile file(source);
    REQUIRE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();

    const auto contents = TextFile::read(source, forced);
    if (!contents) {
        REQUIRE(!contents.error().description().isEmpty());
        return;
    }
    REQUIRE(contents->text.checkInvariants());
    const QString text = contents->text.toString();
    REQUIRE(!text.contains(u'\r'));
    if (contents->isLossyDecode) {
        return;
    }
    const QByteArray payload = withoutMark(bytes, contents->encoding, forced);
    const auto decoded = decodedStrictly(payload, contents->encoding);
    REQUIRE(decoded && folded(*decoded) == text);
    REQUIRE(TextFile::write(contents->text, target, contents->encoding, contents->lineEnding).has_value());
    const QByteArray written = contentOf(target);
    QString broken = text;
    broken.replace("\n"_L1, rawValue(contents->lineEnding).toString());
    if (contents->encoding == TextEncoding::utf16) {
        REQUIRE(decodedStrictly(written, contents->encoding) == broken);
    } else if (broken == decoded) {
        REQUIRE(written == payload);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto encoding = encodings[input.ConsumeIntegralInRange<size_t>(0, encodings.size() - 1)];
    const bool isForced = input.ConsumeBool();
    std::vector<uint8_t> portions(input.ConsumeIntegralInRange<size_t>(0, 4));
    std::generate(portions.begin(), portions.end(), [&] { return input.ConsumeIntegral<uint8_t>(); });
    const std::string rest = input.ConsumeRemainingBytesAsString();
    const QByteArray bytes(rest.data(), qsizetype(rest.size()));

    checkEncoding(encoding, bytes, portions);
    REQUIRE(decodedInPortions(*TextDecoder::lossyUtf8(), bytes, portions) == decodedInPortions(*TextDecoder::lossyUtf8(), bytes, {255}));
    checkFile(isForced ? std::optional(encoding) : std::nullopt, bytes);
    return 0;
}
