// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/TextEncoding.h"

#include "Files/CharacterSet.h"
#include "Files/TextFile.h"

#include <QStringDecoder>

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace {

class StringSink final : public TextSink {
public:
    void append(std::span<uchar> latin1) override
    {
        text += QString::fromLatin1(reinterpret_cast<const char *>(latin1.data()), qsizetype(latin1.size()));
    }
    void append(std::span<char16_t> units) override
    {
        EXPECT_FALSE(QChar::isLowSurrogate(units.front()) && text.isEmpty());
        EXPECT_FALSE(QChar::isHighSurrogate(units.back()) && units.size() > 1) << "a pair was split";
        text += QStringView(units.data(), qsizetype(units.size()));
    }

    QString text;
};

/// The text in portions of `portion` bytes; null when the decoder refuses them.
QString decoded(TextDecoder &decoder, const QByteArray &bytes, qsizetype portion)
{
    StringSink sink;
    for (qsizetype at = 0; at < bytes.size(); at += portion) {
        QByteArray copy = bytes.mid(at, portion);
        copy.detach();
        if (!decoder.decode(std::span(reinterpret_cast<uchar *>(copy.data()), size_t(copy.size())), sink)) {
            return {};
        }
    }
    if (!decoder.finish(sink)) {
        return {};
    }
    return sink.text.isNull() ? u""_s : sink.text;
}

struct Case {
    TextEncoding encoding;
    const char *hex;
    /// Null: the bytes must be refused.
    QString text;
};

const Case strictCases[] = {
    {TextEncoding::utf8, "", u""_s},
    {TextEncoding::utf8, "61C3A9E282ACF09F98807A", u"aé€😀z"_s},
    {TextEncoding::utf8, "EFBBBF61", u"\uFEFFa"_s},
    {TextEncoding::utf8, "F48FBFBF", u"\U0010FFFF"_s},
    {TextEncoding::utf16, "00610062", u"ab"_s},
    {TextEncoding::utf16, "FFFE61006200", u"ab"_s},
    {TextEncoding::utf16, "FEFF00610062", u"ab"_s},
    {TextEncoding::utf16, "D83DDE00", u"😀"_s},
    {TextEncoding::utf16, "006100", {}},
    {TextEncoding::utf16, "D83D0061", {}},
    {TextEncoding::utf16, "0061DE00", {}},
    {TextEncoding::utf16, "0061D83D", {}},
    {TextEncoding::utf16LittleEndian, "FFFE6100", u"\uFEFFa"_s},
    {TextEncoding::utf16BigEndian, "D83DDE000061", u"😀a"_s},
    {TextEncoding::utf32BigEndian, "0001F60000000061", u"😀a"_s},
    {TextEncoding::utf32LittleEndian, "00F60100", u"😀"_s},
    {TextEncoding::utf32LittleEndian, "00D80000", {}},
    {TextEncoding::utf32LittleEndian, "00001100", {}},
    {TextEncoding::utf32BigEndian, "000000", {}},
    {TextEncoding::isoLatin1, "6180E9FF", u"a\u0080éÿ"_s},
    {TextEncoding::isoLatin2, "61B1F5", u"aąő"_s},
    {TextEncoding::windows1250, "8A9EE5", u"Šžĺ"_s},
    {TextEncoding::windows1250, "81", {}},
    {TextEncoding::windows1251, "CFF0E8", u"При"_s},
    {TextEncoding::windows1251, "98", {}},
    {TextEncoding::windows1252, "80939485", u"€“”…"_s},
    {TextEncoding::windows1252, "6181", {}},
    {TextEncoding::macOSRoman, "8EF0DB", u"é\uF8FF€"_s},
    {TextEncoding::ascii, "617F", u"a\u007F"_s},
    {TextEncoding::ascii, "6180", {}},
    {TextEncoding(8), "93FA967B", u"日本"_s},
};

QByteArray bytesOf(const char *hex)
{
    return QByteArray::fromHex(hex);
}

} // namespace

TEST(TextEncoding, DecodesStrictlyInPortionsOfAnySizeAndBack)
{
    for (const Case &c : strictCases) {
        for (qsizetype portion = 1; portion <= 5; ++portion) {
            SCOPED_TRACE(std::string(c.hex) + " in " + std::to_string(quint32(c.encoding)) + " by " + std::to_string(portion));
            const QString text = decoded(*TextDecoder::strict(c.encoding), bytesOf(c.hex), portion);
            EXPECT_EQ(text.isNull(), c.text.isNull());
            EXPECT_EQ(text, c.text);
        }
        if (!c.text.isNull() && c.encoding != TextEncoding::utf16) {
            EXPECT_EQ(encoded(c.text, c.encoding, TextEncoder::Mode::strict), bytesOf(c.hex)) << c.hex << " in " << quint32(c.encoding);
        }
    }
    const QByteArray generic = encoded(u"a😀", TextEncoding::utf16, TextEncoder::Mode::strict).value();
    EXPECT_EQ(generic.size(), 8);
    EXPECT_EQ(decodedStrictly(generic, TextEncoding::utf16), u"a😀");
}

TEST(TextEncoding, SubstitutesWhatAnEncodingLacks)
{
    struct {
        TextEncoding encoding;
        QString text;
        QByteArray lossy;
    } const cases[] = {
        {TextEncoding::ascii, u"a€😀é"_s, "a???"},
        // Invisible characters are characters.
        {TextEncoding::isoLatin1, u"a\u200Bb\u00ADé"_s, "a?b\xAD\xE9"},
        {TextEncoding::windows1252, u"€\u0081"_s, "\x80?"},
        {TextEncoding::macOSRoman, u"ą"_s, "?"},
        {TextEncoding::isoLatin2, u"a"_s + QChar(0xD83D), "a?"},
        {TextEncoding::utf8, u"a"_s + QChar(0xDE00) + QChar(0xD83D) + u'é' + QChar(0xD83D), "a\xEF\xBF\xBD\xEF\xBF\xBDé\xEF\xBF\xBD"},
        {TextEncoding::utf16BigEndian, QString(QChar(0xD83D)), bytesOf("FFFD")},
        {TextEncoding::utf32LittleEndian, QString(QChar(0xDE00)), bytesOf("FDFF0000")},
    };
    for (const auto &c : cases) {
        EXPECT_FALSE(encoded(c.text, c.encoding, TextEncoder::Mode::strict)) << c.text.toStdString();
        EXPECT_EQ(encoded(c.text, c.encoding, TextEncoder::Mode::lossy), c.lossy) << c.text.toStdString();
    }
}

TEST(TextEncoding, JoinsPairsAndMixedPortionsWhenEncoding)
{
    // The last one has to be told where the text ends.
    for (const TextEncoding encoding : {TextEncoding::utf8, TextEncoding::utf16LittleEndian, TextEncoding(21)}) {
        const QString text = (encoding == TextEncoding(21) ? QString() : u"é日😀é日"_s.repeated(3000)) + u"日本"_s;
        const auto encoder = TextEncoder::make(encoding, TextEncoder::Mode::strict);
        QByteArray bytes;
        for (const QChar unit : text) {
            const auto latin1 = uchar(unit.unicode());
            ASSERT_TRUE(unit < u'\u0100' ? encoder->encode(std::span(&latin1, 1), bytes) : encoder->encode(QStringView(&unit, 1), bytes));
        }
        ASSERT_TRUE(encoder->finish(bytes));
        EXPECT_EQ(decodedStrictly(bytes, encoding), text);
    }
}

TEST(TextEncoding, ReplacesIllFormedUtf8ByMaximalParts)
{
    const std::pair<const char *, QString> cases[] = {
        {"61E28262", u"a\uFFFDb"_s},
        {"F09F98", u"\uFFFD"_s},
        {"F09F98F09F9880", u"\uFFFD😀"_s},
        {"E282E282AC", u"\uFFFD€"_s},
        {"80FF41", u"\uFFFD\uFFFDA"_s},
        // Overlong, a surrogate, beyond U+10FFFF.
        {"C0AFE0809F", u"\uFFFD"_s.repeated(5)},
        {"EDA08061", u"\uFFFD\uFFFD\uFFFDa"_s},
        {"F4908080", u"\uFFFD"_s.repeated(4)},
    };
    for (const auto &[hex, text] : cases) {
        for (qsizetype portion = 1; portion <= 8; ++portion) {
            EXPECT_EQ(decoded(*TextDecoder::lossyUtf8(), bytesOf(hex), portion), text) << hex << " by " << portion;
            EXPECT_EQ(decoded(*TextDecoder::strict(TextEncoding::utf8), bytesOf(hex), portion), QString()) << hex << " by " << portion;
        }
    }
}

TEST(TextEncoding, AgreesWithAnotherDecoderOnRandomUtf8)
{
    const unsigned seed = 20260;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const QString pieces[] = {u"plain ascii, long enough to matter "_s.repeated(40), u"é"_s, u"日本"_s, u"😀"_s, u"x"_s};
    for (int round = 0; round < 200; ++round) {
        QString text;
        for (int piece = 0; piece < 12; ++piece) {
            text += pieces[random() % 5];
        }
        QByteArray bytes = text.toUtf8();
        const qsizetype portion = 1 + qsizetype(random() % 3000);
        EXPECT_EQ(decoded(*TextDecoder::strict(TextEncoding::utf8), bytes, portion), text);
        // One flipped bit: refused or not as Qt has it, and replaced in the same way however the bytes are portioned.
        bytes[qsizetype(random() % size_t(bytes.size()))] ^= char(1 << (random() % 8));
        QStringDecoder reference(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
        const QString referenceText = reference.decode(bytes);
        EXPECT_EQ(decoded(*TextDecoder::strict(TextEncoding::utf8), bytes, portion), reference.hasError() ? QString() : referenceText);
        EXPECT_EQ(decoded(*TextDecoder::lossyUtf8(), bytes, portion), decoded(*TextDecoder::lossyUtf8(), bytes, bytes.size()));
    }
}

namespace {

/// What the set says of a character is what the encoder does with it.
TEST(CharacterSetTest, HasWhatCanBeWritten)
{
    for (const TextEncoding encoding : TextFile::selectableEncodings) {
        SCOPED_TRACE(displayName(encoding).toStdString());
        const CharacterSet *set = CharacterSet::of(encoding);
        EXPECT_EQ(set == nullptr, isUnicode(encoding));
        if (!set) {
            continue;
        }
        QString all;
        for (char32_t unit = 0; unit < 0x10000; ++unit) {
            if (set->has(char16_t(unit)) && !QChar::isSurrogate(unit)) {
                all += QChar(char16_t(unit));
            }
        }
        const auto bytes = encoded(all, encoding, TextEncoder::Mode::strict);
        EXPECT_GE(all.size(), 128);
        ASSERT_TRUE(bytes);
        EXPECT_EQ(decodedStrictly(*bytes, encoding), all);
        for (char32_t unit = 0x20; unit < 0x3100; ++unit) {
            EXPECT_TRUE(set->has(char16_t(unit)) || !encoded(QString(QChar(char16_t(unit))), encoding, TextEncoder::Mode::strict))
                << uint(unit);
        }
    }
}

} // namespace
