// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "Files/TextHash.h"

#include "Files/TextEncoding.h"
#include "Text/Rope.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;

namespace {

/// Over the bytes that a file of the text would hold.
quint64 hashOfFile(const QString &text)
{
    quint64 hash = 14695981039346656037U;
    const QByteArray bytes = encoded(text, TextEncoding::utf8, TextEncoder::Mode::lossy).value();
    for (const char byte : bytes) {
        hash = (hash ^ quint64(uchar(byte))) * 1099511628211U;
    }
    return hash;
}

} // namespace

TEST(TextHash, IsThatOfTheFileWhateverTheLeaves)
{
    constexpr char16_t units[] = {u'a', u'\n', u'\x7F', u'\x80', u'\xFF', u'\u0100', u'\u07FF', u'\u0800', u'\uFFFF', 0xD83D, 0xDE00};
    std::minstd_rand random(7);
    for (const size_t kinds : {size_t(3), size_t(5), std::size(units)}) {
        for (const qsizetype length : {1, 2, 4095, 4097, 30'000}) {
            QString text(length, Qt::Uninitialized);
            for (QChar &unit : text) {
                unit = units[random() % kinds];
            }
            Rope edited(text);
            edited.replace({length / 2, 0}, u"\U0001F600é");
            text.insert(length / 2, u"\U0001F600é"_s);
            EXPECT_EQ(textHash(edited), hashOfFile(text)) << "kinds " << kinds << ", length " << length;
        }
    }
    // Only pairs, so that every leaf has to end between two.
    const QString pairs = u"x"_s + u"\U0001F600"_s.repeated(20'000);
    EXPECT_EQ(textHash(Rope(pairs)), hashOfFile(pairs));
}

TEST(TextHash, StopsWhenAsked)
{
    std::stop_source source;
    const Rope text(u"text");
    EXPECT_EQ(textHash(text, source.get_token()), textHash(text));
    source.request_stop();
    EXPECT_EQ(textHash(text, source.get_token()), std::nullopt);
}
