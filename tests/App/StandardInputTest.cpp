// SPDX-FileCopyrightText: 2026 The Quillet authors
// SPDX-License-Identifier: MIT
#include "App/StandardInput.h"

#include "TestFolder.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// What a program that writes `bytes` gives to the one behind it.
auto piped(const QByteArray &bytes)
{
    const TestFolder folder;
    FILE *stream = ::popen((u"cat "_s + folder.put(u"bytes"_s, bytes)).toUtf8(), "r");
    auto contents = readStream(::fileno(stream));
    ::pclose(stream);
    return contents;
}

} // namespace

TEST(StandardInput, IsReadAsAFileIs)
{
    const auto short_ = piped("one\r\nzwei \xC3\xA4\r\n");
    ASSERT_TRUE(short_);
    EXPECT_EQ(short_->text.toString(), u"one\nzwei ä\n"_s);
    EXPECT_EQ(short_->lineEnding, LineEnding::crlf);
    EXPECT_TRUE(piped("")->text.isEmpty());
    const QByteArray longer = QByteArray("a line\n").repeated(200'000);
    EXPECT_EQ(piped(longer)->text.length(), longer.size());

    const auto binary = piped(QByteArray(5000, '\0'));
    ASSERT_FALSE(binary);
    EXPECT_TRUE(binary.error().description().contains(u"Standard Input"_s)) << binary.error().description().toStdString();
    EXPECT_FALSE(readStream(-1));
}
