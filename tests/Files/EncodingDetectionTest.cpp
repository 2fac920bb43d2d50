// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/EncodingDetection.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct SuggestionCase {
    const char *name;
    QString text;
    TextEncoding written;
    TextEncoding readAs;
    std::optional<TextEncoding> suggested;
};

TEST(EncodingDetectionTest, SuggestsAnotherEncodingOnlyForWhatLooksWrong)
{
    const QString german = u"Grüße aus Köln, wo schöne Mädchen über weiße Brücken gehen. Straße, Fuß, Äpfel und Öfen.\n"_s;
    const QString french = u"À bientôt, dit-il, déçu : « où êtes-vous passés ? » Noël, français, élève, garçon, naïveté.\n"_s;
    const QString russian = u"Это обычный русский текст, записанный в старой кодировке.\nВторая строка: привет.\n"_s;
    using enum TextEncoding;
    const std::vector<SuggestionCase> cases = {
        {"German is Latin 1", german, isoLatin1, isoLatin1, std::nullopt},
        {"French is Latin 1", french, isoLatin1, isoLatin1, std::nullopt},
        {"a degree sign", u"20 °C, 5 m², ½ µm ± 3 §\n"_s, isoLatin1, isoLatin1, std::nullopt},
        {"a name", u"Copyright © 1999 Søren Kjærgård\n"_s, isoLatin1, isoLatin1, std::nullopt},
        {"quotation marks", u"Er sagte: „12 € – mehr nicht.“\n"_s, windows1252, isoLatin1, windows1252},
        {"Russian", russian, windows1251, isoLatin1, windows1251},
        {"Russian of Unix", russian, koi8R, isoLatin1, koi8R},
        {"Russian of even length", russian, windows1251, utf16LittleEndian, windows1251},
        {"UTF-8 with C1 controls", u"\x85\x93\n"_s, utf8, utf8, std::nullopt},
    };
    for (const SuggestionCase &c : cases) {
        QByteArray bytes = encoded(c.text, c.written, TextEncoder::Mode::strict).value();
        if (bytes.size() % 2 != (c.readAs == utf16LittleEndian ? 0 : 1)) {
            bytes += '\n';
        }
        const auto read = decodedStrictly(bytes, c.readAs);
        ASSERT_TRUE(read) << c.name;
        const auto suggested = EncodingDetection::suggestion(Rope(*read), c.readAs, QLocale::English);
        EXPECT_EQ(suggested, c.suggested) << c.name << ": " << (suggested ? displayName(*suggested).toStdString() : "none");
    }
}

} // namespace
